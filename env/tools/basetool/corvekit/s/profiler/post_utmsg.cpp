#include "post_utmsg.h"

#include <hulmar/msgmanager.h>

#include <QLoggingCategory>
#include <QMessageLogger>

namespace tivoran::corvekit {

void post_utmsg(const char *text)
{
    if (!text)
        text = "";

    static msgManager manager;
    manager.postMsg("1009993", text);

    // Built after the first posting, so the manager outlives it at unload.
    static const QLoggingCategory category("gui.profiler.log", QtDebugMsg);
    if (!category.isDebugEnabled())
        return;
    QMessageLogger(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC,
                   category.categoryName())
            .debug()
        << text;
}

} // namespace tivoran::corvekit

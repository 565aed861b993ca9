#include "commonlabelmapping.h"

#include "commonlabelmapping_p.h"

#include <QByteArray>
#include <QObject>

QString commonLabelMapping(const char *key)
{
    if (!key)
        return QString();
    // Whole keys, ASCII case folded: a prefix or an extension of a key matches nothing.
    for (const corvekit_labels::LabelRow &row : corvekit_labels::rows) {
        if (qstricmp(key, row.key) == 0)
            return QObject::tr(row.text, nullptr, -1);
    }
    return QString();
}

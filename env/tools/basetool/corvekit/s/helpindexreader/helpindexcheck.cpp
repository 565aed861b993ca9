#include "helpindexcheck_p.h"

#include "helpindexreader.h"

namespace corvekit_private {

HelpIndexCheck checkHelpIndex(QIODevice *device)
{
    HelpIndexReader reader;
    reader.setDevice(device);
    HelpIndexCheck check;
    check.valid = reader.dump();
    if (!check.valid) {
        check.error = reader.errorString();
        check.line = reader.lineNumber();
        check.column = reader.columnNumber();
    }
    return check;
}

} // namespace corvekit_private

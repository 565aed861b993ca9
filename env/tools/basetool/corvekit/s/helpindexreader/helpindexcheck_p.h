#ifndef CORVEKIT_HELPINDEXCHECK_P_H
#define CORVEKIT_HELPINDEXCHECK_P_H

// Whether a help index file is sound, for the tool built beside the library: one whole pass of
// the reader, as HelpIndexReader::dump makes it. Not installed; no promise of stability.

#include <corvekit/corvekit_export.h>

#include <QString>

class QIODevice;

namespace corvekit_private {

struct HelpIndexCheck
{
    bool valid = false;
    QString error;   // the reader's message where the pass stopped; empty when valid
    qint64 line = 0; // where it stopped, from 1
    qint64 column = 0;
};

//! Reads the help index on \a device, which is open for reading, to its end.
CORVEKIT_EXPORT HelpIndexCheck checkHelpIndex(QIODevice *device);

} // namespace corvekit_private

#endif

#ifndef CORVEKIT_DIAGTRACE_H
#define CORVEKIT_DIAGTRACE_H

#include "corvekit_export.h"

/*!
 * Writes one developer trace line, if TIVORANDEBUG asks for one:
 *
 *     <tag> At Tue Nov 17 10:23:29 2026: <message>
 *
 * TIVORANDEBUG unset: nothing is written. Empty or beginning with a blank: the line goes to
 * standard output. Anything else names a file, which the first line of the process creates or
 * empties; later lines of the process follow in that file, whatever the variable says then,
 * unless it is removed (silence) or begins with a blank (standard output). A file that cannot
 * be opened drops the line, and the next call tries again.
 *
 * \a tag may be null, and the line then begins with "At ". \a message is written unchanged and
 * must not be null while the trace is on; a null message is written as "(null)".
 */
CORVEKIT_EXPORT void diagTrace(const char *message, const char *tag);

#endif

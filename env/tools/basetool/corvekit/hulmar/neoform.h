#ifndef HULMAR_NEOFORM_H
#define HULMAR_NEOFORM_H

#include "hulmar_export.h"

// Formats by the rules of printf. The result is owned by the library and stays valid until the
// next neoform call of the same thread; it is never cut short, however long the text. A null
// format or a format that printf rejects gives an empty text.
HULMAR_EXPORT char *neoform(const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

#endif

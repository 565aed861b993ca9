#ifndef HULMAR_UT_WARNING_H
#define HULMAR_UT_WARNING_H

#include "hulmar_export.h"

// Shows one warning to the user of the running tool. A console tool writes
// "Warning: <text>" and a newline to standard error. A null text shows an empty warning.
HULMAR_EXPORT void ut_warning(const char *text);

#endif

#ifndef HULMAR_P_H
#define HULMAR_P_H

#include "hulmar_export.h"
#include "hulmar_testing.h"

namespace hulmar::detail {

// The hooks in force, or null. The test hooks of hulmar_testing install them from one thread;
// the library reads them. Exported for that static library alone: no installed header names them.
HULMAR_EXPORT extern testing::MessageCapture *activeCapture;
HULMAR_EXPORT extern testing::FakeProbes *activeProbes;

} // namespace hulmar::detail

#endif

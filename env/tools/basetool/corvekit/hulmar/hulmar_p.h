#ifndef HULMAR_P_H
#define HULMAR_P_H

#include "hulmar_testing.h"

namespace hulmar::detail {

// The hooks in force, or null. Tests install them from one thread; the library reads them.
extern testing::MessageCapture *activeCapture;
extern testing::FakeProbes *activeProbes;

} // namespace hulmar::detail

#endif

#include "hulmar_p.h"

namespace hulmar::detail {
testing::MessageCapture *activeCapture = nullptr;
testing::FakeProbes *activeProbes = nullptr;
} // namespace hulmar::detail

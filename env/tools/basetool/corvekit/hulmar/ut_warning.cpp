#include "ut_warning.h"

#include "hulmar_p.h"

#include <cstdio>

void ut_warning(const char *text)
{
    if (!text)
        text = "";
    if (hulmar::detail::activeCapture) {
        hulmar::detail::activeCapture->append(
            {hulmar::testing::CapturedMessage::Warning, {}, text});
        return;
    }
    std::fprintf(stderr, "Warning: %s\n", text);
    std::fflush(stderr);
}

#include "msgmanager.h"

#include "hulmar_p.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

// The part of the suite's message table that the base library posts. Every entry takes one
// text argument, which is shown whole.
const char *const knownMessages[] = {
    "1009993", // profiler output
};

bool isKnown(const char *number)
{
    for (const char *known : knownMessages) {
        if (std::strcmp(known, number) == 0)
            return true;
    }
    return false;
}

void deliver(const char *number, const char *text)
{
    if (hulmar::detail::activeCapture) {
        hulmar::detail::activeCapture->append(
            {hulmar::testing::CapturedMessage::Numbered, number, text ? text : ""});
        return;
    }
    if (text)
        std::fprintf(stderr, "%s: %s\n", number, text);
    else
        std::fprintf(stderr, "%s: (unknown message)\n", number);
    std::fflush(stderr);
}

} // namespace

msgManager::msgManager() = default;

int msgManager::postMsg(const char *msgNumber, ...)
{
    if (!msgNumber)
        return -1;
    if (!isKnown(msgNumber)) {
        deliver(msgNumber, nullptr);
        return -1;
    }
    va_list args;
    va_start(args, msgNumber);
    // The analyzer loses track of va_start through GCC's builtin va_list.
    const char *text = va_arg(args, const char *); // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(args);
    deliver(msgNumber, text ? text : "(null)");
    return 0;
}

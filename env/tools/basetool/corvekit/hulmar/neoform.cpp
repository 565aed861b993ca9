#include "neoform.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

char *neoform(const char *format, ...)
{
    // One buffer per thread keeps the "valid until the next call" promise without a lock.
    thread_local std::vector<char> buffer(256);
    if (!format) {
        buffer[0] = '\0';
        return buffer.data();
    }

    va_list args;
    va_start(args, format);
    va_list retry;
    va_copy(retry, args);
    // The analyzer loses track of va_start through GCC's builtin va_list.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int needed = std::vsnprintf(buffer.data(), buffer.size(), format, args);
    va_end(args);
    if (needed < 0) {
        buffer[0] = '\0';
    } else if (static_cast<std::size_t>(needed) >= buffer.size()) {
        buffer.resize(static_cast<std::size_t>(needed) + 1);
        std::vsnprintf(buffer.data(), buffer.size(), format, retry);
    }
    va_end(retry);
    return buffer.data();
}

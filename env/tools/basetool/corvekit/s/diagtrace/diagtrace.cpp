#include "diagtrace.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// Opened by the first line that goes to a file and kept for the life of the process; the
// process end closes it. Every line is flushed, so nothing is lost on a crash.
FILE *traceFile = nullptr;

FILE *traceStream(const char *setting)
{
    if (setting[0] == '\0' || setting[0] == ' ')
        return stdout;
    if (!traceFile)
        traceFile = std::fopen(setting, "w");
    return traceFile;
}

} // namespace

void diagTrace(const char *message, const char *tag)
{
    const char *setting = std::getenv("TIVORANDEBUG");
    if (!setting)
        return;
    FILE *stream = traceStream(setting);
    if (!stream)
        return;

    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[64] = {};
    asctime_r(&local, stamp); // "Tue Nov 17 10:23:29 2026\n"
    for (char *c = stamp; *c; ++c) {
        if (*c == '\n') {
            *c = '\0';
            break;
        }
    }

    if (tag)
        std::fprintf(stream, "%s ", tag);
    std::fprintf(stream, "At %s: %s\n", stamp, message ? message : "(null)");
    std::fflush(stream);
}

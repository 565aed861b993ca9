#include "dataoutput_p.h"

#include <unistd.h>

FILE *moveStandardOutputAside()
{
    std::fflush(stdout);
    const int copy = ::dup(STDOUT_FILENO);
    if (copy < 0)
        return nullptr;
    FILE *stream = ::fdopen(copy, "w");
    if (!stream) {
        ::close(copy);
        return nullptr;
    }
    if (::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        std::fclose(stream);
        return nullptr;
    }
    return stream;
}

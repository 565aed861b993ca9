#include "dataoutput_p.h"

#include <io.h>

FILE *moveStandardOutputAside()
{
    std::fflush(stdout);
    const int output = _fileno(stdout);
    const int copy = _dup(output);
    if (copy < 0)
        return nullptr;
    FILE *stream = _fdopen(copy, "w");
    if (!stream) {
        _close(copy);
        return nullptr;
    }
    if (_dup2(_fileno(stderr), output) != 0) {
        std::fclose(stream);
        return nullptr;
    }
    return stream;
}

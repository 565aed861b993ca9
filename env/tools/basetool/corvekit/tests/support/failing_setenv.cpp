// Preloaded into a test child: setenv fails, as on an exhausted system, for the variable that
// CORVEKIT_FAIL_SETENV names; all other calls go to the C library.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

extern "C" int setenv(const char *name, const char *value, int overwrite)
{
    const char *failing = std::getenv("CORVEKIT_FAIL_SETENV");
    if (failing && name && std::strcmp(name, failing) == 0) {
        errno = ENOMEM;
        return -1;
    }
    using Setenv = int (*)(const char *, const char *, int);
    static const auto next = reinterpret_cast<Setenv>(dlsym(RTLD_NEXT, "setenv"));
    return next(name, value, overwrite);
}

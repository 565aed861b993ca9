// Preloaded into a test child: a call fails, as on an exhausted system, where a variable names
// it: setenv of the variable that CORVEKIT_FAIL_SETENV names, and rename onto a path that ends
// with CORVEKIT_FAIL_RENAME (the last step of every safe save). All other calls go to the C
// library.
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

extern "C" int rename(const char *from, const char *to)
{
    const char *failing = std::getenv("CORVEKIT_FAIL_RENAME");
    const std::size_t length = failing ? std::strlen(failing) : 0;
    const std::size_t toLength = to ? std::strlen(to) : 0;
    if (length > 0 && toLength >= length && std::strcmp(to + toLength - length, failing) == 0) {
        errno = ENOSPC;
        return -1;
    }
    using Rename = int (*)(const char *, const char *);
    static const auto next = reinterpret_cast<Rename>(dlsym(RTLD_NEXT, "rename"));
    return next(from, to);
}

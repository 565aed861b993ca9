// Preloaded into a test child: setenv fails, as on an exhausted system, for every variable named
// in CORVEKIT_FAIL_SETENV (separated by commas); all other calls go to the C library.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

bool mustFail(const char *name)
{
    const char *list = std::getenv("CORVEKIT_FAIL_SETENV");
    if (!list || !name)
        return false;
    const std::size_t length = std::strlen(name);
    for (const char *entry = list; *entry;) {
        const char *end = std::strchr(entry, ',');
        const std::size_t entryLength =
            end ? static_cast<std::size_t>(end - entry) : std::strlen(entry);
        if (entryLength == length && std::strncmp(entry, name, length) == 0)
            return true;
        if (!end)
            break;
        entry = end + 1;
    }
    return false;
}

} // namespace

extern "C" int setenv(const char *name, const char *value, int overwrite)
{
    if (mustFail(name)) {
        errno = ENOMEM;
        return -1;
    }
    using Setenv = int (*)(const char *, const char *, int);
    static const auto next = reinterpret_cast<Setenv>(dlsym(RTLD_NEXT, "setenv"));
    return next(name, value, overwrite);
}

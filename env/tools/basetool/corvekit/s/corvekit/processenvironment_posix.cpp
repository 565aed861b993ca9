#include "processenvironment_p.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace corvekit::detail {

int putEnvironment(const char *assignment)
{
    if (!assignment)
        return -1;
    const char *equals = std::strchr(assignment, '=');
    if (!equals || equals == assignment)
        return -1;

    // setenv copies both texts, unlike putenv, which would keep the caller's buffer.
    const std::string name(assignment, equals);
    const char *value = equals + 1;
    if (*value == '\0')
        return unsetenv(name.c_str()) == 0 ? 0 : -1;
    return setenv(name.c_str(), value, 1) == 0 ? 0 : -1;
}

} // namespace corvekit::detail

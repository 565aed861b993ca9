#include "processenvironment_p.h"

#include <cstdlib>
#include <cstring>

namespace corvekit::detail {

int putEnvironment(const char *assignment)
{
    if (!assignment || !std::strchr(assignment, '='))
        return -1;
    return _putenv(assignment) == 0 ? 0 : -1;
}

} // namespace corvekit::detail

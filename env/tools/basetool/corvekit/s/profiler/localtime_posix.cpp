#include "localtime_p.h"

namespace tivoran::corvekit {

void localTime(std::time_t time, std::tm &result)
{
    localtime_r(&time, &result);
}

} // namespace tivoran::corvekit

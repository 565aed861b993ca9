#include "localtime_p.h"

namespace tivoran::corvekit {

void localTime(std::time_t time, std::tm &result)
{
    localtime_s(&result, &time);
}

} // namespace tivoran::corvekit

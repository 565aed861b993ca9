#include "timelineplatform_p.h"

#include <windows.h>

namespace tivoran::corvekit {

std::uint64_t currentProcessId()
{
    return GetCurrentProcessId();
}

std::uint64_t currentThreadId()
{
    return GetCurrentThreadId();
}

void callInForkedChild(void (* /*handler*/)()) {}

} // namespace tivoran::corvekit

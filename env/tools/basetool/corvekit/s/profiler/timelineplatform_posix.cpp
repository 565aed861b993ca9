#include "timelineplatform_p.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tivoran::corvekit {

std::uint64_t currentProcessId()
{
    return static_cast<std::uint64_t>(getpid());
}

std::uint64_t currentThreadId()
{
    // The kernel's thread id, as top and ps show it; asked once per thread.
    thread_local const auto id = static_cast<std::uint64_t>(syscall(SYS_gettid));
    return id;
}

void callInForkedChild(void (*handler)())
{
    pthread_atfork(nullptr, nullptr, handler);
}

} // namespace tivoran::corvekit

#include "ut_mem_usage.h"

#include "hulmar_p.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace {

// /proc/self/statm is opened once and read with pread, which costs one system call a reading.
// A forked child must not keep its parent's descriptor: /proc/self was resolved at open time
// and would go on reporting the parent.
std::atomic<int> statmDescriptor{-1};
pthread_once_t forkHandlerOnce = PTHREAD_ONCE_INIT;

// The highest peak figure given so far. The kernel's VmHWM comes from counters that are summed
// lazily and can read a few pages lower after memory is released, so a later report could
// otherwise show a lower peak than an earlier one.
std::atomic<std::uint64_t> highestPeak{0};

void forgetDescriptorInChild()
{
    const int old = statmDescriptor.exchange(-1);
    if (old >= 0)
        close(old);
    highestPeak.store(0);
}

void installForkHandler()
{
    pthread_atfork(nullptr, nullptr, forgetDescriptorInChild);
}

int statm()
{
    int fd = statmDescriptor.load(std::memory_order_acquire);
    if (fd >= 0)
        return fd;
    pthread_once(&forkHandlerOnce, installForkHandler);
    fd = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    int expected = -1;
    if (!statmDescriptor.compare_exchange_strong(expected, fd)) {
        close(fd); // another thread was first
        return expected;
    }
    return fd;
}

long pageSize()
{
    static const long size = sysconf(_SC_PAGESIZE);
    return size;
}

} // namespace

std::uint64_t UT_MEM_USAGE::getCurrentMemoryUsage()
{
    if (auto *fake = hulmar::detail::activeProbes) {
        ++fake->readings;
        return fake->currentMemory;
    }
    const int fd = statm();
    if (fd < 0)
        return 0;
    char text[128];
    const ssize_t length = pread(fd, text, sizeof text - 1, 0);
    if (length <= 0)
        return 0;
    text[length] = '\0';
    // "size resident shared text lib data dt", in pages.
    char *cursor = text;
    std::strtoull(cursor, &cursor, 10);
    const unsigned long long residentPages = std::strtoull(cursor, nullptr, 10);
    return static_cast<std::uint64_t>(residentPages) * static_cast<std::uint64_t>(pageSize());
}

std::uint64_t UT_MEM_USAGE::getPeakMemoryUsage()
{
    if (auto *fake = hulmar::detail::activeProbes) {
        ++fake->readings;
        return fake->peakMemory;
    }
    // VmHWM is the resident high-water mark the kernel keeps for us.
    FILE *status = std::fopen("/proc/self/status", "re");
    if (!status)
        return 0;
    std::uint64_t peakKiB = 0;
    char line[256];
    while (std::fgets(line, sizeof line, status)) {
        if (std::strncmp(line, "VmHWM:", 6) == 0) {
            peakKiB = std::strtoull(line + 6, nullptr, 10);
            break;
        }
    }
    std::fclose(status);

    // Never below the figure in use now, nor below an earlier answer of this process.
    pthread_once(&forkHandlerOnce, installForkHandler);
    std::uint64_t peak = peakKiB * 1024U;
    const std::uint64_t current = getCurrentMemoryUsage();
    if (peak < current)
        peak = current;
    std::uint64_t highest = highestPeak.load();
    while (highest < peak && !highestPeak.compare_exchange_weak(highest, peak)) {
    }
    return highest > peak ? highest : peak;
}

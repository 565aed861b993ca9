#include "ut_timer.h"

#include "hulmar_p.h"

#include <ctime>

namespace {

double readClock(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// CLOCK_PROCESS_CPUTIME_ID counts every thread of the process, so work handed to helper
// threads shows up in the task that started it.
double cpuNow()
{
    if (auto *fake = hulmar::detail::activeProbes) {
        ++fake->readings;
        return fake->cpuSeconds;
    }
    return readClock(CLOCK_PROCESS_CPUTIME_ID);
}

double realNow()
{
    if (auto *fake = hulmar::detail::activeProbes) {
        ++fake->readings;
        return fake->realSeconds;
    }
    return readClock(CLOCK_MONOTONIC);
}

} // namespace

UT_TIMER::UT_TIMER()
    : m_cpuStart(cpuNow())
    , m_realStart(realNow())
{}

void UT_TIMER::reset()
{
    m_cpuStart = cpuNow();
    m_realStart = realNow();
}

double UT_TIMER::get_delta_cpu() const
{
    return cpuNow() - m_cpuStart;
}

double UT_TIMER::get_delta_real() const
{
    return realNow() - m_realStart;
}

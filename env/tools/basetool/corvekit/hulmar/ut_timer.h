#ifndef HULMAR_UT_TIMER_H
#define HULMAR_UT_TIMER_H

#include "hulmar_export.h"

// Measures one interval in process CPU time (all threads, as `time` counts it) and in monotonic
// real time. A new timer starts its interval at construction; reading a delta does not restart it.
class HULMAR_EXPORT UT_TIMER
{
public:
    UT_TIMER();
    ~UT_TIMER() = default;
    UT_TIMER(const UT_TIMER &) = default;
    UT_TIMER &operator=(const UT_TIMER &) = default;

    void reset();                  // begins a new interval now
    double get_delta_cpu() const;  // CPU seconds since the last reset
    double get_delta_real() const; // real seconds since the last reset

private:
    double m_cpuStart;
    double m_realStart;
};

#endif

#ifndef HULMAR_UT_MEM_USAGE_H
#define HULMAR_UT_MEM_USAGE_H

#include "hulmar_export.h"

#include <cstdint>

// Memory figures of the running process, in bytes. Both give 0 where the figure cannot be read.
class HULMAR_EXPORT UT_MEM_USAGE
{
public:
    static std::uint64_t getCurrentMemoryUsage(); // resident set size now
    // Highest resident set size so far; never lower than an earlier answer or the current size.
    static std::uint64_t getPeakMemoryUsage();
};

#endif

#ifndef CORVEKIT_BASEPUBLIC_P_H
#define CORVEKIT_BASEPUBLIC_P_H

// Byte-level helpers shared by the name and pin comparators. Everything here is inline: the
// comparators sit in the inner loop of sorts over hundreds of thousands of names. The scans over
// whole names are in bytescan_p.h, which the build picks for the processor.

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace basepublic_p {

inline bool isDigit(unsigned char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

inline bool isDigit(char c)
{
    return isDigit(static_cast<unsigned char>(c));
}

// x - y as two's complement int arithmetic gives it, without the undefined overflow.
inline int wrappingDifference(int x, int y)
{
    return static_cast<int>(static_cast<unsigned>(x) - static_cast<unsigned>(y));
}

/*!
 * atoi of the digit run that starts at \a run. Nine digits cannot overflow an int, so shorter
 * runs are read here; longer ones go to the platform's atoi, whose answer for values beyond an
 * int is its own and must be kept exactly.
 */
inline int runValue(const char *run)
{
    unsigned value = 0;
    for (int k = 0; k < 9; ++k) {
        const unsigned digit = static_cast<unsigned char>(run[k]) - unsigned('0');
        if (digit > 9)
            return static_cast<int>(value);
        value = value * 10 + digit;
    }
    if (!isDigit(run[9]))
        return static_cast<int>(value);
    return std::atoi(run);
}

// Flags of short names (bit k for byte k).

// The number of flags from bit \a at on without a gap: the digits of a run that starts there.
inline unsigned runLength(unsigned digits, unsigned at)
{
    return static_cast<unsigned>(__builtin_ctz(~(digits >> at)));
}

// Where the run of \a digits that reaches up to bit \a at (not included) starts; \a at if none.
inline unsigned runStart(unsigned digits, unsigned at)
{
    const unsigned others = ~digits & ((1u << at) - 1);
    return others ? 32 - static_cast<unsigned>(__builtin_clz(others)) : 0;
}

// The index of the lowest flag of \a flags; 32 for none.
inline unsigned lowest(unsigned flags)
{
    return flags ? static_cast<unsigned>(__builtin_ctz(flags)) : 32;
}

// -1 or 1 from two bytes known to differ, compared unsigned.
inline int byteOrder(char x, char y)
{
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
}

} // namespace basepublic_p

#endif

#ifndef CORVEKIT_BASEPUBLIC_P_H
#define CORVEKIT_BASEPUBLIC_P_H

// Byte-level helpers shared by the name and pin comparators. Everything here is inline: the
// comparators sit in the inner loop of sorts over hundreds of thousands of names.

#include <cstddef>
#include <cstdint>
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

// x - y as two's complement int arithmetic gives it, without the undefined overflow.
inline int wrappingDifference(int x, int y)
{
    return static_cast<int>(static_cast<unsigned>(x) - static_cast<unsigned>(y));
}

inline unsigned lowestSetBit(std::uint64_t word)
{
#if defined(__GNUC__) || defined(__clang__)
    return static_cast<unsigned>(__builtin_ctzll(word));
#else
    unsigned bit = 0;
    while (!(word & 1)) {
        word >>= 1;
        ++bit;
    }
    return bit;
#endif
}

/*!
 * The first index below \a n at which \a a and \a b differ, or \a n. Both must hold at least
 * \a n readable bytes. Eight bytes at a time where the byte order lets the lowest differing bit
 * name the first differing byte.
 */
inline std::size_t mismatch(const char *a, const char *b, std::size_t n)
{
    std::size_t i = 0;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    for (; i + 8 <= n; i += 8) {
        std::uint64_t x;
        std::uint64_t y;
        std::memcpy(&x, a + i, 8);
        std::memcpy(&y, b + i, 8);
        if (const std::uint64_t difference = x ^ y)
            return i + lowestSetBit(difference) / 8;
    }
#endif
    for (; i < n; ++i) {
        if (a[i] != b[i])
            return i;
    }
    return n;
}

// -1 or 1 from two bytes known to differ, compared unsigned.
inline int byteOrder(char x, char y)
{
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
}

} // namespace basepublic_p

#endif

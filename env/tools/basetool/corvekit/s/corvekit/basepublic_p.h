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

#if defined(__GNUC__) || defined(__clang__)
#define CORVEKIT_WORD_SCAN 1
#define CORVEKIT_NO_SANITIZE_ADDRESS __attribute__((no_sanitize_address))

// Eight bytes from any address, as one load; AddressSanitizer leaves it alone (see scanPair).
CORVEKIT_NO_SANITIZE_ADDRESS inline std::uint64_t loadWord(const char *bytes)
{
    std::uint64_t word;
    __builtin_memcpy(&word, bytes, sizeof word);
    return word;
}
#else
#define CORVEKIT_WORD_SCAN 0
#define CORVEKIT_NO_SANITIZE_ADDRESS
#endif

// Word flags: the high bit of each byte that is zero, or a digit. Each is exact for the lowest
// flagged byte of a word; false flags can only lie above a true one, which is all a scan needs.
constexpr std::uint64_t wordOnes = 0x0101010101010101ull;
constexpr std::uint64_t wordHighs = 0x8080808080808080ull;

inline std::uint64_t zeroBytes(std::uint64_t word)
{
    return (word - wordOnes) & ~word & wordHighs;
}

inline std::uint64_t digitBytes(std::uint64_t word)
{
    const std::uint64_t offset = word ^ (wordOnes * '0'); // digits become 0 to 9
    return (offset - wordOnes * 10) & ~offset & wordHighs;
}

#if CORVEKIT_WORD_SCAN && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define CORVEKIT_WORD_SCAN_LE 1
#else
#define CORVEKIT_WORD_SCAN_LE 0
#endif

/*!
 * Word scans over zero-terminated names, as strcmp and strlen do them: eight bytes at a time,
 * stopping at the first byte that \a wordStop flags (or \a byteStop accepts, near the end of a
 * page). A load may reach past the zero byte of a name, but never into the next page, so it
 * cannot fault, and the bytes past the end never decide: every scan stops at the zero byte.
 * AddressSanitizer is told not to check these loads; Valgrind's memcheck may report them as
 * reads past a block.
 */
template<typename WordStop, typename ByteStop>
CORVEKIT_NO_SANITIZE_ADDRESS inline std::size_t scanPair(const char *a, const char *b,
                                                         WordStop wordStop, ByteStop byteStop)
{
    std::size_t i = 0;
#if CORVEKIT_WORD_SCAN_LE
    constexpr std::uintptr_t page = 4096;
    for (;;) {
        const std::uintptr_t roomA = page - (reinterpret_cast<std::uintptr_t>(a + i) & (page - 1));
        const std::uintptr_t roomB = page - (reinterpret_cast<std::uintptr_t>(b + i) & (page - 1));
        std::uintptr_t words = (roomA < roomB ? roomA : roomB) / 8;
        if (words == 0) {
            // Eight bytes would reach the next page: one byte only.
            if (byteStop(a[i], b[i]))
                return i;
            ++i;
            continue;
        }
        for (; words > 0; --words, i += 8) {
            const std::uint64_t x = loadWord(a + i);
            const std::uint64_t y = loadWord(b + i);
            if (const std::uint64_t stop = wordStop(x, y))
                return i + lowestSetBit(stop) / 8;
        }
    }
#else
    (void)wordStop;
    while (!byteStop(a[i], b[i]))
        ++i;
    return i;
#endif
}

// The first index at which \a a and \a b differ or both end.
inline std::size_t commonPrefix(const char *a, const char *b)
{
    return scanPair(
        a, b, [](std::uint64_t x, std::uint64_t y) { return (x ^ y) | zeroBytes(x); },
        [](char x, char y) { return x != y || x == 0; });
}

// The first index at which \a a and \a b differ, both end, or both hold a digit.
inline std::size_t commonLetters(const char *a, const char *b)
{
    return scanPair(
        a, b,
        [](std::uint64_t x, std::uint64_t y) { return (x ^ y) | zeroBytes(x) | digitBytes(x); },
        [](char x, char y) { return x != y || x == 0 || isDigit(x); });
}

// The number of bytes before the first digit of \a name, or its length if it has none.
inline std::size_t letterLength(const char *name)
{
    // The same name on both sides: the scan stops where the name does.
    return scanPair(
        name, name, [](std::uint64_t x, std::uint64_t) { return zeroBytes(x) | digitBytes(x); },
        [](char x, char) { return x == 0 || isDigit(x); });
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

// -1 or 1 from two bytes known to differ, compared unsigned.
inline int byteOrder(char x, char y)
{
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
}

} // namespace basepublic_p

#endif

#ifndef CORVEKIT_BASEPUBLIC_P_H
#define CORVEKIT_BASEPUBLIC_P_H

// Byte-level helpers shared by the name and pin comparators. Everything here is inline: the
// comparators sit in the inner loop of sorts over hundreds of thousands of names. Nothing here
// reads a byte past the zero byte of a name.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace basepublic_p {

inline bool isDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

// What a byte is to the comparators: the end of a name, a digit or any other byte. Looked up in a
// table, which takes one instruction in a loop over a name where the tests take three.
enum ByteClass : unsigned char
{
    End = 0,
    Digit = 1,
    Other = 2
};

struct ByteClasses
{
    ByteClass of[256];
};

constexpr ByteClasses makeByteClasses()
{
    ByteClasses classes{};
    for (int byte = 1; byte < 256; ++byte)
        classes.of[byte] = byte >= '0' && byte <= '9' ? Digit : Other;
    return classes;
}

inline constexpr ByteClasses byteClasses = makeByteClasses();

inline ByteClass classOf(char c)
{
    return byteClasses.of[std::size_t{static_cast<unsigned char>(c)}];
}

// Names are compared a word at a time only over bytes known to lie before both zero bytes. A word
// holds eight bytes with the first one lowest, whatever the machine's byte order; a flag is the
// high bit of a byte.
constexpr std::size_t wordSize = 8;
constexpr std::uint64_t everyByte = ~std::uint64_t(0) / 0xFF;
constexpr std::uint64_t highBits = everyByte * 0x80;

inline std::uint64_t loadWord(const char *bytes)
{
    // Written out byte by byte, which compilers read as one load (with a swap where needed).
    const auto byte = [bytes](int k) {
        return std::uint64_t(static_cast<unsigned char>(bytes[k])) << (8 * k);
    };
    return byte(0) | byte(1) | byte(2) | byte(3) | byte(4) | byte(5) | byte(6) | byte(7);
}

// Flags the bytes in which \a x and \a y differ, all of them exactly: no carry crosses a byte.
inline std::uint64_t differenceFlags(std::uint64_t x, std::uint64_t y)
{
    const std::uint64_t bits = x ^ y;
    return (((bits & ~highBits) + ~highBits) | bits) & highBits;
}

// The index of the byte of the lowest flag in \a flags, which are not all clear.
inline std::size_t firstFlagged(std::uint64_t flags)
{
    // The lowest flag alone is bit 8k + 7; the multiplication moves 7 - k of the bytes of the
    // constant out, leaving k in the top byte.
    const std::uint64_t lowest = flags & (~flags + 1);
    return static_cast<std::size_t>(((lowest >> 7) * 0x0001020304050607) >> 56);
}

/*!
 * The first index below \a count at which \a a and \a b differ, or \a count. Both hold at least
 * \a count bytes before their zero byte.
 */
inline std::size_t mismatch(const char *a, const char *b, std::size_t count)
{
    std::size_t i = 0;
    for (; i + wordSize <= count; i += wordSize) {
        const std::uint64_t differ = differenceFlags(loadWord(a + i), loadWord(b + i));
        if (differ != 0)
            return i + firstFlagged(differ);
    }
    while (i < count && a[i] == b[i])
        ++i;
    return i;
}

// x - y as two's complement int arithmetic gives it, without the undefined overflow.
inline int wrappingDifference(int x, int y)
{
    return static_cast<int>(static_cast<unsigned>(x) - static_cast<unsigned>(y));
}

// -1 or 1 from two bytes known to differ, compared unsigned.
inline int byteOrder(char x, char y)
{
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
}

/*!
 * atoi of a digit run. Nine digits cannot overflow an int, so shorter runs are
 * read here; longer ones go to the platform's atoi, whose answer beyond an int is its own.
 */
inline int longRunValue(const char *run)
{
    int value = 0;
    for (int k = 0; k < 9; ++k) {
        if (!isDigit(run[k]))
            return value;
        value = value * 10 + (run[k] - '0');
    }
    return isDigit(run[9]) ? std::atoi(run) : value;
}

/*!
 * atoi of the digit run at \a run, whose first byte is a digit. Pin numbers have one or two
 * digits in no order that a sort could predict, so their count is a select and not a branch.
 */
inline int numberAt(const char *run)
{
    const char second = run[1];
    const bool two = isDigit(second);
    if (two && isDigit(run[2]))
        return longRunValue(run);
    const int first = run[0] - '0';
    return two ? first * 10 + (second - '0') : first;
}

/*!
 * compareAlphaNum where a digit or the end of a name stands at \a first, where the names first
 * differ or both end. Apart from the comparator, so that its common path needs no registers
 * saved.
 */
int alphaNumFromRun(const char *a, const char *b, std::size_t first);

/*!
 * comparePinH where the walk stops at two different non-digits, at \a i, one of which may be the
 * end of its name. The letter parts' lengths decide, or the numbers' absence.
 */
int orderOfLetters(const char *a, const char *b, std::size_t i);

} // namespace basepublic_p

#endif

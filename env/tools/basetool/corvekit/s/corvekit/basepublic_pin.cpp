#include "basepublic.h"

#include "basepublic_p.h"
#include "bytescan_p.h"

#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::isDigit;
using basepublic_p::lowest;
using basepublic_p::runLength;
using basepublic_p::runValue;
using basepublic_p::wrappingDifference;
using bytescan::equalFlags;
using bytescan::firstWord;
using bytescan::letterLength;
using bytescan::mismatch;
using bytescan::readShort;
using bytescan::ShortName;
using bytescan::shortRunValue;

namespace {

/*!
 * comparePinH on names of any length. Out of line, so that the path of short names saves no
 * registers.
 */
[[gnu::noinline]] int pinHFromScan(const char *a, const char *b)
{
    // The walk passes equal non-digits and stops at the first digits, so it stops within the
    // shorter letter part, and where it stops at two different non-digits, the digits that follow
    // them are the first digits of the names. Both letter parts are measured first.
    const std::size_t letterA = letterLength(a);
    const std::size_t letterB = letterLength(b);
    const std::size_t i = mismatch(a, b, letterA < letterB ? letterA : letterB);
    const char x = a[i];
    const char y = b[i];
    const bool digitX = isDigit(x);
    const bool digitY = isDigit(y);
    if (digitX && digitY)
        return wrappingDifference(runValue(a + i), runValue(b + i));
    if (x == y)
        return 0; // both names end here
    if (digitX)
        return -1;
    if (digitY)
        return 1;

    // Two different non-digits, one of which may be the end of its name.
    const bool numberA = a[letterA] != 0;
    const bool numberB = b[letterB] != 0;
    if (!numberA && !numberB)
        return byteOrder(x, y); // the whole names first differ here
    if (!numberA)
        return 1;
    if (!numberB)
        return -1;
    if (letterA != letterB)
        return static_cast<int>(static_cast<std::ptrdiff_t>(letterA) -
                                static_cast<std::ptrdiff_t>(letterB));
    return std::strncmp(a + i, b + i, letterA - i);
}

// comparePinV on names of any length.
[[gnu::noinline]] int pinVFromScan(const char *a, const char *b)
{
    const std::size_t letterA = letterLength(a);
    const std::size_t letterB = letterLength(b);

    const int numberA = a[letterA] ? runValue(a + letterA) : 0;
    const int numberB = b[letterB] ? runValue(b + letterB) : 0;
    if (numberA != numberB)
        return numberA < numberB ? -1 : 1;
    if (letterA != letterB)
        return letterA < letterB ? -1 : 1;
    // Letter parts hold no zero byte, so memcmp has the sign of strncmp over them.
    const int order = std::memcmp(a, b, letterA);
    return (order > 0) - (order < 0);
}

/*!
 * The value of a pin number of one digit, or of two where \a twoDigits is set, at the start of
 * \a run (the first byte lowest). Pin numbers have one or two digits, in no order that a sort
 * could predict, so neither the digit count nor the value is a branch.
 */
inline int pinNumber(std::uint64_t run, unsigned twoDigits)
{
    const unsigned first = static_cast<unsigned>(run) & 0xF;
    const unsigned both = first * 10 + (static_cast<unsigned>(run >> 8) & 0xF);
    return static_cast<int>(twoDigits ? both : first);
}

/*!
 * comparePinV on two names that readShort takes. Out of line, and reading them again, so that
 * the path of pins below, which takes nearly every pair, keeps them in registers.
 */
[[gnu::noinline]] int pinVShort(const char *a, const char *b)
{
    ShortName x;
    ShortName y;
    if (!readShort(a, x) || !readShort(b, y))
        return pinVFromScan(a, b); // not taken: the caller has read both
    const unsigned letterA = static_cast<unsigned>(__builtin_ctz(x.digits | x.end));
    const unsigned letterB = static_cast<unsigned>(__builtin_ctz(y.digits | y.end));
    const unsigned countA = runLength(x.digits, letterA);
    const unsigned countB = runLength(y.digits, letterB);
    if (countA > 9 || countB > 9)
        return pinVFromScan(a, b); // atoi's own answer beyond an int
    const std::uint32_t numberA = countA ? shortRunValue(a, letterA, countA) : 0;
    const std::uint32_t numberB = countB ? shortRunValue(b, letterB, countB) : 0;
    if (numberA != numberB)
        return numberA < numberB ? -1 : 1;
    if (letterA != letterB)
        return letterA < letterB ? -1 : 1;
    const unsigned letters = (1u << letterA) - 1;
    const unsigned differ = ~equalFlags(x, y) & letters;
    if (!differ)
        return 0;
    const unsigned k = static_cast<unsigned>(__builtin_ctz(differ));
    return byteOrder(a[k], b[k]);
}

/*!
 * A short name as one key that orders pins as comparePinV does: its number first, then the
 * length of its letter part, then the bytes of that part. It holds where the letter part and the
 * number lie in the first seven bytes and the number has no leading zero. The number is its
 * digits read as one big-endian integer: without a leading zero, more digits make a greater
 * integer, and the same number of digits compares as text, so the integers order the numbers as
 * their values do. A name without a number has 0 there.
 */
struct PinVKey
{
    unsigned __int128 value;
    bool holds;
};

inline PinVKey pinVKey(const ShortName &name)
{
    const std::uint64_t word = firstWord(name);
    const unsigned letter = static_cast<unsigned>(__builtin_ctz(name.digits | name.end));
    const unsigned count = runLength(name.digits, letter);
    // Shift counts are kept in range for names whose key doesn't hold; that key is dropped.
    const std::uint64_t run = word >> ((8 * letter) & 63);
    const std::uint64_t number = (__builtin_bswap64(run) >> 1) >> ((63 - 8 * count) & 63);
    const std::uint64_t letters =
        __builtin_bswap64(word) & ~(~std::uint64_t(0) >> ((8 * letter) & 63));
    PinVKey key;
    key.value = (static_cast<unsigned __int128>(number) << 64) | (std::uint64_t(letter) << 56) |
                (letters >> 8);
    key.holds = letter + count <= 7 && (run & 0xFF) != '0';
    return key;
}

template<typename T>
inline int order(T x, T y)
{
    return (x > y) - (x < y);
}

} // namespace

int BasePublic::comparePinH(const char *a, const char *b)
{
    // Pin names are short: both in one block each, the walk is a matter of flags.
    ShortName x;
    ShortName y;
    if (!readShort(a, x) || !readShort(b, y))
        return pinHFromScan(a, b);
    const unsigned i = static_cast<unsigned>(__builtin_ctz(~equalFlags(x, y) | x.end | x.digits));
    const unsigned at = 1u << i;
    if (x.digits & y.digits & at) {
        // Both numbers start here. Pin numbers, of one or two digits in the first word, are read
        // from it; other numbers from the names.
        const unsigned runA = x.digits >> i;
        const unsigned runB = y.digits >> i;
        if (i <= 6 && ((runA | runB) & 4) == 0) {
            return pinNumber(firstWord(x) >> (8 * i), runA & 2) -
                   pinNumber(firstWord(y) >> (8 * i), runB & 2);
        }
        const unsigned countA = runLength(x.digits, i);
        const unsigned countB = runLength(y.digits, i);
        if (countA > 9 || countB > 9)
            return pinHFromScan(a, b); // atoi's own answer beyond an int
        return wrappingDifference(static_cast<int>(shortRunValue(a, i, countA)),
                                  static_cast<int>(shortRunValue(b, i, countB)));
    }
    if (x.end & y.end & at)
        return 0; // both names end here
    if (x.digits & at)
        return -1;
    if (y.digits & at)
        return 1;

    // Two different non-digits, one of which may be the end of its name. Flags lie before the
    // end, so a name that ends here has no digit left.
    const unsigned after = ~((at << 1) - 1);
    const unsigned digitA = lowest(x.digits & after);
    const unsigned digitB = lowest(y.digits & after);
    if (digitA == 32 && digitB == 32)
        return byteOrder(a[i], b[i]); // the whole names first differ here
    if (digitA != digitB)
        return digitA == 32 ? 1 : digitB == 32 ? -1 : static_cast<int>(digitA - digitB);
    // Letter parts of the same length: strncmp over them, whose value is the C library's own.
    return std::strncmp(a + i, b + i, digitA - i);
}

int BasePublic::comparePinV(const char *a, const char *b)
{
    // Pins are short: each name becomes one key, built with no branch on its bytes (a sort
    // cannot predict them), and the keys are compared once.
    ShortName x;
    ShortName y;
    if (!readShort(a, x) || !readShort(b, y))
        return pinVFromScan(a, b);
    const PinVKey keyA = pinVKey(x);
    const PinVKey keyB = pinVKey(y);
    if (!(keyA.holds && keyB.holds))
        return pinVShort(a, b);
    return order(keyA.value, keyB.value);
}

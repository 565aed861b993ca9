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
using bytescan::commonLetters;
using bytescan::equalFlags;
using bytescan::firstWord;
using bytescan::letterLength;
using bytescan::readShort;
using bytescan::ShortName;
using bytescan::shortRunValue;

namespace {

// The first digit at or after \a name, or null if the name has none left.
const char *nextDigit(const char *name)
{
    const char *digit = name + letterLength(name);
    return *digit ? digit : nullptr;
}

/*!
 * comparePinH on names of any length, a walk as defined. Out of line, so that the path of short
 * names saves no registers.
 */
[[gnu::noinline]] int pinHFromScan(const char *a, const char *b)
{
    // Equal non-digits go on; the walk stops at the first digit even where both names have it.
    const std::size_t i = commonLetters(a, b);
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
    const char *digitA = x ? nextDigit(a + i + 1) : nullptr;
    const char *digitB = y ? nextDigit(b + i + 1) : nullptr;
    if (!digitA && !digitB)
        return byteOrder(x, y); // the whole names first differ here
    if (!digitA)
        return 1;
    if (!digitB)
        return -1;
    const std::ptrdiff_t lengthA = digitA - (a + i);
    const std::ptrdiff_t lengthB = digitB - (b + i);
    if (lengthA != lengthB)
        return static_cast<int>(lengthA - lengthB);
    return std::strncmp(a + i, b + i, static_cast<std::size_t>(lengthA));
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
 * The order of the first numbers of two short names, which start at \a letterA and \a letterB
 * with \a countA and \a countB digits (0 for none, which counts as number 0). Numbers in the
 * first eight bytes without a leading zero compare as text, by their digit count and then by
 * their bytes; others are read.
 */
inline int compareShortNumbers(const char *a, const ShortName &x, unsigned letterA, unsigned countA,
                               const char *b, const ShortName &y, unsigned letterB, unsigned countB)
{
    const std::uint64_t wordA = firstWord(x);
    const std::uint64_t wordB = firstWord(y);
    if (letterA + countA <= 8 && letterB + countB <= 8) {
        // A run's bytes, first digit in the highest byte of the word: compared as numbers, the
        // words order runs of the same count as text.
        const auto runText = [](std::uint64_t word, unsigned letter, unsigned count) {
            return count ? __builtin_bswap64((word >> (8 * letter)) &
                                             (~std::uint64_t(0) >> (64 - 8 * count)))
                         : 0;
        };
        const std::uint64_t textA = runText(wordA, letterA, countA);
        const std::uint64_t textB = runText(wordB, letterB, countB);
        if ((textA >> 56) != '0' && (textB >> 56) != '0') {
            if (countA != countB)
                return countA < countB ? -1 : 1;
            return textA == textB ? 0 : textA < textB ? -1 : 1;
        }
    }
    const std::uint32_t numberA = countA ? shortRunValue(a, letterA, countA) : 0;
    const std::uint32_t numberB = countB ? shortRunValue(b, letterB, countB) : 0;
    return numberA == numberB ? 0 : numberA < numberB ? -1 : 1;
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
    ShortName x;
    ShortName y;
    if (!readShort(a, x) || !readShort(b, y))
        return pinVFromScan(a, b);
    const unsigned letterA = static_cast<unsigned>(__builtin_ctz(x.digits | x.end));
    const unsigned letterB = static_cast<unsigned>(__builtin_ctz(y.digits | y.end));
    const unsigned countA = runLength(x.digits, letterA);
    const unsigned countB = runLength(y.digits, letterB);
    if (countA > 9 || countB > 9)
        return pinVFromScan(a, b); // atoi's own answer beyond an int
    const int numbers = compareShortNumbers(a, x, letterA, countA, b, y, letterB, countB);
    if (numbers != 0)
        return numbers;
    if (letterA != letterB)
        return letterA < letterB ? -1 : 1;
    const unsigned stop = x.digits | x.end;
    const unsigned letters = (stop & (0u - stop)) - 1; // the flags below the lowest stop
    const unsigned differ = ~equalFlags(x, y) & letters;
    if (!differ)
        return 0;
    const unsigned k = static_cast<unsigned>(__builtin_ctz(differ));
    return byteOrder(a[k], b[k]);
}

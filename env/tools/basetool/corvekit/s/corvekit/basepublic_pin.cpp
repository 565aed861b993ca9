#include "basepublic.h"

#include "basepublic_p.h"

#include <cstddef>
#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::isDigit;
using basepublic_p::mismatch;
using basepublic_p::numberAt;
using basepublic_p::wrappingDifference;

namespace {

// Pin names are decided within their first bytes, which are read one at a time; the C library
// scans the names that go on past them for their first digit.
constexpr std::size_t shortStretch = 3;
constexpr const char *digits = "0123456789";

/*!
 * The length of the letter part of \a name: the index of its first digit, or of its zero byte if
 * it has none. Its first \a from bytes are known to be non-digits.
 */
inline std::size_t letterLength(const char *name, std::size_t from)
{
    for (const std::size_t stop = from + shortStretch; from < stop; ++from) {
        if (name[from] == 0 || isDigit(name[from]))
            return from;
    }
    return from + std::strcspn(name + from, digits);
}

/*!
 * comparePinH where the walk stops at two different non-digits, at \a i, one of which may be the
 * end of its name; \a lettersA and \a lettersB are the letter parts' lengths. These decide, or
 * the numbers' absence.
 */
inline int orderOfLetters(const char *a, const char *b, std::size_t i, std::size_t lettersA,
                          std::size_t lettersB)
{
    const bool hasA = a[lettersA] != 0;
    const bool hasB = b[lettersB] != 0;
    if (!hasA && !hasB)
        return byteOrder(a[i], b[i]); // the whole names first differ here
    if (!hasA || !hasB)
        return hasA ? -1 : 1;
    if (lettersA != lettersB)
        return static_cast<int>(static_cast<std::ptrdiff_t>(lettersA) -
                                static_cast<std::ptrdiff_t>(lettersB));
    // Letter parts of the same length: strncmp over them, whose value is the C library's own.
    return std::strncmp(a + i, b + i, lettersA - i);
}

} // namespace

int BasePublic::comparePinH(const char *a, const char *b)
{
    // The walk passes equal non-digits, so it stops within the shorter letter part or at its end.
    std::size_t i = 0;
    while (i < shortStretch && a[i] == b[i] && a[i] != 0 && !isDigit(a[i]))
        ++i;
    if (i == shortStretch) {
        // A long stretch, such as the path of two nets in one block.
        const std::size_t lettersA = i + std::strcspn(a + i, digits);
        const std::size_t lettersB = i + std::strcspn(b + i, digits);
        i += mismatch(a + i, b + i, (lettersA < lettersB ? lettersA : lettersB) - i);
        if (a[i] != b[i] && !isDigit(a[i]) && !isDigit(b[i]))
            return orderOfLetters(a, b, i, lettersA, lettersB);
    }
    const bool digitA = isDigit(a[i]);
    const bool digitB = isDigit(b[i]);
    if (digitA && digitB)
        return wrappingDifference(numberAt(a + i), numberAt(b + i));
    if (a[i] == b[i])
        return 0; // both names end here
    if (digitA || digitB)
        return digitA ? -1 : 1;
    return orderOfLetters(a, b, i, letterLength(a, i), letterLength(b, i));
}

int BasePublic::comparePinV(const char *a, const char *b)
{
    const std::size_t lettersA = letterLength(a, 0);
    const std::size_t lettersB = letterLength(b, 0);
    const int numberA = a[lettersA] != 0 ? numberAt(a + lettersA) : 0;
    const int numberB = b[lettersB] != 0 ? numberAt(b + lettersB) : 0;
    if (numberA != numberB)
        return numberA < numberB ? -1 : 1;
    if (lettersA != lettersB)
        return lettersA < lettersB ? -1 : 1;
    // Letter parts hold no zero byte, so memcmp has the sign of strncmp over them.
    const int order = std::memcmp(a, b, lettersA);
    return (order > 0) - (order < 0);
}

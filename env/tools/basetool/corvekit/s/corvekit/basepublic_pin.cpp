#include "basepublic.h"

#include "basepublic_p.h"

#include <cstddef>
#include <cstring>

using basepublic_p::ByteClass;
using basepublic_p::byteClasses;
using basepublic_p::classOf;
using basepublic_p::Digit;
using basepublic_p::End;
using basepublic_p::numberAt;
using basepublic_p::Other;
using basepublic_p::wrappingDifference;

namespace {

// The C library scans letter parts that go on past a pin's first bytes for their first digit.
constexpr const char *digits = "0123456789";

inline std::size_t letterEnd(const char *name, std::size_t from)
{
    return from + std::strcspn(name + from, digits);
}

/*!
 * The length of the letter part of \a name: the index of its first digit, or of its zero byte if
 * it has none. Its first \a from bytes are known to be non-digits. Pin names are decided within
 * their first three bytes, which are read one at a time.
 */
inline std::size_t letterLength(const char *name, std::size_t from)
{
    switch (from) {
    case 0:
        if (classOf(name[0]) != Other)
            return 0;
        [[fallthrough]];
    case 1:
        if (classOf(name[1]) != Other)
            return 1;
        [[fallthrough]];
    case 2:
        if (classOf(name[2]) != Other)
            return 2;
        return letterEnd(name, 3);
    default:
        return letterEnd(name, from);
    }
}

/*!
 * The walk of comparePinH: the first index at which \a a and \a b differ or hold a digit or their
 * end. Four bytes a round, each read only after the one before it was found equal and a letter.
 */
std::size_t letterWalk(const char *a, const char *b)
{
    const char *p = a;
    const char *q = b;
    for (;; p += 4, q += 4) {
        if (p[0] != q[0] || classOf(p[0]) != Other)
            break;
        if (p[1] != q[1] || classOf(p[1]) != Other)
            return static_cast<std::size_t>(p - a) + 1;
        if (p[2] != q[2] || classOf(p[2]) != Other)
            return static_cast<std::size_t>(p - a) + 2;
        if (p[3] != q[3] || classOf(p[3]) != Other)
            return static_cast<std::size_t>(p - a) + 3;
    }
    return static_cast<std::size_t>(p - a);
}

} // namespace

int basepublic_p::orderOfLetters(const char *a, const char *b, std::size_t i)
{
    const std::size_t lettersA = letterLength(a, i);
    const std::size_t lettersB = letterLength(b, i);
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

int BasePublic::comparePinH(const char *a, const char *b)
{
    // The walk passes equal non-digits, so it stops within the shorter letter part or at its end.
    const std::size_t i = letterWalk(a, b);
    const ByteClass x = classOf(a[i]);
    // Read as an unsigned byte, which keeps the walk comparing the second name's bytes in memory.
    const ByteClass y = byteClasses.of[reinterpret_cast<const unsigned char *>(b)[i]];
    if ((x | y) == End)
        return 0; // both names end here
    if (((x | y) & Digit) == 0)
        return basepublic_p::orderOfLetters(a, b, i);
    if ((x & y) == Digit)
        return wrappingDifference(numberAt(a + i), numberAt(b + i));
    return x == Digit ? -1 : 1;
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

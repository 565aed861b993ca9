#include "basepublic.h"

#include "basepublic_p.h"

#include <cstddef>
#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::isDigit;
using basepublic_p::numberAt;
using basepublic_p::wrappingDifference;

namespace {

// The index of the first digit of \a name from \a from on, or of its zero byte if it has none.
std::size_t nextDigit(const char *name, std::size_t from)
{
    while (name[from] != 0 && !isDigit(name[from]))
        ++from;
    return from;
}

} // namespace

int BasePublic::comparePinH(const char *a, const char *b)
{
    std::size_t i = 0;
    while (a[i] == b[i] && a[i] != 0 && !isDigit(a[i]))
        ++i;
    const bool digitA = isDigit(a[i]);
    const bool digitB = isDigit(b[i]);
    if (digitA && digitB)
        return wrappingDifference(numberAt(a + i), numberAt(b + i));
    if (a[i] == b[i])
        return 0; // both names end here
    if (digitA || digitB)
        return digitA ? -1 : 1;

    // Two different non-digits, one of which may be the end of its name: the letter parts
    // decide, or the numbers' absence.
    const std::size_t numberA = nextDigit(a, i);
    const std::size_t numberB = nextDigit(b, i);
    const bool hasA = a[numberA] != 0;
    const bool hasB = b[numberB] != 0;
    if (!hasA && !hasB)
        return byteOrder(a[i], b[i]); // the whole names first differ here
    if (!hasA || !hasB)
        return hasA ? -1 : 1;
    if (numberA != numberB)
        return static_cast<int>(static_cast<std::ptrdiff_t>(numberA) -
                                static_cast<std::ptrdiff_t>(numberB));
    // Letter parts of the same length: strncmp over them, whose value is the C library's own.
    return std::strncmp(a + i, b + i, numberA - i);
}

int BasePublic::comparePinV(const char *a, const char *b)
{
    const std::size_t lettersA = nextDigit(a, 0);
    const std::size_t lettersB = nextDigit(b, 0);
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

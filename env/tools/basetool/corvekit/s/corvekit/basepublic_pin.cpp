#include "basepublic.h"

#include "basepublic_p.h"

#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::commonLetters;
using basepublic_p::isDigit;
using basepublic_p::letterLength;
using basepublic_p::runValue;
using basepublic_p::wrappingDifference;

namespace {

// The first digit at or after \a name, or null if the name has none left.
const char *nextDigit(const char *name)
{
    const char *digit = name + letterLength(name);
    return *digit ? digit : nullptr;
}

} // namespace

int BasePublic::comparePinH(const char *a, const char *b)
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

int BasePublic::comparePinV(const char *a, const char *b)
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

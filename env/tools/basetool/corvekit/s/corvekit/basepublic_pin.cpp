#include "basepublic.h"

#include "basepublic_p.h"

#include <cstddef>
#include <cstdint>
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

/*!
 * A pin name read for comparePinV: its number, the length of its letter part, and the first
 * seven bytes of that part as one integer, the first byte the most significant. Between letter
 * parts of the same length, the integers compare as the bytes do.
 */
struct PinVKey
{
    int number;
    std::size_t letters;
    std::uint64_t head;
};

constexpr std::size_t headBytes = 7;

/*!
 * Reads the key of \a name. Pins are short and a sort cannot predict their bytes, so the head is
 * read with no branch on them: the index stops at the first digit or the zero byte, and what
 * lies behind it is read again and dropped.
 */
PinVKey pinVKey(const char *name)
{
    PinVKey key{0, 0, 0};
    bool inLetters = true;
    for (std::size_t k = 0; k < headBytes; ++k) {
        const char c = name[key.letters];
        inLetters = inLetters & (c != 0) & !isDigit(c);
        key.head = inLetters ? key.head << 8 | static_cast<unsigned char>(c) : key.head;
        key.letters += inLetters;
    }
    if (inLetters)
        key.letters = nextDigit(name, headBytes);
    key.number = numberAt(name + key.letters);
    return key;
}

template<typename T>
int order(T x, T y)
{
    return (x > y) - (x < y);
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
    const PinVKey x = pinVKey(a);
    const PinVKey y = pinVKey(b);
    const int byNumber = order(x.number, y.number);
    const int byLetters = order(x.letters, y.letters);
    const int byHead = order(x.head, y.head);
    const int result = byNumber != 0 ? byNumber : (byLetters != 0 ? byLetters : byHead);
    if (result != 0 || x.letters <= headBytes)
        return result;
    // Letter parts longer than the head, equal in it: the rest of them. They hold no zero byte,
    // so memcmp has the sign of strncmp.
    return order(std::memcmp(a + headBytes, b + headBytes, x.letters - headBytes), 0);
}

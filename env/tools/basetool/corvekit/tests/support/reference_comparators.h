#ifndef CORVEKIT_TESTS_REFERENCE_COMPARATORS_H
#define CORVEKIT_TESTS_REFERENCE_COMPARATORS_H

// The name and pin comparators and the wildcard translation written step by step as their
// algorithms read, with no regard for speed. The library must give the same int on every input,
// not merely the same sign. Where the plain algorithm would overflow an int (the difference of
// two atoi values of runs that do not fit), the difference is taken modulo 2^32, as two's
// complement hardware gives it; comparePinV takes the sign exactly.

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace reference {

inline bool isDigit(unsigned char c)
{
    return c >= '0' && c <= '9';
}

inline int wrappingDifference(int x, int y)
{
    return static_cast<int>(static_cast<unsigned>(x) - static_cast<unsigned>(y));
}

inline int sign(long long value)
{
    return (value > 0) - (value < 0);
}

inline int compareAlphaNum(const char *a, const char *b)
{
    const int lengthA = static_cast<int>(std::strlen(a));
    const int lengthB = static_cast<int>(std::strlen(b));
    for (int i = 0; i < lengthA && i < lengthB; ++i) {
        if (a[i] == b[i] && !isDigit(a[i]))
            continue;
        if (!isDigit(a[i]) || !isDigit(b[i]))
            return sign(std::strcmp(a, b)); // the first differing byte of the whole names
        if (std::atoi(a + i) != std::atoi(b + i))
            return wrappingDifference(std::atoi(a + i), std::atoi(b + i));
    }
    return lengthA - lengthB;
}

constexpr int bufferSize = 2048;

// Encodes into a 2048-byte buffer without ever writing past it; returns the whole encoded length
// (not counting the closing zero), which may be larger than what was written.
inline int encodeName(const char *name, unsigned char *buffer)
{
    int length = 0;
    const auto put = [&](unsigned byte) {
        if (length < bufferSize - 1)
            buffer[length] = static_cast<unsigned char>(byte);
        ++length;
    };
    for (const char *p = name; *p;) {
        if (!isDigit(*p)) {
            put(static_cast<unsigned char>(*p++));
            continue;
        }
        unsigned count = 0;
        std::uint32_t value = 0;
        for (; isDigit(*p); ++p, ++count)
            value = value * 10u + static_cast<std::uint32_t>(*p - '0');
        put(count % 256);
        for (int shift = 24; shift >= 0; shift -= 8)
            put(value >> shift);
    }
    buffer[length < bufferSize - 1 ? length : bufferSize - 1] = 0;
    return length;
}

inline int compareNameNum(const char *a, const char *b)
{
    if (!a || !*a)
        return -1;
    if (!b || !*b)
        return 1;
    unsigned char bufferA[bufferSize];
    unsigned char bufferB[bufferSize];
    const int lengthA = encodeName(a, bufferA);
    const int lengthB = encodeName(b, bufferB);
    if (lengthA + 1 >= bufferSize || lengthB + 1 >= bufferSize)
        return 0;
    for (int i = 0; i < (lengthA < lengthB ? lengthA : lengthB) + 1; ++i) {
        if (bufferA[i] != bufferB[i])
            return bufferA[i] > bufferB[i] ? 1 : -1;
    }
    return lengthB > lengthA ? 1 : (lengthA > lengthB ? -1 : 0);
}

// The index of the first digit of \a name from \a from on, or -1.
inline int digitFrom(const char *name, int from)
{
    for (int j = from; name[j] != 0; ++j) {
        if (isDigit(name[j]))
            return j;
    }
    return -1;
}

inline int comparePinH(const char *a, const char *b)
{
    for (int i = 0;; ++i) {
        const unsigned char x = a[i];
        const unsigned char y = b[i];
        if (x == 0 && y == 0)
            return 0;
        if (x == y && !isDigit(x))
            continue;
        if (isDigit(x) && isDigit(y))
            return wrappingDifference(std::atoi(a + i), std::atoi(b + i));
        if (isDigit(x) || isDigit(y))
            return isDigit(x) ? -1 : 1;
        // Two different non-digits, one of which may be the end of its name.
        const int digitA = digitFrom(a, i);
        const int digitB = digitFrom(b, i);
        if (digitA < 0 && digitB < 0)
            return sign(std::strcmp(a, b)); // the first differing byte of the whole names
        if (digitA < 0 || digitB < 0)
            return digitA < 0 ? 1 : -1;
        if (digitA != digitB)
            return digitA - digitB;
        return std::strncmp(a + i, b + i, static_cast<std::size_t>(digitA - i));
    }
}

inline int comparePinV(const char *a, const char *b)
{
    const int digitA = digitFrom(a, 0);
    const int digitB = digitFrom(b, 0);
    const int letterA = digitA < 0 ? static_cast<int>(std::strlen(a)) : digitA;
    const int letterB = digitB < 0 ? static_cast<int>(std::strlen(b)) : digitB;
    const long long numberA = digitA < 0 ? 0 : std::atoi(a + digitA);
    const long long numberB = digitB < 0 ? 0 : std::atoi(b + digitB);
    long long taken = letterA - letterB;
    if (numberA != numberB)
        taken = numberA - numberB;
    else if (letterA == letterB)
        taken = std::strncmp(a, b, static_cast<std::size_t>(letterA));
    return sign(taken);
}

inline QString wildcardToRegularExpression(const QString &pattern)
{
    QString result;
    for (const QChar unit : pattern) {
        if (unit == QLatin1Char('*'))
            result.append(QStringLiteral(".*"));
        else if (unit == QLatin1Char('?'))
            result.append(QLatin1Char('.'));
        else if (QStringLiteral("$()+.[\\]^{|}").contains(unit))
            result.append(QLatin1Char('\\')).append(unit);
        else
            result.append(unit);
    }
    return result;
}

} // namespace reference

#endif

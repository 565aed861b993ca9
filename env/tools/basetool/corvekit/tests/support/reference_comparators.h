#ifndef CORVEKIT_TESTS_REFERENCE_COMPARATORS_H
#define CORVEKIT_TESTS_REFERENCE_COMPARATORS_H

// Straightforward versions of the name and pin comparators and of the wildcard translation,
// written step by step as the algorithms read, with no regard for speed. The library's versions
// are checked against these on random, adversarial and fuzzed input: every result must be the
// same int, not merely the same sign.
//
// Where the plain algorithm would overflow an int (the difference of two atoi values of runs
// that do not fit), the difference is taken modulo 2^32, as two's complement hardware gives it;
// comparePinV only needs the sign, and takes it exactly.

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

// The whole names byte by byte from their beginning: -1 or 1 at the first difference.
inline int wholeNameOrder(const char *a, const char *b)
{
    for (int i = 0;; ++i) {
        const unsigned char x = a[i];
        const unsigned char y = b[i];
        if (x != y)
            return x < y ? -1 : 1;
        if (x == 0)
            return 0;
    }
}

inline int compareAlphaNum(const char *a, const char *b)
{
    const int lengthA = static_cast<int>(std::strlen(a));
    const int lengthB = static_cast<int>(std::strlen(b));
    for (int i = 0; i < lengthA && i < lengthB; ++i) {
        const unsigned char x = a[i];
        const unsigned char y = b[i];
        if (x == y && !isDigit(x))
            continue;
        if (isDigit(x) && isDigit(y)) {
            const int valueA = std::atoi(a + i);
            const int valueB = std::atoi(b + i);
            if (valueA != valueB)
                return wrappingDifference(valueA, valueB);
            continue;
        }
        return wholeNameOrder(a, b);
    }
    return lengthA - lengthB;
}

constexpr int bufferSize = 2048;

// Encodes into a 2048-byte buffer without ever writing past it; returns the full encoded length
// (not counting the closing zero), which may be larger than what was written.
inline int encodeName(const char *name, unsigned char *buffer)
{
    int length = 0;
    auto put = [&](unsigned char byte) {
        if (length < bufferSize - 1)
            buffer[length] = byte;
        ++length;
    };
    const unsigned char *p = reinterpret_cast<const unsigned char *>(name);
    while (*p) {
        if (isDigit(*p)) {
            unsigned count = 0;
            std::uint32_t value = 0;
            while (isDigit(*p)) {
                ++count;
                value = value * 10u + static_cast<std::uint32_t>(*p - '0');
                ++p;
            }
            put(static_cast<unsigned char>(count % 256));
            put(static_cast<unsigned char>(value >> 24));
            put(static_cast<unsigned char>(value >> 16));
            put(static_cast<unsigned char>(value >> 8));
            put(static_cast<unsigned char>(value));
        } else {
            put(*p);
            ++p;
        }
    }
    buffer[length < bufferSize - 1 ? length : bufferSize - 1] = 0;
    return length;
}

// Called with the refused name; the test of the trace line is separate.
inline int compareNameNum(const char *a, const char *b, const char **refused = nullptr)
{
    if (!a || !*a)
        return -1;
    if (!b || !*b)
        return 1;
    unsigned char bufferA[bufferSize];
    unsigned char bufferB[bufferSize];
    const int lengthA = encodeName(a, bufferA);
    if (lengthA + 1 >= bufferSize) {
        if (refused)
            *refused = a;
        return 0;
    }
    const int lengthB = encodeName(b, bufferB);
    if (lengthB + 1 >= bufferSize) {
        if (refused)
            *refused = b;
        return 0;
    }
    const int shorter = lengthA < lengthB ? lengthA : lengthB;
    for (int i = 0; i < shorter + 1; ++i) {
        if (bufferA[i] != bufferB[i])
            return bufferA[i] > bufferB[i] ? 1 : -1;
    }
    if (lengthB > lengthA)
        return 1;
    if (lengthA > lengthB)
        return -1;
    return 0;
}

inline int comparePinH(const char *a, const char *b)
{
    const int lengthA = static_cast<int>(std::strlen(a));
    const int lengthB = static_cast<int>(std::strlen(b));
    for (int i = 0;; ++i) {
        const unsigned char x = i < lengthA ? a[i] : 0;
        const unsigned char y = i < lengthB ? b[i] : 0;
        if (i >= lengthA && i >= lengthB)
            return 0;
        if (x == y && !isDigit(x))
            continue;
        if (isDigit(x) && isDigit(y))
            return wrappingDifference(std::atoi(a + i), std::atoi(b + i));
        if (isDigit(x))
            return -1;
        if (isDigit(y))
            return 1;
        int digitA = -1;
        for (int j = i; j < lengthA; ++j) {
            if (isDigit(a[j])) {
                digitA = j;
                break;
            }
        }
        int digitB = -1;
        for (int j = i; j < lengthB; ++j) {
            if (isDigit(b[j])) {
                digitB = j;
                break;
            }
        }
        if (digitA < 0 && digitB < 0)
            return wholeNameOrder(a, b);
        if (digitA < 0)
            return 1;
        if (digitB < 0)
            return -1;
        const int countA = digitA - i;
        const int countB = digitB - i;
        if (countA != countB)
            return countA - countB;
        return std::strncmp(a + i, b + i, static_cast<std::size_t>(countA));
    }
}

inline int comparePinV(const char *a, const char *b)
{
    const int lengthA = static_cast<int>(std::strlen(a));
    const int lengthB = static_cast<int>(std::strlen(b));
    int letterA = lengthA;
    for (int j = 0; j < lengthA; ++j) {
        if (isDigit(a[j])) {
            letterA = j;
            break;
        }
    }
    int letterB = lengthB;
    for (int j = 0; j < lengthB; ++j) {
        if (isDigit(b[j])) {
            letterB = j;
            break;
        }
    }
    const long long numberA = letterA < lengthA ? std::atoi(a + letterA) : 0;
    const long long numberB = letterB < lengthB ? std::atoi(b + letterB) : 0;
    long long taken = 0;
    if (numberA != numberB)
        taken = numberA - numberB;
    else if (letterA == letterB)
        taken = std::strncmp(a, b, static_cast<std::size_t>(letterA));
    else
        taken = letterA - letterB;
    return taken < 0 ? -1 : (taken > 0 ? 1 : 0);
}

inline QString wildcardToRegularExpression(const QString &pattern)
{
    QString result;
    const QString special = QStringLiteral("$()+.[\\]^{|}");
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar unit = pattern.at(i);
        if (unit == QLatin1Char('*')) {
            result.append(QStringLiteral(".*"));
        } else if (unit == QLatin1Char('?')) {
            result.append(QLatin1Char('.'));
        } else if (special.contains(unit)) {
            result.append(QLatin1Char('\\'));
            result.append(unit);
        } else {
            result.append(unit);
        }
    }
    return result;
}

} // namespace reference

#endif

#include "basepublic.h"

#include "basepublic_p.h"

#include <corvekit/diagtrace.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstring>

using basepublic_p::byteClasses;
using basepublic_p::byteOrder;
using basepublic_p::isDigit;
using basepublic_p::mismatch;
using basepublic_p::numberAt;
using basepublic_p::Other;
using basepublic_p::wrappingDifference;

BasePublic &BasePublic::operator=(const BasePublic &)
{
    return *this;
}

BasePublic &BasePublic::operator=(BasePublic &&) noexcept
{
    return *this;
}

namespace {

// The start of the digit run of \a name that reaches \a at, or \a at if there is none before it.
std::size_t runStart(const char *name, std::size_t at)
{
    while (at > 0 && isDigit(name[at - 1]))
        --at;
    return at;
}

/*!
 * The first index at which \a a and \a b differ or both end. Eight bytes a round, each read only
 * after the one before it was found equal and not the end, so no read passes a zero byte.
 */
std::size_t commonPrefix(const char *a, const char *b)
{
    const char *p = a;
    const char *q = b;
    for (;; p += 8, q += 8) {
        if (p[0] != q[0] || p[0] == 0)
            break;
        if (p[1] != q[1] || p[1] == 0)
            return static_cast<std::size_t>(p - a) + 1;
        if (p[2] != q[2] || p[2] == 0)
            return static_cast<std::size_t>(p - a) + 2;
        if (p[3] != q[3] || p[3] == 0)
            return static_cast<std::size_t>(p - a) + 3;
        if (p[4] != q[4] || p[4] == 0)
            return static_cast<std::size_t>(p - a) + 4;
        if (p[5] != q[5] || p[5] == 0)
            return static_cast<std::size_t>(p - a) + 5;
        if (p[6] != q[6] || p[6] == 0)
            return static_cast<std::size_t>(p - a) + 6;
        if (p[7] != q[7] || p[7] == 0)
            return static_cast<std::size_t>(p - a) + 7;
    }
    return static_cast<std::size_t>(p - a);
}

// The walk of compareAlphaNum from \a i on, for names that first differ at \a first.
int alphaNumWalk(const char *a, const char *b, std::size_t i, std::size_t first)
{
    for (; a[i] != 0 && b[i] != 0; ++i) {
        const bool digit = isDigit(a[i]);
        if (a[i] == b[i] && !digit)
            continue;
        if (!digit || !isDigit(b[i]))
            return byteOrder(a[first], b[first]); // the whole names first differ there
        const int valueA = numberAt(a + i);
        const int valueB = numberAt(b + i);
        if (valueA != valueB)
            return wrappingDifference(valueA, valueB);
    }
    // The walk has reached the end of a name: the lengths decide.
    return static_cast<int>(std::strlen(a)) - static_cast<int>(std::strlen(b));
}

} // namespace

// Up to first every position of the walk goes on: equal non-digits by definition, and equal digits
// because their runs are the same bytes up to the same non-digit, or reach the difference. So the
// walk may begin at the run that reaches it, and the numbers there mostly decide.
int basepublic_p::alphaNumFromRun(const char *a, const char *b, std::size_t first)
{
    if (a[first] == b[first])
        return 0; // identical names
    const std::size_t i = runStart(a, first);
    if (!isDigit(a[i]) || !isDigit(b[i])) {
        // No run reaches the difference in both names: it decides, or the end of a name there.
        if (a[first] != 0 && b[first] != 0)
            return byteOrder(a[first], b[first]);
        return alphaNumWalk(a, b, first, first);
    }
    const int valueA = numberAt(a + i);
    const int valueB = numberAt(b + i);
    if (valueA != valueB)
        return wrappingDifference(valueA, valueB);
    return alphaNumWalk(a, b, i + 1, first);
}

int BasePublic::compareAlphaNum(const char *a, const char *b)
{
    const std::size_t first = commonPrefix(a, b);
    const auto x = static_cast<unsigned char>(a[first]);
    // Read as unsigned bytes, which keeps the loop comparing the second name's bytes in memory.
    const unsigned char y = reinterpret_cast<const unsigned char *>(b)[first];
    // Two different non-digits: any run before them ended on the same byte in both names, so the
    // walk passes it with equal values and stops here.
    if ((byteClasses.of[x] & byteClasses.of[y]) == Other)
        return x < y ? -1 : 1;
    return basepublic_p::alphaNumFromRun(a, b, first);
}

namespace {

// -1, 0 or 1 as \a x is less than, equal to or greater than \a y, without a branch.
template<typename T>
int orderOf(T x, T y)
{
    return (x > y) - (x < y);
}

// An encoding longer than this does not fit the 2048-byte comparison buffer with its zero byte.
constexpr std::size_t maxEncodedLength = 2046;
// The longest encoding of n bytes alternates one-digit runs and other bytes: 5 * ceil(n / 2) +
// floor(n / 2), which is 2046 for n = 682 and 2051 for n = 683.
constexpr std::size_t alwaysFits = 682;

// The token of the digit run at \a run: its digit count mod 256 and its value mod 2^32.
// Returns the end of the run.
const char *readRun(const char *run, unsigned &count, std::uint32_t &value)
{
    count = 0;
    value = 0;
    for (; isDigit(*run); ++run) {
        value = value * 10 + static_cast<std::uint32_t>(*run - '0');
        count = (count + 1) & 0xFF;
    }
    return run;
}

/*!
 * Writes the encoding of \a name into \a out, if given, never past its 2048 bytes: a non-digit
 * byte is itself, a digit run five bytes, its count then its value with the most significant
 * byte first. Returns the whole encoded length, without the closing zero.
 */
std::size_t encode(const char *name, unsigned char *out)
{
    std::size_t length = 0;
    const auto put = [&](unsigned byte) {
        if (out && length < maxEncodedLength + 1)
            out[length] = static_cast<unsigned char>(byte);
        ++length;
    };
    while (*name != 0) {
        if (!isDigit(*name)) {
            put(static_cast<unsigned char>(*name++));
            continue;
        }
        unsigned count = 0;
        std::uint32_t value = 0;
        name = readRun(name, count, value);
        put(count);
        for (int shift = 24; shift >= 0; shift -= 8)
            put(value >> shift);
    }
    if (out)
        out[length < maxEncodedLength + 1 ? length : maxEncodedLength + 1] = 0;
    return length;
}

/*!
 * Whether a name longer than alwaysFits bytes fits its buffer; if not, the trace line that
 * refuses it. The common path of a comparison never gets here.
 */
bool acceptedLongName(const char *name)
{
    if (encode(name, nullptr) <= maxEncodedLength)
        return true;
    const QString text =
        QStringLiteral(
            "Buffer overflow, name string %1 is too long (any interger is considered 5 bytes)")
            .arg(QString::fromUtf8(name));
    diagTrace(text.toLatin1().constData(), "BasePublic::NameNumCompare");
    return false;
}

/*!
 * Compares the encodings of two names that fit, byte by byte over the shorter one and its zero;
 * where those are equal, the longer encoding comes first. For the rare pairs whose encodings
 * fall out of step: a count byte equal to a plain byte, or equal tokens of different text.
 */
int compareEncodings(const char *a, const char *b)
{
    unsigned char encodedA[maxEncodedLength + 2];
    unsigned char encodedB[maxEncodedLength + 2];
    const std::size_t lengthA = encode(a, encodedA);
    const std::size_t lengthB = encode(b, encodedB);
    const std::size_t shorter = lengthA < lengthB ? lengthA : lengthB;
    const int order = std::memcmp(encodedA, encodedB, shorter + 1);
    if (order != 0)
        return order > 0 ? 1 : -1;
    return lengthA == lengthB ? 0 : (lengthA < lengthB ? 1 : -1);
}

} // namespace

int BasePublic::compareNameNum(const char *a, const char *b)
{
    if (!a || !*a)
        return -1;
    if (!b || !*b)
        return 1;
    // The length limit comes before any result, so both names are measured first.
    const std::size_t lengthA = std::strlen(a);
    const std::size_t lengthB = std::strlen(b);
    if ((lengthA > alwaysFits || lengthB > alwaysFits) &&
        (!acceptedLongName(a) || !acceptedLongName(b)))
        return 0;
    const std::size_t first = mismatch(a, b, lengthA < lengthB ? lengthA : lengthB);
    const char x = a[first];
    const char y = b[first];
    if (!isDigit(x) && !isDigit(y)) {
        // Any run before here ended on the same byte in both names, so the encodings are in
        // step and these two bytes (one may be the end, encoded as zero) decide.
        return orderOf(static_cast<unsigned char>(x), static_cast<unsigned char>(y));
    }
    // A digit run reaches the difference: its token decides, from the start of the run.
    const std::size_t start = runStart(a, first);
    unsigned countA = static_cast<unsigned char>(x);
    unsigned countB = static_cast<unsigned char>(y);
    std::uint32_t valueA = 0;
    std::uint32_t valueB = 0;
    if (isDigit(a[start]))
        readRun(a + start, countA, valueA);
    if (isDigit(b[start]))
        readRun(b + start, countB, valueB);
    if (countA != countB)
        return orderOf(countA, countB);
    if (valueA != valueB && isDigit(a[start]) && isDigit(b[start]))
        return orderOf(valueA, valueB);
    return compareEncodings(a + start, b + start);
}

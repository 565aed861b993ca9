#include "basepublic.h"

#include "basepublic_p.h"
#include "bytescan_p.h"

#include <corvekit/diagtrace.h>

#include <QByteArray>
#include <QString>

#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::isDigit;
using basepublic_p::runLength;
using basepublic_p::runStart;
using basepublic_p::runValue;
using basepublic_p::wrappingDifference;
using bytescan::commonPrefix;
using bytescan::equalFlags;
using bytescan::readShort;
using bytescan::readShortBytes;
using bytescan::ShortName;
using bytescan::shortRunValue;

BasePublic &BasePublic::operator=(const BasePublic &)
{
    return *this;
}

BasePublic &BasePublic::operator=(BasePublic &&) noexcept
{
    return *this;
}

namespace {

// The first name's length minus the second's, as the walk ends; they are equal up to \a from.
int lengthDifference(const char *a, const char *b, std::size_t from)
{
    const std::size_t lengthA = from + bytescan::length(a + from);
    const std::size_t lengthB = from + bytescan::length(b + from);
    return wrappingDifference(static_cast<int>(lengthA), static_cast<int>(lengthB));
}

/*!
 * The walk of compareAlphaNum from \a i on, one byte at a time as defined, for names that first
 * differ at \a first. Out of line: only equal values read at different places get here.
 */
[[gnu::noinline]] int alphaNumWalk(const char *a, const char *b, std::size_t i, std::size_t first)
{
    for (; a[i] != 0 && b[i] != 0; ++i) {
        const char p = a[i];
        const char q = b[i];
        const bool digitP = isDigit(p);
        if (p == q && !digitP)
            continue;
        if (digitP && isDigit(q)) {
            const int valueA = runValue(a + i);
            const int valueB = runValue(b + i);
            if (valueA != valueB)
                return wrappingDifference(valueA, valueB);
            continue;
        }
        return byteOrder(a[first], b[first]);
    }
    return lengthDifference(a, b, i);
}

/*!
 * compareAlphaNum where a digit run takes in \a first, where the names first differ. Out of
 * line, so that the common path saves no registers.
 */
[[gnu::noinline]] int alphaNumFromRun(const char *a, const char *b, std::size_t first)
{
    const char x = a[first];
    const char y = b[first];
    // The walk reaches the start of the digit run that takes in the difference. If both names
    // have a digit there, their numbers decide unless equal. If not, the run starts at the
    // difference and one name has no digit there: the walk ends if that name ends there, and the
    // whole names decide there if not.
    std::size_t start = first;
    while (start > 0 && isDigit(a[start - 1]))
        --start;
    if (!isDigit(a[start]) || !isDigit(b[start]))
        return x == 0 || y == 0 ? lengthDifference(a, b, first) : byteOrder(x, y);
    const int valueA = runValue(a + start);
    const int valueB = runValue(b + start);
    if (valueA != valueB)
        return wrappingDifference(valueA, valueB);
    return alphaNumWalk(a, b, start + 1, first);
}

// compareAlphaNum on names of any length.
[[gnu::noinline]] int alphaNumFromScan(const char *a, const char *b)
{
    // Up to the first difference every position goes on: equal non-digits by definition, and
    // equal digits because their runs are the same bytes up to the same non-digit, or reach the
    // difference, which is where the walk is resumed from. Only bytes up to the difference are
    // read, as strcmp does; lengths are taken where the walk ends.
    const std::size_t first = commonPrefix(a, b);
    const char x = a[first];
    const char y = b[first];
    if (x == y)
        return 0; // identical names
    if (isDigit(x) || isDigit(y))
        return alphaNumFromRun(a, b, first);
    if (x != 0 && y != 0)
        return byteOrder(x, y); // the whole names first differ here
    // One name ends here: the walk ends with the difference of the lengths.
    return lengthDifference(a, b, first);
}

} // namespace

int BasePublic::compareAlphaNum(const char *a, const char *b)
{
    // Short names, as pins are, go by the flags of one block each, as alphaNumFromScan does.
    ShortName x;
    ShortName y;
    if (!readShort(a, x) || !readShort(b, y))
        return alphaNumFromScan(a, b);
    const unsigned first =
        static_cast<unsigned>(__builtin_ctz(~equalFlags(x, y) | x.end)); // or both end
    const unsigned at = 1u << first;
    const int lengths =
        static_cast<int>(__builtin_ctz(x.end)) - static_cast<int>(__builtin_ctz(y.end));
    if ((x.digits | y.digits) & at) {
        const unsigned start = runStart(x.digits, first);
        if ((x.digits >> start) & (y.digits >> start) & 1) {
            const unsigned countA = runLength(x.digits, start);
            const unsigned countB = runLength(y.digits, start);
            if (countA > 9 || countB > 9)
                return alphaNumFromScan(a, b); // atoi's own answer beyond an int
            const int valueA = static_cast<int>(shortRunValue(a, start, countA));
            const int valueB = static_cast<int>(shortRunValue(b, start, countB));
            if (valueA != valueB)
                return valueA - valueB;
            return alphaNumWalk(a, b, start + 1, first);
        }
    }
    // As in alphaNumFromRun: the walk ends if a name ends here, the whole names decide if not.
    return (x.end | y.end) & at ? lengths : byteOrder(a[first], b[first]);
}

namespace {

// An encoding longer than this does not fit the 2048-byte comparison buffer with its zero byte.
constexpr std::size_t maxEncodedLength = 2046;
// The longest encoding of n bytes alternates one-digit runs and other bytes: 5 * ceil(n / 2) +
// floor(n / 2), which is 2046 for n = 682 and 2051 for n = 683.
constexpr std::size_t alwaysFits = 682;

std::size_t encodedLength(const char *name)
{
    std::size_t length = 0;
    while (*name) {
        if (isDigit(*name)) {
            do {
                ++name;
            } while (isDigit(*name));
            length += 5;
        } else {
            ++name;
            ++length;
        }
    }
    return length;
}

/*!
 * Whether a name longer than alwaysFits bytes fits its buffer; if not, the trace line that
 * refuses it. Out of line: the common path of a comparison never gets here.
 */
[[gnu::noinline, gnu::cold]] bool acceptedLongName(const char *name)
{
    if (encodedLength(name) <= maxEncodedLength)
        return true;
    const QString text =
        QStringLiteral(
            "Buffer overflow, name string %1 is too long (any interger is considered 5 bytes)")
            .arg(QString::fromUtf8(name));
    diagTrace(text.toLatin1().constData(), "BasePublic::NameNumCompare");
    return false;
}

// The token of the digit run at \a run: its digit count mod 256 and its value mod 2^32.
// Returns the end of the run.
inline const char *readRun(const char *run, unsigned &count, std::uint32_t &value)
{
    unsigned digits = 0;
    std::uint32_t number = 0;
    do {
        number = number * 10 + static_cast<std::uint32_t>(*run - '0');
        ++digits;
        ++run;
    } while (isDigit(*run));
    count = digits & 0xFF;
    value = number;
    return run;
}

/*!
 * Reads the encoding of a name one byte at a time without writing it out: a non-digit byte is
 * itself, a digit run the five bytes count (mod 256) and value (mod 2^32, most significant
 * first), and the end one zero byte.
 */
class EncodedName
{
public:
    explicit EncodedName(const char *name)
        : m_next(reinterpret_cast<const unsigned char *>(name))
    {}

    bool atRun() const { return m_pending == 0 && isDigit(*m_next); }
    bool ended() const { return m_ended; }

    // Reads a whole run at once; only when atRun().
    void readRun(unsigned &count, std::uint32_t &value)
    {
        m_next = reinterpret_cast<const unsigned char *>(
            ::readRun(reinterpret_cast<const char *>(m_next), count, value));
    }

    unsigned nextByte()
    {
        if (m_pending > 0)
            return m_token[5 - m_pending--];
        const unsigned byte = *m_next;
        if (byte == 0) {
            m_ended = true;
            return 0;
        }
        if (!isDigit(static_cast<unsigned char>(byte))) {
            ++m_next;
            return byte;
        }
        unsigned count = 0;
        std::uint32_t value = 0;
        readRun(count, value);
        m_token[0] = static_cast<unsigned char>(count);
        m_token[1] = static_cast<unsigned char>(value >> 24);
        m_token[2] = static_cast<unsigned char>(value >> 16);
        m_token[3] = static_cast<unsigned char>(value >> 8);
        m_token[4] = static_cast<unsigned char>(value);
        m_pending = 4;
        return m_token[0];
    }

private:
    const unsigned char *m_next;
    unsigned char m_token[5] = {};
    int m_pending = 0;
    bool m_ended = false;
};

/*!
 * Compares two encodings from token boundaries that are in step. Whole runs against whole runs
 * compare as tokens; anything else (a count byte against a plain byte, which can be equal and
 * put the encodings out of step) goes byte by byte.
 */
int compareEncodings(const char *a, const char *b)
{
    EncodedName x(a);
    EncodedName y(b);
    for (;;) {
        if (x.atRun() && y.atRun()) {
            unsigned countX = 0;
            unsigned countY = 0;
            std::uint32_t valueX = 0;
            std::uint32_t valueY = 0;
            x.readRun(countX, valueX);
            y.readRun(countY, valueY);
            if (countX != countY)
                return countX > countY ? 1 : -1;
            if (valueX != valueY)
                return valueX > valueY ? 1 : -1;
            continue;
        }
        const unsigned byteX = x.nextByte();
        const unsigned byteY = y.nextByte();
        if (byteX != byteY)
            return byteX > byteY ? 1 : -1;
        // The closing zero of the shorter encoding took part; the longer one comes first.
        if (x.ended() || y.ended()) {
            if (x.ended() && y.ended())
                return 0;
            return x.ended() ? 1 : -1;
        }
    }
}

/*!
 * compareNameNum where a digit run reaches \a first, where the names first differ: the run's
 * token decides, from the start of the run. Out of line, to keep the common path short.
 */
[[gnu::noinline]] int nameNumFromRun(const char *a, const char *b, std::size_t first)
{
    const char x = a[first];
    const char y = b[first];
    const bool digitX = isDigit(x);
    std::size_t start = first;
    while (start > 0 && isDigit(a[start - 1]))
        --start;
    unsigned countA = 0;
    unsigned countB = 0;
    std::uint32_t valueA = 0;
    std::uint32_t valueB = 0;
    if (isDigit(a[start]) && isDigit(b[start])) {
        readRun(a + start, countA, valueA);
        readRun(b + start, countB, valueB);
        if (countA != countB)
            return countA > countB ? 1 : -1;
        if (valueA != valueB)
            return valueA > valueB ? 1 : -1;
    } else if (digitX) {
        readRun(a + start, countA, valueA);
        const unsigned byteB = static_cast<unsigned char>(y);
        if (countA != byteB)
            return countA > byteB ? 1 : -1;
    } else {
        readRun(b + start, countB, valueB);
        const unsigned byteA = static_cast<unsigned char>(x);
        if (byteA != countB)
            return byteA > countB ? 1 : -1;
    }
    // Equal tokens from different text (values that wrapped), or a count byte equal to a plain
    // byte, which puts the encodings out of step: compare them byte by byte.
    return compareEncodings(a + start, b + start);
}

// compareNameNum on names of any length, neither null nor empty.
[[gnu::noinline]] int nameNumFromScan(const char *a, const char *b)
{
    // The length limit comes before any result, so both names are measured first.
    const std::size_t lengthA = bytescan::length(a);
    const std::size_t lengthB = bytescan::length(b);
    if ((lengthA > alwaysFits || lengthB > alwaysFits) &&
        !(acceptedLongName(a) && acceptedLongName(b)))
        return 0;

    const std::size_t first = bytescan::mismatch(a, b, lengthA < lengthB ? lengthA : lengthB);
    const char x = a[first];
    const char y = b[first];
    if (isDigit(x) || isDigit(y))
        return nameNumFromRun(a, b, first);
    // Any run before here ended on the same byte in both names, so the encodings are in step and
    // these two bytes (one may be the end, encoded as zero) decide.
    return x == y ? 0 : byteOrder(x, y);
}

} // namespace

int BasePublic::compareNameNum(const char *a, const char *b)
{
    if (!a || !*a)
        return -1;
    if (!b || !*b)
        return 1;
    // Short names, always within the limit, are compared as one block each.
    ShortName x;
    ShortName y;
    if (!readShortBytes(a, x) || !readShortBytes(b, y))
        return nameNumFromScan(a, b);
    const unsigned first =
        static_cast<unsigned>(__builtin_ctz(~equalFlags(x, y) | x.end)); // or both end
    const char p = a[first];
    const char q = b[first];
    if (isDigit(p) || isDigit(q))
        return nameNumFromRun(a, b, first);
    return p == q ? 0 : byteOrder(p, q);
}

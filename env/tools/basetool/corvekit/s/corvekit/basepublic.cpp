#include "basepublic.h"

#include "basepublic_p.h"

#include <corvekit/diagtrace.h>

#include <QByteArray>
#include <QString>

#include <cstring>

using basepublic_p::byteOrder;
using basepublic_p::commonPrefix;
using basepublic_p::isDigit;
using basepublic_p::runValue;
using basepublic_p::wrappingDifference;

BasePublic &BasePublic::operator=(const BasePublic &)
{
    return *this;
}

BasePublic &BasePublic::operator=(BasePublic &&) noexcept
{
    return *this;
}

int BasePublic::compareAlphaNum(const char *a, const char *b)
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
    if (!isDigit(x) && !isDigit(y)) {
        if (x != 0 && y != 0)
            return byteOrder(x, y); // the whole names first differ here
        // One name ends here: the walk ends with the difference of the lengths.
        const std::size_t lengthA = x ? first + std::strlen(a + first) : first;
        const std::size_t lengthB = y ? first + std::strlen(b + first) : first;
        return wrappingDifference(static_cast<int>(lengthA), static_cast<int>(lengthB));
    }

    // A digit run reaches the difference: walk as defined from the start of that run, one byte
    // at a time, so that equal values are compared again from each of their later digits.
    std::size_t i = first;
    while (i > 0 && isDigit(a[i - 1]))
        --i;
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
        return byteOrder(x, y);
    }
    const std::size_t lengthA = i + std::strlen(a + i);
    const std::size_t lengthB = i + std::strlen(b + i);
    return wrappingDifference(static_cast<int>(lengthA), static_cast<int>(lengthB));
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

/*!
 * Whether the encoding of \a name fits its buffer; if not, the trace line that refuses it. The
 * first \a known bytes are known not to end the name. A name of up to alwaysFits bytes always
 * fits, so it is measured only up to that bound.
 */
inline bool accepted(const char *name, std::size_t known)
{
    if (known <= alwaysFits && known + strnlen(name + known, alwaysFits + 1 - known) <= alwaysFits)
        return true;
    return acceptedLongName(name);
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
    bool atByte() const { return m_pending == 0 && !isDigit(*m_next); }
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

} // namespace

int BasePublic::compareNameNum(const char *a, const char *b)
{
    if (!a || !*a)
        return -1;
    if (!b || !*b)
        return 1;
    // The length limit comes before any result, so both names are measured first: from where
    // they first differ on, since up to there each is as long as the other.
    const std::size_t first = commonPrefix(a, b);
    if (!accepted(a, first))
        return 0;
    if (!accepted(b, first))
        return 0;

    const char x = a[first];
    const char y = b[first];
    const bool digitX = isDigit(x);
    const bool digitY = isDigit(y);
    if (!digitX && !digitY) {
        // Any run before here ended on the same byte in both names, so the encodings are in
        // step and these two bytes (one may be the end, encoded as zero) decide.
        return x == y ? 0 : byteOrder(x, y);
    }

    // A digit run reaches the difference: its token decides, from the start of the run.
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

// The name and pin comparators: the worked results and sorted lists of each order, their edges
// (null and empty names, the length limit, wraparounds), the order properties their header
// promises, and identity with the straightforward versions in support/reference_comparators.h
// on random and adversarial pairs. The refusal's trace line is checked in a child.
#include <corvekit/basepublic.h>

#include "childprocess.h"
#include "pageend.h"
#include "reference_comparators.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Comparator = int (*)(const char *, const char *);

const char *const traceTag = "BasePublic::NameNumCompare";

std::string repeated(const std::string &piece, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += piece;
    return result;
}

QStringList sortedWith(Comparator compare, const QStringList &names)
{
    std::vector<QByteArray> bytes;
    for (const QString &name : names)
        bytes.push_back(name.toLatin1());
    std::stable_sort(bytes.begin(), bytes.end(),
                     [compare](const QByteArray &a, const QByteArray &b) {
                         return compare(a.constData(), b.constData()) < 0;
                     });
    QStringList result;
    for (const QByteArray &name : bytes)
        result << QString::fromLatin1(name);
    return result;
}

QString hex(const std::string &name)
{
    // Long names are cut: a failure report shows where they differ, not all of them.
    const QString bytes = QString::fromLatin1(
        QByteArray(name.data(), static_cast<qsizetype>(name.size())).toHex(' '));
    return bytes.size() > 300 ? bytes.left(300) + QStringLiteral("... (%1 bytes)").arg(name.size())
                              : bytes;
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

// --- Random and adversarial names -----------------------------------------------------------

class NameMaker
{
public:
    explicit NameMaker(unsigned seed)
        : m_random(seed)
    {}

    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(m_random);
    }
    bool chance(int percent) { return number(1, 100) <= percent; }

    char someByte()
    {
        // Letters, digits, the blank against a 32-digit run, control bytes against short runs'
        // count bytes, separators of hierarchical names, and bytes at and above 0x80.
        static const char bytes[] = "AaBbZz0123456789 -_/[].\x01\x02\x03\x05\x1f\x7f\x80\xe9\xff";
        return bytes[number(0, sizeof(bytes) - 2)];
    }

    std::string digits(int count, int leadingZeros = 0)
    {
        std::string run(static_cast<std::size_t>(leadingZeros), '0');
        for (int i = 0; i < count; ++i)
            run += static_cast<char>('0' + number(0, 9));
        return run;
    }

    std::string shortName()
    {
        std::string name;
        const int length = number(0, 12);
        for (int i = 0; i < length; ++i)
            name += someByte();
        return name;
    }

    std::string withRuns(int longestRun)
    {
        std::string name;
        const int pieces = number(1, 4);
        for (int i = 0; i < pieces; ++i) {
            if (chance(50))
                name += someByte();
            if (chance(30))
                name += someByte();
            name += digits(number(1, longestRun), chance(30) ? number(1, 4) : 0);
        }
        if (chance(50))
            name += someByte();
        return name;
    }

    // Pin names: a letter part of up to 9 non-digits and a number of up to 9 digits, sometimes
    // with leading zeros or without digits, sometimes with a tail; about where the letter part
    // and the number stop fitting in a short name's first word.
    std::string pin()
    {
        std::string name;
        const int letters = number(0, 9);
        while (static_cast<int>(name.size()) < letters) {
            const char byte = someByte();
            if (byte < '0' || byte > '9')
                name += byte;
        }
        if (chance(85))
            name += digits(number(1, 9), chance(15) ? number(1, 3) : 0);
        if (chance(20))
            name += someByte() + digits(number(0, 2));
        return name;
    }
    // Runs whose values lie around 2^31 and 2^32 and beyond what strtol reads.
    std::string overflowing()
    {
        static const char *const runs[] = {
            "2147483647", "2147483648",          "4294967295",          "4294967296",
            "4294967297", "9223372036854775807", "9223372036854775808", "99999999999999999999"};
        std::string name = chance(70) ? std::string(1, someByte()) : std::string();
        name += chance(60) ? std::string(runs[number(0, 7)]) : digits(number(9, 25));
        if (chance(50))
            name += someByte() + digits(number(1, 12));
        return name;
    }

    // Around 682 bytes (the bound below which no name can be too long) and around 2046 encoded
    // bytes, both for one-digit runs between letters and for names without digits.
    std::string nearLimit()
    {
        switch (number(0, 3)) {
        case 0:
            return repeated("1a", number(338, 344)) +
                   std::string(static_cast<std::size_t>(number(0, 8)), 'x');
        case 1:
            return std::string(static_cast<std::size_t>(number(2040, 2050)), 'n');
        case 2:
            return "a" + repeated("7b", number(339, 342)) + digits(number(1, 3));
        default: {
            std::string name;
            while (name.size() < static_cast<std::size_t>(number(600, 800)))
                name += withRuns(3);
            return name;
        }
        }
    }

    // Runs of 256 digits and its multiples (count byte 0, as the end of a name), and a byte
    // equal to the count byte of a run in the other name.
    std::string countEdges()
    {
        const std::string prefix = chance(50) ? "A" : "bus";
        switch (number(0, 2)) {
        case 0:
            return prefix + digits(256 * number(1, 2) + number(-1, 1));
        case 1:
            return prefix + static_cast<char>(number(1, 40)) +
                   (chance(50) ? digits(number(1, 3)) : "");
        default:
            return prefix + digits(number(1, 40)) + (chance(50) ? std::string(1, someByte()) : "");
        }
    }

    // A close relative of \a name: one byte changed, a digit put in or taken out, cut short or
    // continued, so that the two agree on a long prefix.
    std::string relative(std::string name)
    {
        const auto position = [&] {
            return name.empty()
                       ? std::size_t(0)
                       : static_cast<std::size_t>(number(0, static_cast<int>(name.size()) - 1));
        };
        switch (number(0, 5)) {
        case 0:
            if (!name.empty())
                name[position()] = someByte();
            break;
        case 1:
            name.insert(position(), 1, static_cast<char>('0' + number(0, 9)));
            break;
        case 2:
            if (!name.empty())
                name.erase(position(), 1);
            break;
        case 3:
            name.resize(position());
            break;
        case 4:
            name += chance(50) ? digits(number(1, 5)) : std::string(1, someByte());
            break;
        default:
            name.insert(position(), 1, '0');
            break;
        }
        return name;
    }

private:
    std::mt19937 m_random;
};

/*!
 * Every comparator against its reference on \a a and \a b, both ways round: the first
 * difference, or an empty text.
 */
QString referenceMismatch(const char *a, const char *b)
{
    struct Check
    {
        const char *name;
        Comparator library;
        Comparator expected;
    };
    static const Check checks[] = {
        {"compareAlphaNum", BasePublic::compareAlphaNum, reference::compareAlphaNum},
        {"compareNameNum", BasePublic::compareNameNum,
         [](const char *x, const char *y) { return reference::compareNameNum(x, y); }},
        {"comparePinH", BasePublic::comparePinH, reference::comparePinH},
        {"comparePinV", BasePublic::comparePinV, reference::comparePinV},
    };
    for (const Check &check : checks) {
        for (const auto &[x, y] : {std::make_pair(a, b), std::make_pair(b, a)}) {
            const int library = check.library(x, y);
            const int expected = check.expected(x, y);
            if (library != expected) {
                return QStringLiteral("%1: library %2, reference %3\n  first:  %4\n  second: %5")
                    .arg(QLatin1String(check.name))
                    .arg(library)
                    .arg(expected)
                    .arg(hex(x), hex(y));
            }
        }
    }
    return QString();
}

} // namespace

class TestBasePublic : public QObject
{
    Q_OBJECT

private slots:
    void nameTable_data();
    void nameTable();
    void nameOrdersSortTheSampleList();
    void nameNumNullAndEmpty_data();
    void nameNumNullAndEmpty();
    void nameNumEncoding_data();
    void nameNumEncoding();
    void nameNumLengthLimit_data();
    void nameNumLengthLimit();
    void alphaNumGivesDifferences_data();
    void alphaNumGivesDifferences();

    void pinTable_data();
    void pinTable();
    void pinOrdersSortTheSampleList();
    void pinEdges_data();
    void pinEdges();

    void matchesReference_data();
    void matchesReference();
    void namesAtPageEnds();
    void ordersHoldWhereDocumented();
    void stableSortSurvivesEveryInput();

    void refusalIsTraced_data();
    void refusalIsTraced();
    void acceptedNamesLeaveNoTrace();
};

// --- compareAlphaNum and compareNameNum -----------------------------------------------------

void TestBasePublic::nameTable_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("alphaNum");
    QTest::addColumn<int>("nameNum");

    QTest::newRow("A9 A10") << QByteArray("A9") << QByteArray("A10") << -1 << -1;
    QTest::newRow("A10 A9") << QByteArray("A10") << QByteArray("A9") << 1 << 1;
    QTest::newRow("bus[2] bus[10]") << QByteArray("bus[2]") << QByteArray("bus[10]") << -8 << -1;
    QTest::newRow("A7 A07") << QByteArray("A7") << QByteArray("A07") << -1 << -1;
    QTest::newRow("A007 A7") << QByteArray("A007") << QByteArray("A7") << 2 << 1;
    QTest::newRow("a012 a12") << QByteArray("a012") << QByteArray("a12") << 10 << 1;
    QTest::newRow("a1b a01b") << QByteArray("a1b") << QByteArray("a01b") << 1 << -1;
    QTest::newRow("A12 A1B") << QByteArray("A12") << QByteArray("A1B") << 11 << 1;
    QTest::newRow("A1B A1C") << QByteArray("A1B") << QByteArray("A1C") << -1 << -1;
    QTest::newRow("A2 AB") << QByteArray("A2") << QByteArray("AB") << -1 << -1;
    QTest::newRow("A2 'A '") << QByteArray("A2") << QByteArray("A ") << 1 << -1;
    QTest::newRow("a B") << QByteArray("a") << QByteArray("B") << 1 << 1;
    QTest::newRow("A A1") << QByteArray("A") << QByteArray("A1") << -1 << -1;
    QTest::newRow("abc abc") << QByteArray("abc") << QByteArray("abc") << 0 << 0;
    QTest::newRow("empty empty") << QByteArray("") << QByteArray("") << 0 << -1;
    QTest::newRow("empty x") << QByteArray("") << QByteArray("x") << -1 << -1;
    QTest::newRow("x empty") << QByteArray("x") << QByteArray("") << 1 << 1;
    QTest::newRow("0xE9 after z") << QByteArray("\xe9") << QByteArray("z") << 1 << 1;
}

void TestBasePublic::nameTable()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, alphaNum);
    QFETCH(int, nameNum);
    QCOMPARE(BasePublic::compareAlphaNum(first.constData(), second.constData()), alphaNum);
    QCOMPARE(BasePublic::compareNameNum(first.constData(), second.constData()), nameNum);
}

void TestBasePublic::nameOrdersSortTheSampleList()
{
    const QStringList names = {"B2", "A10", "AA1", "A", "B1", "D", "A2", "AB3", "A1"};
    const QStringList expected = {"A", "A1", "A2", "A10", "AA1", "AB3", "B1", "B2", "D"};
    QCOMPARE(sortedWith(BasePublic::compareNameNum, names), expected);
    QCOMPARE(sortedWith(BasePublic::compareAlphaNum, names), expected);
}

void TestBasePublic::nameNumNullAndEmpty_data()
{
    QTest::addColumn<bool>("firstNull");
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<bool>("secondNull");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("expected");

    QTest::newRow("null null") << true << QByteArray() << true << QByteArray() << -1;
    QTest::newRow("null empty") << true << QByteArray() << false << QByteArray("") << -1;
    QTest::newRow("empty null") << false << QByteArray("") << true << QByteArray() << -1;
    QTest::newRow("null name") << true << QByteArray() << false << QByteArray("A1") << -1;
    QTest::newRow("name null") << false << QByteArray("A1") << true << QByteArray() << 1;
    QTest::newRow("name empty") << false << QByteArray("A1") << false << QByteArray("") << 1;
    // An empty first name is refused before the second is even measured.
    QTest::newRow("empty overlong")
        << false << QByteArray("") << false << QByteArray(3000, 'n') << -1;
    QTest::newRow("overlong null") << false << QByteArray(3000, 'n') << true << QByteArray() << 1;
}

void TestBasePublic::nameNumNullAndEmpty()
{
    QFETCH(bool, firstNull);
    QFETCH(QByteArray, first);
    QFETCH(bool, secondNull);
    QFETCH(QByteArray, second);
    QFETCH(int, expected);
    QCOMPARE(BasePublic::compareNameNum(firstNull ? nullptr : first.constData(),
                                        secondNull ? nullptr : second.constData()),
             expected);
}

void TestBasePublic::nameNumEncoding_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("expected");

    // Values wrap at 2^32: both runs have ten digits and the value 0.
    QTest::newRow("value wraps") << QByteArray("A4294967296") << QByteArray("A0000000000") << 0;
    QTest::newRow("value wraps, then decides")
        << QByteArray("A4294967296b") << QByteArray("A0000000000a") << 1;
    // The count of a 256-digit run wraps to 0 and meets the end of the shorter name: the longer
    // encoding comes first.
    QTest::newRow("256 digits against the end")
        << QByteArray("x" + QByteArray(256, '1')) << QByteArray("x") << -1;
    QTest::newRow("end against 256 digits")
        << QByteArray("x") << QByteArray("x" + QByteArray(256, '1')) << 1;
    QTest::newRow("257 digits against the end")
        << QByteArray("x" + QByteArray(257, '1')) << QByteArray("x") << 1;
    // A run's count against an equal byte puts the encodings out of step.
    QTest::newRow("control byte against run") << QByteArray("A\x01") << QByteArray("A5") << 1;
    QTest::newRow("run against control byte") << QByteArray("A5") << QByteArray("A\x01") << -1;
    QTest::newRow("blank against 32 digits")
        << QByteArray("A ") << QByteArray("A" + QByteArray(32, '0')) << 1;
    QTest::newRow("31 digits before the blank")
        << QByteArray("A" + QByteArray(31, '9')) << QByteArray("A ") << -1;
    QTest::newRow("33 digits after the blank")
        << QByteArray("A" + QByteArray(33, '0')) << QByteArray("A ") << 1;
    // Fewer digits first, whatever the value and the leading zeros.
    QTest::newRow("A10 before A007") << QByteArray("A10") << QByteArray("A007") << -1;
    QTest::newRow("run before hyphen") << QByteArray("A9") << QByteArray("A-") << -1;
    QTest::newRow("bytes above 0x7f") << QByteArray("n\x80") << QByteArray("n\x7f") << 1;
}

void TestBasePublic::nameNumEncoding()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, expected);
    QCOMPARE(BasePublic::compareNameNum(first.constData(), second.constData()), expected);
}

void TestBasePublic::nameNumLengthLimit_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("expected");

    const QByteArray longest(2046, 'n');
    QTest::newRow("2046 bytes compare")
        << longest << QByteArray(longest).replace(2045, 1, "o") << -1;
    QTest::newRow("2046 bytes against itself") << longest << longest << 0;
    QTest::newRow("2047 bytes refused") << QByteArray(2047, 'n') << QByteArray("a") << 0;
    QTest::newRow("2047 bytes refused second") << QByteArray("a") << QByteArray(2047, 'n') << 0;
    // 340 pairs of a digit and a letter and six bytes more: exactly 2046 from 686 bytes.
    const QByteArray pairs = QByteArray::fromStdString(repeated("1a", 340));
    QTest::newRow("2046 encoded from 686 bytes") << pairs + "zzzzzz" << pairs + "zzzzzy" << 1;
    QTest::newRow("2047 encoded from 687 bytes") << pairs + "zzzzzzz" << QByteArray("a") << 0;
    QTest::newRow("682 bytes at most 2046")
        << QByteArray::fromStdString(repeated("1a", 341)) << QByteArray("1a") << 1;
    QTest::newRow("683 bytes past the limit")
        << QByteArray::fromStdString(repeated("1a", 341) + "1") << QByteArray("1a") << 0;
    // However long, a run is one five-byte token: 2046 digits have the count byte 254.
    QTest::newRow("long runs are one token")
        << QByteArray(2046, '1') + "a" << QByteArray(2047, '1') << -1;
    QTest::newRow("both refused") << QByteArray(5000, 'a') << QByteArray(5000, 'b') << 0;
}

void TestBasePublic::nameNumLengthLimit()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, expected);
    QCOMPARE(BasePublic::compareNameNum(first.constData(), second.constData()), expected);
}

void TestBasePublic::alphaNumGivesDifferences_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("expected");

    QTest::newRow("values") << QByteArray("n100") << QByteArray("n1") << 99;
    QTest::newRow("lengths") << QByteArray("abcdef") << QByteArray("abc") << 3;
    // An equal value goes on by one byte: 012 and 12, then 12 and 2.
    QTest::newRow("walk inside equal runs") << QByteArray("x0012y") << QByteArray("x012y") << 10;
    QTest::newRow("run ends in one name") << QByteArray("A12") << QByteArray("A123") << -111;
    QTest::newRow("whole names decide") << QByteArray("zz1") << QByteArray("zzA") << -1;
    QTest::newRow("high byte") << QByteArray("m\xff") << QByteArray("m\x01") << 1;
    QTest::newRow("int max") << QByteArray("v2147483647") << QByteArray("v0") << 2147483647;
}

void TestBasePublic::alphaNumGivesDifferences()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, expected);
    QCOMPARE(BasePublic::compareAlphaNum(first.constData(), second.constData()), expected);
}

// --- comparePinH and comparePinV -------------------------------------------------------------

void TestBasePublic::pinTable_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("pinH");
    QTest::addColumn<bool>("pinHSignOnly");
    QTest::addColumn<int>("pinV");

    QTest::newRow("A1 A2") << QByteArray("A1") << QByteArray("A2") << -1 << false << -1;
    QTest::newRow("A10 A9") << QByteArray("A10") << QByteArray("A9") << 1 << false << 1;
    QTest::newRow("A12 A9") << QByteArray("A12") << QByteArray("A9") << 3 << false << 1;
    QTest::newRow("A2 B1") << QByteArray("A2") << QByteArray("B1") << -1 << true << 1;
    QTest::newRow("B1 AA1") << QByteArray("B1") << QByteArray("AA1") << -1 << false << -1;
    QTest::newRow("AB3 AC2") << QByteArray("AB3") << QByteArray("AC2") << -1 << true << 1;
    QTest::newRow("A007 A7") << QByteArray("A007") << QByteArray("A7") << 0 << false << 0;
    QTest::newRow("A1B A1C") << QByteArray("A1B") << QByteArray("A1C") << 0 << false << 0;
    QTest::newRow("A1 A") << QByteArray("A1") << QByteArray("A") << -1 << false << 1;
    QTest::newRow("A B") << QByteArray("A") << QByteArray("B") << -1 << false << -1;
    QTest::newRow("AB AC2") << QByteArray("AB") << QByteArray("AC2") << 1 << false << -1;
    QTest::newRow("A0 A") << QByteArray("A0") << QByteArray("A") << -1 << false << 0;
    QTest::newRow("1A A1") << QByteArray("1A") << QByteArray("A1") << -1 << false << -1;
    QTest::newRow("A1 a1") << QByteArray("A1") << QByteArray("a1") << -1 << true << -1;
    QTest::newRow("empty empty") << QByteArray("") << QByteArray("") << 0 << false << 0;
    QTest::newRow("empty A") << QByteArray("") << QByteArray("A") << -1 << false << -1;
    QTest::newRow("empty A1") << QByteArray("") << QByteArray("A1") << 1 << false << -1;
}

void TestBasePublic::pinTable()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, pinH);
    QFETCH(bool, pinHSignOnly);
    QFETCH(int, pinV);
    const int h = BasePublic::comparePinH(first.constData(), second.constData());
    if (pinHSignOnly)
        QCOMPARE(sign(h), pinH);
    else
        QCOMPARE(h, pinH);
    QCOMPARE(BasePublic::comparePinV(first.constData(), second.constData()), pinV);
}

void TestBasePublic::pinOrdersSortTheSampleList()
{
    const QStringList names = {"B2", "A10", "AA1", "A", "B1", "D", "A2", "AB3", "A1"};
    QCOMPARE(sortedWith(BasePublic::comparePinH, names),
             QStringList({"A1", "A2", "A10", "B1", "B2", "AA1", "AB3", "A", "D"}));
    QCOMPARE(sortedWith(BasePublic::comparePinV, names),
             QStringList({"A", "D", "A1", "B1", "AA1", "A2", "B2", "AB3", "A10"}));
    // A BGA grid row by row and column by column.
    const QStringList grid = {"B2", "AA1", "B10", "Y1", "A2", "AB1", "A1", "B1"};
    QCOMPARE(sortedWith(BasePublic::comparePinH, grid),
             QStringList({"A1", "A2", "B1", "B2", "B10", "Y1", "AA1", "AB1"}));
    QCOMPARE(sortedWith(BasePublic::comparePinV, grid),
             QStringList({"A1", "B1", "Y1", "AA1", "AB1", "A2", "B2", "B10"}));
}

void TestBasePublic::pinEdges_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("pinH");
    QTest::addColumn<int>("pinV");

    QTest::newRow("only the first number counts")
        << QByteArray("A1B2") << QByteArray("A1B3") << 0 << 0;
    QTest::newRow("empty letter parts") << QByteArray("12") << QByteArray("3") << 9 << 1;
    QTest::newRow("empty letter parts, equal numbers")
        << QByteArray("07x") << QByteArray("7y") << 0 << 0;
    QTest::newRow("shorter letter part first") << QByteArray("Z9") << QByteArray("AA1") << -1 << 1;
    QTest::newRow("letter parts differ by count")
        << QByteArray("ABC1") << QByteArray("AX1") << 1 << 1;
    QTest::newRow("no number after one") << QByteArray("AB") << QByteArray("AB1") << 1 << -1;
    QTest::newRow("neither has a number") << QByteArray("AC") << QByteArray("AB") << 1 << 1;
    QTest::newRow("high bytes in the letter part") << QByteArray("\xe9"
                                                                 "1")
                                                   << QByteArray("z1") << 1 << 1;
}

void TestBasePublic::pinEdges()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, pinH);
    QFETCH(int, pinV);
    QCOMPARE(sign(BasePublic::comparePinH(first.constData(), second.constData())), sign(pinH));
    if (std::abs(pinH) != 1)
        QCOMPARE(BasePublic::comparePinH(first.constData(), second.constData()), pinH);
    QCOMPARE(BasePublic::comparePinV(first.constData(), second.constData()), pinV);
}

// --- Identity with the straightforward versions ----------------------------------------------

void TestBasePublic::matchesReference_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("pairs");

    QTest::newRow("short names of mixed bytes") << 0 << 40000;
    QTest::newRow("digit runs of 1 to 300 digits") << 1 << 6000;
    QTest::newRow("runs beyond int") << 2 << 20000;
    QTest::newRow("around the length limit") << 3 << 1500;
    QTest::newRow("count bytes and 256-digit runs") << 4 << 20000;
    QTest::newRow("close relatives") << 5 << 40000;
    QTest::newRow("pin names") << 6 << 40000;
}

void TestBasePublic::matchesReference()
{
    QFETCH(int, kind);
    QFETCH(int, pairs);
    NameMaker maker(20261123u + static_cast<unsigned>(kind));
    const auto make = [&]() -> std::string {
        switch (kind) {
        case 0:
            return maker.shortName();
        case 1:
            return maker.withRuns(300);
        case 2:
            return maker.overflowing();
        case 3:
            return maker.nearLimit();
        case 4:
            return maker.countEdges();
        case 5:
            return maker.chance(50) ? maker.withRuns(6) : maker.shortName();
        default:
            return maker.pin();
        }
    };
    for (int i = 0; i < pairs; ++i) {
        const std::string a = make();
        // Half the pairs share a long prefix, where only the place of the difference matters.
        const std::string b = maker.chance(50) ? maker.relative(a) : make();
        const QString mismatch = referenceMismatch(a.c_str(), b.c_str());
        if (!mismatch.isEmpty())
            QFAIL(qPrintable(mismatch));
    }
}

void TestBasePublic::namesAtPageEnds()
{
    // Names whose zero byte is at most a few bytes from an unreadable page, on either side or
    // both: a scan that reads a block past a name's end into the next page faults here. Lengths
    // around the block sizes (8, 16, 32) and the short-name bound (15) matter most.
    PageEnd endA;
    PageEnd endB;
    if (!endA.isValid() || !endB.isValid())
        QSKIP("cannot map a page that cannot be read");
    NameMaker maker(4096u);
    std::vector<std::string> names = {"", "A", "A1", "AB12", "A007", "1", "12345678", "B2C3"};
    for (int length : {7, 8, 9, 14, 15, 16, 17, 31, 32, 33, 47, 48, 70}) {
        names.push_back(std::string(static_cast<std::size_t>(length), 'n'));
        names.push_back(repeated("a1", length).substr(0, static_cast<std::size_t>(length)));
        names.push_back("u_" + maker.digits(length));
    }
    for (int i = 0; i < 16; ++i)
        names.push_back(maker.chance(50) ? maker.withRuns(12) : maker.shortName());
    for (const std::string &a : names) {
        for (const std::string &b : names) {
            for (std::size_t slackA : {0, 1, 8, 15, 16, 40}) {
                for (std::size_t slackB : {0, 3, 16, 31}) {
                    const QString mismatch =
                        referenceMismatch(endA.place(a, slackA), endB.place(b, slackB));
                    if (!mismatch.isEmpty())
                        QFAIL(qPrintable(mismatch));
                }
                // One name before the boundary, the other in ordinary memory.
                const QString mismatch = referenceMismatch(endA.place(a, slackA), b.c_str());
                if (!mismatch.isEmpty())
                    QFAIL(qPrintable(mismatch));
            }
        }
    }
}

void TestBasePublic::ordersHoldWhereDocumented()
{
    // compareNameNum on non-empty names that fit, and comparePinV on everything (overflowing
    // runs included): irreflexive, antisymmetric in sign, and every triple transitive.
    NameMaker maker(7u);
    std::vector<std::string> names;
    for (int i = 0; i < 70; ++i) {
        std::string name = i % 3 == 0 ? maker.overflowing()
                                      : (i % 3 == 1 ? maker.withRuns(4) : maker.countEdges());
        if (name.empty())
            name = "x";
        names.push_back(name);
    }
    for (int i = 0; i < 20; ++i)
        names.push_back(maker.relative(names[static_cast<std::size_t>(i)]) + "q");

    // The first violation found, or an empty text.
    const auto violation = [&](Comparator compare) -> QString {
        const std::size_t n = names.size();
        std::vector<int> table(n * n);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j)
                table[i * n + j] = sign(compare(names[i].c_str(), names[j].c_str()));
        }
        for (std::size_t i = 0; i < n; ++i) {
            if (table[i * n + i] != 0)
                return QStringLiteral("not irreflexive: ") + hex(names[i]);
            for (std::size_t j = 0; j < n; ++j) {
                if (table[i * n + j] != -table[j * n + i])
                    return QStringLiteral("not antisymmetric: %1 | %2")
                        .arg(hex(names[i]), hex(names[j]));
                for (std::size_t k = 0; k < n; ++k) {
                    // i <= j and j <= k give i <= k, strict where either step is.
                    const int ij = table[i * n + j];
                    const int jk = table[j * n + k];
                    if (ij <= 0 && jk <= 0 && table[i * n + k] != std::min(ij, jk)) {
                        return QStringLiteral("not transitive: %1 | %2 | %3")
                            .arg(hex(names[i]), hex(names[j]), hex(names[k]));
                    }
                }
            }
        }
        return QString();
    };
    QCOMPARE(violation(BasePublic::compareNameNum), QString());
    QCOMPARE(violation(BasePublic::comparePinV), QString());

    // compareAlphaNum and comparePinH where every run fits an int.
    names.clear();
    for (int i = 0; i < 60; ++i)
        names.push_back(i % 2 ? maker.withRuns(4) : maker.shortName());
    for (int i = 0; i < 30; ++i)
        names.push_back(maker.relative(names[static_cast<std::size_t>(i)]));
    QCOMPARE(violation(BasePublic::compareAlphaNum), QString());
    QCOMPARE(violation(BasePublic::comparePinH), QString());

    // The documented exceptions: an empty name is ordered before itself, and a run that does
    // not fit an int can close a cycle in comparePinH and compareAlphaNum, where the wrapped
    // difference has the wrong sign.
    QCOMPARE(BasePublic::compareNameNum("", ""), -1);
    if (std::atoi("2147483648") != std::numeric_limits<int>::min())
        QSKIP("this platform's atoi does not wrap 2^31 to INT_MIN");
    const char *const x = "A2147483648";
    const char *const y = "A0";
    const char *const z = "A1073741825";
    for (Comparator compare : {BasePublic::comparePinH, BasePublic::compareAlphaNum}) {
        QVERIFY(compare(x, y) < 0);
        QVERIFY(compare(y, z) < 0);
        QVERIFY(compare(z, x) < 0);
    }
}

void TestBasePublic::stableSortSurvivesEveryInput()
{
    // Names on which compareAlphaNum and comparePinH are not strict weak orderings: a merge sort
    // still stays inside the range (the sanitizer build checks that) and keeps every name.
    NameMaker maker(99u);
    std::vector<std::string> names;
    names.reserve(3002);
    for (int i = 0; i < 3000; ++i)
        names.push_back(i % 2 ? maker.overflowing() : maker.countEdges());
    names.push_back(std::string());
    names.push_back(std::string());
    for (Comparator compare : {BasePublic::compareAlphaNum, BasePublic::compareNameNum,
                               BasePublic::comparePinH, BasePublic::comparePinV}) {
        std::vector<const char *> pointers;
        pointers.reserve(names.size());
        for (const std::string &name : names)
            pointers.push_back(name.c_str());
        std::stable_sort(pointers.begin(), pointers.end(),
                         [compare](const char *a, const char *b) { return compare(a, b) < 0; });
        std::vector<const char *> original;
        original.reserve(names.size());
        for (const std::string &name : names)
            original.push_back(name.c_str());
        std::sort(pointers.begin(), pointers.end());
        std::sort(original.begin(), original.end());
        QVERIFY(pointers == original);
    }
}

// --- The refusal's trace line, in children -----------------------------------------------------

namespace {

int refuseScenario()
{
    // Names come from the environment so that each row can pick its own.
    const QByteArray first = qgetenv("REFUSE_FIRST");
    const QByteArray second = qgetenv("REFUSE_SECOND");
    report(QStringLiteral("result"),
           QString::number(BasePublic::compareNameNum(first.constData(), second.constData())));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("refuse"), refuseScenario}};
}

} // namespace

void TestBasePublic::refusalIsTraced_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("refused");

    const QByteArray overlong = QByteArray::fromStdString(repeated("1a", 341) + "1");
    QTest::newRow("first too long") << overlong << QByteArray("A1") << overlong;
    QTest::newRow("second too long") << QByteArray("A1") << overlong << overlong;
    QTest::newRow("both too long: only the first")
        << QByteArray(2047, 'f') << QByteArray(2047, 's') << QByteArray(2047, 'f');
    // The name is read as UTF-8 and written as Latin-1: e acute becomes the one byte 0xE9.
    const QByteArray accented = QByteArray(2046, 'n') + "\xc3\xa9";
    QTest::newRow("UTF-8 name") << accented << QByteArray("b") << QByteArray(2046, 'n') + "\xe9";
}

void TestBasePublic::refusalIsTraced()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, refused);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    QProcessEnvironment environment = cleanEnvironment(home.path());
    const QString traceFile = home.filePath(QStringLiteral("trace.txt"));
    environment.insert(QStringLiteral("TIVORANDEBUG"), traceFile);
    environment.insert(QStringLiteral("REFUSE_FIRST"), QString::fromLatin1(first));
    environment.insert(QStringLiteral("REFUSE_SECOND"), QString::fromLatin1(second));
    // Non-ASCII bytes in the environment: pass them unchanged.
    if (first.contains('\xc3'))
        environment.insert(QStringLiteral("REFUSE_FIRST"), QString::fromUtf8(first));

    const ChildResult child = runScenario(QStringLiteral("refuse"), environment);
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("result")), QStringLiteral("0"));

    QFile file(traceFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray trace = file.readAll();
    const QByteArray expectedTail = ": Buffer overflow, name string " + refused +
                                    " is too long (any interger is considered 5 bytes)\n";
    QVERIFY2(trace.startsWith(QByteArray(traceTag) + " At "), trace.left(60).constData());
    QVERIFY2(trace.endsWith(expectedTail), trace.right(80).constData());
    // Tag, blank, "At ", the 24 characters of the time, then the message: one line only.
    QCOMPARE(trace.size(), qsizetype(std::strlen(traceTag)) + 4 + 24 + expectedTail.size());
    QCOMPARE(trace.count('\n'), 1);
}

void TestBasePublic::acceptedNamesLeaveNoTrace()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    QProcessEnvironment environment = cleanEnvironment(home.path());
    const QString traceFile = home.filePath(QStringLiteral("trace.txt"));
    environment.insert(QStringLiteral("TIVORANDEBUG"), traceFile);
    environment.insert(QStringLiteral("REFUSE_FIRST"),
                       QString::fromStdString(repeated("1a", 340) + "zzzzzz"));
    environment.insert(QStringLiteral("REFUSE_SECOND"), QStringLiteral("B7"));
    const ChildResult child = runScenario(QStringLiteral("refuse"), environment);
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("result")), QStringLiteral("-1"));
    QVERIFY(!QFile::exists(traceFile));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBasePublic, scenarios)

#include "tst_basepublic.moc"

// Names and patterns. Every comparator gives the same int as its literal version in
// support/reference_comparators.h on generated and adversarial pairs, also with the names right
// before a page that cannot be read: a read past a zero byte faults there, where the sanitizers
// cannot see one inside a string's capacity. The orders hold that the header promises, and
// wildcards translate.
#include <corvekit/basepublic.h>
#include <corvekit/baseqregularexpression.h>

#include "pageend.h"
#include "reference_comparators.h"

#include <QTest>

#include <algorithm>
#include <random>

namespace {

using Comparator = int (*)(const char *, const char *);
const Comparator library[] = {BasePublic::compareAlphaNum, BasePublic::compareNameNum,
                              BasePublic::comparePinH, BasePublic::comparePinV};
const Comparator literal[] = {reference::compareAlphaNum, reference::compareNameNum,
                              reference::comparePinH, reference::comparePinV};

// Names of one kind from a fixed seed, and close relatives of them, which share a long prefix.
struct NameMaker
{
    std::mt19937 random;

    int number(int low, int high) { return std::uniform_int_distribution(low, high)(random); }
    // Any bytes, or (\a only 1) no digits, or (2) digits alone: letters, the blank against a
    // 32-digit run, control bytes against short runs' count bytes, separators, bytes above 0x7F.
    std::string bytes(int count, int only = 0)
    {
        static const char kinds[] = "0123456789AaBbZz -_/[].\x01\x02\x05\x1f\x7f\x80\xe9\xff";
        std::string result;
        for (int i = 0; i < count; ++i)
            result += kinds[number(only == 1 ? 10 : 0, only == 2 ? 9 : int(sizeof kinds) - 2)];
        return result;
    }
    std::string name(int kind)
    {
        switch (kind) {
        case 0: // digit runs of up to 300 digits between other bytes
            return bytes(number(0, 3), 1) + bytes(number(1, 300), 2) + bytes(number(0, 2)) +
                   bytes(number(1, 6), 2);
        case 1: // runs around 2^31, 2^32 and beyond what strtol reads
            return bytes(number(0, 1), 1) + (number(0, 1) ? "214748364" : "429496729") +
                   bytes(number(0, 12), 2);
        case 2: // about 682 bytes, and about 2046 encoded bytes, with and without digits
            return number(0, 1) ? std::string(std::size_t(number(2040, 2050)), 'n')
                                : QByteArray("1a").repeated(number(336, 344)).toStdString() +
                                      bytes(number(0, 8), 1);
        case 3: // runs of 256 digits and its multiples, and bytes equal to a run's count byte
            return "A" + (number(0, 1) ? bytes(256 * number(1, 2) + number(-1, 1), 2)
                                       : std::string(1, char(number(1, 40))) + bytes(1, 2));
        case 4: // pins whose letter part or number ends about 7, 8, 15 or 16 bytes in
            return bytes(number(0, 16), 1) + bytes(number(0, 17), 2) + bytes(number(0, 1));
        default: // short names of any bytes
            return bytes(number(0, 12));
        }
    }
    std::string relative(std::string name)
    {
        const auto at = std::size_t(number(0, int(name.size())));
        return number(0, 1) ? name.insert(at, 1, char('0' + number(0, 2)))
                            : name.substr(0, at) + bytes(number(0, 2));
    }
};

// The first comparator, both ways round, that differs from its literal version; -1 if none.
int mismatch(const char *a, const char *b)
{
    for (int i = 0; i < 4; ++i) {
        if (library[i](a, b) != literal[i](a, b) || library[i](b, a) != literal[i](b, a))
            return i;
    }
    return -1;
}

} // namespace

class TestNames : public QObject
{
    Q_OBJECT

private slots:
    void matchesLiteral_data();
    void matchesLiteral();
    void ordersHold_data();
    void ordersHold();
    void wildcard_data();
    void wildcard();
};

void TestNames::matchesLiteral_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("digit runs") << 0;
    QTest::newRow("runs beyond int") << 1;
    QTest::newRow("around the length limit") << 2;
    QTest::newRow("count bytes and 256-digit runs") << 3;
    QTest::newRow("pins across 7, 8, 15 and 16 bytes") << 4;
    QTest::newRow("short names of any bytes") << 5;
}

void TestNames::matchesLiteral()
{
    QFETCH(int, kind);
    char *const endA = readableEnd(4096);
    char *const endB = readableEnd(4096);
    QVERIFY(endA && endB);
    NameMaker maker{std::mt19937(20261124u + unsigned(kind))};
    // Long runs cost the literal versions an atoi at every digit: fewer pairs of them.
    const int pairs[] = {3000, 10000, 1000, 1500, 10000, 10000};
    for (int i = 0; i < pairs[kind]; ++i) {
        const std::string a = maker.name(kind);
        const std::string b = maker.number(0, 1) ? maker.relative(a) : maker.name(kind);
        // In ordinary memory, then each ending 0 to 40 bytes before the page.
        const char *x = placeBefore(endA, a, std::size_t(i % 41));
        const char *y = placeBefore(endB, b, std::size_t(i / 41 % 41));
        if (mismatch(a.c_str(), b.c_str()) >= 0 || mismatch(x, y) >= 0)
            QFAIL(QByteArray(QByteArray::fromStdString(a).toHex(' ') + " | " +
                             QByteArray::fromStdString(b).toHex(' '))
                      .constData());
    }
    QCOMPARE(BasePublic::compareNameNum(nullptr, ""), -1);
    QCOMPARE(BasePublic::compareNameNum("A1", nullptr), 1);
}

void TestNames::ordersHold_data()
{
    QTest::addColumn<int>("comparator");
    QTest::addColumn<bool>("anyRun");
    QTest::newRow("compareAlphaNum, runs within int") << 0 << false;
    QTest::newRow("compareNameNum, non-empty names") << 1 << true;
    QTest::newRow("comparePinH, runs within int") << 2 << false;
    QTest::newRow("comparePinV") << 3 << true;
}

void TestNames::ordersHold()
{
    QFETCH(int, comparator);
    QFETCH(bool, anyRun);
    NameMaker maker{std::mt19937(7u)};
    std::vector<std::string> names;
    const auto isDigit = [](char c, char) { return c >= '0' && c <= '9'; };
    for (int i = 0; names.size() < 90; ++i) {
        const std::string name = i % 3 == 2 && !names.empty()
                                     ? maker.relative(names[i % names.size()])
                                     : maker.name(i % 6);
        // Not too long for compareNameNum; no run of ten digits, which may not fit an int.
        if (!name.empty() && name.size() < 682 &&
            (anyRun || std::search_n(name.begin(), name.end(), 10, '0', isDigit) == name.end()))
            names.push_back(name);
    }
    const std::size_t n = names.size();
    std::vector<int> sign(n * n);
    for (std::size_t i = 0; i < n * n; ++i) {
        const int result = library[comparator](names[i / n].c_str(), names[i % n].c_str());
        sign[i] = (result > 0) - (result < 0);
    }
    // Irreflexive, antisymmetric, and i <= j <= k gives i <= k, strict where either step is.
    for (std::size_t t = 0; t < n * n * n; ++t) {
        const std::size_t i = t / n / n;
        const std::size_t j = t / n % n;
        const std::size_t k = t % n;
        const int ij = sign[i * n + j];
        const int jk = sign[j * n + k];
        if (sign[i * n + i] != 0 || ij != -sign[j * n + i] ||
            (ij <= 0 && jk <= 0 && sign[i * n + k] != std::min(ij, jk)))
            QFAIL((names[i] + " | " + names[j] + " | " + names[k]).c_str());
    }
}

// Each character that must be escaped is checked against the literal translation by the
// comparators' fuzz corpus, which ctest replays; these rows are the rest.
void TestNames::wildcard_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &pattern, const QString &expected) {
        QTest::newRow(name) << pattern << expected;
    };
    row("star", "a*b", "a.*b");
    row("empty gives null", "", QString());
    row("null gives null", QString(), QString());
}

void TestNames::wildcard()
{
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    const QString expression = BaseQRegularExpression::wildcardToRegularExpression(pattern);
    QCOMPARE(expression, expected);
    QCOMPARE(expression.isNull(), expected.isNull());
}

QTEST_GUILESS_MAIN(TestNames)

#include "tst_names.moc"

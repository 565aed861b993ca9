// `corvekit sort` and `corvekit wildcard`, run as a user runs them: the built tool in a child
// with a clean environment and a temporary home.
#include "childprocess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString toolPath()
{
    return QStringLiteral(CORVEKIT_TOOL_PATH);
}

} // namespace

class TestToolComparators : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void sortOrders_data();
    void sortOrders();
    void sortIsStable();
    void sortReadsFilesInTurn();
    void sortRefuses_data();
    void sortRefuses();

    void wildcardPrintsAndMatches_data();
    void wildcardPrintsAndMatches();
    void wildcardEmptyPattern();
    void wildcardJson();

private:
    ChildResult run(const QStringList &arguments, const QByteArray &input = QByteArray());

    QTemporaryDir m_home;
};

void TestToolComparators::init()
{
    QVERIFY(m_home.isValid());
}

ChildResult TestToolComparators::run(const QStringList &arguments, const QByteArray &input)
{
    return runProgram(toolPath(), arguments, cleanEnvironment(m_home.path()), m_home.path(), input);
}

void TestToolComparators::sortOrders_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray sample = "B2\nA10\nAA1\nA\nB1\nD\nA2\nAB3\nA1\n";
    QTest::newRow("alphanum is the default")
        << QStringList() << sample << QByteArray("A\nA1\nA2\nA10\nAA1\nAB3\nB1\nB2\nD\n");
    QTest::newRow("namenum") << QStringList{"--by", "namenum"} << sample
                             << QByteArray("A\nA1\nA2\nA10\nAA1\nAB3\nB1\nB2\nD\n");
    QTest::newRow("pinh") << QStringList{"--by", "pinh"} << sample
                          << QByteArray("A1\nA2\nA10\nB1\nB2\nAA1\nAB3\nA\nD\n");
    QTest::newRow("pinv") << QStringList{"--by", "pinv"} << sample
                          << QByteArray("A\nD\nA1\nB1\nAA1\nA2\nB2\nAB3\nA10\n");
    QTest::newRow("pinv reversed") << QStringList{"--by", "pinv", "--reverse"} << sample
                                   << QByteArray("A10\nAB3\nB2\nA2\nAA1\nB1\nA1\nD\nA\n");
    // Where the orders part: digit count first in namenum, value first in alphanum.
    QTest::newRow("leading zeros, alphanum")
        << QStringList() << QByteArray("A007\nA10\n") << QByteArray("A007\nA10\n");
    QTest::newRow("leading zeros, namenum")
        << QStringList{"--by", "namenum"} << QByteArray("A007\nA10\n") << QByteArray("A10\nA007\n");
    QTest::newRow("CRLF lines and no final newline")
        << QStringList() << QByteArray("net10\r\nnet9\r\nnet1")
        << QByteArray("net1\nnet9\nnet10\n");
    QTest::newRow("bytes above 0x7f kept as they are")
        << QStringList() << QByteArray("\xe9t\xe9\nzeta\n") << QByteArray("zeta\n\xe9t\xe9\n");
    QTest::newRow("no input") << QStringList() << QByteArray() << QByteArray();
}

void TestToolComparators::sortOrders()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, expected);
    const ChildResult result = run(QStringList{"sort"} + options, input);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardOutput, expected);
    QVERIFY(result.standardError.isEmpty());
}

void TestToolComparators::sortIsStable()
{
    // Under pinh, A1C, A1B and A01 are equal (only the first number counts): they keep their
    // input order, also reversed, around the names that differ.
    const QByteArray input = "B1\nA1C\nA2\nA1B\nA01\n";
    ChildResult result = run({"sort", "--by", "pinh"}, input);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardOutput, QByteArray("A1C\nA1B\nA01\nA2\nB1\n"));
    result = run({"sort", "--by", "pinh", "--reverse"}, input);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardOutput, QByteArray("B1\nA2\nA1C\nA1B\nA01\n"));
}

void TestToolComparators::sortReadsFilesInTurn()
{
    const QString first = m_home.filePath(QStringLiteral("first.txt"));
    const QString second = m_home.filePath(QStringLiteral("second.txt"));
    QVERIFY(writeFile(first, "bus[10]\nbus[2]\n"));
    QVERIFY(writeFile(second, "bus[1]\n"));
    // Standard input is not read when files are named.
    const ChildResult result = run({"sort", first, second}, "ignored\n");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardOutput, QByteArray("bus[1]\nbus[2]\nbus[10]\n"));
}

void TestToolComparators::sortRefuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");

    QTest::newRow("missing file") << QStringList{"sort", "missing.txt"} << QByteArray() << 1
                                  << "corvekit: sort: missing.txt: no such file";
    QTest::newRow("directory") << QStringList{"sort", "."} << QByteArray() << 3
                               << "corvekit: sort: .: cannot read";
    QTest::newRow("unknown order") << QStringList{"sort", "--by", "size"} << QByteArray() << 2
                                   << "corvekit: sort: unknown order 'size'; use alphanum, "
                                      "namenum, pinh or pinv";
    QTest::newRow("zero byte") << QStringList{"sort"} << QByteArray("a\nb\0c\n", 6) << 3
                               << "corvekit: sort: name 2 holds a zero byte";
}

void TestToolComparators::sortRefuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, input);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const ChildResult result = run(arguments, input);
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY(result.standardOutput.isEmpty());
    QCOMPARE(result.errorLines(), QStringList{message});
}

void TestToolComparators::wildcardPrintsAndMatches_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("star, whole names only")
        << QStringList{"clk*", "clk", "clk_a", "xclk"} << QStringList{"clk.*", "clk", "clk_a"};
    QTest::newRow("question mark")
        << QStringList{"A?", "A1", "A10", "B1"} << QStringList{"A.", "A1"};
    QTest::newRow("brackets are literal")
        << QStringList{"bus[3]", "bus[3]", "bus3"} << QStringList{"bus\\[3\\]", "bus[3]"};
    QTest::newRow("dot is literal")
        << QStringList{"*.v", "top.v", "top_v"} << QStringList{".*\\.v", "top.v"};
    QTest::newRow("slash is ordinary")
        << QStringList{"u_core/*", "u_core/u_alu/q"} << QStringList{"u_core/.*", "u_core/u_alu/q"};
    QTest::newRow("expression only") << QStringList{"(x|y)"} << QStringList{"\\(x\\|y\\)"};
    QTest::newRow("no name matches") << QStringList{"^top$", "top"} << QStringList{"\\^top\\$"};
}

void TestToolComparators::wildcardPrintsAndMatches()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);
    const ChildResult result = run(QStringList{"wildcard"} + arguments);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.outputLines(), expected);
}

void TestToolComparators::wildcardEmptyPattern()
{
    const ChildResult result = run({"wildcard", "", "name"});
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.standardOutput.isEmpty());
    QCOMPARE(result.errorLines(),
             QStringList{"corvekit: wildcard: an empty pattern has no expression"});

    const ChildResult missing = run({"wildcard"});
    QCOMPARE(missing.exitCode, 2);
}

void TestToolComparators::wildcardJson()
{
    ChildResult result = run({"wildcard", "--json", "n?t*", "net1", "nut", "net"});
    QCOMPARE(result.exitCode, 0);
    QJsonObject object = QJsonDocument::fromJson(result.standardOutput).object();
    QCOMPARE(object.value("pattern").toString(), QStringLiteral("n?t*"));
    QCOMPARE(object.value("expression").toString(), QStringLiteral("n.t.*"));
    QCOMPARE(object.value("matches").toArray(), QJsonArray({"net1", "nut", "net"}));

    result = run({"wildcard", "--json", ""});
    QCOMPARE(result.exitCode, 1);
    object = QJsonDocument::fromJson(result.standardOutput).object();
    QVERIFY(object.value("expression").isNull());
    QCOMPARE(object.value("matches").toArray(), QJsonArray());
}

QTEST_GUILESS_MAIN(TestToolComparators)

#include "tst_tool_comparators.moc"

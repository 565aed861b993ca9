// The profiler's report: widths, rule lines, header and rows, checked line by line against
// figures set through the utility library's fake probes.
#include "profilertesting.h"

#include <QTest>

#include <functional>

using hulmar::testing::FakeProbes;
using hulmar::testing::MessageCapture;
using tivoran::corvekit::Profiler;

namespace {

constexpr std::int64_t MB = std::int64_t{1024} * 1024;

using Recording = std::function<void(Profiler &, FakeProbes &)>;

// Runs one task from start to stop with the given growth of CPU, real time and memory.
void run(Profiler &profiler, FakeProbes &probes, const char *name, double cpu, double real,
         std::int64_t memory)
{
    profiler.startRecord(name);
    advance(probes, cpu, real, memory);
    profiler.stopRecord();
}

} // namespace

Q_DECLARE_METATYPE(Recording)

class TestProfilerReport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void lines_data();
    void lines();
    void headingBlock();
    void reportTwiceChangesNothing();
    void disabledReportIsSilent();
    void lineGoesToLoggingCategory();
};

void TestProfilerReport::initTestCase()
{
    silenceProfilerCategory();
}

void TestProfilerReport::lines_data()
{
    // Every posting after the heading block: rule, header, rule, rows, rule.
    QTest::addColumn<Recording>("recording");
    QTest::addColumn<QStringList>("lines");

    const QString rule = QStringLiteral("----------+-------------+--------------+-------------");
    const QString header = QStringLiteral("Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)");

    QTest::newRow("empty") << Recording([](Profiler &, FakeProbes &) {})
                           << QStringList{rule, header, rule, rule};

    QTest::newRow("worked example")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               profiler.startRecord("Load Design");
               profiler.startRecord("Parse");
               profiler.setLatestTaskTitle("Parse VHDL");
               advance(probes, 0.5, 0.75, -1 * MB);
               profiler.stopRecord();
               advance(probes, 0.75, 1.75, 3670016 + 1 * MB);
               profiler.stopRecord();
               run(profiler, probes, "Map", 12.34, 60, 0);
           })
        << QStringList{"------------+-------------+--------------+-------------",
                       "  Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)",
                       "------------+-------------+--------------+-------------",
                       "Load Design |        1.25 |         2.50 |        +3.50",
                       " Parse VHDL |        0.50 |         0.75 |        -1.00",
                       "Map         |       12.34 |        60.00 |        +0.00",
                       "------------+-------------+--------------+-------------"};

    QTest::newRow("deep level widens the name column")
        << Recording([](Profiler &profiler, FakeProbes &) {
               const char *const names[] = {"a", "b", "c", "d", "e", "f",
                                            "g", "h", "i", "j", "k", "l"};
               for (const char *name : names)
                   profiler.startRecord(name);
               for (int i = 0; i < 12; ++i)
                   profiler.stopRecord();
           })
        << [] {
               QStringList lines{"-------------+-------------+--------------+-------------",
                                 "   Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)",
                                 "-------------+-------------+--------------+-------------"};
               for (int level = 0; level < 12; ++level) {
                   lines.append(QString(level, QLatin1Char(' ')) +
                                QString(QLatin1Char(char('a' + level))).leftJustified(12 - level) +
                                QStringLiteral(" |        0.00 |         0.00 |        +0.00"));
               }
               lines.append(lines.first());
               return lines;
           }();

    QTest::newRow("title counts for the width, name does not")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               profiler.startRecord("A very long task name");
               profiler.setLatestTaskTitle("Short");
               advance(probes, 1, 1, 0);
               profiler.stopRecord();
           })
        << QStringList{rule, header, rule, "Short     |        1.00 |         1.00 |        +0.00",
                       rule};

    QTest::newRow("negative memory keeps its sign and the width")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               run(profiler, probes, "Free", 0.01, 0.02, -500 * MB);
           })
        << QStringList{rule, header, rule, "Free      |        0.01 |         0.02 |      -500.00",
                       rule};

    QTest::newRow("wide figure shifts only its own row")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               run(profiler, probes, "Long", 123456789.0, 1, 0);
               run(profiler, probes, "Short", 1, 1, 0);
           })
        << QStringList{rule,
                       header,
                       rule,
                       "Long      | 123456789.00 |         1.00 |        +0.00",
                       "Short     |        1.00 |         1.00 |        +0.00",
                       rule};

    QTest::newRow("figures above 1e11 widen their columns by their log10")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               run(profiler, probes, "Huge", 2e12, 3e13, 0);
               probes.currentMemory = 0;
               run(profiler, probes, "Grow", 0, 0, 2000000000000000000);
               probes.currentMemory = 512 * MB;
           })
        << QStringList{"----------+--------------+---------------+--------------",
                       "Task Name |  CPU Time(s) |  Real Time(s) |  Delta Mem(M)",
                       "----------+--------------+---------------+--------------",
                       "Huge      | 2000000000000.00 | 30000000000000.00 |         +0.00",
                       "Grow      |         0.00 |          0.00 | +1907348632812.50",
                       "----------+--------------+---------------+--------------"};

    QTest::newRow("running task shows finished runs only")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               run(profiler, probes, "Route", 2, 3, 4 * MB);
               profiler.startRecord("Route");
               profiler.startRecord("Never stopped");
               advance(probes, 5, 5, 5 * MB);
           })
        << QStringList{"---------------+-------------+--------------+-------------",
                       "     Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)",
                       "---------------+-------------+--------------+-------------",
                       "Route          |        2.00 |         3.00 |        +4.00",
                       " Never stopped |        0.00 |         0.00 |        +0.00",
                       "---------------+-------------+--------------+-------------"};

    QTest::newRow("first place, latest level")
        << Recording([](Profiler &profiler, FakeProbes &probes) {
               run(profiler, probes, "Check", 1, 1, 0);
               profiler.startRecord("Flow");
               run(profiler, probes, "Check", 1, 1, 0);
               profiler.stopRecord();
           })
        << QStringList{rule,
                       header,
                       rule,
                       " Check    |        2.00 |         2.00 |        +0.00",
                       "Flow      |        1.00 |         1.00 |        +0.00",
                       rule};

    QTest::newRow("long name is never cut")
        << Recording([](Profiler &profiler, FakeProbes &) {
               profiler.startRecord(QByteArray(600, 'x').constData());
               profiler.stopRecord();
           })
        << QStringList{QString(601, QLatin1Char('-')) +
                           QStringLiteral("+-------------+--------------+-------------"),
                       QString(591, QLatin1Char(' ')) +
                           QStringLiteral("Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)"),
                       QString(601, QLatin1Char('-')) +
                           QStringLiteral("+-------------+--------------+-------------"),
                       QString(600, QLatin1Char('x')) +
                           QStringLiteral(" |        0.00 |         0.00 |        +0.00"),
                       QString(601, QLatin1Char('-')) +
                           QStringLiteral("+-------------+--------------+-------------")};
}

void TestProfilerReport::lines()
{
    QFETCH(Recording, recording);
    QFETCH(QStringList, lines);

    FakeProbes probes;
    probes.currentMemory = 512 * MB;
    Profiler profiler = makeProfiler(Mode::Enabled);
    recording(profiler, probes);

    MessageCapture capture;
    profiler.report("Summary");
    const QStringList posted = postedTexts(capture);
    QCOMPARE(posted.size(), lines.size() + 1);
    QCOMPARE(posted.mid(1), lines);
    for (const auto &message : capture.messages())
        QCOMPARE(message.number, std::string("1009993"));
}

void TestProfilerReport::headingBlock()
{
    FakeProbes probes;
    probes.currentMemory = 536870912;
    probes.peakMemory = 805306368 + 1048575; // truncates to whole MB
    Profiler profiler = makeProfiler(Mode::Enabled);
    MessageCapture capture;
    profiler.report("Summary");
    QCOMPARE(postedTexts(capture).value(0),
             QStringLiteral("\nSummary\n  Current Memory: 512M\n  Peak Memory:    768M\n"));

    capture.clear();
    profiler.report("");
    QCOMPARE(postedTexts(capture).value(0),
             QStringLiteral("\n\n  Current Memory: 512M\n  Peak Memory:    768M\n"));
    capture.clear();
    profiler.report(nullptr);
    QCOMPARE(postedTexts(capture).value(0),
             QStringLiteral("\n\n  Current Memory: 512M\n  Peak Memory:    768M\n"));
}

void TestProfilerReport::reportTwiceChangesNothing()
{
    FakeProbes probes;
    probes.currentMemory = 100 * MB;
    Profiler profiler = makeProfiler(Mode::Enabled);
    run(profiler, probes, "Place", 1, 2, 3 * MB);

    MessageCapture capture;
    profiler.report("First");
    const QStringList first = postedTexts(capture);
    capture.clear();
    probes.currentMemory = 300 * MB;
    profiler.report("First");
    const QStringList second = postedTexts(capture);
    QCOMPARE(second.mid(1), first.mid(1));
    QVERIFY(first.at(0).contains(QLatin1String("Current Memory: 103M")));
    QVERIFY(second.at(0).contains(QLatin1String("Current Memory: 300M")));
}

void TestProfilerReport::disabledReportIsSilent()
{
    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Disabled);
    MessageCapture capture;
    profiler.report("Summary");
    QVERIFY(capture.messages().empty());
    QCOMPARE(probes.readings, 0);
}

namespace {
QStringList loggedLines;
void keepProfilerRecords(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtDebugMsg && qstrcmp(context.category, "gui.profiler.log") == 0)
        loggedLines.append(message);
}
} // namespace

void TestProfilerReport::lineGoesToLoggingCategory()
{
    FakeProbes probes;
    probes.currentMemory = 512 * MB;
    probes.peakMemory = 768 * MB;
    Profiler profiler = makeProfiler(Mode::Enabled);
    MessageCapture capture;
    QLoggingCategory::setFilterRules(QStringLiteral("gui.profiler.log.debug=true"));
    loggedLines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepProfilerRecords);
    profiler.report("Summary");
    qInstallMessageHandler(previous);
    silenceProfilerCategory();
    QCOMPARE(loggedLines, postedTexts(capture));
    QCOMPARE(loggedLines.size(), 5);
}

QTEST_GUILESS_MAIN(TestProfilerReport)
#include "tst_profiler_report.moc"

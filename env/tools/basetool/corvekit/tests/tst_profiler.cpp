// Task records of the profiler: switches, nesting, sums, titles, clear, copies and detail lines.
// Figures come from the utility library's fake probes, so every sum is known in advance.
#include "profilertesting.h"
#include "support/childprocess.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>
#include <memory>

using hulmar::testing::FakeProbes;
using hulmar::testing::MessageCapture;
using tivoran::corvekit::Profiler;

namespace {

constexpr std::int64_t MB = std::int64_t{1024} * 1024;

// The rows of a report of `profiler`: every posting between the header's closing rule and the
// closing rule.
QStringList reportRows(Profiler &profiler)
{
    MessageCapture capture;
    profiler.report("rows");
    const QStringList texts = postedTexts(capture);
    if (texts.size() < 5)
        return {QStringLiteral("<no report>")};
    return texts.mid(4, texts.size() - 5);
}

// The name column of each report row with its indentation and without the padding behind it.
QStringList indentedNames(Profiler &profiler)
{
    static const QRegularExpression firstVisible(QStringLiteral("\\S"));
    QStringList names;
    for (const QString &row : reportRows(profiler)) {
        const QString indentation(row.indexOf(firstVisible), QLatin1Char(' '));
        names.append(indentation + row.left(row.indexOf(QLatin1String(" |"))).trimmed());
    }
    return names;
}

// Scenario for the switch table: reports whether a profiler built under the child's
// environment records and whether it posts detail lines.
int switchesScenario()
{
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler;
    profiler.startRecord("task");
    profiler.stopRecord();
    const bool detail = !capture.messages().empty();
    report(QStringLiteral("enabled"), profiler.is_enabled() ? "yes" : "no");
    report(QStringLiteral("detail"), detail ? "yes" : "no");
    return 0;
}

// A change of the switches reaches new objects only.
int readOnceScenario()
{
    FakeProbes probes;
    MessageCapture capture;
    Profiler before;
    qputenv("ENABLE_GUI_PROFILER", "1");
    qputenv("ENABLE_GUI_PROFILER_DETAIL", "1");
    Profiler after;
    before.startRecord("before");
    before.stopRecord();
    report(QStringLiteral("beforeEnabled"), before.is_enabled() ? "yes" : "no");
    report(QStringLiteral("beforePosted"), QString::number(capture.messages().size()));
    after.startRecord("after");
    after.stopRecord();
    report(QStringLiteral("afterEnabled"), after.is_enabled() ? "yes" : "no");
    report(QStringLiteral("afterPosted"), QString::number(capture.messages().size()));
    // A copy reads no variable: it takes the flags of its source.
    qunsetenv("ENABLE_GUI_PROFILER");
    Profiler copy(after);
    report(QStringLiteral("copyEnabled"), copy.is_enabled() ? "yes" : "no");
    return 0;
}

int utcHour()
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    return utc.tm_hour;
}

// A detail line's time is local time, in the zone that TZ gives the child.
int localTimeScenario()
{
    MessageCapture capture;
    Profiler profiler;
    const int before = utcHour();
    profiler.startRecord("Place");
    const int after = utcHour();
    const QString line = postedTexts(capture).value(0);
    report(QStringLiteral("line"), line);
    report(QStringLiteral("utcBefore"), QString::number(before));
    report(QStringLiteral("utcAfter"), QString::number(after));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("switches"), switchesScenario},
            {QStringLiteral("readOnce"), readOnceScenario},
            {QStringLiteral("localTime"), localTimeScenario}};
}

} // namespace

class TestProfiler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void switches_data();
    void switches();
    void switchesAreReadAtConstruction();

    void disabledDoesNothing();
    void nesting_data();
    void nesting();
    void runsOfOneNameAddUp();
    void namesAreCaseSensitive();
    void reentryOfRunningName();
    void titles_data();
    void titles();
    void stopAndTitleWithoutRunningTask();
    void clearForgetsEverything();
    void manyNamesKeepTheirOrder();

    void detailLines();
    void detailTimeIsLocal();
    void nullNameIsTheEmptyName();
    void detailLinesFallOutsideTheInterval();

    void copySharesRecords();
    void copyOutlivesClearedOriginal();
    void originalOutlivesDestroyedCopy();
    void assignment();
};

void TestProfiler::initTestCase()
{
    silenceProfilerCategory();
}

void TestProfiler::switches_data()
{
    QTest::addColumn<QByteArray>("enable"); // "<unset>" leaves the variable out
    QTest::addColumn<QByteArray>("detail");
    QTest::addColumn<QString>("enabled");
    QTest::addColumn<QString>("posts");

    const QByteArray unset("<unset>");
    QTest::newRow("both unset") << unset << unset << "no"
                                << "no";
    QTest::newRow("empty") << QByteArray("") << unset << "no"
                           << "no";
    QTest::newRow("0") << QByteArray("0") << unset << "no"
                       << "no";
    QTest::newRow("true") << QByteArray("true") << unset << "no"
                          << "no";
    QTest::newRow("blank then 1") << QByteArray(" 1") << unset << "no"
                                  << "no";
    QTest::newRow("1") << QByteArray("1") << unset << "yes"
                       << "no";
    QTest::newRow("10") << QByteArray("10") << unset << "yes"
                        << "no";
    QTest::newRow("1abc") << QByteArray("1abc") << unset << "yes"
                          << "no";
    QTest::newRow("detail without enable") << unset << QByteArray("1") << "no"
                                           << "no";
    QTest::newRow("detail with enable 0") << QByteArray("0") << QByteArray("1") << "no"
                                          << "no";
    QTest::newRow("detail 0") << QByteArray("1") << QByteArray("0") << "yes"
                              << "no";
    QTest::newRow("detail empty") << QByteArray("1") << QByteArray("") << "yes"
                                  << "no";
    QTest::newRow("detail 1") << QByteArray("1") << QByteArray("1") << "yes"
                              << "yes";
    QTest::newRow("detail 10") << QByteArray("1") << QByteArray("10") << "yes"
                               << "yes";
}

void TestProfiler::switches()
{
    QFETCH(QByteArray, enable);
    QFETCH(QByteArray, detail);
    QFETCH(QString, enabled);
    QFETCH(QString, posts);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    QProcessEnvironment environment = cleanEnvironment(home.path());
    if (enable != "<unset>")
        environment.insert(QStringLiteral("ENABLE_GUI_PROFILER"), QString::fromLatin1(enable));
    if (detail != "<unset>")
        environment.insert(QStringLiteral("ENABLE_GUI_PROFILER_DETAIL"),
                           QString::fromLatin1(detail));
    const ChildResult child = runScenario(QStringLiteral("switches"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("enabled")), enabled);
    QCOMPARE(child.value(QStringLiteral("detail")), posts);
}

void TestProfiler::switchesAreReadAtConstruction()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult child =
        runScenario(QStringLiteral("readOnce"), cleanEnvironment(home.path()));
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("beforeEnabled")), QStringLiteral("no"));
    QCOMPARE(child.value(QStringLiteral("beforePosted")), QStringLiteral("0"));
    QCOMPARE(child.value(QStringLiteral("afterEnabled")), QStringLiteral("yes"));
    QCOMPARE(child.value(QStringLiteral("afterPosted")), QStringLiteral("2"));
    QCOMPARE(child.value(QStringLiteral("copyEnabled")), QStringLiteral("yes"));
}

void TestProfiler::disabledDoesNothing()
{
    Profiler profiler = makeProfiler(Mode::Disabled);
    FakeProbes probes;
    MessageCapture capture;
    profiler.startRecord("Place");
    profiler.setLatestTaskTitle("Placing");
    profiler.startRecord("Route");
    profiler.stopRecord();
    profiler.stopRecord();
    profiler.stopRecord();
    profiler.report("Summary");
    profiler.clear();
    Profiler copy(profiler);
    copy.startRecord("Copy");
    copy.report("Copy");
    QVERIFY(!profiler.is_enabled());
    QVERIFY(!copy.is_enabled());
    QCOMPARE(probes.readings, 0);
    QVERIFY(capture.messages().empty());
}

void TestProfiler::nesting_data()
{
    // Each step is "+name" (start) or "-" (stop); the rows list name and indentation.
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("three levels") << QStringList{"+Load", "+Parse", "+Lex", "-", "-", "-"}
                                  << QStringList{"Load", " Parse", "  Lex"};
    QTest::newRow("siblings share a level")
        << QStringList{"+Flow", "+Synth", "-", "+Place", "-", "+Route", "-", "-"}
        << QStringList{"Flow", " Synth", " Place", " Route"};
    QTest::newRow("later nesting keeps the first place")
        << QStringList{"+Check", "-", "+Flow", "+Check", "-", "-"} << QStringList{" Check", "Flow"};
    QTest::newRow("later top level start lifts a nested record")
        << QStringList{"+Flow", "+Check", "-", "-", "+Check", "-"} << QStringList{"Flow", "Check"};
    QTest::newRow("stop returns to the parent")
        << QStringList{"+A", "+B", "-", "+C", "+D", "-", "-", "-", "+E", "-"}
        << QStringList{"A", " B", " C", "  D", "E"};
}

void TestProfiler::nesting()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, rows);

    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Enabled);
    for (const QString &step : steps) {
        if (step.startsWith(QLatin1Char('+')))
            profiler.startRecord(step.mid(1).toUtf8().constData());
        else
            profiler.stopRecord();
    }
    QCOMPARE(indentedNames(profiler), rows);
}

void TestProfiler::runsOfOneNameAddUp()
{
    FakeProbes probes;
    probes.currentMemory = 100 * MB;
    Profiler profiler = makeProfiler(Mode::Enabled);

    profiler.startRecord("Place");
    advance(probes, 1.5, 2.0, 3 * MB);
    profiler.stopRecord();
    advance(probes, 7.0, 7.0, 50 * MB); // between runs: counts nowhere
    profiler.startRecord("Place");
    advance(probes, 0.25, 1.0, -1 * MB);
    profiler.stopRecord();

    QCOMPARE(reportRows(profiler),
             QStringList{"Place     |        1.75 |         3.00 |        +2.00"});
}

void TestProfiler::namesAreCaseSensitive()
{
    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Enabled);
    for (const char *name : {"place", "Place", "PLACE", "place"}) {
        profiler.startRecord(name);
        advance(probes, 1.0, 1.0, 0);
        profiler.stopRecord();
    }
    QCOMPARE(reportRows(profiler),
             (QStringList{"place     |        2.00 |         2.00 |        +0.00",
                          "Place     |        1.00 |         1.00 |        +0.00",
                          "PLACE     |        1.00 |         1.00 |        +0.00"}));
}

void TestProfiler::reentryOfRunningName()
{
    // The inner start finds the running record: its level goes one up, its interval begins
    // anew, and both stops add to it.
    FakeProbes probes;
    probes.currentMemory = 100 * MB;
    Profiler profiler = makeProfiler(Mode::Enabled);
    profiler.startRecord("Solve");
    advance(probes, 1.0, 1.0, 1 * MB);
    profiler.startRecord("Solve");
    advance(probes, 2.0, 2.0, 2 * MB);
    profiler.stopRecord(); // 2 s, 2 MB since the inner start
    advance(probes, 4.0, 4.0, 4 * MB);
    profiler.stopRecord(); // 6 s, 6 MB since the inner start
    profiler.startRecord("After");
    profiler.stopRecord();

    QCOMPARE(reportRows(profiler),
             (QStringList{" Solve    |        8.00 |         8.00 |        +8.00",
                          "After     |        0.00 |         0.00 |        +0.00"}));
}

void TestProfiler::titles_data()
{
    // Steps: "+name" starts, "-" stops, "=text" sets a title, "=" an empty one, "0" a null one.
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("title replaces the name")
        << QStringList{"+Parse", "=Parse VHDL", "-"} << QStringList{"Parse VHDL"};
    QTest::newRow("latest title wins")
        << QStringList{"+Parse", "=first", "=second", "-"} << QStringList{"second"};
    QTest::newRow("empty title falls back to the name")
        << QStringList{"+Parse", "=Parse VHDL", "=", "-"} << QStringList{"Parse"};
    QTest::newRow("null title changes nothing")
        << QStringList{"+Parse", "=Parse VHDL", "0", "-"} << QStringList{"Parse VHDL"};
    QTest::newRow("title stays for a later run")
        << QStringList{"+Parse", "=Parse VHDL", "-", "+Parse", "-"} << QStringList{"Parse VHDL"};
    QTest::newRow("after a stop the parent gets the title")
        << QStringList{"+Flow", "+Map", "-", "=Full flow", "-"} << QStringList{"Full flow", " Map"};
    QTest::newRow("title goes to the innermost task")
        << QStringList{"+Flow", "+Map", "=Mapping", "-", "-"} << QStringList{"Flow", " Mapping"};
}

void TestProfiler::titles()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, names);

    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Enabled);
    for (const QString &step : steps) {
        const QByteArray argument = step.mid(1).toUtf8();
        if (step.startsWith(QLatin1Char('+')))
            profiler.startRecord(argument.constData());
        else if (step == QLatin1String("-"))
            profiler.stopRecord();
        else if (step == QLatin1String("0"))
            profiler.setLatestTaskTitle(nullptr);
        else
            profiler.setLatestTaskTitle(argument.constData());
    }
    QCOMPARE(indentedNames(profiler), names);
}

void TestProfiler::stopAndTitleWithoutRunningTask()
{
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler = makeProfiler(Mode::Detailed);
    profiler.stopRecord();
    profiler.setLatestTaskTitle("nobody");
    QVERIFY(capture.messages().empty());

    profiler.startRecord("Place");
    advance(probes, 1.0, 1.0, 0);
    profiler.stopRecord();
    profiler.stopRecord(); // one stop too many
    profiler.setLatestTaskTitle("late");
    profiler.clear();
    profiler.stopRecord();
    profiler.setLatestTaskTitle("after clear");

    profiler.startRecord("Route");
    profiler.stopRecord();
    capture.clear();
    QCOMPARE(reportRows(profiler),
             QStringList{"Route     |        0.00 |         0.00 |        +0.00"});
}

void TestProfiler::clearForgetsEverything()
{
    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Enabled);
    profiler.startRecord("Outer");
    profiler.startRecord("Inner");
    advance(probes, 3.0, 3.0, 0);
    profiler.setLatestTaskTitle("Inner title");
    profiler.clear(); // with two tasks running

    QCOMPARE(reportRows(profiler), QStringList{});
    profiler.startRecord("Inner");
    advance(probes, 1.0, 1.0, 0);
    profiler.stopRecord();
    profiler.stopRecord(); // nothing runs any more
    QCOMPARE(reportRows(profiler),
             QStringList{"Inner     |        1.00 |         1.00 |        +0.00"});
}

void TestProfiler::manyNamesKeepTheirOrder()
{
    // Names are found again among many, and the rows keep the order of first start.
    FakeProbes probes;
    Profiler profiler = makeProfiler(Mode::Enabled);
    constexpr int count = 3000;
    std::vector<QByteArray> names;
    names.reserve(count);
    for (int i = 0; i < count; ++i)
        names.push_back("task " + QByteArray::number((i * 7919) % count));
    for (int round = 0; round < 2; ++round) {
        for (const QByteArray &name : names) {
            profiler.startRecord(name.constData());
            advance(probes, 0.5, 0.5, 0);
            profiler.stopRecord();
        }
    }
    const QStringList rows = reportRows(profiler);
    QCOMPARE(rows.size(), count);
    for (int i = 0; i < count; ++i) {
        QVERIFY2(rows.at(i).startsWith(QString::fromLatin1(names[i]) + QLatin1Char(' ')),
                 qPrintable(rows.at(i)));
        QVERIFY2(rows.at(i).contains(QLatin1String("|        1.00 |")), qPrintable(rows.at(i)));
    }
}

void TestProfiler::detailLines()
{
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler = makeProfiler(Mode::Detailed);
    probes.currentMemory = 512 * MB + 1048575; // the figure truncates
    profiler.startRecord("Place");
    profiler.setLatestTaskTitle("Placement"); // the stop line still shows the name
    probes.currentMemory = 530 * MB;
    profiler.stopRecord();

    const auto &messages = capture.messages();
    QCOMPARE(messages.size(), std::size_t(2));
    QCOMPARE(messages[0].number, std::string("1009993"));
    QCOMPARE(messages[1].number, std::string("1009993"));
    const QRegularExpression started(
        QStringLiteral("^\\[Place\\] started at ([01]\\d|2[0-3]):[0-5]\\d:[0-6]\\d, Mem 512MB$"));
    const QRegularExpression stopped(
        QStringLiteral("^\\[Place\\] stopped at ([01]\\d|2[0-3]):[0-5]\\d:[0-6]\\d, Mem 530MB$"));
    QVERIFY2(started.match(QString::fromStdString(messages[0].text)).hasMatch(),
             messages[0].text.c_str());
    QVERIFY2(stopped.match(QString::fromStdString(messages[1].text)).hasMatch(),
             messages[1].text.c_str());
}

void TestProfiler::detailTimeIsLocal()
{
    // Fourteen hours east of UTC, a zone with no daylight saving time.
    QTemporaryDir home;
    QVERIFY(home.isValid());
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QStringLiteral("TZ"), QStringLiteral("XYZ-14"));
    environment.insert(QStringLiteral("ENABLE_GUI_PROFILER"), QStringLiteral("1"));
    environment.insert(QStringLiteral("ENABLE_GUI_PROFILER_DETAIL"), QStringLiteral("1"));
    const ChildResult child = runScenario(QStringLiteral("localTime"), environment);
    QCOMPARE(child.exitCode, 0);
    const QRegularExpressionMatch match =
        QRegularExpression(
            QStringLiteral("^\\[Place\\] started at (\\d\\d):\\d\\d:\\d\\d, Mem \\d+MB$"))
            .match(child.value(QStringLiteral("line")));
    QVERIFY2(match.hasMatch(), qPrintable(child.value(QStringLiteral("line"))));
    const int hour = match.captured(1).toInt();
    const int before = (child.value(QStringLiteral("utcBefore")).toInt() + 14) % 24;
    const int after = (child.value(QStringLiteral("utcAfter")).toInt() + 14) % 24;
    QVERIFY2(hour == before || hour == after,
             qPrintable(QStringLiteral("%1 not in %2..%3").arg(hour).arg(before).arg(after)));
}

void TestProfiler::nullNameIsTheEmptyName()
{
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler = makeProfiler(Mode::Detailed);
    profiler.startRecord(nullptr);
    advance(probes, 1.0, 1.0, 0);
    profiler.stopRecord();
    profiler.startRecord("");
    advance(probes, 1.0, 1.0, 0);
    profiler.stopRecord();
    QCOMPARE(postedTexts(capture).value(0).left(12), QStringLiteral("[] started a"));
    QCOMPARE(reportRows(profiler),
             QStringList{"          |        2.00 |         2.00 |        +0.00"});
}

void TestProfiler::detailLinesFallOutsideTheInterval()
{
    // Start: detail memory reading, then the timer's two clocks, then the start memory.
    // Stop: the two clocks and the memory first, then the detail reading.
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler = makeProfiler(Mode::Detailed);
    profiler.startRecord("Warm"); // makes the record and its timer
    profiler.stopRecord();
    const int before = probes.readings;
    profiler.startRecord("Warm");
    QCOMPARE(probes.readings - before, 4);
    profiler.stopRecord();
    QCOMPARE(probes.readings - before, 8);

    Profiler plain = makeProfiler(Mode::Enabled);
    plain.startRecord("Warm");
    plain.stopRecord();
    const int plainBefore = probes.readings;
    plain.startRecord("Warm");
    plain.stopRecord();
    QCOMPARE(probes.readings - plainBefore, 6); // two clocks and memory at each end
}

void TestProfiler::copySharesRecords()
{
    FakeProbes probes;
    Profiler original = makeProfiler(Mode::Enabled);
    original.startRecord("Flow");
    original.startRecord("Map");
    Profiler copy(original);

    advance(probes, 1.0, 1.0, 0);
    copy.stopRecord();       // Map, seen by both
    copy.startRecord("Own"); // only the copy lists it
    copy.stopRecord();
    original.stopRecord(); // Map again, through the original's own chain
    original.stopRecord(); // Flow

    QCOMPARE(reportRows(original),
             (QStringList{"Flow      |        1.00 |         1.00 |        +0.00",
                          " Map      |        2.00 |         2.00 |        +0.00"}));
    QCOMPARE(reportRows(copy),
             (QStringList{"Flow      |        1.00 |         1.00 |        +0.00",
                          " Map      |        2.00 |         2.00 |        +0.00",
                          " Own      |        0.00 |         0.00 |        +0.00"}));
}

void TestProfiler::copyOutlivesClearedOriginal()
{
    FakeProbes probes;
    auto original = std::make_unique<Profiler>(makeProfiler(Mode::Enabled));
    original->startRecord("Flow");
    original->startRecord("Map");
    Profiler copy(*original);
    original->clear();
    original->startRecord("Map"); // a fresh record of the original's own
    advance(probes, 1.0, 1.0, 0);
    original->stopRecord();
    original.reset();

    copy.setLatestTaskTitle("Mapping");
    copy.stopRecord();
    copy.stopRecord();
    QCOMPARE(reportRows(copy),
             (QStringList{"Flow      |        1.00 |         1.00 |        +0.00",
                          " Mapping  |        1.00 |         1.00 |        +0.00"}));
    copy.clear();
    QCOMPARE(reportRows(copy), QStringList{});
}

void TestProfiler::originalOutlivesDestroyedCopy()
{
    FakeProbes probes;
    Profiler original = makeProfiler(Mode::Enabled);
    original.startRecord("Flow");
    {
        Profiler copy(original);
        copy.startRecord("Nested");
        Profiler copyOfCopy(copy);
        advance(probes, 2.0, 2.0, 0);
        copyOfCopy.stopRecord();
        copy.clear();
    }
    advance(probes, 1.0, 1.0, 0);
    original.stopRecord();
    QCOMPARE(reportRows(original),
             QStringList{"Flow      |        3.00 |         3.00 |        +0.00"});
}

void TestProfiler::assignment()
{
    FakeProbes probes;
    Profiler target = makeProfiler(Mode::Enabled);
    target.startRecord("Mine");
    Profiler source = makeProfiler(Mode::Enabled);
    source.startRecord("Theirs");
    Profiler keep(target); // still lists Mine after the assignment

    target = source;
    target = target; // self-assignment changes nothing
    advance(probes, 1.0, 1.0, 0);
    target.stopRecord(); // stops Theirs, the running task it took over
    target.stopRecord();
    QCOMPARE(reportRows(target),
             QStringList{"Theirs    |        1.00 |         1.00 |        +0.00"});
    QCOMPARE(reportRows(source),
             QStringList{"Theirs    |        1.00 |         1.00 |        +0.00"});

    // Assigning a disabled profiler lets go of every record.
    const Profiler disabled = makeProfiler(Mode::Disabled);
    source = disabled;
    QVERIFY(!source.is_enabled());
    keep.stopRecord();
    QCOMPARE(reportRows(keep),
             QStringList{"Mine      |        1.00 |         1.00 |        +0.00"});
    keep = disabled;
    target = disabled;
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestProfiler, scenarios)
#include "tst_profiler.moc"

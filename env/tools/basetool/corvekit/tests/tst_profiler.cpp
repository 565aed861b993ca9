// The profiler: records, nesting, sums, copies and the report in-process, against the utility
// library's fake probes; the switches, the detail lines and the profiler's settings file, which
// the environment decides, in child processes.
#include "support/childprocess.h"

#include <corvekit/profiler.h>
#include <corvekit/profilersettings.h>

#include <hulmar/hulmar_testing.h>
#include <hulmar/ut_mem_usage.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace hulmar::testing;
using namespace tivoran::corvekit;

namespace {

constexpr std::uint64_t MB = std::uint64_t{1} << 20;

// Steps, comma-separated: "+name" starts a task, "-" stops one, "=text" sets a title and "!" a
// null one, "*" clears, "@cpu real mb" moves the probes on. "&" stops the running task through
// a copy that then ends; "%" lets go of every record while a copy keeps them, then takes them
// back with the copy's running tasks.
void play(Profiler &profiler, FakeProbes &probes, const QByteArray &steps)
{
    for (const QByteArray &step : steps.split(',')) {
        if (step.startsWith('+'))
            profiler.startRecord(step.mid(1).constData());
        else if (step == "-")
            profiler.stopRecord();
        else if (step.startsWith('=') || step == "!")
            profiler.setLatestTaskTitle(step == "!" ? nullptr : step.mid(1).constData());
        else if (step == "*")
            profiler.clear();
        else if (step == "&")
            Profiler(profiler).stopRecord();
        else if (step == "%")
            profiler = std::exchange(profiler, Profiler());
        else {
            probes.cpuSeconds += step.mid(1).split(' ').value(0).toDouble();
            probes.realSeconds += step.mid(1).split(' ').value(1).toDouble();
            probes.currentMemory += std::int64_t(step.mid(1).split(' ').value(2).toDouble() * MB);
        }
    }
}

// Logs what the switches and the settings file made of a profiler and of the settings.
int environmentScenario()
{
    FakeProbes probes;
    probes.currentMemory = 513 * MB - 1; // detail lines show whole megabytes
    MessageCapture capture;
    Profiler profiler;
    play(profiler, probes, "+Place,=Placing,-");
    const ProfilerSettings &settings = ProfilerSettings::instance();
    const QString text = settings.getValue("group/key");
    qInfo("profiler %s; settings %s [%s]", profiler.is_enabled() ? "on" : "off",
          settings.isProfileEnabled() ? "on" : "off", qPrintable(text.isNull() ? "null" : text));
    return 0;
}

// Two profilers of one process write their runs to the timeline, and a third one later; the
// child prints its process id, everything posted and the reports. One title holds a control
// character, the first and last characters of each UTF-8 length and bytes that are no UTF-8.
int timelineScenario()
{
    FakeProbes probes;
    probes.currentMemory = 64 * MB;
    MessageCapture capture;
    {
        Profiler profiler;
        Profiler other;
        play(profiler, probes,
             "+Load,@0.5 1.25 2,+Parse,=Parse\x1f→ VHDL\x80\xc3x"
             "\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"
             "\xc1\xbf\xe0\x9f\xbf\xed\xa0\x80\xf0\x8f\xbf\xbf\xf4\x90\x80\x80"
             "\xf5\x80\x80\x80\xe1\x80\xc0"
             ",@0.25 0.5 -1,-,+Pl\"a\\ce,@0 0.25 1,-,@0 0.25 0,-,+Load,@1 1 1,-");
        play(other, probes, "+Map,@2 2 0,-");
        for (int i = qEnvironmentVariableIntValue("RUNS"); i > 0; --i)
            play(other, probes, "+Step,@0 0.25 0,-");
        profiler.report("Timeline");
        other.report("Other");
    }
    Profiler later;
    play(later, probes, "+Later,@0 0.25 0,-");
    later.report("Later");
    report("pid", QString::number(QCoreApplication::applicationPid()));
    for (const std::string &text : capture.texts())
        std::puts(text.c_str());
    return 0;
}

const auto scenarios = [] {
    return ScenarioTable{{"environment", environmentScenario}, {"timeline", timelineScenario}};
};

// The timeline file of a child run with \a variables ("NAME=value", comma-separated) in \a home.
ChildResult runTimeline(const QTemporaryDir &home, const QString &variables)
{
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert("ENABLE_GUI_PROFILER", "1");
    for (const QString &variable : variables.split(',', Qt::SkipEmptyParts))
        environment.insert(variable.section('=', 0, 0),
                           variable.section('=', 1).replace("$H", home.path()));
    return runScenario("timeline", environment);
}

} // namespace

class TestProfiler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("ENABLE_GUI_PROFILER", "1"); }
    void environment_data();
    void environment();
    void report();
    void timeline();
    void timelineLimits_data();
    void timelineLimits();
};

void TestProfiler::environment_data()
{
    // ENABLE_GUI_PROFILER, ENABLE_GUI_PROFILER_DETAIL and GUI_PROFILER_SETTINGS, comma-separated
    // (no third value: unset), with file names in the child's working folder; then what the child
    // logs: detail lines and warnings, and last the state it found.
    QTest::addColumn<QString>("variables");
    QTest::addColumn<QStringList>("expected");

    const QString settingsOn = QStringLiteral("profiler on; settings on []");
    QTest::newRow("first character 1")
        << "10,1x,file.ini"
        << QStringList{"gui.profiler.log: [Place] started at hh:mm:ss, Mem 512MB",
                       "gui.profiler.log: [Place] stopped at hh:mm:ss, Mem 512MB",
                       "profiler on; settings on [in group]"};
    QTest::newRow("0 is off") << "0,1,file.ini" << QStringList{"profiler off; settings off [null]"};
    QTest::newRow("file unset") << "1," << QStringList{"profiler on; settings off [null]"};
    QTest::newRow("missing") << "1,,nil" << QStringList{"ini file not exists \"nil\"", settingsOn};
    QTest::newRow("empty path") << "1,," << QStringList{"ini file not exists \"\"", settingsOn};
    QTest::newRow("FIFO with no writer") << "1,,fifo" << QStringList{settingsOn};
}

void TestProfiler::environment()
{
    QFETCH(QString, variables);
    QFETCH(QStringList, expected);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    QVERIFY(writeFile(home.filePath("file.ini"), "[group]\nkey=in group\n"));
    QCOMPARE(mkfifo(QFile::encodeName(home.filePath("fifo")).constData(), 0600), 0);
    QProcessEnvironment environment = cleanEnvironment(home.path());
    QStringList names{"ENABLE_GUI_PROFILER", "ENABLE_GUI_PROFILER_DETAIL", "GUI_PROFILER_SETTINGS"};
    for (qsizetype i = 0; i <= variables.count(','); ++i)
        environment.insert(names.value(i), variables.section(',', i, i));
    const ChildResult child = runScenario("environment", environment, QString(), home.path());
    const QRegularExpression time(QStringLiteral("\\d\\d:\\d\\d:\\d\\d"));
    QCOMPARE(child.errorLines().replaceInStrings(time, "hh:mm:ss"), expected);
}

void TestProfiler::report()
{
    // Without the fakes the probe reads this process's resident memory.
    QVERIFY(UT_MEM_USAGE::getCurrentMemoryUsage() > 0);
    FakeProbes probes;
    MessageCapture capture;
    Profiler profiler;
    play(profiler, probes,
         "+Outer,+Inner,@3 3 3,*,-,=late,+Place,@1.5 2 3,&,-,@7 7 7,%,+Place,@0.25 1 -9,-,+place,"
         "-,+Flow,+Parse,=Parse VHDL,%,-,=Full flow,!,+Map,=,+Place,-,-,-,+Huge,@2e12 3e13 0,-,"
         "+Grow,@0 0 1907348632812.5,-,+Inner");
    probes.currentMemory = 513 * MB - 1; // the heading shows whole megabytes
    probes.peakMemory = 768 * MB;
    profiler.report("Summary");

    const QString heading = "1009993: \nSummary\n  Current Memory: 512M\n  Peak Memory:    768M\n";
    const QString rule = "1009993: ------------+--------------+---------------+--------------";
    QStringList posted;
    for (const CapturedMessage &message : capture.messages())
        posted.append(QString::fromStdString(message.number + ": " + message.text));
    QCOMPARE(
        posted,
        (QStringList{heading, rule,
                     "1009993:   Task Name |  CPU Time(s) |  Real Time(s) |  Delta Mem(M)", rule,
                     "1009993:   Place     |         3.25 |          5.00 |         -3.00",
                     "1009993: place       |         0.00 |          0.00 |         +0.00",
                     "1009993: Full flow   |         0.00 |          0.00 |         +0.00",
                     "1009993:  Parse VHDL |         0.00 |          0.00 |         +0.00",
                     "1009993:  Map        |         0.00 |          0.00 |         +0.00",
                     "1009993: Huge        | 2000000000000.00 | 30000000000000.00 |         +0.00",
                     "1009993: Grow        |         0.00 |          0.00 | +1907348632812.50",
                     "1009993: Inner       |         0.00 |          0.00 |         +0.00", rule}));

    // Among many names each is found again: two rounds of a hundred make a hundred rows, under
    // the header of a report whose columns keep their starting widths.
    profiler.clear();
    capture.clear();
    for (int i = 0; i < 200; ++i)
        play(profiler, probes, "+" + QByteArray::number(i % 100) + ",-");
    profiler.report("");
    QCOMPARE(capture.texts().size(), std::size_t(105));
    QCOMPARE(capture.texts().at(2), "Task Name | CPU Time(s) | Real Time(s) | Delta Mem(M)");
}

void TestProfiler::timeline()
{
    QTemporaryDir home;
    const ChildResult child = runTimeline(home, "GUI_PROFILER_TRACE=$H/t.json");
    const QString pid = child.reportLine("pid").section('=', 1);
    QCOMPARE(QDir(home.path()).entryList(QDir::Files), QStringList{"t." + pid + ".json"});
    QFile file(home.filePath("t." + pid + ".json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QCOMPARE(lines.first(), "[");

    // Each line is one event; a run's counter of resident memory follows it.
    QList<QJsonObject> runs;
    QMap<QString, QList<double>> sums; // seconds of CPU and real time, MiB of growth, runs
    const auto event = [&](qsizetype i) {
        const QByteArray &line = lines[i];
        return QJsonDocument::fromJson(line.endsWith(',') ? line.chopped(1) : line).object();
    };
    for (qsizetype i = 1; i + 2 < lines.size(); i += 2) {
        const QJsonObject run = event(i);
        const QJsonObject counter = event(i + 1);
        const QJsonObject args = run["args"].toObject();
        QCOMPARE(run["ph"].toString(), "X");
        QCOMPARE(run["pid"].toInteger(), pid.toLongLong());
        QCOMPARE(counter["ph"].toString(), "C");
        QCOMPARE(counter["ts"].toDouble(), run["ts"].toDouble() + run["dur"].toDouble());
        QCOMPARE(counter["args"]["bytes"].toInteger(),
                 args["memStartBytes"].toInteger() + args["memGrowthBytes"].toInteger());
        // A title shows beside the name; the report shows it alone.
        const QString task = args["task"].toString();
        const QString name = run["name"].toString();
        QList<double> &sum = sums[task.isEmpty() ? name : name.mid(task.size() + 2).chopped(1)];
        sum.resize(4);
        sum[0] += args["cpuUs"].toDouble() / 1e6;
        sum[1] += run["dur"].toDouble() / 1e6;
        sum[2] += args["memGrowthBytes"].toDouble() / MB;
        sum[3] += 1;
        runs.append(run);
    }
    QCOMPARE(lines.mid(lines.size() - 2), (QList<QByteArray>{"]", ""}));
    QCOMPARE(runs.size(), 6);

    // Runs are written as they end: a nested run lies within a later one a level up.
    const auto start = [&](qsizetype at) { return runs.at(at)["ts"].toDouble(); };
    const auto end = [&](qsizetype at) { return start(at) + runs.at(at)["dur"].toDouble(); };
    const auto level = [&](qsizetype at) { return runs.at(at)["args"]["level"].toInteger(); };
    for (qsizetype i = 0; i < runs.size(); ++i) {
        bool enclosed = level(i) == 0;
        for (qsizetype j = i + 1; j < runs.size() && !enclosed; ++j)
            enclosed = level(j) == level(i) - 1 && start(j) <= start(i) && end(i) <= end(j);
        QVERIFY2(enclosed, qPrintable(runs.at(i)["name"].toString()));
    }

    // The report's rows are the sums of the runs, within a microsecond a run.
    QStringList rows = child.outputLines().filter(QRegularExpression("\\d \\|"));
    QCOMPARE(rows.size(), sums.size());
    for (const QString &row : rows) {
        const QStringList cells = row.split('|');
        const QList<double> sum = sums.value(cells[0].trimmed());
        QVERIFY2(sum.size() == 4, qPrintable(row));
        for (int column = 0; column < 3; ++column)
            QVERIFY2(qAbs(cells[column + 1].toDouble() - sum[column]) <= sum[3] * 1e-6,
                     qPrintable(row));
    }
}

void TestProfiler::timelineLimits_data()
{
    // Variables of the child; what it posts before its reports; whether a timeline is left.
    QTest::addColumn<QString>("variables");
    QTest::addColumn<QString>("posted");
    QTest::addColumn<bool>("written");

    QTest::newRow("unset") << ""
                           << "" << false;
    QTest::newRow("empty") << "GUI_PROFILER_TRACE="
                           << "" << false;
    QTest::newRow("cannot open")
        << "GUI_PROFILER_TRACE=$H/no/t.json"
        << "Timeline $H/no/t.$P.json cannot be opened (…); no timeline is written\n"
        << false;
    QTest::newRow("limit") << "GUI_PROFILER_TRACE=$H/t,GUI_PROFILER_TRACE_LIMIT=1,RUNS=5000"
                           << "Timeline $H/t.$P reached its limit of 1 MiB; later tasks are not "
                              "written\n"
                           << true;
    QTest::newRow("no number") << "GUI_PROFILER_TRACE=$H/t,GUI_PROFILER_TRACE_LIMIT=1M,RUNS=5000"
                               << "" << true;
}

void TestProfiler::timelineLimits()
{
    QFETCH(QString, variables);
    QFETCH(QString, posted);
    QFETCH(bool, written);

    QTemporaryDir home;
    const ChildResult child = runTimeline(home, variables);
    const QString pid = child.reportLine("pid").section('=', 1);
    const QString output = QString::fromUtf8(child.standardOutput);
    const QString before = output.left(output.indexOf("\nTimeline\n"));
    posted.replace("$H", home.path()).replace("$P", pid);
    QVERIFY2(QRegularExpression(
                 QRegularExpression::anchoredPattern(QRegularExpression::escape(posted).replace(
                     QRegularExpression::escape("…"), ".*")))
                 .match(before.mid(before.indexOf('\n') + 1))
                 .hasMatch(),
             qPrintable(before));
    QCOMPARE(QFile::exists(home.filePath("t." + pid)), written);
    QFile file(home.filePath("t." + pid));
    if (written && file.open(QIODevice::ReadOnly)) {
        // Complete to its closing bracket; a later profiler goes on with it unless it is full.
        const bool full = variables.contains("LIMIT=1,");
        QCOMPARE(file.size() <= (1 << 20), full);
        const QJsonArray events = QJsonDocument::fromJson(file.readAll()).array();
        QVERIFY(events.size() > 100);
        QCOMPARE(std::any_of(events.begin(), events.end(),
                             [](const QJsonValue &event) { return event["name"] == "Later"; }),
                 !full);
    }
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestProfiler, scenarios)
#include "tst_profiler.moc"

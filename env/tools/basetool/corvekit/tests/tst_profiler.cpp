// The profiler: records, nesting, sums, copies and the report in-process, against the utility
// library's fake probes; the switches, the detail lines and the profiler's settings file, which
// the environment decides, in child processes.
#include "support/childprocess.h"

#include <corvekit/profiler.h>
#include <corvekit/profilersettings.h>

#include <hulmar/hulmar_testing.h>

#include <QFile>
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

const auto scenarios = [] { return ScenarioTable{{"environment", environmentScenario}}; };

} // namespace

class TestProfiler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("ENABLE_GUI_PROFILER", "1"); }
    void environment_data();
    void environment();
    void report();
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

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestProfiler, scenarios)
#include "tst_profiler.moc"

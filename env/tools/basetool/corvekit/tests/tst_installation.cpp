// The installation environment. Start-up, writes to the environment, the install layout, the
// version file, the companion tool locators and the simulator selection run as steps in a child
// that lies in app/bin/nt64 of a throw-away installation; the build stamp parsers in-process.
// The tool's installation tests cover the plain version patterns, the product group and the file
// type filters.
#include "sampleinstallation.h"

#include "corvekit/basesystem_p.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QTest>

#include <cstdio>

using B = BaseSystem;

namespace {

// One step of CORVEKIT_TEST_STEPS, "name:argument:argument", and the line it prints; "-" stands
// for an unset variable.
QString runStep(const QStringList &step)
{
    const QString &name = step.at(0);
    const QByteArray first = step.value(1).toUtf8();
    QStringList out;
    if (name == "init") {
        B::initializeSystem();
        for (const char *variable : {"TOOLRTF", "FOUNDRY", "ZEKPROG_PATH"})
            out << qEnvironmentVariable(variable, QStringLiteral("-"));
    }
    if (name == "layout") {
        out << B::getInstallPath().path() << B::getBinaryPath().path() << B::getDataPath().path()
            << B::getHelpPath().path() << B::getTclExePath() << B::getTclLibraryPath().path()
            << B::getTclScriptPath().path();
    }
    if (name == "set" || name == "bool" || name == "unset") {
        out << QString::number(name == "unset"  ? B::UnsetEnvVariable(first)
                               : name == "bool" ? B::SetEnvVariable(first, step.value(2) == "1")
                                                : B::SetEnvVariable(first, step.value(2)))
            << qEnvironmentVariable(first, QStringLiteral("-"));
    }
    if (name == "version") {
        for (int pattern : {0, 1, 2, 3, 4, 7})
            out << B::getProductVersion(QString::fromUtf8(first), VersionPatten(pattern));
        out << B::getOstraneVersion() << B::getOstranePatchVersion() << B::getProductSuffix();
    }
    if (name == "tools") {
        for (auto locate :
             {B::getSynplifyPath, B::getPrecsionPath, B::getActiveHDLPath, B::getModelSimPath,
              B::getQuestaSimPath, B::getESDKPath, B::getSimulatorPath})
            out << locate(first == "1").path();
    }
    if (name == "simulator") {
        out << QString::number(B::getSystemSimulatorType()) << B::getSimulatorName()
            << B::getSimulatorInstallEnv();
    }
    return out.join(QLatin1Char('|'));
}

int runSteps()
{
    BaseSettings::setProjectPath(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    for (const QString &step : qEnvironmentVariable("CORVEKIT_TEST_STEPS").split(','))
        std::printf("%s\n", runStep(step.split(':')).toUtf8().constData());
    return 0;
}

const auto scenarios = [] { return ScenarioTable{{QStringLiteral("steps"), runSteps}}; };

// A row of steps(): the set-up (see SampleInstallation::apply(); TOOLRTF is $T unless removed or
// replaced), the steps, and the lines the child prints: the traces (where TIVORANDEBUG is set) and
// one line a step, then "E:" and each line of standard error.
void row(const char *name, const QString &setup, const char *steps, const QString &output)
{
    QTest::newRow(name) << setup << QString(steps) << output;
}

} // namespace

class TestInstallation : public QObject
{
    Q_OBJECT

private slots:
    void steps_data();
    void steps();
    void stamp_data();
    void stamp();
    void ownStamp();
};

void TestInstallation::steps_data()
{
    for (const char *column : {"setup", "steps", "output"})
        QTest::addColumn<QString>(column);
    const QString folders = "$T/synpbase/;$T/tptools/synplify/windows/;$T/precision/;"
                            "$T/active-hdl/;$T/modeltech/win32loem/;$T/questasim/win64/;";
    const QString questa = "|QuestaSim|QUESTASIM_PATH";
    const QString missing = "0.0.0|0.0.0|0.0.0|0.0.0|0.0.0|0.0.0|0.0.0||" +
                            QString(";E:Error :  \"$V\"  doesn't exist!").repeated(9);

    row("layout below the application's root, unresolved; start-up, nothing set", "TOOLRTF",
        "layout,init",
        "$R/bin/nt64/../..|$R/bin/nt64/../../bin/nt64|$R/bin/nt64/../../data|"
        "$R/bin/nt64/../../docs/webhelp/eng|$R/bin/nt64/../../tcltk/windows/bin/tclsh|"
        "$R/bin/nt64/../../tcltk/windows/lib/tcl8.6|$R/bin/nt64/../../scripts/tcl;"
        "$R|$R/zekfpga|$R/zekprog");
    row("start-up, TOOLRTF set: FOUNDRY still follows the application", "", "init",
        "$T|$R/zekfpga|$T/zekprog");
    row("start-up, FOUNDRY set; a user setting over the system's, stored unchanged",
        "TOOLRTF;FOUNDRY=/f;$R/data/.setting.ini=ZEKPROG_PATH=/s;$U=ZEKPROG_PATH=tools/zekprog",
        "init", "$R|/f|tools/zekprog");
    row("start-up, an empty setting: derived, absolute and clean",
        "TOOLRTF=$T/bin/..;FOUNDRY=/f;$S=ZEKPROG_PATH=", "init", "$T/bin/..|/f|$T/zekprog");
    row("start-up, ZEKPROG_PATH set: no setting replaces it",
        "FOUNDRY=/f;ZEKPROG_PATH=/e;$S=ZEKPROG_PATH=/s", "init", "$T|/f|/e");
    row("start-up, empty values count as set", "TOOLRTF=;FOUNDRY=;ZEKPROG_PATH=", "init", "||");
    // The writes are traced before they are tried, so a failed one is traced too.
    row("environment writes; start-up, TOOLRTF cannot be stored",
        "TOOLRTF;V=old;TIVORANDEBUG=;LD_PRELOAD=" CORVEKIT_FAILING_CALLS
        ";CORVEKIT_FAIL_SETENV=TOOLRTF;"
        "ASAN_OPTIONS=verify_asan_link_order=0;QT_MESSAGE_PATTERN=%{type}|%{function}|%{message}",
        "init,set:V:/opt/x,bool:V:1,bool:V:0,set:V:a\u20ac,set:V:,unset:V,set::x",
        "setenv TOOLRTF=$R;setenv FOUNDRY=$R/zekfpga;-|$R/zekfpga|-;setenv V=/opt/x;0|/opt/x;"
        "setenv V=1;0|1;setenv V=0;0|0;setenv V=a?;0|a?;setenv V=;0|-;unsetenv V=;0|-;"
        "setenv =x;-1|-;"
        "E:debug|BaseSystem::initializeSystem|do not set ZEKPROG path as environment variable.");

    row("version: minor cut at its first dot, only the patch list joined",
        "$V=[version]\nMajorVersion=1,2\nMinorVersion=.14.0\nBuildNumber=8\nPatchNumber=SP1, HF2\n"
        "ProductSuffix=a,b\n",
        "version:", "|.|..14.0|8|..14.0.8|..14.0.8|..14.0.8|SP1,HF2|");
    row("version file missing", "", "version:", missing);
    row("version file is a FIFO", "$V", "version:", missing);

    row("tools, settings at each level, existing or not, and the folders",
        folders +
            "$S=PRECISION_PATH=/s2\nESDK_PATH=/s3\nSIMULATOR_TYPE=QuestaSim;"
            "$U=ACTIVEHDL_PATH=/u2;$J=SYNPLIFY_PATH=/p1\nMODELSIM_PATH=/p2\nQUESTASIM_PATH=/p3",
        "tools:0,tools:1,simulator",
        "/p1|/s2|/u2|/p2|/p3|/s3|/p3;$T/synpbase|/s2|$T/active-hdl|$T/modeltech/win32loem|"
        "$T/questasim/win64|/s3|$T/questasim/win64;2|QuestaSim|QUESTASIM_PATH");
    row("tools, no root; simulator ModelSim",
        "TOOLRTF;" + folders + "$U=SYNPLIFY_PATH=/u1;$R/data/.setting.ini=SIMULATOR_TYPE=ModelSim",
        "tools:0,simulator",
        "/u1|/|/|/|/|/|/;2" + questa + QString(";E:Error : set . TOOLRTF first.").repeated(5));
    row("simulator in another case; user and project have no say",
        "$S=SIMULATOR_TYPE=questasim;$U=SIMULATOR_TYPE=ModelSim", "simulator", "4" + questa);
}

void TestInstallation::steps()
{
    QFETCH(QString, setup);
    QFETCH(QString, steps);
    QFETCH(QString, output);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QProcessEnvironment childEnvironment = installation.environment();
    childEnvironment.insert(QStringLiteral("CORVEKIT_TEST_STEPS"), steps);
    QVERIFY(installation.apply(installation.expand(setup), childEnvironment));
    const QString program = placeApplication(installation.path(QStringLiteral("app/bin/nt64")));
    const ChildResult child = runScenario(QStringLiteral("steps"), childEnvironment, program);
    QCOMPARE(child.exitCode, 0);
    QStringList lines;
    for (const QString &line : child.outputLines()) // traces without their tag and time stamp
        lines << (line.startsWith("CORVEKIT At ") ? line.section(": ", 1) : line);
    for (const QString &line : child.errorLines())
        lines << "E:" + line;
    QCOMPARE(lines, installation.expand(output).split(';'));
}

// Build stamps, each parsed as a date and as a time: the one that fits gives the expected text in
// ISO form, and the other nothing.
void TestInstallation::stamp_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QString>("expected");

    QTest::newRow("date") << "Apr 11 2025" << ' ' << "2025-04-11";
    QTest::newRow("date, padded day") << "Sep  1 2025" << ' ' << "2025-09-01";
    QTest::newRow("date, day first") << "11 APR 2025" << ' ' << "2025-04-11";
    QTest::newRow("date, four parts") << "Jan 11 2025 x" << ' ' << "";
    QTest::newRow("date, a long month name") << "January 11 2025" << ' ' << "";
    QTest::newRow("time") << "01:22:07" << ':' << "01:22:07";
    QTest::newRow("time, an empty part is 0") << "23::59" << ':' << "23:00:59";
    QTest::newRow("time, four parts") << "01:22:07:00" << ':' << "";
}

void TestInstallation::stamp()
{
    QFETCH(QString, text);
    QFETCH(char, separator);
    QFETCH(QString, expected);
    QCOMPARE(corvekit::detail::parseStampDate(text.toUtf8(), separator).toString(Qt::ISODate) +
                 corvekit::detail::parseStampTime(text.toUtf8(), separator).toString(Qt::ISODate),
             expected);
}

// The library's own stamp, whenever it was built, parses.
void TestInstallation::ownStamp()
{
    QVERIFY(BaseSystem::getCompilationDate().isValid());
    QVERIFY(BaseSystem::getCompilationTime().isValid());
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestInstallation, scenarios)
#include "tst_installation.moc"

// The installation environment. Start-up, writes to the environment, the install layout, the
// version file, the companion tool locators and the file type filters run as steps in a child
// that lies in app/bin/nt64 of a throw-away installation; the build stamp parsers in-process.
#include "childprocess.h"
#include "sampleinstallation.h"

#include "corvekit/basesystem_p.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QTest>

#include <cstdio>
#include <sys/stat.h>

using B = BaseSystem;

namespace {

QString joined(const QStringList &parts)
{
    return parts.join(QLatin1Char('|'));
}

// One step of CORVEKIT_TEST_STEPS, "name:argument:argument", and the line it prints; "-" stands
// for an unset variable.
QString runStep(const QStringList &step)
{
    const QString &name = step.at(0);
    const QByteArray first = step.value(1).toUtf8();
    const QString second = step.value(2);
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
                               : name == "bool" ? B::SetEnvVariable(first, second == "1")
                                                : B::SetEnvVariable(first, second))
            << qEnvironmentVariable(first, QStringLiteral("-"));
    }
    if (name == "version") {
        for (int pattern : {0, 1, 2, 3, 4, 7})
            out << B::getProductVersion(QString::fromUtf8(first), VersionPatten(pattern));
    }
    if (name == "patch")
        out << B::getOstraneVersion() << B::getOstranePatchVersion() << B::getProductSuffix();
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
    if (name == "filter")
        out << B::getFileFilter(first);
    return joined(out);
}

int runSteps()
{
    BaseSettings::setProjectPath(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    for (const QString &step : qEnvironmentVariable("CORVEKIT_TEST_STEPS").split(','))
        std::printf("%s\n", runStep(step.split(':')).toUtf8().constData());
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("steps"), runSteps}};
}

// A row of steps(): the child's environment ("NAME=value", or "NAME" to remove it; TOOLRTF is $T
// unless removed or replaced), its files ("path=text"; a path ending in "/" for a folder; a path
// alone for a FIFO), its steps, and the lines it prints: the traces (with TIVORANDEBUG set) and
// one line a step, then "E:" and each line of standard error.
void row(const char *name, const char *environment, const QString &files, const char *steps,
         const QString &output)
{
    QTest::newRow(name) << QString(environment) << files << QString(steps) << output;
}

void stampRow(const char *name, const char *text, char separator, const QVariant &expected)
{
    QTest::newRow(name) << QByteArray(text) << separator << expected;
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
    void compilationStamp();
};

// $R is the application's root and $T the install root; $S, $U, $J and $V are the system, user and
// project levels and the version file; $P is a library that makes setenv fail and $M the message
// of a missing version file.
void TestInstallation::steps_data()
{
    for (const char *column : {"environment", "files", "steps", "output"})
        QTest::addColumn<QString>(column);
    const QString folders = "$T/synpbase/;$T/tptools/synplify/windows/;$T/precision/;"
                            "$T/active-hdl/;$T/modeltech/win32loem/;$T/questasim/win64/;";

    row("start-up, nothing set", "TOOLRTF", "", "init", "$R|$R/zekfpga|$R/zekprog");
    row("start-up, TOOLRTF set: FOUNDRY still follows the application", "", "", "init",
        "$T|$R/zekfpga|$T/zekprog");
    row("start-up, FOUNDRY set", "TOOLRTF FOUNDRY=/f", "", "init", "$R|/f|$R/zekprog");
    row("start-up, a user setting over the system's, stored unchanged", "FOUNDRY=/f",
        "$S=ZEKPROG_PATH=/s;$U=ZEKPROG_PATH=tools/zekprog", "init", "$T|/f|tools/zekprog");
    row("start-up, an empty setting: derived, absolute and clean", "TOOLRTF=$T/bin/.. FOUNDRY=/f",
        "$S=ZEKPROG_PATH=", "init", "$T/bin/..|/f|$T/zekprog");
    row("start-up, ZEKPROG_PATH set: no setting replaces it", "FOUNDRY=/f ZEKPROG_PATH=/e",
        "$S=ZEKPROG_PATH=/s", "init", "$T|/f|/e");
    row("start-up, empty values count as set", "TOOLRTF= FOUNDRY= ZEKPROG_PATH=", "", "init", "||");
    row("start-up, TOOLRTF cannot be stored, traced all the same",
        "TOOLRTF TIVORANDEBUG= LD_PRELOAD=$P CORVEKIT_FAIL_SETENV=TOOLRTF "
        "ASAN_OPTIONS=verify_asan_link_order=0 QT_MESSAGE_PATTERN=%{type}|%{function}|%{message}",
        "", "init",
        "setenv TOOLRTF=$R;setenv FOUNDRY=$R/zekfpga;-|$R/zekfpga|-;"
        "E:debug|BaseSystem::initializeSystem|do not set ZEKPROG path as environment variable.");
    row("layout below the application's root, unresolved", "TOOLRTF", "", "layout",
        "$R/bin/nt64/../..|$R/bin/nt64/../../bin/nt64|$R/bin/nt64/../../data|"
        "$R/bin/nt64/../../docs/webhelp/eng|$R/bin/nt64/../../tcltk/windows/bin/tclsh|"
        "$R/bin/nt64/../../tcltk/windows/lib/tcl8.6|$R/bin/nt64/../../scripts/tcl");
    row("environment writes", "V=old TIVORANDEBUG=", "",
        "set:V:/opt/x,bool:V:1,bool:V:0,set:V:a\u20ac,set:V:,unset:V,set::x",
        "setenv V=/opt/x;0|/opt/x;setenv V=1;0|1;setenv V=0;0|0;setenv V=a?;0|a?;"
        "setenv V=;0|-;unsetenv V=;0|-;setenv =x;-1|-");

    // The group test ignores case, but the keys are read below the caller's spelling.
    row("version groups", "",
        "$V=[version]\nPatchNumber=SP1\nProductSuffix=Beta\n[Solvane]\nversion\\MajorVersion=4\n"
        "version\\MinorVersion=3\nversion\\BuildNumber=77\nversion\\PatchNumber=SP9\n",
        "version:SOLVANE,patch", "|.|.||..|..;4.3.77|SP1|Beta");
    row("version, minor cut at its first dot, only the patch list joined", "",
        "$V=[version]\nMajorVersion=1,2\nMinorVersion=.14.0\nBuildNumber=8\n"
        "PatchNumber=SP1, HF2,HF3\nProductSuffix=a,b\n",
        "version:,patch", "|.|..14.0|8|..14.0.8|..14.0.8;..14.0.8|SP1,HF2,HF3|");
    row("version file missing", "", "", "patch", "0.0.0||;E:$M;E:$M;E:$M");
    row("version file is a FIFO", "", "$V", "patch", "0.0.0||;E:$M;E:$M;E:$M");

    row("tools, settings at each level, existing or not, and the folders", "",
        folders + "$S=PRECISION_PATH=/s2\nESDK_PATH=/s3;$U=ACTIVEHDL_PATH=/u2;"
                  "$J=SYNPLIFY_PATH=/p1\nMODELSIM_PATH=/p2\nQUESTASIM_PATH=/p3",
        "tools:0,tools:1",
        "/p1|/s2|/u2|/p2|/p3|/s3|/p3;$T/synpbase|/s2|$T/active-hdl|$T/modeltech/win32loem|"
        "$T/questasim/win64|/s3|$T/questasim/win64");
    row("tools, no root", "TOOLRTF", folders + "$U=SYNPLIFY_PATH=/u1", "tools:0",
        "/u1|/|/|/|/|/|/" + QString(";E:Error : set . TOOLRTF first.").repeated(5));
    row("simulator ModelSim", "", "$S=SIMULATOR_TYPE=ModelSim", "simulator",
        "2|QuestaSim|QUESTASIM_PATH");
    row("simulator QuestaSim", "", "$S=SIMULATOR_TYPE=QuestaSim", "simulator",
        "2|QuestaSim|QUESTASIM_PATH");
    row("simulator in another case; user and project have no say", "",
        "$S=SIMULATOR_TYPE=questasim;$U=SIMULATOR_TYPE=ModelSim", "simulator",
        "4|QuestaSim|QUESTASIM_PATH");
    row("filters", "", "$S=[File_Extension]\nsdc=\"*.sdc\", xdc\nv=v;$J=[File_Extension]\nv=",
        "filter:sdc,filter:v,filter:none", "sdc Files (*.*.sdc *.xdc);v Files (*.);none Files ()");
}

void TestInstallation::steps()
{
    QFETCH(QString, environment);
    QFETCH(QString, files);
    QFETCH(QString, steps);
    QFETCH(QString, output);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    const auto expand = [&](QString text) {
        return text.replace("$M", "Error :  \"$V\"  doesn't exist!")
            .replace("$R", installation.path(QStringLiteral("app")))
            .replace("$T", installation.root())
            .replace("$S", installation.systemFile())
            .replace("$U", installation.userFile())
            .replace("$J", installation.projectFile())
            .replace("$V", installation.versionFile())
            .replace("$P", CORVEKIT_FAILING_SETENV);
    };
    for (const QString &file : expand(files).split(';', Qt::SkipEmptyParts)) {
        const QString path = file.section('=', 0, 0);
        if (file.endsWith('/'))
            QVERIFY(QDir().mkpath(path));
        else if (!file.contains('='))
            QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        else
            QVERIFY(writeFile(path, file.section('=', 1).toUtf8()));
    }
    QProcessEnvironment childEnvironment = installation.environment();
    childEnvironment.insert(QStringLiteral("CORVEKIT_TEST_STEPS"), steps);
    for (const QString &assignment : expand(environment).split(' ', Qt::SkipEmptyParts)) {
        childEnvironment.remove(assignment.section('=', 0, 0));
        if (assignment.contains('='))
            childEnvironment.insert(assignment.section('=', 0, 0), assignment.section('=', 1));
    }
    const QString program = placeApplication(installation.path(QStringLiteral("app/bin/nt64")));
    const ChildResult child = runScenario(QStringLiteral("steps"), childEnvironment, program);
    QCOMPARE(child.exitCode, 0);
    QStringList lines;
    for (const QString &line : child.outputLines()) // traces without their tag and time stamp
        lines << (line.startsWith("CORVEKIT At ") ? line.section(": ", 1) : line);
    for (const QString &line : child.errorLines())
        lines << "E:" + line;
    QCOMPARE(lines, expand(output).split(';'));
}

// Build stamps: a QDate row for the date parser, a QTime row for the time parser.
void TestInstallation::stamp_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QVariant>("expected");

    stampRow("date", "Apr 11 2025", ' ', QDate(2025, 4, 11));
    stampRow("date, padded day", "Sep  1 2025", ' ', QDate(2025, 9, 1));
    stampRow("date, day first", "11 APR 2025", ' ', QDate(2025, 4, 11));
    stampRow("date, other separator", "dec-31-1999", '-', QDate(1999, 12, 31));
    stampRow("date, two parts", "Apr 11", ' ', QDate());
    stampRow("date, four parts", "Jan 11 2025 x", ' ', QDate());
    stampRow("date, a long month name", "January 11 2025", ' ', QDate());
    stampRow("time", "01:22:07", ':', QTime(1, 22, 7));
    stampRow("time, an empty part is 0", "23::59", ':', QTime(23, 0, 59));
    stampRow("time, other separator", "01.22.07", '.', QTime(1, 22, 7));
    stampRow("time, two parts", "01:22", ':', QTime());
    stampRow("time, four parts", "01:22:07:00", ':', QTime());
}

void TestInstallation::stamp()
{
    QFETCH(QByteArray, text);
    QFETCH(char, separator);
    QFETCH(QVariant, expected);
    if (expected.typeId() == QMetaType::QDate)
        QCOMPARE(corvekit::detail::parseStampDate(text, separator), expected.toDate());
    else
        QCOMPARE(corvekit::detail::parseStampTime(text, separator), expected.toTime());
}

void TestInstallation::compilationStamp()
{
    // The library was built before this test ran.
    const QDateTime stamp(B::getCompilationDate(), B::getCompilationTime());
    QVERIFY(stamp.isValid());
    QVERIFY(stamp <= QDateTime::currentDateTime());
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestInstallation, scenarios)
#include "tst_installation.moc"

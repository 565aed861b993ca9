#include "childprocess.h"
#include "sampleinstallation.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QTest>

namespace {

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

// Every locator both ways, the simulator selection and the edition switches, for the
// installation in TOOLRTF and the project in CORVEKIT_TEST_PROJECT.
int reportTools()
{
    BaseSettings::setProjectPath(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    const std::pair<const char *, QDir (*)(bool)> locators[] = {
        {"synplify", BaseSystem::getSynplifyPath},   {"precision", BaseSystem::getPrecsionPath},
        {"activehdl", BaseSystem::getActiveHDLPath}, {"modelsim", BaseSystem::getModelSimPath},
        {"questasim", BaseSystem::getQuestaSimPath}, {"esdk", BaseSystem::getESDKPath},
        {"simulator", BaseSystem::getSimulatorPath}};
    for (const auto &[name, locate] : locators) {
        report(QLatin1String(name), locate(false).path());
        report(QLatin1String(name) + QLatin1String(".default"), locate(true).path());
    }
    report(QStringLiteral("type"), QString::number(BaseSystem::getSystemSimulatorType()));
    report(QStringLiteral("name"), BaseSystem::getSimulatorName());
    report(QStringLiteral("env"), QLatin1String(BaseSystem::getSimulatorInstallEnv()));
    report(QStringLiteral("oem"), flag(BaseSystem::getUseSynplifyOEM(false)));
    report(QStringLiteral("oem.default"), flag(BaseSystem::getUseSynplifyOEM(true)));
    report(QStringLiteral("pro"), flag(BaseSystem::getUseSynplifyPro(false)));
    report(QStringLiteral("pro.default"), flag(BaseSystem::getUseSynplifyPro(true)));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("tools"), reportTools}};
}

const QStringList allFolders = {"synpbase",   "tptools/synplify/windows", "precision",
                                "active-hdl", "modeltech/win32loem",      "questasim/win64"};

ChildResult runTools(const SampleInstallation &installation, bool withRoot = true)
{
    QProcessEnvironment environment = installation.environment();
    if (withRoot)
        return runScenario(QStringLiteral("tools"), environment);
    // Without TOOLRTF the system level is found from the application's place: keep that inside
    // the throw-away folder too.
    environment.remove(QStringLiteral("TOOLRTF"));
    const QString program =
        placeApplication(installation.path(QStringLiteral("elsewhere/bin/nt64")));
    return runScenario(QStringLiteral("tools"), environment, program);
}

} // namespace

class TestBaseSystemTools : public QObject
{
    Q_OBJECT

private slots:
    void locators_data();
    void locators();
    void missingInstallRoot();
    void simulatorType_data();
    void simulatorType();
    void synplifySwitches_data();
    void synplifySwitches();
};

void TestBaseSystemTools::locators_data()
{
    QTest::addColumn<QByteArray>("system");
    QTest::addColumn<QByteArray>("user");
    QTest::addColumn<QByteArray>("project");
    QTest::addColumn<QStringList>("folders");
    // "name=path" with $ROOT for the install root; "/" is QDir::root().
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("nothing set, no folders")
        << QByteArray() << QByteArray() << QByteArray() << QStringList()
        << QStringList{"synplify=/",  "synplify.default=/", "precision=/", "activehdl=/",
                       "modelsim=/",  "questasim=/",        "esdk=/",      "esdk.default=/",
                       "simulator=/", "simulator.default=/"};
    QTest::newRow("every folder present")
        << QByteArray() << QByteArray() << QByteArray() << allFolders
        << QStringList{"synplify=$ROOT/synpbase",
                       "synplify.default=$ROOT/synpbase",
                       "precision=$ROOT/precision",
                       "activehdl.default=$ROOT/active-hdl",
                       "modelsim=$ROOT/modeltech/win32loem",
                       "questasim=$ROOT/questasim/win64",
                       "esdk=/",
                       "esdk.default=/",
                       "simulator=$ROOT/questasim/win64"};
    QTest::newRow("second Synplify folder")
        << QByteArray() << QByteArray() << QByteArray()
        << QStringList{"tptools/synplify/windows", "modeltech/win32loem"}
        << QStringList{"synplify=$ROOT/tptools/synplify/windows", "questasim=/", "simulator=/",
                       "modelsim=$ROOT/modeltech/win32loem"};
    QTest::newRow("values at each level")
        << QByteArray("[General]\nSYNPLIFY_PATH=/sys/synp\nPRECISION_PATH=/sys/prec\n"
                      "ESDK_PATH=/sys/esdk\n")
        << QByteArray("[General]\nSYNPLIFY_PATH=/usr/synp\nACTIVEHDL_PATH=/usr/ahdl\n")
        << QByteArray("[General]\nSYNPLIFY_PATH=/prj/synp\nMODELSIM_PATH=/prj/ms\n"
                      "QUESTASIM_PATH=/prj/questa\n")
        << allFolders
        << QStringList{"synplify=/prj/synp",
                       "synplify.default=/sys/synp",
                       "precision=/sys/prec",
                       "precision.default=/sys/prec",
                       "activehdl=/usr/ahdl",
                       "activehdl.default=$ROOT/active-hdl",
                       "modelsim=/prj/ms",
                       "modelsim.default=$ROOT/modeltech/win32loem",
                       "questasim=/prj/questa",
                       "esdk=/sys/esdk",
                       "esdk.default=/sys/esdk",
                       "simulator=/prj/questa",
                       "simulator.default=$ROOT/questasim/win64"};
    QTest::newRow("empty project value hides the system's")
        << QByteArray("[General]\nQUESTASIM_PATH=/sys/questa\nESDK_PATH=/sys/esdk\n")
        << QByteArray() << QByteArray("[General]\nQUESTASIM_PATH=\nESDK_PATH=\n") << allFolders
        << QStringList{"questasim=$ROOT/questasim/win64", "questasim.default=/sys/questa", "esdk=/",
                       "esdk.default=/sys/esdk"};
    QTest::newRow("value wins over a folder, even one that exists not")
        << QByteArray("[General]\nPRECISION_PATH=/nowhere/precision\n") << QByteArray()
        << QByteArray() << allFolders
        << QStringList{"precision=/nowhere/precision", "precision.default=/nowhere/precision"};
}

void TestBaseSystemTools::locators()
{
    QFETCH(QByteArray, system);
    QFETCH(QByteArray, user);
    QFETCH(QByteArray, project);
    QFETCH(QStringList, folders);
    QFETCH(QStringList, expected);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setSystem(system));
    QVERIFY(installation.setUser(user));
    QVERIFY(installation.setProject(project));
    for (const QString &folder : folders)
        QVERIFY(installation.makeToolFolder(folder));

    const ChildResult child = runTools(installation);
    QCOMPARE(child.exitCode, 0);
    for (const QString &expectation : expected) {
        const QString name = expectation.section(QLatin1Char('='), 0, 0);
        QString path = expectation.section(QLatin1Char('='), 1);
        path.replace(QStringLiteral("$ROOT"), installation.root());
        QCOMPARE(child.value(name), path);
    }
    // With the install root set, no locator complains.
    QCOMPARE(child.standardError, QByteArray());
}

void TestBaseSystemTools::missingInstallRoot()
{
    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setUser("[General]\nSYNPLIFY_PATH=/usr/synp\n"));
    for (const QString &folder : allFolders)
        QVERIFY(installation.makeToolFolder(folder));

    const ChildResult child = runTools(installation, false);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("synplify")), QStringLiteral("/usr/synp"));
    for (const char *name : {"synplify.default", "precision", "activehdl", "modelsim", "questasim",
                             "esdk", "esdk.default", "simulator"})
        QCOMPARE(child.value(QLatin1String(name)), QStringLiteral("/"));
    // Fourteen lookups: the configured one and the two of the ESDK say nothing.
    const QStringList lines = child.errorLines();
    QCOMPARE(lines.size(), 11);
    for (const QString &line : lines)
        QCOMPARE(line, QStringLiteral("Error : set . TOOLRTF first."));
}

void TestBaseSystemTools::simulatorType_data()
{
    QTest::addColumn<QByteArray>("system");
    QTest::addColumn<QByteArray>("userAndProject");
    QTest::addColumn<int>("type");

    QTest::newRow("ModelSim") << QByteArray("SIMULATOR_TYPE=ModelSim") << QByteArray() << 2;
    QTest::newRow("QuestaSim") << QByteArray("SIMULATOR_TYPE=QuestaSim") << QByteArray() << 2;
    QTest::newRow("QuestaSimQrun")
        << QByteArray("SIMULATOR_TYPE=QuestaSimQrun") << QByteArray() << 4;
    QTest::newRow("other case") << QByteArray("SIMULATOR_TYPE=questasim") << QByteArray() << 4;
    QTest::newRow("unknown") << QByteArray("SIMULATOR_TYPE=Verilator") << QByteArray() << 4;
    QTest::newRow("empty") << QByteArray("SIMULATOR_TYPE=") << QByteArray() << 4;
    QTest::newRow("no key") << QByteArray() << QByteArray() << 4;
    QTest::newRow("user and project have no say")
        << QByteArray() << QByteArray("SIMULATOR_TYPE=ModelSim") << 4;
    QTest::newRow("user and project do not override")
        << QByteArray("SIMULATOR_TYPE=QuestaSim") << QByteArray("SIMULATOR_TYPE=QuestaSimQrun")
        << 2;
}

void TestBaseSystemTools::simulatorType()
{
    QFETCH(QByteArray, system);
    QFETCH(QByteArray, userAndProject);
    QFETCH(int, type);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setSystem("[General]\n" + system + "\n"));
    QVERIFY(installation.setUser("[General]\n" + userAndProject + "\n"));
    QVERIFY(installation.setProject("[General]\n" + userAndProject + "\n"));
    QVERIFY(installation.makeToolFolder(QStringLiteral("modeltech/win32loem")));
    QVERIFY(installation.makeToolFolder(QStringLiteral("questasim/win64")));

    const ChildResult child = runTools(installation);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("type")), QString::number(type));
    // Both codes stand for the QuestaSim family; ModelSim is reached only directly.
    QCOMPARE(child.value(QStringLiteral("name")), QStringLiteral("QuestaSim"));
    QCOMPARE(child.value(QStringLiteral("env")), QStringLiteral("QUESTASIM_PATH"));
    QCOMPARE(child.value(QStringLiteral("simulator")),
             installation.root() + QStringLiteral("/questasim/win64"));
}

void TestBaseSystemTools::synplifySwitches_data()
{
    QTest::addColumn<QByteArray>("system");
    QTest::addColumn<QByteArray>("user");
    QTest::addColumn<QByteArray>("project");
    // oem, oem with useDefault, pro, pro with useDefault
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("no keys anywhere") << QByteArray() << QByteArray() << QByteArray()
                                      << QStringList{"true", "true", "true", "true"};
    QTest::newRow("system off") << QByteArray("SYNPLIFY_USEOEM=false\nSYNPLIFY_USEPRO=0")
                                << QByteArray() << QByteArray()
                                << QStringList{"false", "false", "false", "false"};
    QTest::newRow("user and project over system")
        << QByteArray("SYNPLIFY_USEOEM=false\nSYNPLIFY_USEPRO=true")
        << QByteArray("SYNPLIFY_USEOEM=1") << QByteArray("SYNPLIFY_USEPRO=0")
        << QStringList{"true", "false", "false", "true"};
    QTest::newRow("only a user value")
        << QByteArray() << QByteArray("SYNPLIFY_USEOEM=false\nSYNPLIFY_USEPRO=False")
        << QByteArray() << QStringList{"false", "true", "false", "true"};
    QTest::newRow("empty and other texts")
        << QByteArray("SYNPLIFY_USEOEM=\nSYNPLIFY_USEPRO=yes") << QByteArray() << QByteArray()
        << QStringList{"false", "false", "true", "true"};
}

void TestBaseSystemTools::synplifySwitches()
{
    QFETCH(QByteArray, system);
    QFETCH(QByteArray, user);
    QFETCH(QByteArray, project);
    QFETCH(QStringList, expected);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setSystem("[General]\n" + system + "\n"));
    QVERIFY(installation.setUser("[General]\n" + user + "\n"));
    QVERIFY(installation.setProject("[General]\n" + project + "\n"));

    const ChildResult child = runTools(installation);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("oem")), expected.at(0));
    QCOMPARE(child.value(QStringLiteral("oem.default")), expected.at(1));
    QCOMPARE(child.value(QStringLiteral("pro")), expected.at(2));
    QCOMPARE(child.value(QStringLiteral("pro.default")), expected.at(3));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSystemTools, scenarios)
#include "tst_basesystem_tools.moc"

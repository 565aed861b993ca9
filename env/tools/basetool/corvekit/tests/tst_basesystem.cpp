// Start-up environment, writes to the environment, the install layout and the process-wide
// values of BaseSystem. Every case runs in a child with an environment of its own.
#include "childprocess.h"

#include <corvekit/basesystem.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

namespace {

QString environmentValue(const char *name)
{
    const char *value = std::getenv(name);
    return value ? QString::fromLatin1(value) : QStringLiteral("<unset>");
}

void reportEnvironment()
{
    for (const char *name : {"TOOLRTF", "FOUNDRY", "ZEKPROG_PATH"})
        report(QString::fromLatin1(name), environmentValue(name));
}

void reportLayout()
{
    report(QStringLiteral("install"), BaseSystem::getInstallPath().path());
    report(QStringLiteral("binary"), BaseSystem::getBinaryPath().path());
    report(QStringLiteral("data"), BaseSystem::getDataPath().path());
    report(QStringLiteral("help"), BaseSystem::getHelpPath().path());
    report(QStringLiteral("tclExe"), BaseSystem::getTclExePath());
    report(QStringLiteral("tclLibrary"), BaseSystem::getTclLibraryPath().path());
    report(QStringLiteral("tclScript"), BaseSystem::getTclScriptPath().path());
}

int runInitialize()
{
    BaseSystem::initializeSystem();
    reportEnvironment();
    report(QStringLiteral("applicationDir"), QCoreApplication::applicationDirPath());
    reportLayout();
    return 0;
}

int runLayout()
{
    reportLayout();
    return 0;
}

// CORVEKIT_CALL: "string:NAME:VALUE", "bool:NAME:1" or "bool:NAME:0", or "unset:NAME".
int runEnvironmentCall()
{
    const QString call = qEnvironmentVariable("CORVEKIT_CALL");
    const QString kind = call.section(QLatin1Char(':'), 0, 0);
    const QByteArray name = call.section(QLatin1Char(':'), 1, 1).toLatin1();
    const QString value = call.section(QLatin1Char(':'), 2);
    int result = 99;
    if (kind == QLatin1String("string"))
        result = BaseSystem::SetEnvVariable(name.constData(), value);
    else if (kind == QLatin1String("bool"))
        result = BaseSystem::SetEnvVariable(name.constData(), value == QLatin1String("1"));
    else if (kind == QLatin1String("unset"))
        result = BaseSystem::UnsetEnvVariable(name.constData());
    report(QStringLiteral("result"), QString::number(result));
    report(QStringLiteral("value"), environmentValue(name.constData()));
    return 0;
}

int runProcessValues()
{
    report(QStringLiteral("emailNull"), QString::number(BaseSystem::getUserEmail().isNull()));
    report(QStringLiteral("email"), BaseSystem::getUserEmail());
    report(QStringLiteral("fiskel"), QString::number(BaseSystem::isFiskelMode()));
    BaseSystem::setUserEmail(QStringLiteral("ana@example.com"));
    BaseSystem::setFiskelMode(true);
    report(QStringLiteral("emailAfter"), BaseSystem::getUserEmail());
    report(QStringLiteral("fiskelAfter"), QString::number(BaseSystem::isFiskelMode()));
    BaseSystem::setFiskelMode(false);
    report(QStringLiteral("fiskelCleared"), QString::number(BaseSystem::isFiskelMode()));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("initialize"), runInitialize},
            {QStringLiteral("layout"), runLayout},
            {QStringLiteral("call"), runEnvironmentCall},
            {QStringLiteral("values"), runProcessValues}};
}

// Trace lines of the child's standard output without their time stamps: "CORVEKIT <text>".
QStringList traces(const ChildResult &child)
{
    QStringList result;
    for (const QString &line : child.outputLines()) {
        if (line.startsWith(QLatin1String("CORVEKIT At ")))
            result.append(line.section(QLatin1String(": "), 1));
    }
    return result;
}

// Fills in $R (the application's root), $T (another root), $H (the home) and $W (working dir).
struct Roots
{
    QString application;
    QString other;
    QString home;

    QString expand(QString text) const
    {
        text.replace(QLatin1String("$R"), application);
        text.replace(QLatin1String("$T"), other);
        text.replace(QLatin1String("$H"), home);
        return text;
    }
};

} // namespace

class TestBaseSystem : public QObject
{
    Q_OBJECT

private slots:
    void initializeSystem_data();
    void initializeSystem();
    void layout_data();
    void layout();
    void environmentWrites_data();
    void environmentWrites();
    void failedRootWriteIsLogged();
    void processValues();
};

void TestBaseSystem::initializeSystem_data()
{
    QTest::addColumn<QStringList>("environment"); // NAME=value pairs set before start
    QTest::addColumn<QString>("systemSetting");   // ZEKPROG_PATH in $T/data/.setting.ini
    QTest::addColumn<QString>("userSetting");     // ZEKPROG_PATH in the user's file
    QTest::addColumn<QStringList>("expected");    // TOOLRTF, FOUNDRY, ZEKPROG_PATH after
    QTest::addColumn<QStringList>("expectedTraces");

    QTest::newRow("nothing set") << QStringList() << QString() << QString()
                                 << QStringList{"$R", "$R/zekfpga", "$R/zekprog"}
                                 << QStringList{"setenv TOOLRTF=$R", "setenv FOUNDRY=$R/zekfpga",
                                                "setenv ZEKPROG_PATH=$R/zekprog"};
    QTest::newRow("TOOLRTF set: FOUNDRY still follows the application")
        << QStringList{"TOOLRTF=$T"} << QString() << QString()
        << QStringList{"$T", "$R/zekfpga", "$T/zekprog"}
        << QStringList{"setenv FOUNDRY=$R/zekfpga", "setenv ZEKPROG_PATH=$T/zekprog"};
    QTest::newRow("FOUNDRY set") << QStringList{"FOUNDRY=/opt/foundry"} << QString() << QString()
                                 << QStringList{"$R", "/opt/foundry", "$R/zekprog"}
                                 << QStringList{"setenv TOOLRTF=$R",
                                                "setenv ZEKPROG_PATH=$R/zekprog"};
    QTest::newRow("both set: only ZEKPROG_PATH is derived")
        << QStringList{"TOOLRTF=$T", "FOUNDRY=/opt/foundry"} << QString() << QString()
        << QStringList{"$T", "/opt/foundry", "$T/zekprog"}
        << QStringList{"setenv ZEKPROG_PATH=$T/zekprog"};
    QTest::newRow("system setting is stored unchanged, even relative")
        << QStringList{"TOOLRTF=$T", "FOUNDRY=/f"} << "tools/zekprog" << QString()
        << QStringList{"$T", "/f", "tools/zekprog"}
        << QStringList{"setenv ZEKPROG_PATH=tools/zekprog"};
    QTest::newRow("user setting wins over the system setting")
        << QStringList{"TOOLRTF=$T", "FOUNDRY=/f"} << "/system/zekprog"
        << "/user/zekprog" << QStringList{"$T", "/f", "/user/zekprog"}
        << QStringList{"setenv ZEKPROG_PATH=/user/zekprog"};
    QTest::newRow("ZEKPROG_PATH in the environment is not replaced by a setting")
        << QStringList{"TOOLRTF=$T", "FOUNDRY=/f", "ZEKPROG_PATH=/env/zekprog"} << "/system/zekprog"
        << QString() << QStringList{"$T", "/f", "/env/zekprog"} << QStringList();
    QTest::newRow("empty values count as set")
        << QStringList{"TOOLRTF=", "FOUNDRY=", "ZEKPROG_PATH="} << QString() << QString()
        << QStringList{"", "", ""} << QStringList();
    QTest::newRow("derived ZEKPROG_PATH is absolute and clean")
        << QStringList{"TOOLRTF=$T/bin/..", "FOUNDRY=/f"} << QString() << QString()
        << QStringList{"$T/bin/..", "/f", "$T/zekprog"}
        << QStringList{"setenv ZEKPROG_PATH=$T/zekprog"};
}

void TestBaseSystem::initializeSystem()
{
    QFETCH(QStringList, environment);
    QFETCH(QString, systemSetting);
    QFETCH(QString, userSetting);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, expectedTraces);

    QTemporaryDir home;
    QTemporaryDir applicationRoot;
    QTemporaryDir otherRoot;
    const Roots roots{applicationRoot.path(), otherRoot.path(), home.path()};

    if (!systemSetting.isEmpty()) {
        QVERIFY(writeFile(otherRoot.filePath(QStringLiteral("data/.setting.ini")),
                          "ZEKPROG_PATH=" + systemSetting.toUtf8() + '\n'));
    }
    if (!userSetting.isEmpty()) {
        QVERIFY(writeFile(home.filePath(QStringLiteral(".config/Meravex/OstraneNG/.setting.ini")),
                          "ZEKPROG_PATH=" + userSetting.toUtf8() + '\n'));
    }

    QProcessEnvironment childEnvironment = cleanEnvironment(home.path());
    childEnvironment.insert(QStringLiteral("TIVORANDEBUG"), QStringLiteral(" "));
    for (const QString &assignment : environment) {
        childEnvironment.insert(assignment.section(QLatin1Char('='), 0, 0),
                                roots.expand(assignment.section(QLatin1Char('='), 1)));
    }
    const QString program = placeApplication(applicationRoot.filePath(QStringLiteral("bin/nt64")));
    QVERIFY(!program.isEmpty());

    const ChildResult child = runScenario(QStringLiteral("initialize"), childEnvironment, program);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("TOOLRTF")), roots.expand(expected.at(0)));
    QCOMPARE(child.value(QStringLiteral("FOUNDRY")), roots.expand(expected.at(1)));
    QCOMPARE(child.value(QStringLiteral("ZEKPROG_PATH")), roots.expand(expected.at(2)));
    QStringList expandedTraces;
    for (const QString &trace : expectedTraces)
        expandedTraces.append(roots.expand(trace));
    QCOMPARE(traces(child), expandedTraces);
    if (expected.at(0) == QLatin1String("$R")) {
        QCOMPARE(child.value(QStringLiteral("binary")),
                 child.value(QStringLiteral("applicationDir")));
    }
}

void TestBaseSystem::layout_data()
{
    QTest::addColumn<QString>("toolrtf"); // "<unset>" leaves it unset
    QTest::addColumn<QString>("root");    // the root every path starts with

    QTest::newRow("plain root") << "$T"
                                << "$T";
    QTest::newRow("trailing separator is dropped") << "$T/"
                                                   << "$T";
    QTest::newRow("unset: application directory, unresolved") << "<unset>"
                                                              << "$R/bin/nt64/../..";
}

void TestBaseSystem::layout()
{
    QFETCH(QString, toolrtf);
    QFETCH(QString, root);

    QTemporaryDir home;
    QTemporaryDir applicationRoot;
    QTemporaryDir otherRoot;
    const Roots roots{applicationRoot.path(), otherRoot.path(), home.path()};
    QProcessEnvironment environment = cleanEnvironment(home.path());
    if (toolrtf != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("TOOLRTF"), roots.expand(toolrtf));
    const QString program = placeApplication(applicationRoot.filePath(QStringLiteral("bin/nt64")));

    const ChildResult child = runScenario(QStringLiteral("layout"), environment, program);
    QCOMPARE(child.exitCode, 0);
    const QString r = roots.expand(root);
    QCOMPARE(child.value(QStringLiteral("install")), r);
    QCOMPARE(child.value(QStringLiteral("binary")), r + "/bin/nt64");
    QCOMPARE(child.value(QStringLiteral("data")), r + "/data");
    QCOMPARE(child.value(QStringLiteral("help")), r + "/docs/webhelp/eng");
    QCOMPARE(child.value(QStringLiteral("tclExe")), r + "/tcltk/windows/bin/tclsh");
    QCOMPARE(child.value(QStringLiteral("tclLibrary")), r + "/tcltk/windows/lib/tcl8.6");
    QCOMPARE(child.value(QStringLiteral("tclScript")), r + "/scripts/tcl");
}

void TestBaseSystem::environmentWrites_data()
{
    QTest::addColumn<QString>("before"); // "<unset>" leaves CORVEKIT_VAR unset
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("trace");

    QTest::newRow("text") << "<unset>"
                          << "string:CORVEKIT_VAR:/opt/x" << 0 << "/opt/x"
                          << "setenv CORVEKIT_VAR=/opt/x";
    QTest::newRow("true is 1") << "<unset>"
                               << "bool:CORVEKIT_VAR:1" << 0 << "1"
                               << "setenv CORVEKIT_VAR=1";
    QTest::newRow("false is 0") << "<unset>"
                                << "bool:CORVEKIT_VAR:0" << 0 << "0"
                                << "setenv CORVEKIT_VAR=0";
    QTest::newRow("empty text removes, traced as setenv")
        << "old"
        << "string:CORVEKIT_VAR:" << 0 << "<unset>"
        << "setenv CORVEKIT_VAR=";
    QTest::newRow("unset traces the equal sign") << "old"
                                                 << "unset:CORVEKIT_VAR" << 0 << "<unset>"
                                                 << "unsetenv CORVEKIT_VAR=";
    QTest::newRow("beyond Latin-1 becomes a question mark")
        << "<unset>" << QStringLiteral("string:CORVEKIT_VAR:Gr\u00fc\u00dfe \u20ac") << 0
        << QStringLiteral("Gr\u00fc\u00dfe ?")
        << QStringLiteral("setenv CORVEKIT_VAR=Gr\u00fc\u00dfe ?");
    QTest::newRow("failed write is still traced") << "old"
                                                  << "string::value" << -1 << "<unset>"
                                                  << "setenv =value";
}

void TestBaseSystem::environmentWrites()
{
    QFETCH(QString, before);
    QFETCH(QString, call);
    QFETCH(int, result);
    QFETCH(QString, after);
    QFETCH(QString, trace);

    QTemporaryDir home;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.remove(QStringLiteral("CORVEKIT_VAR"));
    if (before != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("CORVEKIT_VAR"), before);
    environment.insert(QStringLiteral("TIVORANDEBUG"), QString());
    environment.insert(QStringLiteral("CORVEKIT_CALL"), call);

    const ChildResult child = runScenario(QStringLiteral("call"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("result")).toInt(), result);
    // The child reads the variable back as Latin-1 and reports it as UTF-8.
    if (!call.startsWith(QLatin1String("string::")))
        QCOMPARE(child.value(QStringLiteral("value")), after);
    const QStringList lines = child.outputLines();
    QVERIFY(!lines.isEmpty());
    QCOMPARE(QString::fromLatin1(child.standardOutput.left(child.standardOutput.indexOf('\n')))
                 .section(QLatin1String(": "), 1),
             trace);
}

void TestBaseSystem::failedRootWriteIsLogged()
{
    QTemporaryDir home;
    QTemporaryDir applicationRoot;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(CORVEKIT_FAILING_SETENV));
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    environment.insert(QStringLiteral("CORVEKIT_FAIL_SETENV"), QStringLiteral("TOOLRTF"));
    environment.insert(QStringLiteral("TIVORANDEBUG"), QStringLiteral(" "));
    environment.insert(QStringLiteral("QT_MESSAGE_PATTERN"),
                       QStringLiteral("%{type}|%{file}|%{function}|%{message}"));
    const QString program = placeApplication(applicationRoot.filePath(QStringLiteral("bin/nt64")));

    const ChildResult child = runScenario(QStringLiteral("initialize"), environment, program);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("TOOLRTF")), QStringLiteral("<unset>"));
    QCOMPARE(child.value(QStringLiteral("ZEKPROG_PATH")), QStringLiteral("<unset>"));
    // The failed write was traced all the same, and FOUNDRY still follows the application.
    const QString root = applicationRoot.path();
    QCOMPARE(traces(child), QStringList({QStringLiteral("setenv TOOLRTF=") + root,
                                         QStringLiteral("setenv FOUNDRY=") + root + "/zekfpga"}));
    const QStringList fields = child.errorLines().value(0).split(QLatin1Char('|'));
    QCOMPARE(fields.size(), 4);
    QCOMPARE(fields.at(0), QStringLiteral("debug"));
    QVERIFY2(fields.at(1).endsWith(QLatin1String("basesystem.cpp")), qPrintable(fields.at(1)));
    QVERIFY2(fields.at(2).contains(QLatin1String("BaseSystem::initializeSystem")),
             qPrintable(fields.at(2)));
    QCOMPARE(fields.at(3), QStringLiteral("do not set ZEKPROG path as environment variable."));
}

void TestBaseSystem::processValues()
{
    QTemporaryDir home;
    const ChildResult child = runScenario(QStringLiteral("values"), cleanEnvironment(home.path()));
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("emailNull")), QStringLiteral("0"));
    QCOMPARE(child.value(QStringLiteral("email")), QString());
    QCOMPARE(child.value(QStringLiteral("fiskel")), QStringLiteral("0"));
    QCOMPARE(child.value(QStringLiteral("emailAfter")), QStringLiteral("ana@example.com"));
    QCOMPARE(child.value(QStringLiteral("fiskelAfter")), QStringLiteral("1"));
    QCOMPARE(child.value(QStringLiteral("fiskelCleared")), QStringLiteral("0"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSystem, scenarios)
#include "tst_basesystem.moc"

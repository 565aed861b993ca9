// The corvekit tool's env and settings subcommands: output, JSON, and exit status.
#include "childprocess.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

// An installation, a home and a project in one temporary folder, with a key at each level.
struct Sandbox
{
    QTemporaryDir dir;

    Sandbox()
    {
        writeFile(root() + QLatin1String("/data/.setting.ini"),
                  "SIMULATOR_TYPE=QuestaSim\nFAMILY=system-family\nLIMIT=100\n");
        writeFile(home() + QLatin1String("/.config/Meravex/OstraneNG/.setting.ini"),
                  "LIMIT=2000\nFAMILY=user-family\nLIST=a, b\n");
        writeFile(project() + QLatin1String(".setting.ini"), "FAMILY=project-family\n");
    }
    QString root() const { return dir.filePath(QStringLiteral("install")); }
    QString home() const { return dir.filePath(QStringLiteral("home")); }
    QString project() const { return dir.filePath(QStringLiteral("project/")); }

    QProcessEnvironment environment() const
    {
        QProcessEnvironment result = cleanEnvironment(home());
        result.insert(QStringLiteral("TOOLRTF"), root());
        return result;
    }

    ChildResult run(const QStringList &arguments) const
    {
        return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), arguments, environment(), dir.path());
    }
};

QJsonObject parseJson(const QByteArray &bytes)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

} // namespace

class TestTool : public QObject
{
    Q_OBJECT

private slots:
    void envText();
    void envJson();
    void settingsGet_data();
    void settingsGet();
    void settingsGetJson();
    void malformedFile();
    void usage_data();
    void usage();
};

void TestTool::envText()
{
    Sandbox sandbox;
    const ChildResult result = sandbox.run({QStringLiteral("env")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardError, QByteArray());
    const QStringList lines = result.outputLines();
    QVERIFY(lines.contains(QStringLiteral("TOOLRTF:       ") + sandbox.root()));
    QVERIFY(lines.contains(QStringLiteral("  data:        ") + sandbox.root() + "/data"));
    QVERIFY(lines.contains(QStringLiteral("group setting file in use: no")));
}

void TestTool::envJson()
{
    Sandbox sandbox;
    const ChildResult result = sandbox.run({QStringLiteral("env"), QStringLiteral("--json"),
                                            QStringLiteral("--project"), sandbox.project()});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject json = parseJson(result.standardOutput);
    QCOMPARE(json.value(QStringLiteral("installRoot")).toString(), sandbox.root());
    QCOMPARE(json.value(QStringLiteral("TOOLRTF")).toString(), sandbox.root());
    // initializeSystem filled what was unset.
    QCOMPARE(json.value(QStringLiteral("ZEKPROG_PATH")).toString(), sandbox.root() + "/zekprog");
    QVERIFY(json.value(QStringLiteral("FOUNDRY")).toString().endsWith(QLatin1String("/zekfpga")));
    const QJsonObject paths = json.value(QStringLiteral("paths")).toObject();
    QCOMPARE(paths.value(QStringLiteral("help")).toString(), sandbox.root() + "/docs/webhelp/eng");
    QCOMPARE(paths.value(QStringLiteral("tclExe")).toString(),
             sandbox.root() + "/tcltk/windows/bin/tclsh");
    const QJsonObject files = json.value(QStringLiteral("settingsFiles")).toObject();
    QCOMPARE(files.value(QStringLiteral("project")).toString(), sandbox.project() + ".setting.ini");
    QCOMPARE(files.value(QStringLiteral("system")).toString(),
             sandbox.root() + "/data/.setting.ini");
    QCOMPARE(json.value(QStringLiteral("groupSettingFile")).toBool(true), false);
}

void TestTool::settingsGet_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("project level")
        << QStringList{"FAMILY", "--project", "$P"} << 0 << "project\tproject-family";
    QTest::newRow("user level without a project")
        << QStringList{"FAMILY"} << 0 << "user\tuser-family";
    QTest::newRow("user over system") << QStringList{"LIMIT"} << 0 << "user\t2000";
    QTest::newRow("system level") << QStringList{"SIMULATOR_TYPE"} << 0 << "system\tQuestaSim";
    QTest::newRow("list value") << QStringList{"LIST"} << 0 << "user\ta, b";
    QTest::newRow("no level") << QStringList{"MISSING"} << 1 << "";
}

void TestTool::settingsGet()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, output);

    Sandbox sandbox;
    arguments.replaceInStrings(QStringLiteral("$P"), sandbox.project());
    const ChildResult result =
        sandbox.run(QStringList{QStringLiteral("settings"), QStringLiteral("get")} + arguments);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.outputLines(), output.isEmpty() ? QStringList() : QStringList{output});
    if (exitCode == 1) {
        QCOMPARE(result.errorLines(),
                 QStringList{QStringLiteral("corvekit: 'MISSING' is set at no level")});
    }
}

void TestTool::settingsGetJson()
{
    Sandbox sandbox;
    const ChildResult result = sandbox.run({QStringLiteral("settings"), QStringLiteral("get"),
                                            QStringLiteral("LIST"), QStringLiteral("--json")});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject json = parseJson(result.standardOutput);
    QCOMPARE(json.value(QStringLiteral("level")).toString(), QStringLiteral("user"));
    QCOMPARE(json.value(QStringLiteral("value")).toVariant().toStringList(),
             (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

void TestTool::malformedFile()
{
    Sandbox sandbox;
    QVERIFY(writeFile(sandbox.project() + ".setting.ini", "[General\nFAMILY=broken\n"));
    const ChildResult result =
        sandbox.run({QStringLiteral("settings"), QStringLiteral("get"), QStringLiteral("FAMILY"),
                     QStringLiteral("--project"), sandbox.project()});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(result.standardOutput, QByteArray());
    QCOMPARE(result.errorLines(),
             QStringList{QStringLiteral("corvekit: %1: malformed settings file")
                             .arg(sandbox.project() + ".setting.ini")});
}

void TestTool::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("no command") << QStringList() << 2;
    QTest::newRow("unknown command") << QStringList{"frobnicate"} << 2;
    QTest::newRow("unknown option") << QStringList{"env", "--colour"} << 2;
    QTest::newRow("settings without action") << QStringList{"settings"} << 2;
    QTest::newRow("settings get without key") << QStringList{"settings", "get"} << 2;
    QTest::newRow("settings get with two keys") << QStringList{"settings", "get", "A", "B"} << 2;
    QTest::newRow("help") << QStringList{"--help"} << 0;
    QTest::newRow("command help") << QStringList{"env", "--help"} << 0;
}

void TestTool::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);

    Sandbox sandbox;
    const ChildResult result = sandbox.run(arguments);
    QCOMPARE(result.exitCode, exitCode);
    if (exitCode != 0) {
        QCOMPARE(result.standardOutput, QByteArray());
        QVERIFY(!result.standardError.isEmpty());
    } else {
        QVERIFY(result.standardOutput.contains("Usage") ||
                result.standardOutput.contains("Options"));
    }
}

QTEST_GUILESS_MAIN(TestTool)
#include "tst_tool.moc"

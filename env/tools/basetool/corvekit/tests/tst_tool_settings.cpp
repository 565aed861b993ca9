#include "childprocess.h"
#include "sampleinstallation.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTest>

#include <unistd.h>

// `corvekit settings get/set/unset` run as a program against a throw-away installation.

namespace {

ChildResult tool(const SampleInstallation &installation, const QStringList &arguments)
{
    return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), arguments, installation.environment());
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

} // namespace

class TestToolSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void typedGet_data();
    void typedGet();
    void typedGetJson();
    void setAndGetBack_data();
    void setAndGetBack();
    void setRejectsBadInput_data();
    void setRejectsBadInput();
    void writeThatCannotReachItsFile();
    void writeThatFailsOnFlush();
    void writeIntoReadOnlyFolder();
    void malformedFileIsNotRewritten();
    void unset();

private:
    std::unique_ptr<SampleInstallation> m_installation;
};

void TestToolSettings::init()
{
    m_installation = std::make_unique<SampleInstallation>();
    QVERIFY(m_installation->isValid());
    QVERIFY(m_installation->setSystem("[General]\nGRADE=6\nFLAG=false\nDIRS=a, b\n"));
    QVERIFY(m_installation->setUser("[General]\nLIMIT=2000\nGRADE=7\n"));
    QVERIFY(m_installation->setProject("[General]\nFAMILY=Corvus-III\nFLAG=yes\n"));
}

void TestToolSettings::typedGet_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("int from the user level")
        << QStringList{"LIMIT", "--type", "int"} << 0 << "user\t2000";
    QTest::newRow("user level over the system level")
        << QStringList{"GRADE", "--type", "int", "--project", "/nowhere/"} << 0 << "user\t7";
    QTest::newRow("bool from the project level")
        << QStringList{"FLAG", "--type", "bool"} << 0 << "project\ttrue";
    QTest::newRow("text that is no number")
        << QStringList{"FAMILY", "--type", "int"} << 0 << "project\t0";
    QTest::newRow("list") << QStringList{"DIRS", "--type", "list"} << 0 << "system\ta, b";
    QTest::newRow("list as string") << QStringList{"DIRS", "--type", "string"} << 0 << "system\t";
    QTest::newRow("missing key") << QStringList{"NOTHING", "--type", "int"} << 1 << "";
    QTest::newRow("unknown type") << QStringList{"LIMIT", "--type", "float"} << 2 << "";
}

void TestToolSettings::typedGet()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, output);

    QStringList command = {"settings", "get"};
    command += arguments;
    if (!arguments.contains(QStringLiteral("--project")))
        command += {QStringLiteral("--project"), m_installation->project()};
    const ChildResult result = tool(*m_installation, command);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(QString::fromUtf8(result.standardOutput).trimmed(), output.trimmed());
    QCOMPARE(result.errorLines().size(), exitCode == 0 ? 0 : 1);
}

void TestToolSettings::typedGetJson()
{
    const ChildResult result =
        tool(*m_installation, {"settings", "get", "LIMIT", "--type", "int", "--json", "--project",
                               m_installation->project()});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject object = QJsonDocument::fromJson(result.standardOutput).object();
    QCOMPARE(object.value(QStringLiteral("level")).toString(), QStringLiteral("user"));
    QVERIFY(object.value(QStringLiteral("value")).isDouble());
    QCOMPARE(object.value(QStringLiteral("value")).toInt(), 2000);
}

void TestToolSettings::setAndGetBack_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("readBack"); // through `settings get --type`
    QTest::addColumn<QString>("onDisk");   // the line in the level's file

    // A negative value follows "--", or it would read as an option.
    QTest::newRow("user int") << "user"
                              << "int"
                              << "-12"
                              << "user\t-12"
                              << "NEW_KEY=-12";
    QTest::newRow("user bool") << "user"
                               << "bool"
                               << "TRUE"
                               << "user\ttrue"
                               << "NEW_KEY=true";
    QTest::newRow("project string") << "project"
                                    << "string"
                                    << "a b"
                                    << "project\ta b"
                                    << "NEW_KEY=a b";
    QTest::newRow("project list") << "project"
                                  << "list"
                                  << "rtl, tb"
                                  << "project\trtl, tb"
                                  << "NEW_KEY=rtl, tb";
}

void TestToolSettings::setAndGetBack()
{
    QFETCH(QString, level);
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QString, readBack);
    QFETCH(QString, onDisk);

    const QString file =
        level == QLatin1String("user") ? m_installation->userFile() : m_installation->projectFile();
    QStringList target = {QStringLiteral("--user")};
    if (level == QLatin1String("project"))
        target = {QStringLiteral("--project"), m_installation->project()};

    const ChildResult set = tool(*m_installation, QStringList{"settings", "set", "--type", type} +
                                                      target + QStringList{"--", "NEW_KEY", value});
    QCOMPARE(set.exitCode, 0);
    QCOMPARE(set.outputLines(), QStringList{level + QLatin1Char('\t') + file});
    QVERIFY2(contents(file).contains(onDisk.toUtf8()), contents(file).constData());
    // The other levels are untouched.
    QVERIFY(!contents(m_installation->systemFile()).contains("NEW_KEY"));
    const QString other =
        level == QLatin1String("user") ? m_installation->projectFile() : m_installation->userFile();
    QVERIFY(!contents(other).contains("NEW_KEY"));

    const ChildResult get = tool(*m_installation, {"settings", "get", "NEW_KEY", "--type", type,
                                                   "--project", m_installation->project()});
    QCOMPARE(get.exitCode, 0);
    QCOMPARE(get.outputLines(), QStringList{readBack});
}

void TestToolSettings::setRejectsBadInput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("no level") << QStringList{"KEY", "1"} << 2;
    QTest::newRow("both levels") << QStringList{"--user", "--project", "/p/", "KEY", "1"} << 2;
    QTest::newRow("value missing") << QStringList{"--user", "KEY"} << 2;
    QTest::newRow("not an int") << QStringList{"--user", "--type", "int", "KEY", "12x"} << 3;
    QTest::newRow("not a bool") << QStringList{"--user", "--type", "bool", "KEY", "maybe"} << 3;
    QTest::newRow("unknown type") << QStringList{"--user", "--type", "date", "KEY", "1"} << 2;
    QTest::newRow("key of slashes") << QStringList{"--user", "//", "1"} << 3;
}

void TestToolSettings::setRejectsBadInput()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);

    const QByteArray before = contents(m_installation->userFile());
    const ChildResult result = tool(*m_installation, QStringList{"settings", "set"} + arguments);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.standardOutput, QByteArray());
    QCOMPARE(result.errorLines().size(), 1);
    QCOMPARE(contents(m_installation->userFile()), before);
}

void TestToolSettings::writeThatCannotReachItsFile()
{
    // A folder stands where the project file would be: no one can write there.
    const QString project = m_installation->path(QStringLiteral("blocked/"));
    QVERIFY(QDir().mkpath(project + QStringLiteral(".setting.ini")));

    for (const QStringList &command :
         {QStringList{"settings", "set", "--project", project, "KEY", "1"},
          QStringList{"settings", "unset", "--project", project, "KEY"}}) {
        const ChildResult result = tool(*m_installation, command);
        QVERIFY2(result.exitCode == 4 || result.exitCode == 1, result.standardError.constData());
        QCOMPARE(result.standardOutput, QByteArray());
        QCOMPARE(result.errorLines().size(), 1);
        if (command.at(1) == QLatin1String("set")) {
            QCOMPARE(result.exitCode, 4);
            QVERIFY(result.errorLines().first().contains(project + QStringLiteral(".setting.ini")));
        }
    }
}

void TestToolSettings::writeThatFailsOnFlush()
{
    // Below /proc nothing can be made, not even by the superuser; the files open empty and the
    // failure shows only when the write is flushed.
    if (!QFileInfo(QStringLiteral("/proc/self")).isDir())
        QSKIP("needs /proc");
    ChildResult result =
        tool(*m_installation, {"settings", "set", "--project", "/proc/self/", "KEY", "1"});
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(result.standardOutput, QByteArray());
    QCOMPARE(result.errorLines(),
             QStringList{"corvekit: /proc/self/.setting.ini: cannot write settings file"});

    QProcessEnvironment environment = m_installation->environment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral("/proc/self"));
    result = runProgram(QStringLiteral(CORVEKIT_TOOL_PATH),
                        {"settings", "set", "--user", "KEY", "1"}, environment);
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(result.standardOutput, QByteArray());
    QCOMPARE(result.errorLines(),
             QStringList{"corvekit: /proc/self/Meravex/OstraneNG/.setting.ini: cannot write "
                         "settings file"});
}

void TestToolSettings::writeIntoReadOnlyFolder()
{
    if (::geteuid() == 0)
        QSKIP("permissions do not stop the superuser");
    const QString project = m_installation->path(QStringLiteral("readonly/"));
    QVERIFY(QDir().mkpath(project));
    QVERIFY(QFile::setPermissions(project, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    const ChildResult result =
        tool(*m_installation, {"settings", "set", "--project", project, "KEY", "1"});
    QFile::setPermissions(project,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(result.standardOutput, QByteArray());
    QVERIFY(result.errorLines().value(0).contains(project + QStringLiteral(".setting.ini")));
    QVERIFY(!QFileInfo::exists(project + QStringLiteral(".setting.ini")));
}

void TestToolSettings::malformedFileIsNotRewritten()
{
    const QByteArray malformed = "[General\nKEEP=me\n";
    QVERIFY(m_installation->setUser(malformed));
    const ChildResult result = tool(*m_installation, {"settings", "set", "--user", "KEY", "1"});
    QCOMPARE(result.exitCode, 3);
    QVERIFY(result.errorLines().value(0).contains(m_installation->userFile()));
    QCOMPARE(contents(m_installation->userFile()), malformed);
}

void TestToolSettings::unset()
{
    QVERIFY(m_installation->setUser("[General]\nLIMIT=2000\nGRADE=7\n[group]\na=1\nb=2\n"));

    ChildResult result = tool(*m_installation, {"settings", "unset", "--user", "GRADE"});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.outputLines(),
             QStringList{QStringLiteral("user\t") + m_installation->userFile()});
    // The system level answers again.
    result = tool(*m_installation, {"settings", "get", "GRADE", "--type", "int"});
    QCOMPARE(result.outputLines(), QStringList{QStringLiteral("system\t6")});

    result = tool(*m_installation, {"settings", "unset", "--user", "group"});
    QCOMPARE(result.exitCode, 0);
    const QByteArray after = contents(m_installation->userFile());
    QVERIFY(after.contains("LIMIT=2000"));
    QVERIFY(!after.contains("a=1"));
    QVERIFY(!after.contains("GRADE"));

    // A key the level lacks is not found there, and the file stays as it is.
    result = tool(*m_installation, {"settings", "unset", "--user", "GRADE"});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(contents(m_installation->userFile()), after);
    result = tool(*m_installation,
                  {"settings", "unset", "--project", m_installation->project(), "LIMIT"});
    QCOMPARE(result.exitCode, 1);
    // Nothing but slashes would name the whole file.
    result = tool(*m_installation, {"settings", "unset", "--user", "/"});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(contents(m_installation->userFile()), after);
}

QTEST_GUILESS_MAIN(TestToolSettings)
#include "tst_tool_settings.moc"

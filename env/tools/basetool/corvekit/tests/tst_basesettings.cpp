// The three levels behind BaseSettings: which files they are, how a lookup walks them, the
// group setting file and its warnings, and copies that share the levels.
#include "childprocess.h"

#include <corvekit/basesettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString argument(const char *name)
{
    const QString value = qEnvironmentVariable(name);
    return value == QLatin1String("<null>") ? QString() : value;
}

void reportFiles(const QString &prefix, BaseSettings &settings)
{
    report(prefix + QLatin1String("project"), settings.getProjectLeverSetting()->fileName());
    report(prefix + QLatin1String("user"), settings.getUserSetting()->fileName());
    report(prefix + QLatin1String("system"), settings.getSystemSetting()->fileName());
    report(prefix + QLatin1String("group"), QString::number(settings.isUseGroupSettingFile()));
}

QString describe(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("<invalid>");
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1Char(','));
    return value.toString();
}

// CORVEKIT_APP_NAME, CORVEKIT_STATIC_PATH (for setProjectPath) and CORVEKIT_PROJECT_ARG (for
// the constructor) choose the files; "<null>" stands for a null text.
int runFiles()
{
    QCoreApplication::setApplicationName(qEnvironmentVariable("CORVEKIT_APP_NAME"));
    BaseSettings earlier{QString()};
    if (qEnvironmentVariableIsSet("CORVEKIT_STATIC_PATH"))
        BaseSettings::setProjectPath(argument("CORVEKIT_STATIC_PATH"));
    BaseSettings settings(argument("CORVEKIT_PROJECT_ARG"));
    reportFiles(QString(), settings);
    report(QStringLiteral("earlierproject"), earlier.getProjectLeverSetting()->fileName());
    return 0;
}

// Looks up every key of CORVEKIT_KEYS through all levels and through the system level alone.
int runLookup()
{
    BaseSettings settings(argument("CORVEKIT_PROJECT_ARG"));
    const QVariant fallback(QStringLiteral("<default>"));
    for (const QString &key : qEnvironmentVariable("CORVEKIT_KEYS").split(QLatin1Char(' '))) {
        report(QLatin1String("get:") + key, describe(settings.getSetting(key, fallback)));
        report(QLatin1String("default:") + key,
               describe(settings.getDefaultSetting(key, fallback)));
    }
    return 0;
}

// Peels a key off the project and then the user level and looks it up after each step.
int runPeel()
{
    BaseSettings settings(argument("CORVEKIT_PROJECT_ARG"));
    const QString key = QStringLiteral("LEVEL");
    report(QStringLiteral("all"), settings.getSetting(key, QVariant()).toString());
    settings.unsetOnProjectLevel(key);
    report(QStringLiteral("noproject"), settings.getSetting(key, QVariant()).toString());
    settings.unsetOnUserLevel(key);
    report(QStringLiteral("nouser"), settings.getSetting(key, QVariant()).toString());
    return 0;
}

// Writes through the user level, whichever file that is, and leaves the flush to destruction.
int runUserWrite()
{
    BaseSettings settings{QString()};
    report(QStringLiteral("group"), QString::number(settings.isUseGroupSettingFile()));
    settings.setOnUserLevel(QStringLiteral("WRITTEN"), QStringLiteral("by-user-level"));
    return 0;
}

// Copies and assignments share the levels: every object can be destroyed in any order, and
// levels that an assignment drops are flushed and closed at once.
int runSharing()
{
    const QString first = argument("CORVEKIT_PROJECT_ARG");
    const QString second = argument("CORVEKIT_SECOND_PROJECT");
    auto *a = new BaseSettings(first);
    auto *b = new BaseSettings(second);
    a->setOnProjectLevel(QStringLiteral("PENDING"), QStringLiteral("from-a"));
    *a = *b; // a's own levels go now: their pending write must reach the disk
    QSettings check(first + QLatin1String(".setting.ini"), QSettings::IniFormat);
    report(QStringLiteral("flushedOnAssign"), check.value(QStringLiteral("PENDING")).toString());
    report(QStringLiteral("sameLevels"),
           QString::number(a->getProjectLeverSetting() == b->getProjectLeverSetting()));

    *a = *a; // self-assignment keeps the levels alive
    delete b;
    a->setOnProjectLevel(QStringLiteral("AFTER"), QStringLiteral("from-a"));
    BaseSettings copy(*a);
    delete a;
    report(QStringLiteral("copyReads"),
           copy.getSetting(QStringLiteral("AFTER"), QVariant()).toString());
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("files"), runFiles},
            {QStringLiteral("lookup"), runLookup},
            {QStringLiteral("peel"), runPeel},
            {QStringLiteral("userwrite"), runUserWrite},
            {QStringLiteral("sharing"), runSharing}};
}

struct Installation
{
    QTemporaryDir home;
    QTemporaryDir root;
    QTemporaryDir work;

    QString individualFile() const
    {
        return home.path() + QLatin1String("/.config/Meravex/OstraneNG/.setting.ini");
    }
    QString siblingFile() const
    {
        return home.path() + QLatin1String("/.config/Meravex/FenwrightStudio/.setting.ini");
    }
    QString systemFile() const { return root.path() + QLatin1String("/data/.setting.ini"); }

    QProcessEnvironment environment() const
    {
        QProcessEnvironment result = cleanEnvironment(home.path());
        result.insert(QStringLiteral("TOOLRTF"), root.path());
        return result;
    }

    ChildResult run(const QString &scenario, const QProcessEnvironment &environment) const
    {
        return runScenario(scenario, environment, {}, work.path());
    }
};

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
}

} // namespace

class TestBaseSettings : public QObject
{
    Q_OBJECT

private slots:
    void projectFile_data();
    void projectFile();
    void projectPathIsReadAtConstruction();
    void userFile_data();
    void userFile();
    void lookup_data();
    void lookup();
    void removingPeelsLevels();
    void groupFileTakesUserWrites();
    void groupFileWarnings_data();
    void groupFileWarnings();
    void copiesShareLevels();
};

void TestBaseSettings::projectFile_data()
{
    QTest::addColumn<QString>("staticPath"); // "<unset>": setProjectPath is not called
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("expected"); // relative names are relative to the working dir

    QTest::newRow("directory with slash") << "<unset>"
                                          << "/home/me/proj/"
                                          << "/home/me/proj/.setting.ini";
    QTest::newRow("no slash: a file beside the directory") << "<unset>"
                                                           << "/home/me/proj"
                                                           << "/home/me/proj.setting.ini";
    QTest::newRow("no path: the working directory") << "<unset>"
                                                    << "<null>"
                                                    << "$W/.setting.ini";
    QTest::newRow("static path") << "/p/static/"
                                 << "<null>"
                                 << "/p/static/.setting.ini";
    QTest::newRow("argument wins over the static path") << "/p/static/"
                                                        << "/p/argument/"
                                                        << "/p/argument/.setting.ini";
    QTest::newRow("empty argument counts as none") << "/p/static/"
                                                   << ""
                                                   << "/p/static/.setting.ini";
    QTest::newRow("empty static path clears it") << ""
                                                 << "<null>"
                                                 << "$W/.setting.ini";
}

void TestBaseSettings::projectFile()
{
    QFETCH(QString, staticPath);
    QFETCH(QString, argument);
    QFETCH(QString, expected);

    Installation installation;
    QProcessEnvironment environment = installation.environment();
    if (staticPath != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("CORVEKIT_STATIC_PATH"), staticPath);
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), argument);

    const ChildResult child = installation.run(QStringLiteral("files"), environment);
    QCOMPARE(child.exitCode, 0);
    QString expectedPath = expected;
    expectedPath.replace(QLatin1String("$W"), QDir(installation.work.path()).canonicalPath());
    QCOMPARE(QDir::cleanPath(child.value(QStringLiteral("project"))), expectedPath);
    QCOMPARE(child.value(QStringLiteral("system")), installation.systemFile());
}

void TestBaseSettings::projectPathIsReadAtConstruction()
{
    Installation installation;
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_STATIC_PATH"), QStringLiteral("/p/later/"));
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), QStringLiteral("<null>"));

    const ChildResult child = installation.run(QStringLiteral("files"), environment);
    QCOMPARE(child.value(QStringLiteral("project")), QStringLiteral("/p/later/.setting.ini"));
    // The object made before setProjectPath keeps the file it opened.
    QCOMPARE(QDir::cleanPath(child.value(QStringLiteral("earlierproject"))),
             QDir(installation.work.path()).canonicalPath() + QLatin1String("/.setting.ini"));
}

void TestBaseSettings::userFile_data()
{
    QTest::addColumn<QString>("applicationName");
    QTest::addColumn<QString>("groupVariable"); // "<unset>" leaves it unset; $G: a group file
    QTest::addColumn<QString>("expected");      // $I individual, $S sibling, $G group
    QTest::addColumn<bool>("group");

    QTest::newRow("individual") << "synth"
                                << "<unset>"
                                << "$I" << false;
    QTest::newRow("empty variable counts as unset") << "synth"
                                                    << ""
                                                    << "$I" << false;
    QTest::newRow("group file") << "synth"
                                << "$G"
                                << "$G" << true;
    QTest::newRow("group file that does not exist yet") << "synth"
                                                        << "$G.missing"
                                                        << "$G.missing" << true;
    QTest::newRow("sibling application ignores the variable") << "Fenwright Studio"
                                                              << "$G"
                                                              << "$S" << false;
    QTest::newRow("sibling name in another case is not the sibling") << "fenwright studio"
                                                                     << "<unset>"
                                                                     << "$I" << false;
}

void TestBaseSettings::userFile()
{
    QFETCH(QString, applicationName);
    QFETCH(QString, groupVariable);
    QFETCH(QString, expected);
    QFETCH(bool, group);

    Installation installation;
    const QString groupFile = installation.work.filePath(QStringLiteral("team.ini"));
    QVERIFY(writeFile(groupFile, "SHARED=1\n"));
    const auto expand = [&](QString text) {
        text.replace(QLatin1String("$I"), installation.individualFile());
        text.replace(QLatin1String("$S"), installation.siblingFile());
        text.replace(QLatin1String("$G"), groupFile);
        return text;
    };

    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_APP_NAME"), applicationName);
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), QStringLiteral("<null>"));
    if (groupVariable != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("SOLVANE_GROUP_SETTING_FILE"), expand(groupVariable));

    const ChildResult child = installation.run(QStringLiteral("files"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("user")), expand(expected));
    QCOMPARE(child.value(QStringLiteral("group")), QString::number(group));
    QCOMPARE(child.standardError, QByteArray());
}

void TestBaseSettings::lookup_data()
{
    QTest::addColumn<QByteArray>("project");
    QTest::addColumn<QByteArray>("user");
    QTest::addColumn<QByteArray>("system");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("layered");
    QTest::addColumn<QString>("systemOnly");

    const QByteArray all = "K=from-level\n";
    QTest::newRow("project first")
        << QByteArray("K=project\n") << QByteArray("K=user\n") << QByteArray("K=system\n") << "K"
        << "project"
        << "system";
    QTest::newRow("user before system")
        << QByteArray() << QByteArray("K=user\n") << QByteArray("K=system\n") << "K"
        << "user"
        << "system";
    QTest::newRow("system alone") << QByteArray() << QByteArray() << QByteArray("K=system\n") << "K"
                                  << "system"
                                  << "system";
    QTest::newRow("no level: the default") << all << all << all << "MISSING"
                                           << "<default>"
                                           << "<default>";
    QTest::newRow("project only: not a system default")
        << QByteArray("K=project\n") << QByteArray() << QByteArray() << "K"
        << "project"
        << "<default>";
    QTest::newRow("empty value hides the next level")
        << QByteArray("K=\n") << QByteArray("K=user\n") << QByteArray() << "K"
        << ""
        << "<default>";
    QTest::newRow("empty system value is not null")
        << QByteArray() << QByteArray() << QByteArray("K=\n") << "K"
        << ""
        << "";
    QTest::newRow("groups are keys with a slash")
        << QByteArray("[File_Extension]\nVHDL=vhd\n") << QByteArray() << QByteArray()
        << "File_Extension/VHDL"
        << "vhd"
        << "<default>";
    QTest::newRow("lists are not merged across levels")
        << QByteArray("K=a, b\n") << QByteArray("K=c, d\n") << QByteArray() << "K"
        << "a,b"
        << "<default>";
    QTest::newRow("keys are case-sensitive")
        << QByteArray("k=lower\n") << QByteArray() << QByteArray("K=upper\n") << "K"
        << "upper"
        << "upper";
}

void TestBaseSettings::lookup()
{
    QFETCH(QByteArray, project);
    QFETCH(QByteArray, user);
    QFETCH(QByteArray, system);
    QFETCH(QString, key);
    QFETCH(QString, layered);
    QFETCH(QString, systemOnly);

    Installation installation;
    const QString projectDir = installation.work.filePath(QStringLiteral("proj/"));
    if (!project.isNull())
        QVERIFY(writeFile(projectDir + QLatin1String(".setting.ini"), project));
    if (!user.isNull())
        QVERIFY(writeFile(installation.individualFile(), user));
    if (!system.isNull())
        QVERIFY(writeFile(installation.systemFile(), system));

    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), projectDir);
    environment.insert(QStringLiteral("CORVEKIT_KEYS"), key);
    const ChildResult child = installation.run(QStringLiteral("lookup"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QLatin1String("get:") + key), layered);
    QCOMPARE(child.value(QLatin1String("default:") + key), systemOnly);
}

void TestBaseSettings::removingPeelsLevels()
{
    Installation installation;
    const QString projectDir = installation.work.filePath(QStringLiteral("proj/"));
    QVERIFY(writeFile(projectDir + QLatin1String(".setting.ini"), "LEVEL=project\n"));
    QVERIFY(writeFile(installation.individualFile(), "LEVEL=user\n"));
    QVERIFY(writeFile(installation.systemFile(), "LEVEL=system\n"));

    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), projectDir);
    const ChildResult child = installation.run(QStringLiteral("peel"), environment);
    QCOMPARE(child.value(QStringLiteral("all")), QStringLiteral("project"));
    QCOMPARE(child.value(QStringLiteral("noproject")), QStringLiteral("user"));
    QCOMPARE(child.value(QStringLiteral("nouser")), QStringLiteral("system"));
    // The removals reached the files when the object went away; the system file is untouched.
    QVERIFY(!readFile(projectDir + QLatin1String(".setting.ini")).contains("LEVEL"));
    QVERIFY(!readFile(installation.individualFile()).contains("LEVEL"));
    QCOMPARE(readFile(installation.systemFile()), QByteArray("LEVEL=system\n"));
}

void TestBaseSettings::groupFileTakesUserWrites()
{
    Installation installation;
    const QString groupFile = installation.work.filePath(QStringLiteral("team/settings.ini"));
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("SOLVANE_GROUP_SETTING_FILE"), groupFile);

    const ChildResult child = installation.run(QStringLiteral("userwrite"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("group")), QStringLiteral("1"));
    QSettings written(groupFile, QSettings::IniFormat);
    QCOMPARE(written.value(QStringLiteral("WRITTEN")).toString(), QStringLiteral("by-user-level"));
    QVERIFY(!QFile::exists(installation.individualFile()));
}

void TestBaseSettings::groupFileWarnings_data()
{
    QTest::addColumn<QByteArray>("content"); // null: the group "file" is a directory
    QTest::addColumn<QString>("warning");

    QTest::newRow("directory") << QByteArray()
                               << "Warning: There is access or format error in file $G";
    QTest::newRow("malformed file")
        << QByteArray("[General\nA=1\n") << "Warning: There is access or format error in file $G";
}

void TestBaseSettings::groupFileWarnings()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, warning);

    Installation installation;
    const QString groupPath = installation.work.filePath(QStringLiteral("group"));
    if (content.isNull())
        QVERIFY(QDir().mkpath(groupPath));
    else
        QVERIFY(writeFile(groupPath, content));
    QVERIFY(writeFile(installation.systemFile(), "ONLY_SYSTEM=yes\n"));

    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("SOLVANE_GROUP_SETTING_FILE"), groupPath);
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), QStringLiteral("<null>"));
    environment.insert(QStringLiteral("CORVEKIT_KEYS"), QStringLiteral("ONLY_SYSTEM"));

    ChildResult child = installation.run(QStringLiteral("files"), environment);
    // The scenario constructs two objects. Each warns about the directory; Qt keeps the parse of
    // an unchanged file, so only the first object to read the malformed file sees its error.
    const QString line = QString(warning).replace(QLatin1String("$G"), groupPath);
    const QStringList lines = child.errorLines();
    QVERIFY(!lines.isEmpty());
    for (const QString &written : lines)
        QCOMPARE(written, line);
    // The faulty file stays the user level, and keys it lacks fall through to the system.
    QCOMPARE(child.value(QStringLiteral("user")), groupPath);
    QCOMPARE(child.value(QStringLiteral("group")), QStringLiteral("1"));
    child = installation.run(QStringLiteral("lookup"), environment);
    QCOMPARE(child.value(QStringLiteral("get:ONLY_SYSTEM")), QStringLiteral("yes"));
}

void TestBaseSettings::copiesShareLevels()
{
    Installation installation;
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_PROJECT_ARG"), installation.work.filePath("a"));
    environment.insert(QStringLiteral("CORVEKIT_SECOND_PROJECT"), installation.work.filePath("b"));

    const ChildResult child = installation.run(QStringLiteral("sharing"), environment);
    QCOMPARE(child.exitCode, 0);
    QVERIFY2(!child.crashed, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("flushedOnAssign")), QStringLiteral("from-a"));
    QCOMPARE(child.value(QStringLiteral("sameLevels")), QStringLiteral("1"));
    QCOMPARE(child.value(QStringLiteral("copyReads")), QStringLiteral("from-a"));
    // The last holder flushed the shared project level of b.
    QSettings written(installation.work.filePath("b.setting.ini"), QSettings::IniFormat);
    QCOMPARE(written.value(QStringLiteral("AFTER")).toString(), QStringLiteral("from-a"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSettings, scenarios)
#include "tst_basesettings.moc"

#include "childprocess.h"
#include "sampleinstallation.h"

#include <corvekit/basesettings.h>

#include <QSettings>
#include <QTest>

namespace {

const QByteArray systemLevel = "[General]\n"
                               "EVERYWHERE=system\n"
                               "NUMBER=42\n"
                               "TEXT_NUMBER=forty\n"
                               "EMPTY=\n"
                               "LIST=a, b, c\n"
                               "ZERO=0\n"
                               "FALSE_TEXT=false\n"
                               "HIDDEN_BY_EMPTY=filled\n";
const QByteArray userLevel = "[General]\n"
                             "EVERYWHERE=user\n"
                             "USER_ONLY=7\n";
const QByteArray projectLevel = "[General]\n"
                                "EVERYWHERE=project\n"
                                "PROJECT_ONLY=true\n"
                                "HIDDEN_BY_EMPTY=\n";

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const QString &value)
{
    return value.isNull() ? QStringLiteral("(null)") : value;
}

QString list(const QList<QString> &values)
{
    return QStringLiteral("%1:[%2]").arg(values.size()).arg(values.join(QLatin1Char('|')));
}

const QStringList lookupKeys = {"MISSING",      "EVERYWHERE", "NUMBER",         "TEXT_NUMBER",
                                "EMPTY",        "LIST",       "ZERO",           "FALSE_TEXT",
                                "PROJECT_ONLY", "USER_ONLY",  "HIDDEN_BY_EMPTY"};

// Every typed lookup of every key, as "<lookup>.<key>=<found>,<value>".
int reportLookups()
{
    BaseSettings settings(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    for (const QString &key : lookupKeys) {
        // The flag goes in with the opposite of what comes out: it is written on every call.
        bool found = true;
        const bool boolean = settings.getBooleanSetting(found, key);
        report(QStringLiteral("bool.") + key, flag(found) + QLatin1Char(',') + flag(boolean));
        found = false;
        const int integer = settings.getIntegerSetting(found, key);
        report(QStringLiteral("int.") + key,
               flag(found) + QLatin1Char(',') + QString::number(integer));
        found = !found;
        const QList<QString> strings = settings.getStringListSetting(found, key);
        report(QStringLiteral("list.") + key, flag(found) + QLatin1Char(',') + list(strings));
        report(QStringLiteral("string.") + key, text(settings.getStringSetting(key)));

        found = true;
        const bool defaultBoolean = settings.getDefaultBooleanSetting(found, key);
        report(QStringLiteral("defaultBool.") + key,
               flag(found) + QLatin1Char(',') + flag(defaultBoolean));
        found = false;
        const int defaultInteger = settings.getDefaultIntegerSetting(found, key);
        report(QStringLiteral("defaultInt.") + key,
               flag(found) + QLatin1Char(',') + QString::number(defaultInteger));
        found = true;
        const QList<QString> defaultStrings = settings.getDefaultStringListSetting(found, key);
        report(QStringLiteral("defaultList.") + key,
               flag(found) + QLatin1Char(',') + list(defaultStrings));
        report(QStringLiteral("defaultString.") + key, text(settings.getDefaultStringSetting(key)));
    }
    return 0;
}

// Writes through every writer, reports what the same object then answers, and ends without
// sync: the destructor alone must bring the values to disk.
int writeLevels()
{
    BaseSettings settings(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    bool found = false;

    settings.setOnProjectLevel(QStringLiteral("P_INT"), 5);
    const int projectInt = settings.getIntegerSetting(found, QStringLiteral("P_INT"));
    report(QStringLiteral("P_INT.before_flush"),
           flag(found) + QLatin1Char(',') + QString::number(projectInt));
    settings.setOnProjectLevel(QStringLiteral("P_STRING"), QStringLiteral("top"));
    settings.setOnProjectLevel(QStringLiteral("P_LIST"), QList<QString>{"x", "y"});
    settings.setOnProjectLevel(QStringLiteral("P_VARIANT"), QVariant(2.5));
    settings.setOnProjectLevel(QStringLiteral("P_BOOL"), false);
    settings.setOnProjectLevel(QStringLiteral("P_TEXT"), "literal");

    settings.setOnUserLevel(QStringLiteral("U_INT"), -3);
    settings.setOnUserLevel(QStringLiteral("U_STRING"), QStringLiteral("mine"));
    settings.setOnUserLevel(QStringLiteral("U_LIST"), QList<QString>{"p", "q", "r"});
    settings.setOnUserLevel(QStringLiteral("U_VARIANT"), QVariant(QStringLiteral("v")));
    settings.setOnUserLevel(QStringLiteral("U_BOOL"), true);
    settings.setOnUserLevel(QStringLiteral("U_TEXT"), "literal");

    // The project level keeps answering until its value is removed; then the user's, then
    // the system's, which no remover reaches.
    settings.setOnUserLevel(QStringLiteral("EVERYWHERE"), QStringLiteral("user2"));
    report(QStringLiteral("EVERYWHERE.after_user_write"),
           settings.getStringSetting(QStringLiteral("EVERYWHERE")));
    settings.unsetOnProjectLevel(QStringLiteral("EVERYWHERE"));
    report(QStringLiteral("EVERYWHERE.after_project_unset"),
           settings.getStringSetting(QStringLiteral("EVERYWHERE")));
    settings.unsetOnUserLevel(QStringLiteral("EVERYWHERE"));
    report(QStringLiteral("EVERYWHERE.after_user_unset"),
           settings.getStringSetting(QStringLiteral("EVERYWHERE")));
    settings.unsetOnUserLevel(QStringLiteral("EVERYWHERE"));
    report(QStringLiteral("EVERYWHERE.default"),
           settings.getDefaultStringSetting(QStringLiteral("EVERYWHERE")));

    // A write to the project level hides the user's value at once.
    settings.setOnProjectLevel(QStringLiteral("USER_ONLY"), 8);
    report(QStringLiteral("USER_ONLY.after_project_write"),
           QString::number(settings.getIntegerSetting(found, QStringLiteral("USER_ONLY"))));

    // Removing a group takes its keys with it.
    settings.setOnUserLevel(QStringLiteral("group/a"), 1);
    settings.setOnUserLevel(QStringLiteral("group/b"), 2);
    settings.unsetOnUserLevel(QStringLiteral("group"));
    settings.getIntegerSetting(found, QStringLiteral("group/b"));
    report(QStringLiteral("group.after_unset"), flag(found));
    return 0;
}

// A later process reads back what writeLevels left behind.
int readBack()
{
    BaseSettings settings(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    bool found = false;
    const int projectInt = settings.getIntegerSetting(found, QStringLiteral("P_INT"));
    report(QStringLiteral("P_INT"), flag(found) + QLatin1Char(',') + QString::number(projectInt));
    report(QStringLiteral("P_LIST"),
           list(settings.getStringListSetting(found, QStringLiteral("P_LIST"))));
    report(QStringLiteral("P_BOOL"),
           flag(settings.getBooleanSetting(found, QStringLiteral("P_BOOL"))));
    report(QStringLiteral("U_LIST"),
           list(settings.getStringListSetting(found, QStringLiteral("U_LIST"))));
    report(QStringLiteral("U_BOOL"),
           flag(settings.getBooleanSetting(found, QStringLiteral("U_BOOL"))));
    report(QStringLiteral("U_INT"),
           QString::number(settings.getIntegerSetting(found, QStringLiteral("U_INT"))));
    report(QStringLiteral("EVERYWHERE"), settings.getStringSetting(QStringLiteral("EVERYWHERE")));
    report(QStringLiteral("USER_ONLY"),
           QString::number(settings.getIntegerSetting(found, QStringLiteral("USER_ONLY"))));
    return 0;
}

// With a group file in force the user level's writers go to it.
int writeGroupFile()
{
    BaseSettings settings(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    report(QStringLiteral("group"), flag(settings.isUseGroupSettingFile()));
    settings.setOnUserLevel(QStringLiteral("TEAM_KEY"), QStringLiteral("shared"));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("lookups"), reportLookups},
            {QStringLiteral("write"), writeLevels},
            {QStringLiteral("read-back"), readBack},
            {QStringLiteral("write-group-file"), writeGroupFile}};
}

} // namespace

class TestBaseSettingsTyped : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void typedLookup_data();
    void typedLookup();
    void writersAndRemovers();
    void userWritesGoToGroupFile();

private:
    SampleInstallation m_installation;
    ChildResult m_lookups;
};

void TestBaseSettingsTyped::initTestCase()
{
    QVERIFY(m_installation.isValid());
    QVERIFY(m_installation.setSystem(systemLevel));
    QVERIFY(m_installation.setUser(userLevel));
    QVERIFY(m_installation.setProject(projectLevel));
    m_lookups = runScenario(QStringLiteral("lookups"), m_installation.environment());
    QCOMPARE(m_lookups.exitCode, 0);
}

void TestBaseSettingsTyped::typedLookup_data()
{
    QTest::addColumn<QString>("key");
    // The layered lookups, then the system level's; "found,value" each.
    QTest::addColumn<QString>("boolean");
    QTest::addColumn<QString>("integer");
    QTest::addColumn<QString>("strings");
    QTest::addColumn<QString>("string");
    QTest::addColumn<QString>("defaultBoolean");
    QTest::addColumn<QString>("defaultInteger");
    QTest::addColumn<QString>("defaultStrings");
    QTest::addColumn<QString>("defaultString");

    QTest::newRow("at no level") << "MISSING"
                                 << "false,false"
                                 << "false,0"
                                 << "false,0:[]"
                                 << "(null)"
                                 << "false,false"
                                 << "false,0"
                                 << "false,0:[]"
                                 << "(null)";
    QTest::newRow("at every level") << "EVERYWHERE"
                                    << "true,true"
                                    << "true,0"
                                    << "true,1:[project]"
                                    << "project"
                                    << "true,true"
                                    << "true,0"
                                    << "true,1:[system]"
                                    << "system";
    QTest::newRow("number") << "NUMBER"
                            << "true,true"
                            << "true,42"
                            << "true,1:[42]"
                            << "42"
                            << "true,true"
                            << "true,42"
                            << "true,1:[42]"
                            << "42";
    QTest::newRow("text that is no number") << "TEXT_NUMBER"
                                            << "true,true"
                                            << "true,0"
                                            << "true,1:[forty]"
                                            << "forty"
                                            << "true,true"
                                            << "true,0"
                                            << "true,1:[forty]"
                                            << "forty";
    QTest::newRow("empty value") << "EMPTY"
                                 << "true,false"
                                 << "true,0"
                                 << "true,1:[]"
                                 << ""
                                 << "true,false"
                                 << "true,0"
                                 << "true,1:[]"
                                 << "";
    // A list of several texts does not convert to one: the text lookups give null for it.
    QTest::newRow("list") << "LIST"
                          << "true,false"
                          << "true,0"
                          << "true,3:[a|b|c]"
                          << "(null)"
                          << "true,false"
                          << "true,0"
                          << "true,3:[a|b|c]"
                          << "(null)";
    QTest::newRow("zero") << "ZERO"
                          << "true,false"
                          << "true,0"
                          << "true,1:[0]"
                          << "0"
                          << "true,false"
                          << "true,0"
                          << "true,1:[0]"
                          << "0";
    QTest::newRow("false as text") << "FALSE_TEXT"
                                   << "true,false"
                                   << "true,0"
                                   << "true,1:[false]"
                                   << "false"
                                   << "true,false"
                                   << "true,0"
                                   << "true,1:[false]"
                                   << "false";
    QTest::newRow("project level only") << "PROJECT_ONLY"
                                        << "true,true"
                                        << "true,0"
                                        << "true,1:[true]"
                                        << "true"
                                        << "false,false"
                                        << "false,0"
                                        << "false,0:[]"
                                        << "(null)";
    QTest::newRow("user level only") << "USER_ONLY"
                                     << "true,true"
                                     << "true,7"
                                     << "true,1:[7]"
                                     << "7"
                                     << "false,false"
                                     << "false,0"
                                     << "false,0:[]"
                                     << "(null)";
    QTest::newRow("empty project value hides the system's") << "HIDDEN_BY_EMPTY"
                                                            << "true,false"
                                                            << "true,0"
                                                            << "true,1:[]"
                                                            << ""
                                                            << "true,true"
                                                            << "true,0"
                                                            << "true,1:[filled]"
                                                            << "filled";
}

void TestBaseSettingsTyped::typedLookup()
{
    QFETCH(QString, key);
    QFETCH(QString, boolean);
    QFETCH(QString, integer);
    QFETCH(QString, strings);
    QFETCH(QString, string);
    QFETCH(QString, defaultBoolean);
    QFETCH(QString, defaultInteger);
    QFETCH(QString, defaultStrings);
    QFETCH(QString, defaultString);

    const QMap<QString, QString> values = m_lookups.values();
    QCOMPARE(values.value(QStringLiteral("bool.") + key), boolean);
    QCOMPARE(values.value(QStringLiteral("int.") + key), integer);
    QCOMPARE(values.value(QStringLiteral("list.") + key), strings);
    QCOMPARE(values.value(QStringLiteral("string.") + key), string);
    QCOMPARE(values.value(QStringLiteral("defaultBool.") + key), defaultBoolean);
    QCOMPARE(values.value(QStringLiteral("defaultInt.") + key), defaultInteger);
    QCOMPARE(values.value(QStringLiteral("defaultList.") + key), defaultStrings);
    QCOMPARE(values.value(QStringLiteral("defaultString.") + key), defaultString);
}

void TestBaseSettingsTyped::writersAndRemovers()
{
    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setSystem(systemLevel));
    QVERIFY(installation.setUser(userLevel));
    QVERIFY(installation.setProject(projectLevel));

    const ChildResult writer = runScenario(QStringLiteral("write"), installation.environment());
    QCOMPARE(writer.exitCode, 0);
    QCOMPARE(writer.value(QStringLiteral("P_INT.before_flush")), QStringLiteral("true,5"));
    QCOMPARE(writer.value(QStringLiteral("EVERYWHERE.after_user_write")),
             QStringLiteral("project"));
    QCOMPARE(writer.value(QStringLiteral("EVERYWHERE.after_project_unset")),
             QStringLiteral("user2"));
    QCOMPARE(writer.value(QStringLiteral("EVERYWHERE.after_user_unset")), QStringLiteral("system"));
    QCOMPARE(writer.value(QStringLiteral("EVERYWHERE.default")), QStringLiteral("system"));
    QCOMPARE(writer.value(QStringLiteral("USER_ONLY.after_project_write")), QStringLiteral("8"));
    QCOMPARE(writer.value(QStringLiteral("group.after_unset")), QStringLiteral("false"));

    // On disk, after the object is gone: each value in the file of its own level only.
    QSettings project(installation.projectFile(), QSettings::IniFormat);
    QSettings user(installation.userFile(), QSettings::IniFormat);
    QSettings system(installation.systemFile(), QSettings::IniFormat);
    QCOMPARE(project.value(QStringLiteral("P_INT")).toString(), QStringLiteral("5"));
    QCOMPARE(project.value(QStringLiteral("P_STRING")).toString(), QStringLiteral("top"));
    QCOMPARE(project.value(QStringLiteral("P_LIST")).toStringList(), (QStringList{"x", "y"}));
    QCOMPARE(project.value(QStringLiteral("P_VARIANT")).toString(), QStringLiteral("2.5"));
    QCOMPARE(project.value(QStringLiteral("P_BOOL")).toString(), QStringLiteral("false"));
    QCOMPARE(project.value(QStringLiteral("P_TEXT")).toString(), QStringLiteral("literal"));
    QCOMPARE(project.value(QStringLiteral("USER_ONLY")).toString(), QStringLiteral("8"));
    QVERIFY(!project.contains(QStringLiteral("EVERYWHERE")));
    QVERIFY(!project.contains(QStringLiteral("U_INT")));

    QCOMPARE(user.value(QStringLiteral("U_INT")).toString(), QStringLiteral("-3"));
    QCOMPARE(user.value(QStringLiteral("U_STRING")).toString(), QStringLiteral("mine"));
    QCOMPARE(user.value(QStringLiteral("U_LIST")).toStringList(), (QStringList{"p", "q", "r"}));
    QCOMPARE(user.value(QStringLiteral("U_VARIANT")).toString(), QStringLiteral("v"));
    QCOMPARE(user.value(QStringLiteral("U_BOOL")).toString(), QStringLiteral("true"));
    QCOMPARE(user.value(QStringLiteral("U_TEXT")).toString(), QStringLiteral("literal"));
    QCOMPARE(user.value(QStringLiteral("USER_ONLY")).toString(), QStringLiteral("7"));
    QVERIFY(!user.contains(QStringLiteral("EVERYWHERE")));
    QVERIFY(!user.contains(QStringLiteral("group/a")));
    QVERIFY(!user.contains(QStringLiteral("P_INT")));

    QCOMPARE(system.value(QStringLiteral("EVERYWHERE")).toString(), QStringLiteral("system"));
    QVERIFY(!system.contains(QStringLiteral("P_INT")));
    QVERIFY(!system.contains(QStringLiteral("U_INT")));

    // And through the layered lookup of a later process.
    const ChildResult reader = runScenario(QStringLiteral("read-back"), installation.environment());
    QCOMPARE(reader.exitCode, 0);
    QCOMPARE(reader.value(QStringLiteral("P_INT")), QStringLiteral("true,5"));
    QCOMPARE(reader.value(QStringLiteral("P_LIST")), QStringLiteral("2:[x|y]"));
    QCOMPARE(reader.value(QStringLiteral("P_BOOL")), QStringLiteral("false"));
    QCOMPARE(reader.value(QStringLiteral("U_LIST")), QStringLiteral("3:[p|q|r]"));
    QCOMPARE(reader.value(QStringLiteral("U_BOOL")), QStringLiteral("true"));
    QCOMPARE(reader.value(QStringLiteral("U_INT")), QStringLiteral("-3"));
    QCOMPARE(reader.value(QStringLiteral("EVERYWHERE")), QStringLiteral("system"));
    QCOMPARE(reader.value(QStringLiteral("USER_ONLY")), QStringLiteral("8"));
}

void TestBaseSettingsTyped::userWritesGoToGroupFile()
{
    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setUser(userLevel));
    const QString groupFile = installation.path(QStringLiteral("team/group.ini"));
    QVERIFY(writeFile(groupFile, "[General]\nTEAM_SIZE=4\n"));
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("SOLVANE_GROUP_SETTING_FILE"), groupFile);

    const ChildResult child = runScenario(QStringLiteral("write-group-file"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("group")), QStringLiteral("true"));
    QSettings group(groupFile, QSettings::IniFormat);
    QCOMPARE(group.value(QStringLiteral("TEAM_KEY")).toString(), QStringLiteral("shared"));
    QCOMPARE(group.value(QStringLiteral("TEAM_SIZE")).toString(), QStringLiteral("4"));
    QSettings individual(installation.userFile(), QSettings::IniFormat);
    QVERIFY(!individual.contains(QStringLiteral("TEAM_KEY")));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSettingsTyped, scenarios)
#include "tst_basesettings_typed.moc"

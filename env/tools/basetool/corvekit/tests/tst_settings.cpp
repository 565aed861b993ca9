// BaseSettings, BaseUsrSettings and BasePrjSettings. What depends on the environment, HOME or the
// project path runs in children with a sample installation; the rest in this process.
#include "sampleinstallation.h"

#include <corvekit/baseprjsettings.h>
#include <corvekit/basesettings.h>
#include <corvekit/baseusrsettings.h>

#include <QCoreApplication>
#include <QSettings>
#include <QTest>

#include <memory>
#include <utility>

namespace {

QString describe(const QVariant &value)
{
    if (value.userType() == QMetaType::QStringList)
        return QLatin1Char('[') + value.toStringList().join(QLatin1Char(',')) + QLatin1Char(']');
    return value.toString().isNull() ? QStringLiteral("<null>") : value.toString();
}

QString valuesOf(const QString &path)
{
    const QSettings file(path, QSettings::IniFormat);
    QStringList values;
    for (const QString &key : file.allKeys())
        values << key + QLatin1Char('=') + describe(file.value(key));
    return values.join(QLatin1Char(' '));
}

// Drives every operation of a scoped file once; each must reach the QSettings behind it.
template<typename Handle>
QString forwarded(Handle &file)
{
    file.beginGroup(QStringLiteral("g"));
    file.beginWriteArray(QStringLiteral("a"));
    file.setArrayIndex(1);
    file.setValue(QStringLiteral("x"), 1);
    file.endArray();
    QStringList seen = {file.group(), file.childGroups().join(QLatin1Char(','))};
    seen << QString::number(file.beginReadArray(QStringLiteral("a")));
    file.endArray();
    file.endGroup();
    file.setValue(QStringLiteral("k"), 2);
    seen << file.childKeys().join(QLatin1Char(',')) << file.allKeys().join(QLatin1Char(','));
    file.remove(QStringLiteral("k"));
    seen << QString::number(file.contains(QStringLiteral("g/a/size")));
    seen << QString::number(file.contains(QStringLiteral("k")));
    file.clear();
    file.sync();
    return seen.join(QLatin1Char('|')) + file.allKeys().join(QLatin1Char(','));
}

// Opens the levels as APP, STATIC (for setProjectPath) and ARG (the constructor's) say, through a
// copy of an assigned object whose first holder is gone, and looks K up in every way. Then the
// system file under other roots, and the writers and removers.
int runLevels()
{
    QCoreApplication::setApplicationName(qEnvironmentVariable("APP"));
    if (qEnvironmentVariableIsSet("STATIC"))
        BaseSettings::setProjectPath(qEnvironmentVariable("STATIC"));
    auto *original = new BaseSettings(qEnvironmentVariable("ARG"));
    BaseSettings other(QStringLiteral("other"));
    other.setOnProjectLevel(QStringLiteral("PENDING"), 1);
    other = *original; // other's own levels go now, and write what is pending
    report("flushed", valuesOf(QStringLiteral("other.setting.ini")));
    report("static", QDir::cleanPath(BaseSettings().getProjectLeverSetting()->fileName()));
    other = std::as_const(other);
    BaseSettings settings(other);
    delete original;
    report("project", QDir::cleanPath(settings.getProjectLeverSetting()->fileName()));
    report("user", settings.getUserSetting()->fileName() +
                       QLatin1String(settings.isUseGroupSettingFile() ? " (group)" : ""));
    const QString key = QStringLiteral("K");
    const QString fallback = QStringLiteral("<default>");
    report("get", describe(settings.getSetting(key, fallback)) + QLatin1Char(',') +
                      describe(settings.getDefaultSetting(key, fallback)));
    // "+" or "-" for the found flag, which goes in as \a found, then the result.
    const auto flagged = [&](auto lookup, bool found) {
        const QVariant result = QVariant::fromValue((settings.*lookup)(found, key));
        return QLatin1String(found ? "+" : "-") + describe(result);
    };
    report("typed", QStringList{flagged(&BaseSettings::getBooleanSetting, true),
                                flagged(&BaseSettings::getIntegerSetting, true),
                                flagged(&BaseSettings::getStringListSetting, true),
                                flagged(&BaseSettings::getDefaultBooleanSetting, false),
                                flagged(&BaseSettings::getDefaultIntegerSetting, false),
                                flagged(&BaseSettings::getDefaultStringListSetting, false)}
                        .join(QLatin1Char('|')));
    BaseUsrSettings own("MyTool");
    report("own",
           own.fileName() + QLatin1Char(' ') + own.value(key, QStringLiteral("-")).toString());
    report("forwarded", forwarded(own));

    // The system file follows TOOLRTF, and below a relative one the working directory: the
    // second "." is looked up from the install root.
    const QString project = QDir::currentPath();
    const QString root = qEnvironmentVariable("TOOLRTF");
    QStringList follow;
    for (const QString &variable : QStringList{QDir::homePath(), ".", ".", root}) {
        qputenv("TOOLRTF", QFile::encodeName(variable));
        follow << describe(BaseSettings().getDefaultStringSetting(key));
        QDir::setCurrent(follow.size() == 2 ? root : project);
    }
    report("follow", follow.join(QLatin1Char(',')));

    settings.setOnUserLevel(QStringLiteral("U"), -3);
    settings.setOnProjectLevel(QStringLiteral("P"), QStringList{"a", "b"});
    settings.unsetOnProjectLevel(key);
    QStringList written = {describe(settings.getStringSetting(key))};
    settings.unsetOnUserLevel(key);
    written << describe(settings.getStringSetting(key))
            << describe(settings.getUserSetting()->value(QStringLiteral("U")))
            << describe(settings.getProjectLeverSetting()->value(QStringLiteral("P")));
    report("written", written.join(QLatin1Char(',')));
    return 0;
}

const auto scenarios = [] { return ScenarioTable{{QStringLiteral("levels"), runLevels}}; };

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void scopedFilesShareOneObject();
};

void TestSettings::levels_data()
{
    // Each row: the set-up (see SampleInstallation::apply()), " => ", what is expected, split at
    // ";". The system file holds K=system unless a row writes it. Expected: what the child reports
    // ("get" is the layered lookup, then the system level's), and "stderr=" its warnings, none if
    // not given.
    QTest::addColumn<QString>("row");

    QTest::newRow("project before user before system")
        << "$J=K=project\n;$U=K=user\n => get=project,system;user=$U;flushed=PENDING=1;"
           "written=user,system,-3,[a,b];follow=<null>,<null>,system,system";
    QTest::newRow("no level")
        << "$S=X=1\n => get=<default>,<default>;typed=-false|-0|-[]|-false|-0|-[]";
    QTest::newRow("empty value hides the next level")
        << "$J=K=\n;$U=K=user\n;$S=K=\n => get=,;typed=+false|+0|+[]|+false|+0|+[]";
    QTest::newRow("project only, not a number")
        << "$J=K=ten\n;$S=X=1\n => get=ten,<default>;typed=+true|+0|+[ten]|-false|-0|-[]";
    QTest::newRow("organisation-wide file is no level")
        << "$M/OstraneNG.ini=K=org\n;$S=X=1\n => get=<default>,<default>;"
           "own=$M/OstraneNG/mytool.ini -;forwarded=g|a|2|k|g/a/2/x,g/a/size,k|1|0";
    QTest::newRow("group file") << "$G=K=group\n;$U=K=user\n => get=group,system;user=$G (group)";
    QTest::newRow("group file not made yet") << "SOLVANE_GROUP_SETTING_FILE=$G => user=$G (group)";
    QTest::newRow("group path is a directory")
        << "$G/ => get=system,system;user=$G (group);stderr=Warning: There is access or format "
           "error in file $G";
    QTest::newRow("malformed group file")
        << "$G=[General\nA=1\n => get=system,system;user=$G (group);stderr=Warning: There is "
           "access or format error in file $G";
    QTest::newRow("group path is a FIFO")
        << "$G;$U=K=user\n => get=user,system;user=$U;stderr=Warning: The group setting file "
           "'$G' is not readable and use individual setting file instead.";
    QTest::newRow("sibling application ignores the group file")
        << "APP=Fenwright Studio;$G=K=group\n => user=$M/FenwrightStudio/.setting.ini";
    QTest::newRow("argument before static path")
        << "STATIC=/p/;ARG=/a => project=/a.setting.ini;static=/p/.setting.ini";
}

void TestSettings::levels()
{
    QFETCH(QString, row);
    SampleInstallation installation;
    QVERIFY(installation.isValid() && writeFile(installation.expand("$S"), "K=system\n"));
    QProcessEnvironment environment = installation.environment();
    const QString setup = row.section(QLatin1String(" => "), 0, 0);
    if (setup.contains(QLatin1String("$G"))) // rows that mention the group file name it
        environment.insert(QStringLiteral("SOLVANE_GROUP_SETTING_FILE"), installation.expand("$G"));
    QVERIFY(installation.apply(installation.expand(setup), environment));
    const QString expected = installation.expand(row.section(QLatin1String(" => "), 1));
    const ChildResult child =
        runScenario(QStringLiteral("levels"), environment, {}, installation.project());
    QCOMPARE(child.exitCode, 0);
    QStringList warnings = child.errorLines();
    warnings.removeDuplicates(); // one from each object the child makes
    QCOMPARE(warnings.join(QLatin1Char('\n')), expected.section(QLatin1String("stderr="), 1));
    for (const QString &line : expected.section("stderr=", 0, 0).split(';', Qt::SkipEmptyParts))
        QCOMPARE(child.reportLine(line.section('=', 0, 0)), line);
}

// Assignment shares one QSettings, which goes with the last wrapper or with its QObject parent,
// whichever is first; a wrapper whose parent took it acts on nothing.
void TestSettings::scopedFilesShareOneObject()
{
    QTemporaryDir dir;
    const QByteArray path = dir.path().toUtf8();
    auto parent = std::make_unique<QObject>();
    auto target = std::make_unique<BasePrjSettings>(path.constData(), "Target", parent.get());
    auto source = std::make_unique<BasePrjSettings>(path.constData(), nullptr);
    target->setValue(QStringLiteral("before"), 1);
    *target = *source;
    *target = std::as_const(*target);
    // The target's own object went at once, and so wrote its file.
    QCOMPARE(valuesOf(dir.filePath(QStringLiteral(".target.ini"))), QStringLiteral("before=1"));
    source.reset();
    target->setValue(QStringLiteral("through"), 2);
    target.reset();
    QCOMPARE(valuesOf(dir.filePath(QStringLiteral(".shared.ini"))), QStringLiteral("through=2"));

    BasePrjSettings scratch(path.constData(), "scratch");
    QCOMPARE(scratch.getSetting()->fileName(), dir.filePath(QStringLiteral(".scratch.ini")));
    QCOMPARE(forwarded(scratch), QStringLiteral("g|a|2|k|g/a/2/x,g/a/size,k|1|0"));

    BasePrjSettings orphan(path.constData(), "orphan", parent.get());
    orphan.setValue(QStringLiteral("k"), 1);
    parent.reset(); // deletes the QSettings, which writes its file
    QCOMPARE(valuesOf(dir.filePath(QStringLiteral(".orphan.ini"))), QStringLiteral("k=1"));
    orphan.setValue(QStringLiteral("lost"), 2);
    QCOMPARE(orphan.value(QStringLiteral("k"), 42).toInt(), 42);
    QCOMPARE(orphan.status(), QSettings::AccessError);
    QCOMPARE(orphan.getSetting(), nullptr);
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestSettings, scenarios)
#include "tst_settings.moc"

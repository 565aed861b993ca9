// BaseUsrSettings and BasePrjSettings: where their files lie, what reaches the disk, and who
// deletes the QSettings after assignment. Files in the user's area are only touched by children
// with a temporary home.
#include "childprocess.h"

#include <corvekit/baseprjsettings.h>
#include <corvekit/baseusrsettings.h>

#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QObject>
#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

namespace {

// The name of the file behind a wrapper, independent of the directory QSettings reports.
QString fileOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

QVariant valueOnDisk(const QString &path, const QString &key)
{
    const QSettings reader(path, QSettings::IniFormat);
    return reader.value(key);
}

QString userArea(const QString &home)
{
    return home + QLatin1String("/.config/Meravex/OstraneNG");
}

// --- Scenarios, run in a child whose HOME and XDG_CONFIG_HOME lie in a temporary folder -------

int scenarioUserFileNames()
{
    report(QStringLiteral("mixed"), BaseUsrSettings("MyTool").fileName());
    report(QStringLiteral("lower"), BaseUsrSettings("mytool").fileName());
    report(QStringLiteral("utf8"), BaseUsrSettings("\xc3\x84rger").fileName()); // "Ärger"
    report(QStringLiteral("null"), BaseUsrSettings(nullptr).fileName());
    report(QStringLiteral("empty"), BaseUsrSettings("").fileName());
    return 0;
}

// Writes through one spelling of the name and destroys the wrapper without sync.
int scenarioUserWrite()
{
    BaseUsrSettings settings("MyTool");
    settings.setValue(QStringLiteral("window/width"), 640);
    settings.beginWriteArray(QStringLiteral("recent"), 2);
    settings.setArrayIndex(0);
    settings.setValue(QStringLiteral("file"), QStringLiteral("a.ldf"));
    settings.setArrayIndex(1);
    settings.setValue(QStringLiteral("file"), QStringLiteral("b.ldf"));
    settings.endArray();
    report(QStringLiteral("existsBeforeDestruction"),
           QFile::exists(settings.fileName()) ? QStringLiteral("yes") : QStringLiteral("no"));
    return 0;
}

// Reads through another spelling what scenarioUserWrite left.
int scenarioUserRead()
{
    BaseUsrSettings settings("MYTOOL");
    report(QStringLiteral("width"), settings.value(QStringLiteral("window/width")).toString());
    const int size = settings.beginReadArray(QStringLiteral("recent"));
    QStringList files;
    for (int i = 0; i < size; ++i) {
        settings.setArrayIndex(i);
        files << settings.value(QStringLiteral("file")).toString();
    }
    settings.endArray();
    report(QStringLiteral("recent"), files.join(QLatin1Char(',')));
    return 0;
}

// The parent placed ORG_ONLY in the organisation-wide file Meravex/OstraneNG.ini.
int scenarioUserFallbacks()
{
    BaseUsrSettings settings("mytool");
    const QSettings withFallbacks(QSettings::IniFormat, QSettings::UserScope,
                                  QStringLiteral("Meravex/OstraneNG"), QStringLiteral("mytool"));
    report(QStringLiteral("wrapper"), settings.contains(QStringLiteral("ORG_ONLY"))
                                          ? QStringLiteral("found")
                                          : QStringLiteral("missing"));
    report(QStringLiteral("wrapperValue"),
           settings.value(QStringLiteral("ORG_ONLY"), QStringLiteral("default")).toString());
    report(QStringLiteral("control"), withFallbacks.contains(QStringLiteral("ORG_ONLY"))
                                          ? QStringLiteral("found")
                                          : QStringLiteral("missing"));
    report(QStringLiteral("allKeys"), settings.allKeys().join(QLatin1Char(',')));
    return 0;
}

// Assignment between user files, with a parent on the target and the source dying first.
int scenarioUserAssignment()
{
    QObject parent;
    auto target = std::make_unique<BaseUsrSettings>("target", &parent);
    auto source = std::make_unique<BaseUsrSettings>("source");
    target->setValue(QStringLiteral("beforeAssignment"), 1);
    const QPointer<QSettings> old = target->getSetting();
    *target = *source;
    report(QStringLiteral("oldDeleted"),
           old.isNull() ? QStringLiteral("yes") : QStringLiteral("no"));
    report(QStringLiteral("parentChildren"), QString::number(parent.children().size()));
    target->setValue(QStringLiteral("throughTarget"), 2);
    source.reset();
    target->setValue(QStringLiteral("afterSourceDied"), 3);
    report(QStringLiteral("targetFile"), fileOf(target->fileName()));
    target.reset();
    return 0;
}

ScenarioTable scenarios()
{
    return {
        {QStringLiteral("userFileNames"), scenarioUserFileNames},
        {QStringLiteral("userWrite"), scenarioUserWrite},
        {QStringLiteral("userRead"), scenarioUserRead},
        {QStringLiteral("userFallbacks"), scenarioUserFallbacks},
        {QStringLiteral("userAssignment"), scenarioUserAssignment},
    };
}

using PathFunction = QString (*)(const char *, const char *);

// The private path helper is exported; reach it the way another module of the suite would.
PathFunction prjSettingFile()
{
    static QLibrary library(QStringLiteral(CORVEKIT_LIBRARY_PATH));
    return reinterpret_cast<PathFunction>(
        library.resolve("_ZN15BasePrjSettings17thePrjSettingFileEPKcS1_"));
}

} // namespace

class TestScopedSettings : public QObject
{
    Q_OBJECT

private slots:
    void projectFilePath_data();
    void projectFilePath();
    void projectNamesDifferingInCaseShareOneFile();
    void projectWritesReachDiskOnDestruction();
    void projectRemovalsReachDiskOnDestruction();
    void projectMissingKeyAndMalformedFile();
    void groupsArraysAndGetSetting();

    void assignmentSharesOneObject_data();
    void assignmentSharesOneObject();
    void assignmentKeepsObjectHeldElsewhere();
    void selfAssignment();
    void wrapperDiesBeforeParent();
    void parentDiesBeforeWrapper();

    void userFileNames();
    void userNamesDifferingInCaseShareOneFileWrittenOnDestruction();
    void userFallbacksOff();
    void userAssignment();
};

void TestScopedSettings::projectFilePath_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("nullName");
    QTest::addColumn<QByteArray>("directory");
    QTest::addColumn<bool>("nullDirectory");
    QTest::addColumn<QString>("expected");

    QTest::newRow("lower-cased") << QByteArray("MyTool") << false << QByteArray("/p") << false
                                 << QStringLiteral("/p/.mytool.ini");
    QTest::newRow("utf8 name") << QByteArray("\xc3\x84rger") << false << QByteArray("/p") << false
                               << QStringLiteral("/p/.\u00e4rger.ini");
    QTest::newRow("null name is shared")
        << QByteArray() << true << QByteArray("/p") << false << QStringLiteral("/p/.shared.ini");
    QTest::newRow("empty name keeps its point")
        << QByteArray("") << false << QByteArray("/p") << false << QStringLiteral("/p/..ini");
    QTest::newRow("relative directory stays relative")
        << QByteArray("T") << false << QByteArray("rel/dir") << false
        << QStringLiteral("rel/dir/.t.ini");
    QTest::newRow("not cleaned") << QByteArray("T") << false << QByteArray("a/b/../c/") << false
                                 << QStringLiteral("a/b/../c/.t.ini");
    QTest::newRow("empty directory")
        << QByteArray("T") << false << QByteArray("") << false << QStringLiteral("./.t.ini");
    QTest::newRow("null directory")
        << QByteArray("T") << false << QByteArray() << true << QStringLiteral("./.t.ini");
}

void TestScopedSettings::projectFilePath()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, nullName);
    QFETCH(QByteArray, directory);
    QFETCH(bool, nullDirectory);
    QFETCH(QString, expected);
    const char *nameText = nullName ? nullptr : name.constData();
    const char *directoryText = nullDirectory ? nullptr : directory.constData();

    const PathFunction path = prjSettingFile();
    QVERIFY2(path, "thePrjSettingFile is not exported");
    QCOMPARE(path(nameText, directoryText), expected);

    // QSettings is handed that path: it reports it made absolute against the current directory.
    BasePrjSettings settings(directoryText, nameText);
    QCOMPARE(settings.fileName(), QFileInfo(expected).absoluteFilePath());
}

void TestScopedSettings::projectNamesDifferingInCaseShareOneFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QByteArray path = dir.path().toUtf8();
    {
        BasePrjSettings mixed(path.constData(), "MyTool");
        mixed.setValue(QStringLiteral("key"), QStringLiteral("mixed"));
        mixed.sync();
        BasePrjSettings upper(path.constData(), "MYTOOL");
        QCOMPARE(upper.fileName(), mixed.fileName());
        QCOMPARE(upper.value(QStringLiteral("key")).toString(), QStringLiteral("mixed"));
    }
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{".mytool.ini"});
}

void TestScopedSettings::projectWritesReachDiskOnDestruction()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral(".shared.ini"));
    {
        BasePrjSettings settings(dir.path().toUtf8().constData(), nullptr);
        settings.beginGroup(QStringLiteral("view"));
        settings.setValue(QStringLiteral("zoom"), 4);
        settings.endGroup();
        settings.setValue(QStringLiteral("device"), QStringLiteral("ZX-40"));
        // Seen at once by the object, but nothing is synced on the caller's behalf.
        QCOMPARE(settings.value(QStringLiteral("view/zoom")).toInt(), 4);
        QVERIFY(!QFile::exists(file));
    }
    QVERIFY(QFile::exists(file));
    QCOMPARE(valueOnDisk(file, QStringLiteral("view/zoom")).toInt(), 4);
    QCOMPARE(valueOnDisk(file, QStringLiteral("device")).toString(), QStringLiteral("ZX-40"));
}

void TestScopedSettings::projectRemovalsReachDiskOnDestruction()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral(".t.ini"));
    QVERIFY(writeFile(file, "[a]\nkeep=1\ndrop=2\n[b]\nx=3\n"));
    {
        BasePrjSettings settings(dir.path().toUtf8().constData(), "t");
        settings.remove(QStringLiteral("a/drop"));
        settings.beginGroup(QStringLiteral("b"));
        settings.clear(); // the whole file, whatever the group
        settings.endGroup();
        settings.setValue(QStringLiteral("a/keep"), 5);
    }
    const QSettings reader(file, QSettings::IniFormat);
    QCOMPARE(reader.allKeys(), QStringList{"a/keep"});
    QCOMPARE(reader.value(QStringLiteral("a/keep")).toInt(), 5);
}

void TestScopedSettings::projectMissingKeyAndMalformedFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(writeFile(dir.filePath(QStringLiteral(".bad.ini")), "[open\nk=1\n"));
    BasePrjSettings missing(dir.path().toUtf8().constData(), "none");
    QCOMPARE(missing.value(QStringLiteral("k"), 7).toInt(), 7);
    QVERIFY(!missing.contains(QStringLiteral("k")));
    QCOMPARE(missing.status(), QSettings::NoError);

    // A format error is left for the caller to ask; the object stays usable.
    BasePrjSettings bad(dir.path().toUtf8().constData(), "bad");
    QCOMPARE(bad.status(), QSettings::FormatError);
    bad.setValue(QStringLiteral("k2"), 2);
    QCOMPARE(bad.value(QStringLiteral("k2")).toInt(), 2);
}

void TestScopedSettings::groupsArraysAndGetSetting()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    BasePrjSettings settings(dir.path().toUtf8().constData(), "forward");
    settings.setValue(QStringLiteral("top"), 1);
    settings.beginGroup(QStringLiteral("g"));
    QCOMPARE(settings.group(), QStringLiteral("g"));
    settings.setValue(QStringLiteral("k"), 2);
    settings.beginGroup(QStringLiteral("inner"));
    settings.setValue(QStringLiteral("deep"), 3);
    settings.endGroup();
    QCOMPARE(settings.childKeys(), QStringList{"k"});
    QCOMPARE(settings.childGroups(), QStringList{"inner"});
    QCOMPARE(settings.allKeys(), (QStringList{"inner/deep", "k"}));
    settings.endGroup();
    QCOMPARE(settings.group(), QString());
    QCOMPARE(settings.childKeys(), QStringList{"top"});

    settings.beginWriteArray(QStringLiteral("list"), 3);
    for (int i = 0; i < 3; ++i) {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("n"), i * 10);
    }
    settings.endArray();
    QCOMPARE(settings.beginReadArray(QStringLiteral("list")), 3);
    settings.setArrayIndex(2);
    QCOMPARE(settings.value(QStringLiteral("n")).toInt(), 20);
    settings.endArray();
    QVERIFY(settings.contains(QStringLiteral("list/3/n")));

    // getSetting hands out the held object itself, the same on every call.
    QSettings *held = settings.getSetting();
    QVERIFY(held);
    QCOMPARE(settings.getSetting(), held);
    held->setValue(QStringLiteral("direct"), 9);
    QCOMPARE(settings.value(QStringLiteral("direct")).toInt(), 9);
    QVERIFY(!held->fallbacksEnabled());
}

void TestScopedSettings::assignmentSharesOneObject_data()
{
    QTest::addColumn<bool>("targetHasParent");
    QTest::addColumn<bool>("sourceHasParent");
    QTest::addColumn<bool>("sourceDiesFirst");

    QTest::newRow("no parents, source dies first") << false << false << true;
    QTest::newRow("no parents, target dies first") << false << false << false;
    QTest::newRow("target has a parent, source dies first") << true << false << true;
    QTest::newRow("source has a parent, target dies first") << false << true << false;
    QTest::newRow("both have parents, source dies first") << true << true << true;
}

void TestScopedSettings::assignmentSharesOneObject()
{
    QFETCH(bool, targetHasParent);
    QFETCH(bool, sourceHasParent);
    QFETCH(bool, sourceDiesFirst);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QByteArray path = dir.path().toUtf8();
    QObject targetParent;
    QObject sourceParent;

    std::optional<BasePrjSettings> target;
    std::optional<BasePrjSettings> source;
    target.emplace(path.constData(), "target", targetHasParent ? &targetParent : nullptr);
    source.emplace(path.constData(), "source", sourceHasParent ? &sourceParent : nullptr);
    target->setValue(QStringLiteral("beforeAssignment"), 1);
    const QPointer<QSettings> old = target->getSetting();
    const QPointer<QSettings> shared = source->getSetting();

    *target = *source;

    // The target's former object is gone at once, with its unsynced write on disk.
    QVERIFY(old.isNull());
    QCOMPARE(targetParent.children().size(), 0);
    QCOMPARE(
        valueOnDisk(dir.filePath(QStringLiteral(".target.ini")), QStringLiteral("beforeAssignment"))
            .toInt(),
        1);
    // Both reach the source's file through one object.
    QCOMPARE(target->getSetting(), shared.data());
    QCOMPARE(fileOf(target->fileName()), QStringLiteral(".source.ini"));
    target->setValue(QStringLiteral("throughTarget"), 2);
    QCOMPARE(source->value(QStringLiteral("throughTarget")).toInt(), 2);

    std::optional<BasePrjSettings> &first = sourceDiesFirst ? source : target;
    std::optional<BasePrjSettings> &survivor = sourceDiesFirst ? target : source;
    first.reset();
    QVERIFY(!shared.isNull());
    survivor->setValue(QStringLiteral("afterFirstDied"), 3);
    QCOMPARE(survivor->value(QStringLiteral("throughTarget")).toInt(), 2);
    survivor.reset();
    QVERIFY(shared.isNull());
    QCOMPARE(sourceParent.children().size(), 0);

    const QString file = dir.filePath(QStringLiteral(".source.ini"));
    QCOMPARE(valueOnDisk(file, QStringLiteral("throughTarget")).toInt(), 2);
    QCOMPARE(valueOnDisk(file, QStringLiteral("afterFirstDied")).toInt(), 3);
    QVERIFY(!valueOnDisk(file, QStringLiteral("beforeAssignment")).isValid());
}

void TestScopedSettings::assignmentKeepsObjectHeldElsewhere()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QByteArray path = dir.path().toUtf8();
    BasePrjSettings a(path.constData(), "a");
    BasePrjSettings b(path.constData(), "b");
    BasePrjSettings c(path.constData(), "c");
    const QPointer<QSettings> objectOfB = b.getSetting();
    a = b;
    a = c; // b still holds its object
    QVERIFY(!objectOfB.isNull());
    QCOMPARE(b.getSetting(), objectOfB.data());
    QCOMPARE(a.getSetting(), c.getSetting());
    b = c; // now nobody does
    QVERIFY(objectOfB.isNull());
}

void TestScopedSettings::selfAssignment()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    BasePrjSettings settings(dir.path().toUtf8().constData(), "self");
    settings.setValue(QStringLiteral("k"), 1);
    const QPointer<QSettings> held = settings.getSetting();
    const BasePrjSettings &alias = settings;
    settings = alias;
    QVERIFY(!held.isNull());
    QCOMPARE(settings.getSetting(), held.data());
    QCOMPARE(settings.value(QStringLiteral("k")).toInt(), 1);
}

void TestScopedSettings::wrapperDiesBeforeParent()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QObject parent;
    QPointer<QSettings> held;
    {
        BasePrjSettings settings(dir.path().toUtf8().constData(), "child", &parent);
        held = settings.getSetting();
        QCOMPARE(held->parent(), &parent);
        settings.setValue(QStringLiteral("k"), 1);
    }
    // Deleted by the wrapper and so no longer a child that the parent would delete again.
    QVERIFY(held.isNull());
    QVERIFY(parent.children().isEmpty());
    QCOMPARE(valueOnDisk(dir.filePath(QStringLiteral(".child.ini")), QStringLiteral("k")).toInt(),
             1);
}

void TestScopedSettings::parentDiesBeforeWrapper()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    auto parent = std::make_unique<QObject>();
    BasePrjSettings settings(dir.path().toUtf8().constData(), "orphan", parent.get());
    BasePrjSettings copy(dir.path().toUtf8().constData(), "other");
    copy = settings;
    settings.setValue(QStringLiteral("k"), 1);

    parent.reset(); // deletes the QSettings, which writes its file

    QCOMPARE(valueOnDisk(dir.filePath(QStringLiteral(".orphan.ini")), QStringLiteral("k")).toInt(),
             1);
    // The wrappers act on nothing now, and say so through status().
    for (BasePrjSettings *wrapper : {&settings, &copy}) {
        QCOMPARE(wrapper->getSetting(), nullptr);
        QCOMPARE(wrapper->status(), QSettings::AccessError);
        QCOMPARE(wrapper->value(QStringLiteral("k"), 42).toInt(), 42);
        QVERIFY(!wrapper->contains(QStringLiteral("k")));
        wrapper->setValue(QStringLiteral("lost"), 2);
        wrapper->sync();
        QVERIFY(wrapper->allKeys().isEmpty());
        QCOMPARE(wrapper->fileName(), QString());
    }
    // Both destructors then run without deleting the object a second time.
}

void TestScopedSettings::userFileNames()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult child =
        runScenario(QStringLiteral("userFileNames"), cleanEnvironment(home.path()));
    QCOMPARE(child.exitCode, 0);
    const QString area = userArea(home.path());
    QCOMPARE(child.value(QStringLiteral("mixed")), area + QLatin1String("/mytool.ini"));
    QCOMPARE(child.value(QStringLiteral("lower")), area + QLatin1String("/mytool.ini"));
    QCOMPARE(child.value(QStringLiteral("utf8")), area + QString::fromUtf8("/\u00e4rger.ini"));
    // Without an application name QSettings uses the organisation's own file.
    QCOMPARE(child.value(QStringLiteral("null")), area + QLatin1String(".ini"));
    QCOMPARE(child.value(QStringLiteral("empty")), area + QLatin1String(".ini"));
    // Naming a file creates nothing.
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral(".config/Meravex"))));
}

void TestScopedSettings::userNamesDifferingInCaseShareOneFileWrittenOnDestruction()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const QProcessEnvironment environment = cleanEnvironment(home.path());
    const ChildResult writer = runScenario(QStringLiteral("userWrite"), environment);
    QCOMPARE(writer.exitCode, 0);
    QCOMPARE(writer.value(QStringLiteral("existsBeforeDestruction")), QStringLiteral("no"));

    QCOMPARE(QDir(userArea(home.path())).entryList(QDir::Files), QStringList{"mytool.ini"});
    const QString file = userArea(home.path()) + QLatin1String("/mytool.ini");
    QCOMPARE(valueOnDisk(file, QStringLiteral("window/width")).toInt(), 640);
    QCOMPARE(valueOnDisk(file, QStringLiteral("recent/size")).toInt(), 2);

    const ChildResult reader = runScenario(QStringLiteral("userRead"), environment);
    QCOMPARE(reader.exitCode, 0);
    QCOMPARE(reader.value(QStringLiteral("width")), QStringLiteral("640"));
    QCOMPARE(reader.value(QStringLiteral("recent")), QStringLiteral("a.ldf,b.ldf"));
}

void TestScopedSettings::userFallbacksOff()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    QVERIFY(writeFile(userArea(home.path()) + QLatin1String(".ini"), "ORG_ONLY=yes\n"));
    QVERIFY(writeFile(userArea(home.path()) + QLatin1String("/mytool.ini"), "OWN=1\n"));
    const ChildResult child =
        runScenario(QStringLiteral("userFallbacks"), cleanEnvironment(home.path()));
    QCOMPARE(child.exitCode, 0);
    // The control proves the key lies where a QSettings with fallbacks would find it.
    QCOMPARE(child.value(QStringLiteral("control")), QStringLiteral("found"));
    QCOMPARE(child.value(QStringLiteral("wrapper")), QStringLiteral("missing"));
    QCOMPARE(child.value(QStringLiteral("wrapperValue")), QStringLiteral("default"));
    QCOMPARE(child.value(QStringLiteral("allKeys")), QStringLiteral("OWN"));
}

void TestScopedSettings::userAssignment()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult child =
        runScenario(QStringLiteral("userAssignment"), cleanEnvironment(home.path()));
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("oldDeleted")), QStringLiteral("yes"));
    QCOMPARE(child.value(QStringLiteral("parentChildren")), QStringLiteral("0"));
    QCOMPARE(child.value(QStringLiteral("targetFile")), QStringLiteral("source.ini"));

    const QString area = userArea(home.path());
    QCOMPARE(valueOnDisk(area + QLatin1String("/target.ini"), QStringLiteral("beforeAssignment"))
                 .toInt(),
             1);
    const QString source = area + QLatin1String("/source.ini");
    QCOMPARE(valueOnDisk(source, QStringLiteral("throughTarget")).toInt(), 2);
    QCOMPARE(valueOnDisk(source, QStringLiteral("afterSourceDied")).toInt(), 3);
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestScopedSettings, scenarios)
#include "tst_scopedsettings.moc"

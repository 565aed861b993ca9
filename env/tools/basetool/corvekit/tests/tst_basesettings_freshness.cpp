#include "childprocess.h"
#include "sampleinstallation.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QDateTime>
#include <QFile>
#include <QSettings>
#include <QTest>
#include <QThread>

// Each BaseSettings must see the files as they are when it is made, however the library keeps
// their parse between constructions: a new TOOLRTF, a new project path, a file changed, removed
// or made again, and the working directory behind a relative TOOLRTF.

namespace {

// A system file of \a filler keys besides KEY, large enough that Qt does not keep its parse
// on its own once no QSettings has it open.
QByteArray systemFile(const QByteArray &value, int filler = 2000)
{
    QByteArray text = "[General]\nKEY=" + value + "\n";
    for (int index = 0; index < filler; ++index)
        text +=
            "FILLER_" + QByteArray::number(index) + "=value " + QByteArray::number(index) + "\n";
    return text;
}

// Rewrites \a path and moves its modification time \a seconds ahead, so that a change of the
// same size is told apart from the last one even within one clock tick.
bool rewrite(const QString &path, const QByteArray &text, int seconds)
{
    if (!writeFile(path, text))
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                            QFileDevice::FileModificationTime);
}

QString lookup(const QString &key = QStringLiteral("KEY"))
{
    BaseSettings settings;
    return settings.getSetting(key, QStringLiteral("(none)")).toString();
}

int followChanges()
{
    const QString base = qEnvironmentVariable("CORVEKIT_TEST_BASE");
    const QString rootA = base + QStringLiteral("/rootA");
    const QString rootB = base + QStringLiteral("/rootB");
    const QString fileA = rootA + QStringLiteral("/data/.setting.ini");

    report(QStringLiteral("start"), lookup());
    rewrite(fileA, systemFile("a2"), 10);
    report(QStringLiteral("same size"), lookup());
    rewrite(fileA, systemFile("a333"), 20);
    report(QStringLiteral("other size"), lookup());
    rewrite(fileA, systemFile("a4", 20), 30);
    report(QStringLiteral("small file"), lookup());
    rewrite(fileA, systemFile("a5"), 40);
    report(QStringLiteral("large again"), lookup());
    report(QStringLiteral("simulator A"), BaseSystem::getSimulatorPath(false).path());

    BaseSystem::SetEnvVariable("TOOLRTF", rootB);
    report(QStringLiteral("root B"), lookup());
    report(QStringLiteral("simulator B"), BaseSystem::getSimulatorPath(false).path());
    BaseSystem::SetEnvVariable("TOOLRTF", rootA);
    report(QStringLiteral("root A again"), lookup());

    QFile::remove(fileA);
    report(QStringLiteral("removed"), lookup());
    rewrite(fileA, systemFile("a6"), 50);
    report(QStringLiteral("made again"), lookup());

    // A relative root follows the working directory of the moment.
    QDir::setCurrent(base);
    BaseSystem::SetEnvVariable("TOOLRTF", QStringLiteral("rootA"));
    report(QStringLiteral("relative"), lookup());
    {
        BaseSettings settings;
        report(QStringLiteral("relative file"), settings.getSystemSetting()->fileName());
    }
    QDir::setCurrent(base + QStringLiteral("/elsewhere"));
    report(QStringLiteral("relative elsewhere"), lookup());
    BaseSystem::SetEnvVariable("TOOLRTF", rootA);

    BaseSettings::setProjectPath(base + QStringLiteral("/project1/"));
    report(QStringLiteral("project 1"), lookup(QStringLiteral("PRJ")));
    BaseSettings::setProjectPath(base + QStringLiteral("/project2/"));
    report(QStringLiteral("project 2"), lookup(QStringLiteral("PRJ")));
    rewrite(base + QStringLiteral("/project2/.setting.ini"), "[General]\nPRJ=p3\n", 60);
    report(QStringLiteral("project 2 changed"), lookup(QStringLiteral("PRJ")));
    BaseSettings::setProjectPath(QString());
    report(QStringLiteral("no project"), lookup(QStringLiteral("PRJ")));

    // Another thread sees the same files, and its own later changes.
    QString inThread;
    QThread *thread = QThread::create([&inThread, &fileA] {
        inThread = lookup();
        rewrite(fileA, systemFile("a7"), 70);
        inThread += QLatin1Char(',') + lookup();
    });
    thread->start();
    thread->wait();
    delete thread;
    report(QStringLiteral("thread"), inThread);
    report(QStringLiteral("after thread"), lookup());
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("follow"), followChanges}};
}

} // namespace

class TestBaseSettingsFreshness : public QObject
{
    Q_OBJECT

private slots:
    void followsEveryChange();
};

void TestBaseSettingsFreshness::followsEveryChange()
{
    QTemporaryDir base;
    QVERIFY(base.isValid());
    const QString path = base.path();
    QVERIFY(writeFile(path + QStringLiteral("/rootA/data/.setting.ini"), systemFile("a1")));
    QVERIFY(QDir().mkpath(path + QStringLiteral("/rootA/questasim/win64")));
    QVERIFY(writeFile(path + QStringLiteral("/rootB/data/.setting.ini"), systemFile("b1")));
    QVERIFY(writeFile(path + QStringLiteral("/elsewhere/rootA/data/.setting.ini"),
                      systemFile("other")));
    QVERIFY(writeFile(path + QStringLiteral("/project1/.setting.ini"), "[General]\nPRJ=p1\n"));
    QVERIFY(writeFile(path + QStringLiteral("/project2/.setting.ini"), "[General]\nPRJ=p2\n"));
    QVERIFY(QDir().mkpath(path + QStringLiteral("/home")));

    QProcessEnvironment environment = cleanEnvironment(path + QStringLiteral("/home"));
    environment.insert(QStringLiteral("TOOLRTF"), path + QStringLiteral("/rootA"));
    environment.insert(QStringLiteral("CORVEKIT_TEST_BASE"), path);
    const ChildResult child = runScenario(QStringLiteral("follow"), environment);
    QCOMPARE(child.exitCode, 0);

    const QList<std::pair<const char *, QString>> expected = {
        {"start", "a1"},
        {"same size", "a2"},
        {"other size", "a333"},
        {"small file", "a4"},
        {"large again", "a5"},
        {"simulator A", path + "/rootA/questasim/win64"},
        {"root B", "b1"},
        {"simulator B", "/"},
        {"root A again", "a5"},
        {"removed", "(none)"},
        {"made again", "a6"},
        {"relative", "a6"},
        {"relative file", path + "/rootA/data/.setting.ini"},
        {"relative elsewhere", "other"},
        {"project 1", "p1"},
        {"project 2", "p2"},
        {"project 2 changed", "p3"},
        {"no project", "(none)"},
        {"thread", "a6,a7"},
        {"after thread", "a7"},
    };
    const QMap<QString, QString> values = child.values();
    for (const auto &[name, value] : expected)
        QCOMPARE(values.value(QLatin1String(name)), value);
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSettingsFreshness, scenarios)
#include "tst_basesettings_freshness.moc"

// The profiler's settings file. The singleton reads the environment once per process, so every
// case runs in a child with its own environment.
#include "support/childprocess.h"

#include <corvekit/profiler.h>
#include <corvekit/profilersettings.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using tivoran::corvekit::Profiler;
using tivoran::corvekit::ProfilerSettings;

namespace {

QStringList warnings;

void keepWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtWarningMsg)
        return;
    const QByteArray file(context.file ? context.file : "");
    const bool fromHere =
        file.endsWith("s/profiler/profilersettings.cpp") && context.line > 0 &&
        QByteArray(context.function ? context.function : "").contains("ProfilerSettings");
    warnings.append(QStringLiteral("%1%2:%3").arg(fromHere ? "" : "<no context>",
                                                  QString::fromLatin1(context.category), message));
}

QString shown(const QString &value)
{
    return value.isNull() ? QStringLiteral("<null>") : value;
}

void reportState(const ProfilerSettings &settings)
{
    report(QStringLiteral("enabled"), settings.isProfileEnabled() ? "yes" : "no");
    for (const char *key : {"plain", "group/key", "empty", "missing"})
        report(QString::fromLatin1(key), shown(settings.getValue(QString::fromLatin1(key))));
}

int settingsScenario()
{
    qInstallMessageHandler(keepWarnings);
    const ProfilerSettings &settings = ProfilerSettings::instance();
    qInstallMessageHandler(nullptr);
    reportState(settings);
    report(QStringLiteral("warnings"), warnings.join(QLatin1Char(';')));
    report(QStringLiteral("profilerEnabled"), Profiler().is_enabled() ? "yes" : "no");
    return 0;
}

// Built once: later environment changes and calls see the first object unchanged.
int onceScenario()
{
    ProfilerSettings &first = ProfilerSettings::instance();
    qputenv("ENABLE_GUI_PROFILER", "1");
    qputenv("GUI_PROFILER_SETTINGS", qgetenv("TEST_SETTINGS_FILE"));
    ProfilerSettings &second = ProfilerSettings::instance();
    second = first; // the one object assigned to itself
    report(QStringLiteral("same"), &first == &second ? "yes" : "no");
    reportState(second);
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("settings"), settingsScenario}, {QStringLiteral("once"), onceScenario}};
}

const char *const iniText = "plain=hello\n"
                            "empty=\n"
                            "[group]\n"
                            "key=in group\n";

} // namespace

class TestProfilerSettings : public QObject
{
    Q_OBJECT

private slots:
    void cases_data();
    void cases();
    void builtOnce();
};

void TestProfilerSettings::cases_data()
{
    // "file" is the settings file in the child's home, "missing" a path with no file there;
    // "<unset>" leaves a variable out.
    QTest::addColumn<QString>("enable");
    QTest::addColumn<QString>("settingsFile");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("warned");
    QTest::addColumn<bool>("profilerEnabled");

    QTest::newRow("enable 1, file unset") << "1"
                                          << "<unset>" << false << false << true;
    QTest::newRow("enable unset, file set") << "<unset>"
                                            << "file" << false << false << false;
    QTest::newRow("enable 0, file set") << "0"
                                        << "file" << false << false << false;
    QTest::newRow("enable true, file set") << "true"
                                           << "file" << false << false << false;
    QTest::newRow("enable 1, file present") << "1"
                                            << "file" << true << false << true;
    QTest::newRow("enable 10, file present") << "10"
                                             << "file" << true << false << true;
    QTest::newRow("enable 1, file missing") << "1"
                                            << "missing" << true << true << true;
    QTest::newRow("enable 1, file empty") << "1"
                                          << "" << true << true << true;
}

void TestProfilerSettings::cases()
{
    QFETCH(QString, enable);
    QFETCH(QString, settingsFile);
    QFETCH(bool, enabled);
    QFETCH(bool, warned);
    QFETCH(bool, profilerEnabled);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    const QString file = home.filePath(QStringLiteral("profiler.ini"));
    QVERIFY(writeFile(file, iniText));
    QString path = settingsFile;
    if (settingsFile == QLatin1String("file"))
        path = file;
    else if (settingsFile == QLatin1String("missing"))
        path = home.filePath(QStringLiteral("nowhere/profiler.ini"));

    QProcessEnvironment environment = cleanEnvironment(home.path());
    if (enable != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("ENABLE_GUI_PROFILER"), enable);
    if (settingsFile != QLatin1String("<unset>"))
        environment.insert(QStringLiteral("GUI_PROFILER_SETTINGS"), path);
    const ChildResult child =
        runScenario(QStringLiteral("settings"), environment, QString(), home.path());
    QCOMPARE(child.exitCode, 0);

    QCOMPARE(child.value(QStringLiteral("enabled")), enabled ? "yes" : "no");
    const bool readsFile = enabled && settingsFile == QLatin1String("file");
    const auto expect = [&](const char *value) {
        if (!enabled)
            return QStringLiteral("<null>");
        return readsFile ? QString::fromLatin1(value) : QString();
    };
    QCOMPARE(child.value(QStringLiteral("plain")), expect("hello"));
    QCOMPARE(child.value(QStringLiteral("group/key")), expect("in group"));
    QCOMPARE(child.value(QStringLiteral("empty")), expect(""));
    QCOMPARE(child.value(QStringLiteral("missing")), enabled ? QString() : expect(""));
    QCOMPARE(child.value(QStringLiteral("warnings")),
             warned ? QStringLiteral("default:ini file not exists \"%1\"").arg(path) : QString());
    QCOMPARE(child.value(QStringLiteral("profilerEnabled")), profilerEnabled ? "yes" : "no");

    // Nothing is written to the file, nor is a missing one made.
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray(iniText));
    QVERIFY(!QFile::exists(home.filePath(QStringLiteral("nowhere"))));
}

void TestProfilerSettings::builtOnce()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const QString file = home.filePath(QStringLiteral("profiler.ini"));
    QVERIFY(writeFile(file, iniText));
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QStringLiteral("TEST_SETTINGS_FILE"), file);
    const ChildResult child = runScenario(QStringLiteral("once"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("same")), QStringLiteral("yes"));
    QCOMPARE(child.value(QStringLiteral("enabled")), QStringLiteral("no"));
    QCOMPARE(child.value(QStringLiteral("plain")), QStringLiteral("<null>"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestProfilerSettings, scenarios)
#include "tst_profilersettings.moc"

// The developer trace, where TIVORANDEBUG sends its lines, and the profiler's numbered messages.
// TIVORANDEBUG and the open trace file are process-wide, so each trace row runs in a child.
#include "childprocess.h"

#include <corvekit/diagtrace.h>
#include <hulmar/hulmar_testing.h>
#include <profiler/post_utmsg.h>

#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

// Runs the steps of TRACE_STEPS, separated by "|": "=VALUE" sets TIVORANDEBUG and "-" removes
// it; any other step is a message, traced with the tag "T", or with no tag after a ".".
static int traceSteps()
{
    for (const QString &step : qEnvironmentVariable("TRACE_STEPS").split(QLatin1Char('|'))) {
        const bool untagged = step.startsWith(QLatin1Char('.'));
        if (step.startsWith(QLatin1Char('=')))
            qputenv("TIVORANDEBUG", step.mid(1).toLatin1());
        else if (step == QLatin1String("-"))
            qunsetenv("TIVORANDEBUG");
        else
            diagTrace(step.mid(untagged ? 1 : 0).toLatin1().constData(), untagged ? nullptr : "T");
    }
    return 0;
}

static const auto scenarios = [] { return ScenarioTable{{QStringLiteral("trace"), traceSteps}}; };

static QStringList logged;

static void keepRecord(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    logged << QString::number(type) + context.category + ' ' + context.function + ": " + message;
}

class TestTrace : public QObject
{
    Q_OBJECT

private slots:
    void trace_data();
    void trace();
    void numberedMessages();
};

// Each row's folder starts with the file "log" holding "old\n". What the row wrote is standard
// output, then "|NAME:TEXT" for each file, with "*" for a time stamp of this year.
void TestTrace::trace_data()
{
    QTest::addColumn<QByteArray>("steps");
    QTest::addColumn<QString>("written");
    QTest::newRow("empty: stdout") << QByteArray("=|.a\nb") << "At *: a\nb\n|log:old\n";
    QTest::newRow("tab: a path") << QByteArray("=\tlog|a") << "|\tlog:T At *: a\n|log:old\n";
    QTest::newRow("relative, emptied; blank: stdout; another path: ignored")
        << QByteArray("=log|a|= trace|b|=x|c") << "T At *: b\n|log:T At *: a\nT At *: c\n";
    QTest::newRow("unopenable: dropped, tried again; removed: silent")
        << QByteArray("=new/t|a|=log|b|-|c") << "|log:T At *: b\n";
}

void TestTrace::trace()
{
    QFETCH(QByteArray, steps);
    QTemporaryDir home;
    QVERIFY(writeFile(home.filePath(QStringLiteral("log")), "old\n"));
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QStringLiteral("TRACE_STEPS"), QString::fromLatin1(steps));
    const ChildResult child = runScenario(QStringLiteral("trace"), environment, {}, home.path());
    QCOMPARE(child.exitCode, 0);
    QString written = QString::fromLatin1(child.standardOutput);
    for (const QString &name : QDir(home.path()).entryList(QDir::Files | QDir::Hidden)) {
        QFile file(home.filePath(name));
        written += '|' + name + ':' + (file.open(QIODevice::ReadOnly) ? file.readAll() : "?");
    }
    const QRegularExpression stamp(QStringLiteral("At .{20}%1: ").arg(QDate::currentDate().year()));
    QTEST(written.replace(stamp, QStringLiteral("At *: ")), "written");
}

// Every text goes whole to numbered message 1009993, and a debug record of "gui.profiler.log"
// follows while the logging rules leave that category on, as they do by default. A null text
// goes out empty.
void TestTrace::numberedMessages()
{
    hulmar::testing::MessageCapture capture;
    const QtMessageHandler testlib = qInstallMessageHandler(keepRecord);
    tivoran::corvekit::post_utmsg("two\nlines");
    QLoggingCategory::setFilterRules(QStringLiteral("gui.profiler.log.debug=false"));
    tivoran::corvekit::post_utmsg("switched off");
    tivoran::corvekit::post_utmsg(nullptr);
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(testlib);
    QCOMPARE(capture.texts(), (std::vector<std::string>{"two\nlines", "switched off", ""}));
    QCOMPARE(capture.messages().back().number, "1009993");
    QCOMPARE(logged,
             {"0gui.profiler.log void tivoran::corvekit::post_utmsg(const char*): two\nlines"});
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestTrace, scenarios)
#include "tst_trace.moc"

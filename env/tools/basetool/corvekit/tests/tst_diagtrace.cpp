// The developer trace: where TIVORANDEBUG sends each line, and what a line looks like.
#include "childprocess.h"

#include <corvekit/diagtrace.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

namespace {

// A child runs CORVEKIT_TRACE_STEPS, steps separated by "|":
//   "trace:TAG:MESSAGE" (TAG "-" for a null tag), "set:VALUE", "unset", "mkdir:PATH".
// "\n" in a step stands for a newline.
int runTraceSteps()
{
    const QStringList steps =
        qEnvironmentVariable("CORVEKIT_TRACE_STEPS").split(QLatin1Char('|'), Qt::SkipEmptyParts);
    for (QString step : steps) {
        step.replace(QLatin1String("\\n"), QLatin1String("\n"));
        if (step.startsWith(QLatin1String("trace:"))) {
            const QString tag = step.section(QLatin1Char(':'), 1, 1);
            const QByteArray message = step.section(QLatin1Char(':'), 2).toLatin1();
            const QByteArray tagBytes = tag.toLatin1();
            diagTrace(message.constData(),
                      tag == QLatin1String("-") ? nullptr : tagBytes.constData());
        } else if (step.startsWith(QLatin1String("set:"))) {
            qputenv("TIVORANDEBUG", step.mid(4).toLocal8Bit());
        } else if (step == QLatin1String("unset")) {
            qunsetenv("TIVORANDEBUG");
        } else if (step.startsWith(QLatin1String("mkdir:"))) {
            QDir().mkpath(step.mid(6));
        }
    }
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("trace"), runTraceSteps}};
}

// The time stamp is asctime's text without its newline; tests compare everything around it.
QString withoutStamps(const QString &text)
{
    static const QRegularExpression stamp(QStringLiteral(
        R"(At (Mon|Tue|Wed|Thu|Fri|Sat|Sun) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123]\d \d\d:\d\d:\d\d \d{4}: )"));
    QString result = text;
    result.replace(stamp, QStringLiteral("At <time>: "));
    return result;
}

QString fileText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("<no file>");
    return QString::fromLatin1(file.readAll());
}

} // namespace

class TestDiagTrace : public QObject
{
    Q_OBJECT

private slots:
    void destination_data();
    void destination();
    void secondProcessEmptiesTheFile();
};

void TestDiagTrace::destination_data()
{
    QTest::addColumn<QVariant>("initialValue"); // a null QVariant leaves TIVORANDEBUG unset
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("expectedStdout");
    QTest::addColumn<QString>("fileName"); // relative to the child's working directory
    QTest::addColumn<QString>("expectedFile");

    const QString noFile = QStringLiteral("<no file>");
    QTest::newRow("unset writes nothing") << QVariant() << "trace:CORVEKIT:hello"
                                          << ""
                                          << "trace.log" << noFile;
    QTest::newRow("empty value goes to stdout")
        << QVariant(QString()) << "trace:CORVEKIT:setenv FOUNDRY=/opt/tools"
        << "CORVEKIT At <time>: setenv FOUNDRY=/opt/tools\n"
        << "trace.log" << noFile;
    QTest::newRow("leading blank goes to stdout whatever follows")
        << QVariant(" trace.log") << "trace:T:one"
        << "T At <time>: one\n"
        << "trace.log" << noFile;
    QTest::newRow("relative path is a file in the working directory")
        << QVariant("trace.log") << "trace:CORVEKIT:one|trace:CORVEKIT:two"
        << ""
        << "trace.log"
        << "CORVEKIT At <time>: one\nCORVEKIT At <time>: two\n";
    QTest::newRow("leading tab is part of a path") << QVariant("\ttrace.log") << "trace:T:one"
                                                   << ""
                                                   << "\ttrace.log"
                                                   << "T At <time>: one\n";
    QTest::newRow("null tag starts the line with At") << QVariant(QString()) << "trace:-:plain"
                                                      << "At <time>: plain\n"
                                                      << "trace.log" << noFile;
    QTest::newRow("newlines in the message are kept")
        << QVariant(QString()) << "trace:T:first\\nsecond"
        << "T At <time>: first\nsecond\n"
        << "trace.log" << noFile;
    QTest::newRow("a new path later does not move the open file")
        << QVariant("first.log") << "trace:T:one|set:second.log|trace:T:two"
        << ""
        << "first.log"
        << "T At <time>: one\nT At <time>: two\n";
    QTest::newRow("removing the variable silences the open file")
        << QVariant("trace.log") << "trace:T:one|unset|trace:T:two"
        << ""
        << "trace.log"
        << "T At <time>: one\n";
    QTest::newRow("a blank later sends lines to stdout")
        << QVariant("trace.log") << "trace:T:one|set: |trace:T:two"
        << "T At <time>: two\n"
        << "trace.log"
        << "T At <time>: one\n";
    QTest::newRow("unopenable path drops the line and tries again")
        << QVariant("missing/trace.log") << "trace:T:lost|mkdir:missing|trace:T:kept"
        << ""
        << "missing/trace.log"
        << "T At <time>: kept\n";
}

void TestDiagTrace::destination()
{
    QFETCH(QVariant, initialValue);
    QFETCH(QString, steps);
    QFETCH(QString, expectedStdout);
    QFETCH(QString, fileName);
    QFETCH(QString, expectedFile);

    QTemporaryDir home;
    QTemporaryDir work;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    if (!initialValue.isNull())
        environment.insert(QStringLiteral("TIVORANDEBUG"), initialValue.toString());
    environment.insert(QStringLiteral("CORVEKIT_TRACE_STEPS"), steps);

    const ChildResult child = runScenario(QStringLiteral("trace"), environment, {}, work.path());
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(withoutStamps(QString::fromLatin1(child.standardOutput)), expectedStdout);
    QCOMPARE(withoutStamps(fileText(work.filePath(fileName))), expectedFile);
    if (expectedFile == QLatin1String("<no file>"))
        QCOMPARE(QDir(work.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestDiagTrace::secondProcessEmptiesTheFile()
{
    QTemporaryDir home;
    QTemporaryDir work;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QStringLiteral("TIVORANDEBUG"), QStringLiteral("trace.log"));

    environment.insert(QStringLiteral("CORVEKIT_TRACE_STEPS"), QStringLiteral("trace:T:first run"));
    QCOMPARE(runScenario(QStringLiteral("trace"), environment, {}, work.path()).exitCode, 0);
    environment.insert(QStringLiteral("CORVEKIT_TRACE_STEPS"),
                       QStringLiteral("trace:T:second run"));
    QCOMPARE(runScenario(QStringLiteral("trace"), environment, {}, work.path()).exitCode, 0);

    QCOMPARE(withoutStamps(fileText(work.filePath(QStringLiteral("trace.log")))),
             QStringLiteral("T At <time>: second run\n"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestDiagTrace, scenarios)
#include "tst_diagtrace.moc"

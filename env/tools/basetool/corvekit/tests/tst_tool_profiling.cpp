// The tool profiles its own subcommands when ENABLE_GUI_PROFILER asks for it: the report comes
// on standard error after the subcommand, and standard output and the exit status stay as
// they are.
#include "support/childprocess.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

ChildResult runTool(const QString &home, const QStringList &arguments,
                    const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = cleanEnvironment(home);
    for (auto it = variables.begin(); it != variables.end(); ++it)
        environment.insert(it.key(), it.value());
    return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), arguments, environment, home);
}

// The lines of standard error that the report posted, without the message number.
QStringList reportLines(const ChildResult &result)
{
    QStringList lines;
    for (const QString &line : result.errorLines()) {
        if (line.startsWith(QLatin1String("1009993: ")))
            lines.append(line.mid(9));
    }
    return lines;
}

// The first column of each row of the report's table: the task names, indented by level.
QStringList taskColumn(const ChildResult &result)
{
    const QStringList lines = reportLines(result);
    QStringList names;
    int rules = 0;
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1Char('-'))) {
            ++rules;
            continue;
        }
        if (rules == 2) // between the header's closing rule and the last rule
            names.append(
                line.left(line.indexOf(QLatin1String(" |")))
                    .trimmed()
                    .prepend(QString(line.indexOf(QRegularExpression(QStringLiteral("\\S"))),
                                     QLatin1Char(' '))));
    }
    return names;
}

} // namespace

class TestToolProfiling : public QObject
{
    Q_OBJECT

private slots:
    void reportFollowsSubcommand_data();
    void reportFollowsSubcommand();
    void switchedOff_data();
    void switchedOff();
    void detailLinesBracketTheSteps();
};

void TestToolProfiling::reportFollowsSubcommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("tasks");

    QTest::newRow("env") << QStringList{"env", "--json"} << 0
                         << QStringList{"env", " initialize system", " resolve installation",
                                        " print"};
    QTest::newRow("failing settings lookup")
        << QStringList{"settings", "get", "NO_SUCH_KEY"} << 1
        << QStringList{"settings", " open settings", " look up"};
    QTest::newRow("usage error") << QStringList{"settings"} << 2 << QStringList{"settings"};
}

void TestToolProfiling::reportFollowsSubcommand()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, tasks);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult withReport = runTool(home.path(), arguments, {{"ENABLE_GUI_PROFILER", "1"}});
    const ChildResult without = runTool(home.path(), arguments, {});
    QCOMPARE(withReport.exitCode, exitCode);
    QVERIFY(!withReport.crashed);
    QCOMPARE(withReport.standardOutput, without.standardOutput);

    const QStringList lines = reportLines(withReport);
    QVERIFY2(lines.size() >= 5, withReport.standardError.constData());
    QVERIFY(lines.at(0).isEmpty()); // the heading block begins with an empty line
    const QStringList errors = withReport.errorLines();
    const int heading = errors.indexOf(QStringLiteral("corvekit ") + arguments.first());
    QVERIFY2(heading > 0, withReport.standardError.constData());
    QVERIFY(errors.at(heading + 1).startsWith(QLatin1String("  Current Memory: ")));
    QVERIFY(errors.at(heading + 2).startsWith(QLatin1String("  Peak Memory:    ")));
    // One table, shown once: the debug log's copy is switched off.
    QCOMPARE(withReport.standardError.count("Task Name | CPU Time(s) | Real Time(s) | "
                                            "Delta Mem(M)"),
             1);
    QCOMPARE(taskColumn(withReport), tasks);
    QVERIFY(reportLines(without).isEmpty());
}

void TestToolProfiling::switchedOff_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("0") << "0";
    QTest::newRow("empty") << "";
    QTest::newRow("true") << "true";
}

void TestToolProfiling::switchedOff()
{
    QFETCH(QString, value);
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult result = runTool(home.path(), {"env"}, {{"ENABLE_GUI_PROFILER", value}});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.standardError, QByteArray());
}

void TestToolProfiling::detailLinesBracketTheSteps()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult result = runTool(
        home.path(), {"env"}, {{"ENABLE_GUI_PROFILER", "1"}, {"ENABLE_GUI_PROFILER_DETAIL", "1"}});
    QCOMPARE(result.exitCode, 0);
    QStringList events;
    const QRegularExpression detail(
        QStringLiteral("^\\[(.+)\\] (started|stopped) at \\d\\d:\\d\\d:\\d\\d, Mem \\d+MB$"));
    for (const QString &line : reportLines(result)) {
        const QRegularExpressionMatch match = detail.match(line);
        if (match.hasMatch())
            events.append(match.captured(2).left(4) + QLatin1Char(' ') + match.captured(1));
    }
    QCOMPARE(events, (QStringList{"star env", "star initialize system", "stop initialize system",
                                  "star resolve installation", "stop resolve installation",
                                  "star print", "stop print", "stop env"}));
}

QTEST_GUILESS_MAIN(TestToolProfiling)
#include "tst_tool_profiling.moc"

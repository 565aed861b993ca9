// The `help` subcommand of the built tool: queries, --check and its exit statuses.
#include "childprocess.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char sound[] = R"(<?xml version="1.0"?>
<helpIndex version="1.0">
  <tool name="Spreadsheet" href="s.htm">
    <view name="Ports" href="ports.htm"/>
    <tooltip name="Ports">Ports and
       pins</tooltip>
    <description name="Apply" href="apply.htm">Applies.</description>
    <dialog name="Options" href="options.htm">
      <text>Sets the options.</text>
      <whatsthis name="Grid">Shows a grid.</whatsthis>
      <description name="Grid" href="grid.htm">The grid.</description>
    </dialog>
  </tool>
  <tool name="Bare"/>
</helpIndex>
)";

// Broken on line 3, inside a tooltip that no query of Spreadsheet reads.
const char broken[] = "<helpIndex version=\"1.0\">\n<tool name=\"Other\">\n"
                      "  <tooltip name=\"x\">a<b/></tooltip></tool>\n"
                      "<tool name=\"Spreadsheet\" href=\"s.htm\"/></helpIndex>\n";

} // namespace

class TestToolHelp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void queries_data();
    void queries();
    void json();
    void sampleInstallationAnswers_data();
    void sampleInstallationAnswers();

private:
    ChildResult tool(const QStringList &arguments);

    QTemporaryDir m_home;
    QString m_sound;
    QString m_broken;
};

ChildResult TestToolHelp::tool(const QStringList &arguments)
{
    return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH),
                      QStringList{QStringLiteral("help")} + arguments,
                      cleanEnvironment(m_home.path()), m_home.path());
}

void TestToolHelp::initTestCase()
{
    QVERIFY(m_home.isValid());
    m_sound = m_home.filePath(QStringLiteral("sound.xml"));
    m_broken = m_home.filePath(QStringLiteral("broken.xml"));
    QVERIFY(writeFile(m_sound, sound));
    QVERIFY(writeFile(m_broken, broken));
}

void TestToolHelp::queries_data()
{
    QTest::addColumn<QStringList>("arguments"); // after FILE; "broken" first picks that file
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error"); // a part of the one stderr line, or empty for none

    QTest::newRow("check") << QStringList{"--check"} << 0 << "FILE: a valid help index"
                           << "";
    QTest::newRow("tool") << QStringList{"--tool", "Spreadsheet"} << 0 << "s.htm"
                          << "";
    QTest::newRow("view") << QStringList{"--tool", "Spreadsheet", "--view", "Ports"} << 0
                          << "ports.htm"
                          << "";
    QTest::newRow("view finds a description")
        << QStringList{"--tool", "Spreadsheet", "--view", "Apply"} << 0 << "apply.htm"
        << "";
    QTest::newRow("dialog") << QStringList{"--tool", "Spreadsheet", "--dialog", "Options"} << 0
                            << "options.htm"
                            << "";
    QTest::newRow("dialog text") << QStringList{"--tool", "Spreadsheet", "--dialog", "Options",
                                                "--text"}
                                 << 0 << "Sets the options."
                                 << "";
    QTest::newRow("tool item, simplified")
        << QStringList{"--tool", "Spreadsheet", "--tooltip", "Ports"} << 0 << "Ports and pins"
        << "";
    QTest::newRow("dialog item") << QStringList{"--tool",  "Spreadsheet", "--dialog",
                                                "Options", "--whatsthis", "Grid"}
                                 << 0 << "Shows a grid."
                                 << "";
    QTest::newRow("dialog description url")
        << QStringList{"--tool", "Spreadsheet", "--dialog", "Options", "--url", "Grid"} << 0
        << "grid.htm"
        << "";
    QTest::newRow("dialog description")
        << QStringList{"--tool", "Spreadsheet", "--dialog", "Options", "--description", "Grid"} << 0
        << "The grid."
        << "";
    QTest::newRow("tool without href answers empty") << QStringList{"--tool", "Bare"} << 0 << ""
                                                     << "";
    QTest::newRow("no such tool") << QStringList{"--tool", "spreadsheet"} << 1 << ""
                                  << "sound.xml: no match";
    QTest::newRow("no such item at tool level")
        << QStringList{"--tool", "Spreadsheet", "--whatsthis", "Grid"} << 1 << ""
        << "no match";
    QTest::newRow("broken before the tool is found")
        << QStringList{"broken", "--tool", "Missing"} << 3 << ""
        << "broken.xml:3:25: Expected character data.";
    QTest::newRow("broken part behind the answer")
        << QStringList{"broken", "--tool", "Other"} << 3 << ""
        << "Expected character data.";
    QTest::newRow("missing file") << QStringList{"missing", "--check"} << 3 << ""
                                  << "cannot read";
    QTest::newRow("neither check nor tool") << QStringList{} << 2 << ""
                                            << "--check or --tool";
    QTest::newRow("two item options")
        << QStringList{"--tool", "T", "--tooltip", "a", "--url", "b"} << 2 << ""
        << "at most one item option";
    QTest::newRow("text without dialog") << QStringList{"--tool", "T", "--text"} << 2 << ""
                                         << "--text needs --dialog";
    QTest::newRow("view with dialog")
        << QStringList{"--tool", "T", "--view", "V", "--dialog", "D"} << 2 << ""
        << "--view";
    QTest::newRow("check with a query") << QStringList{"--check", "--tool", "T"} << 2 << ""
                                        << "--check takes no query options";
}

void TestToolHelp::queries()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    QFETCH(QString, error);

    QString file = m_sound;
    if (!arguments.isEmpty() && arguments.first() == QLatin1String("broken"))
        file = m_broken, arguments.removeFirst();
    else if (!arguments.isEmpty() && arguments.first() == QLatin1String("missing"))
        file = m_home.filePath(QStringLiteral("none.xml")), arguments.removeFirst();
    const ChildResult result = tool(QStringList{file} + arguments);

    QVERIFY(!result.crashed);
    QCOMPARE(result.exitCode, exitCode);
    // Data on stdout only on success; one error line on stderr otherwise.
    output.replace(QLatin1String("FILE"), file);
    QCOMPARE(result.outputLines(), exitCode == 0 ? QStringList{output} : QStringList());
    if (error.isEmpty()) {
        QCOMPARE(result.errorLines(), QStringList());
    } else {
        QCOMPARE(result.errorLines().size(), 1);
        QVERIFY2(result.errorLines().first().contains(error),
                 qPrintable(result.errorLines().first()));
    }
}

void TestToolHelp::json()
{
    ChildResult result =
        tool({m_sound, QStringLiteral("--tool"), QStringLiteral("Spreadsheet"),
              QStringLiteral("--dialog"), QStringLiteral("Options"), QStringLiteral("--whatsthis"),
              QStringLiteral("Grid"), QStringLiteral("--json")});
    QCOMPARE(result.exitCode, 0);
    QJsonObject answer = QJsonDocument::fromJson(result.standardOutput).object();
    QCOMPARE(answer.value(QStringLiteral("value")).toString(), QStringLiteral("Shows a grid."));
    QCOMPARE(answer.value(QStringLiteral("dialog")).toString(), QStringLiteral("Options"));
    QCOMPARE(answer.value(QStringLiteral("query")).toString(), QStringLiteral("whatsthis"));
    QCOMPARE(answer.value(QStringLiteral("found")).toBool(), true);

    // No match is data too: found false, a null value, exit status 1.
    result =
        tool({m_sound, QStringLiteral("--tool"), QStringLiteral("Nope"), QStringLiteral("--json")});
    QCOMPARE(result.exitCode, 1);
    answer = QJsonDocument::fromJson(result.standardOutput).object();
    QCOMPARE(answer.value(QStringLiteral("found")).toBool(), false);
    QVERIFY(answer.value(QStringLiteral("value")).isNull());

    result = tool({m_broken, QStringLiteral("--check"), QStringLiteral("--json")});
    QCOMPARE(result.exitCode, 3);
    answer = QJsonDocument::fromJson(result.standardOutput).object();
    QCOMPARE(answer.value(QStringLiteral("valid")).toBool(), false);
    QCOMPARE(answer.value(QStringLiteral("error")).toString(),
             QStringLiteral("Expected character data."));
    QCOMPARE(answer.value(QStringLiteral("line")).toInt(), 3);
}

void TestToolHelp::sampleInstallationAnswers_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");

    QTest::newRow("check") << QStringList{"--check"} << "";
    QTest::newRow("tool") << QStringList{"--tool", "Spreadsheet"}
                          << "spreadsheet/spreadsheet_overview.htm";
    QTest::newRow("view") << QStringList{"--tool", "Spreadsheet", "--view", "Port Assignments"}
                          << "spreadsheet/port_assignments_view.htm";
    QTest::newRow("dialog") << QStringList{"--tool", "Spreadsheet", "--dialog", "Options", "--text"}
                            << "Sets how the spreadsheet shows its cells and which changes it "
                               "writes back to the constraint file.";
}

void TestToolHelp::sampleInstallationAnswers()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);
    // The demo's index ships with the sample installation; it must stay sound.
    const QString index =
        QStringLiteral(CORVEKIT_EXAMPLES_DIR "/installation/docs/webhelp/eng/helpindex.xml");
    const ChildResult result = tool(QStringList{index} + arguments);
    QCOMPARE(result.exitCode, 0);
    if (!output.isEmpty())
        QCOMPARE(result.outputLines(), QStringList{output});
}

QTEST_GUILESS_MAIN(TestToolHelp)
#include "tst_tool_help.moc"

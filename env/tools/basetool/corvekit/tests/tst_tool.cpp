// The corvekit tool, run as a user runs it: each row starts the built program in a child with a
// clean environment, inside a fresh copy of the sample installation, and checks its exit status
// and both output streams.
#include "childprocess.h"

#include <QDirIterator>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using Files = QMap<QString, QByteArray>;

// Set-ups laid over the sample installation, by name: files and their text, or "$NAME" and the
// value of an environment variable. Every row has the first one; the
// file "<" is the tool's standard input.
const QMap<QString, Files> fixtures = {
    {"",
     {{"names", "B1\nA1C\nA10\nA007\nA1B\nAA1\nA2\n"},
      {"zero", QByteArrayLiteral("a\nb\0c\n")},
      {"bad/.setting.ini", "[General\nK=broken\n"},
      {"blocked/.setting.ini/keep", ""},
      {"<", "net10\r\nnet9\r\n\xe9t\xe9\r\nnet1"},
      {"b.xml", "<helpIndex version=\"1.0\">\n<tool name=\"T\">\n<tooltip>a<b/></tooltip>"}}},
    {"install root without data", {{"$TOOLRTF", "project"}}},
    {"profiled", {{"$ENABLE_GUI_PROFILER", "1"}}},
};

// Every file below \a root with its contents, by relative path.
static Files readTree(const QString &root)
{
    Files files;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        files.insert(QDir(root).relativeFilePath(file.fileName()),
                     file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)"));
    }
    return files;
}

// Whether \a actual is \a expected, where "…" stands for any text. JSON is compared in its
// compact form with the keys in order, written with single quotes in \a expected.
static bool matches(QByteArray actual, QByteArray expected)
{
    if (expected.startsWith('{')) {
        actual = QJsonDocument::fromJson(actual).toJson(QJsonDocument::Compact);
        expected.replace('\'', '"');
    }
    QString pattern = QRegularExpression::escape(QString::fromLatin1(expected));
    pattern.replace(QRegularExpression::escape(QString::fromLatin1("…")), "(?s:.*)");
    const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern));
    return whole.match(QString::fromLatin1(actual)).hasMatch();
}

static void row(const char *name, const QString &arguments, int exitCode, const QByteArray &output,
                const QByteArray &error = "", const QString &fixture = "")
{
    QTest::newRow(name) << fixture << arguments << exitCode << output << error;
}

// A row where the tool writes nothing but one error line.
static void failure(const char *name, const QString &arguments, int status, const QByteArray &line)
{
    row(name, arguments, status, "", "corvekit: " + line + '\n');
}

class TestTool : public QObject
{
    Q_OBJECT

private slots:
    void run_data();
    void run();
};

void TestTool::run_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<QString>("arguments"); // $E: an empty argument
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output"); // then "== FILE" and the text of each file written
    QTest::addColumn<QByteArray>("error");  // $T: the copy's folder, the working directory

    row("no command", "", 2, "", "Usage: corvekit <command> [options]\n…");
    failure("unknown command", "frobnicate", 2, "unknown command 'frobnicate'; see …");
    row("env", "env --project project/", 0,
        "installRoot:   $T/installation\n…\n  project:     $T/project/.setting.ini\n…");
    row("version of a group", "version --group Solvane --pattern major-minor --json", 0,
        "{…'patch':'SP1','pattern':'major-minor','suffix':'Beta','version':'4.3',…}");
    row("version without its file", "version", 1, "",
        "corvekit: project/data/zeksys.ini: no version file\n", "install root without data");
    row("tools", "tools --project project/ --json", 0,
        "{'defaults':false,'simulator':{…'name':'QuestaSim'},'synplify':{…},'tools':[…'level':'"
        "user',"
        "'name':'activehdl','source':'setting'}…]}");
    row("filter", "filter netlist Netlists --project project/", 0,
        "extensions: vqm\nfilter:     Netlists (*.vqm)\n");
    failure("no type", "filter bitstream", 1, "'File_Extension/bitstream' is set at no level");

    row("get", "settings get DEFAULT_DEVICE_FAMILY --project project/", 0, "project\tCorvus-III\n");
    row("get a list", "settings get File_Extension/vhdl --type list --json", 0,
        "{'key':'File_Extension/vhdl','level':'system','type':'list','value':['vhd','vhdl']}");
    failure("get, malformed file", "settings get K --project bad/", 3,
            "$T/bad/.setting.ini: malformed settings file");
    failure("get, no key", "settings get", 2, "missing argument; see --help");
    row("set", "settings set --user --type bool K TRUE", 0,
        "user\t$T/home/.config/Meravex/OstraneNG/.setting.ini\n== home/.config/Meravex/OstraneNG/"
        ".setting.ini\n[General]\n…EDITOR_FONT_SIZE=11\nK=true\nMESSAGE_LIMIT=2000\n");
    failure("set, no int", "settings set --user --type int -- K -12x", 3, "'-12x' is no int");
    failure("set, malformed file", "settings set --project bad/ K 1", 3,
            "$T/bad/.setting.ini: malformed settings file");
    failure("set, file not written", "settings set --project /proc/self/ K 1", 4,
            "/proc/self/.setting.ini: cannot write settings file");
    failure("set, folder as file", "settings set --project blocked/ K 1", 4,
            "$T/blocked/.setting.ini: cannot read settings file");
    row("unset a group", "settings unset --project project/ File_Extension", 0,
        "project\t$T/project/.setting.ini\n== project/.setting.ini\n[General]\n"
        "DEFAULT_DEVICE_FAMILY=Corvus-III\nTOP_MODULE=uart_bridge\n");
    failure("unset, not set", "settings unset --user K", 1, "'K' is not set at the user level (…)");

    row("label", "label Edit_UGroup --json", 0, "{'key':'Edit_UGroup','text':'Edit UGROUP'}");
    failure("label, unknown key", "label SHOW", 1, "'SHOW' is no label key");
    failure("label, no key", "label", 2, "label: missing KEY; see 'corvekit label --help'");

    row("sort standard input", "sort", 0, "net1\nnet9\nnet10\n\xe9t\xe9\n");
    row("reversed", "sort --by pinh --reverse names", 0, "AA1\nB1\nA10\nA007\nA2\nA1C\nA1B\n");
    failure("sort, zero byte", "sort --by namenum names zero", 3, "sort: name 9 holds a zero byte");
    failure("sort, no such file", "sort nope", 1, "sort: nope: no such file");

    row("wildcard", "wildcard clk* clk clk_a xclk", 0, "clk.*\nclk\nclk_a\n");
    failure("wildcard, empty", "wildcard $E a", 1, "wildcard: an empty pattern has no expression");

    row("help", "help h.xml --tool Spreadsheet --dialog Options --url \"Write Back\" --json", 0,
        "{'dialog':'Options','found':true,…'query':'url',…'value':'spreadsheet/write_back.htm'}");
    failure("broken index", "help b.xml --tool X", 3, "b.xml:3:14: Expected character data.");

    row("profiled", "settings get NO_SUCH_KEY", 1, "",
        "…\n1009993: \ncorvekit settings\n…\n1009993: settings       |…\n"
        "1009993:  open settings |…\n1009993:  look up       |…\n1009993: -…",
        "profiled");
}

void TestTool::run()
{
    QFETCH(QString, fixture);
    QFETCH(QString, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, error);

    QTemporaryDir dir;
    QProcessEnvironment environment = cleanEnvironment(dir.filePath(QStringLiteral("home")));
    environment.insert(QStringLiteral("TOOLRTF"), dir.filePath(QStringLiteral("installation")));
    Files files = readTree(QStringLiteral(CORVEKIT_EXAMPLES_DIR));
    files.insert(fixtures.value(QString()));
    files.insert(fixtures.value(fixture));
    files.insert("h.xml", files.value("installation/docs/webhelp/eng/helpindex.xml"));
    for (const auto &[path, text] : files.asKeyValueRange())
        if (path.startsWith(QLatin1Char('$')))
            environment.insert(path.mid(1), QString::fromUtf8(text));
        else
            QVERIFY(writeFile(dir.filePath(path), text));
    const Files before = readTree(dir.path());
    const QStringList argumentList = QProcess::splitCommand(arguments).replaceInStrings("$E", "");
    const ChildResult result = runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), argumentList,
                                          environment, dir.path(), files.value("<"));
    QCOMPARE(result.exitCode, exitCode);
    QByteArray written = result.standardOutput;
    for (const auto &[path, text] : readTree(dir.path()).asKeyValueRange())
        if (before.value(path) != text)
            written += "== " + path.toUtf8() + '\n' + text;
    QVERIFY2(matches(written, output.replace("$T", dir.path().toUtf8())), written);
    QVERIFY2(matches(result.standardError, error.replace("$T", dir.path().toUtf8())),
             result.standardError);
}

QTEST_GUILESS_MAIN(TestTool)
#include "tst_tool.moc"

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

// Files laid over every copy of the sample installation, beside it. The file "<" is the tool's
// standard input.
static const Files extras = {
    {"names", "B1\nA1C\nA10\nA007\nA1B\nAA1\nA2\n"},
    {"zero", QByteArrayLiteral("a\nb\0c\n")},
    {"bad/.setting.ini", "[General\nK=broken\n"},
    {"blocked/.setting.ini/keep", ""},
    {"empty/.setting.ini", "[General]\nPRECISION_PATH=\n"},
    {"<", "net10\r\nnet9\r\n\xe9t\xe9\r\nnet1"},
    {"sorted", "A1\nA2\nA2\n"},
    {"b.xml", "<helpIndex version=\"1.0\">\n<tool name=\"T\">\n<tooltip>a<b/></tooltip>"},
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

static void row(const QString &arguments, int exitCode, const QByteArray &output,
                const QByteArray &error = "")
{
    QTest::addRow("$ %s", qPrintable(arguments)) << arguments << exitCode << output << error;
}

// A row where the tool writes nothing but one error line.
static void failure(const QString &arguments, int exitCode, const QByteArray &line)
{
    row(arguments, exitCode, "", "corvekit: " + line + '\n');
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
    // As on a shell's command line, NAME=VALUE words first set environment variables. $E is an
    // empty argument; $T is the copy's folder, also the working directory, in every column.
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output"); // then "== FILE" and the text of each file written
    QTest::addColumn<QByteArray>("error");

    row("", 2, "",
        "Usage: corvekit [--root DIR] COMMAND [options] ARGS...\n…\nRun 'corvekit help …");
    failure("frobnicate", 2, "unknown command 'frobnicate'; see …");
    row("filter --help", 0, "Usage: … TYPE [DESCRIPTION]\n…");
    row("settings -h", 0, "Usage: corvekit settings get KEY …");
    row("env --project project/", 0,
        "installRoot:   $T/installation\n…\n  project:     $T/project/.setting.ini\n…");
    row("version --group Solvane --pattern major-minor --json", 0,
        "{…'patch':'SP1','pattern':'major-minor','suffix':'Beta','version':'4.3',…}");
    failure("TOOLRTF=$T/project version", 1, "$T/project/data/zeksys.ini: no version file");
    failure("version --bogus", 2, "Unknown option 'bogus'.");
    // An empty value on the project level hides the system's and sends the locator to folders.
    row("tools --project empty/ --json", 0,
        "{'defaults':false,'simulator':{…'name':'QuestaSim'},'synplify':{…},'tools':[…{'directory':"
        "'/','key':'PRECISION_PATH','name':'precision','source':'unknown'},{…'level':'user','name':"
        "'activehdl','source':'setting'}…]}");
    row("filter netlist Netlists --project project/", 0,
        "extensions: vqm\nfilter:     Netlists (*.vqm)\n");
    row("filter netlist --project project/ --json", 0,
        "{'extensions':['vqm'],'filter':'netlist Files (*.vqm)','type':'netlist'}");
    failure("filter bitstream", 1, "'File_Extension/bitstream' is set at no level");
    failure("filter", 2, "missing argument; see --help");

    row("settings get File_Extension/vhdl --type list --json", 0,
        "{'key':'File_Extension/vhdl','level':'system','type':'list','value':['vhd','vhdl']}");
    failure("settings get K --project bad/", 3, "$T/bad/.setting.ini: malformed settings file");
    failure("settings get", 2, "missing argument; see --help");
    failure("settings get K --type nope", 2, "unknown type 'nope'; see --help");
    row("settings set --user --type bool K TRUE", 0,
        "user\t$T/home/.config/Meravex/OstraneNG/.setting.ini\n== home/…\n[General]\n…K=true\n"
        "MESSAGE_LIMIT=2000\n");
    failure("settings set --user --type bool K maybe", 3, "'maybe' is no bool");
    failure("settings set --user --type int -- K -12x", 3, "'-12x' is no int");
    failure("settings set --user K", 2, "missing argument; see --help");
    failure("settings set --project bad/ K 1", 3, "$T/bad/.setting.ini: malformed settings file");
    failure("settings set --project /proc/self/ K 1", 4,
            "/proc/self/.setting.ini: cannot write settings file");
    failure("settings set --project blocked/ K 1", 4,
            "$T/blocked/.setting.ini: cannot read settings file");
    row("settings unset --project project/ File_Extension", 0,
        "project\t$T/project/.setting.ini\n== project/.setting.ini\n[General]\n"
        "DEFAULT_DEVICE_FAMILY=Corvus-III\nTOP_MODULE=uart_bridge\n");
    failure("settings unset --user K", 1, "'K' is not set at the user level (…)");
    failure("settings unset --user /", 3, "'/' is no settings key");

    row("label Edit_UGroup --json", 0, "{'found':true,'key':'Edit_UGroup','text':'Edit UGROUP'}");
    failure("label SHOW", 1, "'SHOW' is no label key");
    failure("label", 2, "label: missing KEY; see 'corvekit label --help'");

    row("sort", 0, "net1\nnet9\nnet10\n\xe9t\xe9\n"); // CRLF, a byte above 0x7f, no last newline
    row("sort --by pinh --reverse names", 0, "AA1\nB1\nA10\nA007\nA2\nA1C\nA1B\n");
    failure("sort --by namenum names zero", 3, "sort: name 9 holds a zero byte");
    failure("sort nope", 3, "nope: no such file");
    failure("sort /dev/null", 3, "/dev/null: not a regular file");

    row("wildcard clk* clk clk_a xclk", 0, "clk.*\nclk\nclk_a\n");
    row("wildcard $E a --json", 1, "{'expression':null,'found':false,'matches':[],'pattern':''}",
        "corvekit: wildcard: an empty pattern has no expression\n");

    row("helpindex i --tool Spreadsheet --dialog Options --url \"Write Back\" --json", 0,
        "{'dialog':'Options','found':true,…'query':'url',…'value':'spreadsheet/write_back.htm'}");
    row("helpindex i --tool Spreadsheet --tooltip \"Port Assignments\"", 0,
        "Ports and their pins\n");
    row("helpindex i --tool \"Reveal Inserter\" --description \"Trigger Signal Setup\"", 0,
        "Chooses the signals and the conditions that start a capture.\n");
    failure("helpindex b.xml --tool X", 3, "b.xml:3:14: Expected character data.");

    failure("settings get NO_SUCH_KEY", 1, "'NO_SUCH_KEY' is set at no level");
    row("ENABLE_GUI_PROFILER=1 settings get DEFAULT_DEVICE_FAMILY --project project/", 0,
        "project\tCorvus-III\n",
        "1009993: \ncorvekit settings\n…\n1009993: settings       |…\n1009993:  open settings |…\n"
        "1009993:  look up       |…\n1009993:  print         |…\n1009993: -…");

    // One convention for every command: help, usage, suggestions, --root, --json.
    row("help", 0, "Usage: corvekit [--root DIR] COMMAND …\n  help       …TOOLRTF names the …");
    row("--help", 0, "…\nExit status:\n  0 success; 1 not found or no match; 2 usage error; 3 …");
    row("help sort", 0, "Usage: corvekit sort [options] [FILE...]\n…\n  FILE  …without one.\n");
    failure("help nope", 2, "unknown command 'nope'; see 'corvekit --help'");
    failure("setings get K", 2, "unknown command 'setings'; did you mean 'settings'?");
    failure("label x --josn", 2, "Unknown option 'josn'; did you mean '--json'?"); // a swap
    failure("--rot $T version", 2, "unknown option '--rot'; did you mean '--root'?");
    failure("env extra", 2, "unexpected argument 'extra'; see 'corvekit env --help'");
    failure("filter a b c", 2, "unexpected argument 'c'; see 'corvekit filter --help'");
    row("TOOLRTF=$T/project --root installation version --pattern major-minor", 0,
        "version:       2026.2\n…");
    failure("--root nowhere env", 3, "nowhere: no such installation directory");
    row("--root project label show_in", 0, "Show in\n",
        "corvekit: warning: project has no data folder $T/project/data: …\n");
    // The library's trace goes to standard output when TIVORANDEBUG is empty.
    row("TIVORANDEBUG= version --json", 0, "{…'version':'2026.2.1.118'…}",
        "CORVEKIT At …: setenv FOUNDRY=…");
    row("label SHOW --json", 1, "{'found':false,'key':'SHOW','text':null}");

    row("sort -u -r --by pinh -o names names", 0, "== names\nAA1\nB1\nA10\nA007\nA2\nA1C\n");
    row("sort -z -r zero", 0, QByteArray("c\n\0a\nb\0", 7));
    row("sort --check sorted", 0, "");
    failure("sort -c -u sorted", 1, "sort: sorted:3: disorder: A2");
    failure("sort -c sorted sorted", 1, "sort: sorted:1: disorder: A1");
    failure("sort -o project/ names", 4, "sort: project/: cannot write: …");
    failure("sort -c -o names names", 2, "sort: --check writes nothing; drop --output");
    failure("sort -y", 2, "Unknown option 'y'."); // one letter is no typo of --by
    row("wildcard a?b", 0, "a.b\n");
    failure("wildcard", 2, "missing argument; see --help");
    failure("wildcard x -f nope", 3, "nope: no such file");
    row("wildcard net? -f - -f names", 0, "net9\nnet1\n"); // CRLF, no last newline
    row("wildcard x* b --json", 1,
        "{'expression':'x.*','found':false,'matches':[],'pattern':'x*'}");

    row("helpindex --list i", 0,
        "tool\tSpreadsheet\nview\tSpreadsheet\tPort Assignments\n…dialog\tSpreadsheet\tOptions\n"
        "tool\tNetlist Analyzer\n…tool\tReveal Inserter\n");
    row("helpindex i --list --json", 0,
        "{'file':'i','tools':[{'dialogs':[{'href':'spreadsheet/options_dialog.htm','name':'Options'"
        "}],'href':'spreadsheet/spreadsheet_overview.htm','name':'Spreadsheet','views':[{'href':"
        "'spreadsheet/port_assignments_view.htm','name':'Port Assignments'},…]},…{'dialogs':[],"
        "'href':'reveal/reveal_inserter.htm','name':'Reveal Inserter','views':[]}]}");
    failure("helpindex --list b.xml", 3, "b.xml:3:14: Expected character data.");
    failure("helpindex --list /dev/null", 3, "/dev/null: not a regular file");
    row("helpindex i --tool Spreadsheet --json", 0,
        "{'found':true,'query':'tool','tool':'Spreadsheet','value':'spreadsheet/spreadsheet_"
        "overview.htm'}");
}

void TestTool::run()
{
    QFETCH(QString, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, error);

    QTemporaryDir dir;
    QProcessEnvironment environment = cleanEnvironment(dir.filePath(QStringLiteral("home")));
    Files files = readTree(QStringLiteral(CORVEKIT_EXAMPLES_DIR));
    files.insert(extras);
    files.insert("i", files.value("installation/docs/webhelp/eng/helpindex.xml"));
    for (const auto &[path, text] : files.asKeyValueRange())
        QVERIFY(writeFile(dir.filePath(path), text));
    const Files before = readTree(dir.path());
    QStringList words = QProcess::splitCommand(arguments.replace("$T", dir.path()));
    environment.insert(QStringLiteral("TOOLRTF"), dir.filePath(QStringLiteral("installation")));
    for (; words.value(0).contains(QLatin1Char('=')); words.removeFirst())
        environment.insert(words[0].section(QLatin1Char('='), 0, 0), words[0].section('=', 1));
    const ChildResult result =
        runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), words.replaceInStrings("$E", ""),
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

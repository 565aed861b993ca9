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
    {"bad2/.setting.ini", "; c\n[General]\nX=1\nno equals here\nY=2\n"},
    {"blocked/.setting.ini/keep", ""},
    {"empty/.setting.ini", "[General]\nPRECISION_PATH=\n"},
    {"pct/.setting.ini", "[General]\nA%4=1\n"}, // an escape cut short
    {"<", "net10\r\nnet9\r\n\xe9t\xe9\r\nnet1"},
    {"sorted", "A1\nA2\nA2\n"},
    {"b.xml", "<helpIndex version=\"1.0\">\n<tool name=\"T\">\n<tooltip>a<b/></tooltip>"},
    // An installation with little in it: no companion tools, folders or patch number.
    {"bare/data/zeksys.ini", "[version]\nMajorVersion=1\n"},
    {"bare/data/.setting.ini", "[General]\nSIMULATOR_TYPE=Questa\n"},
    {"bare/docs/webhelp/eng/helpindex.xml", "<helpIndex version=\"1.0\">\n<tool"},
    {"blockedroot/data/.setting.ini/keep", ""},
    {"dirversion/data/zeksys.ini/keep", ""},
    // Timelines: runs nested on thread 1 beside one on thread 2, a title with a brace, a counter
    // and a last event cut short; a second process with two events on one line; faults. The second
    // trace lacks its closing bracket.
    {"trace-a.json",
     "[\n{\"name\":\"Parse\",\"ph\":\"X\",\"ts\":1000,\"dur\":300,\"pid\":1,\"tid\":1,\"args\":{"
     "\"level\":1}},\n"
     "{\"name\":\"mem\",\"ph\":\"C\",\"ts\":1300,\"pid\":1,\"tid\":1,\"args\":{\"bytes\":5}},\n"
     "{\"name\":\"Place\",\"ph\":\"X\",\"ts\":1400,\"dur\":500,\"pid\":1,\"tid\":1,\"args\":{"
     "\"level\":1}},\n"
     "{\"name\":\"Load (Load all})\",\"ph\":\"X\",\"ts\":900,\"dur\":1200,\"pid\":1,\"tid\":1,"
     "\"args\":{\"level\":0,\"task\":\"Load\"}},\n"
     "{\"name\":\"Parse\",\"ph\":\"X\",\"ts\":950,\"dur\":100,\"pid\":1,\"tid\":2,\"args\":{"
     "\"level\":0}},\n"
     "{\"name\":\"Place\",\"ph\":\"X\",\"ts\":2500,\"dur\":700,\"pid\":1,\"tid\":1,\"args\":{"
     "\"lev"},
    {"trace-b.json",
     "[{\"ph\":\"M\"},{\"name\":\"Map\",\"ph\":\"X\",\"ts\":3000,\"dur\":50,\"args\":{}},\n"},
    {"trace-none.json", "[\n]\n"},
    {"trace-bad.json", "[\n{\"name\":\"Map\",\"ph\":\"X\",\"ts\":1,\"dur\":-5}\n]\n"},
    {"trace-huge.json", "[{\"name\":\"" + QByteArray(1 << 20, 'x')},
    {"trace-level.json", "[{\"name\":\"x\",\"ph\":\"X\",\"dur\":1,\"args\":{\"level\":-1}}]"},
    {"trace-limit.json", "[{\"name\":\"x\",\"ph\":\"X\",\"dur\":0},{\"name\":\"x\",\"dur\":1e15}]"},
    {"trace-early.json", "[{\"name\":\"x\",\"ts\":-1e15}]"},
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
    // empty argument; $T is the copy's folder, also the working directory, in every column; $F
    // preloads the library that makes the calls named by CORVEKIT_FAIL_* variables fail.
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output"); // then "== FILE" and the text of each file written
    QTest::addColumn<QByteArray>("error");

    row("", 2, "",
        "Usage: corvekit [--root DIR] COMMAND [options] ARGS...\n…\nRun 'corvekit help …");
    failure("frobnicate", 2, "unknown command 'frobnicate'; see …");
    row("filter --help", 0, "Usage: … TYPE [DESCRIPTION]\n…\"TYPE Files\" if not given.\n");
    row("settings -h", 0, "Usage: corvekit settings get KEY …the options of an action.\n");
    row("settings unset --help", 0,
        "Usage: corvekit settings unset [options] KEY\n…\n  KEY              The settings key.\n");
    // With help asked for, a command writes its help and nothing else.
    row("env --help", 0, "Usage: corvekit env [options]\n…\n  -h, --help       Shows this help.\n");
    row("help doctor", 0, "Usage: …Shows this help.\n");
    row("help tools", 0, "Usage: …Shows this help.\n");
    row("help version", 0, "Usage: …Shows this help.\n");
    row("help helpindex", 0, "Usage: …The help index file.\n");
    row("help label", 0, "Usage: …The label key.\n");
    row("help wildcard", 0, "Usage: …Names to match.\n");
    row("profile summary --help", 0, "Usage: …Timeline files.\n");
    row("profile merge --help", 0, "Usage: …Timeline files.\n");
    row("settings get --help", 0, "Usage: …The settings key.\n");
    row("settings set --help", 0, "Usage: …The value.\n");
    row("settings list --help", 0, "Usage: …The action.\n");
    row("env --project project", 0,
        "installRoot:   $T/installation\nTOOLRTF:       $T/installation\n…\nsettings files:\n"
        "  project:     $T/project/.setting.ini\n…");
    row("version --group Solvane --pattern major-minor --json", 0,
        "{…'patch':'SP1','pattern':'major-minor','suffix':'Beta','version':'4.3',…}");
    failure("TOOLRTF=$T/project version", 1, "$T/project/data/zeksys.ini: no version file");
    failure("version --bogus", 2, "Unknown option 'bogus'.");
    // An empty value on the project level hides the system's and sends the locator to folders.
    row("tools --project empty/ --json", 0,
        "{'defaults':false,'project':'empty/','simulator':{'directory':'$T/installation/questasim/"
        "win64','key':'QUESTASIM_PATH','knownType':true,'level':'system','name':'QuestaSim',"
        "'settingsFile':'$T/installation/data/.setting.ini','tool':'questasim','type':'QuestaSim'},"
        "'synplify':{'useOEM':true,'usePro':false},'tools':[…{'candidates':['$T/installation/"
        "precision'],'directory':null,"
        "'exists':false,'key':'PRECISION_PATH','level':'project','name':'precision','settingsFile':"
        "'$T/empty/.setting.ini','source':'notFound'},{'candidates':[],'directory':'/home/demo/"
        "tools/"
        "active-hdl','exists':false,'key':'ACTIVEHDL_PATH','level':'user',…'source':'setting'}…]}");
    row("filter netlist Netlists --project project/", 0,
        "extensions: vqm\nfilter:     Netlists (*.vqm)\n");
    row("filter netlist --project project/ --json", 0,
        "{'extensions':['vqm'],'filter':'netlist Files (*.vqm)','found':true,'key':"
        "'File_Extension/netlist','type':'netlist'}");
    failure("filter bitstream", 1, "'File_Extension/bitstream' is set at no level");
    failure("filter", 2, "missing argument; see --help");

    row("settings get File_Extension/vhdl --type list --json", 0,
        "{'file':'$T/installation/data/.setting.ini','found':true,'key':'File_Extension/vhdl',"
        "'level':'system','type':'list','value':['vhd','vhdl']}");
    row("settings get K --project bad/", 0, "broken\n",
        "corvekit: warning: project settings file $T/bad/.setting.ini is malformed, …\n");
    failure("settings get", 2, "missing argument; see --help");
    failure("settings get K --type nope", 2, "unknown type 'nope'; see --help");
    row("settings set --user --type bool K TRUE", 0,
        "user\t$T/home/.config/Meravex/OstraneNG/.setting.ini\n== home/…\n; The demo user's own "
        "settings.\n[General]\nMESSAGE_LIMIT=2000\nEDITOR_FONT_SIZE=11\n"
        "ACTIVEHDL_PATH=/home/demo/tools/active-hdl\nK=true\n");
    failure("settings set --user --type bool K maybe", 3, "'maybe' is no bool");
    row("settings set --user --type bool K 0", 0, "user\t…\n== home/…\nK=false\n");
    failure("settings set --user --type int -- K -12x", 3, "'-12x' is no int");
    failure("settings set --user K", 2, "missing argument; see --help");
    row("settings set --project bad2 K 1", 3, "",
        "corvekit: warning: …\ncorvekit: $T/bad2/.setting.ini: malformed settings file\n");
    failure("settings set --project /proc/self/ K 1", 4,
            "/proc/self/.setting.ini: cannot write settings file");
    failure("$F CORVEKIT_FAIL_RENAME=/.setting.ini settings set --project project K 1", 4,
            "$T/project/.setting.ini: cannot write settings file");
    failure("settings set --project blocked/ K 1", 3,
            "blocked/.setting.ini: settings file is not a regular file");
    row("settings unset --project project/ File_Extension", 0,
        "project\t$T/project/.setting.ini\n== project/.setting.ini\n; Settings of the sample "
        "project.\n[General]\nDEFAULT_DEVICE_FAMILY=Corvus-III\nTOP_MODULE=uart_bridge\n");
    row("settings unset --project pct A%4", 0,
        "project\t$T/pct/.setting.ini\n== pct/.setting.ini\n");
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
    failure("helpindex i --tool Spreadsheet --view Nope", 1, "i: no match");
    row("doctor --project bad", 1, "…error   project settings   $T/bad/.setting.ini is malformed…",
        "…");

    failure("settings get NO_SUCH_KEY", 1, "'NO_SUCH_KEY' is set at no level");
    row("ENABLE_GUI_PROFILER=1 settings get DEFAULT_DEVICE_FAMILY --project project/", 0,
        "Corvus-III\n",
        "1009993: \ncorvekit settings\n…\n1009993: settings       |…\n1009993:  open settings |…\n"
        "1009993:  look up       |…\n1009993:  print         |…\n1009993: -…");

    // A changed value keeps every other line; the folder may lack its closing slash.
    row("settings set --project project TOP_MODULE top", 0,
        "project\t$T/project/.setting.ini\n== project/.setting.ini\n; Settings of the sample "
        "project.\n[General]\nDEFAULT_DEVICE_FAMILY=Corvus-III\nTOP_MODULE=top\n\n"
        "[File_Extension]\nnetlist=vqm\n");
    row("SOLVANE_GROUP_SETTING_FILE=$T/group.ini settings set --user K v", 0,
        "group\t$T/group.ini\n== group.ini\n[General]\nK=v\n",
        "corvekit: warning: group settings file $T/group.ini does not exist, …\n");
    // A file even root may not read.
    row("SOLVANE_GROUP_SETTING_FILE=/proc/sys/vm/drop_caches doctor", 1,
        "…error   group settings     /proc/sys/vm/drop_caches cannot be read; …", "…");
    failure("settings get K --project nope", 3, "nope: no such project directory");
    failure("settings unset K", 2, "give either --user or --project DIR");
    row("settings unset --project project/ NOPE --json", 1,
        "{'file':'$T/project/.setting.ini','found':false,'key':'NOPE','level':'project',"
        "'removed':[]}",
        "corvekit: 'NOPE' is not set at the project level ($T/project/.setting.ini)\n");
    row("settings get MESSAGE_LIMIT --all --show-scope --show-origin --type int", 0,
        "user\t$T/home/.config/Meravex/OstraneNG/.setting.ini\t2000\n"
        "system\t$T/installation/data/.setting.ini\t500\n");
    row("settings get TOP_MODULE --project project --json", 0,
        "{'file':'$T/project/.setting.ini','found':true,'key':'TOP_MODULE','level':'project',"
        "'type':null,'value':['uart_bridge']}");
    row("settings get NOPE --json", 1,
        "{'file':null,'found':false,'key':'NOPE','level':null,'type':null,'value':null}",
        "corvekit: 'NOPE' is set at no level\n");
    row("settings get SYNPLIFY_USEOEM --type bool --json", 0,
        "{'file':'$T/installation/data/.setting.ini','found':true,'key':'SYNPLIFY_USEOEM',"
        "'level':'system','type':'bool','value':true}");
    row("settings get NOPE --default 7 --type int --json", 0,
        "{'file':null,'found':false,'key':'NOPE','level':null,'type':'int','value':7}");
    row("settings list --project project/ --show-scope", 0,
        "* project\tDEFAULT_DEVICE_FAMILY=Corvus-III\n…\n* user\tMESSAGE_LIMIT=2000\n"
        "  system\tDEFAULT_DEVICE_FAMILY=Corvus-II\n…\n* system\tTIMING_REPORT_PATHS=10\n");
    row("settings list --json", 0,
        "{'entries':[{'file':'$T/home/.config/Meravex/OstraneNG/.setting.ini',"
        "'key':'ACTIVEHDL_PATH','level':'user','value':['/home/demo/tools/active-hdl'],"
        "'winning':true},…],'found':true}");
    row("tools", 0,
        "synplify   $T/installation/synpbase (SYNPLIFY_PATH is set at no level; candidate folder; "
        "exists)\nprecision  /opt/precision (setting PRECISION_PATH at system level, "
        "$T/installation/"
        "data/.setting.ini; missing)\n…esdk       not found (ESDK_PATH is set at no level; no "
        "candidate folder)\nsimulator  QuestaSim, the tool questasim above (SIMULATOR_TYPE "
        "\"QuestaSim\" at system level, $T/installation/data/.setting.ini; only the system level "
        "counts)\nsynplify edition: OEM yes, Pro no\n");
    // The user's Active-HDL folder does not count, and no folder below the root holds one.
    row("tools --defaults --json", 0,
        "{'defaults':true,'project':null,…{'candidates':['$T/installation/active-hdl'],'directory':"
        "null,'exists':false,'key':'ACTIVEHDL_PATH','level':null,…'source':'notFound'}…}");
    row("TOOLRTF=$T/bare version --json", 0,
        "{…'found':true,'group':null,'patch':null,'pattern':'full','suffix':null,'version':'1..',"
        "'versionFile':'$T/bare/data/zeksys.ini'}");
    failure("TOOLRTF=$T/blockedroot version", 3,
            "$T/blockedroot/data/.setting.ini: settings file is not a regular file");
    failure("TOOLRTF=$T/dirversion version", 3, "$T/dirversion/data/zeksys.ini: is a directory");
    row("version --group Nope --json", 1,
        "{'found':false,'group':'Nope','pattern':'full','versionFile':'$T/installation/data/"
        "zeksys.ini'}");
    row("filter bitstream --json", 1,
        "{'extensions':[],'filter':null,'found':false,'key':'File_Extension/bitstream','type':"
        "'bitstream'}");
    row("filter netlist --project bad", 0, "extensions: edf edn\n…",
        "corvekit: warning: project settings file $T/bad/.setting.ini is malformed, lines that are "
        "no settings are skipped\n");
    row("SOLVANE_GROUP_SETTING_FILE=$T/team.ini env --json", 0,
        "{'environment':{'FOUNDRY':'…','TOOLRTF':'$T/installation','ZEKPROG_PATH':'$T/installation/"
        "zekprog'},…'settingsFiles':[{'file':'$T/.setting.ini','level':'project'},{'file':'$T/"
        "team.ini',"
        "'level':'group'},{…'level':'system'}]}",
        "corvekit: warning: group settings file $T/team.ini does not exist, the group level reads "
        "as empty\n");
    row("doctor", 0,
        "ok      install root       $T/installation\n…\nok      version file       $T/installation/"
        "data/zeksys.ini: 2026.2.1.118, groups: Solvane, version\n…\nwarning tool precision     "
        "/opt/precision, setting PRECISION_PATH at system level, does not exist\n               "
        "            -> correct PRECISION_PATH in $T/installation/data/.setting.ini, or install "
        "the "
        "tool there\n…\nok      simulator          QuestaSim (SIMULATOR_TYPE \"QuestaSim\"), "
        "$T/installation/questasim/win64\nok      help index         $T/installation/docs/webhelp/"
        "eng/helpindex.xml\nerrors: 0, warnings: 3\n");
    row("TOOLRTF=$T/bare doctor", 1,
        "…warning binary folder      $T/bare/bin/nt64 does not exist\n…warning tool esdk          "
        "not found, ESDK_PATH is set at no level or empty\n                           -> set "
        "ESDK_PATH if the tool is installed\nwarning simulator          SIMULATOR_TYPE at the "
        "system level is \"Questa\", no known type; QuestaSim is assumed\n…error   help index      "
        "   $T/bare/docs/webhelp/eng/helpindex.xml:2:5: Premature end of document.\n…"
        "errors: 1, warnings: 10\n");
    row("TOOLRTF=$T/nowhere doctor --project project/ --json", 1,
        "{'checks':[{'advice':'set TOOLRTF to the folder of the installation','detail':'$T/nowhere "
        "does not exist','name':'install root','status':'error'},{…'name':'data folder','status':"
        "'error'},…{…'name':'version file','status':'error'},{'advice':null,'detail':'$T/project/"
        ".setting.ini reads','name':'project settings','status':'ok'},…],'errors':3,'warnings':…}");
    row("profile summary trace-a.json", 0,
        "task     count      total ms       self ms    longest ms         at ms\n"
        "Place        1         0.500         0.500         0.500         0.500\n"
        "Load         1         1.200         0.400         1.200         0.000\n"
        "Parse        2         0.400         0.400         0.300         0.100\n"
        "trace-a.json: the last event was cut short and is left out\n");
    row("profile summary --json trace-a.json trace-b.json", 0,
        "{'cutShort':['trace-a.json'],'runs':5,'tasks':[{'count':1,'longestAtUs':500,'longestUs':"
        "500,'name':'Place','selfUs':500,'totalUs':500},{…'name':'Load','selfUs':400,…},{…'name':"
        "'Parse'…},{'count':1,'longestAtUs':2100,'longestUs':50,'name':'Map','selfUs':50,…}],…}");
    row("profile summary --json trace-none.json", 1,
        "{'cutShort':[],'runs':0,'tasks':[],'traces':['trace-none.json']}");
    failure("profile summary trace-none.json", 1, "no task runs in the traces");
    row("profile merge trace-a.json trace-b.json -o m.json", 0,
        "m.json: 7 events of 2 traces\n== "
        "m.json\n[\n{\"name\":\"Parse\",…,\"args\":{\"level\":0}},\n"
        "{\"ph\":\"M\"},\n{\"name\":\"Map\",\"ph\":\"X\",\"ts\":3000,\"dur\":50,\"args\":{}}\n]\n");
    failure("profile merge trace-a.json names -o m.json", 3,
            "names: not a trace: a JSON array of events must begin it");
    failure("profile merge trace-a.json", 2, "merge: missing -o FILE; see --help");
    failure("profile merge trace-a.json -o /proc/m.json", 4, "/proc/m.json: cannot write");
    failure("$F CORVEKIT_FAIL_RENAME=trace-a.json profile merge trace-a.json -o trace-a.json", 4,
            "trace-a.json: cannot write");
    failure("profile summary trace-bad.json", 3, "trace-bad.json: byte 2: a malformed trace event");
    failure("profile summary trace-level.json", 3,
            "trace-level.json: byte 1: a malformed trace event");
    failure("profile summary trace-limit.json", 3,
            "trace-limit.json: byte 31: a malformed trace event");
    failure("profile summary trace-early.json", 3,
            "trace-early.json: byte 1: a malformed trace event");
    failure("profile summary trace-huge.json", 3,
            "trace-huge.json: byte 1: an event longer than 1 MiB");
    failure("profile summary project", 3, "project: is a directory");
    failure("profile summary", 2, "missing argument; see --help");
    failure("profile sum", 2, "profile: unknown action 'sum'");
    // The tool's own timeline.
    row("ENABLE_GUI_PROFILER=1 GUI_PROFILER_TRACE=t.json profile summary trace-b.json", 0,
        "task…\nMap …\n== t.….json\n[\n{\"name\":\"read traces\",\"ph\":\"X\",…\"name\":\"profile\""
        ",\"ph\":\"X\",…\n]\n",
        "1009993: \ncorvekit profile\n…");
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
    failure("--root", 2, "--root needs a directory");
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
    failure("helpindex --check b.xml", 3, "b.xml:3:14: Expected character data.");
    row("helpindex --check b.xml --json", 3,
        "{'column':14,'error':'Expected character data.','file':'b.xml','line':3,'valid':false}");
    row("helpindex --check i", 0, "i: a valid help index\n");
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
    QStringList words =
        QProcess::splitCommand(arguments.replace("$T", dir.path())
                                   .replace("$F", "LD_PRELOAD=" CORVEKIT_FAILING_CALLS
                                                  " ASAN_OPTIONS=verify_asan_link_order=0"));
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

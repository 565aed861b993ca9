#include "childprocess.h"
#include "sampleinstallation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

// `corvekit version`, `corvekit tools` and `corvekit filter` run as a program against a
// throw-away installation.

namespace {

ChildResult tool(const SampleInstallation &installation, const QStringList &arguments)
{
    return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), arguments, installation.environment());
}

QJsonObject json(const ChildResult &result)
{
    return QJsonDocument::fromJson(result.standardOutput).object();
}

} // namespace

class TestToolInstallation : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void version_data();
    void version();
    void versionJson();
    void versionWithoutFile();
    void tools();
    void toolsDefaults();
    void filter_data();
    void filter();

private:
    std::unique_ptr<SampleInstallation> m_installation;
};

void TestToolInstallation::init()
{
    m_installation = std::make_unique<SampleInstallation>();
    QVERIFY(m_installation->isValid());
    QVERIFY(m_installation->setVersion("[version]\nMajorVersion=2026\nMinorVersion=2.1\n"
                                       "BuildNumber=118\nPatchNumber=SP1,HF2\n"
                                       "ProductSuffix=Beta\n"
                                       "[Solvane]\nversion\\MajorVersion=4\n"
                                       "version\\MinorVersion=3.0\nversion\\BuildNumber=77\n"));
    QVERIFY(m_installation->setSystem("[General]\nSIMULATOR_TYPE=QuestaSim\n"
                                      "PRECISION_PATH=/opt/precision\nSYNPLIFY_USEPRO=false\n"
                                      "[File_Extension]\nvhdl=vhd, vhdl\nnetlist=edf\n"));
    QVERIFY(m_installation->setUser("[General]\nACTIVEHDL_PATH=/home/me/ahdl\n"));
    QVERIFY(m_installation->setProject("[General]\nPRECISION_PATH=\n"
                                       "[File_Extension]\nnetlist=vqm, edf\n"));
    QVERIFY(m_installation->makeToolFolder(QStringLiteral("questasim/win64")));
    QVERIFY(m_installation->makeToolFolder(QStringLiteral("precision")));
    QVERIFY(m_installation->makeToolFolder(QStringLiteral("tptools/synplify/windows")));
}

void TestToolInstallation::version_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("version");

    QTest::newRow("default") << QStringList() << 0 << "2026.2.1.118";
    QTest::newRow("major") << QStringList{"--pattern", "major"} << 0 << "2026";
    QTest::newRow("major-minor") << QStringList{"--pattern", "major-minor"} << 0 << "2026.2";
    QTest::newRow("major-minor-all")
        << QStringList{"--pattern", "major-minor-all"} << 0 << "2026.2.1";
    QTest::newRow("build") << QStringList{"--pattern", "build"} << 0 << "118";
    QTest::newRow("group") << QStringList{"--group", "Solvane", "--pattern", "major-minor"} << 0
                           << "4.3";
    QTest::newRow("group the file lacks") << QStringList{"--group", "Other"} << 0 << "2026.2.1.118";
    QTest::newRow("unknown pattern") << QStringList{"--pattern", "minor"} << 2 << "";
    QTest::newRow("positional argument") << QStringList{"extra"} << 2 << "";
}

void TestToolInstallation::version()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, version);

    const ChildResult result = tool(*m_installation, QStringList{"version"} + arguments);
    QCOMPARE(result.exitCode, exitCode);
    if (exitCode != 0) {
        QCOMPARE(result.standardOutput, QByteArray());
        QCOMPARE(result.errorLines().size(), 1);
        return;
    }
    const QStringList lines = result.outputLines();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0), QStringLiteral("version:       ") + version);
    QCOMPARE(lines.at(1), QStringLiteral("patch:         SP1,HF2"));
    QCOMPARE(lines.at(2), QStringLiteral("suffix:        Beta"));
    QVERIFY(lines.at(3).startsWith(QStringLiteral("library built: ")));
    QCOMPARE(result.standardError, QByteArray());
}

void TestToolInstallation::versionJson()
{
    const ChildResult result = tool(*m_installation, {"version", "--json", "--group", "solvane"});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject object = json(result);
    // The group test ignores case; the keys are then read below "solvane", which holds none.
    QCOMPARE(object.value(QStringLiteral("version")).toString(), QStringLiteral(".."));
    QCOMPARE(object.value(QStringLiteral("group")).toString(), QStringLiteral("solvane"));
    QCOMPARE(object.value(QStringLiteral("pattern")).toString(), QStringLiteral("full"));
    QCOMPARE(object.value(QStringLiteral("patch")).toString(), QStringLiteral("SP1,HF2"));
    QCOMPARE(object.value(QStringLiteral("versionFile")).toString(), m_installation->versionFile());
    QVERIFY(QDate::fromString(object.value(QStringLiteral("buildDate")).toString(), Qt::ISODate)
                .isValid());
    QVERIFY(QTime::fromString(object.value(QStringLiteral("buildTime")).toString(), Qt::ISODate)
                .isValid());
}

void TestToolInstallation::versionWithoutFile()
{
    QVERIFY(QFile::remove(m_installation->versionFile()));
    const ChildResult result = tool(*m_installation, {"version"});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.standardOutput, QByteArray());
    QCOMPARE(
        result.errorLines(),
        QStringList{
            QStringLiteral("corvekit: %1: no version file").arg(m_installation->versionFile())});
}

void TestToolInstallation::tools()
{
    const ChildResult result =
        tool(*m_installation, {"tools", "--json", "--project", m_installation->project()});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject object = json(result);
    QMap<QString, QJsonObject> byName;
    for (const QJsonValue value : object.value(QStringLiteral("tools")).toArray())
        byName.insert(value.toObject().value(QStringLiteral("name")).toString(), value.toObject());
    QCOMPARE(byName.size(), 6);

    const QString root = m_installation->root();
    const auto check = [&byName](const char *name, const QString &directory, const char *source,
                                 const char *level) {
        const QJsonObject entry = byName.value(QLatin1String(name));
        QCOMPARE(entry.value(QStringLiteral("directory")).toString(), directory);
        QCOMPARE(entry.value(QStringLiteral("source")).toString(), QLatin1String(source));
        QCOMPARE(entry.value(QStringLiteral("level")).toString(), QLatin1String(level));
    };
    check("synplify", root + "/tptools/synplify/windows", "folder", "");
    // The project's empty value hides the system's and sends the locator to the folder.
    check("precision", root + "/precision", "folder", "");
    check("activehdl", "/home/me/ahdl", "setting", "user");
    check("modelsim", "/", "unknown", "");
    check("questasim", root + "/questasim/win64", "folder", "");
    check("esdk", "/", "unknown", "");

    const QJsonObject simulator = object.value(QStringLiteral("simulator")).toObject();
    QCOMPARE(simulator.value(QStringLiteral("name")).toString(), QStringLiteral("QuestaSim"));
    QCOMPARE(simulator.value(QStringLiteral("key")).toString(), QStringLiteral("QUESTASIM_PATH"));
    QCOMPARE(simulator.value(QStringLiteral("directory")).toString(),
             root + QStringLiteral("/questasim/win64"));
    const QJsonObject synplify = object.value(QStringLiteral("synplify")).toObject();
    QCOMPARE(synplify.value(QStringLiteral("useOEM")).toBool(), true);
    QCOMPARE(synplify.value(QStringLiteral("usePro")).toBool(), false);

    // The text form says the same, one tool a line.
    const ChildResult text =
        tool(*m_installation, {"tools", "--project", m_installation->project()});
    QCOMPARE(text.exitCode, 0);
    QVERIFY(text.outputLines().contains(QStringLiteral("activehdl  /home/me/ahdl (user setting)")));
    QVERIFY(text.outputLines().contains(QStringLiteral("esdk       / (unknown)")));
    QVERIFY(text.outputLines().contains(QStringLiteral("synplify edition: OEM yes, Pro no")));
}

void TestToolInstallation::toolsDefaults()
{
    const ChildResult result = tool(
        *m_installation, {"tools", "--json", "--defaults", "--project", m_installation->project()});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject object = json(result);
    QCOMPARE(object.value(QStringLiteral("defaults")).toBool(), true);
    for (const QJsonValue value : object.value(QStringLiteral("tools")).toArray()) {
        const QJsonObject entry = value.toObject();
        const QString name = entry.value(QStringLiteral("name")).toString();
        if (name == QLatin1String("precision")) {
            QCOMPARE(entry.value(QStringLiteral("directory")).toString(),
                     QStringLiteral("/opt/precision"));
            QCOMPARE(entry.value(QStringLiteral("level")).toString(), QStringLiteral("system"));
        } else if (name == QLatin1String("activehdl")) {
            // The user's value does not count.
            QCOMPARE(entry.value(QStringLiteral("directory")).toString(), QStringLiteral("/"));
            QCOMPARE(entry.value(QStringLiteral("source")).toString(), QStringLiteral("unknown"));
        }
    }
}

void TestToolInstallation::filter_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("output");

    QTest::newRow("system list") << QStringList{"vhdl"} << 0
                                 << QStringList{"extensions: vhd vhdl",
                                                "filter:     vhdl Files (*.vhd *.vhdl)"};
    QTest::newRow("project hides system")
        << QStringList{"netlist", "Netlists"} << 0
        << QStringList{"extensions: vqm edf", "filter:     Netlists (*.vqm *.edf)"};
    QTest::newRow("empty description")
        << QStringList{"vhdl", ""} << 0
        << QStringList{"extensions: vhd vhdl", "filter:     (*.vhd *.vhdl)"};
    QTest::newRow("unknown type") << QStringList{"bitstream"} << 1 << QStringList();
    QTest::newRow("no type") << QStringList() << 2 << QStringList();
}

void TestToolInstallation::filter()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, output);

    const ChildResult result = tool(
        *m_installation, QStringList{"filter", "--project", m_installation->project()} + arguments);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.outputLines(), output);
    QCOMPARE(result.errorLines().size(), exitCode == 0 ? 0 : 1);
}

QTEST_GUILESS_MAIN(TestToolInstallation)
#include "tst_tool_installation.moc"

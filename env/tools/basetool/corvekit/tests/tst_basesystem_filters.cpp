#include "childprocess.h"
#include "sampleinstallation.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QTest>

namespace {

// The extensions and the filter of the type in CORVEKIT_TEST_TYPE, with the description in
// CORVEKIT_TEST_DESCRIPTION, or a null description when that is unset.
int reportFilter()
{
    BaseSettings::setProjectPath(qEnvironmentVariable("CORVEKIT_TEST_PROJECT"));
    const QByteArray type = qgetenv("CORVEKIT_TEST_TYPE");
    const QByteArray description = qgetenv("CORVEKIT_TEST_DESCRIPTION");
    const bool hasDescription = qEnvironmentVariableIsSet("CORVEKIT_TEST_DESCRIPTION");
    const QList<QString> extensions = BaseSystem::getFileExtensions(type.constData());
    report(QStringLiteral("extensions"),
           QStringLiteral("%1:%2").arg(extensions.size()).arg(extensions.join(QLatin1Char('|'))));
    report(QStringLiteral("filter"),
           BaseSystem::getFileFilter(type.constData(),
                                     hasDescription ? description.constData() : nullptr));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("filter"), reportFilter}};
}

const QByteArray systemLevel = "[File_Extension]\n"
                               "vhdl=vhd, vhdl\n"
                               "verilog=v\n"
                               "constraints=\"*.sdc\", xdc\n"
                               "netlist=edf, edn, edif\n";

} // namespace

class TestBaseSystemFilters : public QObject
{
    Q_OBJECT

private slots:
    void filter_data();
    void filter();
};

void TestBaseSystemFilters::filter_data()
{
    QTest::addColumn<QByteArray>("project");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("description"); // a null array stands for a null pointer
    QTest::addColumn<QString>("extensions");
    QTest::addColumn<QString>("filter");

    QTest::newRow("list, no description")
        << QByteArray() << QByteArray("vhdl") << QByteArray() << "2:vhd|vhdl"
        << "vhdl Files (*.vhd *.vhdl)";
    QTest::newRow("one extension")
        << QByteArray() << QByteArray("verilog") << QByteArray("Verilog sources") << "1:v"
        << "Verilog sources (*.v)";
    QTest::newRow("unknown type") << QByteArray() << QByteArray("bitstream") << QByteArray() << "0:"
                                  << "bitstream Files ()";
    QTest::newRow("empty description")
        << QByteArray() << QByteArray("vhdl") << QByteArray("") << "2:vhd|vhdl"
        << "(*.vhd *.vhdl)";
    QTest::newRow("blanks around the description")
        << QByteArray() << QByteArray("verilog") << QByteArray("  Verilog  ") << "1:v"
        << "Verilog   (*.v)";
    QTest::newRow("pattern in the setting")
        << QByteArray() << QByteArray("constraints") << QByteArray() << "2:*.sdc|xdc"
        << "constraints Files (*.*.sdc *.xdc)";
    QTest::newRow("project list hides the system's")
        << QByteArray("[File_Extension]\nnetlist=vqm\n") << QByteArray("netlist") << QByteArray()
        << "1:vqm"
        << "netlist Files (*.vqm)";
    QTest::newRow("empty project value")
        << QByteArray("[File_Extension]\nvhdl=\n") << QByteArray("vhdl") << QByteArray() << "1:"
        << "vhdl Files (*.)";
}

void TestBaseSystemFilters::filter()
{
    QFETCH(QByteArray, project);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, description);
    QFETCH(QString, extensions);
    QFETCH(QString, filter);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setSystem(systemLevel));
    QVERIFY(installation.setProject(project));
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_TEST_TYPE"), QString::fromUtf8(type));
    if (!description.isNull())
        environment.insert(QStringLiteral("CORVEKIT_TEST_DESCRIPTION"),
                           QString::fromUtf8(description));

    const ChildResult child = runScenario(QStringLiteral("filter"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("extensions")), extensions);
    QCOMPARE(child.value(QStringLiteral("filter")), filter);
    QCOMPARE(child.standardError, QByteArray());
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSystemFilters, scenarios)
#include "tst_basesystem_filters.moc"

// `corvekit label`, run as the built program.
#include "childprocess.h"

#include <corvekit/commonlabelmapping.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

ChildResult runTool(const QStringList &arguments)
{
    const QTemporaryDir home;
    return runProgram(QStringLiteral(CORVEKIT_TOOL_PATH), arguments, cleanEnvironment(home.path()));
}

} // namespace

class TestToolLabel : public QObject
{
    Q_OBJECT

private slots:
    void lookup_data();
    void lookup();
    void list();
    void listAsJson();
};

void TestToolLabel::lookup_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("key") << QStringList{"label", "SHOW_IN"} << 0 << QStringLiteral("Show in\n");
    QTest::newRow("key in another case") << QStringList{"label", "display_pref"} << 0
                                         << QStringLiteral("Display User Preferences\n");
    QTest::newRow("json") << QStringList{"label", "Edit_UGroup", "--json"} << 0
                          << QStringLiteral("{\n    \"key\": \"Edit_UGroup\",\n"
                                            "    \"text\": \"Edit UGROUP\"\n}\n");
    QTest::newRow("prefix is unknown") << QStringList{"label", "SHOW"} << 1 << QString();
    QTest::newRow("empty key is unknown") << QStringList{"label", ""} << 1 << QString();
    QTest::newRow("missing key") << QStringList{"label"} << 2 << QString();
    QTest::newRow("two keys") << QStringList{"label", "SHOW_IN", "EDIT_UGROUP"} << 2 << QString();
    QTest::newRow("key and list") << QStringList{"label", "SHOW_IN", "--list"} << 2 << QString();
    QTest::newRow("unknown option") << QStringList{"label", "--bogus"} << 2 << QString();
}

void TestToolLabel::lookup()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    const ChildResult result = runTool(arguments);
    QVERIFY(!result.crashed);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(QString::fromUtf8(result.standardOutput), output);
    if (exitCode == 0) {
        QVERIFY(result.standardError.isEmpty());
    } else {
        // One line of error, named after the tool.
        QCOMPARE(result.errorLines().size(), 1);
        QVERIFY(result.errorLines().first().startsWith(QLatin1String("corvekit: ")));
    }
}

void TestToolLabel::list()
{
    const ChildResult result = runTool({QStringLiteral("label"), QStringLiteral("--list")});
    QCOMPARE(result.exitCode, 0);
    const QStringList lines = result.outputLines();
    QCOMPARE(lines.size(), 16);
    QCOMPARE(lines.first(), QStringLiteral("CREATE_REGION\tCreate New REGION"));
    QCOMPARE(lines.last(), QStringLiteral("DISPLAY_PREF\tDisplay User Preferences"));
    QSet<QString> keys;
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('\t'));
        QCOMPARE(fields.size(), 2);
        // Each listed key gives its text through the library too.
        QCOMPARE(commonLabelMapping(fields.at(0).toUtf8().constData()), fields.at(1));
        keys.insert(fields.at(0));
    }
    QCOMPARE(keys.size(), 16);
}

void TestToolLabel::listAsJson()
{
    const ChildResult plain = runTool({QStringLiteral("label"), QStringLiteral("--list")});
    const ChildResult json =
        runTool({QStringLiteral("label"), QStringLiteral("--list"), QStringLiteral("--json")});
    QCOMPARE(json.exitCode, 0);
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json.standardOutput, &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QStringList lines;
    for (const QJsonValue label : document.object().value(QStringLiteral("labels")).toArray()) {
        lines << label[QStringLiteral("key")].toString() + QLatin1Char('\t') +
                     label[QStringLiteral("text")].toString();
    }
    QCOMPARE(lines, plain.outputLines());
}

QTEST_GUILESS_MAIN(TestToolLabel)
#include "tst_tool_label.moc"

// The tool name registry. The table is process-wide and never shrinks, so every case runs in a
// child of its own, which enters its pairs, asks its questions and reports the answers as JSON.
#include "childprocess.h"

#include <corvekit/basguitoolnameinfo.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibrary>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char *const operationsVariable = "CORVEKIT_REGISTRY_OPERATIONS";

// JSON null stands for a null QString, so that null and empty texts can be told apart.
QString textOf(const QJsonValue &value)
{
    if (value.isNull())
        return QString();
    const QString text = value.toString();
    return text.isNull() ? QStringLiteral("") : text;
}

QJsonValue jsonOf(const QString &text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonArray pairs(std::initializer_list<std::pair<QJsonValue, QJsonValue>> list)
{
    QJsonArray result;
    for (const auto &[id, name] : list)
        result.append(QJsonArray{id, name});
    return result;
}

QJsonObject operations()
{
    return QJsonDocument::fromJson(qgetenv(operationsVariable)).object();
}

void addAll(const QJsonArray &adds)
{
    for (const QJsonValue pair : adds)
        BasGUIToolNameInfo::addTool(textOf(pair[0]), textOf(pair[1]));
}

QString compact(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

// Every record that reaches the message handler while a scenario runs.
QJsonArray &records()
{
    static QJsonArray all;
    return all;
}

// Entered by the handler at its first record.
QJsonArray &pendingAdds()
{
    static QJsonArray adds;
    return adds;
}

void recordMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    records().append(QJsonObject{
        {QStringLiteral("type"), int(type)},
        {QStringLiteral("category"), QString::fromLatin1(context.category)},
        {QStringLiteral("file"), QString::fromUtf8(context.file)},
        {QStringLiteral("line"), context.line},
        {QStringLiteral("function"), QString::fromUtf8(context.function)},
        {QStringLiteral("message"), message},
    });
    if (!pendingAdds().isEmpty()) {
        const QJsonArray adds = pendingAdds();
        pendingAdds() = QJsonArray();
        addAll(adds);
    }
}

int scenarioQueries()
{
    const QJsonObject ops = operations();
    addAll(ops.value(QStringLiteral("add")).toArray());
    qInstallMessageHandler(recordMessage);
    QJsonArray answers;
    for (const QJsonValue id : ops.value(QStringLiteral("displayNameOf")).toArray())
        answers.append(jsonOf(BasGUIToolNameInfo::getToolDisplayName(textOf(id))));
    for (const QJsonValue name : ops.value(QStringLiteral("idOf")).toArray())
        answers.append(jsonOf(BasGUIToolNameInfo::getToolID(textOf(name))));
    qInstallMessageHandler(nullptr);
    report(QStringLiteral("answers"), compact(answers));
    report(QStringLiteral("logged"), QString::number(records().size()));
    return 0;
}

int scenarioDump()
{
    const QJsonObject ops = operations();
    addAll(ops.value(QStringLiteral("add")).toArray());
    pendingAdds() = ops.value(QStringLiteral("addDuringDump")).toArray();
    qInstallMessageHandler(recordMessage);
    BasGUIToolNameInfo::dumpInfo();
    qInstallMessageHandler(nullptr);
    report(QStringLiteral("records"), compact(records()));
    return 0;
}

// The map is exported data: another module reaches the very object that addTool fills.
int scenarioExportedMap()
{
    QLibrary library(QStringLiteral(CORVEKIT_LIBRARY_PATH));
    auto *map = reinterpret_cast<QMap<QString, QString> *>(
        library.resolve("_ZN18BasGUIToolNameInfo19m_id2DisplayNameMapE"));
    if (!map)
        return 3;
    report(QStringLiteral("sizeAtStart"), QString::number(map->size()));
    BasGUIToolNameInfo::addTool(QStringLiteral("pinEditor"), QStringLiteral("Pin Editor"));
    report(QStringLiteral("entry"), map->value(QStringLiteral("pinEditor")));
    return 0;
}

ScenarioTable scenarios()
{
    return {
        {QStringLiteral("queries"), scenarioQueries},
        {QStringLiteral("dump"), scenarioDump},
        {QStringLiteral("exportedMap"), scenarioExportedMap},
    };
}

ChildResult run(const QString &scenario, const QJsonObject &ops)
{
    QTemporaryDir home;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.insert(QString::fromLatin1(operationsVariable),
                       QString::fromUtf8(QJsonDocument(ops).toJson(QJsonDocument::Compact)));
    return runScenario(scenario, environment);
}

} // namespace

class TestBasGUIToolNameInfo : public QObject
{
    Q_OBJECT

private slots:
    void queries_data();
    void queries();
    void dumpInfo_data();
    void dumpInfo();
    void dumpInfoSeesTheTableAsItWas();
    void mapIsExported();
};

void TestBasGUIToolNameInfo::queries_data()
{
    QTest::addColumn<QJsonArray>("adds");
    QTest::addColumn<QJsonArray>("displayNameOf");
    QTest::addColumn<QJsonArray>("idOf");
    QTest::addColumn<QJsonArray>("expected"); // answers to displayNameOf, then to idOf

    const QJsonValue null(QJsonValue::Null);
    QTest::newRow("empty table") << QJsonArray() << QJsonArray{"map", null}
                                 << QJsonArray{"Map", null} << QJsonArray{null, null, null, null};
    QTest::newRow("both directions")
        << pairs({{"map", "Map View"}, {"pins", "Pin Editor"}}) << QJsonArray{"pins", "map"}
        << QJsonArray{"Map View", "Pin Editor"}
        << QJsonArray{"Pin Editor", "Map View", "map", "pins"};
    QTest::newRow("a miss gives null, not the argument")
        << pairs({{"map", "Map View"}}) << QJsonArray{"Map View", "mapx"}
        << QJsonArray{"map", "Map"} << QJsonArray{null, null, null, null};
    QTest::newRow("last wins") << pairs({{"map", "Map View"}, {"map", "Map Editor"}})
                               << QJsonArray{"map"} << QJsonArray{"Map View", "Map Editor"}
                               << QJsonArray{"Map Editor", null, "map"};
    QTest::newRow("smallest id of one display name")
        << pairs({{"zeta", "Same"}, {"mid", "Same"}, {"alpha", "Same"}, {"beta", "Other"}})
        << QJsonArray() << QJsonArray{"Same", "Other"} << QJsonArray{"alpha", "beta"};
    QTest::newRow("upper case sorts first")
        << pairs({{"tool", "Same"}, {"Tool", "Same"}, {"_tool", "Same"}}) << QJsonArray()
        << QJsonArray{"Same"} << QJsonArray{"Tool"};
    QTest::newRow("case matters in both directions")
        << pairs({{"Map", "Map View"}}) << QJsonArray{"map", "MAP", "Map"}
        << QJsonArray{"map view", "Map View"} << QJsonArray{null, null, "Map View", null, "Map"};
    QTest::newRow("null id is the empty id") << pairs({{null, "Unnamed"}}) << QJsonArray{"", null}
                                             << QJsonArray() << QJsonArray{"Unnamed", "Unnamed"};
    QTest::newRow("null display name is the empty one")
        << pairs({{"blank", null}}) << QJsonArray() << QJsonArray{"", null}
        << QJsonArray{"blank", "blank"};
    QTest::newRow("empty texts are stored")
        << pairs({{"", ""}}) << QJsonArray{""} << QJsonArray{""} << QJsonArray{"", ""};
    QTest::newRow("non-ASCII") << pairs({{"\u00f6lview", "\u00d6l Ansicht"}})
                               << QJsonArray{"\u00f6lview", "\u00d6lview"}
                               << QJsonArray{"\u00d6l Ansicht", "\u00f6l ansicht"}
                               << QJsonArray{"\u00d6l Ansicht", null, "\u00f6lview", null};
}

void TestBasGUIToolNameInfo::queries()
{
    QFETCH(QJsonArray, adds);
    QFETCH(QJsonArray, displayNameOf);
    QFETCH(QJsonArray, idOf);
    QFETCH(QJsonArray, expected);
    const ChildResult child =
        run(QStringLiteral("queries"), {{QStringLiteral("add"), adds},
                                        {QStringLiteral("displayNameOf"), displayNameOf},
                                        {QStringLiteral("idOf"), idOf}});
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("answers")), compact(expected));
    // Nothing is logged for a hit or a miss.
    QCOMPARE(child.value(QStringLiteral("logged")), QStringLiteral("0"));
}

void TestBasGUIToolNameInfo::dumpInfo_data()
{
    QTest::addColumn<QJsonArray>("adds");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("empty table") << QJsonArray() << QStringList();
    QTest::newRow("key order, whatever the order of adding")
        << pairs({{"pins", "Pin Editor"}, {"Map", "Map View"}, {"map", "Lower Map"}})
        << QStringList{"Map = Map View", "map = Lower Map", "pins = Pin Editor"};
    QTest::newRow("last name of an id")
        << pairs({{"a", "First"}, {"a", "Second"}}) << QStringList{"a = Second"};
    QTest::newRow("format characters are data")
        << pairs({{"50%s", "%d %n"}}) << QStringList{"50%s = %d %n"};
    QTest::newRow("empty texts") << pairs({{"", ""}}) << QStringList{" = "};
    QTest::newRow("non-ASCII") << pairs({{"\u00f6l", "\u00c4rger \u2013 Ansicht"}})
                               << QStringList{
                                      QStringLiteral("\u00f6l = \u00c4rger \u2013 Ansicht")};
}

void TestBasGUIToolNameInfo::dumpInfo()
{
    QFETCH(QJsonArray, adds);
    QFETCH(QStringList, messages);
    const ChildResult child = run(QStringLiteral("dump"), {{QStringLiteral("add"), adds}});
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    const QJsonArray records =
        QJsonDocument::fromJson(child.value(QStringLiteral("records")).toUtf8()).array();

    QStringList seen;
    for (const QJsonValue record : records) {
        seen << record[QStringLiteral("message")].toString();
        // A debug record of the default category that carries where it was written.
        QCOMPARE(record[QStringLiteral("type")].toInt(), int(QtDebugMsg));
        QCOMPARE(record[QStringLiteral("category")].toString(), QStringLiteral("default"));
        const QString file = record[QStringLiteral("file")].toString();
        QVERIFY2(file.endsWith(QLatin1String("s/corvekit/basguitoolnameinfo.cpp")),
                 qPrintable(file));
        QVERIFY(record[QStringLiteral("function")].toString().contains(
            QLatin1String("BasGUIToolNameInfo::dumpInfo")));
        QVERIFY(record[QStringLiteral("line")].toInt() > 0);
        QCOMPARE(record[QStringLiteral("line")], records.first()[QStringLiteral("line")]);
    }
    QCOMPARE(seen, messages);
}

void TestBasGUIToolNameInfo::dumpInfoSeesTheTableAsItWas()
{
    // The handler enters tools while the walk runs; the walk still shows the table it began on.
    const ChildResult child =
        run(QStringLiteral("dump"),
            {{QStringLiteral("add"), pairs({{"a", "A"}, {"c", "C"}})},
             {QStringLiteral("addDuringDump"), pairs({{"b", "B"}, {"z", "Z"}, {"c", "changed"}})}});
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QStringList seen;
    for (const QJsonValue record :
         QJsonDocument::fromJson(child.value(QStringLiteral("records")).toUtf8()).array())
        seen << record[QStringLiteral("message")].toString();
    QCOMPARE(seen, (QStringList{"a = A", "c = C"}));
}

void TestBasGUIToolNameInfo::mapIsExported()
{
    const ChildResult child = run(QStringLiteral("exportedMap"), {});
    QVERIFY2(child.exitCode != 3, "m_id2DisplayNameMap is not exported");
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("sizeAtStart")), QStringLiteral("0"));
    QCOMPARE(child.value(QStringLiteral("entry")), QStringLiteral("Pin Editor"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBasGUIToolNameInfo, scenarios)
#include "tst_basguitoolnameinfo.moc"

// The tool name registry and the label table. The registry is process-wide; it starts empty in
// this program, and only the registry test fills it.
#include <corvekit/corvekit.h>

#include <QTest>
#include <QTranslator>

static QStringList dumped;

// Keeps each record with its level and function. It enters a tool that sorts between the first
// two while the dump is under way: the dump must show the table as it was when it began.
static void keepRecord(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    BasGUIToolNameInfo::addTool(QStringLiteral("b"), QStringLiteral("added during the dump"));
    dumped << QStringLiteral("%1 %2: %3").arg(type).arg(context.function, message);
}

// Translates only what the label table should ask for: context QObject, no disambiguation, no
// count. A label that comes through it is marked.
struct Marker : QTranslator
{
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *disambiguation,
                      int n) const override
    {
        const bool asked = qstrcmp(context, "QObject") == 0 && !disambiguation && n == -1;
        return asked ? QStringLiteral("<%1>").arg(QString::fromUtf8(text)) : QString();
    }
};

class TestLabels : public QObject
{
    Q_OBJECT

private slots:
    void registry();
    void labels_data();
    void labels();
};

void TestLabels::registry()
{
    const QtMessageHandler testlib = qInstallMessageHandler(keepRecord);
    const char *const adds[][2] = {{"zeta", "Shared"}, {"last", "First"},  {"tool", "Shared"},
                                   {"last", "Second"}, {"Tool", "Shared"}, {nullptr, "50%s"}};
    for (const auto &[id, name] : adds)
        BasGUIToolNameInfo::addTool(id, name);
    BasGUIToolNameInfo::dumpInfo();
    qInstallMessageHandler(testlib);
    const QString at = QStringLiteral("0 static void BasGUIToolNameInfo::dumpInfo(): ");
    QCOMPARE(dumped, (QStringList{at + " = 50%s", at + "Tool = Shared", at + "last = Second",
                                  at + "tool = Shared", at + "zeta = Shared"}));
    QCOMPARE(BasGUIToolNameInfo::getToolDisplayName("last"), "Second");
    QVERIFY(BasGUIToolNameInfo::getToolDisplayName("LAST").isNull());
    QCOMPARE(BasGUIToolNameInfo::getToolID("Shared"), "Tool"); // smallest id, upper case first
    QVERIFY(BasGUIToolNameInfo::getToolID("First").isNull());
}

void TestLabels::labels_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("text"); // "(null)" for a null QString
    QTest::newRow("any case") << QByteArray("edit_clkRegion") << "<Edit CLOCK REGION>";
    QTest::newRow("last row") << QByteArray("display_pref") << "<Display User Preferences>";
    QTest::newRow("prefix of a key") << QByteArray("SHOW") << "(null)";
    QTest::newRow("extension of a key") << QByteArray("SHOW_IN_X") << "(null)";
}

void TestLabels::labels()
{
    QFETCH(QByteArray, key);
    Marker marker;
    QCoreApplication::installTranslator(&marker);
    const QString found = commonLabelMapping(key.constData());
    QCoreApplication::removeTranslator(&marker);
    QTEST(found.isNull() ? QStringLiteral("(null)") : found, "text");
}

QTEST_GUILESS_MAIN(TestLabels)
#include "tst_labels.moc"

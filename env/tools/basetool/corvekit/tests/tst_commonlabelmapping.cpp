// The label table: whole keys without regard to ASCII case, and texts through QObject::tr.
#include "childprocess.h"

#include <corvekit/commonlabelmapping.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

namespace {

// Translates one label into German and remembers how it was asked.
class LabelTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *sourceText, const char *disambiguation,
                      int n) const override
    {
        if (qstrcmp(sourceText, "Show in") == 0) {
            report(QStringLiteral("context"), QString::fromLatin1(context));
            report(QStringLiteral("disambiguation"),
                   disambiguation ? QString::fromLatin1(disambiguation) : QStringLiteral("(null)"));
            report(QStringLiteral("n"), QString::number(n));
        }
        if (qstrcmp(context, "QObject") == 0 && qstrcmp(sourceText, "Show in") == 0)
            return QStringLiteral("Anzeigen in");
        return QString();
    }
    bool isEmpty() const override { return false; }
};

// Installing a translator is process-wide, so it happens in a child.
int scenarioTranslated()
{
    LabelTranslator translator;
    QCoreApplication::installTranslator(&translator);
    report(QStringLiteral("translated"), commonLabelMapping("show_in"));
    report(QStringLiteral("untranslated"), commonLabelMapping("EDIT_UGROUP"));
    QCoreApplication::removeTranslator(&translator);
    report(QStringLiteral("removed"), commonLabelMapping("SHOW_IN"));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("translated"), scenarioTranslated}};
}

} // namespace

class TestCommonLabelMapping : public QObject
{
    Q_OBJECT

private slots:
    void mapping_data();
    void mapping();
    void installedTranslationIsUsed();
};

void TestCommonLabelMapping::mapping_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<bool>("nullKey");
    QTest::addColumn<QString>("expected"); // null for no match

    const QString none;
    const struct
    {
        const char *key;
        const char *text;
    } table[] = {
        {"CREATE_REGION", "Create New REGION"},
        {"CREATE_CLKREGION", "Create New CLOCK REGION"},
        {"CREATE_UGROUP", "Create New UGROUP"},
        {"EDIT_REGION", "Edit REGION"},
        {"EDIT_CLKREGION", "Edit CLOCK REGION"},
        {"EDIT_UGROUP", "Edit UGROUP"},
        {"REMOVE_REGION", "Remove REGION"},
        {"REMOVE_CLKREGION", "Remove CLOCK REGION"},
        {"REMOVE_UGROUP", "Remove UGROUP"},
        {"PROHIBIT_SITE", "PROHIBIT Site"},
        {"PROHIBIT_PIN", "PROHIBIT Pin"},
        {"LOCATE_SITE", "Set LOCATE Preference"},
        {"SHOW_IN", "Show in"},
        {"LOGICBLKVIEW", "Logic Block View"},
        {"DISPLAY_NCD", "Display Placement"},
        {"DISPLAY_PREF", "Display User Preferences"},
    };
    for (const auto &row : table) {
        QTest::addRow("%s", row.key)
            << QByteArray(row.key) << false << QString::fromLatin1(row.text);
    }

    QTest::newRow("lower case") << QByteArray("display_pref") << false
                                << QStringLiteral("Display User Preferences");
    QTest::newRow("mixed case") << QByteArray("Show_In") << false << QStringLiteral("Show in");
    QTest::newRow("lower case of a longer key")
        << QByteArray("remove_clkregion") << false << QStringLiteral("Remove CLOCK REGION");
    QTest::newRow("prefix of a key") << QByteArray("SHOW") << false << none;
    QTest::newRow("extension of a key") << QByteArray("SHOW_IN_X") << false << none;
    QTest::newRow("key cut short") << QByteArray("CREATE_REGIO") << false << none;
    QTest::newRow("leading blank") << QByteArray(" SHOW_IN") << false << none;
    QTest::newRow("trailing blank") << QByteArray("SHOW_IN ") << false << none;
    QTest::newRow("display text as key") << QByteArray("Show in") << false << none;
    QTest::newRow("empty") << QByteArray("") << false << none;
    QTest::newRow("null") << QByteArray() << true << none;
    // Only ASCII letters fold: a long s or a dotless i is no "S" or "I".
    QTest::newRow("long s") << QByteArray("\xc5\xbfHOW_IN") << false << none;
    QTest::newRow("dotless i") << QByteArray("SHOW_\xc4\xb1N") << false << none;
}

void TestCommonLabelMapping::mapping()
{
    QFETCH(QByteArray, key);
    QFETCH(bool, nullKey);
    QFETCH(QString, expected);
    const QString text = commonLabelMapping(nullKey ? nullptr : key.constData());
    QCOMPARE(text, expected);
    QCOMPARE(text.isNull(), expected.isNull());
}

void TestCommonLabelMapping::installedTranslationIsUsed()
{
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const ChildResult child =
        runScenario(QStringLiteral("translated"), cleanEnvironment(home.path()));
    QVERIFY2(!child.crashed && child.exitCode == 0, child.standardError.constData());
    QCOMPARE(child.value(QStringLiteral("translated")), QStringLiteral("Anzeigen in"));
    QCOMPARE(child.value(QStringLiteral("context")), QStringLiteral("QObject"));
    QCOMPARE(child.value(QStringLiteral("disambiguation")), QStringLiteral("(null)"));
    QCOMPARE(child.value(QStringLiteral("n")), QStringLiteral("-1"));
    QCOMPARE(child.value(QStringLiteral("untranslated")), QStringLiteral("Edit UGROUP"));
    QCOMPARE(child.value(QStringLiteral("removed")), QStringLiteral("Show in"));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestCommonLabelMapping, scenarios)
#include "tst_commonlabelmapping.moc"

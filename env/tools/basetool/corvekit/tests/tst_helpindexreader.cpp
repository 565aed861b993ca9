#include <corvekit/helpindexreader.h>

#include "helpindexreader/helpindexreader_p.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <QTranslator>

#include <memory>

// Reaches the stored entry and the private reading operations.
class HelpIndexReaderProbe
{
public:
    enum Match
    {
        None = HelpIndexReader::MatchNone,
        ToolName = HelpIndexReader::MatchToolName,
        ToolHelp = HelpIndexReader::MatchToolHelp,
        DialogHelp = HelpIndexReader::MatchDialogHelp,
    };

    static void pass(HelpIndexReader &reader, Match match, const char *tool, const char *dialog)
    {
        reader.clean();
        reader.read(HelpIndexReader::MatchType(match), tool, dialog);
    }
    static bool found(const HelpIndexReader &reader) { return reader.m_found; }
    static int matchType(const HelpIndexReader &reader) { return reader.m_matchType; }
    static QString toolName(const HelpIndexReader &reader) { return reader.m_toolName; }
    static QString dialogName(const HelpIndexReader &reader) { return reader.m_dialogName; }
    static QString helpUrl(const HelpIndexReader &reader) { return reader.m_helpUrl; }
    static QString dialogText(const HelpIndexReader &reader) { return reader.m_dialogText; }

    // Every map entry as "kind:name=value", sorted, to compare a whole entry at once.
    static QStringList maps(const HelpIndexReader &reader)
    {
        QStringList entries;
        const std::pair<const char *, const QMap<QString, QString> *> all[] = {
            {"url", &reader.m_urlMap},
            {"whatsthis", &reader.m_whatsThisMap},
            {"tooltip", &reader.m_toolTipMap},
            {"description", &reader.m_descriptionMap}};
        for (const auto &[kind, map] : all) {
            for (auto it = map->cbegin(); it != map->cend(); ++it)
                entries << QStringLiteral("%1:%2=%3").arg(QLatin1String(kind), it.key(), *it);
        }
        return entries;
    }
};

using Probe = HelpIndexReaderProbe;

namespace {

const char notAnIndex[] = "The file is not an Tivoran Help Index version 1.0 file.";

// A reader on an in-memory file whose bytes a test may change between two queries.
struct Index
{
    explicit Index(const QByteArray &xml)
        : bytes(xml)
        , buffer(&bytes)
    {
        buffer.open(QIODevice::ReadOnly);
        reader.setDevice(&buffer);
    }
    // Same size keeps QBuffer's position valid; the content is what a new pass would see.
    void replace(const QByteArray &xml) { bytes = xml; }

    QByteArray bytes;
    QBuffer buffer;
    HelpIndexReader reader;
};

QByteArray index(const QByteArray &body, const QByteArray &dtd = QByteArray())
{
    return "<?xml version=\"1.0\"?>\n" + dtd + "<helpIndex version=\"1.0\">" + body +
           "</helpIndex>\n";
}

// Table cells: "~" stands for a null pointer or a null QString.
QByteArray cell(const QString &text)
{
    return text.toUtf8();
}
const char *argument(const QByteArray &text)
{
    return text == "~" ? nullptr : text.constData();
}
QString shown(const QString &result)
{
    return result.isNull() ? QStringLiteral("~") : result;
}

QString ask(HelpIndexReader &reader, const QString &query, const QByteArray &tool,
            const QByteArray &second, const QByteArray &item)
{
    const char *t = argument(tool);
    const char *s = argument(second);
    const char *i = argument(item);
    if (query == QLatin1String("tool"))
        return reader.getToolHelp(t);
    if (query == QLatin1String("view"))
        return reader.getViewHelp(t, s);
    if (query == QLatin1String("dlg"))
        return reader.getDlgHelp(t, s);
    if (query == QLatin1String("dlgtext"))
        return reader.getDlgText(t, s);
    if (query == QLatin1String("whatsthis"))
        return reader.getWhatsThisText(t, s, i);
    if (query == QLatin1String("tooltip"))
        return reader.getToolTipText(t, s, i);
    if (query == QLatin1String("description"))
        return reader.getDescription(t, s, i);
    if (query == QLatin1String("url"))
        return reader.getDescriptionUrl(t, s, i);
    if (query == QLatin1String("ismy"))
        return reader.isMyHelpIdx(t) ? QStringLiteral("true") : QStringLiteral("false");
    qFatal("unknown query %s", qPrintable(query));
}

// Where readElementText stops on the element that starts at \a offset of \a xml: the position
// the reader must report when it fails on an element whose text it does not keep.
std::pair<qint64, qint64> textFailurePosition(const QByteArray &xml, const QByteArray &startTag)
{
    const qsizetype at = xml.indexOf(startTag);
    QXmlStreamReader plain(xml);
    while (!plain.atEnd()) {
        plain.readNext();
        if (plain.isStartElement() && plain.characterOffset() == at + startTag.size()) {
            plain.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
            break;
        }
    }
    return {plain.lineNumber(), plain.columnNumber()};
}

// Translates the reader's own error text, and only in the context QObject.
class ContextTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char * = nullptr,
                      int = -1) const override
    {
        if (qstrcmp(context, "QObject") == 0 && qstrcmp(sourceText, notAnIndex) == 0)
            return QStringLiteral("Keine Hilfeindexdatei der Version 1.0.");
        return QString();
    }
};

} // namespace

class TestHelpIndexReader : public QObject
{
    Q_OBJECT

private slots:
    void selection_data();
    void selection();
    void prologIsPassedOver();
    void storedEntry_data();
    void storedEntry();
    void errorStates_data();
    void errorStates();
    void errorTextIsTranslated();
    void failureInsideSelectionLeavesPartialEntry();
    void brokenBehindSelection();
    void skippedTextFailsAtTheSamePlace_data();
    void skippedTextFailsAtTheSamePlace();
    void withoutDevice();
    void cacheHitLeavesDeviceAlone();
    void cacheMissReadsAgain();
    void itemMissMakesNoPass();
    void isMyHelpIdxWipesEntry();
    void otherDeviceKeepsEntry();
    void nullToolNameHits();
    void dumpBeforeAndAfterQueries();
    void deepNestingOnSmallStack();
    void entityExpansionBound();
    void entitiesOfEarlierDocuments_data();
    void entitiesOfEarlierDocuments();
    void brokenDtdLeavesNothingToRead();
    void longestReplacement_data();
    void longestReplacement();
    void countsEntityReferences_data();
    void countsEntityReferences();
};

// --- Selection and storing ---------------------------------------------------------------------

void TestHelpIndexReader::selection_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("tool");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QString>("expected");

    const QByteArray twoTools = R"(<tool name="T" href="first.htm"><tooltip name="a">one</tooltip>
        <dialog name="X"/></tool>
        <tool name="T" href="second.htm"><tooltip name="b">two</tooltip>
        <dialog name="D" href="d2.htm"><text>in second</text></dialog></tool>)";
    QTest::newRow("first tool wins")
        << twoTools << "tool" << cell("T") << cell("~") << cell("~") << "first.htm";
    QTest::newRow("second tool never read")
        << twoTools << "tooltip" << cell("T") << cell("b") << cell("~") << "~";
    QTest::newRow("dialog sought through every tool")
        << twoTools << "dlgtext" << cell("T") << cell("D") << cell("~") << "in second";
    QTest::newRow("dialog help is the dialog's href")
        << twoTools << "dlg" << cell("T") << cell("D") << cell("~") << "d2.htm";
    QTest::newRow("dialog only in a tool of another name")
        << QByteArray(R"(<tool name="U"><dialog name="D" href="d.htm"/></tool><tool name="T"/>)")
        << "dlg" << cell("T") << cell("D") << cell("~") << "~";

    const QByteArray levels = R"(<tool name="T" href="t.htm">
        <tooltip name="a">tool tip</tooltip>
        <dialog name="D" href="d.htm"><tooltip name="b">dialog tip</tooltip></dialog></tool>)";
    QTest::newRow("tool level does not see dialog items")
        << levels << "tooltip" << cell("T") << cell("b") << cell("~") << "~";
    QTest::newRow("dialog level does not see tool items")
        << levels << "tooltip" << cell("T") << cell("D") << cell("a") << "~";
    QTest::newRow("dialog item") << levels << "tooltip" << cell("T") << cell("D") << cell("b")
                                 << "dialog tip";
    QTest::newRow("tool item") << levels << "tooltip" << cell("T") << cell("a") << cell("~")
                               << "tool tip";
    QTest::newRow("tool name in another case")
        << levels << "tool" << cell("t") << cell("~") << cell("~") << "~";
    QTest::newRow("tool element in another case")
        << QByteArray(R"(<Tool name="T" href="t.htm"/>)") << "ismy" << cell("T") << cell("~")
        << cell("~") << "false";
    QTest::newRow("tool inside a skipped element")
        << QByteArray(R"(<group><tool name="T" href="t.htm"/></group>)") << "ismy" << cell("T")
        << cell("~") << cell("~") << "false";

    const QByteArray misplaced = R"(<tool name="T" href="t.htm">
        <text>text in a tool <b>with a child</b></text>
        <dialog name="D"><view name="v" href="v.htm"><i/></view><text>dialog</text></dialog>
        <tooltip name="a">after</tooltip></tool>)";
    QTest::newRow("text in a tool is skipped")
        << misplaced << "tooltip" << cell("T") << cell("a") << cell("~") << "after";
    QTest::newRow("view in a dialog is skipped")
        << misplaced << "dlgtext" << cell("T") << cell("D") << cell("~") << "dialog";
    QTest::newRow("dialog url never sees a view")
        << misplaced << "url" << cell("T") << cell("D") << cell("v") << "~";

    const QByteArray maps = R"(<tool name="T">
        <tooltip name="a">first</tooltip><tooltip name="a">second</tooltip>
        <description name="m" href="desc.htm">described</description><view name="m" href="view.htm"/>
        <view name="n" href="view.htm"/><description name="n" href="desc.htm">told</description>
        <description name="bare">no href</description>
        <dialog name="D"><text>one</text><text>two</text></dialog>
        <dialog name="E"/></tool>)";
    QTest::newRow("later tooltip wins")
        << maps << "tooltip" << cell("T") << cell("a") << cell("~") << "second";
    QTest::newRow("later view replaces description href")
        << maps << "url" << cell("T") << cell("m") << cell("~") << "view.htm";
    QTest::newRow("description text stays beside a later view")
        << maps << "description" << cell("T") << cell("m") << cell("~") << "described";
    QTest::newRow("later description replaces view href")
        << maps << "view" << cell("T") << cell("n") << cell("~") << "desc.htm";
    QTest::newRow("description without href")
        << maps << "url" << cell("T") << cell("bare") << cell("~") << "";
    QTest::newRow("second text replaces the first")
        << maps << "dlgtext" << cell("T") << cell("D") << cell("~") << "two";
    QTest::newRow("dialog without text")
        << maps << "dlgtext" << cell("T") << cell("E") << cell("~") << "";
    QTest::newRow("no such item") << maps << "whatsthis" << cell("T") << cell("zz") << cell("~")
                                  << "~";

    const QByteArray texts =
        "<tool name=\" T \" href=\" spaced.htm \">"
        "<whatsthis name=\"w\">\n\t  Two\n     lines\t </whatsthis>"
        "<tooltip name=\"c\">a <![CDATA[<b>  bold</b>]]> &amp; &#x41;</tooltip>"
        "<description name=\" d \">x<!-- note -->y<?pi z?></description>"
        "</tool>";
    QTest::newRow("text simplified")
        << texts << "whatsthis" << cell(" T ") << cell("w") << cell("~") << "Two lines";
    QTest::newRow("cdata and references")
        << texts << "tooltip" << cell(" T ") << cell("c") << cell("~") << "a <b> bold</b> & A";
    QTest::newRow("comments and instructions in text")
        << texts << "description" << cell(" T ") << cell(" d ") << cell("~") << "xy";
    QTest::newRow("href not simplified")
        << texts << "tool" << cell(" T ") << cell("~") << cell("~") << " spaced.htm ";
    QTest::newRow("name not simplified")
        << texts << "tool" << cell("T") << cell("~") << cell("~") << "~";

    const QByteArray unnamed = R"(<tool href="unnamed.htm"><tooltip>no name</tooltip>
        <tooltip name="">empty name</tooltip><dialog href="dn.htm"><tooltip>in dialog</tooltip>
        </dialog></tool><tool name="T"><tooltip>of T</tooltip></tool>)";
    QTest::newRow("null tool name selects an unnamed tool")
        << unnamed << "tool" << cell("~") << cell("~") << cell("~") << "unnamed.htm";
    QTest::newRow("empty tool name selects an unnamed tool")
        << unnamed << "tool" << cell("") << cell("~") << cell("~") << "unnamed.htm";
    QTest::newRow("null item name finds the last unnamed item")
        << unnamed << "tooltip" << cell("~") << cell("~") << cell("~") << "empty name";
    QTest::newRow("empty item names an item of the dialog")
        << unnamed << "tooltip" << cell("") << cell("~") << cell("") << "in dialog";
    QTest::newRow("tool name with two null pointers")
        << unnamed << "tooltip" << cell("T") << cell("~") << cell("~") << "of T";
    QTest::newRow("null dialog name selects an unnamed dialog")
        << unnamed << "dlg" << cell("") << cell("~") << cell("~") << "dn.htm";

    QTest::newRow("utf-8 names") << QByteArray("<tool name=\"Gr\xc3\xbc\xc3\x9f"
                                               "e\" href=\"g.htm\"/>")
                                 << "tool"
                                 << QByteArray("Gr\xc3\xbc\xc3\x9f"
                                               "e")
                                 << cell("~") << cell("~") << "g.htm";
    QTest::newRow("tool without href")
        << QByteArray(R"(<tool name="T"/>)") << "tool" << cell("T") << cell("~") << cell("~") << "";
    QTest::newRow("tool without href is known") << QByteArray(R"(<tool name="T"/>)") << "ismy"
                                                << cell("T") << cell("~") << cell("~") << "true";
    QTest::newRow("empty index") << QByteArray() << "tool" << cell("T") << cell("~") << cell("~")
                                 << "~";
}

void TestHelpIndexReader::selection()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, query);
    QFETCH(QByteArray, tool);
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, item);
    QFETCH(QString, expected);

    Index file(index(body));
    const QString result = ask(file.reader, query, tool, second, item);
    QCOMPARE(shown(result), expected);
    QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
}

void TestHelpIndexReader::prologIsPassedOver()
{
    Index file("<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- generated --><?style sheet?>\n"
               "<!DOCTYPE helpIndex SYSTEM \"helpindex.dtd\"><!-- after the DTD -->\n"
               "<helpIndex version=\"1.0\" generator=\"x\">text<!-- c --><?p?>"
               "<tool name=\"T\" href=\"t.htm\">text<![CDATA[cdata]]></tool></helpIndex>\n"
               "<!-- after the end --><?p?>\n");
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm"));
    QVERIFY(!file.reader.isMyHelpIdx("U")); // a miss walks to the very end
    QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
}

void TestHelpIndexReader::storedEntry_data()
{
    QTest::addColumn<int>("match");
    QTest::addColumn<QByteArray>("tool");
    QTest::addColumn<QByteArray>("dialog");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("helpUrl");
    QTest::addColumn<QString>("dialogText");
    QTest::addColumn<QStringList>("maps");

    QTest::newRow("tool help: the tool's own items")
        << int(Probe::ToolHelp) << cell("T") << cell("~") << true << "t.htm"
        << "~"
        << QStringList{"url:d=d.htm", "url:v=v.htm", "whatsthis:w=W", "tooltip:t=T1",
                       "description:d=D"};
    QTest::newRow("dialog help: the dialog's own items")
        << int(Probe::DialogHelp) << cell("T") << cell("Opt") << true << "opt.htm"
        << "Dialog" << QStringList{"url:dd=dd.htm", "tooltip:t=T2", "description:dd=DD"};
    QTest::newRow("tool name: nothing but found")
        << int(Probe::ToolName) << cell("T") << cell("~") << true << "~"
        << "~" << QStringList();
    QTest::newRow("none: nothing at all")
        << int(Probe::None) << cell("T") << cell("Opt") << false << "~"
        << "~" << QStringList();
    QTest::newRow("miss") << int(Probe::ToolHelp) << cell("U") << cell("~") << false << "~"
                          << "~" << QStringList();
}

void TestHelpIndexReader::storedEntry()
{
    QFETCH(int, match);
    QFETCH(QByteArray, tool);
    QFETCH(QByteArray, dialog);
    QFETCH(bool, found);
    QFETCH(QString, helpUrl);
    QFETCH(QString, dialogText);
    QFETCH(QStringList, maps);

    Index file(index(R"(<tool name="T" href="t.htm"><view name="v" href="v.htm"/>
        <whatsthis name="w">W</whatsthis><tooltip name="t">T1</tooltip>
        <description name="d" href="d.htm">D</description>
        <dialog name="Opt" href="opt.htm"><text>Dialog</text><tooltip name="t">T2</tooltip>
          <description name="dd" href="dd.htm">DD</description></dialog></tool>)"));
    Probe::pass(file.reader, Probe::Match(match), argument(tool), argument(dialog));

    QCOMPARE(Probe::found(file.reader), found);
    QCOMPARE(shown(Probe::helpUrl(file.reader)), helpUrl);
    QCOMPARE(shown(Probe::dialogText(file.reader)), dialogText);
    QStringList stored = Probe::maps(file.reader);
    stored.sort();
    maps.sort();
    QCOMPARE(stored, maps);
    // The key is stamped whatever the pass found.
    QCOMPARE(Probe::matchType(file.reader), match);
    QCOMPARE(Probe::toolName(file.reader), QString::fromUtf8(argument(tool)));
    QCOMPARE(Probe::dialogName(file.reader).isNull(), dialog == "~");
}

// --- Failures ------------------------------------------------------------------------------------

void TestHelpIndexReader::errorStates_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("message"); // empty: the stream reader's own text
    QTest::addColumn<bool>("found");
    QTest::addColumn<QStringList>("maps");

    const auto custom = int(QXmlStreamReader::CustomError);
    const auto notWellFormed = int(QXmlStreamReader::NotWellFormedError);
    const auto premature = int(QXmlStreamReader::PrematureEndOfDocumentError);
    const auto unexpected = int(QXmlStreamReader::UnexpectedElementError);

    QTest::newRow("empty file") << QByteArray() << premature << "" << false << QStringList();
    QTest::newRow("another document element")
        << QByteArray(R"(<index version="1.0"><tool name="T"/></index>)") << custom
        << QString::fromLatin1(notAnIndex) << false << QStringList();
    QTest::newRow("document element in another case")
        << QByteArray(R"(<helpindex version="1.0"><tool name="T"/></helpindex>)") << custom
        << QString::fromLatin1(notAnIndex) << false << QStringList();
    QTest::newRow("no version") << QByteArray(R"(<helpIndex><tool name="T"/></helpIndex>)")
                                << custom << QString::fromLatin1(notAnIndex) << false
                                << QStringList();
    QTest::newRow("version 1.00")
        << QByteArray(R"(<helpIndex version="1.00"><tool name="T"/></helpIndex>)") << custom
        << QString::fromLatin1(notAnIndex) << false << QStringList();
    QTest::newRow("version with a blank")
        << QByteArray(R"(<helpIndex version="1.0 "><tool name="T"/></helpIndex>)") << custom
        << QString::fromLatin1(notAnIndex) << false << QStringList();
    QTest::newRow("truncated before the tool")
        << index("<tool name=\"U\"><tooltip name=\"a\">x</tooltip>").left(60) << premature << ""
        << false << QStringList();
    QTest::newRow("not well-formed before the tool")
        << index(R"(<tool name="U"></dialog></tool><tool name="T"/>)") << notWellFormed << ""
        << false << QStringList();
    QTest::newRow("child in a skipped tool's tooltip")
        << index(R"(<tool name="U"><tooltip name="a">x<b/></tooltip></tool><tool name="T"/>)")
        << unexpected << "Expected character data." << false << QStringList();
    QTest::newRow("child in the selected tool's tooltip")
        << index(R"(<tool name="T"><whatsthis name="w">kept</whatsthis>)"
                 R"(<tooltip name="a">read so far<b/>lost</tooltip></tool>)")
        << unexpected << "Expected character data." << true
        << QStringList{"whatsthis:w=kept", "tooltip:a=read so far"};
    QTest::newRow("child in the selected tool's view")
        << index(R"(<tool name="T"><view name="v" href="v.htm"><i/></view></tool>)") << unexpected
        << "Expected character data." << true << QStringList{"url:v=v.htm"};
    QTest::newRow("DTD in the body")
        << QByteArray(R"(<!DOCTYPE helpIndex [<!ENTITY e "&f;"><!ENTITY f "x">]>)"
                      R"(<helpIndex version="1.0"><!DOCTYPE b [<!ENTITY f "&e;">]>)"
                      R"(<tool name="T">&e;</tool></helpIndex>)")
        << custom << "A DTD may stand only once, before the document element." << false
        << QStringList();
    QTest::newRow("DTD in a skipped element")
        << index(R"(<x><!DOCTYPE y></x><tool name="T"/>)") << custom
        << "A DTD may stand only once, before the document element." << false << QStringList();
    QTest::newRow("DTD in the selected tool")
        << index(R"(<tool name="T" href="t.htm"><tooltip name="a">A</tooltip><!DOCTYPE y></tool>)")
        << custom << "A DTD may stand only once, before the document element." << true
        << QStringList{"tooltip:a=A"};
    QTest::newRow("two DTDs")
        << QByteArray(R"(<!DOCTYPE a [<!ENTITY e "xx">]><!DOCTYPE b [<!ENTITY e "&e;">]>)"
                      R"(<helpIndex version="1.0"><tool name="T"/></helpIndex>)")
        << custom << "A DTD may stand only once, before the document element." << false
        << QStringList();
    QTest::newRow("self-referencing entity")
        << QByteArray(R"(<!DOCTYPE helpIndex [<!ENTITY e "a&e;">]>)"
                      R"(<helpIndex version="1.0"><tool name="T"><tooltip name="a">&e;</tooltip>)"
                      R"(</tool></helpIndex>)")
        << notWellFormed << "" << true << QStringList{"tooltip:a="};
}

void TestHelpIndexReader::errorStates()
{
    QFETCH(QByteArray, xml);
    QFETCH(int, error);
    QFETCH(QString, message);
    QFETCH(bool, found);
    QFETCH(QStringList, maps);

    Index file(xml);
    QVERIFY(file.reader.getToolHelp("T").isNull());
    QCOMPARE(int(file.reader.error()), error);
    if (!message.isEmpty())
        QCOMPARE(file.reader.errorString(), message);
    else
        QVERIFY(!file.reader.errorString().isEmpty());
    QCOMPARE(Probe::found(file.reader), found);
    QStringList stored = Probe::maps(file.reader);
    stored.sort();
    maps.sort();
    QCOMPARE(stored, maps);

    // Every kind of query reports the failure alike.
    Index again(xml);
    QVERIFY(again.reader.getDlgText("T", "D").isNull());
    // The tool's start tag is as far as isMyHelpIdx reads.
    const bool known = again.reader.isMyHelpIdx("T");
    QCOMPARE(known, found);
    QCOMPARE(again.reader.error() == QXmlStreamReader::NoError, found);
    Index fresh(xml);
    QCOMPARE(fresh.reader.dump(), false);
}

void TestHelpIndexReader::errorTextIsTranslated()
{
    ContextTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    Index file("<index/>");
    QVERIFY(file.reader.getToolHelp("T").isNull());
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(file.reader.error(), QXmlStreamReader::CustomError);
    QCOMPARE(file.reader.errorString(), QStringLiteral("Keine Hilfeindexdatei der Version 1.0."));
}

void TestHelpIndexReader::failureInsideSelectionLeavesPartialEntry()
{
    Index file(index(R"(<tool name="T" href="t.htm"><tooltip name="a">A</tooltip>)"
                     R"(<whatsthis name="w">x<b/></whatsthis></tool>)"));
    QVERIFY(file.reader.getToolTipText("T", "a").isNull());
    QCOMPARE(file.reader.error(), QXmlStreamReader::UnexpectedElementError);
    // The hit test does not look at error(): the same key is answered from the partial entry.
    QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("A"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm"));
    QCOMPARE(file.reader.getWhatsThisText("T", "w"), QStringLiteral("x"));
}

void TestHelpIndexReader::brokenBehindSelection()
{
    const QByteArray xml = "<helpIndex version=\"1.0\"><tool name=\"T\" href=\"t.htm\">"
                           "<tooltip name=\"a\">A</tooltip></tool><tool name=\"U\"></dialog>";
    Index file(xml);
    QVERIFY(file.reader.isMyHelpIdx("T"));
    QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm"));
    QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("A"));
    QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
    // A miss walks into the broken part.
    QVERIFY(!file.reader.isMyHelpIdx("V"));
    QCOMPARE(file.reader.error(), QXmlStreamReader::NotWellFormedError);
}

void TestHelpIndexReader::skippedTextFailsAtTheSamePlace_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QByteArray>("startTag");

    QTest::newRow("tooltip of another tool")
        << index("<tool name=\"U\">\n  <tooltip name=\"a\">one\n two <b>x</b></tooltip></tool>")
        << QByteArray("<tooltip name=\"a\">");
    QTest::newRow("view of another tool")
        << index("<tool name=\"U\"><view name=\"v\">\n<!-- c --><?p?>\n<i/></view></tool>")
        << QByteArray("<view name=\"v\">");
    QTest::newRow("text of another dialog")
        << index("<tool name=\"T\"><dialog name=\"E\"><text>a &amp; b<c/></text></dialog></tool>")
        << QByteArray("<text>");
    QTest::newRow("DTD in a skipped description")
        << index("<tool name=\"U\"><description name=\"d\">x<!DOCTYPE q></description></tool>")
        << QByteArray("<description name=\"d\">");
}

void TestHelpIndexReader::skippedTextFailsAtTheSamePlace()
{
    QFETCH(QByteArray, xml);
    QFETCH(QByteArray, startTag);

    Index file(xml);
    QVERIFY(file.reader.getDlgText("T", "D").isNull());
    QCOMPARE(file.reader.error(), QXmlStreamReader::UnexpectedElementError);
    QCOMPARE(file.reader.errorString(), QStringLiteral("Expected character data."));
    const auto [line, column] = textFailurePosition(xml, startTag);
    QCOMPARE(file.reader.lineNumber(), line);
    QCOMPARE(file.reader.columnNumber(), column);
}

void TestHelpIndexReader::withoutDevice()
{
    HelpIndexReader reader;
    QVERIFY(reader.getToolHelp("T").isNull());
    QCOMPARE(reader.error(), QXmlStreamReader::PrematureEndOfDocumentError);
    QVERIFY(reader.getWhatsThisText("T", "D", "I").isNull());
    QVERIFY(!reader.isMyHelpIdx("T"));
    QVERIFY(!reader.dump());

    // Installing a device clears the reader: the next query reads it.
    QByteArray bytes = index(R"(<tool name="T" href="t.htm"/>)");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    reader.setDevice(&buffer);
    QCOMPARE(reader.getToolHelp("T"), QStringLiteral("t.htm"));
}

// --- The cache of one entry ----------------------------------------------------------------------

void TestHelpIndexReader::cacheHitLeavesDeviceAlone()
{
    const QByteArray before =
        index(R"(<tool name="T" href="old.htm"><view name="v" href="old-v.htm"/>
        <tooltip name="a">old tip</tooltip>
        <dialog name="D" href="old-d.htm"><text>old text</text></dialog></tool>)");
    QByteArray after = before;
    after.replace("old", "new");
    Index file(before);

    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("old.htm"));
    file.replace(after);
    // One pass serves the whole tool level...
    QCOMPARE(file.reader.getViewHelp("T", "v"), QStringLiteral("old-v.htm"));
    QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("old tip"));
    // ...the dialog level makes the next pass, which sees the new content...
    QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("new text"));
    file.replace(before);
    QCOMPARE(file.reader.getDlgHelp("T", "D"), QStringLiteral("new-d.htm"));
    // ...and back to the tool level makes a third.
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("old.htm"));
}

void TestHelpIndexReader::cacheMissReadsAgain()
{
    const QByteArray without = index(R"(<tool name="U" href="u.htm"/>)");
    Index file(without);
    QVERIFY(file.reader.getToolHelp("T").isNull());
    QCOMPARE(Probe::toolName(file.reader), QStringLiteral("T"));
    // No miss is remembered: the same query passes again and finds what is there now.
    file.replace(index(R"(<tool name="T" href="t.htm"/>)"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm"));

    // A failed pass is not remembered either.
    file.replace("<helpIndex version=\"2.0\"/>");
    QVERIFY(file.reader.getToolHelp("U").isNull());
    QCOMPARE(file.reader.error(), QXmlStreamReader::CustomError);
    file.replace(without);
    QCOMPARE(file.reader.getToolHelp("U"), QStringLiteral("u.htm"));
    QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
}

void TestHelpIndexReader::itemMissMakesNoPass()
{
    Index file(index(R"(<tool name="T"><tooltip name="a">A</tooltip></tool>)"));
    QVERIFY(file.reader.getToolTipText("T", "b").isNull());
    QVERIFY(Probe::found(file.reader));
    file.replace(index(R"(<tool name="T"><tooltip name="a">changed</tooltip></tool>)"));
    QVERIFY(file.reader.getToolTipText("T", "b").isNull());
    QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("A"));
}

void TestHelpIndexReader::isMyHelpIdxWipesEntry()
{
    Index file(index(R"(<tool name="T" href="t.htm"/>)"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm"));
    QVERIFY(file.reader.isMyHelpIdx("T"));
    QCOMPARE(Probe::matchType(file.reader), int(Probe::ToolName));
    QVERIFY(Probe::helpUrl(file.reader).isNull());
    file.replace(index(R"(<tool name="T" href="x.htm"/>)"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("x.htm"));
    QVERIFY(!file.reader.isMyHelpIdx("U"));
}

void TestHelpIndexReader::otherDeviceKeepsEntry()
{
    Index file(index(R"(<tool name="T" href="t.htm"><dialog name="D" href="d.htm"/></tool>)"));
    QCOMPARE(file.reader.getDlgHelp("T", "D"), QStringLiteral("d.htm"));

    QByteArray otherBytes = index(R"(<tool name="T" href="o.htm"><dialog name="D" href="od.htm"/>
        </tool>)");
    QBuffer other(&otherBytes);
    other.open(QIODevice::ReadOnly);
    file.reader.setDevice(&other);
    QCOMPARE(file.reader.getDlgHelp("T", "D"), QStringLiteral("d.htm"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("o.htm"));
}

void TestHelpIndexReader::nullToolNameHits()
{
    Index file(index(R"(<tool href="n.htm"/><tool name="T" href="t.htm"/>)"));
    QCOMPARE(file.reader.getToolHelp(nullptr), QStringLiteral("n.htm"));
    file.replace(index(R"(<tool href="x.htm"/>)"));
    QCOMPARE(file.reader.getToolHelp(nullptr), QStringLiteral("n.htm"));
    QCOMPARE(file.reader.getToolHelp(""), QStringLiteral("n.htm"));
}

void TestHelpIndexReader::dumpBeforeAndAfterQueries()
{
    const QByteArray sound = index(R"(<tool name="T" href="t.htm"/><tool name="U"/>)");
    Index file(sound);
    QVERIFY(file.reader.dump());
    QVERIFY(file.reader.dump()); // reads nothing, repeats the verdict
    QCOMPARE(Probe::matchType(file.reader), int(Probe::None));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("t.htm")); // the query rewinds

    // After a held entry dump reads nothing, even from a broken file, but stamps the key...
    file.replace(index(R"(<tool name="T" href="x.htm"></bad>)"));
    QVERIFY(file.reader.dump());
    QVERIFY(Probe::found(file.reader));
    QCOMPARE(Probe::matchType(file.reader), int(Probe::None));
    QVERIFY(Probe::toolName(file.reader).isNull());
    // ...so the entry no longer hits: the next query reads the broken file, fails inside the
    // tool, and leaves a partial entry that answers from then on.
    QVERIFY(file.reader.getToolHelp("T").isNull());
    QCOMPARE(file.reader.error(), QXmlStreamReader::NotWellFormedError);
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("x.htm"));
    QVERIFY(!file.reader.dump()); // reads nothing; the verdict that error() holds

    Index broken(index(R"(<tool name="T"><tooltip name="a">x<b/></tooltip></tool>)"));
    QVERIFY(!broken.reader.dump());
    QCOMPARE(broken.reader.error(), QXmlStreamReader::UnexpectedElementError);
    QVERIFY(!broken.reader.dump());
}

// --- Hostile input -------------------------------------------------------------------------------

void TestHelpIndexReader::deepNestingOnSmallStack()
{
    constexpr int levels = 1000000;
    const QByteArray xml = "<helpIndex version=\"1.0\"><tool name=\"U\"><group>" +
                           QByteArray("<a>").repeated(levels) +
                           QByteArray("</a>").repeated(levels) +
                           "</group></tool><tool name=\"T\" href=\"after.htm\"/></helpIndex>";
    const QByteArray unclosed =
        "<helpIndex version=\"1.0\"><x>" + QByteArray("<a>").repeated(levels);

    QString deep;
    QXmlStreamReader::Error unclosedError = QXmlStreamReader::NoError;
    // The reading runs on a thread whose stack is far smaller than one frame per level.
    std::unique_ptr<QThread> thread(QThread::create([&] {
        Index file(xml);
        deep = file.reader.getToolHelp("T");
        Index open(unclosed);
        open.reader.getToolHelp("T");
        unclosedError = open.reader.error();
    }));
    thread->setStackSize(256 * 1024);
    thread->start();
    QVERIFY(thread->wait(QDeadlineTimer(240000)));
    QCOMPARE(deep, QStringLiteral("after.htm"));
    QCOMPARE(unclosedError, QXmlStreamReader::PrematureEndOfDocumentError);
}

void TestHelpIndexReader::entityExpansionBound()
{
    const auto overBudget = [](const Index &file) {
        return QStringLiteral("The entities of the file expand to more than %1 characters.")
            .arg(HelpIndexReader::entityExpansionBudget(file.bytes.size()));
    };
    const QByteArray entity(4000, 'A');
    const QByteArray dtd = "<!DOCTYPE helpIndex [<!ENTITY e \"" + entity + "\">]>";

    // 100,000 references in one text would expand to 400 million characters.
    Index bomb(index("<tool name=\"T\"><tooltip name=\"a\">" + QByteArray("&e;").repeated(100000) +
                         "</tooltip></tool>",
                     dtd));
    QVERIFY(!bomb.reader.isMyHelpIdx("T"));
    QCOMPARE(bomb.reader.error(), QXmlStreamReader::CustomError);
    QCOMPARE(bomb.reader.errorString(), overBudget(bomb));
    QVERIFY(!Probe::found(bomb.reader));

    // The same in an attribute value.
    Index attribute(index("<tool name=\"" + QByteArray("&e;").repeated(300) + "\"/>", dtd));
    QVERIFY(attribute.reader.getToolHelp("T").isNull());
    QCOMPARE(attribute.reader.errorString(), overBudget(attribute));

    // A use the size of a real index passes, and expands.
    const QByteArray product = "<!DOCTYPE helpIndex [<!ENTITY prod \"Ostrane Design Suite\">]>";
    QByteArray many;
    for (int i = 0; i < 2000; ++i)
        many += "<tool name=\"t" + QByteArray::number(i) +
                "\"><tooltip name=\"a\">&prod; &amp; "
                "&#65;</tooltip></tool>";
    Index real(index(many + "<tool name=\"T\"><tooltip name=\"a\">Opens &prod;"
                            "</tooltip></tool>",
                     product));
    QCOMPARE(real.reader.getToolTipText("T", "a"), QStringLiteral("Opens Ostrane Design Suite"));
    QCOMPARE(real.reader.error(), QXmlStreamReader::NoError);

    // Predefined entities and character references are not counted against the budget.
    const QByteArray plain =
        index("<tool name=\"T\"><tooltip name=\"a\">" +
                  QByteArray("&amp;&lt;&#65;").repeated(200000) + "&e;</tooltip></tool>",
              dtd);
    Index predefined(plain);
    QCOMPARE(predefined.reader.getToolTipText("T", "a").size(), 3 * 200000 + 4000);
}

void TestHelpIndexReader::entitiesOfEarlierDocuments_data()
{
    QTest::addColumn<QByteArray>("first");

    const QByteArray entity(4000, 'A');
    // The stream reader keeps these entities after the pass, although the pass failed or the
    // next file is another one.
    QTest::newRow("declared by a sound file")
        << index("<tool name=\"T\"><tooltip name=\"a\">&e;</tooltip></tool>",
                 "<!DOCTYPE helpIndex [<!ENTITY e \"" + entity + "\">]>");
    QTest::newRow("declared by a DTD that broke off")
        << QByteArray("<!DOCTYPE helpIndex [<!ENTITY e \"" + entity + "\"> <!ENTITY");
    QTest::newRow("declared by a DTD in the body")
        << index("<x><!DOCTYPE y [<!ENTITY e \"" + entity + "\">]></x>");
}

void TestHelpIndexReader::entitiesOfEarlierDocuments()
{
    QFETCH(QByteArray, first);

    Index file(first);
    file.reader.getToolTipText("T", "a");
    // A second file without any DTD refers to the entity 100,000 times: 400 million
    // characters if it were expanded.
    QByteArray secondBytes = index("<tool name=\"U\"><tooltip name=\"a\">" +
                                   QByteArray("&e;").repeated(100000) + "</tooltip></tool>");
    QBuffer second(&secondBytes);
    second.open(QIODevice::ReadOnly);
    file.reader.setDevice(&second);
    QVERIFY(file.reader.getToolTipText("U", "a").isNull());
    QCOMPARE(file.reader.error(), QXmlStreamReader::CustomError);
    QVERIFY(file.reader.errorString().startsWith(QStringLiteral("The entities of the file")));
    // A sound file without references still reads on the same object.
    QByteArray thirdBytes = index("<tool name=\"V\" href=\"v.htm\"/>");
    QBuffer third(&thirdBytes);
    third.open(QIODevice::ReadOnly);
    file.reader.setDevice(&third);
    QCOMPARE(file.reader.getToolHelp("V"), QStringLiteral("v.htm"));
}

void TestHelpIndexReader::brokenDtdLeavesNothingToRead()
{
    // The DTD in the body breaks off after a declaration. The stream reader keeps that
    // declaration, pointing at text that the next pass no longer has, and hands it out with the
    // next DTD: the prolog's, in the next pass. Reading its text would read freed memory.
    Index file("<!DOCTYPE helpIndex SYSTEM \"index.dtd\"><helpIndex version=\"1.0\"><x>"
               "<!DOCTYPE y [<!ENTITY e \"" +
               QByteArray(20000, 'A') + "\"> <!ENTITY f \"broken");
    for (int pass = 0; pass < 3; ++pass) {
        QVERIFY(file.reader.getToolHelp("T").isNull());
        QVERIFY(file.reader.error() != QXmlStreamReader::NoError);
    }
}

void TestHelpIndexReader::longestReplacement_data()
{
    QTest::addColumn<QByteArray>("declarations");
    QTest::addColumn<qint64>("longest");

    QTest::newRow("none") << QByteArray() << qint64(0);
    QTest::newRow("plain values") << QByteArray(R"(<!ENTITY e "abcd"><!ENTITY f "ab">)")
                                  << qint64(4);
    QTest::newRow("nested, at the limit")
        << QByteArray(R"(<!ENTITY e "x&f;"><!ENTITY f "y">)") << qint64(4096);
    QTest::newRow("external, never expanded")
        << QByteArray(R"(<!ENTITY e SYSTEM "e.txt"><!ENTITY f PUBLIC "-//F" "f.txt">)")
        << qint64(0);
    QTest::newRow("longer than the limit")
        << QByteArray("<!ENTITY e \"" + QByteArray(5000, 'x') + "\">") << qint64(4096);
}

void TestHelpIndexReader::longestReplacement()
{
    QFETCH(QByteArray, declarations);
    QFETCH(qint64, longest);
    QXmlStreamReader reader("<!DOCTYPE a [" + declarations + "]><a/>");
    while (!reader.atEnd() && !reader.isDTD())
        reader.readNext();
    QVERIFY(reader.isDTD());
    QCOMPARE(corvekit::detail::longestReplacement(reader.entityDeclarations(), reader.text(),
                                                  reader.entityExpansionLimit()),
             longest);
    // Declarations that do not lie in the DTD at hand count at the limit, unread.
    if (!reader.entityDeclarations().isEmpty()) {
        QCOMPARE(corvekit::detail::longestReplacement(reader.entityDeclarations(), QStringView(),
                                                      reader.entityExpansionLimit()),
                 qint64(4096));
    }
}

void TestHelpIndexReader::countsEntityReferences_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qint64>("count");

    QTest::newRow("none") << QByteArray("<a>text</a>") << qint64(0);
    QTest::newRow("declared entities") << QByteArray("&e;&f;x&g;") << qint64(3);
    QTest::newRow("predefined and character references")
        << QByteArray("&amp;&lt;&gt;&quot;&apos;&#65;&#x41;") << qint64(0);
    QTest::newRow("near misses count") << QByteArray("&ampx;&l;&") << qint64(3);
    // A reference across the 64 KiB block boundary is seen whole.
    QByteArray boundary(64 * 1024 - 2, ' ');
    boundary += "&amp;&e;";
    QTest::newRow("across blocks") << boundary << qint64(1);
}

void TestHelpIndexReader::countsEntityReferences()
{
    QFETCH(QByteArray, bytes);
    QFETCH(qint64, count);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    buffer.seek(3);
    QCOMPARE(corvekit::detail::countEntityReferences(&buffer), count);
    QCOMPARE(buffer.pos(), qint64(3));
    QCOMPARE(corvekit::detail::countEntityReferences(nullptr), qint64(-1));
}

QTEST_GUILESS_MAIN(TestHelpIndexReader)
#include "tst_helpindexreader.moc"

#include <corvekit/helpindexreader.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <map>

namespace {

// An in-memory file, whose bytes a test may change between two queries, and a reader on it.
struct Index : QBuffer
{
    explicit Index(const QByteArray &xml)
    {
        setData(xml);
        open(QIODevice::ReadOnly);
        reader.setDevice(this);
    }
    HelpIndexReader reader;
};

QByteArray index(const QByteArray &body, const QByteArray &prolog = QByteArray())
{
    return prolog + "<helpIndex version=\"1.0\">" + body + "</helpIndex>";
}

// Every query by name, with the arguments (tool, second, item); false answers as null.
using Query = QString (*)(HelpIndexReader &, const char *, const char *, const char *);
const std::map<QString, Query> queries = {
    {"tool", [](auto &r, auto t, auto, auto) { return r.getToolHelp(t); }},
    {"view", [](auto &r, auto t, auto s, auto) { return r.getViewHelp(t, s); }},
    {"dlg", [](auto &r, auto t, auto s, auto) { return r.getDlgHelp(t, s); }},
    {"dlgtext", [](auto &r, auto t, auto s, auto) { return r.getDlgText(t, s); }},
    {"whatsthis", [](auto &r, auto t, auto s, auto i) { return r.getWhatsThisText(t, s, i); }},
    {"tooltip", [](auto &r, auto t, auto s, auto i) { return r.getToolTipText(t, s, i); }},
    {"description", [](auto &r, auto t, auto s, auto i) { return r.getDescription(t, s, i); }},
    {"url", [](auto &r, auto t, auto s, auto i) { return r.getDescriptionUrl(t, s, i); }},
    {"ismy", [](auto &r, auto t, auto, auto) { return r.isMyHelpIdx(t) ? "true" : QString(); }},
    {"dump", [](auto &r, auto, auto, auto) { return r.dump() ? "true" : QString(); }},
};

// A query given as {name, tool, second, item}, "~" or a missing argument for a null pointer;
// the answer with "~" for a null QString.
QString ask(HelpIndexReader &reader, const QStringList &query)
{
    QByteArrayList args;
    for (int i = 1; i < 4; ++i)
        args << query.value(i, QStringLiteral("~")).toUtf8();
    const auto at = [&](int i) { return args[i] == "~" ? nullptr : args[i].constData(); };
    const QString answer = queries.at(query[0])(reader, at(0), at(1), at(2));
    return answer.isNull() ? QStringLiteral("~") : answer;
}

} // namespace

class TestHelpIndex : public QObject
{
    Q_OBJECT

private slots:
    void answers_data();
    void answers();
    void failures_data();
    void failures();
    void cacheOfOneEntry();
    void hostileEntities_data();
    void hostileEntities();
    void benignEntitiesNeverOverflow();
};

void TestHelpIndex::answers_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QStringList>("query");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("answer"); // after an error: from the second call on

    const QByteArray sound = index(R"(<tool name="T" href="t.htm"><view name="v" href="v.htm"/>
          <tooltip name="a">x</tooltip><tooltip name="a"> Two
            lines </tooltip><text>skipped <b/></text><x><tool name="G"/></x>
          <description name="v" href="d.htm">a &amp; <![CDATA[<b>]]><!-- c --></description>
          <dialog name="D" href="d.htm"><text>one</text><text>two</text><tooltip name="b">c</tooltip>
            <view name="w" href="w.htm"><i/></view></dialog><dialog name="E"/></tool>
        <tool name="T" href="2.htm"><dialog name="F" href="f.htm"/></tool>
        <tool><whatsthis>no name</whatsthis></tool><Tool name="U"/><tool name="Grüße" href=" g "/>)",
                                   "<!-- c --><!DOCTYPE helpIndex SYSTEM \"h.dtd\">");
    const int none = QXmlStreamReader::NoError;
    QTest::newRow("first tool of a name") << sound << QStringList{"tool", "T"} << none << "t.htm";
    QTest::newRow("dialog in a later tool")
        << sound << QStringList{"dlg", "T", "F"} << none << "f.htm";
    QTest::newRow("last text") << sound << QStringList{"dlgtext", "T", "D"} << none << "two";
    QTest::newRow("no text") << sound << QStringList{"dlgtext", "T", "E"} << none << "";
    QTest::newRow("last item, simplified")
        << sound << QStringList{"tooltip", "T", "a"} << none << "Two lines";
    QTest::newRow("tool level") << sound << QStringList{"tooltip", "T", "b"} << none << "~";
    QTest::newRow("dialog level") << sound << QStringList{"tooltip", "T", "D", "b"} << none << "c";
    QTest::newRow("no tool items") << sound << QStringList{"tooltip", "T", "D", "a"} << none << "~";
    QTest::newRow("one href per name") << sound << QStringList{"view", "T", "v"} << none << "d.htm";
    QTest::newRow("character data")
        << sound << QStringList{"description", "T", "v"} << none << "a & <b>";
    QTest::newRow("no view in a dialog")
        << sound << QStringList{"url", "T", "D", "w"} << none << "~";
    QTest::newRow("skipped element") << sound << QStringList{"ismy", "G"} << none << "~";
    QTest::newRow("element in another case") << sound << QStringList{"ismy", "U"} << none << "~";
    QTest::newRow("name in another case") << sound << QStringList{"tool", "t"} << none << "~";
    QTest::newRow("null names, no href") << sound << QStringList{"tool"} << none << "";
    QTest::newRow("null names, item") << sound << QStringList{"whatsthis"} << none << "no name";
    QTest::newRow("UTF-8 name") << sound << QStringList{"tool", "Grüße"} << none << " g ";
    QTest::newRow("sound file") << sound << QStringList{"dump"} << none << "true";

    const QByteArray broken = index(R"(<tool name="T" href="t.htm"><tooltip name="a">A</tooltip>
        <whatsthis name="w">read so far<b/>lost</whatsthis></tool>)");
    const int unexpected = QXmlStreamReader::UnexpectedElementError;
    QTest::newRow("item before a fault")
        << broken << QStringList{"tooltip", "T", "a"} << unexpected << "A";
    QTest::newRow("item with a fault")
        << broken << QStringList{"whatsthis", "T", "w"} << unexpected << "read so far";
    QTest::newRow("DTD in the selected dialog")
        << index(R"(<tool name="T"><dialog name="D" href="d.htm"><!DOCTYPE y></dialog></tool>)")
        << QStringList{"dlg", "T", "D"} << int(QXmlStreamReader::CustomError) << "d.htm";
    QTest::newRow("self-referencing entity")
        << index(R"(<tool name="T"><tooltip name="a">&e;</tooltip></tool>)",
                 R"(<!DOCTYPE helpIndex [<!ENTITY e "a&e;">]>)")
        << QStringList{"tooltip", "T", "a"} << int(QXmlStreamReader::NotWellFormedError) << "";
    QTest::newRow("fault behind the tool")
        << QByteArray(R"(<helpIndex version="1.0"><tool name="T" href="t.htm"/><x></y>)")
        << QStringList{"tool", "T"} << none << "t.htm";
}

void TestHelpIndex::answers()
{
    QFETCH(QByteArray, xml);
    QFETCH(QStringList, query);
    QFETCH(int, error);
    QFETCH(QString, answer);

    Index file(xml);
    const QString first = ask(file.reader, query);
    QCOMPARE(int(file.reader.error()), error);
    QCOMPARE(first, error == QXmlStreamReader::NoError ? answer : QStringLiteral("~"));
    // The entry answers again, without a look at error(), also where the pass failed in it.
    QCOMPARE(ask(file.reader, query), answer);
}

void TestHelpIndex::failures_data()
{
    QTest::addColumn<int>("mode"); // -1: no device
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("message");

    const QByteArray sound = index(R"(<tool name="T" href="t.htm"><dialog name="D"/></tool>)");
    const int premature = QXmlStreamReader::PrematureEndOfDocumentError;
    const int custom = QXmlStreamReader::CustomError;
    const int readOnly = QIODevice::ReadOnly;
    const QString early = "Premature end of document.";
    const QString notAnIndex = "The file is not an Tivoran Help Index version 1.0 file.";
    const QString misplacedDtd = "A DTD may stand only once, before the document element.";
    QTest::newRow("no device") << -1 << sound << premature << early;
    QTest::newRow("missing file") << int(QIODevice::NotOpen) << QByteArray() << premature << early;
    QTest::newRow("closed file") << int(QIODevice::NotOpen) << sound << premature << early;
    QTest::newRow("write-only") << int(QIODevice::WriteOnly) << sound << premature << early;
    QTest::newRow("append-only") << int(QIODevice::WriteOnly | QIODevice::Append) << sound
                                 << premature << early;
    QTest::newRow("empty file") << readOnly << QByteArray("") << premature << early;
    QTest::newRow("truncated") << readOnly << sound.left(36) << premature << early;
    QTest::newRow("not well-formed")
        << readOnly << index("<tool name=\"U\"></x></tool>")
        << int(QXmlStreamReader::NotWellFormedError) << "Opening and ending tag mismatch.";
    QTest::newRow("element in a skipped text")
        << readOnly << index("<tool name=\"U\"><view>x<b/></view></tool>")
        << int(QXmlStreamReader::UnexpectedElementError) << "Expected character data.";
    QTest::newRow("other element")
        << readOnly << QByteArray("<index version=\"1.0\"/>") << custom << notAnIndex;
    QTest::newRow("element in another case")
        << readOnly << QByteArray("<helpindex version=\"1.0\"/>") << custom << notAnIndex;
    QTest::newRow("no version") << readOnly << QByteArray("<helpIndex/>") << custom << notAnIndex;
    QTest::newRow("version 1.00") << readOnly << QByteArray("<helpIndex version=\"1.00\"/>")
                                  << custom << notAnIndex;
    QTest::newRow("version 1.0 and a blank")
        << readOnly << QByteArray("<helpIndex version=\"1.0 \"/>") << custom << notAnIndex;
    QTest::newRow("DTD in the body")
        << readOnly << index("<x><!DOCTYPE y></x>") << custom << misplacedDtd;
    QTest::newRow("two DTDs") << readOnly << "<!DOCTYPE a><!DOCTYPE b>" + sound << custom
                              << misplacedDtd;
}

void TestHelpIndex::failures()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, xml);
    QFETCH(int, error);
    QFETCH(QString, message);

    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("index.xml")));
    QVERIFY(xml.isNull() || (file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size()));
    file.close();
    QVERIFY(mode <= 0 || file.open(QIODevice::OpenMode(mode)));
    HelpIndexReader reader;
    if (mode >= 0)
        reader.setDevice(&file);
    // Every query fails alike, at either level, the first time and every time after.
    for (const char *item : {static_cast<const char *>(nullptr), "I", "I"}) {
        for (const auto &[name, query] : queries) {
            QVERIFY2(query(reader, "T", "D", item).isNull(), qPrintable(name));
            QCOMPARE(int(reader.error()), error);
        }
    }
    QCOMPARE(reader.errorString(), message);
}

void TestHelpIndex::cacheOfOneEntry()
{
    const QByteArray old = index(R"(<tool name="T" href="old"><tooltip name="a">old</tooltip>
        <dialog name="D" href="old"><text>old</text></dialog></tool>)");
    const QByteArray fresh = QByteArray(old).replace("old", "new"); // same size
    Index file(old);
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("old"));
    file.buffer() = fresh;
    QVERIFY(file.reader.getToolTipText("T", "b").isNull()); // a hit, and no item
    QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("old"));
    QCOMPARE(file.reader.getDlgHelp("T", "D"), QStringLiteral("new"));
    file.buffer() = old;
    QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("new"));
    QVERIFY(file.reader.isMyHelpIdx("T")); // wipes the entry
    QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("old"));
    file.buffer() = fresh;
    QVERIFY(file.reader.dump()); // reads nothing, but the entry no longer answers
    QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("new"));
    // Another device: the key held still answers from the entry, any other reads the device.
    Index other(old);
    file.reader.setDevice(&other);
    QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("new"));
    QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("old"));
}

void TestHelpIndex::hostileEntities_data()
{
    QTest::addColumn<QByteArray>("earlier");
    QTest::addColumn<QByteArray>("prolog");

    const QByteArray entity = "<!ENTITY e \"" + QByteArray(4000, 'A') + "\">";
    const QByteArray dtd = "<!DOCTYPE helpIndex [" + entity + "]>";
    QTest::newRow("declared in the file") << index("") << dtd;
    QTest::newRow("declared before") << index("", dtd) << QByteArray();
    QTest::newRow("declared before, DTD broken")
        << "<!DOCTYPE a [" + entity + "<!ENTITY" << QByteArray();
    QTest::newRow("declared before, DTD in the body")
        << index("<x><!DOCTYPE y [" + entity + "]></x>") << QByteArray();
}

void TestHelpIndex::hostileEntities()
{
    QFETCH(QByteArray, earlier);
    QFETCH(QByteArray, prolog);

    Index file(earlier);
    file.reader.getToolHelp("T");
    // 400 million characters, were they expanded.
    Index hostile(
        index("<tool name=\"T\">" + QByteArray("&e;").repeated(100000) + "</tool>", prolog));
    file.reader.setDevice(&hostile);
    QVERIFY(file.reader.getToolHelp("T").isNull());
    QCOMPARE(file.reader.errorString(),
             QStringLiteral("The entities of the file expand to more than %1 characters.")
                 .arg(HelpIndexReader::entityExpansionBudget(hostile.size())));
}

void TestHelpIndex::benignEntitiesNeverOverflow()
{
    // More uses of a short entity than the budget would allow for the longest one.
    const QByteArray tips = QByteArray("<tooltip name=\"a\">&p;</tooltip>").repeated(400);
    Index file(index("<tool name=\"T\">" + tips + "</tool>",
                     "<!DOCTYPE helpIndex [<!ENTITY p \"Ostrane\">]>"));
    Index broken("<helpIndex version=\"1.0\"><tool name=\"T\">");
    for (int i = 0; i < 100000; ++i) {
        if (i % 1000 == 0) { // a file that breaks off, or none
            file.reader.setDevice(i % 2000 == 0 ? &broken : nullptr);
            QVERIFY(file.reader.getToolHelp("X").isNull());
            file.reader.setDevice(&file);
        }
        const bool miss = i % 100 == 50;
        QCOMPARE(file.reader.getToolTipText(miss ? "X" : "T", "a"),
                 miss ? QString() : QStringLiteral("Ostrane"));
        QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
    }
}

QTEST_GUILESS_MAIN(TestHelpIndex)
#include "tst_helpindex.moc"

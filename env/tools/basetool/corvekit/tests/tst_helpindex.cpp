#include <corvekit/helpindexreader.h>

#include <QBuffer>
#include <QTest>

#include <map>

namespace {

// An in-memory file, whose bytes a test may change between two queries, and a reader on it.
struct Index : QBuffer
{
    explicit Index(const QByteArray &xml, int mode = ReadOnly) // -1: the reader has no device
    {
        setData(xml);
        if (mode > 0)
            open(OpenMode(mode));
        reader.setDevice(mode < 0 ? nullptr : this);
    }
    HelpIndexReader reader;
};

QByteArray index(const QByteArray &body, const QByteArray &prolog = QByteArray())
{
    return prolog + "<helpIndex version=\"1.0\">" + body + "</helpIndex>";
}

// Every query by name, with the arguments (tool, second, item); false answers as null.
using Query = QString (*)(HelpIndexReader &, const char *, const char *, const char *);
const std::map<QByteArray, Query> queries = {
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

// A query as {name, tool, second, item}, a missing argument a null pointer; "~" for null.
QString ask(HelpIndexReader &reader, QByteArrayList query)
{
    query.resize(4);
    const auto at = [&](int i) { return query[i].isNull() ? nullptr : query[i].constData(); };
    const QString answer = queries.at(query[0])(reader, at(1), at(2), at(3));
    return answer.isNull() ? QStringLiteral("~") : answer;
}

// The limit is 1 Mi characters plus four for each byte of the file.
QString overflow(const QByteArray &xml)
{
    return QStringLiteral("The entities of the file expand to more than %1 characters.")
        .arg((1 << 20) + 4 * xml.size());
}

} // namespace

class TestHelpIndex : public QObject
{
    Q_OBJECT

private slots:
    void answers_data()
    {
        QTest::addColumn<QByteArrayList>("query");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("answer"); // after an error: from the second call on

        const int none = QXmlStreamReader::NoError;
        const int broken = QXmlStreamReader::UnexpectedElementError; // in the last tool, "P"
        QTest::newRow("first tool of a name") << QByteArrayList{"tool", "T"} << none << "t.htm";
        QTest::newRow("dialog in a later tool") << QByteArrayList{"dlg", "T", "F"} << none << "f";
        QTest::newRow("last text") << QByteArrayList{"dlgtext", "T", "D"} << none << "two";
        QTest::newRow("no text") << QByteArrayList{"dlgtext", "T", "E"} << none << "";
        QTest::newRow("last, simplified") << QByteArrayList{"tooltip", "T", "a"} << none << "2 1";
        QTest::newRow("tool level") << QByteArrayList{"tooltip", "T", "b"} << none << "~";
        QTest::newRow("dialog level") << QByteArrayList{"tooltip", "T", "D", "a"} << none << "~";
        QTest::newRow("null names") << QByteArrayList{"whatsthis"} << none << "no name";
        QTest::newRow("UTF-8 name") << QByteArrayList{"tool", "Grüße"} << none << " g ";
        QTest::newRow("skipped element") << QByteArrayList{"ismy", "G"} << broken << "~";
        QTest::newRow("before a fault") << QByteArrayList{"tooltip", "P", "a"} << broken << "A";
        QTest::newRow("item at a fault") << QByteArrayList{"whatsthis", "P", "w"} << broken << "so";
    }

    void answers()
    {
        QFETCH(QByteArrayList, query);
        QFETCH(int, error);
        QFETCH(QString, answer);

        Index file(index(R"(<tool name="T" href="t.htm"><tooltip name="a">1</tooltip>
            <tooltip name="a"> 2
              1 </tooltip><text>skipped <b/></text><x><tool name="G"/></x>
            <dialog name="D"><text>one</text><text>two</text><tooltip name="b">c</tooltip>
              <view name="w" href="w.htm"><i/></view></dialog><dialog name="E"/></tool>
          <tool name="T"><dialog name="F" href="f"/></tool><tool><whatsthis>no name</whatsthis>
          </tool><Tool name="U"/><tool name="Grüße" href=" g "/><tool name="P">
            <tooltip name="a">A</tooltip><whatsthis name="w">so<b/>lost</whatsthis></tool>)",
                         "<!-- c --><!DOCTYPE helpIndex SYSTEM \"h.dtd\">"));
        const QString first = ask(file.reader, query);
        QCOMPARE(int(file.reader.error()), error);
        QCOMPARE(first, error == QXmlStreamReader::NoError ? answer : QStringLiteral("~"));
        // The entry answers again, without a look at error(), also where the pass failed in it.
        QCOMPARE(ask(file.reader, query), answer);
    }

    void failures_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("xml"); // files read one after the other, split by '\f'
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("message");

        const QByteArray sound = index(R"(<tool name="T" href="t.htm"><dialog name="D"/></tool>)");
        const int early = QXmlStreamReader::PrematureEndOfDocumentError;
        const int custom = QXmlStreamReader::CustomError;
        const QString ended = "Premature end of document.";
        const QString notAnIndex = "The file is not an Tivoran Help Index version 1.0 file.";
        const QString misplacedDtd = "A DTD may stand only once, before the document element.";
        QTest::newRow("no device") << -1 << sound << early << ended;
        QTest::newRow("never opened or closed") << 0 << sound << early << ended;
        QTest::newRow("write-only") << int(QIODevice::WriteOnly) << sound << early << ended;
        QTest::newRow("append-only") << int(QIODevice::Append) << sound << early << ended;
        QTest::newRow("not well-formed")
            << 1 << index("<x></y>") << int(QXmlStreamReader::NotWellFormedError)
            << "Opening and ending tag mismatch.";
        QTest::newRow("element in skipped text")
            << 1 << index("<tool><view>x<b/></view></tool>")
            << int(QXmlStreamReader::UnexpectedElementError) << "Expected character data.";
        QTest::newRow("other element") << 1 << QByteArray("<index/>") << custom << notAnIndex;
        QTest::newRow("no version") << 1 << QByteArray("<helpIndex/>") << custom << notAnIndex;
        QTest::newRow("version and a blank")
            << 1 << QByteArray("<helpIndex version=\"1.0 \"/>") << custom << notAnIndex;
        QTest::newRow("DTD in the body")
            << 1 << index("<x><!DOCTYPE y></x>") << custom << misplacedDtd;
        QTest::newRow("two DTDs") << 1 << "<!DOCTYPE a><!DOCTYPE b>" + sound << custom
                                  << misplacedDtd;

        const QByteArray entity = "<!ENTITY e \"" + QByteArray(4000, 'A') + "\">";
        const QByteArray dtd = "<!DOCTYPE helpIndex [" + entity + "]>";
        const QByteArray bomb = "<tool>" + QByteArray("&e;").repeated(100000) + "</tool>";
        QTest::newRow("entities of the file")
            << 1 << index(bomb, dtd) << custom << overflow(index(bomb, dtd));
        const QByteArray later = '\f' + index(bomb);
        QTest::newRow("entities of a file before")
            << 1 << index("", dtd) + later << custom << overflow(index(bomb));
        QTest::newRow("entities of a broken DTD before")
            << 1 << "<!DOCTYPE a [" + entity + "<!ENTITY" + later << custom
            << overflow(index(bomb));
    }

    void failures()
    {
        QFETCH(int, mode);
        QFETCH(QByteArray, xml);
        QFETCH(int, error);
        QFETCH(QString, message);

        const QByteArrayList files = xml.split('\f');
        Index file(files.first(), mode);
        for (const QByteArray &next : files.mid(1)) {
            file.reader.getToolHelp("T");
            file.buffer() = next;
        }
        // Every query fails alike, at either level, the first time and every time after.
        for (const char *item : {static_cast<const char *>(nullptr), "I", "I"}) {
            for (const auto &[name, query] : queries) {
                QVERIFY2(query(file.reader, "T", "D", item).isNull(), name.constData());
                QCOMPARE(int(file.reader.error()), error);
            }
        }
        QCOMPARE(file.reader.errorString(), message);
    }

    void dialogAtAFault()
    {
        // The pass fails in the dialog it looks for: no answer now, the entry's from then on.
        Index file(index("<tool name=\"Q\"><dialog name=\"D\"><tooltip name=\"a\">B</tooltip>"
                         "<text>x<b/></text></dialog></tool>"));
        QVERIFY(file.reader.getToolTipText("Q", "D", "a").isNull());
        QCOMPARE(file.reader.getToolTipText("Q", "D", "a"), QStringLiteral("B"));
    }

    void cacheOfOneEntry()
    {
        Index file(
            index(R"(<tool name="T" href="7"><tooltip name="a">7</tooltip><whatsthis name="a"/>
            <description name="a"/><dialog name="D" href="7"><text>7</text></dialog></tool>)"));
        QCOMPARE(file.reader.getToolHelp("T"), QStringLiteral("7"));
        file.buffer().replace('7', '8');                        // what a new pass would see
        QVERIFY(file.reader.getToolTipText("T", "b").isNull()); // a hit without the item
        QCOMPARE(file.reader.getToolTipText("T", "a"), QStringLiteral("7"));
        QCOMPARE(file.reader.getDlgHelp("T", "D"), QStringLiteral("8"));
        for (const char *name : {"whatsthis", "tooltip", "description", "url"})
            QVERIFY(queries.at(name)(file.reader, "T", "D", "a").isNull()); // the tool's are gone
        file.buffer().replace('8', '7');
        QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("8"));
        QVERIFY(file.reader.isMyHelpIdx("T")); // wipes the entry
        QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("7"));
        file.buffer().replace('7', '8');
        QVERIFY(file.reader.dump()); // reads nothing, but the entry no longer answers
        QCOMPARE(file.reader.getDlgText("T", "D"), QStringLiteral("8"));
    }

    void benignEntitiesNeverOverflow()
    {
        // More uses of a short entity than the budget would allow for the longest one.
        const QByteArray tips = QByteArray("<tooltip name=\"a\">&p;</tooltip>").repeated(400);
        Index file(index("<tool name=\"T\">" + tips + "</tool>",
                         "<!DOCTYPE helpIndex [<!ENTITY p \"Ostrane\">]>"));
        // Character references and predefined entities stand for one character each: they do
        // not count as uses of the long entity the file declares.
        const QByteArray plain = QByteArray("&#65;&amp;").repeated(400);
        Index references(
            index("<tool name=\"T\" href=\"" + plain + "\"/>",
                  "<!DOCTYPE helpIndex [<!ENTITY e \"" + QByteArray(4000, 'A') + "\">]>"));
        QCOMPARE(references.reader.getToolHelp("T"), QString("A&").repeated(400));
        Index broken("<helpIndex version=\"1.0\"><tool name=\"T\">");
        for (int i = 0; i < 100000; ++i) {
            if (i % 5000 == 0) { // a file that breaks off, or none
                file.reader.setDevice(i % 10000 == 0 ? &broken : nullptr);
                QVERIFY(file.reader.getToolHelp("X").isNull());
                file.reader.setDevice(&file);
            }
            const bool miss = i % 1000 == 500;
            QCOMPARE(file.reader.getToolTipText(miss ? "X" : "T", "a"),
                     miss ? QString() : QStringLiteral("Ostrane"));
            QCOMPARE(file.reader.error(), QXmlStreamReader::NoError);
        }
    }
};

QTEST_GUILESS_MAIN(TestHelpIndex)
#include "tst_helpindex.moc"

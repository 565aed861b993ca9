// The profiler's message channel: every text goes whole to numbered message 1009993 and, where
// Qt's logging rules leave it on, to the debug category "gui.profiler.log" with its context.
#include <profiler/post_utmsg.h>

#include <hulmar/hulmar_testing.h>

#include <QLoggingCategory>
#include <QTest>

using hulmar::testing::CapturedMessage;
using hulmar::testing::MessageCapture;
using tivoran::corvekit::post_utmsg;

namespace {

struct LogRecord
{
    QtMsgType type;
    QByteArray category;
    QByteArray file;
    int line;
    QByteArray function;
    QString message;
};

QList<LogRecord> records;

void keepRecords(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    records.append({type, context.category, context.file, context.line, context.function, message});
}

// Posts \a text with the category switched by \a rules; keeps what reached the handler.
QList<LogRecord> postLogged(const char *text, const QString &rules)
{
    QLoggingCategory::setFilterRules(rules);
    records.clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepRecords);
    post_utmsg(text);
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules(QString());
    return records;
}

} // namespace

class TestPostUtmsg : public QObject
{
    Q_OBJECT

private slots:
    void textGoesOutWhole_data();
    void textGoesOutWhole();
    void recordCarriesItsContext();
    void switchedOffCategoryStillPosts();
    void nullTextPostsEmptyText();
};

void TestPostUtmsg::textGoesOutWhole_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("one line") << QByteArray("[Place] started at 14:03:27, Mem 512MB");
    QTest::newRow("heading block")
        << QByteArray("\nSummary\n  Current Memory: 512M\n  Peak Memory:    768M\n");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("percent signs are not formats") << QByteArray("100% done %s %d");
    QTest::newRow("long") << QByteArray(20000, 'x');
    QTest::newRow("utf-8 bytes") << QByteArray("Gr\xc3\xb6\xc3\x9f"
                                               "e");
}

void TestPostUtmsg::textGoesOutWhole()
{
    QFETCH(QByteArray, text);
    MessageCapture capture;
    const QList<LogRecord> logged =
        postLogged(text.constData(), QStringLiteral("gui.profiler.log.debug=true"));

    QCOMPARE(capture.messages().size(), std::size_t(1));
    const CapturedMessage &message = capture.messages().front();
    QCOMPARE(message.kind, CapturedMessage::Numbered);
    QCOMPARE(message.number, std::string("1009993"));
    QCOMPARE(QByteArray::fromStdString(message.text), text);

    QCOMPARE(logged.size(), 1);
    QCOMPARE(logged.front().message, QString::fromUtf8(text));
}

void TestPostUtmsg::recordCarriesItsContext()
{
    MessageCapture capture;
    const QList<LogRecord> logged =
        postLogged("context", QStringLiteral("gui.profiler.log.debug=true"));
    QCOMPARE(logged.size(), 1);
    const LogRecord &record = logged.front();
    QCOMPARE(record.type, QtDebugMsg);
    QCOMPARE(record.category, QByteArray("gui.profiler.log"));
    QVERIFY2(record.file.endsWith("s/profiler/post_utmsg.cpp"), record.file.constData());
    QVERIFY(record.line > 0);
    QVERIFY2(record.function.contains("post_utmsg"), record.function.constData());
}

void TestPostUtmsg::switchedOffCategoryStillPosts()
{
    MessageCapture capture;
    const QList<LogRecord> logged =
        postLogged("quiet", QStringLiteral("gui.profiler.log.debug=false"));
    QVERIFY(logged.isEmpty());
    QCOMPARE(capture.texts(), std::vector<std::string>{"quiet"});

    // Other categories' rules leave this one alone.
    capture.clear();
    const QList<LogRecord> others = postLogged("loud", QStringLiteral("*.debug=false\n"
                                                                      "gui.profiler.log=true"));
    QCOMPARE(others.size(), 1);
    QCOMPARE(capture.texts(), std::vector<std::string>{"loud"});
}

void TestPostUtmsg::nullTextPostsEmptyText()
{
    MessageCapture capture;
    const QList<LogRecord> logged =
        postLogged(nullptr, QStringLiteral("gui.profiler.log.debug=true"));
    QCOMPARE(capture.texts(), std::vector<std::string>{""});
    QCOMPARE(logged.size(), 1);
    QCOMPARE(logged.front().message, QString());
}

QTEST_GUILESS_MAIN(TestPostUtmsg)
#include "tst_post_utmsg.moc"

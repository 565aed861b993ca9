// The wildcard translation: the worked patterns, the null result, and that the expressions it
// gives match as wildcards do once anchored.
#include <corvekit/baseqregularexpression.h>

#include <QRegularExpression>
#include <QTest>

class TestBaseQRegularExpression : public QObject
{
    Q_OBJECT

private slots:
    void translates_data();
    void translates();
    void emptyAndNullGiveNull();
    void matchesAsAWildcard_data();
    void matchesAsAWildcard();
};

void TestBaseQRegularExpression::translates_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    QTest::newRow("star") << "a*b"
                          << "a.*b";
    QTest::newRow("question mark") << "a?b"
                                   << "a.b";
    QTest::newRow("star and dot") << "*.v"
                                  << ".*\\.v";
    QTest::newRow("brackets") << "clk[3]"
                              << "clk\\[3\\]";
    QTest::newRow("plus") << "a+b"
                          << "a\\+b";
    QTest::newRow("parentheses and bar") << "(x|y)"
                                         << "\\(x\\|y\\)";
    QTest::newRow("anchors") << "^top$"
                             << "\\^top\\$";
    QTest::newRow("braces") << "{1}"
                            << "\\{1\\}";
    QTest::newRow("backslash escapes nothing") << "D:\\t"
                                               << "D:\\\\t";
    QTest::newRow("backslash then star") << "a\\*"
                                         << "a\\\\.*";
    QTest::newRow("plain") << "abc-1_2"
                           << "abc-1_2";
    QTest::newRow("two stars are not merged") << "**"
                                              << ".*.*";
    QTest::newRow("question mark and star") << "?*"
                                            << "..*";
    QTest::newRow("hyphen comma slash space") << "a-b,c/d e"
                                              << "a-b,c/d e";
    QTest::newRow("outside ASCII")
        << QString::fromUtf8("r\xc3\xa9g*") << QString::fromUtf8("r\xc3\xa9g.*");
    QTest::newRow("surrogate pair stays a pair")
        << QString::fromUtf8("\xf0\x9f\x94\x8c?") << QString::fromUtf8("\xf0\x9f\x94\x8c.");
}

void TestBaseQRegularExpression::translates()
{
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    const QString expression = BaseQRegularExpression::wildcardToRegularExpression(pattern);
    QCOMPARE(expression, expected);
    QVERIFY(!expression.isNull());
}

void TestBaseQRegularExpression::emptyAndNullGiveNull()
{
    QVERIFY(BaseQRegularExpression::wildcardToRegularExpression(QString()).isNull());
    QVERIFY(BaseQRegularExpression::wildcardToRegularExpression(QStringLiteral("")).isNull());
    QVERIFY(
        BaseQRegularExpression::wildcardToRegularExpression(QString(QLatin1String(""))).isNull());
}

void TestBaseQRegularExpression::matchesAsAWildcard_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<bool>("whole");
    QTest::addColumn<bool>("anywhere");

    QTest::newRow("star spans a slash") << "u_core*q"
                                        << "u_core/u_alu/q" << true << true;
    QTest::newRow("question mark is one character") << "A?"
                                                    << "A10" << false << true;
    QTest::newRow("brackets are literal") << "bus[3]"
                                          << "bus3" << false << false;
    QTest::newRow("brackets match themselves") << "bus[3]"
                                               << "bus[3]" << true << true;
    QTest::newRow("dot is literal") << "a.v"
                                    << "axv" << false << false;
    QTest::newRow("no anchors: inside a longer name") << "core"
                                                      << "u_core_0" << false << true;
}

void TestBaseQRegularExpression::matchesAsAWildcard()
{
    QFETCH(QString, pattern);
    QFETCH(QString, subject);
    QFETCH(bool, whole);
    QFETCH(bool, anywhere);
    const QString expression = BaseQRegularExpression::wildcardToRegularExpression(pattern);
    const QRegularExpression unanchored(expression);
    QVERIFY2(unanchored.isValid(), qPrintable(unanchored.errorString()));
    QCOMPARE(unanchored.match(subject).hasMatch(), anywhere);
    const QRegularExpression anchored(QRegularExpression::anchoredPattern(expression));
    QCOMPARE(anchored.match(subject).hasMatch(), whole);
}

QTEST_GUILESS_MAIN(TestBaseQRegularExpression)

#include "tst_baseqregularexpression.moc"

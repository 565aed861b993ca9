// The settings file editor of the tool, against QSettings itself: what it stores reads back as
// what QSettings stores, and what it does not change stays as it was, byte for byte.
#include "childprocess.h"
#include "inifile.h"

#include <QDate>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <memory>

using Values = QMap<QString, QVariant>;

static const QByteArray commented = "; Top comment\n[General]\nA=1\n\n; About b\n[b]\n"
                                    "x = \"two words\" ; why\ny=2\n\n[c]\nz=3\n";

// Every key of \a fileName as a QSettings that never saw the file before reads it.
static Values readBack(const QString &fileName)
{
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("copy.ini"));
    QFile::copy(fileName, copy);
    const QSettings settings(copy, QSettings::IniFormat);
    Values values;
    for (const QString &key : settings.allKeys())
        values.insert(key, settings.value(key));
    return values;
}

static QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

class TestIniFile : public QObject
{
    Q_OBJECT

private slots:
    void likeQSettings_data();
    void likeQSettings();
    void setAndRemoveGiveTheFileBack_data();
    void setAndRemoveGiveTheFileBack();
    void writersShareTheLock();
};

void TestIniFile::likeQSettings_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("existing key in a group") << "b/x" << QVariant("new");
    QTest::newRow("escapes") << "A" << QVariant("tab\tline\nback\\quote\"bell\a");
    QTest::newRow("separators") << "A" << QVariant("a, b; c=d");
    QTest::newRow("outer spaces") << "b/y" << QVariant("  padded ");
    QTest::newRow("non-ASCII") << "b/new" << QVariant("Grüße ✓");
    QTest::newRow("empty") << "NEW" << QVariant("");
    QTest::newRow("at sign") << "NEW" << QVariant("@Invalid()");
    QTest::newRow("list") << "c/z" << QVariant(QStringList{"a", " b c", "d,e", "@f"});
    QTest::newRow("list of one") << "c/z" << QVariant(QStringList{"one"});
    QTest::newRow("empty list") << "c/z" << QVariant(QStringList{});
    QTest::newRow("int and bool") << "NEW" << QVariant(QVariantList{-12, true});
    QTest::newRow("bytes") << "NEW" << QVariant(QByteArray("\x01\xff;"));
    QTest::newRow("variant") << "d/when" << QVariant(QDate(2026, 11, 24));
    QTest::newRow("deep key") << "d/e/f" << QVariant(5);
    QTest::newRow("odd key") << "my key%/x\\y=z✓" << QVariant("v");
    QTest::newRow("group named General") << "General/k" << QVariant(false);
    QTest::newRow("key of empty parts") << "//b//x/" << QVariant("v");
}

void TestIniFile::likeQSettings()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QTemporaryDir dir;
    // On a file with comments, and on a new file, whose text must then be QSettings' own.
    for (const QByteArray &text : {commented, QByteArray()}) {
        const QString edited = dir.filePath(QStringLiteral("edited%1.ini").arg(text.size()));
        const QString stored = dir.filePath(QStringLiteral("stored%1.ini").arg(text.size()));
        QVERIFY(writeFile(edited, text) && writeFile(stored, text));
        QCOMPARE(setIniValue(edited, key, value).status, IniEditStatus::Done);
        QSettings(stored, QSettings::IniFormat).setValue(key, value);
        QCOMPARE(readBack(edited), readBack(stored));
        if (text.isEmpty())
            QCOMPARE(contents(edited), contents(stored));
        QCOMPARE(removeIniKey(edited, key).status, IniEditStatus::Done);
        QSettings(stored, QSettings::IniFormat).remove(key);
        QCOMPARE(readBack(edited), readBack(stored));
    }
}

void TestIniFile::setAndRemoveGiveTheFileBack_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("key");
    QTest::newRow("new key in a group") << commented << "b/new";
    QTest::newRow("new group") << commented << "d/new";
    QTest::newRow("new top-level key") << commented << "NEW";
    QTest::newRow("no General group") << QByteArray("; only\n[b]\nx=1\n\n") << "NEW";
    QTest::newRow("empty file") << QByteArray() << "NEW";
    QTest::newRow("CRLF") << QByteArray("[General]\r\nA=1\r\n") << "g/k";
    QTest::newRow("key with a comment") << QByteArray("[General]\nA=1 ; c\n") << "B";
}

void TestIniFile::setAndRemoveGiveTheFileBack()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, key);
    QTemporaryDir dir;
    const QString fileName = dir.filePath(QStringLiteral("s.ini"));
    QVERIFY(writeFile(fileName, text));
    QCOMPARE(setIniValue(fileName, key, QStringLiteral("v")).status, IniEditStatus::Done);
    QCOMPARE(readBack(fileName).value(key), QVariant("v"));
    QCOMPARE(removeIniKey(fileName, key).status, IniEditStatus::Done);
    QCOMPARE(contents(fileName), text);
}

// A QSettings in one thread and the editor in another write the same file at once.
void TestIniFile::writersShareTheLock()
{
    QTemporaryDir dir;
    const QString fileName = dir.filePath(QStringLiteral("s.ini"));
    constexpr int count = 20;
    std::unique_ptr<QThread> editor(QThread::create([&fileName] {
        for (int index = 0; index < count; ++index)
            setIniValue(fileName, QStringLiteral("edited/%1").arg(index), index);
    }));
    editor->start();
    for (int index = 0; index < count; ++index)
        QSettings(fileName, QSettings::IniFormat)
            .setValue(QStringLiteral("stored/%1").arg(index), index);
    editor->wait();
    QCOMPARE(readBack(fileName).size(), 2 * count);
}

QTEST_GUILESS_MAIN(TestIniFile)
#include "tst_inifile.moc"

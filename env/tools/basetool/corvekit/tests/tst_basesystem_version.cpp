#include "childprocess.h"
#include "sampleinstallation.h"

#include <corvekit/basesystem.h>

#include <QLocale>
#include <QTest>

// Reaches the private parsers of the build stamp.
struct BaseSystemStampAccess
{
    static QDate date(const char *text, char separator)
    {
        return BaseSystem::GetDate(text, separator);
    }
    static QTime time(const char *text, char separator)
    {
        return BaseSystem::GetTime(text, separator);
    }
    static int month(const QString &name) { return BaseSystem::findMonth(name); }
};

namespace {

// Every version text of the installation in TOOLRTF, for the group in CORVEKIT_TEST_GROUP.
int reportVersions()
{
    const QString group = qEnvironmentVariable("CORVEKIT_TEST_GROUP");
    report(QStringLiteral("major"), BaseSystem::getProductVersion(group, VersionMajor));
    report(QStringLiteral("majorMinor"), BaseSystem::getProductVersion(group, VersionMajorMinor));
    report(QStringLiteral("majorMinorAll"),
           BaseSystem::getProductVersion(group, VersionMajorMinorAll));
    report(QStringLiteral("build"), BaseSystem::getProductVersion(group, VersionBuild));
    report(QStringLiteral("full"), BaseSystem::getProductVersion(group, VersionFull));
    report(QStringLiteral("outOfRange"),
           BaseSystem::getProductVersion(group, static_cast<VersionPatten>(7)));
    report(QStringLiteral("ostrane"), BaseSystem::getOstraneVersion());
    report(QStringLiteral("patch"), BaseSystem::getOstranePatchVersion());
    report(QStringLiteral("suffix"), BaseSystem::getProductSuffix());
    return 0;
}

// Short month names of another default locale; the English ones keep working beside them.
int reportGermanMonths()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QLocale locale;
    report(QStringLiteral("short10"), locale.monthName(10, QLocale::ShortFormat));
    report(QStringLiteral("short10Upper"),
           QString::number(
               BaseSystemStampAccess::month(locale.monthName(10, QLocale::ShortFormat).toUpper())));
    report(QStringLiteral("long10"), QString::number(BaseSystemStampAccess::month(
                                         locale.monthName(10, QLocale::LongFormat))));
    report(QStringLiteral("english"),
           QString::number(BaseSystemStampAccess::month(QStringLiteral("Oct"))));
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("versions"), reportVersions},
            {QStringLiteral("german-months"), reportGermanMonths}};
}

const QByteArray sampleVersionFile = "[version]\n"
                                     "MajorVersion=2026\n"
                                     "MinorVersion=2.1\n"
                                     "BuildNumber=118\n"
                                     "PatchNumber=SP1\n"
                                     "ProductSuffix=Beta\n"
                                     "[Solvane]\n"
                                     "version\\MajorVersion=4\n"
                                     "version\\MinorVersion=3\n"
                                     "version\\BuildNumber=77\n"
                                     "version\\PatchNumber=SP9\n";

} // namespace

class TestBaseSystemVersion : public QObject
{
    Q_OBJECT

private slots:
    void productVersion_data();
    void productVersion();
    void patchAndSuffix_data();
    void patchAndSuffix();
    void missingVersionFile();
    void parseDate_data();
    void parseDate();
    void parseTime_data();
    void parseTime();
    void findMonth_data();
    void findMonth();
    void findMonthInDefaultLocale();
    void compilationStamp();
};

void TestBaseSystemVersion::productVersion_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("group");
    // major, major-minor, major-minor-all, build, full
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("top level") << sampleVersionFile << QString()
                               << QStringList{"2026", "2026.2", "2026.2.1", "118", "2026.2.1.118"};
    QTest::newRow("product group") << sampleVersionFile << QStringLiteral("Solvane")
                                   << QStringList{"4", "4.3", "4.3", "77", "4.3.77"};
    // The test of the group ignores case, but the keys are read below the caller's spelling,
    // which this platform's INI files tell apart from the file's: nothing is found there.
    QTest::newRow("group in another case")
        << sampleVersionFile << QStringLiteral("SOLVANE") << QStringList{"", ".", ".", "", ".."};
    QTest::newRow("group the file lacks")
        << sampleVersionFile << QStringLiteral("Zephyr")
        << QStringList{"2026", "2026.2", "2026.2.1", "118", "2026.2.1.118"};
    QTest::newRow("minor 14.0")
        << QByteArray("[version]\nMajorVersion=9\nMinorVersion=14.0\nBuildNumber=3\n") << QString()
        << QStringList{"9", "9.14", "9.14.0", "3", "9.14.0.3"};
    QTest::newRow("minor with leading dot")
        << QByteArray("[version]\nMajorVersion=9\nMinorVersion=.5\nBuildNumber=3\n") << QString()
        << QStringList{"9", "9.", "9..5", "3", "9..5.3"};
    QTest::newRow("keys missing") << QByteArray("[other]\nMajorVersion=1\n") << QString()
                                  << QStringList{"", ".", ".", "", ".."};
    QTest::newRow("build missing") << QByteArray("[version]\nMajorVersion=5\nMinorVersion=1\n")
                                   << QString() << QStringList{"5", "5.1", "5.1", "", "5.1."};
    // Only the patch number is joined again: a list does not convert to a text.
    QTest::newRow("major with a comma")
        << QByteArray("[version]\nMajorVersion=1,2\nMinorVersion=0\nBuildNumber=8\n") << QString()
        << QStringList{"", ".0", ".0", "8", ".0.8"};
    QTest::newRow("empty file") << QByteArray() << QStringLiteral("Solvane")
                                << QStringList{"", ".", ".", "", ".."};
}

void TestBaseSystemVersion::productVersion()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, group);
    QFETCH(QStringList, expected);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setVersion(file));
    QProcessEnvironment environment = installation.environment();
    environment.insert(QStringLiteral("CORVEKIT_TEST_GROUP"), group);
    const ChildResult child = runScenario(QStringLiteral("versions"), environment);
    QCOMPARE(child.exitCode, 0);

    QCOMPARE(child.value(QStringLiteral("major")), expected.at(0));
    QCOMPARE(child.value(QStringLiteral("majorMinor")), expected.at(1));
    QCOMPARE(child.value(QStringLiteral("majorMinorAll")), expected.at(2));
    QCOMPARE(child.value(QStringLiteral("build")), expected.at(3));
    QCOMPARE(child.value(QStringLiteral("full")), expected.at(4));
    QCOMPARE(child.value(QStringLiteral("outOfRange")), expected.at(4));
    QVERIFY(child.standardError.isEmpty());
}

void TestBaseSystemVersion::patchAndSuffix_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("ostrane");
    QTest::addColumn<QString>("patch");
    QTest::addColumn<QString>("suffix");

    QTest::newRow("sample") << sampleVersionFile << "4.3.77"
                            << "SP1"
                            << "Beta";
    QTest::newRow("patch list") << QByteArray(
                                       "[version]\nPatchNumber=SP1, HF2,HF3\nProductSuffix=a,b\n")
                                << ".."
                                << "SP1,HF2,HF3"
                                << "";
    QTest::newRow("only in the product group")
        << QByteArray("[Solvane]\nversion\\PatchNumber=SP2\nversion\\ProductSuffix=RC\n") << ".."
        << ""
        << "";
    QTest::newRow("Solvane in lower case")
        << QByteArray("[solvane]\nversion\\MajorVersion=4\n[version]\nMajorVersion=2\n") << ".."
        << ""
        << "";
}

void TestBaseSystemVersion::patchAndSuffix()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, ostrane);
    QFETCH(QString, patch);
    QFETCH(QString, suffix);

    SampleInstallation installation;
    QVERIFY(installation.isValid());
    QVERIFY(installation.setVersion(file));
    const ChildResult child = runScenario(QStringLiteral("versions"), installation.environment());
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("ostrane")), ostrane);
    QCOMPARE(child.value(QStringLiteral("patch")), patch);
    QCOMPARE(child.value(QStringLiteral("suffix")), suffix);
}

void TestBaseSystemVersion::missingVersionFile()
{
    SampleInstallation installation;
    QVERIFY(installation.isValid());
    const ChildResult child = runScenario(QStringLiteral("versions"), installation.environment());
    QCOMPARE(child.exitCode, 0);
    for (const char *pattern :
         {"major", "majorMinor", "majorMinorAll", "build", "full", "outOfRange", "ostrane"})
        QCOMPARE(child.value(QLatin1String(pattern)), QStringLiteral("0.0.0"));
    QCOMPARE(child.value(QStringLiteral("patch")), QString());
    QCOMPARE(child.value(QStringLiteral("suffix")), QString());

    // One message for each of the nine calls, with the path quoted by QDebug.
    const QString message =
        QStringLiteral("Error :  \"%1\"  doesn't exist!").arg(installation.versionFile());
    const QStringList lines = child.errorLines();
    QCOMPARE(lines.size(), 9);
    for (const QString &line : lines)
        QCOMPARE(line, message);
}

void TestBaseSystemVersion::parseDate_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QDate>("expected");

    const QDate april11(2025, 4, 11);
    QTest::newRow("compiler form") << QByteArray("Apr 11 2025") << ' ' << april11;
    QTest::newRow("day first") << QByteArray("11 Apr 2025") << ' ' << april11;
    QTest::newRow("padded day") << QByteArray("Apr  1 2025") << ' ' << QDate(2025, 4, 1);
    QTest::newRow("leading and trailing blanks")
        << QByteArray(" Dec 31 1999 ") << ' ' << QDate(1999, 12, 31);
    QTest::newRow("upper case") << QByteArray("APR 11 2025") << ' ' << april11;
    QTest::newRow("other separator") << QByteArray("Apr-11-2025") << '-' << april11;
    QTest::newRow("two parts") << QByteArray("Apr 11") << ' ' << QDate();
    QTest::newRow("four parts") << QByteArray("Apr 11 2025 x") << ' ' << QDate();
    QTest::newRow("no month") << QByteArray("Foo 11 2025") << ' ' << QDate();
    QTest::newRow("day not a number") << QByteArray("Apr xx 2025") << ' ' << QDate();
    QTest::newRow("no such day") << QByteArray("Feb 30 2025") << ' ' << QDate();
    QTest::newRow("wrong separator") << QByteArray("Apr 11 2025") << '-' << QDate();
    QTest::newRow("empty") << QByteArray("") << ' ' << QDate();
}

void TestBaseSystemVersion::parseDate()
{
    QFETCH(QByteArray, text);
    QFETCH(char, separator);
    QFETCH(QDate, expected);
    const QDate date = BaseSystemStampAccess::date(text.constData(), separator);
    QCOMPARE(date, expected);
    QCOMPARE(date.isNull(), expected.isNull());
}

void TestBaseSystemVersion::parseTime_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QTime>("expected");

    QTest::newRow("compiler form") << QByteArray("01:22:07") << ':' << QTime(1, 22, 7);
    QTest::newRow("end of day") << QByteArray("23:59:59") << ':' << QTime(23, 59, 59);
    QTest::newRow("empty minute is 0") << QByteArray("1::7") << ':' << QTime(1, 0, 7);
    QTest::newRow("blanks before hour and minute")
        << QByteArray(" 1: 2:07") << ':' << QTime(1, 2, 7);
    QTest::newRow("other separator") << QByteArray("01.22.07") << '.' << QTime(1, 22, 7);
    QTest::newRow("two parts") << QByteArray("01:22") << ':' << QTime();
    QTest::newRow("four parts") << QByteArray("01:22:07:00") << ':' << QTime();
    QTest::newRow("hour out of range") << QByteArray("25:00:00") << ':' << QTime();
    QTest::newRow("empty") << QByteArray("") << ':' << QTime();
}

void TestBaseSystemVersion::parseTime()
{
    QFETCH(QByteArray, text);
    QFETCH(char, separator);
    QFETCH(QTime, expected);
    const QTime time = BaseSystemStampAccess::time(text.constData(), separator);
    QCOMPARE(time.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(time, expected);
}

void TestBaseSystemVersion::findMonth_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("expected");
    QTest::newRow("jan") << "jan" << 1;
    QTest::newRow("Sep") << "Sep" << 9;
    QTest::newRow("DEC") << "DEC" << 12;
    QTest::newRow("mAy") << "mAy" << 5;
    QTest::newRow("empty") << "" << -1;
    QTest::newRow("long name") << "January" << -1;
    QTest::newRow("four letters") << "sept" << -1;
    QTest::newRow("blank around") << " jun" << -1;
}

void TestBaseSystemVersion::findMonth()
{
    QFETCH(QString, name);
    QFETCH(int, expected);
    QCOMPARE(BaseSystemStampAccess::month(name), expected);
}

void TestBaseSystemVersion::findMonthInDefaultLocale()
{
    QTemporaryDir home;
    const ChildResult child =
        runScenario(QStringLiteral("german-months"), cleanEnvironment(home.path()));
    QCOMPARE(child.exitCode, 0);
    QVERIFY2(child.value(QStringLiteral("short10")).toLower() != QLatin1String("oct"),
             "the locale's short name must differ from the English one");
    QCOMPARE(child.value(QStringLiteral("short10Upper")), QStringLiteral("10"));
    QCOMPARE(child.value(QStringLiteral("long10")), QStringLiteral("-1"));
    QCOMPARE(child.value(QStringLiteral("english")), QStringLiteral("10"));
}

void TestBaseSystemVersion::compilationStamp()
{
    // The library is built before this test runs, and not long before.
    const QDate date = BaseSystem::getCompilationDate();
    QVERIFY(date.isValid());
    QVERIFY(date <= QDate::currentDate().addDays(1));
    QVERIFY(date >= QDate(2020, 1, 1));
    const QTime time = BaseSystem::getCompilationTime();
    QVERIFY(time.isValid());
    QVERIFY(QDateTime(date, time) <= QDateTime::currentDateTime().addDays(1));
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestBaseSystemVersion, scenarios)
#include "tst_basesystem_version.moc"

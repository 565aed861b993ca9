#include "basesystem.h"

#include "basesystem_p.h"
#include "filekind_p.h"

#include <QDebug>
#include <QFileInfo>
#include <QLocale>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include <utility>

// The installed product version (data/zeksys.ini) and the build stamp of this library.

namespace {

// Fixed by the compiler when this file is built; a reproducible build that sets
// SOURCE_DATE_EPOCH gets that moment instead of the wall clock.
const char *const buildDate = __DATE__;
const char *const buildTime = __TIME__;

const char *const monthTable[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                  "jul", "aug", "sep", "oct", "nov", "dec"};

// False, after the message, when the version file is missing; logged at every call. A FIFO, a
// socket or a device counts as missing: QSettings would block in open() on a FIFO with no writer.
using corvekit_private::versionFilePath;

// The caller's spelling goes to beginGroup; the file's groups are matched in any case.
bool hasGroup(const QSettings &versionFile, const QString &group)
{
    return !group.isEmpty() && versionFile.childGroups().contains(group, Qt::CaseInsensitive);
}

bool versionFileExists(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && !isSpecialFile(info))
        return true;
    qDebug() << "Error : " << path << " doesn't exist!";
    return false;
}

// A top-level text that the INI reader may have split at commas.
QVariant topLevelValue(const QString &path, const QString &key)
{
    const QSettings versionFile(path, QSettings::IniFormat);
    return versionFile.value(key);
}

} // namespace

QString BaseSystem::getProductVersion(const QString &group, VersionPatten pattern)
{
    const QString path = versionFilePath();
    if (!versionFileExists(path))
        return QStringLiteral("0.0.0");

    QSettings versionFile(path, QSettings::IniFormat);
    // The product's own group if the file has one.
    if (hasGroup(versionFile, group))
        versionFile.beginGroup(group);

    QString major = versionFile.value(QStringLiteral("version/MajorVersion")).toString();
    const QString minor = versionFile.value(QStringLiteral("version/MinorVersion")).toString();
    const QString minorPart = minor.split(QLatin1Char('.'), Qt::KeepEmptyParts).first();
    QString build = versionFile.value(QStringLiteral("version/BuildNumber")).toString();

    switch (pattern) {
    case VersionMajor:
        return major;
    case VersionMajorMinor:
        return major + QLatin1Char('.') + minorPart;
    case VersionMajorMinorAll:
        return major + QLatin1Char('.') + minor;
    case VersionBuild:
        return build;
    case VersionFull:
    default:
        return major + QLatin1Char('.') + minor + QLatin1Char('.') + build;
    }
}

QString BaseSystem::getOstraneVersion()
{
    return getProductVersion(QStringLiteral("Solvane"), VersionFull);
}

QString BaseSystem::getOstranePatchVersion()
{
    const QString path = versionFilePath();
    if (!versionFileExists(path))
        return QString();
    // "SP1,HF2" reads as a list; it is given back as written.
    const QVariant patch = topLevelValue(path, QStringLiteral("version/PatchNumber"));
    if (patch.typeId() == QMetaType::QStringList)
        return patch.toStringList().join(QLatin1Char(','));
    return patch.toString();
}

QString BaseSystem::getProductSuffix()
{
    const QString path = versionFilePath();
    if (!versionFileExists(path))
        return QString();
    return topLevelValue(path, QStringLiteral("version/ProductSuffix")).toString();
}

QDate BaseSystem::getCompilationDate()
{
    return GetDate(buildDate, ' ');
}

QTime BaseSystem::getCompilationTime()
{
    return GetTime(buildTime, ':');
}

QDate BaseSystem::GetDate(const char *date, char separator)
{
    return corvekit::detail::parseStampDate(date, separator);
}

QTime BaseSystem::GetTime(const char *time, char separator)
{
    return corvekit::detail::parseStampTime(time, separator);
}

int BaseSystem::findMonth(QString month)
{
    return corvekit::detail::monthNumber(std::move(month));
}

namespace corvekit_private {

QString versionFilePath()
{
    return QDir(BaseSystem::getInstallPath().path() + QLatin1String("/data"))
        .filePath(QStringLiteral("zeksys.ini"));
}

bool versionFileHasGroup(const QString &group)
{
    const QString path = versionFilePath();
    if (!QFileInfo(path).isFile())
        return false;
    return hasGroup(QSettings(path, QSettings::IniFormat), group);
}

QStringList versionFileGroups()
{
    const QString path = versionFilePath();
    if (!QFileInfo(path).isFile())
        return {};
    return QSettings(path, QSettings::IniFormat).childGroups();
}

} // namespace corvekit_private

namespace corvekit::detail {

QDate parseStampDate(const char *date, char separator)
{
    // The compiler pads a one-digit day with a blank ("Apr  1 2025"): runs count as one.
    const QStringList parts =
        QString(date).split(QLatin1Char(separator), Qt::SkipEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 3)
        return QDate();

    QString monthText = parts.at(0);
    QString dayText = parts.at(1);
    int month = monthNumber(monthText);
    if (month == -1) {
        // "11 Apr 2025": the month may stand second.
        month = monthNumber(dayText);
        std::swap(monthText, dayText);
        if (month == -1)
            return QDate();
    }
    const int day = dayText.trimmed().toInt(nullptr, 10);
    const int year = parts.at(2).toInt(nullptr, 10);
    return QDate(year, month, day);
}

QTime parseStampTime(const char *time, char separator)
{
    const QStringList parts =
        QString(time).split(QLatin1Char(separator), Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 3)
        return QTime();
    const int hour = parts.at(0).trimmed().toInt(nullptr, 10);
    const int minute = parts.at(1).trimmed().toInt(nullptr, 10);
    const int second = parts.at(2).toInt(nullptr, 10);
    return QTime(hour, minute, second, 0);
}

int monthNumber(QString month)
{
    month = month.toLower();
    // The compiler's English names first, whatever the locale.
    for (int index = 0; index < 12; ++index) {
        if (month == QLatin1String(monthTable[index]))
            return index + 1;
    }
    const QLocale locale;
    for (int number = 1; number <= 12; ++number) {
        if (locale.monthName(number, QLocale::ShortFormat).toLower() == month)
            return number;
    }
    return -1;
}

} // namespace corvekit::detail

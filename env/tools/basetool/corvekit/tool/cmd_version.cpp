#include "commands.h"
#include "settingslevels.h"
#include "startup.h"
#include "toolio.h"

#include <corvekit/basesettings_p.h>
#include <corvekit/basesystem.h>
#include <corvekit/basesystem_p.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonObject>

namespace {

struct PatternName
{
    const char *name;
    VersionPatten pattern;
};

const PatternName patternNames[] = {{"major", VersionMajor},
                                    {"major-minor", VersionMajorMinor},
                                    {"major-minor-all", VersionMajorMinorAll},
                                    {"build", VersionBuild},
                                    {"full", VersionFull}};

} // namespace

int runVersion(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the installed product version (data/zeksys.ini below the install "
                       "root), its patch number and suffix, and when the library was built."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption groupOption(
        QStringLiteral("group"),
        QStringLiteral("Reads the version of the product group NAME (any case); a group the "
                       "version file lacks is exit status 1."),
        QStringLiteral("NAME"));
    const QCommandLineOption patternOption(
        QStringLiteral("pattern"),
        QStringLiteral("Chooses the form of the version: major, major-minor, major-minor-all, "
                       "build or full (the default)."),
        QStringLiteral("PATTERN"), QStringLiteral("full"));
    parser.addOptions({jsonOption, groupOption, patternOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status != KeepGoing)
        return status;

    const QString patternText = parser.value(patternOption);
    const PatternName *chosen = nullptr;
    for (const PatternName &candidate : patternNames) {
        if (patternText == QLatin1String(candidate.name))
            chosen = &candidate;
    }
    if (!chosen)
        return fail(ExitUsage, QStringLiteral("unknown pattern '%1'; see --help").arg(patternText));

    // The start-up reads a setting through the working directory's project file.
    if (int status = checkLevelFiles(QString()); status != KeepGoing)
        return status;
    BaseSystem::initializeSystem();
    const bool json = parser.isSet(jsonOption);
    const QString group = parser.value(groupOption);
    const QString versionFile = corvekit_private::versionFilePath();
    QJsonObject root{{QStringLiteral("versionFile"), versionFile},
                     {QStringLiteral("group"), textOrNull(group)},
                     {QStringLiteral("pattern"), QLatin1String(chosen->name)}};
    // The library answers "0.0.0" for a missing file and the top level for a missing group; say
    // which is missing instead.
    QString miss;
    if (!QFileInfo::exists(versionFile))
        miss = QStringLiteral("%1: no version file").arg(versionFile);
    else if (int status = checkInputFile(versionFile); status != KeepGoing)
        return status;
    else if (iniFileState(versionFile) == corvekit_private::SettingsFileState::Malformed)
        return fail(ExitInvalidInput,
                    QStringLiteral("%1: malformed version file").arg(versionFile));
    else if (!group.isEmpty() && !corvekit_private::versionFileHasGroup(group))
        miss = QStringLiteral("%1: no product group '%2'").arg(versionFile, group);
    if (!miss.isEmpty()) {
        if (!json)
            return fail(ExitNotFound, miss);
        root.insert(QStringLiteral("found"), false);
        printJson(root);
        return ExitNotFound;
    }

    const QString version = BaseSystem::getProductVersion(group, chosen->pattern);
    const QString patch = BaseSystem::getOstranePatchVersion();
    const QString suffix = BaseSystem::getProductSuffix();
    const QString buildDate = BaseSystem::getCompilationDate().toString(Qt::ISODate);
    const QString buildTime = BaseSystem::getCompilationTime().toString(Qt::ISODate);

    if (json) {
        root.insert(QStringLiteral("found"), true);
        root.insert(QStringLiteral("version"), version);
        root.insert(QStringLiteral("patch"), textOrNull(patch));
        root.insert(QStringLiteral("suffix"), textOrNull(suffix));
        root.insert(QStringLiteral("buildDate"), textOrNull(buildDate));
        root.insert(QStringLiteral("buildTime"), textOrNull(buildTime));
        printJson(root);
        return ExitSuccess;
    }
    printLine(QStringLiteral("version:       %1").arg(version));
    printLine(QStringLiteral("patch:         %1").arg(patch));
    printLine(QStringLiteral("suffix:        %1").arg(suffix));
    printLine(QStringLiteral("library built: %1 %2").arg(buildDate, buildTime));
    return ExitSuccess;
}

#include "commands.h"
#include "toolio.h"

#include <corvekit/basesystem.h>

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
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    const QCommandLineOption groupOption(
        QStringLiteral("group"),
        QStringLiteral("Product group to read the version from, if the file has it (any case)."),
        QStringLiteral("name"));
    const QCommandLineOption patternOption(
        QStringLiteral("pattern"),
        QStringLiteral("major, major-minor, major-minor-all, build or full (the default)."),
        QStringLiteral("pattern"), QStringLiteral("full"));
    parser.addOptions({jsonOption, groupOption, patternOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status >= 0)
        return status;

    const QString patternText = parser.value(patternOption);
    const PatternName *chosen = nullptr;
    for (const PatternName &candidate : patternNames) {
        if (patternText == QLatin1String(candidate.name))
            chosen = &candidate;
    }
    if (!chosen)
        return fail(ExitUsage, QStringLiteral("unknown pattern '%1'; see --help").arg(patternText));

    BaseSystem::initializeSystem();
    // The library answers "0.0.0" for a missing file; say which file is missing instead.
    const QString versionFile = BaseSystem::getDataPath().filePath(QStringLiteral("zeksys.ini"));
    if (!QFileInfo(versionFile).exists())
        return fail(ExitNotFound, QStringLiteral("%1: no version file").arg(versionFile));

    const QString group = parser.value(groupOption);
    const QString version = BaseSystem::getProductVersion(group, chosen->pattern);
    const QString patch = BaseSystem::getOstranePatchVersion();
    const QString suffix = BaseSystem::getProductSuffix();
    const QString buildDate = BaseSystem::getCompilationDate().toString(Qt::ISODate);
    const QString buildTime = BaseSystem::getCompilationTime().toString(Qt::ISODate);

    if (parser.isSet(jsonOption)) {
        QJsonObject root;
        root.insert(QStringLiteral("versionFile"), versionFile);
        root.insert(QStringLiteral("group"), group);
        root.insert(QStringLiteral("pattern"), QLatin1String(chosen->name));
        root.insert(QStringLiteral("version"), version);
        root.insert(QStringLiteral("patch"), patch);
        root.insert(QStringLiteral("suffix"), suffix);
        root.insert(QStringLiteral("buildDate"), buildDate);
        root.insert(QStringLiteral("buildTime"), buildTime);
        printJson(root);
        return ExitSuccess;
    }
    printLine(QStringLiteral("version:       %1").arg(version));
    printLine(QStringLiteral("patch:         %1").arg(patch));
    printLine(QStringLiteral("suffix:        %1").arg(suffix));
    printLine(QStringLiteral("library built: %1 %2").arg(buildDate, buildTime));
    return ExitSuccess;
}

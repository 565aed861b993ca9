#include "commands.h"
#include "settingslevels.h"
#include "startup.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesettings_p.h>
#include <corvekit/basesystem.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdlib>
#include <optional>
#include <utility>

namespace {

QJsonValue environmentValue(const char *name)
{
    const char *value = std::getenv(name);
    return value ? QJsonValue(QString(value)) : QJsonValue(QJsonValue::Null);
}

QString describe(const QJsonValue &value)
{
    if (value.isNull())
        return QStringLiteral("(unset)");
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return value.toString();
}

} // namespace

int runEnv(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Sets up the environment as a suite tool does at start-up and shows how "
                       "the installation resolves: the install root, the variables, the fixed "
                       "paths and the settings files of every level, most specific first."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption projectOption = projectDirOption(QStringLiteral("Reads"));
    parser.addOptions({jsonOption, projectOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status != KeepGoing)
        return status;

    std::optional<ProfileStep> step(std::in_place, "initialize system");
    QString projectPath;
    if (int status = startUp(parser, projectOption, projectPath); status != KeepGoing)
        return status;
    step.emplace("resolve installation");
    BaseSettings settings;
    warnSkippedLevels(settings);

    // Ordered pairs keep the text output in a reading order; JSON gets the same names.
    const QList<std::pair<QString, QJsonValue>> environment = {
        {QStringLiteral("TOOLRTF"), environmentValue("TOOLRTF")},
        {QStringLiteral("FOUNDRY"), environmentValue("FOUNDRY")},
        {QStringLiteral("ZEKPROG_PATH"), environmentValue("ZEKPROG_PATH")},
    };
    const QList<std::pair<QString, QJsonValue>> paths = {
        {QStringLiteral("binary"), BaseSystem::getBinaryPath().path()},
        {QStringLiteral("data"), BaseSystem::getDataPath().path()},
        {QStringLiteral("help"), BaseSystem::getHelpPath().path()},
        {QStringLiteral("tclExe"), BaseSystem::getTclExePath()},
        {QStringLiteral("tclLibrary"), BaseSystem::getTclLibraryPath().path()},
        {QStringLiteral("tclScript"), BaseSystem::getTclScriptPath().path()},
    };
    QList<std::pair<QString, QJsonValue>> levels;
    for (const corvekit_private::SettingsLevel &level : corvekit_private::settingsLevels(settings))
        levels.append({level.scope, level.fileName});
    const bool groupFile = settings.isUseGroupSettingFile();
    const QString installRoot = BaseSystem::getInstallPath().path();
    step.emplace("print");

    if (parser.isSet(jsonOption)) {
        QJsonObject environmentObject;
        for (const auto &[name, value] : environment)
            environmentObject.insert(name, value);
        QJsonObject pathObject;
        for (const auto &[name, value] : paths)
            pathObject.insert(name, value);
        QJsonArray levelArray;
        for (const auto &[name, value] : levels)
            levelArray.append(
                QJsonObject{{QStringLiteral("level"), name}, {QStringLiteral("file"), value}});
        printJson({{QStringLiteral("installRoot"), installRoot},
                   {QStringLiteral("environment"), environmentObject},
                   {QStringLiteral("paths"), pathObject},
                   {QStringLiteral("settingsFiles"), levelArray},
                   {QStringLiteral("groupSettingFile"), groupFile}});
        return ExitSuccess;
    }

    const auto printSection = [](const QList<std::pair<QString, QJsonValue>> &entries,
                                 const QString &prefix) {
        for (const auto &[name, value] : entries)
            printLine(QStringLiteral("%1%2 %3").arg(
                prefix, (name + QLatin1Char(':')).leftJustified(14 - prefix.size()),
                describe(value)));
    };
    printSection({{QStringLiteral("installRoot"), installRoot}}, QString());
    printSection(environment, QString());
    printLine(QStringLiteral("paths:"));
    printSection(paths, QStringLiteral("  "));
    printLine(QStringLiteral("settings files:"));
    printSection(levels, QStringLiteral("  "));
    printLine(QStringLiteral("group setting file in use: %1")
                  .arg(groupFile ? QStringLiteral("yes") : QStringLiteral("no")));
    return ExitSuccess;
}

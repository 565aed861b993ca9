#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QCommandLineParser>
#include <QJsonObject>
#include <QSettings>

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
                       "the installation resolves."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    const QCommandLineOption projectOption(QStringLiteral("project"),
                                           QStringLiteral("Project path behind the project level."),
                                           QStringLiteral("path"));
    parser.addOptions({jsonOption, projectOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status >= 0)
        return status;

    std::optional<ProfileStep> step(std::in_place, "initialize system");
    BaseSystem::initializeSystem();
    step.emplace("resolve installation");
    BaseSettings settings(parser.value(projectOption));

    // Ordered pairs keep the text output in a reading order; JSON gets the same names.
    const QList<std::pair<QString, QJsonValue>> environment = {
        {QStringLiteral("installRoot"), BaseSystem::getInstallPath().path()},
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
    const QList<std::pair<QString, QJsonValue>> levels = {
        {QStringLiteral("project"), settings.getProjectLeverSetting()->fileName()},
        {QStringLiteral("user"), settings.getUserSetting()->fileName()},
        {QStringLiteral("system"), settings.getSystemSetting()->fileName()},
    };
    const bool groupFile = settings.isUseGroupSettingFile();
    step.emplace("print");

    if (parser.isSet(jsonOption)) {
        QJsonObject root;
        for (const auto &[name, value] : environment)
            root.insert(name, value);
        QJsonObject pathObject;
        for (const auto &[name, value] : paths)
            pathObject.insert(name, value);
        root.insert(QStringLiteral("paths"), pathObject);
        QJsonObject levelObject;
        for (const auto &[name, value] : levels)
            levelObject.insert(name, value);
        root.insert(QStringLiteral("settingsFiles"), levelObject);
        root.insert(QStringLiteral("groupSettingFile"), groupFile);
        printJson(root);
        return ExitSuccess;
    }

    const auto printSection = [](const QList<std::pair<QString, QJsonValue>> &entries,
                                 const QString &prefix) {
        for (const auto &[name, value] : entries)
            printLine(QStringLiteral("%1%2 %3").arg(
                prefix, (name + QLatin1Char(':')).leftJustified(14 - prefix.size()),
                describe(value)));
    };
    printSection(environment, QString());
    printLine(QStringLiteral("paths:"));
    printSection(paths, QStringLiteral("  "));
    printLine(QStringLiteral("settings files:"));
    printSection(levels, QStringLiteral("  "));
    printLine(QStringLiteral("group setting file in use: %1")
                  .arg(groupFile ? QStringLiteral("yes") : QStringLiteral("no")));
    return ExitSuccess;
}

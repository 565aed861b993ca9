#include "commands.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSettings>

namespace {

struct Tool
{
    const char *name;
    const char *key;
    QDir (*locate)(bool);
};

const Tool tools[] = {{"synplify", "SYNPLIFY_PATH", BaseSystem::getSynplifyPath},
                      {"precision", "PRECISION_PATH", BaseSystem::getPrecsionPath},
                      {"activehdl", "ACTIVEHDL_PATH", BaseSystem::getActiveHDLPath},
                      {"modelsim", "MODELSIM_PATH", BaseSystem::getModelSimPath},
                      {"questasim", "QUESTASIM_PATH", BaseSystem::getQuestaSimPath},
                      {"esdk", "ESDK_PATH", BaseSystem::getESDKPath}};

// How a locator came to its answer: "setting" with the level whose non-empty value it took,
// else "folder" for a folder below the install root, else "unknown".
std::pair<QString, QString> source(const QString &key, const QDir &directory, bool useDefault)
{
    BaseSettings settings;
    if (useDefault) {
        if (!settings.getDefaultStringSetting(key).isEmpty())
            return {QStringLiteral("setting"), QStringLiteral("system")};
    } else {
        const std::pair<const char *, QSettings *> levels[] = {
            {"project", settings.getProjectLeverSetting()},
            {"user", settings.getUserSetting()},
            {"system", settings.getSystemSetting()}};
        for (const auto &[name, level] : levels) {
            if (!level->contains(key))
                continue;
            // An empty value stops the lookup and sends the locator to the folders.
            if (!level->value(key).toString().isEmpty())
                return {QStringLiteral("setting"), QLatin1String(name)};
            break;
        }
    }
    if (directory == QDir::root())
        return {QStringLiteral("unknown"), QString()};
    return {QStringLiteral("folder"), QString()};
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

int runTools(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows where each companion tool lies and how that was found, the "
                       "selected simulator and the Synplify edition switches."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    const QCommandLineOption defaultsOption(
        QStringLiteral("defaults"),
        QStringLiteral("Asks the installation's settings alone, as with useDefault."));
    const QCommandLineOption projectOption(
        QStringLiteral("project"),
        QStringLiteral("Project path; \".setting.ini\" is appended to it as it stands."),
        QStringLiteral("path"));
    parser.addOptions({jsonOption, defaultsOption, projectOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status >= 0)
        return status;

    BaseSystem::initializeSystem();
    BaseSettings::setProjectPath(parser.value(projectOption));
    const bool useDefault = parser.isSet(defaultsOption);

    QJsonArray toolArray;
    for (const Tool &tool : tools) {
        const QDir directory = tool.locate(useDefault);
        QJsonObject entry;
        entry.insert(QStringLiteral("name"), QLatin1String(tool.name));
        entry.insert(QStringLiteral("key"), QLatin1String(tool.key));
        entry.insert(QStringLiteral("directory"), directory.path());
        const auto [how, level] = source(QLatin1String(tool.key), directory, useDefault);
        entry.insert(QStringLiteral("source"), how);
        if (!level.isEmpty())
            entry.insert(QStringLiteral("level"), level);
        toolArray.append(entry);
    }
    QJsonObject simulator;
    simulator.insert(QStringLiteral("name"), BaseSystem::getSimulatorName());
    simulator.insert(QStringLiteral("key"), QLatin1String(BaseSystem::getSimulatorInstallEnv()));
    simulator.insert(QStringLiteral("directory"), BaseSystem::getSimulatorPath(useDefault).path());
    QJsonObject synplify;
    synplify.insert(QStringLiteral("useOEM"), BaseSystem::getUseSynplifyOEM(useDefault));
    synplify.insert(QStringLiteral("usePro"), BaseSystem::getUseSynplifyPro(useDefault));

    if (parser.isSet(jsonOption)) {
        QJsonObject root;
        root.insert(QStringLiteral("defaults"), useDefault);
        root.insert(QStringLiteral("tools"), toolArray);
        root.insert(QStringLiteral("simulator"), simulator);
        root.insert(QStringLiteral("synplify"), synplify);
        printJson(root);
        return ExitSuccess;
    }
    for (const auto &value : std::as_const(toolArray)) {
        const QJsonObject entry = value.toObject();
        const QString how = entry.value(QStringLiteral("source")).toString();
        const QString level = entry.value(QStringLiteral("level")).toString();
        printLine(QStringLiteral("%1 %2 (%3)")
                      .arg(entry.value(QStringLiteral("name")).toString().leftJustified(10),
                           entry.value(QStringLiteral("directory")).toString(),
                           level.isEmpty() ? how : level + QLatin1Char(' ') + how));
    }
    printLine(QStringLiteral("simulator: %1 (%2) %3")
                  .arg(simulator.value(QStringLiteral("name")).toString(),
                       simulator.value(QStringLiteral("key")).toString(),
                       simulator.value(QStringLiteral("directory")).toString()));
    printLine(QStringLiteral("synplify edition: OEM %1, Pro %2")
                  .arg(yesNo(synplify.value(QStringLiteral("useOEM")).toBool()),
                       yesNo(synplify.value(QStringLiteral("usePro")).toBool())));
    return ExitSuccess;
}

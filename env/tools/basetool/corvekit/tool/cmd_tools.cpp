#include "commands.h"
#include "settingslevels.h"
#include "startup.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>
#include <corvekit/basesystem_p.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

using corvekit_private::ToolLocation;
using corvekit_private::ToolSource;

namespace {

QString sourceName(ToolSource source)
{
    switch (source) {
    case ToolSource::Setting:
        return QStringLiteral("setting");
    case ToolSource::Folder:
        return QStringLiteral("folder");
    case ToolSource::NotFound:
        break;
    }
    return QStringLiteral("notFound");
}

QJsonObject toolEntry(const corvekit_private::CompanionTool &tool, const ToolLocation &location)
{
    const bool found = location.source != ToolSource::NotFound;
    const QString directory = found ? location.directory.path() : QString();
    return {{QStringLiteral("name"), QLatin1String(tool.name)},
            {QStringLiteral("key"), QLatin1String(tool.key)},
            {QStringLiteral("directory"), textOrNull(directory)},
            {QStringLiteral("exists"), found && QFileInfo(directory).isDir()},
            {QStringLiteral("source"), sourceName(location.source)},
            {QStringLiteral("level"), textOrNull(location.scope)},
            {QStringLiteral("settingsFile"), textOrNull(location.settingsFile)},
            {QStringLiteral("candidates"), QJsonArray::fromStringList(location.tried)}};
}

// Why a locator answered as it did, for the text output.
QString reason(const QJsonObject &entry)
{
    const QString key = entry.value(QStringLiteral("key")).toString();
    const QString level = entry.value(QStringLiteral("level")).toString();
    const QString file = entry.value(QStringLiteral("settingsFile")).toString();
    const QString source = entry.value(QStringLiteral("source")).toString();
    const QStringList tried = entry.value(QStringLiteral("candidates")).toVariant().toStringList();
    if (source == QLatin1String("setting"))
        return QStringLiteral("setting %1 at %2 level, %3; %4")
            .arg(key, level, file,
                 entry.value(QStringLiteral("exists")).toBool() ? QStringLiteral("exists")
                                                                : QStringLiteral("missing"));
    const QString setting =
        level.isEmpty() ? QStringLiteral("%1 is set at no level").arg(key)
                        : QStringLiteral("%1 is empty at %2 level, %3").arg(key, level, file);
    if (source == QLatin1String("folder"))
        return QStringLiteral("%1; candidate folder; exists").arg(setting);
    if (tried.isEmpty())
        return QStringLiteral("%1; no candidate folder").arg(setting);
    return QStringLiteral("%1; no candidate folder exists: %2")
        .arg(setting, tried.join(QStringLiteral(", ")));
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

int runTools(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows where each companion tool lies, why (the setting and level that named it, or the "
        "candidate folder below the install root) and whether its folder exists; the selected "
        "simulator, which only the installation's SIMULATOR_TYPE chooses; and the Synplify "
        "edition switches."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption defaultsOption(
        QStringLiteral("defaults"),
        QStringLiteral("Asks the system level alone, as the locators do with useDefault, so "
                       "that user and project settings do not count."));
    const QCommandLineOption projectOption = projectDirOption(QStringLiteral("Reads"));
    parser.addOptions({jsonOption, defaultsOption, projectOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status != KeepGoing)
        return status;
    QString projectPath;
    if (int status = startUp(parser, projectOption, projectPath); status != KeepGoing)
        return status;
    {
        BaseSettings settings;
        warnSkippedLevels(settings);
    }
    const bool useDefault = parser.isSet(defaultsOption);

    QJsonArray toolArray;
    const QString simulatorKey = QLatin1String(BaseSystem::getSimulatorInstallEnv());
    QJsonObject simulatorTool;
    for (const auto &tool : corvekit_private::companionTools()) {
        const QJsonObject entry =
            toolEntry(tool, corvekit_private::locateCompanionTool(tool, useDefault));
        if (simulatorKey == QLatin1String(tool.key))
            simulatorTool = entry;
        toolArray.append(entry);
    }
    const corvekit_private::SimulatorSelection selection = corvekit_private::simulatorSelection();
    const bool typeSet = !selection.type.isNull();
    const QJsonObject simulator = {
        {QStringLiteral("name"), BaseSystem::getSimulatorName()},
        {QStringLiteral("type"), typeSet ? QJsonValue(selection.type) : QJsonValue()},
        {QStringLiteral("knownType"), selection.known},
        {QStringLiteral("level"), typeSet ? QJsonValue(QStringLiteral("system")) : QJsonValue()},
        {QStringLiteral("settingsFile"),
         typeSet ? QJsonValue(selection.settingsFile) : QJsonValue()},
        {QStringLiteral("key"), simulatorKey},
        {QStringLiteral("tool"), simulatorTool.value(QStringLiteral("name"))},
        {QStringLiteral("directory"), simulatorTool.value(QStringLiteral("directory"))}};
    const QJsonObject synplify = {
        {QStringLiteral("useOEM"), BaseSystem::getUseSynplifyOEM(useDefault)},
        {QStringLiteral("usePro"), BaseSystem::getUseSynplifyPro(useDefault)}};

    if (parser.isSet(jsonOption)) {
        printJson({{QStringLiteral("defaults"), useDefault},
                   {QStringLiteral("project"), textOrNull(projectPath)},
                   {QStringLiteral("tools"), toolArray},
                   {QStringLiteral("simulator"), simulator},
                   {QStringLiteral("synplify"), synplify}});
        return ExitSuccess;
    }
    for (const auto &value : std::as_const(toolArray)) {
        const QJsonObject entry = value.toObject();
        const QJsonValue directory = entry.value(QStringLiteral("directory"));
        printLine(QStringLiteral("%1 %2 (%3)")
                      .arg(entry.value(QStringLiteral("name")).toString().leftJustified(10),
                           directory.isNull() ? QStringLiteral("not found") : directory.toString(),
                           reason(entry)));
    }
    QString type = QStringLiteral("SIMULATOR_TYPE is not set at the system level");
    if (typeSet)
        type = QStringLiteral("SIMULATOR_TYPE \"%1\" at system level, %2%3")
                   .arg(selection.type, selection.settingsFile,
                        selection.known ? QString() : QStringLiteral(", not a known type"));
    printLine(QStringLiteral("simulator  %1, the tool %2 above (%3; only the system level counts)")
                  .arg(simulator.value(QStringLiteral("name")).toString(),
                       simulator.value(QStringLiteral("tool")).toString(), type));
    printLine(QStringLiteral("synplify edition: OEM %1, Pro %2")
                  .arg(yesNo(synplify.value(QStringLiteral("useOEM")).toBool()),
                       yesNo(synplify.value(QStringLiteral("usePro")).toBool())));
    return ExitSuccess;
}

#include "commands.h"
#include "startup.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesettings_p.h>
#include <corvekit/basesystem.h>
#include <corvekit/basesystem_p.h>
#include <helpindexreader/helpindexcheck_p.h>

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdlib>

using corvekit_private::SettingsFileState;
using corvekit_private::ToolSource;

namespace {

enum class Status
{
    Ok,
    Warning,
    Error,
};

struct Check
{
    QString name;
    Status status;
    QString detail;
    QString advice; // what to do; empty when there is nothing to do
};

const char *statusName(Status status)
{
    switch (status) {
    case Status::Ok:
        return "ok";
    case Status::Warning:
        return "warning";
    case Status::Error:
        break;
    }
    return "error";
}

QString why(SettingsFileState state)
{
    switch (state) {
    case SettingsFileState::Missing:
        return QStringLiteral("does not exist");
    case SettingsFileState::Readable:
        return QStringLiteral("reads");
    case SettingsFileState::Unreadable:
        return QStringLiteral("cannot be read");
    case SettingsFileState::Malformed:
        return QStringLiteral("is malformed, lines that are no settings are lost");
    case SettingsFileState::NotRegularFile:
        break;
    }
    return QStringLiteral("is not a regular file");
}

Check rootCheck(bool rootWasSet)
{
    const QString root = BaseSystem::getInstallPath().path();
    if (!QFileInfo(root).isDir())
        return {QStringLiteral("install root"), Status::Error,
                QStringLiteral("%1 does not exist").arg(root),
                QStringLiteral("set TOOLRTF to the folder of the installation")};
    if (!rootWasSet)
        return {QStringLiteral("install root"), Status::Warning,
                QStringLiteral("%1, from the tool's location: TOOLRTF is not set").arg(root),
                QStringLiteral("set TOOLRTF to the folder of the installation")};
    return {QStringLiteral("install root"), Status::Ok, root, QString()};
}

void addFolderChecks(QList<Check> &checks)
{
    // The data folder holds the version and the installation's settings; the others only what
    // some tools need.
    const std::pair<const char *, QString> folders[] = {
        {"data folder", BaseSystem::getDataPath().path()},
        {"binary folder", BaseSystem::getBinaryPath().path()},
        {"help folder", BaseSystem::getHelpPath().path()},
        {"Tcl library folder", BaseSystem::getTclLibraryPath().path()},
        {"Tcl script folder", BaseSystem::getTclScriptPath().path()}};
    for (const auto &[name, path] : folders) {
        const QString checkName = QLatin1String(name);
        if (QFileInfo(path).isDir()) {
            checks.append({checkName, Status::Ok, path, QString()});
            continue;
        }
        const Status status =
            checkName == QLatin1String("data folder") ? Status::Error : Status::Warning;
        checks.append({checkName, status, QStringLiteral("%1 does not exist").arg(path),
                       QStringLiteral("reinstall, or restore the folder")});
    }
}

Check versionCheck()
{
    const QString file = corvekit_private::versionFilePath();
    const SettingsFileState state = iniFileState(file);
    if (state != SettingsFileState::Readable)
        return {QStringLiteral("version file"), Status::Error,
                QStringLiteral("%1 %2").arg(file, why(state)),
                QStringLiteral("restore the version file of the installation")};
    if (BaseSystem::getProductVersion(QString(), VersionMajor).isEmpty())
        return {QStringLiteral("version file"), Status::Warning,
                QStringLiteral("%1 holds no version/MajorVersion").arg(file),
                QStringLiteral("restore the version file of the installation")};
    const QStringList groups = corvekit_private::versionFileGroups();
    return {QStringLiteral("version file"), Status::Ok,
            QStringLiteral("%1: %2, groups: %3")
                .arg(file, BaseSystem::getProductVersion(QString(), VersionFull),
                     groups.isEmpty() ? QStringLiteral("none") : groups.join(QStringLiteral(", "))),
            QString()};
}

void addLevelChecks(QList<Check> &checks, BaseSettings &settings)
{
    const QString groupFile = qEnvironmentVariable("SOLVANE_GROUP_SETTING_FILE");
    if (!groupFile.isEmpty() && !settings.isUseGroupSettingFile())
        checks.append({QStringLiteral("group settings"), Status::Error,
                       QStringLiteral("%1 %2; the individual file is used instead")
                           .arg(groupFile, why(corvekit_private::settingsFileState(groupFile))),
                       QStringLiteral("make SOLVANE_GROUP_SETTING_FILE name a readable file")});
    for (const corvekit_private::SettingsLevel &level :
         corvekit_private::settingsLevels(settings)) {
        const SettingsFileState state =
            corvekit_private::settingsFileState(level.fileName, level.settings);
        Check check{level.scope + QStringLiteral(" settings"), Status::Ok,
                    QStringLiteral("%1 %2").arg(level.fileName, why(state)), QString()};
        if (state == SettingsFileState::Missing) {
            // Only the installation's defaults and a named group file are expected to exist.
            if (level.scope == QLatin1String("system") || level.scope == QLatin1String("group")) {
                check.status = Status::Warning;
                check.advice = QStringLiteral("create the file, or check its path");
            }
        } else if (state != SettingsFileState::Readable) {
            check.status = Status::Error;
            check.advice = QStringLiteral("repair the file or make it readable");
        }
        checks.append(check);
    }
}

Check toolCheck(const corvekit_private::CompanionTool &tool)
{
    const corvekit_private::ToolLocation location =
        corvekit_private::locateCompanionTool(tool, false);
    const QString name = QStringLiteral("tool %1").arg(QLatin1String(tool.name));
    const QString key = QLatin1String(tool.key);
    if (location.source == ToolSource::Folder)
        return {name, Status::Ok,
                QStringLiteral("%1, candidate folder").arg(location.directory.path()), QString()};
    if (location.source == ToolSource::Setting) {
        const QString detail = QStringLiteral("%1, setting %2 at %3 level")
                                   .arg(location.directory.path(), key, location.scope);
        if (location.directory.exists())
            return {name, Status::Ok, detail, QString()};
        return {name, Status::Warning, detail + QStringLiteral(", does not exist"),
                QStringLiteral("correct %1 in %2, or install the tool there")
                    .arg(key, location.settingsFile)};
    }
    return {name, Status::Warning,
            QStringLiteral("not found, %1 is set at no level or empty").arg(key),
            tool.candidates.isEmpty()
                ? QStringLiteral("set %1 if the tool is installed").arg(key)
                : QStringLiteral("set %1, or install the tool below the install root").arg(key)};
}

Check simulatorCheck()
{
    const corvekit_private::SimulatorSelection selection = corvekit_private::simulatorSelection();
    const QString name = BaseSystem::getSimulatorName();
    if (selection.type.isNull() || !selection.known) {
        const QString type = selection.type.isNull()
                                 ? QStringLiteral("is not set at the system level")
                                 : QStringLiteral("at the system level is \"%1\", no known type")
                                       .arg(selection.type);
        return {QStringLiteral("simulator"), Status::Warning,
                QStringLiteral("SIMULATOR_TYPE %1; %2 is assumed").arg(type, name),
                QStringLiteral("set SIMULATOR_TYPE in %1").arg(selection.settingsFile)};
    }
    const QDir directory = BaseSystem::getSimulatorPath(false);
    const QString detail = QStringLiteral("%1 (SIMULATOR_TYPE \"%2\"), ").arg(name, selection.type);
    if (directory == QDir::root())
        return {QStringLiteral("simulator"), Status::Warning,
                detail + QStringLiteral("its folder is not found"),
                QStringLiteral("set %1, or install the simulator below the install root")
                    .arg(QLatin1String(BaseSystem::getSimulatorInstallEnv()))};
    return {QStringLiteral("simulator"), Status::Ok, detail + directory.path(), QString()};
}

Check helpIndexCheck()
{
    const QString file = BaseSystem::getHelpPath().filePath(QStringLiteral("helpindex.xml"));
    const QString name = QStringLiteral("help index");
    const QFileInfo info(file);
    if (!info.exists())
        return {name, Status::Warning, QStringLiteral("%1 does not exist").arg(file),
                QStringLiteral("restore the help index")};
    QFile device(file);
    if (!info.isFile() || !device.open(QIODevice::ReadOnly))
        return {name, Status::Error,
                QStringLiteral("%1 %2").arg(file, info.isFile()
                                                      ? QStringLiteral("cannot be read")
                                                      : QStringLiteral("is not a regular file")),
                QStringLiteral("restore the help index")};
    const corvekit_private::HelpIndexCheck check = corvekit_private::checkHelpIndex(&device);
    if (!check.valid)
        return {name, Status::Error,
                QStringLiteral("%1:%2:%3: %4")
                    .arg(file)
                    .arg(check.line)
                    .arg(check.column)
                    .arg(check.error),
                QStringLiteral("restore the help index")};
    return {name, Status::Ok, file, QString()};
}

} // namespace

int runDoctor(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Checks an installation in one run: the install root and its folders, the version file, "
        "every settings file, the companion tools, the selected simulator and the help index. "
        "Prints one row a check, ok, warning or error, with what to do. Exit status 0 when no "
        "check is an error, else 1."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption projectOption = projectDirOption(QStringLiteral("Checks"));
    parser.addOptions({jsonOption, projectOption});
    if (int status = parseArguments(parser, arguments, 0, 0); status != KeepGoing)
        return status;
    const bool rootWasSet = std::getenv("TOOLRTF") != nullptr;
    QString projectPath;
    if (int status = startUp(parser, projectOption, projectPath); status != KeepGoing)
        return status;

    QList<Check> checks = {rootCheck(rootWasSet)};
    addFolderChecks(checks);
    checks.append(versionCheck());
    {
        BaseSettings settings;
        addLevelChecks(checks, settings);
    }
    for (const corvekit_private::CompanionTool &tool : corvekit_private::companionTools())
        checks.append(toolCheck(tool));
    checks.append(simulatorCheck());
    checks.append(helpIndexCheck());

    int errors = 0;
    int warnings = 0;
    for (const Check &check : std::as_const(checks)) {
        errors += check.status == Status::Error ? 1 : 0;
        warnings += check.status == Status::Warning ? 1 : 0;
    }
    if (parser.isSet(jsonOption)) {
        QJsonArray rows;
        for (const Check &check : std::as_const(checks))
            rows.append(
                QJsonObject{{QStringLiteral("name"), check.name},
                            {QStringLiteral("status"), QLatin1String(statusName(check.status))},
                            {QStringLiteral("detail"), check.detail},
                            {QStringLiteral("advice"), textOrNull(check.advice)}});
        printJson({{QStringLiteral("checks"), rows},
                   {QStringLiteral("errors"), errors},
                   {QStringLiteral("warnings"), warnings}});
    } else {
        for (const Check &check : std::as_const(checks)) {
            printLine(QStringLiteral("%1 %2 %3")
                          .arg(QString::fromLatin1(statusName(check.status)).leftJustified(7),
                               check.name.leftJustified(18), check.detail));
            if (!check.advice.isEmpty())
                printLine(QString(27, QLatin1Char(' ')) + QStringLiteral("-> ") + check.advice);
        }
        printLine(QStringLiteral("errors: %1, warnings: %2").arg(errors).arg(warnings));
    }
    return errors == 0 ? ExitSuccess : ExitNotFound;
}

#include "startup.h"

#include "settingslevels.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QSettings>

int startUp(const QCommandLineParser &parser, const QCommandLineOption &option,
            QString &projectPath)
{
    if (int status = projectDirectory(parser, option, projectPath); status != KeepGoing)
        return status;
    // The start-up reads through the working directory's project file, the command through the
    // project's: both must be safe to open.
    if (int status = checkLevelFiles(QString()); status != KeepGoing)
        return status;
    if (int status = checkLevelFiles(projectPath); status != KeepGoing)
        return status;
    BaseSystem::initializeSystem();
    BaseSettings::setProjectPath(projectPath);
    return KeepGoing;
}

corvekit_private::SettingsFileState iniFileState(const QString &fileName)
{
    const corvekit_private::SettingsFileState state = corvekit_private::settingsFileState(fileName);
    if (state != corvekit_private::SettingsFileState::Readable)
        return state;
    const QSettings opened(fileName, QSettings::IniFormat);
    return corvekit_private::settingsFileState(fileName, &opened);
}

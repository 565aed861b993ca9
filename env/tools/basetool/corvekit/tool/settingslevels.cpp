#include "settingslevels.h"

#include "toolio.h"

#include <corvekit/basesettings_p.h>

#include <cstdio>

using corvekit_private::SettingsFileState;

int checkLevelFiles(const QString &projectPath)
{
    for (const QString &file : {corvekit_private::projectSettingsFile(projectPath),
                                corvekit_private::systemSettingsFile()}) {
        if (corvekit_private::settingsFileState(file) == SettingsFileState::NotRegularFile)
            return fail(ExitInvalidInput,
                        QStringLiteral("%1: settings file is not a regular file").arg(file));
    }
    return KeepGoing;
}

void warnSkippedLevels(BaseSettings &settings)
{
    for (const corvekit_private::SettingsLevel &level :
         corvekit_private::settingsLevels(settings)) {
        QString why;
        switch (corvekit_private::settingsFileState(level.fileName, level.settings)) {
        case SettingsFileState::Missing:
            // Only the group file is named by hand; the other levels may well not exist yet.
            if (level.scope == QLatin1String("group"))
                why = QStringLiteral("does not exist, the group level reads as empty");
            break;
        case SettingsFileState::Readable:
            break;
        case SettingsFileState::Unreadable:
            why = QStringLiteral("cannot be read, skipped");
            break;
        case SettingsFileState::Malformed:
            why = QStringLiteral("is malformed, lines that are no settings are skipped");
            break;
        case SettingsFileState::NotRegularFile:
            why = QStringLiteral("is not a regular file, skipped");
            break;
        }
        if (!why.isEmpty())
            std::fprintf(stderr, "corvekit: warning: %s settings file %s %s\n",
                         level.scope.toLocal8Bit().constData(),
                         level.fileName.toLocal8Bit().constData(), why.toLocal8Bit().constData());
    }
}

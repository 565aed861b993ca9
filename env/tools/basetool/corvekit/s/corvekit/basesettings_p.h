#ifndef CORVEKIT_BASESETTINGS_P_H
#define CORVEKIT_BASESETTINGS_P_H

// The settings levels as the library resolves them, for the tool built beside the library:
// which files a BaseSettings opens, in which order it asks them, and what each level is called.
// Not installed; no promise of stability.

#include "corvekit_export.h"

#include <QList>
#include <QString>

class BaseSettings;
class QSettings;

namespace corvekit_private {

// How a level's file reads. Judged from the file's kind before anything opens it, then from the
// QSettings that has it open.
enum class SettingsFileState
{
    Missing,        // no file yet: the level reads as empty
    Readable,       // read whole
    Unreadable,     // exists but this process may not read it
    Malformed,      // QSettings met a format error and skipped what it could not parse
    NotRegularFile, // a directory, FIFO, socket or device
};

struct SettingsLevel
{
    QString scope;       // "project", "user", "group", "sibling" or "system"
    QString fileName;    // absolute
    QSettings *settings; // owned by the BaseSettings it came from
};

//! The levels of \a settings in the order getSetting asks them, most specific first.
CORVEKIT_EXPORT QList<SettingsLevel> settingsLevels(BaseSettings &settings);

//! The index in settingsLevels() of the level that answers \a key, -1 when none holds it.
CORVEKIT_EXPORT int answeringLevel(BaseSettings &settings, const QString &key);

//! The installation's file of defaults, as a BaseSettings made now would open it.
CORVEKIT_EXPORT QString systemSettingsFile();
//! The project file below \a projectPath, which is used as it stands ("" means "./").
CORVEKIT_EXPORT QString projectSettingsFile(const QString &projectPath);

//! The state of \a fileName; \a opened, when given, is a QSettings that has it open.
CORVEKIT_EXPORT SettingsFileState settingsFileState(const QString &fileName,
                                                    const QSettings *opened = nullptr);

} // namespace corvekit_private

#endif

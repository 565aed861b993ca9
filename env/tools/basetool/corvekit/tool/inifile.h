#ifndef CORVEKIT_TOOL_INIFILE_H
#define CORVEKIT_TOOL_INIFILE_H

#include <QString>
#include <QStringList>
#include <QVariant>

/*
 * Edits a settings file in QSettings' INI format the way an administrator edits it by hand:
 * only the lines of the key change, and every other byte (comments, blank lines, the order of
 * keys and groups) stays as it was. Values and keys are encoded by QSettings itself, so the file
 * reads back exactly as if QSettings had stored them.
 *
 * An edit takes the lock file QSettings takes ("<file>.lock"), reads the file again under it,
 * and replaces the file in one step. Before the file is replaced, the new text is read back
 * through QSettings and must hold the same keys and values as the old one, but for the edit.
 */

enum class IniEditStatus
{
    Done,
    NotFound,    // remove: the file holds neither the key nor keys below it
    InvalidFile, // not a regular file, unreadable, malformed, or not editable without loss
    CannotWrite, // the folder, the lock file or the file cannot be written; the file is untouched
};

struct IniEditResult
{
    IniEditStatus status = IniEditStatus::Done;
    QString message;         // why it failed, naming the file
    QVariant value;          // setIniValue: the value as it reads back
    QStringList removedKeys; // removeIniKey: the keys that were removed, sorted
};

//! Stores \a value under \a key in \a fileName, creating the file and its folder if need be.
IniEditResult setIniValue(const QString &fileName, const QString &key, const QVariant &value);

//! Removes \a key, and every key below it as a group, from \a fileName.
IniEditResult removeIniKey(const QString &fileName, const QString &key);

#endif

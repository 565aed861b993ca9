#ifndef CORVEKIT_TOOL_STARTUP_H
#define CORVEKIT_TOOL_STARTUP_H

#include <corvekit/basesettings_p.h>

#include <QJsonValue>
#include <QString>

class QCommandLineOption;
class QCommandLineParser;

/*!
 * Starts a command that reads the installation's settings as a suite tool starts: refuses a
 * --project directory that does not exist and level files that would block (checked before
 * anything opens them), runs BaseSystem::initializeSystem and makes the project behind \a option
 * the project level of every BaseSettings made from now on. \a projectPath gets "DIR/", or
 * empty without the option. Returns KeepGoing when the caller should go on, else the exit status
 * (reported).
 */
int startUp(const QCommandLineParser &parser, const QCommandLineOption &option,
            QString &projectPath);

//! How the INI file \a fileName reads; it is opened only if it is a regular file.
corvekit_private::SettingsFileState iniFileState(const QString &fileName);

//! JSON's null where nothing was found, never "".
inline QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

#endif

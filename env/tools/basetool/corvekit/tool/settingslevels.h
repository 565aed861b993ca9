#ifndef CORVEKIT_TOOL_SETTINGSLEVELS_H
#define CORVEKIT_TOOL_SETTINGSLEVELS_H

#include <QString>

class BaseSettings;

/*!
 * Refuses, before a BaseSettings opens them, level files that would block or mislead: a project
 * or system file that is a directory, FIFO, socket or device. Returns KeepGoing when the caller
 * should go on, else ExitInvalidInput (reported).
 */
int checkLevelFiles(const QString &projectPath);

//! Names on standard error each level file that \a settings had to skip, and why.
void warnSkippedLevels(BaseSettings &settings);

#endif

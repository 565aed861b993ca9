#ifndef CORVEKIT_BASESYSTEM_P_H
#define CORVEKIT_BASESYSTEM_P_H

#include <corvekit/corvekit_export.h>

#include <QDate>
#include <QDir>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTime>

class BaseSettings;

namespace corvekit::detail {

// The build stamp parsers behind BaseSystem::GetDate, GetTime and findMonth.

//! "Apr 11 2025" split at \a separator (runs count as one), the month first or second; a null
//! date unless there are three parts and one of the first two is a month.
QDate parseStampDate(const char *date, char separator);
//! "01:22:07" split at \a separator (empty parts kept, so they read as 0); invalid unless there
//! are three parts.
QTime parseStampTime(const char *time, char separator);
//! 1 to 12 for an English or the default locale's short month name in any case, else -1.
int monthNumber(QString month);

} // namespace corvekit::detail

// How the installation answers, for the tool built beside the library: the decisions behind the
// companion tool locators, the simulator selection, the version file and the file type filters,
// taken by the same code that BaseSystem's own operations run. Not installed; no promise of
// stability.
namespace corvekit_private {

//! A companion tool as its locator knows it.
struct CompanionTool
{
    const char *name;               // short name: "synplify", "precision", ...
    const char *key;                // the settings key: "SYNPLIFY_PATH", ...
    QList<const char *> candidates; // folders below TOOLRTF, in the order tried
};

//! Every companion tool, in the order of BaseSystem's locators.
CORVEKIT_EXPORT const QList<CompanionTool> &companionTools();

enum class ToolSource
{
    Setting,  // the non-empty value of the key at `scope`
    Folder,   // a candidate folder below the install root that exists
    NotFound, // neither: the locator answers QDir::root()
};

//! What a locator answered and why.
struct ToolLocation
{
    QDir directory = QDir::root(); // what the locator returns
    ToolSource source = ToolSource::NotFound;
    QString scope;        // the level whose value the lookup took, even an empty one; else empty
    QString settingsFile; // that level's file
    QStringList tried;    // the candidate folders looked at, in order; none without TOOLRTF
};

//! The decision of \a tool's locator with \a useDefault, as BaseSystem's locators take it.
CORVEKIT_EXPORT ToolLocation locateCompanionTool(const CompanionTool &tool, bool useDefault);

//! The simulator selection, read at the system level alone.
struct SimulatorSelection
{
    QString type;         // SIMULATOR_TYPE's text; null where the system level lacks it
    bool known = false;   // one of the texts the selection knows
    int code = 4;         // what BaseSystem::getSystemSimulatorType gives
    QString settingsFile; // the system level's file
};

CORVEKIT_EXPORT SimulatorSelection simulatorSelection();

//! The version file, data/zeksys.ini below the install root, as the version readers compose it.
CORVEKIT_EXPORT QString versionFilePath();
//! Whether getProductVersion reads \a group's keys (any case) rather than the top level.
CORVEKIT_EXPORT bool versionFileHasGroup(const QString &group);
//! The top-level groups of the version file, which getProductVersion may be given.
CORVEKIT_EXPORT QStringList versionFileGroups();

//! The settings key that holds the extensions of \a fileType: "File_Extension/<type>".
CORVEKIT_EXPORT QString fileExtensionKey(const QString &fileType);
//! The extensions of \a fileType as getFileExtensions gives them, read through \a settings;
//! \a found says whether a level holds the key.
CORVEKIT_EXPORT QList<QString> fileExtensions(BaseSettings &settings, const QString &fileType,
                                              bool &found);

} // namespace corvekit_private

#endif

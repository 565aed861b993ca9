#ifndef CORVEKIT_BASESYSTEM_H
#define CORVEKIT_BASESYSTEM_H

#include "corvekit_export.h"

#include <QDate>
#include <QDir>
#include <QList>
#include <QString>
#include <QTime>

//! The form of a product version text; see BaseSystem::getProductVersion.
enum VersionPatten
{
    VersionMajor = 0,         //!< major
    VersionMajorMinor = 1,    //!< major.minor, with the minor cut at its first dot
    VersionMajorMinorAll = 2, //!< major.minor, the minor whole
    VersionBuild = 3,         //!< build
    VersionFull = 4           //!< major.minor.build; any other value gives this too
};

/*!
 * Where the installation lies and how the process environment is set up for it.
 *
 * The install root lives in the environment variable TOOLRTF and nowhere else: every operation
 * asks the environment again, so a change of the variable is honoured at the next call and child
 * processes inherit the same root. A tool creates its QCoreApplication, sets its application name
 * and calls initializeSystem() before anything else.
 *
 * All operations are static; nothing tests that a composed path exists.
 */
class CORVEKIT_EXPORT BaseSystem
{
public:
    // There is no state to copy; both assignments return the object assigned to.
    BaseSystem &operator=(const BaseSystem &);
    BaseSystem &operator=(BaseSystem &&) noexcept;

    // --- Install root and start-up environment -----------------------------------------------

    /*!
     * Fills TOOLRTF (the directory two levels above the application), FOUNDRY (that directory +
     * "/zekfpga") and ZEKPROG_PATH (the setting ZEKPROG_PATH, else TOOLRTF + "/zekprog") where
     * they are unset. A variable that is set, even to an empty text, is left as it is.
     */
    static void initializeSystem();

    /*!
     * Stores "name=value" in the process environment (as Latin-1; other characters become "?")
     * after a trace line "setenv name=value" with the tag "CORVEKIT". An empty value removes
     * the variable. Returns 0 on success, -1 on failure.
     */
    static int SetEnvVariable(const char *name, const QString &value);
    //! As above with "1" for true and "0" for false.
    static int SetEnvVariable(const char *name, bool value);
    //! Removes the variable, after a trace line "unsetenv name=". Returns 0 or -1.
    static int UnsetEnvVariable(const char *name);

    /*!
     * The install root: TOOLRTF if set, else the application's directory + "/../..", which is
     * not resolved, so every path below carries that tail.
     */
    static QDir getInstallPath();
    static QDir getBinaryPath();     //!< root + "/bin/nt64"
    static QDir getDataPath();       //!< root + "/data"
    static QDir getHelpPath();       //!< root + "/docs/webhelp/eng"
    static QString getTclExePath();  //!< root + "/tcltk/windows/bin/tclsh", without extension
    static QDir getTclLibraryPath(); //!< root + "/tcltk/windows/lib/tcl8.6"
    static QDir getTclScriptPath();  //!< root + "/scripts/tcl"

    // Process-wide values that tools leave for each other; nothing here acts on them.
    static bool isFiskelMode();
    static void setFiskelMode(bool enabled);
    static QString getUserEmail();
    static void setUserEmail(const QString &email);

    // --- Product version and build stamp -----------------------------------------------------
    // The version comes from data/zeksys.ini below the install root, read anew at every call.
    // A missing file is logged ("Error :  "<path>"  doesn't exist!") at every call. A FIFO, a
    // socket or a device in its place counts as missing and is never opened.

    /*!
     * The installed version in the form of \a pattern, from "version/MajorVersion",
     * "version/MinorVersion" and "version/BuildNumber". If \a group is not empty and the file has
     * a top-level group of that name (in any case), the keys are read below it, else at the top
     * level. A missing key reads as empty text. "0.0.0" if the file is missing.
     */
    static QString getProductVersion(const QString &group, VersionPatten pattern);
    //! The full version of the group "Solvane".
    static QString getOstraneVersion();
    //! "version/PatchNumber", a comma-separated list joined again with ","; empty if no file.
    static QString getOstranePatchVersion();
    //! "version/ProductSuffix"; empty if no file.
    static QString getProductSuffix();
    //! The date this library was built; null if the compiler's stamp cannot be read.
    static QDate getCompilationDate();
    //! The time of day this library was built; invalid if the compiler's stamp cannot be read.
    static QTime getCompilationTime();

    // --- Companion tool location --------------------------------------------------------------
    // Each locator reads its settings key (SYNPLIFY_PATH, ...) through a fresh BaseSettings:
    // all levels, or with useDefault the system level alone. A non-empty value is returned as it
    // stands. Otherwise the tool's folders below TOOLRTF are tried in order and the first that
    // exists is returned; QDir::root() if none does. With TOOLRTF unset, "Error : set . TOOLRTF
    // first." is logged and QDir::root() returned.

    static QDir getSynplifyPath(bool useDefault);  //!< /synpbase, then /tptools/synplify/windows
    static QDir getPrecsionPath(bool useDefault);  //!< /precision
    static QDir getActiveHDLPath(bool useDefault); //!< /active-hdl
    static QDir getModelSimPath(bool useDefault);  //!< /modeltech/win32loem
    static QDir getQuestaSimPath(bool useDefault); //!< /questasim/win64
    //! ESDK_PATH only: no folder below the install root is tried and nothing is logged.
    static QDir getESDKPath(bool useDefault);
    //! The selected simulator's folder: getQuestaSimPath for codes 2 and 4, else getModelSimPath.
    static QDir getSimulatorPath(bool useDefault);
    //! "QuestaSim" for codes 2 and 4, else "ModelSim".
    static QString getSimulatorName();
    //! The settings key of the selected simulator, "QUESTASIM_PATH" or "MODELSIM_PATH".
    static const char *getSimulatorInstallEnv();
    /*!
     * SIMULATOR_TYPE of the system level, exactly and case-sensitively: "ModelSim" and
     * "QuestaSim" give 2; anything else, "QuestaSimQrun" and no value included, gives 4.
     */
    static int getSystemSimulatorType();
    //! SYNPLIFY_USEOEM through QVariant::toBool; true if no level asked holds it.
    static bool getUseSynplifyOEM(bool useDefault);
    //! SYNPLIFY_USEPRO through QVariant::toBool; true if no level asked holds it.
    static bool getUseSynplifyPro(bool useDefault);

    // --- File type filters ----------------------------------------------------------------------

    //! The extensions of \a fileType in the setting "File_Extension/<fileType>"; empty if unset.
    static QList<QString> getFileExtensions(const char *fileType);
    /*!
     * A file dialog's name filter: "<description> (*.ext1 *.ext2)", with "<fileType> Files" as
     * description if \a description is null. The text is trimmed before ")" is appended.
     */
    static QString getFileFilter(const char *fileType, const char *description = nullptr);

private:
    //! "Apr 11 2025" split at \a separator (runs count as one); month first or second.
    static QDate GetDate(const char *date, char separator);
    //! "01:22:07" split at \a separator (empty parts kept).
    static QTime GetTime(const char *time, char separator);
    //! 1 to 12 for an English or the default locale's short month name in any case, else -1.
    static int findMonth(QString month);
};

#endif

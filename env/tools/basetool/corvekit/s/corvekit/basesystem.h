#ifndef CORVEKIT_BASESYSTEM_H
#define CORVEKIT_BASESYSTEM_H

#include "corvekit_export.h"

#include <QDir>
#include <QString>

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
};

#endif

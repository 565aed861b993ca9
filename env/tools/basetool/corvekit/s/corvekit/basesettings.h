#ifndef CORVEKIT_BASESETTINGS_H
#define CORVEKIT_BASESETTINGS_H

#include "corvekit_export.h"

#include <QList>
#include <QSharedDataPointer>
#include <QString>
#include <QVariant>

class QSettings;

/*!
 * Settings through three levels of INI files: a lookup asks the project level, then the user
 * level, then the system level, and the first level that contains the key answers.
 *
 * - System: TOOLRTF/data/.setting.ini, the installation's defaults.
 * - User: the file named by SOLVANE_GROUP_SETTING_FILE (a group file shared by a team), else
 *   Meravex/OstraneNG/.setting.ini in the user's configuration area. A group file that exists
 *   but cannot be read, or is a FIFO, a socket or a device, is passed over for the individual
 *   file with a warning. The application "Fenwright Studio" always uses
 *   Meravex/FenwrightStudio/.setting.ini instead.
 * - Project: the project path with ".setting.ini" appended, with no separator in between, so
 *   "/home/me/proj/" gives /home/me/proj/.setting.ini and "/home/me/proj" gives
 *   /home/me/proj.setting.ini. Without a project path, "./.setting.ini".
 *
 * Nothing is written to disk until QSettings flushes on its own, at the latest when the last
 * object holding the files is destroyed; call sync() on a level for an earlier write.
 *
 * The system file, the individual and sibling user files and the project file go to QSettings
 * unchecked: if one of these paths names a FIFO with no writer, the constructor blocks in
 * QSettings' open(). Only the group file is checked before it is opened.
 *
 * Copies and assignments share the three levels: the files stay open until the last object that
 * holds them is gone, and each is closed exactly once.
 */
class CORVEKIT_EXPORT BaseSettings
{
public:
    BaseSettings();
    explicit BaseSettings(QString projectPath);
    BaseSettings(const BaseSettings &other);
    ~BaseSettings();
    //! Shares the levels of \a other; the target's own levels are closed unless shared elsewhere.
    BaseSettings &operator=(const BaseSettings &other);

    //! The value at the most specific level that contains \a key, else \a defaultValue.
    QVariant getSetting(const QString &key, const QVariant &defaultValue);
    //! The system level alone: its value of \a key unless that is null, else \a defaultValue.
    QVariant getDefaultSetting(const QString &key, const QVariant &defaultValue);

    // Typed lookups. \a found is written on every call: true unless the lookup gave a null
    // value. The conversions are QVariant's and have no success test of their own.
    bool getBooleanSetting(bool &found, const QString &key);
    int getIntegerSetting(bool &found, const QString &key);
    QString getStringSetting(const QString &key); //!< null if not found
    QList<QString> getStringListSetting(bool &found, const QString &key);
    bool getDefaultBooleanSetting(bool &found, const QString &key);
    int getDefaultIntegerSetting(bool &found, const QString &key);
    QString getDefaultStringSetting(const QString &key); //!< null if not found
    QList<QString> getDefaultStringListSetting(bool &found, const QString &key);

    // Writers and removers of one level; no other level is read or touched.
    void setOnUserLevel(const QString &key, const QString &value);
    void setOnUserLevel(const QString &key, const QList<QString> &value);
    void setOnUserLevel(const QString &key, const QVariant &value);
    void setOnUserLevel(const QString &key, int value);
    void setOnUserLevel(const QString &key, bool value);
    void setOnProjectLevel(const QString &key, const QString &value);
    void setOnProjectLevel(const QString &key, const QList<QString> &value);
    void setOnProjectLevel(const QString &key, const QVariant &value);
    void setOnProjectLevel(const QString &key, const int &value);
    void setOnProjectLevel(const QString &key, const bool &value);
    // A text literal would otherwise be taken as a bool; these store it as UTF-8 text.
    void setOnUserLevel(const QString &key, const char *value);
    void setOnProjectLevel(const QString &key, const char *value);
    void unsetOnUserLevel(const QString &key);
    void unsetOnProjectLevel(const QString &key);

    //! True when the user level is the group file that SOLVANE_GROUP_SETTING_FILE names.
    bool isUseGroupSettingFile() const;

    // The levels, owned by this object (and its copies).
    QSettings *getSystemSetting();
    QSettings *getUserSetting();
    QSettings *getProjectLeverSetting();

    /*!
     * The project path for objects constructed from now on without a path of their own. Stored
     * unchanged; an empty or null path clears it. Objects that exist keep their project file.
     */
    static void setProjectPath(QString projectPath);

private:
    struct Levels;

    QSettings *m_system_setting = nullptr;
    QSettings *m_user_setting = nullptr;
    QSettings *m_project_setting = nullptr;
    // Shared by copies; see docs/design.md, "Shared state after a copy".
    QExplicitlySharedDataPointer<Levels> m_levels; // owns the three levels above

    static QString m_prjPath;
    static const char *const m_setting_file;
};

#endif

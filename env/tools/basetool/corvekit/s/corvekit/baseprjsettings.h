#ifndef CORVEKIT_BASEPRJSETTINGS_H
#define CORVEKIT_BASEPRJSETTINGS_H

#include "corvekit_export.h"

#include <QList>
#include <QSettings>
#include <QSharedDataPointer>
#include <QString>
#include <QVariant>

class QObject;
class ScopedSettingsFile;

/*!
 * An INI file in a directory that the caller gives, as a rule a project's: <dir>/.<name>.ini
 * with the name in lower case, so "MyTool" and "mytool" reach the same file, or <dir>/.shared.ini
 * for a null name. An empty name gives "<dir>/..ini". A relative directory is handed on
 * relative, neither made absolute nor cleaned, and a null or empty directory means the current
 * one. Nothing is created or tested until something is stored.
 *
 * Every accessor forwards to the QSettings of the same name; the group and array position live
 * there. Writes are seen at once by this object and reach the disk on sync(), when QSettings
 * flushes by itself, and at the latest when the last wrapper holding the file is destroyed.
 *
 * Ownership. The wrapper owns its QSettings, and assignment shares it: after `a = b` both reach
 * b's file, and the object is deleted once, by whichever of them goes last. a's former object
 * is deleted (and so written out) at the assignment unless another wrapper still holds it.
 * Shared ownership, as BaseSettings has for its levels, lets the wrappers die in any order with
 * neither a dangling nor a doubly deleted pointer; a deep copy instead would put two QSettings
 * on one file, whose caches disagree until a sync.
 *
 * With a non-null \a parent the QSettings has a second owner. The parent is expected to outlive
 * the wrapper; this is not enforced, but a parent that goes first cannot cause a second delete:
 * the holder watches the object through a QPointer. From then on the wrapper acts on nothing:
 * reads give their defaults, writes are dropped, getSetting() is null and status() is
 * QSettings::AccessError, so a caller that checks status after sync() learns of the loss.
 */
class CORVEKIT_EXPORT BasePrjSettings
{
public:
    //! \a directory and \a name are UTF-8; \a parent is handed on to the QSettings.
    BasePrjSettings(const char *directory, const char *name, QObject *parent = nullptr);
    ~BasePrjSettings();
    BasePrjSettings(const BasePrjSettings &) = delete;
    //! Shares \a other's file; see Ownership above.
    BasePrjSettings &operator=(const BasePrjSettings &other);

    QVariant value(const QString &key, const QVariant &defaultValue = QVariant()) const;
    void setValue(const QString &key, const QVariant &value);
    bool contains(const QString &key) const;
    void remove(const QString &key);
    QList<QString> allKeys() const;
    QList<QString> childKeys() const;
    QList<QString> childGroups() const;
    void beginGroup(const QString &prefix);
    void endGroup();
    QString group() const;
    int beginReadArray(const QString &prefix);
    void beginWriteArray(const QString &prefix, int size = -1);
    void setArrayIndex(int index);
    void endArray();
    void clear();
    void sync();
    QSettings::Status status() const;
    QString fileName();

    //! The QSettings itself, for what the wrapper does not offer; the wrapper stays its owner.
    QSettings *getSetting();

private:
    //! The path of the file for \a name in \a directory, as described above.
    static QString thePrjSettingFile(const char *name, const char *directory);

    // Shared by copies; see docs/design.md, "Shared state after a copy".
    QExplicitlySharedDataPointer<ScopedSettingsFile> m_setting;
};

#endif

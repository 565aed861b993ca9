#ifndef CORVEKIT_SCOPEDSETTINGSFILE_P_H
#define CORVEKIT_SCOPEDSETTINGSFILE_P_H

#include <QList>
#include <QPointer>
#include <QSettings>
#include <QSharedData>
#include <QString>
#include <QVariant>

/*
 * The one QSettings behind a BaseUsrSettings or BasePrjSettings, shared by a wrapper and every
 * wrapper assigned from it; the last of them deletes this holder, and the holder the QSettings.
 * The QSettings may also have a QObject parent, which deletes it when the parent goes first; the
 * guarded pointer notices that, so the object is deleted exactly once whichever owner goes first.
 *
 * Once the parent has taken the object away, the operations below act on nothing: reads give
 * their defaults, writes are dropped and status() reports QSettings::AccessError, so a caller
 * that checks status after a write learns that it was lost.
 */
class ScopedSettingsFile : public QSharedData
{
public:
    //! Takes \a settings over, also when the allocation of the holder fails.
    static QExplicitlySharedDataPointer<ScopedSettingsFile> adopt(QSettings *settings);

    explicit ScopedSettingsFile(QSettings *settings);
    ~ScopedSettingsFile();
    ScopedSettingsFile(const ScopedSettingsFile &) = delete;
    ScopedSettingsFile &operator=(const ScopedSettingsFile &) = delete;

    //! Null once a parent has deleted the object.
    QSettings *get() const { return m_settings.data(); }

    QVariant value(const QString &key, const QVariant &defaultValue) const;
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
    void beginWriteArray(const QString &prefix, int size);
    void setArrayIndex(int index);
    void endArray();
    void clear();
    void sync();
    QSettings::Status status() const;
    QString fileName() const;

private:
    QPointer<QSettings> m_settings;
};

#endif

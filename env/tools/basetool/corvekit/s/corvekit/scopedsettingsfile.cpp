#include "scopedsettingsfile_p.h"

#include <memory>

QExplicitlySharedDataPointer<ScopedSettingsFile> ScopedSettingsFile::adopt(QSettings *settings)
{
    std::unique_ptr<QSettings> owner(settings);
    QExplicitlySharedDataPointer<ScopedSettingsFile> file(new ScopedSettingsFile(settings));
    static_cast<void>(owner.release()); // the holder owns it now
    return file;
}

ScopedSettingsFile::ScopedSettingsFile(QSettings *settings)
    : m_settings(settings)
{
    // Every scoped file is looked up in itself alone, never in an organisation-wide file.
    settings->setFallbacksEnabled(false);
}

ScopedSettingsFile::~ScopedSettingsFile()
{
    // Deleting the object writes what is pending to its file. Null if a parent deleted it.
    delete m_settings.data();
}

QVariant ScopedSettingsFile::value(const QString &key, const QVariant &defaultValue) const
{
    return m_settings ? m_settings->value(key, defaultValue) : defaultValue;
}

void ScopedSettingsFile::setValue(const QString &key, const QVariant &value)
{
    if (m_settings)
        m_settings->setValue(key, value);
}

bool ScopedSettingsFile::contains(const QString &key) const
{
    return m_settings && m_settings->contains(key);
}

void ScopedSettingsFile::remove(const QString &key)
{
    if (m_settings)
        m_settings->remove(key);
}

QList<QString> ScopedSettingsFile::allKeys() const
{
    return m_settings ? m_settings->allKeys() : QList<QString>();
}

QList<QString> ScopedSettingsFile::childKeys() const
{
    return m_settings ? m_settings->childKeys() : QList<QString>();
}

QList<QString> ScopedSettingsFile::childGroups() const
{
    return m_settings ? m_settings->childGroups() : QList<QString>();
}

void ScopedSettingsFile::beginGroup(const QString &prefix)
{
    if (m_settings)
        m_settings->beginGroup(prefix);
}

void ScopedSettingsFile::endGroup()
{
    if (m_settings)
        m_settings->endGroup();
}

QString ScopedSettingsFile::group() const
{
    return m_settings ? m_settings->group() : QString();
}

int ScopedSettingsFile::beginReadArray(const QString &prefix)
{
    return m_settings ? m_settings->beginReadArray(prefix) : 0;
}

void ScopedSettingsFile::beginWriteArray(const QString &prefix, int size)
{
    if (m_settings)
        m_settings->beginWriteArray(prefix, size);
}

void ScopedSettingsFile::setArrayIndex(int index)
{
    if (m_settings)
        m_settings->setArrayIndex(index);
}

void ScopedSettingsFile::endArray()
{
    if (m_settings)
        m_settings->endArray();
}

void ScopedSettingsFile::clear()
{
    if (m_settings)
        m_settings->clear();
}

void ScopedSettingsFile::sync()
{
    if (m_settings)
        m_settings->sync();
}

QSettings::Status ScopedSettingsFile::status() const
{
    return m_settings ? m_settings->status() : QSettings::AccessError;
}

QString ScopedSettingsFile::fileName() const
{
    return m_settings ? m_settings->fileName() : QString();
}

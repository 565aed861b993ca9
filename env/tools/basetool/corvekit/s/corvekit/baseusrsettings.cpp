#include "baseusrsettings.h"

#include "scopedsettingsfile_p.h"

BaseUsrSettings::BaseUsrSettings(const char *name, QObject *parent)
    // QSettings turns the organisation's slash into two folders of the user's settings area.
    : m_setting(ScopedSettingsFile::adopt(new QSettings(QSettings::IniFormat, QSettings::UserScope,
                                                        QStringLiteral("Meravex/OstraneNG"),
                                                        QString(name).toLower(), parent)))
{}

BaseUsrSettings::~BaseUsrSettings() = default;

// Shared by copies; see docs/design.md, "Shared state after a copy". The target's former file
// is deleted here, and so written to disk, unless another wrapper still holds it.
BaseUsrSettings &BaseUsrSettings::operator=(const BaseUsrSettings &other) = default;

QVariant BaseUsrSettings::value(const QString &key, const QVariant &defaultValue) const
{
    return m_setting->value(key, defaultValue);
}

void BaseUsrSettings::setValue(const QString &key, const QVariant &value)
{
    m_setting->setValue(key, value);
}

bool BaseUsrSettings::contains(const QString &key) const
{
    return m_setting->contains(key);
}

void BaseUsrSettings::remove(const QString &key)
{
    m_setting->remove(key);
}

QList<QString> BaseUsrSettings::allKeys() const
{
    return m_setting->allKeys();
}

QList<QString> BaseUsrSettings::childKeys() const
{
    return m_setting->childKeys();
}

QList<QString> BaseUsrSettings::childGroups() const
{
    return m_setting->childGroups();
}

void BaseUsrSettings::beginGroup(const QString &prefix)
{
    m_setting->beginGroup(prefix);
}

void BaseUsrSettings::endGroup()
{
    m_setting->endGroup();
}

QString BaseUsrSettings::group() const
{
    return m_setting->group();
}

int BaseUsrSettings::beginReadArray(const QString &prefix)
{
    return m_setting->beginReadArray(prefix);
}

void BaseUsrSettings::beginWriteArray(const QString &prefix, int size)
{
    m_setting->beginWriteArray(prefix, size);
}

void BaseUsrSettings::setArrayIndex(int index)
{
    m_setting->setArrayIndex(index);
}

void BaseUsrSettings::endArray()
{
    m_setting->endArray();
}

void BaseUsrSettings::clear()
{
    m_setting->clear();
}

void BaseUsrSettings::sync()
{
    m_setting->sync();
}

QSettings::Status BaseUsrSettings::status() const
{
    return m_setting->status();
}

QString BaseUsrSettings::fileName()
{
    return m_setting->fileName();
}

QSettings *BaseUsrSettings::getSetting()
{
    return m_setting->get();
}

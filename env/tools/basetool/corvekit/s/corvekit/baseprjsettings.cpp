#include "baseprjsettings.h"

#include "scopedsettingsfile_p.h"

#include <QDir>

BasePrjSettings::BasePrjSettings(const char *directory, const char *name, QObject *parent)
    : m_setting(ScopedSettingsFile::adopt(
          new QSettings(thePrjSettingFile(name, directory), QSettings::IniFormat, parent)))
{}

QString BasePrjSettings::thePrjSettingFile(const char *name, const char *directory)
{
    // A null name is the project's shared file; an empty one is kept, giving "..ini".
    QString fileName =
        name ? QLatin1Char('.') + QString(name).toLower() : QStringLiteral(".shared");
    fileName += QLatin1String(".ini");
    // filePath() neither makes the directory absolute nor cleans it.
    return QDir(QString(directory)).filePath(fileName);
}

BasePrjSettings::~BasePrjSettings() = default;

// Shared by copies; see docs/design.md, "Shared state after a copy". The target's former file
// is deleted here, and so written to disk, unless another wrapper still holds it.
BasePrjSettings &BasePrjSettings::operator=(const BasePrjSettings &other) = default;

QVariant BasePrjSettings::value(const QString &key, const QVariant &defaultValue) const
{
    return m_setting->value(key, defaultValue);
}

void BasePrjSettings::setValue(const QString &key, const QVariant &value)
{
    m_setting->setValue(key, value);
}

bool BasePrjSettings::contains(const QString &key) const
{
    return m_setting->contains(key);
}

void BasePrjSettings::remove(const QString &key)
{
    m_setting->remove(key);
}

QList<QString> BasePrjSettings::allKeys() const
{
    return m_setting->allKeys();
}

QList<QString> BasePrjSettings::childKeys() const
{
    return m_setting->childKeys();
}

QList<QString> BasePrjSettings::childGroups() const
{
    return m_setting->childGroups();
}

void BasePrjSettings::beginGroup(const QString &prefix)
{
    m_setting->beginGroup(prefix);
}

void BasePrjSettings::endGroup()
{
    m_setting->endGroup();
}

QString BasePrjSettings::group() const
{
    return m_setting->group();
}

int BasePrjSettings::beginReadArray(const QString &prefix)
{
    return m_setting->beginReadArray(prefix);
}

void BasePrjSettings::beginWriteArray(const QString &prefix, int size)
{
    m_setting->beginWriteArray(prefix, size);
}

void BasePrjSettings::setArrayIndex(int index)
{
    m_setting->setArrayIndex(index);
}

void BasePrjSettings::endArray()
{
    m_setting->endArray();
}

void BasePrjSettings::clear()
{
    m_setting->clear();
}

void BasePrjSettings::sync()
{
    m_setting->sync();
}

QSettings::Status BasePrjSettings::status() const
{
    return m_setting->status();
}

QString BasePrjSettings::fileName()
{
    return m_setting->fileName();
}

QSettings *BasePrjSettings::getSetting()
{
    return m_setting->get();
}

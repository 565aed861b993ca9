#include "basesettings.h"

#include <QSettings>

// Typed lookups and the writers of the user and project levels. Every lookup passes an empty
// QVariant as default, so "found" means the general lookup gave a value that is not null.

namespace {

template<typename Result, typename Convert>
Result lookup(bool &found, const QVariant &value, Convert convert)
{
    found = !value.isNull();
    return found ? convert(value) : Result();
}

void store(QSettings *level, const QString &key, const QVariant &value)
{
    if (level)
        level->setValue(key, value);
}

void erase(QSettings *level, const QString &key)
{
    if (level)
        level->remove(key);
}

bool toBool(const QVariant &value)
{
    return value.toBool();
}
int toInt(const QVariant &value)
{
    return value.toInt(nullptr);
}
QList<QString> toStringList(const QVariant &value)
{
    return value.toStringList();
}

} // namespace

bool BaseSettings::getBooleanSetting(bool &found, const QString &key)
{
    return lookup<bool>(found, getSetting(key, QVariant()), toBool);
}

int BaseSettings::getIntegerSetting(bool &found, const QString &key)
{
    return lookup<int>(found, getSetting(key, QVariant()), toInt);
}

QString BaseSettings::getStringSetting(const QString &key)
{
    const QVariant value = getSetting(key, QVariant());
    return value.isNull() ? QString() : value.toString();
}

QList<QString> BaseSettings::getStringListSetting(bool &found, const QString &key)
{
    return lookup<QList<QString>>(found, getSetting(key, QVariant()), toStringList);
}

bool BaseSettings::getDefaultBooleanSetting(bool &found, const QString &key)
{
    return lookup<bool>(found, getDefaultSetting(key, QVariant()), toBool);
}

int BaseSettings::getDefaultIntegerSetting(bool &found, const QString &key)
{
    return lookup<int>(found, getDefaultSetting(key, QVariant()), toInt);
}

QString BaseSettings::getDefaultStringSetting(const QString &key)
{
    const QVariant value = getDefaultSetting(key, QVariant());
    return value.isNull() ? QString() : value.toString();
}

QList<QString> BaseSettings::getDefaultStringListSetting(bool &found, const QString &key)
{
    return lookup<QList<QString>>(found, getDefaultSetting(key, QVariant()), toStringList);
}

void BaseSettings::setOnUserLevel(const QString &key, const QString &value)
{
    store(m_user_setting, key, QVariant(value));
}

void BaseSettings::setOnUserLevel(const QString &key, const QList<QString> &value)
{
    store(m_user_setting, key, QVariant(value));
}

void BaseSettings::setOnUserLevel(const QString &key, const QVariant &value)
{
    store(m_user_setting, key, value);
}

void BaseSettings::setOnUserLevel(const QString &key, int value)
{
    store(m_user_setting, key, QVariant(value));
}

void BaseSettings::setOnUserLevel(const QString &key, bool value)
{
    store(m_user_setting, key, QVariant(value));
}

void BaseSettings::setOnUserLevel(const QString &key, const char *value)
{
    store(m_user_setting, key, QVariant(QString::fromUtf8(value)));
}

void BaseSettings::setOnProjectLevel(const QString &key, const QString &value)
{
    store(m_project_setting, key, QVariant(value));
}

void BaseSettings::setOnProjectLevel(const QString &key, const QList<QString> &value)
{
    store(m_project_setting, key, QVariant(value));
}

void BaseSettings::setOnProjectLevel(const QString &key, const QVariant &value)
{
    store(m_project_setting, key, value);
}

void BaseSettings::setOnProjectLevel(const QString &key, const int &value)
{
    store(m_project_setting, key, QVariant(value));
}

void BaseSettings::setOnProjectLevel(const QString &key, const bool &value)
{
    store(m_project_setting, key, QVariant(value));
}

void BaseSettings::setOnProjectLevel(const QString &key, const char *value)
{
    store(m_project_setting, key, QVariant(QString::fromUtf8(value)));
}

void BaseSettings::unsetOnUserLevel(const QString &key)
{
    erase(m_user_setting, key);
}

void BaseSettings::unsetOnProjectLevel(const QString &key)
{
    erase(m_project_setting, key);
}

#include "profilersettings.h"

#include "corvekit/filekind_p.h"

#include <QDebug>
#include <QFileInfo>
#include <QMessageLogger>
#include <QSettings>

#include <cstdlib>

namespace tivoran::corvekit {

ProfilerSettings &ProfilerSettings::instance()
{
    static ProfilerSettings settings;
    return settings;
}

ProfilerSettings::ProfilerSettings()
{
    const char *enable = std::getenv("ENABLE_GUI_PROFILER");
    if (!enable || enable[0] != '1')
        return;
    const char *file = std::getenv("GUI_PROFILER_SETTINGS");
    if (!file)
        return;
    m_enabled = true;
    const QString path = QString::fromLocal8Bit(file);
    const QFileInfo info(path);
    if (!info.exists())
        QMessageLogger(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC).warning()
            << "ini file not exists" << path;
    // A FIFO, a socket or a device would block QSettings in open(). It reads as an unreadable
    // file does, with no message and no key: QSettings gets no path to open.
    m_settings = new QSettings(isSpecialFile(info) ? QString() : path, QSettings::IniFormat);
}

ProfilerSettings::~ProfilerSettings()
{
    delete m_settings;
}

ProfilerSettings &ProfilerSettings::operator=(const ProfilerSettings &other)
{
    if (this != &other) {
        m_settings = other.m_settings;
        m_enabled = other.m_enabled;
    }
    return *this;
}

QString ProfilerSettings::getValue(const QString &key) const
{
    if (!m_enabled)
        return QString();
    // A key the file lacks reads as empty, as a key with an empty value does; null is kept
    // for the feature being off.
    QString value = m_settings->value(key).toString();
    if (value.isNull())
        value = QStringLiteral("");
    return value;
}

bool ProfilerSettings::isProfileEnabled() const
{
    return m_enabled;
}

} // namespace tivoran::corvekit

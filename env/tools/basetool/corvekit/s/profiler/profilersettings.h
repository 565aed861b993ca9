#ifndef CORVEKIT_PROFILERSETTINGS_H
#define CORVEKIT_PROFILERSETTINGS_H

#include "corvekit_export.h"

#include <QString>

class QSettings;

namespace tivoran::corvekit {

/*!
 * Read access for tools to the profiler's own INI file. The one object is built by the first
 * instance() call, which reads the environment once: the feature is on when ENABLE_GUI_PROFILER
 * begins with "1" and GUI_PROFILER_SETTINGS is set (also when empty); that variable names the
 * file. A file that does not exist is logged as a warning ("ini file not exists" and the path),
 * and the feature stays on with every key empty. A file that cannot be read, and a FIFO, a socket
 * or a device (never opened, so a pipe with no writer cannot block), give every key empty with
 * no message. Later changes of the environment are not seen. Nothing is ever written to the file.
 */
class CORVEKIT_EXPORT ProfilerSettings
{
public:
    static ProfilerSettings &instance();
    ~ProfilerSettings();
    //! Copies both fields; with one object in the process, a no-op.
    ProfilerSettings &operator=(const ProfilerSettings &other);

    //! The value of \a key as text: null when the feature is off, empty when the file lacks it.
    //! A key with a slash names a group of the file, as in QSettings.
    QString getValue(const QString &key) const;
    bool isProfileEnabled() const;

private:
    ProfilerSettings();
    ProfilerSettings(const ProfilerSettings &) = delete;

    QSettings *m_settings = nullptr; // owned; null when the feature is off
    bool m_enabled = false;
};

} // namespace tivoran::corvekit

#endif

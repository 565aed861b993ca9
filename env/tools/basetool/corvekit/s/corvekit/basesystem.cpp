#include "basesystem.h"

#include "basesettings.h"
#include "processenvironment_p.h"

#include <corvekit/diagtrace.h>

#include <QCoreApplication>
#include <QDebug>
#include <QVariant>

#include <cstdlib>

namespace {

// Process-wide values handed between tools; empty (not null) and false until a tool sets them.
QString userEmail = QStringLiteral("");
bool fiskelMode = false;

const char *const traceTag = "CORVEKIT";

bool isSet(const char *name)
{
    return std::getenv(name) != nullptr;
}

QString installRootPath()
{
    return BaseSystem::getInstallPath().path();
}

int writeEnvironment(const char *name, const QString &value, const char *verb)
{
    const QString assignment = QString::fromLatin1(name) + QLatin1Char('=') + value;
    // The trace comes first, so it is there even when the write fails.
    diagTrace((QLatin1String(verb) + QLatin1Char(' ') + assignment).toLatin1().constData(),
              traceTag);
    return corvekit::detail::putEnvironment(assignment.toLatin1().constData());
}

} // namespace

BaseSystem &BaseSystem::operator=(const BaseSystem &)
{
    return *this;
}

BaseSystem &BaseSystem::operator=(BaseSystem &&) noexcept
{
    return *this;
}

void BaseSystem::initializeSystem()
{
    if (!isSet("TOOLRTF") || !isSet("FOUNDRY")) {
        const QString applicationRoot =
            QDir(QCoreApplication::applicationDirPath() + QLatin1String("/../..")).absolutePath();
        if (!isSet("TOOLRTF"))
            SetEnvVariable("TOOLRTF", applicationRoot);
        // FOUNDRY follows the application even where TOOLRTF was set to another root.
        const QString foundry = applicationRoot + QLatin1String("/zekfpga");
        if (!isSet("FOUNDRY"))
            SetEnvVariable("FOUNDRY", foundry);
    }

    // The settings are found through the root stored above, so they are opened only now.
    BaseSettings settings{QString()};
    if (isSet("ZEKPROG_PATH"))
        return;

    const QVariant setting = settings.getSetting(QStringLiteral("ZEKPROG_PATH"), QVariant());
    const QString configured = setting.isNull() ? QString() : setting.toString();
    if (!configured.isEmpty()) {
        SetEnvVariable("ZEKPROG_PATH", configured);
        return;
    }

    const char *root = std::getenv("TOOLRTF");
    if (root) {
        SetEnvVariable("ZEKPROG_PATH",
                       QDir(QString(root) + QLatin1String("/zekprog")).absolutePath());
    } else {
        qDebug("do not set ZEKPROG path as environment variable.");
    }
}

int BaseSystem::SetEnvVariable(const char *name, const QString &value)
{
    return writeEnvironment(name, value, "setenv");
}

int BaseSystem::SetEnvVariable(const char *name, bool value)
{
    return writeEnvironment(name, value ? QStringLiteral("1") : QStringLiteral("0"), "setenv");
}

int BaseSystem::UnsetEnvVariable(const char *name)
{
    return writeEnvironment(name, QString(), "unsetenv");
}

QDir BaseSystem::getInstallPath()
{
    if (const char *root = std::getenv("TOOLRTF"))
        return QDir(QString(root));
    return QDir(QCoreApplication::applicationDirPath() + QLatin1String("/../.."));
}

QDir BaseSystem::getBinaryPath()
{
    return QDir(installRootPath() + QLatin1String("/bin") + QLatin1String("/nt64"));
}

QDir BaseSystem::getDataPath()
{
    return QDir(installRootPath() + QLatin1String("/data"));
}

QDir BaseSystem::getHelpPath()
{
    return QDir(installRootPath() + QLatin1String("/docs/webhelp") + QLatin1String("/eng"));
}

QString BaseSystem::getTclExePath()
{
    return installRootPath() + QLatin1String("/tcltk/windows/bin/tclsh");
}

QDir BaseSystem::getTclLibraryPath()
{
    return QDir(installRootPath() + QLatin1String("/tcltk/windows/lib/tcl8.6"));
}

QDir BaseSystem::getTclScriptPath()
{
    return QDir(installRootPath() + QLatin1String("/scripts/tcl"));
}

bool BaseSystem::isFiskelMode()
{
    return fiskelMode;
}

void BaseSystem::setFiskelMode(bool enabled)
{
    fiskelMode = enabled;
}

QString BaseSystem::getUserEmail()
{
    return userEmail;
}

void BaseSystem::setUserEmail(const QString &email)
{
    userEmail = email;
}

#include "basesettings.h"

#include "basesystem.h"

#include <hulmar/ut_warning.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <cstdlib>

QString BaseSettings::m_prjPath;
const char *const BaseSettings::m_setting_file = ".setting";

// The three levels of one construction. Copies of a BaseSettings share one Levels, so each
// QSettings is deleted exactly once, by whichever holder goes last. Like the QSettings inside,
// the objects that share one Levels belong to one thread at a time, so the count is plain.
struct BaseSettings::Levels
{
    QSettings *system = nullptr;
    QSettings *user = nullptr;
    QSettings *project = nullptr;
    int holders = 1;

    static Levels *acquire(Levels *levels)
    {
        ++levels->holders;
        return levels;
    }
    static void release(Levels *levels)
    {
        if (--levels->holders == 0)
            delete levels;
    }

    Levels() = default;
    Levels(const Levels &) = delete;
    Levels &operator=(const Levels &) = delete;
    ~Levels()
    {
        delete project;
        delete user;
        delete system;
    }
};

namespace {

const QString siblingApplication = QStringLiteral("Fenwright Studio");

QSettings *openFile(const QString &fileName)
{
    auto *settings = new QSettings(fileName, QSettings::IniFormat);
    settings->setFallbacksEnabled(false);
    return settings;
}

QSettings *openUserFile(const char *organization, const char *application)
{
    return new QSettings(QSettings::IniFormat, QSettings::UserScope,
                         QString::fromLatin1(organization), QString::fromLatin1(application));
}

void warn(const QString &text)
{
    ut_warning(text.toLatin1().constData());
}

} // namespace

BaseSettings::BaseSettings()
    : BaseSettings(QString())
{}

BaseSettings::BaseSettings(QString projectPath)
    : m_levels(new Levels)
{
    const QString settingFile = QLatin1String(m_setting_file) + QLatin1String(".ini");

    const QDir dataDir(BaseSystem::getInstallPath().path() + QLatin1String("/data"));
    m_levels->system = openFile(dataDir.absoluteFilePath(settingFile));

    QSettings *user = nullptr;
    if (QCoreApplication::applicationName() == siblingApplication) {
        user = openUserFile("Meravex/FenwrightStudio", m_setting_file);
    } else {
        const QString groupFile(std::getenv("SOLVANE_GROUP_SETTING_FILE"));
        if (groupFile.isEmpty()) {
            user = openUserFile("Meravex/OstraneNG", m_setting_file);
        } else if (QFileInfo groupInfo(groupFile); groupInfo.exists() && !groupInfo.isReadable()) {
            user = openUserFile("Meravex/OstraneNG", m_setting_file);
            warn(QStringLiteral("The group setting file '%1' is not readable and use individual "
                                "setting file instead.")
                     .arg(groupFile));
        } else {
            // A group file that does not exist yet reads as empty and is created on first store.
            user = new QSettings(groupFile, QSettings::IniFormat);
            if (user->status() != QSettings::NoError)
                warn(QStringLiteral("There is access or format error in file %1").arg(groupFile));
        }
    }
    user->setFallbacksEnabled(false);
    m_levels->user = user;

    if (projectPath.isEmpty())
        projectPath = m_prjPath.isEmpty() ? QStringLiteral("./") : m_prjPath;
    m_levels->project = openFile(projectPath + settingFile);

    m_system_setting = m_levels->system;
    m_user_setting = m_levels->user;
    m_project_setting = m_levels->project;
}

BaseSettings::BaseSettings(const BaseSettings &other)
    : m_system_setting(other.m_system_setting)
    , m_user_setting(other.m_user_setting)
    , m_project_setting(other.m_project_setting)
    , m_levels(Levels::acquire(other.m_levels))
{}

BaseSettings::~BaseSettings()
{
    Levels::release(m_levels);
}

BaseSettings &BaseSettings::operator=(const BaseSettings &other)
{
    if (this == &other)
        return *this;
    Levels *const previous = m_levels;
    m_levels = Levels::acquire(other.m_levels);
    m_system_setting = other.m_system_setting;
    m_user_setting = other.m_user_setting;
    m_project_setting = other.m_project_setting;
    Levels::release(previous);
    return *this;
}

QVariant BaseSettings::getSetting(const QString &key, const QVariant &defaultValue)
{
    // The most specific level that contains the key answers, even with an empty value.
    for (QSettings *level : {m_project_setting, m_user_setting, m_system_setting}) {
        if (level && level->contains(key))
            return level->value(key, defaultValue);
    }
    return defaultValue;
}

QVariant BaseSettings::getDefaultSetting(const QString &key, const QVariant &defaultValue)
{
    if (m_system_setting) {
        QVariant value = m_system_setting->value(key);
        if (!value.isNull())
            return value;
    }
    return defaultValue;
}

bool BaseSettings::isUseGroupSettingFile() const
{
    // Only a QSettings made from a file name has no organisation.
    return m_user_setting && m_user_setting->organizationName().isEmpty();
}

QSettings *BaseSettings::getSystemSetting()
{
    return m_system_setting;
}

QSettings *BaseSettings::getUserSetting()
{
    return m_user_setting;
}

QSettings *BaseSettings::getProjectLeverSetting()
{
    return m_project_setting;
}

void BaseSettings::setProjectPath(QString projectPath)
{
    m_prjPath = std::move(projectPath);
}

#include "basesettings.h"

#include "basesettings_p.h"
#include "basesystem.h"

#include <hulmar/ut_warning.h>

#include "filekind_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <array>
#include <cstdlib>
#include <memory>

QString BaseSettings::m_prjPath;
const char *const BaseSettings::m_setting_file = ".setting";

// The three levels of one construction, deleted with the last object that shares them.
struct BaseSettings::Levels : QSharedData
{
    QSettings *system = nullptr;
    QSettings *user = nullptr;
    QSettings *project = nullptr;

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

// Names made once rather than at every construction.
const QString &siblingApplication()
{
    static const QString name = QStringLiteral("Fenwright Studio");
    return name;
}

const QString &individualOrganization()
{
    static const QString name = QStringLiteral("Meravex/OstraneNG");
    return name;
}

const QString &siblingOrganization()
{
    static const QString name = QStringLiteral("Meravex/FenwrightStudio");
    return name;
}

// m_setting_file, and m_setting_file with ".ini".
const QString &settingName()
{
    static const QString name = QStringLiteral(".setting");
    return name;
}

const QString &settingFileName()
{
    static const QString name = QStringLiteral(".setting.ini");
    return name;
}

// A QSettings made on a file name reads that one file, so it has nothing to fall back to.
QSettings *openFile(const QString &fileName)
{
    return new QSettings(fileName, QSettings::IniFormat);
}

QSettings *openUserFile(const QString &organization)
{
    return new QSettings(QSettings::IniFormat, QSettings::UserScope, organization, settingName());
}

/*
 * Qt shares the parse of a settings file between all QSettings that have it open, and checks
 * the file's size and modification time whenever another one is made; but once none has it open
 * it forgets a file of more than a few hundred keys and parses it again next time. Every call of
 * the library makes and drops a BaseSettings, so each thread keeps one QSettings open on the
 * system file it last used: an unchanged file is then parsed once, a changed one at the next
 * construction, as before. The same slot remembers the system file's path for the TOOLRTF text
 * it was composed from.
 */
struct SystemFileKeeper
{
    QByteArray root;  // TOOLRTF as last composed, absolute; empty if not reusable
    QString rootFile; // the system file composed from it
    QString keptFile; // the file that kept is open on
    std::unique_ptr<QSettings> kept;
};

thread_local SystemFileKeeper systemFileKeeper;

QString composeSystemFile()
{
    const QDir dataDir(BaseSystem::getInstallPath().path() + QLatin1String("/data"));
    return dataDir.absoluteFilePath(settingFileName());
}

// The system file below the install root. With an absolute TOOLRTF the path depends on its text
// alone, so the last composition is reused while the text stays the same.
QString systemFilePath()
{
    const char *root = std::getenv("TOOLRTF");
    if (!root || !QDir::isAbsolutePath(QString::fromUtf8(root)))
        return composeSystemFile();
    SystemFileKeeper &keeper = systemFileKeeper;
    if (keeper.root != root) {
        keeper.rootFile = composeSystemFile();
        keeper.root = root;
    }
    return keeper.rootFile;
}

void keepOpen(const QString &systemFile)
{
    SystemFileKeeper &keeper = systemFileKeeper;
    if (keeper.kept && keeper.keptFile == systemFile)
        return;
    // Made before the previous one is dropped: the current file is open here already.
    keeper.kept = std::make_unique<QSettings>(systemFile, QSettings::IniFormat);
    keeper.keptFile = systemFile;
}

void warn(const QString &text)
{
    ut_warning(text.toLatin1().constData());
}

// The levels as getSetting asks them, most specific first; settingsLevels() lists them so too.
using LookupOrder = std::array<QSettings *, 3>;

LookupOrder lookupOrder(BaseSettings &settings)
{
    return {settings.getProjectLeverSetting(), settings.getUserSetting(),
            settings.getSystemSetting()};
}

// The first of \a levels that contains \a key answers it, even with an empty value; -1 if none.
int answeringIndex(const LookupOrder &levels, const QString &key)
{
    for (int index = 0; index < int(levels.size()); ++index) {
        if (levels[index] && levels[index]->contains(key))
            return index;
    }
    return -1;
}

} // namespace

BaseSettings::BaseSettings()
    : BaseSettings(QString())
{}

BaseSettings::BaseSettings(QString projectPath)
    : m_levels(new Levels)
{
    const QString systemFile = systemFilePath();
    m_levels->system = openFile(systemFile);
    keepOpen(systemFile);

    QSettings *user = nullptr;
    if (QCoreApplication::applicationName() == siblingApplication()) {
        user = openUserFile(siblingOrganization());
    } else {
        const char *groupVariable = std::getenv("SOLVANE_GROUP_SETTING_FILE");
        const QString groupFile = groupVariable ? QString(groupVariable) : QString();
        if (groupFile.isEmpty()) {
            user = openUserFile(individualOrganization());
        } else if (QFileInfo groupInfo(groupFile);
                   groupInfo.exists() && (!groupInfo.isReadable() || isSpecialFile(groupInfo))) {
            // QSettings would block in open() on a FIFO with no writer.
            user = openUserFile(individualOrganization());
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
        projectPath = m_prjPath;
    m_levels->project = openFile(corvekit_private::projectSettingsFile(projectPath));

    m_system_setting = m_levels->system;
    m_user_setting = m_levels->user;
    m_project_setting = m_levels->project;
}

// Shared by copies; see docs/design.md, "Shared state after a copy".
BaseSettings::BaseSettings(const BaseSettings &other) = default;

BaseSettings::~BaseSettings() = default;

// Shared by copies; see docs/design.md, "Shared state after a copy". Levels that the target
// held alone are deleted here, and so written to disk at once.
BaseSettings &BaseSettings::operator=(const BaseSettings &other) = default;

QVariant BaseSettings::getSetting(const QString &key, const QVariant &defaultValue)
{
    const LookupOrder levels = lookupOrder(*this);
    if (const int answering = answeringIndex(levels, key); answering >= 0)
        return levels[answering]->value(key, defaultValue);
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

namespace corvekit_private {

QList<SettingsLevel> settingsLevels(BaseSettings &settings)
{
    QString userScope = QStringLiteral("user");
    if (settings.isUseGroupSettingFile())
        userScope = QStringLiteral("group");
    else if (QCoreApplication::applicationName() == siblingApplication())
        userScope = QStringLiteral("sibling");
    const QString scopes[] = {QStringLiteral("project"), userScope, QStringLiteral("system")};
    const LookupOrder levels = lookupOrder(settings);
    QList<SettingsLevel> result;
    for (std::size_t index = 0; index < levels.size(); ++index)
        result.append({scopes[index], QFileInfo(levels[index]->fileName()).absoluteFilePath(),
                       levels[index]});
    return result;
}

int answeringLevel(BaseSettings &settings, const QString &key)
{
    return answeringIndex(lookupOrder(settings), key);
}

QString systemSettingsFile()
{
    return systemFilePath();
}

QString projectSettingsFile(const QString &projectPath)
{
    return (projectPath.isEmpty() ? QStringLiteral("./") : projectPath) + settingFileName();
}

SettingsFileState settingsFileState(const QString &fileName, const QSettings *opened)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return SettingsFileState::Missing;
    if (!info.isFile())
        return SettingsFileState::NotRegularFile;
    if (!info.isReadable())
        return SettingsFileState::Unreadable;
    // QSettings parses a group of keys when it is first asked for; an error in a group nobody
    // asked for shows only once every group is parsed.
    if (opened)
        opened->allKeys();
    if (opened && opened->status() == QSettings::FormatError)
        return SettingsFileState::Malformed;
    if (opened && opened->status() == QSettings::AccessError)
        return SettingsFileState::Unreadable;
    return SettingsFileState::Readable;
}

} // namespace corvekit_private

#include "basesystem.h"

#include "basesettings.h"

#include <QDebug>

#include <cstdlib>
#include <initializer_list>

// Where the companion tools lie, which simulator is selected and which Synplify edition is
// wanted. Every answer is read afresh from the settings and the disk.

namespace {

// The tool's folder from its settings key; else the first of \a candidates below TOOLRTF that
// exists. \a candidates empty means the tool has no place of its own below the install root.
QDir locate(const char *key, bool useDefault, std::initializer_list<const char *> candidates)
{
    QString configured;
    {
        BaseSettings settings{QString()};
        const QString name = QString::fromLatin1(key);
        configured =
            useDefault ? settings.getDefaultStringSetting(name) : settings.getStringSetting(name);
    }
    // A configured folder is taken as it stands, even if it does not exist.
    if (!configured.isEmpty())
        return QDir(configured);
    if (candidates.size() == 0)
        return QDir::root();

    const char *root = std::getenv("TOOLRTF");
    if (!root) {
        qDebug() << "Error : set ."
                 << "TOOLRTF"
                 << "first.";
        return QDir::root();
    }
    const QString rootPath(root);
    for (const char *candidate : candidates) {
        QDir folder(rootPath + QLatin1String(candidate));
        if (folder.exists())
            return folder;
    }
    return QDir::root();
}

// An edition switch: its value where the chosen levels hold it, else on.
bool editionSwitch(const char *key, bool useDefault)
{
    BaseSettings settings{QString()};
    bool found = false;
    const QString name = QString::fromLatin1(key);
    const bool value = useDefault ? settings.getDefaultBooleanSetting(found, name)
                                  : settings.getBooleanSetting(found, name);
    return found ? value : true;
}

// Both codes that getSystemSimulatorType gives stand for the QuestaSim family.
bool isQuestaFamily(int code)
{
    return code == 2 || code == 4;
}

} // namespace

QDir BaseSystem::getSynplifyPath(bool useDefault)
{
    return locate("SYNPLIFY_PATH", useDefault, {"/synpbase", "/tptools/synplify/windows"});
}

QDir BaseSystem::getPrecsionPath(bool useDefault)
{
    return locate("PRECISION_PATH", useDefault, {"/precision"});
}

QDir BaseSystem::getActiveHDLPath(bool useDefault)
{
    return locate("ACTIVEHDL_PATH", useDefault, {"/active-hdl"});
}

QDir BaseSystem::getModelSimPath(bool useDefault)
{
    return locate("MODELSIM_PATH", useDefault, {"/modeltech/win32loem"});
}

QDir BaseSystem::getQuestaSimPath(bool useDefault)
{
    return locate("QUESTASIM_PATH", useDefault, {"/questasim/win64"});
}

QDir BaseSystem::getESDKPath(bool useDefault)
{
    return locate("ESDK_PATH", useDefault, {});
}

QDir BaseSystem::getSimulatorPath(bool useDefault)
{
    return isQuestaFamily(getSystemSimulatorType()) ? getQuestaSimPath(useDefault)
                                                    : getModelSimPath(useDefault);
}

QString BaseSystem::getSimulatorName()
{
    return isQuestaFamily(getSystemSimulatorType()) ? QStringLiteral("QuestaSim")
                                                    : QStringLiteral("ModelSim");
}

const char *BaseSystem::getSimulatorInstallEnv()
{
    return isQuestaFamily(getSystemSimulatorType()) ? "QUESTASIM_PATH" : "MODELSIM_PATH";
}

int BaseSystem::getSystemSimulatorType()
{
    // The installation decides; a user or project value has no say.
    BaseSettings settings{QString()};
    const QString type = settings.getDefaultStringSetting(QStringLiteral("SIMULATOR_TYPE"));
    if (type == QLatin1String("ModelSim") || type == QLatin1String("QuestaSim"))
        return 2;
    return 4;
}

bool BaseSystem::getUseSynplifyOEM(bool useDefault)
{
    return editionSwitch("SYNPLIFY_USEOEM", useDefault);
}

bool BaseSystem::getUseSynplifyPro(bool useDefault)
{
    return editionSwitch("SYNPLIFY_USEPRO", useDefault);
}

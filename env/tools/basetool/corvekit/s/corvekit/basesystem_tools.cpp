#include "basesystem.h"

#include "basesettings.h"
#include "basesettings_p.h"
#include "basesystem_p.h"

#include <QDebug>
#include <QSettings>

#include <cstdlib>
#include <utility>

// Where the companion tools lie, which simulator is selected and which Synplify edition is
// wanted. Every answer is read afresh from the settings and the disk.

namespace {

// Where BaseSystem's locators and companionTools() find each tool; keep the two in one order.
enum ToolIndex
{
    Synplify,
    Precision,
    ActiveHDL,
    ModelSim,
    QuestaSim,
    ESDK,
};

QDir locate(ToolIndex index, bool useDefault)
{
    return corvekit_private::locateCompanionTool(corvekit_private::companionTools().at(index),
                                                 useDefault)
        .directory;
}

// The texts of SIMULATOR_TYPE that the selection knows, and their codes; any other gives 4.
struct SimulatorType
{
    const char *text;
    int code;
};

const SimulatorType simulatorTypes[] = {{"ModelSim", 2}, {"QuestaSim", 2}, {"QuestaSimQrun", 4}};

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
    return locate(Synplify, useDefault);
}

QDir BaseSystem::getPrecsionPath(bool useDefault)
{
    return locate(Precision, useDefault);
}

QDir BaseSystem::getActiveHDLPath(bool useDefault)
{
    return locate(ActiveHDL, useDefault);
}

QDir BaseSystem::getModelSimPath(bool useDefault)
{
    return locate(ModelSim, useDefault);
}

QDir BaseSystem::getQuestaSimPath(bool useDefault)
{
    return locate(QuestaSim, useDefault);
}

QDir BaseSystem::getESDKPath(bool useDefault)
{
    return locate(ESDK, useDefault);
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
    return corvekit_private::simulatorSelection().code;
}

bool BaseSystem::getUseSynplifyOEM(bool useDefault)
{
    return editionSwitch("SYNPLIFY_USEOEM", useDefault);
}

bool BaseSystem::getUseSynplifyPro(bool useDefault)
{
    return editionSwitch("SYNPLIFY_USEPRO", useDefault);
}

namespace corvekit_private {

const QList<CompanionTool> &companionTools()
{
    static const QList<CompanionTool> tools = {
        {"synplify", "SYNPLIFY_PATH", {"/synpbase", "/tptools/synplify/windows"}},
        {"precision", "PRECISION_PATH", {"/precision"}},
        {"activehdl", "ACTIVEHDL_PATH", {"/active-hdl"}},
        {"modelsim", "MODELSIM_PATH", {"/modeltech/win32loem"}},
        {"questasim", "QUESTASIM_PATH", {"/questasim/win64"}},
        // The ESDK has no place of its own below the install root.
        {"esdk", "ESDK_PATH", {}},
    };
    return tools;
}

ToolLocation locateCompanionTool(const CompanionTool &tool, bool useDefault)
{
    ToolLocation location;
    QString configured;
    {
        BaseSettings settings{QString()};
        const QString key = QString::fromLatin1(tool.key);
        // What getStringSetting (getDefaultStringSetting with useDefault) gives, in one walk that
        // also names the level: the first level that holds the key answers, even with an empty
        // value, in the order of the layered lookup; with useDefault the system level alone.
        const QSettings *levels[] = {settings.getProjectLeverSetting(), settings.getUserSetting(),
                                     settings.getSystemSetting()};
        for (qsizetype index = useDefault ? 2 : 0; index < 3; ++index) {
            if (levels[index]->contains(key)) {
                configured = levels[index]->value(key).toString();
                const SettingsLevel level = settingsLevels(settings).at(index);
                location.scope = level.scope;
                location.settingsFile = level.fileName;
                break;
            }
        }
    }
    // A configured folder is taken as it stands, even if it does not exist.
    if (!configured.isEmpty()) {
        location.directory = QDir(configured);
        location.source = ToolSource::Setting;
        return location;
    }
    if (tool.candidates.isEmpty())
        return location;

    const char *root = std::getenv("TOOLRTF");
    if (!root) {
        qDebug() << "Error : set ."
                 << "TOOLRTF"
                 << "first.";
        return location;
    }
    const QString rootPath(root);
    for (const char *candidate : tool.candidates) {
        QDir folder(rootPath + QLatin1String(candidate));
        location.tried.append(folder.path());
        if (folder.exists()) {
            location.directory = folder;
            location.source = ToolSource::Folder;
            return location;
        }
    }
    return location;
}

SimulatorSelection simulatorSelection()
{
    // The installation decides; a user or project value has no say.
    SimulatorSelection selection;
    BaseSettings settings{QString()};
    selection.type = settings.getDefaultStringSetting(QStringLiteral("SIMULATOR_TYPE"));
    selection.settingsFile = settings.getSystemSetting()->fileName(); // absolute already
    for (const SimulatorType &known : simulatorTypes) {
        if (selection.type == QLatin1String(known.text)) {
            selection.known = true;
            selection.code = known.code;
        }
    }
    return selection;
}

} // namespace corvekit_private

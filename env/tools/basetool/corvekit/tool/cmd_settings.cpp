#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesettings.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSettings>

#include <optional>

namespace {

// The level whose file answers a layered lookup of \a key, as getSetting walks them.
QString answeringLevel(BaseSettings &settings, const QString &key)
{
    if (settings.getProjectLeverSetting()->contains(key))
        return QStringLiteral("project");
    if (settings.getUserSetting()->contains(key))
        return QStringLiteral("user");
    if (settings.getSystemSetting()->contains(key))
        return QStringLiteral("system");
    return QStringLiteral("none");
}

QString malformedLevel(BaseSettings &settings)
{
    for (QSettings *level : {settings.getProjectLeverSetting(), settings.getUserSetting(),
                             settings.getSystemSetting()}) {
        if (level->status() == QSettings::FormatError)
            return level->fileName();
    }
    return QString();
}

int runGet(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the level that answers KEY (project, user or system) and its "
                       "value, as a suite tool's layered lookup sees it."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    const QCommandLineOption projectOption(
        QStringLiteral("project"),
        QStringLiteral("Project path; \".setting.ini\" is appended to it as it stands."),
        QStringLiteral("path"));
    parser.addOptions({jsonOption, projectOption});
    parser.addPositionalArgument(QStringLiteral("get"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    if (int status = parseArguments(parser, arguments, 2, 2); status >= 0)
        return status;

    const QString key = parser.positionalArguments().at(1);
    std::optional<ProfileStep> step(std::in_place, "open settings");
    BaseSettings settings(parser.value(projectOption));
    if (const QString file = malformedLevel(settings); !file.isEmpty())
        return fail(ExitInvalidInput, QStringLiteral("%1: malformed settings file").arg(file));

    step.emplace("look up");
    const QVariant value = settings.getSetting(key, QVariant());
    const QString level = answeringLevel(settings, key);
    if (level == QLatin1String("none"))
        return fail(ExitNotFound, QStringLiteral("'%1' is set at no level").arg(key));

    step.emplace("print");
    const QStringList list = value.toStringList();
    const bool isList = value.userType() == QMetaType::QStringList;
    if (parser.isSet(jsonOption)) {
        QJsonObject root;
        root.insert(QStringLiteral("key"), key);
        root.insert(QStringLiteral("level"), level);
        root.insert(QStringLiteral("value"), isList ? QJsonValue(QJsonArray::fromStringList(list))
                                                    : QJsonValue(value.toString()));
        printJson(root);
    } else {
        printLine(level + QLatin1Char('\t') +
                  (isList ? list.join(QStringLiteral(", ")) : value.toString()));
    }
    return ExitSuccess;
}

} // namespace

int runSettings(const QStringList &arguments)
{
    const QString action = arguments.value(1);
    if (action == QLatin1String("get"))
        return runGet(QStringList{QStringLiteral("corvekit settings")} + arguments.mid(1));
    if (action == QLatin1String("--help") || action == QLatin1String("-h")) {
        printLine(QStringLiteral("Usage: corvekit settings get KEY [--project PATH] [--json]"));
        return ExitSuccess;
    }
    if (action.isEmpty())
        return fail(ExitUsage,
                    QStringLiteral("settings: missing action; see 'corvekit settings --help'"));
    return fail(ExitUsage, QStringLiteral("settings: unknown action '%1'").arg(action));
}

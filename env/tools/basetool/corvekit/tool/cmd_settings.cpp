#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesettings.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSettings>

#include <algorithm>
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

const QStringList &valueTypes()
{
    static const QStringList types = {QStringLiteral("bool"), QStringLiteral("int"),
                                      QStringLiteral("string"), QStringLiteral("list")};
    return types;
}

// The value of \a key through the typed lookup that \a type names.
int printTyped(BaseSettings &settings, const QString &key, const QString &level,
               const QString &type, bool json)
{
    bool found = false;
    QJsonValue jsonValue;
    QString text;
    if (type == QLatin1String("bool")) {
        const bool value = settings.getBooleanSetting(found, key);
        jsonValue = value;
        text = value ? QStringLiteral("true") : QStringLiteral("false");
    } else if (type == QLatin1String("int")) {
        const int value = settings.getIntegerSetting(found, key);
        jsonValue = value;
        text = QString::number(value);
    } else if (type == QLatin1String("list")) {
        const QList<QString> value = settings.getStringListSetting(found, key);
        jsonValue = QJsonArray::fromStringList(value);
        text = value.join(QStringLiteral(", "));
    } else {
        // A list of several texts has no text form: it reads as empty.
        text = settings.getStringSetting(key);
        jsonValue = text;
    }
    if (json) {
        QJsonObject root;
        root.insert(QStringLiteral("key"), key);
        root.insert(QStringLiteral("level"), level);
        root.insert(QStringLiteral("type"), type);
        root.insert(QStringLiteral("value"), jsonValue);
        printJson(root);
    } else {
        printLine(level + QLatin1Char('\t') + text);
    }
    return ExitSuccess;
}

// A key of nothing but slashes names the whole file to QSettings: removing it would empty the
// file.
int checkKey(const QString &key)
{
    if (QString(key).remove(QLatin1Char('/')).isEmpty())
        return fail(ExitInvalidInput, QStringLiteral("'%1' is no settings key").arg(key));
    return -1;
}

// The level a write goes to, from --user or --project PATH; exactly one must be given.
struct WriteTarget
{
    QString level;
    QString projectPath;
};

int chooseTarget(const QCommandLineParser &parser, const QCommandLineOption &userOption,
                 const QCommandLineOption &projectOption, WriteTarget &target)
{
    if (parser.isSet(userOption) == parser.isSet(projectOption))
        return fail(ExitUsage, QStringLiteral("give either --user or --project PATH"));
    if (parser.isSet(userOption)) {
        target.level = QStringLiteral("user");
        return -1;
    }
    target.level = QStringLiteral("project");
    target.projectPath = parser.value(projectOption);
    if (target.projectPath.isEmpty())
        return fail(ExitUsage, QStringLiteral("--project needs a project path"));
    return -1;
}

QSettings *levelOf(BaseSettings &settings, const WriteTarget &target)
{
    return target.level == QLatin1String("user") ? settings.getUserSetting()
                                                 : settings.getProjectLeverSetting();
}

// Brings a write to disk and says whether it arrived; nothing is reported written that was not.
int flush(QSettings *level)
{
    level->sync();
    if (level->status() != QSettings::NoError)
        return fail(ExitCannotWrite,
                    QStringLiteral("%1: cannot write settings file").arg(level->fileName()));
    return ExitSuccess;
}

// Refuses to rewrite a file that could not be read whole: its unread part would be lost.
int checkWritable(QSettings *level)
{
    if (level->status() == QSettings::FormatError)
        return fail(ExitInvalidInput,
                    QStringLiteral("%1: malformed settings file").arg(level->fileName()));
    if (level->status() == QSettings::AccessError)
        return fail(ExitCannotWrite,
                    QStringLiteral("%1: cannot read settings file").arg(level->fileName()));
    return -1;
}

QCommandLineOption userLevelOption()
{
    return QCommandLineOption(QStringLiteral("user"),
                              QStringLiteral("Writes the user level (the group setting file if "
                                             "SOLVANE_GROUP_SETTING_FILE names one)."));
}

QCommandLineOption projectLevelOption()
{
    return QCommandLineOption(
        QStringLiteral("project"),
        QStringLiteral("Writes the project level of this project path; \".setting.ini\" is "
                       "appended to it as it stands, so end a folder with \"/\"."),
        QStringLiteral("path"));
}

int runSet(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stores KEY with VALUE at the user or the project level."));
    const QCommandLineOption userOption = userLevelOption();
    const QCommandLineOption projectOption = projectLevelOption();
    const QCommandLineOption typeOption(
        QStringLiteral("type"),
        QStringLiteral("Stores VALUE as bool (true/false/1/0), int, string (the default) or list "
                       "(split at commas)."),
        QStringLiteral("type"), QStringLiteral("string"));
    parser.addOptions({userOption, projectOption, typeOption});
    parser.addPositionalArgument(QStringLiteral("set"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    parser.addPositionalArgument(QStringLiteral("VALUE"), QStringLiteral("The value."));
    if (int status = parseArguments(parser, arguments, 3, 3); status >= 0)
        return status;
    WriteTarget target;
    if (int status = chooseTarget(parser, userOption, projectOption, target); status >= 0)
        return status;

    const QString key = parser.positionalArguments().at(1);
    const QString text = parser.positionalArguments().at(2);
    const QString type = parser.value(typeOption);
    if (!valueTypes().contains(type))
        return fail(ExitUsage, QStringLiteral("unknown type '%1'; see --help").arg(type));
    if (int status = checkKey(key); status >= 0)
        return status;

    QVariant value;
    if (type == QLatin1String("bool")) {
        const QString lower = text.toLower();
        if (lower == QLatin1String("true") || lower == QLatin1String("1"))
            value = true;
        else if (lower == QLatin1String("false") || lower == QLatin1String("0"))
            value = false;
        else
            return fail(ExitInvalidInput, QStringLiteral("'%1' is no bool").arg(text));
    } else if (type == QLatin1String("int")) {
        bool ok = false;
        const int number = text.toInt(&ok);
        if (!ok)
            return fail(ExitInvalidInput, QStringLiteral("'%1' is no int").arg(text));
        value = number;
    } else if (type == QLatin1String("list")) {
        QStringList items = text.split(QLatin1Char(','));
        for (QString &item : items)
            item = item.trimmed();
        value = items;
    } else {
        value = text;
    }

    BaseSettings settings(target.projectPath);
    QSettings *level = levelOf(settings, target);
    if (int status = checkWritable(level); status >= 0)
        return status;
    if (target.level == QLatin1String("user"))
        settings.setOnUserLevel(key, value);
    else
        settings.setOnProjectLevel(key, value);
    if (int status = flush(level); status != ExitSuccess)
        return status;
    printLine(target.level + QLatin1Char('\t') + level->fileName());
    return ExitSuccess;
}

int runUnset(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Removes KEY (or the group KEY with all its keys) from the user or the project level."));
    const QCommandLineOption userOption = userLevelOption();
    const QCommandLineOption projectOption = projectLevelOption();
    parser.addOptions({userOption, projectOption});
    parser.addPositionalArgument(QStringLiteral("unset"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    if (int status = parseArguments(parser, arguments, 2, 2); status >= 0)
        return status;
    WriteTarget target;
    if (int status = chooseTarget(parser, userOption, projectOption, target); status >= 0)
        return status;

    const QString key = parser.positionalArguments().at(1);
    if (int status = checkKey(key); status >= 0)
        return status;
    BaseSettings settings(target.projectPath);
    QSettings *level = levelOf(settings, target);
    if (int status = checkWritable(level); status >= 0)
        return status;
    const QString prefix = key + QLatin1Char('/');
    const QStringList keys = level->allKeys();
    const bool present = level->contains(key) ||
                         std::any_of(keys.begin(), keys.end(), [&prefix](const QString &each) {
                             return each.startsWith(prefix);
                         });
    if (!present)
        return fail(ExitNotFound, QStringLiteral("'%1' is not set at the %2 level (%3)")
                                      .arg(key, target.level, level->fileName()));
    if (target.level == QLatin1String("user"))
        settings.unsetOnUserLevel(key);
    else
        settings.unsetOnProjectLevel(key);
    if (int status = flush(level); status != ExitSuccess)
        return status;
    printLine(target.level + QLatin1Char('\t') + level->fileName());
    return ExitSuccess;
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
    const QCommandLineOption typeOption(
        QStringLiteral("type"),
        QStringLiteral("Reads the value as bool, int, string or list, as the library's typed "
                       "lookups do."),
        QStringLiteral("type"));
    parser.addOptions({jsonOption, projectOption, typeOption});
    parser.addPositionalArgument(QStringLiteral("get"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    if (int status = parseArguments(parser, arguments, 2, 2); status >= 0)
        return status;

    const QString key = parser.positionalArguments().at(1);
    const QString type = parser.value(typeOption);
    if (parser.isSet(typeOption) && !valueTypes().contains(type))
        return fail(ExitUsage, QStringLiteral("unknown type '%1'; see --help").arg(type));

    std::optional<ProfileStep> step(std::in_place, "open settings");
    BaseSettings settings(parser.value(projectOption));
    if (const QString file = malformedLevel(settings); !file.isEmpty())
        return fail(ExitInvalidInput, QStringLiteral("%1: malformed settings file").arg(file));

    step.emplace("look up");
    const QVariant value = settings.getSetting(key, QVariant());
    const QString level = answeringLevel(settings, key);
    if (level == QLatin1String("none"))
        return fail(ExitNotFound, QStringLiteral("'%1' is set at no level").arg(key));
    if (parser.isSet(typeOption))
        return printTyped(settings, key, level, type, parser.isSet(jsonOption));

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
    const QStringList rest = QStringList{QStringLiteral("corvekit settings")} + arguments.mid(1);
    if (action == QLatin1String("get"))
        return runGet(rest);
    if (action == QLatin1String("set"))
        return runSet(rest);
    if (action == QLatin1String("unset"))
        return runUnset(rest);
    if (action == QLatin1String("--help") || action == QLatin1String("-h")) {
        printLine(QStringLiteral(
            "Usage: corvekit settings get KEY [--type bool|int|string|list] [--project PATH] "
            "[--json]\n"
            "       corvekit settings set (--user | --project PATH) [--type TYPE] KEY VALUE\n"
            "       corvekit settings unset (--user | --project PATH) KEY"));
        return ExitSuccess;
    }
    if (action.isEmpty())
        return fail(ExitUsage,
                    QStringLiteral("settings: missing action; see 'corvekit settings --help'"));
    return fail(ExitUsage, QStringLiteral("settings: unknown action '%1'").arg(action));
}

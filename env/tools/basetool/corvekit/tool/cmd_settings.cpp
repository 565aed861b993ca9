#include "commands.h"
#include "inifile.h"
#include "settingslevels.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesettings_p.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSettings>

#include <optional>

using corvekit_private::SettingsLevel;

namespace {

const QStringList &valueTypes()
{
    static const QStringList types = {QStringLiteral("bool"), QStringLiteral("int"),
                                      QStringLiteral("string"), QStringLiteral("list")};
    return types;
}

int checkType(const QString &type)
{
    if (!type.isEmpty() && !valueTypes().contains(type))
        return fail(ExitUsage, QStringLiteral("unknown type '%1'; see --help").arg(type));
    return KeepGoing;
}

// \a text as a value of \a type, as `set` stores it; lists are split at commas.
int parseValue(const QString &type, const QString &text, QVariant &value)
{
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
        value = text.toInt(&ok);
        if (!ok)
            return fail(ExitInvalidInput, QStringLiteral("'%1' is no int").arg(text));
    } else if (type == QLatin1String("list")) {
        QStringList items = text.split(QLatin1Char(','));
        for (QString &item : items)
            item = item.trimmed();
        value = items;
    } else {
        value = text;
    }
    return KeepGoing;
}

// Whether QSettings read a list; an empty list reads as no value at all.
bool isList(const QVariant &value)
{
    return value.userType() == QMetaType::QStringList ||
           value.userType() == QMetaType::QVariantList || !value.isValid();
}

// A stored value as text and as JSON, converted as the library's typed lookup of \a type
// converts it. Untyped, JSON has it as a list of texts whatever the file holds.
QString valueText(const QVariant &value, const QString &type)
{
    if (type == QLatin1String("bool"))
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (type == QLatin1String("int"))
        return QString::number(value.toInt());
    if (type == QLatin1String("list") || (type.isEmpty() && isList(value)))
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

QJsonValue valueJson(const QVariant &value, const QString &type)
{
    if (type == QLatin1String("bool"))
        return value.toBool();
    if (type == QLatin1String("int"))
        return value.toInt();
    if (type == QLatin1String("string"))
        return value.toString();
    return QJsonArray::fromStringList(isList(value) ? value.toStringList()
                                                    : QStringList{value.toString()});
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

// "SCOPE\t" and "FILE\t" before a value, as --show-scope and --show-origin ask.
QString origin(const SettingsLevel &level, bool showScope, bool showOrigin)
{
    QString text;
    if (showScope)
        text += level.scope + QLatin1Char('\t');
    if (showOrigin)
        text += level.fileName + QLatin1Char('\t');
    return text;
}

QCommandLineOption showScopeOption()
{
    return QCommandLineOption(
        QStringLiteral("show-scope"),
        QStringLiteral("Prints the level (project, user, group, sibling or system) before the "
                       "value."));
}

QCommandLineOption showOriginOption()
{
    return QCommandLineOption(QStringLiteral("show-origin"),
                              QStringLiteral("Prints the level's file before the value."));
}

// Refuses level files that would block, opens the levels, and names those it had to skip.
int openLevels(const QString &projectPath, std::optional<BaseSettings> &settings)
{
    if (int status = checkLevelFiles(projectPath); status != KeepGoing)
        return status;
    settings.emplace(projectPath);
    warnSkippedLevels(*settings);
    return KeepGoing;
}

int runGet(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the value of KEY as a suite tool's layered lookup finds it: from "
                       "the most specific level that holds it."));
    const QCommandLineOption json = jsonOutputOption();
    const QCommandLineOption project = projectDirOption(QStringLiteral("Reads"));
    const QCommandLineOption typeOption(
        QStringLiteral("type"),
        QStringLiteral("Reads the value as bool, int, string or list, as the library's typed "
                       "lookups do."),
        QStringLiteral("type"));
    const QCommandLineOption showScope = showScopeOption();
    const QCommandLineOption showOrigin = showOriginOption();
    const QCommandLineOption all(
        QStringLiteral("all"),
        QStringLiteral("Prints the value of every level that holds KEY, most specific first."));
    const QCommandLineOption defaultOption(
        QStringLiteral("default"),
        QStringLiteral("Prints this value, with exit status 0, when no level holds KEY."),
        QStringLiteral("value"));
    parser.addOptions({json, project, typeOption, showScope, showOrigin, all, defaultOption});
    parser.addPositionalArgument(QStringLiteral("get"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    if (int status = parseArguments(parser, arguments, 2, 2); status != KeepGoing)
        return status;
    const QString key = parser.positionalArguments().at(1);
    const QString type = parser.value(typeOption);
    if (int status = checkType(type); status != KeepGoing)
        return status;
    QVariant defaultValue;
    if (parser.isSet(defaultOption)) {
        if (int status = parseValue(type, parser.value(defaultOption), defaultValue);
            status != KeepGoing)
            return status;
    }
    QString projectPath;
    if (int status = projectDirectory(parser, project, projectPath); status != KeepGoing)
        return status;

    std::optional<ProfileStep> step(std::in_place, "open settings");
    std::optional<BaseSettings> settings;
    if (int status = openLevels(projectPath, settings); status != KeepGoing)
        return status;

    step.emplace("look up");
    const QList<SettingsLevel> levels = corvekit_private::settingsLevels(*settings);
    const int answering = corvekit_private::answeringLevel(*settings, key);
    QList<int> shown;
    for (int index = 0; index < levels.size(); ++index) {
        if (index == answering || (parser.isSet(all) && levels[index].settings->contains(key)))
            shown.append(index);
    }

    step.emplace("print");
    QJsonObject root;
    root.insert(QStringLiteral("key"), key);
    root.insert(QStringLiteral("found"), answering >= 0);
    root.insert(QStringLiteral("level"), answering >= 0 ? levels[answering].scope : QJsonValue());
    root.insert(QStringLiteral("file"), answering >= 0 ? levels[answering].fileName : QJsonValue());
    root.insert(QStringLiteral("type"), orNull(type));
    QJsonArray levelValues;
    for (int index : shown) {
        const QVariant value = levels[index].settings->value(key);
        if (index == answering)
            root.insert(QStringLiteral("value"), valueJson(value, type));
        levelValues.append(QJsonObject{{QStringLiteral("level"), levels[index].scope},
                                       {QStringLiteral("file"), levels[index].fileName},
                                       {QStringLiteral("value"), valueJson(value, type)}});
        if (!parser.isSet(json))
            printLine(origin(levels[index], parser.isSet(showScope), parser.isSet(showOrigin)) +
                      valueText(value, type));
    }
    if (answering < 0) {
        const bool answered = parser.isSet(defaultOption);
        root.insert(QStringLiteral("value"),
                    answered ? valueJson(defaultValue, type) : QJsonValue());
        if (answered && !parser.isSet(json))
            printLine(valueText(defaultValue, type));
    }
    if (parser.isSet(all))
        root.insert(QStringLiteral("levels"), levelValues);
    if (parser.isSet(json))
        printJson(root);
    if (answering < 0 && !parser.isSet(defaultOption))
        return fail(ExitNotFound, QStringLiteral("'%1' is set at no level").arg(key));
    return ExitSuccess;
}

int runList(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Lists every key of every level, most specific level first, as "
                       "KEY=VALUE. A line starts with \"*\" when its level answers the key's "
                       "lookup, else with a space."));
    const QCommandLineOption json = jsonOutputOption();
    const QCommandLineOption project = projectDirOption(QStringLiteral("Reads"));
    const QCommandLineOption showScope = showScopeOption();
    const QCommandLineOption showOrigin = showOriginOption();
    parser.addOptions({json, project, showScope, showOrigin});
    parser.addPositionalArgument(QStringLiteral("list"), QStringLiteral("The action."));
    if (int status = parseArguments(parser, arguments, 1, 1); status != KeepGoing)
        return status;
    QString projectPath;
    if (int status = projectDirectory(parser, project, projectPath); status != KeepGoing)
        return status;
    std::optional<BaseSettings> settings;
    if (int status = openLevels(projectPath, settings); status != KeepGoing)
        return status;

    const QList<SettingsLevel> levels = corvekit_private::settingsLevels(*settings);
    QJsonArray entries;
    QStringList lines;
    for (int index = 0; index < levels.size(); ++index) {
        const SettingsLevel &level = levels[index];
        for (const QString &key : level.settings->allKeys()) {
            const bool winning = corvekit_private::answeringLevel(*settings, key) == index;
            const QVariant value = level.settings->value(key);
            if (parser.isSet(json))
                entries.append(QJsonObject{{QStringLiteral("key"), key},
                                           {QStringLiteral("level"), level.scope},
                                           {QStringLiteral("file"), level.fileName},
                                           {QStringLiteral("value"), valueJson(value, {})},
                                           {QStringLiteral("winning"), winning}});
            else
                lines.append(QLatin1String(winning ? "* " : "  ") +
                             origin(level, parser.isSet(showScope), parser.isSet(showOrigin)) +
                             key + QLatin1Char('=') + valueText(value, {}));
        }
    }
    const bool found = !entries.isEmpty() || !lines.isEmpty();
    if (parser.isSet(json))
        printJson({{QStringLiteral("found"), found}, {QStringLiteral("entries"), entries}});
    else if (found)
        printLine(lines.join(QLatin1Char('\n')));
    if (!found)
        return fail(ExitNotFound, QStringLiteral("no level holds a key"));
    return ExitSuccess;
}

// A key of nothing but slashes names the whole file to QSettings: removing it would empty the
// file.
int checkKey(const QString &key)
{
    if (QString(key).remove(QLatin1Char('/')).isEmpty())
        return fail(ExitInvalidInput, QStringLiteral("'%1' is no settings key").arg(key));
    return KeepGoing;
}

QCommandLineOption userLevelOption()
{
    return QCommandLineOption(QStringLiteral("user"),
                              QStringLiteral("Writes the user level (the group setting file if "
                                             "SOLVANE_GROUP_SETTING_FILE names one)."));
}

// The level a write goes to, from --user or --project DIR; exactly one must be given.
int chooseLevel(const QCommandLineParser &parser, const QCommandLineOption &user,
                const QCommandLineOption &project, std::optional<BaseSettings> &settings,
                SettingsLevel &level)
{
    if (parser.isSet(user) == parser.isSet(project))
        return fail(ExitUsage, QStringLiteral("give either --user or --project DIR"));
    QString projectPath;
    if (int status = projectDirectory(parser, project, projectPath); status != KeepGoing)
        return status;
    if (int status = openLevels(projectPath, settings); status != KeepGoing)
        return status;
    // The levels come most specific first: the project, then the user level in use.
    level = corvekit_private::settingsLevels(*settings).at(parser.isSet(user) ? 1 : 0);
    return KeepGoing;
}

int editStatus(const IniEditResult &result)
{
    switch (result.status) {
    case IniEditStatus::Done:
        return ExitSuccess;
    case IniEditStatus::NotFound:
        return ExitNotFound;
    case IniEditStatus::InvalidFile:
        return fail(ExitInvalidInput, result.message);
    case IniEditStatus::CannotWrite:
        break;
    }
    return fail(ExitCannotWrite, result.message);
}

QJsonObject writeReport(const QString &key, const SettingsLevel &level)
{
    return {{QStringLiteral("key"), key},
            {QStringLiteral("level"), level.scope},
            {QStringLiteral("file"), level.fileName}};
}

int runSet(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stores KEY with VALUE at the user or the project level; every other line "
                       "of the file stays as it is."));
    const QCommandLineOption user = userLevelOption();
    const QCommandLineOption project = projectDirOption(QStringLiteral("Writes"));
    const QCommandLineOption typeOption(
        QStringLiteral("type"),
        QStringLiteral("Stores VALUE as bool (true/false/1/0), int, string (the default) or list "
                       "(split at commas)."),
        QStringLiteral("type"), QStringLiteral("string"));
    const QCommandLineOption json = jsonOutputOption();
    parser.addOptions({user, project, typeOption, json});
    parser.addPositionalArgument(QStringLiteral("set"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    parser.addPositionalArgument(QStringLiteral("VALUE"), QStringLiteral("The value."));
    if (int status = parseArguments(parser, arguments, 3, 3); status != KeepGoing)
        return status;
    const QString key = parser.positionalArguments().at(1);
    const QString type = parser.value(typeOption);
    QVariant value;
    if (int status = checkType(type); status != KeepGoing)
        return status;
    if (int status = checkKey(key); status != KeepGoing)
        return status;
    if (int status = parseValue(type, parser.positionalArguments().at(2), value);
        status != KeepGoing)
        return status;
    std::optional<BaseSettings> settings;
    SettingsLevel level{};
    if (int status = chooseLevel(parser, user, project, settings, level); status != KeepGoing)
        return status;

    const IniEditResult result = setIniValue(level.fileName, key, value);
    if (result.status != IniEditStatus::Done)
        return editStatus(result);
    if (parser.isSet(json)) {
        QJsonObject root = writeReport(key, level);
        root.insert(QStringLiteral("type"), type);
        root.insert(QStringLiteral("value"), valueJson(result.value, type));
        printJson(root);
    } else {
        printLine(level.scope + QLatin1Char('\t') + level.fileName);
    }
    return ExitSuccess;
}

int runUnset(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Removes KEY (or the group KEY with all its keys) from the user or the "
                       "project level; every other line of the file stays as it is."));
    const QCommandLineOption user = userLevelOption();
    const QCommandLineOption project = projectDirOption(QStringLiteral("Writes"));
    const QCommandLineOption json = jsonOutputOption();
    parser.addOptions({user, project, json});
    parser.addPositionalArgument(QStringLiteral("unset"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The settings key."));
    if (int status = parseArguments(parser, arguments, 2, 2); status != KeepGoing)
        return status;
    const QString key = parser.positionalArguments().at(1);
    if (int status = checkKey(key); status != KeepGoing)
        return status;
    std::optional<BaseSettings> settings;
    SettingsLevel level{};
    if (int status = chooseLevel(parser, user, project, settings, level); status != KeepGoing)
        return status;

    const IniEditResult result = removeIniKey(level.fileName, key);
    const bool found = result.status == IniEditStatus::Done;
    if (parser.isSet(json) && (found || result.status == IniEditStatus::NotFound)) {
        QJsonObject root = writeReport(key, level);
        root.insert(QStringLiteral("found"), found);
        root.insert(QStringLiteral("removed"), QJsonArray::fromStringList(result.removedKeys));
        printJson(root);
    } else if (found) {
        printLine(level.scope + QLatin1Char('\t') + level.fileName);
    }
    if (result.status == IniEditStatus::NotFound)
        return fail(ExitNotFound, QStringLiteral("'%1' is not set at the %2 level (%3)")
                                      .arg(key, level.scope, level.fileName));
    return editStatus(result);
}

} // namespace

int runSettings(const QStringList &arguments)
{
    return runCommandAction(
        QStringLiteral("settings"), arguments,
        {{"get", runGet}, {"list", runList}, {"set", runSet}, {"unset", runUnset}},
        QStringLiteral(
            "Usage: corvekit settings get KEY [--type bool|int|string|list] [--all] "
            "[--default VALUE]\n"
            "                             [--show-scope] [--show-origin] [--project DIR] "
            "[--json]\n"
            "       corvekit settings list [--show-scope] [--show-origin] [--project DIR] "
            "[--json]\n"
            "       corvekit settings set (--user | --project DIR) [--type TYPE] [--json] KEY "
            "VALUE\n"
            "       corvekit settings unset (--user | --project DIR) [--json] KEY\n"
            "Run 'corvekit settings ACTION --help' for the options of an action."));
}

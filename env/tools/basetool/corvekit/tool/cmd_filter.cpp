#include "commands.h"
#include "settingslevels.h"
#include "startup.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>
#include <corvekit/basesystem_p.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

int runFilter(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the extensions of a file type (the setting File_Extension/TYPE) "
                       "and the name filter a file dialog gets for it."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption projectOption = projectDirOption(QStringLiteral("Reads"));
    parser.addOptions({jsonOption, projectOption});
    parser.addPositionalArgument(QStringLiteral("TYPE"), QStringLiteral("The file type."));
    parser.addPositionalArgument(QStringLiteral("DESCRIPTION"),
                                 QStringLiteral("Text before the patterns; \"TYPE Files\" if "
                                                "not given."),
                                 QStringLiteral("[DESCRIPTION]"));
    if (int status = parseArguments(parser, arguments, 1, 2); status != KeepGoing)
        return status;
    QString projectPath;
    if (int status = startUp(parser, projectOption, projectPath); status != KeepGoing)
        return status;

    const QStringList positional = parser.positionalArguments();
    const QString &type = positional.at(0);
    const QString key = corvekit_private::fileExtensionKey(type);
    BaseSettings settings;
    warnSkippedLevels(settings);
    bool found = false;
    const QList<QString> extensions = corvekit_private::fileExtensions(settings, type, found);
    const QByteArray description = positional.value(1).toUtf8();
    const QString filter =
        found ? BaseSystem::getFileFilter(type.toUtf8().constData(),
                                          positional.size() > 1 ? description.constData() : nullptr)
              : QString();

    if (parser.isSet(jsonOption)) {
        printJson({{QStringLiteral("type"), type},
                   {QStringLiteral("key"), key},
                   {QStringLiteral("found"), found},
                   {QStringLiteral("extensions"), QJsonArray::fromStringList(extensions)},
                   {QStringLiteral("filter"), textOrNull(filter)}});
        return found ? ExitSuccess : ExitNotFound;
    }
    if (!found)
        return fail(ExitNotFound, QStringLiteral("'%1' is set at no level").arg(key));
    printLine(QStringLiteral("extensions: %1").arg(extensions.join(QLatin1Char(' '))));
    printLine(QStringLiteral("filter:     %1").arg(filter));
    return ExitSuccess;
}

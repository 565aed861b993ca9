#include "commands.h"
#include "toolio.h"

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

int runFilter(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the extensions of a file type (the setting File_Extension/TYPE) "
                       "and the name filter a file dialog gets for it."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    const QCommandLineOption projectOption(
        QStringLiteral("project"),
        QStringLiteral("Project path; \".setting.ini\" is appended to it as it stands."),
        QStringLiteral("path"));
    parser.addOptions({jsonOption, projectOption});
    parser.addPositionalArgument(QStringLiteral("TYPE"), QStringLiteral("The file type."));
    parser.addPositionalArgument(QStringLiteral("DESCRIPTION"),
                                 QStringLiteral("Text before the patterns; \"TYPE Files\" if "
                                                "not given."),
                                 QStringLiteral("[DESCRIPTION]"));
    if (int status = parseArguments(parser, arguments, 1, 2); status >= 0)
        return status;

    BaseSystem::initializeSystem();
    BaseSettings::setProjectPath(parser.value(projectOption));
    const QStringList positional = parser.positionalArguments();
    const QByteArray type = positional.at(0).toUtf8();
    const QByteArray description = positional.value(1).toUtf8();

    const QList<QString> extensions = BaseSystem::getFileExtensions(type.constData());
    if (extensions.isEmpty()) {
        BaseSettings settings;
        const QString key = QStringLiteral("File_Extension/%1").arg(positional.at(0));
        if (settings.getSetting(key, QVariant()).isNull())
            return fail(ExitNotFound, QStringLiteral("'%1' is set at no level").arg(key));
    }
    const QString filter = BaseSystem::getFileFilter(
        type.constData(), positional.size() > 1 ? description.constData() : nullptr);

    if (parser.isSet(jsonOption)) {
        QJsonObject root;
        root.insert(QStringLiteral("type"), positional.at(0));
        root.insert(QStringLiteral("extensions"), QJsonArray::fromStringList(extensions));
        root.insert(QStringLiteral("filter"), filter);
        printJson(root);
        return ExitSuccess;
    }
    printLine(QStringLiteral("extensions: %1").arg(extensions.join(QLatin1Char(' '))));
    printLine(QStringLiteral("filter:     %1").arg(filter));
    return ExitSuccess;
}

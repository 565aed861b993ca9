#include "commands.h"
#include "toolio.h"

#include <corvekit/commonlabelmapping.h>
// The keys of the table, in the library's order of comparison.
#include <labelmapping/commonlabelmapping_p.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

int runLabel(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the text that the suite's views show for a label KEY (matched "
                       "whole, without regard to case), or the whole table with --list.\n"
                       "Exit status: 0 found, 1 no such key, 2 usage."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption listOption(QStringLiteral("list"),
                                        QStringLiteral("Prints every key with its text."));
    parser.addOptions({jsonOption, listOption});
    parser.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The label key."),
                                 QStringLiteral("[KEY]"));
    if (int status = parseArguments(parser, arguments, 0, 1); status != KeepGoing)
        return status;
    const bool json = parser.isSet(jsonOption);
    const QStringList positional = parser.positionalArguments();

    if (parser.isSet(listOption)) {
        if (!positional.isEmpty())
            return fail(ExitUsage, QStringLiteral("label: give either KEY or --list"));
        QJsonArray labels;
        for (const corvekit_labels::LabelRow &row : corvekit_labels::rows) {
            const QString key = QString::fromLatin1(row.key);
            const QString text = commonLabelMapping(row.key);
            if (json)
                labels.append(
                    QJsonObject{{QStringLiteral("key"), key}, {QStringLiteral("text"), text}});
            else
                printLine(key + QLatin1Char('\t') + text);
        }
        if (json)
            printJson(QJsonObject{{QStringLiteral("labels"), labels}});
        return ExitSuccess;
    }

    if (positional.isEmpty())
        return fail(ExitUsage, QStringLiteral("label: missing KEY; see 'corvekit label --help'"));
    const QString &key = positional.first();
    const QString text = commonLabelMapping(key.toUtf8().constData());
    if (json) {
        printJson(QJsonObject{{QStringLiteral("found"), !text.isNull()},
                              {QStringLiteral("key"), key},
                              {QStringLiteral("text"),
                               text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text)}});
        return text.isNull() ? ExitNotFound : ExitSuccess;
    }
    if (text.isNull())
        return fail(ExitNotFound, QStringLiteral("'%1' is no label key").arg(key));
    printLine(text);
    return ExitSuccess;
}

#include "commands.h"
#include "toolio.h"

#include <corvekit/baseqregularexpression.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

int runWildcard(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the regular expression of a wildcard pattern ('*' any text, '?' one character, "
        "everything else literal), then each NAME that the pattern matches as a whole name."));
    parser.addPositionalArgument(QStringLiteral("pattern"),
                                 QStringLiteral("The wildcard pattern."));
    parser.addPositionalArgument(QStringLiteral("name"), QStringLiteral("Names to match."),
                                 QStringLiteral("[NAME...]"));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Prints JSON."));
    parser.addOption(jsonOption);
    if (int status = parseArguments(parser, arguments, 1, -1); status >= 0)
        return status;

    QStringList names = parser.positionalArguments();
    const QString pattern = names.takeFirst();
    const QString expression = BaseQRegularExpression::wildcardToRegularExpression(pattern);

    // The library's answer for an empty pattern is a null text: there is no expression.
    if (expression.isNull()) {
        if (parser.isSet(jsonOption)) {
            printJson({{QStringLiteral("pattern"), pattern},
                       {QStringLiteral("expression"), QJsonValue(QJsonValue::Null)},
                       {QStringLiteral("matches"), QJsonArray()}});
        }
        return fail(ExitNotFound, QStringLiteral("wildcard: an empty pattern has no expression"));
    }

    const QRegularExpression whole(QRegularExpression::anchoredPattern(expression));
    if (!whole.isValid())
        return fail(ExitInvalidInput, QStringLiteral("wildcard: '%1' gives no valid expression: %2")
                                          .arg(expression, whole.errorString()));
    QStringList matches;
    for (const QString &name : std::as_const(names)) {
        if (whole.match(name).hasMatch())
            matches << name;
    }

    if (parser.isSet(jsonOption)) {
        printJson({{QStringLiteral("pattern"), pattern},
                   {QStringLiteral("expression"), expression},
                   {QStringLiteral("matches"), QJsonArray::fromStringList(matches)}});
        return ExitSuccess;
    }
    printLine(expression);
    for (const QString &name : std::as_const(matches))
        printLine(name);
    return ExitSuccess;
}

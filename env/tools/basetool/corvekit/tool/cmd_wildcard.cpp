#include "commands.h"
#include "toolio.h"

#include <corvekit/baseqregularexpression.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

// Appends the lines of \a path ("-" is standard input) to \a names; LF or CRLF ends a line.
int readNames(const QString &path, QStringList &names)
{
    QByteArray bytes;
    if (int status = readInputFile(path, bytes); status != KeepGoing)
        return status;
    const QString text = QString::fromLocal8Bit(bytes);
    if (text.isEmpty())
        return KeepGoing;
    QStringList lines = text.split(QLatin1Char('\n'));
    if (text.endsWith(QLatin1Char('\n')))
        lines.removeLast();
    for (QString &line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    names += lines;
    return KeepGoing;
}

} // namespace

int runWildcard(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the regular expression of a wildcard pattern ('*' any text, '?' one character, "
        "everything else literal), then each NAME that the pattern matches as a whole name. With "
        "--file it reads the names from files instead and prints only those that match, as grep "
        "does.\n"
        "Exit status: 0 translated (and, when names were given, at least one matched), 1 an "
        "empty pattern or no name matched, 2 usage, 3 a file is missing, not a regular file or "
        "unreadable."));
    parser.addPositionalArgument(QStringLiteral("PATTERN"),
                                 QStringLiteral("The wildcard pattern."));
    parser.addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("Names to match."),
                                 QStringLiteral("[NAME...]"));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption fileOption(
        {QStringLiteral("f"), QStringLiteral("file")},
        QStringLiteral("Reads the names to match from FILE, one a line (\"-\" for standard "
                       "input), and prints only the names that match; may be given more than "
                       "once."),
        QStringLiteral("FILE"));
    parser.addOptions({jsonOption, fileOption});
    if (int status = parseArguments(parser, arguments, 1, -1); status != KeepGoing)
        return status;

    QStringList names = parser.positionalArguments();
    const QString pattern = names.takeFirst();
    const bool fromFiles = parser.isSet(fileOption);
    if (fromFiles && !names.isEmpty())
        return fail(ExitUsage, QStringLiteral("wildcard: give NAME arguments or --file, not both"));
    for (const QString &path : parser.values(fileOption)) {
        if (int status = readNames(path, names); status != KeepGoing)
            return status;
    }
    const bool json = parser.isSet(jsonOption);
    const QString expression = BaseQRegularExpression::wildcardToRegularExpression(pattern);

    // The library's answer for an empty pattern is a null text: there is no expression.
    if (expression.isNull()) {
        if (json) {
            printJson({{QStringLiteral("pattern"), pattern},
                       {QStringLiteral("expression"), QJsonValue(QJsonValue::Null)},
                       {QStringLiteral("found"), false},
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
    // As grep: names to look at and none of them matching is a miss.
    const bool found = !matches.isEmpty() || (names.isEmpty() && !fromFiles);

    if (json) {
        printJson({{QStringLiteral("pattern"), pattern},
                   {QStringLiteral("expression"), expression},
                   {QStringLiteral("found"), found},
                   {QStringLiteral("matches"), QJsonArray::fromStringList(matches)}});
    } else {
        if (!fromFiles)
            printLine(expression);
        for (const QString &name : std::as_const(matches))
            printLine(name);
    }
    return found ? ExitSuccess : ExitNotFound;
}

#include "toolio.h"

#include "dataoutput_p.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <vector>

namespace {

FILE *dataStream = nullptr;

// The command as the usage line names it: "corvekit settings" and "settings" alike.
QString commandName(const QStringList &arguments)
{
    QString name = arguments.value(0);
    if (name.startsWith(QLatin1String("corvekit ")))
        name.remove(0, 9);
    return name;
}

// Qt's help names the program by its path; the tool's names the command, and the action of a
// command that has actions ("settings get") before the options, as it is typed.
QString helpText(const QCommandLineParser &parser, const QString &command, const QString &action)
{
    QString text = parser.helpText();
    const qsizetype lineEnd = text.indexOf(QLatin1Char('\n'));
    const qsizetype options = text.indexOf(QLatin1String(" [options]"));
    if (options < 0 || options > lineEnd)
        return text;
    QString usage = QStringLiteral("Usage: corvekit ") + command;
    const QString actionFirst = QStringLiteral(" [options] ") + action;
    if (!action.isEmpty() && text.mid(options, actionFirst.size()) == actionFirst &&
        (options + actionFirst.size() == lineEnd ||
         text.at(options + actionFirst.size()) == QLatin1Char(' '))) {
        usage += QLatin1Char(' ') + action + QStringLiteral(" [options]");
        text.remove(options, actionFirst.size());
    }
    text.replace(0, options, usage);
    return text;
}

// The long options that \a help lists, without their dashes. An option's line starts with its
// names ("  -h, --help", "  --by <order>"); the description after them may quote other options.
QStringList longOptions(const QString &help)
{
    QStringList names;
    for (const QString &line : help.split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1String("  -")))
            continue;
        for (QString word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            if (word.startsWith(QLatin1Char('<')))
                continue;
            if (!word.startsWith(QLatin1Char('-')))
                break;
            if (word.endsWith(QLatin1Char(',')))
                word.chop(1);
            if (word.startsWith(QLatin1String("--")))
                names << word.mid(2);
        }
    }
    return names;
}

// Optimal string alignment distance: insertions, deletions, substitutions and swaps of two
// neighbours each cost one.
qsizetype editDistance(const QString &a, const QString &b)
{
    const qsizetype columns = b.size() + 1;
    std::vector<qsizetype> d(static_cast<std::size_t>((a.size() + 1) * columns));
    const auto at = [&](qsizetype i, qsizetype j) -> qsizetype & {
        return d[static_cast<std::size_t>(i * columns + j)];
    };
    for (qsizetype i = 0; i <= a.size(); ++i)
        at(i, 0) = i;
    for (qsizetype j = 0; j <= b.size(); ++j)
        at(0, j) = j;
    for (qsizetype i = 1; i <= a.size(); ++i) {
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const qsizetype cost = a[i - 1] == b[j - 1] ? 0 : 1;
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + cost});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    }
    return at(a.size(), b.size());
}

} // namespace

FILE *dataOutput()
{
    return dataStream ? dataStream : stdout;
}

void keepDataOutputApart()
{
    if (!dataStream)
        dataStream = moveStandardOutputAside();
}

void printLine(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), dataOutput());
    std::fputc('\n', dataOutput());
}

void printJson(const QJsonObject &object)
{
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Indented);
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), dataOutput());
}

void warn(const QString &message)
{
    std::fprintf(stderr, "corvekit: warning: %s\n", message.toLocal8Bit().constData());
}

QString nearestName(const QString &word, const QStringList &candidates)
{
    // Close means one edit in a short word, two in a longer one: enough for a typo, too few to
    // turn one word into an unrelated one.
    const qsizetype allowed = std::clamp<qsizetype>(word.size() / 3, 1, 2);
    QString nearest;
    qsizetype best = allowed + 1;
    for (const QString &candidate : candidates) {
        const qsizetype distance = editDistance(word.toLower(), candidate.toLower());
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

int fail(ExitStatus status, const QString &message)
{
    // Errors stay on one line whatever the message holds.
    QString line = message;
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    std::fprintf(stderr, "corvekit: %s\n", line.toLocal8Bit().constData());
    return status;
}

int runCommandAction(const QString &command, const QStringList &arguments,
                     std::initializer_list<CommandAction> actions, const QString &usage)
{
    const QString action = arguments.value(1);
    const QStringList rest = QStringList{QStringLiteral("corvekit ") + command} + arguments.mid(1);
    for (const CommandAction &candidate : actions) {
        if (action == QLatin1String(candidate.name))
            return candidate.run(rest);
    }
    if (action == QLatin1String("--help") || action == QLatin1String("-h")) {
        printLine(usage);
        return ExitSuccess;
    }
    if (action.isEmpty())
        return fail(ExitUsage,
                    QStringLiteral("%1: missing action; see 'corvekit %1 --help'").arg(command));
    return fail(ExitUsage, QStringLiteral("%1: unknown action '%2'").arg(command, action));
}

int parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositional,
                   int maxPositional)
{
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Shows this help."));
    parser.addOption(helpOption);
    const QString command = commandName(arguments);
    if (!parser.parse(arguments)) {
        QString error = parser.errorText();
        const QString unknown = parser.unknownOptionNames().value(0);
        const QString nearest =
            unknown.size() > 1 ? nearestName(unknown, longOptions(parser.helpText())) : QString();
        if (!nearest.isNull()) {
            if (error.endsWith(QLatin1Char('.')))
                error.chop(1);
            error += QStringLiteral("; did you mean '--%1'?").arg(nearest);
        }
        return fail(ExitUsage, error);
    }
    if (parser.isSet(helpOption)) {
        const QByteArray help = helpText(parser, command, arguments.value(1)).toLocal8Bit();
        std::fwrite(help.constData(), 1, static_cast<size_t>(help.size()), dataOutput());
        return ExitSuccess;
    }
    const qsizetype count = parser.positionalArguments().size();
    if (count < minPositional)
        return fail(ExitUsage, QStringLiteral("missing argument; see --help"));
    if (maxPositional >= 0 && count > maxPositional)
        return fail(ExitUsage, QStringLiteral("unexpected argument '%1'; see 'corvekit %2 --help'")
                                   .arg(parser.positionalArguments().at(maxPositional), command));
    return KeepGoing;
}

int checkInputFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return fail(ExitInvalidInput, QStringLiteral("%1: no such file").arg(path));
    if (info.isDir())
        return fail(ExitInvalidInput, QStringLiteral("%1: is a directory").arg(path));
    if (!info.isFile())
        return fail(ExitInvalidInput, QStringLiteral("%1: not a regular file").arg(path));
    if (!info.isReadable())
        return fail(ExitInvalidInput, QStringLiteral("%1: cannot read").arg(path));
    return KeepGoing;
}

int readInputFile(const QString &path, QByteArray &contents)
{
    QFile file;
    if (path == QLatin1String("-")) {
        if (!file.open(stdin, QIODevice::ReadOnly))
            return fail(ExitInvalidInput, QStringLiteral("cannot read standard input"));
    } else {
        if (int status = checkInputFile(path); status != KeepGoing)
            return status;
        file.setFileName(path);
        if (!file.open(QIODevice::ReadOnly))
            return fail(ExitInvalidInput, QStringLiteral("%1: cannot read").arg(path));
    }
    contents = file.readAll();
    return KeepGoing;
}

int projectDirectory(const QCommandLineParser &parser, const QCommandLineOption &option,
                     QString &path)
{
    path.clear();
    if (!parser.isSet(option))
        return KeepGoing;
    const QString given = parser.value(option);
    if (given.isEmpty() || !QFileInfo(given).isDir())
        return fail(ExitInvalidInput, QStringLiteral("%1: no such project directory").arg(given));
    path = QDir::cleanPath(given) + QLatin1Char('/');
    if (path == QLatin1String("//"))
        path = QStringLiteral("/");
    return KeepGoing;
}

QCommandLineOption jsonOutputOption()
{
    return QCommandLineOption(QStringLiteral("json"),
                              QStringLiteral("Prints one JSON document, also when nothing is "
                                             "found."));
}

QCommandLineOption projectDirOption(const QString &verb)
{
    return QCommandLineOption(
        QStringLiteral("project"),
        verb + QStringLiteral(" the project in this folder (with or without a closing \"/\"), "
                              "whose \".setting.ini\" is the project level; it must exist."),
        QStringLiteral("DIR"));
}

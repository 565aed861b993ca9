#include "toolio.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <cstdio>

void printLine(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fputc('\n', stdout);
}

void printJson(const QJsonObject &object)
{
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Indented);
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

int fail(ExitStatus status, const QString &message)
{
    // Errors stay on one line whatever the message holds.
    QString line = message;
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    std::fprintf(stderr, "corvekit: %s\n", line.toLocal8Bit().constData());
    return status;
}

int parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositional,
                   int maxPositional)
{
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Shows this help."));
    parser.addOption(helpOption);
    if (!parser.parse(arguments))
        return fail(ExitUsage, parser.errorText());
    if (parser.isSet(helpOption)) {
        std::fputs(parser.helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    const qsizetype count = parser.positionalArguments().size();
    if (count < minPositional)
        return fail(ExitUsage, QStringLiteral("missing argument; see --help"));
    if (maxPositional >= 0 && count > maxPositional)
        return fail(ExitUsage, QStringLiteral("unexpected argument '%1'; see --help")
                                   .arg(parser.positionalArguments().at(maxPositional)));
    return -1;
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
    return -1;
}

int projectDirectory(const QCommandLineParser &parser, const QCommandLineOption &option,
                     QString &path)
{
    path.clear();
    if (!parser.isSet(option))
        return -1;
    const QString given = parser.value(option);
    if (given.isEmpty() || !QFileInfo(given).isDir())
        return fail(ExitInvalidInput, QStringLiteral("%1: no such project directory").arg(given));
    path = QDir::cleanPath(given) + QLatin1Char('/');
    if (path == QLatin1String("//"))
        path = QStringLiteral("/");
    return -1;
}

#ifndef CORVEKIT_TOOL_TOOLIO_H
#define CORVEKIT_TOOL_TOOLIO_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QCommandLineParser;

// Exit status of every subcommand, as `git config` has it.
enum ExitStatus
{
    ExitSuccess = 0,
    ExitNotFound = 1,
    ExitUsage = 2,
    ExitInvalidInput = 3,
    ExitCannotWrite = 4,
};

// Data goes to standard output; each error is one line on standard error, "corvekit: <text>".
void printLine(const QString &text);
void printJson(const QJsonObject &object);
int fail(ExitStatus status, const QString &message);

/*!
 * Parses \a arguments (the subcommand's name first) with \a parser, which has --help added.
 * Returns -1 when the caller should go on, else the exit status to return at once: 0 after
 * --help, 2 after a usage error (already reported). \a positional bounds the positional
 * arguments.
 */
int parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositional,
                   int maxPositional);

#endif

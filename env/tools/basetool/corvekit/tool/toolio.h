#ifndef CORVEKIT_TOOL_TOOLIO_H
#define CORVEKIT_TOOL_TOOLIO_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QCommandLineOption;
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

/*!
 * Checks that \a path names a regular file this process may read, before anything opens it: a
 * FIFO with no writer would block the open forever. Returns -1 when the caller should go on, else
 * ExitInvalidInput after reporting "PATH: no such file", "is a directory", "not a regular file"
 * or "cannot read".
 */
int checkInputFile(const QString &path);

/*!
 * The project path behind \a option: empty when the option is not given, else the directory it
 * names with exactly one trailing "/", as the library appends the project file's name to it.
 * Returns -1 when the caller should go on, else ExitInvalidInput for a directory that does not
 * exist (reported).
 */
int projectDirectory(const QCommandLineParser &parser, const QCommandLineOption &option,
                     QString &path);

#endif

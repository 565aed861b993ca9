#ifndef CORVEKIT_TOOL_TOOLIO_H
#define CORVEKIT_TOOL_TOOLIO_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <initializer_list>

class QCommandLineOption;
class QCommandLineParser;

// What a check returns when the command should go on; any other value is the exit status.
constexpr int KeepGoing = -1;

// Exit status of every subcommand, as `git config` has it.
enum ExitStatus
{
    ExitSuccess = 0,
    ExitNotFound = 1,
    ExitUsage = 2,
    ExitInvalidInput = 3,
    ExitCannotWrite = 4,
};

// Data goes to standard output; each error is one line on standard error, "corvekit: <text>",
// and each warning one line "corvekit: warning: <text>".
void printLine(const QString &text);
void printJson(const QJsonObject &object);
int fail(ExitStatus status, const QString &message);
void warn(const QString &message);

//! The stream that the tool's own data goes to: standard output, or its copy after
//! keepDataOutputApart().
FILE *dataOutput();

/*!
 * Gives the tool's data a private copy of standard output and sends everything else that
 * writes to standard output (the library's trace, say) to standard error, so that a --json
 * document stays the only thing on standard output. Call it before anything is written.
 */
void keepDataOutputApart();

//! The candidate closest to \a word by edit distance, or a null QString when none is close.
QString nearestName(const QString &word, const QStringList &candidates);

//! One action of a command that has several ("settings get"), and what runs it.
struct CommandAction
{
    const char *name;
    int (*run)(const QStringList &arguments);
};

/*!
 * Runs the action of \a command ("settings") that \a arguments name after the command, with the
 * arguments from the action on and "corvekit COMMAND" before them. --help and -h print \a usage;
 * a missing or unknown action is a usage error.
 */
int runCommandAction(const QString &command, const QStringList &arguments,
                     std::initializer_list<CommandAction> actions, const QString &usage);

/*!
 * Parses \a arguments (the subcommand's name first, with or without "corvekit ") with \a parser,
 * which has --help added. Returns KeepGoing when the caller should go on, else the exit status to
 * return at once: 0 after --help, 2 after a usage error (already reported). \a minPositional and \a
 * maxPositional (-1 for no bound) bound the positional arguments. The help's usage line names the
 * command, and an unknown option is answered with the nearest valid one.
 */
int parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositional,
                   int maxPositional);

//! --json, the same for every command: one JSON document on standard output, also on a miss.
QCommandLineOption jsonOutputOption();
//! --project DIR; \a verb ("Reads", "Writes", "Checks") begins its description.
QCommandLineOption projectDirOption(const QString &verb);

/*!
 * Checks that \a path names a regular file this process may read, before anything opens it: a
 * FIFO with no writer would block the open forever. Returns KeepGoing when the caller should go on,
 * else ExitInvalidInput after reporting "PATH: no such file", "is a directory", "not a regular
 * file" or "cannot read".
 */
int checkInputFile(const QString &path);

/*!
 * Reads the whole of \a path into \a contents, "-" being standard input; other paths pass
 * checkInputFile() first. Returns KeepGoing when the caller should go on, else ExitInvalidInput
 * (reported).
 */
int readInputFile(const QString &path, QByteArray &contents);

/*!
 * The project path behind \a option: empty when the option is not given, else the directory it
 * names with exactly one trailing "/", as the library appends the project file's name to it.
 * Returns KeepGoing when the caller should go on, else ExitInvalidInput for a directory that does
 * not exist (reported).
 */
int projectDirectory(const QCommandLineParser &parser, const QCommandLineOption &option,
                     QString &path);

#endif

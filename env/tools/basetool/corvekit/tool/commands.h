#ifndef CORVEKIT_TOOL_COMMANDS_H
#define CORVEKIT_TOOL_COMMANDS_H

#include <QStringList>

#include <cstdio>

// One subcommand of the tool. `run` gets the arguments from the subcommand's name on and
// returns the exit status.
struct Command
{
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

// Every subcommand, in the order `corvekit --help` lists them.
const QList<Command> &commands();

//! The general help: the commands, the global options, the installation and the exit status.
void printGeneralHelp(FILE *stream);
//! `help [COMMAND]`: the general help, or the help of one command.
int runHelp(const QStringList &arguments);
//! Reports \a name as no command, with the nearest one when it is close; returns the status.
int unknownCommand(const QString &name);

int runEnv(const QStringList &arguments);
int runHelpIndex(const QStringList &arguments);
int runSettings(const QStringList &arguments);
int runLabel(const QStringList &arguments);

// Versions, companion tools and file type filters of the installation.
int runVersion(const QStringList &arguments);
int runTools(const QStringList &arguments);
int runFilter(const QStringList &arguments);
int runDoctor(const QStringList &arguments);

// Name and pin ordering and wildcard patterns.
int runSort(const QStringList &arguments);
int runWildcard(const QStringList &arguments);
int runProfile(const QStringList &arguments); // the profiler's timeline files

#endif

#ifndef CORVEKIT_TOOL_COMMANDS_H
#define CORVEKIT_TOOL_COMMANDS_H

#include <QStringList>

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

int runEnv(const QStringList &arguments);
int runHelp(const QStringList &arguments);
int runSettings(const QStringList &arguments);

#endif

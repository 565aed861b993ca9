#include "commands.h"

const QList<Command> &commands()
{
    static const QList<Command> all = {
        {"env", "how the installation and the process environment resolve", runEnv},
        {"settings", "read settings through the project, user and system levels", runSettings},
        {"help", "answer a help index query, or check a help index file", runHelp},
    };
    return all;
}

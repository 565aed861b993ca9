#include "commands.h"

const QList<Command> &commands()
{
    static const QList<Command> all = {
        {"env", "how the installation and the process environment resolve", runEnv},
        {"settings", "read settings through the project, user and system levels", runSettings},
        {"sort", "sort names or pins in a name or pin order", runSort},
        {"wildcard", "translate a wildcard pattern and match names with it", runWildcard},
    };
    return all;
}

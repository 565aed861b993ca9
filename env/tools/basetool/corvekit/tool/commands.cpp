#include "commands.h"

const QList<Command> &commands()
{
    static const QList<Command> all = {
        {"env", "how the installation and the process environment resolve", runEnv},
        {"settings", "read settings through the project, user and system levels", runSettings},
        {"label", "the text shown for a label key, or the whole label table", runLabel},
    };
    return all;
}

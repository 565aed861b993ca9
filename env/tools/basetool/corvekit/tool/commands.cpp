#include "commands.h"

const QList<Command> &commands()
{
    static const QList<Command> all = {
        {"env", "how the installation and the process environment resolve", runEnv},
        {"settings", "read and write settings of the project, user and system levels", runSettings},
        {"version", "the installed product version and the library's build stamp", runVersion},
        {"tools", "where the companion tools lie and which simulator is selected", runTools},
        {"filter", "the extensions and the file dialog filter of a file type", runFilter},
        {"doctor", "check an installation whole and say what to repair", runDoctor},
        {"label", "the text shown for a label key, or the whole label table", runLabel},
        {"sort", "sort names or pins in a name or pin order", runSort},
        {"wildcard", "translate a wildcard pattern and match names with it", runWildcard},
        {"helpindex", "answer a help index query, list or check a help index file", runHelpIndex},
        {"profile", "sum up or merge the profiler's timeline files", runProfile},
        {"help", "show this help, or the help of one command", runHelp},
    };
    return all;
}

#include "commands.h"
#include "toolio.h"

#include <QStringList>

namespace {

QStringList commandNames()
{
    QStringList names;
    for (const Command &command : commands())
        names << QString::fromLatin1(command.name);
    return names;
}

} // namespace

void printGeneralHelp(FILE *stream)
{
    std::fputs("Usage: corvekit [--root DIR] COMMAND [options] ARGS...\n\n"
               "Shows how an installation of the suite resolves, as its tools see it.\n\n"
               "Commands:\n",
               stream);
    for (const Command &command : commands())
        std::fprintf(stream, "  %-10s %s\n", command.name, command.summary);
    std::fputs(
        "\nGlobal options, before the command:\n"
        "  --root DIR  Inspects the installation in DIR for this run: sets TOOLRTF to it.\n"
        "  -h, --help  Shows this help.\n"
        "  --version   Prints the version of this tool.\n"
        "\nInstallation:\n"
        "  TOOLRTF names the installation root and is the default of --root. Without it the\n"
        "  root is the folder two levels above the one that holds this program\n"
        "  (ROOT/bin/nt64/corvekit), as the suite's tools find theirs at start-up.\n"
        "\nExit status:\n"
        "  0 success; 1 not found or no match; 2 usage error; 3 invalid or unreadable input\n"
        "  (a missing file, a directory, a FIFO, a malformed file); 4 cannot write.\n"
        "\nWith --json a command prints exactly one JSON document on standard output, also when\n"
        "it finds nothing (\"found\": false, exit status 1).\n"
        "\nRun 'corvekit help COMMAND' or 'corvekit COMMAND --help' for the options of one "
        "command.\n",
        stream);
}

int runHelp(const QStringList &arguments)
{
    if (arguments.size() > 2)
        return fail(
            ExitUsage,
            QStringLiteral("unexpected argument '%1'; see 'corvekit help'").arg(arguments.at(2)));
    const QString name = arguments.value(1);
    if (name.isEmpty() || name == QLatin1String("help") || name == QLatin1String("--help") ||
        name == QLatin1String("-h")) {
        printGeneralHelp(dataOutput());
        return ExitSuccess;
    }
    for (const Command &command : commands()) {
        if (name == QLatin1String(command.name))
            return command.run({name, QStringLiteral("--help")});
    }
    return unknownCommand(name);
}

int unknownCommand(const QString &name)
{
    const QString nearest = nearestName(name, commandNames());
    if (nearest.isNull())
        return fail(ExitUsage,
                    QStringLiteral("unknown command '%1'; see 'corvekit --help'").arg(name));
    return fail(ExitUsage,
                QStringLiteral("unknown command '%1'; did you mean '%2'?").arg(name, nearest));
}

#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

void printUsage(FILE *stream)
{
    std::fputs("Usage: corvekit <command> [options]\n\nCommands:\n", stream);
    for (const Command &command : commands())
        std::fprintf(stream, "  %-10s %s\n", command.name, command.summary);
    std::fputs("\nRun 'corvekit <command> --help' for the options of one command.\n", stream);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvekit"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVEKIT_TOOL_VERSION));

    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    if (arguments.isEmpty()) {
        printUsage(stderr);
        return ExitUsage;
    }
    const QString name = arguments.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        printUsage(stdout);
        return ExitSuccess;
    }
    if (name == QLatin1String("--version")) {
        printLine(QStringLiteral("corvekit " CORVEKIT_TOOL_VERSION));
        return ExitSuccess;
    }
    for (const Command &command : commands()) {
        if (name == QLatin1String(command.name)) {
            const ToolProfiling profiling(command.name);
            return command.run(arguments);
        }
    }
    return fail(ExitUsage, QStringLiteral("unknown command '%1'; see 'corvekit --help'").arg(name));
}

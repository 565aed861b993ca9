#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"

#include <corvekit/basesystem.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstring>

namespace {

// Whether the command line asks for JSON; "--" ends the options.
bool wantsJson(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0)
            return false;
        if (std::strcmp(argv[i], "--json") == 0)
            return true;
    }
    return false;
}

// Makes \a directory the installation of this run, as TOOLRTF, the place the library looks.
int chooseRoot(const QString &directory)
{
    const QFileInfo info(directory);
    if (directory.isEmpty() || !info.exists())
        return fail(ExitInvalidInput,
                    QStringLiteral("%1: no such installation directory").arg(directory));
    if (!info.isDir())
        return fail(ExitInvalidInput, QStringLiteral("%1: is not a directory").arg(directory));
    qputenv("TOOLRTF", QDir::cleanPath(info.absoluteFilePath()).toLocal8Bit());
    const QDir data = BaseSystem::getDataPath();
    if (!data.exists())
        warn(QStringLiteral("%1 has no data folder %2: no version file and no installation "
                            "settings")
                 .arg(directory, data.path()));
    return KeepGoing;
}

} // namespace

int main(int argc, char *argv[])
{
    // Before anything can write: with --json nothing but the document may reach standard
    // output, and the library's trace goes there when TIVORANDEBUG is empty.
    if (wantsJson(argc, argv))
        keepDataOutputApart();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvekit"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVEKIT_TOOL_VERSION));

    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    // Global options come before the command.
    while (!arguments.isEmpty() && arguments.first().startsWith(QLatin1Char('-'))) {
        const QString option = arguments.takeFirst();
        if (option == QLatin1String("--help") || option == QLatin1String("-h")) {
            printGeneralHelp(dataOutput());
            return ExitSuccess;
        }
        if (option == QLatin1String("--version")) {
            printLine(QStringLiteral("corvekit " CORVEKIT_TOOL_VERSION));
            return ExitSuccess;
        }
        if (option == QLatin1String("--root") || option.startsWith(QLatin1String("--root="))) {
            if (option == QLatin1String("--root") && arguments.isEmpty())
                return fail(ExitUsage, QStringLiteral("--root needs a directory"));
            const QString root =
                option == QLatin1String("--root") ? arguments.takeFirst() : option.mid(7);
            if (int status = chooseRoot(root); status != KeepGoing)
                return status;
            continue;
        }
        const QString nearest = nearestName(
            option.section(QLatin1Char('='), 0, 0).mid(2),
            {QStringLiteral("root"), QStringLiteral("help"), QStringLiteral("version")});
        if (option.startsWith(QLatin1String("--")) && !nearest.isNull())
            return fail(
                ExitUsage,
                QStringLiteral("unknown option '%1'; did you mean '--%2'?").arg(option, nearest));
        return fail(ExitUsage, QStringLiteral("unknown option '%1'; global options come before "
                                              "the command, see 'corvekit --help'")
                                   .arg(option));
    }
    if (arguments.isEmpty()) {
        printGeneralHelp(stderr);
        return ExitUsage;
    }
    const QString name = arguments.first();
    for (const Command &command : commands()) {
        if (name == QLatin1String(command.name)) {
            const ToolProfiling profiling(command.name);
            return command.run(arguments);
        }
    }
    return unknownCommand(name);
}

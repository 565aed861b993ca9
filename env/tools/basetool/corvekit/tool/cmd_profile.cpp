#include "commands.h"
#include "toolio.h"
#include "toolprofiling.h"
#include "tracereader.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <optional>

namespace {

// Checks every trace before any is read, so that a missing one costs no time.
int checkTraces(const QStringList &traces)
{
    for (const QString &trace : traces) {
        if (int status = checkInputFile(trace); status != KeepGoing)
            return status;
    }
    return KeepGoing;
}

QString milliseconds(qint64 nanoseconds, int width)
{
    return QStringLiteral("%1").arg(double(nanoseconds) / 1e6, width, 'f', 3);
}

double microseconds(qint64 nanoseconds)
{
    return double(nanoseconds) / 1000;
}

void printSummary(const TraceSummary &summary, const QStringList &cutShort)
{
    const std::vector<TaskSummary> tasks = summary.tasks();
    QStringList names;
    qsizetype nameWidth = 4;
    for (const TaskSummary &task : tasks) {
        names.append(TraceReader::decodedText(task.name));
        nameWidth = std::max(nameWidth, names.last().size());
    }
    printLine(QStringLiteral("%1  %2  %3  %4  %5  %6")
                  .arg(QStringLiteral("task"), -int(nameWidth))
                  .arg(QStringLiteral("count"), 7)
                  .arg(QStringLiteral("total ms"), 12)
                  .arg(QStringLiteral("self ms"), 12)
                  .arg(QStringLiteral("longest ms"), 12)
                  .arg(QStringLiteral("at ms"), 12));
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const TaskSummary &task = tasks[i];
        printLine(QStringLiteral("%1  %2  %3  %4  %5  %6")
                      .arg(names.at(qsizetype(i)), -int(nameWidth))
                      .arg(task.count, 7)
                      .arg(milliseconds(task.total, 12), milliseconds(task.self, 12),
                           milliseconds(task.longest, 12),
                           milliseconds(task.longestStart - summary.start(), 12)));
    }
    for (const QString &trace : cutShort)
        printLine(QStringLiteral("%1: the last event was cut short and is left out").arg(trace));
}

void printSummaryJson(const TraceSummary &summary, const QStringList &traces,
                      const QStringList &cutShort)
{
    QJsonArray tasks;
    for (const TaskSummary &task : summary.tasks()) {
        tasks.append(QJsonObject{
            {QStringLiteral("name"), TraceReader::decodedText(task.name)},
            {QStringLiteral("count"), task.count},
            {QStringLiteral("totalUs"), microseconds(task.total)},
            {QStringLiteral("selfUs"), microseconds(task.self)},
            {QStringLiteral("longestUs"), microseconds(task.longest)},
            {QStringLiteral("longestAtUs"), microseconds(task.longestStart - summary.start())},
        });
    }
    printJson(QJsonObject{
        {QStringLiteral("traces"), QJsonArray::fromStringList(traces)},
        {QStringLiteral("cutShort"), QJsonArray::fromStringList(cutShort)},
        {QStringLiteral("runs"), summary.runs()},
        {QStringLiteral("tasks"), tasks},
    });
}

int runSummary(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Sums the runs of each task in profiler timelines: count, total time, self time (the "
        "total less the time of the tasks nested in it) and the longest run, with when it began "
        "after the start of the traces. Tasks come by self time, highest first."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    parser.addOption(jsonOption);
    parser.addPositionalArgument(QStringLiteral("summary"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("TRACE"), QStringLiteral("Timeline files."),
                                 QStringLiteral("TRACE..."));
    if (int status = parseArguments(parser, arguments, 2, -1); status != KeepGoing)
        return status;
    const QStringList traces = parser.positionalArguments().mid(1);
    if (int status = checkTraces(traces); status != KeepGoing)
        return status;

    std::optional<ProfileStep> step(std::in_place, "read traces");
    TraceSummary summary;
    QStringList cutShort;
    for (const QString &trace : traces) {
        TraceReader reader(trace);
        TraceEvent event;
        TraceReader::Status status;
        while ((status = reader.next(event)) == TraceReader::Event)
            summary.add(event);
        if (status == TraceReader::Error)
            return fail(ExitInvalidInput, reader.errorString());
        if (reader.cutShort())
            cutShort.append(trace);
    }
    step.emplace("print");
    if (parser.isSet(jsonOption))
        printSummaryJson(summary, traces, cutShort);
    else if (summary.runs() == 0)
        return fail(ExitNotFound, QStringLiteral("no task runs in the traces"));
    else
        printSummary(summary, cutShort);
    return summary.runs() > 0 ? ExitSuccess : ExitNotFound;
}

int runMerge(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Joins the timelines of several processes into one file that a trace viewer opens as "
        "one timeline. Their clocks agree on one machine, so the processes line up in time."));
    const QCommandLineOption outputOption({QStringLiteral("o"), QStringLiteral("output")},
                                          QStringLiteral("The file to write."),
                                          QStringLiteral("FILE"));
    const QCommandLineOption jsonOption = jsonOutputOption();
    parser.addOptions({outputOption, jsonOption});
    parser.addPositionalArgument(QStringLiteral("merge"), QStringLiteral("The action."));
    parser.addPositionalArgument(QStringLiteral("TRACE"), QStringLiteral("Timeline files."),
                                 QStringLiteral("TRACE..."));
    if (int status = parseArguments(parser, arguments, 2, -1); status != KeepGoing)
        return status;
    const QString output = parser.value(outputOption);
    if (output.isEmpty())
        return fail(ExitUsage, QStringLiteral("merge: missing -o FILE; see --help"));
    const QStringList traces = parser.positionalArguments().mid(1);
    if (int status = checkTraces(traces); status != KeepGoing)
        return status;

    // The file is replaced only once every event is in, so an input may also be the output.
    QSaveFile file(output);
    if (!file.open(QIODevice::WriteOnly))
        return fail(ExitCannotWrite, QStringLiteral("%1: cannot write").arg(output));
    qint64 events = 0;
    file.write("[");
    for (const QString &trace : traces) {
        TraceReader reader(trace);
        TraceEvent event;
        TraceReader::Status status;
        while ((status = reader.next(event)) == TraceReader::Event) {
            file.write(events++ == 0 ? "\n" : ",\n");
            file.write(event.text.data(), qint64(event.text.size()));
        }
        if (status == TraceReader::Error)
            return fail(ExitInvalidInput, reader.errorString());
    }
    file.write("\n]\n");
    if (!file.commit())
        return fail(ExitCannotWrite, QStringLiteral("%1: cannot write").arg(output));
    if (parser.isSet(jsonOption)) {
        printJson(QJsonObject{{QStringLiteral("output"), output},
                              {QStringLiteral("events"), events},
                              {QStringLiteral("traces"), QJsonArray::fromStringList(traces)}});
    } else {
        printLine(QStringLiteral("%1: %2 events of %3 traces")
                      .arg(output)
                      .arg(events)
                      .arg(traces.size()));
    }
    return ExitSuccess;
}

} // namespace

int runProfile(const QStringList &arguments)
{
    return runCommandAction(
        QStringLiteral("profile"), arguments, {{"summary", runSummary}, {"merge", runMerge}},
        QStringLiteral("Usage: corvekit profile summary [--json] TRACE...\n"
                       "       corvekit profile merge TRACE... -o FILE [--json]"));
}

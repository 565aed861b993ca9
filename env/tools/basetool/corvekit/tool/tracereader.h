#ifndef CORVEKIT_TOOL_TRACEREADER_H
#define CORVEKIT_TOOL_TRACEREADER_H

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QString>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// One event of a trace file, with the fields the tool reads. The texts point into the reader's
// buffer and stay valid until it moves on; they stand as the file spells them, escapes and all,
// and decodedText() turns one into a QString.
struct TraceEvent
{
    std::string_view text; // the whole event
    std::string_view name;
    std::string_view phase;
    std::string_view process; // the "pid" and "tid" values as they stand, numbers or texts
    std::string_view thread;
    std::string_view task; // "task" of "args": the task's name when "name" carries a title too
    double start = 0;      // "ts", microseconds
    double duration = -1;  // "dur", microseconds; negative when the event has none
    // Both lie within 10^15 microseconds (some 30 years) of 0.
    int level = -1; // "level" of "args", the nesting depth; negative when absent
};

/*!
 * Reads a file in the Trace Event JSON array format one event at a time, holding no more than
 * one buffer of it, so a file of any size is read in constant memory. Events may share lines or
 * stand one a line; the closing bracket may be missing, and a last event cut short by a crash
 * is left out (see cutShort()). Anything else that is not an array of JSON objects, or an event
 * over 1 MiB, ends the reading with an error.
 */
class TraceReader
{
public:
    enum Status
    {
        Event,
        End,
        Error
    };

    explicit TraceReader(const QString &path);
    Status next(TraceEvent &event);
    QString errorString() const { return m_error; }
    bool cutShort() const { return m_cutShort; }

    static QString decodedText(const QByteArray &text);

private:
    bool fill();
    bool skipSeparators();
    Status fail(const QString &reason);

    QFile m_file;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    qint64 m_offset = 0; // the file offset of m_buffer[0]
    bool m_started = false;
    bool m_atEnd = false;
    bool m_cutShort = false;
    QString m_error;
};

// One line of a summary: the runs of one task name.
struct TaskSummary
{
    QByteArray name;
    qint64 count = 0;
    qint64 total = 0;        // nanoseconds, as all the times below, which keeps sums exact
    qint64 self = 0;         // total less the time of the runs nested directly in these
    qint64 longest = -1;     // the longest run
    qint64 longestStart = 0; // when it began, on the traces' clock
};

/*!
 * Adds up the complete events of one or more traces per task name. A run's nested runs are
 * told by the nesting level each event carries, in the order a profiler writes them (a run
 * after the runs inside it), so every thread needs no more than one sum per level. Events
 * without a level count as top-level runs.
 */
class TraceSummary
{
public:
    void add(const TraceEvent &event);
    // The tasks by self time, highest first, then by name.
    std::vector<TaskSummary> tasks() const;
    qint64 start() const { return m_start; }
    qint64 runs() const { return m_runs; }

private:
    std::vector<qint64> &unclaimedOf(const TraceEvent &event);

    QHash<QByteArray, TaskSummary> m_tasks;
    // Per thread: at each level, the time of finished runs that no enclosing run has taken yet.
    // The thread of the last event is kept at hand, as runs come in stretches of one thread.
    std::unordered_map<std::string, std::vector<qint64>> m_unclaimed;
    std::string m_lastThread;
    std::vector<qint64> *m_lastUnclaimed = nullptr;
    qint64 m_start = 0;
    qint64 m_runs = 0;
};

#endif

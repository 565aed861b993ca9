#ifndef CORVEKIT_TIMELINEFILE_P_H
#define CORVEKIT_TIMELINEFILE_P_H

#include <QExplicitlySharedDataPointer>
#include <QFile>
#include <QSharedData>
#include <QString>

#include <cstdint>
#include <mutex>
#include <string>

namespace tivoran::corvekit {

class ProfileTask;

// One finished run of a task, as stopRecord measured it.
struct TimelineRun
{
    const ProfileTask *task;
    std::uint64_t level; // nesting depth of this run; 0 is top level
    double cpuSeconds;
    double realSeconds;
    double startMemory; // bytes
    double stopMemory;  // bytes
};

/*!
 * The timeline of a process in the Trace Event format that browser trace viewers open: a JSON
 * array with one event a line. Every run of a task becomes a complete event ("ph": "X") that
 * ends when the run was stopped, followed by a counter event ("ph": "C") of the resident memory
 * at that moment. Times are microseconds of the monotonic clock, so the files of several
 * processes of one machine line up.
 *
 * Lines are buffered and written at least every 100 ms of activity, when a profiler clears, and
 * when the last profiler that uses the file has gone; the closing bracket is written only then,
 * which the format allows to be missing after a crash. Every profiler of a process that names
 * the same file writes to one TimelineFile, under its lock. Once the file reaches its size
 * limit or cannot be written, it is closed with one warning and takes no more events.
 */
class TimelineFile : public QSharedData
{
public:
    /*!
     * The timeline that GUI_PROFILER_TRACE names, with the process id inserted before its
     * extension, and limited to GUI_PROFILER_TRACE_LIMIT MiB (256 unless a positive whole
     * number is given). Profilers of one process that name the same file share it. Null when
     * the variable is unset or empty, or when the file cannot be opened, which is warned about
     * once.
     */
    static QExplicitlySharedDataPointer<TimelineFile> fromEnvironment();

    //! \a path with ".<processId>" inserted before the extension of its file name.
    static QString processFileName(const QString &path, std::uint64_t processId);

    //! The monotonic clock now, in nanoseconds.
    static std::int64_t now();

    // Which profiler writes to which timeline, by the profiler's task index: the one thing only
    // an enabled profiler has, whose layout stays as it is, so the link lives here.
    //! Makes \a owner write to \a timeline.
    static void attach(const void *owner, QExplicitlySharedDataPointer<TimelineFile> timeline);
    //! Makes \a copy write to the timeline of \a original, if it has one.
    static void share(const void *original, const void *copy);
    static void detach(const void *owner);
    //! The timeline of \a owner, or null; a test of one counter while no profiler has one.
    static TimelineFile *of(const void *owner);

    TimelineFile(const QString &path, std::uint64_t limitBytes);
    ~TimelineFile();
    TimelineFile(const TimelineFile &) = delete;
    TimelineFile &operator=(const TimelineFile &) = delete;

    //! Writes \a run, stopped at \a stoppedAt (a reading of now()).
    void write(const TimelineRun &run, std::int64_t stoppedAt);
    //! Writes what is buffered.
    void flush();

private:
    bool open();
    bool belongsToThisProcess() const;
    void writeBuffer();
    void close(const QString &reason, bool writable);

    std::mutex m_mutex;
    QFile m_file;
    std::string m_buffer;
    std::uint64_t m_limit;
    std::string m_processId;
    std::uint64_t m_written = 0;
    std::int64_t m_lastWrite = 0;
    bool m_firstEvent = true;
    unsigned m_forkGeneration;
};

} // namespace tivoran::corvekit

#endif

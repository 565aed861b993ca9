#include "timelinefile_p.h"

#include "post_utmsg.h"
#include "profiletask.h"
#include "timelineplatform_p.h"

#include <QFileInfo>

#include <atomic>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <unordered_map>

namespace tivoran::corvekit {

namespace {

constexpr std::uint64_t defaultLimitMiB = 256;
constexpr std::int64_t writeInterval = 100'000'000; // ns
constexpr std::size_t bufferSize = std::size_t{64} << 10;
const char closingBracket[] = "\n]\n";

// Counts the forks this process came through. A timeline opened before a fork belongs to the
// parent: the child drops its copy of the buffer and never touches the file.
std::atomic<unsigned> forkGeneration{0};

void countFork()
{
    forkGeneration.fetch_add(1, std::memory_order_relaxed);
}

// Every timeline the process opened, by the absolute path it was named by; null where the file
// could not be opened, so that it is warned about once. Entries stay for the process's life, so
// a later profiler goes on with the file instead of emptying it again.
struct Timelines
{
    std::mutex mutex;
    std::map<QString, QExplicitlySharedDataPointer<TimelineFile>> files;
};

Timelines &timelines()
{
    static Timelines all;
    return all;
}

// The profilers that write a timeline, by their task index. Never destroyed: a profiler that
// is itself a static may end after any other static, and still lets go of its timeline here.
struct Writers
{
    std::mutex mutex;
    std::unordered_map<const void *, QExplicitlySharedDataPointer<TimelineFile>> timelines;
};

Writers &writers()
{
    static auto *all = new Writers;
    return *all;
}

std::atomic<std::size_t> writerCount{0};

std::uint64_t limitFromEnvironment()
{
    const char *value = std::getenv("GUI_PROFILER_TRACE_LIMIT");
    bool ok = false;
    const qulonglong mebibytes = QByteArray(value).toULongLong(&ok);
    return (ok && mebibytes > 0 && mebibytes < (1ULL << 40) ? mebibytes : defaultLimitMiB) << 20;
}

void warn(const QString &text)
{
    post_utmsg(text.toLocal8Bit().constData());
}

void appendInteger(std::string &out, std::int64_t value)
{
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

// Nanoseconds as microseconds with three decimals, the unit of the format.
void appendMicroseconds(std::string &out, std::int64_t nanoseconds)
{
    if (nanoseconds < 0) {
        out += '-';
        nanoseconds = -nanoseconds;
    }
    appendInteger(out, nanoseconds / 1000);
    const auto fraction = static_cast<int>(nanoseconds % 1000);
    const char decimals[] = {'.', static_cast<char>('0' + fraction / 100),
                             static_cast<char>('0' + fraction / 10 % 10),
                             static_cast<char>('0' + fraction % 10)};
    out.append(decimals, sizeof decimals);
}

std::int64_t toNanoseconds(double seconds)
{
    return std::llround(seconds * 1e9);
}

// The length of the well-formed UTF-8 sequence at \a text, or 0.
int utf8Length(const unsigned char *text, const unsigned char *end)
{
    const unsigned char lead = text[0];
    int length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xbf;
    if (lead >= 0xc2 && lead <= 0xdf) {
        length = 2;
    } else if (lead >= 0xe0 && lead <= 0xef) {
        length = 3;
        low = lead == 0xe0 ? 0xa0 : 0x80;
        high = lead == 0xed ? 0x9f : 0xbf;
    } else if (lead >= 0xf0 && lead <= 0xf4) {
        length = 4;
        low = lead == 0xf0 ? 0x90 : 0x80;
        high = lead == 0xf4 ? 0x8f : 0xbf;
    }
    if (length == 0 || end - text < length || text[1] < low || text[1] > high)
        return 0;
    for (int i = 2; i < length; ++i) {
        if (text[i] < 0x80 || text[i] > 0xbf)
            return 0;
    }
    return length;
}

// Task names are bytes; JSON text is UTF-8, so a byte that is not part of a well-formed
// sequence becomes U+FFFD.
void appendJsonText(std::string &out, const QByteArray &text)
{
    static const char hex[] = "0123456789abcdef";
    const auto *at = reinterpret_cast<const unsigned char *>(text.constData());
    const unsigned char *end = at + text.size();
    while (at < end) {
        const unsigned char c = *at;
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            out += "\\u00";
            out += hex[c >> 4];
            out += hex[c & 15];
        } else if (c >= 0x80) {
            const int length = utf8Length(at, end);
            if (length == 0) {
                out += "\\ufffd";
            } else {
                out.append(reinterpret_cast<const char *>(at), static_cast<std::size_t>(length));
                at += length - 1;
            }
        } else {
            out += static_cast<char>(c);
        }
        ++at;
    }
}

} // namespace

QExplicitlySharedDataPointer<TimelineFile> TimelineFile::fromEnvironment()
{
    const char *named = std::getenv("GUI_PROFILER_TRACE");
    if (!named || !*named)
        return {};
    static std::once_flag forkHandler;
    std::call_once(forkHandler, [] { callInForkedChild(countFork); });

    const QString path = QFileInfo(QFile::decodeName(named)).absoluteFilePath();
    Timelines &known = timelines();
    const std::lock_guard<std::mutex> lock(known.mutex);
    const auto found = known.files.find(path);
    if (found != known.files.end() && (!found->second || found->second->belongsToThisProcess()))
        return found->second;
    QExplicitlySharedDataPointer<TimelineFile> file(
        new TimelineFile(processFileName(path, currentProcessId()), limitFromEnvironment()));
    if (!file->open())
        file.reset();
    known.files[path] = file;
    return file;
}

QString TimelineFile::processFileName(const QString &path, std::uint64_t processId)
{
    const qsizetype nameStart = path.lastIndexOf(QLatin1Char('/')) + 1;
    qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    // A leading dot names a hidden file and starts no extension.
    if (dot <= nameStart)
        dot = path.size();
    return QString(path).insert(dot, QLatin1Char('.') + QString::number(processId));
}

void TimelineFile::attach(const void *owner, QExplicitlySharedDataPointer<TimelineFile> timeline)
{
    Writers &all = writers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.timelines[owner] = std::move(timeline);
    writerCount.store(all.timelines.size(), std::memory_order_relaxed);
}

void TimelineFile::share(const void *original, const void *copy)
{
    if (writerCount.load(std::memory_order_relaxed) == 0)
        return;
    Writers &all = writers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.timelines.find(original);
    if (found == all.timelines.end())
        return;
    all.timelines[copy] = found->second;
    writerCount.store(all.timelines.size(), std::memory_order_relaxed);
}

void TimelineFile::detach(const void *owner)
{
    if (writerCount.load(std::memory_order_relaxed) == 0)
        return;
    // Let go of after the lock: the last holder writes the file's end.
    QExplicitlySharedDataPointer<TimelineFile> last;
    Writers &all = writers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.timelines.find(owner);
    if (found == all.timelines.end())
        return;
    last = std::move(found->second);
    all.timelines.erase(found);
    writerCount.store(all.timelines.size(), std::memory_order_relaxed);
}

TimelineFile *TimelineFile::of(const void *owner)
{
    if (writerCount.load(std::memory_order_relaxed) == 0)
        return nullptr;
    Writers &all = writers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.timelines.find(owner);
    return found == all.timelines.end() ? nullptr : found->second.data();
}

std::int64_t TimelineFile::now()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

TimelineFile::TimelineFile(const QString &path, std::uint64_t limitBytes)
    : m_file(path)
    , m_limit(limitBytes)
    , m_processId(std::to_string(currentProcessId()))
    , m_forkGeneration(forkGeneration.load(std::memory_order_relaxed))
{}

TimelineFile::~TimelineFile()
{
    if (!belongsToThisProcess() || !m_file.isOpen())
        return;
    m_buffer += closingBracket;
    writeBuffer();
}

bool TimelineFile::open()
{
    // Opening a FIFO for writing would wait for a reader.
    const QFileInfo info(m_file.fileName());
    QString reason;
    if (info.exists() && !info.isFile())
        reason = QStringLiteral("not a regular file");
    else if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        reason = m_file.errorString();
    if (!reason.isEmpty()) {
        warn(QStringLiteral("Timeline %1 cannot be opened (%2); no timeline is written")
                 .arg(m_file.fileName(), reason));
        return false;
    }
    m_buffer.reserve(bufferSize + 1024);
    m_buffer = "[\n";
    m_lastWrite = now();
    return true;
}

bool TimelineFile::belongsToThisProcess() const
{
    return m_forkGeneration == forkGeneration.load(std::memory_order_relaxed);
}

void TimelineFile::write(const TimelineRun &run, std::int64_t stoppedAt)
{
    if (!belongsToThisProcess())
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_file.isOpen())
        return;
    const std::uint64_t threadId = currentThreadId();
    const std::size_t before = m_buffer.size();
    const ProfileTask &task = *run.task;
    const bool titled = !task.m_title.isEmpty() && task.m_title != task.m_name;
    const std::int64_t duration = toNanoseconds(run.realSeconds);

    if (!m_firstEvent)
        m_buffer += ",\n";
    m_buffer += "{\"name\":\"";
    appendJsonText(m_buffer, task.m_name);
    if (titled) {
        m_buffer += " (";
        appendJsonText(m_buffer, task.m_title);
        m_buffer += ')';
    }
    m_buffer += "\",\"ph\":\"X\",\"ts\":";
    appendMicroseconds(m_buffer, stoppedAt - duration);
    m_buffer += ",\"dur\":";
    appendMicroseconds(m_buffer, duration);
    m_buffer += ",\"pid\":";
    m_buffer += m_processId;
    m_buffer += ",\"tid\":";
    appendInteger(m_buffer, static_cast<std::int64_t>(threadId));
    m_buffer += ",\"args\":{\"level\":";
    appendInteger(m_buffer, static_cast<std::int64_t>(run.level));
    m_buffer += ",\"cpuUs\":";
    appendMicroseconds(m_buffer, toNanoseconds(run.cpuSeconds));
    m_buffer += ",\"memStartBytes\":";
    appendInteger(m_buffer, std::llround(run.startMemory));
    m_buffer += ",\"memGrowthBytes\":";
    appendInteger(m_buffer, std::llround(run.stopMemory - run.startMemory));
    if (titled) {
        m_buffer += ",\"task\":\"";
        appendJsonText(m_buffer, task.m_name);
        m_buffer += '"';
    }
    m_buffer += "}},\n{\"name\":\"resident memory\",\"ph\":\"C\",\"ts\":";
    appendMicroseconds(m_buffer, stoppedAt);
    m_buffer += ",\"pid\":";
    m_buffer += m_processId;
    m_buffer += ",\"tid\":";
    appendInteger(m_buffer, static_cast<std::int64_t>(threadId));
    m_buffer += ",\"args\":{\"bytes\":";
    appendInteger(m_buffer, std::llround(run.stopMemory));
    m_buffer += "}}";

    if (m_written + m_buffer.size() + sizeof closingBracket > m_limit) {
        m_buffer.resize(before);
        close(QStringLiteral("reached its limit of %1 MiB").arg(m_limit >> 20), true);
        return;
    }
    m_firstEvent = false;
    if (m_buffer.size() >= bufferSize || stoppedAt - m_lastWrite >= writeInterval) {
        writeBuffer();
        m_lastWrite = stoppedAt;
    }
}

void TimelineFile::flush()
{
    if (!belongsToThisProcess())
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file.isOpen())
        writeBuffer();
}

void TimelineFile::writeBuffer()
{
    const auto size = static_cast<qint64>(m_buffer.size());
    if (m_file.write(m_buffer.data(), size) != size) {
        m_buffer.clear();
        close(QStringLiteral("cannot be written (%1)").arg(m_file.errorString()), false);
        return;
    }
    m_written += m_buffer.size();
    m_buffer.clear();
}

// Ends the timeline early; a file that can still be written gets what is buffered and the
// closing bracket.
void TimelineFile::close(const QString &reason, bool writable)
{
    warn(QStringLiteral("Timeline %1 %2; later tasks are not written")
             .arg(m_file.fileName(), reason));
    if (writable) {
        m_buffer += closingBracket;
        m_file.write(m_buffer.data(), static_cast<qint64>(m_buffer.size()));
    }
    m_buffer.clear();
    m_file.close();
}

} // namespace tivoran::corvekit

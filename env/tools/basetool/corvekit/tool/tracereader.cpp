#include "tracereader.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 20;
constexpr std::size_t eventLimit = std::size_t{1} << 20;
constexpr int levelLimit = 65535;
constexpr int depthLimit = 64;
constexpr double timeLimit = 1e15;

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// A parser of one event, already known to be a balanced object: it takes the fields the tool
// reads and checks the syntax of the rest as far as it skips it.
class EventParser
{
public:
    EventParser(const char *begin, const char *end)
        : m_at(begin)
        , m_end(end)
    {}

    bool parse(TraceEvent &event)
    {
        return members([&](std::string_view key) {
            if (key == "name")
                return text(event.name);
            if (key == "ph")
                return text(event.phase);
            if (key == "ts")
                return number(event.start) && std::abs(event.start) < timeLimit;
            if (key == "dur")
                return number(event.duration) && event.duration >= 0 && event.duration < timeLimit;
            if (key == "pid")
                return token(event.process);
            if (key == "tid")
                return token(event.thread);
            if (key == "args" && peek() == '{')
                return arguments(event);
            return skipValue();
        });
    }

private:
    bool arguments(TraceEvent &event)
    {
        return members([&](std::string_view key) {
            if (key == "task")
                return text(event.task);
            if (key != "level")
                return skipValue();
            double level = 0;
            if (!number(level) || level < 0 || level > levelLimit || level != std::floor(level))
                return false;
            event.level = static_cast<int>(level);
            return true;
        });
    }

    // An object: calls \a member for each key, with the reader at its value.
    template<typename Member>
    bool members(Member member)
    {
        if (!consume('{'))
            return false;
        if (consume('}'))
            return true;
        do {
            std::string_view key;
            if (!string(key) || !consume(':') || !member(key))
                return false;
        } while (consume(','));
        return consume('}');
    }

    char peek()
    {
        while (m_at < m_end && isBlank(*m_at))
            ++m_at;
        return m_at < m_end ? *m_at : '\0';
    }

    bool consume(char c)
    {
        if (peek() != c)
            return false;
        ++m_at;
        return true;
    }

    // A string's text between its quotes, escapes left as they are.
    bool string(std::string_view &value)
    {
        if (!consume('"'))
            return false;
        const char *begin = m_at;
        for (; m_at < m_end && *m_at != '"'; ++m_at) {
            if (*m_at == '\\')
                ++m_at;
        }
        if (m_at >= m_end)
            return false;
        value = std::string_view(begin, static_cast<std::size_t>(m_at - begin));
        ++m_at;
        return true;
    }

    bool text(std::string_view &value) { return string(value); }

    bool number(double &value)
    {
        peek();
        const char *begin = m_at;
        while (m_at < m_end && std::strchr("+-.0123456789eE", *m_at))
            ++m_at;
        const auto result = std::from_chars(begin, m_at, value);
        return begin != m_at && result.ptr == m_at && std::isfinite(value);
    }

    // A value as it stands in the file.
    bool token(std::string_view &value)
    {
        peek();
        const char *begin = m_at;
        if (!skipValue())
            return false;
        value = std::string_view(begin, static_cast<std::size_t>(m_at - begin));
        return true;
    }

    bool skipValue()
    {
        // Values the tool does not read may nest, but not deeper than any event needs.
        if (++m_depth > depthLimit)
            return false;
        const bool skipped = skipNested();
        --m_depth;
        return skipped;
    }

    bool skipNested()
    {
        std::string_view ignored;
        switch (peek()) {
        case '"':
            return string(ignored);
        case '{':
            return members([&](std::string_view) { return skipValue(); });
        case '[':
            ++m_at;
            if (consume(']'))
                return true;
            do {
                if (!skipValue())
                    return false;
            } while (consume(','));
            return consume(']');
        default: {
            const char *begin = m_at;
            while (m_at < m_end && !isBlank(*m_at) && !std::strchr(",:]}[{\"", *m_at))
                ++m_at;
            return m_at != begin;
        }
        }
    }

    const char *m_at;
    const char *m_end;
    int m_depth = 0;
};

// The length of the balanced object at \a begin, or 0 when it does not end before \a end.
std::size_t objectLength(const char *begin, const char *end)
{
    int depth = 0;
    bool inString = false;
    for (const char *at = begin; at < end; ++at) {
        const char c = *at;
        if (inString) {
            if (c == '\\')
                ++at;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if ((c == '}' || c == ']') && --depth == 0) {
            return static_cast<std::size_t>(at - begin) + 1;
        }
    }
    return 0;
}

} // namespace

TraceReader::TraceReader(const QString &path)
    : m_file(path)
{}

QString TraceReader::decodedText(const QByteArray &text)
{
    const QJsonDocument document = QJsonDocument::fromJson("[\"" + text + "\"]");
    return document.isNull() ? QString::fromUtf8(text) : document.array().at(0).toString();
}

TraceReader::Status TraceReader::fail(const QString &reason)
{
    m_error = QStringLiteral("%1: %2").arg(m_file.fileName(), reason);
    return Error;
}

// Moves what is left to the front of the buffer and reads the next chunk behind it.
bool TraceReader::fill()
{
    if (m_atEnd)
        return false;
    if (m_buffer.empty())
        m_buffer.resize(chunkSize + eventLimit);
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_offset += static_cast<qint64>(m_begin);
    m_end -= m_begin;
    m_begin = 0;
    const qint64 read =
        m_file.read(m_buffer.data() + m_end, static_cast<qint64>(m_buffer.size() - m_end));
    if (read <= 0) {
        m_atEnd = true;
        return false;
    }
    m_end += static_cast<std::size_t>(read);
    return true;
}

// Skips blanks and the commas between events; false at the end of the file.
bool TraceReader::skipSeparators()
{
    for (;;) {
        while (m_begin < m_end && (isBlank(m_buffer[m_begin]) || m_buffer[m_begin] == ','))
            ++m_begin;
        if (m_begin < m_end)
            return true;
        if (!fill())
            return false;
    }
}

TraceReader::Status TraceReader::next(TraceEvent &event)
{
    if (!m_started) {
        m_started = true;
        if (!m_file.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("cannot read"));
        fill();
        if (m_end - m_begin >= 3 && std::memcmp(m_buffer.data(), "\xef\xbb\xbf", 3) == 0)
            m_begin += 3;
        while (m_begin < m_end && isBlank(m_buffer[m_begin]))
            ++m_begin;
        if (m_begin == m_end || m_buffer[m_begin] != '[')
            return fail(QStringLiteral("not a trace: a JSON array of events must begin it"));
        ++m_begin;
    }
    if (!skipSeparators() || m_buffer[m_begin] == ']')
        return End;
    if (m_buffer[m_begin] != '{')
        return fail(QStringLiteral("byte %1: not a trace event").arg(m_offset + qint64(m_begin)));

    std::size_t length = 0;
    while ((length = objectLength(m_buffer.data() + m_begin, m_buffer.data() + m_end)) == 0) {
        if (m_end - m_begin > eventLimit)
            return fail(QStringLiteral("byte %1: an event longer than 1 MiB")
                            .arg(m_offset + qint64(m_begin)));
        if (!fill()) {
            // A crash leaves the last event unfinished; everything before it stands.
            m_cutShort = true;
            return End;
        }
    }
    if (length > eventLimit)
        return fail(
            QStringLiteral("byte %1: an event longer than 1 MiB").arg(m_offset + qint64(m_begin)));
    const char *begin = m_buffer.data() + m_begin;
    event = TraceEvent();
    event.text = std::string_view(begin, length);
    if (!EventParser(begin, begin + length).parse(event))
        return fail(
            QStringLiteral("byte %1: a malformed trace event").arg(m_offset + qint64(m_begin)));
    m_begin += length;
    return Event;
}

void TraceSummary::add(const TraceEvent &event)
{
    if (event.phase != "X" || event.duration < 0)
        return;
    const qint64 start = std::llround(event.start * 1000);
    const qint64 duration = std::llround(event.duration * 1000);
    m_start = m_runs == 0 ? start : std::min(m_start, start);
    ++m_runs;
    qint64 nested = 0;
    if (event.level >= 0) {
        std::vector<qint64> &unclaimed = unclaimedOf(event);
        const auto level = static_cast<std::size_t>(event.level);
        if (unclaimed.size() < level + 2)
            unclaimed.resize(level + 2);
        nested = unclaimed[level + 1];
        // Deeper runs left unclaimed had their enclosing run cleared away while running.
        std::fill(unclaimed.begin() + static_cast<std::ptrdiff_t>(level) + 1, unclaimed.end(), 0);
        unclaimed[level] += duration;
    }
    const std::string_view name = event.task.empty() ? event.name : event.task;
    const auto size = static_cast<qsizetype>(name.size());
    auto found = m_tasks.find(QByteArray::fromRawData(name.data(), size));
    if (found == m_tasks.end()) {
        const QByteArray key(name.data(), size);
        found = m_tasks.insert(key, TaskSummary{key});
    }
    TaskSummary &task = *found;
    ++task.count;
    task.total += duration;
    task.self += duration - nested;
    if (duration > task.longest) {
        task.longest = duration;
        task.longestStart = start;
    }
}

std::vector<qint64> &TraceSummary::unclaimedOf(const TraceEvent &event)
{
    const std::size_t split = event.process.size();
    if (!m_lastUnclaimed || m_lastThread.size() != split + 1 + event.thread.size() ||
        m_lastThread.compare(0, split, event.process) != 0 ||
        m_lastThread.compare(split + 1, std::string::npos, event.thread) != 0) {
        m_lastThread.assign(event.process).append(1, '/').append(event.thread);
        m_lastUnclaimed = &m_unclaimed[m_lastThread];
    }
    return *m_lastUnclaimed;
}

std::vector<TaskSummary> TraceSummary::tasks() const
{
    std::vector<TaskSummary> sorted(m_tasks.cbegin(), m_tasks.cend());
    std::sort(sorted.begin(), sorted.end(), [](const TaskSummary &a, const TaskSummary &b) {
        return a.self != b.self ? a.self > b.self : a.name < b.name;
    });
    return sorted;
}

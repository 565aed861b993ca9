#include "profiler.h"

#include "localtime_p.h"
#include "post_utmsg.h"
#include "profiletask.h"
#include "profiletaskindex_p.h"
#include "timelinefile_p.h"

#include <hulmar/neoform.h>
#include <hulmar/ut_mem_usage.h>
#include <hulmar/ut_timer.h>

#include <cstdlib>
#include <ctime>
#include <memory>

namespace tivoran::corvekit {

namespace {

// The time text of detail lines. One buffer serves every profiler of the process.
char timeText[100];

bool switchedOn(const char *variable)
{
    const char *value = std::getenv(variable);
    return value && value[0] == '1';
}

// Posts a detail line: the task's name, the local time and the memory in use in whole MB.
void postDetail(const char *format, const char *name)
{
    const auto megabytes = static_cast<unsigned>(UT_MEM_USAGE::getCurrentMemoryUsage() >> 20);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localTime(now, local);
    std::strftime(timeText, sizeof timeText, "%H:%M:%S", &local);
    post_utmsg(neoform(format, name, timeText, megabytes));
}

} // namespace

Profiler::Profiler()
{
    m_enabled = switchedOn("ENABLE_GUI_PROFILER");
    if (m_enabled) {
        m_detail = switchedOn("ENABLE_GUI_PROFILER_DETAIL");
        auto index = std::make_unique<ProfileTaskIndex>();
        if (QExplicitlySharedDataPointer<TimelineFile> timeline = TimelineFile::fromEnvironment())
            TimelineFile::attach(index.get(), std::move(timeline));
        m_index = index.release();
    }
}

Profiler::Profiler(const Profiler &other)
    : m_enabled(other.m_enabled)
    , m_detail(other.m_detail)
    , m_current(other.m_current)
    , m_stack(other.m_stack)
    , m_tasks(other.m_tasks)
    , m_index(other.m_index ? new ProfileTaskIndex(*other.m_index) : nullptr)
{
    try {
        TimelineFile::share(other.m_index, m_index);
    } catch (...) {
        delete m_index;
        throw;
    }
}

Profiler::~Profiler()
{
    clear();
    TimelineFile::detach(m_index);
    delete m_index;
}

Profiler &Profiler::operator=(const Profiler &other)
{
    if (this == &other)
        return *this;
    // Everything that can throw comes first. The records shared with `other` are held before
    // this object's own are let go, which happens when `tasks` ends with the old list.
    std::unique_ptr<ProfileTaskIndex> index(other.m_index ? new ProfileTaskIndex(*other.m_index)
                                                          : nullptr);
    std::deque<ProfileTask *> stack = other.m_stack;
    std::vector<QExplicitlySharedDataPointer<SharedProfileTask>> tasks = other.m_tasks;
    TimelineFile::share(other.m_index, index.get());

    TimelineFile::detach(m_index);
    m_enabled = other.m_enabled;
    m_detail = other.m_detail;
    m_current = other.m_current;
    m_stack.swap(stack);
    m_tasks.swap(tasks);
    delete m_index;
    m_index = index.release();
    return *this;
}

void Profiler::startRecord(const char *name)
{
    if (!m_enabled)
        return;
    if (!name)
        name = "";
    std::uint64_t level = 0;
    if (m_current) {
        level = m_current->m_level + 1;
        m_stack.push_back(m_current);
    }
    m_current = getTask(name);
    m_current->m_level = level;
    if (m_detail)
        postDetail("[%s] started at %s, Mem %uMB", name);
    // Measuring starts last, so the detail line falls outside the interval.
    m_current->m_timer->reset();
    m_current->m_startMem = static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage());
}

void Profiler::stopRecord()
{
    if (!m_enabled || !m_current)
        return;
    ProfileTask *task = m_current;
    const double cpuTime = task->m_timer->get_delta_cpu();
    const double realTime = task->m_timer->get_delta_real();
    task->m_cpuTime += cpuTime;
    task->m_realTime += realTime;
    // The timeline's clock is read next to the real time, so that a run's span starts where
    // its timer was reset.
    TimelineFile *timeline = TimelineFile::of(m_index);
    const std::int64_t stoppedAt = timeline ? TimelineFile::now() : 0;
    const auto memory = static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage());
    task->m_deltaMem += memory - task->m_startMem;
    if (timeline)
        timeline->write({task, m_stack.size(), cpuTime, realTime, task->m_startMem, memory},
                        stoppedAt);
    if (m_detail)
        postDetail("[%s] stopped at %s, Mem %uMB", task->m_name.constData());
    if (m_stack.empty()) {
        m_current = nullptr;
    } else {
        m_current = m_stack.back();
        m_stack.pop_back();
    }
}

void Profiler::setLatestTaskTitle(const char *title)
{
    if (!m_enabled || !title || !m_current)
        return;
    m_current->m_title = title;
}

void Profiler::clear()
{
    if (!m_enabled)
        return;
    m_current = nullptr;
    m_stack.clear();
    m_index->clear();
    m_tasks.clear();
    if (TimelineFile *timeline = TimelineFile::of(m_index))
        timeline->flush();
}

bool Profiler::is_enabled()
{
    return m_enabled;
}

ProfileTask *Profiler::getTask(const char *name)
{
    if (!m_enabled)
        return nullptr;
    if (!name)
        name = "";
    if (ProfileTask *found = m_index->find(name))
        return found;

    const QExplicitlySharedDataPointer<SharedProfileTask> shared(new SharedProfileTask(name));
    m_tasks.push_back(shared);
    try {
        m_index->insert(&shared->task);
    } catch (...) {
        m_tasks.pop_back();
        throw;
    }
    return &shared->task;
}

} // namespace tivoran::corvekit

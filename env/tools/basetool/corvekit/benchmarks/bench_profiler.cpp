// Cost of the profiler: a disabled profiler per call; a start/stop pair against the probes it
// reads (two CPU-clock, two real-clock and two memory readings), at 1, 1,000 and 10,000
// distinct names; a pair that also writes its timeline against one that does not; detail lines
// on against off; and finding a record by a scan of the task list against the name index.
#include <corvekit/profiler.h>

#include <profiler/profiletask.h>
#include <profiler/profiletaskindex_p.h>

#include <hulmar/hulmar_testing.h>
#include <hulmar/ut_mem_usage.h>
#include <hulmar/ut_timer.h>

#include <QByteArray>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

using tivoran::corvekit::Profiler;
using tivoran::corvekit::ProfileTask;
using tivoran::corvekit::ProfileTaskIndex;

namespace {

std::vector<std::string> makeNames(std::size_t count)
{
    std::vector<std::string> names;
    names.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        names.push_back("Task step " + std::to_string(i * 7919 % 100003));
    return names;
}

Profiler makeProfiler(bool enabled, bool detail)
{
    if (enabled)
        setenv("ENABLE_GUI_PROFILER", "1", 1);
    else
        unsetenv("ENABLE_GUI_PROFILER");
    if (detail)
        setenv("ENABLE_GUI_PROFILER_DETAIL", "1", 1);
    else
        unsetenv("ENABLE_GUI_PROFILER_DETAIL");
    return Profiler();
}

void BM_DisabledStart(benchmark::State &state)
{
    Profiler profiler = makeProfiler(false, false);
    for (auto _ : state) {
        profiler.startRecord("Place");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DisabledStart);

void BM_DisabledStop(benchmark::State &state)
{
    Profiler profiler = makeProfiler(false, false);
    for (auto _ : state) {
        profiler.stopRecord();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DisabledStop);

// What one pair reads, in the order it reads it, with nothing else.
void BM_ProbesOfOnePair(benchmark::State &state)
{
    UT_TIMER timer;
    double cpu = 0;
    double real = 0;
    double memory = 0;
    for (auto _ : state) {
        timer.reset();
        const double start = static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage());
        cpu += timer.get_delta_cpu();
        real += timer.get_delta_real();
        memory += static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage()) - start;
        benchmark::DoNotOptimize(cpu);
        benchmark::DoNotOptimize(real);
        benchmark::DoNotOptimize(memory);
    }
}
BENCHMARK(BM_ProbesOfOnePair);

// A pair on one of `range(0)` names that all have records already, taken in turn.
void BM_PairDetailOff(benchmark::State &state)
{
    const std::vector<std::string> names = makeNames(static_cast<std::size_t>(state.range(0)));
    Profiler profiler = makeProfiler(true, false);
    for (const std::string &name : names) {
        profiler.startRecord(name.c_str());
        profiler.stopRecord();
    }
    std::size_t next = 0;
    for (auto _ : state) {
        profiler.startRecord(names[next].c_str());
        profiler.stopRecord();
        if (++next == names.size())
            next = 0;
    }
}
BENCHMARK(BM_PairDetailOff)->Arg(1)->Arg(1000)->Arg(10000);

double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Runs \a first and \a second in alternating blocks of calls, each going first in turn so that
// neither always meets a warm cache, and adds the thread CPU time of each side's blocks to its
// sum. Returns the number of calls each side made.
template<typename First, typename Second>
double alternateBlocks(benchmark::State &state, First first, Second second, double &firstSeconds,
                       double &secondSeconds)
{
    constexpr int block = 64;
    bool firstFirst = true;
    for (auto _ : state) {
        for (int side = 0; side < 2; ++side) {
            const bool measuringFirst = (side == 0) == firstFirst;
            const double start = threadCpuSeconds();
            for (int i = 0; i < block; ++i) {
                if (measuringFirst)
                    first();
                else
                    second();
            }
            (measuringFirst ? firstSeconds : secondSeconds) += threadCpuSeconds() - start;
        }
        firstFirst = !firstFirst;
    }
    return static_cast<double>(state.iterations()) * block;
}

// The same comparison in alternating blocks, so that the load of a shared machine weighs on
// both sides alike: counters give each side's CPU time per pair and their ratio.
void BM_PairAgainstProbes(benchmark::State &state)
{
    const std::vector<std::string> names = makeNames(static_cast<std::size_t>(state.range(0)));
    Profiler profiler = makeProfiler(true, false);
    for (const std::string &name : names) {
        profiler.startRecord(name.c_str());
        profiler.stopRecord();
    }
    UT_TIMER timer;
    double sink = 0;
    const auto probes = [&] {
        timer.reset();
        const double start = static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage());
        sink += timer.get_delta_cpu();
        sink += timer.get_delta_real();
        sink += static_cast<double>(UT_MEM_USAGE::getCurrentMemoryUsage()) - start;
    };
    std::size_t next = 0;
    const auto pair = [&] {
        profiler.startRecord(names[next].c_str());
        profiler.stopRecord();
        if (++next == names.size())
            next = 0;
    };
    double probeSeconds = 0;
    double pairSeconds = 0;
    const double pairs = alternateBlocks(state, probes, pair, probeSeconds, pairSeconds);
    benchmark::DoNotOptimize(sink);
    state.counters["probes_ns"] = probeSeconds / pairs * 1e9;
    state.counters["pair_ns"] = pairSeconds / pairs * 1e9;
    state.counters["ratio"] = pairSeconds / probeSeconds;
}
BENCHMARK(BM_PairAgainstProbes)->Arg(1)->Arg(1000)->Arg(10000);

// A pair that writes its run to a timeline against one that does not, in alternating blocks as
// above; the timeline goes to a temporary folder, with room for every run of the benchmark.
void BM_PairWithTimeline(benchmark::State &state)
{
    const std::vector<std::string> names = makeNames(static_cast<std::size_t>(state.range(0)));
    Profiler plain = makeProfiler(true, false);
    const QTemporaryDir folder;
    setenv("GUI_PROFILER_TRACE", QFile::encodeName(folder.filePath("trace.json")).constData(), 1);
    setenv("GUI_PROFILER_TRACE_LIMIT", "65536", 1);
    Profiler traced;
    unsetenv("GUI_PROFILER_TRACE");
    for (const std::string &name : names) {
        plain.startRecord(name.c_str());
        plain.stopRecord();
        traced.startRecord(name.c_str());
        traced.stopRecord();
    }
    std::size_t next = 0;
    const auto pair = [&](Profiler &profiler) {
        profiler.startRecord(names[next].c_str());
        profiler.stopRecord();
        if (++next == names.size())
            next = 0;
    };
    double plainSeconds = 0;
    double tracedSeconds = 0;
    const double pairs = alternateBlocks(
        state, [&] { pair(plain); }, [&] { pair(traced); }, plainSeconds, tracedSeconds);
    state.counters["plain_ns"] = plainSeconds / pairs * 1e9;
    state.counters["traced_ns"] = tracedSeconds / pairs * 1e9;
    state.counters["added_ns"] = (tracedSeconds - plainSeconds) / pairs * 1e9;
}
BENCHMARK(BM_PairWithTimeline)->Arg(1)->Arg(1000);

// Detail lines on, the message channel reduced to the test capture and the debug category off.
void BM_PairDetailOn(benchmark::State &state)
{
    QLoggingCategory::setFilterRules(QStringLiteral("gui.profiler.log.debug=false"));
    const std::vector<std::string> names = makeNames(static_cast<std::size_t>(state.range(0)));
    Profiler profiler = makeProfiler(true, true);
    hulmar::testing::MessageCapture capture;
    for (const std::string &name : names) {
        profiler.startRecord(name.c_str());
        profiler.stopRecord();
    }
    capture.clear();
    std::size_t next = 0;
    for (auto _ : state) {
        profiler.startRecord(names[next].c_str());
        profiler.stopRecord();
        if (++next == names.size())
            next = 0;
        if (capture.messages().size() >= 2048)
            capture.clear();
    }
}
BENCHMARK(BM_PairDetailOn)->Arg(1)->Arg(10000);

// Finding a record among `range(0)`: a byte-compare scan of the list against the index.
struct Records
{
    explicit Records(std::size_t count)
        : names(makeNames(count))
    {
        for (const std::string &name : names) {
            tasks.push_back(std::make_unique<ProfileTask>(name.c_str()));
            index.insert(tasks.back().get());
        }
    }
    std::vector<std::string> names;
    std::vector<std::unique_ptr<ProfileTask>> tasks;
    ProfileTaskIndex index;
};

void BM_FindByScan(benchmark::State &state)
{
    const Records records(static_cast<std::size_t>(state.range(0)));
    std::size_t next = 0;
    for (auto _ : state) {
        const char *name = records.names[next].c_str();
        ProfileTask *found = nullptr;
        for (const auto &task : records.tasks) {
            if (task->m_name == name) {
                found = task.get();
                break;
            }
        }
        benchmark::DoNotOptimize(found);
        if (++next == records.names.size())
            next = 0;
    }
}
BENCHMARK(BM_FindByScan)->Arg(1)->Arg(1000)->Arg(10000);

void BM_FindByIndex(benchmark::State &state)
{
    const Records records(static_cast<std::size_t>(state.range(0)));
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(records.index.find(records.names[next].c_str()));
        if (++next == records.names.size())
            next = 0;
    }
}
BENCHMARK(BM_FindByIndex)->Arg(1)->Arg(1000)->Arg(10000);

} // namespace

BENCHMARK_MAIN();

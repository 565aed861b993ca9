// `corvekit profile summary` of a large timeline, through the tool's own reader: the trace is
// generated once into a temporary folder at `range(0)` MiB, in the profiler's own layout (nested
// runs three levels deep on two threads, a memory counter after each run, 50 task names), and
// read whole per iteration. Counters give the throughput and the process's peak memory.
#include "tracereader.h"

#include <hulmar/ut_mem_usage.h>

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

void appendRun(std::string &out, int name, long long start, long long duration, int thread,
               int level)
{
    out += "{\"name\":\"Task step " + std::to_string(name) +
           "\",\"ph\":\"X\",\"ts\":" + std::to_string(start) +
           ".125,\"dur\":" + std::to_string(duration) +
           ".250,\"pid\":31576,\"tid\":" + std::to_string(thread) +
           ",\"args\":{\"level\":" + std::to_string(level) +
           ",\"cpuUs\":215.703,\"memStartBytes\":10235904,\"memGrowthBytes\":143360}},\n"
           "{\"name\":\"resident memory\",\"ph\":\"C\",\"ts\":" +
           std::to_string(start + duration) +
           ".375,\"pid\":31576,\"tid\":" + std::to_string(thread) +
           ",\"args\":{\"bytes\":10379264}},\n";
}

// Writes a trace of at least \a mebibytes MiB to \a path: each top-level run holds four runs,
// each of which holds two, written as they end.
bool generate(const QString &path, long long mebibytes)
{
    std::FILE *file = std::fopen(QFile::encodeName(path).constData(), "wb");
    if (!file)
        return false;
    std::string chunk = "[\n";
    long long written = 0;
    long long now = 11012159537;
    for (int round = 0; written < (mebibytes << 20); ++round) {
        const int thread = 31576 + round % 2;
        const long long start = now;
        for (int child = 0; child < 4; ++child) {
            const long long childStart = now;
            for (int leaf = 0; leaf < 2; ++leaf, now += 10)
                appendRun(chunk, (round + child + leaf) % 50, now, 9, thread, 2);
            appendRun(chunk, (round + child) % 50, childStart, now - childStart, thread, 1);
        }
        appendRun(chunk, round % 50, start, now - start, thread, 0);
        if (chunk.size() > (1 << 20)) {
            written += static_cast<long long>(std::fwrite(chunk.data(), 1, chunk.size(), file));
            chunk.clear();
        }
    }
    chunk += "{}\n]\n"; // an empty event after the last separator
    std::fwrite(chunk.data(), 1, chunk.size(), file);
    return std::fclose(file) == 0;
}

void BM_SummaryOfTrace(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trace.json"));
    if (!generate(path, state.range(0))) {
        state.SkipWithError("cannot write the trace");
        return;
    }
    const qint64 bytes = QFile(path).size();
    qint64 runs = 0;
    for (auto _ : state) {
        TraceReader reader(path);
        TraceSummary summary;
        TraceEvent event;
        while (reader.next(event) == TraceReader::Event)
            summary.add(event);
        runs = summary.runs();
        benchmark::DoNotOptimize(summary.tasks());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["runs"] = static_cast<double>(runs);
    state.counters["peak_mib"] =
        static_cast<double>(UT_MEM_USAGE::getPeakMemoryUsage()) / (1 << 20);
}
BENCHMARK(BM_SummaryOfTrace)->Arg(1024)->Iterations(1)->Repetitions(3)->Unit(benchmark::kSecond);

} // namespace

BENCHMARK_MAIN();

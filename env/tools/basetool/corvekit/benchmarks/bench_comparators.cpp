// Sorting with the name and pin comparators, against the same sort with strcmp in the same run.
//
// Two inputs, generated here with a fixed seed and shuffled:
// - nets: one million hierarchical net names as a synthesised netlist has them (instance paths,
//   generate indices, bus bits), about 69 bytes on average;
// - pins: one hundred thousand BGA pin names of a 40 x 40 grid, rows A to AY without I, O, Q, S,
//   X and Z.
// Each iteration copies the shuffled pointers and sorts them, with std::sort and with
// std::stable_sort (the sort that the comparators' documentation asks for). std::sort is safe
// here: no generated name is empty and no digit run overflows an int, and on such names every
// comparator is a strict weak ordering. CORVEKIT_BENCH_SCALE=n divides both counts by n, for runs
// under callgrind.
#include <corvekit/basepublic.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

std::size_t scaled(std::size_t count)
{
    const char *scale = std::getenv("CORVEKIT_BENCH_SCALE");
    const long divisor = scale ? std::strtol(scale, nullptr, 10) : 1;
    return divisor > 1 ? count / static_cast<std::size_t>(divisor) : count;
}

struct NameSet
{
    std::vector<std::string> storage;
    std::vector<const char *> shuffled;

    void finish(std::mt19937 &random)
    {
        for (const std::string &name : storage)
            shuffled.push_back(name.c_str());
        std::shuffle(shuffled.begin(), shuffled.end(), random);
    }
};

const NameSet &netNames()
{
    static const NameSet names = [] {
        static const char *const blocks[] = {
            "u_soc_top",    "u_cpu_subsys", "u_core",         "u_alu",      "u_lsu",
            "u_fetch",      "u_decode",     "u_regfile",      "u_ddr_ctrl", "u_phy",
            "u_axi_xbar",   "u_dma",        "u_eth_mac",      "u_pcie_ep",  "u_fifo_rx",
            "u_fifo_tx",    "u_uart",       "u_spi_master",   "u_i2c",      "u_timer",
            "u_intc",       "u_crc32",      "u_async_bridge", "u_cdc_sync", "u_serdes_lane",
            "u_pll_wrapper"};
        static const char *const generates[] = {"gen_lane",  "gen_ch",  "gen_bank",
                                                "gen_slice", "g_stage", "gen_port"};
        static const char *const signals[] = {"data_q_reg",
                                              "wr_ptr_reg",
                                              "rd_ptr_reg",
                                              "state_reg",
                                              "cnt_reg",
                                              "valid_q",
                                              "addr_o",
                                              "rdata",
                                              "wdata_reg",
                                              "mem_reg",
                                              "shift_reg",
                                              "sync_ff",
                                              "credit_cnt",
                                              "tag_q",
                                              "byte_en",
                                              "n_",
                                              "FSM_onehot_state_reg",
                                              "ready_d1_reg"};
        std::mt19937 random(20261123u);
        const auto pick = [&](int low, int high) {
            return std::uniform_int_distribution<int>(low, high)(random);
        };
        NameSet set;
        const std::size_t count = scaled(1000000);
        set.storage.reserve(count);
        while (set.storage.size() < count) {
            std::string name;
            const int depth = pick(3, 6);
            for (int level = 0; level < depth; ++level) {
                name += blocks[pick(0, 25)];
                if (pick(0, 3) == 0) {
                    name += '/';
                    name += generates[pick(0, 5)];
                    name += '[' + std::to_string(pick(0, 15)) + ']';
                } else if (pick(0, 2) == 0) {
                    name += std::to_string(pick(0, 7));
                }
                name += '/';
            }
            const char *signal = signals[pick(0, 17)];
            name += signal;
            if (std::strcmp(signal, "n_") == 0)
                name += std::to_string(pick(0, 99999));
            else if (pick(0, 3) != 0)
                name += '[' + std::to_string(pick(0, 63)) + ']';
            if (pick(0, 4) == 0)
                name += "_i_" + std::to_string(pick(1, 9)) + "/O";
            set.storage.push_back(std::move(name));
        }
        set.finish(random);
        return set;
    }();
    return names;
}

const NameSet &pinNames()
{
    static const NameSet names = [] {
        std::vector<std::string> rows;
        const std::string letters = "ABCDEFGHJKLMNPRTUVWY"; // no I, O, Q, S, X, Z
        for (char letter : letters)
            rows.push_back(std::string(1, letter));
        for (char letter : letters)
            rows.push_back(std::string("A") + letter);
        std::mt19937 random(4040u);
        NameSet set;
        const std::size_t count = scaled(100000);
        while (set.storage.size() < count) {
            const std::string &row =
                rows[std::uniform_int_distribution<std::size_t>(0, 39)(random)];
            set.storage.push_back(
                row + std::to_string(std::uniform_int_distribution<int>(1, 40)(random)));
        }
        set.finish(random);
        return set;
    }();
    return names;
}

// Out of line, as the library's comparators are behind their shared library's call.
[[gnu::noinline]] int compareStrcmp(const char *a, const char *b)
{
    return std::strcmp(a, b);
}

// The floor of compareNameNum, which must measure both names before it may answer.
[[gnu::noinline]] int compareStrnlenStrcmp(const char *a, const char *b)
{
    benchmark::DoNotOptimize(strnlen(a, 683));
    benchmark::DoNotOptimize(strnlen(b, 683));
    return std::strcmp(a, b);
}

enum class Sort
{
    Introsort,
    Stable
};

template<Sort How, typename Less>
void sortBy(std::vector<const char *> &names, Less less)
{
    if constexpr (How == Sort::Stable)
        std::stable_sort(names.begin(), names.end(), less);
    else
        std::sort(names.begin(), names.end(), less);
}

template<Sort How, int (*Compare)(const char *, const char *)>
void sortNames(benchmark::State &state, const NameSet &names)
{
    std::vector<const char *> work;
    for (auto _ : state) {
        work = names.shuffled;
        sortBy<How>(work, [](const char *a, const char *b) { return Compare(a, b) < 0; });
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    // The same sort once more, counting, for instructions per comparison under callgrind.
    static std::size_t comparisons = 0;
    comparisons = 0;
    work = names.shuffled;
    sortBy<How>(work, [](const char *a, const char *b) {
        ++comparisons;
        return Compare(a, b) < 0;
    });
    state.counters["comparisons"] = static_cast<double>(comparisons);
    std::size_t bytes = 0;
    for (const char *name : names.shuffled)
        bytes += std::strlen(name);
    state.counters["names"] = static_cast<double>(names.shuffled.size());
    state.counters["avgBytes"] =
        static_cast<double>(bytes) / static_cast<double>(names.shuffled.size());
}

template<Sort How, int (*Compare)(const char *, const char *)>
void nets(benchmark::State &state)
{
    sortNames<How, Compare>(state, netNames());
}

template<Sort How, int (*Compare)(const char *, const char *)>
void pins(benchmark::State &state)
{
    sortNames<How, Compare>(state, pinNames());
}

} // namespace

// Other programs share the machine: the fastest repetition is the least disturbed one, so it is
// reported beside the median.
static double fastest(const std::vector<double> &values)
{
    return *std::min_element(values.begin(), values.end());
}

// `set` names a template, which takes no parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define CORVEKIT_SORT_BENCHMARK(set, how, sortName, compare, label)                                \
    BENCHMARK(set<Sort::how, compare>)                                                             \
        ->Name(#set "/" sortName "/" label)                                                        \
        ->Unit(benchmark::kMillisecond)                                                            \
        ->ComputeStatistics("min", fastest)
#define CORVEKIT_SORT_BENCHMARKS(set, compare, label)                                              \
    CORVEKIT_SORT_BENCHMARK(set, Introsort, "sort", compare, label);                               \
    CORVEKIT_SORT_BENCHMARK(set, Stable, "stable_sort", compare, label)
// NOLINTEND(bugprone-macro-parentheses)

CORVEKIT_SORT_BENCHMARKS(nets, compareStrcmp, "strcmp");
CORVEKIT_SORT_BENCHMARKS(nets, compareStrnlenStrcmp, "strnlen2+strcmp");
CORVEKIT_SORT_BENCHMARKS(nets, BasePublic::compareNameNum, "compareNameNum");
CORVEKIT_SORT_BENCHMARKS(nets, BasePublic::compareAlphaNum, "compareAlphaNum");
CORVEKIT_SORT_BENCHMARKS(nets, BasePublic::comparePinH, "comparePinH");
CORVEKIT_SORT_BENCHMARKS(nets, BasePublic::comparePinV, "comparePinV");
CORVEKIT_SORT_BENCHMARKS(pins, compareStrcmp, "strcmp");
CORVEKIT_SORT_BENCHMARKS(pins, compareStrnlenStrcmp, "strnlen2+strcmp");
CORVEKIT_SORT_BENCHMARKS(pins, BasePublic::compareNameNum, "compareNameNum");
CORVEKIT_SORT_BENCHMARKS(pins, BasePublic::compareAlphaNum, "compareAlphaNum");
CORVEKIT_SORT_BENCHMARKS(pins, BasePublic::comparePinH, "comparePinH");
CORVEKIT_SORT_BENCHMARKS(pins, BasePublic::comparePinV, "comparePinV");

BENCHMARK_MAIN();

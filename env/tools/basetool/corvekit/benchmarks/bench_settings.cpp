// Operations that open the settings on every call, each beside a baseline of the same lookups
// on QSettings that the baseline opens itself, over a system file of 20 and of 2,000 keys.
//
//   bench_settings [google benchmark flags]   times, baselines measured in the same run
//   bench_settings --count NAME KEYS N        runs one operation N times inside countedLoop(),
//                                             for instruction counts under callgrind:
//     valgrind --tool=callgrind --collect-atstart=no --toggle-collect='countedLoop*' \
//         --callgrind-out-file=/dev/null bench_settings --count NAME KEYS N
//
// Names: raw_fresh (three QSettings opened as BaseSettings opens them, plus one lookup through
// all three levels), raw_held (the same lookup on three long-lived QSettings), settings_lookup
// (a fresh BaseSettings and one getSetting), simulator_path, simulator_path_held,
// synplify_path, synplify_path_held, file_filter, file_filter_held.

#include <corvekit/basesettings.h>
#include <corvekit/basesystem.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>

namespace {

// A key of the system level alone, so that a lookup walks all three levels.
const QString &lookupKey()
{
    static const QString key = QStringLiteral("DEFAULT_DEVICE_FAMILY");
    return key;
}

// One sample installation with a project: the system file has \a keys keys.
struct Installation
{
    QString root;
    QString systemFile;
    QString projectPath;

    Installation(const QString &base, int keys)
        : root(base + QStringLiteral("/root%1").arg(keys))
        , systemFile(root + QStringLiteral("/data/.setting.ini"))
        , projectPath(base + QStringLiteral("/project%1/").arg(keys))
    {
        QDir().mkpath(root + QStringLiteral("/data"));
        QDir().mkpath(root + QStringLiteral("/questasim/win64"));
        QDir().mkpath(root + QStringLiteral("/tptools/synplify/windows"));
        QDir().mkpath(projectPath);
        // Top-level keys, as a system file has them: the lookups parse the whole section.
        QByteArray text = "[General]\nSIMULATOR_TYPE=QuestaSim\nDEFAULT_DEVICE_FAMILY=Corvus-II\n";
        for (int index = 0; index < keys - 3; ++index)
            text += QStringLiteral("KEY_%1=value number %1\n").arg(index).toLatin1();
        text += "[File_Extension]\nvhdl=vhd, vhdl\n";
        QFile system(systemFile);
        system.open(QIODevice::WriteOnly);
        system.write(text);
        QFile project(projectPath + QStringLiteral(".setting.ini"));
        project.open(QIODevice::WriteOnly);
        project.write("[General]\nTOP_MODULE=uart_bridge\n");
    }
};

struct Machine
{
    QTemporaryDir base;
    // The raw baselines read byte-identical copies, so that the file the library keeps open
    // does not lend them its parse.
    std::map<int, std::unique_ptr<Installation>> installations;
    std::map<int, std::unique_ptr<Installation>> rawCopies;

    Machine()
    {
        const QString home = base.path() + QStringLiteral("/home");
        QDir().mkpath(home + QStringLiteral("/.config/Meravex/OstraneNG"));
        QFile user(home + QStringLiteral("/.config/Meravex/OstraneNG/.setting.ini"));
        user.open(QIODevice::WriteOnly);
        user.write("[General]\nMESSAGE_LIMIT=2000\n");
        qputenv("HOME", home.toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (home + QStringLiteral("/.config")).toLocal8Bit());
        qunsetenv("SOLVANE_GROUP_SETTING_FILE");
        for (int keys : {20, 2000}) {
            installations[keys] = std::make_unique<Installation>(base.path(), keys);
            rawCopies[keys] =
                std::make_unique<Installation>(base.path() + QStringLiteral("/raw"), keys);
        }
    }

    // Points TOOLRTF and the project path at the installation of \a keys keys.
    const Installation &use(int keys, bool raw = false)
    {
        const Installation &installation = raw ? *rawCopies[keys] : *installations[keys];
        qputenv("TOOLRTF", installation.root.toLocal8Bit());
        BaseSettings::setProjectPath(installation.projectPath);
        return installation;
    }
};

Machine *machine = nullptr;

// Three levels opened the way BaseSettings opens them.
struct RawLevels
{
    QSettings system;
    QSettings user;
    QSettings project;

    explicit RawLevels(const Installation &installation)
        : system(installation.systemFile, QSettings::IniFormat)
        , user(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Meravex/OstraneNG"),
               QStringLiteral(".setting"))
        , project(installation.projectPath + QStringLiteral(".setting.ini"), QSettings::IniFormat)
    {
        system.setFallbacksEnabled(false);
        user.setFallbacksEnabled(false);
        project.setFallbacksEnabled(false);
    }

    QVariant lookup(const QString &key)
    {
        for (QSettings *level : {&project, &user, &system}) {
            if (level->contains(key))
                return level->value(key);
        }
        return QVariant();
    }
};

using Operation = std::function<void()>;

// Builds the operation \a name on the installation of \a keys keys. State that a baseline
// keeps between calls lives in the returned closure.
Operation makeOperation(const std::string &name, int keys)
{
    if (name == "raw_fresh") {
        const Installation &installation = machine->use(keys, true);
        return [&installation] {
            RawLevels levels(installation);
            benchmark::DoNotOptimize(levels.lookup(lookupKey()));
        };
    }
    if (name == "raw_held") {
        auto levels = std::make_shared<RawLevels>(machine->use(keys, true));
        return [levels] { benchmark::DoNotOptimize(levels->lookup(lookupKey())); };
    }
    if (name == "settings_lookup") {
        machine->use(keys);
        return [] {
            BaseSettings settings;
            benchmark::DoNotOptimize(settings.getSetting(lookupKey(), QVariant()));
        };
    }
    if (name == "simulator_path") {
        machine->use(keys);
        return [] { benchmark::DoNotOptimize(BaseSystem::getSimulatorPath(false)); };
    }
    if (name == "simulator_path_held") {
        const Installation &installation = machine->use(keys, true);
        auto levels = std::make_shared<RawLevels>(installation);
        const QString root = installation.root;
        return [levels, root] {
            const bool questa = levels->system.value(QStringLiteral("SIMULATOR_TYPE")).toString() ==
                                QLatin1String("QuestaSim");
            benchmark::DoNotOptimize(questa);
            if (levels->lookup(QStringLiteral("QUESTASIM_PATH")).toString().isEmpty())
                benchmark::DoNotOptimize(QDir(root + QStringLiteral("/questasim/win64")).exists());
        };
    }
    if (name == "synplify_path") {
        machine->use(keys);
        return [] { benchmark::DoNotOptimize(BaseSystem::getSynplifyPath(false)); };
    }
    if (name == "synplify_path_held") {
        const Installation &installation = machine->use(keys, true);
        auto levels = std::make_shared<RawLevels>(installation);
        const QString root = installation.root;
        return [levels, root] {
            if (levels->lookup(QStringLiteral("SYNPLIFY_PATH")).toString().isEmpty() &&
                !QDir(root + QStringLiteral("/synpbase")).exists())
                benchmark::DoNotOptimize(
                    QDir(root + QStringLiteral("/tptools/synplify/windows")).exists());
        };
    }
    if (name == "file_filter") {
        machine->use(keys);
        return [] { benchmark::DoNotOptimize(BaseSystem::getFileFilter("vhdl", nullptr)); };
    }
    if (name == "file_filter_held") {
        auto levels = std::make_shared<RawLevels>(machine->use(keys, true));
        return [levels] {
            QString filter = QStringLiteral("vhdl Files (");
            const QStringList extensions =
                levels->lookup(QStringLiteral("File_Extension/vhdl")).toStringList();
            for (const QString &extension : extensions)
                filter += QLatin1String("*.") + extension + QLatin1Char(' ');
            benchmark::DoNotOptimize(filter.trimmed() + QLatin1Char(')'));
        };
    }
    return {};
}

const char *const operationNames[] = {
    "raw_fresh",           "raw_held",      "settings_lookup",    "simulator_path",
    "simulator_path_held", "synplify_path", "synplify_path_held", "file_filter",
    "file_filter_held"};

void runBenchmark(benchmark::State &state, const std::string &name)
{
    const Operation operation = makeOperation(name, static_cast<int>(state.range(0)));
    operation();         // the first call parses what later calls find in Qt's cache
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
        operation();
}

// Kept out of line and named, so that callgrind can count what runs inside it alone.
__attribute__((noinline)) void countedLoop(const Operation &operation, long count)
{
    for (long index = 0; index < count; ++index)
        operation();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("bench_settings"));
    Machine fixture;
    machine = &fixture;

    if (argc == 5 && std::string(argv[1]) == "--count") {
        const Operation operation = makeOperation(argv[2], std::atoi(argv[3]));
        if (!operation) {
            std::fprintf(stderr, "unknown operation %s\n", argv[2]);
            return 2;
        }
        operation();
        operation();
        countedLoop(operation, std::atol(argv[4]));
        return 0;
    }

    for (const char *name : operationNames) {
        benchmark::RegisterBenchmark(name, runBenchmark, std::string(name))
            ->Arg(20)
            ->Arg(2000)
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

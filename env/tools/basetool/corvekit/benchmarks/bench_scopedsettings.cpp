// What the scoped settings wrappers add to QSettings, measured against QSettings itself in the
// same run, and what the label table and the tool name registry cost per question.
#include <corvekit/baseprjsettings.h>
#include <corvekit/basguitoolnameinfo.h>
#include <corvekit/commonlabelmapping.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

namespace {

struct ProjectFile
{
    QTemporaryDir dir;
    BasePrjSettings settings{dir.path().toUtf8().constData(), "bench"};
    ProjectFile()
    {
        for (int i = 0; i < 100; ++i)
            settings.setValue(QStringLiteral("group/key%1").arg(i), i);
    }
};

void BM_QSettingsValue(benchmark::State &state)
{
    ProjectFile file;
    QSettings *direct = file.settings.getSetting();
    const QString key = QStringLiteral("group/key50");
    for (auto _ : state)
        benchmark::DoNotOptimize(direct->value(key));
}
BENCHMARK(BM_QSettingsValue);

void BM_WrapperValue(benchmark::State &state)
{
    ProjectFile file;
    const QString key = QStringLiteral("group/key50");
    for (auto _ : state)
        benchmark::DoNotOptimize(file.settings.value(key));
}
BENCHMARK(BM_WrapperValue);

void BM_LabelHitLastRow(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(commonLabelMapping("display_pref"));
}
BENCHMARK(BM_LabelHitLastRow);

void BM_LabelMiss(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(commonLabelMapping("SHOW_IN_X"));
}
BENCHMARK(BM_LabelMiss);

// The registry only grows, so every registry benchmark uses one size of table.
void fillRegistry(int size)
{
    for (int i = 0; i < size; ++i)
        BasGUIToolNameInfo::addTool(QStringLiteral("tool%1").arg(i, 5, 10, QLatin1Char('0')),
                                    QStringLiteral("Tool %1").arg(i));
}

void BM_RegistryDisplayName(benchmark::State &state)
{
    fillRegistry(int(state.range(0)));
    const QString id = QStringLiteral("tool%1").arg(state.range(0) - 1, 5, 10, QLatin1Char('0'));
    for (auto _ : state)
        benchmark::DoNotOptimize(BasGUIToolNameInfo::getToolDisplayName(id));
}
BENCHMARK(BM_RegistryDisplayName)->Arg(1000);

void BM_RegistryIdMiss(benchmark::State &state)
{
    fillRegistry(int(state.range(0)));
    const QString name = QStringLiteral("No Such Tool");
    for (auto _ : state)
        benchmark::DoNotOptimize(BasGUIToolNameInfo::getToolID(name));
}
BENCHMARK(BM_RegistryIdMiss)->Arg(1000);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Help index queries on a generated index of about 49 MB with 10,000 tools, beside the floor
// that no pass can beat: a bare readNext() loop over the same file, in the same run.
//
// Goals: a miss (a full pass that selects nothing) within 1.10 times the bare loop; a cache hit
// within 100 ns; a query for the first tool within 50 us; a reader holding under 2 MB.
#include <corvekit/helpindexreader.h>

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <malloc.h>

#include <memory>

namespace {

constexpr int toolCount = 10000;

QByteArray paragraph(int seed)
{
    // Several lines with indentation, as an author's editor leaves them.
    return "\n        Sets the value " + QByteArray::number(seed) +
           " of the selected item and\n        writes it back to the design when the dialog"
           " closes;   the previous\n        value is kept for undo.\n      ";
}

QByteArray generatedIndex()
{
    QByteArray xml;
    xml.reserve(qsizetype(50) * 1024 * 1024);
    xml += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<helpIndex version=\"1.0\">\n";
    for (int t = 0; t < toolCount; ++t) {
        const QByteArray tool = "Tool " + QByteArray::number(t);
        xml += "  <tool name=\"" + tool + "\" href=\"tools/tool" + QByteArray::number(t) +
               "/overview.htm\">\n";
        for (int v = 0; v < 4; ++v) {
            xml += "    <view name=\"View " + QByteArray::number(v) + "\" href=\"tools/tool" +
                   QByteArray::number(t) + "/view" + QByteArray::number(v) + ".htm\"/>\n";
        }
        for (int i = 0; i < 3; ++i) {
            const QByteArray item = "\"Item " + QByteArray::number(i) + "\"";
            xml += "    <whatsthis name=" + item + ">" + paragraph(i) + "</whatsthis>\n";
            xml += "    <tooltip name=" + item + ">Item tooltip " + QByteArray::number(i) +
                   "</tooltip>\n";
            xml += "    <description name=" + item + " href=\"tools/item" + QByteArray::number(i) +
                   ".htm\">" + paragraph(i + 1) + "</description>\n";
        }
        for (int d = 0; d < 3; ++d) {
            xml += "    <dialog name=\"Dialog " + QByteArray::number(d) + "\" href=\"tools/tool" +
                   QByteArray::number(t) + "/dialog" + QByteArray::number(d) + ".htm\">\n";
            xml += "      <text>" + paragraph(d) + "</text>\n";
            for (int i = 0; i < 2; ++i) {
                const QByteArray item = "\"Field " + QByteArray::number(i) + "\"";
                xml += "      <whatsthis name=" + item + ">" + paragraph(i) + "</whatsthis>\n";
                xml += "      <tooltip name=" + item + ">Field tooltip</tooltip>\n";
            }
            xml += "      <description name=\"Field 0\" href=\"f.htm\">" + paragraph(d) +
                   "</description>\n";
            xml += "    </dialog>\n";
        }
        xml += "  </tool>\n";
    }
    xml += "</helpIndex>\n";
    return xml;
}

// The index lives in a temporary file for the whole run.
class IndexFile
{
public:
    static const QString &path()
    {
        static IndexFile file;
        return file.m_path;
    }

private:
    IndexFile()
    {
        m_path = m_dir.filePath(QStringLiteral("helpindex.xml"));
        QFile out(m_path);
        if (!out.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(m_path));
        out.write(generatedIndex());
    }
    QTemporaryDir m_dir;
    QString m_path;
};

struct OpenIndex
{
    OpenIndex()
        : file(IndexFile::path())
    {
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read the index");
        reader.setDevice(&file);
    }
    QFile file;
    HelpIndexReader reader;
};

void setFileRate(benchmark::State &state)
{
    const qint64 size = QFile(IndexFile::path()).size();
    state.SetBytesProcessed(state.iterations() * size);
    state.counters["file_MB"] = double(size) / 1e6;
}

// The floor: every token of the file, nothing looked at.
void BM_BareReadNext(benchmark::State &state)
{
    QFile file(IndexFile::path());
    file.open(QIODevice::ReadOnly);
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        file.reset();
        QXmlStreamReader reader(&file);
        while (!reader.atEnd())
            reader.readNext();
        benchmark::DoNotOptimize(reader.error());
    }
    setFileRate(state);
}

// A pass as it would be written without care for cost: every text built and simplified, names
// compared as QString. It shows what the reader's pass saves; it is no goal.
void BM_NaivePass(benchmark::State &state)
{
    QFile file(IndexFile::path());
    file.open(QIODevice::ReadOnly);
    const QString wanted = QStringLiteral("No such tool");
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        file.reset();
        QXmlStreamReader reader(&file);
        int matches = 0;
        while (!reader.atEnd()) {
            reader.readNext();
            if (!reader.isStartElement())
                continue;
            const QString name = reader.name().toString();
            if (name == QLatin1String("tool") || name == QLatin1String("dialog")) {
                matches += reader.attributes().value(QLatin1String("name")).toString() == wanted;
            } else if (name != QLatin1String("helpIndex")) {
                const QString key = reader.attributes().value(QLatin1String("name")).toString();
                matches += key == wanted;
                benchmark::DoNotOptimize(reader.readElementText().simplified());
            }
        }
        benchmark::DoNotOptimize(matches);
    }
    setFileRate(state);
}

void BM_Miss(benchmark::State &state)
{
    OpenIndex index;
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
        benchmark::DoNotOptimize(index.reader.getToolHelp("No such tool"));
    setFileRate(state);
}

void BM_CacheHit(benchmark::State &state)
{
    OpenIndex index;
    index.reader.getToolHelp("Tool 5000");
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
        benchmark::DoNotOptimize(index.reader.getToolTipText("Tool 5000", "Item 2"));
}

// Two levels of the first tool in turn, so that each query makes a pass.
void BM_FirstToolQuery(benchmark::State &state)
{
    OpenIndex index;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        benchmark::DoNotOptimize(index.reader.getToolHelp("Tool 0"));
        benchmark::DoNotOptimize(index.reader.getDlgText("Tool 0", "Dialog 2"));
    }
    state.counters["per_query"] = benchmark::Counter(
        2.0 * state.iterations(), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Heap bytes that a reader holds after a miss and after a hit on the last tool.
void BM_HeldMemory(benchmark::State &state)
{
    const auto inUse = [] { return static_cast<double>(mallinfo2().uordblks); };
    double afterMiss = 0;
    double afterHit = 0;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        const double before = inUse();
        auto index = std::make_unique<OpenIndex>();
        index->reader.getToolHelp("No such tool");
        afterMiss = inUse() - before;
        index->reader.getToolHelp("Tool 9999");
        afterHit = inUse() - before;
    }
    state.counters["held_after_miss_bytes"] = afterMiss;
    state.counters["held_after_hit_bytes"] = afterHit;
}

} // namespace

BENCHMARK(BM_BareReadNext)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NaivePass)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Miss)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CacheHit)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_FirstToolQuery)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HeldMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    IndexFile::path(); // written once, before anything is measured
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// The stand-in for the suite's utility library: formatting, the clock and memory probes and
// the hooks that tests install in place of the message channel and the probes.
#include <hulmar/hulmar_testing.h>
#include <hulmar/msgmanager.h>
#include <hulmar/neoform.h>
#include <hulmar/ut_mem_usage.h>
#include <hulmar/ut_timer.h>
#include <hulmar/ut_warning.h>

#include <QTest>

#include <cstring>
#include <ctime>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using hulmar::testing::CapturedMessage;
using hulmar::testing::FakeProbes;
using hulmar::testing::MessageCapture;

namespace {

constexpr std::uint64_t MB = std::uint64_t{1024} * 1024;

// Touches \a bytes of fresh anonymous memory so they become resident; unmapped by the caller.
void *touch(std::size_t bytes)
{
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    std::memset(memory, 0x5a, bytes);
    return memory;
}

double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Spins until this thread alone has used \a seconds of CPU time.
void burn(double seconds)
{
    const double start = threadCpuSeconds();
    volatile unsigned sink = 0;
    while (threadCpuSeconds() - start < seconds) {
        for (int i = 0; i < 10000; ++i)
            sink = sink + static_cast<unsigned>(i);
    }
}

} // namespace

class TestHulmar : public QObject
{
    Q_OBJECT

private slots:
    void neoformConversions_data();
    void neoformConversions();
    void neoformNeverCutsLongTexts();
    void neoformBufferIsPerThread();

    void timerDeltaDoesNotRestart();
    void realTimeIsMonotonic();
    void cpuTimeCountsHelperThreads();

    void memoryFollowsResidentPages();
    void forkedChildReadsItsOwnMemory();

    void fakeProbesReplaceAndCount();
    void captureKeepsMessages();
};

void TestHulmar::neoformConversions_data()
{
    QTest::addColumn<QByteArray>("formatted");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("%s") << QByteArray(neoform("[%s] started", "Place"))
                        << QByteArray("[Place] started");
    QTest::newRow("%u") << QByteArray(neoform("Mem %uMB", 4294967295U))
                        << QByteArray("Mem 4294967295MB");
    QTest::newRow("%*s") << QByteArray(neoform("%*s|", 11, "Task Name"))
                         << QByteArray("  Task Name|");
    QTest::newRow("%*s narrower than text")
        << QByteArray(neoform("%*s|", 2, "Task Name")) << QByteArray("Task Name|");
    QTest::newRow("%-*s") << QByteArray(neoform("%-*s|", 6, "Map")) << QByteArray("Map   |");
    QTest::newRow("%*.2f") << QByteArray(neoform("%*.2f|", 8, 1.255)) << QByteArray("    1.25|");
    QTest::newRow("%*.2f wider than its width")
        << QByteArray(neoform("%*.2f|", 4, 123456789.0)) << QByteArray("123456789.00|");
    QTest::newRow("%+*.2f positive")
        << QByteArray(neoform("%+*.2f", 8, 3.5)) << QByteArray("   +3.50");
    QTest::newRow("%+*.2f zero") << QByteArray(neoform("%+*.2f", 6, 0.0)) << QByteArray(" +0.00");
    QTest::newRow("%+*.2f negative")
        << QByteArray(neoform("%+*.2f", 6, -1.0)) << QByteArray(" -1.00");
    QTest::newRow("no conversion") << QByteArray(neoform("plain text")) << QByteArray("plain text");
    QTest::newRow("null format") << QByteArray(neoform(nullptr)) << QByteArray("");
}

void TestHulmar::neoformConversions()
{
    QFETCH(QByteArray, formatted);
    QFETCH(QByteArray, expected);
    QCOMPARE(formatted, expected);
}

void TestHulmar::neoformNeverCutsLongTexts()
{
    for (const int length : {255, 256, 257, 4096, 100000}) {
        const std::string name(static_cast<std::size_t>(length), 'n');
        const char *result = neoform("%-*s | %*.2f", length + 3, name.c_str(), 8, 2.5);
        const std::string expected = name + "    |     2.50";
        QCOMPARE(std::string(result), expected);
    }
    // A short text after a long one is whole and ends where it should.
    QCOMPARE(QByteArray(neoform("%s", "short")), QByteArray("short"));
}

void TestHulmar::neoformBufferIsPerThread()
{
    const char *mine = neoform("%s", "main thread");
    std::thread other([] { neoform("%s", std::string(5000, 'o').c_str()); });
    other.join();
    QCOMPARE(QByteArray(mine), QByteArray("main thread"));
}

void TestHulmar::timerDeltaDoesNotRestart()
{
    FakeProbes probes;
    probes.cpuSeconds = 10.0;
    probes.realSeconds = 100.0;
    UT_TIMER timer;
    probes.cpuSeconds = 12.5;
    probes.realSeconds = 103.0;
    QCOMPARE(timer.get_delta_cpu(), 2.5);
    QCOMPARE(timer.get_delta_real(), 3.0);
    QCOMPARE(timer.get_delta_cpu(), 2.5); // reading does not start a new interval
    QCOMPARE(timer.get_delta_real(), 3.0);
    timer.reset();
    probes.cpuSeconds = 13.0;
    probes.realSeconds = 110.0;
    QCOMPARE(timer.get_delta_cpu(), 0.5);
    QCOMPARE(timer.get_delta_real(), 7.0);
}

void TestHulmar::realTimeIsMonotonic()
{
    UT_TIMER timer;
    double previous = 0.0;
    for (int i = 0; i < 1000; ++i) {
        const double delta = timer.get_delta_real();
        QVERIFY(delta >= previous);
        previous = delta;
    }
    QVERIFY(timer.get_delta_cpu() >= 0.0);
}

void TestHulmar::cpuTimeCountsHelperThreads()
{
    // Each helper uses 50 ms of its own CPU time; the process clock must count both, whatever
    // the main thread, which only waits, uses meanwhile.
    UT_TIMER timer;
    std::thread first(burn, 0.05);
    std::thread second(burn, 0.05);
    first.join();
    second.join();
    QVERIFY2(timer.get_delta_cpu() >= 0.1, qPrintable(QString::number(timer.get_delta_cpu())));
}

void TestHulmar::memoryFollowsResidentPages()
{
    const std::uint64_t before = UT_MEM_USAGE::getCurrentMemoryUsage();
    QVERIFY(before > 0);
    void *block = touch(64 * MB);
    QVERIFY(block);
    const std::uint64_t after = UT_MEM_USAGE::getCurrentMemoryUsage();
    const std::uint64_t peak = UT_MEM_USAGE::getPeakMemoryUsage();
    munmap(block, 64 * MB);
    const std::uint64_t released = UT_MEM_USAGE::getCurrentMemoryUsage();

    QVERIFY2(after >= before + 48 * MB,
             qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(after)));
    QVERIFY(peak >= after);
    QVERIFY2(released + 48 * MB <= after,
             qPrintable(QStringLiteral("%1 -> %2").arg(after).arg(released)));
    QVERIFY(UT_MEM_USAGE::getPeakMemoryUsage() >= peak); // the high-water mark stays
}

void TestHulmar::forkedChildReadsItsOwnMemory()
{
    // The parent's reading opens the probe's file; a child that kept it would go on reading
    // the parent's figure and never see its own growth.
    const std::uint64_t parent = UT_MEM_USAGE::getCurrentMemoryUsage();
    QVERIFY(parent > 0);
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        const std::uint64_t before = UT_MEM_USAGE::getCurrentMemoryUsage();
        void *block = touch(96 * MB);
        const std::uint64_t after = UT_MEM_USAGE::getCurrentMemoryUsage();
        _exit(block && before > 0 && after >= before + 64 * MB ? 0 : 1);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    // The parent's figure did not take the child's growth.
    QVERIFY(UT_MEM_USAGE::getCurrentMemoryUsage() < parent + 64 * MB);
}

void TestHulmar::fakeProbesReplaceAndCount()
{
    {
        FakeProbes probes;
        probes.currentMemory = 123 * MB;
        probes.peakMemory = 456 * MB;
        QCOMPARE(UT_MEM_USAGE::getCurrentMemoryUsage(), 123 * MB);
        QCOMPARE(UT_MEM_USAGE::getPeakMemoryUsage(), 456 * MB);
        UT_TIMER timer;         // two clock readings
        timer.get_delta_cpu();  // one
        timer.get_delta_real(); // one
        QCOMPARE(probes.readings, 6);
    }
    // Gone with the hook: real figures again.
    QVERIFY(UT_MEM_USAGE::getCurrentMemoryUsage() != 123 * MB);
    QVERIFY(UT_MEM_USAGE::getPeakMemoryUsage() != 456 * MB);
}

void TestHulmar::captureKeepsMessages()
{
    MessageCapture capture;
    msgManager manager;
    QCOMPARE(manager.postMsg("1009993", "line one\nline two"), 0);
    ut_warning("careful");
    ut_warning(nullptr);
    QCOMPARE(manager.postMsg("42", "unknown"), -1);
    QCOMPARE(manager.postMsg(nullptr), -1);

    const auto &messages = capture.messages();
    QCOMPARE(messages.size(), std::size_t(4));
    QCOMPARE(messages[0].kind, CapturedMessage::Numbered);
    QCOMPARE(messages[0].number, std::string("1009993"));
    QCOMPARE(messages[0].text, std::string("line one\nline two"));
    QCOMPARE(messages[1].kind, CapturedMessage::Warning);
    QCOMPARE(messages[1].text, std::string("careful"));
    QCOMPARE(messages[2].text, std::string(""));
    QCOMPARE(messages[3].number, std::string("42")); // shown, its arguments left out
    QCOMPARE(messages[3].text, std::string(""));
    QCOMPARE(capture.texts(), (std::vector<std::string>{"line one\nline two", "careful", "", ""}));
    capture.clear();
    QVERIFY(capture.messages().empty());
}

QTEST_GUILESS_MAIN(TestHulmar)
#include "tst_hulmar.moc"

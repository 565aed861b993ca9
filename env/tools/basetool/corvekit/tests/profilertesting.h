#ifndef CORVEKIT_TESTS_PROFILERTESTING_H
#define CORVEKIT_TESTS_PROFILERTESTING_H

#include <corvekit/profiler.h>

#include <hulmar/hulmar_testing.h>

#include <QByteArray>
#include <QLoggingCategory>
#include <QStringList>

#include <cstdint>

// Helpers shared by the profiler's tests.

// Sets or removes the profiler's switches while it lives, and puts the old values back.
class ScopedSwitches
{
public:
    ScopedSwitches(const char *enable, const char *detail)
        : m_enable(qgetenv("ENABLE_GUI_PROFILER"))
        , m_detail(qgetenv("ENABLE_GUI_PROFILER_DETAIL"))
        , m_hadEnable(qEnvironmentVariableIsSet("ENABLE_GUI_PROFILER"))
        , m_hadDetail(qEnvironmentVariableIsSet("ENABLE_GUI_PROFILER_DETAIL"))
    {
        set("ENABLE_GUI_PROFILER", enable);
        set("ENABLE_GUI_PROFILER_DETAIL", detail);
    }
    ~ScopedSwitches()
    {
        set("ENABLE_GUI_PROFILER", m_hadEnable ? m_enable.constData() : nullptr);
        set("ENABLE_GUI_PROFILER_DETAIL", m_hadDetail ? m_detail.constData() : nullptr);
    }
    ScopedSwitches(const ScopedSwitches &) = delete;
    ScopedSwitches &operator=(const ScopedSwitches &) = delete;

    static void set(const char *name, const char *value)
    {
        if (value)
            qputenv(name, value);
        else
            qunsetenv(name);
    }

private:
    QByteArray m_enable;
    QByteArray m_detail;
    bool m_hadEnable;
    bool m_hadDetail;
};

enum class Mode
{
    Disabled,
    Enabled,
    Detailed
};

// A profiler built under the given switches.
inline tivoran::corvekit::Profiler makeProfiler(Mode mode)
{
    ScopedSwitches switches(mode == Mode::Disabled ? nullptr : "1",
                            mode == Mode::Detailed ? "1" : nullptr);
    return tivoran::corvekit::Profiler();
}

// Moves the fake probes on: CPU and real seconds forward, memory by a signed number of bytes.
inline void advance(hulmar::testing::FakeProbes &probes, double cpu, double real,
                    std::int64_t memory)
{
    probes.cpuSeconds += cpu;
    probes.realSeconds += real;
    probes.currentMemory =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(probes.currentMemory) + memory);
}

// The texts of the numbered messages captured so far, as lines of text.
inline QStringList postedTexts(const hulmar::testing::MessageCapture &capture)
{
    QStringList texts;
    for (const hulmar::testing::CapturedMessage &message : capture.messages()) {
        if (message.kind == hulmar::testing::CapturedMessage::Numbered)
            texts.append(QString::fromStdString(message.text));
    }
    return texts;
}

// Keeps the profiler's debug records off the test log; their own test switches them back on.
inline void silenceProfilerCategory()
{
    QLoggingCategory::setFilterRules(QStringLiteral("gui.profiler.log.debug=false"));
}

#endif

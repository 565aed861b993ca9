#ifndef HULMAR_TESTING_H
#define HULMAR_TESTING_H

#include <cstdint>
#include <string>
#include <vector>

// Hooks for tests of code that talks to the utility library, from the static library
// hulmar_testing that only tests and benchmarks link. Each hook is an object: it takes effect
// when made and is undone when destroyed. Only one of each kind may live at a time.
namespace hulmar::testing {

struct CapturedMessage
{
    enum Kind
    {
        Warning,
        Numbered
    };
    Kind kind;
    std::string number; // the message number of a numbered message; empty for a warning
    std::string text;   // the warning text, or the message's argument text
};

// While it lives, warnings and numbered messages are kept here instead of being shown.
class MessageCapture
{
public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    const std::vector<CapturedMessage> &messages() const { return m_messages; }
    std::vector<std::string> texts() const; // the text of every message, in order
    void clear() { m_messages.clear(); }

    void append(CapturedMessage message) { m_messages.push_back(std::move(message)); }

private:
    std::vector<CapturedMessage> m_messages;
};

// While it lives, UT_TIMER and UT_MEM_USAGE read these figures instead of the system's, and
// every reading is counted.
class FakeProbes
{
public:
    FakeProbes();
    ~FakeProbes();
    FakeProbes(const FakeProbes &) = delete;
    FakeProbes &operator=(const FakeProbes &) = delete;

    double cpuSeconds = 0.0;
    double realSeconds = 0.0;
    std::uint64_t currentMemory = 0;
    std::uint64_t peakMemory = 0;

    // Clock and memory readings taken by the probes since this object was made.
    int readings = 0;
};

} // namespace hulmar::testing

#endif

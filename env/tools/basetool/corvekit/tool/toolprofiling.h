#ifndef CORVEKIT_TOOL_TOOLPROFILING_H
#define CORVEKIT_TOOL_TOOLPROFILING_H

#include <corvekit/profiler.h>

// The tool profiles itself when ENABLE_GUI_PROFILER begins with "1": while a ToolProfiling
// lives, the subcommand runs inside a profiler record of its name, and its destruction posts
// the report, which a console tool shows on standard error. Without the switch, nothing
// happens and nothing is measured.
class ToolProfiling
{
public:
    explicit ToolProfiling(const char *subcommand);
    ~ToolProfiling();
    ToolProfiling(const ToolProfiling &) = delete;
    ToolProfiling &operator=(const ToolProfiling &) = delete;

private:
    tivoran::corvekit::Profiler m_profiler;
    const char *m_subcommand;
};

// One main step of a subcommand, nested in the subcommand's record for as long as it lives.
// Does nothing while no ToolProfiling is recording.
class ProfileStep
{
public:
    explicit ProfileStep(const char *name);
    ~ProfileStep();
    ProfileStep(const ProfileStep &) = delete;
    ProfileStep &operator=(const ProfileStep &) = delete;

private:
    tivoran::corvekit::Profiler *m_profiler;
};

#endif

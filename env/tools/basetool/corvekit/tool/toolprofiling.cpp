#include "toolprofiling.h"

#include <QByteArray>
#include <QLoggingCategory>

#include <cstdio>

namespace {

// The profiler of the running subcommand, or null when the tool is not profiled.
tivoran::corvekit::Profiler *recording = nullptr;

} // namespace

ToolProfiling::ToolProfiling(const char *subcommand)
    : m_subcommand(subcommand)
{
    if (!m_profiler.is_enabled())
        return;
    // The report reaches standard error through the message channel already; its copy in the
    // debug log would print every line twice. QT_LOGGING_RULES can still switch it on.
    QLoggingCategory::setFilterRules(QStringLiteral("gui.profiler.log.debug=false"));
    recording = &m_profiler;
    m_profiler.startRecord(m_subcommand);
}

ToolProfiling::~ToolProfiling()
{
    if (!m_profiler.is_enabled())
        return;
    recording = nullptr;
    m_profiler.stopRecord();
    // The subcommand's output comes first, also when standard output is a buffered pipe.
    std::fflush(stdout);
    m_profiler.report(QByteArray("corvekit ").append(m_subcommand).constData());
}

ProfileStep::ProfileStep(const char *name)
    : m_profiler(recording)
{
    if (m_profiler)
        m_profiler->startRecord(name);
}

ProfileStep::~ProfileStep()
{
    if (m_profiler)
        m_profiler->stopRecord();
}

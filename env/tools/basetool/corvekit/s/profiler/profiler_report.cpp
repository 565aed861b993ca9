#include "profiler.h"

#include "post_utmsg.h"
#include "profiletask.h"

#include <hulmar/neoform.h>
#include <hulmar/ut_mem_usage.h>

#include <QByteArray>

#include <cmath>
#include <cstdint>

namespace tivoran::corvekit {

namespace {

const QByteArray &displayText(const ProfileTask &task)
{
    return task.m_title.isEmpty() ? task.m_name : task.m_title;
}

double megabytes(double bytes)
{
    return bytes * 0.0009765625 * 0.0009765625;
}

// A figure whose integer digits exceed the column widens it, by the figure's log10 (the
// column keeps no room for the decimals). Zero, negative and non-finite figures change nothing.
void widen(std::uint64_t &width, double figure)
{
    const double digits = std::log10(figure);
    if (std::isfinite(digits) && digits > static_cast<double>(width))
        width = static_cast<std::uint64_t>(digits);
}

int asWidth(std::uint64_t width)
{
    return static_cast<int>(width);
}

} // namespace

void Profiler::report(const char *title)
{
    if (!m_enabled)
        return;
    if (!title)
        title = "";

    QByteArray heading;
    heading += '\n';
    heading += title;
    heading += '\n';
    heading += neoform("  Current Memory: %uM\n",
                       static_cast<unsigned>(UT_MEM_USAGE::getCurrentMemoryUsage() >> 20));
    heading += neoform("  Peak Memory:    %uM\n",
                       static_cast<unsigned>(UT_MEM_USAGE::getPeakMemoryUsage() >> 20));
    post_utmsg(heading.constData());

    std::uint64_t nameWidth = 9;  // "Task Name"
    std::uint64_t cpuWidth = 11;  // "CPU Time(s)"
    std::uint64_t realWidth = 12; // "Real Time(s)"
    std::uint64_t memWidth = 12;  // "Delta Mem(M)"
    for (const auto &shared : m_tasks) {
        const ProfileTask &task = shared->task;
        const std::uint64_t length =
            task.m_level + static_cast<std::uint64_t>(displayText(task).size());
        if (nameWidth < length)
            nameWidth = length;
        widen(cpuWidth, task.m_cpuTime);
        widen(realWidth, task.m_realTime);
        const double memDigits = std::log10(megabytes(task.m_deltaMem)) + 1.0;
        if (std::isfinite(memDigits) && memDigits > static_cast<double>(memWidth))
            memWidth = static_cast<std::uint64_t>(memDigits);
    }

    const auto dashes = [](std::uint64_t width, qsizetype extra) {
        return static_cast<qsizetype>(width) + extra;
    };
    QByteArray rule;
    rule.append(dashes(nameWidth, 1), '-');
    rule += '+';
    rule.append(dashes(cpuWidth, 2), '-');
    rule += '+';
    rule.append(dashes(realWidth, 2), '-');
    rule += '+';
    rule.append(dashes(memWidth, 1), '-');

    post_utmsg(rule.constData());
    post_utmsg(neoform("%*s | %*s | %*s | %*s", asWidth(nameWidth), "Task Name", asWidth(cpuWidth),
                       "CPU Time(s)", asWidth(realWidth), "Real Time(s)", asWidth(memWidth),
                       "Delta Mem(M)"));
    post_utmsg(rule.constData());

    QByteArray row;
    for (const auto &shared : m_tasks) {
        const ProfileTask &task = shared->task;
        // Indentation and name fill the name column together, so the bars stay in line.
        row.fill(' ', static_cast<qsizetype>(task.m_level));
        row += neoform("%-*s | %*.2f | %*.2f | %+*.2f", asWidth(nameWidth - task.m_level),
                       displayText(task).constData(), asWidth(cpuWidth), task.m_cpuTime,
                       asWidth(realWidth), task.m_realTime, asWidth(memWidth),
                       megabytes(task.m_deltaMem));
        post_utmsg(row.constData());
    }

    post_utmsg(rule.constData());
}

} // namespace tivoran::corvekit

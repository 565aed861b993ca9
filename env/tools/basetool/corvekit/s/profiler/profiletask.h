#ifndef CORVEKIT_PROFILETASK_H
#define CORVEKIT_PROFILETASK_H

#include <QByteArray>
#include <QSharedData>

#include <cstdint>

class UT_TIMER;

namespace tivoran::corvekit {

/*!
 * The record of one named task of a Profiler: the sums of all its finished runs. Made by
 * Profiler::getTask, released with the last SharedProfileTask pointer to it.
 */
class ProfileTask
{
public:
    explicit ProfileTask(const char *name);
    ~ProfileTask();
    ProfileTask(const ProfileTask &) = delete;
    ProfileTask &operator=(const ProfileTask &) = delete;

    QByteArray m_name;         // the key, fixed at creation
    QByteArray m_title;        // shown in the report; the name until a title is set
    std::uint64_t m_level = 0; // nesting depth of the latest start; 0 is top level
    double m_deltaMem = 0.0;   // bytes, summed over all stops; can be negative
    double m_startMem = 0.0;   // bytes in use at the latest start
    UT_TIMER *m_timer;         // owned
    double m_cpuTime = 0.0;    // seconds, summed over all stops
    double m_realTime = 0.0;   // seconds, summed over all stops
};

// A record as a Profiler and its copies share it: each lists it through its own pointer, and
// the last pointer to go deletes it, so no copy touches a record that another copy's clear()
// or destructor has let go of.
struct SharedProfileTask : QSharedData
{
    explicit SharedProfileTask(const char *name)
        : task(name)
    {}

    ProfileTask task;
};

} // namespace tivoran::corvekit

#endif

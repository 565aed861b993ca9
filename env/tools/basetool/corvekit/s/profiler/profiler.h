#ifndef CORVEKIT_PROFILER_H
#define CORVEKIT_PROFILER_H

#include "corvekit_export.h"

#include <QExplicitlySharedDataPointer>

#include <deque>
#include <vector>

namespace tivoran::corvekit {

class ProfileTask;
class ProfileTaskIndex;
struct SharedProfileTask;

/*!
 * Measures named GUI tasks: CPU time of the whole process, real time and growth of resident
 * memory between startRecord and stopRecord. Brackets nest, and a parent's figures include its
 * children's. One record is kept per name (compared byte for byte, case-sensitive); each run of
 * a name adds to its sums. report() prints the records as a table.
 *
 * ENABLE_GUI_PROFILER and ENABLE_GUI_PROFILER_DETAIL are read once, by the default constructor,
 * and a switch is on when its first character is "1". A disabled profiler does nothing at all.
 * With detail on, every start and stop also posts a line such as
 * "[Place] started at 14:03:27, Mem 512MB". Everything is posted as numbered message 1009993
 * and on the logging category "gui.profiler.log".
 *
 * stopRecord and setLatestTaskTitle with no running task do nothing. A null name is taken as
 * the empty name, a null report title as an empty title.
 *
 * Copies share the records made so far, and both add to their sums; from then on each copy
 * keeps its own running tasks and its own list. A record lives as long as any copy lists it:
 * clear() or destruction of one copy drops that copy's pointers, and the last one deletes it.
 *
 * An object belongs to one thread at a time.
 */
class CORVEKIT_EXPORT Profiler
{
public:
    Profiler();
    Profiler(const Profiler &other);
    ~Profiler();
    Profiler &operator=(const Profiler &other);

    //! Starts the task \a name inside the running one, if any.
    void startRecord(const char *name);
    //! Stops the running task and adds its figures; the enclosing task runs again.
    void stopRecord();
    //! Gives the running task \a title in the report; a null title changes nothing.
    void setLatestTaskTitle(const char *title);
    //! Drops all records and running tasks of this object.
    void clear();
    bool is_enabled();

    //! Posts a heading with the process's current and peak memory, then one row per record.
    void report(const char *title);

private:
    ProfileTask *getTask(const char *name);

    bool m_enabled = false;
    bool m_detail = false;
    ProfileTask *m_current = nullptr;  // the running task, or null
    std::deque<ProfileTask *> m_stack; // tasks enclosing m_current, outermost first
    // Every record, in the order of first start.
    // Shared by copies; see docs/design.md, "Shared state after a copy".
    std::vector<QExplicitlySharedDataPointer<SharedProfileTask>> m_tasks;
    ProfileTaskIndex *m_index = nullptr; // finds m_tasks entries by name; owned, enabled only
};

} // namespace tivoran::corvekit

#endif

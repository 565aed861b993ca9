#include "profiletask.h"

#include <hulmar/ut_timer.h>

namespace tivoran::corvekit {

ProfileTask::ProfileTask(const char *name)
    : m_name(name)
    , m_title(m_name)
    , m_timer(new UT_TIMER)
{}

ProfileTask::~ProfileTask()
{
    delete m_timer;
}

} // namespace tivoran::corvekit

#ifndef CORVEKIT_PROFILETASKINDEX_P_H
#define CORVEKIT_PROFILETASKINDEX_P_H

#include "profiletask.h"

#include <string_view>
#include <unordered_map>

namespace tivoran::corvekit {

// Finds a record of a profiler's task list by name in constant time, where a scan of the list
// would grow with the number of names. Keys view the records' own names, which never change
// and live as long as the profiler holds the records.
class ProfileTaskIndex
{
public:
    ProfileTask *find(std::string_view name) const
    {
        const auto found = m_byName.find(name);
        return found == m_byName.end() ? nullptr : found->second;
    }
    void insert(ProfileTask *task)
    {
        m_byName.emplace(std::string_view(task->m_name.constData(),
                                          static_cast<std::size_t>(task->m_name.size())),
                         task);
    }
    void clear() { m_byName.clear(); }

private:
    std::unordered_map<std::string_view, ProfileTask *> m_byName;
};

} // namespace tivoran::corvekit

#endif

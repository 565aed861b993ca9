#ifndef CORVEKIT_PROFILETASKINDEX_P_H
#define CORVEKIT_PROFILETASKINDEX_P_H

#include "profiletask.h"

#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

namespace tivoran::corvekit {

// Finds a record of a profiler's task list by name in constant time, where a scan of the list
// would grow with the number of names. An open-addressed table of (hash, record) slots: a
// lookup among thousands of names touches one slot and the record it wants, which matters
// because a start sits between system calls that leave the caches cold.
class ProfileTaskIndex
{
public:
    ProfileTask *find(std::string_view name) const
    {
        if (m_slots.empty())
            return nullptr;
        const std::size_t hash = hashOf(name);
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            const Slot &slot = m_slots[i];
            if (!slot.task)
                return nullptr;
            if (slot.hash == hash && sameName(slot.task, name))
                return slot.task;
        }
    }

    // Adds \a task, whose name the index does not hold yet.
    void insert(ProfileTask *task)
    {
        if ((m_count + 1) * 2 > m_slots.size())
            grow();
        place({hashOf(nameOf(task)), task});
        ++m_count;
    }

    void clear()
    {
        m_slots.clear();
        m_count = 0;
    }

private:
    struct Slot
    {
        std::size_t hash = 0;
        ProfileTask *task = nullptr; // null: free
    };

    static std::string_view nameOf(const ProfileTask *task)
    {
        return {task->m_name.constData(), static_cast<std::size_t>(task->m_name.size())};
    }
    static std::size_t hashOf(std::string_view name) { return std::hash<std::string_view>{}(name); }
    static bool sameName(const ProfileTask *task, std::string_view name)
    {
        const std::string_view own = nameOf(task);
        return own.size() == name.size() && std::memcmp(own.data(), name.data(), name.size()) == 0;
    }

    void place(const Slot &entry)
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = entry.hash & mask;
        while (m_slots[i].task)
            i = (i + 1) & mask;
        m_slots[i] = entry;
    }

    // Doubles the table (a power of two, at most half full) and places every entry anew.
    void grow()
    {
        std::vector<Slot> old(m_slots.empty() ? 16 : m_slots.size() * 2);
        old.swap(m_slots);
        for (const Slot &entry : old) {
            if (entry.task)
                place(entry);
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
};

} // namespace tivoran::corvekit

#endif

#include "pageend.h"

#include <windows.h>

PageEnd::PageEnd(std::size_t capacity)
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    m_pageSize = system.dwPageSize;
    m_readableSize = (capacity + m_pageSize - 1) / m_pageSize * m_pageSize;
    void *pages = VirtualAlloc(nullptr, m_readableSize + m_pageSize, MEM_COMMIT | MEM_RESERVE,
                               PAGE_READWRITE);
    if (!pages)
        return;
    char *first = static_cast<char *>(pages);
    DWORD previous = 0;
    if (!VirtualProtect(first + m_readableSize, m_pageSize, PAGE_NOACCESS, &previous)) {
        VirtualFree(pages, 0, MEM_RELEASE);
        return;
    }
    m_readable = first;
}

PageEnd::~PageEnd()
{
    if (m_readable)
        VirtualFree(m_readable, 0, MEM_RELEASE);
}

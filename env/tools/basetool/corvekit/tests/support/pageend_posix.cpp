#include "pageend.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

PageEnd::PageEnd()
{
    m_pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void *pages = mmap(nullptr, 2 * m_pageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                       -1, 0);
    if (pages == MAP_FAILED)
        return;
    char *first = static_cast<char *>(pages);
    if (mprotect(first + m_pageSize, m_pageSize, PROT_NONE) != 0) {
        munmap(pages, 2 * m_pageSize);
        return;
    }
    m_readable = first;
}

PageEnd::~PageEnd()
{
    if (m_readable)
        munmap(m_readable, 2 * m_pageSize);
}

const char *PageEnd::place(const std::string &name, std::size_t slack)
{
    char *copy = m_readable + m_pageSize - slack - name.size() - 1;
    std::memcpy(copy, name.c_str(), name.size() + 1);
    return copy;
}

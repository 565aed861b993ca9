#include "pageend.h"

#include <sys/mman.h>
#include <unistd.h>

PageEnd::PageEnd(std::size_t capacity)
{
    m_pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    m_readableSize = (capacity + m_pageSize - 1) / m_pageSize * m_pageSize;
    void *pages = mmap(nullptr, m_readableSize + m_pageSize, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        return;
    char *first = static_cast<char *>(pages);
    if (mprotect(first + m_readableSize, m_pageSize, PROT_NONE) != 0) {
        munmap(pages, m_readableSize + m_pageSize);
        return;
    }
    m_readable = first;
}

PageEnd::~PageEnd()
{
    if (m_readable)
        munmap(m_readable, m_readableSize + m_pageSize);
}

#include "pageend.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

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

const char *PageEnd::place(const std::string &name, std::size_t slack)
{
    if (!m_readable || name.size() + 1 + slack > m_readableSize)
        return nullptr;
    char *copy = m_readable + m_readableSize - slack - name.size() - 1;
    std::memcpy(copy, name.c_str(), name.size() + 1);
    return copy;
}

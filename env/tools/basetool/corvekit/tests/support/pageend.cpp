#include "pageend.h"

#include <cstring>

const char *PageEnd::place(const std::string &name, std::size_t slack)
{
    if (!m_readable || name.size() + 1 + slack > m_readableSize)
        return nullptr;
    char *copy = m_readable + m_readableSize - slack - name.size() - 1;
    std::memcpy(copy, name.c_str(), name.size() + 1);
    return copy;
}

#include "pageend.h"

#include <sys/mman.h>
#include <unistd.h>

char *readableEnd(std::size_t capacity)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t readable = (capacity + page - 1) / page * page;
    void *pages =
        mmap(nullptr, readable + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        return nullptr;
    char *end = static_cast<char *>(pages) + readable;
    return mprotect(end, page, PROT_NONE) == 0 ? end : nullptr;
}

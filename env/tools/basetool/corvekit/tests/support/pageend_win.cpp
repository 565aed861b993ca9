#include "pageend.h"

#include <windows.h>

char *readableEnd(std::size_t capacity)
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const std::size_t page = system.dwPageSize;
    const std::size_t readable = (capacity + page - 1) / page * page;
    void *pages = VirtualAlloc(nullptr, readable + page, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (!pages)
        return nullptr;
    char *end = static_cast<char *>(pages) + readable;
    DWORD previous = 0;
    return VirtualProtect(end, page, PAGE_NOACCESS, &previous) ? end : nullptr;
}

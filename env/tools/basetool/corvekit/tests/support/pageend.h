#ifndef CORVEKIT_TESTS_PAGEEND_H
#define CORVEKIT_TESTS_PAGEEND_H

#include <cstddef>
#include <cstring>
#include <string>

// The end of at least \a capacity readable bytes that a page which cannot be read follows, so
// that a read past a name copied against it faults; null if the platform refuses. The pages stay
// mapped for the life of the process.
char *readableEnd(std::size_t capacity);

// Copies \a name with its zero byte so that \a slack bytes lie between it and \a end.
inline const char *placeBefore(char *end, const std::string &name, std::size_t slack = 0)
{
    char *copy = end - slack - name.size() - 1;
    std::memcpy(copy, name.c_str(), name.size() + 1);
    return copy;
}

#endif

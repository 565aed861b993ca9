#ifndef CORVEKIT_TESTS_PAGEEND_H
#define CORVEKIT_TESTS_PAGEEND_H

#include <cstddef>
#include <string>

/*!
 * Readable pages followed by one that cannot be read, to put names right before the boundary:
 * a scan that reads across it faults. One name at a time.
 */
class PageEnd
{
public:
    // Room for names of up to \a capacity bytes with their zero byte.
    explicit PageEnd(std::size_t capacity = 4096);
    ~PageEnd();
    PageEnd(const PageEnd &) = delete;
    PageEnd &operator=(const PageEnd &) = delete;

    bool isValid() const { return m_readable != nullptr; }

    /*!
     * Copies \a name with its zero byte so that \a slack bytes of the page follow the zero byte
     * (0: the zero byte is the last readable byte). Returns the copy, or null if it does not
     * fit.
     */
    const char *place(const std::string &name, std::size_t slack = 0);

private:
    char *m_readable = nullptr;
    std::size_t m_readableSize = 0;
    std::size_t m_pageSize = 0;
};

#endif

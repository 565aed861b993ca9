#ifndef CORVEKIT_BYTESCAN_P_H
#define CORVEKIT_BYTESCAN_P_H

// Scans over zero-terminated names one byte at a time, for processors without a block scan of
// their own. They read no byte past the zero byte of a name.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace bytescan {

namespace detail {

inline bool isDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

} // namespace detail

// The first index at which \a a and \a b differ or both end.
inline std::size_t commonPrefix(const char *a, const char *b)
{
    std::size_t i = 0;
    while (a[i] == b[i] && a[i] != 0)
        ++i;
    return i;
}

// The number of bytes before the first digit of \a name, or its length if it has none.
inline std::size_t letterLength(const char *name)
{
    std::size_t i = 0;
    while (name[i] != 0 && !detail::isDigit(name[i]))
        ++i;
    return i;
}

// The length of \a name, as strlen gives it.
inline std::size_t length(const char *name)
{
    return std::strlen(name);
}

// The first index below \a count at which \a a and \a b differ, or \a count.
inline std::size_t mismatch(const char *a, const char *b, std::size_t count)
{
    std::size_t i = 0;
    while (i < count && a[i] == b[i])
        ++i;
    return i;
}

/*!
 * A name of at most fifteen bytes, copied. Its flags have bit k for byte k, and only bytes of the
 * name are flagged: \a end flags its zero byte alone.
 */
struct ShortName
{
    char bytes[16];
    unsigned end;
    unsigned digits;
};

// Reads \a name into \a out if it has at most fifteen bytes.
inline bool readShort(const char *name, ShortName &out)
{
    out.digits = 0;
    for (unsigned k = 0; k < 16; ++k) {
        out.bytes[k] = name[k];
        if (name[k] == 0) {
            out.end = 1u << k;
            for (++k; k < 16; ++k)
                out.bytes[k] = 0;
            return true;
        }
        if (detail::isDigit(name[k]))
            out.digits |= 1u << k;
    }
    return false;
}

// Reads \a name into \a out if it has at most fifteen bytes (digit flags included).
inline bool readShortBytes(const char *name, ShortName &out)
{
    return readShort(name, out);
}

// Flags of the places where two short names hold the same byte (valid up to the end of each).
inline unsigned equalFlags(const ShortName &a, const ShortName &b)
{
    unsigned flags = 0;
    for (unsigned k = 0; k < 16; ++k)
        flags |= unsigned(a.bytes[k] == b.bytes[k]) << k;
    return flags;
}

// The first eight bytes of a short name, the first in the lowest byte of the word.
inline std::uint64_t firstWord(const ShortName &name)
{
    std::uint64_t word = 0;
    for (unsigned k = 0; k < 8; ++k)
        word |= std::uint64_t(static_cast<unsigned char>(name.bytes[k])) << (8 * k);
    return word;
}

// The value of the run of \a count digits (1 to 9) at \a at in the short name \a name.
inline std::uint32_t shortRunValue(const char *name, unsigned at, unsigned count)
{
    std::uint32_t value = 0;
    for (unsigned k = 0; k < count; ++k)
        value = value * 10 + static_cast<std::uint32_t>(name[at + k] - '0');
    return value;
}

} // namespace bytescan

#endif

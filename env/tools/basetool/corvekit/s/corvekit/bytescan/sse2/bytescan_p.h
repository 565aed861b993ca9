#ifndef CORVEKIT_BYTESCAN_P_H
#define CORVEKIT_BYTESCAN_P_H

// Scans over zero-terminated names sixteen bytes at a time, with SSE2 (part of every x86-64).
//
// A block load may reach past the zero byte of a name (or, in a scan of one name, before its
// first byte), but never into another page: a scan of one name loads aligned blocks, and a scan
// of two counts how many whole blocks fit before the nearer page end of the two and steps over a
// page boundary one byte at a time. Such a load cannot fault, and the bytes outside the name
// never decide, since every scan stops at the zero byte and drops the flags before the start.
// AddressSanitizer is told not to check these loads; Valgrind's memcheck may report them as reads
// past a block.

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// The loads of a block that may reach outside a name.
#define CORVEKIT_BYTESCAN_UNCHECKED __attribute__((no_sanitize_address))

namespace bytescan {

namespace detail {

constexpr std::size_t blockSize = 16;
constexpr std::uintptr_t pageSize = 4096;

CORVEKIT_BYTESCAN_UNCHECKED inline __m128i load(const char *at)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}

// An aligned block may start before the name it is loaded for: its address is an integer.
CORVEKIT_BYTESCAN_UNCHECKED inline __m128i loadAligned(std::uintptr_t at)
{
    return _mm_load_si128(
        reinterpret_cast<const __m128i *>(at)); // NOLINT(performance-no-int-to-ptr)
}

// Byte flags: 0xFF where the condition holds.
inline __m128i zeros(__m128i block)
{
    return _mm_cmpeq_epi8(block, _mm_setzero_si128());
}

inline __m128i digits(__m128i block)
{
    const __m128i offset = _mm_sub_epi8(block, _mm_set1_epi8('0')); // digits become 0 to 9
    return _mm_cmpeq_epi8(_mm_min_epu8(offset, _mm_set1_epi8(9)), offset);
}

inline __m128i differences(__m128i x, __m128i y)
{
    return _mm_xor_si128(_mm_cmpeq_epi8(x, y), _mm_set1_epi8(-1));
}

inline unsigned flagBits(__m128i flags)
{
    return static_cast<unsigned>(_mm_movemask_epi8(flags));
}

/*!
 * The first index at which \a stopBlock flags a byte of \a a's and \a b's blocks, or, where
 * sixteen bytes would reach into the next page of either, \a stopByte accepts their bytes. One of
 * them must stop the scan at the latest where a name ends.
 */
template<typename StopBlock, typename StopByte>
CORVEKIT_BYTESCAN_UNCHECKED inline std::size_t scanPair(const char *a, const char *b,
                                                        StopBlock stopBlock, StopByte stopByte)
{
    std::size_t i = 0;
    for (;;) {
        const std::uintptr_t offsetA = reinterpret_cast<std::uintptr_t>(a + i) & (pageSize - 1);
        const std::uintptr_t offsetB = reinterpret_cast<std::uintptr_t>(b + i) & (pageSize - 1);
        std::size_t blocks = (pageSize - (offsetA > offsetB ? offsetA : offsetB)) / blockSize;
        if (blocks == 0) {
            if (stopByte(a[i], b[i]))
                return i;
            ++i;
            continue;
        }
        do {
            if (const unsigned flags = flagBits(stopBlock(load(a + i), load(b + i))))
                return i + static_cast<unsigned>(__builtin_ctz(flags));
            i += blockSize;
        } while (--blocks > 0);
    }
}

/*!
 * The first index at which \a stopBlock flags a byte of \a name. Blocks are loaded from
 * addresses that are multiples of their size, which never straddle a page; the first one starts
 * up to fifteen bytes before the name, and its flags for those bytes are dropped.
 */
template<typename StopBlock>
CORVEKIT_BYTESCAN_UNCHECKED inline std::size_t scan(const char *name, StopBlock stopBlock)
{
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(name);
    const unsigned skipped = static_cast<unsigned>(start & (blockSize - 1));
    std::uintptr_t block = start - skipped;
    unsigned flags = flagBits(stopBlock(loadAligned(block))) >> skipped;
    if (flags)
        return static_cast<unsigned>(__builtin_ctz(flags));
    for (;;) {
        block += blockSize;
        flags = flagBits(stopBlock(loadAligned(block)));
        if (flags)
            return block - start + static_cast<unsigned>(__builtin_ctz(flags));
    }
}

} // namespace detail

// The first index at which \a a and \a b differ or both end.
inline std::size_t commonPrefix(const char *a, const char *b)
{
    using namespace detail;
    return scanPair(
        a, b,
        // Equal bytes keep their value, different ones become zero: a zero flags either.
        [](__m128i x, __m128i y) { return zeros(_mm_min_epu8(x, _mm_cmpeq_epi8(x, y))); },
        [](char x, char y) { return x != y || x == 0; });
}

// The number of bytes before the first digit of \a name, or its length if it has none.
inline std::size_t letterLength(const char *name)
{
    using namespace detail;
    return scan(name, [](__m128i x) { return _mm_or_si128(zeros(x), digits(x)); });
}

/*!
 * The length of \a name, as strlen gives it. The first aligned block is looked at here, which is
 * all that a short name needs; a longer one goes on with the C library's strlen, which uses the
 * widest vectors that the processor has.
 */
CORVEKIT_BYTESCAN_UNCHECKED inline std::size_t length(const char *name)
{
    using namespace detail;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(name);
    const unsigned skipped = static_cast<unsigned>(start & (blockSize - 1));
    const unsigned flags = flagBits(zeros(loadAligned(start - skipped))) >> skipped;
    if (flags)
        return static_cast<unsigned>(__builtin_ctz(flags));
    const std::size_t checked = blockSize - skipped;
    return checked + std::strlen(name + checked);
}

/*!
 * The first index below \a count at which \a a and \a b differ, or \a count. Reads the first
 * \a count bytes of each, and below sixteen the rest of a block that lies in the same page.
 */
CORVEKIT_BYTESCAN_UNCHECKED inline std::size_t mismatch(const char *a, const char *b,
                                                        std::size_t count)
{
    using namespace detail;
    if (count < blockSize) {
        // Short names: one block each where it lies in one page, the flags past count dropped.
        const std::uintptr_t offsetA = reinterpret_cast<std::uintptr_t>(a) & (pageSize - 1);
        const std::uintptr_t offsetB = reinterpret_cast<std::uintptr_t>(b) & (pageSize - 1);
        if ((offsetA > offsetB ? offsetA : offsetB) <= pageSize - blockSize) {
            const unsigned flags = flagBits(differences(load(a), load(b))) | (~0u << count);
            return static_cast<unsigned>(__builtin_ctz(flags));
        }
    }
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        if (const unsigned flags = flagBits(differences(load(a + i), load(b + i))))
            return i + static_cast<unsigned>(__builtin_ctz(flags));
    }
    if (count >= blockSize) {
        // The last block, overlapping the one before: its equal part was compared already.
        i = count - blockSize;
        const unsigned flags = flagBits(differences(load(a + i), load(b + i)));
        return flags ? i + static_cast<unsigned>(__builtin_ctz(flags)) : count;
    }
    while (i < count && a[i] == b[i])
        ++i;
    return i;
}

/*!
 * A name of at most fifteen bytes, read as one block. Its flags have bit k for byte k, and only
 * bytes of the name are flagged: \a end flags its zero byte alone. \a digits is left unset by
 * readShortBytes.
 */
struct ShortName
{
    __m128i bytes;
    unsigned end;
    unsigned digits;
};

/*!
 * Reads \a name into \a out if its sixteen bytes lie in one page and hold its end, all but the
 * digit flags.
 */
CORVEKIT_BYTESCAN_UNCHECKED inline bool readShortBytes(const char *name, ShortName &out)
{
    using namespace detail;
    if ((reinterpret_cast<std::uintptr_t>(name) & (pageSize - 1)) > pageSize - blockSize)
        return false;
    out.bytes = load(name);
    const unsigned zeroFlags = flagBits(zeros(out.bytes));
    out.end = zeroFlags & (0u - zeroFlags);
    return zeroFlags != 0;
}

// Reads \a name into \a out if its sixteen bytes lie in one page and hold its end.
inline bool readShort(const char *name, ShortName &out)
{
    using namespace detail;
    if (!readShortBytes(name, out))
        return false;
    out.digits = flagBits(digits(out.bytes)) & (out.end - 1);
    return true;
}

// Flags of the places where two short names hold the same byte (valid up to the end of each).
inline unsigned equalFlags(const ShortName &a, const ShortName &b)
{
    using namespace detail;
    return flagBits(_mm_cmpeq_epi8(a.bytes, b.bytes));
}

// The first eight bytes of a short name, the first in the lowest byte of the word.
inline std::uint64_t firstWord(const ShortName &name)
{
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(name.bytes));
}

/*!
 * The value of the run of \a count digits (1 to 9) at \a at in the short name \a name. Up to
 * eight digits are read as one word, with no branch on their number.
 */
CORVEKIT_BYTESCAN_UNCHECKED inline std::uint32_t shortRunValue(const char *name, unsigned at,
                                                               unsigned count)
{
    // The bytes from the run to the end of the word lie in the name's block, which is readable.
    if (count <= 4 && at <= 12) {
        std::uint32_t word;
        __builtin_memcpy(&word, name + at, sizeof word);
        const std::uint32_t kept = ~std::uint32_t(0) >> (32 - 8 * count);
        // The digits' values, moved to the last of four places: "0012".
        std::uint32_t places = ((word & kept) - (0x30303030u & kept)) << (32 - 8 * count);
        places = places * 10 + (places >> 8); // pairs of digits
        return (places & 0xFF) * 100 + ((places >> 16) & 0xFF);
    }
    if (count <= 8 && at <= 8) {
        std::uint64_t word;
        __builtin_memcpy(&word, name + at, sizeof word);
        const std::uint64_t kept = ~std::uint64_t(0) >> (64 - 8 * count);
        std::uint64_t places = ((word & kept) - (0x3030303030303030ull & kept)) << (64 - 8 * count);
        places = places * 10 + (places >> 8);
        places = ((places & 0x000000FF000000FFull) * (100 + (1000000ull << 32)) +
                  ((places >> 16) & 0x000000FF000000FFull) * (1 + (10000ull << 32))) >>
                 32;
        return static_cast<std::uint32_t>(places);
    }
    std::uint32_t value = 0;
    for (unsigned k = 0; k < count; ++k)
        value = value * 10 + static_cast<std::uint32_t>(name[at + k] - '0');
    return value;
}

} // namespace bytescan

#endif

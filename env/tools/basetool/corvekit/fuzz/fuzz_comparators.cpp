// Compares the library's comparators and wildcard translation with the straightforward versions
// in tests/support on arbitrary input; any difference aborts with both names.
//
// Input: the first name, a zero byte, the second name; without a zero byte the input is split
// in half. A leading byte 0xFF repeats the first name into a long one, and puts it in front of
// the second, so that the length limit of compareNameNum and long digit runs are reached often.
#include <corvekit/basepublic.h>
#include <corvekit/baseqregularexpression.h>

#include "pageend.h"
#include "reference_comparators.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using Comparator = int (*)(const char *, const char *);

void compareAll(const char *a, const char *b)
{
    static const Comparator pairs[][2] = {{BasePublic::compareAlphaNum, reference::compareAlphaNum},
                                          {BasePublic::compareNameNum, reference::compareNameNum},
                                          {BasePublic::comparePinH, reference::comparePinH},
                                          {BasePublic::comparePinV, reference::comparePinV}};
    for (const auto &pair : pairs) {
        if (pair[0](a, b) != pair[1](a, b)) {
            std::fprintf(stderr, "comparator %d: library %d, reference %d\n  %s\n  %s\n",
                         int(&pair - pairs), pair[0](a, b), pair[1](a, b), a, b);
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string input(reinterpret_cast<const char *>(data), size);
    const bool repeat = !input.empty() && static_cast<unsigned char>(input[0]) == 0xFF;
    if (repeat)
        input.erase(0, 1);
    const std::size_t zero = input.find('\0');
    std::string a = input.substr(0, zero != std::string::npos ? zero : input.size() / 2);
    std::string b = input.substr(zero != std::string::npos ? zero + 1 : input.size() / 2);
    b = b.substr(0, b.find('\0'));
    if (repeat) {
        // Up to about 3000 bytes: either side of 682 bytes and of the 2046-byte limit.
        std::string longA;
        for (int i = 0; !a.empty() && i <= (a[0] & 0xFF) % 64 && longA.size() < 3000; ++i)
            longA += a;
        a = longA;
        b = longA + b;
    }
    // Also with both names right before a page that cannot be read.
    static char *const endA = readableEnd(16384);
    static char *const endB = readableEnd(16384);
    for (const auto &[x, y] : {std::make_pair(a, b), std::make_pair(b, a), std::make_pair(a, a)}) {
        compareAll(x.c_str(), y.c_str());
        if (endA && endB && x.size() < 16000 && y.size() < 16000)
            compareAll(placeBefore(endA, x), placeBefore(endB, y));
    }
    const QString pattern = QString::fromUtf8(input.data(), static_cast<qsizetype>(input.size()));
    const QString library = BaseQRegularExpression::wildcardToRegularExpression(pattern);
    const QString expected = reference::wildcardToRegularExpression(pattern);
    if (library != expected || library.isNull() != expected.isNull())
        std::abort();
    return 0;
}

// Compares the library's comparators and wildcard translation with the straightforward versions
// in tests/support on arbitrary input; any difference in a result aborts with both names.
//
// Input: the first name, a zero byte, the second name. Without a zero byte the input is split in
// half. A leading byte 0xFF asks for both names to be repeated into long names, so that the
// length limit of compareNameNum (2046 encoded bytes) and long digit runs are reached often.
#include <corvekit/basepublic.h>
#include <corvekit/baseqregularexpression.h>

#include "pageend.h"
#include "reference_comparators.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void printName(const char *label, const std::string &name)
{
    std::fprintf(stderr, "%s (%zu bytes):", label, name.size());
    for (const unsigned char c : name)
        std::fprintf(stderr, " %02x", c);
    std::fputc('\n', stderr);
}

void check(const char *what, int library, int expected, const std::string &a, const std::string &b)
{
    if (library == expected)
        return;
    std::fprintf(stderr, "%s: library %d, reference %d\n", what, library, expected);
    printName("first", a);
    printName("second", b);
    std::abort();
}

void compareAll(const std::string &a, const std::string &b, const char *x, const char *y)
{
    check("compareAlphaNum", BasePublic::compareAlphaNum(x, y), reference::compareAlphaNum(x, y), a,
          b);
    check("compareNameNum", BasePublic::compareNameNum(x, y), reference::compareNameNum(x, y), a,
          b);
    check("comparePinH", BasePublic::comparePinH(x, y), reference::comparePinH(x, y), a, b);
    check("comparePinV", BasePublic::comparePinV(x, y), reference::comparePinV(x, y), a, b);
}

void compareAll(const std::string &a, const std::string &b)
{
    compareAll(a, b, a.c_str(), b.c_str());
    // Again with both names ending right before a page that cannot be read, where a scan that
    // reads past a name's end faults.
    static PageEnd endA(16384);
    static PageEnd endB(16384);
    const char *x = endA.place(a);
    const char *y = endB.place(b);
    if (x && y)
        compareAll(a, b, x, y);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const char *bytes = reinterpret_cast<const char *>(data);
    std::string input(bytes, size);
    bool repeat = false;
    if (!input.empty() && static_cast<unsigned char>(input[0]) == 0xFF) {
        repeat = true;
        input.erase(0, 1);
    }
    std::string a;
    std::string b;
    const std::size_t zero = input.find('\0');
    if (zero != std::string::npos) {
        a = input.substr(0, zero);
        b = input.substr(zero + 1);
        b = b.substr(0, b.find('\0'));
    } else {
        a = input.substr(0, input.size() / 2);
        b = input.substr(input.size() / 2);
    }
    if (repeat) {
        // Repeats up to about 3000 bytes: either side of 682 bytes and of the 2046-byte limit.
        const std::size_t times = a.empty() ? 0 : (static_cast<unsigned char>(a[0]) % 64) + 1;
        std::string longA;
        for (std::size_t i = 0; i < times && longA.size() < 3000; ++i)
            longA += a;
        std::string longB = longA + b;
        a = longA;
        b = longB;
    }

    compareAll(a, b);
    compareAll(b, a);
    compareAll(a, a);

    const QString pattern = QString::fromUtf8(input.data(), static_cast<qsizetype>(input.size()));
    const QString library = BaseQRegularExpression::wildcardToRegularExpression(pattern);
    const QString expected = reference::wildcardToRegularExpression(pattern);
    if (library != expected || library.isNull() != expected.isNull()) {
        std::fprintf(stderr, "wildcardToRegularExpression differs\n");
        printName("pattern", input);
        std::abort();
    }
    return 0;
}

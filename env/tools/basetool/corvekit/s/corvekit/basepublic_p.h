#ifndef CORVEKIT_BASEPUBLIC_P_H
#define CORVEKIT_BASEPUBLIC_P_H

// Byte-level helpers shared by the name and pin comparators. Everything here is inline: the
// comparators sit in the inner loop of sorts over hundreds of thousands of names. Nothing here
// reads a byte past the zero byte of a name.

#include <cstddef>
#include <cstdlib>

namespace basepublic_p {

inline bool isDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

// x - y as two's complement int arithmetic gives it, without the undefined overflow.
inline int wrappingDifference(int x, int y)
{
    return static_cast<int>(static_cast<unsigned>(x) - static_cast<unsigned>(y));
}

// -1 or 1 from two bytes known to differ, compared unsigned.
inline int byteOrder(char x, char y)
{
    return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
}

/*!
 * atoi of a digit run. Nine digits cannot overflow an int, so shorter runs are
 * read here; longer ones go to the platform's atoi, whose answer beyond an int is its own.
 */
inline int longRunValue(const char *run)
{
    int value = 0;
    for (int k = 0; k < 9; ++k) {
        if (!isDigit(run[k]))
            return value;
        value = value * 10 + (run[k] - '0');
    }
    return isDigit(run[9]) ? std::atoi(run) : value;
}

/*!
 * atoi of the digit run at \a run, whose first byte is a digit. Pin numbers have one or two
 * digits in no order that a sort could predict, so their count is a select and not a branch.
 */
inline int numberAt(const char *run)
{
    const char second = run[1];
    const bool two = isDigit(second);
    if (two && isDigit(run[2]))
        return longRunValue(run);
    const int first = run[0] - '0';
    return two ? first * 10 + (second - '0') : first;
}

} // namespace basepublic_p

#endif

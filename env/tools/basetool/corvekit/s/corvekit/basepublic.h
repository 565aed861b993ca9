#ifndef CORVEKIT_BASEPUBLIC_H
#define CORVEKIT_BASEPUBLIC_H

#include "corvekit_export.h"

/*!
 * Comparators that order net names and package pins with the digits in a name read as numbers,
 * so that A9 comes before A10.
 *
 * All four work on zero-terminated byte strings: bytes compare as unsigned 8-bit values, a digit
 * is one of the ASCII bytes '0' to '9', and every other byte (0x80 and above included) is a
 * non-digit. There is no locale and no case folding. None allocates memory on its normal path or
 * touches shared state, so any number of threads may call them at once.
 *
 * No byte is read before the first byte of a name or past its zero byte, so callers stay clean
 * under AddressSanitizer and Valgrind's memcheck.
 *
 * A negative result puts the first name before the second, a positive one after it. Callers rely
 * on the sign alone.
 *
 * Sorting: not every one of these is a strict weak ordering for every input (each function says
 * what holds). std::sort with a comparator that is not one is undefined behaviour, and in
 * practice can read outside the range being sorted. Sort with std::stable_sort (a merge sort,
 * which never leaves its range whatever the comparator answers), or make sure the input lies in
 * the domain where the order is strict weak.
 */
class CORVEKIT_EXPORT BasePublic
{
public:
    // There is no state to copy; both assignments return the object assigned to.
    BasePublic &operator=(const BasePublic &);
    BasePublic &operator=(BasePublic &&) noexcept;

    /*!
     * Natural order: walks both names with one index while it is below both lengths. Equal
     * non-digits go on; two digits (equal or not) read a number from each name at that position
     * with atoi, and differing numbers give the first minus the second, while equal ones go on by
     * one byte (not behind the run, so a012 against a12 gives 10); any other difference gives
     * -1 or 1 from the first differing byte of the whole names. A walk that ends gives the first
     * length minus the second.
     *
     * The result is a difference, not only -1, 0 or 1. \a a and \a b must not be null. Names
     * must be shorter than 2^31 bytes.
     *
     * Order properties:
     * - Where every digit run fits an int (below 2^31 after its leading zeros), swapping the
     *   names flips the sign and zero means identical names; on such names no intransitive
     *   triple is known (all names of up to five bytes over small alphabets of digits, letters
     *   and separators were checked exhaustively), but that is not proved.
     * - A run that does not fit takes the value that the platform's atoi gives (with glibc, the
     *   value modulo 2^32 up to 2^63 - 1, and -1 beyond), and the difference of
     *   two such values is taken modulo 2^32, as two's complement int arithmetic does: its sign
     *   can then be wrong, and the order is not transitive (A2147483648 < A0 < A1073741825 <
     *   A2147483648). std::sort on such names is undefined behaviour; std::stable_sort is safe.
     */
    static int compareAlphaNum(const char *a, const char *b);

    /*!
     * Name-number order: each digit run of a name counts as one token, its digit count (modulo
     * 256) then its value (modulo 2^32, four bytes, most significant first), and the tokens
     * compare as unsigned bytes. So a shorter run comes first whatever its value (A10 before
     * A007), runs of equal count compare by value, and a run of fewer than 32 digits comes before
     * every printable character.
     *
     * Returns exactly -1, 0 or 1:
     * - -1 if \a a is null or empty (whatever \a b is, even null or empty), else 1 if \a b is;
     * - 0, with the trace line "Buffer overflow, name string <name> is too long (any interger is
     *   considered 5 bytes)" under the tag "BasePublic::NameNumCompare" (see diagTrace), if the
     *   encoding of \a a, and after it of \a b, is longer than 2046 bytes; only the first
     *   overlong name is reported. A name of at most 682 bytes never is;
     * - else the byte comparison of the two encodings over the shorter length plus its closing
     *   zero; where all those bytes are equal, 1 if \a b's encoding is the longer, -1 if \a a's
     *   is, 0 if they have the same length.
     *
     * Order properties: a strict weak ordering on non-empty names whose encodings fit (names
     * equal in their encodings, such as A4294967296 and A0000000000, are equivalent). It is not
     * one where an empty or null name takes part (such a name is ordered before itself) nor
     * where a name is too long (it is "equal" to every name). Both names are read to their end
     * before any result but the null-or-empty ones, since the length limit comes first.
     */
    static int compareNameNum(const char *a, const char *b);

    /*!
     * Pin order, row by row: by the letter part (everything before the first digit), shorter
     * first and then by bytes, then by the first number. A pin without a number comes after one
     * with a number; two pins without numbers compare by bytes. Only the first number counts:
     * A1B and A1C are equal.
     *
     * The result is a difference, not only -1, 0 or 1: the first number minus the second where
     * the numbers decide, the difference of the letter-part lengths where those decide, and
     * strncmp's result (only its sign is meaningful) between letter parts of equal length.
     * \a a and \a b must not be null.
     *
     * Order properties: a strict weak ordering where every first number fits an int. A number
     * that does not fit takes the platform's atoi value and the difference is taken modulo 2^32,
     * so its sign can be wrong and the order is not transitive: sort such pins with
     * std::stable_sort.
     */
    static int comparePinH(const char *a, const char *b);

    /*!
     * Pin order, column by column: by the first number (0 for a pin without a number), then by
     * the letter part, shorter first and then by bytes. Returns exactly -1, 0 or 1. \a a and
     * \a b must not be null.
     *
     * Order properties: a strict weak ordering for every input. Numbers compare by their exact
     * sign, also where a run does not fit an int and takes the platform's atoi value.
     */
    static int comparePinV(const char *a, const char *b);
};

#endif

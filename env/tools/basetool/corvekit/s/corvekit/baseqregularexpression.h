#ifndef CORVEKIT_BASEQREGULAREXPRESSION_H
#define CORVEKIT_BASEQREGULAREXPRESSION_H

#include "corvekit_export.h"

#include <QString>

/*!
 * Translates the wildcard patterns that users type into name filters into regular expression
 * text. Only text is produced: no QRegularExpression is built here.
 */
class CORVEKIT_EXPORT BaseQRegularExpression
{
public:
    // There is no state to copy; both assignments return the object assigned to.
    BaseQRegularExpression &operator=(const BaseQRegularExpression &);
    BaseQRegularExpression &operator=(BaseQRegularExpression &&) noexcept;

    /*!
     * Each UTF-16 unit of \a pattern on its own: '*' becomes ".*", '?' becomes ".", each of
     * $ ( ) + . [ \ ] ^ { | } gets a backslash in front, and everything else (a hyphen, a slash,
     * a space, units outside ASCII, both halves of a surrogate pair) is copied.
     *
     * No anchors are added, so the expression matches anywhere in a subject unless the caller
     * anchors it (QRegularExpression::anchoredPattern). Brackets are literal, a backslash in the
     * pattern escapes nothing, and path separators are ordinary characters.
     *
     * A null or empty pattern gives a null QString (isNull() is true), not an empty one.
     */
    static QString wildcardToRegularExpression(const QString &pattern);
};

#endif

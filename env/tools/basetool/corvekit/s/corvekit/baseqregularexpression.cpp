#include "baseqregularexpression.h"

BaseQRegularExpression &BaseQRegularExpression::operator=(const BaseQRegularExpression &)
{
    return *this;
}

BaseQRegularExpression &BaseQRegularExpression::operator=(BaseQRegularExpression &&) noexcept
{
    return *this;
}

QString BaseQRegularExpression::wildcardToRegularExpression(const QString &pattern)
{
    QString expression; // stays null for an empty pattern
    if (pattern.isEmpty())
        return expression;
    expression.reserve(pattern.size() * 2);
    for (const QChar unit : pattern) {
        switch (unit.unicode()) {
        case u'*':
            expression += QLatin1String(".*");
            break;
        case u'?':
            expression += QLatin1Char('.');
            break;
        case u'$':
        case u'(':
        case u')':
        case u'+':
        case u'.':
        case u'[':
        case u'\\':
        case u']':
        case u'^':
        case u'{':
        case u'|':
        case u'}':
            expression += QLatin1Char('\\');
            expression += unit;
            break;
        default:
            expression += unit;
            break;
        }
    }
    return expression;
}

#ifndef CORVEKIT_HELPINDEXREADER_P_H
#define CORVEKIT_HELPINDEXREADER_P_H

#include <QAnyStringView>
#include <QLatin1String>
#include <QStringView>
#include <QUtf8StringView>
#include <QXmlStreamEntityDeclarations>

class QIODevice;
class QXmlStreamReader;

namespace corvekit::detail {

// An element or attribute name of the format against one of the class's constants.
inline bool isNamed(QStringView name, const char *xmlName)
{
    return name == QLatin1String(xmlName);
}

// A name from the file against a caller's name in UTF-8, without building a QString. A null
// pointer reads as the empty name.
inline bool sameName(QStringView name, const char *wanted)
{
    return QAnyStringView::equal(name, QUtf8StringView(wanted));
}

/*!
 * The reader's entity ceiling is the longest replacement text it has measured, with this bit set
 * while a pass that broke off may have left declarations behind that nobody measured. Measured
 * lengths never exceed the stream reader's expansion limit, far below the bit.
 */
constexpr qint64 unmeasuredEntities = qint64(1) << 40;

//! The longest replacement text to assume for a reference: the limit while any is unmeasured.
constexpr qint64 effectiveCeiling(qint64 ceiling, qint64 expansionLimit)
{
    return (ceiling & unmeasuredEntities) != 0 ? expansionLimit : ceiling;
}

/*!
 * The most characters that one reference to any of \a declarations can expand to. An entity
 * whose value refers to further entities is counted at \a expansionLimit, the stream reader's
 * cap on any one expansion. External entities are never expanded and count nothing.
 *
 * Only declarations whose text lies inside \a dtd, the DTD token's own text, are read. The
 * stream reader of Qt 6.4 keeps the declarations of a DTD that broke off in an earlier document
 * and hands them out again with the next DTD, pointing at text that is gone; their characters
 * are never touched, and the caller assumes the worst for them.
 */
qint64 longestReplacement(const QXmlStreamEntityDeclarations &declarations, QStringView dtd,
                          qint64 expansionLimit);

/*!
 * How many references to declared entities the bytes of \a device can hold, counted from its
 * start without decoding: every "&" that does not open a character reference or one of the five
 * predefined entities. An over-count, never an under-count, in any ASCII-compatible encoding;
 * in UTF-16 every "&" counts. The device's position is restored. -1 if it cannot be re-read.
 */
qint64 countEntityReferences(QIODevice *device);

/*!
 * The longest replacement text among the declarations that a broken DTD left in \a reader,
 * which must have been cleared. A DTD of its own makes the stream reader hand them out: none
 * left means 0, and any left counts at the expansion limit, since its text is gone. The reader
 * is at the end of that small document afterwards, to be cleared again.
 */
qint64 leftOverReplacement(QXmlStreamReader &reader);

} // namespace corvekit::detail

#endif

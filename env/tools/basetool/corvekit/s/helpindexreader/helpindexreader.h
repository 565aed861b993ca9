#ifndef CORVEKIT_HELPINDEXREADER_H
#define CORVEKIT_HELPINDEXREADER_H

#include "corvekit_export.h"

#include <QMap>
#include <QString>
#include <QXmlStreamReader>

/*!
 * Answers what a help index says about a tool, a view or a dialog.
 *
 * A help index is an XML file: a "helpIndex" document element with version "1.0", holding
 * "tool" elements; a tool holds "view", "dialog", "whatsthis", "tooltip" and "description"
 * elements, a dialog holds "text", "whatsthis", "tooltip" and "description". The reader pulls
 * the file with QXmlStreamReader and builds no tree: one pass stores only what belongs to the
 * one tool or dialog it seeks and stops as soon as that is complete.
 *
 * What the latest pass stored stays in the object as a cache of one entry: a query about the same
 * tool at the same level, or about the same dialog, is answered without touching the device. Any
 * other query wipes the entry, rewinds the device and parses it again from its start.
 *
 * Usage: construct, setDevice() with a device open for reading that allows QIODevice::reset(),
 * then query. The device belongs to the caller and must outlive the queries. A query that has no
 * answer returns a null QString (isMyHelpIdx() and dump() false); error() and errorString() of
 * the base then tell why, until the next pass. An answer is never null: an element found without
 * the attribute or text asked for answers with an empty, not null, QString.
 *
 * Without a device, or with one that is not open for reading (never opened, closed, write-only,
 * append-only), the first query fails with PrematureEndOfDocumentError, as on an empty file, and
 * every later query fails on it at once, until setDevice() or until the device is open for
 * reading. The reader never rewinds such a device.
 *
 * Hostile input ends a pass in an error state, never in a crash, a hang or unbounded memory:
 * - Elements are skipped with a depth counter, so the machine stack does not grow with the
 *   nesting of the file.
 * - A second DTD, or a DTD after the document element has started, ends the pass with a custom
 *   error: XML allows one DTD, before the document element, and the stream reader of Qt 6.4 can
 *   loop on files that declare entities again in the body.
 * - The characters that entity references may add to one document are bounded by
 *   entityExpansionBudget(). The stream reader expands an internal entity in place, so a file of
 *   300 KB that references a 4,000-character entity 100,000 times in one text would make a
 *   single token of 400 million characters, and every pass would build it again. At the DTD the
 *   reader counts the references that the file can hold (from its bytes, without decoding) and
 *   multiplies by the longest replacement text; above the budget the pass ends with a custom
 *   error before anything is expanded. Predefined entities and character references add nothing
 *   and are not counted. The budget cannot reject a real index: it grows with the file, and a
 *   real index uses entities, if at all, for short texts such as a product name (some tens of
 *   characters for a reference of at least three bytes) in some of its texts; to reach the
 *   budget it would have to gain more than four times its own size through them. The suite's
 *   indexes declare no entities at all. On a device that cannot be read twice the references
 *   cannot be counted, and a replacement text over 64 characters ends the pass.
 * - Qt 6.4's stream reader keeps the entities of every document it has read, across clear()
 *   and setDevice(): a reference in a later document to an entity that only an earlier one
 *   declared still expands. The budget counts those too, so that a reader that once met a
 *   hostile DTD stays bounded on every file it reads afterwards. A pass that broke off may have
 *   left declarations of a DTD that was never seen whole; before the next pass rewinds, the
 *   reader asks the stream reader for them, and any that are left count at its limit of one
 *   expansion (entityExpansionLimit()). A pass that broke off without a DTD changes nothing.
 *
 * A pass builds no text for elements it does not store. When such an element holds a child
 * element, the pass must still fail with readElementText()'s UnexpectedElementError, which only
 * the stream reader can raise: the reader then parses the device once more up to that element
 * and lets readElementText() fail there, at the same line and column. On a device that cannot go
 * back the error is a CustomError with the same text.
 *
 * One object and its device serve one thread at a time.
 */
class CORVEKIT_EXPORT HelpIndexReader : public QXmlStreamReader
{
public:
    HelpIndexReader();
    ~HelpIndexReader();

    HelpIndexReader(const HelpIndexReader &) = delete;
    HelpIndexReader &operator=(const HelpIndexReader &) = delete;

    //! True if the file holds a "tool" called \a toolName and the pass met no error before it.
    bool isMyHelpIdx(const char *toolName);
    /*!
     * Walks the file from where the stream stands and stores nothing; true if no error was met.
     * On a reader that has just had its device installed this validates the whole file; after a
     * query it reads nothing and repeats the verdict that error() holds.
     */
    bool dump();

    QString getToolHelp(const char *toolName);
    QString getViewHelp(const char *toolName, const char *viewName);
    QString getDlgHelp(const char *toolName, const char *dialogName);
    QString getDlgText(const char *toolName, const char *dialogName);

    /*!
     * With \a item null, the item called \a dialogOrItem of the tool; otherwise the item \a item
     * of the dialog \a dialogOrItem. Only a null pointer selects the tool level.
     */
    QString getWhatsThisText(const char *toolName, const char *dialogOrItem,
                             const char *item = nullptr);
    QString getToolTipText(const char *toolName, const char *dialogOrItem,
                           const char *item = nullptr);
    QString getDescription(const char *toolName, const char *dialogOrItem,
                           const char *item = nullptr);
    //! The "href" under that name; at tool level a "view" of that name answers too.
    QString getDescriptionUrl(const char *toolName, const char *dialogOrItem,
                              const char *item = nullptr);

    /*!
     * The most characters that entity references may add to a document of \a fileSize bytes
     * before a pass ends in an error: 1 Mi characters and four more for each byte of the file.
     */
    static constexpr qint64 entityExpansionBudget(qint64 fileSize)
    {
        return (qint64(1) << 20) + 4 * fileSize;
    }

private:
    enum MatchType : int
    {
        MatchNone = 0,       //!< walks to the end of the document, stores nothing
        MatchToolName = 1,   //!< stops on the start tag of the first tool of the name
        MatchToolHelp = 2,   //!< stores the first tool of the name, up to its end tag
        MatchDialogHelp = 3, //!< stores the first dialog of the name in a tool of the name
    };

    // --- One pass ----------------------------------------------------------------------------
    void read(MatchType matchType, const char *toolName, const char *dialogName);
    void readHelpIdx(MatchType matchType, const char *toolName, const char *dialogName);
    void readTool(MatchType matchType, const char *toolName, const char *dialogName);
    void readDialog(MatchType matchType, const char *dialogName);
    void readView(QString &name, QString &href);
    void readWhatsThis(QString &name, QString &text);
    void readTooltip(QString &name, QString &text);
    void readDescrption(QString &name, QString &href, QString &text);
    QString readText();
    void readUnknownElement();

    // Steps of a pass that keep hostile input bounded; see the class comment.
    void raiseMisplacedDtd();
    qint64 declaredReplacement();
    void checkEntityExpansion(qint64 longest);
    void skipCharacterData();
    void failAsElementText(qint64 startOffset);

    // --- The cache entry ---------------------------------------------------------------------
    bool holdsToolLevel(const char *toolName) const;
    bool holdsDialogLevel(const char *toolName, const char *dialogName) const;
    bool reachToolLevel(const char *toolName);
    bool reachDialogLevel(const char *toolName, const char *dialogName);
    QString itemFrom(const QMap<QString, QString> &map, const char *toolName,
                     const char *dialogOrItem, const char *item);
    void clean();
    void reset();

    MatchType m_matchType;
    QString m_toolName;
    QString m_dialogName;
    bool m_found;
    QString m_helpUrl;
    QString m_dialogText;
    QMap<QString, QString> m_urlMap; // "view" and "description" alike
    QMap<QString, QString> m_whatsThisMap;
    QMap<QString, QString> m_toolTipMap;
    QMap<QString, QString> m_descriptionMap;

    // The longest replacement text that an entity known to the base may have. The stream reader
    // of Qt 6.4 keeps every entity it was ever given, across clear() and setDevice(), so entities
    // of an earlier document expand in later ones; each pass checks its file against this. A
    // high bit marks declarations a broken pass may have left unmeasured (see the private header).
    qint64 m_entityCeiling;

    static const char *const m_helpIdxXmlName;
    static const char *const m_toolXmlName;
    static const char *const m_viewXmlName;
    static const char *const m_dialogXmlName;
    static const char *const m_textXmlName;
    static const char *const m_whatsThisXmlName;
    static const char *const m_tooltipXmlName;
    static const char *const m_despXmlName;
    static const char *const m_hrefXmlName;
    static const char *const m_nameXmlName;
    static const char *const m_versionXmlName;
};

#endif

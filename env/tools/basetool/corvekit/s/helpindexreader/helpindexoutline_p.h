#ifndef CORVEKIT_HELPINDEXOUTLINE_P_H
#define CORVEKIT_HELPINDEXOUTLINE_P_H

// What a help index holds, for the tool built beside the library: its tools with their views
// and dialogs, in the order of the file. Not installed; no promise of stability.

#include "corvekit_export.h"

#include <QList>
#include <QString>

class QIODevice;

namespace corvekit_private {

struct HelpIndexEntry
{
    QString name; // "name" of the element, empty when absent
    QString href; // "href" of the element, empty when absent
};

struct HelpIndexTool
{
    HelpIndexEntry tool;
    QList<HelpIndexEntry> views;
    QList<HelpIndexEntry> dialogs;
};

/*!
 * The tools of the help index on \a device, read from its start with the reader's element rules:
 * "tool" directly in the document element, "view" and "dialog" directly in a "tool", everything
 * else skipped with all it holds. Every "tool" counts, also a second one of the same name.
 * Returns false when the device cannot be rewound or the XML breaks off.
 *
 * The walk checks neither the document element nor entity expansion: call it only on a device
 * whose file HelpIndexReader::dump() has accepted.
 */
CORVEKIT_EXPORT bool helpIndexOutline(QIODevice *device, QList<HelpIndexTool> &tools);

} // namespace corvekit_private

#endif

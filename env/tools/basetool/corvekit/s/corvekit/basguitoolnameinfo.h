#ifndef CORVEKIT_BASGUITOOLNAMEINFO_H
#define CORVEKIT_BASGUITOOLNAMEINFO_H

#include "corvekit_export.h"

#include <QMap>
#include <QString>

/*!
 * The process-wide table between a tool's id and the name the user sees for it. It starts empty,
 * holds what tools add for as long as the process runs, and never reaches a file.
 *
 * Ids and display names are compared exactly (case-sensitive, by UTF-16 code unit), and a null
 * text equals an empty one. There is no lock: a process that uses the table from several
 * threads orders the calls itself.
 */
class CORVEKIT_EXPORT BasGUIToolNameInfo
{
public:
    BasGUIToolNameInfo() = default;
    BasGUIToolNameInfo(const BasGUIToolNameInfo &) = default;
    // There is no state to copy; both assignments return the object assigned to.
    BasGUIToolNameInfo &operator=(const BasGUIToolNameInfo &);
    BasGUIToolNameInfo &operator=(BasGUIToolNameInfo &&) noexcept;

    //! Enters the pair; an id that is there already gets the new name. Nothing is refused.
    static void addTool(QString toolId, QString displayName);
    //! The display name of \a toolId, or a null text.
    static QString getToolDisplayName(QString toolId);
    //! The smallest id (in the table's order) with \a displayName, or a null text.
    static QString getToolID(QString displayName);
    //! Writes "id = display name" to the debug log for each entry, in id order.
    static void dumpInfo();

private:
    static QMap<QString, QString> m_id2DisplayNameMap;
};

#endif

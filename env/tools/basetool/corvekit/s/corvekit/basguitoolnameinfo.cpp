#include "basguitoolnameinfo.h"

#include <QMapIterator>
#include <QMessageLogger>

QMap<QString, QString> BasGUIToolNameInfo::m_id2DisplayNameMap;

BasGUIToolNameInfo &BasGUIToolNameInfo::operator=(const BasGUIToolNameInfo &)
{
    return *this;
}

BasGUIToolNameInfo &BasGUIToolNameInfo::operator=(BasGUIToolNameInfo &&) noexcept
{
    return *this;
}

// The texts come by value on the exported interface.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void BasGUIToolNameInfo::addTool(QString toolId, QString displayName)
{
    m_id2DisplayNameMap[toolId] = std::move(displayName);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
QString BasGUIToolNameInfo::getToolDisplayName(QString toolId)
{
    return m_id2DisplayNameMap.value(toolId, QString());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
QString BasGUIToolNameInfo::getToolID(QString displayName)
{
    // No reverse map: the walk in key order makes the smallest id win a shared display name.
    return m_id2DisplayNameMap.key(displayName, QString());
}

void BasGUIToolNameInfo::dumpInfo()
{
    // The copy keeps the walk on the table as it was, whatever the message handler does.
    QMapIterator<QString, QString> entry(m_id2DisplayNameMap);
    while (entry.hasNext()) {
        entry.next();
        // qDebug carries file, line and function, since the build keeps the log context on.
        qDebug("%s = %s", entry.key().toLocal8Bit().constData(),
               entry.value().toLocal8Bit().constData());
    }
}

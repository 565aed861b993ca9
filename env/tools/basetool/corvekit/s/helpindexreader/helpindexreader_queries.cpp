// The public queries, the cache of one entry behind them and the object's life.
#include "helpindexreader.h"

#include "helpindexreader_p.h"

#include <QIODevice>

#include <algorithm>

namespace {

// The cache key holds names as QString; a caller's name is compared as QString::operator== with
// a const char * would: read as UTF-8, a null pointer equal to the empty string.
bool equalsKey(const QString &key, const char *name)
{
    return QAnyStringView::equal(key, QUtf8StringView(name));
}

} // namespace

HelpIndexReader::HelpIndexReader()
    : m_matchType(MatchNone)
    , m_found(false)
    , m_entityCeiling(0)
{
    clean();
}

HelpIndexReader::~HelpIndexReader() = default;

bool HelpIndexReader::isMyHelpIdx(const char *toolName)
{
    clean();
    read(MatchToolName, toolName, nullptr);
    return error() == NoError && m_found;
}

bool HelpIndexReader::dump()
{
    read(MatchNone, nullptr, nullptr);
    return error() == NoError;
}

QString HelpIndexReader::getToolHelp(const char *toolName)
{
    return reachToolLevel(toolName) ? m_helpUrl : QString();
}

QString HelpIndexReader::getViewHelp(const char *toolName, const char *viewName)
{
    const QString key = QString::fromUtf8(viewName);
    if (!reachToolLevel(toolName))
        return QString();
    const auto it = m_urlMap.constFind(key);
    return it == m_urlMap.cend() ? QString() : *it;
}

QString HelpIndexReader::getDlgHelp(const char *toolName, const char *dialogName)
{
    return reachDialogLevel(toolName, dialogName) ? m_helpUrl : QString();
}

QString HelpIndexReader::getDlgText(const char *toolName, const char *dialogName)
{
    return reachDialogLevel(toolName, dialogName) ? m_dialogText : QString();
}

QString HelpIndexReader::getWhatsThisText(const char *toolName, const char *dialogOrItem,
                                          const char *item)
{
    return itemFrom(m_whatsThisMap, toolName, dialogOrItem, item);
}

QString HelpIndexReader::getToolTipText(const char *toolName, const char *dialogOrItem,
                                        const char *item)
{
    return itemFrom(m_toolTipMap, toolName, dialogOrItem, item);
}

QString HelpIndexReader::getDescription(const char *toolName, const char *dialogOrItem,
                                        const char *item)
{
    return itemFrom(m_descriptionMap, toolName, dialogOrItem, item);
}

QString HelpIndexReader::getDescriptionUrl(const char *toolName, const char *dialogOrItem,
                                           const char *item)
{
    return itemFrom(m_urlMap, toolName, dialogOrItem, item);
}

QString HelpIndexReader::itemFrom(const QMap<QString, QString> &map, const char *toolName,
                                  const char *dialogOrItem, const char *item)
{
    // Only a null pointer selects the tool level; an empty item names an item of the dialog.
    const QString key = QString::fromUtf8(item ? item : dialogOrItem);
    const bool reached = item ? reachDialogLevel(toolName, dialogOrItem) : reachToolLevel(toolName);
    if (!reached)
        return QString();
    const auto it = map.constFind(key);
    return it == map.cend() ? QString() : *it;
}

bool HelpIndexReader::holdsToolLevel(const char *toolName) const
{
    return m_found && m_matchType == MatchToolHelp && equalsKey(m_toolName, toolName);
}

bool HelpIndexReader::holdsDialogLevel(const char *toolName, const char *dialogName) const
{
    return m_found && m_matchType == MatchDialogHelp && equalsKey(m_toolName, toolName) &&
           equalsKey(m_dialogName, dialogName);
}

bool HelpIndexReader::reachToolLevel(const char *toolName)
{
    // A held entry answers without a look at error(): a pass that failed inside the selected
    // tool left a partial entry, and it stays the answer for that key.
    if (!holdsToolLevel(toolName)) {
        clean();
        read(MatchToolHelp, toolName, nullptr);
        if (error() != NoError || !m_found)
            return false;
    }
    return true;
}

bool HelpIndexReader::reachDialogLevel(const char *toolName, const char *dialogName)
{
    if (!holdsDialogLevel(toolName, dialogName)) {
        clean();
        read(MatchDialogHelp, toolName, dialogName);
        if (error() != NoError || !m_found)
            return false;
    }
    return true;
}

void HelpIndexReader::clean()
{
    m_found = false;
    m_urlMap.clear();
    m_whatsThisMap.clear();
    m_toolTipMap.clear();
    m_descriptionMap.clear();
    m_dialogText.clear();
    m_helpUrl.clear();
    reset();
}

void HelpIndexReader::reset()
{
    // A device that cannot be read is left as it is, like none: rewinding it could do harm
    // (a file open for appending), and the verdict of the pass that tried it stands.
    QIODevice *device = this->device();
    if (!device || !device->isReadable())
        return;
    device->reset();
    clear();
    if ((m_entityCeiling & corvekit::detail::unmeasuredEntities) != 0) {
        // Between two documents: learn what the last pass that broke off left behind.
        const qint64 leftOver = corvekit::detail::leftOverReplacement(*this);
        m_entityCeiling =
            std::max(m_entityCeiling & ~corvekit::detail::unmeasuredEntities, leftOver);
        clear();
    }
    setDevice(device);
}

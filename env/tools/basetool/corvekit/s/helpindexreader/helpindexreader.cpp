// One pass through a help index: what it reads, selects and stores, and how it fails.
#include "helpindexreader.h"

#include "helpindexreader_p.h"

#include <QIODevice>
#include <QObject>

const char *const HelpIndexReader::m_helpIdxXmlName = "helpIndex";
const char *const HelpIndexReader::m_toolXmlName = "tool";
const char *const HelpIndexReader::m_viewXmlName = "view";
const char *const HelpIndexReader::m_dialogXmlName = "dialog";
const char *const HelpIndexReader::m_textXmlName = "text";
const char *const HelpIndexReader::m_whatsThisXmlName = "whatsthis";
const char *const HelpIndexReader::m_tooltipXmlName = "tooltip";
const char *const HelpIndexReader::m_despXmlName = "description";
const char *const HelpIndexReader::m_hrefXmlName = "href";
const char *const HelpIndexReader::m_nameXmlName = "name";
const char *const HelpIndexReader::m_versionXmlName = "version";

using corvekit::detail::effectiveCeiling;
using corvekit::detail::isNamed;
using corvekit::detail::sameName;
using corvekit::detail::unmeasuredEntities;

namespace {

// What a pass stores is never null, so that a hit on an element without the attribute or text
// ("") stays apart from a miss (null).
QString stored(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

QString attribute(const QXmlStreamAttributes &attributes, const char *name)
{
    return stored(attributes.value(QLatin1String(name)).toString());
}

// Installed, but closed, never opened or open for writing only.
bool isUnreadable(const QIODevice *device)
{
    return device && !device->isReadable();
}

} // namespace

void HelpIndexReader::read(MatchType matchType, const char *toolName, const char *dialogName)
{
    if (!m_found && isUnreadable(device())) {
        // Nothing to read, as in a file that ends before it begins. The stream reader retries a
        // device that is not at its end for ever, so it gets one try, on the first pass; later
        // passes keep its verdict, as they do without a device.
        if (!hasError())
            readNext();
    } else if (!m_found) {
        // Entities of earlier documents still expand in this one (see m_entityCeiling). A
        // stream at its end reads nothing, so nothing can expand.
        if (!atEnd())
            checkEntityExpansion(effectiveCeiling(m_entityCeiling, entityExpansionLimit()));
        // XML allows one DTD, in the prolog; the document element opens the body.
        bool dtdSeen = false;
        bool bodySeen = false;
        while (!atEnd()) {
            readNext();
            if (isStartElement()) {
                if (isNamed(name(), m_helpIdxXmlName) &&
                    attributes().value(QLatin1String(m_versionXmlName)) == QLatin1String("1.0")) {
                    bodySeen = true;
                    readHelpIdx(matchType, toolName, dialogName);
                } else {
                    raiseError(
                        QObject::tr("The file is not an Tivoran Help Index version 1.0 file."));
                }
            } else if (isDTD()) {
                if (dtdSeen || bodySeen) {
                    raiseMisplacedDtd();
                } else {
                    dtdSeen = true;
                    const qint64 before = effectiveCeiling(m_entityCeiling, entityExpansionLimit());
                    const qint64 declared = declaredReplacement();
                    if (declared > before)
                        checkEntityExpansion(declared);
                }
            }
            if (m_found)
                break;
        }
        // A pass that broke off may have left entities behind that nobody checked.
        if (hasError())
            m_entityCeiling |= unmeasuredEntities;
    }
    m_matchType = matchType;
    m_toolName = QString::fromUtf8(toolName);
    m_dialogName = QString::fromUtf8(dialogName);
}

void HelpIndexReader::readHelpIdx(MatchType matchType, const char *toolName, const char *dialogName)
{
    if (m_found)
        return;
    while (!atEnd()) {
        readNext();
        if (isEndElement())
            return;
        if (isStartElement()) {
            if (isNamed(name(), m_toolXmlName))
                readTool(matchType, toolName, dialogName);
            else
                readUnknownElement();
        } else if (isDTD()) {
            raiseMisplacedDtd();
        }
        if (m_found)
            return;
    }
}

void HelpIndexReader::readTool(MatchType matchType, const char *toolName, const char *dialogName)
{
    const QXmlStreamAttributes attributes = this->attributes();
    const bool isSought = sameName(attributes.value(QLatin1String(m_nameXmlName)), toolName);
    if ((matchType == MatchToolName || matchType == MatchToolHelp) && isSought) {
        m_found = true;
        if (matchType == MatchToolName)
            return;
    }
    const bool storing = matchType == MatchToolHelp && m_found;
    if (storing)
        m_helpUrl = attribute(attributes, m_hrefXmlName);
    const bool seekDialog = matchType == MatchDialogHelp && isSought;

    QString itemName;
    QString href;
    QString text;
    while (true) {
        if (m_found && matchType != MatchToolHelp)
            break;
        if (atEnd())
            break;
        readNext();
        if (isEndElement())
            break;
        if (!isStartElement()) {
            if (isDTD())
                raiseMisplacedDtd();
            continue;
        }
        const QStringView child = name();
        if (isNamed(child, m_viewXmlName)) {
            if (!storing) {
                skipCharacterData();
                continue;
            }
            readView(itemName, href);
            m_urlMap.insert(itemName, href);
        } else if (isNamed(child, m_dialogXmlName)) {
            if (seekDialog)
                readDialog(MatchDialogHelp, dialogName);
            else
                readDialog(MatchNone, nullptr);
        } else if (isNamed(child, m_whatsThisXmlName)) {
            if (!storing) {
                skipCharacterData();
                continue;
            }
            readWhatsThis(itemName, text);
            m_whatsThisMap.insert(itemName, text);
        } else if (isNamed(child, m_tooltipXmlName)) {
            if (!storing) {
                skipCharacterData();
                continue;
            }
            readTooltip(itemName, text);
            m_toolTipMap.insert(itemName, text);
        } else if (isNamed(child, m_despXmlName)) {
            if (!storing) {
                skipCharacterData();
                continue;
            }
            readDescrption(itemName, href, text);
            m_urlMap.insert(itemName, href);
            m_descriptionMap.insert(itemName, text);
        } else {
            readUnknownElement();
        }
    }
}

void HelpIndexReader::readDialog(MatchType matchType, const char *dialogName)
{
    const QXmlStreamAttributes attributes = this->attributes();
    if (matchType == MatchDialogHelp &&
        sameName(attributes.value(QLatin1String(m_nameXmlName)), dialogName)) {
        m_found = true;
    }
    const bool storing = matchType == MatchDialogHelp && m_found;
    if (storing) {
        m_helpUrl = attribute(attributes, m_hrefXmlName);
        m_dialogText = QStringLiteral(""); // a dialog without "text" has an empty one
    }

    QString itemName;
    QString href;
    QString text;
    while (!atEnd()) {
        readNext();
        if (isEndElement())
            break;
        if (!isStartElement()) {
            if (isDTD())
                raiseMisplacedDtd();
            continue;
        }
        const QStringView child = name();
        const bool isLeaf = isNamed(child, m_textXmlName) || isNamed(child, m_whatsThisXmlName) ||
                            isNamed(child, m_tooltipXmlName) || isNamed(child, m_despXmlName);
        if (!isLeaf) {
            readUnknownElement();
        } else if (!storing) {
            skipCharacterData();
        } else if (isNamed(child, m_textXmlName)) {
            m_dialogText = readText();
        } else if (isNamed(child, m_whatsThisXmlName)) {
            readWhatsThis(itemName, text);
            m_whatsThisMap.insert(itemName, text);
        } else if (isNamed(child, m_tooltipXmlName)) {
            readTooltip(itemName, text);
            m_toolTipMap.insert(itemName, text);
        } else {
            readDescrption(itemName, href, text);
            m_urlMap.insert(itemName, href);
            m_descriptionMap.insert(itemName, text);
        }
    }
}

void HelpIndexReader::readView(QString &name, QString &href)
{
    const QXmlStreamAttributes attributes = this->attributes();
    name = attribute(attributes, m_nameXmlName);
    href = attribute(attributes, m_hrefXmlName);
    readElementText(ErrorOnUnexpectedElement);
}

void HelpIndexReader::readWhatsThis(QString &name, QString &text)
{
    name = attribute(attributes(), m_nameXmlName);
    text = stored(readElementText(ErrorOnUnexpectedElement).simplified());
}

void HelpIndexReader::readTooltip(QString &name, QString &text)
{
    name = attribute(attributes(), m_nameXmlName);
    text = stored(readElementText(ErrorOnUnexpectedElement).simplified());
}

void HelpIndexReader::readDescrption(QString &name, QString &href, QString &text)
{
    const QXmlStreamAttributes attributes = this->attributes();
    name = attribute(attributes, m_nameXmlName);
    href = attribute(attributes, m_hrefXmlName);
    text = stored(readElementText(ErrorOnUnexpectedElement).simplified());
}

QString HelpIndexReader::readText()
{
    return stored(readElementText(ErrorOnUnexpectedElement).simplified());
}

void HelpIndexReader::readUnknownElement()
{
    // The start tag is consumed. A counter instead of a call per level keeps the machine stack
    // flat however deep the skipped element nests.
    qint64 depth = 1;
    while (!atEnd()) {
        readNext();
        if (isEndElement()) {
            if (--depth == 0)
                return;
        } else if (isStartElement()) {
            ++depth;
        } else if (isDTD()) {
            raiseMisplacedDtd();
        }
    }
}

// The outline of a help index: its tools, views and dialogs, as the tool lists them.
#include "helpindexoutline_p.h"

#include "helpindexreader_p.h"

#include <QIODevice>
#include <QXmlStreamReader>

using corvekit::detail::isNamed;

namespace {

corvekit_private::HelpIndexEntry entry(const QXmlStreamReader &xml)
{
    const QXmlStreamAttributes attributes = xml.attributes();
    return {attributes.value(QLatin1String("name")).toString(),
            attributes.value(QLatin1String("href")).toString()};
}

// On a "tool" start tag; leaves the stream behind its end tag.
corvekit_private::HelpIndexTool readTool(QXmlStreamReader &xml)
{
    corvekit_private::HelpIndexTool tool{entry(xml), {}, {}};
    while (xml.readNextStartElement()) {
        if (isNamed(xml.name(), "view"))
            tool.views.append(entry(xml));
        else if (isNamed(xml.name(), "dialog"))
            tool.dialogs.append(entry(xml));
        xml.skipCurrentElement();
    }
    return tool;
}

} // namespace

namespace corvekit_private {

bool helpIndexOutline(QIODevice *device, QList<HelpIndexTool> &tools)
{
    tools.clear();
    if (!device || !device->reset())
        return false;
    QXmlStreamReader xml(device);
    if (!xml.readNextStartElement())
        return false;
    while (xml.readNextStartElement()) {
        if (isNamed(xml.name(), "tool"))
            tools.append(readTool(xml));
        else
            xml.skipCurrentElement();
    }
    return !xml.hasError();
}

} // namespace corvekit_private

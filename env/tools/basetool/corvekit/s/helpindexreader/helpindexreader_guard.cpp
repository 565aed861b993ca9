// The bounds that keep a pass over hostile input finite in time and memory.
#include "helpindexreader.h"

#include "helpindexreader_p.h"

#include <QIODevice>
#include <QObject>

#include <algorithm>
#include <cstring>

namespace corvekit::detail {

namespace {

bool liesInside(QStringView part, QStringView whole)
{
    // Compared as addresses only: a view outside may point at freed memory.
    const auto begin = reinterpret_cast<quintptr>(whole.data());
    const auto end = begin + sizeof(QChar) * static_cast<quintptr>(whole.size());
    const auto partBegin = reinterpret_cast<quintptr>(part.data());
    const auto partEnd = partBegin + sizeof(QChar) * static_cast<quintptr>(part.size());
    return part.isEmpty() || (partBegin >= begin && partEnd <= end && partBegin <= partEnd);
}

} // namespace

qint64 longestReplacement(const QXmlStreamEntityDeclarations &declarations, QStringView dtd,
                          qint64 expansionLimit)
{
    qint64 longest = 0;
    for (const QXmlStreamEntityDeclaration &declaration : declarations) {
        const bool current =
            liesInside(declaration.name(), dtd) && liesInside(declaration.value(), dtd) &&
            liesInside(declaration.systemId(), dtd) && liesInside(declaration.publicId(), dtd);
        if (!current) {
            longest = std::max(longest, expansionLimit);
            continue;
        }
        if (!declaration.systemId().isEmpty() || !declaration.publicId().isEmpty())
            continue;
        // The stream reader fails any one expansion beyond its limit, so none adds more.
        const QStringView value = declaration.value();
        const bool nested = value.contains(QLatin1Char('&')) || value.contains(QLatin1Char('%'));
        const qint64 size =
            nested ? expansionLimit : std::min<qint64>(value.size(), expansionLimit);
        longest = std::max(longest, size);
    }
    return longest;
}

namespace {

// True if the bytes after an "&" open a reference that expands to at most one character.
bool opensPlainReference(const char *next, qint64 available)
{
    if (available > 0 && next[0] == '#')
        return true;
    for (const char *predefined : {"amp;", "lt;", "gt;", "quot;", "apos;"}) {
        const auto length = static_cast<qint64>(std::strlen(predefined));
        if (available >= length && std::memcmp(next, predefined, length) == 0)
            return true;
    }
    return false;
}

} // namespace

qint64 countEntityReferences(QIODevice *device)
{
    if (!device || device->isSequential())
        return -1;
    const qint64 saved = device->pos();
    if (!device->seek(0))
        return -1;
    // A reference split between two blocks is seen whole: the tail of one block starts the next.
    constexpr qint64 blockSize = qint64(64) * 1024;
    constexpr qint64 tailSize = 5;
    QByteArray buffer(blockSize + tailSize, Qt::Uninitialized);
    qint64 carried = 0;
    qint64 count = 0;
    bool atEnd = false;
    while (!atEnd) {
        const qint64 got = device->read(buffer.data() + carried, blockSize);
        if (got < 0) {
            device->seek(saved);
            return -1;
        }
        atEnd = got == 0;
        const qint64 size = carried + got;
        // Without more input an "&" near the end waits for the next block, unless none comes.
        const qint64 scanEnd = atEnd ? size : std::max<qint64>(0, size - tailSize);
        const char *data = buffer.constData();
        for (qint64 i = 0; i < scanEnd; ++i) {
            if (data[i] == '&' && !opensPlainReference(data + i + 1, size - i - 1))
                ++count;
        }
        carried = size - scanEnd;
        std::memmove(buffer.data(), data + scanEnd, static_cast<size_t>(carried));
    }
    device->seek(saved);
    return count;
}

qint64 leftOverReplacement(QXmlStreamReader &reader)
{
    reader.addData(QByteArrayLiteral("<!DOCTYPE probe []><probe/>"));
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isDTD()) {
            return longestReplacement(reader.entityDeclarations(), reader.text(),
                                      reader.entityExpansionLimit());
        }
    }
    return reader.entityExpansionLimit();
}

} // namespace corvekit::detail

namespace {

// Without a count of the references, a replacement text this long still keeps the expansion
// within a small multiple of the input's own size.
constexpr qint64 unCountedReplacementLimit = 64;

} // namespace

void HelpIndexReader::raiseMisplacedDtd()
{
    // The stream reader knows its entities from now on and expands them in later documents.
    declaredReplacement();
    raiseError(QObject::tr("A DTD may stand only once, before the document element."));
}

qint64 HelpIndexReader::declaredReplacement()
{
    const qint64 longest =
        corvekit::detail::longestReplacement(entityDeclarations(), text(), entityExpansionLimit());
    m_entityCeiling = (m_entityCeiling & corvekit::detail::unmeasuredEntities) |
                      std::max(m_entityCeiling & ~corvekit::detail::unmeasuredEntities, longest);
    return longest;
}

void HelpIndexReader::checkEntityExpansion(qint64 longest)
{
    if (longest == 0)
        return;
    QIODevice *device = this->device();
    const bool countable = device && !device->isSequential();
    const qint64 budget = entityExpansionBudget(countable ? device->size() : 0);
    // Every reference takes at least three bytes ("&e;"), so a short file needs no count.
    if (countable && longest * (device->size() / 3 + 1) <= budget)
        return;
    const qint64 references = corvekit::detail::countEntityReferences(device);
    // Input that cannot be read twice is not counted: only short replacement texts pass then.
    const bool withinBudget =
        references >= 0 ? references * longest <= budget : longest <= unCountedReplacementLimit;
    if (!withinBudget) {
        raiseError(
            QObject::tr("The entities of the file expand to more than %1 characters.").arg(budget));
    }
}

void HelpIndexReader::skipCharacterData()
{
    // As readElementText, without building the text: nothing of this element is stored.
    const qint64 startOffset = characterOffset();
    while (!atEnd()) {
        switch (readNext()) {
        case Characters:
        case EntityReference:
        case Comment:
        case ProcessingInstruction:
            break;
        case EndElement:
        case Invalid:
            return;
        default:
            failAsElementText(startOffset);
            return;
        }
    }
}

void HelpIndexReader::failAsElementText(qint64 startOffset)
{
    // readElementText would have stopped here with UnexpectedElementError, which only the
    // stream reader itself can raise. The pass is over anyway, so parse the device again up to
    // the element's start tag and let readElementText fail there, with its own message at the
    // same line and column.
    reset();
    while (!atEnd() && characterOffset() <= startOffset) {
        readNext();
        if (isStartElement() && characterOffset() == startOffset) {
            readElementText(ErrorOnUnexpectedElement);
            return;
        }
    }
    // The device could not be read again as before (data given with addData, a device that
    // cannot go back): the same verdict, as a custom error.
    if (!hasError())
        raiseError(QObject::tr("Expected character data."));
}

// Drives every query of the help index reader over arbitrary bytes as the index file. Beside
// crashes and sanitizer reports it traps on a broken invariant: a query repeated at once gives
// the same answer from its second call on, and a second dump() repeats the first one's verdict.
#include <corvekit/helpindexreader.h>

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>

namespace {

// Names the seed corpus uses, the null pointer and the empty name.
const char *const toolNames[] = {"Spreadsheet", "T", nullptr, ""};
const char *const dialogNames[] = {"Options", "D", nullptr, ""};
const char *const itemNames[] = {"apply", "I", nullptr, ""};

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

void queryAll(HelpIndexReader &reader, std::uint8_t choice)
{
    const char *tool = toolNames[choice & 3];
    const char *dialog = dialogNames[(choice >> 2) & 3];
    const char *item = itemNames[(choice >> 4) & 3];
    // A pass that failed inside the selected element leaves a partial entry, which answers from
    // the second call on; so the second and third calls agree, not necessarily the first.
    reader.getToolHelp(tool);
    check(reader.getToolHelp(tool) == reader.getToolHelp(tool));
    reader.getViewHelp(tool, item);
    reader.getDlgText(tool, dialog);
    check(reader.getDlgHelp(tool, dialog) == reader.getDlgHelp(tool, dialog));
    for (const char *level : {item, static_cast<const char *>(nullptr)}) {
        const char *second = level ? dialog : item;
        reader.getToolTipText(tool, second, level);
        reader.getDescription(tool, second, level);
        reader.getDescriptionUrl(tool, second, level);
        reader.getWhatsThisText(tool, second, level);
        check(reader.getWhatsThisText(tool, second, level) ==
              reader.getWhatsThisText(tool, second, level));
    }
    check(reader.isMyHelpIdx(tool) == reader.isMyHelpIdx(tool));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const std::uint8_t choice = size > 0 ? data[size - 1] : 0;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    HelpIndexReader reader;
    reader.setDevice(&buffer);
    const bool valid = reader.dump();
    check(reader.dump() == valid); // the second call reads nothing and repeats the verdict
    queryAll(reader, choice);
    queryAll(reader, static_cast<std::uint8_t>(choice ^ 0x15)); // other names on a used reader
    return 0;
}

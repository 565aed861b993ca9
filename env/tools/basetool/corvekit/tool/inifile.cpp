#include "inifile.h"

#include <QByteArrayView>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace {

using KeyMap = QMap<QString, QVariant>;

// A writer that holds the lock longer than this is taken for hung.
constexpr int lockTimeoutMs = 10000;

// One line of the file as QSettings reads it: a group header or a key. Comments and blank lines
// are not lines here; they lie untouched between them.
struct IniLine
{
    bool isGroup = false;
    QString group;            // the prefix a header opens, or a key stands below ("" or "a/")
    QString key;              // a key line's whole key
    qsizetype begin = 0;      // the start of its first text line
    qsizetype end = 0;        // past the line break of its last text line
    qsizetype textEnd = 0;    // where QSettings stops reading it
    qsizetype valueBegin = 0; // a key line's value, without the blanks around it
    qsizetype valueEnd = 0;
};

bool isLineBreak(char c)
{
    return c == '\n' || c == '\r';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || isLineBreak(c);
}

/*
 * The next line from \a pos, cut exactly where QSettings cuts it: a line break inside quotes or
 * after a backslash does not end it, a ';' at its start makes the rest of the text line a
 * comment, and a ';' after its start ends it. Gives false at the end of the data.
 */
bool readLine(QByteArrayView data, qsizetype &pos, qsizetype &lineStart, qsizetype &lineEnd,
              qsizetype &equalsPos)
{
    const qsizetype size = data.size();
    bool inQuotes = false;
    equalsPos = -1;
    lineStart = pos;
    while (lineStart < size && isBlank(data[lineStart]))
        ++lineStart;
    qsizetype i = lineStart;
    while (i < size) {
        const char ch = data[i++];
        if (ch == '=') {
            if (!inQuotes && equalsPos == -1)
                equalsPos = i - 1;
        } else if (isLineBreak(ch)) {
            // Never the line's first byte: blanks before it were skipped.
            if (!inQuotes) {
                --i;
                break;
            }
        } else if (ch == '\\') {
            if (i < size) {
                const char escaped = data[i++];
                if (i < size && isLineBreak(escaped) && isLineBreak(data[i]) && data[i] != escaped)
                    ++i;
            }
        } else if (ch == '"') {
            inQuotes = !inQuotes;
        } else if (ch == ';') {
            if (i == lineStart + 1) {
                while (i < size && !isLineBreak(data[i]))
                    ++i;
                while (i < size && isBlank(data[i]))
                    ++i;
                lineStart = i;
            } else if (!inQuotes) {
                --i;
                break;
            }
        }
    }
    pos = i;
    lineEnd = i;
    return lineEnd > lineStart;
}

// A key or group name as QSettings decodes it: "\" is "/", "%XX" and "%UXXXX" are characters.
QString unescapedKey(QByteArrayView bytes)
{
    const QString text = QString::fromUtf8(bytes);
    QString result;
    qsizetype i = 0;
    while (i < text.size()) {
        const QChar ch = text.at(i);
        if (ch == QLatin1Char('\\')) {
            result += QLatin1Char('/');
            ++i;
            continue;
        }
        if (ch != QLatin1Char('%') || i == text.size() - 1) {
            result += ch;
            ++i;
            continue;
        }
        const bool wide = text.at(i + 1) == QLatin1Char('U');
        const qsizetype first = wide ? i + 2 : i + 1;
        const qsizetype digits = wide ? 4 : 2;
        bool ok = false;
        const ushort code =
            first + digits <= text.size() ? text.mid(first, digits).toUShort(&ok, 16) : 0;
        if (!ok) {
            result += QLatin1Char('%');
            ++i;
            continue;
        }
        result += QChar(code);
        i = first + digits;
    }
    return result;
}

// The prefix that a header's text between "[" and "]" opens.
QString groupPrefix(const QByteArray &name)
{
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return QString();
    if (name.compare("%general", Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(name.mid(1)) + QLatin1Char('/');
    return unescapedKey(name) + QLatin1Char('/');
}

qsizetype textLineStart(QByteArrayView data, qsizetype pos)
{
    while (pos > 0 && !isLineBreak(data[pos - 1]))
        --pos;
    return pos;
}

// Past the line break that ends the text line \a pos is on (a comment after ';' included).
qsizetype textLineEnd(QByteArrayView data, qsizetype pos)
{
    while (pos < data.size() && !isLineBreak(data[pos]))
        ++pos;
    if (pos < data.size() && data[pos] == '\r') {
        ++pos;
        if (pos < data.size() && data[pos] == '\n')
            ++pos;
    } else if (pos < data.size()) {
        ++pos;
    }
    return pos;
}

QList<IniLine> parseLines(QByteArrayView data)
{
    QList<IniLine> lines;
    QString group;
    qsizetype pos = 0;
    qsizetype lineStart = 0;
    qsizetype lineEnd = 0;
    qsizetype equalsPos = 0;
    while (readLine(data, pos, lineStart, lineEnd, equalsPos)) {
        IniLine line;
        line.begin = textLineStart(data, lineStart);
        line.end = textLineEnd(data, lineEnd);
        line.textEnd = lineEnd;
        const QByteArrayView text = data.sliced(lineStart, lineEnd - lineStart);
        if (text.startsWith('[')) {
            const qsizetype close = text.indexOf(']');
            group = groupPrefix(
                text.sliced(1, (close < 0 ? text.size() : close) - 1).toByteArray().trimmed());
            line.isGroup = true;
            line.group = group;
        } else if (equalsPos >= 0) {
            line.group = group;
            line.key =
                group +
                unescapedKey(data.sliced(lineStart, equalsPos - lineStart).toByteArray().trimmed());
            line.valueBegin = equalsPos + 1;
            while (line.valueBegin < lineEnd &&
                   (data[line.valueBegin] == ' ' || data[line.valueBegin] == '\t'))
                ++line.valueBegin;
            line.valueEnd = lineEnd;
            while (line.valueEnd > line.valueBegin &&
                   (data[line.valueEnd - 1] == ' ' || data[line.valueEnd - 1] == '\t'))
                --line.valueEnd;
        } else {
            continue; // QSettings reports these as a format error; such a file is refused
        }
        lines.append(line);
    }
    return lines;
}

// Files that QSettings reads and writes for the editor, each under a name of its own so that
// QSettings' cache of parsed files never answers for one of them.
class Scratch
{
public:
    bool isValid() const { return m_dir.isValid(); }

    QString newFile() { return m_dir.filePath(QStringLiteral("%1.ini").arg(++m_files)); }

    // Every key of \a text and its value as QSettings reads them; nullopt for a format error.
    std::optional<KeyMap> read(const QByteArray &text)
    {
        const QString fileName = newFile();
        QFile file(fileName);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return std::nullopt;
        file.close();
        const QSettings settings(fileName, QSettings::IniFormat);
        KeyMap values;
        for (const QString &key : settings.allKeys())
            values.insert(key, settings.value(key));
        if (settings.status() != QSettings::NoError)
            return std::nullopt;
        return values;
    }

private:
    QTemporaryDir m_dir;
    int m_files = 0;
};

// What QSettings writes for one key: its group's header and the key's line.
struct EncodedKey
{
    QString key; // as QSettings normalises it
    QString group;
    QByteArray header;
    QByteArray line;
    QByteArray value;
    QVariant readBack;
};

std::optional<EncodedKey> encode(Scratch &scratch, const QString &key, const QVariant &value)
{
    const QString fileName = scratch.newFile();
    {
        QSettings settings(fileName, QSettings::IniFormat);
        settings.setValue(key, value);
        settings.sync();
        if (settings.status() != QSettings::NoError)
            return std::nullopt;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray text = file.readAll();
    const QList<IniLine> lines = parseLines(text);
    const std::optional<KeyMap> values = scratch.read(text);
    if (lines.size() != 2 || !lines[0].isGroup || !values || values->size() != 1)
        return std::nullopt;
    const IniLine &header = lines[0];
    const IniLine &entry = lines[1];
    return EncodedKey{entry.key,
                      entry.group,
                      text.mid(header.begin, header.textEnd - header.begin),
                      text.mid(entry.begin, entry.textEnd - entry.begin),
                      text.mid(entry.valueBegin, entry.valueEnd - entry.valueBegin),
                      values->first()};
}

QByteArray lineBreakOf(const QByteArray &text)
{
    const qsizetype newline = text.indexOf('\n');
    return newline > 0 && text[newline - 1] == '\r' ? QByteArrayLiteral("\r\n")
                                                    : QByteArrayLiteral("\n");
}

bool endsWithLineBreak(const QByteArray &text)
{
    return !text.isEmpty() && isLineBreak(text.back());
}

// The text with \a key set: the values of the lines that hold it replaced, or a new line at the
// end of its group, or a new group at the end of the file.
QByteArray withValue(const QByteArray &text, const EncodedKey &encoded)
{
    const QList<IniLine> lines = parseLines(text);
    QByteArray result = text;
    bool replaced = false;
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        if (!line->isGroup && line->key == encoded.key) {
            result.replace(line->valueBegin, line->valueEnd - line->valueBegin, encoded.value);
            replaced = true;
        }
    }
    if (replaced)
        return result;

    const QByteArray lineBreak = lineBreakOf(text);
    const IniLine *after = nullptr;
    for (const IniLine &line : lines) {
        if (line.group == encoded.group && (!line.isGroup || !after || after->isGroup))
            after = &line;
    }
    const qsizetype at = after ? after->end : text.size();
    QByteArray insertion = encoded.line + lineBreak;
    if (!after) {
        insertion.prepend(encoded.header + lineBreak);
        if (!text.isEmpty())
            insertion.prepend(lineBreak); // groups are set apart by an empty line
    }
    // A last line without a line break gets one before anything follows it.
    if (at == text.size() && !text.isEmpty() && !endsWithLineBreak(text))
        insertion.prepend(lineBreak);
    return result.insert(at, insertion);
}

// The start of the empty text line that ends at \a begin, else \a begin.
qsizetype emptyLineBefore(QByteArrayView text, qsizetype begin)
{
    if (begin == 0)
        return begin;
    const qsizetype breakSize = begin >= 2 && text.sliced(begin - 2, 2) == "\r\n" ? 2 : 1;
    const qsizetype lineStart = begin - breakSize;
    return textLineStart(text, lineStart) == lineStart ? lineStart : begin;
}

bool onlyBlanks(QByteArrayView text)
{
    return std::all_of(text.begin(), text.end(), isBlank);
}

/*
 * The text without the lines of the keys \a removed names. A group left with nothing but blank
 * lines loses its header too, and when it ended the file, the blank line before it: so a key
 * that was set into a new group and is removed again gives back the file as it was.
 */
QByteArray withoutKeys(const QByteArray &text, const std::function<bool(const QString &)> &removed)
{
    const QList<IniLine> lines = parseLines(text);
    QList<std::pair<qsizetype, qsizetype>> cuts;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (!lines[index].isGroup && removed(lines[index].key))
            cuts.append({lines[index].begin, lines[index].end});
    }
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (!lines[index].isGroup)
            continue;
        const IniLine &header = lines[index];
        qsizetype next = index + 1;
        bool emptied = false;
        bool keptKey = false;
        for (; next < lines.size() && !lines[next].isGroup; ++next) {
            if (removed(lines[next].key))
                emptied = true;
            else
                keptKey = true;
        }
        const qsizetype groupEnd = next < lines.size() ? lines[next].begin : text.size();
        if (!emptied || keptKey)
            continue;
        QByteArray rest = text.mid(header.end, groupEnd - header.end);
        for (const auto &[begin, end] : cuts) {
            if (begin >= header.end && end <= groupEnd)
                rest.replace(begin - header.end, end - begin, QByteArray(end - begin, ' '));
        }
        if (!onlyBlanks(rest))
            continue;
        cuts.append({groupEnd == text.size() ? emptyLineBefore(text, header.begin) : header.begin,
                     groupEnd});
    }
    std::sort(cuts.begin(), cuts.end());
    QByteArray result;
    qsizetype copied = 0;
    for (const auto &[begin, end] : cuts) {
        if (begin > copied)
            result += text.mid(copied, begin - copied);
        copied = std::max(copied, end);
    }
    return result + text.mid(copied);
}

IniEditResult failure(IniEditStatus status, const QString &message)
{
    IniEditResult result;
    result.status = status;
    result.message = message;
    return result;
}

// The new text of a file and the keys it must hold, or why there is none.
struct EditPlan
{
    QByteArray text;
    KeyMap expected;
    std::optional<IniEditResult> refusal;
};

/*
 * Runs \a edit on the text of \a fileName under its lock and writes what it gives back. \a edit
 * gets the file's text and keys as QSettings reads them.
 */
using Edit = std::function<EditPlan(const QByteArray &, const KeyMap &)>;

IniEditResult editFile(const QString &fileName, Scratch &scratch, const Edit &edit)
{
    const auto cannotWrite = [&fileName] {
        return failure(IniEditStatus::CannotWrite,
                       QStringLiteral("%1: cannot write settings file").arg(fileName));
    };
    QFileInfo info(fileName);
    if (info.exists() && !info.isFile())
        return failure(IniEditStatus::InvalidFile,
                       QStringLiteral("%1: settings file is not a regular file").arg(fileName));
    if (!QDir().mkpath(info.absolutePath()))
        return cannotWrite();
    QLockFile lock(fileName + QLatin1String(".lock"));
    if (!lock.tryLock(lockTimeoutMs)) {
        if (lock.error() == QLockFile::LockFailedError)
            return failure(
                IniEditStatus::CannotWrite,
                QStringLiteral("%1: settings file is locked by another program (%1.lock)")
                    .arg(fileName));
        return cannotWrite();
    }

    // Read again under the lock: a writer may have changed the file since.
    info.refresh();
    QByteArray text;
    if (info.exists()) {
        if (!info.isFile())
            return failure(IniEditStatus::InvalidFile,
                           QStringLiteral("%1: settings file is not a regular file").arg(fileName));
        QFile file(fileName);
        if (!info.isReadable() || !file.open(QIODevice::ReadOnly))
            return failure(IniEditStatus::InvalidFile,
                           QStringLiteral("%1: cannot read settings file").arg(fileName));
        text = file.readAll();
        if (!info.isWritable())
            return cannotWrite();
    }
    const std::optional<KeyMap> before = scratch.read(text);
    if (!before)
        return failure(IniEditStatus::InvalidFile,
                       QStringLiteral("%1: malformed settings file").arg(fileName));

    const EditPlan plan = edit(text, *before);
    if (plan.refusal)
        return *plan.refusal;
    if (scratch.read(plan.text) != plan.expected)
        return failure(IniEditStatus::InvalidFile,
                       QStringLiteral("%1: cannot edit this file without changing other keys; "
                                      "left untouched")
                           .arg(fileName));
    if (plan.text == text)
        return {};
    const QByteArray &newText = plan.text;

    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(newText) != newText.size() || !file.commit())
        return cannotWrite();
    QFile written(fileName);
    if (!written.open(QIODevice::ReadOnly) || written.readAll() != newText)
        return cannotWrite();
    return {};
}

} // namespace

IniEditResult setIniValue(const QString &fileName, const QString &key, const QVariant &value)
{
    Scratch scratch;
    if (!scratch.isValid())
        return failure(IniEditStatus::CannotWrite,
                       QStringLiteral("cannot make a temporary folder"));
    const std::optional<EncodedKey> encoded = encode(scratch, key, value);
    if (!encoded)
        return failure(IniEditStatus::InvalidFile,
                       QStringLiteral("'%1' is no settings key").arg(key));
    IniEditResult result =
        editFile(fileName, scratch, [&encoded](const QByteArray &text, const KeyMap &before) {
            KeyMap expected = before;
            expected.insert(encoded->key, encoded->readBack);
            return EditPlan{withValue(text, *encoded), expected, std::nullopt};
        });
    if (result.status == IniEditStatus::Done)
        result.value = encoded->readBack;
    return result;
}

IniEditResult removeIniKey(const QString &fileName, const QString &key)
{
    // Nothing to take a lock for, nor a folder to make for it.
    if (!QFileInfo::exists(fileName))
        return failure(IniEditStatus::NotFound,
                       QStringLiteral("%1: '%2' is not set in this file").arg(fileName, key));
    Scratch scratch;
    if (!scratch.isValid())
        return failure(IniEditStatus::CannotWrite,
                       QStringLiteral("cannot make a temporary folder"));
    // QSettings drops empty parts of a key, and takes the keys below a group with it.
    const QString normalized =
        key.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QLatin1Char('/'));
    const QString below = normalized + QLatin1Char('/');
    const auto removed = [&](const QString &each) {
        return each == normalized || each.startsWith(below);
    };
    QStringList removedKeys;
    IniEditResult result =
        editFile(fileName, scratch, [&](const QByteArray &text, const KeyMap &before) {
            KeyMap expected;
            removedKeys.clear();
            for (auto item = before.cbegin(); item != before.cend(); ++item) {
                if (removed(item.key()))
                    removedKeys.append(item.key());
                else
                    expected.insert(item.key(), item.value());
            }
            if (removedKeys.isEmpty())
                return EditPlan{
                    {},
                    {},
                    failure(IniEditStatus::NotFound,
                            QStringLiteral("%1: '%2' is not set in this file").arg(fileName, key))};
            return EditPlan{withoutKeys(text, removed), expected, std::nullopt};
        });
    result.removedKeys = removedKeys;
    return result;
}

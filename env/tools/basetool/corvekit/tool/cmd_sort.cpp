#include "commands.h"
#include "toolio.h"

#include <corvekit/basepublic.h>

#include <QByteArray>
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Order
{
    const char *name;
    int (*compare)(const char *, const char *);
};

const Order orders[] = {
    {"alphanum", BasePublic::compareAlphaNum},
    {"namenum", BasePublic::compareNameNum},
    {"pinh", BasePublic::comparePinH},
    {"pinv", BasePublic::comparePinV},
};

// Splits \a text into lines; a closing newline ends the last line, and "\r\n" counts as one.
void appendLines(const QByteArray &text, std::vector<QByteArray> &names)
{
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0)
            end = text.size();
        QByteArray line = text.mid(start, end - start);
        if (line.endsWith('\r'))
            line.chop(1);
        names.push_back(line);
        start = end + 1;
    }
}

} // namespace

int runSort(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Sorts names, one a line, from the files (or standard input) in a name or pin order. "
        "The sort is stable: names that compare equal keep their input order."));
    parser.addPositionalArgument(QStringLiteral("file"),
                                 QStringLiteral("Files to read; standard input without one."),
                                 QStringLiteral("[FILE...]"));
    const QCommandLineOption byOption(
        QStringLiteral("by"),
        QStringLiteral("alphanum (natural order, the default), namenum (digit count first), "
                       "pinh (pins row by row) or pinv (pins column by column)."),
        QStringLiteral("order"), QStringLiteral("alphanum"));
    const QCommandLineOption reverseOption(QStringLiteral("reverse"),
                                           QStringLiteral("Sorts from last to first."));
    parser.addOptions({byOption, reverseOption});
    if (int status = parseArguments(parser, arguments, 0, -1); status >= 0)
        return status;

    const QString by = parser.value(byOption);
    const auto order = std::find_if(std::begin(orders), std::end(orders),
                                    [&](const Order &o) { return by == QLatin1String(o.name); });
    if (order == std::end(orders))
        return fail(ExitUsage, QStringLiteral("sort: unknown order '%1'; use alphanum, namenum, "
                                              "pinh or pinv")
                                   .arg(by));

    std::vector<QByteArray> names;
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty()) {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return fail(ExitInvalidInput, QStringLiteral("sort: cannot read standard input"));
        appendLines(input.readAll(), names);
    }
    for (const QString &path : files) {
        QFile file(path);
        if (!QFileInfo::exists(path))
            return fail(ExitNotFound, QStringLiteral("sort: %1: no such file").arg(path));
        if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly))
            return fail(ExitInvalidInput, QStringLiteral("sort: %1: cannot read").arg(path));
        appendLines(file.readAll(), names);
    }
    // The comparators read zero-terminated names: a zero byte would cut a name short.
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].contains('\0'))
            return fail(ExitInvalidInput,
                        QStringLiteral("sort: name %1 holds a zero byte").arg(i + 1));
    }

    // A merge sort stays inside the range whatever the comparator answers; not every one of
    // these orders is a strict weak ordering for every input.
    const auto compare = order->compare;
    if (parser.isSet(reverseOption)) {
        std::stable_sort(names.begin(), names.end(),
                         [compare](const QByteArray &a, const QByteArray &b) {
                             return compare(b.constData(), a.constData()) < 0;
                         });
    } else {
        std::stable_sort(names.begin(), names.end(),
                         [compare](const QByteArray &a, const QByteArray &b) {
                             return compare(a.constData(), b.constData()) < 0;
                         });
    }

    for (const QByteArray &name : names) {
        std::fwrite(name.constData(), 1, static_cast<std::size_t>(name.size()), stdout);
        std::fputc('\n', stdout);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        return fail(ExitCannotWrite, QStringLiteral("sort: cannot write the sorted names"));
    return ExitSuccess;
}

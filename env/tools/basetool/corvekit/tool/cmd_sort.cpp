#include "commands.h"
#include "toolio.h"

#include <corvekit/basepublic.h>

#include <QByteArray>
#include <QCommandLineParser>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>
#include <functional>
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

// The names of one input, for the place of a disorder.
struct Input
{
    QString name;
    std::size_t first; // index of its first name
};

/*!
 * Splits \a text into names that each end with \a end; the last one may lack it. With newlines a
 * "\r" before the newline belongs to the line end; with zero bytes every byte is the name's.
 */
void appendNames(const QByteArray &text, char end, std::vector<QByteArray> &names)
{
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype stop = text.indexOf(end, start);
        if (stop < 0)
            stop = text.size();
        QByteArray name = text.mid(start, stop - start);
        if (end == '\n' && name.endsWith('\r'))
            name.chop(1);
        names.push_back(name);
        start = stop + 1;
    }
}

// "sort -c": the first name out of order, with the input and the line where it stands.
int checkOrder(const std::vector<QByteArray> &names, const std::vector<Input> &inputs,
               const std::function<bool(const QByteArray &, const QByteArray &)> &outOfOrder)
{
    for (std::size_t i = 1; i < names.size(); ++i) {
        if (!outOfOrder(names[i - 1], names[i]))
            continue;
        const auto input = std::prev(
            std::upper_bound(inputs.begin(), inputs.end(), i,
                             [](std::size_t index, const Input &in) { return index < in.first; }));
        return fail(ExitNotFound, QStringLiteral("sort: %1:%2: disorder: %3")
                                      .arg(input->name)
                                      .arg(i - input->first + 1)
                                      .arg(QString::fromLocal8Bit(names[i])));
    }
    return ExitSuccess;
}

int writeNames(const std::vector<QByteArray> &names, char end, const QString &outputPath)
{
    if (outputPath.isEmpty()) {
        FILE *output = dataOutput();
        for (const QByteArray &name : names) {
            std::fwrite(name.constData(), 1, static_cast<std::size_t>(name.size()), output);
            std::fputc(end, output);
        }
        if (std::fflush(output) != 0 || std::ferror(output))
            return fail(ExitCannotWrite, QStringLiteral("sort: cannot write the sorted names"));
        return ExitSuccess;
    }
    // The output may be one of the inputs: everything is read by now, and the file is replaced
    // whole or not at all.
    QSaveFile file(outputPath);
    if (file.open(QIODevice::WriteOnly)) {
        for (const QByteArray &name : names) {
            file.write(name);
            file.putChar(end);
        }
        if (file.commit())
            return ExitSuccess;
    }
    return fail(ExitCannotWrite,
                QStringLiteral("sort: %1: cannot write: %2").arg(outputPath, file.errorString()));
}

} // namespace

int runSort(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Sorts names, one a line, from the files (or standard input) in a name or pin order. "
        "The sort is stable: names that compare equal keep their input order.\n"
        "Exit status: 0 sorted (with --check: in order), 1 out of order with --check, 2 usage, "
        "3 a file is missing, not a regular file or unreadable, or a name holds a zero byte, "
        "4 the output cannot be written."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Files to read, \"-\" for standard input; "
                                                "standard input without one."),
                                 QStringLiteral("[FILE...]"));
    const QCommandLineOption byOption(
        QStringLiteral("by"),
        QStringLiteral("Sorts in the order alphanum (natural order, the default), namenum (digit "
                       "count first), pinh (pins row by row) or pinv (pins column by column)."),
        QStringLiteral("order"), QStringLiteral("alphanum"));
    const QCommandLineOption reverseOption({QStringLiteral("r"), QStringLiteral("reverse")},
                                           QStringLiteral("Sorts from last to first."));
    const QCommandLineOption uniqueOption(
        {QStringLiteral("u"), QStringLiteral("unique")},
        QStringLiteral("Keeps only the first of names that the order finds equal (A7 and A007 "
                       "under pinh)."));
    const QCommandLineOption outputOption({QStringLiteral("o"), QStringLiteral("output")},
                                          QStringLiteral("Writes the result to FILE instead of "
                                                         "standard output; FILE may be an input."),
                                          QStringLiteral("FILE"));
    const QCommandLineOption zeroOption({QStringLiteral("z"), QStringLiteral("zero-terminated")},
                                        QStringLiteral("Ends names with a zero byte instead of a "
                                                       "newline, in the input and the output."));
    const QCommandLineOption checkOption(
        {QStringLiteral("c"), QStringLiteral("check")},
        QStringLiteral("Writes nothing and says whether the input is in order already; the first "
                       "name out of order is reported with its file and line."));
    parser.addOptions(
        {byOption, reverseOption, uniqueOption, outputOption, zeroOption, checkOption});
    if (int status = parseArguments(parser, arguments, 0, -1); status != KeepGoing)
        return status;

    const QString by = parser.value(byOption);
    const auto order = std::find_if(std::begin(orders), std::end(orders),
                                    [&](const Order &o) { return by == QLatin1String(o.name); });
    if (order == std::end(orders))
        return fail(ExitUsage, QStringLiteral("sort: unknown order '%1'; use alphanum, namenum, "
                                              "pinh or pinv")
                                   .arg(by));
    const bool checking = parser.isSet(checkOption);
    if (checking && parser.isSet(outputOption))
        return fail(ExitUsage, QStringLiteral("sort: --check writes nothing; drop --output"));

    const char end = parser.isSet(zeroOption) ? '\0' : '\n';
    QStringList files = parser.positionalArguments();
    if (files.isEmpty())
        files << QStringLiteral("-");
    std::vector<QByteArray> names;
    std::vector<Input> inputs;
    for (const QString &path : std::as_const(files)) {
        QByteArray text;
        if (int status = readInputFile(path, text); status != KeepGoing)
            return status;
        inputs.push_back({path, names.size()});
        appendNames(text, end, names);
    }
    // The comparators read zero-terminated names: a zero byte would cut a name short.
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].contains('\0'))
            return fail(ExitInvalidInput,
                        QStringLiteral("sort: name %1 holds a zero byte").arg(i + 1));
    }

    const auto compare = order->compare;
    const bool reverse = parser.isSet(reverseOption);
    const auto before = [compare, reverse](const QByteArray &a, const QByteArray &b) {
        return reverse ? compare(b.constData(), a.constData()) < 0
                       : compare(a.constData(), b.constData()) < 0;
    };
    const auto equal = [compare](const QByteArray &a, const QByteArray &b) {
        return compare(a.constData(), b.constData()) == 0;
    };
    const bool unique = parser.isSet(uniqueOption);
    if (checking) {
        // With --unique two equal names in a row are out of order too, as in "sort -c -u".
        return checkOrder(names, inputs, [&](const QByteArray &a, const QByteArray &b) {
            return before(b, a) || (unique && equal(a, b));
        });
    }

    // A merge sort stays inside the range whatever the comparator answers; not every one of
    // these orders is a strict weak ordering for every input.
    std::stable_sort(names.begin(), names.end(), before);
    if (unique)
        names.erase(std::unique(names.begin(), names.end(), equal), names.end());
    return writeNames(names, end, parser.value(outputOption));
}

#include "commands.h"
#include "toolio.h"

#include <corvekit/helpindexreader.h>
#include <helpindexreader/helpindexcheck_p.h>
#include <helpindexreader/helpindexoutline_p.h>

#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

namespace {

// Where a pass stopped, as "FILE:LINE:COLUMN: text".
QString whereItStopped(const QString &file, qint64 line, qint64 column, const QString &error)
{
    return QStringLiteral("%1:%2:%3: %4").arg(file).arg(line).arg(column).arg(error);
}

// The verdict of one whole pass, the same check that `doctor` makes of the installation's index.
int report(const QString &file, const corvekit_private::HelpIndexCheck &verdict, bool json)
{
    if (json) {
        QJsonObject root{{QStringLiteral("file"), file}, {QStringLiteral("valid"), verdict.valid}};
        if (!verdict.valid) {
            root.insert(QStringLiteral("error"), verdict.error);
            root.insert(QStringLiteral("line"), verdict.line);
            root.insert(QStringLiteral("column"), verdict.column);
        }
        printJson(root);
        return verdict.valid ? ExitSuccess : ExitInvalidInput;
    }
    if (!verdict.valid)
        return fail(ExitInvalidInput,
                    whereItStopped(file, verdict.line, verdict.column, verdict.error));
    printLine(QStringLiteral("%1: a valid help index").arg(file));
    return ExitSuccess;
}

QJsonArray entriesJson(const QList<corvekit_private::HelpIndexEntry> &entries)
{
    QJsonArray array;
    for (const corvekit_private::HelpIndexEntry &entry : entries)
        array.append(QJsonObject{{QStringLiteral("name"), entry.name},
                                 {QStringLiteral("href"), entry.href}});
    return array;
}

// The tools, views and dialogs of a sound index: one line each, kind, tool and name separated
// by tabs, so that a line tells everything about itself.
int list(const QString &file, QFile &device, bool json)
{
    // Only a sound index is listed; a broken one is reported as --check reports it.
    if (const auto verdict = corvekit_private::checkHelpIndex(&device); !verdict.valid)
        return report(file, verdict, json);
    QList<corvekit_private::HelpIndexTool> tools;
    if (!corvekit_private::helpIndexOutline(&device, tools))
        return fail(ExitInvalidInput, QStringLiteral("%1: cannot read the index again").arg(file));
    if (json) {
        QJsonArray array;
        for (const corvekit_private::HelpIndexTool &tool : std::as_const(tools))
            array.append(QJsonObject{{QStringLiteral("name"), tool.tool.name},
                                     {QStringLiteral("href"), tool.tool.href},
                                     {QStringLiteral("views"), entriesJson(tool.views)},
                                     {QStringLiteral("dialogs"), entriesJson(tool.dialogs)}});
        printJson({{QStringLiteral("file"), file}, {QStringLiteral("tools"), array}});
        return ExitSuccess;
    }
    for (const corvekit_private::HelpIndexTool &tool : std::as_const(tools)) {
        printLine(QStringLiteral("tool\t") + tool.tool.name);
        for (const corvekit_private::HelpIndexEntry &view : tool.views)
            printLine(QStringLiteral("view\t%1\t%2").arg(tool.tool.name, view.name));
        for (const corvekit_private::HelpIndexEntry &dialog : tool.dialogs)
            printLine(QStringLiteral("dialog\t%1\t%2").arg(tool.tool.name, dialog.name));
    }
    return ExitSuccess;
}

} // namespace

int runHelpIndex(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Answers what a help index says about a tool, a view or a dialog, as the suite's tools "
        "ask it, lists the tools, views and dialogs of FILE, or checks that FILE is a sound help "
        "index.\n"
        "Without an item option the answer is the help reference of the tool, the view or the "
        "dialog; --text gives the dialog's text instead. An item option asks for a short text "
        "(or --url for the reference) of an item of the tool, or of the dialog with --dialog.\n"
        "Exit status: 0 answered, 1 no match, 2 usage, 3 the file is missing, not a regular "
        "file, unreadable or not a sound help index."));
    const QCommandLineOption checkOption(QStringLiteral("check"),
                                         QStringLiteral("Checks the whole file and says where it "
                                                        "breaks."));
    const QCommandLineOption listOption(
        QStringLiteral("list"), QStringLiteral("Lists the tools of the file with their views and "
                                               "dialogs, once the whole file is checked."));
    const QCommandLineOption jsonOption = jsonOutputOption();
    const QCommandLineOption toolOption(QStringLiteral("tool"),
                                        QStringLiteral("Asks about the tool called T."),
                                        QStringLiteral("T"));
    const QCommandLineOption viewOption(QStringLiteral("view"),
                                        QStringLiteral("Asks for the reference of the view V of "
                                                       "the tool."),
                                        QStringLiteral("V"));
    const QCommandLineOption dialogOption(QStringLiteral("dialog"),
                                          QStringLiteral("Asks about the dialog D of the tool."),
                                          QStringLiteral("D"));
    const QCommandLineOption textOption(QStringLiteral("text"),
                                        QStringLiteral("Gives the dialog's text instead of its "
                                                       "reference."));
    const QCommandLineOption whatsThisOption(QStringLiteral("whatsthis"),
                                             QStringLiteral("Asks for the what's-this text of "
                                                            "ITEM."),
                                             QStringLiteral("ITEM"));
    const QCommandLineOption tooltipOption(QStringLiteral("tooltip"),
                                           QStringLiteral("Asks for the tooltip of ITEM."),
                                           QStringLiteral("ITEM"));
    const QCommandLineOption descriptionOption(QStringLiteral("description"),
                                               QStringLiteral("Asks for the description of ITEM."),
                                               QStringLiteral("ITEM"));
    const QCommandLineOption urlOption(QStringLiteral("url"),
                                       QStringLiteral("Asks for the reference of ITEM (a "
                                                      "description's, or at tool level a "
                                                      "view's)."),
                                       QStringLiteral("ITEM"));
    parser.addOptions({checkOption, listOption, jsonOption, toolOption, viewOption, dialogOption,
                       textOption, whatsThisOption, tooltipOption, descriptionOption, urlOption});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The help index file."));
    if (int status = parseArguments(parser, arguments, 1, 1); status != KeepGoing)
        return status;

    // Which item query, if any; at most one.
    const std::pair<const QCommandLineOption *, const char *> itemKinds[] = {
        {&whatsThisOption, "whatsthis"},
        {&tooltipOption, "tooltip"},
        {&descriptionOption, "description"},
        {&urlOption, "url"}};
    const QCommandLineOption *itemOption = nullptr;
    QString kind;
    for (const auto &[option, name] : itemKinds) {
        if (!parser.isSet(*option))
            continue;
        if (itemOption)
            return fail(ExitUsage, QStringLiteral("helpindex: give at most one item option"));
        itemOption = option;
        kind = QString::fromLatin1(name);
    }
    const bool checking = parser.isSet(checkOption);
    const bool listing = parser.isSet(listOption);
    const bool hasView = parser.isSet(viewOption);
    const bool hasDialog = parser.isSet(dialogOption);
    const bool querying = parser.isSet(toolOption) || hasView || hasDialog || itemOption;
    if (checking && listing)
        return fail(ExitUsage, QStringLiteral("helpindex: give either --check or --list"));
    if ((checking || listing) && querying)
        return fail(ExitUsage,
                    QStringLiteral("helpindex: --%1 takes no query options")
                        .arg(checking ? QStringLiteral("check") : QStringLiteral("list")));
    if (!checking && !listing && !parser.isSet(toolOption))
        return fail(ExitUsage,
                    QStringLiteral("helpindex: give --check, --list or --tool; see --help"));
    if (hasView && (hasDialog || itemOption))
        return fail(ExitUsage,
                    QStringLiteral("helpindex: --view takes no --dialog or item option"));
    if (parser.isSet(textOption) && (!hasDialog || itemOption))
        return fail(ExitUsage,
                    QStringLiteral("helpindex: --text needs --dialog and no item option"));

    const QString fileName = parser.positionalArguments().constFirst();
    if (int status = checkInputFile(fileName); status != KeepGoing)
        return status;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return fail(ExitInvalidInput,
                    QStringLiteral("%1: cannot read: %2").arg(fileName, file.errorString()));
    const bool json = parser.isSet(jsonOption);
    if (checking)
        return report(fileName, corvekit_private::checkHelpIndex(&file), json);
    if (listing)
        return list(fileName, file, json);
    HelpIndexReader reader;
    reader.setDevice(&file);

    const QByteArray tool = parser.value(toolOption).toUtf8();
    const QByteArray dialog = parser.value(dialogOption).toUtf8();
    const QByteArray view = parser.value(viewOption).toUtf8();
    const QByteArray item = itemOption ? parser.value(*itemOption).toUtf8() : QByteArray();
    QString answer;
    if (itemOption) {
        // With a dialog the item is the dialog's, else the tool's (a null third argument).
        const char *second = hasDialog ? dialog.constData() : item.constData();
        const char *third = hasDialog ? item.constData() : nullptr;
        if (kind == QLatin1String("whatsthis"))
            answer = reader.getWhatsThisText(tool.constData(), second, third);
        else if (kind == QLatin1String("tooltip"))
            answer = reader.getToolTipText(tool.constData(), second, third);
        else if (kind == QLatin1String("description"))
            answer = reader.getDescription(tool.constData(), second, third);
        else
            answer = reader.getDescriptionUrl(tool.constData(), second, third);
    } else if (hasView) {
        kind = QStringLiteral("view");
        answer = reader.getViewHelp(tool.constData(), view.constData());
    } else if (hasDialog) {
        const bool text = parser.isSet(textOption);
        kind = text ? QStringLiteral("text") : QStringLiteral("dialog");
        answer = text ? reader.getDlgText(tool.constData(), dialog.constData())
                      : reader.getDlgHelp(tool.constData(), dialog.constData());
    } else {
        kind = QStringLiteral("tool");
        answer = reader.getToolHelp(tool.constData());
    }

    if (answer.isNull() && reader.error() != QXmlStreamReader::NoError)
        return fail(ExitInvalidInput, whereItStopped(fileName, reader.lineNumber(),
                                                     reader.columnNumber(), reader.errorString()));
    if (json) {
        QJsonObject root{{QStringLiteral("tool"), QString::fromUtf8(tool)},
                         {QStringLiteral("query"), kind},
                         {QStringLiteral("found"), !answer.isNull()},
                         {QStringLiteral("value"),
                          answer.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(answer)}};
        if (hasView)
            root.insert(QStringLiteral("view"), QString::fromUtf8(view));
        if (hasDialog)
            root.insert(QStringLiteral("dialog"), QString::fromUtf8(dialog));
        if (itemOption)
            root.insert(QStringLiteral("item"), QString::fromUtf8(item));
        printJson(root);
        return answer.isNull() ? ExitNotFound : ExitSuccess;
    }
    if (answer.isNull())
        return fail(ExitNotFound, QStringLiteral("%1: no match").arg(fileName));
    printLine(answer);
    return ExitSuccess;
}

#include "kelvmenutool.h"

#include "core/aboutinfo.h"
#include "core/menuproblemcheck.h"
#include "counttext.h"
#include "editing/menuopening.h"
#include "editscriptparser.h"
#include "exitcode.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "menufile/saveproblemcheck.h"
#include "menujson.h"
#include "menutreelisting.h"
#include "model/errortable.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "scriptededitor.h"
#include "scriptoperation.h"
#include "textoutput.h"
#include "usagetext.h"
#include "utf8textcheck.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QFile>
#include <QIODevice>

namespace {

QCommandLineOption helpOption()
{
    return QCommandLineOption(QStringList { QStringLiteral("h"), QStringLiteral("help") });
}

QCommandLineOption detectLinksOption()
{
    return QCommandLineOption(QStringLiteral("detect-links"));
}

QCommandLineOption outputOption()
{
    return QCommandLineOption(QStringList { QStringLiteral("o"), QStringLiteral("output") }, QString(),
                              QStringLiteral("OUT"));
}

/// QCommandLineParser wants the program name first; the subcommand stands in for it.
QStringList parserArguments(const QString& command, const QStringList& arguments)
{
    return QStringList { QStringLiteral("kelvmenu ") + command } + arguments;
}

} // namespace

KelvMenuTool::KelvMenuTool(QIODevice& in, QIODevice& out, QIODevice& err)
    : m_in(in)
    , m_output(out)
    , m_err(err)
{
}

int KelvMenuTool::run(const QStringList& arguments)
{
    const int exitCode = runCommand(arguments);
    // A result that did not reach its reader in full is no success, whatever the command found.
    if (!m_output.finish()) {
        printError(QStringLiteral("kelvmenu: cannot write to standard output: %1\n").arg(m_output.errorString()));
        return ExitCode::WriteError;
    }
    return exitCode;
}

int KelvMenuTool::runCommand(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        printError(UsageText::general());
        return ExitCode::UsageError;
    }
    const QString command = arguments.first();
    const QStringList rest = arguments.mid(1);
    if (command == QLatin1String("--help") || command == QLatin1String("-h")) {
        if (!rest.isEmpty()) {
            return usageError(QString(), QStringLiteral("--help takes no arguments"));
        }
        print(UsageText::general());
        return ExitCode::Success;
    }
    if (command == QLatin1String("--version")) {
        if (!rest.isEmpty()) {
            return usageError(QString(), QStringLiteral("--version takes no arguments"));
        }
        print(versionText(QStringLiteral("kelvmenu")));
        return ExitCode::Success;
    }
    if (command == QLatin1String("dump")) {
        return runDump(rest);
    }
    if (command == QLatin1String("format")) {
        return runFormat(rest);
    }
    if (command == QLatin1String("check")) {
        return runCheck(rest);
    }
    if (command == QLatin1String("tree")) {
        return runTree(rest);
    }
    if (command == QLatin1String("edit")) {
        return runEdit(rest);
    }
    if (command.startsWith(QLatin1Char('-'))) {
        return usageError(QString(), QStringLiteral("unknown option '%1'").arg(command));
    }
    return usageError(QString(), QStringLiteral("unknown command '%1'").arg(command));
}

int KelvMenuTool::runDump(const QStringList& arguments)
{
    const QString command = QStringLiteral("dump");
    QCommandLineParser parser;
    parser.addOption(detectLinksOption());
    if (const auto ended = parseArguments(parser, command, arguments, UsageText::dump())) {
        return *ended;
    }
    const QStringList files = parser.positionalArguments();
    if (const auto ended = requireOneFile(command, files)) {
        return *ended;
    }

    MenuDocument document;
    const int readCode = readOrReport(files.first(), parser.isSet(QStringLiteral("detect-links")), document);
    if (readCode != ExitCode::Success) {
        return readCode;
    }
    writeMenuDocumentJson(document, m_output);
    return ExitCode::Success;
}

int KelvMenuTool::runFormat(const QStringList& arguments)
{
    const QString command = QStringLiteral("format");
    QCommandLineParser parser;
    parser.addOption(detectLinksOption());
    parser.addOption(outputOption());
    if (const auto ended = parseArguments(parser, command, arguments, UsageText::format())) {
        return *ended;
    }
    const QStringList files = parser.positionalArguments();
    if (const auto ended = requireOneFile(command, files)) {
        return *ended;
    }
    const QString outputPath
        = parser.isSet(QStringLiteral("output")) ? parser.value(QStringLiteral("output")) : files.first();
    if (outputPath.isEmpty()) {
        return usageError(command, QStringLiteral("empty file name after -o"));
    }

    MenuDocument document;
    const int readCode = readOrReport(files.first(), parser.isSet(QStringLiteral("detect-links")), document);
    if (readCode != ExitCode::Success) {
        return readCode;
    }
    return writeOrReport(document, outputPath);
}

int KelvMenuTool::runCheck(const QStringList& arguments)
{
    const QString command = QStringLiteral("check");
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption(QStringLiteral("strict")));
    if (const auto ended = parseArguments(parser, command, arguments, UsageText::check())) {
        return *ended;
    }
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty()) {
        return usageError(command, QStringLiteral("missing FILE"));
    }

    bool anyInvalid = false;
    bool anyWarning = false;
    for (const QString& path : files) {
        // Without link detection, so that the command count is what the file itself stores.
        QByteArray bytes;
        MenuReadResult result = readMenuFileBytes(path, bytes);
        const MenuFileCheck check = result.ok() ? MenuProblems::checkFileBytes(bytes) : MenuFileCheck {};
        if (result.ok()) {
            result = check.read;
        }
        if (!result.ok()) {
            printError(readFailureText(path, result) + QLatin1Char('\n'));
            anyInvalid = true;
            continue;
        }
        qsizetype commandCount = 0;
        for (const MenuItem& item : check.document.items) {
            commandCount += item.commandUpperBound();
        }
        // One multi-argument arg(), so that a "%" in a file name is never taken for a placeholder.
        print(QStringLiteral("%1: ok (%2, %3)\n")
                  .arg(path, countText(check.document.items.size(), QStringLiteral("item"), QStringLiteral("items")),
                       countText(commandCount, QStringLiteral("command"), QStringLiteral("commands"))));
        // Valid, yet likely not what its author wrote: the editor would show its text garbled.
        const QString warning = utf8TextWarning(bytes);
        if (!warning.isEmpty()) {
            printError(QStringLiteral("%1: warning: %2\n").arg(path, warning));
            anyWarning = true;
        }
        for (const MenuProblem& problem : check.problems) {
            printError(warningText(path, problem) + QLatin1Char('\n'));
            anyWarning = true;
        }
    }
    if (anyInvalid || (anyWarning && parser.isSet(QStringLiteral("strict")))) {
        return ExitCode::InvalidFile;
    }
    return ExitCode::Success;
}

int KelvMenuTool::runTree(const QStringList& arguments)
{
    const QString command = QStringLiteral("tree");
    QCommandLineParser parser;
    if (const auto ended = parseArguments(parser, command, arguments, UsageText::tree())) {
        return *ended;
    }
    const QStringList files = parser.positionalArguments();
    if (const auto ended = requireOneFile(command, files)) {
        return *ended;
    }

    // With detection, so that the listing shows the links the editor would show.
    MenuDocument document;
    const int readCode = readOrReport(files.first(), true, document);
    if (readCode != ExitCode::Success) {
        return readCode;
    }
    writeMenuTreeListing(document, m_output);
    return ExitCode::Success;
}

int KelvMenuTool::runEdit(const QStringList& arguments)
{
    const QString command = QStringLiteral("edit");
    QCommandLineParser parser;
    parser.addOption(detectLinksOption());
    parser.addOption(QCommandLineOption(QStringLiteral("copy-command-dup")));
    parser.addOption(QCommandLineOption(QStringLiteral("dump")));
    parser.addOption(outputOption());
    if (const auto ended = parseArguments(parser, command, arguments, UsageText::edit())) {
        return *ended;
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2) {
        return usageError(
            command, files.size() < 2 ? QStringLiteral("missing FILE or OPS") : QStringLiteral("too many arguments"));
    }
    const bool dump = parser.isSet(QStringLiteral("dump"));
    if (dump && parser.isSet(QStringLiteral("output"))) {
        return usageError(command, QStringLiteral("--dump prints the result, -o writes it: give one of them"));
    }
    const QString path = files.at(0);
    const QString opsPath = files.at(1);
    const QString outputPath = parser.isSet(QStringLiteral("output")) ? parser.value(QStringLiteral("output")) : path;
    if (outputPath.isEmpty()) {
        return usageError(command, QStringLiteral("empty file name after -o"));
    }

    // The whole script is checked before the menu is touched, so a malformed one changes nothing.
    QByteArray opsBytes;
    if (opsPath == QLatin1String("-")) {
        opsBytes = m_in.readAll();
    } else {
        QFile opsFile(opsPath);
        if (!opsFile.open(QIODevice::ReadOnly)) {
            return usageError(command, QStringLiteral("cannot read OPS %1: %2").arg(opsPath, opsFile.errorString()));
        }
        opsBytes = opsFile.readAll();
    }
    QString parseError;
    const QList<ScriptOperation> operations = EditScriptParser::parse(opsBytes, parseError);
    if (!parseError.isEmpty()) {
        return usageError(command, parseError);
    }

    MenuDocument document;
    const int readCode = readOrReport(path, parser.isSet(QStringLiteral("detect-links")), document);
    if (readCode != ExitCode::Success) {
        return readCode;
    }
    ScriptedEditor editor(document, parser.isSet(QStringLiteral("copy-command-dup")));
    for (qsizetype i = 0; i < operations.size(); ++i) {
        const ScriptOperation& operation = operations.at(i);
        const QString number = QString::number(i + 1);
        const bool ran = editor.run(operation);
        const QStringList messages = editor.messages();
        for (const QString& message : messages) {
            printError(QStringLiteral("%1: operation %2: %3\n").arg(path, number, message));
        }
        if (!ran) {
            printError(QStringLiteral("%1: operation %2 (%3): %4\n").arg(path, number, operation.op, editor.failure()));
            return ExitCode::Refused;
        }
    }

    if (dump) {
        writeMenuDocumentJson(editor.document(), m_output);
        return ExitCode::Success;
    }
    return writeOrReport(editor.document(), outputPath);
}

std::optional<int> KelvMenuTool::parseArguments(QCommandLineParser& parser, const QString& command,
                                                const QStringList& arguments, const QString& usage)
{
    parser.addOption(helpOption());
    if (!parser.parse(parserArguments(command, arguments))) {
        return usageError(command, parser.errorText());
    }
    if (parser.isSet(QStringLiteral("help"))) {
        print(usage);
        return ExitCode::Success;
    }
    return std::nullopt;
}

std::optional<int> KelvMenuTool::requireOneFile(const QString& command, const QStringList& files)
{
    if (files.size() == 1) {
        return std::nullopt;
    }
    return usageError(command,
                      files.isEmpty() ? QStringLiteral("missing FILE") : QStringLiteral("too many file names"));
}

int KelvMenuTool::writeOrReport(const MenuDocument& document, const QString& outputPath)
{
    const QList<SaveProblem> problems = findSaveProblems(document);
    if (!problems.isEmpty()) {
        for (const SaveProblem& problem : problems) {
            printError(QStringLiteral("%1: %2\n").arg(outputPath, problem.text()));
        }
        printError(QStringLiteral("%1: nothing written: a menu file cannot hold the values above\n").arg(outputPath));
        return ExitCode::WriteError;
    }
    try {
        writeMenuFile(document, outputPath);
    } catch (const RunTimeError& error) {
        printError(QStringLiteral("%1: cannot write the menu file: %2\n").arg(outputPath, error.description()));
        return ExitCode::WriteError;
    }
    return ExitCode::Success;
}

int KelvMenuTool::readOrReport(const QString& path, bool detectLinks, MenuDocument& document)
{
    const MenuReadResult result = openMenuFile(path, detectLinks, document);
    if (result.ok()) {
        return ExitCode::Success;
    }
    printError(readFailureText(path, result) + QLatin1Char('\n'));
    return result.code == MenuReadResult::NotAMenuFile ? ExitCode::NotAMenuFile : ExitCode::ReadError;
}

QString KelvMenuTool::warningText(const QString& path, const MenuProblem& problem)
{
    if (problem.line > 0) {
        return QStringLiteral("%1:%2: warning: %3").arg(path, QString::number(problem.line), problem.text());
    }
    return QStringLiteral("%1: warning: %2").arg(path, problem.text());
}

int KelvMenuTool::usageError(const QString& command, const QString& message)
{
    const QString helpCommand
        = command.isEmpty() ? QStringLiteral("kelvmenu --help") : QStringLiteral("kelvmenu %1 --help").arg(command);
    printError(QStringLiteral("kelvmenu: %1\nRun \"%2\" for usage.\n").arg(message, helpCommand));
    return ExitCode::UsageError;
}

void KelvMenuTool::print(const QString& text)
{
    m_output.write(text);
}

void KelvMenuTool::printError(const QString& text)
{
    m_err.write(text.toUtf8());
}

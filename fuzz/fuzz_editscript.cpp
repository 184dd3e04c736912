// libFuzzer target: the operations of `kelvmenu edit` on a small menu. The input is either an OPS
// script as kelvmenu reads it (when it starts like a JSON array) or, otherwise, bytes from which
// well-formed operations with hostile texts are built one at a time, mostly on keys the menu holds
// at that moment. Every operation goes through kelvmenu's script parser and runs as kelvmenu runs
// it, through the editor's own operations, up to the first one refused; nothing may crash, and
// the menu a successful run leaves must be writable and read back as it was written exactly when
// the save check says the format can hold it.

#include "documentsavability.h"
#include "fuzzfailure.h"
#include "menucomparison.h"

#include "cli/editscriptparser.h"
#include "cli/menujson.h"
#include "cli/scriptededitor.h"
#include "cli/scriptoperation.h"
#include "editing/menuopening.h"
#include "menufile/menufilewriter.h"
#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

/// Archive (Pack, Unpack with the same commands as Pack, Unpack > Here), Delete, Notes: nesting,
/// commands, a link when links are detected, and an item without commands.
const QByteArray
    smallMenu("KELV - Menu\r\n\r\n[Menu]\r\n\r\n"
              "Archive\r\n\xB7\xB7\xB7Pack\r\n\xB7\xB7\xB7Unpack\r\n\xB7\xB7\xB7\xB7\xB7\xB7Here\r\nDelete\r\nNotes\r\n"
              "\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n"
              "0002:zip=pack.exe a $fs-001$\r\n0002:rar=pack.exe r $fs-001$\r\n"
              "0003:zip=pack.exe a $fs-001$\r\n0003:rar=pack.exe r $fs-001$\r\n"
              "0004:zip=pack.exe x $fs-001$ -o\"$dest$\"\r\n0005:=del $fs-001$\r\n"
              "\r\n[/Commands]\r\n");

/// More operations than this, or a menu grown past this many items, say nothing new and only slow
/// the fuzzer down: the run stops there as if the script had ended.
constexpr qsizetype operationLimit = 48;
constexpr qsizetype itemLimit = 2000;

/// Pieces of captions, extensions and search texts that mean something to the menu file format.
const std::array<const char*, 26> textPieces { {
    "",
    "x",
    "New Item",
    "\xC2\xB7",
    "\xC2\xB7\xC2\xB7\xC2\xB7",
    "[/Menu]",
    "[/menu]",
    "[Menu]",
    "\r",
    "\n",
    "\r\n",
    "=",
    ":",
    "||",
    "0001:",
    "E1",
    "Pack",
    "Root",
    " ",
    "\t",
    "\xE2\x82\xAC" /* euro sign */,
    "\xC3\xA9" /* e acute */,
    "\xC4\x80" /* A macron */,
    "\xF0\x9F\x98\x80" /* an emoji */,
    "a=b",
    "$fs-001$",
} };

const std::array<const char*, 4> places { { "child", "next", "child", "next" } };

QString hostileText(FuzzedDataProvider& provider)
{
    QString text;
    const int pieces = provider.ConsumeIntegralInRange(0, 3);
    for (int piece = 0; piece < pieces; ++piece) {
        if (provider.ConsumeBool()) {
            text += QString::fromUtf8(
                textPieces.at(provider.ConsumeIntegralInRange<std::size_t>(0, textPieces.size() - 1)));
        } else {
            const std::string bytes = provider.ConsumeRandomLengthString(12);
            text += Windows1252Codec::decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        }
    }
    // A marker at the end of a caption is the classic trap of files edited by hand.
    if (provider.ConsumeBool() && provider.ConsumeBool()) {
        text += QChar(0x00B7);
    }
    return text;
}

/// Mostly the key of an item the menu holds now; sometimes the root's, none, a key given out
/// never or long ago, or any text.
QString itemKey(FuzzedDataProvider& provider, const MenuDocument& document)
{
    const int choice = provider.ConsumeIntegralInRange(0, 19);
    if (choice < 16 && !document.items.isEmpty()) {
        return document.items.at(provider.ConsumeIntegralInRange<qsizetype>(0, document.items.size() - 1)).key;
    }
    if (choice == 16) {
        return QStringLiteral("Root");
    }
    if (choice == 17) {
        return QString();
    }
    if (choice == 18) {
        return QLatin1Char('E') + QString::number(provider.ConsumeIntegralInRange(0, 40));
    }
    return hostileText(provider);
}

/// One operation object with every field its operation takes, each of the right type.
QJsonObject builtOperation(FuzzedDataProvider& provider, const QStringList& names, const MenuDocument& document)
{
    const QString op = names.at(provider.ConsumeIntegralInRange<qsizetype>(0, names.size() - 1));
    QJsonObject object;
    object.insert(QStringLiteral("op"), op);
    if (op == QLatin1String("look-for-links") || op == QLatin1String("uncheck-links")) {
        return object;
    }
    if (op == QLatin1String("replace")) {
        object.insert(QStringLiteral("find"), hostileText(provider));
        object.insert(QStringLiteral("replacement"), hostileText(provider));
        if (provider.ConsumeBool()) {
            object.insert(QStringLiteral("branch"), itemKey(provider, document));
        }
        return object;
    }
    object.insert(QStringLiteral("key"), itemKey(provider, document));
    const bool creates = op == QLatin1String("new-item") || op == QLatin1String("new-sub-item");
    if (op == QLatin1String("rename") || (creates && provider.ConsumeBool())) {
        object.insert(QStringLiteral("caption"), hostileText(provider));
    } else if (op == QLatin1String("link")) {
        object.insert(QStringLiteral("target"), itemKey(provider, document));
    } else if (op == QLatin1String("drop")) {
        object.insert(QStringLiteral("target"), itemKey(provider, document));
        object.insert(QStringLiteral("place"),
                      QLatin1String(places.at(provider.ConsumeIntegralInRange<std::size_t>(0, places.size() - 1))));
        object.insert(QStringLiteral("copy"), provider.ConsumeBool());
    } else if (op == QLatin1String("add-command") || op == QLatin1String("edit-command")) {
        if (op == QLatin1String("edit-command")) {
            object.insert(QStringLiteral("slot"), provider.ConsumeIntegralInRange<int>(1, 4));
        }
        object.insert(QStringLiteral("extension"), hostileText(provider));
        object.insert(QStringLiteral("command"), hostileText(provider));
    } else if (op == QLatin1String("remove-command")) {
        object.insert(QStringLiteral("slot"), provider.ConsumeIntegralInRange<int>(1, 4));
    }
    return object;
}

/// The operation `object` as kelvmenu reads it from a script; a well-formed operation that the
/// parser refuses is a failure.
ScriptOperation parsedOperation(const QJsonObject& object)
{
    const QByteArray script = QJsonDocument(QJsonArray { object }).toJson(QJsonDocument::Compact);
    QString error;
    const QList<ScriptOperation> operations = EditScriptParser::parse(script, error);
    if (!error.isEmpty() || operations.size() != 1) {
        failFuzzCase(QStringLiteral("a well-formed script is refused: %1\n%2").arg(error, QString::fromUtf8(script)));
    }
    return operations.first();
}

bool startsLikeJson(const std::uint8_t* data, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        switch (data[i]) {
        case ' ':
        case '\t':
        case '\r':
        case '\n':
            continue;
        case '[':
            return true;
        default:
            return false;
        }
    }
    return size > 0;
}

QByteArray writtenBytes(const MenuDocument& document, const QString& what, const QByteArray& script)
{
    try {
        return menuFileBytes(document);
    } catch (const RunTimeError& error) {
        failFuzzCase(QStringLiteral("the writer fails on %1: %2\nscript: %3")
                         .arg(what, error.report(), QString::fromUtf8(script)));
    }
}

/// Whether an item the writer writes links to a key that names no item. Paste gives the selected
/// item the copied record's link as it was, also when its target has been deleted since the copy;
/// the writer refuses such a menu (run-time error 9), which kelvmenu reports as a write error.
bool writesBrokenLink(const MenuDocument& document)
{
    for (const SaveOrderEntry& entry : saveOrder(document)) {
        const MenuItem& item = document.items.at(entry.index);
        if (item.copiesCommands && findItemByKey(document, item.copyKey) < 0) {
            return true;
        }
    }
    return false;
}

/// The checks of the menu a successful run of `script` leaves, which kelvmenu would write or print.
void checkEditedMenu(const MenuDocument& edited, const QByteArray& script)
{
    const QString scriptLine = QStringLiteral("\nscript: ") + QString::fromUtf8(script);
    (void)menuDocumentJson(edited); // what --dump prints
    if (writesBrokenLink(edited)) {
        if (documentIsSavable(edited)) {
            failFuzzCase(QStringLiteral("the save check lets a link to a deleted item through%1").arg(scriptLine));
        }
        try {
            (void)menuFileBytes(edited);
        } catch (const RunTimeError&) {
            return; // refused with a message, nothing written
        }
    }
    const QByteArray written = writtenBytes(edited, QStringLiteral("an edited menu"), script);
    MenuDocument reread;
    const MenuReadResult result = openMenuBytes(written, false, reread);
    if (!documentIsSavable(edited)) {
        // The save check must refuse only what the file would lose.
        if (result.ok() && menuDifference(edited, reread, ComparedDetail::WrittenTree).isEmpty()) {
            failFuzzCase(
                QStringLiteral("the save check refuses an edited menu that its file keeps whole%1").arg(scriptLine));
        }
        return;
    }
    if (!result.ok()) {
        failFuzzCase(QStringLiteral("an edited menu does not read back: line %1: %2%3")
                         .arg(QString::number(result.line), result.reason, scriptLine));
    }
    const QString difference = menuDifference(edited, reread, ComparedDetail::WrittenTree);
    if (!difference.isEmpty()) {
        failFuzzCase(QStringLiteral("an edited menu, written and read back: %1%2").arg(difference, scriptLine));
    }
    const QByteArray rewritten = writtenBytes(reread, QStringLiteral("an edited menu read back"), script);
    if (rewritten != written) {
        failFuzzCase(QStringLiteral("an edited menu written twice differs: %1%2")
                         .arg(firstByteDifference(written, rewritten), scriptLine));
    }
}

MenuDocument smallMenuDocument(bool detectLinks)
{
    MenuDocument opened;
    if (!openMenuBytes(smallMenu, detectLinks, opened).ok()) {
        failFuzzCase(QStringLiteral("the small menu does not open"));
    }
    return opened;
}

/// Runs one operation as kelvmenu does; false when kelvmenu would stop there, writing nothing.
bool runOperation(ScriptedEditor& editor, const ScriptOperation& operation)
{
    const bool ran = editor.run(operation);
    // kelvmenu prints the messages and the failure; building them must work whatever happened.
    (void)editor.messages();
    (void)editor.failure();
    return ran;
}

/// `kelvmenu edit` with `script`, whose operations are `operations`.
void runScript(const QByteArray& script, const QList<ScriptOperation>& operations, bool detectLinks,
               bool copyCommandDup)
{
    ScriptedEditor editor(smallMenuDocument(detectLinks), copyCommandDup);
    for (qsizetype i = 0; i < operations.size() && i < operationLimit; ++i) {
        if (!runOperation(editor, operations.at(i))) {
            return;
        }
        if (editor.document().items.size() > itemLimit) {
            break;
        }
    }
    checkEditedMenu(editor.document(), script);
}

/// `kelvmenu edit` with a script whose every operation is built from the input just before it runs.
void runBuiltScript(const std::uint8_t* data, std::size_t size, bool detectLinks, bool copyCommandDup)
{
    FuzzedDataProvider provider(data, size);
    const QStringList names = EditScriptParser::operationNames();
    ScriptedEditor editor(smallMenuDocument(detectLinks), copyCommandDup);
    // The operations so far, as a script that repeats the run with kelvmenu.
    QJsonArray script;
    for (qsizetype i = 0; i < operationLimit && provider.remaining_bytes() > 0; ++i) {
        const QJsonObject object = builtOperation(provider, names, editor.document());
        script.append(object);
        if (!runOperation(editor, parsedOperation(object))) {
            return;
        }
        if (editor.document().items.size() > itemLimit) {
            break;
        }
    }
    checkEditedMenu(editor.document(), QJsonDocument(script).toJson(QJsonDocument::Compact));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!startsLikeJson(data, size)) {
        runBuiltScript(data, size, false, false);
        runBuiltScript(data, size, true, true);
        return 0;
    }
    const QByteArray script(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    const QList<ScriptOperation> operations = EditScriptParser::parse(script, error);
    if (!error.isEmpty()) {
        return 0; // kelvmenu's usage error: nothing runs
    }
    runScript(script, operations, false, false);
    runScript(script, operations, true, true);
    return 0;
}

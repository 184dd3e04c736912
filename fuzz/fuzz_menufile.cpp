// libFuzzer target: any bytes as a menu file. For every input the editor can open, with and
// without link detection, saving must keep the menu whenever the save check lets it be saved:
// reading the written file gives the same document and writing that again gives the same bytes;
// the save check refuses only menus whose file would differ; link detection never changes what is
// written.

#include "documentsavability.h"
#include "fuzzfailure.h"
#include "menucomparison.h"

#include "editing/menuopening.h"
#include "menufile/menufilewriter.h"
#include "menufile/saveorder.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

QString linkMode(bool detectLinks)
{
    return detectLinks ? QStringLiteral("with link detection") : QStringLiteral("without link detection");
}

/// Whether the items lie in the array in the order the writer walks them, every one of them. A
/// file read back from the writer's layout always does; a read file whose levels jump back over a
/// shallower item does not, and only its written tree can be compared then.
bool arrayIsInWalkOrder(const QList<SaveOrderEntry>& order, const MenuDocument& document)
{
    if (order.size() != document.items.size()) {
        return false;
    }
    for (qsizetype k = 0; k < order.size(); ++k) {
        if (order.at(k).index != k) {
            return false;
        }
    }
    return true;
}

QByteArray writtenBytes(const MenuDocument& document, const QString& what)
{
    try {
        return menuFileBytes(document);
    } catch (const RunTimeError& error) {
        failFuzzCase(QStringLiteral("the writer fails on %1: %2").arg(what, error.report()));
    }
}

/// Reads `input` as the editor opens a menu and checks that saving it keeps it. Returns the
/// written bytes, or nothing when the input is no readable menu.
std::optional<QByteArray> checkRoundTrip(const QByteArray& input, bool detectLinks)
{
    MenuDocument opened;
    if (!openMenuBytes(input, detectLinks, opened).ok()) {
        return std::nullopt;
    }
    const QString mode = linkMode(detectLinks);
    const QByteArray written = writtenBytes(opened, QStringLiteral("a menu read %1").arg(mode));
    MenuDocument reread;
    const MenuReadResult result = openMenuBytes(written, detectLinks, reread);
    if (!documentIsSavable(opened)) {
        // The save check must refuse only what the file would lose.
        if (result.ok() && menuDifference(opened, reread, ComparedDetail::WrittenTree).isEmpty()) {
            failFuzzCase(QStringLiteral("the save check refuses a menu read %1 that its file keeps whole").arg(mode));
        }
        return written;
    }
    if (!result.ok()) {
        failFuzzCase(QStringLiteral("the written menu does not read back %1: line %2: %3")
                         .arg(mode, QString::number(result.line), result.reason));
    }
    // The reader numbers every item it reads, so the writer must reach every one.
    const QList<SaveOrderEntry> order = saveOrder(opened);
    if (order.size() != opened.items.size()) {
        failFuzzCase(
            QStringLiteral("the writer leaves out %1 of the %2 items read %3")
                .arg(QString::number(opened.items.size() - order.size()), QString::number(opened.items.size()), mode));
    }
    const ComparedDetail detail
        = arrayIsInWalkOrder(order, opened) ? ComparedDetail::WholeDocument : ComparedDetail::WrittenTree;
    const QString difference = menuDifference(opened, reread, detail);
    if (!difference.isEmpty()) {
        failFuzzCase(QStringLiteral("read %1, written and read again: %2").arg(mode, difference));
    }
    const QByteArray rewritten = writtenBytes(reread, QStringLiteral("a written menu read back %1").arg(mode));
    if (rewritten != written) {
        failFuzzCase(QStringLiteral("the second write differs from the first %1: %2")
                         .arg(mode, firstByteDifference(written, rewritten)));
    }
    return written;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // No copy: a read past the end of the input is a read past libFuzzer's buffer, which
    // AddressSanitizer catches.
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<QByteArray> plain = checkRoundTrip(input, false);
    const std::optional<QByteArray> detected = checkRoundTrip(input, true);
    if (plain.has_value() != detected.has_value()) {
        failFuzzCase(QStringLiteral("the menu opens only %1").arg(linkMode(detected.has_value())));
    }
    // A link is written as its target's commands, which equal the linked item's own: detecting
    // links must not change a byte of the file.
    if (plain && *plain != *detected) {
        failFuzzCase(
            QStringLiteral("link detection changes the written file: %1").arg(firstByteDifference(*plain, *detected)));
    }
    return 0;
}

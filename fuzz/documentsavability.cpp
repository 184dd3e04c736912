#include "documentsavability.h"

#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QString>

namespace {

// -------------------------------------------------------------------------------------------------
// THE ONE PLACE TO SWITCH once the core lists save problems itself (menufile/saveproblemcheck.h):
// the body of documentIsSavable becomes
//     return findSaveProblems(document).isEmpty();
// and the helpers of this namespace go. Until then this file decides on its own what the writer
// cannot hold.
// -------------------------------------------------------------------------------------------------

constexpr QChar marker(0x00B7);

bool holdsLineBreak(const QString& text)
{
    return text.contains(QLatin1Char('\r')) || text.contains(QLatin1Char('\n'));
}

/// Characters Windows-1252 has no byte for come out of the encoder as "?".
bool isEncodable(const QString& text)
{
    return Windows1252Codec::decode(Windows1252Codec::encode(text)) == text;
}

bool captionIsWritable(const MenuItem& item)
{
    const bool topLevel = item.parent == -1;
    // The writer puts a top-level caption alone on its line: an empty one is an empty line, which
    // the reader skips, and "[/Menu]" ends the item section.
    if (topLevel
        && (item.caption.isEmpty() || item.caption.compare(QLatin1String("[/menu]"), Qt::CaseInsensitive) == 0)) {
        return false;
    }
    // The reader takes every leading marker for a level.
    if (item.caption.startsWith(marker)) {
        return false;
    }
    return !holdsLineBreak(item.caption) && isEncodable(item.caption);
}

bool commandIsWritable(const Command& command)
{
    // The reader splits a command line at its first "=": one in the extension moves the rest of
    // the extension into the command text.
    return !command.extension.contains(QLatin1Char('=')) && !holdsLineBreak(command.extension)
        && !holdsLineBreak(command.command) && isEncodable(command.extension) && isEncodable(command.command);
}

} // namespace

bool documentIsSavable(const MenuDocument& document)
{
    // Only what the writer writes matters: the items of the tree walk, each with the commands it
    // is written with (a link's are its target's).
    const QList<SaveOrderEntry> order = saveOrder(document);
    // A file without items does not open. Items can be left unreached: a pasted record keeps the
    // parent it was copied under, which may be gone or be the item itself.
    if (order.isEmpty()) {
        return false;
    }
    for (const SaveOrderEntry& entry : order) {
        const MenuItem& item = document.items.at(entry.index);
        if (!captionIsWritable(item)) {
            return false;
        }
        const qint16 source = item.copiesCommands ? findItemByKey(document, item.copyKey) : qint16(entry.index);
        if (source < 0) {
            continue; // a broken link: the writer refuses it, which the fuzz targets report
        }
        const QList<Command>& commands = document.items.at(source).commands;
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            if (!commandIsWritable(commands.at(slot))) {
                return false;
            }
        }
    }
    return true;
}

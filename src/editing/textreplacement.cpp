#include "textreplacement.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <utility>
#include <vector>

namespace {

const char* const replaceSource = "cmdReplaceAll_Click";

/// Whether `text` holds `find` at all.
bool holds(const QString& text, const QString& find)
{
    return !find.isEmpty() && text.contains(find, Qt::CaseSensitive);
}

/// Replaces in the caption of item `index` and, when it holds its own commands, in every command
/// text. An item that holds nothing to replace is left untouched, so that it keeps sharing its texts
/// with the undo states of a large menu.
qint16 replaceInItem(MenuItemArray& items, int index, const QString& find, const QString& replacement)
{
    const MenuItem& item = std::as_const(items).at(index);
    bool found = holds(item.caption, find);
    if (!item.copiesCommands) {
        for (qsizetype slot = 1; slot < item.commands.size() && !found; ++slot) {
            found = holds(item.commands.at(slot).command, find);
        }
    }
    if (!found) {
        return 0;
    }
    MenuItem& changed = items[index];
    qint16 count = replaceInText(changed.caption, find, replacement);
    if (!changed.copiesCommands) {
        for (qsizetype slot = 1; slot < changed.commands.size(); ++slot) {
            if (holds(changed.commands.at(slot).command, find)) {
                count = Int16::checked(qint64(count) + replaceInText(changed.commands[slot].command, find, replacement),
                                       replaceSource);
            }
        }
    }
    return count;
}

} // namespace

qint16 replaceInText(QString& text, const QString& find, const QString& replacement)
{
    if (find.isEmpty()) {
        return 0; // nothing is looked for, nothing found (Replace refuses an empty text before this)
    }
    qint64 count = 0;
    for (qsizetype position = text.indexOf(find, 0, Qt::CaseSensitive); position >= 0;
         position = text.indexOf(find, position + 1, Qt::CaseSensitive)) {
        if (++count > 32767) {
            throw RunTimeError(ErrorNumber::Overflow, QString::fromLatin1(replaceSource));
        }
    }
    if (count > 0) {
        text.replace(find, replacement, Qt::CaseSensitive);
    }
    return qint16(count);
}

qint16 replaceInAll(MenuDocument& document, const QString& find, const QString& replacement)
{
    qint16 count = 0;
    for (int index = 0; index < document.items.size(); ++index) {
        count = Int16::checked(qint64(count) + replaceInItem(document.items, index, find, replacement), replaceSource);
    }
    return count;
}

qint16 replaceInBranch(MenuDocument& document, int index, const QString& find, const QString& replacement)
{
    MenuItemArray& items = document.items;
    const int itemCount = int(items.size());
    if (index < 0 || index >= itemCount) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(replaceSource));
    }
    // Everything below the item, found once through an index of children instead of a scan of the
    // whole menu for every item of the branch.
    std::vector<std::vector<int>> children(static_cast<std::size_t>(itemCount));
    for (int k = 0; k < itemCount; ++k) {
        const int parent = std::as_const(items).at(k).parent;
        if (parent >= 0 && parent < itemCount) {
            children[std::size_t(parent)].push_back(k);
        }
    }
    std::vector<bool> reached(std::size_t(itemCount), false);
    std::vector<int> pending { index };
    reached[std::size_t(index)] = true;
    qint16 count = replaceInItem(items, index, find, replacement);
    while (!pending.empty()) {
        const int parent = pending.back();
        pending.pop_back();
        for (const int child : children[std::size_t(parent)]) {
            if (reached[std::size_t(child)]) {
                // A branch that contains itself would make the replacement go round for ever.
                throw RunTimeError(ErrorNumber::OutOfStackSpace, QString::fromLatin1(replaceSource));
            }
            reached[std::size_t(child)] = true;
            // Once in the item's own pass and once more in its parent's.
            for (int pass = 0; pass < 2; ++pass) {
                count = Int16::checked(qint64(count) + replaceInItem(items, child, find, replacement), replaceSource);
            }
            pending.push_back(child);
        }
    }
    return count;
}

QString replaceRefusal(const EditContext& context)
{
    return context.arguments.text.isEmpty() ? QStringLiteral("You must enter something to find !") : QString();
}

TreeUpdate replaceText(EditContext& context)
{
    MenuDocument& document = context.document;
    const QString& find = context.arguments.text;
    const QString& replacement = context.arguments.replacement;
    // The root stands for the whole menu: it is the top of every branch.
    const int branch = context.selected.isItem() ? findItemByKey(document, context.selected.key) : -1;
    qint16 count = 0;
    if (context.arguments.checked || branch < 0) {
        count = replaceInAll(document, find, replacement);
    } else {
        count = replaceInBranch(document, branch, find, replacement);
    }
    TreeUpdate update;
    update.showMessage(QString::number(count) + QStringLiteral(" replacement were made.")).regenerate().recolour();
    return update;
}

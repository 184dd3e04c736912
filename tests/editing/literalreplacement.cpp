#include "literalreplacement.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

const char* const replaceSource = "cmdReplaceAll_Click";

/// Whether `find` stands in `text` at `position`, compared character code by character code.
bool occursAt(const QString& text, const QString& find, int position)
{
    if (position + int(find.size()) > int(text.size())) {
        return false;
    }
    for (int c = 0; c < int(find.size()); ++c) {
        if (text.at(position + c).unicode() != find.at(c).unicode()) {
            return false;
        }
    }
    return true;
}

/// The caption of item `k` and, when it holds its own commands, the command text of every slot
/// 1..n, in that order; the extensions stay as they are.
qint16 replaceInItem(MenuDocument& document, int k, const QString& find, const QString& replacement)
{
    MenuItem& item = document.items[k];
    qint16 count = LiteralReplacement::replaceInText(item.caption, find, replacement);
    if (!item.copiesCommands) {
        for (int s = 1; s <= item.commandUpperBound(); ++s) {
            count = Int16::checked(qint64(count)
                                       + LiteralReplacement::replaceInText(item.commands[s].command, find, replacement),
                                   replaceSource);
        }
    }
    return count;
}

qint16 replaceInBranchAt(MenuDocument& document, int index, const QString& find, const QString& replacement, int depth)
{
    if (index < 0 || index > document.upperBound()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(replaceSource));
    }
    // Deeper than there are items, the branch has come back round to itself: the calls would go on
    // until the stack runs out.
    if (depth > document.upperBound() + 1) {
        throw RunTimeError(ErrorNumber::OutOfStackSpace, QString::fromLatin1(replaceSource));
    }
    qint16 count = 0;
    for (int k = 0; k <= document.upperBound(); ++k) {
        if (document.items.at(k).parent == index) {
            count = Int16::checked(qint64(count) + replaceInBranchAt(document, k, find, replacement, depth + 1),
                                   replaceSource);
        }
        if (k == index || document.items.at(k).parent == index) {
            count = Int16::checked(qint64(count) + replaceInItem(document, k, find, replacement), replaceSource);
        }
    }
    return count;
}

} // namespace

namespace LiteralReplacement {

qint16 replaceInText(QString& text, const QString& find, const QString& replacement)
{
    if (find.isEmpty()) {
        return 0;
    }
    // Every position where the text is found counts, also where two occurrences overlap.
    qint16 count = 0;
    for (int position = 0; position < int(text.size()); ++position) {
        if (occursAt(text, find, position)) {
            count = Int16::incremented(count, replaceSource);
        }
    }
    // Only occurrences that do not overlap a replaced one are replaced, from the left.
    QString result;
    int position = 0;
    while (position < int(text.size())) {
        if (occursAt(text, find, position)) {
            result += replacement;
            position += int(find.size());
        } else {
            result += text.at(position);
            ++position;
        }
    }
    text = result;
    return count;
}

qint16 replaceInAll(MenuDocument& document, const QString& find, const QString& replacement)
{
    qint16 count = 0;
    for (int k = 0; k <= document.upperBound(); ++k) {
        count = Int16::checked(qint64(count) + replaceInItem(document, k, find, replacement), replaceSource);
    }
    return count;
}

qint16 replaceInBranch(MenuDocument& document, int index, const QString& find, const QString& replacement)
{
    return replaceInBranchAt(document, index, find, replacement, 0);
}

} // namespace LiteralReplacement

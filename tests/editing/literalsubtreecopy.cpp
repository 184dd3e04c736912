#include "literalsubtreecopy.h"

#include "editing/treeupdate.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

const char* const copySource = "copyItemTree";

} // namespace

namespace LiteralSubtreeCopy {

int copyItemTree(int sourceIndex, int newParent, MenuDocument& source, MenuDocument& target, bool copyCommandDup,
                 TreeUpdate& update)
{
    if (sourceIndex < 0 || sourceIndex > source.upperBound() || newParent < -1 || newParent > target.upperBound()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(copySource));
    }

    // One more slot at the end of the target, holding the whole source record.
    target.items.append(MenuItem(source.items.at(sourceIndex)));
    const int n = target.upperBound();

    // A fresh key, no children yet, under the new parent, after its other children.
    target.items[n].childCount = 0;
    target.lastIndex = Int16::incremented(target.lastIndex, copySource);
    target.items[n].key = QStringLiteral("E") + QString::number(target.lastIndex);
    target.items[n].parent = Int16::checked(newParent, copySource);
    if (newParent != -1) {
        target.items[newParent].childCount = Int16::incremented(target.items.at(newParent).childCount, copySource);
        target.items[n].siblingOrder = target.items.at(newParent).childCount;
    } else {
        target.items[n].siblingOrder = countTopLevel(target);
    }

    // The source remembers its newest copy.
    source.items[sourceIndex].lastCopyKey = target.items.at(n).key;

    // The commands of the copy.
    if (source.windowIndex != target.windowIndex) {
        if (source.items.at(sourceIndex).copiesCommands) {
            target.items[n].copiesCommands = false;
            qint16 linked = findItemByKey(source, source.items.at(sourceIndex).copyKey);
            if (linked < 0) {
                linked = 0;
            }
            const MenuItem& linkTarget = source.items.at(linked);
            QList<Command> commands = MenuItem::placeholderCommands();
            for (int s = 1; s <= linkTarget.commandUpperBound(); ++s) {
                commands.append(linkTarget.commands.at(s));
            }
            target.items[n].commands = commands;
        }
    } else if (copyCommandDup) {
        if (source.items.at(sourceIndex).commandUpperBound() < 1) {
            target.items[n].copiesCommands = false;
        } else {
            target.items[n].copiesCommands = true;
            if (source.items.at(sourceIndex).copiesCommands) {
                target.items[n].copyKey = source.items.at(sourceIndex).copyKey;
            } else {
                target.items[n].copyKey = source.items.at(sourceIndex).key;
            }
        }
    }

    // The node of the copy, last under its parent's node.
    QString parentKey = QStringLiteral("Root");
    if (newParent != -1) {
        parentKey = target.items.at(newParent).key;
    }
    update.addNode(parentKey, target.items.at(n).key, target.items.at(n).caption);

    // The children, place by place; every item of the array is looked at for every place.
    const int childCount = source.items.at(sourceIndex).childCount;
    for (int order = 1; order <= childCount; ++order) {
        for (int j = 0; j <= source.upperBound(); ++j) {
            if (source.items.at(j).parent == sourceIndex && source.items.at(j).siblingOrder == order) {
                copyItemTree(j, n, source, target, copyCommandDup, update);
            }
        }
    }
    return n;
}

} // namespace LiteralSubtreeCopy

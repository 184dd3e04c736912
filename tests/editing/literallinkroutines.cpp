#include "literallinkroutines.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

RunTimeError subscriptOutOfRange(const char* source)
{
    return RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
}

void resetToFreshItem(MenuItem& item)
{
    item.caption = QStringLiteral("New item 1");
    item.commands = MenuItem::placeholderCommands();
    item.siblingOrder = 1;
    item.copyKey = QStringLiteral("-1");
    item.key = QStringLiteral("E0");
    item.level = 1;
    item.childCount = 0;
    item.parent = -1;
    // A fresh item links nowhere and has not been copied yet.
    item.copiesCommands = false;
    item.lastCopyKey.clear();
}

} // namespace

namespace LiteralLinkRoutines {

bool sameCommands(const MenuDocument& document, int i, int j)
{
    if (i < 0 || i > document.upperBound() || j < 0 || j > document.upperBound()) {
        throw subscriptOutOfRange("sameCommands");
    }
    const MenuItem& first = document.items.at(i);
    const MenuItem& second = document.items.at(j);
    if (first.copiesCommands || second.copiesCommands) {
        return false;
    }
    if (first.commandUpperBound() != second.commandUpperBound() || first.commandUpperBound() <= 0) {
        return false;
    }
    for (int s = 1; s <= first.commandUpperBound(); ++s) {
        if (first.commands.at(s).command != second.commands.at(s).command) {
            return false;
        }
    }
    for (int s = 1; s <= first.commandUpperBound(); ++s) {
        if (first.commands.at(s).extension != second.commands.at(s).extension) {
            return false;
        }
    }
    return true;
}

void normalizeCopyLinks(MenuDocument& document)
{
    auto& items = document.items;
    for (int i = 0; i <= document.upperBound(); ++i) {
        if (items.at(i).copiesCommands) {
            items[i].copiesCommands = false;
            const qint16 m = findItemByKey(document, items.at(i).copyKey);
            if (m < 0) {
                throw subscriptOutOfRange("normalizeCopyLinks");
            }
            items[i].commands = items.at(m).commands;
        }
    }
    for (int i = 0; i <= document.upperBound(); ++i) {
        for (int j = i - 1; j >= 0; --j) {
            if (sameCommands(document, i, j)) {
                items[i].copiesCommands = true;
                items[i].copyKey = items.at(j).copiesCommands ? items.at(j).copyKey : items.at(j).key;
            }
        }
    }
}

void deleteItemTree(MenuDocument& document, const QString& key)
{
    auto& items = document.items;
    qint16 idx = findItemByKey(document, key);
    if (idx < 0) {
        throw subscriptOutOfRange("deleteItemTree");
    }
    if (items.at(idx).childCount > 0) {
        bool foundChild = true;
        while (foundChild) {
            foundChild = false;
            for (int k = 0; k <= document.upperBound(); ++k) {
                if (items.at(k).parent == idx) {
                    const QString childKey = items.at(k).key;
                    deleteItemTree(document, childKey);
                    idx = findItemByKey(document, key);
                    foundChild = true;
                    break;
                }
            }
        }
        idx = findItemByKey(document, key);
    }
    const int last = document.upperBound();
    if (items.at(last).childCount > 0) {
        for (int k = 0; k <= document.upperBound(); ++k) {
            // The removed item itself stays under the last item when that is its parent.
            if (items.at(k).parent == last && k != idx) {
                items[k].parent = idx;
            }
        }
    }
    for (int k = 0; k <= document.upperBound(); ++k) {
        if (items.at(k).copyKey == items.at(idx).key) {
            items[k].copyKey = QStringLiteral("-1");
            items[k].copiesCommands = false;
        }
    }
    if (items.at(idx).parent != -1) {
        const int parent = items.at(idx).parent;
        if (parent < 0 || parent > document.upperBound()) {
            throw subscriptOutOfRange("deleteItemTree");
        }
        items[parent].childCount = Int16::decremented(items.at(parent).childCount, "deleteItemTree");
    }
    items[idx] = MenuItem(items.at(last));
    if (document.upperBound() < 1) {
        resetToFreshItem(items[0]);
    } else {
        items.removeLast();
    }
}

void removeItemBranch(MenuDocument& document, const QString& key)
{
    auto& items = document.items;
    const qint16 sel = findItemByKey(document, key);
    if (sel < 0) {
        throw subscriptOutOfRange("removeItemBranch");
    }
    if (document.upperBound() >= 1) {
        for (int k = 0; k <= document.upperBound(); ++k) {
            if (items.at(k).parent == items.at(sel).parent && items.at(k).siblingOrder > items.at(sel).siblingOrder) {
                items[k].siblingOrder = Int16::decremented(items.at(k).siblingOrder, "removeItemBranch");
            }
        }
        const QString removedKey = key;
        deleteItemTree(document, removedKey);
    } else {
        resetToFreshItem(items[0]);
    }
    normalizeCopyLinks(document);
}

} // namespace LiteralLinkRoutines

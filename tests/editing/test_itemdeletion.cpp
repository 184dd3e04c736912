#include "editing/copylinks.h"
#include "editing/itemdeletion.h"
#include "literallinkroutines.h"
#include "randommenu.h"
#include "treeupdatetext.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

namespace {

struct Node
{
    const char* key;
    int parent;
    int siblingOrder;
};

/// Items in the given array order; childCount and level are derived from the parents.
MenuDocument documentOf(std::initializer_list<Node> nodes, qint16 lastIndex)
{
    MenuDocument document;
    for (const Node& node : nodes) {
        MenuItem item;
        item.key = QString::fromLatin1(node.key);
        item.caption = QStringLiteral("Caption of ") + item.key;
        item.parent = qint16(node.parent);
        item.siblingOrder = qint16(node.siblingOrder);
        document.items.append(item);
    }
    for (MenuItem& item : document.items) {
        if (item.parent >= 0) {
            ++document.items[item.parent].childCount;
        }
    }
    for (MenuItem& item : document.items) {
        int level = 0;
        for (int p = item.parent; p >= 0; p = document.items.at(p).parent) {
            ++level;
        }
        item.level = qint16(level);
    }
    document.lastIndex = lastIndex;
    return document;
}

QList<Command> commandList(const char* text)
{
    return MenuItem::placeholderCommands()
        + QList<Command> { Command { QStringLiteral("txt"), QString::fromLatin1(text) } };
}

QStringList keysInSlotOrder(const MenuDocument& document)
{
    QStringList keys;
    for (const MenuItem& item : document.items) {
        keys.append(item.key);
    }
    return keys;
}

QSet<QString> keySet(const MenuDocument& document)
{
    const QStringList keys = keysInSlotOrder(document);
    return QSet<QString>(keys.cbegin(), keys.cend());
}

const MenuItem& itemWithKey(const MenuDocument& document, const char* key)
{
    const qint16 index = findItemByKey(document, QString::fromLatin1(key));
    if (index < 0) {
        throw RunTimeError(9, QStringLiteral("test"));
    }
    return document.items.at(index);
}

void verifyFreshItem(const MenuDocument& document)
{
    QCOMPARE(document.items.size(), qsizetype(1));
    const MenuItem& item = document.items.at(0);
    QCOMPARE(item.caption, QStringLiteral("New item 1"));
    QCOMPARE(item.key, QStringLiteral("E0"));
    QCOMPARE(item.level, qint16(1));
    QCOMPARE(item.parent, qint16(-1));
    QCOMPARE(item.childCount, qint16(0));
    QCOMPARE(item.siblingOrder, qint16(1));
    QCOMPARE(item.copyKey, QStringLiteral("-1"));
    QVERIFY(!item.copiesCommands);
    QCOMPARE(item.commands, MenuItem::placeholderCommands());
    QVERIFY(item.lastCopyKey.isEmpty());
}

/// Delete on the selected item `key` of `document`, in a window where a node was clicked.
TreeUpdate deleteSelected(MenuDocument& document, EditingState& editing, const char* key, const char* parentKey)
{
    WindowEditingState window;
    window.nodeClicked = true;
    EditContext context { document, SelectedNode::of(QString::fromLatin1(key), QString::fromLatin1(parentKey)),
                          EditArguments {}, editing, window };
    return deleteSelectedItem(context);
}

/// What the tree does after removing the node `key` from a menu that keeps other items.
TreeUpdate removalSteps(const char* key)
{
    TreeUpdate update;
    update.removeNode(QString::fromLatin1(key))
        .showItemCount()
        .addNodeWhenOnlyRoot(QStringLiteral("E0"), QStringLiteral("New Item 1"))
        .recolour()
        .clickFirstItemNode();
    return update;
}

int errorNumberOf(void (*routine)(MenuDocument&, const QString&), MenuDocument& document, const QString& key)
{
    try {
        routine(document, key);
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace

class TestItemDeletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deletingFirstOfThreeMovesTheLastIntoItsSlot()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 } }, 2);
        removeItemBranch(document, QStringLiteral("E0"));
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E2"), QStringLiteral("E1") }));
        QCOMPARE(document.items.at(0).caption, QStringLiteral("Caption of E2"));
        QCOMPARE(document.items.at(1).siblingOrder, qint16(1));
        QCOMPARE(document.items.at(0).siblingOrder, qint16(2));
        QCOMPARE(document.lastIndex, qint16(2));
        QCOMPARE(findItemByKey(document, QStringLiteral("E2")), qint16(0));
    }

    void closingTheGapTouchesOnlyTheSameParentsChildren()
    {
        // Two top-level items with two children each; removing the first child of E0.
        MenuDocument document = documentOf(
            { { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 }, { "E3", -1, 2 }, { "E4", 3, 1 }, { "E5", 3, 2 } }, 5);
        removeItemBranch(document, QStringLiteral("E1"));
        QCOMPARE(itemWithKey(document, "E2").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(1));
        QCOMPARE(itemWithKey(document, "E3").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(document, "E4").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(document, "E5").siblingOrder, qint16(2));
        QCOMPARE(RandomMenu::treeNumbersProblem(document), QString());
    }

    void deepBranchLosesEveryDescendant()
    {
        // E1 holds a chain E1 > E3 > E5 > E7 > E9 with side items, spread over the array so that
        // the items are moved around by the removals; E0, E2 and E8 stay.
        MenuDocument document = documentOf({ { "E9", 7, 1 },
                                             { "E0", -1, 1 },
                                             { "E5", 6, 1 },
                                             { "E2", -1, 3 },
                                             { "E4", 6, 2 },
                                             { "E8", 1, 1 },
                                             { "E3", 9, 1 },
                                             { "E7", 2, 1 },
                                             { "E6", 9, 2 },
                                             { "E1", -1, 2 } },
                                           9);
        removeItemBranch(document, QStringLiteral("E1"));
        QCOMPARE(keySet(document), QSet<QString>({ QStringLiteral("E0"), QStringLiteral("E2"), QStringLiteral("E8") }));
        QCOMPARE(RandomMenu::treeNumbersProblem(document), QString());
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(1));
        QCOMPARE(document.items.at(itemWithKey(document, "E8").parent).key, QStringLiteral("E0"));
        QCOMPARE(itemWithKey(document, "E2").siblingOrder, qint16(2));
        QCOMPARE(document.lastIndex, qint16(9));
    }

    void deletingTheOnlyItemLeavesAFreshItem()
    {
        MenuDocument document = documentOf({ { "E7", -1, 1 } }, 7);
        document.items[0].commands = commandList("del ");
        document.items[0].lastCopyKey = QStringLiteral("E6");
        removeItemBranch(document, QStringLiteral("E7"));
        verifyFreshItem(document);
        QCOMPARE(document.lastIndex, qint16(7));

        MenuDocument direct = documentOf({ { "E3", -1, 1 } }, 3);
        direct.items[0].commands = commandList("del ");
        deleteItemTree(direct, QStringLiteral("E3"));
        verifyFreshItem(direct);
        QCOMPARE(direct.lastIndex, qint16(3));
    }

    void deletingTheSingleTopLevelItemThatHoldsAllOthers()
    {
        MenuDocument document
            = documentOf({ { "E1", 3, 1 }, { "E2", 0, 1 }, { "E4", 3, 2 }, { "E3", -1, 1 }, { "E5", 2, 1 } }, 5);
        for (MenuItem& item : document.items) {
            item.commands = commandList("del ");
        }
        normalizeCopyLinks(document);
        removeItemBranch(document, QStringLiteral("E3"));
        verifyFreshItem(document);
        QCOMPARE(document.lastIndex, qint16(5));
    }

    void itemLinkedToTheDeletedItemKeepsItsCommands()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 } }, 2);
        document.items[0].commands = commandList("rename ");
        document.items[1].commands = commandList("del ");
        document.items[2].commands = commandList("del ");
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(2).copyKey, QStringLiteral("E1"));
        deleteItemTree(document, QStringLiteral("E1"));
        const MenuItem& linked = itemWithKey(document, "E2");
        QVERIFY(!linked.copiesCommands);
        QCOMPARE(linked.copyKey, QStringLiteral("-1"));
        QCOMPARE(linked.commands, commandList("del "));
    }

    void deleteRelinksToTheEarliestRemainingEqualItem()
    {
        // D (E0) and the later X (E2) and Y (E3) share a list; X and Y link to D.
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 }, { "E3", -1, 4 } }, 3);
        for (int i : { 0, 2, 3 }) {
            document.items[i].commands = commandList("del ");
        }
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(3).copyKey, QStringLiteral("E0"));
        removeItemBranch(document, QStringLiteral("E0"));
        // Y moved into slot 0 and is now the earliest holder of the list; X links to it.
        QCOMPARE(keysInSlotOrder(document),
                 QStringList({ QStringLiteral("E3"), QStringLiteral("E1"), QStringLiteral("E2") }));
        QVERIFY(!itemWithKey(document, "E3").copiesCommands);
        QCOMPARE(itemWithKey(document, "E3").commands, commandList("del "));
        QVERIFY(itemWithKey(document, "E2").copiesCommands);
        QCOMPARE(itemWithKey(document, "E2").copyKey, QStringLiteral("E3"));
        QCOMPARE(itemWithKey(document, "E2").commands, commandList("del "));
    }

    void parentInTheLastSlotKeepsTheRightChildCount()
    {
        // P (E2) sits in the last slot with children C1 (E0) and C2 (E1). Removing C1 moves P into
        // slot 0; C2 must follow it, and P must count one child.
        MenuDocument document = documentOf({ { "E0", 2, 1 }, { "E1", 2, 2 }, { "E2", -1, 1 } }, 2);
        deleteItemTree(document, QStringLiteral("E0"));
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E2"), QStringLiteral("E1") }));
        QCOMPARE(document.items.at(0).parent, qint16(-1));
        QCOMPARE(document.items.at(0).childCount, qint16(1));
        QCOMPARE(document.items.at(1).parent, qint16(0));
    }

    void branchWhoseParentSitsInTheLastSlot()
    {
        // P (E3) is last; its child B (E0) has children E1 and E2; its other child E4 stays.
        MenuDocument document
            = documentOf({ { "E0", 4, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 }, { "E4", 4, 2 }, { "E3", -1, 1 } }, 4);
        removeItemBranch(document, QStringLiteral("E0"));
        QCOMPARE(document.items.size(), qsizetype(2));
        QCOMPARE(RandomMenu::treeNumbersProblem(document), QString());
        QCOMPARE(itemWithKey(document, "E3").childCount, qint16(1));
        QCOMPARE(itemWithKey(document, "E4").siblingOrder, qint16(1));
        QCOMPARE(document.items.at(itemWithKey(document, "E4").parent).key, QStringLiteral("E3"));
    }

    void deletingTheItemInTheLastSlot()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 } }, 2);
        removeItemBranch(document, QStringLiteral("E2"));
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E0"), QStringLiteral("E1") }));
        QCOMPARE(document.items.at(0).childCount, qint16(1));
        QCOMPARE(RandomMenu::treeNumbersProblem(document), QString());
    }

    void childrenOfTheMovedItemFollowIt()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", 2, 1 }, { "E2", -1, 2 }, { "E3", 2, 2 } }, 3);
        // The last slot holds E3, a child of E2: after removing E0, E3 sits in slot 0.
        removeItemBranch(document, QStringLiteral("E0"));
        QCOMPARE(keysInSlotOrder(document),
                 QStringList({ QStringLiteral("E3"), QStringLiteral("E1"), QStringLiteral("E2") }));
        QCOMPARE(document.items.at(0).parent, qint16(2));
        QCOMPARE(RandomMenu::treeNumbersProblem(document), QString());

        // A last item with children of its own: they must point at its new slot.
        MenuDocument other = documentOf({ { "E0", -1, 1 }, { "E1", 3, 1 }, { "E3", 3, 2 }, { "E2", -1, 2 } }, 3);
        removeItemBranch(other, QStringLiteral("E0"));
        QCOMPARE(other.items.at(0).key, QStringLiteral("E2"));
        QCOMPARE(other.items.at(1).parent, qint16(0));
        QCOMPARE(other.items.at(2).parent, qint16(0));
        QCOMPARE(other.items.at(0).siblingOrder, qint16(1));
        QCOMPARE(RandomMenu::treeNumbersProblem(other), QString());
    }

    void unknownKeyIsError9AndChangesNothing()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 } }, 1);
        const MenuDocument before = document;
        QCOMPARE(errorNumberOf(&removeItemBranch, document, QStringLiteral("E5")), 9);
        QCOMPARE(errorNumberOf(&removeItemBranch, document, QStringLiteral("Root")), 9);
        QCOMPARE(errorNumberOf(&deleteItemTree, document, QStringLiteral("E5")), 9);
        QVERIFY(document == before);
        MenuDocument empty;
        QCOMPARE(errorNumberOf(&removeItemBranch, empty, QStringLiteral("E0")), 9);
    }

    void keyTakenFromTheDocumentItself()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", -1, 2 } }, 2);
        removeItemBranch(document, document.items.at(0).key);
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E2") }));
        QCOMPARE(document.items.at(0).siblingOrder, qint16(1));
    }

    void veryDeepChainIsRemovedWhole()
    {
        // One chain as deep as a menu can be.
        MenuDocument document;
        const int count = 32767;
        document.items.resize(count);
        for (int i = 0; i < count; ++i) {
            MenuItem& item = document.items[i];
            item.key = QStringLiteral("E%1").arg(i);
            item.parent = qint16(i - 1);
            item.childCount = qint16(i + 1 < count ? 1 : 0);
            item.siblingOrder = 1;
        }
        document.lastIndex = qint16(count - 1);
        MenuDocument branch = document;
        deleteItemTree(branch, QStringLiteral("E100"));
        QCOMPARE(branch.items.size(), qsizetype(100));
        QCOMPARE(branch.items.at(99).childCount, qint16(0));
        removeItemBranch(document, QStringLiteral("E0"));
        verifyFreshItem(document);
    }

    void randomDeletionsMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fast = RandomMenu::generate(random, 1 + random.bounded(40));
            normalizeCopyLinks(fast);
            MenuDocument literal = fast;
            while (true) {
                const QString key = fast.items.at(random.bounded(int(fast.items.size()))).key;
                const qsizetype countBefore = fast.items.size();
                removeItemBranch(fast, key);
                LiteralLinkRoutines::removeItemBranch(literal, key);
                const QString context = QStringLiteral("seed %1, key %2").arg(seed).arg(key);
                QVERIFY2(fast == literal,
                         qPrintable(context + QStringLiteral(": ") + RandomMenu::firstDifference(fast, literal)));
                QVERIFY2(RandomMenu::treeNumbersProblem(fast).isEmpty(),
                         qPrintable(context + QStringLiteral(": ") + RandomMenu::treeNumbersProblem(fast)));
                if (countBefore == 1) {
                    break;
                }
            }
        }
    }

    void randomBranchRemovalsMatchTheStepByStepVersion()
    {
        // The removal alone, on links as they come (not normalised), repeated on one document.
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fast = RandomMenu::generate(random, 1 + random.bounded(60));
            MenuDocument literal = fast;
            for (int round = 0; round < 3; ++round) {
                const QString key = fast.items.at(random.bounded(int(fast.items.size()))).key;
                deleteItemTree(fast, key);
                LiteralLinkRoutines::deleteItemTree(literal, key);
                QVERIFY2(fast == literal,
                         qPrintable(QStringLiteral("seed %1, key %2: ").arg(seed).arg(key)
                                    + RandomMenu::firstDifference(fast, literal)));
            }
        }
    }

    void branchRemovalTakesExactlyTheBranch()
    {
        for (quint32 seed = 1; seed <= 300; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 2 + random.bounded(40));
            const int removed = random.bounded(int(document.items.size()));
            const QString key = document.items.at(removed).key;
            QSet<QString> expected;
            for (int i = 0; i < document.items.size(); ++i) {
                bool inBranch = false;
                for (int k = i; k != -1; k = document.items.at(k).parent) {
                    inBranch = inBranch || k == removed;
                }
                if (!inBranch) {
                    expected.insert(document.items.at(i).key);
                }
            }
            removeItemBranch(document, key);
            const QStringList keys = keysInSlotOrder(document);
            if (expected.isEmpty()) {
                verifyFreshItem(document);
            } else {
                QCOMPARE(QSet<QString>(keys.cbegin(), keys.cend()), expected);
                QCOMPARE(keys.size(), expected.size());
            }
        }
    }

    void deleteRemovesTheSelectedNodeAndShowsTheFirstItem()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 } }, 2);
        MenuDocument expected = document;
        removeItemBranch(expected, QStringLiteral("E1"));
        EditingState editing;
        editing.snapshotNextLabelEdit = false;
        const TreeUpdate update = deleteSelected(document, editing, "E1", "Root");
        QCOMPARE(update, removalSteps("E1"));
        QVERIFY(editing.snapshotNextLabelEdit);
        QVERIFY(document == expected);
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E0"), QStringLiteral("E2") }));
        QCOMPARE(itemWithKey(document, "E2").siblingOrder, qint16(2));
    }

    void deletingASubmenuRemovesOnlyItsOwnNode()
    {
        // The node goes with its subtree, so the children need no steps of their own.
        MenuDocument document
            = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 1, 1 }, { "E3", -1, 2 }, { "E4", 0, 2 } }, 4);
        EditingState editing;
        const TreeUpdate update = deleteSelected(document, editing, "E0", "Root");
        QCOMPARE(update, removalSteps("E0"));
        QCOMPARE(keysInSlotOrder(document), QStringList({ QStringLiteral("E3") }));
        QCOMPARE(document.items.at(0).siblingOrder, qint16(1));
        QCOMPARE(document.items.at(0).parent, qint16(-1));
        QCOMPARE(document.lastIndex, qint16(4));
    }

    void deletingAChildClosesTheGapAmongItsSiblings()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 } }, 2);
        EditingState editing;
        const TreeUpdate update = deleteSelected(document, editing, "E1", "E0");
        QCOMPARE(update, removalSteps("E1"));
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(1));
        QCOMPARE(itemWithKey(document, "E2").siblingOrder, qint16(1));
    }

    void deletingTheOnlyItemRenamesItsNodeBeforeRemovingIt()
    {
        MenuDocument document = documentOf({ { "E5", -1, 1 } }, 5);
        document.items[0].commands = commandList("del ");
        EditingState editing;
        editing.snapshotNextLabelEdit = false;
        const TreeUpdate update = deleteSelected(document, editing, "E5", "Root");
        TreeUpdate expected;
        expected.setNodeText(QStringLiteral("E5"), QStringLiteral("New Item 1"));
        expected.append(removalSteps("E5"));
        QCOMPARE(update, expected);
        QVERIFY(editing.snapshotNextLabelEdit);
        // The tree says "New Item 1"; the document keeps its own spelling.
        verifyFreshItem(document);
        QCOMPARE(document.lastIndex, qint16(5));
    }

    void deletingAnItemThatIsGoneIsError9()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 } }, 1);
        const MenuDocument before = document;
        EditingState editing;
        int number = 0;
        try {
            deleteSelected(document, editing, "E4", "Root");
        } catch (const RunTimeError& error) {
            number = error.number();
        }
        QCOMPARE(number, 9);
        QVERIFY(document == before);
    }

    void deleteIsDescribedForTheSession()
    {
        QCOMPARE(QString::fromLatin1(EditOperations::deleteItem.name), QStringLiteral("delete"));
        QCOMPARE(EditOperations::deleteItem.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::deleteItem.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::deleteItem.apply == &deleteSelectedItem);
    }
};

QTEST_GUILESS_MAIN(TestItemDeletion)
#include "test_itemdeletion.moc"

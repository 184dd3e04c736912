#include "treeview/testmenus.h"

#include "app/itemtree.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"
#include "treeview/treeplan.h"

#include <QStyle>
#include <QTest>

using TestMenus::item;
using TestMenus::linked;

namespace {

const QColor kNavy(0, 0, 128);
const QColor kMaroon(128, 0, 0);
const QColor kBlack(0, 0, 0);

QColor colourOf(const QModelIndex& node)
{
    return node.data(Qt::ForegroundRole).value<QBrush>().color();
}

bool isBold(const QModelIndex& node)
{
    return node.data(Qt::FontRole).value<QFont>().bold();
}

/// A rebuild as the editor asks for one: the hide-mode change goes to the document first. The tree
/// shows `document` from then on.
void generate(ItemTree& tree, MenuDocument& document, int modeChange)
{
    document.hideMode = HideMode::applyModeChange(document.hideMode, modeChange);
    tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
    tree.generate();
}

int topLevelRows(const ItemTree& tree)
{
    return tree.model()->rowCount();
}

QStringList nodeKeys(const ItemTree& tree)
{
    QStringList keys;
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        keys.append(tree.keyOf(tree.node(n)));
    }
    return keys;
}

/// Menu "Tools" (parent with a command) > "Archive" (link to "Open", a submenu) > "Zip" (a leaf
/// with commands), "Open" (a leaf with commands), "Notes" (a leaf without commands), "Copy" (a link
/// leaf to "Open").
MenuDocument toolsMenu()
{
    MenuDocument document;
    document.items = {
        item(QStringLiteral("E0"), -1, 2, 1, 1), linked(item(QStringLiteral("E1"), 0, 1, 1), QStringLiteral("E3")),
        item(QStringLiteral("E2"), 1, 0, 1, 2),  item(QStringLiteral("E3"), 0, 0, 2, 1),
        item(QStringLiteral("E4"), -1, 0, 2),    linked(item(QStringLiteral("E5"), -1, 0, 3), QStringLiteral("E3"))
    };
    document.items[0].caption = QStringLiteral("Tools");
    document.items[1].caption = QStringLiteral("Archive");
    document.items[2].caption = QStringLiteral("Zip");
    document.items[3].caption = QStringLiteral("Open");
    document.items[4].caption = QStringLiteral("Notes");
    document.items[5].caption = QStringLiteral("Copy");
    document.lastIndex = 5;
    return document;
}

} // namespace

class TestItemTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyMenuShowsOnlyTheRootAndSelectsNothing()
    {
        ItemTree tree;
        MenuDocument document;
        generate(tree, document, 0);
        QCOMPARE(tree.nodeCount(), 1);
        QCOMPARE(tree.keyOf(tree.node(1)), QStringLiteral("Root"));
        QCOMPARE(tree.textOf(tree.node(1)), QStringLiteral("KELV"));
        QCOMPARE(topLevelRows(tree), 1);
        QVERIFY(tree.selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(!tree.currentIndex().isValid());
        QVERIFY(tree.updatesEnabled());
    }

    void generateBuildsTheWholeTreeExpandedInPlanOrder()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        QCOMPARE(nodeKeys(tree),
                 QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E1"), QStringLiteral("E2"),
                               QStringLiteral("E3"), QStringLiteral("E4"), QStringLiteral("E5") }));
        QCOMPARE(tree.nodeByKey(QStringLiteral("E2")).parent(), tree.nodeByKey(QStringLiteral("E1")));
        QCOMPARE(tree.nodeByKey(QStringLiteral("E4")).parent(), tree.node(1));
        QCOMPARE(tree.textOf(tree.nodeByKey(QStringLiteral("E3"))), QStringLiteral("Open"));
        for (int n = 1; n <= tree.nodeCount(); ++n) {
            if (tree.model()->rowCount(tree.node(n)) > 0) {
                QVERIFY2(tree.isExpanded(tree.node(n)), qPrintable(tree.keyOf(tree.node(n))));
            }
        }
        QCOMPARE(document.hideMode, 0);
        QVERIFY(tree.updatesEnabled());
    }

    void nestingShowsWithTheStylesIndentationAndExpandMarkers()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        const int styleIndentation = tree.style()->pixelMetric(QStyle::PM_TreeViewIndentation, nullptr, &tree);
        QCOMPARE(tree.indentation(), styleIndentation);
        // Room for an expand marker that reads as one, not a dot.
        QVERIFY(tree.indentation() >= 10);
        QVERIFY(tree.rootIsDecorated());
        QVERIFY(tree.itemsExpandable());
        generate(tree, document, -3);
        QCOMPARE(tree.indentation(), styleIndentation);
        // A child sits one indentation to the right of its parent.
        tree.resize(300, 300);
        const QRect parentRow = tree.visualRect(tree.nodeByKey(QStringLiteral("E0")));
        const QRect childRow = tree.visualRect(tree.nodeByKey(QStringLiteral("E1")));
        QCOMPARE(childRow.left() - parentRow.left(), styleIndentation);
    }

    void regenerateReplacesEveryNode()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        document.items.removeLast();
        document.items[0].caption = QStringLiteral("Utilities");
        generate(tree, document, -3);
        QCOMPARE(tree.nodeCount(), 6);
        QVERIFY(!tree.nodeByKey(QStringLiteral("E5")).isValid());
        QCOMPARE(tree.textOf(tree.node(2)), QStringLiteral("Utilities"));
        QCOMPARE(topLevelRows(tree), 1);
    }

    void hiddenLinkWithChildrenKeepsChildrenUnderNearestShownNode()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 1);
        tree.showRootText(document.hideMode);
        QCOMPARE(document.hideMode, 1);
        QCOMPARE(nodeKeys(tree),
                 QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E2"), QStringLiteral("E3"),
                               QStringLiteral("E4") }));
        QCOMPARE(tree.nodeByKey(QStringLiteral("E2")).parent(), tree.nodeByKey(QStringLiteral("E0")));
        QCOMPARE(tree.fullPath(tree.nodeByKey(QStringLiteral("E2"))),
                 QStringLiteral("KELV (Some items may be hidded)\\Tools\\Zip"));
        QVERIFY(tree.updatesEnabled());
    }

    void hideWithoutCommandKeepsSubmenuAndDropsEmptyLeaf()
    {
        ItemTree tree;
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 2, 1), item(QStringLiteral("E1"), 0, 0, 1, 1),
                           item(QStringLiteral("E2"), 0, 0, 2), item(QStringLiteral("E3"), -1, 0, 2) };
        generate(tree, document, 2);
        QCOMPARE(nodeKeys(tree), QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E1") }));
    }

    void hideBothShowsOnlyItemsWithOwnCommandsAndSubmenus()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 3);
        QCOMPARE(document.hideMode, 3);
        QCOMPARE(nodeKeys(tree),
                 QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E1"), QStringLiteral("E2"),
                               QStringLiteral("E3") }));
        // The rebuild leaves the root plain; its last step tells that items may be hidden.
        QCOMPARE(tree.textOf(tree.node(1)), QStringLiteral("KELV"));
        tree.showRootText(document.hideMode);
        QCOMPARE(tree.textOf(tree.node(1)), QStringLiteral("KELV (Some items may be hidded)"));
    }

    void hideBothThenShowCopiesLeavesModeTwoAndSuffix()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 3);
        generate(tree, document, -1);
        tree.showRootText(document.hideMode);
        QCOMPARE(document.hideMode, 2);
        QCOMPARE(tree.textOf(tree.node(1)), QStringLiteral("KELV (Some items may be hidded)"));
        QVERIFY(!tree.nodeByKey(QStringLiteral("E5")).isValid());
        QVERIFY(!tree.nodeByKey(QStringLiteral("E4")).isValid());
        generate(tree, document, -2);
        tree.showRootText(document.hideMode);
        QCOMPARE(document.hideMode, 0);
        QCOMPARE(tree.textOf(tree.node(1)), QStringLiteral("KELV"));
        QCOMPARE(tree.nodeCount(), 7);
    }

    void topLevelOrdersOneTwoFourShowOnlyTheFirstTwo()
    {
        ItemTree tree;
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2),
                           item(QStringLiteral("E2"), -1, 0, 4) };
        generate(tree, document, 0);
        QCOMPARE(nodeKeys(tree), QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E1") }));
    }

    void generateStylesNodes()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        const QModelIndex root = tree.node(1);
        QCOMPARE(colourOf(root), kNavy);
        QVERIFY(isBold(root));
        // parent with commands of its own
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E0"))), kMaroon);
        QVERIFY(isBold(tree.nodeByKey(QStringLiteral("E0"))));
        // linked parent
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E1"))), kNavy);
        QVERIFY(isBold(tree.nodeByKey(QStringLiteral("E1"))));
        // leaf with commands
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E2"))), kMaroon);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E2"))));
        // leaf without commands
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E4"))), kBlack);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E4"))));
        // linked leaf
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E5"))), kBlack);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E5"))));
    }

    void colorizeResetsEveryItemNodeFromTheDocument()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        // The link of "Archive" switched off, "Zip" linked, "Notes" given a command, "Tools" loses
        // its children and commands, and "Copy" deleted behind the tree's back.
        document.items[1].copiesCommands = false;
        document.items[1].commands.append(Command { QStringLiteral("zip"), QStringLiteral("7z a") });
        document.items[2] = linked(document.items.at(2), QStringLiteral("E3"));
        document.items[4].commands.append(Command { QString(), QStringLiteral("notepad") });
        document.items[0].childCount = 0;
        document.items[0].commands = MenuItem::placeholderCommands();
        document.items.removeLast();
        tree.setNodeColour(tree.nodeByKey(QStringLiteral("E3")), NodeStyle::Colour::Navy);
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E3"))), kNavy);

        tree.colorize();

        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E0"))), kBlack);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E0"))));
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E1"))), kMaroon);
        QVERIFY(isBold(tree.nodeByKey(QStringLiteral("E1"))));
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E2"))), kBlack);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E2"))));
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E3"))), kMaroon);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E3"))));
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E4"))), kMaroon);
        QCOMPARE(colourOf(tree.nodeByKey(QStringLiteral("E5"))), kBlack);
        QVERIFY(!isBold(tree.nodeByKey(QStringLiteral("E5"))));
        QCOMPARE(colourOf(tree.node(1)), kNavy);
        QVERIFY(isBold(tree.node(1)));
        QVERIFY(tree.updatesEnabled());
    }

    void nodeCollectionIsOneBasedInInsertionOrder()
    {
        ItemTree tree;
        MenuDocument document;
        tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
        const QModelIndex root = tree.addNode(QString(), QStringLiteral("Root"), QStringLiteral("KELV"));
        const QModelIndex first = tree.addNode(QStringLiteral("Root"), QStringLiteral("E4"), QStringLiteral("First"));
        const QModelIndex child = tree.addNode(QStringLiteral("E4"), QStringLiteral("E1"), QStringLiteral("Child"));
        const QModelIndex second = tree.addNode(QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("Second"));
        QCOMPARE(tree.nodeCount(), 4);
        QCOMPARE(tree.node(1), root);
        QCOMPARE(tree.node(2), first); // "the second node": the first item under the root
        QCOMPARE(tree.node(tree.nodeCount()), second); // "the last node": the newest
        QVERIFY(!tree.node(0).isValid());
        QVERIFY(!tree.node(5).isValid());
        QCOMPARE(tree.indexOfNode(child), 3);
        QCOMPARE(tree.indexOfNode(QModelIndex()), 0);
        QCOMPARE(child.parent(), first);
        QCOMPARE(tree.keyOf(child), QStringLiteral("E1"));
        QCOMPARE(tree.textOf(child), QStringLiteral("Child"));
        QCOMPARE(tree.nodeByKey(QStringLiteral("E0")), second);
        QCOMPARE(second.row(), 1);

        ItemTree other;
        other.addNode(QString(), QStringLiteral("Root"), QStringLiteral("KELV"));
        const QModelIndex stranger = other.node(1);
        QCOMPARE(tree.indexOfNode(stranger), 0);
        QCOMPARE(tree.keyOf(stranger), QString());
    }

    void addNodeIsRefusedForMissingParentOrTakenKey()
    {
        ItemTree tree;
        tree.addNode(QString(), QStringLiteral("Root"), QStringLiteral("KELV"));
        QVERIFY(!tree.addNode(QStringLiteral("E9"), QStringLiteral("E1"), QStringLiteral("Orphan")).isValid());
        QVERIFY(!tree.addNode(QStringLiteral("Root"), QStringLiteral("Root"), QStringLiteral("Again")).isValid());
        QCOMPARE(tree.nodeCount(), 1);
        QVERIFY(!tree.nodeByKey(QStringLiteral("E1")).isValid());
    }

    void fullPathJoinsTextsFromTheRoot()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        QCOMPARE(tree.fullPath(tree.nodeByKey(QStringLiteral("E2"))), QStringLiteral("KELV\\Tools\\Archive\\Zip"));
        QCOMPARE(tree.fullPath(tree.node(1)), QStringLiteral("KELV"));
        QCOMPARE(tree.fullPath(QModelIndex()), QString());
    }

    void removeNodeTakesItsSubtreeAndKeepsTheOrderOfTheRest()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        const QPersistentModelIndex open = tree.nodeByKey(QStringLiteral("E3"));
        tree.removeNode(tree.nodeByKey(QStringLiteral("E1")));
        QVERIFY(!tree.nodeByKey(QStringLiteral("E1")).isValid());
        QVERIFY(!tree.nodeByKey(QStringLiteral("E2")).isValid());
        QCOMPARE(nodeKeys(tree),
                 QStringList({ QStringLiteral("Root"), QStringLiteral("E0"), QStringLiteral("E3"), QStringLiteral("E4"),
                               QStringLiteral("E5") }));
        QCOMPARE(QPersistentModelIndex(tree.nodeByKey(QStringLiteral("E3"))), open);
        QCOMPARE(tree.indexOfNode(open), 3);
        QCOMPARE(tree.model()->rowCount(tree.nodeByKey(QStringLiteral("E0"))), 1);

        tree.removeNode(tree.nodeByKey(QStringLiteral("E5")));
        QCOMPARE(tree.nodeCount(), 4);
        QCOMPARE(tree.model()->rowCount(tree.node(1)), 2);

        tree.removeNode(tree.node(1));
        QCOMPARE(tree.nodeCount(), 0);
        QCOMPARE(topLevelRows(tree), 0);
        QVERIFY(!tree.nodeByKey(QStringLiteral("Root")).isValid());
    }

    void clearNodesEmptiesTheCollection()
    {
        ItemTree tree;
        MenuDocument document = toolsMenu();
        generate(tree, document, 0);
        tree.clearNodes();
        QCOMPARE(tree.nodeCount(), 0);
        QCOMPARE(topLevelRows(tree), 0);
        QVERIFY(!tree.nodeByKey(QStringLiteral("E0")).isValid());
    }

    void treeFollowsThePlanOnRandomMenus()
    {
        ItemTree tree;
        for (quint32 seed = 1; seed <= 200; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            const int modeChange = int(seed % 4);
            generate(tree, document, modeChange);
            const QList<PlannedNode> plan = planTree(document, document.hideMode);
            QCOMPARE(tree.nodeCount(), int(plan.size()) + 1);
            for (int n = 0; n < plan.size(); ++n) {
                const QModelIndex shown = tree.node(n + 2);
                QCOMPARE(tree.keyOf(shown), plan.at(n).key);
                QCOMPARE(tree.keyOf(shown.parent()), plan.at(n).parentKey);
                QCOMPARE(tree.textOf(shown), plan.at(n).caption);
            }
        }
    }

    void deepChainIsBuiltAndTornDown()
    {
        MenuDocument document = TestMenus::chainMenu(32767);
        {
            ItemTree tree;
            generate(tree, document, 0);
            QCOMPARE(tree.nodeCount(), 32768);
            QCOMPARE(tree.node(32768).parent(), tree.node(32767));
            // Node n lies n - 1 levels below the root.
            QVERIFY(tree.isExpanded(tree.node(1)));
            QVERIFY(tree.isExpanded(tree.node(ItemTree::expandedLevels)));
            QVERIFY(!tree.isExpanded(tree.node(ItemTree::expandedLevels + 1)));
            tree.colorize();
            QCOMPARE(colourOf(tree.node(2)), kNavy);
            generate(tree, document, -3);
            QCOMPARE(tree.nodeCount(), 32768);
            tree.removeNode(tree.node(2));
            QCOMPARE(tree.nodeCount(), 1);
            generate(tree, document, -3);
        }
    }
};

QTEST_MAIN(TestItemTree)
#include "test_itemtree.moc"

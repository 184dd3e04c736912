#include "laidoutrows.h"
#include "treeview/testmenus.h"

#include "app/itemtree.h"
#include "app/itemtreemodel.h"
#include "app/treerows.h"
#include "model/menudocument.h"

#include <QHash>
#include <QPair>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

namespace {

/// A tree built from `document`, which must outlive it.
std::unique_ptr<ItemTree> treeOf(const MenuDocument& document)
{
    auto tree = std::make_unique<ItemTree>();
    tree->setDocumentSource([&document]() -> const MenuDocument& { return document; });
    tree->generate();
    tree->showRootText(document.hideMode);
    return tree;
}

/// A node of `tree` picked at random.
QModelIndex anyNode(QRandomGenerator& random, const ItemTree& tree)
{
    return tree.node(1 + int(random.bounded(tree.nodeCount())));
}

/// A menu of `items`, each a key and its parent's key (empty: the top level), parents first; the
/// children of an item take siblingOrder 1, 2, 3 ... in the order they are given.
MenuDocument menuOf(const QList<QPair<QString, QString>>& items)
{
    QList<MenuItem> made;
    QHash<QString, int> indexOf;
    for (const auto& [key, parentKey] : items) {
        const int parent = parentKey.isEmpty() ? -1 : indexOf.value(parentKey);
        qint16 order = 1;
        for (const MenuItem& earlier : made) {
            order = qint16(order + (earlier.parent == parent ? 1 : 0));
        }
        if (parent >= 0) {
            ++made[parent].childCount;
        }
        indexOf.insert(key, int(made.size()));
        made.append(TestMenus::item(key, qint16(parent), 0, order));
    }
    MenuDocument document;
    document.items = MenuItemArray(made);
    document.lastIndex = qint16(made.size() - 1);
    return document;
}

/// A submenu E0 of `count` items E1 ... E`count`, E3 with a child X, less the items `gone` (X goes
/// with E3).
MenuDocument submenuOf(int count, const QStringList& gone = {})
{
    QList<QPair<QString, QString>> items { { QStringLiteral("E0"), QString() } };
    for (int i = 1; i <= count; ++i) {
        if (!gone.contains(QStringLiteral("E%1").arg(i))) {
            items.append({ QStringLiteral("E%1").arg(i), QStringLiteral("E0") });
        }
    }
    if (!gone.contains(QStringLiteral("E3"))) {
        items.append({ QStringLiteral("X"), QStringLiteral("E3") });
    }
    return menuOf(items);
}

/// Whether the rows of `tree` agree with the tree view's own layout (see LaidOutRows::disagreement);
/// tells how they differ when not.
bool rowsAgree(ItemTree& tree)
{
    const QString problem = LaidOutRows::disagreement(tree);
    if (!problem.isEmpty()) {
        qWarning("%s", qPrintable(problem));
    }
    return problem.isEmpty();
}

} // namespace

/// The item tree lays out its rows from its nodes and changes them in place as nodes come and go; the
/// tree view's own layout, from the model row by row, is the reference they must match in every
/// detail, as the view goes on from those rows (it expands and collapses nodes in them, finds rows,
/// paints them).
class TestTreeRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAreTheViewsOwnOnRandomMenusAndExpandedStates()
    {
        QRandomGenerator random(1125);
        int laidOutRows = 0;
        for (quint32 seed = 1; seed <= 200; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            document.hideMode = int(random.bounded(4));
            const auto tree = treeOf(document);
            QVERIFY(TreeRows::applies(*tree, *tree->treeModel()));
            QVERIFY2(rowsAgree(*tree), "after a rebuild");
            laidOutRows += int(LaidOutRows::of(*tree).size());
            if (tree->nodeCount() == 0) {
                continue;
            }
            for (int step = 0; step < 12; ++step) {
                // Leaves are expanded too: the tree does so, for the children they get later.
                const QModelIndex node = anyNode(random, *tree);
                if (random.bounded(2) == 0) {
                    tree->expand(node);
                } else {
                    tree->collapse(node);
                }
                QVERIFY2(rowsAgree(*tree), "after an expansion or a collapse");
            }
        }
        QVERIFY(laidOutRows > 2000); // the menus were not all empty
    }

    void rowsAreTheViewsOwnAfterChangesOfShape()
    {
        QRandomGenerator random(20261125);
        int made = 0;
        for (quint32 seed = 1; seed <= 120; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            document.hideMode = int(random.bounded(4));
            const auto tree = treeOf(document);
            for (int step = 0; step < 8 && tree->nodeCount() > 0; ++step) {
                const QModelIndex node = anyNode(random, *tree);
                switch (random.bounded(5)) {
                case 0:
                    tree->removeNode(node);
                    break;
                case 1:
                    tree->moveNode(node, anyNode(random, *tree), int(random.bounded(3)));
                    break;
                case 2:
                    tree->moveAmongSiblings(node, random.bounded(2) == 0 ? -1 : 1);
                    break;
                case 3:
                    tree->addNodes({ { tree->keyOf(node), QStringLiteral("N%1").arg(made), QStringLiteral("copy") },
                                     { QStringLiteral("N%1").arg(made), QStringLiteral("M%1").arg(made),
                                       QStringLiteral("inner") } });
                    ++made;
                    break;
                default:
                    tree->collapse(node);
                    break;
                }
                QVERIFY2(rowsAgree(*tree), "after a change of shape");
            }
            if (tree->nodeCount() == 0) {
                continue; // the root itself went
            }
            const MenuDocument before = document;
            document = TestMenus::randomMenu(seed + 1000 * random.bounded(1, 3));
            document.hideMode = before.hideMode;
            tree->syncTo(&before);
            QVERIFY2(rowsAgree(*tree), "after a sync with another menu");
        }
    }

    void rowsChangeInPlaceWhenNodesComeAndGo()
    {
        QRandomGenerator random(251125);
        int made = 0;
        int changes = 0;
        for (quint32 seed = 1; seed <= 150; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            const auto tree = treeOf(document);
            QVERIFY2(rowsAgree(*tree), "after a rebuild");
            for (int step = 0; step < 14 && tree->nodeCount() > 1; ++step) {
                const QModelIndex node = tree->node(2 + int(random.bounded(tree->nodeCount() - 1)));
                const QModelIndex parent = anyNode(random, *tree);
                switch (random.bounded(4)) {
                case 0:
                    tree->removeNode(node);
                    // Rows that go are taken out in place: no layout of every row is due.
                    QVERIFY(!LaidOutRows::isLayoutDue(*tree));
                    ++changes;
                    break;
                case 1: {
                    const QString key = QStringLiteral("N%1").arg(made++);
                    QVERIFY(tree->addNode(tree->keyOf(parent), key, key).isValid());
                    QVERIFY(!LaidOutRows::isLayoutDue(*tree)); // nor for a row added
                    ++changes;
                    break;
                }
                case 2: {
                    // Added, then moved up among its siblings: two leaves trade their places, a submenu
                    // moves with the expanded state set aside. (Rows added as a first or middle child
                    // are tested through syncs below.)
                    const QString key = QStringLiteral("N%1").arg(made++);
                    QVERIFY(tree->addNode(tree->keyOf(parent), key, key).isValid());
                    const int rows = tree->model()->rowCount(parent);
                    if (rows > 1) {
                        tree->moveAmongSiblings(tree->nodeByKey(key), -int(random.bounded(1, rows)));
                    }
                    break;
                }
                default:
                    if (random.bounded(2) == 0) {
                        tree->collapse(node);
                    } else {
                        tree->expand(node);
                    }
                    break;
                }
                QVERIFY2(rowsAgree(*tree), "after a node came or went");
            }
        }
        QVERIFY(changes > 600);
    }

    void firstMiddleAndLastChildrenComeAndGoInPlace()
    {
        // As Undo and Redo bring a node back or take it away: the first child, one in the middle with
        // a child of its own, the last, and several at once.
        const MenuDocument full = submenuOf(5);
        const QList<QStringList> removals { { QStringLiteral("E1") },
                                            { QStringLiteral("E3") },
                                            { QStringLiteral("E5") },
                                            { QStringLiteral("E1"), QStringLiteral("E3"), QStringLiteral("E5") },
                                            { QStringLiteral("E2"), QStringLiteral("E3"), QStringLiteral("E4"),
                                              QStringLiteral("E5") } };
        for (const QStringList& gone : removals) {
            const QByteArray what = gone.join(QLatin1Char(' ')).toUtf8();
            const MenuDocument less = submenuOf(5, gone);
            MenuDocument shown = full;
            ItemTree tree;
            tree.setDocumentSource([&shown]() -> const MenuDocument& { return shown; });
            tree.generate();
            QVERIFY2(rowsAgree(tree), "after a rebuild");
            shown = less;
            tree.syncTo(&full);
            QVERIFY2(!LaidOutRows::isLayoutDue(tree), what.constData());
            QVERIFY2(tree.nodeByKey(gone.first()) == QModelIndex(), what.constData());
            QVERIFY2(rowsAgree(tree), what.constData());
            shown = full;
            tree.syncTo(&less);
            QVERIFY2(!LaidOutRows::isLayoutDue(tree), what.constData());
            QVERIFY2(tree.isExpanded(tree.nodeByKey(QStringLiteral("E3"))), what.constData());
            QVERIFY2(rowsAgree(tree), what.constData());
        }
    }

    void manyBranchesGoingAtOnceAreLaidOutOnce()
    {
        // Each removal in place costs time in the number of rows: many in one change are laid out once.
        const MenuDocument full = submenuOf(12);
        QStringList gone;
        for (int i = 1; i <= 12; ++i) {
            gone.append(QStringLiteral("E%1").arg(i));
        }
        gone.removeLast();
        MenuDocument shown = full;
        ItemTree tree;
        tree.setDocumentSource([&shown]() -> const MenuDocument& { return shown; });
        tree.generate();
        QVERIFY2(rowsAgree(tree), "after a rebuild");
        shown = submenuOf(12, gone);
        tree.syncTo(&full);
        QVERIFY(LaidOutRows::isLayoutDue(tree));
        QVERIFY2(rowsAgree(tree), "after eleven branches went");
        QCOMPARE(tree.model()->rowCount(tree.nodeByKey(QStringLiteral("E0"))), 1);
        // The next change goes in place again.
        shown = full;
        tree.syncTo(nullptr);
        QVERIFY2(rowsAgree(tree), "after they came back");
        const MenuDocument withoutOne = submenuOf(12, { QStringLiteral("E7") });
        shown = withoutOne;
        tree.syncTo(nullptr);
        QVERIFY(!LaidOutRows::isLayoutDue(tree));
        QVERIFY2(rowsAgree(tree), "after one went");
    }

    void nodesTheTreeCollapsesCloseWithoutAnimation()
    {
        // Undo of a New Item under a leaf: the leaf loses its only child and closes.
        const MenuDocument full = submenuOf(3);
        MenuDocument shown = full;
        ItemTree tree;
        tree.setDocumentSource([&shown]() -> const MenuDocument& { return shown; });
        tree.generate();
        tree.resize(300, 400);
        tree.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        tree.setAnimated(true);
        QVERIFY2(rowsAgree(tree), "after a rebuild");
        QVERIFY(tree.isExpanded(tree.nodeByKey(QStringLiteral("E3"))));
        MenuDocument withoutX = full;
        withoutX.items.removeLast();
        withoutX.items[3].childCount = 0; // E3
        shown = withoutX;
        tree.syncTo(&full);
        QVERIFY(!tree.isExpanded(tree.nodeByKey(QStringLiteral("E3"))));
        QVERIFY(!LaidOutRows::isAnimating(tree));
        QVERIFY(tree.isAnimated());
        QVERIFY2(rowsAgree(tree), "after the leaf lost its child");
    }

    void rowsAreTheViewsOwnOnADeepChain()
    {
        // Deeper than the levels a rebuild expands, so that open and shut nodes alternate below.
        const MenuDocument chain = TestMenus::chainMenu(ItemTree::expandedLevels + 300);
        const auto tree = treeOf(chain);
        QVERIFY2(rowsAgree(*tree), "after a rebuild");
        QVERIFY(LaidOutRows::of(*tree).size() > ItemTree::expandedLevels);
        tree->collapse(tree->nodeByKey(QStringLiteral("E40")));
        QVERIFY2(rowsAgree(*tree), "after a collapse in the middle");
        tree->expand(tree->nodeByKey(QStringLiteral("E40")));
        tree->expand(tree->node(ItemTree::expandedLevels + 50));
        QVERIFY2(rowsAgree(*tree), "after expansions");
    }

    void nodesTheTreeExpandsOpenWithoutAnimation()
    {
        const MenuDocument chain = TestMenus::chainMenu(5);
        const auto tree = treeOf(chain);
        tree->resize(300, 400);
        tree->show();
        QVERIFY(QTest::qWaitForWindowExposed(tree.get()));
        tree->setAnimated(true); // as some styles have it for what the user opens
        QVERIFY2(rowsAgree(*tree), "after a rebuild");
        // A copied branch arrives expanded, among rows that stand.
        tree->addNodes({ { QStringLiteral("E2"), QStringLiteral("N0"), QStringLiteral("copy") },
                         { QStringLiteral("N0"), QStringLiteral("M0"), QStringLiteral("inner") } });
        QVERIFY(!LaidOutRows::isLayoutDue(*tree));
        QVERIFY(tree->isExpanded(tree->nodeByKey(QStringLiteral("N0"))));
        QVERIFY(!LaidOutRows::isAnimating(*tree));
        QVERIFY(tree->isAnimated());
        QVERIFY2(rowsAgree(*tree), "after a branch was added");
    }

    void theViewLaysOutItselfAroundAHiddenRow()
    {
        const MenuDocument document = TestMenus::randomMenu(7);
        const auto tree = treeOf(document);
        QVERIFY(tree->nodeCount() > 3);
        const QModelIndex hidden = tree->node(3);
        tree->setRowHidden(hidden.row(), hidden.parent(), true);
        QVERIFY(!TreeRows::applies(*tree, *tree->treeModel()));
        QVERIFY2(rowsAgree(*tree), "after a row was hidden");
        const QString hiddenId = QString::number(hidden.internalId()) + QLatin1Char(' ');
        for (const QString& row : LaidOutRows::of(*tree)) {
            QVERIFY2(!row.startsWith(hiddenId), qPrintable(row));
        }
    }
};

QTEST_MAIN(TestTreeRows)
#include "test_treerows.moc"

#include "laidoutrows.h"
#include "treeview/testmenus.h"

#include "app/itemtree.h"
#include "app/itemtreemodel.h"
#include "app/treerows.h"
#include "model/menudocument.h"

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
                    // Added, then moved up to be a first or middle child: each changes the rows around
                    // it differently.
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

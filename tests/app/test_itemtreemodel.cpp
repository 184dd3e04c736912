#include "editing/randommenu.h"
#include "guisandbox.h"
#include "laidoutrows.h"
#include "treeview/testmenus.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/itemtreemodel.h"
#include "app/mainwindow.h"
#include "commands/commandediting.h"
#include "core/editingsession.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "editing/linkediting.h"
#include "editing/subtreecopy.h"
#include "editing/textreplacement.h"
#include "editing/treedisplay.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QFont>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

namespace {

/// What the view shows of every node, in the node collection's order: key, parent, row, text,
/// colour, bold type and, for a submenu, whether it is expanded. Read through the model and the
/// view, as a user would see them.
QStringList shown(const ItemTree& tree)
{
    QStringList lines;
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        const QModelIndex node = tree.node(n);
        const bool submenu = tree.model()->rowCount(node) > 0;
        lines.append(
            QStringLiteral("%1 < %2 @%3 '%4' %5 %6 %7")
                .arg(tree.keyOf(node), tree.keyOf(node.parent()))
                .arg(node.row())
                .arg(node.data().toString(), node.data(Qt::ForegroundRole).value<QBrush>().color().name())
                .arg(node.data(Qt::FontRole).value<QFont>().bold() ? QStringLiteral("bold") : QString())
                .arg(submenu ? (tree.isExpanded(node) ? QStringLiteral("open") : QStringLiteral("shut")) : QString()));
    }
    return lines;
}

/// What a tree freshly rebuilt from `document` shows, its root told the hide mode.
QStringList rebuilt(const MenuDocument& document)
{
    ItemTree fresh;
    fresh.setDocumentSource([&document]() -> const MenuDocument& { return document; });
    fresh.generate();
    fresh.showRootText(document.hideMode);
    return shown(fresh);
}

/// Every node sits at its row under its parent, and the collection numbers it.
QString shapeProblem(const ItemTree& tree)
{
    const NodeTree& nodes = tree.treeModel()->nodes();
    for (int n = 1; n <= nodes.nodeCount(); ++n) {
        const TreeNode* node = nodes.node(n);
        if (NodeTree::indexOf(node) != n) {
            return QStringLiteral("node %1 is numbered %2").arg(n).arg(NodeTree::indexOf(node));
        }
        if (node->parent != nullptr
            && (node->row >= int(node->parent->children.size())
                || node->parent->children.at(size_t(node->row)) != node)) {
            return QStringLiteral("node %1 is not at its row %2").arg(node->key).arg(node->row);
        }
        if (nodes.nodeByKey(node->key) != node) {
            return QStringLiteral("key %1 names another node").arg(node->key);
        }
    }
    return QString();
}

/// The view's expanded nodes are exactly the nodes marked expanded.
QString expandedStateProblem(const ItemTree& tree)
{
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        const QModelIndex node = tree.node(n);
        const TreeNode* treeNode = tree.treeModel()->nodeOf(node);
        if (tree.model()->rowCount(node) > 0 && tree.isExpanded(node) != treeNode->expanded) {
            return QStringLiteral("node %1 is %2 in the view")
                .arg(tree.keyOf(node), tree.isExpanded(node) ? QStringLiteral("open") : QStringLiteral("shut"));
        }
    }
    return QString();
}

} // namespace

class TestItemTreeModel : public QObject
{
    Q_OBJECT

private:
    /// A persistent index of every node, with the node's key.
    static QList<QPair<QString, QPersistentModelIndex>> indexesOfEveryNode(const ItemTree& tree)
    {
        QList<QPair<QString, QPersistentModelIndex>> held;
        for (int n = 1; n <= tree.nodeCount(); ++n) {
            held.append({ tree.keyOf(tree.node(n)), QPersistentModelIndex(tree.node(n)) });
        }
        return held;
    }

    /// The held indexes that no longer name the node of their key (or, for a key gone, are still valid).
    static QStringList heldIndexProblems(const ItemTree& tree, const QList<QPair<QString, QPersistentModelIndex>>& held)
    {
        QStringList problems;
        for (const auto& [key, index] : held) {
            if (QModelIndex(index) != tree.nodeByKey(key)) {
                problems.append(QStringLiteral("the index held for %1 is %2, row %3")
                                    .arg(key, index.isValid() ? QStringLiteral("valid") : QStringLiteral("invalid"))
                                    .arg(index.row()));
            }
        }
        return problems;
    }

    /// Removes the nodes of `keys` in turn from a tree of `document`, checking after each removal the
    /// persistent indexes held of every node.
    static bool removalKeepsHeldIndexes(const MenuDocument& document, const QStringList& keys)
    {
        ItemTree tree;
        tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
        tree.generate();
        const QList<QPair<QString, QPersistentModelIndex>> held = indexesOfEveryNode(tree);
        for (const QString& key : keys) {
            tree.removeNode(tree.nodeByKey(key));
            const QStringList problems = heldIndexProblems(tree, held);
            if (!problems.isEmpty()) {
                qWarning("after the removal of %s: %s", qPrintable(key), qPrintable(problems.first()));
                return false;
            }
        }
        return true;
    }

    /// A new menu in the window of `sandbox` that holds a random menu of 2 to 39 items, its tree built.
    static qint16 openRandomMenu(QRandomGenerator& random, GuiSandbox& sandbox)
    {
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        MenuDocument& menu = window.state().document(index);
        const MenuDocument generated = RandomMenu::generate(random, int(random.bounded(2, 40)));
        menu.items = generated.items;
        menu.lastIndex = generated.lastIndex;
        window.regenerateTree(index);
        return index;
    }

    /// One random editing operation of the editor window of document `index`, run as its menu
    /// entries run it, on a node picked at random.
    static void runRandomOperation(QRandomGenerator& random, GuiSandbox& sandbox, qint16 index)
    {
        MainWindow& window = sandbox.window();
        EditorWindow* editor = window.editor(index);
        ItemTree* tree = editor->tree();
        EditingSession& session = window.session();
        const QModelIndex picked = tree->node(1 + int(random.bounded(tree->nodeCount())));
        editor->lstMenu_NodeClick(picked);
        window.state().editing().copyCommandDup = random.bounded(2) == 0;
        const int op = int(random.bounded(16));
        switch (op) {
        case 0:
            session.run(EditOperations::newItem);
            break;
        case 1:
            session.run(EditOperations::deleteItem);
            break;
        case 2:
            session.run(EditOperations::duplicate);
            break;
        case 3:
            session.run(EditOperations::copy);
            break;
        case 4:
            session.run(EditOperations::cut);
            break;
        case 5:
            session.run(EditOperations::paste);
            break;
        case 6:
            session.run(EditOperations::moveUp);
            break;
        case 7:
            session.run(EditOperations::moveDown);
            break;
        case 8: {
            const QModelIndex target = tree->node(1 + int(random.bounded(tree->nodeCount())));
            const SelectedNode dragged = editor->selectedNode();
            if (!dragged.isItem() || tree->keyOf(target) == dragged.key) {
                break;
            }
            DropRequest request;
            request.draggedKey = dragged.key;
            request.targetKey = tree->keyOf(target);
            request.targetParentKey = tree->keyOf(target.parent());
            request.place = !target.parent().isValid() || random.bounded(2) == 0 ? DropPlace::Child : DropPlace::Next;
            request.copy = random.bounded(2) == 0;
            window.state().editing().drag.active = true;
            session.runDrop(index, index, request);
            break;
        }
        case 9: {
            EditArguments arguments;
            arguments.checked = random.bounded(2) == 0;
            session.run(EditOperations::switchLink, arguments);
            break;
        }
        case 10:
            session.run(EditOperations::lookForCopyCommand);
            break;
        case 11: {
            EditArguments arguments;
            arguments.text = QStringLiteral("renamed %1").arg(random.bounded(9));
            window.state().window(index).labelEditTag = true;
            session.runOn(index, editor->selectedNode(), EditOperations::storeLabelEdit, arguments);
            tree->setNodeText(tree->currentIndex(), arguments.text);
            break;
        }
        case 12: {
            EditArguments arguments;
            arguments.slot = int(random.bounded(3));
            session.run(EditOperations::removeCommand, arguments);
            break;
        }
        case 13:
            session.run(EditOperations::clearCommands);
            break;
        case 14: {
            EditArguments arguments;
            arguments.slot = int(random.bounded(3));
            session.run(EditOperations::specialItem, arguments);
            break;
        }
        default:
            sandbox.trigger(QStringLiteral("mnuRefresh"));
            break;
        }
        // A new item waits for its name; it is left as it was made.
        if (QLineEdit* label = tree->viewport()->findChild<QLineEdit*>(); label != nullptr && tree->isEditingLabel()) {
            QTest::keyClick(label, Qt::Key_Escape);
        }
    }

private Q_SLOTS:
    void theModelStaysConsistentThroughPatchesAndSyncs()
    {
        QRandomGenerator random(71);
        for (quint32 seed = 1; seed <= 120; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            document.hideMode = int(random.bounded(4));
            ItemTree tree;
            QAbstractItemModelTester tester(tree.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
            tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
            tree.generate();
            tree.showRootText(document.hideMode);
            QCOMPARE(shown(tree), rebuilt(document));
            int made = 0;
            for (int step = 0; step < 6 && tree.nodeCount() > 0; ++step) {
                const QModelIndex node = tree.node(1 + int(random.bounded(tree.nodeCount())));
                switch (random.bounded(6)) {
                case 0:
                    tree.removeNode(node);
                    break;
                case 1:
                    tree.moveNode(node, tree.node(1 + int(random.bounded(tree.nodeCount()))), int(random.bounded(3)));
                    break;
                case 2:
                    tree.moveAmongSiblings(node, random.bounded(2) == 0 ? -1 : 1);
                    break;
                case 3:
                    tree.addNodes({ { tree.keyOf(node), QStringLiteral("N%1").arg(made), QStringLiteral("copy") },
                                    { QStringLiteral("N%1").arg(made), QStringLiteral("M%1").arg(made),
                                      QStringLiteral("inner") } });
                    ++made;
                    break;
                case 4:
                    tree.setNodeColour(node, NodeStyle::Colour::Maroon);
                    break;
                default:
                    tree.collapse(node);
                    break;
                }
                QVERIFY2(expandedStateProblem(tree).isEmpty(), qPrintable(expandedStateProblem(tree)));
            }
            if (tree.nodeCount() == 0) {
                continue; // the root itself was removed
            }
            const MenuDocument before = document;
            document = TestMenus::randomMenu(seed + 1000 * random.bounded(1, 3));
            document.hideMode = before.hideMode;
            tree.syncTo(&before);
            tree.showRootText(document.hideMode);
            QCOMPARE(shown(tree), rebuilt(document));
            QVERIFY2(expandedStateProblem(tree).isEmpty(), qPrintable(expandedStateProblem(tree)));
        }
    }

    void undoAndRedoShowWhatARebuildShows()
    {
        QRandomGenerator random(20261124);
        for (quint32 seed = 1; seed <= 25; ++seed) {
            GuiSandbox sandbox;
            MainWindow& window = sandbox.window();
            const qint16 index = openRandomMenu(random, sandbox);
            ItemTree* tree = window.editor(index)->tree();
            QAbstractItemModelTester tester(tree->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
            for (int step = 0; step < 30; ++step) {
                const int choice = int(random.bounded(10));
                if (choice < 6) {
                    runRandomOperation(random, sandbox, index);
                    QVERIFY2(shapeProblem(*tree).isEmpty(), qPrintable(shapeProblem(*tree)));
                    QVERIFY2(expandedStateProblem(*tree).isEmpty(), qPrintable(expandedStateProblem(*tree)));
                    const QString rowsProblem = LaidOutRows::disagreement(*tree);
                    QVERIFY2(rowsProblem.isEmpty(), qPrintable(rowsProblem));
                    continue;
                }
                if (choice < 8) {
                    window.mnuUndo_Click();
                } else {
                    window.mnuRedo_Click();
                }
                const MenuDocument& document = window.state().document(index);
                QVERIFY2(shapeProblem(*tree).isEmpty(), qPrintable(shapeProblem(*tree)));
                QCOMPARE(shown(*tree), rebuilt(document));
                QVERIFY2(expandedStateProblem(*tree).isEmpty(), qPrintable(expandedStateProblem(*tree)));
                // The rows the tree laid out itself, and those the view made of them, are the view's own.
                const QString rowsProblem = LaidOutRows::disagreement(*tree);
                QVERIFY2(rowsProblem.isEmpty(), qPrintable(rowsProblem));
                if (tree->nodeCount() > 1) {
                    QCOMPARE(tree->currentIndex(), tree->node(2));
                }
            }
            // Error reports would show in message boxes: the random edits may well be refused, but on a
            // well-formed menu nothing may fail.
            for (const MessageRequest& message : sandbox.prompts().messages) {
                QVERIFY2(message.icon != MessageRequest::Icon::Critical, qPrintable(message.text));
            }
        }
    }

    void refreshAndReplaceShowWhatARebuildShows()
    {
        // Refresh and Replace reach what a rebuild shows by changing only what differs: after edits,
        // nodes the user shut and a stray selection, the view must still end exactly as a rebuild
        // leaves it, with the first item current and nothing else selected.
        QRandomGenerator random(20261125);
        const QStringList texts { QStringLiteral("e"), QStringLiteral("Item"), QStringLiteral("1") };
        for (quint32 seed = 1; seed <= 25; ++seed) {
            GuiSandbox sandbox;
            MainWindow& window = sandbox.window();
            const qint16 index = openRandomMenu(random, sandbox);
            ItemTree* tree = window.editor(index)->tree();
            QAbstractItemModelTester tester(tree->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
            for (int step = 0; step < 30; ++step) {
                const int choice = int(random.bounded(10));
                if (choice < 4) {
                    runRandomOperation(random, sandbox, index);
                    continue;
                }
                if (choice < 6 && tree->nodeCount() > 1) {
                    const QModelIndex node = tree->node(1 + int(random.bounded(tree->nodeCount())));
                    if (random.bounded(2) == 0) {
                        tree->collapse(node); // as the user shuts it
                    } else {
                        tree->setCurrentIndex(node);
                        tree->selectionModel()->select(tree->node(1), QItemSelectionModel::Select);
                    }
                    continue;
                }
                if (choice < 8) {
                    window.session().run(index, EditOperations::refreshList, EditArguments());
                } else {
                    EditArguments arguments;
                    arguments.text = texts.at(int(random.bounded(int(texts.size()))));
                    arguments.replacement = random.bounded(2) == 0 ? QStringLiteral("E") : QStringLiteral("Entry");
                    arguments.checked = true;
                    window.session().run(index, EditOperations::replace, arguments);
                }
                const MenuDocument& document = window.state().document(index);
                QVERIFY2(shapeProblem(*tree).isEmpty(), qPrintable(shapeProblem(*tree)));
                QCOMPARE(shown(*tree), rebuilt(document));
                QVERIFY2(expandedStateProblem(*tree).isEmpty(), qPrintable(expandedStateProblem(*tree)));
                // The rows the tree laid out itself, and those the view made of them, are the view's own.
                const QString rowsProblem = LaidOutRows::disagreement(*tree);
                QVERIFY2(rowsProblem.isEmpty(), qPrintable(rowsProblem));
                if (tree->nodeCount() > 1) {
                    QCOMPARE(tree->currentIndex(), tree->node(2));
                    QCOMPARE(tree->selectionModel()->selectedIndexes(), QModelIndexList { tree->node(2) });
                } else {
                    QVERIFY(!tree->currentIndex().isValid());
                    QVERIFY(tree->selectionModel()->selectedIndexes().isEmpty());
                }
            }
            for (const MessageRequest& message : sandbox.prompts().messages) {
                QVERIFY2(message.icon != MessageRequest::Icon::Critical, qPrintable(message.text));
            }
        }
    }

    void persistentIndexesFollowTheirNodesWhenBranchesGo()
    {
        // 400 top-level items, every other one with a child.
        MenuDocument wide;
        for (int i = 0; i < 400; ++i) {
            wide.items.append(
                TestMenus::item(QStringLiteral("E%1").arg(i), -1, qint16(i % 2 == 0 ? 1 : 0), qint16(i + 1)));
        }
        for (int i = 0; i < 400; i += 2) {
            wide.items.append(TestMenus::item(QStringLiteral("E%1").arg(400 + i), qint16(i), 0, 1));
        }
        wide.lastIndex = qint16(wide.items.size() - 1);
        const MenuDocument chain = TestMenus::chainMenu(600);

        // A removal changes the indexes of the rows that go, their branches and the siblings after
        // them: up to 256 of them are told one by one, more through every persistent index.
        QVERIFY(removalKeepsHeldIndexes(wide, { QStringLiteral("E0") })); // 400 rows after it
        QVERIFY(removalKeepsHeldIndexes(wide, { QStringLiteral("E398") })); // a branch of 2, 2 rows
        QVERIFY(removalKeepsHeldIndexes(chain, { QStringLiteral("E344") })); // a branch of 256
        QVERIFY(removalKeepsHeldIndexes(chain, { QStringLiteral("E343") })); // a branch of 257
        QVERIFY(removalKeepsHeldIndexes(chain, { QStringLiteral("E590"), QStringLiteral("E1") }));

        QRandomGenerator random(1125);
        for (quint32 seed = 1; seed <= 60; ++seed) {
            const MenuDocument document = TestMenus::randomMenu(seed);
            ItemTree tree;
            tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
            tree.generate();
            QStringList keys;
            // Keys picked up front: one may go with an earlier one's branch, and then nothing changes.
            for (int removal = 0; removal < 4 && tree.nodeCount() > 1; ++removal) {
                keys.append(tree.keyOf(tree.node(2 + int(random.bounded(tree.nodeCount() - 1)))));
            }
            QVERIFY(removalKeepsHeldIndexes(document, keys));
        }
    }

    void persistentIndexesFollowTheirNodesThroughSyncs()
    {
        QRandomGenerator random(1126);
        for (quint32 seed = 1; seed <= 60; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            ItemTree tree;
            tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
            tree.generate();
            const QList<QPair<QString, QPersistentModelIndex>> held = indexesOfEveryNode(tree);
            // Another random menu shares many keys: their nodes stay, move, lose or gain branches.
            const MenuDocument before = document;
            document = TestMenus::randomMenu(seed + 1000 * random.bounded(1, 3));
            tree.syncTo(&before);
            QCOMPARE(heldIndexProblems(tree, held), QStringList());
        }
    }

    void nodeIdsAreSpreadOverAHashsBuckets()
    {
        // Item views keep expanded nodes in hashes of their indexes: ids that differ only in a few
        // high bits would land in a few buckets.
        const MenuDocument document = TestMenus::chainMenu(2000);
        ItemTree tree;
        tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
        tree.generate();
        QSet<quintptr> lowBits;
        for (int n = 1; n <= tree.nodeCount(); ++n) {
            lowBits.insert(tree.node(n).internalId() & 0x3ff);
        }
        // Random ids take about 880 of the 1,024 values of their low ten bits; node addresses a fixed
        // distance apart take a few dozen.
        QVERIFY2(lowBits.size() > 700, qPrintable(QString::number(lowBits.size())));
    }
};

QTEST_MAIN(TestItemTreeModel)
#include "test_itemtreemodel.moc"

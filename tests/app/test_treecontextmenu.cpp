#include "guisandbox.h"
#include "treehelpers.h"

#include "app/editmenu.h"
#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "model/menudocument.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::nodeOutline;
using TreeHelpers::texts;
using TreeHelpers::typeLabel;

/// What a newcomer looks for first in a tree editor: the context menu of a node (right click,
/// Shift+F10, the Menu key) with the Edit menu's entries, keys and rule; New Sub-item and the two
/// nesting moves from the keyboard; and a display that follows every edit.
class TestTreeContextMenu : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    qint16 m_index = 0;
    /// The menus popped up, by name, and where.
    QStringList m_popups;
    QPoint m_popupAt;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    const MenuDocument& document() { return window().state().document(m_index); }
    ItemTree& tree() { return *window().editor(m_index)->tree(); }
    QString pathLabel() { return window().editor(m_index)->findChild<QLabel*>(QStringLiteral("lblPath"))->text(); }
    QStringList commandLines()
    {
        QStringList lines;
        const auto* list = window().editor(m_index)->findChild<QListWidget*>(QStringLiteral("lstCommand"));
        for (int row = 0; row < list->count(); ++row) {
            lines.append(list->item(row)->text());
        }
        return lines;
    }

    void open(const QStringList& itemLines, const QStringList& commandLines = {})
    {
        QVERIFY(sandbox().showWindow());
        m_index = sandbox().openMenu(QStringLiteral("menu.ini"), itemLines, commandLines);
        QVERIFY(m_index > 0);
        window().setMenuPopup([this](QMenu* menu, const QPoint& at) {
            m_popups.append(menu->objectName());
            m_popupAt = at;
        });
    }

    /// A right button pressed on the node `key` and released where it was pressed.
    void rightClick(const QString& key)
    {
        const QModelIndex node = tree().nodeByKey(key);
        QVERIFY2(node.isValid(), qPrintable(key));
        tree().scrollTo(node);
        QTest::mouseClick(tree().viewport(), Qt::RightButton, Qt::NoModifier, tree().visualRect(node).center());
    }

    /// The context menu's entries that can be used, by name.
    QStringList enabledEntries(const QMenu* menu)
    {
        QStringList names;
        const QList<QAction*> actions = menu->actions();
        for (const QAction* action : actions) {
            if (!action->isSeparator() && action->isEnabled()) {
                names.append(action->objectName());
            }
        }
        return names;
    }

    QMenu* treeMenu() { return window().findChild<QMenu*>(QStringLiteral("mnuTreeNode")); }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        m_popups.clear();
    }
    void cleanup() { m_sandbox.reset(); }

    void theContextMenuHoldsTheEditEntriesThemselves()
    {
        open(texts({ "Alpha", "Beta" }));
        QMenu* menu = treeMenu();
        QVERIFY(menu != nullptr);
        QStringList names;
        const QList<QAction*> actions = menu->actions();
        for (const QAction* action : actions) {
            names.append(action->isSeparator() ? QStringLiteral("-") : action->objectName());
        }
        QCOMPARE(names,
                 texts({ "mnuNewItem", "mnuNewSubItem", "mnuRename", "mnuDelete", "-", "mnuCut", "mnuCopy", "mnuPaste",
                         "mnuDuplicate", "-", "mnuMoveUp", "mnuMoveDown", "mnuMoveIntoItemAbove", "mnuMoveOutOfParent",
                         "-", "mnuFind" }));
        // The very entries of the Edit menu: one set of keys, one rule of which can be used.
        for (const QAction* action : actions) {
            if (!action->isSeparator()) {
                QCOMPARE(window().editMenu().entry(action->objectName()), action);
            }
        }
        QCOMPARE(window().editMenu().entry(QStringLiteral("mnuNewSubItem"))->shortcut(),
                 QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
        QCOMPARE(window().editMenu().entry(QStringLiteral("mnuMoveIntoItemAbove"))->shortcut(),
                 QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Right));
        QCOMPARE(window().editMenu().entry(QStringLiteral("mnuMoveOutOfParent"))->shortcut(),
                 QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Left));
        QCOMPARE(window().editMenu().entry(QStringLiteral("mnuMoveUp"))->shortcut(),
                 QKeySequence(Qt::CTRL | Qt::Key_Up));
    }

    void aRightClickSelectsTheNodeAndOpensItsMenu()
    {
        open(texts({ "Alpha", "Beta" }));
        clickNode(tree(), QStringLiteral("E0"));
        rightClick(QStringLiteral("E1"));
        QCOMPARE(m_popups, texts({ "mnuTreeNode" }));
        QCOMPARE(tree().keyOf(tree().currentIndex()), QStringLiteral("E1"));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Beta"));
        // Paste stays off until something is copied; the item entries are on.
        const QStringList enabled = enabledEntries(treeMenu());
        for (const char* name :
             { "mnuNewItem", "mnuNewSubItem", "mnuRename", "mnuDelete", "mnuCut", "mnuCopy", "mnuDuplicate",
               "mnuMoveUp", "mnuMoveDown", "mnuMoveIntoItemAbove", "mnuMoveOutOfParent", "mnuFind" }) {
            QVERIFY2(enabled.contains(QString::fromLatin1(name)), name);
        }
        QVERIFY(!enabled.contains(QStringLiteral("mnuPaste")));
        // The menu's entries act on the node: Delete deletes Beta.
        window().editMenu().entry(QStringLiteral("mnuDelete"))->trigger();
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha" }));
    }

    void onTheRootTheMenuOffersOnlyWhatTheRootTakes()
    {
        open(texts({ "Alpha" }));
        rightClick(QStringLiteral("Root"));
        QCOMPARE(m_popups, texts({ "mnuTreeNode" }));
        QCOMPARE(tree().keyOf(tree().currentIndex()), QStringLiteral("Root"));
        QCOMPARE(enabledEntries(treeMenu()), texts({ "mnuNewSubItem", "mnuFind" }));
        window().editMenu().entry(QStringLiteral("mnuNewSubItem"))->trigger();
        typeLabel(tree(), QStringLiteral("Top"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "  Top" }));
        QCOMPARE(document().items.at(1).parent, qint16(-1));
    }

    void aRightButtonDragStillOpensTheDropMenuAndNoContextMenu()
    {
        open(texts({ "Alpha", "Beta" }));
        int dragsStarted = 0;
        window().setDragExecutor([&dragsStarted](QDrag*) { ++dragsStarted; });
        const QPoint start = tree().visualRect(tree().nodeByKey(QStringLiteral("E0"))).center();
        QWidget* viewport = tree().viewport();
        QMouseEvent press(QEvent::MouseButtonPress, start, viewport->mapToGlobal(start), Qt::RightButton,
                          Qt::RightButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &press);
        const QPoint moved = start + QPoint(QApplication::startDragDistance() + 5, 0);
        QMouseEvent move(QEvent::MouseMove, moved, viewport->mapToGlobal(moved), Qt::NoButton, Qt::RightButton,
                         Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QMouseEvent release(QEvent::MouseButtonRelease, moved, viewport->mapToGlobal(moved), Qt::RightButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &release);
        QCOMPARE(dragsStarted, 1);
        QVERIFY(m_popups.isEmpty());
    }

    void shiftF10AndTheMenuKeyOpenTheMenuAtTheSelectedNode()
    {
        open(texts({ "Alpha", "Beta" }));
        clickNode(tree(), QStringLiteral("E1"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_F10, Qt::ShiftModifier);
        QTest::keyClick(&tree(), Qt::Key_Menu);
        QCOMPARE(m_popups, texts({ "mnuTreeNode", "mnuTreeNode" }));
        const QRect row = tree().visualRect(tree().nodeByKey(QStringLiteral("E1")));
        QCOMPARE(m_popupAt, tree().viewport()->mapToGlobal(QPoint(row.left(), row.bottom())));
        QCOMPARE(tree().keyOf(tree().currentIndex()), QStringLiteral("E1"));
    }

    void theKeysNestAndUnnestTheSelectedItem()
    {
        open(texts({ "Alpha", "Beta", "Gamma" }));
        clickNode(tree(), QStringLiteral("E1"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "    Beta", "  Gamma" }));
        QCOMPARE(document().items.at(1).parent, qint16(0));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Alpha\\Beta"));
        QCOMPARE(tree().keyOf(tree().currentIndex()), QStringLiteral("E1"));
        QTest::keyClick(&tree(), Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "  Beta", "  Gamma" }));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Beta"));
        // One undo step each.
        window().mnuUndo_Click();
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "    Beta", "  Gamma" }));
    }

    void ctrlShiftNMakesASubItemNamedAtOnce()
    {
        open(texts({ "Alpha" }));
        clickNode(tree(), QStringLiteral("E0"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        typeLabel(tree(), QStringLiteral("Child"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "    Child" }));
        QCOMPARE(window().state().histories().history(m_index).undoCount(), qint16(1));
    }

    void thePathFollowsRenamesAndMoves()
    {
        open(texts({ "Alpha", "···One", "Beta" }));
        clickNode(tree(), QStringLiteral("E1"));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Alpha\\One"));
        // Renaming the parent.
        clickNode(tree(), QStringLiteral("E0"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_F2);
        typeLabel(tree(), QStringLiteral("First"));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\First"));
        // Moving down.
        QTest::keyClick(&tree(), Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Beta", "  First", "    One" }));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\First"));
        clickNode(tree(), QStringLiteral("E1"));
        QTest::keyClick(&tree(), Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\One"));
    }

    void pasteShowsThePastedItem()
    {
        open(texts({ "Alpha", "Beta" }), texts({ "0001:txt=notepad $fs-001$" }));
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuCopy"));
        clickNode(tree(), QStringLiteral("E1"));
        QVERIFY(commandLines().isEmpty());
        sandbox().trigger(QStringLiteral("mnuPaste"));
        QCOMPARE(commandLines(), texts({ "txt=notepad $fs-001$" }));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Alpha"));
        // The tree is neither rebuilt nor recoloured.
        QCOMPARE(TreeHelpers::colourOf(tree(), QStringLiteral("E1")), QColor(0, 0, 0));
    }

    void leftOnTheRootShowsAndSelectsTheFirstItem()
    {
        open(texts({ "Alpha", "Beta" }));
        window().editor(m_index)->lstMenu_NodeClick(tree().nodeByKey(QStringLiteral("E1")));
        tree().setFocus();
        tree().setCurrentIndex(tree().node(1));
        QTest::keyClick(&tree(), Qt::Key_Left);
        QVERIFY(tree().isExpanded(tree().node(1)));
        QCOMPARE(tree().keyOf(tree().currentIndex()), QStringLiteral("E0"));
        QCOMPARE(pathLabel(), QStringLiteral("KELV\\Alpha"));
        // Insert then works on the item shown.
        QTest::keyClick(&tree(), Qt::Key_Insert);
        QVERIFY(tree().isEditingLabel());
    }

    void ctrlYRedoes()
    {
        open(texts({ "Alpha" }));
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        window().mnuUndo_Click();
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha" }));
        const QList<QKeySequence> keys = window().editMenu().redoEntry()->shortcuts();
        QVERIFY(keys.contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_Y, Qt::ControlModifier);
        // Redone as a rebuild shows it: the caption the menu holds.
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  New item 1" }));
    }
};

QTEST_MAIN(TestTreeContextMenu)
#include "test_treecontextmenu.moc"

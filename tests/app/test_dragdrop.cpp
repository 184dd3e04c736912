#include "guisandbox.h"
#include "menutexts.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/optionsstore.h"
#include "model/menudocument.h"

#include <QAction>
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::nodeOutline;
using TreeHelpers::texts;

namespace {

/// What the drop menu looked like when it was shown.
struct ShownDropMenu
{
    QString subitemCaption;
    QString nextCaption;
    bool nextShown = false;
};

} // namespace

/// Drag and drop of nodes, through the trees' own mouse and drop handlers. The drag loop itself is
/// stepped over: the drag the tree starts is kept, and its drop is delivered to the target tree as
/// the platform would deliver it.
class TestDragDrop : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    std::unique_ptr<QMimeData> m_dragData;
    int m_dragsStarted = 0;
    /// The entry the next drop menu is answered with; empty closes it without a choice.
    QString m_menuAnswer;
    QList<ShownDropMenu> m_shownMenus;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    ItemTree& tree(qint16 index) { return *window().editor(index)->tree(); }
    const MenuDocument& document(qint16 index) { return window().state().document(index); }
    int undoCount(qint16 index) { return window().state().histories().history(index).undoCount(); }

    void setDragAndDropOption(bool on)
    {
        Options options = window().state().options();
        options.dragNDrop = on ? 1 : 0;
        window().state().setOptions(options);
    }

    qint16 open(const QString& name, const QStringList& itemLines, const QStringList& commandLines = {})
    {
        const qint16 index = sandbox().openMenu(name, itemLines, commandLines);
        if (index == 0) {
            qWarning("%s did not open", qPrintable(name));
        }
        return index;
    }

    /// Presses `button` on the node `key` and moves the pointer far enough to drag it.
    void startDrag(ItemTree& from, const QString& key, Qt::MouseButton button)
    {
        const QModelIndex node = from.nodeByKey(key);
        QVERIFY2(node.isValid(), qPrintable(key));
        const QPoint start = from.visualRect(node).center();
        QWidget* viewport = from.viewport();
        QMouseEvent press(QEvent::MouseButtonPress, start, viewport->mapToGlobal(start), button, button,
                          Qt::NoModifier);
        QApplication::sendEvent(viewport, &press);
        const QPoint moved = start + QPoint(QApplication::startDragDistance() + 5, 0);
        QMouseEvent move(QEvent::MouseMove, moved, viewport->mapToGlobal(moved), Qt::NoButton, button, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
    }

    /// Delivers the drag's data over the node `key` of `to` ("" for empty space) and drops it there.
    void dropOn(ItemTree& to, const QString& key, Qt::MouseButton button, bool highlighted = true)
    {
        QVERIFY2(m_dragData, "no drag was started");
        QPoint where(5, to.viewport()->height() - 3);
        if (!key.isEmpty()) {
            const QModelIndex node = to.nodeByKey(key);
            QVERIFY2(node.isValid(), qPrintable(key));
            to.scrollTo(node);
            where = to.visualRect(node).center();
        }
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(where, actions, m_dragData.get(), button, Qt::NoModifier);
        QApplication::sendEvent(to.viewport(), &enter);
        QDragMoveEvent move(where, actions, m_dragData.get(), button, Qt::NoModifier);
        QApplication::sendEvent(to.viewport(), &move);
        if (!key.isEmpty()) {
            // Only a drag of this program shows where it would land.
            QCOMPARE(to.dropHighlight(), highlighted ? to.nodeByKey(key) : QModelIndex());
        }
        QDropEvent drop(where, actions, m_dragData.get(), button, Qt::NoModifier);
        QApplication::sendEvent(to.viewport(), &drop);
        QVERIFY(!to.dropHighlight().isValid());
    }

    void drag(ItemTree& from, const QString& key, ItemTree& to, const QString& targetKey, Qt::MouseButton button)
    {
        startDrag(from, key, button);
        dropOn(to, targetKey, button);
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        m_dragsStarted = 0;
        m_dragData.reset();
        m_menuAnswer.clear();
        m_shownMenus.clear();
        QVERIFY(sandbox().showWindow());
        window().setDragExecutor([this](QDrag* drag) {
            ++m_dragsStarted;
            // The drag's data lives on after the drag object, as it does while the platform holds it.
            m_dragData = std::make_unique<QMimeData>();
            for (const QString& format : drag->mimeData()->formats()) {
                m_dragData->setData(format, drag->mimeData()->data(format));
            }
        });
        window().setMenuPopup([this](QMenu* menu, const QPoint&) {
            auto* sub = menu->findChild<QMenu*>(QStringLiteral("mnuNodesInsertSub"));
            auto* next = menu->findChild<QMenu*>(QStringLiteral("mnuNodesInsertNext"));
            m_shownMenus.append({ MenuTexts::visible(sub->title()), MenuTexts::visible(next->title()),
                                  next->menuAction()->isVisible() });
            if (!m_menuAnswer.isEmpty()) {
                menu->findChild<QAction*>(m_menuAnswer)->trigger();
            }
        });
    }

    void cleanup() { m_sandbox.reset(); }

    void aLeftDragNeedsTheDragAndDropOption()
    {
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "A", "B", "C" }));
        const MenuDocument before = document(index);
        startDrag(tree(index), QStringLiteral("E2"), Qt::LeftButton);
        QCOMPARE(m_dragsStarted, 0);
        QVERIFY(!window().state().editing().drag.active);
        QCOMPARE(document(index), before);
    }

    void aLeftDropMovesTheBranchToBeTheTargetsFirstChild()
    {
        setDragAndDropOption(true);
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "P", "···p1", "···p2", "Q", "···q1", "R" }));
        tree(index).expand(tree(index).nodeByKey(QStringLiteral("E3")));
        drag(tree(index), QStringLiteral("E3"), tree(index), QStringLiteral("E0"), Qt::LeftButton);
        QCOMPARE(m_dragsStarted, 1);

        const MenuDocument& moved = document(index);
        QCOMPARE(moved.items[3].key, QStringLiteral("E3"));
        QCOMPARE(moved.items[3].parent, qint16(0));
        QCOMPARE(moved.items[3].siblingOrder, qint16(1));
        QCOMPARE(moved.items[1].siblingOrder, qint16(2));
        QCOMPARE(moved.items[2].siblingOrder, qint16(3));
        QCOMPARE(moved.items[0].childCount, qint16(3));
        QCOMPARE(moved.items[5].siblingOrder, qint16(2));
        // The nodes moved without a rebuild: every node keeps its expanded state.
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  P", "    Q", "      q1", "    p1", "    p2", "  R" }));
        QVERIFY(tree(index).isExpanded(tree(index).nodeByKey(QStringLiteral("E3"))));
        QCOMPARE(undoCount(index), 1);
        QVERIFY(!window().state().editing().drag.active);
        QVERIFY(m_shownMenus.isEmpty());

        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  P", "    p1", "    p2", "  Q", "    q1", "  R" }));
    }

    void aRightDragAlwaysAsksWithTheDropMenu()
    {
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "P", "···p1", "Q" }));
        m_menuAnswer = QStringLiteral("mnuNextItemCopy");
        drag(tree(index), QStringLiteral("E2"), tree(index), QStringLiteral("E1"), Qt::RightButton);
        QCOMPARE(m_shownMenus.size(), 1);
        QCOMPARE(m_shownMenus.first().subitemCaption, QStringLiteral("p1"));
        QCOMPARE(m_shownMenus.first().nextCaption, QStringLiteral("P"));
        QVERIFY(m_shownMenus.first().nextShown);
        // A copy of Q next to p1: under P, after its children.
        const MenuItem& copy = document(index).items.last();
        QCOMPARE(copy.caption, QStringLiteral("Q"));
        QCOMPARE(copy.key, QStringLiteral("E3"));
        QCOMPARE(copy.parent, qint16(0));
        QCOMPARE(copy.siblingOrder, qint16(2));
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  P", "    p1", "    Q", "  Q" }));
    }

    void onTheRootOnlyTheSubitemEntryIsOfferedAndCaptionsStay()
    {
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "P", "···p1", "Q" }));
        m_menuAnswer = QStringLiteral("mnuItemMove");
        drag(tree(index), QStringLiteral("E1"), tree(index), QStringLiteral("Root"), Qt::RightButton);
        QCOMPARE(m_shownMenus.size(), 1);
        QCOMPARE(m_shownMenus.first().subitemCaption, QStringLiteral("KELV"));
        QVERIFY(!m_shownMenus.first().nextShown);
        // The design caption stays until a drop gives it a node's text.
        QCOMPARE(m_shownMenus.first().nextCaption, QStringLiteral("Insert next to"));
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  p1", "  P", "  Q" }));
        QCOMPARE(document(index).items[1].parent, qint16(-1));

        // The captions of one drop stay for the next.
        m_menuAnswer.clear();
        drag(tree(index), QStringLiteral("E2"), tree(index), QStringLiteral("E1"), Qt::RightButton);
        QCOMPARE(m_shownMenus.last().subitemCaption, QStringLiteral("p1"));
        QCOMPARE(m_shownMenus.last().nextCaption, QStringLiteral("KELV"));
        drag(tree(index), QStringLiteral("E2"), tree(index), QStringLiteral("Root"), Qt::RightButton);
        QCOMPARE(m_shownMenus.last().nextCaption, QStringLiteral("KELV"));
        QVERIFY(!m_shownMenus.last().nextShown);
    }

    void closingTheDropMenuWithoutAChoiceChangesNothing()
    {
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "A", "B" }));
        const MenuDocument before = document(index);
        drag(tree(index), QStringLiteral("E1"), tree(index), QStringLiteral("E0"), Qt::RightButton);
        QCOMPARE(m_shownMenus.size(), 1);
        QCOMPARE(document(index), before);
        QCOMPARE(undoCount(index), 0);
        QVERIFY(!window().state().editing().drag.active);
    }

    void aDropOnItselfDoesNothing()
    {
        setDragAndDropOption(true);
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "A", "B" }));
        const MenuDocument before = document(index);
        drag(tree(index), QStringLiteral("E1"), tree(index), QStringLiteral("E1"), Qt::LeftButton);
        drag(tree(index), QStringLiteral("E1"), tree(index), QStringLiteral("E1"), Qt::RightButton);
        QVERIFY(m_shownMenus.isEmpty());
        QCOMPARE(document(index), before);
        QCOMPARE(undoCount(index), 0);
    }

    void aDropIntoItsOwnBranchIsRefused()
    {
        setDragAndDropOption(true);
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "A", "···B", "······C" }));
        const MenuDocument before = document(index);
        drag(tree(index), QStringLiteral("E0"), tree(index), QStringLiteral("E2"), Qt::LeftButton);
        QCOMPARE(sandbox().prompts().messages.size(), 1);
        QCOMPARE(sandbox().prompts().messages.first().text,
                 QStringLiteral("An item cannot be dropped into its own branch !"));
        QCOMPARE(sandbox().prompts().messages.first().icon, MessageRequest::Icon::Exclamation);
        m_menuAnswer = QStringLiteral("mnuItemCopy");
        drag(tree(index), QStringLiteral("E0"), tree(index), QStringLiteral("E1"), Qt::RightButton);
        QCOMPARE(sandbox().prompts().messages.size(), 2);
        QCOMPARE(document(index), before);
        QCOMPARE(undoCount(index), 0);
    }

    void aCopyBetweenTwoWindowsIsUndoneInEach()
    {
        const qint16 source = open(QStringLiteral("source.ini"), texts({ "Tools", "···Zip", "···Unzip" }),
                                   texts({ "0002:zip=pack $fs-001$" }));
        const qint16 target = open(QStringLiteral("target.ini"), texts({ "Mine" }));
        const MenuDocument sourceBefore = document(source);
        const MenuDocument targetBefore = document(target);
        m_menuAnswer = QStringLiteral("mnuItemCopy");
        drag(tree(source), QStringLiteral("E0"), tree(target), QStringLiteral("E0"), Qt::RightButton);

        QCOMPARE(document(target).items.size(), 4);
        QCOMPARE(nodeOutline(tree(target)), texts({ "KELV", "  Mine", "    Tools", "      Zip", "      Unzip" }));
        // The copies arrive expanded, as the rest of the tree.
        QVERIFY(tree(target).isExpanded(tree(target).nodeByKey(QStringLiteral("E1"))));
        QCOMPARE(document(target).items[1].parent, qint16(0));
        QCOMPARE(document(target).items[2].commands.size(), 2);
        QCOMPARE(document(source).items.size(), 3);
        QCOMPARE(document(source).items[0].lastCopyKey, QStringLiteral("E1"));
        QCOMPARE(undoCount(source), 1);
        QCOMPARE(undoCount(target), 1);

        sandbox().trigger(QStringLiteral("mnuWindowName%1").arg(target));
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(target), targetBefore);
        sandbox().trigger(QStringLiteral("mnuWindowName%1").arg(source));
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(source), sourceBefore);
    }

    void aMoveBetweenTwoWindowsTakesTheBranchAlong()
    {
        setDragAndDropOption(true);
        const qint16 source = open(QStringLiteral("source.ini"), texts({ "Tools", "···Zip", "Other" }));
        const qint16 target = open(QStringLiteral("target.ini"), texts({ "Mine" }));
        drag(tree(source), QStringLiteral("E0"), tree(target), QStringLiteral("Root"), Qt::LeftButton);
        QCOMPARE(nodeOutline(tree(target)), texts({ "KELV", "  Mine", "  Tools", "    Zip" }));
        QCOMPARE(nodeOutline(tree(source)), texts({ "KELV", "  Other" }));
        QCOMPARE(document(source).items.size(), 1);
        QCOMPARE(undoCount(source), 1);
        QCOMPARE(undoCount(target), 1);
    }

    void aFailedDropIsUndoneInBothWindows()
    {
        const qint16 source = open(QStringLiteral("source.ini"), texts({ "Tools", "···Zip" }));
        const qint16 target = open(QStringLiteral("target.ini"), texts({ "Mine" }));
        // The target's key counter has room for one key, the branch needs two: the drop is refused
        // as an overflow.
        window().state().document(target).lastIndex = 32766;
        const MenuDocument sourceBefore = document(source);
        const MenuDocument targetBefore = document(target);
        m_menuAnswer = QStringLiteral("mnuItemCopy");
        drag(tree(source), QStringLiteral("E0"), tree(target), QStringLiteral("E0"), Qt::RightButton);
        QCOMPARE(sandbox().prompts().messages.size(), 1);
        QCOMPARE(sandbox().prompts().messages.first().text,
                 QStringLiteral("Error 6 : Overflow (lstMenu_OLEDragDrop)\r\nThis error will undo your action"));
        QCOMPARE(document(source), sourceBefore);
        QCOMPARE(document(target), targetBefore);
        QCOMPARE(undoCount(source), 0);
        QCOMPARE(undoCount(target), 0);
        QCOMPARE(nodeOutline(tree(target)), texts({ "KELV", "  Mine" }));
    }

    void dataFromElsewhereIsIgnored()
    {
        const qint16 index = open(QStringLiteral("menu.ini"), texts({ "A", "B" }));
        const MenuDocument before = document(index);
        // A node's data with no drag of this program going on: another editor's, say.
        m_dragData = std::make_unique<QMimeData>();
        m_dragData->setData(ItemTree::dragFormat(), "1 E1");
        dropOn(tree(index), QStringLiteral("E0"), Qt::RightButton, false);
        QVERIFY(m_shownMenus.isEmpty());
        QCOMPARE(document(index), before);
    }
};

QTEST_MAIN(TestDragDrop)
#include "test_dragdrop.moc"

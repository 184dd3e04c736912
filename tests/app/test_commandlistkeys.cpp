#include "guisandbox.h"
#include "treehelpers.h"

#include "app/commandeditordialog.h"
#include "app/commandmenu.h"
#include "app/editorwindow.h"
#include "app/mainwindow.h"
#include "model/menudocument.h"

#include <QAction>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <optional>

using TreeHelpers::clickNode;
using TreeHelpers::texts;

/// The command list from the keyboard and with double clicks: Enter edits the line the keyboard is
/// on, Insert and a double click on empty space add, Delete removes the selected line, Shift+F10 and
/// the Menu key open the command menu at the line; every line acted on is shown selected first.
class TestCommandListKeys : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    qint16 m_index = 0;
    /// The tag of each command editor opened: empty to add, the slot of the command edited.
    QStringList m_editorsOpened;
    QStringList m_popups;
    QPoint m_popupAt;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    const MenuDocument& document() { return window().state().document(m_index); }
    QListWidget& list() { return *window().editor(m_index)->findChild<QListWidget*>(QStringLiteral("lstCommand")); }
    int undoCount() { return window().state().histories().history(m_index).undoCount(); }
    QStringList commandsOfFirstItem()
    {
        QStringList lines;
        const auto& commands = document().items.at(0).commands;
        for (int slot = 1; slot < commands.size(); ++slot) {
            lines.append(commands.at(slot).extension + QLatin1Char('=') + commands.at(slot).command);
        }
        return lines;
    }
    QList<int> selectedRows()
    {
        QList<int> rows;
        for (int row = 0; row < list().count(); ++row) {
            if (list().item(row)->isSelected()) {
                rows.append(row);
            }
        }
        return rows;
    }

    /// The first item's commands shown, the list with the keyboard focus on its first line and
    /// nothing selected, as after tabbing into it.
    void openWithCommands(const QStringList& commandLines)
    {
        QVERIFY(sandbox().showWindow());
        m_index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "B" }), commandLines);
        QVERIFY(m_index > 0);
        clickNode(*window().editor(m_index)->tree(), QStringLiteral("E0"));
        window().commandMenu().setDialogRunner(
            [this](CommandEditorDialog& dialog) { m_editorsOpened.append(dialog.tag()); });
        window().setMenuPopup([this](QMenu* menu, const QPoint& at) {
            m_popups.append(menu->objectName());
            m_popupAt = at;
        });
        list().setFocus();
        QTRY_VERIFY(list().hasFocus());
        if (list().count() > 0) {
            list().setCurrentRow(0, QItemSelectionModel::NoUpdate);
            list().clearSelection();
        }
    }

    /// Waits until the command menu's timer has opened what it was asked to.
    void settle()
    {
        QTimer* timer = window().commandMenu().timer();
        QVERIFY(QTest::qWaitFor([timer] { return !timer->isActive(); }, 2000));
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        m_editorsOpened.clear();
        m_popups.clear();
    }
    void cleanup() { m_sandbox.reset(); }

    void enterEditsTheLineTheKeyboardIsOnAndShowsItSelected()
    {
        openWithCommands(texts({ "0001:a=1", "0001:b=2", "0001:c=3" }));
        QTest::keyClick(&list(), Qt::Key_Down);
        QTest::keyClick(&list(), Qt::Key_Return);
        QCOMPARE(selectedRows(), QList<int>({ 1 }));
        settle();
        QCOMPARE(m_editorsOpened, texts({ "2" }));
        // The keypad's Enter as well.
        QTest::keyClick(&list(), Qt::Key_Down);
        QTest::keyClick(&list(), Qt::Key_Enter, Qt::KeypadModifier);
        settle();
        QCOMPARE(m_editorsOpened, texts({ "2", "3" }));
    }

    void enterOnAnEmptyListOpensNothing()
    {
        openWithCommands({});
        QTest::keyClick(&list(), Qt::Key_Return);
        QTest::qWait(150);
        settle();
        QVERIFY(m_editorsOpened.isEmpty());
    }

    void insertAddsACommand()
    {
        openWithCommands(texts({ "0001:a=1" }));
        QTest::keyClick(&list(), Qt::Key_Insert);
        settle();
        QCOMPARE(m_editorsOpened, texts({ "" }));
        // The tree's Insert (New Item) is not what happened.
        QCOMPARE(document().items.size(), 2);
    }

    void aDoubleClickOnEmptySpaceAddsAndOnALineEditsIt()
    {
        openWithCommands(texts({ "0001:a=1", "0001:b=2" }));
        const QRect last = list().visualItemRect(list().item(1));
        const QPoint below(last.center().x(), last.bottom() + 20);
        QVERIFY(list().itemAt(below) == nullptr);
        QTest::mouseDClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, below);
        settle();
        QCOMPARE(m_editorsOpened, texts({ "" }));
        QTest::mouseDClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, last.center());
        settle();
        QCOMPARE(m_editorsOpened, texts({ "", "2" }));
        QCOMPARE(selectedRows(), QList<int>({ 1 }));
    }

    void deleteRemovesTheSelectedLineOnly()
    {
        openWithCommands(texts({ "0001:a=1", "0001:b=2", "0001:c=3" }));
        // The keyboard is on the first line, which is not selected: Delete removes nothing.
        QTest::keyClick(&list(), Qt::Key_Delete);
        QCOMPARE(commandsOfFirstItem(), texts({ "a=1", "b=2", "c=3" }));
        QCOMPARE(undoCount(), 0);
        // Selected, it goes, as one undo step; the item and its siblings stay.
        QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier,
                          list().visualItemRect(list().item(2)).center());
        QTest::keyClick(&list(), Qt::Key_Delete);
        QCOMPARE(commandsOfFirstItem(), texts({ "a=1", "b=2" }));
        QCOMPARE(document().items.size(), 2);
        QCOMPARE(undoCount(), 1);
    }

    void theMenuKeysOpenTheCommandMenuAtTheLineTheyThenActOn()
    {
        openWithCommands(texts({ "0001:a=1", "0001:b=2" }));
        QTest::keyClick(&list(), Qt::Key_Down);
        QVERIFY(selectedRows().size() <= 1);
        list().clearSelection();
        QTest::keyClick(&list(), Qt::Key_F10, Qt::ShiftModifier);
        QCOMPARE(m_popups, texts({ "mnuCommand" }));
        // The line is selected before the menu shows, and the menu opens at it.
        QCOMPARE(selectedRows(), QList<int>({ 1 }));
        const QRect line = list().visualItemRect(list().item(1));
        QCOMPARE(m_popupAt, list().viewport()->mapToGlobal(line.bottomLeft()));
        // Remove acts on that line, not on the first.
        sandbox().trigger(QStringLiteral("mnuRemoveCommand"));
        QCOMPARE(commandsOfFirstItem(), texts({ "a=1" }));

        // The list shown anew: the keyboard on the remaining line, which is not selected.
        list().setCurrentRow(0, QItemSelectionModel::NoUpdate);
        list().clearSelection();
        QTest::keyClick(&list(), Qt::Key_Menu);
        QCOMPARE(m_popups, texts({ "mnuCommand", "mnuCommand" }));
        QCOMPARE(selectedRows(), QList<int>({ 0 }));
    }

    void theMenuKeysOnAnEmptyListOpenTheMenuAtItsTop()
    {
        openWithCommands({});
        QTest::keyClick(&list(), Qt::Key_Menu);
        QCOMPARE(m_popups, texts({ "mnuCommand" }));
        QCOMPARE(m_popupAt, list().viewport()->mapToGlobal(QPoint(0, 0)));
    }
};

QTEST_MAIN(TestCommandListKeys)
#include "test_commandlistkeys.moc"

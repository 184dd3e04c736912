#include "guisandbox.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/findbar.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "model/menudocument.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::texts;

/// The find bar of an editor window, used from the keyboard as a user does: Ctrl+F, typing, Enter,
/// F3, Shift+F3 and Escape, with the selected node, the count and the document read back.
class TestFindBar : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    EditorWindow& editor(qint16 index) { return *window().editor(index); }
    ItemTree& tree(qint16 index) { return *editor(index).tree(); }
    FindBar& bar(qint16 index) { return *editor(index).findBar(); }
    QLineEdit* findText(qint16 index) { return bar(index).findChild<QLineEdit*>(QStringLiteral("txtFindItem")); }
    QString count(qint16 index) { return bar(index).findChild<QLabel*>(QStringLiteral("lblFindMatches"))->text(); }
    QString selectedKey(qint16 index) { return tree(index).keyOf(tree(index).currentIndex()); }
    QString panel(int number) { return window().findChild<QLabel*>(QStringLiteral("pnl%1").arg(number))->text(); }

    qint16 openSample()
    {
        return sandbox().openMenu(QStringLiteral("menu.ini"),
                                  texts({ "Archive", "···Pack", "···Unpack", "Delete", "Notes" }),
                                  texts({ "0002:zip=pack.exe a $fs-001$", "0005:txt=notepad PACK" }));
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        QVERIFY(sandbox().showWindow());
    }
    void cleanup() { m_sandbox.reset(); }

    void ctrlFOpensTheBarAndTypingShowsTheFirstMatch()
    {
        const qint16 index = openSample();
        QVERIFY(!bar(index).isVisible());
        QCOMPARE(sandbox().action(QStringLiteral("mnuFind"))->shortcut(), QKeySequence(QKeySequence::Find));
        QTest::keyClick(&tree(index), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(bar(index).isVisible());
        QTRY_VERIFY(findText(index)->hasFocus());
        QTest::keyClicks(findText(index), QStringLiteral("pack"));
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2" }));
        QCOMPARE(count(index), QStringLiteral("1 of 2"));
        // Shown as a click shows it: selected, its commands listed, its place in the status bar.
        QCOMPARE(selectedKey(index), QStringLiteral("E1"));
        QCOMPARE(editor(index).findChild<QListWidget*>(QStringLiteral("lstCommand"))->count(), 1);
        QCOMPARE(panel(6), QStringLiteral("(1 ; 0)"));
        // The typing goes on in the bar.
        QVERIFY(findText(index)->hasFocus());
    }

    void enterAndF3StepThroughTheMatchesAndShiftF3GoesBack()
    {
        const qint16 index = openSample();
        editor(index).openFindBar();
        QTest::keyClicks(findText(index), QStringLiteral("a"));
        QCOMPARE(bar(index).matches(), texts({ "E0", "E1", "E2" }));
        QCOMPARE(selectedKey(index), QStringLiteral("E0"));
        QTest::keyClick(findText(index), Qt::Key_Return);
        QCOMPARE(selectedKey(index), QStringLiteral("E1"));
        QTest::keyClick(findText(index), Qt::Key_F3);
        QCOMPARE(selectedKey(index), QStringLiteral("E2"));
        QCOMPARE(count(index), QStringLiteral("3 of 3"));
        // At the end it wraps to the first.
        QTest::keyClick(findText(index), Qt::Key_F3);
        QCOMPARE(selectedKey(index), QStringLiteral("E0"));
        QTest::keyClick(findText(index), Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(selectedKey(index), QStringLiteral("E2"));
        QTest::keyClick(findText(index), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(selectedKey(index), QStringLiteral("E1"));
        // F3 works from the tree too.
        tree(index).setFocus();
        QTest::keyClick(&tree(index), Qt::Key_F3);
        QCOMPARE(selectedKey(index), QStringLiteral("E2"));
    }

    void commandsAndCaseAreSearchedOnRequest()
    {
        const qint16 index = openSample();
        editor(index).openFindBar();
        QTest::keyClicks(findText(index), QStringLiteral("PACK"));
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2" }));
        bar(index).findChild<QCheckBox*>(QStringLiteral("chkFindInCommands"))->click();
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2", "E4" }));
        bar(index).findChild<QCheckBox*>(QStringLiteral("chkFindMatchCase"))->click();
        QCOMPARE(bar(index).matches(), texts({ "E4" }));
        QCOMPARE(count(index), QStringLiteral("1 match"));
        findText(index)->setText(QStringLiteral("nothing like it"));
        QCOMPARE(count(index), QStringLiteral("No match"));
    }

    void escapeClosesTheBarAndGivesTheTreeTheFocus()
    {
        const qint16 index = openSample();
        editor(index).openFindBar();
        QTest::keyClicks(findText(index), QStringLiteral("Notes"));
        QTest::keyClick(findText(index), Qt::Key_Escape);
        QVERIFY(!bar(index).isVisible());
        QTRY_VERIFY(tree(index).hasFocus());
        QCOMPARE(selectedKey(index), QStringLiteral("E4"));
    }

    void findingChangesAndRecordsNothing()
    {
        const qint16 index = openSample();
        const MenuDocument before = window().state().document(index);
        editor(index).openFindBar();
        QTest::keyClicks(findText(index), QStringLiteral("a"));
        QTest::keyClick(findText(index), Qt::Key_Return);
        QTest::keyClick(findText(index), Qt::Key_Return);
        QVERIFY(window().state().document(index) == before);
        QCOMPARE(window().state().histories().history(index).undoCount(), 0);
    }

    void theMatchesFollowEdits()
    {
        const qint16 index = openSample();
        editor(index).openFindBar();
        QTest::keyClicks(findText(index), QStringLiteral("pack"));
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2" }));
        clickNode(tree(index), QStringLiteral("E2"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        QCOMPARE(bar(index).matches(), texts({ "E1" }));
        // Undo rebuilds the tree: the item is found again.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2" }));
        // Typing on narrows down from the matches of the menu as it is now.
        QTest::keyClicks(findText(index), QStringLiteral("e"));
        QCOMPARE(bar(index).matches(), QStringList());
        QTest::keyClick(findText(index), Qt::Key_Backspace);
        QCOMPARE(bar(index).matches(), texts({ "E1", "E2" }));
        // Hiding items hides their matches too.
        findText(index)->setText(QStringLiteral("notes"));
        QCOMPARE(bar(index).matches(), texts({ "E4" }));
        sandbox().trigger(QStringLiteral("mnuHideWCommand"));
        QCOMPARE(bar(index).matches(), texts({ "E4" }));
        findText(index)->setText(QStringLiteral("delete"));
        QCOMPARE(bar(index).matches(), QStringList());
    }

    void eachWindowHasItsOwnBar()
    {
        const qint16 first = openSample();
        const qint16 second = sandbox().openMenu(QStringLiteral("other.ini"), texts({ "Pack here" }));
        QCOMPARE(window().activeDocumentIndex(), second);
        sandbox().trigger(QStringLiteral("mnuFind"));
        QVERIFY(bar(second).isVisible());
        QVERIFY(!bar(first).isVisible());
        QTest::keyClicks(findText(second), QStringLiteral("pack"));
        QCOMPARE(bar(second).matches(), texts({ "E0" }));
    }
};

QTEST_MAIN(TestFindBar)
#include "test_findbar.moc"

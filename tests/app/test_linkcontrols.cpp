#include "guisandbox.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/optionsstore.h"
#include "model/menudocument.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::colourOf;
using TreeHelpers::isBold;
using TreeHelpers::nodeKeys;
using TreeHelpers::texts;

namespace {

const QColor black(0, 0, 0);
const QColor navy(0, 0, 128);
const QColor maroon(128, 0, 0);

const QString sameTargetMessage
    = QStringLiteral("You must select an item with copycommand option unchecked and not the same one !");

QStringList listLines(const QListWidget* list)
{
    QStringList lines;
    for (int row = 0; row < list->count(); ++row) {
        lines.append(list->item(row)->text());
    }
    return lines;
}

MessageRequest exclamation(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    return request;
}

} // namespace

class TestLinkControls : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    qint16 m_index = 0;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    EditorWindow* editor() { return window().editor(m_index); }
    const MenuDocument& document() { return window().state().document(m_index); }
    const MenuItem& item(int index) { return document().items.at(index); }
    ItemTree& tree() { return *editor()->tree(); }
    QCheckBox* checkBox() { return editor()->findChild<QCheckBox*>(QStringLiteral("chkCopyCommand")); }
    QLineEdit* targetField() { return editor()->findChild<QLineEdit*>(QStringLiteral("txtItemIndexCopy")); }
    QPushButton* targetButton() { return editor()->findChild<QPushButton*>(QStringLiteral("cmdChangeCopy")); }
    QListWidget* commandList() { return editor()->findChild<QListWidget*>(QStringLiteral("lstCommand")); }
    int undoCount() { return window().state().histories().history(m_index).undoCount(); }
    QString panelText(int panel)
    {
        return window().findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel))->text();
    }

    /// A (E0, own command), B (E1) and C (E2) with the same command, D (E3) without commands, and the
    /// submenu P (E4, own command) with its child (E5). With `detectLinks` C opens as a link to B.
    void open(bool detectLinks)
    {
        if (detectLinks) {
            Options options;
            options.checkCopyCommand = 1;
            sandbox().optionsStore().saveOptions(options);
        }
        QVERIFY(sandbox().showWindow());
        m_index = sandbox().openMenu(QStringLiteral("links.ini"), texts({ "A", "B", "C", "D", "P", "···child" }),
                                     texts({ "0001:txt=a-cmd", "0002:txt=b-cmd", "0003:txt=b-cmd", "0005:=p-cmd" }));
        QVERIFY(m_index > 0);
    }

    /// Chooses `target` as the link target of `source` with the mouse.
    void link(const QString& source, const QString& target)
    {
        clickNode(tree(), source);
        QTest::mouseClick(targetButton(), Qt::LeftButton);
        QVERIFY(editor()->isChoosingLinkTarget());
        clickNode(tree(), target);
    }

private Q_SLOTS:
    void init() { m_sandbox = std::make_unique<GuiSandbox>(); }
    void cleanup() { m_sandbox.reset(); }

    void choosingATargetLinksTheItem()
    {
        open(false);
        clickNode(tree(), QStringLiteral("E0"));
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), maroon);
        QTest::mouseClick(targetButton(), Qt::LeftButton);

        // Choosing: the button is light green, the box and the list are off, and so are the menus.
        QVERIFY(targetButton()->isChecked());
        QCOMPARE(targetButton()->palette().color(QPalette::Button), QColor(168, 227, 176));
        QVERIFY(!checkBox()->isEnabled());
        QVERIFY(!commandList()->isEnabled());
        for (const QString& name : texts({ "mnuFile", "mnuEdit", "mnuWindow", "mnuH" })) {
            QVERIFY2(!window().findChild<QMenu*>(name)->menuAction()->isEnabled(), qPrintable(name));
        }
        for (const QString& name : texts({ "mnuNew", "mnuOpen", "mnuQuit", "mnuNewItem", "mnuDelete", "mnuCascade",
                                           "mnuHelp", "mnuRefresh" })) {
            QVERIFY2(!sandbox().action(name)->isEnabled(), qPrintable(name));
        }

        clickNode(tree(), QStringLiteral("E1"));
        QCOMPARE(item(0).copyKey, QStringLiteral("E1"));
        QVERIFY(item(0).copiesCommands);
        // The item keeps its own command for later.
        QCOMPARE(item(0).commands.size(), 2);
        QCOMPARE(undoCount(), 1);
        // The choice has ended and the source shows its target's commands.
        QVERIFY(!targetButton()->isChecked());
        QVERIFY(!editor()->isChoosingLinkTarget());
        QVERIFY(targetButton()->palette().color(QPalette::Button) != QColor(168, 227, 176));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E0")));
        QVERIFY(checkBox()->isChecked());
        QVERIFY(checkBox()->isEnabled());
        QCOMPARE(targetField()->text(), QStringLiteral("1"));
        QCOMPARE(listLines(commandList()), texts({ "txt=b-cmd" }));
        QVERIFY(!commandList()->isEnabled());
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), black);
        for (const QString& name : texts({ "mnuFile", "mnuEdit", "mnuWindow", "mnuH" })) {
            QVERIFY2(window().findChild<QMenu*>(name)->menuAction()->isEnabled(), qPrintable(name));
        }
        QVERIFY(sandbox().action(QStringLiteral("mnuNew"))->isEnabled());
        QVERIFY(sandbox().action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void switchingTheLinkOffAndOnKeepsTheTarget()
    {
        open(false);
        link(QStringLiteral("E0"), QStringLiteral("E1"));
        QCOMPARE(targetField()->text(), QStringLiteral("1"));

        QTest::mouseClick(checkBox(), Qt::LeftButton);
        QVERIFY(!item(0).copiesCommands);
        QCOMPARE(item(0).copyKey, QStringLiteral("E1"));
        QCOMPARE(targetField()->text(), QStringLiteral("1"));
        // Its own command shows again, and its node is maroon.
        QCOMPARE(listLines(commandList()), texts({ "txt=a-cmd" }));
        QVERIFY(commandList()->isEnabled());
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), maroon);
        QVERIFY(!document().saved);

        QTest::mouseClick(checkBox(), Qt::LeftButton);
        QVERIFY(item(0).copiesCommands);
        QCOMPARE(item(0).copyKey, QStringLiteral("E1"));
        QCOMPARE(targetField()->text(), QStringLiteral("1"));
        QCOMPARE(listLines(commandList()), texts({ "txt=b-cmd" }));
        // The box records nothing: only the choice of the target can be undone.
        QCOMPARE(undoCount(), 1);
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void aLinkedTargetOrTheItemItselfIsRefused()
    {
        open(true);
        QVERIFY(item(2).copiesCommands);
        const MenuDocument before = document();
        clickNode(tree(), QStringLiteral("E0"));
        QTest::mouseClick(targetButton(), Qt::LeftButton);

        clickNode(tree(), QStringLiteral("E0"));
        QCOMPARE(sandbox().prompts().messages, QList<MessageRequest>({ exclamation(sameTargetMessage) }));
        QVERIFY(editor()->isChoosingLinkTarget());
        clickNode(tree(), QStringLiteral("E2"));
        QCOMPARE(sandbox().prompts().messages.size(), 2);
        QCOMPARE(sandbox().prompts().messages.last(), exclamation(sameTargetMessage));
        QVERIFY(editor()->isChoosingLinkTarget());
        QCOMPARE(document(), before);
        QCOMPARE(undoCount(), 0);
        // The selection stayed on the item whose link is being set.
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E0")));

        clickNode(tree(), QStringLiteral("E3"));
        QCOMPARE(item(0).copyKey, QStringLiteral("E3"));
        QVERIFY(!editor()->isChoosingLinkTarget());
        // A target without commands gives an empty list.
        QVERIFY(commandList()->count() == 0);
    }

    void clickingTheRootWhileChoosingDoesNothing()
    {
        open(false);
        clickNode(tree(), QStringLiteral("E0"));
        QTest::mouseClick(targetButton(), Qt::LeftButton);
        clickNode(tree(), QStringLiteral("Root"));
        QVERIFY(editor()->isChoosingLinkTarget());
        QVERIFY(!item(0).copiesCommands);
        QVERIFY(sandbox().prompts().messages.isEmpty());
        // Releasing the button ends the choice and changes nothing.
        QTest::mouseClick(targetButton(), Qt::LeftButton);
        QVERIFY(!editor()->isChoosingLinkTarget());
        QVERIFY(checkBox()->isEnabled());
        QVERIFY(!item(0).copiesCommands);
        QVERIFY(sandbox().action(QStringLiteral("mnuNew"))->isEnabled());
        QCOMPARE(undoCount(), 0);
    }

    void uncheckAllSwitchesEveryLinkOffAndTheBoxRestoresEach()
    {
        open(true);
        link(QStringLiteral("E3"), QStringLiteral("E0"));
        QVERIFY(item(2).copiesCommands);
        QVERIFY(item(3).copiesCommands);
        const int recorded = undoCount();

        sandbox().trigger(QStringLiteral("mnuUncheckCopyCommand"));
        for (const MenuItem& each : document().items) {
            QVERIFY(!each.copiesCommands);
        }
        QCOMPARE(item(2).copyKey, QStringLiteral("E1"));
        QCOMPARE(item(3).copyKey, QStringLiteral("E0"));
        // C holds a copy of B's commands and is maroon now; D has none of its own.
        QCOMPARE(colourOf(tree(), QStringLiteral("E2")), maroon);
        QCOMPARE(colourOf(tree(), QStringLiteral("E3")), black);
        QCOMPARE(undoCount(), recorded);

        clickNode(tree(), QStringLiteral("E2"));
        QVERIFY(!checkBox()->isChecked());
        QCOMPARE(targetField()->text(), QStringLiteral("1"));
        QTest::mouseClick(checkBox(), Qt::LeftButton);
        QVERIFY(item(2).copiesCommands);
        QCOMPARE(item(2).copyKey, QStringLiteral("E1"));
        clickNode(tree(), QStringLiteral("E3"));
        QTest::mouseClick(checkBox(), Qt::LeftButton);
        QVERIFY(item(3).copiesCommands);
        QCOMPARE(item(3).copyKey, QStringLiteral("E0"));
        QCOMPARE(undoCount(), recorded);
    }

    void undoAfterChoosingRestoresTheEarlierLink()
    {
        open(false);
        link(QStringLiteral("E0"), QStringLiteral("E1"));
        QTest::mouseClick(checkBox(), Qt::LeftButton); // off, not recorded
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(item(0).copyKey, QStringLiteral("-1"));
        QVERIFY(!item(0).copiesCommands);
        QCOMPARE(undoCount(), 0);
    }

    void parentsAreBoldAndMaroonOrNavyByTheirLink()
    {
        open(false);
        QCOMPARE(colourOf(tree(), QStringLiteral("E4")), maroon);
        QVERIFY(isBold(tree(), QStringLiteral("E4")));
        link(QStringLiteral("E4"), QStringLiteral("E1"));
        // The chosen source is painted black at once; the next colouring makes a linked submenu navy.
        QCOMPARE(colourOf(tree(), QStringLiteral("E4")), black);
        sandbox().trigger(QStringLiteral("mnuRefresh"));
        QCOMPARE(colourOf(tree(), QStringLiteral("E4")), navy);
        QVERIFY(isBold(tree(), QStringLiteral("E4")));
    }

    void checkingTheBoxWithoutATargetIsRefused()
    {
        open(false);
        clickNode(tree(), QStringLiteral("E3"));
        QCOMPARE(targetField()->text(), QString());
        bool uncheckedWhileShown = false;
        QTest::mouseClick(checkBox(), Qt::LeftButton);
        uncheckedWhileShown = !checkBox()->isChecked();
        QVERIFY(uncheckedWhileShown);
        QCOMPARE(sandbox().prompts().messages,
                 QList<MessageRequest>({ exclamation(QStringLiteral("Select an item to copy command before !")) }));
        QVERIFY(!item(3).copiesCommands);
        QVERIFY(document().saved);
    }

    void aDoubleClickOnTheTargetFollowsTheLink()
    {
        open(true);
        clickNode(tree(), QStringLiteral("E2"));
        QVERIFY(targetField()->isEnabled());
        QTest::mouseDClick(targetField(), Qt::LeftButton);
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E1")));
        QCOMPARE(panelText(2), QStringLiteral("1"));
        QCOMPARE(listLines(commandList()), texts({ "txt=b-cmd" }));
        QTRY_VERIFY(tree().hasFocus());
        // An item whose link is off has nothing to follow.
        clickNode(tree(), QStringLiteral("E0"));
        QVERIFY(!targetField()->isEnabled());
        QTest::mouseDClick(targetField(), Qt::LeftButton);
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E0")));
    }

    void selectAnItemToCopyPressesTheButton()
    {
        open(false);
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuSelectCopy"));
        QVERIFY(targetButton()->isChecked());
        QVERIFY(editor()->isChoosingLinkTarget());
        QVERIFY(!sandbox().action(QStringLiteral("mnuSelectCopy"))->isEnabled());
        clickNode(tree(), QStringLiteral("E3"));
        QCOMPARE(item(0).copyKey, QStringLiteral("E3"));
        QVERIFY(sandbox().action(QStringLiteral("mnuSelectCopy"))->isEnabled());
    }

    void lookForCopyCommandLinksIdenticalCommands()
    {
        open(false);
        QVERIFY(!item(2).copiesCommands);
        QCOMPARE(colourOf(tree(), QStringLiteral("E2")), maroon);
        sandbox().trigger(QStringLiteral("mnuLFCopyCommand"));
        QVERIFY(item(2).copiesCommands);
        QCOMPARE(item(2).copyKey, QStringLiteral("E1"));
        QCOMPARE(colourOf(tree(), QStringLiteral("E2")), black);
        QCOMPARE(undoCount(), 0);
        // The links change nothing in the file, yet the document has changed.
        QVERIFY(!document().saved);
    }

    void linksFoundWhileTheyAreHiddenLeaveTheTree()
    {
        open(false);
        sandbox().trigger(QStringLiteral("mnuHideCopies"));
        QVERIFY(tree().nodeByKey(QStringLiteral("E2")).isValid());
        sandbox().trigger(QStringLiteral("mnuLFCopyCommand"));
        QVERIFY(!tree().nodeByKey(QStringLiteral("E2")).isValid());
        QCOMPARE(document().hideMode, 1);
        sandbox().trigger(QStringLiteral("mnuUncheckCopyCommand"));
        QVERIFY(tree().nodeByKey(QStringLiteral("E2")).isValid());
    }

    void keysOfTheMenusDoNothingWhileChoosing()
    {
        open(false);
        clickNode(tree(), QStringLiteral("E0"));
        QTest::mouseClick(targetButton(), Qt::LeftButton);
        const qsizetype windows = window().state().openDocumentIndexes().size();
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(&tree(), Qt::Key_Delete);
        QCOMPARE(window().state().openDocumentIndexes().size(), windows);
        QCOMPARE(document().items.size(), 6);
    }
};

QTEST_MAIN(TestLinkControls)
#include "test_linkcontrols.moc"

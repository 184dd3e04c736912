#include "guisandbox.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QToolTip>

namespace {

QStringList listLines(const QListWidget* list)
{
    QStringList lines;
    for (int row = 0; row < list->count(); ++row) {
        lines.append(list->item(row)->text());
    }
    return lines;
}

MenuItem makeItem(const QString& caption, const QString& key, qint16 parent, qint16 siblingOrder,
                  const QList<Command>& commands = {})
{
    MenuItem item;
    item.caption = caption;
    item.key = key;
    item.parent = parent;
    item.siblingOrder = siblingOrder;
    item.commands = MenuItem::placeholderCommands() + commands;
    return item;
}

/// Archive (E0) with the children Pack (E1, two commands) and Unpack (E2, a link to Pack that
/// keeps one command of its own), then Delete (E3, one command).
MenuDocument linkedDocument()
{
    MenuDocument document;
    MenuItem archive = makeItem(QStringLiteral("Archive"), QStringLiteral("E0"), -1, 1);
    archive.childCount = 2;
    MenuItem pack = makeItem(QStringLiteral("Pack"), QStringLiteral("E1"), 0, 1,
                             { { QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$") },
                               { QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$||echo done") } });
    MenuItem unpack = makeItem(QStringLiteral("Unpack"), QStringLiteral("E2"), 0, 2,
                               { { QStringLiteral("zip"), QStringLiteral("unpack.exe $fs-001$") } });
    unpack.copyKey = QStringLiteral("E1");
    unpack.copiesCommands = true;
    MenuItem erase = makeItem(QStringLiteral("Delete"), QStringLiteral("E3"), -1, 2,
                              { { QString(), QStringLiteral("del $fs-001$") } });
    erase.copyKey = QStringLiteral("E1"); // a target chosen once, link switched off
    document.items = { archive, pack, unpack, erase };
    document.lastIndex = 3;
    return document;
}

/// A new menu in the sandbox's main window whose document is replaced by `document`.
EditorWindow* showDocument(GuiSandbox& sandbox, const MenuDocument& document)
{
    MainWindow& window = sandbox.window();
    window.mnuNew_Click();
    const qint16 index = window.activeDocumentIndex();
    MenuDocument& slot = window.state().document(index);
    slot = document;
    slot.windowIndex = index;
    window.regenerateTree(index);
    return window.editor(index);
}

QString panelText(GuiSandbox& sandbox, int panel)
{
    return sandbox.window().findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel))->text();
}

template <typename Widget> Widget* control(EditorWindow* editor, const char* name)
{
    return editor->findChild<Widget*>(QString::fromLatin1(name));
}

} // namespace

class TestEditorWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controlsCarryTheirNames()
    {
        GuiSandbox sandbox;
        sandbox.window().mnuNew_Click();
        EditorWindow* editor = sandbox.window().activeEditor();
        QCOMPARE(editor->objectName(), QStringLiteral("frmEditor"));
        QVERIFY(control<ItemTree>(editor, "lstMenu"));
        QVERIFY(control<QListWidget>(editor, "lstCommand"));
        QVERIFY(control<QCheckBox>(editor, "chkCopyCommand"));
        QVERIFY(control<QLineEdit>(editor, "txtItemIndexCopy")->isReadOnly());
        QVERIFY(control<QPushButton>(editor, "cmdChangeCopy")->isCheckable());
        QVERIFY(control<QLabel>(editor, "lblPath"));
        QVERIFY(control<QFrame>(editor, "frm01"));
        QVERIFY(control<QLabel>(editor, "lblReconstruct"));
        // The move and link controls work on the item shown.
        QVERIFY(control<QPushButton>(editor, "cmdUp")->isEnabled());
        QVERIFY(control<QPushButton>(editor, "cmdDown")->isEnabled());
        QVERIFY(control<QPushButton>(editor, "cmdChangeCopy")->isEnabled());
        QVERIFY(control<QCheckBox>(editor, "chkCopyCommand")->isEnabled());
    }

    void aFreshEditorHasTheDefaultCaption()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.state().appendDocumentSlot();
        EditorWindow editor(window, index);
        QCOMPARE(editor.caption(), QStringLiteral("KELV Menu Editor - Form"));
        QCOMPARE(editor.windowTitle(), QStringLiteral("KELV Menu Editor - Form[*]"));
        QCOMPARE(editor.documentIndex(), index);
    }

    void generatingSelectsTheFirstItemAndHidesTheNotice()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        QCOMPARE(tree->nodeCount(), 5);
        QCOMPARE(tree->currentIndex(), tree->node(2));
        QCOMPARE(tree->keyOf(tree->currentIndex()), QStringLiteral("E0"));
        QVERIFY(editor->nodeClicked());
        QCOMPARE(control<QLabel>(editor, "lblPath")->text(), QStringLiteral("KELV\\Archive"));
        QVERIFY(control<QFrame>(editor, "frm01")->isHidden());
        QCOMPARE(control<QLabel>(editor, "lblReconstruct")->text(), QStringLiteral("Generating tree ..."));
    }

    void theFirstItemIsShownBeforeTheRootTellsOfHiding()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        auto* path = control<QLabel>(editor, "lblPath");

        sandbox.window().state().document(editor->documentIndex()).hideMode = 1;
        sandbox.window().regenerateTree(editor->documentIndex());

        QCOMPARE(tree->textOf(tree->node(1)), QStringLiteral("KELV (Some items may be hidded)"));
        QCOMPARE(tree->currentIndex(), tree->nodeByKey(QStringLiteral("E0")));
        QCOMPARE(path->text(), QStringLiteral("KELV\\Archive"));
        // A click afterwards shows the path as the tree now reads.
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E1")));
        QCOMPARE(path->text(), QStringLiteral("KELV (Some items may be hidded)\\Archive\\Pack"));
    }

    void anEmptyTreeSelectsNothing()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, MenuDocument());
        QCOMPARE(editor->tree()->nodeCount(), 1);
        QVERIFY(editor->tree()->selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(control<QListWidget>(editor, "lstCommand")->count() == 0);
        QVERIFY(control<QLabel>(editor, "lblPath")->text().isEmpty());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void clickingAnItemShowsItsPlaceAndCommands()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();

        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E1")));

        QCOMPARE(panelText(sandbox, 2), QStringLiteral("1"));
        QCOMPARE(panelText(sandbox, 6), QStringLiteral("(1 ; 0)"));
        QCOMPARE(sandbox.window().state().lastNodeIndex(),
                 qint16(tree->indexOfNode(tree->nodeByKey(QStringLiteral("E1")))));
        QCOMPARE(tree->currentIndex(), tree->nodeByKey(QStringLiteral("E1")));
        QVERIFY(tree->selectionModel()->isSelected(tree->currentIndex()));
        QCOMPARE(control<QLabel>(editor, "lblPath")->text(), QStringLiteral("KELV\\Archive\\Pack"));
        auto* commands = control<QListWidget>(editor, "lstCommand");
        QCOMPARE(listLines(commands),
                 QStringList({ QStringLiteral("zip=pack.exe a $fs-001$"),
                               QStringLiteral("rar=pack.exe r $fs-001$||echo done") }));
        QVERIFY(commands->isEnabled());
        QVERIFY(!control<QCheckBox>(editor, "chkCopyCommand")->isChecked());
        QVERIFY(control<QLineEdit>(editor, "txtItemIndexCopy")->text().isEmpty());
        QVERIFY(!control<QLineEdit>(editor, "txtItemIndexCopy")->isEnabled());

        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E0")));
        QCOMPARE(panelText(sandbox, 2), QStringLiteral("0"));
        QCOMPARE(panelText(sandbox, 6), QStringLiteral("(1 ; 2)"));
        QVERIFY(control<QListWidget>(editor, "lstCommand")->count() == 0);
    }

    void aLinkedItemShowsItsTargetsCommands()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        editor->lstMenu_NodeClick(editor->tree()->nodeByKey(QStringLiteral("E2")));

        auto* commands = control<QListWidget>(editor, "lstCommand");
        QCOMPARE(listLines(commands),
                 QStringList({ QStringLiteral("zip=pack.exe a $fs-001$"),
                               QStringLiteral("rar=pack.exe r $fs-001$||echo done") }));
        QVERIFY(!commands->isEnabled());
        QVERIFY(control<QCheckBox>(editor, "chkCopyCommand")->isChecked());
        QCOMPARE(control<QLineEdit>(editor, "txtItemIndexCopy")->text(), QStringLiteral("1"));
        QVERIFY(control<QLineEdit>(editor, "txtItemIndexCopy")->isEnabled());
        QCOMPARE(panelText(sandbox, 6), QStringLiteral("(2 ; 0)"));
        // Showing the link changes nothing in the document.
        const MenuItem& item = sandbox.window().state().document(editor->documentIndex()).items.at(2);
        QVERIFY(item.copiesCommands);
        QCOMPARE(item.commands.size(), 2);
    }

    void anItemWithASwitchedOffLinkShowsItsTargetAndOwnCommands()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        editor->lstMenu_NodeClick(editor->tree()->nodeByKey(QStringLiteral("E3")));
        QCOMPARE(listLines(control<QListWidget>(editor, "lstCommand")),
                 QStringList({ QStringLiteral("=del $fs-001$") }));
        QCOMPARE(control<QLineEdit>(editor, "txtItemIndexCopy")->text(), QStringLiteral("1"));
        QVERIFY(!control<QCheckBox>(editor, "chkCopyCommand")->isChecked());
        QCOMPARE(panelText(sandbox, 2), QStringLiteral("3"));
        QCOMPARE(panelText(sandbox, 6), QStringLiteral("(2 ; 0)"));
    }

    void switchingALinkOffShowsTheOwnCommandsAndOnAgainRelinks()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        const QModelIndex unpack = tree->nodeByKey(QStringLiteral("E2"));
        editor->lstMenu_NodeClick(unpack);
        QCOMPARE(unpack.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(0, 0, 0));
        auto* box = control<QCheckBox>(editor, "chkCopyCommand");
        auto* target = control<QLineEdit>(editor, "txtItemIndexCopy");
        auto* commands = control<QListWidget>(editor, "lstCommand");
        // Looked up after each change: a change may move the item list, which the undo states and the
        // recovery copy share with the menu.
        const auto item = [&]() -> const MenuItem& {
            return sandbox.window().state().document(editor->documentIndex()).items.at(2);
        };

        // Off: the commands the item held before it was linked come back, and so does its colour.
        box->setChecked(false);
        editor->chkCopyCommand_Click();
        QVERIFY(!item().copiesCommands);
        QCOMPARE(item().copyKey, QStringLiteral("E1"));
        QCOMPARE(listLines(commands), QStringList({ QStringLiteral("zip=unpack.exe $fs-001$") }));
        QVERIFY(commands->isEnabled());
        QVERIFY(!target->isEnabled());
        QCOMPARE(target->text(), QStringLiteral("1"));
        QCOMPARE(unpack.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(128, 0, 0));

        // On again: the same target, without choosing it anew.
        box->setChecked(true);
        editor->chkCopyCommand_Click();
        QVERIFY(item().copiesCommands);
        QCOMPARE(item().copyKey, QStringLiteral("E1"));
        QCOMPARE(listLines(commands),
                 QStringList({ QStringLiteral("zip=pack.exe a $fs-001$"),
                               QStringLiteral("rar=pack.exe r $fs-001$||echo done") }));
        QVERIFY(!commands->isEnabled());
        QVERIFY(target->isEnabled());
        QCOMPARE(target->text(), QStringLiteral("1"));
        QCOMPARE(item().commands.size(), 2); // its own command is kept while the link is on
        QVERIFY(sandbox.prompts().messages.isEmpty());

        // Showing the item again shows the link as it now stands.
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E1")));
        editor->lstMenu_NodeClick(unpack);
        QVERIFY(box->isChecked());
        QCOMPARE(target->text(), QStringLiteral("1"));
    }

    void checkingTheBoxWithoutATargetIsRefused()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        editor->lstMenu_NodeClick(editor->tree()->nodeByKey(QStringLiteral("E1")));
        auto* box = control<QCheckBox>(editor, "chkCopyCommand");
        QVERIFY(control<QLineEdit>(editor, "txtItemIndexCopy")->text().isEmpty());

        box->setChecked(true);
        editor->chkCopyCommand_Click();

        MessageRequest refused;
        refused.text = QStringLiteral("Select an item to copy command before !");
        refused.icon = MessageRequest::Icon::Exclamation;
        QCOMPARE(sandbox.prompts().messages, QList<MessageRequest>({ refused }));
        QVERIFY(!box->isChecked());
        QVERIFY(!sandbox.window().state().document(editor->documentIndex()).items.at(1).copiesCommands);
        QCOMPARE(control<QListWidget>(editor, "lstCommand")->count(), 2);
    }

    void aBrokenLinkShowsNoCommands()
    {
        GuiSandbox sandbox;
        MenuDocument document = linkedDocument();
        document.items[2].copyKey = QStringLiteral("E9");
        EditorWindow* editor = showDocument(sandbox, document);
        editor->lstMenu_NodeClick(editor->tree()->nodeByKey(QStringLiteral("E2")));
        QVERIFY(control<QListWidget>(editor, "lstCommand")->count() == 0);
        QCOMPARE(control<QLineEdit>(editor, "txtItemIndexCopy")->text(), QStringLiteral("-1"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void clickingTheRootDoesNothing()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E1")));
        editor->lstMenu_NodeClick(tree->node(1));
        QCOMPARE(tree->currentIndex(), tree->nodeByKey(QStringLiteral("E1")));
        QCOMPARE(panelText(sandbox, 2), QStringLiteral("1"));
        QCOMPARE(control<QListWidget>(editor, "lstCommand")->count(), 2);
    }

    void mouseClicksAndKeyboardMovesShowTheItem()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        sandbox.window().show();
        QVERIFY(QTest::qWaitForWindowExposed(&sandbox.window()));
        ItemTree* tree = editor->tree();

        const QModelIndex erase = tree->nodeByKey(QStringLiteral("E3"));
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, tree->visualRect(erase).center());
        QCOMPARE(tree->currentIndex(), erase);
        QCOMPARE(panelText(sandbox, 2), QStringLiteral("3"));
        QCOMPARE(control<QLabel>(editor, "lblPath")->text(), QStringLiteral("KELV\\Delete"));

        tree->setFocus();
        QTest::keyClick(tree, Qt::Key_Up);
        QCOMPARE(tree->keyOf(tree->currentIndex()), QStringLiteral("E2"));
        QCOMPARE(panelText(sandbox, 2), QStringLiteral("2"));
        QCOMPARE(control<QLabel>(editor, "lblPath")->text(), QStringLiteral("KELV\\Archive\\Unpack"));
        QVERIFY(control<QCheckBox>(editor, "chkCopyCommand")->isChecked());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void aClickOnANodeWithoutItemReportsTheError()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        sandbox.window().show();
        QVERIFY(QTest::qWaitForWindowExposed(&sandbox.window()));
        ItemTree* tree = editor->tree();
        // The item behind the node goes away without the tree being rebuilt.
        sandbox.window().state().document(editor->documentIndex()).items[3].key = QStringLiteral("E7");

        const QModelIndex erase = tree->nodeByKey(QStringLiteral("E3"));
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, tree->visualRect(erase).center());

        QCOMPARE(sandbox.prompts().messages.size(), 1);
        const MessageRequest& shown = sandbox.prompts().messages.constFirst();
        QCOMPARE(shown.icon, MessageRequest::Icon::Critical);
        QCOMPARE(shown.text, RunTimeError(9, QStringLiteral("lstMenu_NodeClick")).report());
    }

    void colorizeFollowsTheDocument()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        const QColor maroon(128, 0, 0);
        QCOMPARE(tree->nodeByKey(QStringLiteral("E3")).data(Qt::ForegroundRole).value<QBrush>().color(), maroon);
        MenuDocument& document = sandbox.window().state().document(editor->documentIndex());
        document.items[3].commands = MenuItem::placeholderCommands();
        editor->ColorizeMenu();
        QCOMPARE(tree->nodeByKey(QStringLiteral("E3")).data(Qt::ForegroundRole).value<QBrush>().color(),
                 QColor(0, 0, 0));
    }

    void nodeTooltipsTellPathCommandsAndLink()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        QCOMPARE(tree->toolTipOf(tree->nodeByKey(QStringLiteral("E1"))), QStringLiteral("Archive\\Pack\n2 commands"));
        QCOMPARE(tree->toolTipOf(tree->nodeByKey(QStringLiteral("E2"))),
                 QStringLiteral("Archive\\Unpack\n2 commands\nUses the commands of \"Pack\""));
        QVERIFY(tree->toolTipOf(tree->node(1)).isEmpty()); // the root belongs to no item

        // Asked when the pointer rests on the node, so it follows the menu as it stands.
        sandbox.window().state().document(editor->documentIndex()).items[1].caption = QStringLiteral("Pack all");
        QVERIFY(sandbox.showWindow());
        const QModelIndex unpack = tree->nodeByKey(QStringLiteral("E2"));
        const QPoint onNode = tree->visualRect(unpack).center();
        QHelpEvent help(QEvent::ToolTip, onNode, tree->viewport()->mapToGlobal(onNode));
        QApplication::sendEvent(tree->viewport(), &help);
        QTRY_VERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text(), QStringLiteral("Archive\\Unpack\n2 commands\nUses the commands of \"Pack all\""));
        QToolTip::hideText();
    }

    void linkTargetFieldTellsTheTargetsCaption()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        ItemTree* tree = editor->tree();
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E2")));
        QCOMPARE(editor->linkTargetToolTip(), QStringLiteral("Pack"));
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E3"))); // target kept, link off
        QCOMPARE(editor->linkTargetToolTip(), QStringLiteral("Pack"));
        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E1")));
        QVERIFY(editor->linkTargetToolTip().isEmpty());

        editor->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E2")));
        QVERIFY(sandbox.showWindow());
        auto* field = control<QLineEdit>(editor, "txtItemIndexCopy");
        const QPoint inField = field->rect().center();
        QHelpEvent help(QEvent::ToolTip, inField, field->mapToGlobal(inField));
        QApplication::sendEvent(field, &help);
        QTRY_VERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text(), QStringLiteral("Pack"));
        QToolTip::hideText();
    }

    void commandLinesTooLongToShowGetATooltip()
    {
        GuiSandbox sandbox;
        MenuDocument document = linkedDocument();
        const QString longCommand
            = QStringLiteral("pack.exe a ") + QString(300, QLatin1Char('x')) + QStringLiteral("||echo done");
        document.items[3].commands.append({ QStringLiteral("zip"), longCommand });
        EditorWindow* editor = showDocument(sandbox, document);
        QVERIFY(sandbox.showWindow());
        editor->lstMenu_NodeClick(editor->tree()->nodeByKey(QStringLiteral("E3")));
        auto* list = control<QListWidget>(editor, "lstCommand");
        QCOMPARE(list->count(), 2);
        QVERIFY(list->viewport()->width()
                > list->fontMetrics().horizontalAdvance(QStringLiteral("=del $fs-001$")) + 20);
        QVERIFY(editor->commandToolTip(0).isEmpty()); // "=del $fs-001$" fits
        QCOMPARE(editor->commandToolTip(1),
                 QStringLiteral("zip=pack.exe a\n") + QString(100, QLatin1Char('x')) + QLatin1Char('\n')
                     + QString(100, QLatin1Char('x')) + QLatin1Char('\n') + QString(100, QLatin1Char('x'))
                     + QStringLiteral("\necho done"));
        QVERIFY(editor->commandToolTip(2).isEmpty());

        const QPoint onShortLine = list->visualItemRect(list->item(0)).center();
        QHelpEvent onShort(QEvent::ToolTip, onShortLine, list->viewport()->mapToGlobal(onShortLine));
        QApplication::sendEvent(list->viewport(), &onShort);
        QVERIFY(!QToolTip::isVisible());
        const QPoint onLongLine(10, list->visualItemRect(list->item(1)).center().y());
        QHelpEvent onLong(QEvent::ToolTip, onLongLine, list->viewport()->mapToGlobal(onLongLine));
        QApplication::sendEvent(list->viewport(), &onLong);
        QTRY_VERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text(), editor->commandToolTip(1));
        QToolTip::hideText();
    }

    void closingTheEditorAsksTheMainWindow()
    {
        GuiSandbox sandbox;
        EditorWindow* editor = showDocument(sandbox, linkedDocument());
        sandbox.prompts().answers = { UserPrompts::Answer::Cancel };
        QVERIFY(!editor->closeWindow());
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QVERIFY(sandbox.window().editor(editor->documentIndex()) == editor);
    }
};

QTEST_MAIN(TestEditorWindow)
#include "test_editorwindow.moc"

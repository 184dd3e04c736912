#include "guisandbox.h"
#include "treehelpers.h"

#include "app/commandeditordialog.h"
#include "app/commandmenu.h"
#include "app/commandtextbox.h"
#include "app/editorwindow.h"
#include "app/inputform.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "app/variablehelppopup.h"
#include "commands/variablecatalogue.h"
#include "model/menudocument.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTimer>
#include <QToolButton>

using TreeHelpers::clickNode;
using TreeHelpers::colourOf;
using TreeHelpers::texts;

namespace {

const QString crlf = QStringLiteral("\r\n");

} // namespace

/// The command list's menu and the command editor driven as a user drives them: lines clicked and
/// right-clicked, the menu's entries chosen, text typed into the editor, its buttons and variables
/// menu used, scripts loaded through the file dialog with their prompts answered.
class TestCommandEditor : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    int m_dialogsShown = 0;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    const MenuDocument& document(qint16 index) { return window().state().document(index); }
    EditorWindow& editor(qint16 index) { return *window().editor(index); }
    ItemTree& tree(qint16 index) { return *editor(index).tree(); }
    QListWidget* commandList(qint16 index)
    {
        return editor(index).findChild<QListWidget*>(QStringLiteral("lstCommand"));
    }
    int undoCount(qint16 index) { return window().state().histories().history(index).undoCount(); }
    QStringList listLines(qint16 index)
    {
        QStringList lines;
        for (int row = 0; row < commandList(index)->count(); ++row) {
            lines.append(commandList(index)->item(row)->text());
        }
        return lines;
    }
    QStringList commandsOf(qint16 index, int item)
    {
        QStringList lines;
        // Items are numbered as in the file's command lines, from 1.
        const auto& commands = document(index).items.at(item - 1).commands;
        for (int slot = 1; slot < commands.size(); ++slot) {
            lines.append(commands.at(slot).extension + QLatin1Char('=') + commands.at(slot).command);
        }
        return lines;
    }

    template <typename Widget> static Widget* control(QWidget* dialog, const char* name)
    {
        return dialog->findChild<Widget*>(QString::fromLatin1(name));
    }

    /// Chooses `entry` of the command menu and lets `drive` work the command editor when it opens
    /// (the editor opens from the timer, 100 ms later). Returns whether it opened.
    bool chooseAndDrive(const QString& entry, const std::function<void(CommandEditorDialog&)>& drive)
    {
        bool opened = false;
        window().commandMenu().setDialogRunner([&](CommandEditorDialog& dialog) {
            opened = true;
            ++m_dialogsShown;
            drive(dialog);
        });
        sandbox().trigger(entry);
        QTimer* timer = window().commandMenu().timer();
        const bool ticked = QTest::qWaitFor([timer] { return !timer->isActive(); }, 2000);
        window().commandMenu().setDialogRunner([this](CommandEditorDialog&) { ++m_dialogsShown; });
        return ticked && opened;
    }

    static void typeCommand(CommandEditorDialog& dialog, const QString& extension, const QString& keys)
    {
        QLineEdit* extensionEdit = control<QComboBox>(&dialog, "cmbExtension")->lineEdit();
        extensionEdit->clear();
        QTest::keyClicks(extensionEdit, extension);
        QTest::keyClicks(dialog.commandBox(), keys);
    }

    static void pressEnter(CommandEditorDialog& dialog) { QTest::keyClick(dialog.commandBox(), Qt::Key_Return); }
    static void click(CommandEditorDialog& dialog, const char* button)
    {
        QTest::mouseClick(control<QPushButton>(&dialog, button), Qt::LeftButton);
    }

    /// A cursor at `position` of the box's text.
    static QTextCursor markCursor(CommandTextBox* box, int position)
    {
        QTextCursor cursor(box->document());
        cursor.setPosition(position);
        return cursor;
    }

    void selectLine(qint16 index, int row)
    {
        QListWidget* list = commandList(index);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          list->visualItemRect(list->item(row)).center());
        QCOMPARE(list->currentRow(), row);
    }

    QString writeScript(const QString& folder, const QString& name, const QStringList& lines)
    {
        QDir().mkpath(folder);
        return GuiSandbox::writeFile(folder + QLatin1Char('/') + name, lines.join(crlf).toLatin1());
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        QVERIFY(sandbox().showWindow());
        m_dialogsShown = 0;
    }
    void cleanup() { m_sandbox.reset(); }

    void theEditorHasItsControlsInAddMode()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            QCOMPARE(dialog.objectName(), QStringLiteral("frmAddCommand"));
            QVERIFY(dialog.isModal());
            QVERIFY(dialog.tag().isEmpty());
            QCOMPARE(control<QLabel>(&dialog, "lblExtension")->text(), QStringLiteral("Extension :"));
            QCOMPARE(control<QLabel>(&dialog, "lblCommand")->text(), QStringLiteral("Command :"));
            QCOMPARE(control<QLabel>(&dialog, "Label1")->text(), QStringLiteral("KELV Menu Editor"));
            QCOMPARE(control<QPushButton>(&dialog, "cmdLoadScript")->text(), QStringLiteral("Load Tolvexer Script"));
            QCOMPARE(control<QPushButton>(&dialog, "cmdAdd")->text(), QStringLiteral("&Add"));
            QCOMPARE(control<QPushButton>(&dialog, "cmdCancel")->text(), QStringLiteral("&Cancel"));
            QVERIFY(control<QToolButton>(&dialog, "cmdAddVariant"));
            QVERIFY(control<QTextBrowser>(&dialog, "lblHelp"));
            QCOMPARE(dialog.commandBox()->objectName(), QStringLiteral("txtCommand"));
            auto* extension = control<QComboBox>(&dialog, "cmbExtension");
            QVERIFY(extension->isEditable());
            QStringList presets;
            for (int row = 0; row < extension->count(); ++row) {
                presets.append(extension->itemText(row));
            }
            QCOMPARE(presets,
                     texts({ "mp3", "avi", "ogg", "asf", "ogm", "mkv", "vob", "lst", "ifo", "idx", "wav", "wma", "txt",
                             "mp2", "ac3", "exe", "bmp", "jpg", "gif" }));
            QCOMPARE(extension->currentText(), QString());
            QCOMPARE(dialog.commandBox()->commandText(), QString());
        }));
    }

    void addingJoinsTheLinesWithSeparators()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "B" }));
        clickNode(tree(index), QStringLiteral("E1"));
        const int recorded = undoCount(index);
        // a, an empty line, b: one "||".
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            typeCommand(dialog, QStringLiteral("avi"), QStringLiteral("a"));
            pressEnter(dialog);
            pressEnter(dialog);
            QTest::keyClicks(dialog.commandBox(), QStringLiteral("b"));
            QCOMPARE(dialog.commandBox()->commandText(), QStringLiteral("a") + crlf + crlf + QStringLiteral("b"));
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(commandsOf(index, 2), texts({ "avi=a||b" }));
        QCOMPARE(listLines(index), texts({ "avi=a||b" }));
        QCOMPARE(undoCount(index), recorded + 1);
        QVERIFY(!document(index).saved);

        // a, one line break, b: one "||" too; the command goes after the first.
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            typeCommand(dialog, QString(), QStringLiteral("a"));
            pressEnter(dialog);
            QTest::keyClicks(dialog.commandBox(), QStringLiteral("b"));
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(commandsOf(index, 2), texts({ "avi=a||b", "=a||b" }));
        QCOMPARE(commandsOf(index, 1), QStringList());
    }

    void theSnapshotIsTakenAfterTheCommandIsWritten()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QCOMPARE(undoCount(index), 0);
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            typeCommand(dialog, QStringLiteral("txt"), QStringLiteral("x"));
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(undoCount(index), 1);
        // The state recorded already holds the command, so Undo brings back the menu with it.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(commandsOf(index, 1), texts({ "txt=x" }));
        // ... and that menu is not the file's: closing still asks to save it.
        QVERIFY(!document(index).saved);
    }

    void editingShowsSeparatorsAsEmptyLinesAndStoresThemBack()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }),
                                                texts({ "0001:avi=del $fs-001$||copy b", "0001:txt=two" }));
        clickNode(tree(index), QStringLiteral("E0"));
        selectLine(index, 0);
        const int recorded = undoCount(index);
        QVERIFY(chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog& dialog) {
            QCOMPARE(dialog.tag(), QStringLiteral("1"));
            QCOMPARE(control<QPushButton>(&dialog, "cmdAdd")->text(), QStringLiteral("Edit"));
            QCOMPARE(control<QComboBox>(&dialog, "cmbExtension")->currentText(), QStringLiteral("avi"));
            CommandTextBox* box = dialog.commandBox();
            QCOMPARE(box->commandText(), QStringLiteral("del $fs-001$") + crlf + crlf + QStringLiteral("copy b"));
            // Coloured over the whole text, nothing bold yet.
            const ColouredText shown = box->colouredText();
            QCOMPARE(shown.formats().at(0).colour, TextColour::Green);
            QCOMPARE(shown.formats().at(4).colour, TextColour::Maroon);
            QCOMPARE(shown.formats().at(16).colour, TextColour::Green);
            for (const CharFormat& format : shown.formats()) {
                QVERIFY(!format.bold);
            }
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(commandsOf(index, 1), texts({ "avi=del $fs-001$||copy b", "txt=two" }));
        QCOMPARE(undoCount(index), recorded + 1);

        // The second line, changed: only its slot changes.
        selectLine(index, 1);
        QVERIFY(chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog& dialog) {
            QCOMPARE(dialog.tag(), QStringLiteral("2"));
            QTest::keyClick(dialog.commandBox(), Qt::Key_End, Qt::ControlModifier);
            QTest::keyClicks(dialog.commandBox(), QStringLiteral("||three"));
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(commandsOf(index, 1), texts({ "avi=del $fs-001$||copy b", "txt=two||three" }));
    }

    void aSeparatorTypedInTheTextShowsAsALineBreakNextTime()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:=a||b" }));
        clickNode(tree(index), QStringLiteral("E0"));
        selectLine(index, 0);
        QVERIFY(chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog& dialog) {
            QCOMPARE(dialog.commandBox()->commandText(), QStringLiteral("a") + crlf + crlf + QStringLiteral("b"));
            click(dialog, "cmdAdd");
        }));
        QCOMPARE(commandsOf(index, 1), texts({ "=a||b" }));
    }

    void cancelChangesNothing()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:avi=x" }));
        clickNode(tree(index), QStringLiteral("E0"));
        selectLine(index, 0);
        const MenuDocument before = document(index);
        const int recorded = undoCount(index);
        QVERIFY(chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog& dialog) {
            typeCommand(dialog, QStringLiteral("mkv"), QStringLiteral("changed"));
            click(dialog, "cmdCancel");
        }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            typeCommand(dialog, QStringLiteral("mkv"), QStringLiteral("new"));
            click(dialog, "cmdCancel");
        }));
        QVERIFY(document(index) == before);
        QVERIFY(document(index).saved);
        QCOMPARE(undoCount(index), recorded);
    }

    void editWithoutASelectedLineOpensNothing()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:avi=x" }));
        clickNode(tree(index), QStringLiteral("E0"));
        QCOMPARE(commandList(index)->currentRow(), -1);
        QVERIFY(!chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog&) {}));
        QCOMPARE(m_dialogsShown, 0);
    }

    void theEditorOpensFromTheTimerOnlyOncePerChoice()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QTimer* timer = window().commandMenu().timer();
        QCOMPARE(timer->objectName(), QStringLiteral("tmrExec"));
        window().commandMenu().setDialogRunner([this](CommandEditorDialog&) { ++m_dialogsShown; });
        sandbox().trigger(QStringLiteral("mnuAddCommand"));
        // Nothing opens within the menu's own event.
        QCOMPARE(m_dialogsShown, 0);
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 100);
        QCOMPARE(timer->property("tag").toString(), QStringLiteral("addcommand"));
        QTRY_COMPARE(m_dialogsShown, 1);
        QTest::qWait(250);
        QCOMPARE(m_dialogsShown, 1);
        QVERIFY(!timer->isActive());
    }

    void doubleClickOnALineEditsIt()
    {
        const qint16 index
            = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:a=1", "0001:b=2" }));
        clickNode(tree(index), QStringLiteral("E0"));
        QListWidget* list = commandList(index);
        QString tag;
        window().commandMenu().setDialogRunner([&tag](CommandEditorDialog& dialog) { tag = dialog.tag(); });
        selectLine(index, 1);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                           list->visualItemRect(list->item(1)).center());
        QTRY_COMPARE(tag, QStringLiteral("2"));
    }

    void rightClickOnAnEmptyListPopsTheCommandMenu()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        clickNode(tree(index), QStringLiteral("E0"));
        QMenu* shown = nullptr;
        QPoint shownAt;
        window().setMenuPopup([&](QMenu* menu, const QPoint& at) {
            shown = menu;
            shownAt = at;
        });
        QListWidget* list = commandList(index);
        QCOMPARE(list->count(), 0);
        const QPoint where(20, 15);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, Qt::NoModifier, where);
        QCOMPARE(shown, nullptr);
        QTest::mouseRelease(list->viewport(), Qt::RightButton, Qt::NoModifier, where);
        QVERIFY(shown);
        QCOMPARE(shown->objectName(), QStringLiteral("mnuCommand"));
        QCOMPARE(shownAt, list->viewport()->mapToGlobal(where));
        // Edit on an empty list does nothing.
        QVERIFY(!chooseAndDrive(QStringLiteral("mnuEditCommand"), [](CommandEditorDialog&) {}));
        QCOMPARE(m_dialogsShown, 0);
    }

    void removingTheOnlyCommandPaintsTheNodeByItsChildren()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "···B", "C" }),
                                                texts({ "0001:a=1", "0002:b=2", "0003:c=3" }));
        for (const QString& key : { QStringLiteral("E0"), QStringLiteral("E2") }) {
            clickNode(tree(index), key);
            selectLine(index, 0);
            sandbox().trigger(QStringLiteral("mnuRemoveCommand"));
            QCOMPARE(listLines(index), QStringList());
        }
        QCOMPARE(document(index).items.at(0).commands.size(), 1);
        QCOMPARE(document(index).items.at(2).commands.size(), 1);
        QCOMPARE(colourOf(tree(index), QStringLiteral("E0")), QColor(0, 0, 128));
        QCOMPARE(colourOf(tree(index), QStringLiteral("E2")), QColor(0, 0, 0));
        QCOMPARE(commandsOf(index, 2), texts({ "b=2" }));
        // Each removal is one undo step.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(commandsOf(index, 3), texts({ "c=3" }));
        QCOMPARE(commandsOf(index, 1), QStringList());
    }

    void removingALineMovesTheLaterOnesUp()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }),
                                                texts({ "0001:a=1", "0001:b=2", "0001:c=3" }));
        clickNode(tree(index), QStringLiteral("E0"));
        selectLine(index, 2);
        sandbox().trigger(QStringLiteral("mnuRemoveCommand"));
        QCOMPARE(commandsOf(index, 1), texts({ "a=1", "b=2" }));
        QCOMPARE(listLines(index), texts({ "a=1", "b=2" }));
        selectLine(index, 0);
        sandbox().trigger(QStringLiteral("mnuRemoveCommand"));
        QCOMPARE(commandsOf(index, 1), texts({ "b=2" }));
        QCOMPARE(listLines(index), texts({ "b=2" }));
    }

    void removeWithoutASelectedLineStillRecords()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:a=1" }));
        clickNode(tree(index), QStringLiteral("E0"));
        const int recorded = undoCount(index);
        sandbox().trigger(QStringLiteral("mnuRemoveCommand"));
        QCOMPARE(commandsOf(index, 1), texts({ "a=1" }));
        QCOMPARE(undoCount(index), recorded + 1);
    }

    void clearingRecordsEvenWithoutCommandsAndOnlyTouchesTheItem()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "···B", "C", "D" }),
                                                texts({ "0001:a=1", "0001:a=2", "0002:b=1", "0004:a=1", "0004:a=2" }));
        // D takes A's commands through a link.
        sandbox().trigger(QStringLiteral("mnuLFCopyCommand"));
        QVERIFY(document(index).items.at(3).copiesCommands);
        clickNode(tree(index), QStringLiteral("E2"));
        int recorded = undoCount(index);
        sandbox().trigger(QStringLiteral("mnuClearCommands"));
        QCOMPARE(undoCount(index), recorded + 1);

        clickNode(tree(index), QStringLiteral("E0"));
        recorded = undoCount(index);
        sandbox().trigger(QStringLiteral("mnuClearCommands"));
        QCOMPARE(undoCount(index), recorded + 1);
        QCOMPARE(commandsOf(index, 1), QStringList());
        QCOMPARE(commandsOf(index, 2), texts({ "b=1" }));
        QCOMPARE(colourOf(tree(index), QStringLiteral("E0")), QColor(0, 0, 128));
        // The linked item shows what its target holds now.
        clickNode(tree(index), QStringLiteral("E3"));
        QCOMPARE(listLines(index), QStringList());
        sandbox().trigger(QStringLiteral("mnuUndo"));
        clickNode(tree(index), QStringLiteral("E3"));
        QCOMPARE(listLines(index), texts({ "a=1", "a=2" }));
    }

    void specialItemsChangeOnlyTheNodeText()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "B", "C" }));
        const QStringList captions = texts({ "$audiostream$", "$subtitlestream$", "$selectedfile$" });
        for (int entry = 0; entry < 3; ++entry) {
            const QString key = QStringLiteral("E%1").arg(entry);
            clickNode(tree(index), key);
            QAction* special = sandbox().action(QStringLiteral("mnuSpecialItems%1").arg(entry));
            QCOMPARE(special->text().remove(QLatin1Char('&')), captions.at(entry));
            special->trigger();
            QCOMPARE(tree(index).textOf(tree(index).nodeByKey(key)), captions.at(entry));
        }
        QCOMPARE(document(index).items.at(0).caption, QStringLiteral("A"));
        QCOMPARE(document(index).items.at(2).caption, QStringLiteral("C"));
        QCOMPARE(undoCount(index), 0);
    }

    void theRootOrNoItemLeavesTheEntriesOff()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:a=1" }));
        tree(index).setCurrentIndex(tree(index).node(1));
        for (const char* name :
             { "mnuAddCommand", "mnuEditCommand", "mnuRemoveCommand", "mnuClearCommands", "mnuSpecialItems0" }) {
            QVERIFY2(!sandbox().action(QString::fromLatin1(name))->isEnabled(), name);
        }
        // The timer alone does nothing either.
        window().commandMenu().setDialogRunner([this](CommandEditorDialog&) { ++m_dialogsShown; });
        window().commandMenu().mnuAddCommand_Click();
        QTest::qWait(200);
        QCOMPARE(m_dialogsShown, 0);
    }

    void theVariablesMenuHoldsTheCatalogueAndPopsUpAtTheButtonCorner()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            const QList<QAction*> entries = dialog.variablesMenu()->actions();
            QCOMPARE(entries.size(), 34);
            for (int entry = 0; entry < 34; ++entry) {
                QCOMPARE(entries.at(entry)->objectName(), QStringLiteral("mnuVar%1").arg(entry));
                QCOMPARE(entries.at(entry)->text(), VariableCatalogue::name(entry));
                QCOMPARE(entries.at(entry)->data().toString(), VariableCatalogue::help(entry));
            }
            QCOMPARE(entries.first()->text(), QStringLiteral("$fs-001$"));
            QCOMPARE(entries.last()->text(), QStringLiteral("$exepath$"));
            QMenu* shown = nullptr;
            QPoint shownAt;
            dialog.setMenuPopup([&](QMenu* menu, const QPoint& at) {
                shown = menu;
                shownAt = at;
            });
            auto* button = control<QToolButton>(&dialog, "cmdAddVariant");
            QTest::mouseClick(button, Qt::LeftButton);
            QCOMPARE(shown, dialog.variablesMenu());
            QCOMPARE(shownAt, button->mapToGlobal(QPoint(button->width(), button->height())));
        }));
    }

    void choosingAVariableReplacesAviAndPlacesTheCaretByTheCaption()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            CommandTextBox* box = dialog.commandBox();
            typeCommand(dialog, QStringLiteral("mkv"), QStringLiteral("x  y"));
            box->setSelection(2, 0);
            dialog.variablesMenu()->actions().at(4)->trigger();
            QCOMPARE(box->commandText(), QStringLiteral("x $fs-mkv-001$ y"));
            QCOMPARE(box->selectionStart(), 2 + 12);
            // Recoloured: the variable maroon, the line bold.
            const ColouredText shown = box->colouredText();
            QCOMPARE(shown.formats().at(2).colour, TextColour::Maroon);
            QVERIFY(shown.formats().at(0).bold);

            // A longer extension: the caret still moves by the caption's length.
            typeCommand(dialog, QStringLiteral("mpeg"), QString());
            box->setSelection(0, 0);
            dialog.variablesMenu()->actions().at(6)->trigger();
            QCOMPARE(box->commandText(), QStringLiteral("$fs-mpeg-all$x $fs-mkv-001$ y"));
            QCOMPARE(box->selectionStart(), 12);

            // An empty extension box; a selection is replaced.
            typeCommand(dialog, QString(), QString());
            box->setSelection(13, 1);
            dialog.variablesMenu()->actions().at(6)->trigger();
            QCOMPARE(box->commandText(), QStringLiteral("$fs-mpeg-all$$fs--all$ $fs-mkv-001$ y"));
            QCOMPARE(box->selectionStart(), 13 + 12);
            QCOMPARE(box->selectionLength(), 0);
        }));
    }

    void theHelpPaneShowsTheHighlightedVariable()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            auto* help = control<QTextBrowser>(&dialog, "lblHelp");
            dialog.variablesMenu()->actions().at(0)->hover();
            QCOMPARE(help->toPlainText(),
                     QStringLiteral("Menu mode required : FILE\nDescription : Path of the first "
                                    "selected file\nComments : You can change the number"));
            dialog.variablesMenu()->actions().at(33)->trigger();
            QVERIFY(help->toPlainText().startsWith(QStringLiteral("Menu mode required : -")));

            // The rich-text help: the warning red, "here" green, underlined and bold.
            dialog.variablesMenu()->actions().at(32)->hover();
            const QString plain = help->toPlainText();
            QVERIFY(plain.startsWith(QStringLiteral("Menu mode required : -")));
            QVERIFY(!plain.contains(QLatin1Char('\\')));
            QTextCursor here = help->document()->find(QStringLiteral("here"));
            QVERIFY(!here.isNull());
            const QTextCharFormat hereFormat = here.charFormat();
            QCOMPARE(hereFormat.foreground().color(), QColor(0, 128, 0));
            QVERIFY(hereFormat.fontUnderline());
            QVERIFY(hereFormat.fontWeight() >= QFont::Bold);
            QTextCursor attention = help->document()->find(QStringLiteral("ATTENTION"));
            QCOMPARE(attention.charFormat().foreground().color(), QColor(255, 0, 0));
        }));
    }

    void theHelpOfThePointedVariableShowsBesideTheOpenMenu()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            QMenu* menu = dialog.variablesMenu();
            menu->popup(QPoint(40, 40));
            QTRY_VERIFY(menu->isVisible());
            auto* beside = dialog.findChild<VariableHelpPopup*>(QStringLiteral("lblVariableHelp"));
            QVERIFY(beside);
            QAction* entry = menu->actions().at(0);
            entry->hover();
            QVERIFY(beside->isVisible());
            QCOMPARE(beside->text(), control<QTextBrowser>(&dialog, "lblHelp")->toPlainText());
            // Nothing of it lies under the menu, and it stands level with the entry.
            QVERIFY(!beside->geometry().intersects(menu->geometry()));
            QCOMPARE(beside->geometry().top(), menu->mapToGlobal(menu->actionGeometry(entry).topLeft()).y());
            // The rich help of another entry replaces it.
            menu->actions().at(32)->hover();
            QVERIFY(beside->text().startsWith(QStringLiteral("Menu mode required : -")));
            QVERIFY(!beside->geometry().intersects(menu->geometry()));
            menu->hide();
            QVERIFY(!beside->isVisible());
        }));
    }

    void theHelpBoxGoesLeftOfTheMenuWhenTheRightHasNoRoom()
    {
        const QRect screen(0, 0, 1000, 800);
        const QSize size(300, 100);
        // Room on the right: beside it, level with the entry.
        QCOMPARE(VariableHelpPopup::placeBeside(QRect(100, 50, 200, 600), QRect(100, 120, 200, 20), size, screen),
                 QRect(QPoint(302, 120), size));
        // None on the right: left of the menu.
        QCOMPARE(VariableHelpPopup::placeBeside(QRect(650, 50, 200, 600), QRect(650, 120, 200, 20), size, screen),
                 QRect(QPoint(348, 120), size));
        // An entry near the bottom keeps the box on the screen.
        QCOMPARE(VariableHelpPopup::placeBeside(QRect(100, 50, 200, 750), QRect(100, 770, 200, 20), size, screen),
                 QRect(QPoint(302, 700), size));
    }

    void unknownVariablesAreUnderlinedAndSayWhyWhenPointedAt()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [](CommandEditorDialog& dialog) {
            CommandTextBox* box = dialog.commandBox();
            typeCommand(dialog, QStringLiteral("txt"), QStringLiteral("x $fz-001$ $fs-001$"));
            QTRY_COMPARE(box->unknownVariables().size(), 1);
            const QList<QTextEdit::ExtraSelection> marks = box->extraSelections();
            QCOMPARE(marks.size(), 1);
            QCOMPARE(marks.at(0).cursor.selectionStart(), 2);
            QCOMPARE(marks.at(0).cursor.selectionEnd(), 10);
            QCOMPARE(marks.at(0).format.underlineStyle(), QTextCharFormat::WaveUnderline);
            // The colours stay the colouring's: the unknown variable looks like the known one.
            const ColouredText shown = box->colouredText();
            QCOMPARE(shown.formats().at(2).colour, shown.formats().at(11).colour);
            QCOMPARE(shown.formats().at(2).bold, shown.formats().at(11).bold);
            // Pointed at, the mark tells what the Problems panel tells.
            const QRect unknown = box->cursorRect(markCursor(box, 5));
            QCOMPARE(box->unknownVariableAt(unknown.center() + QPoint(2, 0)),
                     QStringLiteral("unknown variable \"$fz-001$\""));
            const QRect known = box->cursorRect(markCursor(box, 14));
            QCOMPARE(box->unknownVariableAt(known.center() + QPoint(2, 0)), QString());
            // Corrected, the mark goes.
            box->setSelection(5, 0);
            QTest::keyClick(box, Qt::Key_Backspace);
            QTest::keyClicks(box, QStringLiteral("s"));
            QCOMPARE(box->commandText(), QStringLiteral("x $fs-001$ $fs-001$"));
            QTRY_VERIFY(box->unknownVariables().isEmpty());
            QVERIFY(box->extraSelections().isEmpty());
            // A text set whole (a script loaded, the editor opened) is marked as well.
            box->setCommandText(QStringLiteral("$a$ $fs-001$||$b$"));
            QTRY_COMPARE(box->extraSelections().size(), 2);
            box->setCommandText(QString());
            QTRY_VERIFY(box->extraSelections().isEmpty());
        }));
    }

    void loadingAScriptAsksEachParameterAndWritesTheCall()
    {
        const QString script
            = writeScript(sandbox().programFolder(), QStringLiteral("myscript.tvp"),
                          texts({ "rem header", "[VAR]", "source", "", ".comment", "target", "[/Var]", "after" }));
        sandbox().prompts().fileNames = { script };
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QStringList asked;
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [&](CommandEditorDialog& dialog) {
            dialog.setValuePrompt([&asked](const QString& prompt, const QString& description) {
                asked.append(prompt + QLatin1Char('|') + description);
                return asked.size() == 1 ? QStringLiteral("$fs-001$") : QStringLiteral("#pop#");
            });
            QTest::mouseClick(control<QPushButton>(&dialog, "cmdLoadScript"), Qt::LeftButton);
            QCOMPARE(
                dialog.commandBox()->commandText(),
                QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe $exepath$\\MYSCRIPT.TVP 001=$fs-001$ 002=#pop#"));
            // Recoloured: the runner green, the parameter numbers navy, the variable maroon.
            const ColouredText shown = dialog.commandBox()->colouredText();
            QCOMPARE(shown.formats().at(0).colour, TextColour::Green);
            const int first = int(shown.text().indexOf(QStringLiteral("001=")));
            QCOMPARE(shown.formats().at(std::size_t(first)).colour, TextColour::Navy);
            QCOMPARE(shown.formats().at(std::size_t(first + 4)).colour, TextColour::Maroon);
        }));
        QCOMPARE(asked,
                 texts({ "Enter source value :|source - myscript.tvp", "Enter target value :|target - myscript.tvp" }));
        const auto& request = sandbox().prompts().fileRequests.last();
        QCOMPARE(request.title, QStringLiteral("Select a Tolvexer script ..."));
        QVERIFY(request.filter.contains(QStringLiteral("*.tvs")));
        QVERIFY(request.filter.contains(QStringLiteral("*.tvp")));
    }

    void twoScriptsInTurnAndOneFromAnotherFolder()
    {
        const QString first
            = writeScript(sandbox().programFolder(), QStringLiteral("one.tvs"), texts({ "[var]", "a", "[/var]" }));
        const QString elsewhere = sandbox().menuFolder() + QStringLiteral("/scripts");
        const QString second = writeScript(elsewhere, QStringLiteral("two.tvp"), texts({ "[var]", "b", "[/var]" }));
        sandbox().prompts().fileNames = { first, second };
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [&](CommandEditorDialog& dialog) {
            dialog.setValuePrompt([](const QString&, const QString&) { return QStringLiteral("v"); });
            auto* load = control<QPushButton>(&dialog, "cmdLoadScript");
            QTest::mouseClick(load, Qt::LeftButton);
            QTest::mouseClick(load, Qt::LeftButton);
            const QString runner = QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe ");
            QCOMPARE(dialog.commandBox()->commandText(),
                     runner + QStringLiteral("$exepath$\\ONE.TVS 001=v") + crlf + crlf + runner
                         + QDir::toNativeSeparators(second).toUpper() + QStringLiteral(" 001=v"));
            click(dialog, "cmdAdd");
        }));
        QVERIFY(sandbox().window().state().document(1).items.at(0).commands.at(1).command.contains(
            QStringLiteral("001=v||$exepath$")));
    }

    void aScriptWithoutTheEndOfItsBlockIsReportedAndKeepsWhatWasAppended()
    {
        const QString script
            = writeScript(sandbox().programFolder(), QStringLiteral("open.tvs"), texts({ "[var]", "a" }));
        const QString noBlock = writeScript(sandbox().programFolder(), QStringLiteral("none.tvs"), texts({ "x" }));
        sandbox().prompts().fileNames = { script, noBlock, QString() };
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QVERIFY(chooseAndDrive(QStringLiteral("mnuAddCommand"), [&](CommandEditorDialog& dialog) {
            dialog.setValuePrompt([](const QString&, const QString&) { return QStringLiteral("1"); });
            auto* load = control<QPushButton>(&dialog, "cmdLoadScript");
            QTest::mouseClick(load, Qt::LeftButton);
            QCOMPARE(dialog.commandBox()->commandText(),
                     QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe $exepath$\\OPEN.TVS 001=1"));
            QTest::mouseClick(load, Qt::LeftButton);
            QVERIFY(dialog.commandBox()->commandText().endsWith(crlf + crlf
                                                                + QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe "
                                                                                 "$exepath$\\NONE.TVS")));
            // A cancelled file dialog changes nothing.
            const QString before = dialog.commandBox()->commandText();
            QTest::mouseClick(load, Qt::LeftButton);
            QCOMPARE(dialog.commandBox()->commandText(), before);
        }));
        MessageRequest error;
        error.text = QStringLiteral("Error 62 : Input past end of file (loadScript)");
        error.icon = MessageRequest::Icon::Critical;
        QCOMPARE(sandbox().prompts().messages, QList<MessageRequest>({ error, error }));
    }

    void theParameterPromptAcceptsCancelsAndOffersVariables()
    {
        InputForm form(QStringLiteral("Enter source value :"), QStringLiteral("source - x.tvp"), QStringLiteral("mkv"),
                       nullptr);
        QCOMPARE(form.objectName(), QStringLiteral("inputForm"));
        QCOMPARE(control<QLabel>(&form, "descriptionCaption")->text(), QStringLiteral("Enter source value :"));
        QCOMPARE(form.windowTitle(), QStringLiteral("source - x.tvp"));
        QVERIFY(control<QPushButton>(&form, "cmdOK"));
        QVERIFY(control<QPushButton>(&form, "cmdCancel"));
        QVERIFY(control<QPushButton>(&form, "Command3"));
        QCOMPARE(form.variablesMenu()->objectName(), QStringLiteral("mnuVarName"));
        QCOMPARE(form.variablesMenu()->actions().size(), 34);
        form.show();
        auto* valueBox = control<QLineEdit>(&form, "valueBox");
        QTest::keyClicks(valueBox, QStringLiteral("v="));
        form.variablesMenu()->actions().at(24)->trigger();
        QCOMPARE(valueBox->text(), QStringLiteral("v=$fs-wp-mkv-001$"));
        QTest::keyClick(valueBox, Qt::Key_Return);
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(form.value(), QStringLiteral("v=$fs-wp-mkv-001$"));

        InputForm cancelled(QStringLiteral("p"), QStringLiteral("d"), QString(), nullptr);
        cancelled.show();
        QTest::mouseClick(control<QPushButton>(&cancelled, "cmdCancel"), Qt::LeftButton);
        QCOMPARE(cancelled.result(), int(QDialog::Rejected));
    }
};

QTEST_MAIN(TestCommandEditor)
#include "test_commandeditor.moc"

#include "guisandbox.h"
#include "menutexts.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "app/menufiles.h"
#include "app/problemspanel.h"
#include "core/aboutinfo.h"
#include "core/helplauncher.h"
#include "core/languageconfig.h"
#include "core/optionsstore.h"
#include "menufile/menufilereader.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScreen>
#include <QSet>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>

namespace {

using Answer = UserPrompts::Answer;

/// The entries of `menu` as "name|text shown", separators as "name|-", submenus followed by their own
/// entries indented by two blanks.
QStringList menuLayout(const QMenu* menu, const QString& indent = QString())
{
    QStringList layout;
    const QList<QAction*> actions = menu->actions();
    for (const QAction* action : actions) {
        const QString caption = action->isSeparator() ? QStringLiteral("-") : MenuTexts::visible(action->text());
        layout.append(indent + action->objectName() + QLatin1Char('|') + caption);
        if (action->menu()) {
            layout += menuLayout(action->menu(), indent + QStringLiteral("  "));
        }
    }
    return layout;
}

/// The File and Window entries that need an editor window to act on.
const QStringList windowEntries
    = { QStringLiteral("mnuSaveAs"), QStringLiteral("mnuClose"), QStringLiteral("mnuCascade"),
        QStringLiteral("mnuHorizontal"), QStringLiteral("mnuVertical") };

/// The captions of the visible window-menu entries, in menu order.
QStringList visibleWindowEntries(MainWindow& window)
{
    QStringList captions;
    const QList<QAction*> actions = window.findChild<QMenu*>(QStringLiteral("mnuWindow"))->actions();
    for (const QAction* action : actions) {
        if (action->objectName().startsWith(QLatin1String("mnuWindowName")) && action->isVisible()) {
            captions.append(MenuTexts::visible(action->text()));
        }
    }
    return captions;
}

/// The captions of the open editor windows, by document index.
QStringList editorCaptions(MainWindow& window)
{
    QStringList captions;
    for (const qint16 index : window.state().openDocumentIndexes()) {
        captions.append(window.editor(index)->caption());
    }
    return captions;
}

QMdiArea* mdiArea(MainWindow& window)
{
    return window.findChild<QMdiArea*>();
}

QMdiSubWindow* frameOf(EditorWindow* editor)
{
    return qobject_cast<QMdiSubWindow*>(editor->parentWidget());
}

MessageRequest critical(const QString& text, const QString& details = QString())
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.details = details;
    return request;
}

MessageRequest exclamation(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    return request;
}

/// The refusal of a menu whose first item's caption holds a line break ("a" LF "b").
QString lineBreakRefusal(const QString& caption = QString())
{
    const QString problem = QStringLiteral("\"a\\nb\": caption holds a line break");
    return QStringLiteral("This menu cannot be saved: a menu file cannot hold the values below, so nothing was "
                          "written.\r\nChange them and save again.\r\n\r\n")
        + (caption.isEmpty() ? QStringLiteral("    ") + problem
                             : QStringLiteral("    ") + caption + QStringLiteral(":\r\n        ") + problem);
}

MessageRequest saveQuestion(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNoCancel;
    return request;
}

/// What an edit does to a document as far as closing is concerned: it changes and is not saved.
void editDocument(MainWindow& window, qint16 index, const QString& newCaption)
{
    MenuDocument& document = window.state().document(index);
    document.items[0].caption = newCaption;
    document.saved = false;
}

QString firstCaptionInFile(const QString& path)
{
    MenuDocument document;
    if (!readMenuFile(path, document).ok() || document.items.isEmpty()) {
        return QString();
    }
    return document.items.constFirst().caption;
}

/// A file name as long as a file system allows (255 bytes). The file itself can be made, but no
/// temporary file with a longer name can be placed beside it, so a safe save over it always fails,
/// whatever rights the tests run with.
QString longestFileName()
{
    return QString(251, QLatin1Char('m')) + QStringLiteral(".ini");
}

void sendDrop(MainWindow& window, const QStringList& paths)
{
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(path));
    }
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);
}

/// Once the Options dialog shows, ticks "hide copy-command items" and presses `buttonName`.
void answerOptionsDialog(const QString& buttonName)
{
    QTimer::singleShot(0, qApp, [buttonName]() {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || dialog->objectName() != QLatin1String("frmOptions")) {
            return;
        }
        dialog->findChild<QCheckBox*>(QStringLiteral("chkHideItemsCopyCommand"))->setChecked(true);
        dialog->findChild<QPushButton*>(buttonName)->click();
    });
}

/// The tree of document `index` matches its hide mode (root text, the Hide marks), every item node
/// names an item, and a click on each node selects it and shows its path.
void checkEveryNode(MainWindow& window, qint16 index)
{
    EditorWindow* editor = window.editor(index);
    QVERIFY(editor);
    ItemTree* tree = editor->tree();
    const MenuDocument& document = window.state().document(index);
    QVERIFY(tree->nodeCount() >= 1);
    QCOMPARE(tree->textOf(tree->node(1)), HideMode::rootText(document.hideMode));
    const HideMode::Marks marks = HideMode::marksFor(document.hideMode);
    QCOMPARE(window.findChild<QAction*>(QStringLiteral("mnuHideCopies"))->isChecked(), marks.copies);
    QCOMPARE(window.findChild<QAction*>(QStringLiteral("mnuHideWCommand"))->isChecked(), marks.withoutCommand);
    QCOMPARE(window.findChild<QAction*>(QStringLiteral("mnuHideBoth"))->isChecked(), marks.both);
    for (int node = 2; node <= tree->nodeCount(); ++node) {
        QVERIFY(findItemByKey(document, tree->keyOf(tree->node(node))) >= 0);
        editor->lstMenu_NodeClick(tree->node(node));
        QCOMPARE(tree->currentIndex(), tree->node(node));
        QCOMPARE(editor->findChild<QLabel*>(QStringLiteral("lblPath"))->text(), tree->fullPath(tree->node(node)));
    }
}

/// Counts the events of one type a watched object receives.
class EventCounter : public QObject
{
public:
    EventCounter(QEvent::Type type, int& count)
        : m_type(type)
        , m_count(count)
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == m_type) {
            ++m_count;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QEvent::Type m_type;
    int& m_count;
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menusHoldEveryEntryInOrder()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QCOMPARE(window.objectName(), QStringLiteral("frmMain"));
        QCOMPARE(window.windowTitle(), QStringLiteral("KELV Menu Editor"));

        QStringList bar;
        const QList<QAction*> barActions = window.menuBar()->actions();
        for (const QAction* action : barActions) {
            bar.append(action->menu()->objectName() + QLatin1Char('|') + action->text());
        }
        QCOMPARE(bar,
                 QStringList({ QStringLiteral("mnuFile|&File"), QStringLiteral("mnuEdit|&Edit"),
                               QStringLiteral("mnuView|&View"), QStringLiteral("mnuWindow|&Window"),
                               QStringLiteral("mnuH|&Help") }));
        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuView"))),
                 QStringList({ QStringLiteral("mnuProblems|Problems") }));

        QStringList file = {
            QStringLiteral("mnuNew|New"),   QStringLiteral("mnuOpen|Open"),          QStringLiteral("Tire01|-"),
            QStringLiteral("mnuSave|Save"), QStringLiteral("mnuSaveAs|Save as ..."), QStringLiteral("mnuClose|Close"),
            QStringLiteral("Tire11|-"),     QStringLiteral("mnuOptions|Options"),    QStringLiteral("Tire02|-")
        };
        for (int entry = 0; entry < 10; ++entry) {
            file.append(QStringLiteral("mnuRecent") + QString::number(entry) + QLatin1Char('|'));
        }
        file += { QStringLiteral("Tire03|-"), QStringLiteral("mnuQuit|Quit") };
        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuFile"))), file);

        const QStringList edit = { QStringLiteral("mnuUndo|Undo"),
                                   QStringLiteral("mnuRedo|Redo"),
                                   QStringLiteral("Tire04|-"),
                                   QStringLiteral("mnuNewItem|New Item"),
                                   QStringLiteral("mnuNewSubItem|New Sub-item"),
                                   QStringLiteral("mnuRename|Rename"),
                                   QStringLiteral("mnuSpecial|Special items"),
                                   QStringLiteral("  mnuSpecialItems0|$audiostream$"),
                                   QStringLiteral("  mnuSpecialItems1|$subtitlestream$"),
                                   QStringLiteral("  mnuSpecialItems2|$selectedfile$"),
                                   QStringLiteral("Tire08|-"),
                                   QStringLiteral("mnuCut|Cut"),
                                   QStringLiteral("mnuCopy|Copy"),
                                   QStringLiteral("mnuPaste|Paste"),
                                   QStringLiteral("mnuDuplicate|Duplicate"),
                                   QStringLiteral("mnuDelete|Delete"),
                                   QStringLiteral("mnuMove|Move"),
                                   QStringLiteral("  mnuMoveUp|Move up"),
                                   QStringLiteral("  mnuMoveDown|Move down"),
                                   QStringLiteral("  mnuMoveIntoItemAbove|Move into the item above"),
                                   QStringLiteral("  mnuMoveOutOfParent|Move out of the parent"),
                                   QStringLiteral("mnuReplace|Replace"),
                                   QStringLiteral("mnuFind|Find..."),
                                   QStringLiteral("Tire05|-"),
                                   QStringLiteral("mnuSelectCopy|Select an item to copy"),
                                   QStringLiteral("mnuLFCopyCommand|Look for CopyCommand"),
                                   QStringLiteral("mnuUncheckCopyCommand|Uncheck all CopyCommand"),
                                   QStringLiteral("Tire10|-"),
                                   QStringLiteral("mnuCopyComDup|CopyCommand at Duplication"),
                                   QStringLiteral("mnuRefresh|Refresh List"),
                                   QStringLiteral("mnuHide|Hide items"),
                                   QStringLiteral("  mnuHideCopies|... copied"),
                                   QStringLiteral("  mnuHideWCommand|... without command"),
                                   QStringLiteral("  mnuHideBoth|... both") };
        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuEdit"))), edit);

        const QStringList windowMenu
            = { QStringLiteral("mnuCascade|Cascade"), QStringLiteral("mnuHorizontal|Tile Hozizontal"),
                QStringLiteral("mnuVertical|Tile Vertical"), QStringLiteral("Tire09|-"),
                QStringLiteral("mnuWindowName0|window1") };
        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuWindow"))), windowMenu);

        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuH"))),
                 QStringList({ QStringLiteral("mnuHelp|Help"), QStringLiteral("mnuAbout|About"),
                               QStringLiteral("mnuAboutQt|About Qt") }));

        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuCommand"))),
                 QStringList({ QStringLiteral("mnuAddCommand|Add"), QStringLiteral("mnuEditCommand|Edit"),
                               QStringLiteral("mnuRemoveCommand|Remove"), QStringLiteral("mnuClearCommands|Clear") }));
        QCOMPARE(menuLayout(window.findChild<QMenu*>(QStringLiteral("mnuNodes"))),
                 QStringList({ QStringLiteral("mnuNodesInsertSub|Insert as subitem of"),
                               QStringLiteral("  mnuItemCopy|Copy"), QStringLiteral("  mnuItemMove|Move"),
                               QStringLiteral("mnuNodesInsertNext|Insert next to"),
                               QStringLiteral("  mnuNextItemCopy|Copy"), QStringLiteral("  mnuNextItemMove|Move") }));
        // The pop-up menus are not on the menu bar.
        for (const QAction* action : barActions) {
            QVERIFY(action->menu()->objectName() != QLatin1String("mnuCommand"));
            QVERIFY(action->menu()->objectName() != QLatin1String("mnuNodes"));
        }
    }

    void everyMenuEntryHasAnAccessKeyOfItsOwn()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        // Entries whose captions come from files and items get their keys from their texts.
        window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("tom & jerry.ini")),
                        QStringLiteral("tom & jerry.ini"));
        window.mnuNew_Click();
        // Files and windows whose names begin alike, and like fixed entries ("Save as", "Cascade").
        for (const QString& name :
             { QStringLiteral("archive-tools.ini"), QStringLiteral("another.ini"), QStringLiteral("cascade.ini") }) {
            window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini"), name), name);
        }
        window.setMenuPopup([](QMenu*, const QPoint&) {});
        window.popupDropMenu(QStringLiteral("Pack & go"), QStringLiteral("Packing"), true, QPoint());

        QList<const QMenu*> menus = { window.findChild<QMenu*>(QStringLiteral("mnuCommand")),
                                      window.findChild<QMenu*>(QStringLiteral("mnuNodes")),
                                      window.findChild<QMenu*>(QStringLiteral("mnuTreeNode")) };
        const QList<QAction*> barActions = window.menuBar()->actions();
        for (const QAction* action : barActions) {
            menus.append(action->menu());
        }
        QStringList keys;
        for (const QAction* action : barActions) {
            keys.append(MenuTexts::accessKey(action->text()));
        }
        QCOMPARE(keys.size(), int(QSet<QString>(keys.begin(), keys.end()).size()));
        for (int m = 0; m < menus.size(); ++m) {
            const QMenu* menu = menus.at(m);
            const QList<QAction*> actions = menu->actions();
            QStringList fixedKeys;
            for (const QAction* action : actions) {
                if (action->isSeparator() || !action->isVisible()) {
                    continue;
                }
                const QString name = action->objectName();
                const QChar key = MenuTexts::accessKey(action->text());
                QVERIFY2(!key.isNull(), qPrintable(name + QLatin1Char('|') + action->text()));
                if (action->menu()) {
                    menus.append(action->menu());
                }
                // Entries whose captions come from files and items take keys no other entry has.
                QVERIFY2(!fixedKeys.contains(key), qPrintable(name + QStringLiteral(": ") + key));
                fixedKeys.append(key);
            }
        }
        // What comes from files and items shows as written.
        QCOMPARE(MenuTexts::visible(sandbox.action(QStringLiteral("mnuWindowName1"))->text()),
                 QStringLiteral("tom & jerry.ini"));
        QCOMPARE(MenuTexts::visible(sandbox.action(QStringLiteral("mnuRecent3"))->text()),
                 sandbox.menuPath(QStringLiteral("tom & jerry.ini")));
        // A file named like a fixed entry takes another letter of its name.
        QCOMPARE(MenuTexts::accessKey(sandbox.action(QStringLiteral("mnuRecent2"))->text()), QLatin1Char('r'));
        QCOMPARE(MenuTexts::visible(window.findChild<QMenu*>(QStringLiteral("mnuNodesInsertSub"))->title()),
                 QStringLiteral("Pack & go"));
        // The special items hand on their text without the key.
        QCOMPARE(sandbox.action(QStringLiteral("mnuSpecialItems2"))->data().toString(),
                 QStringLiteral("$selectedfile$"));
        QCOMPARE(MenuTexts::visible(sandbox.action(QStringLiteral("mnuSpecialItems2"))->text()),
                 QStringLiteral("$selectedfile$"));
    }

    void entriesFollowTheActiveDocumentAndItsSelection()
    {
        GuiSandbox sandbox;
        // Need an item selected, or at least an open document.
        const QStringList itemEntries = { QStringLiteral("mnuNewItem"),       QStringLiteral("mnuRename"),
                                          QStringLiteral("mnuDelete"),        QStringLiteral("mnuSelectCopy"),
                                          QStringLiteral("mnuCut"),           QStringLiteral("mnuCopy"),
                                          QStringLiteral("mnuDuplicate"),     QStringLiteral("mnuSpecialItems0"),
                                          QStringLiteral("mnuSpecialItems1"), QStringLiteral("mnuSpecialItems2"),
                                          QStringLiteral("mnuAddCommand"),    QStringLiteral("mnuEditCommand"),
                                          QStringLiteral("mnuRemoveCommand"), QStringLiteral("mnuClearCommands") };
        const QStringList documentEntries
            = { QStringLiteral("mnuReplace"),       QStringLiteral("mnuFind"),
                QStringLiteral("mnuLFCopyCommand"), QStringLiteral("mnuUncheckCopyCommand"),
                QStringLiteral("mnuRefresh"),       QStringLiteral("mnuHideCopies"),
                QStringLiteral("mnuHideWCommand"),  QStringLiteral("mnuHideBoth") };
        const auto expectEnabled = [&sandbox](const QStringList& names, bool enabled, int stage = 0) {
            for (const QString& name : names) {
                QAction* entry = sandbox.action(name);
                QVERIFY2(entry, qPrintable(name));
                QVERIFY2(entry->isEnabled() == enabled, qPrintable(name + QString::number(stage)));
            }
        };
        expectEnabled(itemEntries, false);
        expectEnabled(documentEntries, false);
        expectEnabled({ QStringLiteral("mnuUndo"), QStringLiteral("mnuRedo"), QStringLiteral("mnuPaste") }, false);

        // A new menu shows its first item: everything that needs an item is on.
        sandbox.window().mnuNew_Click();
        expectEnabled(itemEntries, true, 1);
        expectEnabled(documentEntries, true, 1);
        // Paste waits for the first Copy or Cut, and then stays on.
        expectEnabled({ QStringLiteral("mnuPaste") }, false, 1);
        sandbox.trigger(QStringLiteral("mnuCopy"));
        expectEnabled({ QStringLiteral("mnuPaste") }, true, 1);

        // The root belongs to no item.
        EditorWindow* editor = sandbox.window().activeEditor();
        editor->tree()->setCurrentIndex(editor->tree()->node(1));
        expectEnabled(itemEntries, false, 2);
        expectEnabled(documentEntries, true, 2);

        // With the last window closed nothing is left to act on.
        sandbox.prompts().answers = { UserPrompts::Answer::No };
        QVERIFY(editor->closeWindow());
        expectEnabled(itemEntries, false, 3);
        expectEnabled(documentEntries, false, 3);
        expectEnabled({ QStringLiteral("mnuPaste") }, true, 3);

        const QStringList enabled
            = { QStringLiteral("mnuNew"),   QStringLiteral("mnuOpen"),       QStringLiteral("mnuOptions"),
                QStringLiteral("mnuQuit"),  QStringLiteral("mnuCopyComDup"), QStringLiteral("mnuHelp"),
                QStringLiteral("mnuAbout"), QStringLiteral("mnuAboutQt") };
        expectEnabled(enabled, true);
        expectEnabled(windowEntries, false, 3);
    }

    void noMenuOpenShowsAHintAndTurnsOffTheWindowEntries()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        auto* hint = window.findChild<QLabel*>(QStringLiteral("lblNoMenu"));
        QVERIFY(hint);
        QVERIFY(hint->isVisible());
        QVERIFY(hint->text().contains(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText)));
        QVERIFY(hint->text().contains(QStringLiteral(".ini")));
        // It covers the area and lets drops and clicks through to it.
        QCOMPARE(hint->geometry(), mdiArea(window)->viewport()->rect());
        QVERIFY(hint->testAttribute(Qt::WA_TransparentForMouseEvents));
        for (const QString& name : windowEntries) {
            QVERIFY2(!sandbox.action(name)->isEnabled(), qPrintable(name));
        }

        window.mnuNew_Click();
        QVERIFY(!hint->isVisible());
        for (const QString& name : windowEntries) {
            QVERIFY2(sandbox.action(name)->isEnabled(), qPrintable(name));
        }
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::No, Answer::No };
        QVERIFY(window.activeEditor()->closeWindow());
        QTRY_VERIFY(window.activeEditor() != nullptr);
        QVERIFY(!hint->isVisible());
        QVERIFY(sandbox.action(QStringLiteral("mnuCascade"))->isEnabled());
        QVERIFY(window.activeEditor()->closeWindow());
        QVERIFY(hint->isVisible());
        for (const QString& name : windowEntries) {
            QVERIFY2(!sandbox.action(name)->isEnabled(), qPrintable(name));
        }
        // A failed open brings no window, and the hint stays.
        sandbox.prompts().fileNames = { sandbox.menuPath(QStringLiteral("absent.ini")) };
        sandbox.trigger(QStringLiteral("mnuOpen"));
        QVERIFY(hint->isVisible());
        QVERIFY(!sandbox.action(QStringLiteral("mnuSaveAs"))->isEnabled());
    }

    void standardShortcuts()
    {
        GuiSandbox sandbox;
        QCOMPARE(sandbox.action(QStringLiteral("mnuNew"))->shortcut(), QKeySequence(QKeySequence::New));
        QCOMPARE(sandbox.action(QStringLiteral("mnuOpen"))->shortcut(), QKeySequence(QKeySequence::Open));
        QCOMPARE(sandbox.action(QStringLiteral("mnuSave"))->shortcut(), QKeySequence(QKeySequence::Save));
        QCOMPARE(sandbox.action(QStringLiteral("mnuSaveAs"))->shortcut(),
                 QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
        QCOMPARE(sandbox.action(QStringLiteral("mnuClose"))->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_W));
        QVERIFY(!sandbox.action(QStringLiteral("mnuQuit"))->shortcut().isEmpty());
        QCOMPARE(sandbox.action(QStringLiteral("mnuHelp"))->shortcut(), QKeySequence(Qt::Key_F1));
        QCOMPARE(sandbox.action(QStringLiteral("mnuRefresh"))->shortcut(), QKeySequence(Qt::Key_F5));
    }

    void statusBarHasSixPanels()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        for (int panel = 1; panel <= 6; ++panel) {
            QVERIFY(window.findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel)));
        }
        QCOMPARE(window.findChild<QLabel*>(QStringLiteral("pnl6"))->text(), QStringLiteral("(Position ; Children)"));
        window.mnuNew_Click();
        QCOMPARE(window.findChild<QLabel*>(QStringLiteral("pnl4"))->text(), QStringLiteral("1"));
    }

    void startsWithoutDocumentsAndNoActiveDocument()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QCOMPARE(window.state().lastSlot(), qint16(0));
        QCOMPARE(window.activeDocumentIndex(), qint16(0));
        QVERIFY(window.activeDocumentTag().isEmpty());
        QVERIFY(mdiArea(window)->subWindowList().isEmpty());
        QVERIFY(visibleWindowEntries(window).isEmpty());
    }

    void newMenusAreNumberedByEditorsCreated()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QString notMenu = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("notes.ini")), "hello\r\n");
        MainWindow& window = sandbox.window();

        window.mnuNew_Click();
        window.mnuNew_Click();
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("New menu 1"), QStringLiteral("New menu 2") }));
        QCOMPARE(window.activeDocumentTag(), QStringLiteral("2"));

        QVERIFY(window.openMenu(menu, QStringLiteral("archive-tools.ini")) == 3);
        QVERIFY(window.openMenu(notMenu, QStringLiteral("notes.ini")) == 0);
        window.mnuNew_Click();
        QCOMPARE(editorCaptions(window),
                 QStringList({ QStringLiteral("New menu 1"), QStringLiteral("New menu 2"),
                               QStringLiteral("archive-tools.ini"), QStringLiteral("New menu 4") }));
        QCOMPARE(visibleWindowEntries(window), editorCaptions(window));
    }

    void newMenuHoldsOneItem()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        QCOMPARE(index, qint16(1));
        const MenuDocument& document = window.state().document(index);
        QCOMPARE(document.items.size(), 1);
        const MenuItem& item = document.items.constFirst();
        QCOMPARE(item.caption, QStringLiteral("New Item 1"));
        QCOMPARE(item.key, QStringLiteral("E0"));
        QCOMPARE(item.level, qint16(1));
        QCOMPARE(item.parent, qint16(-1));
        QCOMPARE(item.siblingOrder, qint16(1));
        QCOMPARE(item.copyKey, QStringLiteral("-1"));
        QVERIFY(!document.saved);
        QVERIFY(document.filePath.isEmpty());
        QCOMPARE(document.windowIndex, index);

        EditorWindow* editor = window.editor(index);
        QCOMPARE(editor->tree()->nodeCount(), 2);
        QCOMPARE(editor->tree()->currentIndex(), editor->tree()->node(2));
        QCOMPARE(MenuTexts::visible(sandbox.action(QStringLiteral("mnuWindowName1"))->text()),
                 QStringLiteral("New menu 1"));
        QCOMPARE(sandbox.action(QStringLiteral("mnuWindowName1"))->data().toInt(), 1);
    }

    void openingAMenuShowsItUnderItsFileName()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        QCOMPARE(index, qint16(1));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        const MenuDocument& document = window.state().document(index);
        QVERIFY(document.saved);
        QCOMPARE(document.filePath, menu);
        QCOMPARE(document.windowIndex, index);
        QCOMPARE(document.hideMode, 0);
        QCOMPARE(window.editor(index)->caption(), QStringLiteral("archive-tools.ini"));
        QCOMPARE(window.editor(index)->windowTitle(), QStringLiteral("archive-tools.ini[*]"));
        QCOMPARE(visibleWindowEntries(window), QStringList({ QStringLiteral("archive-tools.ini") }));
        QCOMPARE(window.activeDocumentIndex(), index);
        QCOMPARE(window.findChild<QLabel*>(QStringLiteral("pnl4"))->text(), QString::number(document.items.size()));
        QVERIFY(window.editor(index)->tree()->nodeCount() > 1);
    }

    void openingANonMenuFileShowsOnlyTheReadersMessage()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QString notMenu = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("notes.ini")), "hello\r\n");
        MainWindow& window = sandbox.window();
        window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        window.mnuNew_Click();
        const QStringList captionsBefore = editorCaptions(window);
        const auto framesBefore = mdiArea(window)->subWindowList();
        const qint16 activeBefore = window.activeDocumentIndex();

        QCOMPARE(window.openMenu(notMenu, QStringLiteral("notes.ini")), qint16(0));

        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ critical(
                     notMenuFileMessage(), notMenu + QStringLiteral(":1: This is not a valid KELV Menu file !")) }));
        QCOMPARE(sandbox.prompts().messages.constFirst().text, QStringLiteral("This is not a valid KELV Menu file !"));
        QCOMPARE(window.state().lastSlot(), qint16(2));
        QCOMPARE(mdiArea(window)->subWindowList(), framesBefore);
        QCOMPARE(editorCaptions(window), captionsBefore);
        QCOMPARE(visibleWindowEntries(window), captionsBefore);
        QVERIFY(!sandbox.action(QStringLiteral("mnuWindowName3")));
        QCOMPARE(window.activeDocumentIndex(), activeBefore);
        // Nothing of the failed file reaches the recent list.
        QVERIFY(!sandbox.action(QStringLiteral("mnuRecent1"))->isVisible());
    }

    void openingABrokenMenuFileShowsTheOpenError()
    {
        GuiSandbox sandbox;
        // The command line names an item but has no "=".
        const QString broken = GuiSandbox::writeFile(
            sandbox.menuPath(QStringLiteral("broken.ini")),
            GuiSandbox::menuBytes({ QStringLiteral("Archive") }, { QStringLiteral("0001:zip") }));
        MenuDocument probe;
        QCOMPARE(readMenuFile(broken, probe).code, MenuReadResult::Failed);

        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        window.problemsPanel().show();
        // While the user reads the message, nothing of the failed menu is there any more.
        int windowsBehindTheMessage = -1;
        QStringList entriesBehindTheMessage;
        QStringList problemsBehindTheMessage;
        sandbox.prompts().whileShown = [&](const MessageRequest&) {
            windowsBehindTheMessage = int(mdiArea(window)->subWindowList().size());
            entriesBehindTheMessage = visibleWindowEntries(window);
            const auto* list = window.problemsPanel().findChild<QTreeWidget*>();
            for (int row = 0; row < list->topLevelItemCount(); ++row) {
                problemsBehindTheMessage.append(list->topLevelItem(row)->text(0));
            }
        };
        QCOMPARE(window.openMenu(broken, QStringLiteral("broken.ini")), qint16(0));
        QCOMPARE(windowsBehindTheMessage, 1);
        QCOMPARE(entriesBehindTheMessage, QStringList({ QStringLiteral("New menu 1") }));
        QVERIFY2(problemsBehindTheMessage.join(QLatin1Char(' ')).indexOf(QStringLiteral("cannot be saved")) < 0,
                 qPrintable(problemsBehindTheMessage.join(QLatin1Char('|'))));

        const QString expected = QStringLiteral("An error occured while opening the file !\r\n\r\n"
                                                "This is not a valid KELV Menu file\r\n\r\n"
                                                "Contact the developer for further information :\r\n")
            + contactLines();
        QCOMPARE(
            sandbox.prompts().messages,
            QList<MessageRequest>({ critical(expected, broken + QStringLiteral(":11: command line has no \"=\"")) }));
        QCOMPARE(window.state().lastSlot(), qint16(1));
        QCOMPARE(mdiArea(window)->subWindowList().size(), 1);
        QCOMPARE(visibleWindowEntries(window), QStringList({ QStringLiteral("New menu 1") }));
        QCOMPARE(window.activeDocumentIndex(), qint16(1));
    }

    void openDialogAsksForAMenuFile()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        sandbox.prompts().fileNames = { menu };
        sandbox.action(QStringLiteral("mnuOpen"))->trigger();
        QCOMPARE(sandbox.prompts().fileRequests.size(), 1);
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().title, QStringLiteral("Select a menu file ..."));
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().filter, QStringLiteral("Menu File (*.ini)"));
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("archive-tools.ini") }));

        // Leaving the dialog without a file opens nothing.
        sandbox.action(QStringLiteral("mnuOpen"))->trigger();
        QCOMPARE(window.state().lastSlot(), qint16(1));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void openedMenusStartWithTheHideModeOfTheOptions_data()
    {
        QTest::addColumn<int>("copies");
        QTest::addColumn<int>("withoutCommand");
        QTest::addColumn<int>("hideMode");
        QTest::addColumn<QString>("marks");
        QTest::newRow("none") << 0 << 0 << 0 << QStringLiteral("---");
        QTest::newRow("copies") << 1 << 0 << 1 << QStringLiteral("C--");
        QTest::newRow("without command") << 0 << 1 << 2 << QStringLiteral("-W-");
        QTest::newRow("both") << 1 << 1 << 3 << QStringLiteral("CWB");
    }

    void openedMenusStartWithTheHideModeOfTheOptions()
    {
        QFETCH(int, copies);
        QFETCH(int, withoutCommand);
        QFETCH(int, hideMode);
        QFETCH(QString, marks);
        GuiSandbox sandbox;
        Options options;
        options.hideItemsCopyCommand = qint16(copies);
        options.hideItemsWithoutCommand = qint16(withoutCommand);
        sandbox.optionsStore().saveOptions(options);
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        QCOMPARE(window.state().document(index).hideMode, hideMode);
        QString shown;
        shown += sandbox.action(QStringLiteral("mnuHideCopies"))->isChecked() ? QLatin1Char('C') : QLatin1Char('-');
        shown += sandbox.action(QStringLiteral("mnuHideWCommand"))->isChecked() ? QLatin1Char('W') : QLatin1Char('-');
        shown += sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked() ? QLatin1Char('B') : QLatin1Char('-');
        QCOMPARE(shown, marks);
        // A new menu starts with everything shown, whatever the options say.
        window.mnuNew_Click();
        QCOMPARE(window.state().document(window.activeDocumentIndex()).hideMode, 0);
    }

    void copyCommandOptionLinksIdenticalCommandListsOnOpen()
    {
        GuiSandbox sandbox;
        Options options;
        options.checkCopyCommand = 1;
        sandbox.optionsStore().saveOptions(options);
        const QString menu
            = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("twins.ini")),
                                    GuiSandbox::menuBytes({ QStringLiteral("First"), QStringLiteral("Second") },
                                                          { QStringLiteral("0001:txt=notepad $fs-001$"),
                                                            QStringLiteral("0002:txt=notepad $fs-001$") }));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("twins.ini"));
        const MenuDocument& document = window.state().document(index);
        QVERIFY(!document.items.at(0).copiesCommands);
        QVERIFY(document.items.at(1).copiesCommands);
        QCOMPARE(document.items.at(1).copyKey, QStringLiteral("E0"));
    }

    void closingAnUnchangedOpenedMenuNeverAsks()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        QVERIFY(window.editor(index)->closeWindow());
        QVERIFY(sandbox.prompts().messages.isEmpty());
        QVERIFY(!window.editor(index));
        QVERIFY(visibleWindowEntries(window).isEmpty());
        QCOMPARE(window.activeDocumentIndex(), qint16(0));
        // The slot stays, so indices of later documents never shift.
        QCOMPARE(window.state().lastSlot(), qint16(1));
        window.mnuNew_Click();
        QCOMPARE(window.activeDocumentIndex(), qint16(2));
    }

    void closingANewUntouchedMenuAsks()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::No };
        QVERIFY(window.editor(1)->closeWindow());
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ saveQuestion(QStringLiteral("Do you want to save changes ?")) }));
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
        QVERIFY(!window.editor(1));
    }

    void cancelAtTheCloseQuestionKeepsTheWindow()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::Cancel };
        QVERIFY(!window.editor(1)->closeWindow());
        QVERIFY(window.editor(1));
        QCOMPARE(visibleWindowEntries(window), QStringList({ QStringLiteral("New menu 1") }));
        QCOMPARE(mdiArea(window)->subWindowList().size(), 1);
        QCOMPARE(window.activeDocumentIndex(), qint16(1));
    }

    void noAtTheCloseQuestionWritesNothing()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, index, QStringLiteral("Changed"));
        sandbox.prompts().answers = { Answer::No };
        QVERIFY(window.editor(index)->closeWindow());
        QCOMPARE(GuiSandbox::readFile(menu), before);
        QVERIFY(!window.editor(index));
    }

    void yesAtTheCloseQuestionWritesToTheMenusFile()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, index, QStringLiteral("Changed"));
        sandbox.prompts().answers = { Answer::Yes };
        QVERIFY(window.editor(index)->closeWindow());
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
        QCOMPARE(firstCaptionInFile(menu), QStringLiteral("Changed"));
        QVERIFY(!window.editor(index));
    }

    void yesAtTheCloseQuestionOfANewMenuAsksForAName()
    {
        GuiSandbox sandbox;
        const QString target = sandbox.menuPath(QStringLiteral("fresh.ini"));
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.prompts().fileNames = { target };
        QVERIFY(window.editor(1)->closeWindow());
        QCOMPARE(sandbox.prompts().fileRequests.size(), 1);
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().kind, FakePrompts::FileRequest::Kind::Save);
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().title, QStringLiteral("Select a menu file ..."));
        QCOMPARE(firstCaptionInFile(target), QStringLiteral("New Item 1"));

        // Leaving the save dialog without a name writes nothing and still closes.
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::Yes };
        QVERIFY(window.editor(2)->closeWindow());
        QVERIFY(!window.editor(2));
        QCOMPARE(QDir(sandbox.menuFolder()).entryList(QDir::Files), QStringList({ QStringLiteral("fresh.ini") }));
    }

    void aFailedWriteAtTheCloseQuestionKeepsTheWindow()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"), longestFileName());
        QVERIFY(!menu.isEmpty());
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, longestFileName());
        editDocument(window, index, QStringLiteral("Changed"));
        sandbox.prompts().answers = { Answer::Yes };
        QVERIFY(!window.editor(index)->closeWindow());
        QVERIFY(window.editor(index));
        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QCOMPARE(sandbox.prompts().messages.at(1).icon, MessageRequest::Icon::Critical);
        QVERIFY(sandbox.prompts().messages.at(1).text.startsWith(QLatin1String("Error ")));
        QCOMPARE(GuiSandbox::readFile(menu), before);
        QVERIFY(!window.state().document(index).saved);
    }

    void cancelAtTheQuitQuestionKeepsEverythingOpen()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        window.show();
        const qint16 opened = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, opened, QStringLiteral("Changed"));
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::Cancel };

        sandbox.action(QStringLiteral("mnuQuit"))->trigger();

        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QVERIFY(window.isVisible());
        QVERIFY(!window.state().isQuitting());
        QCOMPARE(editorCaptions(window),
                 QStringList({ QStringLiteral("archive-tools.ini"), QStringLiteral("New menu 2") }));
        QCOMPARE(mdiArea(window)->subWindowList().size(), 2);
        QCOMPARE(GuiSandbox::readFile(menu), before);
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
    }

    void quitAsksOnceForEveryUnsavedMenu()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        window.show();
        window.mnuNew_Click();
        window.openMenu(menu, QStringLiteral("archive-tools.ini")); // saved: not listed
        window.mnuNew_Click();
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::No };

        sandbox.action(QStringLiteral("mnuQuit"))->trigger();

        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ saveQuestion(QStringLiteral("Do you want to save changes on file : \r\n"
                                                                     "    New menu 1\r\n"
                                                                     "    New menu 3\r\n"
                                                                     "    New menu 4")) }));
        QVERIFY(window.state().isQuitting());
        QVERIFY(!window.isVisible());
        QVERIFY(window.state().openDocumentIndexes().isEmpty());
        QVERIFY(visibleWindowEntries(window).isEmpty());
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
    }

    void yesAtTheQuitQuestionWritesEveryUnsavedMenu()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QString target = sandbox.menuPath(QStringLiteral("fresh.ini"));
        MainWindow& window = sandbox.window();
        window.show();
        const qint16 opened = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, opened, QStringLiteral("Changed"));
        window.mnuNew_Click();
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.prompts().fileNames = { target };

        window.close();

        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(firstCaptionInFile(menu), QStringLiteral("Changed"));
        QCOMPARE(firstCaptionInFile(target), QStringLiteral("New Item 1"));
        QVERIFY(window.state().openDocumentIndexes().isEmpty());
    }

    void aFailedWriteAtTheQuitQuestionStopsQuitting()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"), longestFileName());
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        window.show();
        const qint16 index = window.openMenu(menu, longestFileName());
        editDocument(window, index, QStringLiteral("Changed"));
        sandbox.prompts().answers = { Answer::Yes };

        window.close();

        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QCOMPARE(sandbox.prompts().messages.at(1).icon, MessageRequest::Icon::Critical);
        QVERIFY(window.isVisible());
        QVERIFY(!window.state().isQuitting());
        QVERIFY(window.editor(index));
        QCOMPARE(GuiSandbox::readFile(menu), before);
    }

    void quitWithEverythingSavedAsksNothing()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        window.show();
        window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        window.close();
        QVERIFY(sandbox.prompts().messages.isEmpty());
        QVERIFY(!window.isVisible());
        QVERIFY(window.state().openDocumentIndexes().isEmpty());
    }

    void commandLineWithProgramFolderOpensTheMenuBelowIt()
    {
        GuiSandbox sandbox;
        QDir(sandbox.programFolder()).mkpath(QStringLiteral("Menus"));
        QVERIFY(QFile::copy(QStringLiteral(KELV_EXAMPLES_DIR "/archive-tools.ini"),
                            sandbox.programFolder() + QStringLiteral("/Menus/Archive.INI")));
        MainWindow& window = sandbox.window();
        window.openCommandLineMenu(QStringLiteral("$EXEPATH$/Menus/Archive.INI"));
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("Archive.INI") }));
        QCOMPARE(window.state().document(1).filePath, sandbox.programFolder() + QStringLiteral("/Menus/Archive.INI"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void commandLineNotEndingInIniIsIgnored()
    {
        GuiSandbox sandbox;
        const QString notes = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("notes.txt")),
                                                    GuiSandbox::menuBytes({ QStringLiteral("Item") }, {}));
        MainWindow& window = sandbox.window();
        window.openCommandLineMenu(notes);
        window.openCommandLineMenu(QString());
        QCOMPARE(window.state().lastSlot(), qint16(0));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void saveIsOfferedOnlyForAChangedMenuWithAFile()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        QMenu* fileMenu = window.findChild<QMenu*>(QStringLiteral("mnuFile"));
        QAction* save = sandbox.action(QStringLiteral("mnuSave"));

        Q_EMIT fileMenu->aboutToShow();
        QVERIFY(!save->isEnabled()); // no document

        window.mnuNew_Click();
        Q_EMIT fileMenu->aboutToShow();
        QVERIFY(!save->isEnabled()); // no file yet

        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        Q_EMIT fileMenu->aboutToShow();
        QVERIFY(!save->isEnabled()); // saved

        editDocument(window, index, QStringLiteral("Changed"));
        Q_EMIT fileMenu->aboutToShow();
        QVERIFY(save->isEnabled());

        save->trigger();
        QCOMPARE(firstCaptionInFile(menu), QStringLiteral("Changed"));
        QVERIFY(window.state().document(index).saved);
        Q_EMIT fileMenu->aboutToShow();
        QVERIFY(!save->isEnabled());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void aFailedSaveKeepsTheOldFileAndShowsTheError()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"), longestFileName());
        QVERIFY(!menu.isEmpty());
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, longestFileName());
        editDocument(window, index, QStringLiteral("Changed"));
        Q_EMIT window.findChild<QMenu*>(QStringLiteral("mnuFile"))->aboutToShow();

        sandbox.action(QStringLiteral("mnuSave"))->trigger();

        QCOMPARE(sandbox.prompts().messages.size(), 1);
        const MessageRequest& shown = sandbox.prompts().messages.constFirst();
        QCOMPARE(shown.icon, MessageRequest::Icon::Critical);
        QCOMPARE(shown.buttons, MessageRequest::Buttons::Ok);
        QVERIFY(shown.title.isEmpty());
        QCOMPARE(shown.text, QStringLiteral("Error 75 : Path/File access error: File name too long (writeMenuFile)"));
        QCOMPARE(GuiSandbox::readFile(menu), before);
        QVERIFY(!window.state().document(index).saved);
        QCOMPARE(window.state().document(index).items.constFirst().caption, QStringLiteral("Changed"));
    }

    void saveAsWritesTheMenuAndRenamesTheWindow()
    {
        GuiSandbox sandbox;
        const QString target = sandbox.menuPath(QStringLiteral("renamed.ini"));
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        window.mnuNew_Click();
        sandbox.prompts().fileNames = { target };

        sandbox.action(QStringLiteral("mnuSaveAs"))->trigger();

        QCOMPARE(sandbox.prompts().fileRequests.size(), 1);
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().kind, FakePrompts::FileRequest::Kind::Save);
        QCOMPARE(sandbox.prompts().fileRequests.constFirst().filter, QStringLiteral("Menu File (*.ini)"));
        QCOMPARE(firstCaptionInFile(target), QStringLiteral("New Item 1"));
        const MenuDocument& document = window.state().document(2);
        QCOMPARE(document.filePath, target);
        QVERIFY(document.saved);
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("New menu 1"), QStringLiteral("renamed.ini") }));
        QCOMPARE(visibleWindowEntries(window), editorCaptions(window));
        // Closing it now asks nothing.
        QVERIFY(window.editor(2)->closeWindow());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void aFailedSaveAsKeepsNameAndCaption()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        // A folder cannot be replaced by a menu file.
        sandbox.prompts().fileNames = { sandbox.menuFolder() };
        sandbox.action(QStringLiteral("mnuSaveAs"))->trigger();
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(sandbox.prompts().messages.constFirst().icon, MessageRequest::Icon::Critical);
        QVERIFY(window.state().document(1).filePath.isEmpty());
        QVERIFY(!window.state().document(1).saved);
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("New menu 1") }));
    }

    void unsavedMenusShowItInTheirTitle()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const QString path = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const qint16 index = window.openMenu(path, QStringLiteral("archive-tools.ini"));
        EditorWindow* editor = window.editor(index);
        QMdiSubWindow* frame = frameOf(editor);
        const auto marked = [&] {
            // The frame's title bar follows the window's own mark.
            return editor->isWindowModified() && frame->isWindowModified();
        };
        QVERIFY(!editor->isWindowModified());
        QCOMPARE(frame->windowTitle(), QStringLiteral("archive-tools.ini[*]"));

        // Every edit goes through the editing session, and marks it.
        sandbox.trigger(QStringLiteral("mnuDuplicate"));
        QVERIFY(!window.state().document(index).saved);
        QVERIFY(marked());
        sandbox.trigger(QStringLiteral("mnuUndo"));
        QVERIFY(window.state().document(index).saved); // back to the state recorded while saved
        QVERIFY(!editor->isWindowModified());
        sandbox.trigger(QStringLiteral("mnuRedo"));
        QCOMPARE(editor->isWindowModified(), !window.state().document(index).saved);
        QVERIFY(marked());
        // A second edit leaves the mark as it is, and the frame's title is not laid out again.
        int markChanges = 0;
        EventCounter counter(QEvent::ModifiedChange, markChanges);
        editor->installEventFilter(&counter);
        sandbox.trigger(QStringLiteral("mnuDuplicate"));
        QVERIFY(marked());
        QCOMPARE(markChanges, 0);
        editor->removeEventFilter(&counter);
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(!editor->isWindowModified());
        QVERIFY(!frame->isWindowModified());

        // A link switched off changes the menu without an undo step; the mark follows all the same.
        sandbox.trigger(QStringLiteral("mnuLFCopyCommand"));
        QCOMPARE(editor->isWindowModified(), !window.state().document(index).saved);

        // Save as keeps the mark's place in the new title.
        sandbox.trigger(QStringLiteral("mnuDuplicate"));
        QVERIFY(marked());
        sandbox.prompts().fileNames = { sandbox.menuPath(QStringLiteral("copy.ini")) };
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        QCOMPARE(editor->caption(), QStringLiteral("copy.ini"));
        QCOMPARE(editor->windowTitle(), QStringLiteral("copy.ini[*]"));
        QVERIFY(!editor->isWindowModified());

        // A new menu is not saved until it is written.
        window.mnuNew_Click();
        QCOMPARE(window.activeEditor()->caption(), QStringLiteral("New menu 2"));
        QVERIFY(window.activeEditor()->isWindowModified());
        // A caption holding the placeholder itself shows it as written.
        window.activeEditor()->setCaption(QStringLiteral("odd[*].ini"));
        QCOMPARE(window.activeEditor()->windowTitle(), QStringLiteral("odd[*][*].ini[*]"));
    }

    void closeAsksAboutTheActiveMenuAndClosesIt()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")), QStringLiteral("archive-tools.ini"));
        window.mnuNew_Click();
        QCOMPARE(window.activeDocumentIndex(), qint16(2));

        // Ctrl+W, wherever the focus is in the window.
        sandbox.prompts().answers = { Answer::Cancel };
        window.activeEditor()->tree()->setFocus();
        QTest::keyClick(window.activeEditor()->tree(), Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ saveQuestion(QStringLiteral("Do you want to save changes ?")) }));
        QCOMPARE(window.state().openDocumentIndexes().size(), 2);

        sandbox.prompts().clearLog();
        sandbox.prompts().answers = { Answer::No };
        sandbox.trigger(QStringLiteral("mnuClose"));
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(window.state().openDocumentIndexes(), QList<qint16>({ 1 }));
        QTRY_COMPARE(window.activeDocumentIndex(), qint16(1));

        // A saved menu closes without a question.
        sandbox.prompts().clearLog();
        sandbox.trigger(QStringLiteral("mnuClose"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        QVERIFY(window.state().openDocumentIndexes().isEmpty());
        QVERIFY(!sandbox.action(QStringLiteral("mnuClose"))->isEnabled());
    }

    void fileDialogsStartInTheMenusFolderOrTheLastOneUsed()
    {
        GuiSandbox sandbox;
        const QString menus = QFileInfo(sandbox.menuPath(QStringLiteral("x.ini"))).absolutePath();
        QVERIFY(QDir(menus).mkpath(QStringLiteral("other")));
        const QString other = menus + QStringLiteral("/other");
        MainWindow& window = sandbox.window();
        const auto lastFolder = [&sandbox] { return sandbox.prompts().fileRequests.constLast().startFolder; };

        window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")), QStringLiteral("archive-tools.ini"));
        sandbox.trigger(QStringLiteral("mnuOpen"));
        QCOMPARE(lastFolder(), menus);
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        QCOMPARE(sandbox.prompts().fileRequests.constLast().kind, FakePrompts::FileRequest::Kind::Save);
        QCOMPARE(lastFolder(), menus);

        // A folder chosen in a dialog is the one used last, even when the file is no menu.
        sandbox.prompts().fileNames = { other + QStringLiteral("/absent.ini") };
        sandbox.trigger(QStringLiteral("mnuOpen"));
        window.mnuNew_Click();
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        QCOMPARE(lastFolder(), other);
        // A menu with a file still starts in its own folder.
        sandbox.trigger(QStringLiteral("mnuWindowName1"));
        sandbox.trigger(QStringLiteral("mnuOpen"));
        QCOMPARE(lastFolder(), menus);

        // Saved under a new name: its folder is used from then on.
        sandbox.trigger(QStringLiteral("mnuWindowName2"));
        sandbox.prompts().fileNames = { other + QStringLiteral("/new.ini") };
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        sandbox.trigger(QStringLiteral("mnuOpen"));
        QCOMPARE(lastFolder(), other);

        // A fresh start begins where the newest recent menu lies.
        MainWindow second(sandbox.prompts(), sandbox.optionsStore(), sandbox.programFolder(), sandbox.recoveryFolder());
        second.mnuOpen_Click();
        QCOMPARE(lastFolder(), menus);
    }

    void droppedMenuFilesOpenInOrder()
    {
        GuiSandbox sandbox;
        const QString first = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("first.ini"));
        const QString text = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("menu.txt")),
                                                   GuiSandbox::menuBytes({ QStringLiteral("Item") }, {}));
        const QString upper = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("SECOND.INI"));
        MainWindow& window = sandbox.window();
        QVERIFY(window.acceptDrops());

        sendDrop(window, { first, text, sandbox.menuPath(QStringLiteral("absent.ini")), upper });

        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("first.ini"), QStringLiteral("SECOND.INI") }));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void windowMenuActivatesAndRestoresEditors()
    {
        GuiSandbox sandbox;
        const QString first = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("first.ini"));
        const QString second = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("second.ini"));
        MainWindow& window = sandbox.window();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.openMenu(first, QStringLiteral("first.ini"));
        window.openMenu(second, QStringLiteral("second.ini"));
        QCOMPARE(window.activeDocumentIndex(), qint16(2));
        QCOMPARE(visibleWindowEntries(window),
                 QStringList({ QStringLiteral("first.ini"), QStringLiteral("second.ini") }));

        QMdiSubWindow* firstFrame = frameOf(window.editor(1));
        firstFrame->showMinimized();
        QAction* entry = sandbox.action(QStringLiteral("mnuWindowName1"));
        QCOMPARE(entry->data().toInt(), 1);
        entry->trigger();
        QCOMPARE(window.activeDocumentIndex(), qint16(1));
        QCOMPARE(window.activeDocumentTag(), QStringLiteral("1"));
        QVERIFY(!firstFrame->isMinimized());
        QCOMPARE(mdiArea(window)->activeSubWindow(), firstFrame);

        // Activating a window directly (as a click on it does) also makes its document active.
        mdiArea(window)->setActiveSubWindow(frameOf(window.editor(2)));
        QCOMPARE(window.activeDocumentIndex(), qint16(2));

        // A closed editor's entry disappears; the other editor becomes the active one.
        QVERIFY(window.editor(2)->closeWindow());
        QCOMPARE(visibleWindowEntries(window), QStringList({ QStringLiteral("first.ini") }));
        QTRY_COMPARE(window.activeDocumentIndex(), qint16(1));
    }

    void statusBarFollowsTheActiveWindow()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        // Three items, the second selected (index 1, first of two children of the first item).
        const qint16 first
            = sandbox.openMenu(QStringLiteral("first.ini"),
                               { QStringLiteral("Tools"), QStringLiteral("···Pack"), QStringLiteral("···Unpack") });
        window.editor(first)->lstMenu_NodeClick(window.editor(first)->tree()->nodeByKey(QStringLiteral("E1")));
        // Five items, the fourth selected (index 3, a top-level item with one child).
        const qint16 second = sandbox.openMenu(QStringLiteral("second.ini"),
                                               { QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"),
                                                 QStringLiteral("D"), QStringLiteral("···E") });
        window.editor(second)->lstMenu_NodeClick(window.editor(second)->tree()->nodeByKey(QStringLiteral("E3")));
        const auto panels = [&window] {
            QStringList texts;
            for (const int panel : { 2, 4, 6 }) {
                texts.append(window.findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel))->text());
            }
            return texts;
        };
        const QStringList firstPanels = { QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("(1 ; 0)") };
        const QStringList secondPanels = { QStringLiteral("3"), QStringLiteral("5"), QStringLiteral("(4 ; 1)") };
        QCOMPARE(panels(), secondPanels);

        // The Window menu.
        sandbox.trigger(QStringLiteral("mnuWindowName1"));
        QCOMPARE(panels(), firstPanels);
        // Ctrl+Tab steps to the next window.
        mdiArea(window)->activateNextSubWindow();
        QCOMPARE(window.activeDocumentIndex(), second);
        QCOMPARE(panels(), secondPanels);
        // A click on a window's title bar.
        QMdiSubWindow* firstFrame = frameOf(window.editor(first));
        QTest::mouseClick(firstFrame, Qt::LeftButton, {}, QPoint(firstFrame->width() / 2, 4));
        QCOMPARE(window.activeDocumentIndex(), first);
        QCOMPARE(panels(), firstPanels);

        // A window that is not the active one leaves the panels to the active one.
        window.editor(second)->lstMenu_NodeClick(window.editor(second)->tree()->nodeByKey(QStringLiteral("E0")));
        QCOMPARE(panels(), firstPanels);
        mdiArea(window)->setActiveSubWindow(frameOf(window.editor(second)));
        QCOMPARE(panels(), QStringList({ QStringLiteral("0"), QStringLiteral("5"), QStringLiteral("(1 ; 0)") }));

        // The root shows no item.
        window.editor(second)->tree()->setCurrentIndex(window.editor(second)->tree()->node(1));
        sandbox.trigger(QStringLiteral("mnuWindowName1"));
        sandbox.trigger(QStringLiteral("mnuWindowName2"));
        QCOMPARE(panels(), QStringList({ QString(), QStringLiteral("5"), QStringLiteral("(Position ; Children)") }));

        // Closing a window hands the panels to the one activated next, and the last one clears them.
        QVERIFY(window.editor(second)->closeWindow());
        QTRY_COMPARE(window.activeDocumentIndex(), first);
        QCOMPARE(panels(), firstPanels);
        QVERIFY(window.editor(first)->closeWindow());
        QCOMPARE(panels(), QStringList({ QString(), QString(), QStringLiteral("(Position ; Children)") }));
    }

    void activationSetsTheHideMarks()
    {
        GuiSandbox sandbox;
        const QString first = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("first.ini"));
        const QString second = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("second.ini"));
        MainWindow& window = sandbox.window();
        window.openMenu(first, QStringLiteral("first.ini"));
        sandbox.action(QStringLiteral("mnuHideBoth"))->trigger();
        window.openMenu(second, QStringLiteral("second.ini"));
        sandbox.action(QStringLiteral("mnuHideWCommand"))->trigger();
        QCOMPARE(window.state().document(1).hideMode, 3);
        QCOMPARE(window.state().document(2).hideMode, 2);

        sandbox.action(QStringLiteral("mnuWindowName1"))->trigger();
        QVERIFY(sandbox.action(QStringLiteral("mnuHideCopies"))->isChecked());
        QVERIFY(sandbox.action(QStringLiteral("mnuHideWCommand"))->isChecked());
        QVERIFY(sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked());

        sandbox.action(QStringLiteral("mnuWindowName2"))->trigger();
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideCopies"))->isChecked());
        QVERIFY(sandbox.action(QStringLiteral("mnuHideWCommand"))->isChecked());
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked());
    }

    void hideCommandsFollowTheirArithmetic()
    {
        GuiSandbox sandbox;
        // A submenu without commands, a leaf with commands, a leaf without, and a link.
        const QString menu
            = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("hide.ini")),
                                    GuiSandbox::menuBytes({ QStringLiteral("Tools"), QStringLiteral("···Pack"),
                                                            QStringLiteral("···Empty"), QStringLiteral("Notepad") },
                                                          { QStringLiteral("0002:zip=pack.exe $fs-001$"),
                                                            QStringLiteral("0004:txt=notepad $fs-001$") }));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("hide.ini"));
        MenuDocument& document = window.state().document(index);
        document.items[3].copyKey = QStringLiteral("E1");
        document.items[3].copiesCommands = true;
        ItemTree* tree = window.editor(index)->tree();
        QAction* copies = sandbox.action(QStringLiteral("mnuHideCopies"));
        QAction* withoutCommand = sandbox.action(QStringLiteral("mnuHideWCommand"));
        QAction* both = sandbox.action(QStringLiteral("mnuHideBoth"));

        both->trigger();
        QCOMPARE(document.hideMode, 3);
        QVERIFY(copies->isChecked() && withoutCommand->isChecked() && both->isChecked());
        QCOMPARE(tree->textOf(tree->node(1)), QStringLiteral("KELV (Some items may be hidded)"));
        QVERIFY(!tree->nodeByKey(QStringLiteral("E2")).isValid()); // no commands
        QVERIFY(!tree->nodeByKey(QStringLiteral("E3")).isValid()); // a link
        QVERIFY(tree->nodeByKey(QStringLiteral("E0")).isValid()); // a submenu stays

        copies->trigger();
        QCOMPARE(document.hideMode, 2);
        QVERIFY(!copies->isChecked() && withoutCommand->isChecked() && !both->isChecked());
        QCOMPARE(tree->textOf(tree->node(1)), QStringLiteral("KELV (Some items may be hidded)"));
        QVERIFY(tree->nodeByKey(QStringLiteral("E3")).isValid());

        withoutCommand->trigger();
        QCOMPARE(document.hideMode, 0);
        QVERIFY(!copies->isChecked() && !withoutCommand->isChecked() && !both->isChecked());
        QCOMPARE(tree->textOf(tree->node(1)), QStringLiteral("KELV"));
        QCOMPARE(tree->nodeCount(), 5);

        copies->trigger();
        QCOMPARE(document.hideMode, 1);
        QVERIFY(copies->isChecked() && !withoutCommand->isChecked() && !both->isChecked());
        QVERIFY(!tree->nodeByKey(QStringLiteral("E3")).isValid());
        both->trigger();
        QCOMPARE(document.hideMode, 3);
        both->trigger();
        QCOMPARE(document.hideMode, 0);
        QVERIFY(!copies->isChecked() && !withoutCommand->isChecked() && !both->isChecked());
    }

    void hideCommandsWithoutDocumentChangeNothing()
    {
        GuiSandbox sandbox;
        sandbox.action(QStringLiteral("mnuHideBoth"))->trigger();
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked());
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideCopies"))->isChecked());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void refreshRebuildsTheTreeKeepingTheHideMode()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        sandbox.action(QStringLiteral("mnuHideWCommand"))->trigger();
        MenuDocument& document = window.state().document(index);
        // A special item's name shows in the tree only, until the tree is rebuilt from the menu.
        ItemTree* tree = window.editor(index)->tree();
        window.editor(index)->lstMenu_NodeClick(tree->nodeByKey(QStringLiteral("E0")));
        sandbox.action(QStringLiteral("mnuSpecialItems0"))->trigger();
        QCOMPARE(tree->textOf(tree->nodeByKey(QStringLiteral("E0"))), QStringLiteral("$audiostream$"));
        QCOMPARE(document.items[0].caption, QStringLiteral("Archive"));

        sandbox.action(QStringLiteral("mnuRefresh"))->trigger();

        QCOMPARE(tree->textOf(tree->nodeByKey(QStringLiteral("E0"))), QStringLiteral("Archive"));
        QCOMPARE(document.hideMode, 2);
        QVERIFY(sandbox.action(QStringLiteral("mnuHideWCommand"))->isChecked());
        QCOMPARE(tree->currentIndex(), tree->node(2));
    }

    void tilingArrangesTheWindows()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.mnuNew_Click();
        window.mnuNew_Click();
        window.mnuNew_Click();
        const QRect area = mdiArea(window)->viewport()->rect();
        QList<QMdiSubWindow*> frames;
        for (const qint16 index : window.state().openDocumentIndexes()) {
            frames.append(frameOf(window.editor(index)));
        }

        sandbox.action(QStringLiteral("mnuHorizontal"))->trigger();
        int top = 0;
        for (const QMdiSubWindow* frame : frames) {
            QCOMPARE(frame->geometry().left(), 0);
            QCOMPARE(frame->geometry().width(), area.width());
            QCOMPARE(frame->geometry().top(), top);
            top = frame->geometry().bottom() + 1;
        }
        QCOMPARE(top, area.height());

        sandbox.action(QStringLiteral("mnuVertical"))->trigger();
        int left = 0;
        for (const QMdiSubWindow* frame : frames) {
            QCOMPARE(frame->geometry().top(), 0);
            QCOMPARE(frame->geometry().height(), area.height());
            QCOMPARE(frame->geometry().left(), left);
            left = frame->geometry().right() + 1;
        }
        QCOMPARE(left, area.width());

        sandbox.action(QStringLiteral("mnuCascade"))->trigger();
        QVERIFY(frames.at(0)->geometry().topLeft() != frames.at(1)->geometry().topLeft());
    }

    void mainWindowOpensWithinTheScreen()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        const QRect available = window.screen()->availableGeometry();
        QVERIFY2(available.contains(window.frameGeometry()),
                 qPrintable(QStringLiteral("%1x%2 on %3x%4")
                                .arg(window.frameGeometry().width())
                                .arg(window.frameGeometry().height())
                                .arg(available.width())
                                .arg(available.height())));
        // Not a postage stamp either: it takes most of a small screen, or its own size on a large one.
        QVERIFY(window.width() >= qMin(1000, available.width() * 3 / 4));
        QVERIFY(window.height() >= qMin(700, available.height() * 3 / 4));
    }

    void firstEditorWindowFillsTheArea()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        window.mnuNew_Click();
        const QRect area = mdiArea(window)->viewport()->rect();
        QCOMPARE(frameOf(window.activeEditor())->geometry(), area);

        window.mnuNew_Click();
        // Later ones take two thirds of it (but never less than they need) and leave the first as it is.
        const QSize second = frameOf(window.activeEditor())->size();
        const QSize needed = frameOf(window.activeEditor())->minimumSizeHint();
        QCOMPARE(second.width(), qMax(qRound(area.width() * 2 / 3.0), needed.width()));
        QCOMPARE(second.height(), qMax(qRound(area.height() * 2 / 3.0), needed.height()));
        QCOMPARE(frameOf(window.editor(1))->geometry(), area);
    }

    void menuOpenedBeforeTheWindowShowsFillsTheArea()
    {
        // As with a menu named on the command line: it opens before the main window shows.
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        QVERIFY(sandbox.showWindow());
        QCOMPARE(frameOf(window.editor(index))->geometry(), mdiArea(window)->viewport()->rect());
    }

    void treeKeepsAShareOfWindowsTiledSideBySide()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QVERIFY(sandbox.showWindow());
        window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")), QStringLiteral("archive-tools.ini"));
        window.openMenu(sandbox.copyExample(QStringLiteral("media-tools.ini")), QStringLiteral("media-tools.ini"));
        sandbox.trigger(QStringLiteral("mnuVertical"));
        const int tileWidth = mdiArea(window)->viewport()->width() / 2;
        for (const qint16 index : window.state().openDocumentIndexes()) {
            EditorWindow* editor = window.editor(index);
            QVERIFY(qAbs(frameOf(editor)->width() - tileWidth) <= 1);
            // The whole editor fits its tile: nothing is cut off on the right.
            QVERIFY2(
                editor->minimumSizeHint().width() <= editor->width(),
                qPrintable(QStringLiteral("needs %1 of %2, side %3 tree %4")
                               .arg(editor->minimumSizeHint().width())
                               .arg(editor->width())
                               .arg(editor->findChild<QWidget*>(QStringLiteral("pnlItem"))->minimumSizeHint().width())
                               .arg(editor->tree()->minimumSizeHint().width())));
            const int treeWidth = editor->tree()->width();
            const int splitWidth = editor->findChild<QSplitter*>(QStringLiteral("splEditor"))->width();
            QVERIFY2(treeWidth * 10 >= splitWidth * 3,
                     qPrintable(QStringLiteral("tree %1 of %2").arg(treeWidth).arg(splitWidth)));
        }
    }

    void recentListKeepsTheLastFiveOpenedMenus()
    {
        GuiSandbox sandbox;
        QStringList paths;
        for (int n = 1; n <= 6; ++n) {
            paths.append(sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("menu%1.ini").arg(n)));
        }
        MainWindow& window = sandbox.window();
        QVERIFY(!sandbox.action(QStringLiteral("Tire03"))->isVisible());
        sandbox.prompts().fileNames = paths;
        for (int n = 0; n < 6; ++n) {
            sandbox.action(QStringLiteral("mnuOpen"))->trigger();
        }
        QCOMPARE(window.state().openDocumentIndexes().size(), 6);
        for (int entry = 0; entry < 5; ++entry) {
            QAction* recent = sandbox.action(QStringLiteral("mnuRecent") + QString::number(entry));
            QVERIFY(recent->isVisible());
            QCOMPARE(MenuTexts::visible(recent->text()), paths.at(5 - entry));
        }
        for (int entry = 5; entry < 10; ++entry) {
            QVERIFY(!sandbox.action(QStringLiteral("mnuRecent") + QString::number(entry))->isVisible());
        }
        QVERIFY(sandbox.action(QStringLiteral("Tire03"))->isVisible());
        const QByteArray expected = (QStringList({ paths.at(5), paths.at(4), paths.at(3), paths.at(2), paths.at(1) })
                                         .join(QStringLiteral("\r\n"))
                                     + QStringLiteral("\r\n"))
                                        .toLocal8Bit();
        QCOMPARE(GuiSandbox::readFile(sandbox.programFolder() + QStringLiteral("/Recent.ini")), expected);

        // A fresh start shows the same list, and an entry opens its menu.
        MainWindow second(sandbox.prompts(), sandbox.optionsStore(), sandbox.programFolder(), sandbox.recoveryFolder());
        QAction* newest = second.findChild<QAction*>(QStringLiteral("mnuRecent0"));
        QCOMPARE(MenuTexts::visible(newest->text()), paths.at(5));
        newest->trigger();
        QCOMPARE(editorCaptions(second), QStringList({ QStringLiteral("menu6.ini") }));
    }

    void optionsOfAnEmptyStoreAreAllOff()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QCOMPARE(window.state().options(), Options());
        QAction* copyComDup = sandbox.action(QStringLiteral("mnuCopyComDup"));
        QVERIFY(copyComDup->isCheckable());
        QVERIFY(!copyComDup->isChecked());

        copyComDup->trigger();
        QVERIFY(copyComDup->isChecked());
        QVERIFY(window.state().options().copyCommandDup);
        QCOMPARE(sandbox.optionsStore().readValue(OptionsStore::keyPath(), OptionsStore::copyCommandDupName()),
                 QStringLiteral("True"));
        QCOMPARE(sandbox.optionsStore().readValue(OptionsStore::keyPath(), OptionsStore::checkCopyCommandName()),
                 QStringLiteral("0"));

        copyComDup->trigger();
        QVERIFY(!copyComDup->isChecked());
        QCOMPARE(sandbox.optionsStore().readValue(OptionsStore::keyPath(), OptionsStore::copyCommandDupName()),
                 QStringLiteral("False"));
    }

    void storedCopyCommandDupChecksItsEntry()
    {
        GuiSandbox sandbox;
        Options options;
        options.copyCommandDup = true;
        sandbox.optionsStore().saveOptions(options);
        QVERIFY(sandbox.action(QStringLiteral("mnuCopyComDup"))->isChecked());
        QCOMPARE(sandbox.window().state().options(), options);
    }

    void optionsDialogChangesTheOptionsOnSaveOnly()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        MainWindow& window = sandbox.window();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        // Cancel first: nothing changes.
        answerOptionsDialog(QStringLiteral("cmdCancel"));
        sandbox.action(QStringLiteral("mnuOptions"))->trigger();
        QCOMPARE(window.state().options(), Options());

        answerOptionsDialog(QStringLiteral("cmdSave"));
        sandbox.action(QStringLiteral("mnuOptions"))->trigger();
        QCOMPARE(window.state().options().hideItemsCopyCommand, qint16(1));
        QCOMPARE(sandbox.optionsStore().loadOptions().hideItemsCopyCommand, qint16(1));

        // The next menu opened starts with copy-command links hidden.
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        QCOMPARE(window.state().document(index).hideMode, 1);
    }

    void anyMenuFileOpensOrFailsWithoutHarm()
    {
        // Menus as people write them by hand: stray and skipped depth markers, odd captions,
        // identical command lists (links when the option is on), and now and then a line the
        // reader cannot take. Each either opens and can be clicked through, hidden and refreshed,
        // or fails with one message and leaves nothing behind.
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QRandomGenerator random(20261122);
        const QStringList captions = { QStringLiteral("Pack"), QString(),
                                       QStringLiteral("Root"), QStringLiteral("  blanks  "),
                                       QStringLiteral("E1"),   QStringLiteral("a=b:c") };
        const QStringList commands = { QStringLiteral("zip=pack.exe $fs-001$"), QStringLiteral("=del $fs-001$"),
                                       QStringLiteral("txt=notepad a=b:c") };
        const QStringList brokenLines
            = { QStringLiteral("0001zip"), QStringLiteral("x:zip=pack"), QStringLiteral("9999:zip=pack") };
        const QList<QAction*> hideEntries
            = { sandbox.action(QStringLiteral("mnuHideCopies")), sandbox.action(QStringLiteral("mnuHideWCommand")),
                sandbox.action(QStringLiteral("mnuHideBoth")) };
        for (int round = 0; round < 120; ++round) {
            Options options;
            options.checkCopyCommand = qint16(round % 2);
            options.hideItemsCopyCommand = qint16((round / 2) % 2);
            options.hideItemsWithoutCommand = qint16((round / 4) % 2);
            window.state().setOptions(options);

            const int itemCount = random.bounded(1, 20);
            QStringList itemLines;
            for (int item = 0; item < itemCount; ++item) {
                QString line
                    = QString(random.bounded(0, 10), QChar(0xB7)) + captions.at(random.bounded(int(captions.size())));
                // An empty line is no item at all.
                itemLines.append(line.isEmpty() ? QStringLiteral("Item") : line);
            }
            QStringList commandLines;
            const int commandCount = random.bounded(0, 2 * itemCount);
            for (int command = 0; command < commandCount; ++command) {
                commandLines.append(QStringLiteral("%1:").arg(random.bounded(1, itemCount + 1), 4, 10, QLatin1Char('0'))
                                    + commands.at(random.bounded(int(commands.size()))));
            }
            const bool broken = round % 10 == 9;
            if (broken) {
                commandLines.insert(random.bounded(int(commandLines.size()) + 1),
                                    brokenLines.at(random.bounded(int(brokenLines.size()))));
            }
            const QString name = QStringLiteral("random%1.ini").arg(round);
            const QString path
                = GuiSandbox::writeFile(sandbox.menuPath(name), GuiSandbox::menuBytes(itemLines, commandLines));
            QVERIFY(!path.isEmpty());

            sandbox.prompts().clearLog();
            const qint16 slotsBefore = window.state().lastSlot();
            const qint16 index = window.openMenu(path, name);
            if (broken) {
                QCOMPARE(index, qint16(0));
                QCOMPARE(sandbox.prompts().messageTexts(), QStringList({ MenuFiles::openErrorMessage() }));
                QCOMPARE(window.state().lastSlot(), slotsBefore);
                continue;
            }
            QVERIFY2(index != 0, qPrintable(sandbox.prompts().messageTexts().join(QLatin1Char('|'))));
            const MenuDocument& document = window.state().document(index);
            checkEveryNode(window, index);
            for (int step = 0; step < 4 && !QTest::currentTestFailed(); ++step) {
                hideEntries.at(random.bounded(int(hideEntries.size())))->trigger();
                checkEveryNode(window, index);
            }
            sandbox.action(QStringLiteral("mnuRefresh"))->trigger();
            checkEveryNode(window, index);
            if (QTest::currentTestFailed()) {
                return;
            }
            QVERIFY(sandbox.prompts().messages.isEmpty());
            QVERIFY(document.saved);
            QVERIFY(window.editor(index)->closeWindow());
        }
    }

    void aboutShowsTheProgramAndVersion()
    {
        GuiSandbox sandbox;
        sandbox.action(QStringLiteral("mnuAbout"))->trigger();
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(sandbox.prompts().messages.constFirst().text, aboutText());
        QVERIFY(sandbox.prompts().messages.constFirst().text.startsWith(QLatin1String("KELV Menu Editor v")));
        QVERIFY(sandbox.prompts().messages.constFirst().title.isEmpty());
        QVERIFY(sandbox.prompts().messages.constFirst().text.endsWith(licenceName()));
    }

    void helpWithoutViewerOrBrowserNamesWhatToInstall()
    {
#ifdef Q_OS_UNIX
        GuiSandbox sandbox;
        const QString helpFile = LanguageConfig(sandbox.programFolder()).helpFilePath();
        QVERIFY(QDir().mkpath(QFileInfo(helpFile).absolutePath()));
        QVERIFY(!GuiSandbox::writeFile(helpFile, QByteArrayLiteral("ITSF")).isEmpty());
        const QString guide = LanguageConfig(sandbox.programFolder()).htmlGuidePath();
        QVERIFY(QDir().mkpath(QFileInfo(guide).absolutePath()));
        QVERIFY(!GuiSandbox::writeFile(guide, QByteArrayLiteral("<html></html>")).isEmpty());
        // A machine with neither a help viewer nor a web browser: nothing in PATH, no BROWSER.
        QTemporaryDir emptyBin;
        const QByteArray path = qgetenv("PATH");
        const QByteArray browser = qgetenv("BROWSER");
        qputenv("PATH", QFile::encodeName(emptyBin.path()));
        qunsetenv("BROWSER");
        sandbox.action(QStringLiteral("mnuHelp"))->trigger();
        qputenv("PATH", path);
        if (!browser.isNull()) {
            qputenv("BROWSER", browser);
        }
        QCOMPARE(sandbox.prompts().messageTexts(), QStringList({ HelpLauncher::noViewerText(helpFile) }));
        QVERIFY(sandbox.prompts().messages.constFirst().text.contains(QStringLiteral("xchm")));
#else
        QSKIP("Windows always has a help viewer and a browser.");
#endif
    }

    void helpWithoutAHelpFileSaysSo()
    {
        GuiSandbox sandbox;
        sandbox.action(QStringLiteral("mnuHelp"))->trigger();
        const QString helpFile = LanguageConfig(sandbox.programFolder()).helpFilePath();
        QVERIFY(helpFile.startsWith(sandbox.programFolder()));
        QCOMPARE(sandbox.prompts().messageTexts(), QStringList({ HelpLauncher::missingFileText(helpFile) }));
    }
    void openingAMissingFileSaysItIsMissing()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const QString absent = sandbox.menuPath(QStringLiteral("absent.ini"));
        QCOMPARE(window.openMenu(absent, QStringLiteral("absent.ini")), qint16(0));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ critical(QStringLiteral("An error occured while opening the file !\r\n\r\n"
                                                                 "This file does not exist :\r\n    ")
                                                      + absent,
                                                  absent + QStringLiteral(": does not exist")) }));
        QCOMPARE(window.state().lastSlot(), qint16(0));
        QCOMPARE(window.activeDocumentIndex(), qint16(0));
        QVERIFY(mdiArea(window)->subWindowList().isEmpty());
    }

    void openingWhatIsNoMenuFileAtAllShowsTheOpenErrorWithTheReason()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        QCOMPARE(window.openMenu(sandbox.menuFolder(), QStringLiteral("menus")), qint16(0));
        QStringList expectedDetails { sandbox.menuFolder() + QStringLiteral(": is a folder, not a file") };
        if (QFileInfo::exists(QStringLiteral("/dev/zero"))) {
            QCOMPARE(window.openMenu(QStringLiteral("/dev/zero"), QStringLiteral("zero")), qint16(0));
            expectedDetails.append(QStringLiteral("/dev/zero: is not a regular file (a device, a pipe or a socket)"));
        }
        QStringList details;
        for (const MessageRequest& message : sandbox.prompts().messages) {
            QCOMPARE(message.text, MenuFiles::openErrorMessage());
            details.append(message.details);
        }
        QCOMPARE(details, expectedDetails);
        QCOMPARE(window.state().lastSlot(), qint16(0));
    }

    void saveRefusesAMenuItsFileCannotHold()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, index, QStringLiteral("a\nb"));
        Q_EMIT window.findChild<QMenu*>(QStringLiteral("mnuFile"))->aboutToShow();

        sandbox.action(QStringLiteral("mnuSave"))->trigger();

        QCOMPARE(sandbox.prompts().messages, QList<MessageRequest>({ exclamation(lineBreakRefusal()) }));
        QCOMPARE(GuiSandbox::readFile(menu), before);
        QVERIFY(!window.state().document(index).saved);
        QVERIFY(sandbox.action(QStringLiteral("mnuSave"))->isEnabled());
    }

    void saveAsRefusesBeforeAskingForAName()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        editDocument(window, 1, QStringLiteral("a\nb"));
        sandbox.prompts().fileNames = { sandbox.menuPath(QStringLiteral("never.ini")) };

        sandbox.action(QStringLiteral("mnuSaveAs"))->trigger();

        QCOMPARE(sandbox.prompts().messages, QList<MessageRequest>({ exclamation(lineBreakRefusal()) }));
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
        QVERIFY(QDir(sandbox.menuFolder()).entryList(QDir::Files).isEmpty());
        QVERIFY(window.state().document(1).filePath.isEmpty());
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("New menu 1") }));
    }

    void yesAtTheCloseQuestionOfAnUnsavableMenuKeepsTheWindow()
    {
        GuiSandbox sandbox;
        const QString menu = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QByteArray before = GuiSandbox::readFile(menu);
        MainWindow& window = sandbox.window();
        const qint16 opened = window.openMenu(menu, QStringLiteral("archive-tools.ini"));
        editDocument(window, opened, QStringLiteral("a\nb"));
        sandbox.prompts().answers = { Answer::Yes };
        QVERIFY(!window.editor(opened)->closeWindow());
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ saveQuestion(QStringLiteral("Do you want to save changes ?")),
                                         exclamation(lineBreakRefusal()) }));
        QVERIFY(window.editor(opened));
        QCOMPARE(GuiSandbox::readFile(menu), before);

        // A new menu is refused before the save dialog would ask for a name.
        sandbox.prompts().clearLog();
        window.mnuNew_Click();
        editDocument(window, 2, QStringLiteral("a\nb"));
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.prompts().fileNames = { sandbox.menuPath(QStringLiteral("never.ini")) };
        QVERIFY(!window.editor(2)->closeWindow());
        QVERIFY(window.editor(2));
        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QVERIFY(sandbox.prompts().fileRequests.isEmpty());
        QVERIFY(!QFileInfo::exists(sandbox.menuPath(QStringLiteral("never.ini"))));
    }

    void yesAtTheQuitQuestionWithAnUnsavableMenuWritesNothingAndStops()
    {
        GuiSandbox sandbox;
        const QString good = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("good.ini"));
        const QString bad = sandbox.copyExample(QStringLiteral("archive-tools.ini"), QStringLiteral("bad.ini"));
        const QByteArray before = GuiSandbox::readFile(good);
        MainWindow& window = sandbox.window();
        window.show();
        const qint16 first = window.openMenu(good, QStringLiteral("good.ini"));
        editDocument(window, first, QStringLiteral("Changed"));
        const qint16 second = window.openMenu(bad, QStringLiteral("bad.ini"));
        editDocument(window, second, QStringLiteral("a\nb"));
        sandbox.prompts().answers = { Answer::Yes };

        window.close();

        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QCOMPARE(sandbox.prompts().messages.at(1), exclamation(lineBreakRefusal(QStringLiteral("bad.ini"))));
        // All or none: the menu that could be saved was not written either.
        QCOMPARE(GuiSandbox::readFile(good), before);
        QCOMPARE(GuiSandbox::readFile(bad), before);
        QVERIFY(window.isVisible());
        QVERIFY(!window.state().isQuitting());
        QCOMPARE(editorCaptions(window), QStringList({ QStringLiteral("good.ini"), QStringLiteral("bad.ini") }));
    }

    void aboutQtShowsTheToolkitsBox()
    {
        GuiSandbox sandbox;
        QString shownTitle;
        QTimer::singleShot(0, qApp, [&shownTitle]() {
            QWidget* box = QApplication::activeModalWidget();
            if (box) {
                shownTitle = box->windowTitle();
                box->close();
            }
        });
        sandbox.action(QStringLiteral("mnuAboutQt"))->trigger();
        QCOMPARE(shownTitle, QStringLiteral("About Qt"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }
};

QTEST_MAIN(TestMainWindow)
#include "test_mainwindow.moc"

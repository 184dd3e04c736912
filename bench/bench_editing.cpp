// Times the editing operations of an editor window on the largest menus a menu file can hold,
// through the editing session with the tree patched as the editor does it, each with the paint of the
// shown window that follows: Delete of a 10,000-item branch, New Item (with its label edit started),
// the choice of a link target, Rename, Paste, Duplicate, drops within a window and into another one, Move up, and
// the Undo of each, which brings the tree back, beside a plain Refresh of the same menu.
// Run by hand on a release build (QT_QPA_PLATFORM=offscreen works): kelvbench_editing [runs]
// [find|typing|undo|all] [flat|deep|mixed] ("find": the find bar's tables alone; "typing": its
// narrowing keystroke alone; "undo": the editing tables of 32,767-item menus alone, with rename and
// paste; a shape name keeps the tables to that shape, e.g. to profile one).

#include "benchtiming.h"
#include "menugenerator.h"
#include "silentprompts.h"

#include "app/editorwindow.h"
#include "app/findbar.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/editingsession.h"
#include "core/optionsstore.h"
#include "editing/copylinks.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/subtreecopy.h"
#include "editing/textreplacement.h"
#include "editing/treedisplay.h"
#include "menufile/menufilewriter.h"
#include "model/itemlookup.h"
#include "model/runtimeerror.h"
#include "treeview/itemfinder.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 1).rightJustified(10);
}

/// Lets the window lay the tree out and paint it, as it does before the user sees the result.
void paint()
{
    QCoreApplication::processEvents();
}

/// The first item that is not a link and is not `other`, from the end of the array.
QString unlinkedKey(const MenuDocument& document, const QString& other)
{
    for (int i = int(document.items.size()) - 1; i >= 0; --i) {
        const MenuItem& item = document.items.at(i);
        if (!item.copiesCommands && item.key != other) {
            return item.key;
        }
    }
    return QString();
}

struct Timing
{
    double operation = 0;
    double undo = 0;
};

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double elapsedMilliseconds(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

/// Median times of `operation` and of the Undo that follows each run, so that every run meets the
/// same menu. `prepare` runs untimed before each operation.
template <typename Prepare, typename Operation, typename Undo>
Timing timeWithUndo(int runs, Prepare prepare, Operation operation, Undo undo)
{
    std::vector<double> operationTimes;
    std::vector<double> undoTimes;
    for (int run = 0; run < runs; ++run) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        operation();
        operationTimes.push_back(elapsedMilliseconds(timer));
        timer.restart();
        undo();
        undoTimes.push_back(elapsedMilliseconds(timer));
    }
    return Timing { median(operationTimes), median(undoTimes) };
}

/// Median time of the Redo of `operation`, each run after `prepare`, the operation and its Undo, with
/// the pause a user leaves between two keys: the autosave file the operation started is written by
/// then. Every run ends with the Undo again, so that each meets the same menu.
template <typename Prepare, typename Operation, typename Undo, typename Redo>
double timeRedo(int runs, Prepare prepare, Operation operation, Undo undo, Redo redo)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        prepare();
        operation();
        undo();
        idle(150);
        QElapsedTimer timer;
        timer.start();
        redo();
        times.push_back(elapsedMilliseconds(timer));
        idle(150);
        undo();
    }
    return median(times);
}

/// A main window with its own program folder and options, showing a generated menu.
struct BenchWindow
{
    explicit BenchWindow(const MenuGenerator::Options& generatorOptions, bool dragAndDrop = false)
    {
        const QString menuPath = folder.filePath(QStringLiteral("menu.ini"));
        writeMenuFile(MenuGenerator::generate(generatorOptions), menuPath);
        Options options;
        options.checkCopyCommand = 1;
        options.dragNDrop = dragAndDrop ? 1 : 0;
        store.saveOptions(options);
        window
            = std::make_unique<MainWindow>(prompts, store, folder.path(), folder.filePath(QStringLiteral("recovery")));
        window->show();
        index = window->openMenu(menuPath, QStringLiteral("menu.ini"));
        if (index == 0) {
            throw RunTimeError(0, QStringLiteral("openMenu"), QStringLiteral("the menu did not open"));
        }
        paint();
    }

    EditorWindow* editor() const { return window->editor(index); }
    ItemTree* tree() const { return editor()->tree(); }
    const MenuDocument& document() const { return window->state().document(index); }
    /// A click on the node `key`.
    void select(const QString& key) const { editor()->lstMenu_NodeClick(tree()->nodeByKey(key)); }
    void undo() const
    {
        window->mnuUndo_Click();
        paint();
    }
    void redo() const
    {
        window->mnuRedo_Click();
        paint();
    }
    void checkNothingWasSaid() const
    {
        if (prompts.messages > 0) {
            throw RunTimeError(0, QStringLiteral("editing"), prompts.lastText);
        }
    }

    QTemporaryDir folder;
    SilentPrompts prompts;
    OptionsStore store { folder.filePath(QStringLiteral("options.ini")) };
    std::unique_ptr<MainWindow> window;
    qint16 index = 0;
};

/// Activates the editor window of document `index` as its Window menu entry does.
void activate(MainWindow& window, qint16 index)
{
    window.findChild<QAction*>(QStringLiteral("mnuWindowName") + QString::number(index))->trigger();
}

/// The shapes the tables cover: all of them, or the one named on the command line.
QList<MenuShape> benchedShapes()
{
    const QStringList arguments = QCoreApplication::arguments();
    QList<MenuShape> shapes = MenuGenerator::allShapes();
    if (arguments.size() > 3) {
        shapes.erase(std::remove_if(
                         shapes.begin(), shapes.end(),
                         [&arguments](MenuShape shape) { return MenuGenerator::shapeName(shape) != arguments.at(3); }),
                     shapes.end());
    }
    return shapes;
}

void printHeader(QTextStream& out, const QStringList& headers)
{
    for (const QString& header : headers) {
        out << header.rightJustified(10);
    }
    out << "\n";
    out.flush();
}

/// Delete, New Item and a link choice on 32,767-item menus, beside Refresh.
void benchTreeEditing(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("refresh"), QStringLiteral("delete"), QStringLiteral("undo"),
                  QStringLiteral("new"), QStringLiteral("undo"), QStringLiteral("redo"), QStringLiteral("link"),
                  QStringLiteral("undo"), QStringLiteral("redo") });
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        BenchWindow bench(generatorOptions);
        EditingSession& session = bench.window->session();
        const auto undo = [&bench] { bench.undo(); };

        const double refresh = medianMilliseconds(
            runs, [] {},
            [&session] {
                session.run(EditOperations::refreshList);
                paint();
            });

        const Timing deleted = timeWithUndo(
            runs, [&bench] { bench.select(QStringLiteral("E0")); },
            [&session] {
                session.run(EditOperations::deleteItem);
                paint();
            },
            undo);

        // A full menu has no room for a new item: its caption's number would overflow, and so would
        // the number of its node (the root counts as node 1). Two leaves go first.
        for (int leaves = 0; leaves < 2; ++leaves) {
            const MenuDocument& document = bench.document();
            for (int node = 2; node <= bench.tree()->nodeCount(); ++node) {
                const QString key = bench.tree()->keyOf(bench.tree()->node(node));
                if (document.items.at(findItemByKey(document, key)).childCount == 0) {
                    bench.select(key);
                    session.run(EditOperations::deleteItem);
                    break;
                }
            }
        }
        ItemTree* tree = bench.tree();
        const auto closeLabelEditor = [tree] {
            if (QLineEdit* labelEditor = tree->viewport()->findChild<QLineEdit*>()) {
                QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                QCoreApplication::sendEvent(labelEditor, &escape);
            }
        };
        const auto selectForNewItem = [&bench] { bench.select(QStringLiteral("E20000")); };
        const auto newItem = [&session] {
            session.run(EditOperations::newItem);
            paint();
        };
        const auto undoNewItem = [&closeLabelEditor, &bench] {
            closeLabelEditor();
            bench.undo();
        };
        const auto redo = [&bench] { bench.redo(); };
        const Timing created = timeWithUndo(runs, selectForNewItem, newItem, undoNewItem);
        const double createdRedo = timeRedo(runs, selectForNewItem, newItem, undoNewItem, redo);

        EditorWindow* editor = bench.editor();
        auto* button = editor->findChild<QPushButton*>(QStringLiteral("cmdChangeCopy"));
        const QString source = unlinkedKey(bench.document(), QString());
        const QString target = unlinkedKey(bench.document(), source);
        const auto startLinkChoice = [&bench, &source, button] {
            bench.select(source);
            button->setChecked(true);
        };
        const auto chooseTarget = [editor, tree, &target] {
            editor->lstMenu_NodeClick(tree->nodeByKey(target));
            paint();
        };
        const Timing linked = timeWithUndo(runs, startLinkChoice, chooseTarget, undo);
        const double linkedRedo = timeRedo(runs, startLinkChoice, chooseTarget, undo, redo);

        bench.checkNothingWasSaid();
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(refresh) << cell(deleted.operation)
            << cell(deleted.undo) << cell(created.operation) << cell(created.undo) << cell(createdRedo)
            << cell(linked.operation) << cell(linked.undo) << cell(linkedRedo) << "\n";
        out.flush();
    }
}

/// Rename of an item through its label editor and Paste of one item's record over another, on
/// 32,767-item menus, each with its Undo: edits that change no node's place.
void benchRenameAndPaste(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("rename"), QStringLiteral("undo"), QStringLiteral("redo"),
                  QStringLiteral("paste"), QStringLiteral("undo"), QStringLiteral("redo") });
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        BenchWindow bench(generatorOptions);
        EditingSession& session = bench.window->session();
        ItemTree* tree = bench.tree();
        const auto undo = [&bench] { bench.undo(); };
        // Nodes in the middle of the tree: the last node's number does not fit the node index.
        const QString renamed = tree->keyOf(tree->node(tree->nodeCount() / 2));
        const QString copied = tree->keyOf(tree->node(tree->nodeCount() / 2 + 1));

        const auto redo = [&bench] { bench.redo(); };
        const auto startRename = [&bench, &session, &renamed] {
            bench.select(renamed);
            session.run(EditOperations::rename);
            paint();
        };
        const auto confirmRename = [tree] {
            if (QLineEdit* labelEditor = tree->viewport()->findChild<QLineEdit*>()) {
                labelEditor->setText(QStringLiteral("Renamed"));
                QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
                QCoreApplication::sendEvent(labelEditor, &enter);
            }
            paint();
        };
        const Timing rename = timeWithUndo(runs, startRename, confirmRename, undo);
        const double renameRedo = timeRedo(runs, startRename, confirmRename, undo, redo);

        const auto copyOther = [&bench, &session, &renamed, &copied] {
            bench.select(copied);
            session.run(EditOperations::copy);
            bench.select(renamed);
        };
        const auto paste = [&session] {
            session.run(EditOperations::paste);
            paint();
        };
        const Timing pasted = timeWithUndo(runs, copyOther, paste, undo);
        const double pasteRedo = timeRedo(runs, copyOther, paste, undo, redo);

        bench.checkNothingWasSaid();
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(rename.operation) << cell(rename.undo)
            << cell(renameRedo) << cell(pasted.operation) << cell(pasted.undo) << cell(pasteRedo) << "\n";
        out.flush();
    }
}

/// Duplicate of a 10,000-item branch in a 20,000-item menu, a drop that moves it within the window
/// and one that copies it into another window.
void benchBranchCopies(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("refresh"), QStringLiteral("duplicate"),
                  QStringLiteral("undo"), QStringLiteral("drop move"), QStringLiteral("undo"),
                  QStringLiteral("drop copy"), QStringLiteral("undo") });
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        generatorOptions.itemCount = 20000;
        BenchWindow bench(generatorOptions, true);
        EditingSession& session = bench.window->session();
        const auto undo = [&bench] { bench.undo(); };

        const double refresh = medianMilliseconds(
            runs, [] {},
            [&session] {
                session.run(EditOperations::refreshList);
                paint();
            });
        const Timing duplicated = timeWithUndo(
            runs, [&bench] { bench.select(QStringLiteral("E0")); },
            [&session] {
                session.run(EditOperations::duplicate);
                paint();
            },
            undo);

        // A left-button drag of the branch dropped on the last top-level item.
        EditorWindow* editor = bench.editor();
        ItemTree* tree = bench.tree();
        const QModelIndex root = tree->node(1);
        const QString lastTop = tree->keyOf(tree->model()->index(tree->model()->rowCount(root) - 1, 0, root));
        DragState& drag = bench.window->state().editing().drag;
        const auto startDrag = [&bench, &drag](DragState::Button button) {
            bench.select(QStringLiteral("E0"));
            drag.nodeKey = QStringLiteral("E0");
            drag.document = bench.index;
            drag.button = button;
            drag.active = true;
        };
        const Timing moved = timeWithUndo(
            runs, [&startDrag] { startDrag(DragState::Button::Left); },
            [editor, tree, &lastTop] {
                editor->lstMenu_OLEDragDrop(tree->nodeByKey(lastTop), QPoint());
                paint();
            },
            undo);

        // A right-button drag into a second window, copying it under that menu's first item.
        QTemporaryDir otherFolder;
        const QString otherPath = otherFolder.filePath(QStringLiteral("other.ini"));
        MenuGenerator::Options small;
        small.itemCount = 50;
        small.branchSize = 10;
        writeMenuFile(MenuGenerator::generate(small), otherPath);
        const qint16 other = bench.window->openMenu(otherPath, QStringLiteral("other.ini"));
        bench.window->setMenuPopup(
            [](QMenu* menu, const QPoint&) { menu->findChild<QAction*>(QStringLiteral("mnuItemCopy"))->trigger(); });
        EditorWindow* otherEditor = bench.window->editor(other);
        const Timing copied = timeWithUndo(
            runs,
            [&startDrag, &bench] {
                activate(*bench.window, bench.index);
                startDrag(DragState::Button::Right);
            },
            [otherEditor] {
                otherEditor->lstMenu_OLEDragDrop(otherEditor->tree()->nodeByKey(QStringLiteral("E0")), QPoint());
                paint();
            },
            [&bench, other] {
                activate(*bench.window, other);
                bench.window->mnuUndo_Click();
                paint();
            });

        bench.checkNothingWasSaid();
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(refresh) << cell(duplicated.operation)
            << cell(duplicated.undo) << cell(moved.operation) << cell(moved.undo) << cell(copied.operation)
            << cell(copied.undo) << "\n";
        out.flush();
    }
}

/// Move up of a leaf and of a submenu among their siblings on 32,767-item menus.
void benchMoves(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("leaf up"), QStringLiteral("leaf down"),
                  QStringLiteral("menu up"), QStringLiteral("menu down") });
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        BenchWindow bench(generatorOptions);
        EditorWindow* editor = bench.editor();
        ItemTree* tree = bench.tree();
        // The first leaf and the first submenu that have a sibling node on either side.
        QString leaf;
        QString submenu;
        for (int n = 2; n <= tree->nodeCount() && (leaf.isEmpty() || submenu.isEmpty()); ++n) {
            const QModelIndex node = tree->node(n);
            const int row = node.row();
            if (row < 1 || row + 1 >= tree->model()->rowCount(node.parent())) {
                continue;
            }
            QString& found = tree->model()->rowCount(node) == 0 ? leaf : submenu;
            if (found.isEmpty()) {
                found = tree->keyOf(node);
            }
        }
        const auto time = [&bench, runs](const QString& key, void (EditorWindow::*move)(), EditorWindow* window) {
            return timeWithUndo(
                       runs, [&bench, &key] { bench.select(key); },
                       [window, move] {
                           (window->*move)();
                           paint();
                       },
                       [&bench] { bench.window->mnuUndo_Click(); })
                .operation;
        };
        const double leafUp = time(leaf, &EditorWindow::cmdUp_Click, editor);
        const double leafDown = time(leaf, &EditorWindow::cmdDown_Click, editor);
        const double menuUp = time(submenu, &EditorWindow::cmdUp_Click, editor);
        const double menuDown = time(submenu, &EditorWindow::cmdDown_Click, editor);
        bench.checkNothingWasSaid();
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(leafUp) << cell(leafDown) << cell(menuUp)
            << cell(menuDown) << "\n";
        out.flush();
    }
}

/// Replace over a whole 32,767-item menu and in its 10,000-item branch: the replacement in the
/// document alone, and the whole command with the tree rebuilt, beside Refresh.
void benchReplace(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("refresh"), QStringLiteral("all"), QStringLiteral("command"),
                  QStringLiteral("branch"), QStringLiteral("command") });
    const QString find = QStringLiteral("Item 12");
    const QString replacement = QStringLiteral("Entry 12");
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        BenchWindow bench(generatorOptions);
        EditingSession& session = bench.window->session();
        const double refresh = medianMilliseconds(
            runs, [] {},
            [&session] {
                session.run(EditOperations::refreshList);
                paint();
            });

        MenuDocument copy;
        const double all = medianMilliseconds(
            runs, [&copy, &bench] { copy = bench.document(); },
            [&copy, &find, &replacement] { replaceInAll(copy, find, replacement); });
        const double branch = medianMilliseconds(
            runs, [&copy, &bench] { copy = bench.document(); },
            [&copy, &find, &replacement] {
                replaceInBranch(copy, findItemByKey(copy, QStringLiteral("E0")), find, replacement);
            });

        EditArguments arguments;
        arguments.text = find;
        arguments.replacement = replacement;
        const auto command = [&session, &arguments] {
            session.run(EditOperations::replace, arguments);
            paint();
        };
        // Replace All comes after its dialog was filled in: by then the autosave file of the edit
        // before is written, which the snapshot of the next edit would otherwise wait for.
        const auto afterTheDialog = [] { idle(150); };
        arguments.checked = true;
        const Timing allCommand = timeWithUndo(runs, afterTheDialog, command, [&bench] { bench.undo(); });
        arguments.checked = false;
        const Timing branchCommand = timeWithUndo(
            runs,
            [&bench, &afterTheDialog] {
                bench.select(QStringLiteral("E0"));
                afterTheDialog();
            },
            command, [&bench] { bench.undo(); });
        // The count is told in a plain message each time.
        if (bench.prompts.messages != 2 * runs) {
            throw RunTimeError(0, QStringLiteral("replace"), bench.prompts.lastText);
        }
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(refresh) << cell(all)
            << cell(allCommand.operation) << cell(branch) << cell(branchCommand.operation) << "\n";
        out.flush();
    }
}

/// The find bar's keystrokes; `typingOnly`: the narrowing keystroke alone, to profile it.
void benchFind(QTextStream& out, int runs, bool typingOnly)
{
    if (typingOnly) {
        printHeader(out, { QStringLiteral("shape"), QStringLiteral("typing") });
    } else {
        printHeader(out,
                    { QStringLiteral("shape"), QStringLiteral("letter"), QStringLiteral("caption"),
                      QStringLiteral("typing"), QStringLiteral("commands"), QStringLiteral("no match"),
                      QStringLiteral("step") });
    }
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        BenchWindow bench(generatorOptions);
        bench.editor()->openFindBar();
        FindBar* bar = bench.editor()->findBar();
        auto* text = bar->findChild<QLineEdit*>(QStringLiteral("txtFindItem"));
        auto* inCommands = bar->findChild<QCheckBox*>(QStringLiteral("chkFindInCommands"));
        // One keystroke: the text grows by a character, the bar searches and shows the first match.
        const auto keystroke = [text](const QString& typed) {
            return [text, typed] {
                text->setText(typed);
                paint();
            };
        };
        // The first keystroke after an edit of the menu: a caption renamed, as most edits change a
        // record and leave the tree's shape alone (the table below times a search that plans the tree
        // afresh, as one after a change of shape does).
        MenuDocument& menu = bench.window->state().document(bench.index);
        const qsizetype edited = menu.items.size() / 2;
        int edits = 0;
        const auto afresh = [text, bar, &menu, edited, &edits] {
            text->clear();
            menu.items[edited].caption = QStringLiteral("Edited %1").arg(++edits);
            bar->menuChanged();
        };
        // A keystroke that narrows the matches of the one before.
        const auto narrowing = [&] {
            return medianMilliseconds(
                runs,
                [text, &afresh] {
                    afresh();
                    text->setText(QStringLiteral("Item 12"));
                    paint();
                },
                keystroke(QStringLiteral("Item 123")));
        };
        if (typingOnly) {
            out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(narrowing()) << "\n";
            out.flush();
            continue;
        }
        const double letter = medianMilliseconds(runs, afresh, keystroke(QStringLiteral("i")));
        const double caption = medianMilliseconds(runs, afresh, keystroke(QStringLiteral("Item 12")));
        const double typing = narrowing();
        // F3 on to the next match: the showing and the paint alone, without a search.
        const double step = medianMilliseconds(
            runs, [] {},
            [bar] {
                bar->findNext();
                paint();
            });
        inCommands->setChecked(true);
        const double commands = medianMilliseconds(runs, afresh, keystroke(QStringLiteral("$fs-00")));
        const double none = medianMilliseconds(runs, afresh, keystroke(QStringLiteral("no such text")));
        inCommands->setChecked(false);
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(letter) << cell(caption) << cell(typing)
            << cell(commands) << cell(none) << cell(step) << "\n";
        out.flush();
    }
}

/// The search of the find bar alone, without the bar, the showing of a match and the paint.
void benchFinder(QTextStream& out, int runs)
{
    printHeader(out,
                { QStringLiteral("shape"), QStringLiteral("letter"), QStringLiteral("caption"),
                  QStringLiteral("typing"), QStringLiteral("commands"), QStringLiteral("no match"),
                  QStringLiteral("cmd type") });
    for (const MenuShape shape : benchedShapes()) {
        MenuGenerator::Options generatorOptions;
        generatorOptions.shape = shape;
        MenuDocument document = MenuGenerator::generate(generatorOptions);
        normalizeCopyLinks(document);
        ItemFinder finder;
        const auto request = [](const QString& text, bool inCommands) {
            FindRequest made;
            made.text = text;
            made.inCommands = inCommands;
            return made;
        };
        // The first search after the menu changed.
        const auto afresh = [&](const QString& text, bool inCommands) {
            return medianMilliseconds(
                runs, [&finder] { finder.reset(); }, [&] { finder.find(document, 0, request(text, inCommands)); });
        };
        // A search whose text grew from the one before.
        const auto typing = [&](const QString& before, const QString& text, bool inCommands) {
            return medianMilliseconds(
                runs,
                [&] {
                    finder.reset();
                    finder.find(document, 0, request(before, inCommands));
                },
                [&] { finder.find(document, 0, request(text, inCommands)); });
        };
        out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(afresh(QStringLiteral("i"), false))
            << cell(afresh(QStringLiteral("Item 12"), false))
            << cell(typing(QStringLiteral("Item 12"), QStringLiteral("Item 123"), false))
            << cell(afresh(QStringLiteral("$fs-00"), true)) << cell(afresh(QStringLiteral("no such text"), true))
            << cell(typing(QStringLiteral("$fs-00"), QStringLiteral("$fs-001"), true)) << "\n";
        out.flush();
    }
}

/// The find bar: a keystroke in the bar, then the search alone.
void benchFindBar(QTextStream& out, int runs, bool typingOnly = false)
{
    out << "32,767 items. One keystroke in the find bar: the search, the first match shown as a click\n"
           "shows it, and the paint; each the first after a caption was edited but typing. letter: \"i\", in\n"
           "every caption; caption: \"Item 12\"; typing: \"Item 123\" after \"Item 12\"; commands: \"$fs-00\"\n"
           "also in the commands; no match: in the commands, none; step: F3 to the next match, no search.\n";
    benchFind(out, runs, typingOnly);
    if (typingOnly) {
        return;
    }
    out << "\nThe same searches alone, without the bar, the showing and the paint, each planning the tree\n"
           "afresh as after a change of its shape; cmd type: \"$fs-001\" after \"$fs-00\", in the commands.\n";
    benchFinder(out, runs);
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 5;
    const bool findOnly = arguments.size() > 2 && arguments.at(2) == QLatin1String("find");
    const bool typingOnly = arguments.size() > 2 && arguments.at(2) == QLatin1String("typing");
    const bool undoOnly = arguments.size() > 2 && arguments.at(2) == QLatin1String("undo");

    QTextStream out(stdout);
    out << "Median of " << runs
        << " runs, milliseconds. Links formed on opening; the branch of E0 holds\n"
           "10,000 items. Each time includes the undo snapshot and the paint that follows; undo: the\n"
           "Undo of the operation before it, which brings the tree back.\n\n";
    try {
        if (findOnly || typingOnly) {
            benchFindBar(out, runs, typingOnly);
            return 0;
        }
        out << "32,767 items. refresh: Refresh List; delete: Delete of the branch; new: New Item up to\n"
               "its open label editor, in the menu less two leaves (a full one has no room); link: the\n"
               "click that chooses a link target; redo: Redo after the Undo, a key's pause later.\n";
        benchTreeEditing(out, runs);
        out << "\n32,767 items. rename: a caption typed in the label editor and confirmed; paste: Paste of\n"
               "another item's record over the selected one; redo: Redo after the Undo, a key's pause later.\n";
        benchRenameAndPaste(out, runs);
        if (undoOnly) {
            return 0;
        }
        out << "\n20,000 items. duplicate: Duplicate of the branch; drop move: a left-button drop of the\n"
               "branch on the last top-level item; drop copy: a right-button drop copying it into a\n"
               "second window.\n";
        benchBranchCopies(out, runs);
        out << "\n32,767 items. Move up and down of a leaf and of a submenu among their siblings.\n";
        benchMoves(out, runs);
        out << "\n32,767 items. Replace of \"Item 12\": all, branch: replaceInAll, replaceInBranch of the\n"
               "10,000-item branch in the document alone; command: Replace All with its message answered\n"
               "and the tree rebuilt.\n";
        benchReplace(out, runs);
        out << "\n";
        benchFindBar(out, runs);
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error.report()));
        return 1;
    }
    return 0;
}

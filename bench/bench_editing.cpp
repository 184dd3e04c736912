// Times the editing operations of an editor window on the largest menus a menu file can hold,
// through the editing session with the tree patched as the editor does it: Delete of the
// 10,000-item branch, New Item (with its label edit started), the choice of a link target, and the
// Undo of each, which rebuilds the tree, beside a plain Refresh of the same menu. Each time includes
// the snapshot with its autosave write and the paint of the shown window that follows.
// Run by hand on a release build (QT_QPA_PLATFORM=offscreen works): kelvbench_editing [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/editingsession.h"
#include "core/optionsstore.h"
#include "core/userprompts.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/treedisplay.h"
#include "menufile/menufilewriter.h"
#include "model/itemlookup.h"
#include "model/runtimeerror.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

/// Answers every message with OK and every question with No; a benchmark has no one to ask.
class SilentPrompts final : public UserPrompts
{
public:
    Answer showMessage(const MessageRequest& request) override
    {
        ++messages;
        lastText = request.text;
        return request.buttons == MessageRequest::Buttons::Ok ? Answer::Ok : Answer::No;
    }
    QString askOpenFileName(const QString&, const QString&) override { return QString(); }
    QString askSaveFileName(const QString&, const QString&) override { return QString(); }

    int messages = 0;
    QString lastText;
};

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

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 5;

    QTextStream out(stdout);
    out << "Median of " << runs
        << " runs, milliseconds. 32,767 items, links formed on opening; the branch\n"
           "of E0 holds 10,000 items. Each time includes the undo snapshot (autosave write) and the\n"
           "paint that follows. refresh: Refresh List; delete: Delete of the branch; new: New Item\n"
           "up to its open label editor, in the menu less two leaves (a full one has no room); link: the\n"
           "click that chooses a link target; undo: the Undo of the operation before it, which rebuilds\n"
           "the tree.\n\n";
    const QStringList headers { QStringLiteral("shape"), QStringLiteral("refresh"), QStringLiteral("delete"),
                                QStringLiteral("undo"),  QStringLiteral("new"),     QStringLiteral("undo"),
                                QStringLiteral("link"),  QStringLiteral("undo") };
    for (const QString& header : headers) {
        out << header.rightJustified(10);
    }
    out << "\n";
    out.flush();

    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            QTemporaryDir folder;
            MenuGenerator::Options generatorOptions;
            generatorOptions.shape = shape;
            const QString menuPath = folder.filePath(QStringLiteral("menu.ini"));
            writeMenuFile(MenuGenerator::generate(generatorOptions), menuPath);

            SilentPrompts prompts;
            OptionsStore store(folder.filePath(QStringLiteral("options.ini")));
            Options options;
            options.checkCopyCommand = 1;
            store.saveOptions(options);
            MainWindow window(prompts, store, folder.path());
            window.show();
            const qint16 index = window.openMenu(menuPath, QStringLiteral("menu.ini"));
            if (index == 0) {
                throw RunTimeError(0, QStringLiteral("openMenu"), QStringLiteral("the menu did not open"));
            }
            paint();
            EditorWindow* editor = window.editor(index);
            ItemTree* tree = editor->tree();
            EditingSession& session = window.session();
            const auto select = [editor, tree](const QString& key) { editor->lstMenu_NodeClick(tree->nodeByKey(key)); };
            const auto undo = [&window] {
                window.mnuUndo_Click();
                paint();
            };

            const double refresh = medianMilliseconds(
                runs, [] {},
                [&session] {
                    session.run(EditOperations::refreshList);
                    paint();
                });

            const Timing deleted = timeWithUndo(
                runs, [&select] { select(QStringLiteral("E0")); },
                [&session] {
                    session.run(EditOperations::deleteItem);
                    paint();
                },
                undo);

            // A full menu has no room for a new item: its caption's number would overflow, and so would
            // the number of its node (the root counts as node 1). Two leaves go first.
            for (int leaves = 0; leaves < 2; ++leaves) {
                const MenuDocument& document = window.state().document(index);
                for (int node = 2; node <= tree->nodeCount(); ++node) {
                    const QString key = tree->keyOf(tree->node(node));
                    if (document.items.at(findItemByKey(document, key)).childCount == 0) {
                        select(key);
                        session.run(EditOperations::deleteItem);
                        break;
                    }
                }
            }
            const auto closeLabelEditor = [tree] {
                if (QLineEdit* labelEditor = tree->viewport()->findChild<QLineEdit*>()) {
                    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                    QCoreApplication::sendEvent(labelEditor, &escape);
                }
            };
            const Timing created = timeWithUndo(
                runs, [&select] { select(QStringLiteral("E20000")); },
                [&session] {
                    session.run(EditOperations::newItem);
                    paint();
                },
                [&closeLabelEditor, &undo] {
                    closeLabelEditor();
                    undo();
                });

            auto* button = editor->findChild<QPushButton*>(QStringLiteral("cmdChangeCopy"));
            const QString source = unlinkedKey(window.state().document(index), QString());
            const QString target = unlinkedKey(window.state().document(index), source);
            const Timing linked = timeWithUndo(
                runs,
                [&select, &source, button] {
                    select(source);
                    button->setChecked(true);
                },
                [editor, tree, &target] {
                    editor->lstMenu_NodeClick(tree->nodeByKey(target));
                    paint();
                },
                undo);

            if (prompts.messages > 0) {
                throw RunTimeError(0, QStringLiteral("editing"), prompts.lastText);
            }
            out << MenuGenerator::shapeName(shape).rightJustified(10) << cell(refresh) << cell(deleted.operation)
                << cell(deleted.undo) << cell(created.operation) << cell(created.undo) << cell(linked.operation)
                << cell(linked.undo) << "\n";
            out.flush();
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error.report()));
        return 1;
    }
    return 0;
}

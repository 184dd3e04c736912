// Times the item tree of an editor window on the largest menus a menu file can hold: the plan of a
// rebuild, the rebuild of the tree control itself, its recolouring and the sync that Undo of a
// rename makes, trusting the shape of the last sync or comparing every node. Run by hand on a release
// build (QT_QPA_PLATFORM=offscreen works): kelvbench_tree [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "app/itemtree.h"
#include "app/itemtreemodel.h"
#include "editing/copylinks.h"
#include "editing/editcontext.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "model/itemlookup.h"
#include "model/runtimeerror.h"
#include "treeview/treeplan.h"

#include <QApplication>
#include <QTextStream>

#include <cstdio>
#include <functional>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 1).rightJustified(11);
}

/// One item under another, 32,767 levels deep: far deeper than any real menu, but what the model
/// allows, so the rebuild must survive it.
MenuDocument chainMenu(int depth)
{
    MenuDocument document;
    document.items.reserve(depth);
    for (int i = 0; i < depth; ++i) {
        MenuItem item;
        item.key = QStringLiteral("E%1").arg(i);
        item.caption = QStringLiteral("Level %1").arg(i);
        item.level = qint16(i);
        item.parent = qint16(i - 1);
        item.childCount = qint16(i + 1 < depth ? 1 : 0);
        item.siblingOrder = 1;
        item.commands.append(Command { QStringLiteral("*"), QStringLiteral("echo $fs-001$") });
        document.items.append(item);
    }
    document.lastIndex = qint16(depth - 1);
    return document;
}

/// Shows `first` and `second` in turn, as Undo and Redo do: the document changes, then the tree
/// syncs to it from the one before.
struct Flip
{
    ItemTree& tree;
    MenuDocument& document;
    const MenuDocument& first;
    const MenuDocument& second;
    bool showsSecond = false;

    void operator()()
    {
        showsSecond = !showsSecond;
        document = showsSecond ? second : first;
        tree.syncTo(showsSecond ? &first : &second);
    }
};

struct Row
{
    QString name;
    MenuDocument document;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 5;

    QTextStream out(stdout);
    out << "Median of " << runs << " runs, milliseconds. 32,767 items, copy-command links formed.\n";
    out << "plan 0 / plan 1: planTree with hide mode 0 / 1; generate: ItemTree::generate (clearing the\n"
           "previous tree, building, expanding and styling); +layout: generate and the view's layout and\n"
           "paint of the shown window; colorize: ItemTree::colorize; clear: ItemTree::clearNodes;\n"
           "sync: ItemTree::syncTo between the menu and the menu with one item renamed, which share\n"
           "their other items, as Undo and Redo of a rename; full sync: the same, every node compared;\n"
           "new sync: ItemTree::syncTo between the menu (less a leaf) with and without a new item, as\n"
           "Undo and Redo of New Item (the window is not shown: the view's layout is not timed).\n\n";
    const QStringList headers { QStringLiteral("shape"),     QStringLiteral("nodes"),    QStringLiteral("plan 0"),
                                QStringLiteral("plan 1"),    QStringLiteral("generate"), QStringLiteral("+layout"),
                                QStringLiteral("colorize"),  QStringLiteral("clear"),    QStringLiteral("sync"),
                                QStringLiteral("full sync"), QStringLiteral("new sync") };
    for (const QString& header : headers) {
        out << header.rightJustified(11);
    }
    out << "\n";
    out.flush();

    try {
        QList<Row> rows;
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            MenuDocument document = MenuGenerator::generate(options);
            normalizeCopyLinks(document);
            rows.append(Row { MenuGenerator::shapeName(shape), document });
        }
        rows.append(Row { QStringLiteral("chain"), chainMenu(32767) });

        for (Row& row : rows) {
            MenuDocument& document = row.document;
            qsizetype planned = 0;
            const double plan0 = medianMilliseconds(
                runs, [] {}, [&document, &planned] { planned = planTree(document, 0).size(); });
            const double plan1 = medianMilliseconds(
                runs, [] {}, [&document] { (void)planTree(document, 1); });

            ItemTree tree;
            tree.setDocumentSource([&document]() -> const MenuDocument& { return document; });
            tree.resize(400, 700);
            const double generate = medianMilliseconds(
                runs, [] {}, [&tree] { tree.generate(); });
            if (tree.nodeCount() != planned + 1) {
                std::fputs("the tree does not hold the planned nodes\n", stderr);
                return 1;
            }
            const double colorize = medianMilliseconds(
                runs, [] {}, [&tree] { tree.colorize(); });
            const double clear = medianMilliseconds(
                runs, [&tree] { tree.generate(); }, [&tree] { tree.clearNodes(); });

            // Undo and Redo of a rename, in turn.
            tree.generate();
            const MenuDocument original = document;
            MenuDocument renamed = document;
            renamed.items[renamed.items.size() / 2].caption = QStringLiteral("Renamed");
            // One flip for both timings, so that the second goes on from the document the first left.
            Flip flip { tree, document, original, renamed };
            const double sync = medianMilliseconds(
                runs, [] {}, std::ref(flip));
            const double fullSync = medianMilliseconds(
                runs, [&tree] { tree.treeModel()->nodes().forgetSyncedShape(); }, std::ref(flip));
            document = original;

            // Undo and Redo of New Item, in turn: an item joins as the last child of the parent of the
            // node halfway down the collection, and goes again. A full menu has no room for it, so a
            // leaf goes first, as in the editing benchmark.
            tree.generate();
            MenuDocument withoutNew = document;
            for (int n = tree.nodeCount() / 2; n <= tree.nodeCount(); ++n) {
                const QString key = tree.keyOf(tree.node(n));
                if (withoutNew.items.at(findItemByKey(withoutNew, key)).childCount == 0) {
                    removeItemBranch(withoutNew, key);
                    break;
                }
            }
            document = withoutNew;
            tree.generate();
            MenuDocument withNew = withoutNew;
            EditingState editing;
            WindowEditingState window;
            const QModelIndex halfway = tree.node(tree.nodeCount() / 2);
            EditContext context { withNew, SelectedNode::of(tree.keyOf(halfway), tree.keyOf(halfway.parent())),
                                  EditArguments(), editing, window };
            createItem(context);
            const double newItemSync = medianMilliseconds(
                runs, [] {}, Flip { tree, document, withoutNew, withNew });
            document = original;

            tree.show();
            const double shown = medianMilliseconds(
                runs, [] {},
                [&tree] {
                    tree.generate();
                    QApplication::processEvents();
                });
            tree.hide();

            out << row.name.rightJustified(11) << QString::number(planned + 1).rightJustified(11) << cell(plan0)
                << cell(plan1) << cell(generate) << cell(shown) << cell(colorize) << cell(clear) << cell(sync)
                << cell(fullSync) << cell(newItemSync) << "\n";
            out.flush();
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

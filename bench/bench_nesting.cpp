// Times the operations that change how items nest, on the largest menus a menu file can hold: New
// Sub-item, Move into the item above and Move out of the parent, each on a leaf and on the first
// item's 10,000-item branch. What is timed is the operation of the core on the document, as the
// editing session runs it (the undo snapshot it records first is timed by kelvbench_history).
// Run by hand on a release build: kelvbench_nesting [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "editing/editcontext.h"
#include "editing/itemcreation.h"
#include "editing/itemmoving.h"
#include "model/itemlookup.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 2).rightJustified(12);
}

/// One editor window's editing state around one document.
struct Editing
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;
    /// Whether the document shares its items with an undo snapshot, as in the editor, where the
    /// session records one right before the operation: its first change then copies the item list.
    bool afterSnapshot = false;
    MenuDocument snapshot;

    void recordSnapshot()
    {
        if (afterSnapshot) {
            snapshot = document;
        }
    }

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), const SelectedNode& node)
    {
        EditContext context { document, node, EditArguments(), editing, window };
        return operation(context);
    }
};

const MenuItem& itemWithKey(const MenuDocument& document, const QString& key)
{
    const int index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(9, QStringLiteral("bench"), QStringLiteral("no item %1").arg(key));
    }
    return document.items.at(index);
}

/// The key of the node of item `key` under its parent node, as a tree with nothing hidden shows it.
QString parentKeyOf(const MenuDocument& document, const QString& key)
{
    const int parent = itemWithKey(document, key).parent;
    return parent < 0 ? SelectedNode::rootKey() : document.items.at(parent).key;
}

void require(bool condition, const char* what)
{
    if (!condition) {
        throw RunTimeError(0, QStringLiteral("bench"), QString::fromLatin1(what));
    }
}

struct Row
{
    double subItemLeaf = 0;
    double subItemBranch = 0;
    double intoLeaf = 0;
    double intoBranch = 0;
    double outLeaf = 0;
    double outBranch = 0;
};

/// The menu without its last item, a leaf (the generated menu lies in tree pre-order): room for the
/// one item that New Sub-item, or the leaf moved in and out, adds.
MenuDocument withoutLastItem(const MenuDocument& document)
{
    MenuDocument roomy = detachedCopy(document);
    const MenuItem last = roomy.items.at(roomy.items.size() - 1);
    roomy.items.removeLast();
    require(last.childCount == 0, "the last item is not a leaf");
    if (last.parent >= 0) {
        --roomy.items[last.parent].childCount;
    }
    --roomy.lastIndex;
    return roomy;
}

/// The operations on `full` (32,767 items) and, where they add an item, on `roomy` (one less).
Row timeShape(const MenuDocument& full, const MenuDocument& roomy, bool afterSnapshot, int runs)
{
    Row row;
    Editing work;
    work.afterSnapshot = afterSnapshot;
    const QString branchKey = QStringLiteral("E0");
    // The last item of the array: a leaf, deep in the tree for the deep and mixed shapes.
    const MenuDocument& generated = roomy;
    const QString leafKey = generated.items.constLast().key;
    const QString leafParentKey = parentKeyOf(generated, leafKey);

    row.subItemLeaf = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(generated);
            work.recordSnapshot();
        },
        [&] { work.run(&createSubItem, SelectedNode::of(leafKey, leafParentKey)); });
    require(itemWithKey(work.document, leafKey).childCount == 1, "the leaf has no new child");
    row.subItemBranch = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(generated);
            work.recordSnapshot();
        },
        [&] { work.run(&createSubItem, SelectedNode::of(branchKey, SelectedNode::rootKey())); });

    // A leaf with a leaf above it: a new item after the last one, moved into it.
    QString newKey;
    row.intoLeaf = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(generated);
            work.run(&createItem, SelectedNode::of(leafKey, leafParentKey));
            newKey = work.document.items.constLast().key;
            work.recordSnapshot();
        },
        [&] {
            SelectedNode node = SelectedNode::of(newKey, leafParentKey);
            node.previousSiblingKey = leafKey;
            work.run(&moveIntoItemAbove, node);
        });
    require(itemWithKey(work.document, newKey).parent == findItemByKey(work.document, leafKey), "not moved in");

    // A leaf with a parent: a new child of the last item, moved out of it.
    row.outLeaf = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(generated);
            work.run(&createSubItem, SelectedNode::of(leafKey, leafParentKey));
            newKey = work.document.items.constLast().key;
            work.recordSnapshot();
        },
        [&] { work.run(&moveOutOfParent, SelectedNode::of(newKey, leafKey)); });
    require(itemWithKey(work.document, newKey).parent == itemWithKey(work.document, leafKey).parent, "not moved out");

    // The branch of E0, the first top-level item, after the second top-level item has moved up
    // above it: into that item, and out of it again.
    Editing prepared;
    prepared.document = detachedCopy(full);
    QString aboveKey;
    for (const MenuItem& item : std::as_const(prepared.document.items)) {
        if (item.parent < 0 && item.siblingOrder == 2) {
            aboveKey = item.key;
        }
    }
    require(!aboveKey.isEmpty(), "no second top-level item");
    SelectedNode branchNode = SelectedNode::of(branchKey, SelectedNode::rootKey());
    branchNode.nextSiblingKey = aboveKey;
    prepared.run(&moveItemDown, branchNode);
    branchNode.nextSiblingKey.clear();
    branchNode.previousSiblingKey = aboveKey;
    row.intoBranch = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(prepared.document);
            work.recordSnapshot();
        },
        [&] { work.run(&moveIntoItemAbove, branchNode); });
    require(itemWithKey(work.document, branchKey).parent == findItemByKey(work.document, aboveKey),
            "the branch did not move in");
    require(MenuGenerator::branchSize(work.document, aboveKey)
                == MenuGenerator::branchSize(prepared.document, aboveKey)
                    + MenuGenerator::branchSize(prepared.document, branchKey),
            "the branch did not move whole");

    const MenuDocument nested = work.document;
    row.outBranch = medianMilliseconds(
        runs,
        [&] {
            work.document = detachedCopy(nested);
            work.recordSnapshot();
        },
        [&] { work.run(&moveOutOfParent, SelectedNode::of(branchKey, aboveKey)); });
    require(itemWithKey(work.document, branchKey).parent == -1, "the branch did not move out");
    require(itemWithKey(work.document, branchKey).siblingOrder == 2, "the branch is not right after its parent");
    return row;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 15;

    QTextStream out(stdout);
    out << "Median of " << runs << " runs, milliseconds, on menus of 32,767 items (New Sub-item and the leaf moves:\n"
        << "32,766 and the new item). branch: the first item's, 10,000 items. sub: New Sub-item; into: Move into\n"
        << "the item above; out: Move out of the parent. items: alone in memory, or shared with the undo\n"
        << "snapshot the editor records just before (the operation's first change then copies the item list).\n\n";
    const QStringList headers { QStringLiteral("shape"),     QStringLiteral("items"),
                                QStringLiteral("sub leaf"),  QStringLiteral("sub branch"),
                                QStringLiteral("into leaf"), QStringLiteral("into branch"),
                                QStringLiteral("out leaf"),  QStringLiteral("out branch") };
    for (const QString& header : headers) {
        out << header.rightJustified(12);
    }
    out << "\n";
    out.flush();

    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            const MenuDocument generated = MenuGenerator::generate(options);
            require(MenuGenerator::branchSize(generated, QStringLiteral("E0")) == options.branchSize,
                    "the generated branch has the wrong size");
            const MenuDocument roomy = withoutLastItem(generated);
            for (const bool afterSnapshot : { false, true }) {
                const Row row = timeShape(generated, roomy, afterSnapshot, runs);
                out << MenuGenerator::shapeName(shape).rightJustified(12)
                    << (afterSnapshot ? QStringLiteral("snapshot") : QStringLiteral("alone")).rightJustified(12)
                    << cell(row.subItemLeaf) << cell(row.subItemBranch) << cell(row.intoLeaf) << cell(row.intoBranch)
                    << cell(row.outLeaf) << cell(row.outBranch) << "\n";
            }
            out.flush();
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

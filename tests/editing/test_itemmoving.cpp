#include "documentinvariants.h"
#include "literallinkroutines.h"
#include "literalsubtreecopy.h"
#include "plannedselection.h"
#include "randommenu.h"
#include "treeupdatetext.h"

#include "editing/copylinks.h"
#include "editing/itemmoving.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/treeplan.h"

#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <utility>

namespace {

struct Node
{
    const char* key;
    int parent;
    int siblingOrder;
};

/// Items in the given array order, captioned after their keys; childCount and level are derived
/// from the parents.
MenuDocument documentOf(std::initializer_list<Node> nodes, qint16 lastIndex)
{
    MenuDocument document;
    for (const Node& node : nodes) {
        MenuItem item;
        item.key = QString::fromLatin1(node.key);
        item.caption = QStringLiteral("Caption of ") + item.key;
        item.parent = qint16(node.parent);
        item.siblingOrder = qint16(node.siblingOrder);
        document.items.append(item);
    }
    for (const MenuItem& item : std::as_const(document.items)) {
        if (item.parent >= 0) {
            ++document.items[item.parent].childCount;
        }
    }
    for (MenuItem& item : document.items) {
        int level = 0;
        for (int p = item.parent; p >= 0; p = document.items.at(p).parent) {
            ++level;
        }
        item.level = qint16(level);
    }
    document.lastIndex = lastIndex;
    return document;
}

QList<Command> commandList(const char* text)
{
    return MenuItem::placeholderCommands()
        + QList<Command> { Command { QStringLiteral("txt"), QString::fromLatin1(text) } };
}

QString key(const char* text)
{
    return QString::fromLatin1(text);
}

QStringList keyList(std::initializer_list<const char*> texts)
{
    QStringList keys;
    for (const char* text : texts) {
        keys.append(QString::fromLatin1(text));
    }
    return keys;
}

QStringList keysInSlotOrder(const MenuDocument& document)
{
    QStringList keys;
    for (const MenuItem& item : document.items) {
        keys.append(item.key);
    }
    return keys;
}

const MenuItem& itemWithKey(const MenuDocument& document, const char* itemKey)
{
    const qint16 index = findItemByKey(document, QString::fromLatin1(itemKey));
    if (index < 0) {
        throw RunTimeError(9, QStringLiteral("test"));
    }
    return document.items.at(index);
}

/// The indices of the children of item `parent` (-1: the top level) in their sibling order.
QList<int> childIndices(const MenuDocument& document, int parent)
{
    QList<std::pair<int, int>> found;
    for (int i = 0; i < document.items.size(); ++i) {
        if (document.items.at(i).parent == parent) {
            found.append({ document.items.at(i).siblingOrder, i });
        }
    }
    std::sort(found.begin(), found.end());
    QList<int> indices;
    for (const auto& child : std::as_const(found)) {
        indices.append(child.second);
    }
    return indices;
}

QStringList childKeys(const MenuDocument& document, const char* parentKey)
{
    QStringList keys;
    for (const int index : childIndices(document, findItemByKey(document, QString::fromLatin1(parentKey)))) {
        keys.append(document.items.at(index).key);
    }
    return keys;
}

bool isInBranch(const MenuDocument& document, int index, int top)
{
    for (int k = index; k != -1; k = document.items.at(k).parent) {
        if (k == top) {
            return true;
        }
    }
    return false;
}

/// The menu after item `moved` went with its branch to be child number `position` (from 0, counted
/// without it) of `destination` (-1: the top level): the places left behind close up, the new
/// siblings make room, both child counts follow. Nothing else changes.
MenuDocument placedAt(const MenuDocument& document, int moved, int destination, int position)
{
    MenuDocument expected = document;
    const int oldParent = document.items.at(moved).parent;
    QList<int> oldSiblings = childIndices(document, oldParent);
    oldSiblings.removeAll(moved);
    for (int n = 0; n < oldSiblings.size(); ++n) {
        expected.items[oldSiblings.at(n)].siblingOrder = qint16(n + 1);
    }
    if (oldParent >= 0) {
        expected.items[oldParent].childCount = qint16(oldSiblings.size());
    }
    QList<int> newSiblings = childIndices(expected, destination);
    newSiblings.removeAll(moved);
    newSiblings.insert(position, moved);
    for (int n = 0; n < newSiblings.size(); ++n) {
        expected.items[newSiblings.at(n)].siblingOrder = qint16(n + 1);
    }
    expected.items[moved].parent = qint16(destination);
    if (destination >= 0) {
        expected.items[destination].childCount = qint16(newSiblings.size());
    }
    return expected;
}

/// The menu after item `dragged` moved with its branch within it to be the first child of
/// `destination` (-1: the top level).
MenuDocument movedWithin(const MenuDocument& document, int dragged, int destination)
{
    return placedAt(document, dragged, destination, 0);
}

/// The item tree as the nodes it shows: the keys of the child nodes of every node, in their order
/// ("Root" for the root node).
using NodeTree = QHash<QString, QStringList>;

NodeTree nodeTreeOf(const QList<PlannedNode>& plan)
{
    NodeTree tree;
    for (const PlannedNode& node : plan) {
        tree[node.parentKey].append(node.key);
    }
    return tree;
}

/// The key of the node whose child node `key` is; empty when there is none.
QString parentNodeIn(const NodeTree& tree, const QString& key)
{
    for (auto node = tree.cbegin(); node != tree.cend(); ++node) {
        if (node.value().contains(key)) {
            return node.key();
        }
    }
    return QString();
}

/// Carries out the node moves of `update` on `tree` as the editor window does; the other steps
/// leave the nodes where they are.
void applyNodeMoves(NodeTree& tree, const TreeUpdate& update)
{
    for (const TreeStep& step : update.steps()) {
        if (step.kind != TreeStep::Kind::MoveNodeToLastChild && step.kind != TreeStep::Kind::MoveNodeAfter) {
            continue;
        }
        tree[parentNodeIn(tree, step.key)].removeAll(step.key);
        if (step.kind == TreeStep::Kind::MoveNodeToLastChild) {
            tree[step.parentKey].append(step.key);
        } else {
            QStringList& siblings = tree[parentNodeIn(tree, step.siblingKey)];
            siblings.insert(siblings.indexOf(step.siblingKey) + 1, step.key);
        }
    }
}

/// Empty when the patched tree shows what a rebuild shows: the same nodes under the same nodes in the
/// same order. A node the patch keeps and a rebuild would hide may stay, as long as nothing hangs on
/// it (an item that lost its last child under "Hide items without command" keeps its node until the
/// tree is next built, as after Delete).
QString treeDifference(NodeTree patched, const NodeTree& rebuilt)
{
    QSet<QString> shown { SelectedNode::rootKey() };
    for (const QStringList& keys : rebuilt) {
        for (const QString& key : keys) {
            shown.insert(key);
        }
    }
    for (auto node = patched.begin(); node != patched.end(); ++node) {
        QStringList kept;
        for (const QString& key : std::as_const(node.value())) {
            if (shown.contains(key)) {
                kept.append(key);
            } else if (!patched.value(key).isEmpty()) {
                return QStringLiteral("the node %1, which a rebuild hides, holds nodes").arg(key);
            }
        }
        node.value() = kept;
    }
    for (const QString& key : std::as_const(shown)) {
        if (patched.value(key) != rebuilt.value(key)) {
            return QStringLiteral("under %1: patched %2, rebuilt %3")
                .arg(key, patched.value(key).join(QLatin1Char(',')), rebuilt.value(key).join(QLatin1Char(',')));
        }
    }
    return QString();
}

DropRequest request(const char* dragged, const char* target, const char* targetParent, DropPlace place,
                    bool copy = false, bool copyCommandDup = false)
{
    DropRequest result;
    result.draggedKey = key(dragged);
    result.targetKey = key(target);
    result.targetParentKey = key(targetParent);
    result.place = place;
    result.copy = copy;
    result.copyCommandDup = copyCommandDup;
    return result;
}

/// A random drop on the node of item `target` (-1: the root node) of `document`.
DropRequest requestOn(QRandomGenerator& random, const MenuDocument& document, const QString& draggedKey, int target)
{
    DropRequest result;
    result.draggedKey = draggedKey;
    if (target < 0) {
        result.targetKey = SelectedNode::rootKey();
        result.place = DropPlace::Child; // nothing is placed beside the root
    } else {
        const int parent = document.items.at(target).parent;
        result.targetKey = document.items.at(target).key;
        result.targetParentKey = parent < 0 ? SelectedNode::rootKey() : document.items.at(parent).key;
        result.place = random.bounded(2) == 0 ? DropPlace::Child : DropPlace::Next;
    }
    result.copyCommandDup = random.bounded(2) == 0;
    return result;
}

/// The item a random drop on item `target` puts its branch under.
int destinationOf(const MenuDocument& document, const DropRequest& drop, int target)
{
    if (target < 0) {
        return -1;
    }
    return drop.place == DropPlace::Child ? target : document.items.at(target).parent;
}

/// A random item outside the branch of `dragged` (or -1 for the root node) whose node a copy or
/// a move within the menu may be dropped on, with the place the drop asks for.
std::pair<int, DropRequest> randomDropOutside(QRandomGenerator& random, const MenuDocument& document, int dragged)
{
    while (true) {
        const int target = random.bounded(int(document.items.size()) + 1) - 1;
        const DropRequest drop = requestOn(random, document, document.items.at(dragged).key, target);
        const int destination = destinationOf(document, drop, target);
        if (destination < 0 || !isInBranch(document, destination, dragged)) {
            return { target, drop };
        }
    }
}

/// What the copy of a drop asks of the target tree: the busy notice around the new nodes.
TreeUpdate copySteps(const TreeUpdate& nodes)
{
    TreeUpdate update;
    update.showBusy().append(nodes).recolour().hideBusy().showItemCount();
    return update;
}

/// What Delete asks of the tree of a menu that keeps other items.
TreeUpdate removalSteps(const QString& removedKey)
{
    TreeUpdate update;
    update.removeNode(removedKey)
        .showItemCount()
        .addNodeWhenOnlyRoot(QStringLiteral("E0"), QStringLiteral("New Item 1"))
        .recolour()
        .clickFirstItemNode();
    return update;
}

/// A menu for moving up and down:
///   E0: E1, E2 (with E5), E3
///   E4
MenuDocument moveMenu()
{
    return documentOf(
        { { "E3", 1, 3 }, { "E0", -1, 1 }, { "E5", 3, 1 }, { "E2", 1, 2 }, { "E4", -1, 2 }, { "E1", 1, 1 } }, 5);
}

/// The node of item `itemKey` under `parentKey` with its neighbour nodes.
SelectedNode nodeOf(const char* itemKey, const char* parentKey, const char* previousKey, const char* nextKey)
{
    SelectedNode node = SelectedNode::of(key(itemKey), key(parentKey));
    node.previousSiblingKey = key(previousKey);
    node.nextSiblingKey = key(nextKey);
    return node;
}

struct Editor
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;

    EditContext context(const SelectedNode& node) { return EditContext { document, node, {}, editing, window }; }

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), const SelectedNode& node)
    {
        EditContext edit = context(node);
        return operation(edit);
    }
};

/// A menu for dropping:
///   E0: E1, E2 (with E6), E3
///   E4: E5, E7
///   E8
MenuDocument dropMenu()
{
    MenuDocument document = documentOf({ { "E7", 6, 2 },
                                         { "E2", 3, 2 },
                                         { "E5", 6, 1 },
                                         { "E0", -1, 1 },
                                         { "E6", 1, 1 },
                                         { "E3", 3, 3 },
                                         { "E4", -1, 2 },
                                         { "E1", 3, 1 },
                                         { "E8", -1, 3 } },
                                       8);
    document.windowIndex = 1;
    return document;
}

int errorNumberOfMove(Editor& editor, TreeUpdate (*operation)(EditContext&), const SelectedNode& node)
{
    try {
        editor.run(operation, node);
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace

class TestItemMoving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Up and down.

    void secondOfThreeMovedUpBecomesFirst()
    {
        Editor editor { moveMenu(), {}, {} };
        const TreeUpdate update = editor.run(&moveItemUp, nodeOf("E2", "E0", "E1", "E3"));
        TreeUpdate expected;
        expected.moveNodeUp(key("E2")).showPosition(key("E2"));
        QCOMPARE(update, expected);
        QCOMPARE(itemWithKey(editor.document, "E2").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(editor.document, "E1").siblingOrder, qint16(2));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E2", "E1", "E3" }));
        // Keys, slots and everything else stay; the branch moves along with its item.
        MenuDocument expectedDocument = moveMenu();
        expectedDocument.items[3].siblingOrder = 1;
        expectedDocument.items[5].siblingOrder = 2;
        QVERIFY(editor.document == expectedDocument);
        QCOMPARE(childKeys(editor.document, "E2"), keyList({ "E5" }));
    }

    void secondOfThreeMovedDownBecomesLast()
    {
        Editor editor { moveMenu(), {}, {} };
        const TreeUpdate update = editor.run(&moveItemDown, nodeOf("E2", "E0", "E1", "E3"));
        TreeUpdate expected;
        expected.moveNodeDown(key("E2")).showPosition(key("E2"));
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E3", "E2" }));
        MenuDocument expectedDocument = moveMenu();
        expectedDocument.items[3].siblingOrder = 3;
        expectedDocument.items[0].siblingOrder = 2;
        QVERIFY(editor.document == expectedDocument);
    }

    void topLevelItemsMoveLikeAnyOther()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveItemUp, nodeOf("E4", "Root", "E0", ""));
        QCOMPARE(itemWithKey(editor.document, "E4").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(editor.document, "E0").siblingOrder, qint16(2));
        editor.run(&moveItemDown, nodeOf("E4", "Root", "", "E0"));
        QVERIFY(editor.document == moveMenu());
    }

    void upAndDownBackAgainRestoreTheMenu()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveItemDown, nodeOf("E1", "E0", "", "E2"));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E2", "E1", "E3" }));
        editor.run(&moveItemUp, nodeOf("E1", "E0", "E2", "E3"));
        QVERIFY(editor.document == moveMenu());
    }

    void nothingToDoAtTheEnds()
    {
        Editor editor { moveMenu(), {}, {} };
        const EditContext first = editor.context(nodeOf("E1", "E0", "", "E2"));
        QVERIFY(!hasPreviousSibling(first));
        QVERIFY(hasNextSibling(first));
        const EditContext middle = editor.context(nodeOf("E2", "E0", "E1", "E3"));
        QVERIFY(hasPreviousSibling(middle));
        QVERIFY(hasNextSibling(middle));
        const EditContext last = editor.context(nodeOf("E3", "E0", "E2", ""));
        QVERIFY(hasPreviousSibling(last));
        QVERIFY(!hasNextSibling(last));
        const EditContext only = editor.context(nodeOf("E5", "E2", "", ""));
        QVERIFY(!hasPreviousSibling(only));
        QVERIFY(!hasNextSibling(only));
    }

    void movingAnItemThatIsGoneIsError9()
    {
        Editor editor { moveMenu(), {}, {} };
        QCOMPARE(errorNumberOfMove(editor, &moveItemUp, nodeOf("E9", "E0", "E1", "E3")), 9);
        QCOMPARE(errorNumberOfMove(editor, &moveItemUp, nodeOf("E2", "E0", "E9", "E3")), 9);
        QCOMPARE(errorNumberOfMove(editor, &moveItemDown, nodeOf("E2", "E0", "E1", "E9")), 9);
        QVERIFY(editor.document == moveMenu());
    }

    void movesAreDescribedForTheSession()
    {
        QCOMPARE(QString::fromLatin1(EditOperations::moveUp.name), QStringLiteral("move-up"));
        QCOMPARE(EditOperations::moveUp.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::moveUp.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::moveUp.apply == &moveItemUp);
        QVERIFY(EditOperations::moveUp.applicable == &hasPreviousSibling);
        QVERIFY(EditOperations::moveUp.followedBy == nullptr);

        QCOMPARE(QString::fromLatin1(EditOperations::moveDown.name), QStringLiteral("move-down"));
        QCOMPARE(EditOperations::moveDown.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::moveDown.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::moveDown.apply == &moveItemDown);
        QVERIFY(EditOperations::moveDown.applicable == &hasNextSibling);
    }

    // Into the item above and out of the parent.

    void movedIntoTheItemAboveBecomesItsLastChild()
    {
        Editor editor { moveMenu(), {}, {} };
        const TreeUpdate update = editor.run(&moveIntoItemAbove, nodeOf("E3", "E0", "E2", ""));
        TreeUpdate expected;
        expected.moveNodeToLastChild(key("E3"), key("E2")).recolour().showPosition(key("E3"));
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E2" }));
        QCOMPARE(childKeys(editor.document, "E2"), keyList({ "E5", "E3" }));
        // Keys, slots and levels stay; only the tree numbers of the three items concerned change.
        MenuDocument expectedDocument = moveMenu();
        expectedDocument.items[0].parent = 3;
        expectedDocument.items[0].siblingOrder = 2;
        expectedDocument.items[1].childCount = 2;
        expectedDocument.items[3].childCount = 2;
        QVERIFY(editor.document == expectedDocument);
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
    }

    void movedIntoTheItemAboveTakesItsBranchAndClosesTheGap()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveIntoItemAbove, nodeOf("E2", "E0", "E1", "E3"));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E3" }));
        QCOMPARE(childKeys(editor.document, "E1"), keyList({ "E2" }));
        QCOMPARE(childKeys(editor.document, "E2"), keyList({ "E5" }));
        QCOMPARE(itemWithKey(editor.document, "E3").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(editor.document, "E2").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(editor.document, "E2").level, moveMenu().items.at(3).level);
        QCOMPARE(keysInSlotOrder(editor.document), keysInSlotOrder(moveMenu()));
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
    }

    void topLevelItemMovesIntoTheTopLevelItemAbove()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveIntoItemAbove, nodeOf("E4", "Root", "E0", ""));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E2", "E3", "E4" }));
        QCOMPARE(childIndices(editor.document, -1), QList<int>({ 1 }));
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
    }

    void movedOutOfTheParentComesRightAfterIt()
    {
        Editor editor { moveMenu(), {}, {} };
        const TreeUpdate update = editor.run(&moveOutOfParent, nodeOf("E1", "E0", "", "E2"));
        TreeUpdate expected;
        expected.moveNodeAfter(key("E1"), key("E0")).recolour().showPosition(key("E1"));
        QCOMPARE(update, expected);
        // The top level makes room after E0; E0's other children close up.
        QCOMPARE(childIndices(editor.document, -1), QList<int>({ 1, 5, 4 }));
        QCOMPARE(itemWithKey(editor.document, "E4").siblingOrder, qint16(3));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E2", "E3" }));
        QCOMPARE(itemWithKey(editor.document, "E0").childCount, qint16(2));
        QCOMPARE(itemWithKey(editor.document, "E1").parent, qint16(-1));
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
    }

    void movedOutOfADeeperParentStaysInTheGrandparent()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveOutOfParent, nodeOf("E5", "E2", "", ""));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E2", "E5", "E3" }));
        QCOMPARE(itemWithKey(editor.document, "E2").childCount, qint16(0));
        QCOMPARE(itemWithKey(editor.document, "E0").childCount, qint16(4));
        QCOMPARE(itemWithKey(editor.document, "E3").siblingOrder, qint16(4));
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
    }

    void inAndOutAgainRestoreTheMenuForALastChild()
    {
        Editor editor { moveMenu(), {}, {} };
        editor.run(&moveIntoItemAbove, nodeOf("E3", "E0", "E2", ""));
        editor.run(&moveOutOfParent, nodeOf("E3", "E2", "E5", ""));
        QVERIFY(editor.document == moveMenu());
        // Out of the parent and back in is the same for the item that was its parent's last child.
        editor.run(&moveOutOfParent, nodeOf("E5", "E2", "", ""));
        editor.run(&moveIntoItemAbove, nodeOf("E5", "E0", "E2", "E3"));
        QVERIFY(editor.document == moveMenu());
    }

    void nothingToMoveIntoOrOutOf()
    {
        Editor editor { moveMenu(), {}, {} };
        // The first of its siblings has no item above; a top-level item has no parent to leave.
        QVERIFY(!hasItemAbove(editor.context(nodeOf("E1", "E0", "", "E2"))));
        QVERIFY(!hasItemAbove(editor.context(nodeOf("E0", "Root", "", "E4"))));
        QVERIFY(!hasItemAbove(editor.context(nodeOf("E5", "E2", "", ""))));
        QVERIFY(hasItemAbove(editor.context(nodeOf("E2", "E0", "E1", "E3"))));
        QVERIFY(hasItemAbove(editor.context(nodeOf("E4", "Root", "E0", ""))));
        QVERIFY(!hasParentItem(editor.context(nodeOf("E0", "Root", "", "E4"))));
        QVERIFY(!hasParentItem(editor.context(nodeOf("E4", "Root", "E0", ""))));
        QVERIFY(!hasParentItem(editor.context(SelectedNode::of(key("E4")))));
        QVERIFY(hasParentItem(editor.context(nodeOf("E1", "E0", "", "E2"))));
        QVERIFY(hasParentItem(editor.context(nodeOf("E5", "E2", "", ""))));
        // An item that is gone is not "nothing to do": the move reports it.
        QVERIFY(hasItemAbove(editor.context(nodeOf("E9", "E0", "E1", ""))));
        QVERIFY(hasParentItem(editor.context(nodeOf("E5", "E9", "", ""))));
        QVERIFY(editor.document == moveMenu());
    }

    void noMoveIntoTheItemsOwnBranch()
    {
        // A tree out of step with the menu (as Paste can leave it) may show an item of the branch
        // beside it, or an item of the branch above it: moving there would cut the branch off.
        Editor editor { moveMenu(), {}, {} };
        QVERIFY(!hasItemAbove(editor.context(nodeOf("E2", "E0", "E5", ""))));
        QVERIFY(!hasParentItem(editor.context(nodeOf("E0", "E2", "", ""))));
        QVERIFY(!hasParentItem(editor.context(nodeOf("E2", "E5", "", ""))));
    }

    void nestingAnItemThatIsGoneIsError9()
    {
        Editor editor { moveMenu(), {}, {} };
        QCOMPARE(errorNumberOfMove(editor, &moveIntoItemAbove, nodeOf("E9", "E0", "E1", "")), 9);
        QCOMPARE(errorNumberOfMove(editor, &moveIntoItemAbove, nodeOf("E2", "E0", "E9", "E3")), 9);
        QCOMPARE(errorNumberOfMove(editor, &moveOutOfParent, nodeOf("E9", "E0", "", "")), 9);
        QCOMPARE(errorNumberOfMove(editor, &moveOutOfParent, nodeOf("E2", "E9", "", "")), 9);
        QVERIFY(editor.document == moveMenu());
    }

    void theItemAboveIsTheNodeAboveWhenItemsAreHidden()
    {
        // E0: E1 (a command), E2 (none), E3 (a command). Hiding items without commands hides E2, so
        // the node above E3 is E1's: E3 goes into E1, the item the user sees above it.
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 }, { "E3", 0, 3 } }, 3);
        document.items[1].commands = commandList("del ");
        document.items[3].commands = commandList("del ");
        const QList<PlannedNode> plan = planTree(document, 2);
        QCOMPARE(plan.size(), qsizetype(3));
        const SelectedNode node = selectedNodeOf(plan, 2);
        QCOMPARE(node.previousSiblingKey, key("E1"));
        Editor editor { document, {}, {} };
        const TreeUpdate update = editor.run(&moveIntoItemAbove, node);
        QCOMPARE(childKeys(editor.document, "E1"), keyList({ "E3" }));
        QCOMPARE(childKeys(editor.document, "E0"), keyList({ "E1", "E2" }));
        NodeTree patched = nodeTreeOf(plan);
        applyNodeMoves(patched, update);
        QCOMPARE(treeDifference(patched, nodeTreeOf(planTree(editor.document, 2))), QString());
    }

    void theParentIsTheNodeAboveWhenALinkIsHidden()
    {
        // E0: E1 (a link, with E2 and E3), E4. Hiding links shows E2 and E3 under E0: leaving the
        // parent node E0 takes E2 out of the hidden E1 as well, to just after E0.
        MenuDocument document
            = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 1, 1 }, { "E3", 1, 2 }, { "E4", -1, 2 } }, 4);
        document.items[0].commands = commandList("del ");
        document.items[1].commands = commandList("del ");
        document.items[1].copiesCommands = true;
        document.items[1].copyKey = key("E0");
        const QList<PlannedNode> plan = planTree(document, 1);
        const SelectedNode node = selectedNodeOf(plan, 1);
        QCOMPARE(node.key, key("E2"));
        QCOMPARE(node.parentKey, key("E0"));
        Editor editor { document, {}, {} };
        const TreeUpdate update = editor.run(&moveOutOfParent, node);
        QCOMPARE(childIndices(editor.document, -1), QList<int>({ 0, 2, 4 }));
        QCOMPARE(childKeys(editor.document, "E1"), keyList({ "E3" }));
        QCOMPARE(DocumentInvariants::problem(editor.document), QString());
        NodeTree patched = nodeTreeOf(plan);
        applyNodeMoves(patched, update);
        QCOMPARE(treeDifference(patched, nodeTreeOf(planTree(editor.document, 1))), QString());
    }

    void randomNestingMovesMatchTheirDefinition()
    {
        int into = 0;
        int out = 0;
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(40));
            for (int round = 0; round < 10; ++round) {
                const QList<PlannedNode> plan = planTree(document, 0);
                const SelectedNode node = selectedNodeOf(plan, random.bounded(int(plan.size())));
                const bool moveIn = random.bounded(2) == 0;
                const QString context = QStringLiteral("seed %1, round %2, %3 %4")
                                            .arg(seed)
                                            .arg(round)
                                            .arg(moveIn ? QStringLiteral("in") : QStringLiteral("out"), node.key);
                Editor editor { document, {}, {} };
                const EditContext check = editor.context(node);
                const int moved = findItemByKey(document, node.key);
                MenuDocument expected;
                if (moveIn) {
                    QCOMPARE(hasItemAbove(check), !node.previousSiblingKey.isEmpty());
                    if (!hasItemAbove(check)) {
                        continue;
                    }
                    const int above = findItemByKey(document, node.previousSiblingKey);
                    expected = placedAt(document, moved, above, int(childIndices(document, above).size()));
                    editor.run(&moveIntoItemAbove, node);
                    ++into;
                } else {
                    QCOMPARE(hasParentItem(check), node.parentKey != SelectedNode::rootKey());
                    if (!hasParentItem(check)) {
                        continue;
                    }
                    const int former = findItemByKey(document, node.parentKey);
                    const int destination = document.items.at(former).parent;
                    expected = placedAt(document, moved, destination,
                                        int(childIndices(document, destination).indexOf(former)) + 1);
                    editor.run(&moveOutOfParent, node);
                    ++out;
                }
                QVERIFY2(editor.document == expected,
                         qPrintable(context + QStringLiteral(": ")
                                    + RandomMenu::firstDifference(editor.document, expected)));
                QVERIFY2(DocumentInvariants::problem(editor.document).isEmpty(),
                         qPrintable(context + QStringLiteral(": ") + DocumentInvariants::problem(editor.document)));
                document = editor.document;
            }
        }
        QVERIFY2(into > 500, qPrintable(QString::number(into)));
        QVERIFY2(out > 500, qPrintable(QString::number(out)));
    }

    void randomNestingMovesShowWhatARebuildShowsUnderEveryHideMode()
    {
        int moves = 0;
        for (quint32 seed = 1; seed <= 300; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(40));
            normalizeCopyLinks(document);
            for (int hideMode = 0; hideMode <= 3; ++hideMode) {
                const QList<PlannedNode> plan = planTree(document, hideMode);
                for (qsizetype n = 0; n < plan.size(); ++n) {
                    const SelectedNode node = selectedNodeOf(plan, n);
                    for (const bool moveIn : { true, false }) {
                        Editor editor { document, {}, {} };
                        const EditContext check = editor.context(node);
                        if (moveIn ? !hasItemAbove(check) : !hasParentItem(check)) {
                            continue;
                        }
                        const TreeUpdate update = editor.run(moveIn ? &moveIntoItemAbove : &moveOutOfParent, node);
                        NodeTree patched = nodeTreeOf(plan);
                        applyNodeMoves(patched, update);
                        const QString difference
                            = treeDifference(patched, nodeTreeOf(planTree(editor.document, hideMode)));
                        QVERIFY2(difference.isEmpty(),
                                 qPrintable(QStringLiteral("seed %1, hide mode %2, %3 %4: ")
                                                .arg(seed)
                                                .arg(hideMode)
                                                .arg(moveIn ? QStringLiteral("in") : QStringLiteral("out"), node.key)
                                            + difference));
                        QVERIFY2(DocumentInvariants::problem(editor.document).isEmpty(),
                                 qPrintable(DocumentInvariants::problem(editor.document)));
                        ++moves;
                    }
                }
            }
        }
        QVERIFY2(moves > 5000, qPrintable(QString::number(moves)));
    }

    void nestingMovesAreDescribedForTheSession()
    {
        QCOMPARE(QString::fromLatin1(EditOperations::moveIntoItemAbove.name), QStringLiteral("indent"));
        QCOMPARE(EditOperations::moveIntoItemAbove.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::moveIntoItemAbove.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::moveIntoItemAbove.apply == &moveIntoItemAbove);
        QVERIFY(EditOperations::moveIntoItemAbove.applicable == &hasItemAbove);
        QVERIFY(EditOperations::moveIntoItemAbove.followedBy == nullptr);

        QCOMPARE(QString::fromLatin1(EditOperations::moveOutOfParent.name), QStringLiteral("outdent"));
        QCOMPARE(EditOperations::moveOutOfParent.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::moveOutOfParent.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::moveOutOfParent.apply == &moveOutOfParent);
        QVERIFY(EditOperations::moveOutOfParent.applicable == &hasParentItem);
        QVERIFY(EditOperations::moveOutOfParent.followedBy == nullptr);
    }

    // Which drops are ignored, and what a drop asks for.

    void dropIsIgnoredWithoutAUsableDrag_data()
    {
        QTest::addColumn<bool>("active");
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("dragAndDrop");
        QTest::addColumn<int>("targetDocument");
        QTest::addColumn<QString>("targetKey");
        QTest::addColumn<bool>("ignored");
        const int none = int(DragState::Button::None);
        const int left = int(DragState::Button::Left);
        const int right = int(DragState::Button::Right);
        QTest::newRow("no drag going on") << false << right << true << 1 << QStringLiteral("E1") << true;
        QTest::newRow("no button") << true << none << true << 1 << QStringLiteral("E1") << true;
        QTest::newRow("left button, option off") << true << left << false << 1 << QStringLiteral("E1") << true;
        QTest::newRow("left button, option on") << true << left << true << 1 << QStringLiteral("E1") << false;
        QTest::newRow("right button, option off") << true << right << false << 1 << QStringLiteral("E1") << false;
        QTest::newRow("right button, option on") << true << right << true << 1 << QStringLiteral("E1") << false;
        QTest::newRow("no node under the pointer") << true << right << true << 1 << QString() << true;
        QTest::newRow("dropped on itself") << true << right << true << 1 << QStringLiteral("E3") << true;
        QTest::newRow("left, dropped on itself") << true << left << true << 1 << QStringLiteral("E3") << true;
        QTest::newRow("same key in another menu") << true << right << true << 2 << QStringLiteral("E3") << false;
        QTest::newRow("left, same key in another menu") << true << left << true << 2 << QStringLiteral("E3") << false;
        QTest::newRow("on the root node") << true << left << true << 1 << QStringLiteral("Root") << false;
    }

    void dropIsIgnoredWithoutAUsableDrag()
    {
        QFETCH(bool, active);
        QFETCH(int, button);
        QFETCH(bool, dragAndDrop);
        QFETCH(int, targetDocument);
        QFETCH(QString, targetKey);
        QFETCH(bool, ignored);
        DragState drag;
        drag.nodeKey = QStringLiteral("E3");
        drag.document = 1;
        drag.button = DragState::Button(button);
        drag.active = active;
        QCOMPARE(isDropIgnored(drag, dragAndDrop, qint16(targetDocument), targetKey), ignored);
    }

    void leftButtonDropMovesUnderTheTarget()
    {
        DragState drag;
        drag.nodeKey = QStringLiteral("E3");
        drag.document = 2;
        drag.button = DragState::Button::Left;
        drag.active = true;
        drag.dropAsChild = true;
        const DropRequest drop = dropRequestOf(drag, QStringLiteral("E5"), QStringLiteral("E4"), false);
        QCOMPARE(drop.draggedKey, QStringLiteral("E3"));
        QCOMPARE(drop.targetKey, QStringLiteral("E5"));
        QCOMPARE(drop.targetParentKey, QStringLiteral("E4"));
        QVERIFY(drop.place == DropPlace::Child);
        QVERIFY(!drop.copy);
        QVERIFY(!drop.copyCommandDup);
    }

    void dropMenuChoicesBecomeTheRequest()
    {
        DragState drag;
        drag.nodeKey = QStringLiteral("E7");
        drag.button = DragState::Button::Right;
        drag.active = true;
        drag.dropAsSibling = true;
        drag.dropCopy = true;
        const DropRequest next = dropRequestOf(drag, QStringLiteral("E1"), QStringLiteral("Root"), true);
        QCOMPARE(next.draggedKey, QStringLiteral("E7"));
        QCOMPARE(next.targetKey, QStringLiteral("E1"));
        QCOMPARE(next.targetParentKey, QStringLiteral("Root"));
        QVERIFY(next.place == DropPlace::Next);
        QVERIFY(next.copy);
        QVERIFY(next.copyCommandDup);

        drag.dropAsSibling = false;
        drag.dropAsChild = true;
        drag.dropCopy = false;
        const DropRequest child = dropRequestOf(drag, QStringLiteral("Root"), QString(), false);
        QVERIFY(child.place == DropPlace::Child);
        QVERIFY(!child.copy);
        QCOMPARE(child.targetKey, QStringLiteral("Root"));
    }

    void destinationIsTheTargetOrItsParent()
    {
        const MenuDocument document = dropMenu();
        QCOMPARE(dropDestination(document, request("E2", "E4", "Root", DropPlace::Child)), 6);
        QCOMPARE(dropDestination(document, request("E2", "E5", "E4", DropPlace::Next)), 6);
        QCOMPARE(dropDestination(document, request("E2", "E8", "Root", DropPlace::Next)), -1);
        QCOMPARE(dropDestination(document, request("E2", "Root", "", DropPlace::Child)), -1);
    }

    // A move within one menu.

    void droppedAsChildBecomesTheFirstChild()
    {
        MenuDocument document = dropMenu();
        const DropRequest drop = request("E2", "E4", "Root", DropPlace::Child);
        QCOMPARE(dropRefusal(document, drop), QString());
        const TreeUpdate update = dropMoveWithin(document, drop);
        TreeUpdate expected;
        expected.moveNodeUnder(key("E2"), key("E4")).recolour().showPosition(key("E2"));
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(document, "E4"), keyList({ "E2", "E5", "E7" }));
        QCOMPARE(childKeys(document, "E0"), keyList({ "E1", "E3" }));
        QCOMPARE(itemWithKey(document, "E2").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(document, "E5").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(document, "E7").siblingOrder, qint16(3));
        QCOMPARE(itemWithKey(document, "E3").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(document, "E4").childCount, qint16(3));
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(2));
        // Same key, same slot; its branch comes along.
        QCOMPARE(keysInSlotOrder(document), keysInSlotOrder(dropMenu()));
        QCOMPARE(document.items.at(1).parent, qint16(6));
        QCOMPARE(childKeys(document, "E2"), keyList({ "E6" }));
        QVERIFY(document == movedWithin(dropMenu(), 1, 6));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void droppedNextToANodeBecomesTheFirstChildOfItsParent()
    {
        MenuDocument document = dropMenu();
        // Dropped beside the last child of E4, it still arrives first.
        const TreeUpdate update = dropMoveWithin(document, request("E2", "E7", "E4", DropPlace::Next));
        TreeUpdate expected;
        expected.moveNodeUnder(key("E2"), key("E4")).recolour().showPosition(key("E2"));
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(document, "E4"), keyList({ "E2", "E5", "E7" }));
        QVERIFY(document == movedWithin(dropMenu(), 1, 6));
    }

    void droppedNextToATopLevelNodeGoesFirstOnTheTopLevel()
    {
        MenuDocument document = dropMenu();
        const TreeUpdate update = dropMoveWithin(document, request("E7", "E8", "Root", DropPlace::Next));
        TreeUpdate expected;
        expected.moveNodeUnder(key("E7"), QStringLiteral("Root")).recolour().showPosition(key("E7"));
        QCOMPARE(update, expected);
        QCOMPARE(itemWithKey(document, "E7").parent, qint16(-1));
        QCOMPARE(itemWithKey(document, "E7").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(document, "E0").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(document, "E4").siblingOrder, qint16(3));
        QCOMPARE(itemWithKey(document, "E8").siblingOrder, qint16(4));
        QCOMPARE(itemWithKey(document, "E4").childCount, qint16(1));
        QCOMPARE(childKeys(document, "E4"), keyList({ "E5" }));
        QCOMPARE(DocumentInvariants::problem(document), QString());

        MenuDocument onRoot = dropMenu();
        dropMoveWithin(onRoot, request("E7", "Root", "", DropPlace::Child));
        QVERIFY(onRoot == document);
    }

    void topLevelItemDroppedOnTheRootGoesFirst()
    {
        MenuDocument document = dropMenu();
        dropMoveWithin(document, request("E8", "Root", "", DropPlace::Child));
        QCOMPARE(itemWithKey(document, "E8").siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(document, "E0").siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(document, "E4").siblingOrder, qint16(3));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void droppedOnItsOwnParentMovesToTheFront()
    {
        MenuDocument document = dropMenu();
        dropMoveWithin(document, request("E3", "E0", "Root", DropPlace::Child));
        QCOMPARE(childKeys(document, "E0"), keyList({ "E3", "E1", "E2" }));
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(3));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void childDroppedOnAnAncestorLeavesItsParent()
    {
        MenuDocument document = dropMenu();
        dropMoveWithin(document, request("E6", "E0", "Root", DropPlace::Child));
        QCOMPARE(childKeys(document, "E0"), keyList({ "E6", "E1", "E2", "E3" }));
        QCOMPARE(itemWithKey(document, "E2").childCount, qint16(0));
        QCOMPARE(itemWithKey(document, "E0").childCount, qint16(4));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void dropIntoItsOwnBranchIsRefused()
    {
        const MenuDocument document = dropMenu();
        const QString refusal = QStringLiteral("An item cannot be dropped into its own branch !");
        QCOMPARE(dropRefusal(document, request("E2", "E6", "E2", DropPlace::Child)), refusal);
        QCOMPARE(dropRefusal(document, request("E2", "E2", "E0", DropPlace::Child)), refusal);
        QCOMPARE(dropRefusal(document, request("E2", "E6", "E2", DropPlace::Next)), refusal);
        QCOMPARE(dropRefusal(document, request("E0", "E6", "E2", DropPlace::Child)), refusal);
        QCOMPARE(dropRefusal(document, request("E0", "E1", "E0", DropPlace::Next)), refusal);
        // Anywhere else it may go.
        QCOMPARE(dropRefusal(document, request("E2", "E2", "E0", DropPlace::Next)), QString());
        QCOMPARE(dropRefusal(document, request("E6", "E0", "Root", DropPlace::Child)), QString());
        QCOMPARE(dropRefusal(document, request("E0", "E4", "Root", DropPlace::Child)), QString());
        QCOMPARE(dropRefusal(document, request("E0", "E8", "Root", DropPlace::Next)), QString());
        QCOMPARE(dropRefusal(document, request("E0", "Root", "", DropPlace::Child)), QString());
        QVERIFY(document == dropMenu());
    }

    void moveOfAnItemThatIsGoneIsError9()
    {
        MenuDocument document = dropMenu();
        int number = 0;
        try {
            dropMoveWithin(document, request("E9", "E0", "Root", DropPlace::Child));
        } catch (const RunTimeError& error) {
            number = error.number();
        }
        QCOMPARE(number, 9);
        QVERIFY(document == dropMenu());
    }

    void randomMovesWithinOneMenuKeepTheMenuWhole()
    {
        int moves = 0;
        int refusals = 0;
        for (quint32 seed = 1; seed <= 600; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(40));
            for (int round = 0; round < 4; ++round) {
                const int dragged = random.bounded(int(document.items.size()));
                const int target = random.bounded(int(document.items.size()) + 1) - 1;
                if (target == dragged) {
                    continue; // a drop on itself is ignored before it gets here
                }
                const DropRequest drop = requestOn(random, document, document.items.at(dragged).key, target);
                const int destination = destinationOf(document, drop, target);
                const QString context = QStringLiteral("seed %1, round %2, %3 onto %4")
                                            .arg(seed)
                                            .arg(round)
                                            .arg(drop.draggedKey, drop.targetKey);
                QVERIFY2(dropDestination(document, drop) == destination, qPrintable(context));
                const bool ownBranch = destination >= 0 && isInBranch(document, destination, dragged);
                const QString refusal = dropRefusal(document, drop);
                QVERIFY2(refusal.isEmpty() != ownBranch, qPrintable(context));
                if (ownBranch) {
                    ++refusals;
                    continue;
                }
                const MenuDocument expected = movedWithin(document, dragged, destination);
                const TreeUpdate update = dropMoveWithin(document, drop);
                QVERIFY2(document == expected,
                         qPrintable(context + QStringLiteral(": ") + RandomMenu::firstDifference(document, expected)));
                QVERIFY2(DocumentInvariants::problem(document).isEmpty(),
                         qPrintable(context + QStringLiteral(": ") + DocumentInvariants::problem(document)));
                TreeUpdate steps;
                steps
                    .moveNodeUnder(drop.draggedKey,
                                   destination < 0 ? SelectedNode::rootKey() : document.items.at(destination).key)
                    .recolour()
                    .showPosition(drop.draggedKey);
                QCOMPARE(update, steps);
                ++moves;
            }
        }
        QVERIFY(moves > 1000);
        QVERIFY(refusals > 100);
    }

    // Copies.

    void copyIntoAnotherMenuIsLinkedThereCanonically()
    {
        // The source's E1 links to E0's "del"; the target's own E0 holds "del" already.
        MenuDocument source = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 } }, 1);
        source.items[0].commands = commandList("del ");
        source.items[1].copiesCommands = true;
        source.items[1].copyKey = key("E0");
        source.windowIndex = 1;
        MenuDocument target = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 } }, 1);
        target.items[0].commands = commandList("del ");
        target.items[1].commands = commandList("view ");
        target.windowIndex = 2;

        const DropUpdates updates = dropCopy(source, target, request("E1", "E1", "Root", DropPlace::Child, true, true));
        TreeUpdate nodes;
        nodes.addNode(key("E1"), key("E2"), QStringLiteral("Caption of E1"));
        QCOMPARE(updates.target, copySteps(nodes));
        QVERIFY(updates.source.isEmpty());
        const MenuItem& copy = itemWithKey(target, "E2");
        QCOMPARE(copy.parent, qint16(1));
        QCOMPARE(copy.siblingOrder, qint16(1));
        QCOMPARE(copy.commands, commandList("del "));
        QVERIFY(copy.copiesCommands);
        QCOMPARE(copy.copyKey, key("E0"));
        QCOMPARE(itemWithKey(source, "E1").lastCopyKey, key("E2"));
        QVERIFY(itemWithKey(source, "E1").copiesCommands);
        QCOMPARE(DocumentInvariants::problem(target), QString());
    }

    void copyNextToANodeBecomesTheLastChildOfItsParent()
    {
        MenuDocument document = dropMenu();
        const DropUpdates updates = dropCopy(document, document, request("E2", "E5", "E4", DropPlace::Next, true));
        TreeUpdate nodes;
        nodes.addNode(key("E4"), key("E9"), QStringLiteral("Caption of E2"))
            .addNode(key("E9"), key("E10"), QStringLiteral("Caption of E6"));
        QCOMPARE(updates.target, copySteps(nodes));
        QVERIFY(updates.source.isEmpty());
        QCOMPARE(childKeys(document, "E4"), keyList({ "E5", "E7", "E9" }));
        QCOMPARE(childKeys(document, "E0"), keyList({ "E1", "E2", "E3" }));
        QCOMPARE(childKeys(document, "E9"), keyList({ "E10" }));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void randomCopiesMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 500; ++seed) {
            QRandomGenerator random(seed);
            const bool twoMenus = random.bounded(2) == 0;
            MenuDocument source = RandomMenu::generate(random, 1 + random.bounded(40));
            source.windowIndex = 1;
            MenuDocument otherTarget;
            if (twoMenus) {
                otherTarget = RandomMenu::generate(random, 1 + random.bounded(40));
                otherTarget.windowIndex = 2;
            }
            MenuDocument& target = twoMenus ? otherTarget : source;
            const int dragged = random.bounded(int(source.items.size()));
            DropRequest drop;
            int destination = -1;
            if (twoMenus) {
                const int targetItem = random.bounded(int(target.items.size()) + 1) - 1;
                drop = requestOn(random, target, source.items.at(dragged).key, targetItem);
                destination = destinationOf(target, drop, targetItem);
            } else {
                const auto [targetItem, sameMenuDrop] = randomDropOutside(random, source, dragged);
                drop = sameMenuDrop;
                destination = destinationOf(source, drop, targetItem);
            }
            drop.copy = true;

            MenuDocument expectedSource = source;
            MenuDocument expectedOtherTarget = otherTarget;
            MenuDocument& expectedTarget = twoMenus ? expectedOtherTarget : expectedSource;
            TreeUpdate nodes;
            LiteralSubtreeCopy::copyItemTree(dragged, destination, expectedSource, expectedTarget, drop.copyCommandDup,
                                             nodes);
            LiteralLinkRoutines::normalizeCopyLinks(expectedTarget);

            const DropUpdates updates = dropCopy(source, target, drop);
            const QString context = QStringLiteral("seed %1: ").arg(seed);
            QVERIFY2(source == expectedSource,
                     qPrintable(context + RandomMenu::firstDifference(source, expectedSource)));
            QVERIFY2(target == expectedTarget,
                     qPrintable(context + RandomMenu::firstDifference(target, expectedTarget)));
            QCOMPARE(updates.target, copySteps(nodes));
            QVERIFY(updates.source.isEmpty());
            QVERIFY2(DocumentInvariants::problem(target).isEmpty(),
                     qPrintable(context + DocumentInvariants::problem(target)));
            // The links of the target are canonical: making them so once more changes nothing.
            MenuDocument again = target;
            normalizeCopyLinks(again);
            QVERIFY2(again == target, qPrintable(context + RandomMenu::firstDifference(again, target)));
        }
    }

    // A move from one menu to another.

    void moveBetweenMenusCopiesThenDeletes()
    {
        MenuDocument source = dropMenu();
        MenuDocument target = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 } }, 3);
        target.windowIndex = 2;
        EditingState editing;
        editing.snapshotNextLabelEdit = false;
        const DropUpdates updates
            = dropMoveBetween(source, target, request("E2", "E0", "Root", DropPlace::Child), editing);

        TreeUpdate nodes;
        nodes.addNode(key("E0"), key("E4"), QStringLiteral("Caption of E2"))
            .addNode(key("E4"), key("E5"), QStringLiteral("Caption of E6"));
        QCOMPARE(updates.target, copySteps(nodes));
        QCOMPARE(updates.source, removalSteps(key("E2")));
        QVERIFY(editing.snapshotNextLabelEdit);

        QCOMPARE(childKeys(target, "E0"), keyList({ "E1", "E4" }));
        QCOMPARE(childKeys(target, "E4"), keyList({ "E5" }));
        QCOMPARE(DocumentInvariants::problem(target), QString());
        QCOMPARE(findItemByKey(source, key("E2")), qint16(-1));
        QCOMPARE(findItemByKey(source, key("E6")), qint16(-1));
        QCOMPARE(source.items.size(), qsizetype(7));
        QCOMPARE(childKeys(source, "E0"), keyList({ "E1", "E3" }));
        QCOMPARE(source.lastIndex, qint16(8));
        QCOMPARE(DocumentInvariants::problem(source), QString());
    }

    void movingTheOnlyItemAwayLeavesAFreshItem()
    {
        MenuDocument source = documentOf({ { "E3", -1, 1 } }, 3);
        source.items[0].commands = commandList("del ");
        source.windowIndex = 1;
        MenuDocument target = documentOf({ { "E0", -1, 1 } }, 0);
        target.windowIndex = 2;
        EditingState editing;
        const DropUpdates updates
            = dropMoveBetween(source, target, request("E3", "Root", "", DropPlace::Child), editing);
        TreeUpdate expectedSource;
        expectedSource.setNodeText(key("E3"), QStringLiteral("New Item 1")).append(removalSteps(key("E3")));
        QCOMPARE(updates.source, expectedSource);
        QCOMPARE(keysInSlotOrder(source), keyList({ "E0" }));
        QCOMPARE(source.items.at(0).caption, QStringLiteral("New item 1"));
        QCOMPARE(source.lastIndex, qint16(3));
        QCOMPARE(keysInSlotOrder(target), keyList({ "E0", "E1" }));
        QCOMPARE(target.items.at(1).commands, commandList("del "));
        QCOMPARE(target.items.at(1).siblingOrder, qint16(2));
    }

    void randomMovesBetweenMenusMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 500; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument source = RandomMenu::generate(random, 1 + random.bounded(40));
            MenuDocument target = RandomMenu::generate(random, 1 + random.bounded(40));
            source.windowIndex = 3;
            target.windowIndex = 1;
            const int dragged = random.bounded(int(source.items.size()));
            const int targetItem = random.bounded(int(target.items.size()) + 1) - 1;
            const DropRequest drop = requestOn(random, target, source.items.at(dragged).key, targetItem);
            const int destination = destinationOf(target, drop, targetItem);

            MenuDocument expectedSource = source;
            MenuDocument expectedTarget = target;
            TreeUpdate nodes;
            LiteralSubtreeCopy::copyItemTree(dragged, destination, expectedSource, expectedTarget, drop.copyCommandDup,
                                             nodes);
            LiteralLinkRoutines::normalizeCopyLinks(expectedTarget);
            const bool onlyItem = expectedSource.items.size() == 1;
            LiteralLinkRoutines::removeItemBranch(expectedSource, drop.draggedKey);

            EditingState editing;
            editing.snapshotNextLabelEdit = false;
            const DropUpdates updates = dropMoveBetween(source, target, drop, editing);
            const QString context = QStringLiteral("seed %1: ").arg(seed);
            QVERIFY2(source == expectedSource,
                     qPrintable(context + RandomMenu::firstDifference(source, expectedSource)));
            QVERIFY2(target == expectedTarget,
                     qPrintable(context + RandomMenu::firstDifference(target, expectedTarget)));
            QCOMPARE(updates.target, copySteps(nodes));
            TreeUpdate sourceSteps;
            if (onlyItem) {
                sourceSteps.setNodeText(drop.draggedKey, QStringLiteral("New Item 1"));
            }
            sourceSteps.append(removalSteps(drop.draggedKey));
            QCOMPARE(updates.source, sourceSteps);
            QVERIFY(editing.snapshotNextLabelEdit);
            QVERIFY2(DocumentInvariants::problem(source).isEmpty(),
                     qPrintable(context + DocumentInvariants::problem(source)));
            QVERIFY2(DocumentInvariants::problem(target).isEmpty(),
                     qPrintable(context + DocumentInvariants::problem(target)));
        }
    }
};

QTEST_GUILESS_MAIN(TestItemMoving)
#include "test_itemmoving.moc"

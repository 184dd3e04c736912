#include "testmenus.h"

#include "editing/randommenu.h"
#include "model/menudocument.h"
#include "treeview/nodetree.h"
#include "treeview/nodetreeobserver.h"
#include "treeview/treeplan.h"

#include <QRandomGenerator>
#include <QTest>

#include <map>
#include <memory>

using TestMenus::item;

namespace {

/// Rebuilds, from what it hears alone, the shape of the tree it observes: a view that follows the
/// announcements must end with the tree's very shape. It also checks that every announced row
/// exists when it is announced.
class ShadowObserver final : public NodeTreeObserver
{
public:
    explicit ShadowObserver(const NodeTree& tree)
        : m_tree(tree)
    {
    }

    /// The shadow's shape as lines of keys, each indented by its depth.
    QStringList outline() const { return m_root ? outlineOf(m_root) : QStringList(); }
    /// The shadow's shape with what each row showed when the shadow last heard of it, read through
    /// `document`; while no document is set, rows are not read.
    QStringList looks() const { return m_root ? looksOf(m_root) : QStringList(); }
    /// The tree's shape with what each row shows now, as looks() gives it.
    QStringList looksNow() const
    {
        QStringList lines;
        if (m_tree.root() != nullptr) {
            appendLooks(m_tree.root(), 0, lines);
        }
        return lines;
    }
    const MenuDocument* document = nullptr;
    /// Reads every row again, as a view does when it paints them all.
    void readAgain()
    {
        for (const auto& shadow : m_shadows) {
            shadow->look = lookOf(shadow->node);
        }
    }
    QStringList failures;

    void nodesAboutToBeInserted(const TreeNode* parent, int first, int last) override
    {
        Shadow* shadow = find(parent);
        check(shadow != nullptr && first >= 0 && first <= int(shadow->children.size()) && last == first,
              QStringLiteral("insertion at a row that does not exist"));
        m_pending = { shadow, parent, first };
    }
    void nodesInserted() override
    {
        auto [shadow, parent, row] = m_pending;
        if (shadow == nullptr) {
            return;
        }
        const TreeNode* made = parent->children.at(size_t(row));
        shadow->children.insert(shadow->children.begin() + row, copyOf(made, shadow));
    }
    void nodesAboutToBeRemoved(const TreeNode* parent, int first, int last) override
    {
        Shadow* shadow = find(parent);
        check(shadow != nullptr && first >= 0 && last < int(shadow->children.size()) && first <= last,
              QStringLiteral("removal of rows that do not exist"));
        if (shadow != nullptr && first >= 0 && last < int(shadow->children.size())) {
            // The nodes of the branches that go, as the shadow knows them, each before those below.
            std::vector<const TreeNode*> going;
            std::vector<const Shadow*> stack;
            for (int row = last; row >= first; --row) {
                stack.push_back(shadow->children.at(size_t(row)));
            }
            while (!stack.empty()) {
                const Shadow* branch = stack.back();
                stack.pop_back();
                going.push_back(branch->node);
                stack.insert(stack.end(), branch->children.rbegin(), branch->children.rend());
            }
            m_leaving.insert(m_leaving.end(), going.begin(), going.end());
            check(NodeTree::branchesOf(parent, first, last) == going,
                  QStringLiteral("the nodes of branches that go are not those below them"));
            for (int row = last; row >= first; --row) {
                forget(shadow->children.at(size_t(row)));
                shadow->children.erase(shadow->children.begin() + row);
            }
        }
    }
    void nodesRemoved() override
    {
        // The nodes that went are still there, numbered -1, and those that stay are numbered.
        for (const TreeNode* node : m_leaving) {
            check(node->ordinal == -1, QStringLiteral("a node that went is still numbered"));
        }
        m_leaving.clear();
        for (const auto& [node, shadow] : m_byNode) {
            check(node->ordinal >= 0, QStringLiteral("a node that stays is not numbered"));
        }
    }
    void nodeAboutToBeMoved(const TreeNode* parent, int row, const TreeNode* newParent, int newRow) override
    {
        Shadow* from = find(parent);
        Shadow* to = find(newParent);
        check(from != nullptr && to != nullptr && row >= 0 && row < int(from->children.size()),
              QStringLiteral("move of a row that does not exist"));
        if (from == nullptr || to == nullptr || row < 0 || row >= int(from->children.size())) {
            return;
        }
        Shadow* moving = from->children.at(size_t(row));
        from->children.erase(from->children.begin() + row);
        check(newRow >= 0 && newRow <= int(to->children.size()), QStringLiteral("move to a row that does not exist"));
        to->children.insert(to->children.begin() + std::clamp(newRow, 0, int(to->children.size())), moving);
        moving->parent = to;
    }
    void nodeMoved() override { }
    void nodesChanged(const TreeNode* parent, int first, int last) override
    {
        if (parent == nullptr) {
            check(first == 0 && last == 0 && m_root != nullptr,
                  QStringLiteral("change of a top row that does not exist"));
            if (m_root != nullptr) {
                m_root->look = lookOf(m_root->node);
            }
            ++changes;
            return;
        }
        Shadow* shadow = find(parent);
        check(shadow != nullptr && first >= 0 && first <= last && last < int(shadow->children.size()),
              QStringLiteral("change of rows that do not exist"));
        if (shadow != nullptr && first >= 0 && last < int(shadow->children.size())) {
            for (int row = first; row <= last; ++row) {
                Shadow* changed = shadow->children.at(size_t(row));
                changed->look = lookOf(changed->node);
            }
        }
        ++changes;
    }
    void treeAboutToBeReset() override { }
    void treeReset() override
    {
        ++resets;
        m_shadows.clear();
        m_byNode.clear();
        m_root = m_tree.root() ? copyOf(m_tree.root(), nullptr) : nullptr;
    }

    int changes = 0;
    /// How often the tree was built anew.
    int resets = 0;

private:
    std::vector<const TreeNode*> m_leaving;
    struct Shadow
    {
        const TreeNode* node = nullptr;
        Shadow* parent = nullptr;
        std::vector<Shadow*> children;
        /// What the row showed when the shadow last heard of it.
        QString look;
    };
    struct Pending
    {
        Shadow* shadow = nullptr;
        const TreeNode* parent = nullptr;
        int row = 0;
    };

    void check(bool condition, const QString& failure)
    {
        if (!condition) {
            failures.append(failure);
        }
    }
    Shadow* find(const TreeNode* node) const
    {
        const auto it = m_byNode.find(node);
        return it == m_byNode.end() ? nullptr : it->second;
    }
    Shadow* copyOf(const TreeNode* node, Shadow* parent)
    {
        m_shadows.push_back(std::make_unique<Shadow>());
        Shadow* copy = m_shadows.back().get();
        copy->node = node;
        copy->parent = parent;
        copy->look = lookOf(node);
        m_byNode[node] = copy;
        for (const TreeNode* child : node->children) {
            copy->children.push_back(copyOf(child, copy));
        }
        return copy;
    }
    void forget(Shadow* shadow)
    {
        m_byNode.erase(shadow->node);
        for (Shadow* child : shadow->children) {
            forget(child);
        }
    }
    /// A row's text, colour and bold type, as a view reads them.
    QString lookOf(const TreeNode* node) const
    {
        if (document == nullptr) {
            return QString();
        }
        return QStringLiteral("'%1' %2%3")
            .arg(m_tree.textOf(node, *document))
            .arg(int(node->style.colour))
            .arg(node->style.bold ? QStringLiteral("b") : QString());
    }
    void appendLooks(const TreeNode* node, int depth, QStringList& lines) const
    {
        lines.append(QString(depth, QLatin1Char(' ')) + node->key + QLatin1Char(' ') + lookOf(node));
        for (const TreeNode* child : node->children) {
            appendLooks(child, depth + 1, lines);
        }
    }
    static QStringList looksOf(const Shadow* shadow, int depth = 0)
    {
        QStringList lines { QString(depth, QLatin1Char(' ')) + shadow->node->key + QLatin1Char(' ') + shadow->look };
        for (const Shadow* child : shadow->children) {
            lines += looksOf(child, depth + 1);
        }
        return lines;
    }
    /// The shadow's shape, each node named by the key its node bears now: what a view reads again
    /// when it hears that a row changed.
    static QStringList outlineOf(const Shadow* shadow, int depth = 0)
    {
        QStringList lines { QString(depth, QLatin1Char(' ')) + shadow->node->key };
        for (const Shadow* child : shadow->children) {
            lines += outlineOf(child, depth + 1);
        }
        return lines;
    }

    const NodeTree& m_tree;
    std::vector<std::unique_ptr<Shadow>> m_shadows;
    std::map<const TreeNode*, Shadow*> m_byNode;
    Shadow* m_root = nullptr;
    Pending m_pending;
};

QStringList outlineOf(const TreeNode* node, int depth = 0)
{
    QStringList lines { QString(depth, QLatin1Char(' ')) + node->key };
    for (const TreeNode* child : node->children) {
        lines += outlineOf(child, depth + 1);
    }
    return lines;
}

QStringList outlineOf(const NodeTree& tree)
{
    return tree.root() ? outlineOf(tree.root()) : QStringList();
}

/// Everything a rebuild decides, node by node in collection order: key, parent, row, text, style,
/// expanded mark and whether the node shows a text of its own.
QStringList describe(const NodeTree& tree, const MenuDocument& document)
{
    QStringList lines;
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        const TreeNode* node = tree.node(n);
        if (NodeTree::indexOf(node) != n) {
            lines.append(QStringLiteral("node %1 is numbered %2").arg(n).arg(NodeTree::indexOf(node)));
        }
        if (node->parent != nullptr && node->parent->children.at(size_t(node->row)) != node) {
            lines.append(QStringLiteral("node %1 is not at its row").arg(node->key));
        }
        lines.append(QStringLiteral("%1 < %2 @%3 '%4' %5%6 %7 %8")
                         .arg(node->key, node->parent ? node->parent->key : QStringLiteral("-"))
                         .arg(node->row)
                         .arg(tree.textOf(node, document))
                         .arg(int(node->style.colour))
                         .arg(node->style.bold ? QStringLiteral("b") : QString())
                         .arg(node->children.empty()
                                  ? QStringLiteral("leaf")
                                  : (node->expanded ? QStringLiteral("open") : QStringLiteral("shut")))
                         .arg(node->hasOwnText ? QStringLiteral("own") : QString()));
    }
    return lines;
}

/// E0, E1 and E2, side by side at the top.
MenuDocument threeTopLevelItems()
{
    MenuDocument document;
    document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2),
                       item(QStringLiteral("E2"), -1, 0, 3) };
    return document;
}

/// A random change of the tree alone, as the editor's patches make them between rebuilds.
void patchAtRandom(NodeTree& tree, const MenuDocument& document, QRandomGenerator& random, int& made)
{
    const int count = tree.nodeCount();
    if (count < 2) {
        return;
    }
    TreeNode* node = tree.node(2 + int(random.bounded(count - 1)));
    switch (random.bounded(8)) {
    case 0:
        tree.removeNode(node);
        break;
    case 1: {
        TreeNode* parent = tree.node(1 + int(random.bounded(count)));
        tree.moveNode(node, parent, int(random.bounded(4)));
        break;
    }
    case 2:
        tree.moveAmongSiblings(node, random.bounded(2) == 0 ? -1 : 1);
        break;
    case 3:
        tree.setText(node, QStringLiteral("typed %1").arg(random.bounded(5)), document);
        break;
    case 4:
        tree.setColour(node, NodeStyle::Colour(random.bounded(3)));
        break;
    case 5: {
        const QString top = QStringLiteral("N%1").arg(made++);
        tree.addNodes({ { node->key, top, QStringLiteral("copy") },
                        { top, QStringLiteral("N%1").arg(made++), QStringLiteral("inner") },
                        { node->key, QStringLiteral("E0"), QStringLiteral("taken") } },
                      document);
        break;
    }
    case 6:
        // The user opens or closes a branch in the view.
        tree.setExpandedMark(node, random.bounded(2) == 0);
        break;
    default:
        tree.colorize(document);
        break;
    }
}

/// `document` with one to three items given the key of another item, or the root's.
MenuDocument withSharedKeys(MenuDocument document, QRandomGenerator& random)
{
    const int count = int(document.items.size());
    for (int shared = count == 0 ? 0 : int(random.bounded(1, 4)); shared > 0; --shared) {
        const QString key
            = random.bounded(4) == 0 ? NodeTree::rootKey() : document.items.at(qsizetype(random.bounded(count))).key;
        document.items[qsizetype(random.bounded(count))].key = key;
    }
    return document;
}

/// A second menu sharing keys with `document`: its own random menu, or `document` with some items
/// gone, moved, renamed, relinked or hidden otherwise.
MenuDocument otherMenu(const MenuDocument& document, quint32 seed, QRandomGenerator& random)
{
    if (random.bounded(3) == 0) {
        MenuDocument other = TestMenus::randomMenu(seed + 7919);
        other.hideMode = int(random.bounded(4));
        return other;
    }
    MenuDocument other = document;
    const int count = int(other.items.size());
    for (int change = 0; change < 4 && count > 0; ++change) {
        MenuItem& item = other.items[qsizetype(random.bounded(count))];
        switch (random.bounded(5)) {
        case 0:
            item.caption += QStringLiteral(" renamed");
            break;
        case 1:
            item.parent = qint16(int(random.bounded(count + 1)) - 1);
            break;
        case 2:
            item.siblingOrder = qint16(1 + random.bounded(4));
            break;
        case 3:
            item.copiesCommands = !item.copiesCommands;
            break;
        default:
            item.commands = MenuItem::placeholderCommands();
            break;
        }
    }
    if (random.bounded(4) == 0 && count > 1) {
        other.items.removeLast();
    }
    return other;
}

/// `document` with one more item, as New Item adds it: the last child of a random item, or of the
/// top level. Its key goes to `key` and its parent's to `parentKey` ("Root" for the top level).
MenuDocument withNewItem(const MenuDocument& document, QRandomGenerator& random, QString& key, QString& parentKey)
{
    MenuDocument next = document;
    const int count = int(next.items.size());
    const int parent = int(random.bounded(count + 1)) - 1;
    qint16 order = 1;
    if (parent >= 0) {
        MenuItem& parentItem = next.items[qsizetype(parent)];
        order = ++parentItem.childCount;
        parentKey = parentItem.key;
    } else {
        for (const MenuItem& other : std::as_const(next.items)) {
            if (other.parent == -1) {
                order = qMax(order, qint16(other.siblingOrder + 1));
            }
        }
        parentKey = NodeTree::rootKey();
    }
    key = QStringLiteral("E%1").arg(100000 + random.bounded(800000));
    MenuItem added = item(key, qint16(parent), 0, order);
    added.caption = QStringLiteral("New Item");
    next.items.append(added);
    return next;
}

/// The keys of `nodes`, for comparing what two trees ask the view to expand or close.
QStringList keysOf(const std::vector<TreeNode*>& nodes)
{
    QStringList keys;
    for (const TreeNode* node : nodes) {
        keys.append(node->key);
    }
    return keys;
}

/// The next state of an editing session over `document`: an edit as the editor makes them (a
/// rename, new commands, a link switched, now and then a change of shape), or, like Undo, a state
/// recorded earlier. Edits write into a copy, so that the states share the records they did not
/// change, as the undo history's do.
MenuDocument nextState(const MenuDocument& document, const std::vector<MenuDocument>& history, QRandomGenerator& random)
{
    if (!history.empty() && random.bounded(4) == 0) {
        return history.at(size_t(random.bounded(int(history.size()))));
    }
    MenuDocument next = document;
    const int count = int(next.items.size());
    const int edits = int(random.bounded(1, 4));
    for (int edit = 0; edit < edits && count > 0; ++edit) {
        MenuItem& item = next.items[qsizetype(random.bounded(count))];
        switch (random.bounded(8)) {
        case 0:
        case 1:
        case 2:
            item.caption = QStringLiteral("Renamed %1").arg(random.bounded(4));
            break;
        case 3:
            item.commands = MenuItem::placeholderCommands();
            break;
        case 4:
            item.commands.append(Command { QStringLiteral("*"), QStringLiteral("edit $fs-001$") });
            break;
        case 5:
            item.copiesCommands = !item.copiesCommands;
            break;
        case 6:
            item.siblingOrder = qint16(1 + random.bounded(3));
            break;
        default:
            break; // an edit that changed nothing the tree shows
        }
    }
    return next;
}

} // namespace

class TestNodeTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void generateFollowsThePlan()
    {
        for (quint32 seed = 1; seed <= 300; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            document.hideMode = int(seed % 4);
            NodeTree tree;
            tree.generate(document);
            const QList<PlannedNode> plan = planTree(document, document.hideMode);
            QCOMPARE(tree.nodeCount(), int(plan.size()) + 1);
            QCOMPARE(tree.node(1)->key, NodeTree::rootKey());
            QCOMPARE(tree.textOf(tree.node(1), document), QStringLiteral("KELV"));
            QCOMPARE(tree.node(1)->style, NodeStyle::forRoot());
            for (int n = 0; n < plan.size(); ++n) {
                const TreeNode* node = tree.node(n + 2);
                QCOMPARE(node->key, plan.at(n).key);
                QCOMPARE(node->parent->key, plan.at(n).parentKey);
                QCOMPARE(tree.textOf(node, document), plan.at(n).caption);
                QCOMPARE(node->style, NodeStyle::forItem(document.items.at(plan.at(n).itemIndex)));
                QCOMPARE(node->expanded, !node->children.empty());
                QCOMPARE(tree.itemOf(node, document), int(plan.at(n).itemIndex));
            }
        }
    }

    void aNodeShowsItsItemsCaptionUnlessGivenAnotherText()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2) };
        NodeTree tree;
        tree.generate(document);
        TreeNode* first = tree.nodeByKey(QStringLiteral("E0"));
        QCOMPARE(tree.textOf(first, document), QStringLiteral("E0"));
        document.items[0].caption = QStringLiteral("Renamed");
        tree.documentChanged();
        QCOMPARE(tree.textOf(first, document), QStringLiteral("Renamed"));

        tree.setText(first, QStringLiteral("$audiostream$"), document);
        QVERIFY(first->hasOwnText);
        QCOMPARE(tree.textOf(first, document), QStringLiteral("$audiostream$"));
        tree.setText(first, QStringLiteral("Renamed"), document);
        QVERIFY(!first->hasOwnText);

        // An item moved to another place in the array is found again by its key.
        std::swap(document.items[0], document.items[1]);
        tree.documentChanged();
        QCOMPARE(tree.textOf(first, document), QStringLiteral("Renamed"));
        QCOMPARE(tree.itemOf(first, document), 1);
        document.items.removeLast();
        tree.documentChanged();
        QCOMPARE(tree.itemOf(first, document), -1);
        QCOMPARE(tree.textOf(first, document), QString());
    }

    void keysOfAnyTextAreFound()
    {
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E0")), 0);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E32767")), 32767);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E01")), -1);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("e1")), -1);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E")), -1);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E1x")), -1);
        QCOMPARE(KeyMap<int>::numberOf(QStringLiteral("E1234567")), -1);
        KeyMap<int> map;
        const QStringList keys { QStringLiteral("E5"), QStringLiteral("E05"), QStringLiteral("Root"),
                                 QStringLiteral("E999999"), QStringLiteral("") };
        for (int k = 0; k < keys.size(); ++k) {
            map.insert(keys.at(k), k);
        }
        for (int k = 0; k < keys.size(); ++k) {
            QVERIFY(map.contains(keys.at(k)));
            QCOMPARE(map.value(keys.at(k), -1), k);
        }
        QVERIFY(!map.contains(QStringLiteral("E6")));
        map.remove(QStringLiteral("E5"));
        map.remove(QStringLiteral("E05"));
        QVERIFY(!map.contains(QStringLiteral("E5")));
        QVERIFY(!map.contains(QStringLiteral("E05")));
        QCOMPARE(map.value(QStringLiteral("E5"), -1), -1);
    }

    void twoLeavesTradePlacesAndKeepTheirNumbers()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2),
                           item(QStringLiteral("E2"), -1, 1, 3), item(QStringLiteral("E3"), 2, 0, 1) };
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        TreeNode* first = tree.nodeByKey(QStringLiteral("E0"));
        TreeNode* moved = tree.moveAmongSiblings(first, 1);
        QCOMPARE(moved->key, QStringLiteral("E0"));
        QCOMPARE(moved->row, 1);
        QCOMPARE(NodeTree::indexOf(moved), 2);
        QCOMPARE(tree.node(3)->key, QStringLiteral("E1"));
        QCOMPARE(tree.node(3)->row, 0);
        QVERIFY(tree.moveAmongSiblings(moved, -2) == moved); // nothing moves past either end
        // A branch moves as a whole.
        TreeNode* branch = tree.nodeByKey(QStringLiteral("E2"));
        QCOMPARE(tree.moveAmongSiblings(branch, -1), branch);
        QCOMPARE(branch->row, 1);
        QCOMPARE(outlineOf(tree),
                 QStringList({ QStringLiteral("Root"), QStringLiteral(" E1"), QStringLiteral(" E2"),
                               QStringLiteral("  E3"), QStringLiteral(" E0") }));
        QCOMPARE(shadow.outline(), outlineOf(tree));
        QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
    }

    void aNodeNeverMovesIntoItsOwnBranch()
    {
        MenuDocument document = TestMenus::chainMenu(4);
        NodeTree tree;
        tree.generate(document);
        const QStringList before = outlineOf(tree);
        tree.moveNode(tree.nodeByKey(QStringLiteral("E1")), tree.nodeByKey(QStringLiteral("E3")), 0);
        tree.moveNode(tree.nodeByKey(QStringLiteral("E1")), tree.nodeByKey(QStringLiteral("E1")), 0);
        QCOMPARE(outlineOf(tree), before);
    }

    void syncEndsAsARebuildWouldOnRandomMenusAndPatches()
    {
        QRandomGenerator random(20261124);
        int made = 0;
        for (quint32 seed = 1; seed <= 600; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            document.hideMode = int(random.bounded(4));
            NodeTree tree;
            ShadowObserver shadow(tree);
            tree.setObserver(&shadow);
            tree.generate(document);
            const int patches = int(random.bounded(6));
            for (int p = 0; p < patches; ++p) {
                patchAtRandom(tree, document, random, made);
            }
            const MenuDocument other = otherMenu(document, seed, random);
            const bool knowsBefore = random.bounded(2) == 0;
            tree.syncTo(other, knowsBefore ? &document : nullptr);

            NodeTree fresh;
            fresh.generate(other);
            QCOMPARE(describe(tree, other), describe(fresh, other));
            QCOMPARE(shadow.outline(), outlineOf(tree));
            QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
        }
    }

    void syncEndsAsARebuildWouldWhereItemsShareKeys()
    {
        // A damaged menu may give several items one key, even the root's: the first the tree reaches
        // shows, and the others' children hang under it.
        QRandomGenerator random(1125);
        int made = 0;
        for (quint32 seed = 1; seed <= 400; ++seed) {
            MenuDocument document = withSharedKeys(TestMenus::randomMenu(seed), random);
            document.hideMode = int(random.bounded(4));
            NodeTree tree;
            ShadowObserver shadow(tree);
            tree.setObserver(&shadow);
            tree.generate(document);
            if (random.bounded(2) == 0) {
                patchAtRandom(tree, document, random, made);
            }
            const MenuDocument other = withSharedKeys(otherMenu(document, seed, random), random);
            tree.syncTo(other, random.bounded(2) == 0 ? &document : nullptr);

            NodeTree fresh;
            fresh.generate(other);
            QCOMPARE(describe(tree, other), describe(fresh, other));
            QCOMPARE(shadow.outline(), outlineOf(tree));
            QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
        }
    }

    void anItemBearingTheRootsKeyIsBuiltAnewUnderARootOfAnotherKey()
    {
        MenuDocument document = threeTopLevelItems();
        NodeTree tree;
        tree.addNode(QString(), QStringLiteral("Top"), QStringLiteral("KELV"), document);
        document.items[1].key = NodeTree::rootKey();
        tree.syncTo(document, nullptr);
        NodeTree fresh;
        fresh.generate(document);
        QCOMPARE(describe(tree, document), describe(fresh, document));
    }

    void syncThatKeepsTheShapeEndsAsAFullComparisonWould()
    {
        // A sync may trust that the shape its last rebuild or sync left still stands, and compare
        // only what the nodes show; a tree told to forget that shape compares every node. Both must
        // end alike, and as a rebuild would, through sequences of states like an undo history's.
        QRandomGenerator random(19);
        int made = 0;
        for (quint32 seed = 1; seed <= 150; ++seed) {
            // Large menus span several chunks of the item array, so that states share some of them.
            MenuDocument document = seed % 3 == 0 ? RandomMenu::generate(random, int(random.bounded(300, 1500)))
                                                  : TestMenus::randomMenu(seed);
            document.hideMode = int(random.bounded(4));
            NodeTree trusting;
            NodeTree comparing;
            ShadowObserver shadow(trusting);
            shadow.document = &document;
            trusting.setObserver(&shadow);
            trusting.generate(document);
            comparing.generate(document);
            std::vector<MenuDocument> history { document };
            for (int step = 0; step < 12; ++step) {
                // Now and then the tree is patched between syncs, as the editor's edits do; a change
                // of its shape makes the next sync compare everything.
                if (random.bounded(3) == 0) {
                    QRandomGenerator same = random;
                    int madeToo = made;
                    patchAtRandom(trusting, document, random, made);
                    patchAtRandom(comparing, document, same, madeToo);
                }
                // Now and then an item is added as New Item adds it: to the document, and to the tree
                // as one node, so that the sync after it, like its Undo, starts from a patched tree.
                if (random.bounded(4) == 0) {
                    QString key;
                    QString parentKey;
                    document = withNewItem(document, random, key, parentKey);
                    history.push_back(document);
                    trusting.addNode(parentKey, key, QStringLiteral("New Item"), document);
                    comparing.addNode(parentKey, key, QStringLiteral("New Item"), document);
                }
                // Now and then the document changes without the tree being told, as a Paste that
                // neither rebuilds nor recolours it; the tree then shows records it was not synced to,
                // and the view paints them all.
                if (random.bounded(3) == 0) {
                    document = nextState(document, history, random);
                    shadow.readAgain();
                }
                const MenuDocument next = nextState(document, history, random);
                shadow.document = &next;
                std::vector<TreeNode*> trustingClosed;
                std::vector<TreeNode*> comparingClosed;
                const std::vector<TreeNode*> trustingOpened = trusting.syncTo(next, &document, &trustingClosed);
                comparing.forgetSyncedShape();
                const std::vector<TreeNode*> comparingOpened = comparing.syncTo(next, &document, &comparingClosed);
                QCOMPARE(describe(trusting, next), describe(comparing, next));
                QCOMPARE(keysOf(trustingOpened), keysOf(comparingOpened));
                QCOMPARE(keysOf(trustingClosed), keysOf(comparingClosed));
                NodeTree fresh;
                fresh.generate(next);
                QCOMPARE(describe(trusting, next), describe(fresh, next));
                QCOMPARE(shadow.outline(), outlineOf(trusting));
                // Every row whose text or style changed was announced, and nothing was built anew.
                QCOMPARE(shadow.looks(), shadow.looksNow());
                QCOMPARE(shadow.resets, 1);
                QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
                document = next;
                shadow.document = &document;
                history.push_back(next);
            }
        }
    }

    void syncOfAnUnchangedMenuChangesNothing()
    {
        MenuDocument document = TestMenus::randomMenu(42);
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        shadow.changes = 0;
        QVERIFY(tree.syncTo(document, &document).empty());
        QCOMPARE(shadow.changes, 0);
    }

    void aNodeReadThroughAnotherDocumentIsLookedAtAgainBySync()
    {
        const MenuDocument document = threeTopLevelItems();
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        // The same records in another order: reading E2 through it moves the node's hint.
        MenuDocument reordered = document;
        reordered.items = { document.items.at(2), document.items.at(0), document.items.at(1) };
        TreeNode* node = tree.nodeByKey(QStringLiteral("E2"));
        QCOMPARE(tree.itemOf(node, reordered), 0);
        shadow.changes = 0;
        tree.syncTo(document, &document);
        QCOMPARE(node->itemHint, 2);
        QCOMPARE(shadow.changes, 1);
        QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
    }

    void syncAfterMoreChangesThanNodesLooksAtEveryNode()
    {
        const MenuDocument document = TestMenus::chainMenu(4);
        NodeTree tree;
        tree.generate(document);
        QVERIFY(!tree.node(2)->children.empty());
        // Each node is recoloured several times, more changes than the tree has nodes.
        for (int round = 0; round < 3; ++round) {
            for (int n = 2; n <= tree.nodeCount(); ++n) {
                tree.setColour(tree.node(n), NodeStyle::Colour((n + round) % 3));
            }
        }
        tree.setExpandedMark(tree.node(2), !tree.node(2)->expanded);
        tree.syncTo(document, &document);
        NodeTree fresh;
        fresh.generate(document);
        QCOMPARE(describe(tree, document), describe(fresh, document));
    }

    void syncInPlaceMarksNodesAroundTheExpandedDepthAsARebuild()
    {
        // A chain deeper than the levels a rebuild expands; three nodes about that depth have their
        // marks turned, as a user would, and the sync turns them back.
        const MenuDocument document = TestMenus::chainMenu(NodeTree::expandedLevels + 20);
        NodeTree tree;
        tree.generate(document);
        for (int depth = NodeTree::expandedLevels - 1; depth <= NodeTree::expandedLevels + 1; ++depth) {
            TreeNode* node = tree.node(depth + 1); // node 1 is the root, at depth 0
            QCOMPARE(NodeTree::depthOf(node), depth);
            tree.setExpandedMark(node, !node->expanded);
        }
        std::vector<TreeNode*> unmarked;
        const std::vector<TreeNode*> marked = tree.syncTo(document, &document, &unmarked);
        QCOMPARE(marked.size(), size_t(1));
        QCOMPARE(NodeTree::depthOf(marked.front()), NodeTree::expandedLevels - 1);
        QCOMPARE(unmarked.size(), size_t(2));
        NodeTree fresh;
        fresh.generate(document);
        QCOMPARE(describe(tree, document), describe(fresh, document));
    }

    void syncOfANewShapeMarksNodesAroundTheExpandedDepthAsARebuild()
    {
        // As above, but the chain also ends a level earlier, so the sync builds the new shape.
        const MenuDocument document = TestMenus::chainMenu(NodeTree::expandedLevels + 20);
        MenuDocument shorter = document;
        shorter.items[shorter.items.size() - 2].childCount = 0;
        NodeTree tree;
        tree.generate(document);
        for (int depth = NodeTree::expandedLevels - 1; depth <= NodeTree::expandedLevels + 1; ++depth) {
            TreeNode* node = tree.node(depth + 1);
            QCOMPARE(NodeTree::depthOf(node), depth);
            tree.setExpandedMark(node, !node->expanded);
        }
        std::vector<TreeNode*> unmarked;
        const std::vector<TreeNode*> marked = tree.syncTo(shorter, &document, &unmarked);
        QCOMPARE(tree.nodeCount(), NodeTree::expandedLevels + 20);
        QCOMPARE(marked.size(), size_t(1));
        QCOMPARE(NodeTree::depthOf(marked.front()), NodeTree::expandedLevels - 1);
        QCOMPARE(unmarked.size(), size_t(2));
        NodeTree fresh;
        fresh.generate(shorter);
        QCOMPARE(describe(tree, shorter), describe(fresh, shorter));
    }

    void theRootIsRepaintedOnlyWhenItsTextChanges()
    {
        MenuDocument document = TestMenus::randomMenu(3);
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        shadow.changes = 0;
        tree.setText(tree.root(), QStringLiteral("Hidden items"), document);
        QCOMPARE(shadow.changes, 1);
        tree.setText(tree.root(), QStringLiteral("Hidden items"), document);
        QCOMPARE(shadow.changes, 1);
        QCOMPARE(tree.textOf(tree.root(), document), QStringLiteral("Hidden items"));
        // An item node is told of every time: its caption may have changed in the document.
        TreeNode* node = tree.node(2);
        const QString caption = tree.textOf(node, document);
        tree.setText(node, caption, document);
        tree.setText(node, caption, document);
        QCOMPARE(shadow.changes, 3);
    }

    void syncRepaintsOnlyNodesWhoseCaptionOrStyleChanged()
    {
        const MenuDocument document = threeTopLevelItems();
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        MenuDocument renamed = document;
        renamed.items[1].caption = QStringLiteral("New name");
        shadow.changes = 0;
        tree.syncTo(renamed, &document);
        QCOMPARE(shadow.changes, 1);
        QCOMPARE(tree.textOf(tree.nodeByKey(QStringLiteral("E1")), renamed), QStringLiteral("New name"));
    }

    void syncAfterAChangeOfShapeRepaintsOnlyNodesWhoseCaptionChanged()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2),
                           item(QStringLiteral("E2"), -1, 0, 3), item(QStringLiteral("E3"), -1, 0, 4) };
        document.lastIndex = 3;
        for (int i = 0; i < 4; ++i) {
            document.items[i].caption = QStringLiteral("Item %1").arg(i);
        }
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        // E0 goes, so every other item moves down one place, and E2 is renamed.
        MenuDocument next;
        next.items = { document.items.at(1), document.items.at(2), document.items.at(3) };
        next.items[0].siblingOrder = 1;
        next.items[1].siblingOrder = 2;
        next.items[2].siblingOrder = 3;
        next.items[1].caption = QStringLiteral("Renamed");
        next.lastIndex = 2;
        // A hint that names another item is looked past: E3 is found by its key.
        tree.nodeByKey(QStringLiteral("E3"))->itemHint = 0;
        shadow.changes = 0;
        tree.syncTo(next, &document);
        QCOMPARE(shadow.changes, 1);
        QCOMPARE(tree.textOf(tree.nodeByKey(QStringLiteral("E2")), next), QStringLiteral("Renamed"));
        QCOMPARE(tree.textOf(tree.nodeByKey(QStringLiteral("E3")), next), QStringLiteral("Item 3"));
        QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
    }

    void aDeletedBranchComesBackInOneInsertion()
    {
        MenuDocument document = TestMenus::chainMenu(2000);
        NodeTree tree;
        ShadowObserver shadow(tree);
        tree.setObserver(&shadow);
        tree.generate(document);
        tree.removeNode(tree.nodeByKey(QStringLiteral("E1")));
        QCOMPARE(tree.nodeCount(), 2);
        const std::vector<TreeNode*> expanded = tree.syncTo(document, nullptr);
        QCOMPARE(tree.nodeCount(), 2001);
        QCOMPARE(int(expanded.size()), 998); // the new submenus down to the levels a rebuild expands
        QCOMPARE(shadow.outline(), outlineOf(tree));
        QVERIFY2(shadow.failures.isEmpty(), qPrintable(shadow.failures.join(u'\n')));
    }

    void aDeepChainIsSyncedWithoutRecursion()
    {
        MenuDocument document = TestMenus::chainMenu(32767);
        NodeTree tree;
        tree.generate(document);
        QVERIFY(tree.node(NodeTree::expandedLevels)->expanded);
        QVERIFY(!tree.node(NodeTree::expandedLevels + 1)->expanded);
        MenuDocument shorter = document;
        shorter.items[16000].childCount = 0; // the chain ends halfway
        tree.syncTo(shorter, &document);
        QCOMPARE(tree.nodeCount(), 16002);
        tree.syncTo(document, &shorter);
        QCOMPARE(tree.nodeCount(), 32768);
    }
};

QTEST_MAIN(TestNodeTree)
#include "test_nodetree.moc"

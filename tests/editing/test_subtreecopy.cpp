#include "documentinvariants.h"
#include "literalsubtreecopy.h"
#include "randommenu.h"
#include "treeupdatetext.h"

#include "editing/copylinks.h"
#include "editing/itemdeletion.h"
#include "editing/subtreecopy.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
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

/// The keys of the children of item `parent` (-1: the top level) in their sibling order.
QStringList childKeys(const MenuDocument& document, int parent)
{
    QList<std::pair<int, QString>> children;
    for (const MenuItem& item : document.items) {
        if (item.parent == parent) {
            children.append({ item.siblingOrder, item.key });
        }
    }
    std::sort(children.begin(), children.end());
    QStringList keys;
    for (const auto& child : std::as_const(children)) {
        keys.append(child.second);
    }
    return keys;
}

QStringList childKeys(const MenuDocument& document, const char* parentKey)
{
    return childKeys(document, findItemByKey(document, QString::fromLatin1(parentKey)));
}

/// The branch of item `index` as text: captions and commands, children in sibling order. Two
/// branches with the same outline have the same shape, content and order.
QString outline(const MenuDocument& document, int index)
{
    const MenuItem& item = document.items.at(index);
    QString text = item.caption + QStringLiteral("[%1]").arg(item.commandUpperBound());
    QList<std::pair<int, int>> children;
    for (int j = 0; j < document.items.size(); ++j) {
        if (document.items.at(j).parent == index) {
            children.append({ document.items.at(j).siblingOrder, j });
        }
    }
    std::sort(children.begin(), children.end());
    if (!children.isEmpty()) {
        QStringList parts;
        for (const auto& child : std::as_const(children)) {
            parts.append(outline(document, child.second));
        }
        text += QStringLiteral("(") + parts.join(QStringLiteral(", ")) + QStringLiteral(")");
    }
    return text;
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

/// A random new parent for a copy of the branch of `sourceIndex` in the same menu: -1 or any item
/// outside that branch.
int randomParentOutside(QRandomGenerator& random, const MenuDocument& document, int sourceIndex)
{
    QList<int> candidates { -1 };
    for (int i = 0; i < document.items.size(); ++i) {
        if (!isInBranch(document, i, sourceIndex)) {
            candidates.append(i);
        }
    }
    return candidates.at(random.bounded(int(candidates.size())));
}

/// Sibling orders and child counts knocked out of line here and there, as a damaged menu might hold
/// them: equal places among siblings, places past the child count, counts too small or too large.
void damageNumbers(QRandomGenerator& random, MenuDocument& document)
{
    const int count = int(document.items.size());
    for (int round = random.bounded(4); round > 0; --round) {
        MenuItem& item = document.items[random.bounded(count)];
        if (random.bounded(2) == 0) {
            item.siblingOrder = qint16(random.bounded(5));
        } else {
            item.childCount = qint16(random.bounded(5));
        }
    }
}

int errorNumberOf(int sourceIndex, int newParent, MenuDocument& source, MenuDocument& target)
{
    try {
        TreeUpdate update;
        copyItemTree(sourceIndex, newParent, source, target, true, update);
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

/// A tree three levels deep under A, stored out of order:
///   A (E0): B (E1): C (E2): D (E3)
///                   F (E5)
///           G (E6)
///   H (E4)
MenuDocument deepMenu()
{
    return documentOf({ { "E5", 4, 2 },
                        { "E0", -1, 1 },
                        { "E3", 6, 1 },
                        { "E4", -1, 2 },
                        { "E1", 1, 1 },
                        { "E6", 1, 2 },
                        { "E2", 4, 1 } },
                      6);
}

/// Five top-level items for the link rules, all in one menu:
///   E0: own commands
///   E1: linked to E0, holding a copy of its commands
///   E2: no commands at all
///   E3: linked to E0 but holding no commands of its own
///   E4: own commands, link off with its old target E2 kept
MenuDocument linkRuleMenu()
{
    MenuDocument document
        = documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 }, { "E3", -1, 4 }, { "E4", -1, 5 } }, 4);
    document.items[0].commands = commandList("del ");
    document.items[1].commands = commandList("del ");
    document.items[1].copiesCommands = true;
    document.items[1].copyKey = key("E0");
    document.items[3].copiesCommands = true;
    document.items[3].copyKey = key("E0");
    document.items[4].commands = commandList("rename ");
    document.items[4].copyKey = key("E2");
    document.windowIndex = 1;
    return document;
}

/// Copies every item of the link rule menu, one after the other, to the top level of the same menu.
MenuDocument copiedLinkRuleMenu(bool copyCommandDup)
{
    MenuDocument document = linkRuleMenu();
    TreeUpdate update;
    for (int i = 0; i < 5; ++i) {
        copyItemTree(i, -1, document, document, copyCommandDup, update);
    }
    return document;
}

/// One editor window on its document; every window shares one editing state.
struct Window
{
    MenuDocument document;
    WindowEditingState state;

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), EditingState& editing, const char* selectedKey,
                   const char* parentKey)
    {
        EditContext context { document, SelectedNode::of(key(selectedKey), key(parentKey)), EditArguments {}, editing,
                              state };
        return operation(context);
    }

    QString refusal(QString (*check)(const EditContext&), EditingState& editing, const char* selectedKey)
    {
        const EditContext context { document, SelectedNode::of(key(selectedKey), SelectedNode::rootKey()),
                                    EditArguments {}, editing, state };
        return check(context);
    }
};

int errorNumberOf(Window& window, TreeUpdate (*operation)(EditContext&), EditingState& editing, const char* itemKey)
{
    try {
        window.run(operation, editing, itemKey, "Root");
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

/// A menu for paste:
///   E0: E1, E2
///   E3 (own commands): E4
MenuDocument pasteMenu()
{
    MenuDocument document
        = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 }, { "E3", -1, 2 }, { "E4", 3, 1 } }, 4);
    document.items[3].commands = commandList("rename ");
    document.windowIndex = 1;
    return document;
}

} // namespace

class TestSubtreeCopy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The copy of a branch.

    void branchThreeLevelsDeepKeepsItsShapeWithKeysInPreOrder()
    {
        MenuDocument document = deepMenu();
        const MenuDocument before = document;
        TreeUpdate update;
        const int copy = copyItemTree(1, -1, document, document, false, update);

        QCOMPARE(copy, 7);
        QCOMPARE(document.lastIndex, qint16(12));
        // The copies are appended in the order they are made: A, B, C, D, F, G.
        QCOMPARE(keysInSlotOrder(document).mid(7), keyList({ "E7", "E8", "E9", "E10", "E11", "E12" }));
        QCOMPARE(keysInSlotOrder(document).mid(0, 7), keysInSlotOrder(before));
        QCOMPARE(childKeys(document, -1), keyList({ "E0", "E4", "E7" }));
        QCOMPARE(childKeys(document, "E7"), keyList({ "E8", "E12" }));
        QCOMPARE(childKeys(document, "E8"), keyList({ "E9", "E11" }));
        QCOMPARE(childKeys(document, "E9"), keyList({ "E10" }));
        QCOMPARE(childKeys(document, "E10"), QStringList());
        QCOMPARE(outline(document, 7), outline(document, 1));
        QCOMPARE(itemWithKey(document, "E7").siblingOrder, qint16(3));
        QCOMPARE(itemWithKey(document, "E7").parent, qint16(-1));
        QCOMPARE(itemWithKey(document, "E10").caption, QStringLiteral("Caption of E3"));
        // Copies keep their source's level.
        QCOMPARE(itemWithKey(document, "E10").level, itemWithKey(document, "E3").level);
        QCOMPARE(DocumentInvariants::problem(document), QString());

        TreeUpdate expected;
        expected.addNode(QStringLiteral("Root"), key("E7"), QStringLiteral("Caption of E0"))
            .addNode(key("E7"), key("E8"), QStringLiteral("Caption of E1"))
            .addNode(key("E8"), key("E9"), QStringLiteral("Caption of E2"))
            .addNode(key("E9"), key("E10"), QStringLiteral("Caption of E3"))
            .addNode(key("E8"), key("E11"), QStringLiteral("Caption of E5"))
            .addNode(key("E7"), key("E12"), QStringLiteral("Caption of E6"));
        QCOMPARE(update, expected);
    }

    void copyUnderAnItemBecomesItsLastChild()
    {
        MenuDocument document = deepMenu();
        TreeUpdate update;
        // B (E1) with its branch under H (E4), which has no children yet, then once more.
        copyItemTree(4, 3, document, document, false, update);
        copyItemTree(4, 3, document, document, false, update);
        QCOMPARE(itemWithKey(document, "E4").childCount, qint16(2));
        QCOMPARE(childKeys(document, "E4"), keyList({ "E7", "E11" }));
        QCOMPARE(itemWithKey(document, "E11").siblingOrder, qint16(2));
        QCOMPARE(outline(document, findItemByKey(document, key("E11"))), outline(document, 4));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void childrenAreVisitedByPlaceThenByArrayOrder()
    {
        // P (E0) counts two children; E1 and E3 both claim place 1, E4 claims a place past the
        // count and E5 place 0: the copy takes E1 and E3 for place 1, in array order, then E2.
        MenuDocument document = documentOf(
            { { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", 0, 2 }, { "E3", 0, 1 }, { "E4", 0, 3 }, { "E5", 0, 0 } }, 5);
        document.items[0].childCount = 2;
        TreeUpdate update;
        copyItemTree(0, -1, document, document, false, update);
        QCOMPARE(keysInSlotOrder(document).mid(6), keyList({ "E6", "E7", "E8", "E9" }));
        QCOMPARE(itemWithKey(document, "E7").caption, QStringLiteral("Caption of E1"));
        QCOMPARE(itemWithKey(document, "E8").caption, QStringLiteral("Caption of E3"));
        QCOMPARE(itemWithKey(document, "E9").caption, QStringLiteral("Caption of E2"));
        QCOMPARE(itemWithKey(document, "E6").childCount, qint16(3));
        QCOMPARE(childKeys(document, "E6"), keyList({ "E7", "E8", "E9" }));
    }

    void topLevelCopyTakesTheNumberOfTopLevelItemsAsItsPlace()
    {
        MenuDocument source = deepMenu();
        source.windowIndex = 1;
        MenuDocument target = documentOf({ { "E0", -1, 1 }, { "E1", 0, 1 }, { "E2", -1, 2 }, { "E3", -1, 3 } }, 3);
        target.windowIndex = 2;
        TreeUpdate update;
        const int copy = copyItemTree(3, -1, source, target, false, update);
        QCOMPARE(copy, 4);
        QCOMPARE(target.items.at(4).key, QStringLiteral("E4"));
        QCOMPARE(target.items.at(4).siblingOrder, qint16(4));
        QCOMPARE(target.items.at(4).parent, qint16(-1));
        QCOMPARE(target.lastIndex, qint16(4));
        // Keys are counted per menu: the source's own E4 is another item.
        QCOMPARE(source.items.at(3).lastCopyKey, QStringLiteral("E4"));
        QCOMPARE(DocumentInvariants::problem(target), QString());
    }

    void eachSourceNamesItsNewestCopy()
    {
        MenuDocument document = deepMenu();
        TreeUpdate update;
        copyItemTree(1, -1, document, document, false, update);
        const std::pair<const char*, const char*> firstCopies[]
            = { { "E0", "E7" }, { "E1", "E8" }, { "E2", "E9" }, { "E3", "E10" }, { "E5", "E11" }, { "E6", "E12" } };
        for (const auto& [sourceKey, copyKey] : firstCopies) {
            QCOMPARE(itemWithKey(document, sourceKey).lastCopyKey, key(copyKey));
        }
        QVERIFY(itemWithKey(document, "E4").lastCopyKey.isEmpty());

        copyItemTree(findItemByKey(document, key("E2")), -1, document, document, false, update);
        QCOMPARE(itemWithKey(document, "E2").lastCopyKey, key("E13"));
        QCOMPARE(itemWithKey(document, "E3").lastCopyKey, key("E14"));
        QCOMPARE(itemWithKey(document, "E0").lastCopyKey, key("E7"));
        QCOMPARE(itemWithKey(document, "E13").caption, QStringLiteral("Caption of E2"));
    }

    void copyIntoAnotherMenuNotesTheCopyInTheSource()
    {
        MenuDocument source = deepMenu();
        source.windowIndex = 1;
        MenuDocument target = documentOf({ { "E0", -1, 1 } }, 20);
        target.windowIndex = 2;
        TreeUpdate update;
        copyItemTree(4, 0, source, target, true, update);
        QCOMPARE(itemWithKey(source, "E1").lastCopyKey, key("E21"));
        QCOMPARE(itemWithKey(source, "E2").lastCopyKey, key("E22"));
        QCOMPARE(itemWithKey(source, "E5").lastCopyKey, key("E24"));
        QCOMPARE(childKeys(target, "E0"), keyList({ "E21" }));
        QCOMPARE(outline(target, 1), outline(source, 4));
        // The source menu changes in nothing else.
        MenuDocument expectedSource = deepMenu();
        expectedSource.windowIndex = 1;
        for (const char* copied : { "E1", "E2", "E3", "E5" }) {
            expectedSource.items[findItemByKey(expectedSource, key(copied))].lastCopyKey
                = itemWithKey(source, copied).lastCopyKey;
        }
        QVERIFY(source == expectedSource);
    }

    // Commands and links of the copies.

    void copiesLinkToTheirSourceWhenCommandsAreShared()
    {
        const MenuDocument document = copiedLinkRuleMenu(true);
        QCOMPARE(keysInSlotOrder(document).mid(5), keyList({ "E5", "E6", "E7", "E8", "E9" }));
        // A copy of an item with commands links to it.
        QVERIFY(itemWithKey(document, "E5").copiesCommands);
        QCOMPARE(itemWithKey(document, "E5").copyKey, key("E0"));
        QCOMPARE(itemWithKey(document, "E5").commands, commandList("del "));
        // A copy of a link links to the link's target.
        QVERIFY(itemWithKey(document, "E6").copiesCommands);
        QCOMPARE(itemWithKey(document, "E6").copyKey, key("E0"));
        // A copy of an item without commands has no link.
        QVERIFY(!itemWithKey(document, "E7").copiesCommands);
        QCOMPARE(itemWithKey(document, "E7").copyKey, QStringLiteral("-1"));
        // A link that holds no commands of its own counts as an item without commands.
        QVERIFY(!itemWithKey(document, "E8").copiesCommands);
        QCOMPARE(itemWithKey(document, "E8").copyKey, key("E0"));
        QCOMPARE(itemWithKey(document, "E8").commands, MenuItem::placeholderCommands());
        // An unlinked item's old target does not matter: the copy links to the item itself.
        QVERIFY(itemWithKey(document, "E9").copiesCommands);
        QCOMPARE(itemWithKey(document, "E9").copyKey, key("E4"));
        QCOMPARE(itemWithKey(document, "E9").commands, commandList("rename "));
        // The sources keep their own links.
        for (int i = 0; i < 5; ++i) {
            MenuItem original = linkRuleMenu().items.at(i);
            original.lastCopyKey = QStringLiteral("E%1").arg(i + 5);
            QVERIFY(document.items.at(i) == original);
        }
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void copiesKeepTheSourcesLinkWhenCommandsAreCopied()
    {
        const MenuDocument document = copiedLinkRuleMenu(false);
        QVERIFY(!itemWithKey(document, "E5").copiesCommands);
        QCOMPARE(itemWithKey(document, "E5").copyKey, QStringLiteral("-1"));
        QCOMPARE(itemWithKey(document, "E5").commands, commandList("del "));
        QVERIFY(itemWithKey(document, "E6").copiesCommands);
        QCOMPARE(itemWithKey(document, "E6").copyKey, key("E0"));
        QCOMPARE(itemWithKey(document, "E6").commands, commandList("del "));
        QVERIFY(!itemWithKey(document, "E7").copiesCommands);
        QVERIFY(itemWithKey(document, "E8").copiesCommands);
        QCOMPARE(itemWithKey(document, "E8").copyKey, key("E0"));
        QCOMPARE(itemWithKey(document, "E8").commands, MenuItem::placeholderCommands());
        QVERIFY(!itemWithKey(document, "E9").copiesCommands);
        QCOMPARE(itemWithKey(document, "E9").copyKey, key("E2"));
        QCOMPARE(itemWithKey(document, "E9").commands, commandList("rename "));
        QCOMPARE(DocumentInvariants::problem(document), QString());
    }

    void linkIntoAnotherMenuIsDissolvedIntoItsTargetsCommands_data()
    {
        QTest::addColumn<bool>("copyCommandDup");
        QTest::newRow("commands shared") << true;
        QTest::newRow("commands copied") << false;
    }

    void linkIntoAnotherMenuIsDissolvedIntoItsTargetsCommands()
    {
        QFETCH(bool, copyCommandDup);
        MenuDocument source = linkRuleMenu();
        source.windowIndex = 3;
        MenuDocument target = documentOf({ { "E0", -1, 1 } }, 0);
        target.windowIndex = 4;
        TreeUpdate update;
        for (int i = 0; i < 5; ++i) {
            copyItemTree(i, -1, source, target, copyCommandDup, update);
        }
        QCOMPARE(keysInSlotOrder(target), keyList({ "E0", "E1", "E2", "E3", "E4", "E5" }));
        for (int i = 1; i <= 5; ++i) {
            QVERIFY2(!target.items.at(i).copiesCommands, qPrintable(target.items.at(i).key));
            // The copy keeps the record's copyKey; without the link switched on it names nothing here.
            QCOMPARE(target.items.at(i).copyKey, source.items.at(i - 1).copyKey);
        }
        QCOMPARE(target.items.at(1).commands, commandList("del "));
        QCOMPARE(target.items.at(2).commands, commandList("del "));
        QCOMPARE(target.items.at(3).commands, MenuItem::placeholderCommands());
        // The link that held no commands of its own now holds its target's.
        QCOMPARE(target.items.at(4).commands, commandList("del "));
        QCOMPARE(target.items.at(5).commands, commandList("rename "));
        QCOMPARE(DocumentInvariants::problem(target), QString());
    }

    void brokenLinkIntoAnotherMenuTakesTheFirstItemsCommands()
    {
        // The first slot holds E7, not E0: the commands come from the slot, not from a key.
        MenuDocument source = documentOf({ { "E7", -1, 1 }, { "E0", -1, 2 }, { "E1", -1, 3 } }, 7);
        source.items[0].commands = commandList("view ");
        source.items[1].commands = commandList("del ");
        source.items[2].copiesCommands = true;
        source.items[2].copyKey = key("E9");
        source.windowIndex = 1;
        MenuDocument target = documentOf({ { "E0", -1, 1 } }, 0);
        target.windowIndex = 2;
        TreeUpdate update;
        copyItemTree(2, 0, source, target, false, update);
        QCOMPARE(target.items.at(1).commands, commandList("view "));
        QVERIFY(!target.items.at(1).copiesCommands);
        QCOMPARE(target.items.at(1).copyKey, key("E9"));
    }

    void menusAreToldApartByTheirWindow()
    {
        // Two records of the menu of one window count as one menu: the link is not dissolved.
        MenuDocument source = linkRuleMenu();
        MenuDocument target = linkRuleMenu();
        TreeUpdate update;
        copyItemTree(1, -1, source, target, true, update);
        QVERIFY(itemWithKey(target, "E5").copiesCommands);
        QCOMPARE(itemWithKey(target, "E5").copyKey, key("E0"));
        copyItemTree(0, -1, source, target, true, update);
        QVERIFY(itemWithKey(target, "E6").copiesCommands);
        QCOMPARE(itemWithKey(target, "E6").copyKey, key("E0"));

        // The same records in two windows: the copies hold their own commands.
        target = linkRuleMenu();
        target.windowIndex = 2;
        copyItemTree(1, -1, source, target, true, update);
        QVERIFY(!itemWithKey(target, "E5").copiesCommands);
        QCOMPARE(itemWithKey(target, "E5").commands, commandList("del "));
    }

    // Failures.

    void indexOutsideTheMenuIsError9AndChangesNothing()
    {
        MenuDocument document = deepMenu();
        const MenuDocument before = document;
        QCOMPARE(errorNumberOf(-1, -1, document, document), 9);
        QCOMPARE(errorNumberOf(7, -1, document, document), 9);
        QCOMPARE(errorNumberOf(0, -2, document, document), 9);
        QCOMPARE(errorNumberOf(0, 7, document, document), 9);
        QVERIFY(document == before);
    }

    void exhaustedKeyCounterIsError6BeforeAnyCopyIsMade()
    {
        MenuDocument document = deepMenu();
        document.lastIndex = 32766;
        const MenuDocument before = document;
        QCOMPARE(errorNumberOf(4, -1, document, document), 6);
        QCOMPARE(document, before);
        MenuDocument literal = deepMenu();
        literal.lastIndex = 32766;
        TreeUpdate update;
        QVERIFY_THROWS_EXCEPTION(RunTimeError, LiteralSubtreeCopy::copyItemTree(4, -1, literal, literal, true, update));
    }

    // The copy held to the step-by-step version.

    void randomCopiesWithinOneMenuMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 600; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fast = RandomMenu::generate(random, 1 + random.bounded(40));
            fast.windowIndex = qint16(1 + random.bounded(3));
            MenuDocument literal = fast;
            // Several copies in a row, so that copies of copies and older lastCopyKeys turn up.
            for (int round = 0; round < 3; ++round) {
                const int sourceIndex = random.bounded(int(fast.items.size()));
                const int newParent = randomParentOutside(random, fast, sourceIndex);
                const bool copyCommandDup = random.bounded(2) == 0;
                const QString before = outline(fast, sourceIndex);
                TreeUpdate fastUpdate;
                TreeUpdate literalUpdate;
                const int fastCopy = copyItemTree(sourceIndex, newParent, fast, fast, copyCommandDup, fastUpdate);
                const int literalCopy = LiteralSubtreeCopy::copyItemTree(sourceIndex, newParent, literal, literal,
                                                                         copyCommandDup, literalUpdate);
                const QString context = QStringLiteral("seed %1, round %2, source %3, parent %4, dup %5")
                                            .arg(seed)
                                            .arg(round)
                                            .arg(sourceIndex)
                                            .arg(newParent)
                                            .arg(copyCommandDup);
                QVERIFY2(fast == literal,
                         qPrintable(context + QStringLiteral(": ") + RandomMenu::firstDifference(fast, literal)));
                QCOMPARE(fastUpdate, literalUpdate);
                QCOMPARE(fastCopy, literalCopy);
                QVERIFY2(DocumentInvariants::problem(fast).isEmpty(),
                         qPrintable(context + QStringLiteral(": ") + DocumentInvariants::problem(fast)));
                QCOMPARE(outline(fast, fastCopy), before);
            }
        }
    }

    void randomCopiesBetweenTwoMenusMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 600; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fastSource = RandomMenu::generate(random, 1 + random.bounded(40));
            MenuDocument fastTarget = RandomMenu::generate(random, 1 + random.bounded(40));
            fastSource.windowIndex = qint16(1 + random.bounded(3));
            fastTarget.windowIndex = qint16(fastSource.windowIndex + 1 + random.bounded(3));
            MenuDocument literalSource = fastSource;
            MenuDocument literalTarget = fastTarget;
            for (int round = 0; round < 3; ++round) {
                const int sourceIndex = random.bounded(int(fastSource.items.size()));
                const int newParent = random.bounded(int(fastTarget.items.size()) + 1) - 1;
                const bool copyCommandDup = random.bounded(2) == 0;
                TreeUpdate fastUpdate;
                TreeUpdate literalUpdate;
                const int fastCopy
                    = copyItemTree(sourceIndex, newParent, fastSource, fastTarget, copyCommandDup, fastUpdate);
                const int literalCopy = LiteralSubtreeCopy::copyItemTree(sourceIndex, newParent, literalSource,
                                                                         literalTarget, copyCommandDup, literalUpdate);
                const QString context = QStringLiteral("seed %1, round %2, source %3, parent %4, dup %5: ")
                                            .arg(seed)
                                            .arg(round)
                                            .arg(sourceIndex)
                                            .arg(newParent)
                                            .arg(copyCommandDup);
                QVERIFY2(fastSource == literalSource,
                         qPrintable(context + RandomMenu::firstDifference(fastSource, literalSource)));
                QVERIFY2(fastTarget == literalTarget,
                         qPrintable(context + RandomMenu::firstDifference(fastTarget, literalTarget)));
                QCOMPARE(fastUpdate, literalUpdate);
                QCOMPARE(fastCopy, literalCopy);
                QVERIFY2(DocumentInvariants::problem(fastTarget).isEmpty(),
                         qPrintable(context + DocumentInvariants::problem(fastTarget)));
                for (int i = fastCopy; i < fastTarget.items.size(); ++i) {
                    QVERIFY2(!fastTarget.items.at(i).copiesCommands, qPrintable(context));
                }
            }
        }
    }

    void randomCopiesOfDamagedNumbersMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fast = RandomMenu::generate(random, 1 + random.bounded(40));
            damageNumbers(random, fast);
            const bool twoMenus = random.bounded(2) == 0;
            MenuDocument fastTarget = twoMenus ? RandomMenu::generate(random, 1 + random.bounded(10)) : MenuDocument();
            fastTarget.windowIndex = 7;
            MenuDocument literal = fast;
            MenuDocument literalTarget = fastTarget;
            const int sourceIndex = random.bounded(int(fast.items.size()));
            const bool copyCommandDup = random.bounded(2) == 0;
            TreeUpdate fastUpdate;
            TreeUpdate literalUpdate;
            if (twoMenus) {
                const int newParent = random.bounded(int(fastTarget.items.size()) + 1) - 1;
                copyItemTree(sourceIndex, newParent, fast, fastTarget, copyCommandDup, fastUpdate);
                LiteralSubtreeCopy::copyItemTree(sourceIndex, newParent, literal, literalTarget, copyCommandDup,
                                                 literalUpdate);
            } else {
                const int newParent = randomParentOutside(random, fast, sourceIndex);
                copyItemTree(sourceIndex, newParent, fast, fast, copyCommandDup, fastUpdate);
                LiteralSubtreeCopy::copyItemTree(sourceIndex, newParent, literal, literal, copyCommandDup,
                                                 literalUpdate);
            }
            const QString context = QStringLiteral("seed %1: ").arg(seed);
            QVERIFY2(fast == literal, qPrintable(context + RandomMenu::firstDifference(fast, literal)));
            QVERIFY2(fastTarget == literalTarget,
                     qPrintable(context + RandomMenu::firstDifference(fastTarget, literalTarget)));
            QCOMPARE(fastUpdate, literalUpdate);
        }
    }

    // Copy, cut, paste and duplicate.

    void copyPutsTheWholeRecordOnTheClipboard()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        QVERIFY(!editing.clipboardItem);
        const TreeUpdate update = window.run(&copyItem, editing, "E3", "Root");
        QVERIFY(update.isEmpty());
        QVERIFY(editing.clipboardItem);
        QVERIFY(*editing.clipboardItem == itemWithKey(window.document, "E3"));
        QVERIFY(window.document == pasteMenu());

        // A later copy replaces it; the clipboard keeps its own record.
        window.run(&copyItem, editing, "E2", "E0");
        QCOMPARE(editing.clipboardItem->key, key("E2"));
        QCOMPARE(editing.clipboardItem->parent, qint16(0));
        QCOMPARE(editing.clipboardItem->siblingOrder, qint16(2));
        window.document.items[2].caption = QStringLiteral("Changed");
        QCOMPARE(editing.clipboardItem->caption, QStringLiteral("Caption of E2"));
    }

    void pasteReplacesTheSelectedItemButKeepsItsKeyAndPlace()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        window.run(&copyItem, editing, "E3", "Root");
        const TreeUpdate update = window.run(&pasteItem, editing, "E1", "E0");

        TreeUpdate expected;
        expected.setNodeText(key("E1"), QStringLiteral("Caption of E3")).showItem();
        QCOMPARE(update, expected);
        const MenuItem& pasted = window.document.items.at(1);
        QCOMPARE(pasted.key, key("E1"));
        QCOMPARE(pasted.siblingOrder, qint16(1));
        QCOMPARE(pasted.caption, QStringLiteral("Caption of E3"));
        QCOMPARE(pasted.commands, commandList("rename "));
        // Parent, level and child count are those of the copied item.
        QCOMPARE(pasted.parent, qint16(-1));
        QCOMPARE(pasted.level, qint16(0));
        QCOMPARE(pasted.childCount, qint16(1));
        // The clipboard itself now carries the pasted key and place.
        QCOMPARE(editing.clipboardItem->key, key("E1"));
        QCOMPARE(editing.clipboardItem->siblingOrder, qint16(1));
        QVERIFY(*editing.clipboardItem == pasted);
        // Nothing else changes.
        MenuDocument expectedDocument = pasteMenu();
        expectedDocument.items[1] = pasted;
        QVERIFY(window.document == expectedDocument);
    }

    void pasteOntoAnItemWithChildrenKeepsThemAttached()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        window.run(&copyItem, editing, "E2", "E0");
        window.run(&pasteItem, editing, "E3", "Root");
        const MenuItem& pasted = window.document.items.at(3);
        QCOMPARE(pasted.key, key("E3"));
        QCOMPARE(pasted.siblingOrder, qint16(2));
        QCOMPARE(pasted.caption, QStringLiteral("Caption of E2"));
        QCOMPARE(pasted.commands, MenuItem::placeholderCommands());
        QCOMPARE(pasted.childCount, qint16(0));
        QCOMPARE(pasted.parent, qint16(0));
        QCOMPARE(window.document.items.at(4).parent, qint16(3));
        QCOMPARE(childKeys(window.document, "E3"), keyList({ "E4" }));
    }

    void pasteOfADeletedItemCarriesItsContentAndAStaleLink()
    {
        // X (E1) and its child C (E2) hold the same commands; C sits first, so X links to C.
        MenuDocument document = documentOf({ { "E0", -1, 1 }, { "E2", 2, 1 }, { "E1", -1, 2 } }, 2);
        document.items[0].commands = commandList("view ");
        document.items[1].commands = commandList("del ");
        document.items[2].commands = commandList("del ");
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(2).copyKey, key("E2"));
        document.windowIndex = 1;
        Window window { document, {} };
        EditingState editing;
        window.run(&copyItem, editing, "E1", "Root");
        window.run(&deleteSelectedItem, editing, "E1", "Root");
        QCOMPARE(keysInSlotOrder(window.document), keyList({ "E0" }));

        const TreeUpdate update = window.run(&pasteItem, editing, "E0", "Root");
        TreeUpdate expected;
        expected.setNodeText(key("E0"), QStringLiteral("Caption of E1")).showItem();
        QCOMPARE(update, expected);
        const MenuItem& pasted = window.document.items.at(0);
        QCOMPARE(pasted.key, key("E0"));
        QCOMPARE(pasted.caption, QStringLiteral("Caption of E1"));
        QCOMPARE(pasted.commands, commandList("del "));
        QVERIFY(pasted.copiesCommands);
        QCOMPARE(pasted.copyKey, key("E2"));
        QCOMPARE(findItemByKey(window.document, pasted.copyKey), qint16(-1));
        QCOMPARE(pasted.childCount, qint16(1));
    }

    void copyInOneWindowPastesInAnother()
    {
        EditingState editing;
        Window first { deepMenu(), {} };
        first.document.windowIndex = 1;
        Window second { pasteMenu(), {} };
        second.document.windowIndex = 2;
        first.run(&copyItem, editing, "E2", "E1");
        second.run(&pasteItem, editing, "E4", "E3");
        const MenuItem& pasted = second.document.items.at(4);
        QCOMPARE(pasted.key, key("E4"));
        QCOMPARE(pasted.caption, QStringLiteral("Caption of E2"));
        QCOMPARE(pasted.siblingOrder, qint16(1));
        // The parent index of the first menu, recorded as it was.
        QCOMPARE(pasted.parent, qint16(4));
        QCOMPARE(pasted.childCount, qint16(1));
    }

    void pasteIsRefusedUntilSomethingWasCopied()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        QCOMPARE(window.refusal(&pasteRefusal, editing, "E1"), QStringLiteral("Nothing has been copied or cut yet."));
        window.run(&copyItem, editing, "E2", "E0");
        QCOMPARE(window.refusal(&pasteRefusal, editing, "E1"), QString());
        QVERIFY(EditOperations::paste.refusal == &pasteRefusal);
    }

    void cutCopiesAndThenDeletes()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        editing.snapshotNextLabelEdit = false;
        const MenuItem cutItem = itemWithKey(window.document, "E3");
        // As the session runs it: the copy, then the Delete that follows it.
        QVERIFY(window.run(EditOperations::cut.apply, editing, "E3", "Root").isEmpty());
        QVERIFY(*editing.clipboardItem == cutItem);
        window.run(EditOperations::cut.followedBy->apply, editing, "E3", "Root");
        QCOMPARE(keysInSlotOrder(window.document), keyList({ "E0", "E1", "E2" }));
        QVERIFY(*editing.clipboardItem == cutItem);
        QVERIFY(editing.snapshotNextLabelEdit);
        QCOMPARE(window.refusal(&pasteRefusal, editing, "E1"), QString());
    }

    void duplicateAddsTheBranchAfterTheLastSibling()
    {
        Window window { deepMenu(), {} };
        EditingState editing;
        const TreeUpdate update = window.run(&duplicateItem, editing, "E0", "Root");
        TreeUpdate expected;
        expected.showBusy()
            .addNode(QStringLiteral("Root"), key("E7"), QStringLiteral("Caption of E0"))
            .addNode(key("E7"), key("E8"), QStringLiteral("Caption of E1"))
            .addNode(key("E8"), key("E9"), QStringLiteral("Caption of E2"))
            .addNode(key("E9"), key("E10"), QStringLiteral("Caption of E3"))
            .addNode(key("E8"), key("E11"), QStringLiteral("Caption of E5"))
            .addNode(key("E7"), key("E12"), QStringLiteral("Caption of E6"))
            .recolour()
            .hideBusy()
            .showItemCount();
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(window.document, -1), keyList({ "E0", "E4", "E7" }));
        QCOMPARE(outline(window.document, 7), outline(window.document, 1));
        QCOMPARE(DocumentInvariants::problem(window.document), QString());
    }

    void duplicateOfAChildStaysUnderItsParent()
    {
        Window window { deepMenu(), {} };
        EditingState editing;
        const TreeUpdate update = window.run(&duplicateItem, editing, "E2", "E1");
        TreeUpdate expected;
        expected.showBusy()
            .addNode(key("E1"), key("E7"), QStringLiteral("Caption of E2"))
            .addNode(key("E7"), key("E8"), QStringLiteral("Caption of E3"))
            .recolour()
            .hideBusy()
            .showItemCount();
        QCOMPARE(update, expected);
        QCOMPARE(childKeys(window.document, "E1"), keyList({ "E2", "E5", "E7" }));
        QCOMPARE(itemWithKey(window.document, "E1").childCount, qint16(3));
        QCOMPARE(DocumentInvariants::problem(window.document), QString());
    }

    void duplicateFollowsTheCommandSharingMark_data()
    {
        QTest::addColumn<bool>("copyCommandDup");
        QTest::newRow("commands shared") << true;
        QTest::newRow("commands copied") << false;
    }

    void duplicateFollowsTheCommandSharingMark()
    {
        QFETCH(bool, copyCommandDup);
        Window window { linkRuleMenu(), {} };
        EditingState editing;
        editing.copyCommandDup = copyCommandDup;
        window.run(&duplicateItem, editing, "E0", "Root");
        QCOMPARE(itemWithKey(window.document, "E5").copiesCommands, copyCommandDup);
        QCOMPARE(itemWithKey(window.document, "E5").copyKey, copyCommandDup ? key("E0") : QStringLiteral("-1"));
    }

    void operationsOnAnItemThatIsGoneAreError9()
    {
        Window window { pasteMenu(), {} };
        EditingState editing;
        QCOMPARE(errorNumberOf(window, &copyItem, editing, "E9"), 9);
        QVERIFY(!editing.clipboardItem);
        QCOMPARE(errorNumberOf(window, &duplicateItem, editing, "E9"), 9);
        window.run(&copyItem, editing, "E1", "E0");
        QCOMPARE(errorNumberOf(window, &pasteItem, editing, "E9"), 9);
        QVERIFY(window.document == pasteMenu());
    }

    void operationsAreDescribedForTheSession()
    {
        QCOMPARE(QString::fromLatin1(EditOperations::copy.name), QStringLiteral("copy"));
        QCOMPARE(EditOperations::copy.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::copy.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::copy.refusal == nullptr);
        QVERIFY(EditOperations::copy.apply == &copyItem);
        QVERIFY(EditOperations::copy.followedBy == nullptr);

        QCOMPARE(QString::fromLatin1(EditOperations::cut.name), QStringLiteral("cut"));
        QCOMPARE(EditOperations::cut.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::cut.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::cut.apply == &copyItem);
        QVERIFY(EditOperations::cut.followedBy == &EditOperations::deleteItem);
        QCOMPARE(EditOperations::cut.followedBy->recording, EditOperation::Recording::SnapshotBefore);

        QCOMPARE(QString::fromLatin1(EditOperations::paste.name), QStringLiteral("paste"));
        QCOMPARE(EditOperations::paste.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::paste.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::paste.apply == &pasteItem);
        QVERIFY(EditOperations::paste.followedBy == nullptr);

        QCOMPARE(QString::fromLatin1(EditOperations::duplicate.name), QStringLiteral("duplicate"));
        QCOMPARE(EditOperations::duplicate.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::duplicate.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::duplicate.refusal == nullptr);
        QVERIFY(EditOperations::duplicate.apply == &duplicateItem);
        QVERIFY(EditOperations::duplicate.applicable == nullptr);
    }
};

QTEST_GUILESS_MAIN(TestSubtreeCopy)
#include "test_subtreecopy.moc"

#include "literalreplacement.h"
#include "randommenu.h"
#include "treeupdatetext.h"

#include "editing/textreplacement.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
#include <QTest>

#include <iterator>

namespace {

Command cmd(const char* extension, const char* text)
{
    return Command { QString::fromLatin1(extension), QString::fromLatin1(text) };
}

/// A command array with the placeholder slot and `commands` in slots 1..n.
QList<Command> commandsOf(std::initializer_list<Command> commands)
{
    return MenuItem::placeholderCommands() + QList<Command>(commands);
}

struct Entry
{
    const char* key;
    int parent;
    int siblingOrder;
    const char* caption;
    QList<Command> commands;
};

/// Items in the given array order; childCount and level are derived from the parents.
MenuDocument documentOf(const QList<Entry>& entries)
{
    MenuDocument document;
    for (const Entry& entry : entries) {
        MenuItem item;
        item.key = QString::fromLatin1(entry.key);
        item.caption = QString::fromLatin1(entry.caption);
        item.parent = qint16(entry.parent);
        item.siblingOrder = qint16(entry.siblingOrder);
        item.commands = MenuItem::placeholderCommands() + entry.commands;
        document.items.append(item);
    }
    for (MenuItem& item : document.items) {
        if (item.parent >= 0) {
            ++document.items[item.parent].childCount;
        }
    }
    for (MenuItem& item : document.items) {
        item.level = 1;
        for (int k = item.parent; k >= 0 && item.level <= document.items.size(); k = document.items.at(k).parent) {
            ++item.level;
        }
    }
    document.lastIndex = qint16(document.items.size());
    return document;
}

/// One editor window on one document, with the editing state the whole run shares.
struct Editor
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;

    EditContext context(const SelectedNode& selected, const QString& find, const QString& replacement, bool onAll)
    {
        EditArguments arguments;
        arguments.text = find;
        arguments.replacement = replacement;
        arguments.checked = onAll;
        return EditContext { document, selected, arguments, editing, window };
    }

    TreeUpdate replaceAll(const SelectedNode& selected, const char* find, const char* replacement, bool onAll)
    {
        EditContext replaceContext
            = context(selected, QString::fromLatin1(find), QString::fromLatin1(replacement), onAll);
        return replaceText(replaceContext);
    }

    TreeUpdate replaceInBranchOf(const char* key, const char* find, const char* replacement)
    {
        return replaceAll(itemNode(key), find, replacement, false);
    }

    SelectedNode itemNode(const char* key) const
    {
        const qint16 index = findItemByKey(document, QString::fromLatin1(key));
        const int parent = index < 0 ? -1 : document.items.at(index).parent;
        return SelectedNode::of(QString::fromLatin1(key),
                                parent < 0 ? SelectedNode::rootKey() : document.items.at(parent).key);
    }

    const MenuItem& item(const char* key) const
    {
        const qint16 index = findItemByKey(document, QString::fromLatin1(key));
        if (index < 0) {
            throw RunTimeError(9, QStringLiteral("test"));
        }
        return document.items.at(index);
    }
};

SelectedNode rootNode()
{
    return SelectedNode::of(SelectedNode::rootKey());
}

/// What Replace All asks of the view after it has made `count` replacements.
TreeUpdate reported(int count)
{
    TreeUpdate update;
    update.showMessage(QString::number(count) + QStringLiteral(" replacement were made.")).regenerate().recolour();
    return update;
}

/// The number of the run-time error `action` throws; 0 when it throws none.
template <typename Action> int errorNumberOf(Action action)
{
    try {
        action();
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

/// A menu for the whole-document count: the captions hold five "a", the command texts of the items
/// with their own commands two; the extensions and the commands of the linked item hold more.
///   E0 "Banana"       (avi) start $fs-001$
///     E1 "Data"       (wav) cat
///   E2 "New Item 1"   linked to E0, holding (avi) start $fs-001$
///   E3 "Item"         (mp3) del
MenuDocument countMenu()
{
    MenuDocument document = documentOf({ { "E0", -1, 1, "Banana", { cmd("avi", "start $fs-001$") } },
                                         { "E1", 0, 1, "Data", { cmd("wav", "cat ") } },
                                         { "E2", -1, 2, "New Item 1", { cmd("avi", "start $fs-001$") } },
                                         { "E3", -1, 3, "Item", { cmd("mp3", "del ") } } });
    document.items[2].copiesCommands = true;
    document.items[2].copyKey = QStringLiteral("E0");
    return document;
}

/// Two branches, in a shuffled array order (nine "x" in captions and own command texts, one more in
/// an extension):
///   E2 "top x"
///     E1 "x one"          (x) x x
///       E3 "x deep"
///       E0 "two x"
///   E4 "other x"
///     E5 "x under other"  (txt) run x
MenuDocument branchMenu()
{
    return documentOf({ { "E0", 1, 2, "two x", {} },
                        { "E1", 2, 1, "x one", { cmd("x", "x x") } },
                        { "E2", -1, 1, "top x", {} },
                        { "E3", 1, 1, "x deep", {} },
                        { "E4", -1, 2, "other x", {} },
                        { "E5", 4, 1, "x under other", { cmd("txt", "run x") } } });
}

// Random texts and menus for the comparison with the step-by-step version: a small alphabet, so that
// occurrences, overlaps and near misses ("A" for "a") are frequent.

QString randomText(QRandomGenerator& random, int maximumLength)
{
    static const char alphabet[] = { 'a', 'a', 'a', 'b', 'b', 'A', 'x' };
    const int length = random.bounded(maximumLength + 1);
    QString result;
    for (int c = 0; c < length; ++c) {
        result += QLatin1Char(alphabet[random.bounded(int(sizeof alphabet))]);
    }
    return result;
}

QString randomFind(QRandomGenerator& random)
{
    static const char* const finds[] = { "a", "aa", "aba", "aaa", "ab", "b", "A", "x", "ba" };
    if (random.bounded(4) == 0) {
        return QStringLiteral("a") + randomText(random, 2);
    }
    return text(finds[random.bounded(int(std::size(finds)))]);
}

QString randomReplacement(QRandomGenerator& random, const QString& find)
{
    switch (random.bounded(7)) {
    case 0:
        return QString();
    case 1:
        return QStringLiteral("b");
    case 2:
        return find + find; // holds the text it replaces: grows on every pass
    case 3:
        return QStringLiteral("x") + find;
    case 4:
        return find; // replaces each occurrence by itself: counted, nothing changes
    case 5:
        return QStringLiteral("A");
    default:
        return randomText(random, 4);
    }
}

/// A random menu whose captions, command texts and extensions hold the small alphabet, now and then
/// also the placeholder slot, which is never shown and never replaced in.
MenuDocument randomMenu(QRandomGenerator& random, int maximumItems)
{
    MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(maximumItems));
    for (MenuItem& item : document.items) {
        item.caption = randomText(random, 12);
        for (int s = 0; s <= item.commandUpperBound(); ++s) {
            if (s > 0 || random.bounded(8) == 0) {
                item.commands[s].command = randomText(random, 10);
                item.commands[s].extension = randomText(random, 3);
            }
        }
    }
    return document;
}

struct Outcome
{
    qint16 count = 0;
    int error = 0;
};

template <typename Action> Outcome outcomeOf(Action action)
{
    Outcome outcome;
    try {
        outcome.count = action();
    } catch (const RunTimeError& error) {
        outcome.error = error.number();
    }
    return outcome;
}

/// Compares the editor's replacement with the step-by-step one on copies of `document`; on a count
/// too large for a 16-bit number both must fail with error 6 (the menus are then left half done,
/// in an order that may differ, and are not compared).
template <typename Real, typename Literal>
void compareOn(const MenuDocument& document, Real real, Literal literal, const QString& context)
{
    MenuDocument expected = document;
    const Outcome expectedOutcome = outcomeOf([&] { return literal(expected); });
    MenuDocument actual = document;
    const Outcome actualOutcome = outcomeOf([&] { return real(actual); });
    QVERIFY2(expectedOutcome.error == 0 || expectedOutcome.error == 6,
             qPrintable(context + QStringLiteral("step-by-step error %1").arg(expectedOutcome.error)));
    QVERIFY2(actualOutcome.error == expectedOutcome.error,
             qPrintable(context
                        + QStringLiteral("error %1, expected %2").arg(actualOutcome.error).arg(expectedOutcome.error)));
    if (expectedOutcome.error == 0) {
        QVERIFY2(
            actualOutcome.count == expectedOutcome.count,
            qPrintable(context
                       + QStringLiteral("count %1, expected %2").arg(actualOutcome.count).arg(expectedOutcome.count)));
        QVERIFY2(actual == expected, qPrintable(context + RandomMenu::firstDifference(actual, expected)));
    }
}

/// A text of `length` times "a".
QString runOfA(int length)
{
    return QString(length, QLatin1Char('a'));
}

} // namespace

class TestTextReplacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // One text.

    void overlappingOccurrencesAreAllCountedButReplacedOnce()
    {
        QString aaa = QStringLiteral("aaa");
        QCOMPARE(replaceInText(aaa, QStringLiteral("aa"), QStringLiteral("b")), qint16(2));
        QCOMPARE(aaa, QStringLiteral("ba"));

        QString ababa = QStringLiteral("ababa");
        QCOMPARE(replaceInText(ababa, QStringLiteral("aba"), QStringLiteral("X")), qint16(2));
        QCOMPARE(ababa, QStringLiteral("Xba"));
    }

    void replacementHoldingTheTextIsNotSearchedAgain()
    {
        QString value = QStringLiteral("xax");
        QCOMPARE(replaceInText(value, QStringLiteral("x"), QStringLiteral("xx")), qint16(2));
        QCOMPARE(value, QStringLiteral("xxaxx"));
    }

    void emptyReplacementRemovesTheOccurrences()
    {
        QString banana = QStringLiteral("banana");
        QCOMPARE(replaceInText(banana, QStringLiteral("a"), QString()), qint16(3));
        QCOMPARE(banana, QStringLiteral("bnn"));

        QString twice = QStringLiteral("ana banana");
        QCOMPARE(replaceInText(twice, QStringLiteral("an"), QString()), qint16(3));
        QCOMPARE(twice, QStringLiteral("a ba"));
    }

    void caseMatters()
    {
        QString caption = QStringLiteral("New Item 1");
        QCOMPARE(replaceInText(caption, QStringLiteral("new"), QStringLiteral("old")), qint16(0));
        QCOMPARE(caption, QStringLiteral("New Item 1"));
        QCOMPARE(replaceInText(caption, QStringLiteral("New"), QStringLiteral("Old")), qint16(1));
        QCOMPARE(caption, QStringLiteral("Old Item 1"));
    }

    void nothingToFindChangesNothing()
    {
        QString value = QStringLiteral("abc");
        QCOMPARE(replaceInText(value, QString(), QStringLiteral("x")), qint16(0));
        QCOMPARE(value, QStringLiteral("abc"));

        QString empty;
        QCOMPARE(replaceInText(empty, QStringLiteral("a"), QStringLiteral("x")), qint16(0));
        QCOMPARE(empty, QString());
    }

    void findLongerThanTheTextIsNotFound()
    {
        QString value = QStringLiteral("ab");
        QCOMPARE(replaceInText(value, QStringLiteral("abc"), QStringLiteral("x")), qint16(0));
        QCOMPARE(value, QStringLiteral("ab"));
        QCOMPARE(replaceInText(value, QStringLiteral("ab"), QStringLiteral("x")), qint16(1));
        QCOMPARE(value, QStringLiteral("x"));
    }

    void countOfOneTextTooLargeIsError6()
    {
        QString fits = runOfA(32767);
        QCOMPARE(replaceInText(fits, QStringLiteral("a"), QStringLiteral("b")), qint16(32767));
        QCOMPARE(fits, QString(32767, QLatin1Char('b')));

        QString tooMany = runOfA(32768);
        QCOMPARE(errorNumberOf([&] { replaceInText(tooMany, QStringLiteral("a"), QStringLiteral("b")); }), 6);

        // Overlaps count: 32768 occurrences of "aa" in 32769 "a", although only 16384 would be replaced.
        QString overlapsFit = runOfA(32768);
        QCOMPARE(replaceInText(overlapsFit, QStringLiteral("aa"), QStringLiteral("b")), qint16(32767));
        QCOMPARE(overlapsFit, QString(16384, QLatin1Char('b')));
        QString overlapsTooMany = runOfA(32769);
        QCOMPARE(errorNumberOf([&] { replaceInText(overlapsTooMany, QStringLiteral("aa"), QStringLiteral("b")); }), 6);
    }

    void randomTextsMatchTheStepByStepVersion()
    {
        QRandomGenerator random(26);
        for (int round = 0; round < 20000; ++round) {
            const QString original = randomText(random, 16);
            const QString find = random.bounded(20) == 0 ? QString() : randomFind(random);
            const QString replacement = randomReplacement(random, find);
            QString expected = original;
            const qint16 expectedCount = LiteralReplacement::replaceInText(expected, find, replacement);
            QString actual = original;
            const qint16 actualCount = replaceInText(actual, find, replacement);
            const QString context
                = QStringLiteral("\"%1\" find \"%2\" replace \"%3\"").arg(original, find, replacement);
            QVERIFY2(actual == expected,
                     qPrintable(context + QStringLiteral(": ") + actual + QStringLiteral(" / ") + expected));
            QVERIFY2(actualCount == expectedCount,
                     qPrintable(context + QStringLiteral(": count %1 / %2").arg(actualCount).arg(expectedCount)));
        }
    }

    // Replace All on every item.

    void wholeMenuCountsCaptionsAndOwnCommandTexts()
    {
        Editor editor { countMenu(), {}, {} };
        const TreeUpdate update = editor.replaceAll(editor.itemNode("E1"), "a", "b", true);
        QCOMPARE(update, reported(7));
        QCOMPARE(editor.item("E0").caption, QStringLiteral("Bbnbnb"));
        QCOMPARE(editor.item("E1").caption, QStringLiteral("Dbtb"));
        QCOMPARE(editor.item("E2").caption, QStringLiteral("New Item 1"));
        QCOMPARE(editor.item("E3").caption, QStringLiteral("Item"));
        QCOMPARE(editor.item("E0").commands.at(1), cmd("avi", "stbrt $fs-001$"));
        QCOMPARE(editor.item("E1").commands.at(1), cmd("wav", "cbt "));
        QCOMPARE(editor.item("E3").commands.at(1), cmd("mp3", "del "));
    }

    void linkedItemKeepsItsCommandsWhileItsCaptionChanges()
    {
        MenuDocument document
            = documentOf({ { "E0", -1, 1, "target", { cmd("txt", "copy") } },
                           { "E1", 0, 1, "a linked item", { cmd("txt", "linked copy"), cmd("exe", "linked run") } } });
        document.items[1].copiesCommands = true;
        document.items[1].copyKey = QStringLiteral("E0");
        const QList<Command> linkedCommands = document.items.at(1).commands;

        for (const bool onAll : { true, false }) {
            Editor editor { document, {}, {} };
            const TreeUpdate update = onAll ? editor.replaceAll(rootNode(), "linked", "tied", true)
                                            : editor.replaceInBranchOf("E1", "linked", "tied");
            QCOMPARE(update, reported(1));
            QCOMPARE(editor.item("E1").caption, QStringLiteral("a tied item"));
            QCOMPARE(editor.item("E1").commands, linkedCommands);
            QVERIFY(editor.item("E1").copiesCommands);
            QCOMPARE(editor.item("E1").copyKey, QStringLiteral("E0"));
        }
    }

    void extensionsAreNeverChanged()
    {
        const MenuDocument document
            = documentOf({ { "E0", -1, 1, "no", { cmd("a", "a"), cmd("aa", "b"), cmd("bab", "") } },
                           { "E1", 0, 1, "a", { cmd("a", "x") } } });
        for (const bool onAll : { true, false }) {
            Editor editor { document, {}, {} };
            const TreeUpdate update
                = onAll ? editor.replaceAll(rootNode(), "a", "c", true) : editor.replaceInBranchOf("E0", "a", "c");
            // E0's first command text and E1's caption; in the branch the second pass over E1 finds
            // nothing left.
            QCOMPARE(update, reported(2));
            QCOMPARE(editor.item("E0").commands, commandsOf({ cmd("a", "c"), cmd("aa", "b"), cmd("bab", "") }));
            QCOMPARE(editor.item("E1").commands, commandsOf({ cmd("a", "x") }));
            QCOMPARE(editor.item("E1").caption, QStringLiteral("c"));
        }
    }

    void captionsMatchOnlyInTheirOwnCase()
    {
        Editor editor { documentOf({ { "E0", -1, 1, "New Item 1", {} } }), {}, {} };
        const MenuDocument before = editor.document;
        QCOMPARE(editor.replaceAll(rootNode(), "new", "old", true), reported(0));
        QCOMPARE(editor.document, before);
    }

    void noOccurrenceStillRegeneratesTheTree()
    {
        for (const bool onAll : { true, false }) {
            Editor editor { countMenu(), {}, {} };
            const MenuDocument before = editor.document;
            const TreeUpdate update
                = onAll ? editor.replaceAll(rootNode(), "zzz", "y", true) : editor.replaceInBranchOf("E0", "zzz", "y");
            QCOMPARE(update, reported(0));
            QCOMPARE(editor.document, before);
        }
    }

    void emptyReplacementRemovesOccurrencesInTheMenu()
    {
        Editor editor { countMenu(), {}, {} };
        QCOMPARE(editor.replaceAll(rootNode(), "an", "", true), reported(2));
        QCOMPARE(editor.item("E0").caption, QStringLiteral("Ba"));
        QCOMPARE(editor.replaceAll(rootNode(), " ", "", true), reported(5));
        QCOMPARE(editor.item("E2").caption, QStringLiteral("NewItem1"));
        QCOMPARE(editor.item("E0").commands.at(1), cmd("avi", "start$fs-001$"));
        QCOMPARE(editor.item("E1").commands.at(1), cmd("wav", "cat"));
        QCOMPARE(editor.item("E3").commands.at(1), cmd("mp3", "del"));
        // The linked item's copy of E0's commands keeps its space.
        QCOMPARE(editor.item("E2").commands.at(1), cmd("avi", "start $fs-001$"));
    }

    void wholeMenuIgnoresTheTreeShape()
    {
        // A self-parented item does not matter when the items are simply taken in array order.
        MenuDocument document = branchMenu();
        document.items[3].parent = 3;
        MenuDocument expected = document;
        const qint16 expectedCount = LiteralReplacement::replaceInAll(expected, text("x"), text("y"));
        QCOMPARE(replaceInAll(document, text("x"), text("y")), expectedCount);
        QCOMPARE(expectedCount, qint16(9));
        QCOMPARE(document, expected);
    }

    // Replace All in the selected branch.

    void childOfTheBranchIsReplacedTwice()
    {
        Editor editor { documentOf({ { "E0", -1, 1, "Parent", { cmd("txt", "run") } },
                                     { "E1", 0, 1, "x", {} },
                                     { "E2", -1, 2, "x", {} } }),
                        {},
                        {} };
        QCOMPARE(editor.replaceInBranchOf("E0", "x", "xx"), reported(3));
        QCOMPARE(editor.item("E1").caption, QStringLiteral("xxxx"));
        QCOMPARE(editor.item("E0").caption, QStringLiteral("Parent"));
        QCOMPARE(editor.item("E2").caption, QStringLiteral("x"));
    }

    void startItemOnceEveryDescendantTwice()
    {
        // A > B > C, each captioned "x": A grows once (1), B and C twice (1 + 2 each).
        Editor editor { documentOf({ { "C", 1, 1, "x", {} }, { "B", 2, 1, "x", {} }, { "A", -1, 1, "x", {} } }),
                        {},
                        {} };
        QCOMPARE(editor.replaceInBranchOf("A", "x", "xx"), reported(7));
        QCOMPARE(editor.item("A").caption, QStringLiteral("xx"));
        QCOMPARE(editor.item("B").caption, QStringLiteral("xxxx"));
        QCOMPARE(editor.item("C").caption, QStringLiteral("xxxx"));
    }

    void branchLeavesTheRestOfTheMenuAlone()
    {
        Editor editor { branchMenu(), {}, {} };
        // E1's branch: E1 once (caption and command text: 3), E3 and E0 twice each (1 + 0).
        QCOMPARE(editor.replaceInBranchOf("E1", "x", "y"), reported(5));
        QCOMPARE(editor.item("E1").caption, QStringLiteral("y one"));
        QCOMPARE(editor.item("E1").commands.at(1), cmd("x", "y y"));
        QCOMPARE(editor.item("E3").caption, QStringLiteral("y deep"));
        QCOMPARE(editor.item("E0").caption, QStringLiteral("two y"));
        QCOMPARE(editor.item("E2").caption, QStringLiteral("top x"));
        QCOMPARE(editor.item("E4").caption, QStringLiteral("other x"));
        QCOMPARE(editor.item("E5").caption, QStringLiteral("x under other"));
    }

    void rootOrNoNodeSelectedReplacesInTheWholeMenu()
    {
        MenuDocument expected = branchMenu();
        const qint16 count = LiteralReplacement::replaceInAll(expected, text("x"), text("xx"));
        QCOMPARE(count, qint16(9));
        for (const SelectedNode& selected : { rootNode(), SelectedNode() }) {
            Editor editor { branchMenu(), {}, {} };
            QCOMPARE(editor.replaceAll(selected, "x", "xx", false), reported(count));
            QCOMPARE(editor.document, expected);
        }
    }

    void replaceOnAllItemsOverridesTheSelectedBranch()
    {
        MenuDocument expected = branchMenu();
        const qint16 count = LiteralReplacement::replaceInAll(expected, text("x"), text("xx"));
        Editor editor { branchMenu(), {}, {} };
        QCOMPARE(editor.replaceAll(editor.itemNode("E3"), "x", "xx", true), reported(count));
        QCOMPARE(editor.document, expected);
    }

    void branchThatContainsItselfIsError28()
    {
        MenuDocument selfParented = branchMenu();
        selfParented.items[3].parent = 3;
        QCOMPARE(errorNumberOf([&] { replaceInBranch(selfParented, 3, text("x"), text("y")); }), 28);

        Editor editor { selfParented, {}, {} };
        QCOMPARE(errorNumberOf([&] { editor.replaceInBranchOf("E3", "x", "y"); }), 28);

        // Two items that are each other's parent.
        MenuDocument roundTwo = branchMenu();
        roundTwo.items[2].parent = 1;
        QCOMPARE(errorNumberOf([&] { replaceInBranch(roundTwo, 1, text("x"), text("y")); }), 28);
        QCOMPARE(errorNumberOf([&] { replaceInBranch(roundTwo, 2, text("x"), text("y")); }), 28);
        // A branch below the round is an ordinary one.
        MenuDocument belowRound = roundTwo;
        MenuDocument expected = roundTwo;
        QCOMPARE(replaceInBranch(belowRound, 3, text("x"), text("y")),
                 LiteralReplacement::replaceInBranch(expected, 3, text("x"), text("y")));
        QCOMPARE(belowRound, expected);
    }

    void branchOfAnIndexThatNamesNoItemIsError9()
    {
        MenuDocument document = branchMenu();
        QCOMPARE(errorNumberOf([&] { replaceInBranch(document, -1, text("x"), text("y")); }), 9);
        QCOMPARE(errorNumberOf([&] { replaceInBranch(document, 6, text("x"), text("y")); }), 9);
    }

    // Counts beyond a 16-bit number.

    void totalTooLargeIsError6()
    {
        MenuDocument fits = documentOf({ { "E0", -1, 1, "", {} }, { "E1", -1, 2, "", {} } });
        fits.items[0].caption = runOfA(20000);
        fits.items[1].caption = runOfA(12767);
        QCOMPARE(replaceInAll(fits, text("a"), text("b")), qint16(32767));

        MenuDocument tooMany = documentOf({ { "E0", -1, 1, "", {} }, { "E1", -1, 2, "", {} } });
        tooMany.items[0].caption = runOfA(20000);
        tooMany.items[1].caption = runOfA(12768);
        QCOMPARE(errorNumberOf([&] { replaceInAll(tooMany, text("a"), text("b")); }), 6);

        // Caption and command text of one item together.
        MenuDocument oneItem = documentOf({ { "E0", -1, 1, "", { cmd("txt", "") } } });
        oneItem.items[0].caption = runOfA(30000);
        oneItem.items[0].commands[1].command = runOfA(2768);
        Editor editor { oneItem, {}, {} };
        QCOMPARE(errorNumberOf([&] { editor.replaceAll(rootNode(), "a", "b", true); }), 6);
    }

    void secondPassOfTheBranchCanOverflow()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1, "parent", {} }, { "E1", 0, 1, "", {} } });
        document.items[1].caption = runOfA(16384);
        MenuDocument onAll = document;
        QCOMPARE(replaceInAll(onAll, text("a"), text("a")), qint16(16385));
        Editor editor { document, {}, {} };
        QCOMPARE(errorNumberOf([&] { editor.replaceInBranchOf("E0", "a", "a"); }), 6);

        document.items[1].caption = runOfA(16383);
        MenuDocument expected = document;
        QCOMPARE(replaceInBranch(document, 0, text("a"), text("a")), qint16(32767));
        QCOMPARE(LiteralReplacement::replaceInBranch(expected, 0, text("a"), text("a")), qint16(32767));
        QCOMPARE(document, expected);
    }

    // The same as the step-by-step version on random menus.

    void randomMenusOnAllItemsMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 1500; ++seed) {
            QRandomGenerator random(seed);
            const MenuDocument document = randomMenu(random, 30);
            QVERIFY(RandomMenu::treeNumbersProblem(document).isEmpty());
            const QString find = randomFind(random);
            const QString replacement = randomReplacement(random, find);
            compareOn(
                document, [&](MenuDocument& menu) { return replaceInAll(menu, find, replacement); },
                [&](MenuDocument& menu) { return LiteralReplacement::replaceInAll(menu, find, replacement); },
                QStringLiteral("seed %1: ").arg(seed));
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }

    void randomBranchesMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 3000; ++seed) {
            QRandomGenerator random(seed);
            const MenuDocument document = randomMenu(random, 40);
            const int start = random.bounded(int(document.items.size()));
            const QString find = randomFind(random);
            const QString replacement = randomReplacement(random, find);
            compareOn(
                document, [&](MenuDocument& menu) { return replaceInBranch(menu, start, find, replacement); },
                [&](MenuDocument& menu) { return LiteralReplacement::replaceInBranch(menu, start, find, replacement); },
                QStringLiteral("seed %1, branch of %2: ").arg(seed).arg(start));
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }

    void randomReplaceAllMatchesTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 1500; ++seed) {
            QRandomGenerator random(seed);
            const MenuDocument document = randomMenu(random, 30);
            const QString find = randomFind(random);
            const QString replacement = randomReplacement(random, find);
            const bool onAll = random.bounded(3) == 0;
            const int choice = random.bounded(int(document.items.size()) + 2) - 2;
            SelectedNode selected;
            if (choice == -2) {
                selected = rootNode();
            } else if (choice >= 0) {
                const MenuItem& item = document.items.at(choice);
                selected = SelectedNode::of(
                    item.key, item.parent < 0 ? SelectedNode::rootKey() : document.items.at(item.parent).key);
            }
            const QString where = QStringLiteral("seed %1: ").arg(seed);

            MenuDocument expected = document;
            qint16 expectedCount = 0;
            if (onAll || choice < 0) {
                expectedCount = LiteralReplacement::replaceInAll(expected, find, replacement);
            } else {
                expectedCount = LiteralReplacement::replaceInBranch(expected, choice, find, replacement);
            }
            Editor editor { document, {}, {} };
            EditContext context = editor.context(selected, find, replacement, onAll);
            QCOMPARE(replaceRefusal(context), QString());
            const TreeUpdate update = replaceText(context);
            QVERIFY2(update == reported(expectedCount),
                     qPrintable(where + TreeUpdateText::describe(update).join(QStringLiteral("; "))));
            QVERIFY2(editor.document == expected,
                     qPrintable(where + RandomMenu::firstDifference(editor.document, expected)));
        }
    }

    void randomLargeCountsFailAlike()
    {
        int failures = 0;
        int successes = 0;
        for (quint32 seed = 1; seed <= 120; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 2 + random.bounded(5));
            for (MenuItem& item : document.items) {
                item.caption = runOfA(random.bounded(9000));
                for (int s = 1; s <= item.commandUpperBound(); ++s) {
                    item.commands[s].command = runOfA(random.bounded(4000)) + QStringLiteral("b");
                }
            }
            const QString find = random.bounded(2) == 0 ? QStringLiteral("a") : QStringLiteral("aa");
            const QString replacement = random.bounded(2) == 0 ? find : QStringLiteral("b");
            const int start = random.bounded(int(document.items.size()));
            const QString context = QStringLiteral("seed %1: ").arg(seed);
            MenuDocument probe = document;
            const Outcome outcome
                = outcomeOf([&] { return LiteralReplacement::replaceInBranch(probe, start, find, replacement); });
            ++(outcome.error == 6 ? failures : successes);
            compareOn(
                document, [&](MenuDocument& menu) { return replaceInBranch(menu, start, find, replacement); },
                [&](MenuDocument& menu) { return LiteralReplacement::replaceInBranch(menu, start, find, replacement); },
                context + QStringLiteral("branch: "));
            compareOn(
                document, [&](MenuDocument& menu) { return replaceInAll(menu, find, replacement); },
                [&](MenuDocument& menu) { return LiteralReplacement::replaceInAll(menu, find, replacement); },
                context + QStringLiteral("all: "));
            if (QTest::currentTestFailed()) {
                return;
            }
        }
        // Both sides of the limit were tried.
        QVERIFY(failures > 0);
        QVERIFY(successes > 0);
    }

    // The operation as the editing session runs it.

    void emptyFindTextIsRefused()
    {
        Editor editor { countMenu(), {}, {} };
        QCOMPARE(replaceRefusal(editor.context(rootNode(), QString(), QStringLiteral("b"), true)),
                 QStringLiteral("You must enter something to find !"));
        QCOMPARE(replaceRefusal(editor.context(editor.itemNode("E0"), QString(), QString(), false)),
                 QStringLiteral("You must enter something to find !"));
        QCOMPARE(replaceRefusal(editor.context(rootNode(), QStringLiteral("a"), QString(), false)), QString());
        QCOMPARE(replaceRefusal(editor.context(SelectedNode(), QStringLiteral(" "), QString(), false)), QString());
    }

    void operationIsDescribedForTheSession()
    {
        const EditOperation& operation = EditOperations::replace;
        QCOMPARE(QString::fromLatin1(operation.name), QStringLiteral("replace"));
        QVERIFY(operation.needs == EditOperation::Needs::Document);
        QVERIFY(operation.recording == EditOperation::Recording::SnapshotBefore);
        QVERIFY(operation.refusal == &replaceRefusal);
        QVERIFY(operation.apply == &replaceText);
        QVERIFY(operation.applicable == nullptr);
        QVERIFY(operation.followedBy == nullptr);
    }
};

QTEST_GUILESS_MAIN(TestTextReplacement)

#include "test_textreplacement.moc"

#include "core/menuproblemcheck.h"

#include "editing/randommenu.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "menufile/menufixtures.h"
#include "problemtext.h"

#include <QFile>
#include <QHash>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString dots = markers(3);

/// The lines of a menu file with the given item lines and command lines. The item lines start at
/// line 5, the command lines at line 10 + the number of item lines.
QStringList menuLines(const QStringList& itemLines, const QStringList& commandLines)
{
    QStringList lines { QStringLiteral("KELV - Menu"), QString(), QStringLiteral("[Menu]"), QString() };
    lines += itemLines;
    lines += { QString(), QStringLiteral("[/Menu]"), QString(), QStringLiteral("[Commands]"), QString() };
    lines += commandLines;
    lines += { QString(), QStringLiteral("[/Commands]") };
    return lines;
}

QList<MenuProblem> fileProblems(const QStringList& lines, const char* lineEnd = "\r\n")
{
    const MenuFileCheck check = MenuProblems::checkFileBytes(menuFileFromLines(lines, lineEnd));
    if (!check.read.ok()) {
        qWarning("not read: %s", qPrintable(check.read.reason));
    }
    return check.problems;
}

MenuItem item(const QString& caption, qint16 parent, qint16 siblingOrder, qint16 childCount, const QString& key)
{
    MenuItem made;
    made.caption = caption;
    made.parent = parent;
    made.siblingOrder = siblingOrder;
    made.childCount = childCount;
    made.key = key;
    return made;
}

void addCommand(MenuItem& target, const QString& extension, const QString& command)
{
    target.commands.append(Command { extension, command });
}

/// Every caption from the top level down to item `index`, the whole path, step by step.
QStringList fullPath(const MenuDocument& document, int index)
{
    QStringList path;
    for (int at = index; at >= 0; at = document.items.at(at).parent) {
        path.prepend(document.items.at(at).caption);
    }
    return path;
}

/// The path a problem shows for an item whose whole path is `path`.
QStringList shownPath(const QStringList& path)
{
    if (path.size() <= MenuProblem::PathCaptions) {
        return path;
    }
    return QStringList { QStringLiteral("\u2026") } + path.last(MenuProblem::PathCaptions);
}

} // namespace

class TestMenuProblemCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // files

    void aSoundMenuHasNoProblems()
    {
        const MenuFileCheck check = MenuProblems::checkFileBytes(menuFileFromLines(exampleMenuLines()));
        QVERIFY(check.read.ok());
        QCOMPARE(check.document.items.size(), 4);
        QCOMPARE(placedProblems(check.problems), QStringList());
    }

    void linesTwoOrMoreLevelsDeeperThanTheLineBefore()
    {
        const QStringList lines
            = menuLines({ QStringLiteral("Archive"), markers(6) + QStringLiteral("Deep"), dots + QStringLiteral("Pack"),
                          QStringLiteral("Delete"), markers(9) + QStringLiteral("Far"),
                          markers(12) + QStringLiteral("Farther"), markers(6) + QStringLiteral("Near") },
                        {});
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("6 | 2 | E1 | 0 | level jump | item 2 \"Deep\": its line is 2 levels deeper than "
                                    "the item line before it, so it is read as a top-level item"),
                     QStringLiteral("9 | 5 | E4 | 0 | level jump | item 5 \"Deep > Far\": its line is 3 levels deeper "
                                    "than the item line before it, so it is read as a child of item 2 \"Deep\"") }));
    }

    void aFirstItemLineBelowTheTopLevel()
    {
        const QStringList lines
            = menuLines({ dots + QStringLiteral("First"), markers(6) + QStringLiteral("Child") }, {});
        QCOMPARE(placedProblems(fileProblems(lines)),
                 QStringList { QStringLiteral("5 | 1 | E0 | 0 | level jump | item 1 \"First\": the first item line is "
                                              "1 level deep, so it is read as a top-level item") });
    }

    void strayMarkers()
    {
        const QStringList lines = menuLines({ QStringLiteral("Archive"), markers(1) + QStringLiteral("One"),
                                              markers(2) + QStringLiteral("Two"), QStringLiteral("Tools"),
                                              markers(4) + QStringLiteral("Four"), markers(5) + QStringLiteral("Five"),
                                              markers(6) + QStringLiteral("Six") },
                                            {});
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("6 | 2 | E1 | 0 | stray markers | item 2 \"One\": 1 stray marker before the "
                                    "caption: a level takes three markers, so it is dropped when the file is read"),
                     QStringLiteral("7 | 3 | E2 | 0 | stray markers | item 3 \"Two\": 2 stray markers before the "
                                    "caption: a level takes three markers, so they are dropped when the file is read"),
                     QStringLiteral("9 | 5 | E4 | 0 | stray markers | item 5 \"Tools > Four\": 1 stray marker before "
                                    "the caption: a level takes three markers, so it is dropped when the file is "
                                    "read"),
                     QStringLiteral("10 | 6 | E5 | 0 | stray markers | item 6 \"Tools > Five\": 2 stray markers before "
                                    "the caption: a level takes three markers, so they are dropped when the file is "
                                    "read") }));
    }

    void emptyCaptions()
    {
        // A line of markers only is an item with an empty caption (a level down, as its markers count
        // one more than they are); its markers are not told as stray.
        const QStringList lines = menuLines(
            { QStringLiteral("Archive"), dots, dots + QStringLiteral("   "), markers(2), QStringLiteral("Tools") }, {});
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("6 | 2 | E1 | 0 | empty caption | item 2 \"Archive > \": has an empty caption"),
                     QStringLiteral("7 | 3 | E2 | 0 | empty caption | item 3 \"Archive >    \": has a caption of "
                                    "blanks only"),
                     QStringLiteral("8 | 4 | E3 | 0 | empty caption | item 4 \"Archive > \": has an empty caption"),
                     QStringLiteral("8 | 4 | E3 | 0 | duplicate caption | item 4 \"Archive > \": has the same caption "
                                    "as its sibling item 2") }));
    }

    void siblingsWithTheSameCaption()
    {
        const QStringList lines
            = menuLines({ QStringLiteral("Archive"), dots + QStringLiteral("Pack"), dots + QStringLiteral("pack"),
                          dots + QStringLiteral("Pack"), QStringLiteral("Delete"), dots + QStringLiteral("Pack"),
                          QStringLiteral("Archive"), dots + QStringLiteral("Pack"), QStringLiteral("Archive") },
                        {});
        // Captions of different parents may repeat; letter case makes captions differ.
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("8 | 4 | E3 | 0 | duplicate caption | item 4 \"Archive > Pack\": has the same "
                                    "caption as its sibling item 2"),
                     QStringLiteral("11 | 7 | E6 | 0 | duplicate caption | item 7 \"Archive\": has the same caption as "
                                    "its sibling item 1"),
                     QStringLiteral("13 | 9 | E8 | 0 | duplicate caption | item 9 \"Archive\": has the same caption as "
                                    "its sibling item 1") }));
    }

    void commandProblemsTellTheirLineAndCommand()
    {
        // Blank lines between command lines, and the commands of one item apart from each other.
        const QStringList lines = menuLines(
            { QStringLiteral("Archive"), dots + QStringLiteral("Pack"), QStringLiteral("Delete") },
            { QStringLiteral("0002:zip=pack.exe a $fs-01$"), QString(), QStringLiteral("0003:=del $fs-001$"),
              QStringLiteral("0002:rar=pack.exe r $fs-001"), QStringLiteral("0003:txt="), QString(),
              QStringLiteral("3:=$exepath$\\Tolvexer\\Tolvexer.exe X.BAT 031=a") });
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("13 | 2 | E1 | 1 | unknown variable | item 2 \"Archive > Pack\", command 1: "
                                    "unknown variable \"$fs-01$\""),
                     QStringLiteral("16 | 2 | E1 | 2 | odd dollar count | item 2 \"Archive > Pack\", command 2: odd "
                                    "number of \"$\" (1): the last one opens a variable that is never closed"),
                     QStringLiteral("17 | 3 | E2 | 2 | empty command | item 3 \"Delete\", command 2: the command is "
                                    "empty"),
                     QStringLiteral("19 | 3 | E2 | 3 | no script file | item 3 \"Delete\", command 3: the script "
                                    "runner is called with \"X.BAT\", which is no .tvs or .tvp script"),
                     QStringLiteral("19 | 3 | E2 | 3 | parameter out of range | item 3 \"Delete\", command 3: script "
                                    "parameter number 031 is not one of 001 to 030") }));
    }

    void problemsComeInLineOrder()
    {
        const QStringList lines = menuLines(
            { QStringLiteral("A"), QString(), QStringLiteral("A"), markers(2) + QStringLiteral("B") },
            { QStringLiteral("0001:=$x$"), QStringLiteral("0003:=echo $fs-001$||"), QStringLiteral("0002:=") });
        QStringList lineNumbers;
        for (const MenuProblem& problem : fileProblems(lines)) {
            lineNumbers.append(QString::number(problem.line));
        }
        QCOMPARE(
            lineNumbers,
            (QStringList { QStringLiteral("7"), QStringLiteral("8"), QStringLiteral("14"), QStringLiteral("16") }));
    }

    void linesAreCountedForEveryLineEnd_data()
    {
        QTest::addColumn<QByteArray>("lineEnd");
        QTest::newRow("CR LF") << QByteArray("\r\n");
        QTest::newRow("LF") << QByteArray("\n");
        QTest::newRow("CR") << QByteArray("\r");
    }

    void linesAreCountedForEveryLineEnd()
    {
        QFETCH(QByteArray, lineEnd);
        const QStringList lines
            = menuLines({ QStringLiteral("Archive"), QString(), markers(2) + QStringLiteral("Pack") },
                        { QString(), QStringLiteral("0002:=del $fs-1$") });
        QCOMPARE(placedProblems(fileProblems(lines, lineEnd.constData())),
                 (QStringList {
                     QStringLiteral("7 | 2 | E1 | 0 | stray markers | item 2 \"Pack\": 2 stray markers before the "
                                    "caption: a level takes three markers, so they are dropped when the file is read"),
                     QStringLiteral("14 | 2 | E1 | 1 | unknown variable | item 2 \"Pack\", command 1: unknown "
                                    "variable \"$fs-1$\"") }));
    }

    void tagsInAnyCaseAndTextAroundTheSections()
    {
        const QStringList lines { QStringLiteral("KELV - Menu"), QStringLiteral("; notes"),
                                  QStringLiteral("[MENU]"),      markers(2) + QStringLiteral("Stray"),
                                  QStringLiteral("[/menu]"),     QStringLiteral("0001:=not a command line"),
                                  QStringLiteral("[Commands]"),  QStringLiteral("0001:=$x$"),
                                  QStringLiteral("[/COMMANDS]") };
        QCOMPARE(placedProblems(fileProblems(lines)),
                 (QStringList {
                     QStringLiteral("4 | 1 | E0 | 0 | stray markers | item 1 \"Stray\": 2 stray markers before the "
                                    "caption: a level takes three markers, so they are dropped when the file is read"),
                     QStringLiteral("8 | 1 | E0 | 1 | unknown variable | item 1 \"Stray\", command 1: unknown "
                                    "variable \"$x$\"") }));
    }

    void theFileIsNumberedByItsLinesNotByTheTree()
    {
        // Tail sits two levels below Second, so it is read as a child of Child: the file numbers it
        // 4, the tree (and a saved file) 3.
        const QStringList lines = menuLines({ QStringLiteral("First"), dots + QStringLiteral("Child"),
                                              QStringLiteral("Second"), markers(6) + QStringLiteral("Tail") },
                                            { QStringLiteral("0004:=$x$") });
        const MenuFileCheck check = MenuProblems::checkFileBytes(menuFileFromLines(lines));
        QCOMPARE(placedProblems(check.problems),
                 (QStringList {
                     QStringLiteral("8 | 4 | E3 | 0 | level jump | item 4 \"First > Child > Tail\": its line is 2 "
                                    "levels deeper than the item line before it, so it is read as a child of item 2 "
                                    "\"First > Child\""),
                     QStringLiteral("14 | 4 | E3 | 1 | unknown variable | item 4 \"First > Child > Tail\", command 1: "
                                    "unknown variable \"$x$\"") }));
        QCOMPARE(placedProblems(MenuProblems::checkDocument(check.document)),
                 QStringList { QStringLiteral("0 | 3 | E3 | 1 | unknown variable | item 3 \"First > Child > Tail\", "
                                              "command 1: unknown variable \"$x$\"") });
    }

    void anUnreadableFileHasNoProblemsButItsReadResult()
    {
        QStringList lines = exampleMenuLines();
        lines.removeLast(); // no [/Commands]
        const MenuFileCheck check = MenuProblems::checkFileBytes(menuFileFromLines(lines));
        QCOMPARE(check.read.code, MenuReadResult::Failed);
        QCOMPARE(check.read.reason, QStringLiteral("ends before [/Commands]"));
        QVERIFY(check.problems.isEmpty());

        const MenuFileCheck notMenu = MenuProblems::checkFileBytes(QByteArray("KELV - menu\r\n"));
        QCOMPARE(notMenu.read.code, MenuReadResult::NotAMenuFile);
        QVERIFY(notMenu.problems.isEmpty());
    }

    void checkFileReadsTheFileOrTellsWhyItCannot()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString missing = folder.filePath(QStringLiteral("missing.ini"));
        const MenuFileCheck absent = MenuProblems::checkFile(missing);
        MenuDocument document;
        const MenuReadResult expected = readMenuFile(missing, document);
        QCOMPARE(absent.read.code, expected.code);
        QCOMPARE(absent.read.errorNumber, expected.errorNumber);
        QCOMPARE(absent.read.reason, expected.reason);

        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(menuFileFromLines(menuLines({ QStringLiteral("A"), QStringLiteral("A") }, {})));
        file.close();
        const MenuFileCheck present = MenuProblems::checkFile(path);
        QVERIFY(present.read.ok());
        QCOMPARE(present.document.items.size(), 2);
        QCOMPARE(placedProblems(present.problems),
                 QStringList { QStringLiteral("6 | 2 | E1 | 0 | duplicate caption | item 2 \"A\": has the same "
                                              "caption as its sibling item 1") });
    }

    // documents

    void documentItemsAreNumberedInTheOrderTheyAreSaved()
    {
        // In the array: Second, Child (of First), First, Empty (of Second).
        MenuDocument document;
        document.items = { item(QStringLiteral("Second"), -1, 2, 1, QStringLiteral("E7")),
                           item(QStringLiteral("Child"), 2, 1, 0, QStringLiteral("E3")),
                           item(QStringLiteral("First"), -1, 1, 1, QStringLiteral("E1")),
                           item(QString(), 0, 1, 0, QStringLiteral("E9")) };
        addCommand(document.items[1], QStringLiteral("zip"), QStringLiteral("pack $fs-01$"));
        addCommand(document.items[1], QString(), QStringLiteral("del $fs-001$"));
        addCommand(document.items[1], QString(), QStringLiteral("echo $y$"));
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)),
                 (QStringList {
                     QStringLiteral("0 | 2 | E3 | 1 | unknown variable | item 2 \"First > Child\", command 1: unknown "
                                    "variable \"$fs-01$\""),
                     QStringLiteral("0 | 2 | E3 | 3 | unknown variable | item 2 \"First > Child\", command 3: unknown "
                                    "variable \"$y$\""),
                     QStringLiteral("0 | 4 | E9 | 0 | empty caption | item 4 \"Second > \": has an empty caption") }));
    }

    void whatTheFileCannotHoldIsAProblemAtItsItem()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("First"), -1, 1, 1, QStringLiteral("E0")),
                           item(QStringLiteral("a\nb"), 0, 1, 0, QStringLiteral("E4")) };
        addCommand(document.items[0], QStringLiteral("a=b"), QStringLiteral("x"));
        const QList<MenuProblem> problems = MenuProblems::checkDocument(document);
        QCOMPARE(problems.size(), 2);
        for (const MenuProblem& problem : problems) {
            QCOMPARE(problem.kind, MenuProblem::Kind::UnsavableValue);
        }
        QCOMPARE(problems.at(0).itemKey, QStringLiteral("E0"));
        QCOMPARE(problems.at(0).itemNumber, 1);
        QVERIFY(problems.at(0).message.contains(QStringLiteral("=")));
        QCOMPARE(problems.at(1).itemKey, QStringLiteral("E4"));
        QCOMPARE(problems.at(1).itemNumber, 2);
        QCOMPARE(problems.at(1).itemPath, QStringList({ QStringLiteral("First"), QStringLiteral("a\nb") }));
    }

    void itemsTheFileWouldNotHoldAreLeftOut()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("Kept"), -1, 1, 0, QStringLiteral("E0")),
                           // Its parent has no children, so saving leaves it out.
                           item(QString(), 0, 1, 0, QStringLiteral("E1")) };
        addCommand(document.items[1], QString(), QStringLiteral("$x$"));
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)), QStringList());
    }

    void aLinkedItemsOwnHiddenCommandsAreNotChecked()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("Target"), -1, 1, 0, QStringLiteral("E0")),
                           item(QStringLiteral("Link"), -1, 2, 0, QStringLiteral("E1")) };
        addCommand(document.items[0], QString(), QStringLiteral("del $fs-001$"));
        addCommand(document.items[1], QString(), QStringLiteral("hidden $x$"));
        addCommand(document.items[1], QString(), QString());
        document.items[1].copiesCommands = true;
        document.items[1].copyKey = QStringLiteral("E0");
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)), QStringList());

        // Switched off, the same commands are the item's own again.
        document.items[1].copiesCommands = false;
        QCOMPARE(MenuProblems::checkDocument(document).size(), 2);
    }

    void theCommandsALinkWritesAreCheckedWhereTheyComeFrom()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("Link"), -1, 1, 0, QStringLiteral("E0")),
                           item(QStringLiteral("Target"), -1, 2, 0, QStringLiteral("E1")),
                           item(QStringLiteral("Second link"), -1, 3, 0, QStringLiteral("E2")) };
        addCommand(document.items[1], QString(), QStringLiteral("del $bad$"));
        for (const int link : { 0, 2 }) {
            document.items[link].copiesCommands = true;
            document.items[link].copyKey = QStringLiteral("E1");
        }
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)),
                 QStringList { QStringLiteral("0 | 2 | E1 | 1 | unknown variable | item 2 \"Target\", command 1: "
                                              "unknown variable \"$bad$\"") });
    }

    void aLinkToALinkWritesTheTargetsHiddenCommandsAndIsCheckedForThem()
    {
        // The file writer writes the target's own commands for a link, even when the target is a link
        // itself and does not write them: they are checked once, at the first item that writes them.
        MenuDocument document;
        document.items = { item(QStringLiteral("Middle"), -1, 1, 0, QStringLiteral("E0")),
                           item(QStringLiteral("Outer"), -1, 2, 0, QStringLiteral("E1")),
                           item(QStringLiteral("Other outer"), -1, 3, 0, QStringLiteral("E2")),
                           item(QStringLiteral("End"), -1, 4, 0, QStringLiteral("E3")) };
        addCommand(document.items[0], QString(), QStringLiteral("$middle$"));
        addCommand(document.items[3], QString(), QStringLiteral("$end$"));
        document.items[0].copiesCommands = true;
        document.items[0].copyKey = QStringLiteral("E3");
        for (const int link : { 1, 2 }) {
            document.items[link].copiesCommands = true;
            document.items[link].copyKey = QStringLiteral("E0");
        }
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)),
                 (QStringList {
                     QStringLiteral("0 | 2 | E1 | 1 | unknown variable | item 2 \"Outer\", command 1: unknown "
                                    "variable \"$middle$\""),
                     QStringLiteral("0 | 4 | E3 | 1 | unknown variable | item 4 \"End\", command 1: unknown variable "
                                    "\"$end$\"") }));
    }

    void documentsHaveNoLineProblems()
    {
        // Levels of a document say nothing about its file: a saved file writes depths from the tree.
        MenuDocument document;
        document.items = { item(QStringLiteral("Top"), -1, 1, 1, QStringLiteral("E0")),
                           item(QStringLiteral("Deep"), 0, 1, 0, QStringLiteral("E1")) };
        document.items[0].level = 1;
        document.items[1].level = 7;
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)), QStringList());
    }

    void anItemDeepDownIsNamedByItsLastCaptions()
    {
        MenuDocument document;
        for (int level = 0; level < 6; ++level) {
            document.items.append(item(QStringLiteral("L%1").arg(level), qint16(level - 1), 1, level < 5 ? 1 : 0,
                                       QStringLiteral("E%1").arg(level)));
        }
        document.items[2].caption.clear();
        addCommand(document.items[5], QString(), QStringLiteral("$x$"));
        QCOMPARE(placedProblems(MenuProblems::checkDocument(document)),
                 (QStringList {
                     QStringLiteral("0 | 3 | E2 | 0 | empty caption | item 3 \"L0 > L1 > \": has an empty caption"),
                     QStringLiteral("0 | 6 | E5 | 1 | unknown variable | item 6 \"\u2026 > L3 > L4 > L5\", command "
                                    "1: unknown variable \"$x$\"") }));
    }

    void theItemOfAProblemIsShownByTheEndOfItsPathInRandomMenus()
    {
        QRandomGenerator random(19);
        int shortened = 0;
        for (int round = 0; round < 300; ++round) {
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(60));
            for (MenuItem& changed : document.items) {
                if (random.bounded(4) == 0) {
                    changed.caption = random.bounded(2) == 0 ? QString() : QStringLiteral("Same");
                }
                if (random.bounded(4) == 0) {
                    changed.copiesCommands = false;
                    addCommand(changed, QString(), QStringLiteral("run $what$"));
                }
            }
            QHash<QString, int> indexOfKey;
            for (int i = 0; i < int(document.items.size()); ++i) {
                indexOfKey.insert(document.items.at(i).key, i);
            }
            const QList<MenuProblem> problems = MenuProblems::checkDocument(document);
            for (const MenuProblem& problem : problems) {
                QVERIFY(indexOfKey.contains(problem.itemKey));
                QCOMPARE(problem.itemPath, shownPath(fullPath(document, indexOfKey.value(problem.itemKey))));
            }
            // The same menu as a file: the items read back in the order of their lines.
            const MenuFileCheck check = MenuProblems::checkFileBytes(menuFileBytes(document));
            QVERIFY(check.read.ok());
            for (const MenuProblem& problem : check.problems) {
                QVERIFY(problem.itemNumber >= 1);
                QCOMPARE(problem.itemPath, shownPath(fullPath(check.document, problem.itemNumber - 1)));
                shortened += problem.itemPath.size() > MenuProblem::PathCaptions ? 1 : 0;
            }
        }
        // The menus are deep enough for paths to be shortened often.
        QVERIFY2(shortened > 1000, qPrintable(QString::number(shortened)));
    }

    // texts

    void problemTexts()
    {
        MenuProblem problem;
        problem.message = QStringLiteral("has an empty caption");
        QCOMPARE(problem.placeText(), QString());
        QCOMPARE(problem.text(), QStringLiteral("has an empty caption"));
        problem.itemPath = QStringList { QStringLiteral("Archive"), QStringLiteral("Pack") };
        QCOMPARE(problem.text(), QStringLiteral("item \"Archive > Pack\": has an empty caption"));
        problem.itemNumber = 12;
        QCOMPARE(problem.text(), QStringLiteral("item 12 \"Archive > Pack\": has an empty caption"));
        problem.commandNumber = 3;
        QCOMPARE(problem.placeText(), QStringLiteral("item 12 \"Archive > Pack\", command 3"));
        problem.itemPath.prepend(MenuProblem::pathOmission());
        QCOMPARE(problem.placeText(), QStringLiteral("item 12 \"\u2026 > Archive > Pack\", command 3"));
    }
};

QTEST_GUILESS_MAIN(TestMenuProblemCheck)
#include "test_menuproblemcheck.moc"

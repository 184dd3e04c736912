#include "literalitemfinder.h"
#include "testmenus.h"

#include "treeview/itemfinder.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

MenuItem captioned(MenuItem item, const QString& caption)
{
    item.caption = caption;
    return item;
}

MenuItem withCommand(MenuItem item, const QString& extension, const QString& command)
{
    item.commands.append(Command { extension, command });
    return item;
}

/// Archive (Pack, Unpack), Delete (a link to Pack), Notes, with Archive last in array order so that
/// tree order and array order differ.
MenuDocument sampleMenu()
{
    MenuDocument document;
    document.items = {
        withCommand(captioned(TestMenus::item(QStringLiteral("E0"), 3, 0, 1), QStringLiteral("Pack")),
                    QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$")),
        captioned(TestMenus::item(QStringLiteral("E1"), 3, 0, 2), QStringLiteral("Unpack")),
        TestMenus::linked(captioned(TestMenus::item(QStringLiteral("E2"), -1, 0, 2), QStringLiteral("Delete")),
                          QStringLiteral("E0")),
        captioned(TestMenus::item(QStringLiteral("E3"), -1, 2, 1), QStringLiteral("Archive")),
        withCommand(captioned(TestMenus::item(QStringLiteral("E4"), -1, 0, 3), QStringLiteral("Notes")),
                    QStringLiteral("txt"), QStringLiteral("notepad $FS-001$")),
    };
    document.lastIndex = 4;
    return document;
}

FindRequest request(const QString& text, bool inCommands = false, bool matchCase = false)
{
    FindRequest find;
    find.text = text;
    find.inCommands = inCommands;
    find.matchCase = matchCase;
    return find;
}

/// Pieces of the random captions, commands and search texts: letters in both cases, characters
/// whose case folding leads elsewhere (the Kelvin sign folds to "k"), a character beyond 16 bits,
/// and the "$" of variables.
const QStringList& pieces()
{
    static const QStringList all { QStringLiteral("a"),
                                   QStringLiteral("A"),
                                   QStringLiteral("k"),
                                   QStringLiteral("K"),
                                   QStringLiteral("$"),
                                   QStringLiteral(" "),
                                   QStringLiteral("\u212A"),
                                   QStringLiteral("\u00E4"),
                                   QStringLiteral("\u00C4"),
                                   QString::fromUcs4(U"\U00010400"),
                                   QString::fromUcs4(U"\U00010428") };
    return all;
}

QString randomText(QRandomGenerator& random, int maxPieces)
{
    QString text;
    const int count = random.bounded(maxPieces + 1);
    for (int i = 0; i < count; ++i) {
        text += pieces().at(random.bounded(int(pieces().size())));
    }
    return text;
}

/// Random texts for the captions and commands of `document`, links to items that do not exist, and
/// now and then a key that two items bear.
void fillRandomly(QRandomGenerator& random, MenuDocument& document)
{
    const int count = int(document.items.size());
    for (MenuItem& item : document.items) {
        item.caption = randomText(random, 6);
        for (qsizetype slot = 1; slot < item.commands.size(); ++slot) {
            item.commands[slot] = Command { randomText(random, 2), randomText(random, 8) };
        }
        if (random.bounded(8) == 0) {
            item.copiesCommands = true;
            item.copyKey = QStringLiteral("E%1").arg(count + random.bounded(3));
        }
    }
    if (count > 1 && random.bounded(6) == 0) {
        document.items[random.bounded(count)].key = document.items.at(random.bounded(count)).key;
    }
}

/// One change of the menu as the editor makes them: a caption, a command, a link switched, the
/// hide mode, a key, an item's place in the tree.
void changeRandomly(QRandomGenerator& random, MenuDocument& document)
{
    const int count = int(document.items.size());
    const int what = random.bounded(6);
    if (what == 3 || count == 0) {
        document.hideMode = random.bounded(4);
        return;
    }
    MenuItem& item = document.items[random.bounded(count)];
    if (what == 4) {
        item.key = QStringLiteral("E%1").arg(random.bounded(count + 2));
    } else if (what == 5) {
        MenuItem& other = document.items[random.bounded(count)];
        std::swap(item.siblingOrder, other.siblingOrder);
        std::swap(item.parent, other.parent);
    } else if (what == 0) {
        item.caption = randomText(random, 6);
    } else if (what == 1) {
        item.commands.append(Command { QString(), randomText(random, 8) });
    } else {
        item.copiesCommands = !item.copiesCommands;
        item.copyKey = document.items.at(random.bounded(count)).key;
    }
}

/// A well-formed menu of `count` items, each under a random earlier one or at the top, with random
/// texts: large enough for the finder to search the tree in two halves at once.
MenuDocument largeMenu(QRandomGenerator& random, int count)
{
    MenuDocument document;
    QList<MenuItem> items;
    std::vector<qint16> children(size_t(count) + 1, 0); // per parent + 1
    for (int i = 0; i < count; ++i) {
        const int parent = i == 0 || random.bounded(5) == 0 ? -1 : random.bounded(i);
        items.append(TestMenus::item(QStringLiteral("E%1").arg(i), qint16(parent), 0, ++children[size_t(parent + 1)],
                                     int(random.bounded(3))));
        if (parent >= 0) {
            ++items[parent].childCount;
        }
    }
    document.items = MenuItemArray(items);
    document.lastIndex = qint16(count - 1);
    fillRandomly(random, document);
    return document;
}

/// The next text of the find bar: mostly a character typed or taken back, now and then a new text.
QString nextText(QRandomGenerator& random, const QString& text)
{
    const int what = random.bounded(10);
    if (what < 5) {
        return text + randomText(random, 1);
    }
    if (what < 8 && !text.isEmpty()) {
        return text.chopped(1);
    }
    return randomText(random, 3);
}

} // namespace

/// The find bar's search: captions, and on request the commands an item shows, in the tree's order.
class TestItemFinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captionsMatchInTreeOrderWhateverTheCase()
    {
        const MenuDocument document = sampleMenu();
        QCOMPARE(findItems(document, 0, request(QStringLiteral("pack"))),
                 QStringList({ QStringLiteral("E0"), QStringLiteral("E1") }));
        QCOMPARE(findItems(document, 0, request(QStringLiteral("E"))),
                 QStringList({ QStringLiteral("E3"), QStringLiteral("E2"), QStringLiteral("E4") }));
    }

    void matchCaseIsAsked()
    {
        const MenuDocument document = sampleMenu();
        QCOMPARE(findItems(document, 0, request(QStringLiteral("pack"), false, true)),
                 QStringList({ QStringLiteral("E1") }));
        QCOMPARE(findItems(document, 0, request(QStringLiteral("Pack"), false, true)),
                 QStringList({ QStringLiteral("E0") }));
    }

    void anEmptyTextMatchesNothing() { QVERIFY(findItems(sampleMenu(), 0, request(QString())).isEmpty()); }

    void commandsAreSearchedOnRequestAndALinkShowsItsTargets()
    {
        const MenuDocument document = sampleMenu();
        QVERIFY(findItems(document, 0, request(QStringLiteral("fs-001"))).isEmpty());
        // Pack holds it, Delete shows Pack's commands, Notes holds it in upper case.
        QCOMPARE(findItems(document, 0, request(QStringLiteral("fs-001"), true)),
                 QStringList({ QStringLiteral("E0"), QStringLiteral("E2"), QStringLiteral("E4") }));
        QCOMPARE(findItems(document, 0, request(QStringLiteral("fs-001"), true, true)),
                 QStringList({ QStringLiteral("E0"), QStringLiteral("E2") }));
        // Extensions count too.
        QCOMPARE(findItems(document, 0, request(QStringLiteral("txt"), true)), QStringList({ QStringLiteral("E4") }));
    }

    void aLinkToNoItemShowsNoCommands()
    {
        MenuDocument document = sampleMenu();
        document.items[2].copyKey = QStringLiteral("E9");
        QCOMPARE(findItems(document, 0, request(QStringLiteral("pack.exe"), true)),
                 QStringList({ QStringLiteral("E0") }));
    }

    void hiddenItemsAreNotFound()
    {
        const MenuDocument document = sampleMenu();
        QCOMPARE(findItems(document, 0, request(QStringLiteral("e"))),
                 QStringList({ QStringLiteral("E3"), QStringLiteral("E2"), QStringLiteral("E4") }));
        // Hide mode 1 hides the links.
        QCOMPARE(findItems(document, 1, request(QStringLiteral("e"))),
                 QStringList({ QStringLiteral("E3"), QStringLiteral("E4") }));
    }

    void aFinderFollowsTheMenuItSearches()
    {
        MenuDocument document = sampleMenu();
        ItemFinder finder;
        finder.find(document, 0, request(QStringLiteral("pack")));
        QCOMPARE(finder.keys(), QStringList({ QStringLiteral("E0"), QStringLiteral("E1") }));
        QCOMPARE(finder.count(), 2);
        QCOMPARE(finder.keyAt(1), QStringLiteral("E1"));
        // An edit: the next search sees it without being told.
        document.items[4].caption = QStringLiteral("Packed notes");
        finder.find(document, 0, request(QStringLiteral("pack")));
        QCOMPARE(finder.keys(), QStringList({ QStringLiteral("E0"), QStringLiteral("E1"), QStringLiteral("E4") }));
        // So is another hide mode; Delete, a link, is found in its target's commands.
        finder.find(document, 0, request(QStringLiteral("zip"), true));
        QCOMPARE(finder.keys(), QStringList({ QStringLiteral("E0"), QStringLiteral("E2") }));
        finder.find(document, 1, request(QStringLiteral("zip"), true));
        QCOMPARE(finder.keys(), QStringList({ QStringLiteral("E0") }));
        // A longer text narrows down, a shorter one finds again.
        finder.find(document, 1, request(QStringLiteral("zip!"), true));
        QCOMPARE(finder.count(), 0);
        finder.find(document, 1, request(QStringLiteral("zi"), true));
        QCOMPARE(finder.keys(), QStringList({ QStringLiteral("E0") }));
        finder.reset();
        QCOMPARE(finder.count(), 0);
    }

    void aFinderFindsWhatThePlainSearchFindsOnRandomMenus()
    {
        QRandomGenerator random(19);
        int found = 0;
        int searches = 0;
        for (quint32 seed = 1; seed <= 400; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            fillRandomly(random, document);
            document.hideMode = random.bounded(5) - (random.bounded(8) == 0 ? 1 : 0);
            ItemFinder finder;
            FindRequest find;
            for (int step = 0; step < 40; ++step) {
                const int what = random.bounded(20);
                if (what == 0) {
                    find.matchCase = !find.matchCase;
                } else if (what == 1) {
                    find.inCommands = !find.inCommands;
                } else if (what == 2) {
                    changeRandomly(random, document);
                } else if (what == 3) {
                    finder.reset();
                } else if (what == 4) {
                    finder.forgetSearch();
                } else if (what < 7) {
                    changeRandomly(random, document);
                } else {
                    find.text = nextText(random, find.text);
                }
                finder.find(document, document.hideMode, find);
                const QStringList expected = literalFindItems(document, document.hideMode, find);
                const QStringList keys = finder.keys();
                if (keys != expected) {
                    QFAIL(qPrintable(QStringLiteral("seed %1, step %2, \"%3\" case %4 commands %5 hide mode %6:\n"
                                                    " expected %7\n found    %8")
                                         .arg(seed)
                                         .arg(step)
                                         .arg(find.text)
                                         .arg(find.matchCase)
                                         .arg(find.inCommands)
                                         .arg(document.hideMode)
                                         .arg(expected.join(QLatin1Char(' ')), keys.join(QLatin1Char(' ')))));
                }
                QCOMPARE(finder.count(), expected.size());
                if (!expected.isEmpty()) {
                    QCOMPARE(finder.keyAt(expected.size() - 1), expected.last());
                }
                found += expected.isEmpty() ? 0 : 1;
                ++searches;
            }
        }
        // The texts must find something often, and not always. The random streams differ between
        // compilers (the order in which arguments are evaluated), so the bounds leave room.
        QVERIFY2(found > searches / 6 && found < searches * 5 / 6, qPrintable(QString::number(found)));
    }

    void aLargeMenuIsSearchedInTwoHalvesWithTheSameResult()
    {
        QRandomGenerator random(2026);
        MenuDocument document = largeMenu(random, 9000);
        ItemFinder finder;
        FindRequest find;
        int found = 0;
        for (int step = 0; step < 30; ++step) {
            find.inCommands = random.bounded(3) != 0;
            find.matchCase = random.bounded(4) == 0;
            find.text = random.bounded(3) == 0 ? nextText(random, find.text) : randomText(random, 2);
            if (random.bounded(4) == 0) {
                changeRandomly(random, document);
            }
            finder.find(document, document.hideMode, find);
            const QStringList expected = literalFindItems(document, document.hideMode, find);
            QCOMPARE(finder.keys(), expected);
            found += expected.size() > 1 ? 1 : 0;
        }
        QVERIFY2(found > 3, qPrintable(QString::number(found)));
    }

    void findingChangesNothing()
    {
        const MenuDocument document = sampleMenu();
        const MenuDocument before = document;
        findItems(document, 0, request(QStringLiteral("a"), true));
        QVERIFY(document == before);
    }
};

QTEST_GUILESS_MAIN(TestItemFinder)
#include "test_itemfinder.moc"

#include "editing/copylinks.h"
#include "literallinkroutines.h"
#include "randommenu.h"

#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

namespace {

Command cmd(const char* extension, const char* text)
{
    return Command { QString::fromLatin1(extension), QString::fromLatin1(text) };
}

MenuItem topLevelItem(const QString& key, qint16 siblingOrder, const QList<Command>& commands)
{
    MenuItem item;
    item.caption = key;
    item.key = key;
    item.parent = -1;
    item.siblingOrder = siblingOrder;
    item.commands = MenuItem::placeholderCommands() + commands;
    return item;
}

/// Top-level items keyed E0, E1, ... holding the given command lists.
MenuDocument documentWith(const QList<QList<Command>>& commandLists)
{
    MenuDocument document;
    for (qsizetype i = 0; i < commandLists.size(); ++i) {
        document.items.append(topLevelItem(QStringLiteral("E%1").arg(i), qint16(i + 1), commandLists.at(i)));
    }
    document.lastIndex = qint16(commandLists.size() - 1);
    return document;
}

void linkTo(MenuDocument& document, int from, int to)
{
    document.items[from].copiesCommands = true;
    document.items[from].copyKey = document.items.at(to).key;
}

} // namespace

class TestCopyLinks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameCommandsTrueForEqualLists()
    {
        const QList<Command> list { cmd("txt", "del "), cmd("", "rename ") };
        const MenuDocument document = documentWith({ list, list });
        QVERIFY(sameCommands(document, 0, 1));
        QVERIFY(sameCommands(document, 1, 0));
    }

    void sameCommandsFalseWhenEitherIsLinked()
    {
        const QList<Command> list { cmd("txt", "del ") };
        MenuDocument document = documentWith({ list, list, list });
        linkTo(document, 1, 2);
        QVERIFY(!sameCommands(document, 0, 1));
        QVERIFY(!sameCommands(document, 1, 0));
        QVERIFY(sameCommands(document, 0, 2));
    }

    void sameCommandsFalseForDifferentCounts()
    {
        const MenuDocument document
            = documentWith({ { cmd("txt", "del ") }, { cmd("txt", "del "), cmd("txt", "del ") } });
        QVERIFY(!sameCommands(document, 0, 1));
    }

    void sameCommandsFalseWithoutCommands()
    {
        const MenuDocument document = documentWith({ {}, {} });
        QVERIFY(!sameCommands(document, 0, 1));
        QVERIFY(!sameCommands(document, 0, 0));
    }

    void sameCommandsFalseWhenTextDiffers()
    {
        const MenuDocument document
            = documentWith({ { cmd("txt", "del "), cmd("", "copy ") }, { cmd("txt", "del "), cmd("", "Copy ") } });
        QVERIFY(!sameCommands(document, 0, 1));
    }

    void sameCommandsFalseWhenExtensionDiffers()
    {
        const MenuDocument document = documentWith({ { cmd("txt", "del ") }, { cmd("TXT", "del ") } });
        QVERIFY(!sameCommands(document, 0, 1));
        const MenuDocument swapped
            = documentWith({ { cmd("a", "x"), cmd("b", "y") }, { cmd("b", "x"), cmd("a", "y") } });
        QVERIFY(!sameCommands(swapped, 0, 1));
    }

    void sameCommandsOfMissingItemIsError9()
    {
        const MenuDocument document = documentWith({ { cmd("", "del ") } });
        try {
            sameCommands(document, 0, 1);
            QFAIL("no error for an index that names no item");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 9);
        }
    }

    void threeIdenticalListsLinkToTheFirst()
    {
        const QList<Command> list { cmd("txt", "del "), cmd("exe", "regsvr32 ") };
        MenuDocument document = documentWith({ list, list, list });
        normalizeCopyLinks(document);
        QVERIFY(!document.items.at(0).copiesCommands);
        QCOMPARE(document.items.at(0).copyKey, QStringLiteral("-1"));
        for (int i : { 1, 2 }) {
            QVERIFY(document.items.at(i).copiesCommands);
            QCOMPARE(document.items.at(i).copyKey, QStringLiteral("E0"));
            // A linked item keeps a full copy of what it links to.
            QCOMPARE(document.items.at(i).commands, document.items.at(0).commands);
        }
    }

    void groupsLinkToTheirEarliestMemberAcrossOtherItems()
    {
        const QList<Command> a { cmd("", "del ") };
        const QList<Command> b { cmd("", "rename ") };
        MenuDocument document = documentWith({ b, a, b, a, {}, a });
        document.items[1].key = QStringLiteral("E9");
        normalizeCopyLinks(document);
        QVERIFY(!document.items.at(0).copiesCommands);
        QVERIFY(!document.items.at(1).copiesCommands);
        QCOMPARE(document.items.at(2).copyKey, QStringLiteral("E0"));
        QCOMPARE(document.items.at(3).copyKey, QStringLiteral("E9"));
        QVERIFY(!document.items.at(4).copiesCommands);
        QCOMPARE(document.items.at(5).copyKey, QStringLiteral("E9"));
    }

    void extensionLetterCaseKeepsItemsApart()
    {
        MenuDocument document = documentWith({ { cmd("txt", "del ") }, { cmd("TXT", "del ") } });
        normalizeCopyLinks(document);
        QVERIFY(!document.items.at(0).copiesCommands);
        QVERIFY(!document.items.at(1).copiesCommands);
    }

    void itemsWithoutCommandsAreNeverLinked()
    {
        MenuDocument document = documentWith({ {}, {}, {} });
        normalizeCopyLinks(document);
        for (const MenuItem& item : std::as_const(document.items)) {
            QVERIFY(!item.copiesCommands);
            QCOMPARE(item.copyKey, QStringLiteral("-1"));
        }
    }

    void existingLinksAreReplacedByCanonicalOnes()
    {
        const QList<Command> a { cmd("txt", "del ") };
        // E1 links to the later E2 and holds nothing itself; E2 has the same list as E0.
        MenuDocument document = documentWith({ a, {}, a });
        linkTo(document, 1, 2);
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(1).commands, document.items.at(0).commands);
        QVERIFY(document.items.at(1).copiesCommands);
        QCOMPARE(document.items.at(1).copyKey, QStringLiteral("E0"));
        QVERIFY(document.items.at(2).copiesCommands);
        QCOMPARE(document.items.at(2).copyKey, QStringLiteral("E0"));
    }

    void linkToLaterUndissolvedLinkCopiesThatItemsOwnList()
    {
        const QList<Command> stale { cmd("", "rename ") };
        const QList<Command> real { cmd("", "copy ") };
        // E0 -> E1 -> E2: when E0 is dissolved, E1 still holds its own stale list.
        MenuDocument document = documentWith({ {}, stale, real });
        linkTo(document, 0, 1);
        linkTo(document, 1, 2);
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(0).commands, MenuItem::placeholderCommands() + stale);
        QVERIFY(!document.items.at(0).copiesCommands);
        QCOMPARE(document.items.at(1).commands, MenuItem::placeholderCommands() + real);
        QVERIFY(!document.items.at(1).copiesCommands);
        QVERIFY(document.items.at(2).copiesCommands);
        QCOMPARE(document.items.at(2).copyKey, QStringLiteral("E1"));
    }

    void dissolvedLinkThatIsNotRelinkedKeepsItsOldCopyKey()
    {
        MenuDocument document = documentWith({ { cmd("", "del ") }, {} });
        linkTo(document, 1, 0);
        document.items[0].commands = MenuItem::placeholderCommands() + QList<Command> { cmd("", "copy ") };
        document.items[1].commands = MenuItem::placeholderCommands();
        document.items[0].copyKey = QStringLiteral("E1"); // a leftover, not a link
        normalizeCopyLinks(document);
        QCOMPARE(document.items.at(1).commands, document.items.at(0).commands);
        QVERIFY(document.items.at(1).copiesCommands);
        QCOMPARE(document.items.at(1).copyKey, QStringLiteral("E0"));
        QVERIFY(!document.items.at(0).copiesCommands);
        QCOMPARE(document.items.at(0).copyKey, QStringLiteral("E1"));
    }

    void linkToUnknownKeyIsError9()
    {
        MenuDocument document = documentWith({ { cmd("", "del ") }, {} });
        document.items[1].copiesCommands = true;
        document.items[1].copyKey = QStringLiteral("E7");
        try {
            normalizeCopyLinks(document);
            QFAIL("no error for a link to a missing item");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 9);
        }
    }

    void randomDocumentsMatchTheStepByStepVersion()
    {
        for (quint32 seed = 1; seed <= 800; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument fast = RandomMenu::generate(random, 1 + random.bounded(40));
            if (seed % 10 == 0) {
                // A link naming no item: both must fail at the same item.
                MenuItem& item = fast.items[random.bounded(int(fast.items.size()))];
                item.copiesCommands = true;
                item.copyKey = QStringLiteral("E999");
            }
            MenuDocument literal = fast;
            int fastError = 0;
            int literalError = 0;
            try {
                normalizeCopyLinks(fast);
            } catch (const RunTimeError& error) {
                fastError = error.number();
            }
            try {
                LiteralLinkRoutines::normalizeCopyLinks(literal);
            } catch (const RunTimeError& error) {
                literalError = error.number();
            }
            QVERIFY2(fastError == literalError, qPrintable(QStringLiteral("seed %1").arg(seed)));
            QVERIFY2(
                fast == literal,
                qPrintable(QStringLiteral("seed %1: %2").arg(seed).arg(RandomMenu::firstDifference(fast, literal))));
            for (int i = 0; i < fast.items.size(); ++i) {
                for (int j = 0; j < fast.items.size(); ++j) {
                    QCOMPARE(sameCommands(fast, i, j), LiteralLinkRoutines::sameCommands(fast, i, j));
                }
            }
        }
    }

    void normalizingTwiceChangesNothing()
    {
        for (quint32 seed = 1; seed <= 200; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(40));
            normalizeCopyLinks(document);
            const MenuDocument once = document;
            normalizeCopyLinks(document);
            QVERIFY2(document == once, qPrintable(QStringLiteral("seed %1").arg(seed)));
            // Nothing was written, so the items are still shared with the state before.
            QVERIFY2(document.items.isSharedWith(once.items), qPrintable(QStringLiteral("seed %1").arg(seed)));
        }
    }

    void normalizingWritesOnlyTheItemsWhoseLinkChanges()
    {
        constexpr qsizetype chunk = MenuItemArray::ChunkSize;
        for (quint32 seed = 1; seed <= 20; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, int(4 * chunk + random.bounded(int(chunk))));
            normalizeCopyLinks(document);
            // One item gets the commands of another, as pasting a record does.
            const int count = int(document.items.size());
            const int changed = int(random.bounded(count));
            document.items[changed].copiesCommands = false;
            document.items[changed].commands = document.items.at(int(random.bounded(count))).commands;
            const MenuDocument edited = document;
            normalizeCopyLinks(document);
            MenuDocument literal = edited;
            LiteralLinkRoutines::normalizeCopyLinks(literal);
            QVERIFY2(document == literal, qPrintable(QStringLiteral("seed %1").arg(seed)));
            // A chunk whose items all kept their value was not written: it still holds the records of
            // the state before, so that state and the document still share it.
            for (qsizetype first = 0; first < count; first += chunk) {
                bool unchanged = true;
                for (qsizetype i = first; i < std::min(first + chunk, qsizetype(count)); ++i) {
                    unchanged = unchanged && document.items.at(i) == edited.items.at(i);
                }
                QVERIFY2(!unchanged || &document.items.at(first) == &edited.items.at(first),
                         qPrintable(QStringLiteral("seed %1 chunk from %2").arg(seed).arg(first)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestCopyLinks)
#include "test_copylinks.moc"

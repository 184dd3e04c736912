#include "fuzzfailure.h"
#include "menucomparison.h"

#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"

#include "menufile/menufixtures.h"

#include <QTest>

namespace {

/// Archive (Pack with two commands, Unpack with the same two) and Delete with one command, as the
/// reader gives them.
MenuDocument readDocument()
{
    MenuDocument document;
    MenuItem archive = makeItem(QStringLiteral("Archive"), 0, -1, 1, 2);
    MenuItem pack = makeItem(QStringLiteral("Pack"), 1, 0, 1);
    pack.commands.append(Command { QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$") });
    pack.commands.append(Command { QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$") });
    MenuItem unpack = makeItem(QStringLiteral("Unpack"), 2, 0, 2);
    unpack.commands = pack.commands;
    MenuItem del = makeItem(QStringLiteral("Delete"), 3, -1, 2);
    del.commands.append(Command { QString(), QStringLiteral("del $fs-001$") });
    document.items = { archive, pack, unpack, del };
    for (MenuItem& item : document.items) {
        item.level = item.parent < 0 ? 0 : 1;
    }
    document.lastIndex = 3;
    return document;
}

MenuDocument writtenAndRead(const MenuDocument& document)
{
    MenuDocument reread;
    if (!readMenuBytes(menuFileBytes(document), reread).ok()) {
        qFatal("the written menu does not read back");
    }
    return reread;
}

} // namespace

class TestMenuComparison : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameDocumentsAgree()
    {
        const MenuDocument document = readDocument();
        QCOMPARE(menuDifference(document, document, ComparedDetail::WholeDocument), QString());
        QCOMPARE(menuDifference(document, writtenAndRead(document), ComparedDetail::WholeDocument), QString());
    }

    void levelsAreNotCompared()
    {
        // Three markers too many on Pack's line: level 2 in the file, depth 1 in the tree.
        MenuDocument deeper = readDocument();
        deeper.items[1].level = 2;
        QCOMPARE(menuDifference(deeper, readDocument(), ComparedDetail::WholeDocument), QString());
    }

    void itemLostByTheWriter()
    {
        // A last top-level item captioned "[/Menu]" ends the list of items where it stands.
        // (Without commands: with them, the file would name an item it no longer holds.)
        MenuDocument document = readDocument();
        document.items[3].caption = QStringLiteral("[/Menu]");
        document.items[3].commands = MenuItem::placeholderCommands();
        QCOMPARE(menuDifference(document, writtenAndRead(document), ComparedDetail::WrittenTree),
                 QStringLiteral("4 items written, 3 read back"));
    }

    void itemTheWriterDoesNotReach()
    {
        // Only the whole document counts the items the walk leaves out: an edited menu may hold
        // items that its tree shows nowhere.
        MenuDocument document = readDocument();
        document.items[3].siblingOrder = 0;
        QCOMPARE(menuDifference(document, writtenAndRead(document), ComparedDetail::WholeDocument),
                 QStringLiteral("the writer walks 3 of the 4 items"));
        QCOMPARE(menuDifference(document, writtenAndRead(document), ComparedDetail::WrittenTree), QString());
    }

    void captionChanged()
    {
        MenuDocument changed = readDocument();
        changed.items[2].caption = QStringLiteral("Extract");
        QCOMPARE(menuDifference(readDocument(), changed, ComparedDetail::WrittenTree),
                 QStringLiteral("written item 3 (\"Unpack\"): caption read back as \"Extract\""));
    }

    void treeChanged()
    {
        // Unpack moved from Archive's children to the top level.
        MenuDocument changed = readDocument();
        changed.items[0].childCount = 1;
        changed.items[2].parent = -1;
        changed.items[2].siblingOrder = 2;
        changed.items[3].siblingOrder = 3;
        QCOMPARE(menuDifference(readDocument(), changed, ComparedDetail::WrittenTree),
                 QStringLiteral("written item 3 (\"Unpack\"): depth 1 read back as 0"));
    }

    void storedTreeNumbersComparedOnlyForTheWholeDocument()
    {
        // Delete claims a child it does not have, as a pasted record can: the walk finds none.
        MenuDocument claiming = readDocument();
        claiming.items[3].childCount = 2;
        QCOMPARE(menuDifference(claiming, writtenAndRead(claiming), ComparedDetail::WrittenTree), QString());
        QCOMPARE(menuDifference(claiming, writtenAndRead(claiming), ComparedDetail::WholeDocument),
                 QStringLiteral("item 3 (\"Delete\"): tree numbers (parent -1, children 2, order 2) read back as "
                                "(-1, 0, 2)"));
    }

    void commandsChanged()
    {
        MenuDocument changed = readDocument();
        changed.items[3].commands[1].extension = QStringLiteral("txt");
        QCOMPARE(menuDifference(readDocument(), changed, ComparedDetail::WrittenTree),
                 QStringLiteral("written item 4 (\"Delete\"): commands [=del $fs-001$] read back as "
                                "[txt=del $fs-001$]"));
    }

    void linkComparedOnlyForTheWholeDocument()
    {
        // Unpack linked to Pack is written with Pack's commands, which equal its own.
        MenuDocument linked = readDocument();
        linked.items[2].copiesCommands = true;
        linked.items[2].copyKey = QStringLiteral("E1");
        QCOMPARE(menuDifference(linked, readDocument(), ComparedDetail::WrittenTree), QString());
        QCOMPARE(menuDifference(linked, readDocument(), ComparedDetail::WholeDocument),
                 QStringLiteral("item 2 (\"Unpack\"): link (on, E1) read back as (off, -1)"));

        // A link to an item with other commands changes what is written.
        linked.items[2].copyKey = QStringLiteral("E3");
        QVERIFY(menuDifference(linked, readDocument(), ComparedDetail::WrittenTree)
                    .startsWith(QStringLiteral("written item 3 (\"Unpack\"): commands")));
    }

    void arrayOrderComparedOnlyForTheWholeDocument()
    {
        // Delete first in the array, with keys kept: the same tree in another array order.
        const MenuDocument document = readDocument();
        MenuDocument moved;
        moved.items = { document.items[3], document.items[0], document.items[1], document.items[2] };
        moved.items[2].parent = 1;
        moved.items[3].parent = 1;
        moved.lastIndex = 3;
        QCOMPARE(menuDifference(document, moved, ComparedDetail::WrittenTree), QString());
        QCOMPARE(menuDifference(document, moved, ComparedDetail::WholeDocument),
                 QStringLiteral("item 0 (\"Archive\"): key E0 read back as E3"));
    }

    void firstByteDifference()
    {
        QCOMPARE(::firstByteDifference(QByteArray("abcd"), QByteArray("abXd")),
                 QStringLiteral("sizes 4 and 4, first difference at byte 2: 63 64 against 58 64"));
        QCOMPARE(::firstByteDifference(QByteArray("ab"), QByteArray("abc")),
                 QStringLiteral("sizes 2 and 3, first difference at byte 2:  against 63"));
    }
};

QTEST_GUILESS_MAIN(TestMenuComparison)
#include "test_menucomparison.moc"

#include "testmenus.h"

#include "treeview/itemfinder.h"

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

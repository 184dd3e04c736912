#include "cli/menutreelisting.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

MenuItem makeItem(const QString& caption, const QString& key, qint16 parent, qint16 siblingOrder, qint16 childCount = 0)
{
    MenuItem item;
    item.caption = caption;
    item.key = key;
    item.parent = parent;
    item.siblingOrder = siblingOrder;
    item.childCount = childCount;
    return item;
}

void addCommands(MenuItem& item, int count)
{
    for (int i = 0; i < count; ++i) {
        item.commands.append(Command { QString(), QStringLiteral("cmd %1").arg(i) });
    }
}

} // namespace

class TestMenuTreeListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyDocumentListsNothing() { QCOMPARE(menuTreeListing(MenuDocument()), QString()); }

    void linkCountsItsTargetsCommands()
    {
        // The link lies before its target and holds no commands of its own.
        MenuDocument document;
        MenuItem link = makeItem(QStringLiteral("Again"), QStringLiteral("E9"), 2, 2);
        link.copyKey = QStringLiteral("E4");
        link.copiesCommands = true;
        MenuItem target = makeItem(QStringLiteral("Run"), QStringLiteral("E4"), 2, 1);
        addCommands(target, 3);
        MenuItem single = makeItem(QString(), QStringLiteral("E0"), -1, 2);
        addCommands(single, 1);
        document.items = { link, target, makeItem(QStringLiteral("Scripts"), QStringLiteral("E5"), -1, 1, 2), single };

        QCOMPARE(menuTreeListing(document),
                 QStringLiteral("Scripts  [E5]  0 commands\n"
                                "  Run  [E4]  3 commands\n"
                                "  Again  [E9]  3 commands -> E4\n"
                                "  [E0]  1 command\n"));
    }

    void inactiveCopyKeyIsNoLink()
    {
        // A copyKey left from an old link counts only when copiesCommands is set.
        MenuDocument document;
        MenuItem item = makeItem(QStringLiteral("Old"), QStringLiteral("E0"), -1, 1);
        item.copyKey = QStringLiteral("E1");
        addCommands(item, 2);
        MenuItem other = makeItem(QStringLiteral("Other"), QStringLiteral("E1"), -1, 2);
        document.items = { item, other };
        QCOMPARE(menuTreeListing(document), QStringLiteral("Old  [E0]  2 commands\nOther  [E1]  0 commands\n"));
    }

    void aLongCaptionIsListedWhole()
    {
        QString caption;
        while (caption.size() < 50000) {
            caption += QStringLiteral("abc\U0001F600");
        }
        MenuDocument document;
        document.items = { makeItem(caption, QStringLiteral("E0"), -1, 1) };
        QCOMPARE(menuTreeListing(document), caption + QStringLiteral("  [E0]  0 commands\n"));
    }
};

QTEST_GUILESS_MAIN(TestMenuTreeListing)
#include "test_menutreelisting.moc"

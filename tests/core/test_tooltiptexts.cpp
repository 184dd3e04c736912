#include "core/tooltiptexts.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

MenuItem makeItem(const QString& caption, const QString& key, qint16 parent, int commandCount = 0)
{
    MenuItem item;
    item.caption = caption;
    item.key = key;
    item.parent = parent;
    for (int c = 0; c < commandCount; ++c) {
        item.commands.append({ QStringLiteral("zip"), QStringLiteral("pack.exe ") + QString::number(c) });
    }
    return item;
}

/// Archive (E0) > Pack (E1, two commands), Unpack (E2, a link to Pack with one command of its own);
/// Delete (E3, one command, a target chosen once and the link switched off); Notes (E4, nothing).
MenuDocument archiveMenu()
{
    MenuDocument document;
    MenuItem unpack = makeItem(QStringLiteral("Unpack"), QStringLiteral("E2"), 0, 1);
    unpack.copyKey = QStringLiteral("E1");
    unpack.copiesCommands = true;
    MenuItem erase = makeItem(QStringLiteral("Delete"), QStringLiteral("E3"), -1, 1);
    erase.copyKey = QStringLiteral("E1");
    document.items = { makeItem(QStringLiteral("Archive"), QStringLiteral("E0"), -1),
                       makeItem(QStringLiteral("Pack"), QStringLiteral("E1"), 0, 2), unpack, erase,
                       makeItem(QStringLiteral("Notes"), QStringLiteral("E4"), -1) };
    return document;
}

} // namespace

class TestToolTipTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nodeNamesItsPathAndCommandCount()
    {
        const MenuDocument document = archiveMenu();
        QCOMPARE(ToolTipTexts::forNode(document, 1), QStringLiteral("Archive\\Pack\n2 commands"));
        QCOMPARE(ToolTipTexts::forNode(document, 3), QStringLiteral("Delete\n1 command"));
        QCOMPARE(ToolTipTexts::forNode(document, 0), QStringLiteral("Archive\nNo commands"));
        QCOMPARE(ToolTipTexts::forNode(document, 4), QStringLiteral("Notes\nNo commands"));
    }

    void linkNamesTheItemWhoseCommandsItUses()
    {
        MenuDocument document = archiveMenu();
        // A link runs its target's commands, not the one it keeps of its own.
        QCOMPARE(ToolTipTexts::forNode(document, 2),
                 QStringLiteral("Archive\\Unpack\n2 commands\nUses the commands of \"Pack\""));
        document.items[1].caption = QStringLiteral("Pack it");
        QCOMPARE(ToolTipTexts::forNode(document, 2),
                 QStringLiteral("Archive\\Unpack\n2 commands\nUses the commands of \"Pack it\""));
        document.items[2].copyKey = QStringLiteral("E99");
        QCOMPARE(ToolTipTexts::forNode(document, 2),
                 QStringLiteral("Archive\\Unpack\nNo commands\nUses the commands of an item that no longer exists"));
    }

    void nodeOfNoItemHasNoTooltip()
    {
        const MenuDocument document = archiveMenu();
        QVERIFY(ToolTipTexts::forNode(document, -1).isEmpty());
        QVERIFY(ToolTipTexts::forNode(document, 5).isEmpty());
    }

    void deepPathsNameTheirLastLevels()
    {
        MenuDocument document;
        for (int level = 0; level < 20; ++level) {
            document.items.append(makeItem(QStringLiteral("L") + QString::number(level),
                                           QStringLiteral("E") + QString::number(level), qint16(level - 1)));
        }
        QStringList expected = { QStringLiteral("...") };
        for (int level = 20 - ToolTipTexts::maxPathDepth; level < 20; ++level) {
            expected.append(QStringLiteral("L") + QString::number(level));
        }
        QCOMPARE(ToolTipTexts::itemPath(document, 19), expected.join(QLatin1Char('\\')));
        QCOMPARE(ToolTipTexts::itemPath(document, 2), QStringLiteral("L0\\L1\\L2"));
    }

    void brokenParentNumbersEndThePath()
    {
        MenuDocument document = archiveMenu();
        document.items[0].parent = 1; // Archive and Pack each other's parent
        const QString path = ToolTipTexts::itemPath(document, 1);
        QVERIFY(path.endsWith(QStringLiteral("Archive\\Pack")));
        QVERIFY(path.startsWith(QStringLiteral("...")));
        document.items[0].parent = 77;
        QCOMPARE(ToolTipTexts::itemPath(document, 1), QStringLiteral("Archive\\Pack"));
    }

    void linkTargetFieldNamesTheTargetsCaption()
    {
        MenuDocument document = archiveMenu();
        QCOMPARE(ToolTipTexts::forLinkTarget(document, 2), QStringLiteral("Pack"));
        // A target chosen once stays named while the link is off, as the field shows its number.
        QCOMPARE(ToolTipTexts::forLinkTarget(document, 3), QStringLiteral("Pack"));
        QVERIFY(ToolTipTexts::forLinkTarget(document, 1).isEmpty());
        document.items[1].copyKey.clear(); // a new item's empty key: no target either
        QVERIFY(ToolTipTexts::forLinkTarget(document, 1).isEmpty());
        document.items[2].copyKey = QStringLiteral("E99");
        QVERIFY(ToolTipTexts::forLinkTarget(document, 2).isEmpty());
        QVERIFY(ToolTipTexts::forLinkTarget(document, 9).isEmpty());
    }

    void commandLineShowsEachOfItsLinesOnARow()
    {
        QCOMPARE(ToolTipTexts::forCommandLine(QStringLiteral("zip=pack.exe a $fs-001$||echo done")),
                 QStringLiteral("zip=pack.exe a $fs-001$\necho done"));
        QCOMPARE(ToolTipTexts::forCommandLine(QStringLiteral("=del $fs-001$")), QStringLiteral("=del $fs-001$"));
    }

    void longCommandRowsBreakAtBlanks()
    {
        QCOMPARE(ToolTipTexts::forCommandLine(QStringLiteral("=copy one two three"), 10),
                 QStringLiteral("=copy one\ntwo three"));
        // A word longer than a row is cut where the row is full.
        QCOMPARE(ToolTipTexts::forCommandLine(QStringLiteral("=abcdefghijklmnop"), 8),
                 QStringLiteral("=abcdefg\nhijklmno\np"));
        const QString longLine
            = QStringLiteral("=") + QStringList(QList<QString>(60, QStringLiteral("word"))).join(QLatin1Char(' '));
        const QStringList rows = ToolTipTexts::forCommandLine(longLine).split(QLatin1Char('\n'));
        QVERIFY(rows.size() > 1);
        for (const QString& row : rows) {
            QVERIFY(row.size() <= ToolTipTexts::commandRowWidth);
        }
        QCOMPARE(rows.join(QLatin1Char(' ')), longLine);
    }
};

QTEST_GUILESS_MAIN(TestToolTipTexts)
#include "test_tooltiptexts.moc"

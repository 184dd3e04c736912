#include "treeupdatetext.h"

#include "editing/treedisplay.h"

#include "model/menudocument.h"

#include <QTest>

namespace {

/// A saved menu of a plain item, an item with commands and a link to it.
MenuDocument smallMenu(int hideMode)
{
    MenuDocument document;
    for (int i = 0; i < 3; ++i) {
        MenuItem item;
        item.key = QStringLiteral("E%1").arg(i);
        item.caption = QStringLiteral("Caption of ") + item.key;
        item.level = 1;
        item.parent = -1;
        item.siblingOrder = qint16(i + 1);
        document.items.append(item);
    }
    document.items[1].commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad ") });
    document.items[2].copyKey = QStringLiteral("E1");
    document.items[2].copiesCommands = true;
    document.lastIndex = 2;
    document.hideMode = hideMode;
    document.saved = true;
    return document;
}

/// Runs `operation` on `document` with an item selected, as the Hide entries and Refresh List do.
TreeUpdate runOn(MenuDocument& document, TreeUpdate (*operation)(EditContext&))
{
    EditingState editing;
    WindowEditingState window;
    EditContext context { document, SelectedNode::of(QStringLiteral("E1"), SelectedNode::rootKey()), EditArguments {},
                          editing, window };
    return operation(context);
}

TreeUpdate rebuildOnly()
{
    TreeUpdate update;
    update.regenerate();
    return update;
}

void addModeRows()
{
    QTest::addColumn<int>("hideMode");
    QTest::addColumn<int>("expectedMode");
}

} // namespace

class TestTreeDisplay : public QObject
{
    Q_OBJECT

private:
    /// Runs `operation` on the small menu under the row's hide mode and checks the new mode, that
    /// the tree is rebuilt and that nothing but the hide mode changed.
    void verifyModeChange(TreeUpdate (*operation)(EditContext&), const TreeUpdate& expectedUpdate)
    {
        QFETCH(int, hideMode);
        QFETCH(int, expectedMode);
        MenuDocument document = smallMenu(hideMode);
        const TreeUpdate update = runOn(document, operation);
        QCOMPARE(document.hideMode, expectedMode);
        QCOMPARE(update, expectedUpdate);
        document.hideMode = hideMode;
        QVERIFY(document == smallMenu(hideMode));
    }

private Q_SLOTS:
    void refreshRebuildsAndRecoloursUnderTheSameHideMode_data()
    {
        addModeRows();
        for (int mode = 0; mode <= 3; ++mode) {
            QTest::addRow("mode %d", mode) << mode << mode;
        }
    }

    void refreshRebuildsAndRecoloursUnderTheSameHideMode()
    {
        TreeUpdate expected;
        expected.regenerate().recolour();
        verifyModeChange(&refreshList, expected);
    }

    void hideCopiedSwitchesTheHidingOfLinks_data()
    {
        addModeRows();
        QTest::newRow("nothing hidden: hide links") << 0 << 1;
        QTest::newRow("links hidden: show them") << 1 << 0;
        QTest::newRow("items without command hidden: hide links too") << 2 << 3;
        QTest::newRow("both hidden: show links again") << 3 << 2;
    }

    void hideCopiedSwitchesTheHidingOfLinks() { verifyModeChange(&hideCopies, rebuildOnly()); }

    void hideWithoutCommandSwitchesTheHidingOfEmptyItems_data()
    {
        addModeRows();
        QTest::newRow("nothing hidden: hide empty items") << 0 << 2;
        QTest::newRow("links hidden: hide empty items too") << 1 << 3;
        QTest::newRow("empty items hidden: show them") << 2 << 0;
        QTest::newRow("both hidden: show empty items again") << 3 << 1;
    }

    void hideWithoutCommandSwitchesTheHidingOfEmptyItems() { verifyModeChange(&hideWithoutCommand, rebuildOnly()); }

    void hideBothHidesBothKindsOrShowsEverything_data()
    {
        addModeRows();
        QTest::newRow("nothing hidden") << 0 << 3;
        QTest::newRow("links hidden") << 1 << 3;
        QTest::newRow("items without command hidden") << 2 << 3;
        QTest::newRow("both hidden: show everything") << 3 << 0;
    }

    void hideBothHidesBothKindsOrShowsEverything() { verifyModeChange(&hideBoth, rebuildOnly()); }

    void hideEntriesUndoThemselves()
    {
        for (auto operation : { &hideCopies, &hideWithoutCommand, &hideBoth }) {
            for (int mode = 0; mode <= 3; ++mode) {
                MenuDocument document = smallMenu(mode);
                runOn(document, operation);
                QVERIFY(document.hideMode != mode);
                runOn(document, operation);
                if (operation != &hideBoth || mode == 0 || mode == 3) {
                    QCOMPARE(document.hideMode, mode);
                } else {
                    // "... both" from a single hidden kind hides both, then shows everything.
                    QCOMPARE(document.hideMode, 0);
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestTreeDisplay)
#include "test_treedisplay.moc"

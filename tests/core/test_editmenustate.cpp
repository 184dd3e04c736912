#include "core/editmenustate.h"

#include <QTest>

namespace {

EditMenuState::Input input(bool editorActive, bool itemSelected, bool clipboardFilled, bool choosingLinkTarget)
{
    EditMenuState::Input result;
    result.editorActive = editorActive;
    result.itemSelected = itemSelected;
    result.clipboardFilled = clipboardFilled;
    result.choosingLinkTarget = choosingLinkTarget;
    return result;
}

} // namespace

class TestEditMenuState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesFollowWhatTheActiveEditorShows_data()
    {
        QTest::addColumn<bool>("editorActive");
        QTest::addColumn<bool>("itemSelected");
        QTest::addColumn<bool>("clipboardFilled");
        QTest::addColumn<bool>("menus");
        QTest::addColumn<bool>("itemEntries");
        QTest::addColumn<bool>("paste");
        QTest::addColumn<bool>("documentEntries");
        QTest::addColumn<bool>("selectCopy");

        // Inputs (editor active, item selected, clipboard filled), then the five decisions.
        QTest::newRow("no editor") << false << false << false << true << false << false << false << false;
        QTest::newRow("no editor, clipboard filled")
            << false << false << true << true << false << true << false << false;
        QTest::newRow("no editor, stale item") << false << true << false << true << false << false << false << false;
        QTest::newRow("no editor, stale item, clipboard")
            << false << true << true << true << false << true << false << false;
        QTest::newRow("editor, root selected") << true << false << false << true << false << false << true << false;
        QTest::newRow("editor, root selected, clipboard")
            << true << false << true << true << false << true << true << false;
        QTest::newRow("editor, item selected") << true << true << false << true << true << false << true << true;
        QTest::newRow("editor, item selected, clipboard")
            << true << true << true << true << true << true << true << true;
    }

    void entriesFollowWhatTheActiveEditorShows()
    {
        QFETCH(bool, editorActive);
        QFETCH(bool, itemSelected);
        QFETCH(bool, clipboardFilled);
        QFETCH(bool, menus);
        QFETCH(bool, itemEntries);
        QFETCH(bool, paste);
        QFETCH(bool, documentEntries);
        QFETCH(bool, selectCopy);
        const EditMenuState state = EditMenuState::decide(input(editorActive, itemSelected, clipboardFilled, false));
        QCOMPARE(state.menus, menus);
        QCOMPARE(state.itemEntries, itemEntries);
        QCOMPARE(state.paste, paste);
        QCOMPARE(state.documentEntries, documentEntries);
        QCOMPARE(state.selectCopy, selectCopy);
    }

    void newSubItemAndTheNestingEntriesFollowTheSelectedNode_data()
    {
        QTest::addColumn<bool>("editorActive");
        QTest::addColumn<bool>("itemSelected");
        QTest::addColumn<bool>("rootSelected");
        QTest::addColumn<bool>("newSubItem");
        QTest::addColumn<bool>("nestingEntries");

        QTest::newRow("no editor") << false << false << false << false << false;
        QTest::newRow("no editor, stale item") << false << true << false << false << false;
        QTest::newRow("no editor, stale root") << false << false << true << false << false;
        QTest::newRow("editor, no node") << true << false << false << false << false;
        // Under the root a new item is a top-level one; the root itself moves nowhere.
        QTest::newRow("editor, root selected") << true << false << true << true << false;
        QTest::newRow("editor, item selected") << true << true << false << true << true;
    }

    void newSubItemAndTheNestingEntriesFollowTheSelectedNode()
    {
        QFETCH(bool, editorActive);
        QFETCH(bool, itemSelected);
        QFETCH(bool, rootSelected);
        QFETCH(bool, newSubItem);
        QFETCH(bool, nestingEntries);
        for (const bool clipboardFilled : { false, true }) {
            EditMenuState::Input in = input(editorActive, itemSelected, clipboardFilled, false);
            in.rootSelected = rootSelected;
            in.editorOpen = editorActive;
            const EditMenuState state = EditMenuState::decide(in);
            QCOMPARE(state.newSubItem, newSubItem);
            QCOMPARE(state.nestingEntries, nestingEntries);
            // Moving into the item above and out of the parent go with the other item entries.
            QCOMPARE(state.nestingEntries, state.itemEntries);
            // New Sub-item is on wherever New Item is, and on the root besides.
            QVERIFY(!state.itemEntries || state.newSubItem);
        }
    }

    void choosingALinkTargetTurnsEveryMenuOff()
    {
        EditMenuState allOff;
        allOff.menus = false;
        allOff.itemEntries = false;
        allOff.paste = false;
        allOff.documentEntries = false;
        allOff.selectCopy = false;
        for (int bits = 0; bits < 32; ++bits) {
            EditMenuState::Input choosing = input((bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, true);
            choosing.editorOpen = (bits & 8) != 0;
            choosing.rootSelected = (bits & 16) != 0;
            const EditMenuState state = EditMenuState::decide(choosing);
            QVERIFY2(state == allOff, qPrintable(QStringLiteral("inputs %1").arg(bits)));
        }
    }

    void pasteStaysOnWithoutAnEditorOnceTheClipboardIsFilled()
    {
        const EditMenuState state = EditMenuState::decide(input(false, false, true, false));
        QVERIFY(state.menus);
        QVERIFY(state.paste);
        QVERIFY(!state.documentEntries);
        QVERIFY(!state.itemEntries);
    }

    void fileAndWindowEntriesNeedAnEditorWindow_data()
    {
        QTest::addColumn<bool>("editorActive");
        QTest::addColumn<bool>("editorOpen");
        QTest::addColumn<bool>("windowEntries");
        QTest::addColumn<bool>("arrangeEntries");

        QTest::newRow("no window") << false << false << false << false;
        // Between the active window closing and the next one being activated.
        QTest::newRow("windows open, none active") << false << true << false << true;
        QTest::newRow("active window") << true << true << true << true;
        QTest::newRow("active window not listed yet") << true << false << true << true;
    }

    void fileAndWindowEntriesNeedAnEditorWindow()
    {
        QFETCH(bool, editorActive);
        QFETCH(bool, editorOpen);
        QFETCH(bool, windowEntries);
        QFETCH(bool, arrangeEntries);
        EditMenuState::Input in = input(editorActive, true, true, false);
        in.editorOpen = editorOpen;
        const EditMenuState state = EditMenuState::decide(in);
        QVERIFY(state.menus);
        QCOMPARE(state.windowEntries, windowEntries);
        QCOMPARE(state.arrangeEntries, arrangeEntries);
        // Save as and Close act on the document the Edit entries act on.
        QCOMPARE(state.windowEntries, state.documentEntries);
    }

    void nothingOpenLeavesOnlyTheMenusOn()
    {
        const EditMenuState state = EditMenuState::decide(EditMenuState::Input {});
        QVERIFY(state.menus);
        QVERIFY(!state.itemEntries);
        QVERIFY(!state.newSubItem);
        QVERIFY(!state.nestingEntries);
        QVERIFY(!state.paste);
        QVERIFY(!state.documentEntries);
        QVERIFY(!state.selectCopy);
        QVERIFY(!state.windowEntries);
        QVERIFY(!state.arrangeEntries);
    }
};

QTEST_GUILESS_MAIN(TestEditMenuState)
#include "test_editmenustate.moc"

#include "guisandbox.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "app/problemspanel.h"
#include "core/menuproblemcheck.h"

#include <QAction>
#include <QLabel>
#include <QMdiArea>
#include <QTest>
#include <QTreeWidget>

using TreeHelpers::clickNode;
using TreeHelpers::texts;
using TreeHelpers::typeLabel;

/// The Problems panel: shown from the View menu, following the active menu through edits, Undo and
/// window switches, and showing an item when its row is double-clicked.
class TestProblemsPanel : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    ProblemsPanel& panel() { return window().problemsPanel(); }
    ItemTree& tree(qint16 index) { return *window().editor(index)->tree(); }
    QString summary() { return panel().findChild<QLabel*>(QStringLiteral("lblProblems"))->text(); }
    QStringList rows()
    {
        QStringList lines;
        QTreeWidget* list = panel().list();
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            const QTreeWidgetItem* item = list->topLevelItem(row);
            lines.append(item->text(0) + QLatin1Char('|') + item->text(1) + QLatin1Char('|') + item->text(3));
        }
        return lines;
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        QVERIFY(sandbox().showWindow());
    }
    void cleanup() { m_sandbox.reset(); }

    void theViewMenuShowsThePanel()
    {
        QAction* entry = sandbox().action(QStringLiteral("mnuProblems"));
        QVERIFY(entry);
        QVERIFY(entry->isCheckable());
        QVERIFY(!panel().isVisible());
        entry->trigger();
        QVERIFY(panel().isVisible());
        QCOMPARE(panel().objectName(), QStringLiteral("dockProblems"));
        QCOMPARE(summary(), QStringLiteral("No menu is open."));
        entry->trigger();
        QVERIFY(!panel().isVisible());
    }

    void thePanelListsTheActiveMenusProblemsAndFollowsEdits()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "Archive", "···Pack", "Pack2" }),
                                                texts({ "0002:zip=pack $fs-01$", "0003:=" }));
        sandbox().trigger(QStringLiteral("mnuProblems"));
        QCOMPARE(rows(),
                 texts({ "2  Archive > Pack|1|unknown variable \"$fs-01$\"", "3  Pack2|1|the command is empty" }));
        QCOMPARE(summary(), QStringLiteral("2 problems"));
        // An edit: the same caption twice among the top-level items.
        clickNode(tree(index), QStringLiteral("E2"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        typeLabel(tree(index), QStringLiteral("Archive"));
        QCOMPARE(document(index).items.at(2).caption, QStringLiteral("Archive"));
        QCOMPARE(rows().size(), 3);
        QVERIFY2(rows().join(QLatin1Char(';')).contains(QStringLiteral("same caption")),
                 qPrintable(rows().join(QLatin1Char(';'))));
        // Undo takes it back.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(rows().size(), 2);
    }

    void thePanelFollowsTheActiveWindowAndClearsWhenNoneIsLeft()
    {
        sandbox().trigger(QStringLiteral("mnuProblems"));
        const qint16 first = sandbox().openMenu(QStringLiteral("one.ini"), texts({ "A" }), texts({ "0001:=$x$" }));
        QCOMPARE(rows().size(), 1);
        const qint16 second = sandbox().openMenu(QStringLiteral("two.ini"), texts({ "B" }), texts({ "0001:=ok" }));
        QCOMPARE(window().activeDocumentIndex(), second);
        QCOMPARE(rows(), QStringList());
        QCOMPARE(summary(), QStringLiteral("No problems found."));
        window().findChild<QMdiArea*>()->activatePreviousSubWindow();
        QCOMPARE(window().activeDocumentIndex(), first);
        QCOMPARE(rows().size(), 1);
        sandbox().prompts().answers = { UserPrompts::Answer::No, UserPrompts::Answer::No };
        QVERIFY(window().editor(first)->closeWindow());
        QVERIFY(window().editor(second)->closeWindow());
        QCOMPARE(rows(), QStringList());
        QCOMPARE(summary(), QStringLiteral("No menu is open."));
    }

    void aHiddenPanelChecksWhenItIsShown()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }), texts({ "0001:=$x$" }));
        QCOMPARE(panel().problems().size(), 0);
        sandbox().trigger(QStringLiteral("mnuProblems"));
        QCOMPARE(panel().problems().size(), 1);
    }

    void aDoubleClickShowsTheItem()
    {
        const qint16 index
            = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A", "B", "···C" }), texts({ "0003:=$x$" }));
        sandbox().trigger(QStringLiteral("mnuProblems"));
        QCOMPARE(tree(index).keyOf(tree(index).currentIndex()), QStringLiteral("E0"));
        QTreeWidget* list = panel().list();
        const QRect row = list->visualItemRect(list->topLevelItem(0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
        QCOMPARE(tree(index).keyOf(tree(index).currentIndex()), QStringLiteral("E2"));
        QCOMPARE(window().findChild<QLabel*>(QStringLiteral("pnl2"))->text(), QStringLiteral("2"));
    }

    void theSaveCheckIsPartOfIt()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        sandbox().trigger(QStringLiteral("mnuProblems"));
        clickNode(tree(index), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        typeLabel(tree(index), QStringLiteral("[/menu]"));
        QCOMPARE(panel().problems().size(), 1);
        QCOMPARE(panel().problems().at(0).kind, MenuProblem::Kind::UnsavableValue);
    }

private:
    const MenuDocument& document(qint16 index) { return window().state().document(index); }
};

QTEST_MAIN(TestProblemsPanel)
#include "test_problemspanel.moc"

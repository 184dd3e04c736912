#include "sessionfixture.h"

#include "editing/copylinks.h"
#include "editing/documentinvariants.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/linkediting.h"
#include "editing/randommenu.h"
#include "model/menudocument.h"
#include "treeview/treeplan.h"

#include <QHash>
#include <QRandomGenerator>
#include <QTest>

namespace {

const char* const captions[] = { "", "x", "New Item 1", "Ünïcode", " padded " };

/// A random node of a tree freshly built from the document, now and then the root.
SelectedNode randomNode(QRandomGenerator& random, const MenuDocument& document)
{
    const QList<PlannedNode> plan = planTree(document, 0);
    if (plan.isEmpty() || random.bounded(12) == 0) {
        return SelectedNode { SelectedNode::rootKey(), QString() };
    }
    const PlannedNode& node = plan.at(random.bounded(int(plan.size())));
    return SelectedNode { node.key, node.parentKey };
}

} // namespace

/// Random menus and random sequences of editing operations through the editing session, each
/// undone and redone: every step keeps the document's invariants, Undo gives back exactly the
/// document before it and Redo the one after it.
class TestEditingProperties : public QObject
{
    Q_OBJECT

private:
    /// Runs one random operation in `f` and returns its name.
    static QString runRandomOperation(QRandomGenerator& random, SessionFixture& f, qint16 index)
    {
        f.view.selected = randomNode(random, f.document());
        f.state.window(index).nodeClicked = true;
        const int choice = random.bounded(8);
        switch (choice) {
        case 0:
        case 1: {
            const bool ran = f.session.run(EditOperations::newItem);
            const QString created = ran ? f.document().items.last().key : QString();
            if (ran) {
                const SelectedNode node { created, QString() };
                f.session.runOn(index, node, EditOperations::beginLabelEdit);
                if (random.bounded(3) != 0) {
                    EditArguments text;
                    text.text = QString::fromUtf8(captions[random.bounded(5)]);
                    f.session.runOn(index, node, EditOperations::storeLabelEdit, text);
                }
            }
            return QStringLiteral("new-item");
        }
        case 2: {
            if (f.session.run(EditOperations::rename)) {
                f.session.runOn(index, f.view.selected, EditOperations::beginLabelEdit);
                EditArguments text;
                text.text = QString::fromUtf8(captions[random.bounded(5)]);
                f.session.runOn(index, f.view.selected, EditOperations::storeLabelEdit, text);
            }
            return QStringLiteral("rename");
        }
        case 3:
            f.session.run(EditOperations::deleteItem);
            return QStringLiteral("delete");
        case 4: {
            EditArguments arguments;
            arguments.sourceKey = f.view.selected.key;
            arguments.targetKey = randomNode(random, f.document()).key;
            if (!SelectedNode { arguments.sourceKey, QString() }.isItem()
                || !SelectedNode { arguments.targetKey, QString() }.isItem()) {
                return QStringLiteral("link (nothing to link)");
            }
            f.state.window(index).linkTargetChoice = true;
            f.session.run(EditOperations::chooseLinkTarget, arguments);
            f.state.window(index).linkTargetChoice = false;
            return QStringLiteral("link");
        }
        case 5: {
            EditArguments arguments;
            arguments.checked = random.bounded(2) == 0;
            f.session.run(EditOperations::switchLink, arguments);
            return arguments.checked ? QStringLiteral("link-on") : QStringLiteral("link-off");
        }
        case 6:
            f.session.run(EditOperations::lookForCopyCommand);
            return QStringLiteral("look-for-links");
        default:
            f.session.run(EditOperations::uncheckAllCopyCommand);
            return QStringLiteral("uncheck-links");
        }
    }

private Q_SLOTS:
    void everyStepKeepsTheInvariantsAndUndoesExactly()
    {
        QRandomGenerator random(20261122);
        QHash<QString, int> undone;
        for (int round = 0; round < 250; ++round) {
            SessionFixture f;
            MenuDocument start = RandomMenu::generate(random, 1 + random.bounded(24));
            start.hideMode = 0;
            normalizeCopyLinks(start);
            QVERIFY2(DocumentInvariants::problem(start).isEmpty(), qPrintable(DocumentInvariants::problem(start)));
            const qint16 index = f.open(start);

            for (int step = 0; step < 30; ++step) {
                const MenuDocument before = f.document();
                const qsizetype recorded = f.recordedDocuments.size();
                const QString operation = runRandomOperation(random, f, index);
                const QString where = QStringLiteral("round %1 step %2 (%3): ").arg(round).arg(step).arg(operation);
                QVERIFY2(f.criticalMessages.isEmpty(), qPrintable(where + f.criticalMessages.join(QLatin1Char('|'))));
                const QString problem = DocumentInvariants::problem(f.document());
                QVERIFY2(problem.isEmpty(), qPrintable(where + problem));
                if (f.recordedDocuments.size() == recorded) {
                    continue; // nothing recorded, nothing to undo
                }
                QCOMPARE(f.recordedDocuments.size(), recorded + 1);
                ++undone[operation];
                const MenuDocument after = f.document();
                f.controller.mnuUndo_Click();
                QVERIFY2(
                    RandomMenu::firstDifference(f.document(), before).isEmpty(),
                    qPrintable(where + QStringLiteral("undo: ") + RandomMenu::firstDifference(f.document(), before)));
                f.controller.mnuRedo_Click();
                QVERIFY2(
                    RandomMenu::firstDifference(f.document(), after).isEmpty(),
                    qPrintable(where + QStringLiteral("redo: ") + RandomMenu::firstDifference(f.document(), after)));
            }
        }
        // Every operation that records was undone many times over.
        for (const QString& operation : { QStringLiteral("new-item"), QStringLiteral("rename"),
                                          QStringLiteral("delete"), QStringLiteral("link") }) {
            QVERIFY2(undone.value(operation) > 100, qPrintable(operation));
        }
        QCOMPARE(undone.value(QStringLiteral("look-for-links")), 0);
    }
};

QTEST_GUILESS_MAIN(TestEditingProperties)
#include "test_editingproperties.moc"

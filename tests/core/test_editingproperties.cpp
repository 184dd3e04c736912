#include "randomnode.h"
#include "sessionfixture.h"

#include "commands/commandediting.h"
#include "editing/copylinks.h"
#include "editing/documentinvariants.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "editing/linkediting.h"
#include "editing/randommenu.h"
#include "editing/subtreecopy.h"
#include "model/menudocument.h"
#include "treeview/treeplan.h"

#include <QHash>
#include <QRandomGenerator>
#include <QTest>

namespace {

const char* const captions[] = { "", "x", "New Item 1", "Ünïcode", " padded " };
const char* const commandTexts[]
    = { "", "avi", "del $fs-001$||copy x", "$exepath$\\Tolvexer\\Tolvexer.exe 001=a", "ü" };

} // namespace

/// Random menus and random sequences of editing operations through the editing session, each
/// undone and redone: every step keeps the document's invariants, Undo gives back exactly the
/// document before it and Redo the one after it. Paste is the exception to the invariants: it takes
/// over the copied record's tree numbers as they were; it is undone, checked, and left undone.
class TestEditingProperties : public QObject
{
    Q_OBJECT

private:
    /// Runs one random operation in `f` and returns its name.
    static QString runRandomOperation(QRandomGenerator& random, SessionFixture& f, qint16 index)
    {
        f.view.selected = randomNode(random, f.document());
        f.state.window(index).nodeClicked = true;
        f.state.editing().copyCommandDup = random.bounded(2) == 0;
        const int choice = random.bounded(25);
        switch (choice) {
        case 8:
            f.session.run(EditOperations::copy);
            return QStringLiteral("copy");
        case 9:
            f.session.run(EditOperations::cut);
            return QStringLiteral("cut");
        case 10:
            f.session.run(EditOperations::paste);
            return QStringLiteral("paste");
        case 11:
            f.session.run(EditOperations::duplicate);
            return QStringLiteral("duplicate");
        case 12:
            f.session.run(EditOperations::moveUp);
            return QStringLiteral("move-up");
        case 13:
            f.session.run(EditOperations::moveDown);
            return QStringLiteral("move-down");
        case 14:
        case 15: {
            const SelectedNode target = randomNode(random, f.document());
            if (!f.view.selected.isItem() || target.key == f.view.selected.key
                || (target.isRoot() && random.bounded(2) == 0)) {
                return QStringLiteral("drop (nothing to drop)");
            }
            DropRequest request;
            request.draggedKey = f.view.selected.key;
            request.targetKey = target.key;
            request.targetParentKey = target.parentKey;
            request.place = target.isRoot() || random.bounded(2) == 0 ? DropPlace::Child : DropPlace::Next;
            request.copy = random.bounded(2) == 0;
            request.copyCommandDup = f.state.editing().copyCommandDup;
            f.session.runDrop(index, index, request);
            return request.copy ? QStringLiteral("drop copy") : QStringLiteral("drop move");
        }
        case 0:
        case 1: {
            const bool ran = f.session.run(EditOperations::newItem);
            const QString created = ran ? f.document().items.last().key : QString();
            if (ran) {
                const SelectedNode node = SelectedNode::of(created);
                f.session.runOn(index, node, EditOperations::beginLabelEdit);
                if (random.bounded(3) != 0) {
                    EditArguments text;
                    text.text = QString::fromUtf8(captions[random.bounded(5)]);
                    f.session.runOn(index, node, EditOperations::storeLabelEdit, text);
                }
            }
            return QStringLiteral("new-item");
        }
        case 21:
        case 22: {
            // With the root selected too: the new item is then a top-level one.
            const bool ran = f.session.run(EditOperations::newSubItem);
            if (ran) {
                const SelectedNode node = SelectedNode::of(f.document().items.last().key);
                f.session.runOn(index, node, EditOperations::beginLabelEdit);
                if (random.bounded(3) != 0) {
                    EditArguments text;
                    text.text = QString::fromUtf8(captions[random.bounded(5)]);
                    f.session.runOn(index, node, EditOperations::storeLabelEdit, text);
                }
            }
            return QStringLiteral("new-sub-item");
        }
        case 23:
            f.session.run(EditOperations::moveIntoItemAbove);
            return QStringLiteral("indent");
        case 24:
            f.session.run(EditOperations::moveOutOfParent);
            return QStringLiteral("outdent");
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
            if (!SelectedNode::of(arguments.sourceKey, QString()).isItem()
                || !SelectedNode::of(arguments.targetKey, QString()).isItem()) {
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
        case 16:
        case 17: {
            // Add (slot 0) or edit one of the item's commands, or a slot past them (refused).
            EditArguments arguments;
            arguments.slot = random.bounded(2) == 0 ? 0 : random.bounded(1, 4);
            arguments.extension = QString::fromUtf8(commandTexts[random.bounded(5)]);
            arguments.text = QString::fromUtf8(commandTexts[random.bounded(5)]);
            f.session.run(EditOperations::storeCommand, arguments);
            return QStringLiteral("store-command");
        }
        case 18: {
            EditArguments arguments;
            arguments.slot = random.bounded(0, 4);
            f.session.run(EditOperations::removeCommand, arguments);
            return QStringLiteral("remove-command");
        }
        case 19:
            f.session.run(EditOperations::clearCommands);
            return QStringLiteral("clear-commands");
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
                QVERIFY2(problem.isEmpty() || operation == QLatin1String("paste"), qPrintable(where + problem));
                if (f.recordedDocuments.size() == recorded) {
                    // Without an item above or a parent to leave, nothing happens at all.
                    if (operation == QLatin1String("indent") || operation == QLatin1String("outdent")) {
                        QVERIFY2(RandomMenu::firstDifference(f.document(), before).isEmpty(),
                                 qPrintable(where + RandomMenu::firstDifference(f.document(), before)));
                    }
                    continue; // nothing recorded, nothing to undo
                }
                // Cut records twice: its own step and Delete's.
                const qsizetype steps = f.recordedDocuments.size() - recorded;
                QCOMPARE(steps, operation == QLatin1String("cut") ? 2 : 1);
                ++undone[operation];
                const MenuDocument after = f.document();
                for (qsizetype undo = 0; undo < steps; ++undo) {
                    f.controller.mnuUndo_Click();
                }
                if (operation == QLatin1String("store-command")) {
                    // The command editor records the menu after the command is written: Undo gives
                    // that state back, and the step before it stays as it was.
                    QVERIFY2(RandomMenu::firstDifference(f.document(), after).isEmpty(),
                             qPrintable(where + QStringLiteral("undo: ")
                                        + RandomMenu::firstDifference(f.document(), after)));
                    continue;
                }
                QVERIFY2(
                    RandomMenu::firstDifference(f.document(), before).isEmpty(),
                    qPrintable(where + QStringLiteral("undo: ") + RandomMenu::firstDifference(f.document(), before)));
                if (operation == QLatin1String("paste")) {
                    // Paste takes the copied record's parent and child count as they were, which may
                    // leave the tree numbers as no other operation would: the sequence goes on from the
                    // document before it.
                    continue;
                }
                for (qsizetype redo = 0; redo < steps; ++redo) {
                    f.controller.mnuRedo_Click();
                }
                QVERIFY2(
                    RandomMenu::firstDifference(f.document(), after).isEmpty(),
                    qPrintable(where + QStringLiteral("redo: ") + RandomMenu::firstDifference(f.document(), after)));
            }
        }
        // Every operation that records was undone many times over.
        for (const QString& operation :
             { QStringLiteral("new-item"), QStringLiteral("rename"), QStringLiteral("delete"), QStringLiteral("link"),
               QStringLiteral("cut"), QStringLiteral("paste"), QStringLiteral("duplicate"), QStringLiteral("move-up"),
               QStringLiteral("move-down"), QStringLiteral("drop copy"), QStringLiteral("drop move"),
               QStringLiteral("store-command"), QStringLiteral("remove-command"), QStringLiteral("clear-commands"),
               QStringLiteral("new-sub-item"), QStringLiteral("indent"), QStringLiteral("outdent") }) {
            QVERIFY2(undone.value(operation) > 100, qPrintable(operation));
        }
        QCOMPARE(undone.value(QStringLiteral("look-for-links")), 0);
        QCOMPARE(undone.value(QStringLiteral("copy")), 0);
    }
};

QTEST_GUILESS_MAIN(TestEditingProperties)
#include "test_editingproperties.moc"

#include "editing/copylinks.h"
#include "editing/itemdeletion.h"
#include "editing/randommenu.h"
#include "editing/textreplacement.h"
#include "history/documenthistory.h"
#include "model/itemrangecheck.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

MenuDocument stateNamed(const QString& caption)
{
    MenuDocument state;
    MenuItem item;
    item.caption = caption;
    item.key = QStringLiteral("E0");
    state.items.append(item);
    return state;
}

QString captionOf(const MenuDocument& state)
{
    return state.items.isEmpty() ? QString() : state.items.first().caption;
}

} // namespace

class TestDocumentHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty()
    {
        const DocumentHistory history;
        QCOMPARE(history.undoCount(), qint16(0));
        QCOMPARE(history.redoCount(), qint16(0));
        QCOMPARE(history.undoState(15), MenuDocument {});
    }

    void slotsOutsideTheSixteenAreSubscriptErrors()
    {
        const DocumentHistory history;
        try {
            history.undoState(16);
            QFAIL("slot 16 was accepted");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 9);
        }
        QVERIFY_THROWS_EXCEPTION(RunTimeError, history.redoState(-1));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, history.redoState(16));
    }

    void takingFromAnEmptyStackIsASubscriptError()
    {
        DocumentHistory history;
        QVERIFY_THROWS_EXCEPTION(RunTimeError, history.takeUndoState());
        QVERIFY_THROWS_EXCEPTION(RunTimeError, history.takeRedoState());
        QCOMPARE(history.undoCount(), qint16(0));
    }

    void statesAreTakenNewestFirst()
    {
        DocumentHistory history;
        history.pushUndoState(stateNamed(QStringLiteral("a")));
        history.pushUndoState(stateNamed(QStringLiteral("b")));
        QCOMPARE(history.undoCount(), qint16(2));
        QCOMPARE(captionOf(history.undoState(0)), QStringLiteral("a"));
        QCOMPARE(captionOf(history.undoState(1)), QStringLiteral("b"));

        QCOMPARE(captionOf(history.takeUndoState()), QStringLiteral("b"));
        QCOMPARE(history.undoCount(), qint16(1));
        // The taken slot is released, not kept as a second copy.
        QCOMPARE(history.undoState(1), MenuDocument {});
        QCOMPARE(captionOf(history.takeUndoState()), QStringLiteral("a"));
        QCOMPARE(history.undoCount(), qint16(0));
    }

    void aFullStackDropsTheOldestAndShiftsTheRestDown()
    {
        DocumentHistory history;
        for (int i = 0; i < 17; ++i) {
            history.pushUndoState(stateNamed(QString::number(i)));
        }
        QCOMPARE(history.undoCount(), DocumentHistory::MaxStates);
        // States 0 and 1 were dropped; 2..16 fill slots 0..14 and slot 15 is never used.
        for (int slot = 0; slot < 15; ++slot) {
            QCOMPARE(captionOf(history.undoState(slot)), QString::number(slot + 2));
        }
        QCOMPARE(history.undoState(15), MenuDocument {});
    }

    void theRedoStackIsBoundedTheSameWay()
    {
        DocumentHistory history;
        for (int i = 0; i < 16; ++i) {
            history.pushRedoState(stateNamed(QString::number(i)));
        }
        QCOMPARE(history.redoCount(), qint16(15));
        QCOMPARE(captionOf(history.redoState(0)), QStringLiteral("1"));
        QCOMPARE(captionOf(history.redoState(14)), QStringLiteral("15"));
        QCOMPARE(history.undoCount(), qint16(0));
    }

    void clearRedoDiscardsOnlyTheRedoStates()
    {
        DocumentHistory history;
        history.pushUndoState(stateNamed(QStringLiteral("u")));
        history.pushRedoState(stateNamed(QStringLiteral("r1")));
        history.pushRedoState(stateNamed(QStringLiteral("r2")));
        history.clearRedo();
        QCOMPARE(history.redoCount(), qint16(0));
        QCOMPARE(history.redoState(0), MenuDocument {});
        QCOMPARE(history.redoState(1), MenuDocument {});
        QCOMPARE(history.undoCount(), qint16(1));
        QCOMPARE(captionOf(history.undoState(0)), QStringLiteral("u"));
    }

    void aStateIsAValueThatLaterEditsDoNotReach()
    {
        DocumentHistory history;
        MenuDocument document = stateNamed(QStringLiteral("before"));
        // A caption built at run time, so it is a shared text and not a literal.
        document.items.append(stateNamed(QStringLiteral("Item %1").arg(2)).items.first());
        history.pushUndoState(document);
        // Unchanged, the state shares the document's item array instead of copying it.
        QVERIFY(history.undoState(0).items.isSharedWith(document.items));

        document.items[0].caption = QStringLiteral("after");
        document.hideMode = 2;
        QCOMPARE(captionOf(history.undoState(0)), QStringLiteral("before"));
        QCOMPARE(history.undoState(0).hideMode, 0);
        QVERIFY(!history.undoState(0).items.isSharedWith(document.items));
        // The untouched item still shares its caption text with the state.
        QVERIFY(history.undoState(0).items[1].caption.isSharedWith(document.items[1].caption));
    }

    void anUndoneStateTellsWhichItemsMayDiffer()
    {
        for (quint32 seed = 1; seed <= 30; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 300 + int(random.bounded(900)));
            normalizeCopyLinks(document);
            DocumentHistory history;
            for (int step = 0; step < 40; ++step) {
                if (history.undoCount() > 0 && random.bounded(3) == 0) {
                    // Undo: the document before and the state it goes back to are compared.
                    const MenuDocument before = document;
                    history.pushRedoState(document);
                    document = history.takeUndoState();
                    const QList<ItemRange> ranges = document.items.rangesDifferentFrom(before.items);
                    const QString problem = rangeProblem(document.items, before.items, ranges);
                    QVERIFY2(problem.isEmpty(),
                             qPrintable(QStringLiteral("seed %1 step %2: %3").arg(seed).arg(step).arg(problem)));
                    continue;
                }
                history.pushUndoState(document);
                const int count = int(document.items.size());
                const QString key = document.items.at(int(random.bounded(count))).key;
                bool renamed = false;
                try {
                    switch (random.bounded(4)) {
                    case 0:
                        removeItemBranch(document, key);
                        break;
                    case 1:
                        replaceInAll(document, QStringLiteral("a"), QStringLiteral("b"));
                        break;
                    case 2:
                        normalizeCopyLinks(document);
                        break;
                    default:
                        document.items[int(random.bounded(count))].caption = QStringLiteral("Renamed %1").arg(step);
                        renamed = true;
                        break;
                    }
                } catch (const RunTimeError&) {
                    // The error path: back to the state before the edit.
                    document = history.takeUndoState();
                }
                const MenuDocument& recorded = history.undoState(history.undoCount() - 1);
                const QList<ItemRange> ranges = document.items.rangesDifferentFrom(recorded.items);
                const QString problem = rangeProblem(document.items, recorded.items, ranges);
                QVERIFY2(problem.isEmpty(),
                         qPrintable(QStringLiteral("seed %1 step %2: %3").arg(seed).arg(step).arg(problem)));
                if (renamed) {
                    // A rename leaves everything but the chunk of its item shared.
                    QCOMPARE(ranges.size(), qsizetype(1));
                    QVERIFY(ranges.first().count() <= MenuItemArray::ChunkSize);
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestDocumentHistory)
#include "test_documenthistory.moc"

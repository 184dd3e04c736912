#include "literaltreeplan.h"
#include "testmenus.h"
#include "treeview/treeplan.h"

#include "model/menudocument.h"

#include <QTest>

using TestMenus::item;
using TestMenus::linked;

namespace {

QStringList keysOf(const QList<PlannedNode>& plan)
{
    QStringList keys;
    for (const PlannedNode& node : plan) {
        keys.append(node.key);
    }
    return keys;
}

QString describe(const QList<PlannedNode>& plan)
{
    QStringList parts;
    for (const PlannedNode& node : plan) {
        parts.append(QStringLiteral("%1<%2#%3").arg(node.key, node.parentKey).arg(node.itemIndex));
    }
    return parts.join(QLatin1Char(' '));
}

} // namespace

class TestTreePlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyMenuPlansNothing()
    {
        const MenuDocument document;
        QVERIFY(planTree(document, 0).isEmpty());
    }

    void nodesFollowSiblingOrderNotArrayOrder()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 2), item(QStringLiteral("E1"), 2, 0, 2),
                           item(QStringLiteral("E2"), -1, 2, 1), item(QStringLiteral("E3"), 2, 0, 1) };
        const QList<PlannedNode> plan = planTree(document, 0);
        QCOMPARE(
            keysOf(plan),
            QStringList({ QStringLiteral("E2"), QStringLiteral("E3"), QStringLiteral("E1"), QStringLiteral("E0") }));
        QCOMPARE(plan.at(0).parentKey, QStringLiteral("Root"));
        QCOMPARE(plan.at(1).parentKey, QStringLiteral("E2"));
        QCOMPARE(plan.at(2).parentKey, QStringLiteral("E2"));
        QCOMPARE(plan.at(3).parentKey, QStringLiteral("Root"));
        QCOMPARE(plan.at(1).itemIndex, qint16(3));
        QCOMPARE(plan.at(1).caption, QStringLiteral("E3"));
    }

    void topLevelStopsAtFirstMissingOrder()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 2),
                           item(QStringLiteral("E2"), -1, 0, 4) };
        QCOMPARE(keysOf(planTree(document, 0)), QStringList({ QStringLiteral("E0"), QStringLiteral("E1") }));
    }

    void topLevelTakesOnlyFirstItemOfAnOrder()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 0, 1), item(QStringLiteral("E1"), -1, 0, 1),
                           item(QStringLiteral("E2"), -1, 0, 2) };
        QCOMPARE(keysOf(planTree(document, 0)), QStringList({ QStringLiteral("E0"), QStringLiteral("E2") }));
    }

    void lowerLevelTakesEveryItemOfAnOrderButNoneAboveChildCount()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 2, 1), item(QStringLiteral("E1"), 0, 0, 2),
                           item(QStringLiteral("E2"), 0, 0, 1),  item(QStringLiteral("E3"), 0, 0, 2),
                           item(QStringLiteral("E4"), 0, 0, 3),  item(QStringLiteral("E5"), 0, 0, 0) };
        QCOMPARE(
            keysOf(planTree(document, 0)),
            QStringList({ QStringLiteral("E0"), QStringLiteral("E2"), QStringLiteral("E1"), QStringLiteral("E3") }));
    }

    void hiddenLinkHangsItsChildrenOnNearestShownAncestor()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 1, 1),
                           linked(item(QStringLiteral("E1"), 0, 1, 1), QStringLiteral("E4")),
                           linked(item(QStringLiteral("E2"), 1, 1, 1), QStringLiteral("E4")),
                           item(QStringLiteral("E3"), 2, 0, 1, 1),
                           linked(item(QStringLiteral("E4"), -1, 1, 2, 1), QStringLiteral("E0")),
                           item(QStringLiteral("E5"), 4, 0, 1, 1) };
        const QList<PlannedNode> plan = planTree(document, 1);
        QCOMPARE(keysOf(plan), QStringList({ QStringLiteral("E0"), QStringLiteral("E3"), QStringLiteral("E5") }));
        QCOMPARE(plan.at(1).parentKey, QStringLiteral("E0"));
        QCOMPARE(plan.at(2).parentKey, QStringLiteral("Root"));
    }

    void hideModesChooseItems()
    {
        MenuDocument document;
        document.items = { item(QStringLiteral("E0"), -1, 2, 1), item(QStringLiteral("E1"), 0, 0, 1),
                           item(QStringLiteral("E2"), 0, 0, 2, 1),
                           linked(item(QStringLiteral("E3"), -1, 0, 2, 1), QStringLiteral("E2")) };
        QCOMPARE(
            keysOf(planTree(document, 0)),
            QStringList({ QStringLiteral("E0"), QStringLiteral("E1"), QStringLiteral("E2"), QStringLiteral("E3") }));
        QCOMPARE(keysOf(planTree(document, 1)),
                 QStringList({ QStringLiteral("E0"), QStringLiteral("E1"), QStringLiteral("E2") }));
        QCOMPARE(keysOf(planTree(document, 2)),
                 QStringList({ QStringLiteral("E0"), QStringLiteral("E2"), QStringLiteral("E3") }));
        QCOMPARE(keysOf(planTree(document, 3)), QStringList({ QStringLiteral("E0"), QStringLiteral("E2") }));
    }

    void chainAsDeepAsTheModelAllowsIsPlannedWithoutRecursion()
    {
        const int depth = 32767;
        MenuDocument document = TestMenus::chainMenu(depth);
        // Every odd item a link: under hide mode 1 each even item hangs on the even item above it.
        for (int i = 1; i < depth; i += 2) {
            document.items[i] = linked(document.items.at(i), QStringLiteral("E0"));
        }
        const QList<PlannedNode> all = planTree(document, 0);
        QCOMPARE(all.size(), qsizetype(depth));
        for (int i = 0; i < depth; ++i) {
            QCOMPARE(all.at(i).itemIndex, qint16(i));
            QCOMPARE(all.at(i).parentKey, i == 0 ? QStringLiteral("Root") : QStringLiteral("E%1").arg(i - 1));
        }
        const QList<PlannedNode> withoutLinks = planTree(document, 1);
        QCOMPARE(withoutLinks.size(), qsizetype((depth + 1) / 2));
        for (int n = 1; n < withoutLinks.size(); ++n) {
            QCOMPARE(withoutLinks.at(n).key, QStringLiteral("E%1").arg(2 * n));
            QCOMPARE(withoutLinks.at(n).parentKey, QStringLiteral("E%1").arg(2 * n - 2));
        }
    }

    void planEqualsPlainRebuildOnRandomMenus()
    {
        const int hideModes[] = { 0, 1, 2, 3, -1, 4 };
        int nonEmpty = 0;
        int withHiddenParent = 0;
        for (quint32 seed = 1; seed <= 600; ++seed) {
            const MenuDocument document = TestMenus::randomMenu(seed);
            for (const int hideMode : hideModes) {
                const QList<PlannedNode> expected = literalPlanTree(document, hideMode);
                const QList<PlannedNode> actual = planTree(document, hideMode);
                if (actual != expected) {
                    QFAIL(qPrintable(QStringLiteral("seed %1, hide mode %2\n expected %3\n actual   %4")
                                         .arg(seed)
                                         .arg(hideMode)
                                         .arg(describe(expected), describe(actual))));
                }
                nonEmpty += actual.isEmpty() ? 0 : 1;
                for (const PlannedNode& node : actual) {
                    const MenuItem& shown = document.items.at(node.itemIndex);
                    if (shown.parent >= 0 && document.items.at(shown.parent).key != node.parentKey) {
                        ++withHiddenParent;
                    }
                }
            }
        }
        // The seeds must really exercise the rebuild, hidden parents included.
        QVERIFY(nonEmpty > 2000);
        QVERIFY(withHiddenParent > 50);
    }
};

QTEST_GUILESS_MAIN(TestTreePlan)
#include "test_treeplan.moc"

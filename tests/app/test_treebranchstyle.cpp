#include "app/itemtree.h"
#include "app/treebranchstyle.h"

#include <QApplication>
#include <QImage>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QTest>
#include <QTreeView>

#include <memory>

namespace {

/// Counts the branch parts a style is asked to draw, on the screen and aside alike.
class CountingStyle final : public QProxyStyle
{
public:
    explicit CountingStyle(QStyle* base)
        : QProxyStyle(base)
    {
    }
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_IndicatorBranch) {
            ++branchParts;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    mutable int branchParts = 0;
};

/// A chain of submenus `depth` deep, each with a leaf beside the next level, every one expanded.
std::unique_ptr<QStandardItemModel> deepModel(int depth)
{
    auto model = std::make_unique<QStandardItemModel>();
    QStandardItem* parent = model->invisibleRootItem();
    for (int level = 0; level < depth; ++level) {
        auto* next = new QStandardItem(QStringLiteral("Level %1").arg(level));
        parent->appendRow(next);
        parent->appendRow(new QStandardItem(QStringLiteral("Leaf %1").arg(level)));
        parent = next;
    }
    return model;
}

/// `model` in a tree view of `style` (none: the application's), scrolled to its deepest rows, with
/// a row selected; what it shows.
QImage shown(QStandardItemModel& model, QStyle* style)
{
    QTreeView view;
    if (style != nullptr) {
        view.setStyle(style);
    }
    view.setHeaderHidden(true);
    view.setModel(&model);
    view.expandAll();
    view.resize(700, 400);
    view.show();
    QModelIndex deepest = model.index(0, 0);
    while (model.rowCount(deepest) > 0) {
        deepest = model.index(0, 0, deepest);
    }
    view.setCurrentIndex(deepest.parent());
    view.scrollTo(deepest);
    return view.grab().toImage();
}

} // namespace

/// The item tree's style draws exactly what the application's style draws, and asks it for no
/// branch part it leaves blank.
class TestTreeBranchStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDeepTreeLooksTheSameInEveryStyle_data()
    {
        QTest::addColumn<QString>("styleName");
        // Fusion draws only the expand markers; Windows draws a dotted line for every level too.
        QTest::newRow("Fusion") << QStringLiteral("Fusion");
        QTest::newRow("Windows") << QStringLiteral("Windows");
    }

    void aDeepTreeLooksTheSameInEveryStyle()
    {
        QFETCH(QString, styleName);
        const std::unique_ptr<QStandardItemModel> model = deepModel(40);
        const std::unique_ptr<QStyle> plain(QStyleFactory::create(styleName));
        QVERIFY(plain);
        TreeBranchStyle branches(QStyleFactory::create(styleName));
        const QImage expected = shown(*model, plain.get());
        QCOMPARE(shown(*model, &branches), expected);
        // Painted once more, from what it found blank the first time.
        QCOMPARE(shown(*model, &branches), expected);
    }

    void blankBranchPartsAreNotAskedForAgain()
    {
        const std::unique_ptr<QStandardItemModel> model = deepModel(40);
        auto* counting = new CountingStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        TreeBranchStyle branches(counting);
        shown(*model, &branches);
        counting->branchParts = 0;
        shown(*model, &branches);
        // Each row shown is 40 levels deep or so; only the parts with an expand marker reach Fusion,
        // at most one a row.
        QVERIFY(counting->branchParts > 0);
        QVERIFY2(counting->branchParts <= 40, qPrintable(QString::number(counting->branchParts)));

        // The plain Fusion style is asked for every level of every row.
        auto* everyPart = new CountingStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        const std::unique_ptr<QStyle> owner(everyPart);
        shown(*model, everyPart);
        QVERIFY2(everyPart->branchParts > 200, qPrintable(QString::number(everyPart->branchParts)));
    }

    void theItemTreeDrawsInTheApplicationsStyle()
    {
        ItemTree tree;
        auto* style = qobject_cast<TreeBranchStyle*>(tree.style());
        QVERIFY(style != nullptr);
        QCOMPARE(style->baseStyle()->name(), QApplication::style()->name());
    }
};

QTEST_MAIN(TestTreeBranchStyle)
#include "test_treebranchstyle.moc"

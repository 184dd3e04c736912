#include "treeview/testmenus.h"

#include "app/itemsidepanel.h"
#include "app/itemtree.h"
#include "app/shapedtextdelegate.h"
#include "editing/itempanel.h"
#include "model/menudocument.h"

#include <QApplication>
#include <QImage>
#include <QListWidget>
#include <QPainter>
#include <QRandomGenerator>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeView>

#include <algorithm>
#include <memory>

namespace {

/// Characters captions are made of: a menu file's own, spaces, an ampersand, letters of scripts
/// written right to left, a combining accent, and now and then a line break, a paragraph separator
/// or a text-variant separator, which the style handles by rules of its own.
const QString captionCharacters = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                                 "      &&..--__()[]$%\u00e9\u00fc\u00df\u20ac\u0153\u2026"
                                                 "\u05d0\u05d1\u0627\u0644\u0301\t\n\u2029\u009c");

QString randomText(QRandomGenerator& random)
{
    const int length = random.bounded(4) == 0 ? random.bounded(120) : random.bounded(24);
    QString text;
    for (int i = 0; i < length; ++i) {
        text += captionCharacters.at(random.bounded(int(captionCharacters.size())));
    }
    return text;
}

/// One row of a view, as the view hands it to its delegate.
struct Row
{
    QStyleOptionViewItem option;
    QModelIndex index;
};

/// Draws `row` by `delegate` on a plain ground of its own, at `ratio` device pixels per pixel; what
/// it shows.
QImage drawn(const QAbstractItemDelegate& delegate, const Row& row, qreal ratio = 1)
{
    const QSize size(std::max(row.option.rect.width(), 40) + 8, row.option.rect.height() + 8);
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionViewItem option = row.option;
    option.rect.moveTopLeft(QPoint(4, 4));
    delegate.paint(&painter, option, row.index);
    painter.end();
    return image;
}

/// A row of every kind a view asks for: any text, font, colour, size, alignment, elision,
/// direction and state.
Row randomRow(QRandomGenerator& random, QStandardItemModel& model, const QWidget& view)
{
    auto* item = new QStandardItem(randomText(random));
    if (random.bounded(2) == 0) {
        QFont bold = view.font();
        bold.setBold(true);
        item->setFont(bold);
    }
    if (random.bounded(2) == 0) {
        item->setForeground(QColor::fromRgb(random.generate() & 0xffffff));
    }
    if (random.bounded(4) == 0) {
        // A see-through ground such as the drop highlight.
        item->setBackground(QColor::fromRgba((random.generate() & 0xffffff) | 0x5a000000));
    }
    model.appendRow(item);
    Row row;
    row.index = item->index();
    row.option.initFrom(&view);
    row.option.widget = &view;
    // A row of a deep tree can be indented past the view's edge, and so have no width left.
    row.option.rect
        = QRect(0, 0, random.bounded(8) == 0 ? -random.bounded(40) : 1 + random.bounded(320), 1 + random.bounded(36));
    static const Qt::Alignment alignments[]
        = { Qt::AlignLeft | Qt::AlignVCenter, Qt::AlignRight | Qt::AlignTop, Qt::AlignHCenter | Qt::AlignBottom,
            Qt::AlignJustify | Qt::AlignVCenter, Qt::AlignCenter };
    row.option.displayAlignment = alignments[random.bounded(5)];
    static const Qt::TextElideMode elisions[] = { Qt::ElideRight, Qt::ElideLeft, Qt::ElideMiddle, Qt::ElideNone };
    row.option.textElideMode = elisions[random.bounded(4)];
    row.option.direction = random.bounded(4) == 0 ? Qt::RightToLeft : Qt::LeftToRight;
    static const QStyleOptionViewItem::Position positions[]
        = { QStyleOptionViewItem::Left, QStyleOptionViewItem::Right, QStyleOptionViewItem::Top,
            QStyleOptionViewItem::Bottom };
    row.option.decorationPosition = positions[random.bounded(4)];
    row.option.showDecorationSelected = random.bounded(2) == 0;
    const QStyle::State states[] = { QStyle::State_Selected, QStyle::State_HasFocus,  QStyle::State_Active,
                                     QStyle::State_Enabled,  QStyle::State_MouseOver, QStyle::State_Editing };
    row.option.state = QStyle::State_None;
    for (const QStyle::State state : states) {
        if (random.bounded(2) == 0) {
            row.option.state |= state;
        }
    }
    return row;
}

/// A view of `styleName`'s style, or the application's.
std::unique_ptr<QTreeView> viewOf(const QString& styleName)
{
    auto view = std::make_unique<QTreeView>();
    if (!styleName.isEmpty()) {
        QStyle* style = QStyleFactory::create(styleName);
        style->setParent(view.get());
        view->setStyle(style);
    }
    // Every colour group draws text in colours of its own, so that a row drawn in the wrong one shows.
    QPalette palette = view->palette();
    palette.setColor(QPalette::Inactive, QPalette::Text, QColor(160, 0, 0));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, QColor(0, 160, 0));
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(90, 90, 0));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0, 0, 160));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(0, 90, 90));
    view->setPalette(palette);
    view->resize(400, 300);
    return view;
}

} // namespace

/// Rows drawn with their shaped lines look exactly as the style draws them, and measure the same.
class TestShapedTextDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsLookAsTheStyleDrawsThem_data()
    {
        QTest::addColumn<QString>("styleName");
        QTest::newRow("fusion") << QStringLiteral("Fusion");
        QTest::newRow("windows") << QStringLiteral("Windows");
    }

    /// Any text, font, colour, ground, size and state, on screens of any resolution; drawn and
    /// measured twice, the second time from what was kept.
    void rowsLookAsTheStyleDrawsThem()
    {
        QFETCH(QString, styleName);
        if (!QStyleFactory::keys().contains(styleName, Qt::CaseInsensitive)) {
            QSKIP("This style is not available here.");
        }
        const std::unique_ptr<QTreeView> view = viewOf(styleName);
        QStandardItemModel model;
        const QStyledItemDelegate styled;
        const ShapedTextDelegate shaped;
        QRandomGenerator random(20261125);
        const qreal ratios[] = { 1, 1, 1.25, 1.5, 2 };
        for (int run = 0; run < 3000; ++run) {
            const Row row = randomRow(random, model, *view);
            const qreal ratio = ratios[random.bounded(5)];
            const QImage expected = drawn(styled, row, ratio);
            if (drawn(styled, row, ratio) != expected) {
                // Now and then the style draws the frame of a row being edited otherwise the second
                // time; such a row cannot be compared.
                QVERIFY(row.option.state & QStyle::State_Editing);
                continue;
            }
            QCOMPARE(drawn(shaped, row, ratio), expected);
            QCOMPARE(drawn(shaped, row, ratio), expected);
            const QSize expectedSize = styled.sizeHint(row.option, row.index);
            QCOMPARE(shaped.sizeHint(row.option, row.index), expectedSize);
            QCOMPARE(shaped.sizeHint(row.option, row.index), expectedSize);
        }
        if (styleName == QLatin1String("Windows")) {
            // Another style's rows are all left to it.
            QCOMPARE(shaped.keptLines(), 0);
            QCOMPARE(shaped.keptSizes(), 0);
        } else {
            QVERIFY(shaped.keptLines() > 0);
            QVERIFY(shaped.keptSizes() > 0);
        }
    }

    /// The same caption in another place, size or font is shaped for that place, and measured anew
    /// in another font.
    void aKeptLineServesOnlyItsOwnPlace()
    {
        const std::unique_ptr<QTreeView> view = viewOf(QStringLiteral("Fusion"));
        QStandardItemModel model;
        model.appendRow(new QStandardItem(QStringLiteral("Open with the archive manager of this desktop")));
        const QStyledItemDelegate styled;
        const ShapedTextDelegate shaped;
        Row row;
        row.index = model.index(0, 0);
        row.option.initFrom(view.get());
        row.option.widget = view.get();
        row.option.displayAlignment = Qt::AlignLeft | Qt::AlignVCenter;
        row.option.textElideMode = Qt::ElideRight;
        row.option.showDecorationSelected = true; // as in a tree, which selects whole rows
        for (const int width : { 400, 120, 400, 60, 120 }) {
            row.option.rect = QRect(0, 0, width, 20);
            QCOMPARE(drawn(shaped, row), drawn(styled, row));
            QCOMPARE(shaped.sizeHint(row.option, row.index), styled.sizeHint(row.option, row.index));
        }
        QCOMPARE(shaped.keptLines(), 3);
        QCOMPARE(shaped.keptSizes(), 1); // a row's size does not depend on the room it has
        QFont bold = view->font();
        bold.setBold(true);
        model.item(0)->setFont(bold);
        QCOMPARE(drawn(shaped, row), drawn(styled, row));
        QCOMPARE(shaped.sizeHint(row.option, row.index), styled.sizeHint(row.option, row.index));
        QCOMPARE(shaped.keptLines(), 4);
        QCOMPARE(shaped.keptSizes(), 2);
    }

    /// A view scrolled through many captions keeps a few screens of lines, not every caption.
    void keptLinesStayFew()
    {
        const std::unique_ptr<QTreeView> view = viewOf(QStringLiteral("Fusion"));
        QStandardItemModel model;
        const ShapedTextDelegate shaped;
        QImage image(300, 30, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        for (int i = 0; i < 3000; ++i) {
            model.appendRow(new QStandardItem(QStringLiteral("Item %1").arg(i)));
            QStyleOptionViewItem option;
            option.initFrom(view.get());
            option.widget = view.get();
            option.rect = QRect(0, 0, 300, 20);
            option.showDecorationSelected = true;
            shaped.paint(&painter, option, model.index(i, 0));
            QCOMPARE(shaped.sizeHint(option, model.index(i, 0)).isValid(), true);
            QVERIFY(shaped.keptLines() <= 256);
            QVERIFY(shaped.keptSizes() <= 256);
        }
        QVERIFY(shaped.keptLines() > 0);
        QVERIFY(shaped.keptSizes() > 0);
    }

    /// The item tree draws its captions, bold and coloured ones among them, through shaped lines,
    /// and shows exactly what the style would show, with the drop highlight too.
    void theItemTreeLooksAsTheStyleDrawsIt()
    {
        QRandomGenerator random(7);
        for (quint32 seed = 1; seed <= 20; ++seed) {
            MenuDocument document = TestMenus::randomMenu(seed);
            for (MenuItem& item : document.items) {
                item.caption = randomText(random);
            }
            ItemTree shapedTree;
            ItemTree styledTree;
            styledTree.setItemDelegate(new QStyledItemDelegate(&styledTree));
            for (ItemTree* tree : { &shapedTree, &styledTree }) {
                tree->setDocumentSource([&document]() -> const MenuDocument& { return document; });
                tree->generate();
                tree->resize(220, 400);
                tree->show();
                tree->setCurrentIndex(tree->node(std::min(3, tree->nodeCount())));
                if (seed % 2 == 0) {
                    tree->setDropHighlight(tree->node(std::min(2, tree->nodeCount())));
                }
            }
            const auto* delegate = qobject_cast<ShapedTextDelegate*>(shapedTree.itemDelegate());
            QVERIFY(delegate != nullptr);
            QCOMPARE(shapedTree.grab().toImage(), styledTree.grab().toImage());
            QVERIFY(delegate->keptLines() > 0);
        }
    }

    /// The command list of the item panel draws its lines through shaped lines too, selected,
    /// unselected and greyed out alike, and shows exactly what the style would show.
    void theCommandListLooksAsTheStyleDrawsIt()
    {
        QRandomGenerator random(11);
        for (int run = 0; run < 10; ++run) {
            ItemPanel panel;
            panel.linked = run % 3 == 0; // a linked item's commands are greyed out
            panel.linkTarget = QStringLiteral("4");
            for (int line = random.bounded(30); line > 0; --line) {
                // A command is one line of a menu file.
                QString command = QStringLiteral("%1=%2").arg(randomText(random), randomText(random));
                command.remove(QLatin1Char('\n')).remove(QChar(0x2029)).remove(QChar(0x9c));
                panel.commandLines.append(command);
            }
            ItemSidePanel shapedPanel;
            ItemSidePanel styledPanel;
            auto* styledList = styledPanel.findChild<QListWidget*>(QStringLiteral("lstCommand"));
            styledList->setItemDelegate(new QStyledItemDelegate(styledList));
            auto* shapedList = shapedPanel.findChild<QListWidget*>(QStringLiteral("lstCommand"));
            const int selected = panel.commandLines.isEmpty() ? -1 : random.bounded(int(panel.commandLines.size()));
            for (ItemSidePanel* itemPanel : { &shapedPanel, &styledPanel }) {
                itemPanel->resize(300, 400);
                itemPanel->show();
                itemPanel->showItem(panel);
                itemPanel->findChild<QListWidget*>(QStringLiteral("lstCommand"))->setCurrentRow(selected);
            }
            const auto* delegate = qobject_cast<ShapedTextDelegate*>(shapedList->itemDelegate());
            QVERIFY(delegate != nullptr);
            QCOMPARE(shapedList->grab().toImage(), styledList->grab().toImage());
            QCOMPARE(delegate->keptLines() > 0, !panel.commandLines.isEmpty());
        }
    }
};

QTEST_MAIN(TestShapedTextDelegate)
#include "test_shapedtextdelegate.moc"

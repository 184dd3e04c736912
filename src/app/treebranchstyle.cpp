#include "treebranchstyle.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace {

/// The most branch parts whose blankness is kept; a palette change makes new ones.
constexpr qsizetype keptBranchParts = 256;

/// What tells branch parts apart for the style: all of it is drawn from these.
struct BranchPart
{
    qint64 state;
    qint64 width;
    qint64 height;
    qint64 direction;
    /// Device pixels per pixel, in thousandths.
    qint64 ratio;
    qint64 palette;
};
static_assert(sizeof(BranchPart) == 6 * sizeof(qint64), "a branch part's key has no padding");

} // namespace

TreeBranchStyle::TreeBranchStyle(QStyle* base)
    : QProxyStyle(base)
{
}

void TreeBranchStyle::installOn(QWidget* tree)
{
    if (QStyle* own = QStyleFactory::create(QApplication::style()->name())) {
        auto* style = new TreeBranchStyle(own);
        style->setParent(tree);
        tree->setStyle(style);
    }
}

void TreeBranchStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const
{
    if (element == PE_IndicatorBranch && option != nullptr && !(option->state & State_Children)
        && drawsNothing(option, widget)) {
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

bool TreeBranchStyle::drawsNothing(const QStyleOption* option, const QWidget* widget) const
{
    const QSize size = option->rect.size();
    if (size.isEmpty() || size.width() > 1024 || size.height() > 1024) {
        return false;
    }
    // Drawn aside at the device pixel ratio of the screen the tree is on, as the style draws it there.
    const qreal ratio = widget != nullptr ? widget->devicePixelRatioF() : 1.0;
    const BranchPart part { qint64(option->state),     size.width(),           size.height(),
                            qint64(option->direction), qRound64(ratio * 1000), option->palette.cacheKey() };
    // Looked up without a copy: a deep tree paints a branch part for every level of every row.
    const QByteArray key = QByteArray::fromRawData(reinterpret_cast<const char*>(&part), sizeof(part));
    const auto found = m_blank.constFind(key);
    if (found != m_blank.constEnd()) {
        return found.value();
    }

    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        // The same kind of option as the tree's, moved to the image.
        if (const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option)) {
            QStyleOptionViewItem moved(*item);
            moved.rect.moveTo(0, 0);
            baseStyle()->drawPrimitive(PE_IndicatorBranch, &moved, &painter, widget);
        } else {
            QStyleOption moved(*option);
            moved.rect.moveTo(0, 0);
            baseStyle()->drawPrimitive(PE_IndicatorBranch, &moved, &painter, widget);
        }
    }
    bool blank = true;
    for (int y = 0; y < image.height() && blank; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        blank = std::all_of(line, line + image.width(), [](QRgb pixel) { return pixel == 0; });
    }
    if (m_blank.size() >= keptBranchParts) {
        m_blank.clear();
    }
    m_blank.insert(QByteArray(key.constData(), key.size()), blank);
    return blank;
}

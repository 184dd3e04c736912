#include "shapedtextdelegate.h"

#include "app/treebranchstyle.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QTextOption>

namespace {

/// The most shaped lines, and row sizes, kept: several screens of rows. All go when more are needed.
constexpr qsizetype keptLineLimit = 256;
/// The most fonts told apart; a view shows its own font and a bold one.
constexpr qsizetype keptFontLimit = 8;

/// The style that draws the rows of `style`: the application's own style under the item tree's
/// proxy, which changes nothing but the drawing of blank branch parts. Any other proxy may draw rows
/// its own way, so it counts as a style of its own.
const QStyle* drawingStyle(const QStyle* style)
{
    if (const auto* tree = qobject_cast<const TreeBranchStyle*>(style)) {
        return tree->baseStyle();
    }
    return style;
}

/// What `kept` holds for `key`, made by `make` when it holds nothing; a full `kept` forgets all it held
/// first.
template <typename Kept, typename Make>
const typename Kept::mapped_type& keptOrMade(Kept& kept, const typename Kept::key_type& key, Make make)
{
    const auto found = kept.constFind(key);
    if (found != kept.constEnd()) {
        return found.value();
    }
    if (kept.size() >= keptLineLimit) {
        kept.clear();
    }
    return kept.insert(key, make()).value();
}

/// Lays `layout` out as one line of `width`, from the top.
QTextLine layOutOneLine(QTextLayout& layout, int width)
{
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, 0));
    }
    layout.endLayout();
    return line;
}

/// Separates the variants of a text of which eliding picks the longest that fits.
constexpr QChar textVariantSeparator(0x9c);

/// Whether `text` is one line with no text variants; the style splits other texts into lines or
/// elides them by rules of its own. (A view shows a line break as a line separator.)
bool isSingleLine(const QString& text)
{
    for (const QChar c : text) {
        if (c == QChar::LineSeparator || c == QChar::ParagraphSeparator || c == textVariantSeparator) {
            return false;
        }
    }
    return true;
}

} // namespace

ShapedTextDelegate::ShapedTextDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

ShapedTextDelegate::~ShapedTextDelegate() = default;

bool ShapedTextDelegate::RowKey::operator==(const RowKey& other) const
{
    return text == other.text && font == other.font && size == other.size && alignment == other.alignment
        && direction == other.direction && elideMode == other.elideMode
        && decorationPosition == other.decorationPosition && decorationSelected == other.decorationSelected
        && state == other.state && dotsPerInch == other.dotsPerInch;
}

void ShapedTextDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QWidget* widget = option.widget;
    const QStyle* style = widget != nullptr ? widget->style() : QApplication::style();
    const bool fusion = drawsLikeFusion(style);
    if (fusion && !option.rect.isValid()) {
        // A row indented past the view's edge: Fusion draws nothing there, after shaping the text.
        return;
    }
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    // Where a selected row shows its selection behind the text only, the style may size it to the
    // text, which the row drawn without its text would not show.
    const bool selectionFitsText = !row.showDecorationSelected && (row.state & QStyle::State_Selected);
    if (!fusion || !showsOneLine(row) || selectionFitsText || (row.state & QStyle::State_Editing)) {
        style->drawControl(QStyle::CE_ItemViewItem, &row, painter, widget);
        return;
    }
    const ShapedLine& line = shapedLine(row, style);

    // The style draws the row's background, selection and hover, without text or focus frame.
    QStyleOptionViewItem bare = row;
    bare.text.clear();
    bare.state &= ~QStyle::State_HasFocus;
    style->drawControl(QStyle::CE_ItemViewItem, &bare, painter, widget);

    painter->save();
    painter->setClipRect(row.rect, Qt::IntersectClip);
    QPalette::ColorGroup group = (row.state & QStyle::State_Enabled) ? QPalette::Normal : QPalette::Disabled;
    if (group == QPalette::Normal && !(row.state & QStyle::State_Active)) {
        group = QPalette::Inactive;
    }
    painter->setPen(
        row.palette.color(group, (row.state & QStyle::State_Selected) ? QPalette::HighlightedText : QPalette::Text));
    if (line.layout != nullptr) {
        line.layout->draw(painter, QPointF(row.rect.topLeft()) + line.position);
    }
    if (row.state & QStyle::State_HasFocus) {
        drawFocusFrame(painter, row, line.focusFrame.translated(row.rect.topLeft()), style);
    }
    painter->restore();
}

bool ShapedTextDelegate::drawsLikeFusion(const QStyle* style) const
{
    if (style != m_style.data() || m_style.isNull()) {
        // Another style places text by other rules: what was shaped for this one goes.
        m_style = style;
        m_styleIsFusion = style != nullptr
            && drawingStyle(style)->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) == 0;
        forgetRows();
    }
    return m_styleIsFusion;
}

bool ShapedTextDelegate::showsOneLine(const QStyleOptionViewItem& option)
{
    constexpr auto otherParts = QStyleOptionViewItem::WrapText | QStyleOptionViewItem::HasCheckIndicator
        | QStyleOptionViewItem::HasDecoration;
    return (option.features & QStyleOptionViewItem::HasDisplay) && !(option.features & otherParts)
        && !option.text.isEmpty() && isSingleLine(option.text);
}

QSize ShapedTextDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QVariant given = index.data(Qt::SizeHintRole);
    if (given.isValid()) {
        return qvariant_cast<QSize>(given);
    }
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QWidget* widget = row.widget;
    const QStyle* style = widget != nullptr ? widget->style() : QApplication::style();
    if (!drawsLikeFusion(style) || !showsOneLine(row)) {
        return style->sizeFromContents(QStyle::CT_ItemViewItem, &row, QSize(), widget);
    }
    // Without wrapping, the size of the row does not depend on the place it is asked for.
    RowKey key = keyOf(row);
    key.size = QSize();
    key.state = int(row.state);
    return keptOrMade(m_sizes, key,
                      [&] { return style->sizeFromContents(QStyle::CT_ItemViewItem, &row, QSize(), widget); });
}

ShapedTextDelegate::RowKey ShapedTextDelegate::keyOf(const QStyleOptionViewItem& option) const
{
    RowKey key;
    key.text = option.text;
    key.font = fontNumber(option.font);
    key.dotsPerInch = option.fontMetrics.fontDpi();
    key.size = option.rect.size();
    key.alignment = int(option.displayAlignment);
    key.direction = int(option.direction);
    key.elideMode = int(option.textElideMode);
    key.decorationPosition = int(option.decorationPosition);
    key.decorationSelected = option.showDecorationSelected;
    return key;
}

const ShapedTextDelegate::ShapedLine& ShapedTextDelegate::shapedLine(const QStyleOptionViewItem& option,
                                                                     const QStyle* style) const
{
    return keptOrMade(m_lines, keyOf(option), [&] { return shape(option, style); });
}

ShapedTextDelegate::ShapedLine ShapedTextDelegate::shape(const QStyleOptionViewItem& option, const QStyle* style) const
{
    // The text's box within the row, as the style places it, less the margins it keeps from the box.
    const QRect box = style->subElementRect(QStyle::SE_ItemViewItemText, &option, option.widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    const QRect textBox = box.adjusted(margin, 0, -margin, 0);

    QTextOption textOption;
    textOption.setWrapMode(QTextOption::ManualWrap);
    textOption.setTextDirection(option.direction);
    textOption.setAlignment(QStyle::visualAlignment(option.direction, option.displayAlignment));

    // The whole text on one line, aligned in the box as the style aligns it.
    QTextLayout whole(option.text, option.font);
    whole.setTextOption(textOption);
    const QTextLine wholeLine = layOutOneLine(whole, textBox.width());
    const QRect aligned = QStyle::alignedRect(Qt::LayoutDirectionAuto, option.displayAlignment,
                                              whole.boundingRect().size().toSize(), textBox);
    ShapedLine shaped;
    shaped.position = QPointF(textBox.x(), aligned.top()) - QPointF(option.rect.topLeft());
    shaped.focusFrame = style->subElementRect(QStyle::SE_ItemViewItemFocusRect, &option, option.widget)
                            .translated(-option.rect.topLeft());
    if (!wholeLine.isValid() || wholeLine.height() + aligned.top() <= textBox.top()) {
        return shaped; // no room for the line: the style draws nothing either
    }
    // A line wider than its box is elided as the style elides it.
    QString text = option.text;
    if (wholeLine.naturalTextWidth() > textBox.width()) {
        text = QFontMetricsF(option.font).elidedText(text, option.textElideMode, textBox.width());
    }
    shaped.layout = std::make_shared<QTextLayout>(text, option.font);
    shaped.layout->setTextOption(textOption);
    layOutOneLine(*shaped.layout, textBox.width());
    return shaped;
}

int ShapedTextDelegate::fontNumber(const QFont& font) const
{
    const qsizetype known = m_fonts.indexOf(font);
    if (known >= 0) {
        return int(known);
    }
    if (m_fonts.size() >= keptFontLimit) {
        forgetRows();
    }
    m_fonts.append(font);
    return int(m_fonts.size() - 1);
}

void ShapedTextDelegate::drawFocusFrame(QPainter* painter, const QStyleOptionViewItem& option, const QRect& frameRect,
                                        const QStyle* style) const
{
    // The focus frame as the style draws it over a row, after its text.
    QStyleOptionFocusRect frame;
    frame.QStyleOption::operator=(option);
    frame.rect = frameRect;
    frame.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    const QPalette::ColorGroup group = (option.state & QStyle::State_Enabled) ? QPalette::Normal : QPalette::Disabled;
    frame.backgroundColor
        = option.palette.color(group, (option.state & QStyle::State_Selected) ? QPalette::Highlight : QPalette::Window);
    style->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, painter, option.widget);
}

void ShapedTextDelegate::forgetRows() const
{
    m_fonts.clear();
    m_lines.clear();
    m_sizes.clear();
}

#pragma once

#include <QFont>
#include <QHash>
#include <QList>
#include <QPointF>
#include <QPointer>
#include <QRect>
#include <QStyledItemDelegate>

#include <memory>

class QStyle;
class QTextLayout;

/// Paints an item view's rows as its style does, with each row's text shaped once. Fusion lays a
/// row's text out five times on every paint: three times to place the text, the check box and the
/// icon, once to elide it and once to draw it; the focus frame takes one more. The tree paints the
/// same captions again after every Undo and every scroll, and even those of rows indented past its
/// edge, which show nothing. Under Fusion, such rows are left out, and for a single line of text
/// the style draws the row without its text while the line, shaped and elided once for its place,
/// is drawn where the style would have drawn it. Every other row, and every row under another
/// style, is left to the style.
class ShapedTextDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ShapedTextDelegate(QObject* parent = nullptr);
    ~ShapedTextDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// The style's size of the row, measured once for each text: a list lays every row out anew
    /// whenever it is filled.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// How many shaped lines are kept.
    qsizetype keptLines() const { return m_lines.size(); }
    /// How many row sizes are kept.
    qsizetype keptSizes() const { return m_sizes.size(); }

private:
    /// What places, shapes and sizes a row's text, besides its style and its view.
    struct RowKey
    {
        QString text;
        int font = 0;
        /// The resolution the text is shaped at: a screen of another one shapes it anew.
        qreal dotsPerInch = 0;
        QSize size;
        int alignment = 0;
        int direction = 0;
        int elideMode = 0;
        int decorationPosition = 0;
        bool decorationSelected = false;
        int state = 0;

        bool operator==(const RowKey& other) const;
        friend size_t qHash(const RowKey& key, size_t seed)
        {
            return qHashMulti(seed, key.text, key.font, key.dotsPerInch, key.size.width(), key.size.height(),
                              key.alignment, key.direction, key.elideMode, key.decorationPosition,
                              key.decorationSelected, key.state);
        }
    };

    /// A row's text as it is drawn: the line, where it goes within the row, and the focus frame
    /// around it.
    struct ShapedLine
    {
        std::shared_ptr<QTextLayout> layout;
        QPointF position;
        QRect focusFrame;
    };

    /// Whether `style` is Fusion, whose rows this delegate draws as it does.
    bool drawsLikeFusion(const QStyle* style) const;
    /// Whether the row of `option` shows one line of text and nothing else, which Fusion places,
    /// elides and sizes by the text and the row's size alone.
    static bool showsOneLine(const QStyleOptionViewItem& option);
    /// The key of the row of `option`, by its text and how it is laid out. A font never seen before
    /// may make room for itself by forgetting every row kept.
    RowKey keyOf(const QStyleOptionViewItem& option) const;
    const ShapedLine& shapedLine(const QStyleOptionViewItem& option, const QStyle* style) const;
    ShapedLine shape(const QStyleOptionViewItem& option, const QStyle* style) const;
    int fontNumber(const QFont& font) const;
    void drawFocusFrame(QPainter* painter, const QStyleOptionViewItem& option, const QRect& frameRect,
                        const QStyle* style) const;
    /// Forgets every line and size, as when the style or the fonts change.
    void forgetRows() const;

    mutable QPointer<const QStyle> m_style;
    mutable bool m_styleIsFusion = false;
    mutable QList<QFont> m_fonts;
    mutable QHash<RowKey, ShapedLine> m_lines;
    mutable QHash<RowKey, QSize> m_sizes;
};

#pragma once

#include <QHash>
#include <QProxyStyle>

/// The style of the item tree: the application's own, except that the tree asks it for nothing it
/// would not draw. A tree view asks its style to draw the branch part of every level left of a row,
/// and a row hundreds of levels deep asks hundreds of times per paint; a style such as Fusion draws
/// nothing for a level without an expand marker, yet works out its colours on every call (half of
/// the paint of such rows). Whether the style draws anything for a given branch part is found once
/// by drawing it aside, so a style that draws branch lines keeps drawing every one of them.
class TreeBranchStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    /// Draws as `base` does; takes ownership of `base`.
    explicit TreeBranchStyle(QStyle* base);

    /// Gives `tree` a style of its own: the application's, asking only for branch parts it draws. The
    /// tree owns it. Where the application's style cannot be made again, the tree keeps that one. The
    /// style is the one the application had then; the editor never changes its style while it runs.
    static void installOn(QWidget* tree);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;

private:
    /// Whether the base style leaves a branch part such as `option` blank.
    bool drawsNothing(const QStyleOption* option, const QWidget* widget) const;

    /// Blank or not, by the branch part's state, size and palette.
    mutable QHash<QByteArray, bool> m_blank;
};

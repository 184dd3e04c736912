#pragma once

#include <QString>

struct MenuDocument;
struct MenuItem;

/// What the main window's status bar shows of the active editor window: panel 2 the selected item's
/// index, panel 4 the document's item count, panel 6 the selected item's "(position ; children)".
/// With no editor window open, or no item selected, the item panels are blank and panel 6 reads
/// "(Position ; Children)" as it does at start-up.
struct StatusPanels
{
    QString itemIndex;
    QString itemCount;
    QString position = designPosition();

    /// The text panel 6 holds until an item is shown.
    static QString designPosition() { return QStringLiteral("(Position ; Children)"); }
    /// "(" siblingOrder " ; " childCount ")" of `item`.
    static QString positionOf(const MenuItem& item);
    /// The panels for `document` with the item keyed `selectedKey` selected; a key naming no item
    /// (the root, none) leaves the item panels blank.
    static StatusPanels of(const MenuDocument& document, const QString& selectedKey);

    friend bool operator==(const StatusPanels& left, const StatusPanels& right)
    {
        return left.itemIndex == right.itemIndex && left.itemCount == right.itemCount
            && left.position == right.position;
    }
};

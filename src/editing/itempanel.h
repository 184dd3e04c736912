#pragma once

#include <QString>
#include <QStringList>

struct MenuDocument;

/// What the item panel of an editor window shows for one item: the copy-command check box, the
/// link target's index and the command list.
struct ItemPanel
{
    /// The copy-command check box: on while the item takes its commands from its link target.
    bool linked = false;
    /// The index of the link target in decimal; empty when the item never had a target ("-1", or
    /// the empty copyKey of a newly created item). A link naming no item shows "-1".
    QString linkTarget;
    /// One line per command, "extension=command" in its stored form: the item's own commands, or
    /// while the link is on those of its target (none when the link names no item).
    QStringList commandLines;

    friend bool operator==(const ItemPanel& left, const ItemPanel& right)
    {
        return left.linked == right.linked && left.linkTarget == right.linkTarget
            && left.commandLines == right.commandLines;
    }
};

/// Whether `copyKey` names a link target at all: "-1" (never chosen) and the empty key of a newly
/// created item both mean that the item has none.
bool hasLinkTarget(const QString& copyKey);

/// The panel of item `index` of `document`.
ItemPanel itemPanel(const MenuDocument& document, int index);

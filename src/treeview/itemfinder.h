#pragma once

#include <QList>
#include <QString>
#include <QStringList>

struct MenuDocument;
struct PlannedNode;

/// What the find bar of an editor window looks for.
struct FindRequest
{
    QString text;
    /// Also in the extensions and command texts an item shows (a link's: its target's).
    bool inCommands = false;
    bool matchCase = false;
};

/// The keys of the items whose node the tree shows under `hideMode` and that hold `request.text`, in
/// the order of the tree's nodes (each parent before its children). An empty text matches nothing.
/// Finding reads the document only.
QStringList findItems(const MenuDocument& document, int hideMode, const FindRequest& request);

/// The same among `nodes`, the tree's nodes as planTree gives them for the document (a find bar
/// keeps them between keystrokes while the menu does not change).
QStringList findItems(const MenuDocument& document, const QList<PlannedNode>& nodes, const FindRequest& request);

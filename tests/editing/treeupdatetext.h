#pragma once

#include "editing/treeupdate.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Readable forms of the steps an operation asks the view for, so that a failed comparison of two
/// TreeUpdates shows both step lists instead of two anonymous values.
namespace TreeUpdateText {

inline QString kindName(TreeStep::Kind kind)
{
    switch (kind) {
    case TreeStep::Kind::AddNode:
        return QStringLiteral("AddNode");
    case TreeStep::Kind::RemoveNode:
        return QStringLiteral("RemoveNode");
    case TreeStep::Kind::SetNodeText:
        return QStringLiteral("SetNodeText");
    case TreeStep::Kind::MoveNodeUp:
        return QStringLiteral("MoveNodeUp");
    case TreeStep::Kind::MoveNodeDown:
        return QStringLiteral("MoveNodeDown");
    case TreeStep::Kind::MoveNodeUnder:
        return QStringLiteral("MoveNodeUnder");
    case TreeStep::Kind::MoveNodeToLastChild:
        return QStringLiteral("MoveNodeToLastChild");
    case TreeStep::Kind::MoveNodeAfter:
        return QStringLiteral("MoveNodeAfter");
    case TreeStep::Kind::ShowPosition:
        return QStringLiteral("ShowPosition");
    case TreeStep::Kind::ShowBusy:
        return QStringLiteral("ShowBusy");
    case TreeStep::Kind::HideBusy:
        return QStringLiteral("HideBusy");
    case TreeStep::Kind::SetNodeColour:
        return QStringLiteral("SetNodeColour");
    case TreeStep::Kind::AddNodeWhenOnlyRoot:
        return QStringLiteral("AddNodeWhenOnlyRoot");
    case TreeStep::Kind::Recolour:
        return QStringLiteral("Recolour");
    case TreeStep::Kind::Regenerate:
        return QStringLiteral("Regenerate");
    case TreeStep::Kind::ShowItemCount:
        return QStringLiteral("ShowItemCount");
    case TreeStep::Kind::SelectNode:
        return QStringLiteral("SelectNode");
    case TreeStep::Kind::ClickNode:
        return QStringLiteral("ClickNode");
    case TreeStep::Kind::ClickFirstItemNode:
        return QStringLiteral("ClickFirstItemNode");
    case TreeStep::Kind::ShowItem:
        return QStringLiteral("ShowItem");
    case TreeStep::Kind::StartLabelEdit:
        return QStringLiteral("StartLabelEdit");
    case TreeStep::Kind::ToggleLinkTargetChoice:
        return QStringLiteral("ToggleLinkTargetChoice");
    case TreeStep::Kind::EndLinkTargetChoice:
        return QStringLiteral("EndLinkTargetChoice");
    case TreeStep::Kind::FocusTree:
        return QStringLiteral("FocusTree");
    case TreeStep::Kind::ShowMessage:
        return QStringLiteral("ShowMessage");
    case TreeStep::Kind::ShowRefusal:
        return QStringLiteral("ShowRefusal");
    }
    return QStringLiteral("Kind %1").arg(int(kind));
}

inline QString colourName(NodeStyle::Colour colour)
{
    switch (colour) {
    case NodeStyle::Colour::Black:
        return QStringLiteral("Black");
    case NodeStyle::Colour::Navy:
        return QStringLiteral("Navy");
    case NodeStyle::Colour::Maroon:
        return QStringLiteral("Maroon");
    }
    return QStringLiteral("Colour %1").arg(int(colour));
}

/// Every field of the step, so that two steps read the same exactly when they compare equal.
inline QString describe(const TreeStep& step)
{
    return QStringLiteral("%1(key \"%2\", parent \"%3\", sibling \"%4\", text \"%5\", %6)")
        .arg(kindName(step.kind), step.key, step.parentKey, step.siblingKey, step.text, colourName(step.colour));
}

inline QStringList describe(const TreeUpdate& update)
{
    QStringList lines;
    for (const TreeStep& step : update.steps()) {
        lines.append(describe(step));
    }
    return lines;
}

} // namespace TreeUpdateText

/// Found by QCOMPARE through argument-dependent lookup.
inline char* toString(const TreeUpdate& update)
{
    const QStringList lines = TreeUpdateText::describe(update);
    const QString text = lines.isEmpty() ? QStringLiteral("(no steps)") : lines.join(QStringLiteral("; "));
    return qstrdup(text.toUtf8().constData());
}

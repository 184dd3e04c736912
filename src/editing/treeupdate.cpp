#include "treeupdate.h"

#include <utility>

namespace {

TreeStep step(TreeStep::Kind kind, const QString& key = QString(), const QString& text = QString())
{
    TreeStep result { kind, key, QString(), text };
    return result;
}

} // namespace

TreeUpdate& TreeUpdate::add(TreeStep step)
{
    m_steps.append(std::move(step));
    return *this;
}

TreeUpdate& TreeUpdate::addNode(const QString& parentKey, const QString& key, const QString& text)
{
    TreeStep added = step(TreeStep::Kind::AddNode, key, text);
    added.parentKey = parentKey;
    return add(std::move(added));
}

TreeUpdate& TreeUpdate::removeNode(const QString& key)
{
    return add(step(TreeStep::Kind::RemoveNode, key));
}

TreeUpdate& TreeUpdate::setNodeText(const QString& key, const QString& text)
{
    return add(step(TreeStep::Kind::SetNodeText, key, text));
}

TreeUpdate& TreeUpdate::moveNodeUp(const QString& key)
{
    return add(step(TreeStep::Kind::MoveNodeUp, key));
}

TreeUpdate& TreeUpdate::moveNodeDown(const QString& key)
{
    return add(step(TreeStep::Kind::MoveNodeDown, key));
}

TreeUpdate& TreeUpdate::moveNodeUnder(const QString& key, const QString& parentKey)
{
    TreeStep moved = step(TreeStep::Kind::MoveNodeUnder, key);
    moved.parentKey = parentKey;
    return add(std::move(moved));
}

TreeUpdate& TreeUpdate::moveNodeToLastChild(const QString& key, const QString& parentKey)
{
    TreeStep moved = step(TreeStep::Kind::MoveNodeToLastChild, key);
    moved.parentKey = parentKey;
    return add(std::move(moved));
}

TreeUpdate& TreeUpdate::moveNodeAfter(const QString& key, const QString& siblingKey)
{
    TreeStep moved = step(TreeStep::Kind::MoveNodeAfter, key);
    moved.siblingKey = siblingKey;
    return add(std::move(moved));
}

TreeUpdate& TreeUpdate::setNodeColour(const QString& key, NodeStyle::Colour colour)
{
    TreeStep coloured = step(TreeStep::Kind::SetNodeColour, key);
    coloured.colour = colour;
    return add(std::move(coloured));
}

TreeUpdate& TreeUpdate::addNodeWhenOnlyRoot(const QString& key, const QString& text)
{
    TreeStep added = step(TreeStep::Kind::AddNodeWhenOnlyRoot, key, text);
    added.parentKey = QStringLiteral("Root");
    return add(std::move(added));
}

TreeUpdate& TreeUpdate::recolour()
{
    return add(step(TreeStep::Kind::Recolour));
}

TreeUpdate& TreeUpdate::regenerate()
{
    return add(step(TreeStep::Kind::Regenerate));
}

TreeUpdate& TreeUpdate::showItemCount()
{
    return add(step(TreeStep::Kind::ShowItemCount));
}

TreeUpdate& TreeUpdate::showPosition(const QString& key)
{
    return add(step(TreeStep::Kind::ShowPosition, key));
}

TreeUpdate& TreeUpdate::showBusy()
{
    return add(step(TreeStep::Kind::ShowBusy));
}

TreeUpdate& TreeUpdate::hideBusy()
{
    return add(step(TreeStep::Kind::HideBusy));
}

TreeUpdate& TreeUpdate::selectNode(const QString& key)
{
    return add(step(TreeStep::Kind::SelectNode, key));
}

TreeUpdate& TreeUpdate::clickNode(const QString& key)
{
    return add(step(TreeStep::Kind::ClickNode, key));
}

TreeUpdate& TreeUpdate::clickFirstItemNode()
{
    return add(step(TreeStep::Kind::ClickFirstItemNode));
}

TreeUpdate& TreeUpdate::showItem()
{
    return add(step(TreeStep::Kind::ShowItem));
}

TreeUpdate& TreeUpdate::startLabelEdit(const QString& key)
{
    return add(step(TreeStep::Kind::StartLabelEdit, key));
}

TreeUpdate& TreeUpdate::toggleLinkTargetChoice()
{
    return add(step(TreeStep::Kind::ToggleLinkTargetChoice));
}

TreeUpdate& TreeUpdate::endLinkTargetChoice()
{
    return add(step(TreeStep::Kind::EndLinkTargetChoice));
}

TreeUpdate& TreeUpdate::focusTree()
{
    return add(step(TreeStep::Kind::FocusTree));
}

TreeUpdate& TreeUpdate::showMessage(const QString& text)
{
    return add(step(TreeStep::Kind::ShowMessage, QString(), text));
}

TreeUpdate& TreeUpdate::showRefusal(const QString& text)
{
    return add(step(TreeStep::Kind::ShowRefusal, QString(), text));
}

TreeUpdate& TreeUpdate::append(const TreeUpdate& other)
{
    m_steps.append(other.m_steps);
    return *this;
}

QString TreeUpdate::refusal() const
{
    for (const TreeStep& current : m_steps) {
        if (current.kind == TreeStep::Kind::ShowRefusal) {
            return current.text;
        }
    }
    return QString();
}

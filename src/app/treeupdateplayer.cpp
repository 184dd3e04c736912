#include "treeupdateplayer.h"

#include "app/busynoticeframe.h"
#include "app/editorwindow.h"
#include "app/editorwindowhost.h"
#include "app/findbar.h"
#include "app/flagscope.h"
#include "app/itemsidepanel.h"
#include "app/itemtree.h"
#include "app/treeshapesteps.h"
#include "core/applicationstate.h"
#include "core/statuspanels.h"
#include "editing/treeupdate.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

TreeUpdatePlayer::TreeUpdatePlayer(EditorWindow& editor)
    : m_editor(editor)
{
}

void TreeUpdatePlayer::play(const TreeUpdate& update)
{
    ItemTree* tree = m_editor.m_lstMenu;
    tree->documentChanged();
    bool busy = false;
    const auto endBusy = [this, tree, &busy] {
        if (busy) {
            busy = false;
            tree->setUpdatesEnabled(true);
            m_editor.hideBusyNotice();
        }
    };
    try {
        const QList<TreeStep>& steps = update.steps();
        for (qsizetype s = 0; s < steps.size(); ++s) {
            const TreeStep& step = steps.at(s);
            if (TreeShapeSteps::handles(step.kind)) {
                // The current node the tree moves on the way is not the user moving through it.
                FlagScope selecting(m_editor.m_selectingNode);
                m_editor.m_shownByMove.clear();
                s = TreeShapeSteps::apply(*tree, steps, s);
            } else if (step.kind == TreeStep::Kind::ShowBusy) {
                // The notice keeps the text it has; the tree stays unpainted until the work is done.
                m_editor.showBusyNotice(m_editor.m_frm01->text());
                tree->setUpdatesEnabled(false);
                busy = true;
            } else if (step.kind == TreeStep::Kind::HideBusy) {
                endBusy();
            } else if (step.kind == TreeStep::Kind::Recolour && s > 0
                       && steps.at(s - 1).kind == TreeStep::Kind::Regenerate) {
                // A rebuild has just styled every node from the menu: colouring again changes nothing.
            } else {
                playStep(step);
            }
        }
    } catch (...) {
        endBusy();
        throw;
    }
    endBusy();
    if (!update.steps().isEmpty()) {
        m_editor.m_findBar->followMenu();
    }
    // The path of the selected node follows renames (whose update may hold no step) and moves.
    const QModelIndex current = tree->currentIndex();
    if (current.isValid()) {
        m_editor.m_itemPanel->setPath(tree->fullPath(current));
    }
}

void TreeUpdatePlayer::playStep(const TreeStep& step)
{
    switch (step.kind) {
    case TreeStep::Kind::AddNode:
    case TreeStep::Kind::RemoveNode:
    case TreeStep::Kind::SetNodeText:
    case TreeStep::Kind::MoveNodeUp:
    case TreeStep::Kind::MoveNodeDown:
    case TreeStep::Kind::MoveNodeUnder:
    case TreeStep::Kind::MoveNodeToLastChild:
    case TreeStep::Kind::MoveNodeAfter:
    case TreeStep::Kind::SetNodeColour:
    case TreeStep::Kind::AddNodeWhenOnlyRoot:
    case TreeStep::Kind::ShowBusy:
    case TreeStep::Kind::HideBusy:
        break; // carried out by applyUpdate: the shape steps in runs, the busy notice while work lasts
    case TreeStep::Kind::Recolour:
        m_editor.ColorizeMenu();
        break;
    case TreeStep::Kind::Regenerate:
        m_editor.m_host.regenerateTree(m_editor.m_documentIndex);
        break;
    case TreeStep::Kind::ShowItemCount:
        // The item-count panel belongs to the active window (a drop may change another one).
        if (m_editor.m_host.activeDocumentIndex() == m_editor.m_documentIndex) {
            m_editor.m_host.showItemCount(int(m_editor.document().items.size()));
        }
        break;
    case TreeStep::Kind::ShowPosition: {
        const MenuDocument& menu = m_editor.document();
        const MenuItem& item = menu.items.at(requireItemByKey(menu, step.key, "ShowPosition"));
        m_editor.showStatusPanel(6, StatusPanels::positionOf(item));
        break;
    }
    case TreeStep::Kind::SelectNode:
        if (const QModelIndex node = m_editor.m_lstMenu->nodeByKey(step.key); node.isValid()) {
            FlagScope selecting(m_editor.m_selectingNode);
            m_editor.selectNode(node);
        }
        break;
    case TreeStep::Kind::ClickNode:
        // A node that is not in the tree (a hidden target) cannot be clicked: nothing happens.
        if (const QModelIndex node = m_editor.m_lstMenu->nodeByKey(step.key); node.isValid()) {
            m_editor.lstMenu_NodeClick(node);
        }
        break;
    case TreeStep::Kind::ClickFirstItemNode:
        if (const QModelIndex node = m_editor.m_lstMenu->node(2); node.isValid()) {
            m_editor.lstMenu_NodeClick(node);
        } else {
            m_editor.showNoItem();
        }
        break;
    case TreeStep::Kind::ShowItem:
        m_editor.SelectItem();
        break;
    case TreeStep::Kind::StartLabelEdit:
        m_editor.m_lstMenu->setFocus();
        m_editor.m_lstMenu->startLabelEdit(m_editor.m_lstMenu->nodeByKey(step.key));
        break;
    case TreeStep::Kind::ToggleLinkTargetChoice:
        m_editor.m_itemPanel->toggleChoosing();
        break;
    case TreeStep::Kind::EndLinkTargetChoice: {
        // The operation that ends the choice has already applied the check box.
        m_editor.m_itemPanel->endChoosing();
        m_editor.windowState().linkTargetChoice = false;
        m_editor.updateLinkControls();
        m_editor.m_host.updateMenus();
        break;
    }
    case TreeStep::Kind::FocusTree:
        m_editor.m_lstMenu->setFocus();
        break;
    case TreeStep::Kind::ShowMessage:
        m_editor.m_host.showPlainMessage(step.text);
        break;
    case TreeStep::Kind::ShowRefusal:
        m_editor.m_host.showRefusal(step.text);
        break;
    }
}

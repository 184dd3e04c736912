#pragma once

#include "core/editorview.h"

#include <QModelIndex>
#include <QWidget>
#include <QtGlobal>

class FileChangeBar;
class FindBar;
class BusyNoticeFrame;
class EditorWindowHost;
class ItemSidePanel;
class ItemTree;
class LinkTargetClicks;
class NodeDragHandler;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPoint;
class QPushButton;
struct MenuDocument;
struct TreeStep;
struct WindowEditingState;

/// One editor window (frmEditor): the item tree of one menu document on the left, the selected
/// item's command list and copy-command controls on the right. The window is addressed by the
/// same document index as its document for the whole run.
///
/// The window maps the core's rules onto its controls and never changes the document itself: every
/// change goes through the editing session, which hands back the steps (TreeUpdate) the window then
/// carries out. The operations named like lstMenu_NodeClick are the window's public operations that
/// the main window and the editing steps call by name. They throw RunTimeError on failure; callers
/// report it.
class EditorWindow final : public QWidget, public EditorView
{
    Q_OBJECT

public:
    /// The caption of an editor window that has not been given one yet.
    static QString defaultCaption() { return QStringLiteral("KELV Menu Editor - Form"); }

    EditorWindow(EditorWindowHost& host, qint16 documentIndex, QWidget* parent = nullptr);
    ~EditorWindow() override;

    qint16 documentIndex() const { return m_documentIndex; }
    /// The window's caption: the menu's file name, or "New menu N". The title bar shows it with a
    /// mark while the menu has unsaved changes (setWindowModified).
    QString caption() const { return m_caption; }
    void setCaption(const QString& caption);
    /// The document this window shows.
    const MenuDocument& document() const;

    ItemTree* tree() const { return m_lstMenu; }
    FindBar* findBar() const { return m_findBar; }
    /// The bar above the tree that says the menu's file was changed on disk by someone else.
    FileChangeBar* fileChangeBar() const { return m_fileChangeBar; }

    /// Shows the find bar above the tree, ready for typing.
    void openFindBar();
    /// Shows the node of item `key` as a click on it shows it (nothing while a link target is
    /// chosen, where a click would choose it).
    void showFoundItem(const QString& key);

    /// Shows the busy notice (frm01) with `text` and paints it at once, before long work starts on
    /// the user-interface thread.
    void showBusyNotice(const QString& text);
    void hideBusyNotice();

    /// Rebuilds the tree from the document under its hide mode, then selects the first top-level
    /// item and shows it as a click on it would.
    void generateTree();
    /// Shows the document as a rebuild would after it was replaced by an undone or redone state
    /// (`before` is the state it replaced), changing only the rows that differ; then selects the first
    /// top-level item and shows it as a click on it would.
    void showRestoredState(const MenuDocument& before);
    /// Re-applies the node colours and bold type from the document without rebuilding the tree.
    void ColorizeMenu();

    /// A click on `node`. A plain click remembers it, shows its place and index in the status bar,
    /// selects it and shows its item; while a link target is being chosen, it chooses `node` as the
    /// target of the item clicked last. The root node does nothing.
    void lstMenu_NodeClick(const QModelIndex& node);
    /// Shows the selected node's item: its path, its copy-command link and its commands (or the
    /// link target's commands while the link is on).
    void SelectItem();
    /// Applies the copy-command check box to the selected item.
    void chkCopyCommand_Click();
    /// Starts or ends choosing a link target, as the button's state says.
    void cmdChangeCopy_Click();
    /// Moves the selected item one place up, or down, among its siblings.
    void cmdUp_Click();
    void cmdDown_Click();
    /// A node of this program dropped on `node` of this window's tree (null: no node under the
    /// pointer) at `globalPos`: a left-button drop moves the dragged branch under it; a right-button
    /// drop asks with the drop menu.
    void lstMenu_OLEDragDrop(const QModelIndex& node, const QPoint& globalPos);

    /// The selected line of the command list (0-based); -1 when none is selected or it is empty.
    int selectedCommandIndex() const;

    /// Set by every plain node click and never cleared.
    bool nodeClicked() const;
    /// Whether the window is choosing a link target (its button is pressed).
    bool isChoosingLinkTarget() const;

    /// The tooltip of the link-target field: the caption of the shown item's link target; empty when
    /// it has none.
    QString linkTargetToolTip() const;
    /// The tooltip of line `row` of the command list: the whole line when it is too long to show in
    /// the list's width, otherwise empty.
    QString commandToolTip(int row) const;

    /// Closes the window as the user would (asking to save when the document is not saved).
    bool closeWindow();

    // EditorView
    QObject* viewObject() override { return this; }
    SelectedNode selectedNode() const override;
    QString nodeKey(int nodeIndex) const override;
    void applyUpdate(const TreeUpdate& update) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    friend class TreeUpdatePlayer;

    void buildLayout();
    /// Selects the first item node and shows it, and gives the root its text, as after a rebuild.
    void showFirstItem();
    /// Makes `node` the current and only selected node of the tree.
    void selectNode(const QModelIndex& node);
    void showNoItem();
    void showStatusPanel(int panel, const QString& text);
    void updateLinkControls();
    WindowEditingState& windowState() const;
    void onCurrentNodeChanged(const QModelIndex& current);
    void onNodeClicked(const QModelIndex& node);
    void onLabelEditStarted(const QString& key);
    void onLabelEditCommitted(const QString& key, const QString& text);
    void onRootCollapsed();
    /// Runs a click from the user, reporting a failure instead of passing it on.
    void clickFromUser(const QModelIndex& node);
    /// The context menu of `node`, selected and shown first, at `globalPos`.
    void showTreeMenu(const QModelIndex& node, const QPoint& globalPos);

    EditorWindowHost& m_host;
    const qint16 m_documentIndex;
    QString m_caption;
    /// True while the window itself changes the tree's current node, so that only the user's
    /// moves through the tree count as clicks.
    bool m_selectingNode = false;
    /// The key of the node a keyboard move already showed; the click that follows on the same node
    /// is not shown twice.
    QString m_shownByMove;

    ItemTree* m_lstMenu = nullptr;
    FindBar* m_findBar = nullptr;
    FileChangeBar* m_fileChangeBar = nullptr;
    ItemSidePanel* m_itemPanel = nullptr;
    BusyNoticeFrame* m_frm01 = nullptr;
    NodeDragHandler* m_dragHandler = nullptr;
    LinkTargetClicks* m_linkTargetClicks = nullptr;
};

#pragma once

#include <QWidget>
#include <QtGlobal>

class ItemTree;
class MainWindow;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidgetItem;
struct MenuDocument;

/// One editor window (frmEditor): the item tree of one menu document on the left, the selected
/// item's command list and copy-command controls on the right. The window is addressed by the
/// same document index as its document for the whole run.
///
/// The operations named like lstMenu_NodeClick are the window's public operations that the main
/// window and the editing commands call by name. They throw RunTimeError on failure; callers report
/// it.
class EditorWindow final : public QWidget
{
    Q_OBJECT

public:
    /// The caption of an editor window that has not been given one yet.
    static QString defaultCaption() { return QStringLiteral("KELV Menu Editor - Form"); }

    EditorWindow(MainWindow& mainWindow, qint16 documentIndex, QWidget* parent = nullptr);
    ~EditorWindow() override;

    qint16 documentIndex() const { return m_documentIndex; }
    /// The document this window shows.
    MenuDocument& document();
    const MenuDocument& document() const;

    ItemTree* tree() const { return m_lstMenu; }

    /// Shows the busy notice (frm01) with `text` and paints it at once, before long work starts on
    /// the user-interface thread.
    void showBusyNotice(const QString& text);
    void hideBusyNotice();

    /// Rebuilds the tree from the document after applying `modeChange` to its hide mode (-3 keeps
    /// it), then selects the first top-level item and shows it as a click on it would.
    void generateTree(int modeChange);
    /// Re-applies the node colours and bold type from the document without rebuilding the tree.
    void ColorizeMenu();

    /// A plain click on `node`: remembers it, shows its place and index in the status bar, selects
    /// it and shows its item. The root node does nothing.
    void lstMenu_NodeClick(QTreeWidgetItem* node);
    /// Shows the selected node's item: its path, its copy-command link and its commands (or the
    /// link target's commands while the link is on).
    void SelectItem();
    /// Applies the copy-command check box to the selected item and refills the command list.
    void chkCopyCommand_Click();

    /// Set by every plain node click and never cleared.
    bool nodeClicked() const { return m_nodeClicked; }

    /// Closes the window as the user would (asking to save when the document is not saved).
    bool closeWindow();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildLayout();
    void placeBusyNotice();
    void showNoItem();
    void fillCommands(const MenuDocument& document, int itemIndex);
    void onCurrentNodeChanged(QTreeWidgetItem* current);
    void onNodeClicked(QTreeWidgetItem* node);

    MainWindow& m_main;
    const qint16 m_documentIndex;
    bool m_nodeClicked = false;
    /// True while the window itself changes the tree's current node, so that only the user's
    /// moves through the tree count as clicks.
    bool m_selectingNode = false;
    /// The node a keyboard move already showed; the click that follows on the same node is not
    /// shown twice.
    QTreeWidgetItem* m_shownByMove = nullptr;

    ItemTree* m_lstMenu = nullptr;
    QListWidget* m_lstCommand = nullptr;
    QCheckBox* m_chkCopyCommand = nullptr;
    QLineEdit* m_txtItemIndexCopy = nullptr;
    QPushButton* m_cmdChangeCopy = nullptr;
    QPushButton* m_cmdUp = nullptr;
    QPushButton* m_cmdDown = nullptr;
    QLabel* m_lblPath = nullptr;
    QFrame* m_frm01 = nullptr;
    QLabel* m_lblReconstruct = nullptr;
};

#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include <functional>

class QCheckBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
struct ItemPanel;

/// The item side of an editor window (pnlItem): the selected node's path (lblPath), its command
/// list (lstCommand), its copy-command link (chkCopyCommand, txtItemIndexCopy, cmdChangeCopy) and
/// the buttons that move it among its siblings (cmdUp, cmdDown). It shows what it is told and
/// reports what the user does; the editor window decides what that means.
class ItemSidePanel final : public QWidget
{
    Q_OBJECT

public:
    /// The colour of the link-target button while a target is being chosen.
    static QColor choosingColour();

    explicit ItemSidePanel(QWidget* parent = nullptr);

    /// Shows `path` and, for an item, its link and commands.
    void showPath(const QString& path);
    /// Shows `path` and leaves the rest as it is.
    void setPath(const QString& path);
    void showItem(const ItemPanel& panel);
    /// Shows no item at all.
    void showNothing();
    /// Enables the controls for what is shown: an item or not, and whether a link target is being
    /// chosen.
    void updateControls(bool itemShown, bool choosing);

    bool isLinkChecked() const;
    /// Whether the link-target button is pressed.
    bool isChoosing() const;
    /// Presses or releases the link-target button, as a click would, telling chooseTargetToggled.
    void toggleChoosing();
    /// Releases the link-target button without telling anyone, and gives it its usual colour.
    void endChoosing();
    /// Gives the link-target button the colour of choosing, or its usual one.
    void showChoosingColour(bool choosing);

    /// The selected line of the command list (0-based); -1 when none is selected or it is empty. A
    /// line that merely has the keyboard focus is not selected: nothing acts on a line the user does
    /// not see selected.
    int selectedCommandIndex() const;
    /// The tooltip of line `row` of the command list: the whole line when it is too long to show in
    /// the list's width, otherwise empty.
    QString commandToolTip(int row) const;
    /// Where the tooltip of the link-target field comes from.
    void setLinkTargetToolTipSource(std::function<QString()> source) { m_linkTargetToolTip = std::move(source); }

Q_SIGNALS:
    /// The user clicked the copy-command check box; `checked` is its new state.
    void linkBoxClicked(bool checked);
    /// The link-target button was pressed or released.
    void chooseTargetToggled();
    void moveUpClicked();
    void moveDownClicked();
    /// The user double-clicked a line of the command list, or pressed Enter on it.
    void commandEditRequested();
    /// The user double-clicked the list's empty space, or pressed Insert in it.
    void commandAddRequested();
    /// The user pressed Delete in the list while a line is selected.
    void commandRemoveRequested();
    /// The user released the right button over the command list, or pressed Shift+F10 or the Menu
    /// key in it: the menu opens at `globalPos`, the line under the pointer (or the current one)
    /// selected first.
    void commandMenuRequested(const QPoint& globalPos);
    /// The user double-clicked the link-target field.
    void followLinkRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Makes line `row` the current and only selected line of the command list.
    void selectLine(int row);
    /// Asks for the command menu at the current line, which is selected first.
    void popupMenuAtCurrentLine();
    /// Enter edits the current line, Insert adds a command, Delete removes the selected line; true
    /// when `key` was one of them.
    bool commandListKey(const QKeyEvent* key);

    QLabel* m_lblPath = nullptr;
    QListWidget* m_lstCommand = nullptr;
    QCheckBox* m_chkCopyCommand = nullptr;
    QLineEdit* m_txtItemIndexCopy = nullptr;
    QPushButton* m_cmdChangeCopy = nullptr;
    QPushButton* m_cmdUp = nullptr;
    QPushButton* m_cmdDown = nullptr;
    std::function<QString()> m_linkTargetToolTip;
};

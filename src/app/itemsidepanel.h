#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include <functional>

class QCheckBox;
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

    /// The selected line of the command list (0-based); -1 when none is selected or it is empty.
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
    /// The user double-clicked a line of the command list.
    void commandEditRequested();
    /// The user released the right button over the command list, at `globalPos`.
    void commandMenuRequested(const QPoint& globalPos);
    /// The user double-clicked the link-target field.
    void followLinkRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLabel* m_lblPath = nullptr;
    QListWidget* m_lstCommand = nullptr;
    QCheckBox* m_chkCopyCommand = nullptr;
    QLineEdit* m_txtItemIndexCopy = nullptr;
    QPushButton* m_cmdChangeCopy = nullptr;
    QPushButton* m_cmdUp = nullptr;
    QPushButton* m_cmdDown = nullptr;
    std::function<QString()> m_linkTargetToolTip;
};

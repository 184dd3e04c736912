#pragma once

#include <QFrame>

class QAction;
class QMenu;
class QTextBrowser;

/// The help of the variable the pointer or the keyboard is on, shown beside the open variables menu
/// of the command editor (lblVariableHelp): the dialog's own help pane lies under the menu while it
/// is open. It goes when the menu closes.
class VariableHelpPopup final : public QFrame
{
    Q_OBJECT

public:
    explicit VariableHelpPopup(QWidget* parent);

    /// Shows `html` (or `plain` text when `html` is empty) beside `menu`, level with `entry`.
    void showBeside(QMenu* menu, QAction* entry, const QString& html, const QString& plain);
    /// The text shown.
    QString text() const;

    /// Where a box of `size` goes beside a menu at `menu` whose entry is at `entry` (global
    /// coordinates): right of the menu, level with the entry, within `screen`; left of the menu when
    /// the right has no room.
    static QRect placeBeside(const QRect& menu, const QRect& entry, const QSize& size, const QRect& screen);

private:
    QTextBrowser* m_text = nullptr;
};

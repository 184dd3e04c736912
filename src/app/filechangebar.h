#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

/// The bar above an editor window's tree (fraFileChanged) that says the menu's file was changed on
/// disk by someone else, or is gone (lblFileChanged), with Reload (cmdReload: the file's menu in
/// place of this one, as one step that Undo takes back) and Keep mine (cmdKeepMine: the bar goes, and
/// the next Save still asks before it writes over the other version). Hidden until there is such a
/// change.
class FileChangeBar final : public QFrame
{
    Q_OBJECT

public:
    enum class Kind {
        /// The file holds something else now.
        Changed,
        /// There is no file at the menu's path any more: nothing to reload.
        Missing,
    };

    explicit FileChangeBar(QWidget* parent = nullptr);

    /// Shows the bar for a change of `kind` to the file at `path`.
    void showChange(Kind kind, const QString& path);
    /// The text the bar shows for a change of `kind` to the file at `path`.
    static QString text(Kind kind, const QString& path);

Q_SIGNALS:
    void reloadClicked();
    void keepMineClicked();

private:
    QLabel* m_lblFileChanged = nullptr;
    QPushButton* m_cmdReload = nullptr;
    QPushButton* m_cmdKeepMine = nullptr;
};

#pragma once

#include <QDialog>

class EditingSession;
class QCheckBox;
class QLineEdit;

/// The Replace dialog (frmReplace): replaces a text in the captions and command texts of the active
/// menu, or of its selected branch. It is made once and only shown and hidden, so its texts and its
/// check box keep their values; closing it by its frame hides it. It does not block the editor
/// windows, and Replace All acts on whichever editor window is active when it is pressed.
class ReplaceDialog final : public QDialog
{
    Q_OBJECT

public:
    ReplaceDialog(EditingSession& session, QWidget* parent);

    /// Replace All: the find text is replaced as the fields and the check box say.
    void cmdReplaceAll_Click();

private:
    EditingSession& m_session;
    QLineEdit* m_txtFind = nullptr;
    QLineEdit* m_txtReplace = nullptr;
    QCheckBox* m_chkRootNode = nullptr;
};

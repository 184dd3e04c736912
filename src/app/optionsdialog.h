#pragma once

#include "core/options.h"

#include <QDialog>

class OptionsStore;
class QCheckBox;
class QPushButton;

/// The Options dialog (frmOptions): one check box for each option the dialog edits. Save writes all
/// five options to the store at once and closes; Cancel closes without writing anything. The fifth
/// option, CopyCommandDup, is the check mark of the Edit menu, so it is taken from the options the
/// dialog was opened with.
class OptionsDialog final : public QDialog
{
    Q_OBJECT

public:
    OptionsDialog(OptionsStore& store, const Options& current, QWidget* parent = nullptr);

    /// The options as saved by Save; the options the dialog was opened with until then.
    Options options() const { return m_options; }

private:
    void cmdSave_Click();

    OptionsStore& m_store;
    Options m_options;
    QCheckBox* m_checkCopyCommand = nullptr;
    QCheckBox* m_hideItemsWithoutCommand = nullptr;
    QCheckBox* m_hideItemsCopyCommand = nullptr;
    QCheckBox* m_dragNDrop = nullptr;
};

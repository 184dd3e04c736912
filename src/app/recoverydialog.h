#pragma once

#include "app/recoveryprompt.h"

#include <QDateTime>
#include <QDialog>
#include <QList>
#include <QString>

class QComboBox;
class QTableWidget;

/// The dialog at start-up that lists the recovery copies left by editors that did not quit normally
/// (frmRecovery): one row a menu (lstRecovery: its name, its file, when it was last changed, how many
/// items it has) with a choice of its own (cmbRecovery0, cmbRecovery1, ...: Recover, Discard, Decide
/// later), and buttons for all of them at once (cmdRecoverAll, cmdDiscardAll, cmdDecideLater) or for
/// the choices made row by row (cmdRecoveryOk). Closing it decides nothing: every copy is kept for
/// the next start.
class RecoveryDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit RecoveryDialog(const QList<RecoveryCopy>& copies, QWidget* parent = nullptr);

    /// What the user chose for each copy, in the order given.
    QList<RecoveryPrompt::Decision> decisions() const;

    /// The texts of a copy's row.
    static QString menuText(const RecoveryCopy& copy);
    static QString pathText(const RecoveryCopy& copy);
    static QString timeText(const QDateTime& time);

private:
    /// Sets every row's choice to `decision` and closes the dialog with it.
    void decideAll(RecoveryPrompt::Decision decision);

    QTableWidget* m_lstRecovery = nullptr;
    QList<QComboBox*> m_choices;
};

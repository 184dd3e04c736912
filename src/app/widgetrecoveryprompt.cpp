#include "widgetrecoveryprompt.h"

#include "app/recoverydialog.h"

WidgetRecoveryPrompt::WidgetRecoveryPrompt(QWidget* parent)
    : m_parent(parent)
{
}

QList<RecoveryPrompt::Decision> WidgetRecoveryPrompt::decide(const QList<RecoveryCopy>& copies)
{
    RecoveryDialog dialog(copies, m_parent.data());
    dialog.exec();
    return dialog.decisions();
}

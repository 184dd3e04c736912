#pragma once

#include "app/recoveryprompt.h"

#include <QPointer>
#include <QWidget>

/// The recovery question as the user sees it: RecoveryDialog, shown modally over `parent`.
class WidgetRecoveryPrompt final : public RecoveryPrompt
{
public:
    explicit WidgetRecoveryPrompt(QWidget* parent = nullptr);

    QList<Decision> decide(const QList<RecoveryCopy>& copies) override;

private:
    QPointer<QWidget> m_parent;
};

#pragma once

#include "core/userprompts.h"

#include <QPointer>
#include <QWidget>

/// The message boxes and file dialogs the user really sees.
class WidgetPrompts final : public UserPrompts
{
public:
    /// Boxes and dialogs are centred on `parent` (the main window) once it is set.
    explicit WidgetPrompts(QWidget* parent = nullptr);

    void setParentWidget(QWidget* parent) { m_parent = parent; }

    Answer showMessage(const MessageRequest& request) override;
    QString askOpenFileName(const QString& title, const QString& filter, const QString& startFolder) override;
    QString askSaveFileName(const QString& title, const QString& filter, const QString& startFolder) override;

    /// The title a box without one of its own gets.
    static QString applicationTitle();

private:
    QPointer<QWidget> m_parent;
};

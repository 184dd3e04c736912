#pragma once

#include <QWidget>

/// Suspends painting of a widget for the length of a scope, also when an error leaves it early.
/// Painting is then as it was before, or as asked.
class PaintingSuspended final
{
public:
    explicit PaintingSuspended(QWidget* widget)
        : PaintingSuspended(widget, widget->updatesEnabled())
    {
    }
    PaintingSuspended(QWidget* widget, bool enabledAfter)
        : m_widget(widget)
        , m_enabledAfter(enabledAfter)
    {
        m_widget->setUpdatesEnabled(false);
    }
    ~PaintingSuspended() { m_widget->setUpdatesEnabled(m_enabledAfter); }
    PaintingSuspended(const PaintingSuspended&) = delete;
    PaintingSuspended& operator=(const PaintingSuspended&) = delete;

private:
    QWidget* m_widget;
    bool m_enabledAfter;
};

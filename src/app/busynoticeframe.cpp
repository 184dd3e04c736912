#include "busynoticeframe.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

BusyNoticeFrame::BusyNoticeFrame(QWidget* window)
    : QFrame(window)
{
    setObjectName(QStringLiteral("frm01"));
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    m_lblReconstruct = new QLabel(this);
    m_lblReconstruct->setObjectName(QStringLiteral("lblReconstruct"));
    m_lblReconstruct->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 12, 24, 12);
    layout->addWidget(m_lblReconstruct);
    hide();
    window->installEventFilter(this);
}

void BusyNoticeFrame::showNotice(const QString& text)
{
    m_lblReconstruct->setText(text);
    adjustSize();
    place();
    show();
    raise();
    parentWidget()->repaint();
}

QString BusyNoticeFrame::text() const
{
    return m_lblReconstruct->text();
}

void BusyNoticeFrame::place()
{
    const QWidget* window = parentWidget();
    move((window->width() - width()) / 2, (window->height() - height()) / 2);
}

bool BusyNoticeFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        place();
    }
    return QFrame::eventFilter(watched, event);
}

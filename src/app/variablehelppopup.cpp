#include "variablehelppopup.h"

#include <QAction>
#include <QMenu>
#include <QScreen>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>

VariableHelpPopup::VariableHelpPopup(QWidget* parent)
    : QFrame(parent, Qt::ToolTip | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("lblVariableHelp"));
    setFrameShape(QFrame::Box);
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_text = new QTextBrowser(this);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setFocusPolicy(Qt::NoFocus);
    m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_text);
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.horizontalAdvance(QLatin1Char('x')) * 60, metrics.lineSpacing() * 7);
}

void VariableHelpPopup::showBeside(QMenu* menu, QAction* entry, const QString& html, const QString& plain)
{
    if (html.isEmpty()) {
        m_text->setPlainText(plain);
    } else {
        m_text->setHtml(html);
    }
    const QRect menuRect = menu->geometry();
    QRect entryRect = menu->actionGeometry(entry);
    entryRect.moveTopLeft(menu->mapToGlobal(entryRect.topLeft()));
    const QScreen* screen = menu->screen();
    const QRect area = screen != nullptr ? screen->availableGeometry() : menuRect;
    setGeometry(placeBeside(menuRect, entryRect, size(), area));
    show();
    raise();
}

QString VariableHelpPopup::text() const
{
    return m_text->toPlainText();
}

QRect VariableHelpPopup::placeBeside(const QRect& menu, const QRect& entry, const QSize& size, const QRect& screen)
{
    const int gap = 2;
    int left = menu.right() + 1 + gap;
    if (left + size.width() - 1 > screen.right() && menu.left() - gap - size.width() >= screen.left()) {
        left = menu.left() - gap - size.width();
    }
    const int top = std::clamp(entry.top(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - size.height()));
    return QRect(QPoint(left, top), size);
}

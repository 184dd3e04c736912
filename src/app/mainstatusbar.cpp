#include "mainstatusbar.h"

#include "core/statuspanels.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QStatusBar>

MainStatusBar::MainStatusBar(QStatusBar* bar)
{
    const QStringList texts
        = { QCoreApplication::translate("MainWindow", "Item index:"), QString(),
            QCoreApplication::translate("MainWindow", "Item count:"), QString(),
            QCoreApplication::translate("MainWindow", "Position:"),   StatusPanels::designPosition() };
    for (int panel = 0; panel < texts.size(); ++panel) {
        auto* label = new QLabel(texts.at(panel), bar);
        label->setObjectName(QStringLiteral("pnl") + QString::number(panel + 1));
        if (panel % 2 == 1) {
            label->setFrameShape(QFrame::Panel);
            label->setFrameShadow(QFrame::Sunken);
            label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("(0000 ; 0000)")) + 12);
        }
        bar->addWidget(label);
        m_panels.append(label);
    }
}

void MainStatusBar::setPanelText(int panel, const QString& text)
{
    if (panel >= 1 && panel <= m_panels.size()) {
        m_panels.at(panel - 1)->setText(text);
    }
}

void MainStatusBar::showItemCount(int count)
{
    setPanelText(4, QString::number(count));
}

void MainStatusBar::show(const StatusPanels& panels)
{
    setPanelText(2, panels.itemIndex);
    setPanelText(4, panels.itemCount);
    setPanelText(6, panels.position);
}

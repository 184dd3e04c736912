#pragma once

#include <QList>
#include <QString>

class QLabel;
class QStatusBar;
struct StatusPanels;

/// The six panels of the main window's status bar (pnl1 .. pnl6): 2, 4 and 6 hold the active editor
/// window's selected item's index, the item count and the item's place among its siblings with its
/// number of children; 1, 3 and 5 caption them.
class MainStatusBar final
{
public:
    explicit MainStatusBar(QStatusBar* bar);

    /// Sets the text of panel `panel` (1..6); any other number does nothing.
    void setPanelText(int panel, const QString& text);
    void showItemCount(int count);
    /// Shows the item panels of the active editor window.
    void show(const StatusPanels& panels);

private:
    QList<QLabel*> m_panels;
};

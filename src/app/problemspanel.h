#pragma once

#include "core/menuproblem.h"
#include "model/menudocument.h"

#include <QDockWidget>
#include <QList>

#include <functional>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

/// The Problems panel: what the problem check finds in the active menu, one row per problem with
/// the item it concerns. It follows the active menu as it is edited and as windows are switched, and
/// a double click on a row asks for its item to be shown. It reads the menu only.
class ProblemsPanel final : public QDockWidget
{
    Q_OBJECT

public:
    /// `documentOf` gives the menu of a document slot, null when there is none.
    ProblemsPanel(std::function<const MenuDocument*(qint16)> documentOf, QWidget* parent);

    /// Shows the problems of the menu of document slot `index` (0: none), checking it again only
    /// when it changed since it was last checked. While the panel is hidden the check waits until
    /// it is shown.
    void follow(qint16 index);

    QList<MenuProblem> problems() const { return m_problems; }
    QTreeWidget* list() const { return m_lstProblems; }

Q_SIGNALS:
    /// The item with key `key` of document `index` is to be shown.
    void itemRequested(qint16 index, const QString& key);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void onRowActivated(QTreeWidgetItem* row);

    QTreeWidget* m_lstProblems = nullptr;
    QLabel* m_lblSummary = nullptr;
    std::function<const MenuDocument*(qint16)> m_documentOf;
    qint16 m_index = 0;
    /// The menu as it was last checked: its items share their data with the document's until it
    /// changes, so telling whether it changed costs next to nothing.
    MenuDocument m_checked;
    bool m_checkedValid = false;
    QList<MenuProblem> m_problems;
};

#include "problemspanel.h"

#include "core/menuproblemcheck.h"

#include <QHeaderView>
#include <QLabel>
#include <QShowEvent>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QString kindName(MenuProblem::Kind kind)
{
    switch (kind) {
    case MenuProblem::Kind::LevelJump:
        return QObject::tr("Level");
    case MenuProblem::Kind::StrayMarkers:
        return QObject::tr("Markers");
    case MenuProblem::Kind::EmptyCaption:
        return QObject::tr("Empty caption");
    case MenuProblem::Kind::DuplicateCaption:
        return QObject::tr("Same caption");
    case MenuProblem::Kind::UnknownVariable:
        return QObject::tr("Unknown variable");
    case MenuProblem::Kind::OddDollarCount:
        return QObject::tr("Odd $ count");
    case MenuProblem::Kind::ParameterNumberOutOfRange:
    case MenuProblem::Kind::RepeatedParameterNumber:
        return QObject::tr("Script parameter");
    case MenuProblem::Kind::EmptyCommand:
        return QObject::tr("Empty command");
    case MenuProblem::Kind::NoScriptFile:
        return QObject::tr("Script file");
    case MenuProblem::Kind::UnsavableValue:
        return QObject::tr("Cannot be saved");
    }
    return QString();
}

} // namespace

ProblemsPanel::ProblemsPanel(std::function<const MenuDocument*(qint16)> documentOf, QWidget* parent)
    : QDockWidget(tr("Problems"), parent)
    , m_documentOf(std::move(documentOf))
{
    setObjectName(QStringLiteral("dockProblems"));
    auto* content = new QWidget(this);
    m_lblSummary = new QLabel(content);
    m_lblSummary->setObjectName(QStringLiteral("lblProblems"));
    m_lstProblems = new QTreeWidget(content);
    m_lstProblems->setObjectName(QStringLiteral("lstProblems"));
    m_lstProblems->setRootIsDecorated(false);
    m_lstProblems->setUniformRowHeights(true);
    m_lstProblems->setHeaderLabels({ tr("Item"), tr("Command"), tr("Kind"), tr("Problem") });
    m_lstProblems->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_lstProblems->header()->setStretchLastSection(true);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_lblSummary);
    layout->addWidget(m_lstProblems, 1);
    setWidget(content);
    connect(m_lstProblems, &QTreeWidget::itemDoubleClicked, this, &ProblemsPanel::onRowActivated);
}

void ProblemsPanel::follow(qint16 index)
{
    const MenuDocument* document = m_documentOf(index);
    const bool sameMenu
        = index == m_index && document != nullptr && m_checkedValid && document->items.isSharedWith(m_checked.items);
    m_index = document != nullptr ? index : qint16(0);
    if (sameMenu) {
        return;
    }
    m_checkedValid = false;
    if (isVisible()) {
        refresh();
    }
}

void ProblemsPanel::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    if (!m_checkedValid) {
        refresh();
    }
}

void ProblemsPanel::refresh()
{
    const MenuDocument* document = m_documentOf(m_index);
    m_problems = document != nullptr ? MenuProblems::checkDocument(*document) : QList<MenuProblem>();
    m_checked = document != nullptr ? *document : MenuDocument();
    m_checkedValid = true;

    m_lstProblems->setUpdatesEnabled(false);
    m_lstProblems->clear();
    QList<QTreeWidgetItem*> rows;
    rows.reserve(m_problems.size());
    for (const MenuProblem& problem : std::as_const(m_problems)) {
        QString item = problem.itemPath.join(QStringLiteral(" > "));
        if (problem.itemNumber > 0) {
            item = QString::number(problem.itemNumber) + QStringLiteral("  ") + item;
        }
        auto* row = new QTreeWidgetItem(
            { item, problem.commandNumber > 0 ? QString::number(problem.commandNumber) : QString(),
              kindName(problem.kind), problem.message });
        row->setData(0, Qt::UserRole, problem.itemKey);
        row->setToolTip(3, problem.text());
        rows.append(row);
    }
    m_lstProblems->addTopLevelItems(rows);
    m_lstProblems->setUpdatesEnabled(true);
    if (document == nullptr) {
        m_lblSummary->setText(tr("No menu is open."));
    } else if (m_problems.isEmpty()) {
        m_lblSummary->setText(tr("No problems found."));
    } else {
        m_lblSummary->setText(m_problems.size() == 1 ? tr("1 problem") : tr("%1 problems").arg(m_problems.size()));
    }
}

void ProblemsPanel::onRowActivated(QTreeWidgetItem* row)
{
    const QString key = row != nullptr ? row->data(0, Qt::UserRole).toString() : QString();
    if (!key.isEmpty() && m_index != 0) {
        Q_EMIT itemRequested(m_index, key);
    }
}

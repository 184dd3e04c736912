#include "findbar.h"

#include "model/menudocument.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

FindBar::FindBar(std::function<const MenuDocument&()> document, QWidget* parent)
    : QWidget(parent)
    , m_document(std::move(document))
{
    setObjectName(QStringLiteral("fraFind"));
    m_txtFind = new QLineEdit(this);
    m_txtFind->setObjectName(QStringLiteral("txtFindItem"));
    m_txtFind->setPlaceholderText(tr("Find an item"));
    m_txtFind->setClearButtonEnabled(true);
    m_txtFind->installEventFilter(this);
    m_chkInCommands = new QCheckBox(tr("&Commands too"), this);
    m_chkInCommands->setObjectName(QStringLiteral("chkFindInCommands"));
    m_chkInCommands->setToolTip(tr("Also look in the extensions and command texts"));
    m_chkMatchCase = new QCheckBox(tr("Match c&ase"), this);
    m_chkMatchCase->setObjectName(QStringLiteral("chkFindMatchCase"));
    m_lblMatches = new QLabel(this);
    m_lblMatches->setObjectName(QStringLiteral("lblFindMatches"));
    m_cmdPrevious = new QToolButton(this);
    m_cmdPrevious->setObjectName(QStringLiteral("cmdFindPrevious"));
    m_cmdPrevious->setArrowType(Qt::UpArrow);
    m_cmdPrevious->setToolTip(tr("Previous match (Shift+F3)"));
    m_cmdNext = new QToolButton(this);
    m_cmdNext->setObjectName(QStringLiteral("cmdFindNext"));
    m_cmdNext->setArrowType(Qt::DownArrow);
    m_cmdNext->setToolTip(tr("Next match (Enter, F3)"));
    m_cmdClose = new QToolButton(this);
    m_cmdClose->setObjectName(QStringLiteral("cmdFindClose"));
    m_cmdClose->setText(QStringLiteral("\u00D7"));
    m_cmdClose->setToolTip(tr("Close (Escape)"));

    auto* layout = new QHBoxLayout;
    layout->addWidget(m_txtFind, 1);
    layout->addWidget(m_cmdPrevious);
    layout->addWidget(m_cmdNext);
    layout->addWidget(m_cmdClose);
    auto* options = new QHBoxLayout;
    options->addWidget(m_chkInCommands);
    options->addWidget(m_chkMatchCase);
    options->addStretch(1);
    options->addWidget(m_lblMatches);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 4);
    rows->addLayout(layout);
    rows->addLayout(options);

    // F3 and Shift+F3 work anywhere in the editor window while the bar is shown.
    auto* next = new QAction(this);
    next->setShortcut(QKeySequence(Qt::Key_F3));
    next->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    auto* previous = new QAction(this);
    previous->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3));
    previous->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    if (parent != nullptr) {
        parent->addAction(next);
        parent->addAction(previous);
    }
    connect(next, &QAction::triggered, this, [this] {
        if (isVisible()) {
            findNext();
        }
    });
    connect(previous, &QAction::triggered, this, [this] {
        if (isVisible()) {
            findPrevious();
        }
    });
    connect(m_txtFind, &QLineEdit::textChanged, this, [this] {
        search();
        if (m_finder.count() > 0) {
            showMatch(0);
        }
    });
    connect(m_chkInCommands, &QCheckBox::toggled, this, &FindBar::search);
    connect(m_chkMatchCase, &QCheckBox::toggled, this, &FindBar::search);
    connect(m_cmdNext, &QToolButton::clicked, this, &FindBar::findNext);
    connect(m_cmdPrevious, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(m_cmdClose, &QToolButton::clicked, this, &FindBar::close);
    hide();
}

void FindBar::open()
{
    show();
    m_txtFind->setFocus(Qt::ShortcutFocusReason);
    m_txtFind->selectAll();
}

void FindBar::search()
{
    FindRequest request;
    request.text = m_txtFind->text();
    request.inCommands = m_chkInCommands->isChecked();
    request.matchCase = m_chkMatchCase->isChecked();
    const MenuDocument& document = m_document();
    m_finder.find(document, document.hideMode, request);
    m_current = -1;
    showCount();
}

void FindBar::menuChanged()
{
    if (isHidden()) {
        // A closed bar keeps nothing of the menu: the records the finder still shares would outlive
        // the edits that replace them.
        m_finder.reset();
        return;
    }
    // The finder sees for itself what changed in the menu and keeps what still holds.
    m_finder.forgetSearch();
}

void FindBar::followMenu()
{
    menuChanged();
    if (isVisible()) {
        search();
    }
}

void FindBar::findNext()
{
    if (m_finder.count() == 0) {
        return;
    }
    showMatch(m_current + 1 >= m_finder.count() ? 0 : m_current + 1);
}

void FindBar::findPrevious()
{
    if (m_finder.count() == 0) {
        return;
    }
    showMatch(m_current <= 0 ? int(m_finder.count()) - 1 : m_current - 1);
}

void FindBar::showMatch(int index)
{
    m_current = index;
    showCount();
    Q_EMIT matchChosen(m_finder.keyAt(index));
}

void FindBar::showCount()
{
    if (m_txtFind->text().isEmpty()) {
        m_lblMatches->clear();
    } else if (m_finder.count() == 0) {
        m_lblMatches->setText(tr("No match"));
    } else if (m_current < 0) {
        m_lblMatches->setText(m_finder.count() == 1 ? tr("1 match") : tr("%1 matches").arg(m_finder.count()));
    } else {
        m_lblMatches->setText(tr("%1 of %2").arg(m_current + 1).arg(m_finder.count()));
    }
}

void FindBar::close()
{
    hide();
    Q_EMIT closed();
}

bool FindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_txtFind && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape) {
            close();
            return true;
        }
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (key->modifiers() & Qt::ShiftModifier) {
                findPrevious();
            } else {
                findNext();
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

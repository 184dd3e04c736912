#include "itemsidepanel.h"

#include "app/pathlabel.h"

#include "app/plaintooltip.h"
#include "app/shapedtextdelegate.h"
#include "core/tooltiptexts.h"
#include "editing/itempanel.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolTip>
#include <QVBoxLayout>

QColor ItemSidePanel::choosingColour()
{
    return QColor(168, 227, 176);
}

ItemSidePanel::ItemSidePanel(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("pnlItem"));
    m_lblPath = new PathLabel(this);
    m_lblPath->setObjectName(QStringLiteral("lblPath"));

    auto* commandsCaption = new QLabel(tr("Commands of the item:"), this);
    commandsCaption->setObjectName(QStringLiteral("lblCommands"));
    m_lstCommand = new QListWidget(this);
    m_lstCommand->setObjectName(QStringLiteral("lstCommand"));
    commandsCaption->setBuddy(m_lstCommand);
    // A double click edits the line; the right button's release pops the command menu up, also
    // over an empty list.
    m_lstCommand->viewport()->installEventFilter(this);
    m_lstCommand->installEventFilter(this);
    m_lstCommand->setContextMenuPolicy(Qt::DefaultContextMenu);
    // Showing another item fills the list anew, and the list measures every line each time.
    m_lstCommand->setItemDelegate(new ShapedTextDelegate(m_lstCommand));

    // The copy-command link: the check box switches it, the field names the target item (a double
    // click follows the link) and the button starts choosing a target in the tree.
    m_chkCopyCommand = new QCheckBox(tr("Use the commands of item"), this);
    m_chkCopyCommand->setObjectName(QStringLiteral("chkCopyCommand"));
    m_chkCopyCommand->setEnabled(false);
    // Only the user's clicks count: the box is set from the document whenever an item is shown.
    connect(m_chkCopyCommand, &QCheckBox::clicked, this, &ItemSidePanel::linkBoxClicked);
    m_txtItemIndexCopy = new QLineEdit(this);
    m_txtItemIndexCopy->setObjectName(QStringLiteral("txtItemIndexCopy"));
    m_txtItemIndexCopy->setReadOnly(true);
    m_txtItemIndexCopy->setEnabled(false);
    m_txtItemIndexCopy->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000000")) + 16);
    m_txtItemIndexCopy->installEventFilter(this);
    m_cmdChangeCopy = new QPushButton(tr("Choose item..."), this);
    m_cmdChangeCopy->setObjectName(QStringLiteral("cmdChangeCopy"));
    m_cmdChangeCopy->setCheckable(true);
    m_cmdChangeCopy->setEnabled(false);
    m_cmdChangeCopy->setAutoFillBackground(true);
    connect(m_cmdChangeCopy, &QPushButton::toggled, this, &ItemSidePanel::chooseTargetToggled);

    auto* linkBox = new QGroupBox(tr("Copy command"), this);
    linkBox->setObjectName(QStringLiteral("grpCopyCommand"));
    // The check box has a row of its own, so that the side stays narrow and leaves room for the tree
    // when windows are tiled side by side.
    auto* linkLayout = new QGridLayout(linkBox);
    linkLayout->addWidget(m_chkCopyCommand, 0, 0, 1, 3, Qt::AlignLeft);
    linkLayout->addWidget(m_txtItemIndexCopy, 1, 0);
    linkLayout->addWidget(m_cmdChangeCopy, 1, 1);
    linkLayout->setColumnStretch(2, 1);

    // Moving the selected item among its siblings.
    m_cmdUp = new QPushButton(tr("Move up"), this);
    m_cmdUp->setObjectName(QStringLiteral("cmdUp"));
    m_cmdUp->setEnabled(false);
    connect(m_cmdUp, &QPushButton::clicked, this, &ItemSidePanel::moveUpClicked);
    m_cmdDown = new QPushButton(tr("Move down"), this);
    m_cmdDown->setObjectName(QStringLiteral("cmdDown"));
    m_cmdDown->setEnabled(false);
    connect(m_cmdDown, &QPushButton::clicked, this, &ItemSidePanel::moveDownClicked);
    auto* moveLayout = new QHBoxLayout;
    moveLayout->addWidget(m_cmdUp);
    moveLayout->addWidget(m_cmdDown);
    moveLayout->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 0, 0, 0);
    layout->addWidget(m_lblPath);
    layout->addWidget(commandsCaption);
    layout->addWidget(m_lstCommand, 1);
    layout->addWidget(linkBox);
    layout->addLayout(moveLayout);
}

void ItemSidePanel::showPath(const QString& path)
{
    m_lblPath->setText(path);
    m_lstCommand->clear();
}

void ItemSidePanel::setPath(const QString& path)
{
    m_lblPath->setText(path);
}

void ItemSidePanel::showItem(const ItemPanel& panel)
{
    m_txtItemIndexCopy->setText(panel.linkTarget);
    m_chkCopyCommand->setChecked(panel.linked);
    m_lstCommand->addItems(panel.commandLines);
}

void ItemSidePanel::showNothing()
{
    m_lblPath->clear();
    m_lstCommand->clear();
    m_txtItemIndexCopy->clear();
    m_chkCopyCommand->setChecked(false);
}

void ItemSidePanel::updateControls(bool itemShown, bool choosing)
{
    const bool linked = m_chkCopyCommand->isChecked();
    m_chkCopyCommand->setEnabled(itemShown && !choosing);
    m_cmdChangeCopy->setEnabled(itemShown || choosing);
    m_cmdUp->setEnabled(itemShown && !choosing);
    m_cmdDown->setEnabled(itemShown && !choosing);
    m_lstCommand->setEnabled(!linked && !choosing);
    m_txtItemIndexCopy->setEnabled(itemShown && linked);
}

bool ItemSidePanel::isLinkChecked() const
{
    return m_chkCopyCommand->isChecked();
}

bool ItemSidePanel::isChoosing() const
{
    return m_cmdChangeCopy->isChecked();
}

void ItemSidePanel::toggleChoosing()
{
    m_cmdChangeCopy->toggle();
}

void ItemSidePanel::endChoosing()
{
    const QSignalBlocker blocker(m_cmdChangeCopy);
    m_cmdChangeCopy->setChecked(false);
    showChoosingColour(false);
}

void ItemSidePanel::showChoosingColour(bool choosing)
{
    if (!choosing) {
        // The style sheet goes first: taking it away brings back the palette it was put on.
        m_cmdChangeCopy->setStyleSheet(QString());
        m_cmdChangeCopy->setPalette(QPalette());
        return;
    }
    QPalette palette = m_cmdChangeCopy->palette();
    palette.setColor(QPalette::Button, choosingColour());
    m_cmdChangeCopy->setPalette(palette);
    // Styles that draw buttons themselves take the colour from a style sheet only.
    m_cmdChangeCopy->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; }").arg(choosingColour().name()));
}

int ItemSidePanel::selectedCommandIndex() const
{
    const QList<QListWidgetItem*> selected = m_lstCommand->selectedItems();
    return selected.isEmpty() ? -1 : m_lstCommand->row(selected.constFirst());
}

void ItemSidePanel::popupMenuAtCurrentLine()
{
    // The menu opens at the current line, selected, or at the list's top when it is empty.
    selectLine(m_lstCommand->currentRow());
    QRect line = m_lstCommand->visualItemRect(m_lstCommand->currentItem());
    if (m_lstCommand->currentItem() == nullptr) {
        line = QRect(0, 0, 1, 1);
    }
    Q_EMIT commandMenuRequested(m_lstCommand->viewport()->mapToGlobal(line.bottomLeft()));
}

void ItemSidePanel::selectLine(int row)
{
    if (row >= 0 && row < m_lstCommand->count()) {
        m_lstCommand->setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
    }
}

bool ItemSidePanel::commandListKey(const QKeyEvent* key)
{
    if (key->key() == Qt::Key_Menu || (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier)) {
        popupMenuAtCurrentLine();
        return true;
    }
    if (key->modifiers() != Qt::NoModifier && key->modifiers() != Qt::KeypadModifier) {
        return false;
    }
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // The line the keyboard is on is the one edited, and is shown selected.
        if (m_lstCommand->currentRow() >= 0) {
            selectLine(m_lstCommand->currentRow());
            Q_EMIT commandEditRequested();
        }
        return true;
    case Qt::Key_Insert:
        Q_EMIT commandAddRequested();
        return true;
    case Qt::Key_Delete:
        if (selectedCommandIndex() >= 0) {
            Q_EMIT commandRemoveRequested();
        }
        return true;
    default:
        break;
    }
    return false;
}

QString ItemSidePanel::commandToolTip(int row) const
{
    const QListWidgetItem* line = m_lstCommand->item(row);
    if (line == nullptr) {
        return QString();
    }
    // The list scrolls rather than cutting its lines short, so a line is too long when part of it
    // lies outside the visible width; the text starts a small margin in from the row's edge.
    const QRect rowRect = m_lstCommand->visualItemRect(line);
    const int margin = m_lstCommand->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_lstCommand) + 1;
    const int textRight
        = rowRect.left() + margin + m_lstCommand->fontMetrics().horizontalAdvance(line->text()) + margin;
    if (rowRect.left() >= 0 && textRight <= m_lstCommand->viewport()->width()) {
        return QString();
    }
    return ToolTipTexts::forCommandLine(line->text());
}

bool ItemSidePanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ToolTip && (watched == m_txtItemIndexCopy || watched == m_lstCommand->viewport())) {
        const auto* help = static_cast<QHelpEvent*>(event);
        QString text;
        QRect area;
        if (watched == m_txtItemIndexCopy) {
            text = m_linkTargetToolTip ? m_linkTargetToolTip() : QString();
        } else if (const QListWidgetItem* line = m_lstCommand->itemAt(help->pos())) {
            text = commandToolTip(m_lstCommand->row(line));
            area = m_lstCommand->visualItemRect(line);
        }
        if (text.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), plainToolTip(text), static_cast<QWidget*>(watched), area);
        }
        return true;
    }
    if (watched == m_txtItemIndexCopy && event->type() == QEvent::MouseButtonDblClick) {
        Q_EMIT followLinkRequested();
        return true;
    }
    if (watched == m_lstCommand->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton) {
            // The menu acts on the line under the pointer, which is selected first.
            if (const QListWidgetItem* line = m_lstCommand->itemAt(mouse->position().toPoint())) {
                selectLine(m_lstCommand->row(line));
            }
            Q_EMIT commandMenuRequested(mouse->globalPosition().toPoint());
            return true;
        }
    }
    if (watched == m_lstCommand->viewport() && event->type() == QEvent::MouseButtonDblClick) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton) {
            if (const QListWidgetItem* line = m_lstCommand->itemAt(mouse->position().toPoint())) {
                selectLine(m_lstCommand->row(line));
                Q_EMIT commandEditRequested();
            } else {
                Q_EMIT commandAddRequested();
            }
            return true;
        }
    }
    if (watched == m_lstCommand && event->type() == QEvent::KeyPress
        && commandListKey(static_cast<QKeyEvent*>(event))) {
        return true;
    }
    if (watched == m_lstCommand && event->type() == QEvent::ContextMenu) {
        // The mouse's menu comes with the release of the right button, the keyboard's with its key
        // (commandListKey): the window system's request of either is not a second one.
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

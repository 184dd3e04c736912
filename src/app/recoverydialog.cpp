#include "recoverydialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

using Decision = RecoveryPrompt::Decision;

/// The choices of a row, in the order the combo box lists them.
const QList<Decision> choiceOrder = { Decision::Recover, Decision::Discard, Decision::DecideLater };

QTableWidgetItem* cell(const QString& text)
{
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled);
    item->setToolTip(text);
    return item;
}

} // namespace

RecoveryDialog::RecoveryDialog(const QList<RecoveryCopy>& copies, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmRecovery"));
    setWindowTitle(QStringLiteral("Recover unsaved menus"));

    auto* lblRecovery
        = new QLabel(QStringLiteral("The editor did not quit normally last time. These menus had changes that were not "
                                    "saved; their last state was kept. Choose what to do with each:"),
                     this);
    lblRecovery->setObjectName(QStringLiteral("lblRecovery"));
    lblRecovery->setWordWrap(true);

    m_lstRecovery = new QTableWidget(int(copies.size()), 5, this);
    m_lstRecovery->setObjectName(QStringLiteral("lstRecovery"));
    m_lstRecovery->setHorizontalHeaderLabels({ QStringLiteral("Menu"), QStringLiteral("File"),
                                               QStringLiteral("Last change"), QStringLiteral("Items"),
                                               QStringLiteral("What to do") });
    m_lstRecovery->verticalHeader()->hide();
    m_lstRecovery->setSelectionMode(QAbstractItemView::NoSelection);
    m_lstRecovery->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int row = 0; row < copies.size(); ++row) {
        const RecoveryCopy& copy = copies.at(row);
        m_lstRecovery->setItem(row, 0, cell(menuText(copy)));
        m_lstRecovery->setItem(row, 1, cell(pathText(copy)));
        m_lstRecovery->setItem(row, 2, cell(timeText(copy.time)));
        QTableWidgetItem* count = cell(QString::number(copy.itemCount));
        count->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_lstRecovery->setItem(row, 3, count);
        auto* choice = new QComboBox(m_lstRecovery);
        choice->setObjectName(QStringLiteral("cmbRecovery%1").arg(row));
        choice->addItems({ QStringLiteral("Recover"), QStringLiteral("Discard"), QStringLiteral("Decide later") });
        m_lstRecovery->setCellWidget(row, 4, choice);
        m_choices.append(choice);
    }
    m_lstRecovery->resizeColumnsToContents();
    m_lstRecovery->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);

    auto* buttons = new QDialogButtonBox(this);
    const auto addButton = [this, buttons](const QString& name, const QString& text, Decision decision) {
        QPushButton* button = buttons->addButton(text, QDialogButtonBox::ActionRole);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, decision] { decideAll(decision); });
    };
    addButton(QStringLiteral("cmdRecoverAll"), QStringLiteral("Recover all"), Decision::Recover);
    addButton(QStringLiteral("cmdDiscardAll"), QStringLiteral("Discard all"), Decision::Discard);
    addButton(QStringLiteral("cmdDecideLater"), QStringLiteral("Decide later"), Decision::DecideLater);
    QPushButton* cmdOk = buttons->addButton(QDialogButtonBox::Ok);
    cmdOk->setObjectName(QStringLiteral("cmdRecoveryOk"));
    cmdOk->setDefault(true);
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblRecovery);
    layout->addWidget(m_lstRecovery, 1);
    layout->addWidget(buttons);
    resize(760, 320);
}

QString RecoveryDialog::menuText(const RecoveryCopy& copy)
{
    if (!copy.caption.isEmpty()) {
        return copy.caption;
    }
    return copy.menuPath.isEmpty() ? QStringLiteral("New menu") : QFileInfo(copy.menuPath).fileName();
}

QString RecoveryDialog::pathText(const RecoveryCopy& copy)
{
    return copy.menuPath.isEmpty() ? QStringLiteral("(never saved)") : QDir::toNativeSeparators(copy.menuPath);
}

QString RecoveryDialog::timeText(const QDateTime& time)
{
    return time.isValid() ? time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString();
}

void RecoveryDialog::decideAll(Decision decision)
{
    for (QComboBox* choice : std::as_const(m_choices)) {
        choice->setCurrentIndex(int(choiceOrder.indexOf(decision)));
    }
    accept();
}

QList<RecoveryPrompt::Decision> RecoveryDialog::decisions() const
{
    QList<Decision> chosen;
    for (QComboBox* choice : m_choices) {
        // A dialog closed without an answer loses nothing: everything waits for the next start.
        chosen.append(result() == QDialog::Accepted ? choiceOrder.value(choice->currentIndex(), Decision::DecideLater)
                                                    : Decision::DecideLater);
    }
    return chosen;
}

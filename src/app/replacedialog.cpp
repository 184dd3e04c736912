#include "replacedialog.h"

#include "core/editingsession.h"
#include "editing/textreplacement.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

ReplaceDialog::ReplaceDialog(EditingSession& session, QWidget* parent)
    : QDialog(parent)
    , m_session(session)
{
    setObjectName(QStringLiteral("frmReplace"));
    setWindowTitle(QStringLiteral("Replace - In selected branch"));
    setModal(false);

    auto* lblFindWhat = new QLabel(QStringLiteral("Find What :"), this);
    lblFindWhat->setObjectName(QStringLiteral("lblFindWhat"));
    m_txtFind = new QLineEdit(this);
    m_txtFind->setObjectName(QStringLiteral("txtFind"));
    lblFindWhat->setBuddy(m_txtFind);
    auto* lblReplaceWith = new QLabel(QStringLiteral("Replace With :"), this);
    lblReplaceWith->setObjectName(QStringLiteral("lblReplaceWith"));
    m_txtReplace = new QLineEdit(this);
    m_txtReplace->setObjectName(QStringLiteral("txtReplace"));
    lblReplaceWith->setBuddy(m_txtReplace);
    m_chkRootNode = new QCheckBox(QStringLiteral("Replace on all items"), this);
    m_chkRootNode->setObjectName(QStringLiteral("chkRootNode"));

    auto* cmdReplaceAll = new QPushButton(QStringLiteral("Replace All"), this);
    cmdReplaceAll->setObjectName(QStringLiteral("cmdReplaceAll"));
    cmdReplaceAll->setDefault(true);
    auto* cmdCancel = new QPushButton(QStringLiteral("Close"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(cmdReplaceAll, &QPushButton::clicked, this, &ReplaceDialog::cmdReplaceAll_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::hide);

    auto* fields = new QGridLayout;
    fields->addWidget(lblFindWhat, 0, 0);
    fields->addWidget(m_txtFind, 0, 1);
    fields->addWidget(lblReplaceWith, 1, 0);
    fields->addWidget(m_txtReplace, 1, 1);
    fields->addWidget(m_chkRootNode, 2, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdReplaceAll);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 50);
}

void ReplaceDialog::cmdReplaceAll_Click()
{
    EditArguments arguments;
    arguments.text = m_txtFind->text();
    arguments.replacement = m_txtReplace->text();
    arguments.checked = m_chkRootNode->isChecked();
    m_session.run(EditOperations::replace, arguments);
}

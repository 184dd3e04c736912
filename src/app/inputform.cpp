#include "inputform.h"

#include "commands/variablecatalogue.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

InputForm::InputForm(const QString& prompt, const QString& description, const QString& extension, QWidget* parent)
    : QDialog(parent)
    , m_extension(extension)
{
    setObjectName(QStringLiteral("inputForm"));
    setWindowTitle(description);
    m_descriptionCaption = new QLabel(prompt, this);
    m_descriptionCaption->setObjectName(QStringLiteral("descriptionCaption"));
    m_valueBox = new QLineEdit(this);
    m_valueBox->setObjectName(QStringLiteral("valueBox"));
    m_descriptionCaption->setBuddy(m_valueBox);
    m_command3 = new QPushButton(QStringLiteral("$"), this);
    m_command3->setObjectName(QStringLiteral("Command3"));
    m_command3->setToolTip(tr("Insert a variable"));
    m_command3->setAutoDefault(false);
    m_cmdOK = new QPushButton(tr("OK"), this);
    m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
    m_cmdOK->setDefault(true);
    m_cmdCancel = new QPushButton(tr("Cancel"), this);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cmdCancel->setAutoDefault(false);

    m_mnuVarName = new QMenu(this);
    m_mnuVarName->setObjectName(QStringLiteral("mnuVarName"));
    for (int index = 0; index < VariableCatalogue::Count; ++index) {
        QAction* entry = m_mnuVarName->addAction(VariableCatalogue::name(index));
        entry->setObjectName(QStringLiteral("mnuVarName") + QString::number(index));
        entry->setData(VariableCatalogue::help(index));
        const QString name = VariableCatalogue::name(index);
        connect(entry, &QAction::triggered, this, [this, name] { insertVariable(name); });
    }
    m_command3->setMenu(m_mnuVarName);

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_descriptionCaption, 0, 0, 1, 3);
    layout->addWidget(m_valueBox, 1, 0, 1, 2);
    layout->addWidget(m_command3, 1, 2);
    layout->addWidget(m_cmdOK, 2, 1);
    layout->addWidget(m_cmdCancel, 2, 2);
    layout->setColumnStretch(0, 1);
    setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 50);

    // Enter in the box accepts, as OK does.
    connect(m_valueBox, &QLineEdit::returnPressed, this, &QDialog::accept);
    connect(m_cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

QString InputForm::value() const
{
    return m_valueBox->text();
}

void InputForm::insertVariable(const QString& name)
{
    QString variable = name;
    variable.replace(QStringLiteral("avi"), m_extension);
    m_valueBox->insert(variable);
    m_valueBox->setFocus();
}

QString InputForm::askParameterValue(const QString& prompt, const QString& description, const QString& extension,
                                     QWidget* parent)
{
    InputForm form(prompt, description, extension, parent);
    return form.exec() == QDialog::Accepted ? form.value() : QString();
}

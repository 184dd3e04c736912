#include "optionsdialog.h"

#include "core/optionsstore.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QCheckBox* addCheckBox(QVBoxLayout* layout, const QString& objectName, const QString& caption, qint16 value)
{
    auto* box = new QCheckBox(caption);
    box->setObjectName(objectName);
    box->setChecked(value != 0);
    layout->addWidget(box);
    return box;
}

qint16 checkValue(const QCheckBox* box)
{
    return box->isChecked() ? qint16(1) : qint16(0);
}

} // namespace

OptionsDialog::OptionsDialog(OptionsStore& store, const Options& current, QWidget* parent)
    : QDialog(parent)
    , m_store(store)
    , m_options(current)
{
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(QStringLiteral("Options"));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    m_checkCopyCommand
        = addCheckBox(layout, QStringLiteral("chkCheckCopyCommand"),
                      QStringLiteral("Link items with identical commands (CopyCommand) when opening a file"),
                      current.checkCopyCommand);
    m_hideItemsWithoutCommand = addCheckBox(layout, QStringLiteral("chkHideItemsWithoutCommand"),
                                            QStringLiteral("Hide items without command when opening a file"),
                                            current.hideItemsWithoutCommand);
    m_hideItemsCopyCommand
        = addCheckBox(layout, QStringLiteral("chkHideItemsCopyCommand"),
                      QStringLiteral("Hide items that copy the commands of another item when opening a file"),
                      current.hideItemsCopyCommand);
    m_dragNDrop = addCheckBox(layout, QStringLiteral("chkDragNDrop"),
                              QStringLiteral("Allow drag and drop of items in the tree"), current.dragNDrop);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* save = new QPushButton(QStringLiteral("Save"));
    save->setObjectName(QStringLiteral("cmdSave"));
    save->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);

    connect(save, &QPushButton::clicked, this, &OptionsDialog::cmdSave_Click);
    connect(cancel, &QPushButton::clicked, this, &OptionsDialog::reject);
}

void OptionsDialog::cmdSave_Click()
{
    Options saved = m_options;
    saved.checkCopyCommand = checkValue(m_checkCopyCommand);
    saved.hideItemsWithoutCommand = checkValue(m_hideItemsWithoutCommand);
    saved.hideItemsCopyCommand = checkValue(m_hideItemsCopyCommand);
    saved.dragNDrop = checkValue(m_dragNDrop);
    m_store.saveOptions(saved);
    m_options = saved;
    accept();
}

#include "filechangebar.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

FileChangeBar::FileChangeBar(QWidget* parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("fraFileChanged"));
    setFrameShape(QFrame::StyledPanel);
    // The colours of a tool tip: a notice that stands out from the tree under it in any theme.
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);

    m_lblFileChanged = new QLabel(this);
    m_lblFileChanged->setObjectName(QStringLiteral("lblFileChanged"));
    m_lblFileChanged->setWordWrap(true);
    m_lblFileChanged->setForegroundRole(QPalette::ToolTipText);
    m_cmdReload = new QPushButton(QStringLiteral("&Reload"), this);
    m_cmdReload->setObjectName(QStringLiteral("cmdReload"));
    m_cmdReload->setToolTip(QStringLiteral("Read the file again; Undo brings your version back"));
    m_cmdKeepMine = new QPushButton(QStringLiteral("&Keep mine"), this);
    m_cmdKeepMine->setObjectName(QStringLiteral("cmdKeepMine"));
    m_cmdKeepMine->setToolTip(QStringLiteral("Keep this version; Save asks before it writes over the file"));
    connect(m_cmdReload, &QPushButton::clicked, this, &FileChangeBar::reloadClicked);
    connect(m_cmdKeepMine, &QPushButton::clicked, this, &FileChangeBar::keepMineClicked);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(m_lblFileChanged, 1);
    layout->addWidget(m_cmdReload);
    layout->addWidget(m_cmdKeepMine);
    hide();
}

QString FileChangeBar::text(Kind kind, const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    switch (kind) {
    case Kind::Changed:
        return QStringLiteral("%1 has been changed on disk by another window or program.").arg(name);
    case Kind::Missing:
        return QStringLiteral("%1 has been deleted or moved on disk.").arg(name);
    }
    return QString();
}

void FileChangeBar::showChange(Kind kind, const QString& path)
{
    m_lblFileChanged->setText(text(kind, path));
    m_lblFileChanged->setToolTip(QDir::toNativeSeparators(path));
    m_cmdReload->setVisible(kind == Kind::Changed);
    show();
}

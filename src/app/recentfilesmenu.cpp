#include "recentfilesmenu.h"

#include "core/accesskeys.h"

#include <QAction>
#include <QMenu>

RecentFilesMenu::RecentFilesMenu(QMenu* fileMenu, const QString& folder, QObject* parent)
    : QObject(parent)
    , m_list(folder)
    , m_fileMenu(fileMenu)
{
    for (int index = 0; index < RecentFileList::EntryCount; ++index) {
        QAction* entry = fileMenu->addAction(QString());
        entry->setObjectName(QStringLiteral("mnuRecent") + QString::number(index));
        entry->setVisible(false);
        connect(entry, &QAction::triggered, this, [this, index]() {
            const QString path = m_list.entry(index).caption;
            if (!path.isEmpty()) {
                Q_EMIT openRequested(path);
            }
        });
        m_entries.append(entry);
    }
    m_separator = fileMenu->addSeparator();
    m_separator->setObjectName(QStringLiteral("Tire03"));
    m_separator->setVisible(false);
}

void RecentFilesMenu::load()
{
    m_list.loadRecentList();
    syncEntries();
}

void RecentFilesMenu::addRecentFile(const QString& path)
{
    m_list.addRecentFile(path);
    syncEntries();
}

QString RecentFilesMenu::newestFile() const
{
    const RecentFileList::Entry newest = m_list.entry(0);
    return newest.visible ? newest.caption : QString();
}

void RecentFilesMenu::syncEntries()
{
    // A file's entry takes a letter of its name that no other entry of the File menu has: archive.ini
    // must not take the "a" of "Save as".
    QString taken;
    const QList<QAction*> entries = m_fileMenu->actions();
    for (const QAction* entry : entries) {
        if (!entry->isSeparator() && !m_entries.contains(entry)) {
            taken += AccessKeys::keyOf(entry->text());
        }
    }
    for (int index = 0; index < m_entries.size(); ++index) {
        const RecentFileList::Entry recent = m_list.entry(index);
        m_entries.at(index)->setText(recent.visible ? AccessKeys::onFreeFileNameLetter(recent.caption, taken)
                                                    : AccessKeys::onFileName(recent.caption));
        m_entries.at(index)->setVisible(recent.visible);
    }
    m_separator->setVisible(m_list.separatorVisible());
}

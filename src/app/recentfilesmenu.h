#pragma once

#include "core/recentfilelist.h"

#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QMenu;

/// The recently opened menu files in the File menu: the entries mnuRecent0 .. mnuRecent9 (only the
/// first five are ever filled, the newest first) and the separator Tire03 after them, kept in
/// Recent.ini between runs. Choosing an entry asks to open its file.
class RecentFilesMenu final : public QObject
{
    Q_OBJECT

public:
    /// Adds the entries and the separator to `fileMenu`, at its end; the list comes from the
    /// Recent.ini in `folder`.
    RecentFilesMenu(QMenu* fileMenu, const QString& folder, QObject* parent = nullptr);

    /// Loads the list and shows it, once the File menu has all its entries: each file takes an access
    /// key no other entry has.
    void load();

    /// Puts `path` at the top, unless it is listed already, and rewrites Recent.ini.
    void addRecentFile(const QString& path);
    /// The newest file listed; empty when the list is empty.
    QString newestFile() const;
    /// Entry `index` as the list holds it.
    RecentFileList::Entry entry(int index) const { return m_list.entry(index); }

Q_SIGNALS:
    /// The user chose the entry of `path`.
    void openRequested(const QString& path);

private:
    void syncEntries();

    RecentFileList m_list;
    QMenu* m_fileMenu;
    QList<QAction*> m_entries;
    QAction* m_separator = nullptr;
};

#pragma once

#include "menufile/fileidentity.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtGlobal>

#include <functional>
#include <map>

class ApplicationState;
class EditingSession;
class FileChangeBar;
class MessageBoxes;

/// Notices when the file of the active editor window's menu is changed or removed by someone else
/// (another window of the same file, another editor, `kelvmenu edit`, any program), and says so in
/// the window's FileChangeBar: when the window becomes active, and while it is, through a watcher on
/// the file and its folder. A watcher alone misses a file replaced by a new one, as every careful
/// writer does, so each time it fires the file's identity is checked again and the new file watched.
/// Reload reads the file into the window as one undoable step; Keep mine hides the bar until the file
/// changes once more.
class DiskChangeWatch final : public QObject
{
    Q_OBJECT

public:
    /// The bar of the editor window of document `index`; null when it has no window.
    using BarSource = std::function<FileChangeBar*(qint16 index)>;

    DiskChangeWatch(ApplicationState& state, EditingSession& session, MessageBoxes& messages, BarSource bars,
                    QObject* parent = nullptr);

    /// The editor window of document `index` is the active one now (0: none is): its file is watched
    /// and checked at once.
    void follow(qint16 index);
    /// Checks the file of document `index` against the identity it had when the editor last read or
    /// wrote it, and shows or hides the window's bar.
    void check(qint16 index);
    /// A menu was saved (perhaps under another name) or reloaded: the active window's file is watched
    /// again and the bars that no longer have anything to say go.
    void documentsSaved();

    /// Reads the file of document `index` again in place of its menu, as one step that Undo takes
    /// back; after it the menu is saved and its file's identity the one just read. A file that cannot
    /// be read is told and changes nothing.
    void reload(qint16 index);
    /// Hides the bar of document `index` until its file changes again.
    void keepMine(qint16 index);

    /// The paths watched now (the active menu's file and its folder).
    QStringList watchedPaths() const;

private:
    /// What the file was when the user chose Keep mine: a change to it since shows the bar again.
    struct Dismissed
    {
        bool missing = false;
        FileIdentity seen;
    };

    void watchFollowed();
    void connectBar(qint16 index, FileChangeBar* bar);
    bool dismissedStill(qint16 index, FileIdentity::Change change, const QString& path) const;

    ApplicationState& m_state;
    EditingSession& m_session;
    MessageBoxes& m_messages;
    BarSource m_bars;
    QFileSystemWatcher m_watcher;
    qint16 m_followed = 0;
    std::map<qint16, Dismissed> m_dismissed;
    /// The bar whose buttons reach each document, once connected.
    std::map<qint16, QPointer<FileChangeBar>> m_connected;
};

#include "diskchangewatch.h"

#include "app/filechangebar.h"
#include "app/menufiles.h"
#include "app/messageboxes.h"
#include "core/applicationstate.h"
#include "core/documentfile.h"
#include "core/editingsession.h"
#include "editing/menureloading.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <memory>

DiskChangeWatch::DiskChangeWatch(ApplicationState& state, EditingSession& session, MessageBoxes& messages,
                                 BarSource bars, QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_session(session)
    , m_messages(messages)
    , m_bars(std::move(bars))
{
    const auto changed = [this] {
        // A file replaced by a new one is no longer watched: the new one is.
        watchFollowed();
        check(m_followed);
    };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, changed);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this, changed] {
        // Every edit writes an autosave file, often into the menu's own folder. While the menu file is
        // still watched and looks as it did, the change was to another file: a write into the menu
        // itself reaches the file's own watch, which reads it. A menu saved a moment ago would
        // otherwise be read and hashed again after every edit.
        if (m_state.editor(m_followed) != nullptr) {
            const QString path = m_state.document(m_followed).filePath;
            if (m_watcher.files().contains(QFileInfo(path).absoluteFilePath())
                && m_state.fileIdentity(m_followed).sameStatusAt(path)) {
                return;
            }
        }
        changed();
    });
}

QStringList DiskChangeWatch::watchedPaths() const
{
    return m_watcher.files() + m_watcher.directories();
}

void DiskChangeWatch::follow(qint16 index)
{
    m_followed = index;
    watchFollowed();
    check(index);
}

void DiskChangeWatch::watchFollowed()
{
    const QStringList watched = watchedPaths();
    if (!watched.isEmpty()) {
        m_watcher.removePaths(watched);
    }
    if (m_state.editor(m_followed) == nullptr) {
        return;
    }
    const QString path = m_state.document(m_followed).filePath;
    if (path.isEmpty()) {
        return;
    }
    // The folder too: it sees the file come back after it was removed or replaced.
    const QFileInfo file(path);
    if (file.absoluteDir().exists()) {
        m_watcher.addPath(file.absolutePath());
    }
    if (file.exists()) {
        m_watcher.addPath(file.absoluteFilePath());
    }
}

void DiskChangeWatch::connectBar(qint16 index, FileChangeBar* bar)
{
    QPointer<FileChangeBar>& connected = m_connected[index];
    if (connected == bar) {
        return;
    }
    // A window whose menu could not be read gives its index back, and the next window takes it with
    // a bar of its own: nothing the user dismissed before belongs to it.
    connected = bar;
    m_dismissed.erase(index);
    connect(bar, &FileChangeBar::reloadClicked, this, [this, index] { reload(index); });
    connect(bar, &FileChangeBar::keepMineClicked, this, [this, index] { keepMine(index); });
}

bool DiskChangeWatch::dismissedStill(qint16 index, FileIdentity::Change change, const QString& path) const
{
    const auto dismissed = m_dismissed.find(index);
    if (dismissed == m_dismissed.end()) {
        return false;
    }
    if (change == FileIdentity::Change::Missing) {
        return dismissed->second.missing;
    }
    if (dismissed->second.missing) {
        return false;
    }
    const FileIdentity::Change since = dismissed->second.seen.changeAt(path);
    return since == FileIdentity::Change::Unchanged || since == FileIdentity::Change::Touched;
}

void DiskChangeWatch::check(qint16 index)
{
    if (m_state.editor(index) == nullptr) {
        return;
    }
    FileChangeBar* bar = m_bars(index);
    if (bar == nullptr) {
        return;
    }
    connectBar(index, bar);
    const QString path = m_state.document(index).filePath;
    if (path.isEmpty()) {
        bar->hide();
        return;
    }
    FileIdentity current;
    const FileIdentity::Change change = m_state.fileIdentity(index).changeAt(path, &current);
    switch (change) {
    case FileIdentity::Change::Unchanged:
    case FileIdentity::Change::Touched:
        // Unchanged too: the bytes of a file saved a moment ago are read and hashed on every check
        // until an identity says they were seen well after the file's time.
        m_state.setFileIdentity(index, current);
        m_dismissed.erase(index);
        bar->hide();
        return;
    case FileIdentity::Change::Changed:
    case FileIdentity::Change::Missing:
        break;
    }
    if (dismissedStill(index, change, path)) {
        bar->hide();
        return;
    }
    m_dismissed.erase(index);
    bar->showChange(
        change == FileIdentity::Change::Missing ? FileChangeBar::Kind::Missing : FileChangeBar::Kind::Changed, path);
}

void DiskChangeWatch::documentsSaved()
{
    watchFollowed();
    for (const qint16 index : m_state.openDocumentIndexes()) {
        FileChangeBar* bar = m_bars(index);
        if (index == m_followed || (bar != nullptr && !bar->isHidden())) {
            check(index);
        }
    }
}

void DiskChangeWatch::reload(qint16 index)
{
    if (m_state.editor(index) == nullptr) {
        return;
    }
    const QString path = m_state.document(index).filePath;
    auto fresh = std::make_shared<MenuDocument>();
    FileIdentity identity;
    MenuReadResult result;
    try {
        result = openMenuDocument(path, m_state.options(), index, *fresh, &identity);
    } catch (const RunTimeError& error) {
        result.code = MenuReadResult::Failed;
        result.errorNumber = error.number();
    }
    if (!result.ok()) {
        QString text = MenuFiles::openErrorMessage();
        if (result.code == MenuReadResult::NotAMenuFile) {
            text = notMenuFileMessage();
        } else if (result.fileMissing()) {
            text = MenuFiles::missingFileMessage(path);
        }
        m_messages.showCritical(text, readFailureText(path, result));
        check(index);
        return;
    }
    EditArguments arguments;
    arguments.fileDocument = std::move(fresh);
    if (!m_session.run(index, EditOperations::reloadMenu, arguments)) {
        return;
    }
    m_state.setFileIdentity(index, identity);
    m_dismissed.erase(index);
    if (FileChangeBar* bar = m_bars(index)) {
        bar->hide();
    }
}

void DiskChangeWatch::keepMine(qint16 index)
{
    if (m_state.editor(index) == nullptr) {
        return;
    }
    Dismissed dismissed;
    QFile file(m_state.document(index).filePath);
    if (file.open(QIODevice::ReadOnly)) {
        dismissed.seen = FileIdentity::ofFileRead(file);
    } else {
        dismissed.missing = !file.exists();
    }
    m_dismissed[index] = dismissed;
    if (FileChangeBar* bar = m_bars(index)) {
        bar->hide();
    }
}

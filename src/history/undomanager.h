#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>
#include <future>
#include <memory>

class DocumentList;
class HistoryMenu;
class HistoryTable;
struct MenuDocument;

/// Records and restores whole-document states of the open documents, keeps the Undo and Redo menu
/// entries in step and writes each document's autosave file. Documents and histories are addressed
/// by the same document index.
///
/// The autosave file of a recorded state is written on a second thread while the editor goes on:
/// the state is a copy that no edit touches, and writing a large menu takes longer than most edits.
/// The write starts a moment later (defaultAutosaveDelay), so that it does not compete with the
/// work and paint that show the change, or at once when something waits for it. The next recorded
/// state waits for it, so files are written in the order of their states, and a write that failed
/// fails the edit that comes to wait for it (completeAutosave throws), which then takes the error
/// path and undoes the edit whose file could not be written.
class UndoManager final
{
public:
    /// How long an autosave file waits before it is written, unless something waits for it: longer
    /// than an Undo, a Redo or most edits take to show on a large menu, shorter than the pause a
    /// user leaves between two edits. Edits repeated by a key held down come sooner; each then waits
    /// for the file of the one before.
    static constexpr std::chrono::milliseconds defaultAutosaveDelay { 60 };

    /// `autosaveFolder` is the folder that receives the autosave files (the program's folder).
    UndoManager(DocumentList& documents, HistoryTable& histories, QString autosaveFolder, HistoryMenu& menu);

    /// Waits for an autosave file still being written.
    ~UndoManager();

    UndoManager(const UndoManager&) = delete;
    UndoManager& operator=(const UndoManager&) = delete;

    /// Records the current state of document `index` as the newest undo state, before an edit changes
    /// it. `clearRedo` true (every edit) cuts the redo chain; Redo itself records with false. Marks the
    /// document unsaved (the recorded state keeps its own flag) and starts rewriting the autosave file
    /// with the document as it stands. The file of the state before is waited for first, and its
    /// failure thrown, before anything is recorded.
    void saveUndoState(qint16 index, bool clearRedo);
    /// Waits until the autosave file of the latest recorded state is written. A failed write throws
    /// RunTimeError (once), so that the caller takes the error path of editing operations: undoing
    /// brings back the state before the edit whose file failed.
    void completeAutosave();
    /// Whether an autosave file is being written or its result has not been collected yet.
    bool isAutosavePending() const { return m_autosave.valid(); }
    /// Whether completeAutosave would return (or throw) at once.
    bool isAutosaveFinished() const;
    /// Sets how long the next autosave files wait before they are written.
    void setAutosaveDelay(std::chrono::milliseconds delay) { m_autosaveDelay = delay; }
    /// Records the current state of document `index` as the newest redo state (used by Undo).
    void saveRedoState(qint16 index);

    /// Goes back to the newest undo state, the current state going onto the redo stack. Does
    /// nothing when no state is recorded.
    void undoDocument(qint16 index);
    /// Goes forward to the newest redo state, the current state going onto the undo stack without
    /// cutting the redo chain. Does nothing when there is no redo state.
    void redoDocument(qint16 index);

    /// Sets the Undo and Redo entries for the editor window that has just become active: each is
    /// enabled exactly when its stack holds a state. Index 0 (no active editor window) disables both.
    void updateMenu(qint16 index);

    /// Full path of the autosave file of document `index`: "menuAutoSave" + index + ".ini" in the
    /// autosave folder.
    QString autosavePath(qint16 index) const;

private:
    DocumentList& m_documents;
    HistoryTable& m_histories;
    QString m_autosaveFolder;
    HistoryMenu& m_menu;
    /// What lets an autosave write start before its delay is over.
    struct StartSignal;
    /// Writes `state` to `path` once `delay` is over or `start` is given.
    static void writeAutosave(const std::shared_ptr<StartSignal>& start, std::chrono::milliseconds delay,
                              const MenuDocument& state, const QString& path);
    /// Starts the pending autosave write at once, when it waits for its delay.
    void startAutosaveNow();

    std::chrono::milliseconds m_autosaveDelay = defaultAutosaveDelay;
    /// The autosave file being written, if any, and what starts its write.
    std::future<void> m_autosave;
    std::shared_ptr<StartSignal> m_autosaveStart;
};

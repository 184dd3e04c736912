#pragma once

#include <QString>
#include <QtGlobal>

#include <future>

class DocumentList;
class HistoryMenu;
class HistoryTable;

/// Records and restores whole-document states of the open documents, keeps the Undo and Redo menu
/// entries in step and writes each document's autosave file. Documents and histories are addressed
/// by the same document index.
///
/// The autosave file of a recorded state is written on a second thread while the editor goes on:
/// the state is a copy that no edit touches, and writing a large menu takes longer than most edits.
/// The next recorded state waits for it, so files are written in the order of their states, and a
/// write that failed fails the edit that comes to wait for it (completeAutosave throws), which then
/// takes the error path and undoes the edit whose file could not be written.
class UndoManager final
{
public:
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
    /// The autosave file being written, if any.
    std::future<void> m_autosave;
};

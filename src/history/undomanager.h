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
/// The autosave file of a recorded state is written while the edit that recorded it goes on: the
/// state is a copy that the edit does not touch, and writing a large menu takes as long as the edit
/// itself. The edit ends by waiting for the file (completeAutosave), so a failed write is still a
/// failure of that edit.
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
    /// with the document as it stands; completeAutosave waits for it.
    void saveUndoState(qint16 index, bool clearRedo);
    /// Waits until the autosave file of the latest recorded state is written. A failed write throws
    /// RunTimeError, so the edit that recorded the state takes its error path; the state is recorded
    /// by then, and undoing brings it back.
    void completeAutosave();
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

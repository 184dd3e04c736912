#pragma once

#include "core/options.h"
#include "editing/editcontext.h"
#include "history/historytable.h"
#include "menufile/fileidentity.h"
#include "model/documentlist.h"

#include <QList>
#include <QPointer>
#include <QtGlobal>

class EditorView;

/// The process-wide state of the editor: the open documents, the editor window that shows each of
/// them, which document is active, the options and the editing state that operations share (the
/// label-edit flag, the node last clicked, each window's click and link-target state). Every
/// per-document list is addressed by the same document index; slot 0 of each is a placeholder, and
/// closing a document leaves its slot in place so that no other index ever shifts. The main window
/// owns one, so a fresh main window starts with a clean state.
class ApplicationState final
{
public:
    ApplicationState();

    ApplicationState(const ApplicationState&) = delete;
    ApplicationState& operator=(const ApplicationState&) = delete;

    /// Appends one slot to every per-document list (document, editor window, history, window
    /// editing state) and returns the new document index.
    qint16 appendDocumentSlot();
    /// Drops the newest slot of every per-document list again: an open that failed.
    void removeLastDocumentSlot();

    DocumentList& documents() { return m_documents; }
    const DocumentList& documents() const { return m_documents; }
    /// The document at `index`; throws RunTimeError 9 for the placeholder or an index out of range.
    MenuDocument& document(int index) { return m_documents.document(index); }
    const MenuDocument& document(int index) const { return m_documents.document(index); }

    /// The undo and redo stacks of every document, by document index; created with the document
    /// and kept for the whole run.
    HistoryTable& histories() { return m_histories; }
    const HistoryTable& histories() const { return m_histories; }

    /// The identity of document `index`'s menu file when it was last opened, saved or reloaded; null
    /// for a new menu and for an index that is no document. Kept beside the document, not in it: the
    /// file on disk is what it is whatever Undo brings back, so the undo states must not carry it.
    FileIdentity fileIdentity(int index) const;
    /// Remembers the identity of document `index`'s file (after open, save, save as or reload).
    void setFileIdentity(int index, const FileIdentity& identity);

    /// The editor window of document `index`; null for the placeholder, a closed or destroyed
    /// editor, or an index out of range.
    EditorView* editor(int index) const;
    /// Sets the editor window of document `index`; it counts as closed once its view object is
    /// destroyed.
    void setEditor(int index, EditorView* editor);
    /// Marks the editor of `index` closed; its document slot stays.
    void clearEditor(int index) { setEditor(index, nullptr); }
    /// Indices of the documents whose editor window is open, in ascending order.
    QList<qint16> openDocumentIndexes() const;
    /// Index of the last slot; 0 when only the placeholder exists.
    qint16 lastSlot() const { return m_documents.lastSlot(); }

    /// The document the menu commands act on (the editor window activated last); 0 when none.
    qint16 activeDocumentIndex() const { return m_activeDocumentIndex; }
    void setActiveDocumentIndex(qint16 index) { m_activeDocumentIndex = index; }

    /// Set once the user has answered the quit question, so that editor windows then close without
    /// asking again.
    bool isQuitting() const { return m_quitting; }
    void setQuitting(bool quitting) { m_quitting = quitting; }

    const Options& options() const { return m_options; }
    /// Takes the options; the "CopyCommand at Duplication" mark also goes to the editing state.
    void setOptions(const Options& options);

    /// Editor windows that became documents so far (new and opened menus; failed opens do not
    /// count). Numbers the captions of new menus.
    int editorsCreated() const { return m_editorsCreated; }
    void noteEditorCreated() { ++m_editorsCreated; }

    /// Tree-node index (1-based) of the node last chosen by a plain click, in whichever editor
    /// window. Names the item whose link is being set while an editor chooses a link target.
    qint16 lastNodeIndex() const { return m_lastNodeIndex; }
    void setLastNodeIndex(qint16 index) { m_lastNodeIndex = index; }

    /// The editing state shared by every editor window.
    EditingState& editing() { return m_editing; }
    const EditingState& editing() const { return m_editing; }
    /// The editing state of the editor window of document `index`; throws RunTimeError 9 for the
    /// placeholder or an index out of range.
    WindowEditingState& window(int index);
    const WindowEditingState& window(int index) const;
    /// Whether an open editor window is choosing a link target: the menus are off meanwhile.
    bool anyLinkTargetChoice() const;

private:
    struct EditorSlot
    {
        EditorView* view = nullptr;
        QPointer<QObject> lifetime;
        WindowEditingState state;
        FileIdentity fileIdentity;
    };

    DocumentList m_documents;
    HistoryTable m_histories;
    QList<EditorSlot> m_editors;
    qint16 m_activeDocumentIndex = 0;
    bool m_quitting = false;
    Options m_options;
    int m_editorsCreated = 0;
    qint16 m_lastNodeIndex = 0;
    EditingState m_editing;
};

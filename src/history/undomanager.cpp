#include "undomanager.h"

#include "historymenu.h"
#include "historytable.h"
#include "menufile/menufilewriter.h"
#include "model/documentlist.h"

#include <QDir>

#include <chrono>
#include <utility>

UndoManager::UndoManager(DocumentList& documents, HistoryTable& histories, QString autosaveFolder, HistoryMenu& menu)
    : m_documents(documents)
    , m_histories(histories)
    , m_autosaveFolder(std::move(autosaveFolder))
    , m_menu(menu)
{
}

UndoManager::~UndoManager()
{
    if (m_autosave.valid()) {
        m_autosave.wait();
    }
}

void UndoManager::saveUndoState(qint16 index, bool clearRedo)
{
    // Files are written in the order their states were recorded.
    completeAutosave();
    MenuDocument& document = m_documents.document(index);
    DocumentHistory& history = m_histories.history(index);

    history.pushUndoState(document);
    if (clearRedo) {
        history.clearRedo();
        m_menu.setRedoEnabled(false);
    }
    m_menu.setUndoEnabled(history.undoCount() >= 1);
    document.saved = false;
    // The autosave file holds the state before the edit: the caller changes the document only after,
    // in its own copy, while this one is written.
    m_autosave = std::async(std::launch::async, [state = MenuDocument(document), path = autosavePath(index)] {
        writeMenuFile(state, path);
    });
}

void UndoManager::completeAutosave()
{
    if (m_autosave.valid()) {
        m_autosave.get();
    }
}

bool UndoManager::isAutosaveFinished() const
{
    return !m_autosave.valid() || m_autosave.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void UndoManager::saveRedoState(qint16 index)
{
    const MenuDocument& document = m_documents.document(index);
    DocumentHistory& history = m_histories.history(index);

    history.pushRedoState(document);
    m_menu.setRedoEnabled(history.redoCount() >= 1);
}

void UndoManager::undoDocument(qint16 index)
{
    DocumentHistory& history = m_histories.history(index);
    if (history.undoCount() < 1) {
        return;
    }
    saveRedoState(index);
    m_documents.document(index) = history.takeUndoState();
    m_menu.setUndoEnabled(history.undoCount() != 0);
}

void UndoManager::redoDocument(qint16 index)
{
    DocumentHistory& history = m_histories.history(index);
    if (history.redoCount() < 1) {
        return;
    }
    saveUndoState(index, false);
    m_documents.document(index) = history.takeRedoState();
    m_menu.setRedoEnabled(history.redoCount() != 0);
}

void UndoManager::updateMenu(qint16 index)
{
    if (index == 0) {
        m_menu.setUndoEnabled(false);
        m_menu.setRedoEnabled(false);
        return;
    }
    const DocumentHistory& history = m_histories.history(index);
    m_menu.setUndoEnabled(history.undoCount() >= 1);
    m_menu.setRedoEnabled(history.redoCount() >= 1);
}

QString UndoManager::autosavePath(qint16 index) const
{
    return QDir(m_autosaveFolder).filePath(QStringLiteral("menuAutoSave%1.ini").arg(index));
}

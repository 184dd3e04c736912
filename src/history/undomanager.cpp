#include "undomanager.h"

#include "historymenu.h"
#include "historytable.h"
#include "menufile/menufilewriter.h"
#include "model/documentlist.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QDir>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace {

/// A failed write of an autosave file, told as such: the user never chose that file, so the message
/// names it and where it is ("Path/File access error: the autosave file /home/me/.local/share/...
/// /menuAutoSave1.ini cannot be written: No space left on device").
RunTimeError autosaveError(const RunTimeError& error, const QString& path)
{
    const QString fixedText = errorDescription(error.number());
    QString reason = error.description();
    if (reason.startsWith(fixedText)) {
        reason = reason.mid(fixedText.size());
        if (reason.startsWith(QStringLiteral(": "))) {
            reason = reason.mid(2);
        }
    }
    QString description
        = fixedText + QStringLiteral(": the autosave file %1 cannot be written").arg(QDir::toNativeSeparators(path));
    if (!reason.isEmpty()) {
        description += QStringLiteral(": ") + reason;
    }
    return RunTimeError(error.number(), error.source(), description);
}

} // namespace

UndoManager::UndoManager(DocumentList& documents, HistoryTable& histories, QString autosaveFolder, HistoryMenu& menu)
    : m_documents(documents)
    , m_histories(histories)
    , m_autosaveFolder(std::move(autosaveFolder))
    , m_menu(menu)
{
}

struct UndoManager::StartSignal
{
    std::mutex mutex;
    std::condition_variable wake;
    bool now = false;
};

UndoManager::~UndoManager()
{
    if (m_autosave.valid()) {
        startAutosaveNow();
        m_autosave.wait();
    }
}

void UndoManager::startAutosaveNow()
{
    if (m_autosaveStart) {
        {
            const std::lock_guard<std::mutex> lock(m_autosaveStart->mutex);
            m_autosaveStart->now = true;
        }
        m_autosaveStart->wake.notify_one();
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
    m_autosaveStart = std::make_shared<StartSignal>();
    m_autosave = std::async(std::launch::async, writeAutosave, m_autosaveStart, m_autosaveDelay, MenuDocument(document),
                            autosavePath(index));
}

void UndoManager::writeAutosave(const std::shared_ptr<StartSignal>& start, std::chrono::milliseconds delay,
                                const MenuDocument& state, const QString& path)
{
    {
        std::unique_lock<std::mutex> lock(start->mutex);
        start->wake.wait_for(lock, delay, [&start] { return start->now; });
    }
    try {
        writeMenuFile(state, path);
    } catch (const RunTimeError& error) {
        throw autosaveError(error, path);
    }
}

void UndoManager::completeAutosave()
{
    if (m_autosave.valid()) {
        startAutosaveNow();
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

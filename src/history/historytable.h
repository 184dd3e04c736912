#pragma once

#include "documenthistory.h"

#include <QtGlobal>

#include <memory>
#include <vector>

/// The undo and redo states of every document, addressed by document index like the document list.
/// Slot 0 is a placeholder; a slot is appended and dropped in step with the document list, and
/// closing a document keeps its history for the rest of the run.
class HistoryTable final
{
public:
    HistoryTable();

    /// Appends an empty history (counts 0) for a new or opened document and returns its index.
    qint16 appendSlot();
    /// Drops the newest slot again (a failed open). Never drops the placeholder.
    void removeLastSlot();

    /// Index of the last slot; 0 when only the placeholder exists.
    qint16 lastSlot() const;
    bool isDocumentIndex(int index) const { return index >= 1 && index < int(m_histories.size()); }

    /// The history of document `index`; throws RunTimeError 9 for the placeholder or an index out of
    /// range. The reference stays valid while the slot exists, whatever is appended after it.
    DocumentHistory& history(int index);
    const DocumentHistory& history(int index) const;

private:
    // Held through pointers: a history holds 32 states and references to it must survive appends.
    std::vector<std::unique_ptr<DocumentHistory>> m_histories;
};

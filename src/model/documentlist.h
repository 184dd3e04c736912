#pragma once

#include "menudocument.h"

#include <QList>

/// The open documents, addressed by document index. Slot 0 is a placeholder that never holds a
/// document; closing a document leaves its slot in place, so an index stays valid for the whole run.
class DocumentList
{
public:
    DocumentList();

    /// Appends an empty slot and returns its index; the newest document is always the last slot.
    qint16 append();
    /// Drops the newest slot again (a failed open). Never drops the placeholder.
    void removeLast();

    /// Index of the last slot; 0 when only the placeholder exists.
    qint16 lastSlot() const;
    bool isDocumentIndex(int index) const { return index >= 1 && index < m_documents.size(); }

    /// The document at `index`; throws RunTimeError 9 for the placeholder or an index out of range.
    MenuDocument& document(int index);
    const MenuDocument& document(int index) const;

private:
    QList<MenuDocument> m_documents;
};

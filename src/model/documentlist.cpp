#include "documentlist.h"

#include "errortable.h"
#include "int16.h"
#include "runtimeerror.h"

DocumentList::DocumentList()
    : m_documents(1)
{
}

qint16 DocumentList::append()
{
    const qint16 index = Int16::checked(m_documents.size(), "DocumentList::append");
    m_documents.append(MenuDocument {});
    return index;
}

void DocumentList::removeLast()
{
    if (m_documents.size() > 1) {
        m_documents.removeLast();
    }
}

qint16 DocumentList::lastSlot() const
{
    return static_cast<qint16>(m_documents.size() - 1);
}

MenuDocument& DocumentList::document(int index)
{
    if (!isDocumentIndex(index)) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("DocumentList"));
    }
    return m_documents[index];
}

const MenuDocument& DocumentList::document(int index) const
{
    if (!isDocumentIndex(index)) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("DocumentList"));
    }
    return m_documents.at(index);
}

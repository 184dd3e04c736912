#include "historytable.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/runtimeerror.h"

HistoryTable::HistoryTable()
{
    m_histories.push_back(std::make_unique<DocumentHistory>());
}

qint16 HistoryTable::appendSlot()
{
    const qint16 index = Int16::checked(qint64(m_histories.size()), "HistoryTable::appendSlot");
    m_histories.push_back(std::make_unique<DocumentHistory>());
    return index;
}

void HistoryTable::removeLastSlot()
{
    if (m_histories.size() > 1) {
        m_histories.pop_back();
    }
}

qint16 HistoryTable::lastSlot() const
{
    return static_cast<qint16>(m_histories.size() - 1);
}

DocumentHistory& HistoryTable::history(int index)
{
    if (!isDocumentIndex(index)) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("HistoryTable"));
    }
    return *m_histories[std::size_t(index)];
}

const DocumentHistory& HistoryTable::history(int index) const
{
    if (!isDocumentIndex(index)) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("HistoryTable"));
    }
    return *m_histories[std::size_t(index)];
}

#pragma once

#include "history/historyhost.h"
#include "model/documentlist.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QList>

/// The main window as Undo and Redo see it. The tree rebuild applies the hideMode change the way the
/// editor window's tree generation does and can be made to fail, as a broken tree rebuild would.
class FakeHistoryHost final : public HistoryHost
{
public:
    explicit FakeHistoryHost(DocumentList& documents)
        : m_documents(documents)
    {
    }

    qint16 activeDocumentIndex() const override { return activeIndex; }

    void regenerateTree(qint16 index, qint32 modeChange) override
    {
        regenerations.append({ index, modeChange });
        if (failingRegenerations > 0) {
            --failingRegenerations;
            throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("generateTree"));
        }
        MenuDocument& document = m_documents.document(index);
        if (modeChange == 0 || modeChange == 3) {
            document.hideMode = modeChange;
        } else if (modeChange != -3) {
            document.hideMode += modeChange;
        }
    }

    void showItemCount(int count) override { shownCounts.append(count); }

    struct Regeneration
    {
        qint16 index;
        qint32 modeChange;
        friend bool operator==(const Regeneration& left, const Regeneration& right)
        {
            return left.index == right.index && left.modeChange == right.modeChange;
        }
    };

    qint16 activeIndex = 0;
    /// How many of the next tree rebuilds throw.
    int failingRegenerations = 0;
    QList<Regeneration> regenerations;
    QList<int> shownCounts;

private:
    DocumentList& m_documents;
};

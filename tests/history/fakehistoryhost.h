#pragma once

#include "history/historyhost.h"
#include "model/documentlist.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QList>

/// The main window as Undo and Redo see it. The tree rebuild notes the document's hide mode at that
/// moment and can be made to fail, as a broken tree rebuild would.
class FakeHistoryHost final : public HistoryHost
{
public:
    explicit FakeHistoryHost(DocumentList& documents)
        : m_documents(documents)
    {
    }

    qint16 activeDocumentIndex() const override { return activeIndex; }

    void regenerateTree(qint16 index) override
    {
        regenerations.append({ index, m_documents.document(index).hideMode });
        if (failingRegenerations > 0) {
            --failingRegenerations;
            throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("generateTree"));
        }
    }

    /// Showing a restored state is the rebuild of Undo and Redo: it is noted (and fails) as one.
    void showRestoredState(qint16 index, const MenuDocument&) override { regenerateTree(index); }

    void showItemCount(int count) override { shownCounts.append(count); }

    struct Regeneration
    {
        qint16 index;
        /// The document's hide mode when its tree was rebuilt.
        qint32 hideMode;
        friend bool operator==(const Regeneration& left, const Regeneration& right)
        {
            return left.index == right.index && left.hideMode == right.hideMode;
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

#include "recoverycopies.h"

#include "app/messageboxes.h"
#include "core/applicationstate.h"
#include "core/recoverystore.h"
#include "model/menudocument.h"

#include <QDir>

namespace {

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

/// Whether `now` holds anything a copy of `noted` would not: the hide mode is not kept in a file.
bool differs(const MenuDocument& now, const MenuDocument& noted)
{
    return now.saved != noted.saved || now.filePath != noted.filePath || now.lastIndex != noted.lastIndex
        || now.items != noted.items;
}

} // namespace

RecoveryCopies::RecoveryCopies(ApplicationState& state, MessageBoxes& messages, const QString& folder,
                               CaptionSource captions, QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_messages(messages)
    , m_captions(std::move(captions))
{
    m_store = std::make_unique<RecoveryStore>(folder, [&state](qint16 index) -> const MenuDocument* {
        return state.documents().isDocumentIndex(index) ? &state.document(index) : nullptr;
    });
    connect(m_store.get(), &RecoveryStore::copyFailed, this, &RecoveryCopies::tellFailure);
    connect(m_store.get(), &RecoveryStore::copyWritten, this, [this](qint16 index) { m_toldFailures.erase(index); });
}

RecoveryCopies::~RecoveryCopies() = default;

QString RecoveryCopies::failureMessage(const QString& failure, const QString& caption)
{
    return failure + QLatin1Char('.') + lineEnd() + lineEnd() + QStringLiteral("The changes to ") + caption
        + QStringLiteral(" are kept while the editor runs, but they cannot be recovered if it ends without "
                         "quitting. Save the menu to keep them safe.");
}

QString RecoveryCopies::inactiveMessage(const QString& folder)
{
    return QStringLiteral("No recovery copies can be kept in this folder, as it cannot be written :") + lineEnd()
        + QStringLiteral("    ") + QDir::toNativeSeparators(folder) + lineEnd() + lineEnd()
        + QStringLiteral("Changes that are not saved are lost if the editor ends without quitting. Save your "
                         "menus to keep them safe.");
}

void RecoveryCopies::documentShown(qint16 index)
{
    m_noted[index] = m_state.document(index);
}

void RecoveryCopies::documentsChanged()
{
    for (const qint16 index : m_state.openDocumentIndexes()) {
        const MenuDocument& document = m_state.document(index);
        const auto noted = m_noted.find(index);
        if (noted == m_noted.end() || !differs(document, noted->second)) {
            continue;
        }
        noted->second = document;
        if (!m_store->isActive()) {
            if (!document.saved && !m_toldInactive) {
                m_toldInactive = true;
                m_messages.showPlain(inactiveMessage(m_store->folder()));
            }
            continue;
        }
        m_store->noteChanged(index, m_captions(index), m_state.fileIdentity(index));
    }
}

void RecoveryCopies::documentClosed(qint16 index)
{
    m_noted.erase(index);
    m_toldFailures.erase(index);
    m_store->remove(index);
}

void RecoveryCopies::offerLeftCopies(RecoveryPrompt& prompt, const Recoverer& recover)
{
    const QList<RecoveryCopy> copies = m_store->claimLeftCopies();
    if (copies.isEmpty()) {
        return;
    }
    const QList<RecoveryPrompt::Decision> decisions = prompt.decide(copies);
    for (int i = 0; i < copies.size(); ++i) {
        const RecoveryCopy& copy = copies.at(i);
        switch (decisions.value(i, RecoveryPrompt::Decision::DecideLater)) {
        case RecoveryPrompt::Decision::Recover:
            if (recover(copy) == 0) {
                m_store->leaveForNextStart(copy);
            }
            break;
        case RecoveryPrompt::Decision::Discard:
            m_store->discardCopy(copy);
            break;
        case RecoveryPrompt::Decision::DecideLater:
            m_store->leaveForNextStart(copy);
            break;
        }
    }
}

void RecoveryCopies::tellFailure(qint16 index, const QString& failure)
{
    // Told once: a full disk would otherwise say so after every edit.
    if (!m_toldFailures.insert(index).second) {
        return;
    }
    const QString caption = m_state.editor(index) != nullptr ? m_captions(index) : QStringLiteral("this menu");
    m_messages.showPlain(failureMessage(failure, caption));
}

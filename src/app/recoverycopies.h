#pragma once

#include "app/recoveryprompt.h"

#include <QObject>
#include <QString>
#include <QtGlobal>

#include <functional>
#include <map>
#include <memory>
#include <set>

class ApplicationState;
class MessageBoxes;
class RecoveryStore;
struct MenuDocument;

/// Keeps the recovery copies of the open menus up to date with the editor's windows, so that a crash
/// loses no change: after every change it notes each menu that changed since it was noted last (a
/// saved menu's copy goes), removes the copy of a window closed without saving, and at start-up
/// offers the copies that editors which did not quit normally left behind. A copy that cannot be
/// written is told once, plainly: the edit itself went through and nothing is undone.
class RecoveryCopies final : public QObject
{
    Q_OBJECT

public:
    /// The caption of the editor window of document `index`.
    using CaptionSource = std::function<QString(qint16 index)>;
    /// Opens a copy as a menu in a new window; its document index, 0 when it could not be read.
    using Recoverer = std::function<qint16(const RecoveryCopy& copy)>;

    /// The copies go to `folder` (RecoveryStore::defaultFolder() in the editor).
    RecoveryCopies(ApplicationState& state, MessageBoxes& messages, const QString& folder, CaptionSource captions,
                   QObject* parent = nullptr);
    /// Writes what is still waiting; the copies of menus nobody decided about stay.
    ~RecoveryCopies() override;

    RecoveryCopies(const RecoveryCopies&) = delete;
    RecoveryCopies& operator=(const RecoveryCopies&) = delete;

    RecoveryStore& store() { return *m_store; }

    /// Document `index` was just made, opened or recovered: its changes count from what it holds now.
    void documentShown(qint16 index);
    /// Something may have changed (an edit, Undo, Redo, a save): notes every open menu that differs
    /// from what was noted of it last.
    void documentsChanged();
    /// The window of document `index` closed; its copy goes with it (saved, or its changes discarded).
    void documentClosed(qint16 index);

    /// Asks `prompt` about the copies left by editors that no longer run, if there are any, and does
    /// what it says: `recover` opens a copy, Discard deletes it, Decide later keeps it for the next
    /// start (as does a copy that could not be read).
    void offerLeftCopies(RecoveryPrompt& prompt, const Recoverer& recover);

    /// What the user is told when a menu's copy cannot be written (`failure` says why and where).
    static QString failureMessage(const QString& failure, const QString& caption);
    /// What the user is told when no copies can be kept in `folder` at all.
    static QString inactiveMessage(const QString& folder);

private:
    void tellFailure(qint16 index, const QString& failure);

    ApplicationState& m_state;
    MessageBoxes& m_messages;
    CaptionSource m_captions;
    std::unique_ptr<RecoveryStore> m_store;
    /// Each open menu as it was noted last; it shares its items with the menu, so keeping it costs
    /// little and telling a change from none costs a comparison of the parts that differ.
    std::map<qint16, MenuDocument> m_noted;
    /// The menus whose failed copy the user was told about, until one is written again.
    std::set<qint16> m_toldFailures;
    bool m_toldInactive = false;
};

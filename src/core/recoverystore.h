#pragma once

#include "core/recoverycopy.h"
#include "menufile/menureadresult.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QtGlobal>

#include <functional>
#include <map>
#include <memory>
#include <set>

class QLockFile;
struct MenuDocument;

/// The recovery copies of this editor: for every document with unsaved changes, a copy of its current
/// state in a folder of the user's own (never the program's folder), so that a crash loses nothing.
/// Each copy is a menu file written atomically by the menu file writer, with its notes beside it: the
/// menu's path, its caption, the time of the change, the item count and the owning editor.
///
/// A change costs the edit only a note and a timer: when the write delay has passed, the store takes
/// the document as it then stands (a copy that shares its data) and hands it to a thread of its own,
/// which copies the item list, lets go of the editor's, builds the file's bytes and writes them.
/// Changes made within the delay are coalesced into one write, and the editor's item list is shared
/// only for the few milliseconds of that copy, so that an edit seldom has to copy the items it changes
/// because the store still holds them. Every editor holds a lock
/// file for its whole run; copies whose lock is held belong to a running editor and are never offered by another, while
/// a lock whose process is gone (QLockFile checks the process id and the program's name, so a reused process id does
/// not fool it) marks copies left by a crash. An editor started later claims such copies, so that two editors started
/// at once do not both offer them.
class RecoveryStore final : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;
    /// Where the store finds document `index` as it stands when its copy is due; null when there is no
    /// such document any more. In the editor: the document list of ApplicationState.
    using DocumentSource = std::function<const MenuDocument*(qint16 index)>;

    /// The copies go to `folder`, created when missing; the documents come from `documents`, which must
    /// answer for the store's whole life (it is asked once more when the store ends). Takes the lock of
    /// this editor's session.
    RecoveryStore(QString folder, DocumentSource documents, QObject* parent = nullptr);
    /// Writes what is still waiting, waits for the writing thread and gives up the lock. Copies that
    /// were not removed stay: they hold changes nobody decided about.
    ~RecoveryStore() override;

    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;

    /// The `recovery` folder in the per-user data folder (ProgramFolder::userDataPath()).
    static QString defaultFolder();

    /// Whether copies can be kept: the folder exists and this editor holds its lock there.
    bool isActive() const;
    QString folder() const { return m_folder; }
    /// The time a copy is noted with; the system clock unless a test sets another.
    void setClock(Clock clock);
    /// How long changes gather before their copy is written (1 s unless set): every change reaches
    /// the disk within this delay and the time of one write.
    void setWriteDelay(int milliseconds);

    /// Document `index` has changed (an edit, a label edit, a link switched, a command stored, Undo,
    /// Redo): within the write delay its copy holds the document as it then stands, with its file path,
    /// under `caption` (the editor window's) and the time of this call. `identity` is the identity of
    /// the menu's file as the editor last opened or saved it (null for a new menu); a recovered menu is
    /// checked against it. A saved document needs no copy: noting it removes the copy (an Undo back to
    /// the saved state).
    void noteChanged(qint16 index, const QString& caption, const FileIdentity& identity = FileIdentity());
    /// Removes the copy of document `index`: saved, closed without saving, or discarded at quit.
    void remove(qint16 index);
    /// Removes every copy of this editor.
    void removeAll();
    /// Writes the changes still gathering at once and waits until every copy and removal asked for so
    /// far is done; false when `timeoutMilliseconds` (negative: no limit) passed first.
    bool waitForWrites(int timeoutMilliseconds = -1);

    /// Lists the copies left by editors that no longer run, newest first, and claims them for this
    /// editor until each is recovered, discarded or left for the next start. Left-over temporary files
    /// of those editors are removed. Copies of running editors, this one included, are never listed.
    QList<RecoveryCopy> claimLeftCopies();
    /// Reads a listed copy back: the menu as it was, with its file path, not saved.
    MenuReadResult readCopy(const RecoveryCopy& copy, MenuDocument& document) const;
    /// Reads a listed copy as document `index` (a new document index of this editor) and makes it that
    /// document's copy at once, so that it is never without one: the menu as it was, with its file path,
    /// not saved, its window index `index`. On a failed read nothing changes.
    MenuReadResult recoverCopy(const RecoveryCopy& copy, qint16 index, MenuDocument& document);
    /// Deletes a listed copy.
    void discardCopy(const RecoveryCopy& copy);
    /// Keeps a listed copy for the next start.
    void leaveForNextStart(const RecoveryCopy& copy);

Q_SIGNALS:
    /// The copy of document `index` is on disk, as noted last (or removed, after a removal).
    void copyWritten(qint16 index);
    /// The copy of document `index` could not be written; `message` says why and where.
    void copyFailed(qint16 index, const QString& message);

private:
    struct Pending;
    class Writer;

    void writePending();
    /// Forgets a claimed copy; the claim on its editor's lock ends with its last copy.
    void settle(const RecoveryCopy& copy);
    QString ownName(qint16 index) const;

    QString m_folder;
    DocumentSource m_documents;
    QString m_session;
    std::unique_ptr<QLockFile> m_lock;
    Clock m_clock;
    QTimer m_timer;
    std::map<qint16, std::unique_ptr<Pending>> m_pending;
    std::unique_ptr<Writer> m_writer;
    /// The locks of editors that no longer run, held while their copies are being decided on, with the
    /// copies still undecided.
    std::map<QString, std::unique_ptr<QLockFile>> m_claims;
    std::map<QString, QList<QString>> m_undecided;
    /// The documents that may have a copy of this editor on disk.
    std::set<qint16> m_copied;
};

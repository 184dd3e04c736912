#include "recoverystore.h"

#include "core/programfolder.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/errortable.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace {

constexpr int defaultWriteDelay = 1000;

const QString copySuffix = QStringLiteral(".ini");
const QString notesSuffix = QStringLiteral(".json");
const QString lockSuffix = QStringLiteral(".lock");

/// The editor session a copy's name ("<session>-<document index>") belongs to.
QString sessionOf(const QString& id)
{
    return id.left(id.lastIndexOf(QLatin1Char('-')));
}

QString numberText(qint64 number)
{
    return QString::number(number);
}

/// The notes beside a copy. Numbers of 64 bits are kept as text: JSON numbers are doubles.
QByteArray notesOf(const MenuDocument& document, const QString& caption, const QDateTime& time,
                   const FileIdentity& identity)
{
    QJsonObject notes;
    notes.insert(QStringLiteral("menuPath"), document.filePath);
    notes.insert(QStringLiteral("caption"), caption);
    notes.insert(QStringLiteral("time"), time.toUTC().toString(Qt::ISODateWithMs));
    notes.insert(QStringLiteral("items"), int(document.items.size()));
    notes.insert(QStringLiteral("processId"), numberText(QCoreApplication::applicationPid()));
    if (!identity.isNull()) {
        QJsonObject file;
        file.insert(QStringLiteral("size"), numberText(identity.size()));
        file.insert(QStringLiteral("modified"), numberText(identity.modifiedNanoseconds()));
        file.insert(QStringLiteral("inode"), QString::number(identity.inode()));
        file.insert(QStringLiteral("device"), QString::number(identity.device()));
        file.insert(QStringLiteral("hash"), QString::fromLatin1(identity.hash().toHex()));
        file.insert(QStringLiteral("known"), numberText(identity.knownNanoseconds()));
        notes.insert(QStringLiteral("file"), file);
    }
    return QJsonDocument(notes).toJson(QJsonDocument::Indented);
}

FileIdentity identityOf(const QJsonObject& file)
{
    if (file.isEmpty()) {
        return FileIdentity();
    }
    const auto number = [&file](const char* key) { return file.value(QLatin1String(key)).toString().toLongLong(); };
    const auto unsignedNumber
        = [&file](const char* key) { return file.value(QLatin1String(key)).toString().toULongLong(); };
    return FileIdentity::restored(number("size"), number("modified"), unsignedNumber("inode"), unsignedNumber("device"),
                                  QByteArray::fromHex(file.value(QStringLiteral("hash")).toString().toLatin1()),
                                  number("known"));
}

/// Writes the small notes file completely or not at all.
bool writeNotes(const QString& path, const QByteArray& notes)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly) || file.write(notes) != notes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

/// The document with every copy-command link that names no item switched off. A pasted record may
/// keep a link to an item deleted since; the writer refuses such a menu, and a recovery copy must
/// still be written: the item keeps its own commands instead.
MenuDocument withoutDanglingLinks(MenuDocument document)
{
    QSet<QString> keys;
    for (const MenuItem& item : std::as_const(document.items)) {
        keys.insert(item.key);
    }
    for (MenuItem& item : document.items) {
        if (item.copiesCommands && !keys.contains(item.copyKey)) {
            item.copiesCommands = false;
        }
    }
    return document;
}

} // namespace

/// A change waiting for the write delay to pass. The document itself is taken only when its copy is
/// due: held from the change on, it would make every later edit copy the items it changes.
struct RecoveryStore::Pending
{
    QString caption;
    QDateTime time;
    FileIdentity identity;
};

/// The thread that writes and removes the copies, one job after the other. A job waiting for its turn
/// is replaced by a newer one for the same document, so a burst of changes costs one write; a removal
/// waits for the write of the same document in progress, so that no copy comes back after it.
class RecoveryStore::Writer
{
public:
    Writer(RecoveryStore& store, QString folder)
        : m_store(store)
        , m_folder(std::move(folder))
        , m_thread([this] { run(); })
    {
    }

    /// Does every job asked for, then ends the thread.
    ~Writer()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stopping = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void write(qint16 index, const QString& name, MenuDocument document, QByteArray notes)
    {
        schedule(index, Job { false, name, std::move(document), std::move(notes) });
    }

    void remove(qint16 index, const QString& name)
    {
        schedule(index, Job { true, name, MenuDocument(), QByteArray() });
    }

    bool waitUntilIdle(int timeoutMilliseconds)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const auto idle = [this] { return m_jobs.empty() && !m_busy; };
        if (timeoutMilliseconds < 0) {
            m_idle.wait(lock, idle);
            return true;
        }
        return m_idle.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds), idle);
    }

private:
    struct Job
    {
        bool remove;
        QString name;
        MenuDocument document;
        QByteArray notes;
    };

    void schedule(qint16 index, Job job)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_jobs.insert_or_assign(index, std::move(job));
        }
        m_wake.notify_one();
    }

    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (true) {
            m_wake.wait(lock, [this] { return !m_jobs.empty() || m_stopping; });
            if (m_jobs.empty()) {
                return;
            }
            auto next = m_jobs.begin();
            const qint16 index = next->first;
            Job job = std::move(next->second);
            m_jobs.erase(next);
            m_busy = true;
            lock.unlock();

            const QString failure = job.remove ? removeFiles(job.name) : writeFiles(job);
            job = Job {};
            RecoveryStore* store = &m_store;
            if (failure.isEmpty()) {
                QMetaObject::invokeMethod(
                    store, [store, index] { Q_EMIT store->copyWritten(index); }, Qt::QueuedConnection);
            } else {
                QMetaObject::invokeMethod(
                    store, [store, index, failure] { Q_EMIT store->copyFailed(index, failure); }, Qt::QueuedConnection);
            }

            lock.lock();
            m_busy = false;
            m_idle.notify_all();
        }
    }

    QString path(const QString& name, const QString& suffix) const { return QDir(m_folder).filePath(name + suffix); }

    /// Writes the copy, then its notes; a failure as the message the editor shows.
    QString writeFiles(Job& job) const
    {
        const QString copyPath = path(job.name, copySuffix);
        try {
            // While the item list is shared with the editor, an edit there must copy the whole list
            // before it changes an item. The copy is made here instead, on this thread, and the
            // editor's list is let go at once: it is shared only for the few milliseconds of this
            // copy, not for the writing.
            MenuDocument document = job.document;
            document.items.detach();
            job.document = MenuDocument();
            QByteArray bytes;
            try {
                bytes = menuFileBytes(document);
            } catch (const RunTimeError& error) {
                if (error.number() != ErrorNumber::SubscriptOutOfRange) {
                    throw;
                }
                bytes = menuFileBytes(withoutDanglingLinks(document));
            }
            document = MenuDocument();
            writeMenuFileBytes(bytes, copyPath);
        } catch (const std::bad_alloc&) {
            return QStringLiteral("The recovery copy %1 cannot be written: %2")
                .arg(QDir::toNativeSeparators(copyPath), errorDescription(ErrorNumber::OutOfMemory));
        } catch (const RunTimeError& error) {
            return QStringLiteral("The recovery copy %1 cannot be written: %2")
                .arg(QDir::toNativeSeparators(copyPath), error.description());
        }
        const QString notesPath = path(job.name, notesSuffix);
        if (!writeNotes(notesPath, job.notes)) {
            return QStringLiteral("The notes of the recovery copy %1 cannot be written")
                .arg(QDir::toNativeSeparators(notesPath));
        }
        return QString();
    }

    QString removeFiles(const QString& name) const
    {
        // The notes first: a copy without notes is still offered, notes without a copy are not.
        QFile::remove(path(name, notesSuffix));
        const QString copyPath = path(name, copySuffix);
        if (QFile::exists(copyPath) && !QFile::remove(copyPath)) {
            return QStringLiteral("The recovery copy %1 cannot be removed").arg(QDir::toNativeSeparators(copyPath));
        }
        return QString();
    }

    RecoveryStore& m_store;
    const QString m_folder;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::map<qint16, Job> m_jobs;
    bool m_busy = false;
    bool m_stopping = false;
    std::thread m_thread;
};

RecoveryStore::RecoveryStore(QString folder, DocumentSource documents, QObject* parent)
    : QObject(parent)
    , m_folder(std::move(folder))
    , m_documents(std::move(documents))
    , m_session(QStringLiteral("editor-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    QDir().mkpath(m_folder);
    m_lock = std::make_unique<QLockFile>(QDir(m_folder).filePath(m_session + lockSuffix));
    // Held for the editor's whole run: only the end of its process makes the lock stale, never its age.
    m_lock->setStaleLockTime(0);
    m_lock->tryLock(0);
    m_timer.setSingleShot(true);
    m_timer.setInterval(defaultWriteDelay);
    connect(&m_timer, &QTimer::timeout, this, &RecoveryStore::writePending);
    m_writer = std::make_unique<Writer>(*this, m_folder);
}

RecoveryStore::~RecoveryStore()
{
    m_timer.stop();
    writePending();
    m_writer.reset();
    for (auto& claim : m_claims) {
        claim.second->unlock();
    }
    m_lock->unlock();
}

QString RecoveryStore::defaultFolder()
{
    return QDir(ProgramFolder::userDataPath()).filePath(QStringLiteral("recovery"));
}

bool RecoveryStore::isActive() const
{
    return m_lock->isLocked();
}

void RecoveryStore::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void RecoveryStore::setWriteDelay(int milliseconds)
{
    m_timer.setInterval(milliseconds);
}

QString RecoveryStore::ownName(qint16 index) const
{
    return m_session + QLatin1Char('-') + QString::number(index);
}

void RecoveryStore::noteChanged(qint16 index, const QString& caption, const FileIdentity& identity)
{
    if (!isActive()) {
        return;
    }
    const MenuDocument* document = m_documents(index);
    if (document == nullptr || document->saved) {
        remove(index);
        return;
    }
    std::unique_ptr<Pending>& pending = m_pending[index];
    if (!pending) {
        pending = std::make_unique<Pending>();
    }
    pending->caption = caption;
    pending->time = m_clock();
    pending->identity = identity;
    // Started by the first change of a burst and not restarted by the next ones, so that a stream of
    // edits still reaches the disk within the delay.
    if (!m_timer.isActive()) {
        m_timer.start();
    }
}

void RecoveryStore::writePending()
{
    for (auto& entry : m_pending) {
        const qint16 index = entry.first;
        const MenuDocument* document = m_documents(index);
        if (document == nullptr || document->saved) {
            m_writer->remove(index, ownName(index));
            m_copied.erase(index);
            continue;
        }
        const Pending& pending = *entry.second;
        // A copy that shares the document's data: taking it costs the editor nothing.
        m_writer->write(index, ownName(index), *document,
                        notesOf(*document, pending.caption, pending.time, pending.identity));
        m_copied.insert(index);
    }
    m_pending.clear();
}

void RecoveryStore::remove(qint16 index)
{
    if (!isActive()) {
        return;
    }
    m_pending.erase(index);
    m_writer->remove(index, ownName(index));
    m_copied.erase(index);
}

void RecoveryStore::removeAll()
{
    m_pending.clear();
    if (!isActive()) {
        return;
    }
    for (const qint16 index : m_copied) {
        m_writer->remove(index, ownName(index));
    }
    m_copied.clear();
}

bool RecoveryStore::waitForWrites(int timeoutMilliseconds)
{
    m_timer.stop();
    writePending();
    return m_writer->waitUntilIdle(timeoutMilliseconds);
}

QList<RecoveryCopy> RecoveryStore::claimLeftCopies()
{
    const QDir folder(m_folder);
    QSet<QString> sessions;
    for (const QString& lock : folder.entryList({ QStringLiteral("*") + lockSuffix }, QDir::Files | QDir::Hidden)) {
        sessions.insert(lock.chopped(lockSuffix.size()));
    }
    const QStringList copies = folder.entryList({ QStringLiteral("*") + copySuffix }, QDir::Files | QDir::Hidden);
    for (const QString& copy : copies) {
        sessions.insert(sessionOf(copy.chopped(copySuffix.size())));
    }

    QList<RecoveryCopy> found;
    for (const QString& session : std::as_const(sessions)) {
        if (session == m_session || m_claims.count(session) != 0 || session.isEmpty()) {
            continue;
        }
        auto lock = std::make_unique<QLockFile>(folder.filePath(session + lockSuffix));
        lock->setStaleLockTime(0);
        // Held by a running editor (this process's other stores included): its copies are its own.
        if (!lock->tryLock(0)) {
            continue;
        }
        QList<QString> ids;
        const QStringList files = folder.entryList({ session + QStringLiteral("-*") }, QDir::Files | QDir::Hidden);
        for (const QString& file : files) {
            if (file.endsWith(copySuffix)) {
                ids.append(file.chopped(copySuffix.size()));
            } else if (!file.endsWith(notesSuffix)) {
                // A file the writer had begun when its editor died.
                QFile::remove(folder.filePath(file));
            }
        }
        for (const QString& id : std::as_const(ids)) {
            RecoveryCopy copy;
            copy.id = id;
            QFile notesFile(folder.filePath(id + notesSuffix));
            const QJsonObject notes = notesFile.open(QIODevice::ReadOnly)
                ? QJsonDocument::fromJson(notesFile.readAll()).object()
                : QJsonObject();
            if (notes.isEmpty()) {
                // Its editor died before the notes of its first copy were written: the copy tells
                // what it can itself.
                const QString copyPath = folder.filePath(id + copySuffix);
                copy.time = QFileInfo(copyPath).lastModified().toUTC();
                MenuDocument document;
                if (readMenuFile(copyPath, document).ok()) {
                    copy.itemCount = int(document.items.size());
                }
            } else {
                copy.menuPath = notes.value(QStringLiteral("menuPath")).toString();
                copy.caption = notes.value(QStringLiteral("caption")).toString();
                copy.time = QDateTime::fromString(notes.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
                copy.itemCount = notes.value(QStringLiteral("items")).toInt();
                copy.processId = notes.value(QStringLiteral("processId")).toString().toLongLong();
                copy.fileIdentity = identityOf(notes.value(QStringLiteral("file")).toObject());
            }
            found.append(copy);
        }
        if (ids.isEmpty()) {
            // An editor that died without unsaved changes: nothing to offer, and its lock goes.
            lock->unlock();
            continue;
        }
        m_claims[session] = std::move(lock);
        m_undecided[session] = ids;
    }
    std::sort(found.begin(), found.end(), [](const RecoveryCopy& left, const RecoveryCopy& right) {
        return left.time != right.time ? left.time > right.time : left.id < right.id;
    });
    return found;
}

MenuReadResult RecoveryStore::readCopy(const RecoveryCopy& copy, MenuDocument& document) const
{
    const MenuReadResult result = readMenuFile(QDir(m_folder).filePath(copy.id + copySuffix), document);
    if (result.ok()) {
        document.filePath = copy.menuPath;
        document.saved = false;
    }
    return result;
}

MenuReadResult RecoveryStore::recoverCopy(const RecoveryCopy& copy, qint16 index, MenuDocument& document)
{
    MenuDocument recovered;
    const MenuReadResult result = readCopy(copy, recovered);
    if (!result.ok()) {
        return result;
    }
    recovered.windowIndex = index;
    document = recovered;
    if (isActive()) {
        // Renamed, not written again: the menu is never without a copy on disk.
        const QDir folder(m_folder);
        const QString own = ownName(index);
        m_pending.erase(index);
        QFile::remove(folder.filePath(own + copySuffix));
        QFile::rename(folder.filePath(copy.id + copySuffix), folder.filePath(own + copySuffix));
        writeNotes(folder.filePath(own + notesSuffix), notesOf(recovered, copy.caption, copy.time, copy.fileIdentity));
        QFile::remove(folder.filePath(copy.id + notesSuffix));
        m_copied.insert(index);
    }
    settle(copy);
    return result;
}

void RecoveryStore::discardCopy(const RecoveryCopy& copy)
{
    const QDir folder(m_folder);
    QFile::remove(folder.filePath(copy.id + notesSuffix));
    QFile::remove(folder.filePath(copy.id + copySuffix));
    settle(copy);
}

void RecoveryStore::leaveForNextStart(const RecoveryCopy& copy)
{
    settle(copy);
}

void RecoveryStore::settle(const RecoveryCopy& copy)
{
    const QString session = sessionOf(copy.id);
    const auto undecided = m_undecided.find(session);
    if (undecided == m_undecided.end()) {
        return;
    }
    undecided->second.removeAll(copy.id);
    if (undecided->second.isEmpty()) {
        // The lock file goes with the claim: copies left for the next start are found again then.
        m_claims.at(session)->unlock();
        m_claims.erase(session);
        m_undecided.erase(undecided);
    }
}

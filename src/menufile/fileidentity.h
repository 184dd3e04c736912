#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

#include <optional>

class QFileDevice;

/// What a menu file was when the editor last read or wrote it: its length, its modification time to
/// the nanosecond, its inode (with the device that holds it) and a hash of its bytes. Taken from the
/// very bytes read at open and written at save, it lets a later Save notice that another window,
/// another editor or any other program has changed the file since, instead of overwriting that change.
/// A null identity stands for no file (a new menu).
class FileIdentity final
{
public:
    /// What became of a file since its identity was taken.
    enum class Change {
        /// Length, modification time and inode as they were: nothing was written to it.
        Unchanged,
        /// Written or replaced, but with the same bytes again (a touch, a save of the same menu).
        Touched,
        /// It holds other bytes now, or is no longer a file.
        Changed,
        /// There is no file at the path any more.
        Missing,
    };

    FileIdentity() = default;

    /// The identity of the file open in `file`, which holds exactly `bytes` (just read or written).
    static FileIdentity ofOpenFile(const QFileDevice& file, QByteArrayView bytes);
    /// The same for a file read in pieces, no longer all in memory: its `length` bytes hashed into
    /// `hash` (as hashOf gives it).
    static FileIdentity ofReadFile(const QFileDevice& file, qint64 length, const QByteArray& hash);
    /// Reads the open `file` from where it stands to its end, a piece at a time, and gives its
    /// identity; a null identity when it cannot be read or is larger than any menu file can be.
    static FileIdentity ofFileRead(QFileDevice& file);
    /// The same for a file open as the system's file descriptor `descriptor` (Unix: the writer's own
    /// new file; elsewhere only the length and the hash are known this way).
    static FileIdentity ofDescriptor(int descriptor, QByteArrayView bytes);

    /// An identity kept elsewhere (beside a recovery copy) and read back; `hash` as hash() gave it and
    /// `knownNanoseconds` as knownNanoseconds() did.
    static FileIdentity restored(qint64 size, qint64 modifiedNanoseconds, quint64 inode, quint64 device,
                                 const QByteArray& hash, qint64 knownNanoseconds);

    /// The hash an identity keeps of `bytes`: 128 bits, the same in every process, which tells a file
    /// whose bytes changed from one only touched. It is no defence against a file made on purpose to
    /// collide.
    static QByteArray hashOf(QByteArrayView bytes);

    bool isNull() const { return m_hash.isEmpty(); }
    qint64 size() const { return m_size; }
    /// Nanoseconds since 1970-01-01 UTC; to the millisecond where the system tells no more.
    qint64 modifiedNanoseconds() const { return m_modifiedNanoseconds; }
    /// 0 where the system has no inodes.
    quint64 inode() const { return m_inode; }
    quint64 device() const { return m_device; }
    QByteArray hash() const { return m_hash; }
    /// When the file was last known to hold these bytes (read, written or checked), nanoseconds since
    /// 1970.
    qint64 knownNanoseconds() const { return m_knownNanoseconds; }

    /// What became of the file at `path` since this identity was taken. Cheap while nothing happened:
    /// one look at the file's length, time and inode. Only when those differ but the length is the same
    /// are its bytes read and hashed, to tell a touch from a change. The same happens while the file's
    /// time is too close to the moment this identity was taken to be trusted: a file system keeps
    /// times to a clock tick (one or two seconds on some), and a change made within the tick of the
    /// identity's own write or read would leave length, time and inode alone. For Unchanged and
    /// Touched, `current` (when given) receives the identity to keep from now on: for Touched the
    /// file's new one, for Unchanged this one, trusted without reading once its bytes were checked.
    /// A null identity (no file was known) finds any file at `path` Changed and no file Missing.
    Change changeAt(const QString& path, FileIdentity* current = nullptr) const;

    /// Whether the file at `path` still has this identity's length, time and inode, seen without reading
    /// it. A change of the bytes made within the tick of the file's clock passes unseen: this tells only
    /// that the file was neither replaced, removed nor written to since its clock last moved.
    bool sameStatusAt(const QString& path) const;

    /// Two identities are the same file when length, time, inode and hash agree; when either was
    /// taken does not count.
    friend bool operator==(const FileIdentity& left, const FileIdentity& right)
    {
        return left.m_size == right.m_size && left.m_modifiedNanoseconds == right.m_modifiedNanoseconds
            && left.m_inode == right.m_inode && left.m_device == right.m_device && left.m_hash == right.m_hash;
    }
    friend bool operator!=(const FileIdentity& left, const FileIdentity& right) { return !(left == right); }

private:
    FileIdentity(qint64 size, qint64 modifiedNanoseconds, quint64 inode, quint64 device, QByteArray hash);
    static FileIdentity ofHashedDescriptor(int descriptor, qint64 length, const QByteArray& hash);
    /// Reads the open `file` from where it stands to its end and gives its identity; none when it
    /// cannot be read or holds more than `limit` bytes.
    static std::optional<FileIdentity> ofReadTo(QFileDevice& file, qint64 limit);

    /// Whether the file's time lies so close to (or after) the moment the bytes were last known that a
    /// change within the same tick of the file system's clock could not have moved it.
    bool timeTooRecent() const;

    qint64 m_size = 0;
    qint64 m_modifiedNanoseconds = 0;
    quint64 m_inode = 0;
    quint64 m_device = 0;
    QByteArray m_hash;
    /// When the bytes were last known to be these (read, written or checked), nanoseconds since 1970.
    qint64 m_knownNanoseconds = 0;
};

#include "fileidentity.h"

#include "menufile/contenthash.h"
#include "menufile/menufilereader.h"
#include "menufile/menulinecursor.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <sys/stat.h>
#endif

namespace {

/// The coarsest clock tick of the file systems a menu may lie on (FAT keeps times to two seconds).
constexpr qint64 timeGranularityNanoseconds = qint64(2) * 1000000000;

qint64 nowNanoseconds()
{
    return QDateTime::currentMSecsSinceEpoch() * 1000000;
}

/// What the system tells of a file without reading it.
struct Status
{
    bool exists = false;
    bool regularFile = false;
    qint64 size = 0;
    qint64 modifiedNanoseconds = 0;
    quint64 inode = 0;
    quint64 device = 0;
};

#ifdef Q_OS_UNIX
qint64 nanoseconds(const struct timespec& time)
{
    return qint64(time.tv_sec) * 1000000000 + qint64(time.tv_nsec);
}

Status statusOf(const struct stat& system)
{
    Status status;
    status.exists = true;
    status.regularFile = S_ISREG(system.st_mode);
    status.size = qint64(system.st_size);
#ifdef Q_OS_DARWIN
    status.modifiedNanoseconds = nanoseconds(system.st_mtimespec);
#else
    status.modifiedNanoseconds = nanoseconds(system.st_mtim);
#endif
    status.inode = quint64(system.st_ino);
    status.device = quint64(system.st_dev);
    return status;
}
#endif

Status statusOfPath(const QString& path)
{
#ifdef Q_OS_UNIX
    struct stat system;
    if (::stat(QFile::encodeName(path).constData(), &system) != 0) {
        Status status;
        // Only a path that names nothing is a missing file; a file that cannot be looked at is there.
        status.exists = errno != ENOENT && errno != ENOTDIR;
        return status;
    }
    return statusOf(system);
#else
    const QFileInfo info(path);
    Status status;
    status.exists = info.exists();
    status.regularFile = info.isFile();
    status.size = info.size();
    status.modifiedNanoseconds = info.lastModified().toMSecsSinceEpoch() * 1000000;
    return status;
#endif
}

} // namespace

FileIdentity::FileIdentity(qint64 size, qint64 modifiedNanoseconds, quint64 inode, quint64 device, QByteArray hash)
    : m_size(size)
    , m_modifiedNanoseconds(modifiedNanoseconds)
    , m_inode(inode)
    , m_device(device)
    , m_hash(std::move(hash))
    , m_knownNanoseconds(nowNanoseconds())
{
}

FileIdentity FileIdentity::restored(qint64 size, qint64 modifiedNanoseconds, quint64 inode, quint64 device,
                                    const QByteArray& hash, qint64 knownNanoseconds)
{
    FileIdentity identity(size, modifiedNanoseconds, inode, device, hash);
    identity.m_knownNanoseconds = knownNanoseconds;
    return identity;
}

bool FileIdentity::timeTooRecent() const
{
    return m_knownNanoseconds - m_modifiedNanoseconds < timeGranularityNanoseconds;
}

FileIdentity FileIdentity::ofOpenFile(const QFileDevice& file, QByteArrayView bytes)
{
    return ofReadFile(file, bytes.size(), hashOf(bytes));
}

FileIdentity FileIdentity::ofReadFile(const QFileDevice& file, qint64 length, const QByteArray& hash)
{
#ifdef Q_OS_UNIX
    return ofHashedDescriptor(file.handle(), length, hash);
#else
    Q_UNUSED(length);
    const Status status = statusOfPath(file.fileName());
    return FileIdentity(status.size, status.modifiedNanoseconds, status.inode, status.device, hash);
#endif
}

FileIdentity FileIdentity::ofDescriptor(int descriptor, QByteArrayView bytes)
{
    return ofHashedDescriptor(descriptor, bytes.size(), hashOf(bytes));
}

FileIdentity FileIdentity::ofHashedDescriptor(int descriptor, qint64 length, const QByteArray& hash)
{
#ifdef Q_OS_UNIX
    struct stat system;
    if (::fstat(descriptor, &system) == 0) {
        const Status status = statusOf(system);
        return FileIdentity(status.size, status.modifiedNanoseconds, status.inode, status.device, hash);
    }
#else
    Q_UNUSED(descriptor);
#endif
    // The length of the bytes keeps the identity meaningful where nothing else is known.
    return FileIdentity(length, 0, 0, 0, hash);
}

FileIdentity FileIdentity::ofFileRead(QFileDevice& file)
{
    return ofReadTo(file, maximumMenuFileSize).value_or(FileIdentity());
}

std::optional<FileIdentity> FileIdentity::ofReadTo(QFileDevice& file, qint64 limit)
{
    // A piece at a time, as the reader takes a file: never a whole menu's bytes beside the open document.
    ContentHash hash;
    MenuLineCursor pieces(file, limit, &hash);
    pieces.readToEnd();
    if (pieces.failure() != MenuLineCursor::Failure::None) {
        return std::nullopt;
    }
    return ofReadFile(file, pieces.bytesRead(), hash.result());
}

QByteArray FileIdentity::hashOf(QByteArrayView bytes)
{
    return ContentHash::of(bytes);
}

bool FileIdentity::sameStatusAt(const QString& path) const
{
    const Status status = statusOfPath(path);
    return !isNull() && status.exists && status.regularFile && status.size == m_size
        && status.modifiedNanoseconds == m_modifiedNanoseconds && status.inode == m_inode && status.device == m_device;
}

FileIdentity::Change FileIdentity::changeAt(const QString& path, FileIdentity* current) const
{
    const Status status = statusOfPath(path);
    if (!status.exists) {
        return Change::Missing;
    }
    if (isNull() || !status.regularFile || status.size != m_size) {
        return Change::Changed;
    }
    const bool sameStatus
        = status.modifiedNanoseconds == m_modifiedNanoseconds && status.inode == m_inode && status.device == m_device;
    if (sameStatus && !timeTooRecent()) {
        if (current != nullptr) {
            *current = *this;
        }
        return Change::Unchanged;
    }
    // Same length, yet written since, or written too recently for its time to tell: only the bytes
    // tell whether they are still the same.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return Change::Changed;
    }
    // A file that has grown past the identity's length since it was looked at is changed too.
    const std::optional<FileIdentity> read = ofReadTo(file, std::min(m_size, maximumMenuFileSize));
    if (!read || read->m_hash != m_hash) {
        return Change::Changed;
    }
    const FileIdentity now = *read;
    if (current != nullptr) {
        *current = now;
    }
    return now == *this ? Change::Unchanged : Change::Touched;
}

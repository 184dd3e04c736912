#include "menufilewriter.h"

#include "menufile/fileidentity.h"
#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>

#include <algorithm>
#include <cstring>
#include <new>

#ifdef Q_OS_UNIX
#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

constexpr QLatin1String header("KELV - Menu\r\n\r\n[Menu]\r\n\r\n");
constexpr QLatin1String middle("\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n");
constexpr QLatin1String footer("\r\n[/Commands]\r\n");
constexpr qsizetype markersPerLevel = 3;

/// The markers before a caption. A top-level item with an empty caption gets one marker: an empty
/// line would be skipped by the reader, while a line of one or two markers reads back as a
/// top-level item with an empty caption.
qsizetype markerCount(qint32 depth, const QString& caption)
{
    if (depth == 0 && caption.isEmpty()) {
        return 1;
    }
    return depth * markersPerLevel;
}

int digitCount(qint32 number)
{
    int digits = 1;
    while (number >= 10) {
        number /= 10;
        ++digits;
    }
    return digits;
}

/// The item number of a command line: at least four digits, zero-padded.
int itemNumberLength(qint32 number)
{
    return std::max(4, digitCount(number));
}

/// Each item's line in file order, with the commands written under it: its own or, for a link, its
/// target's. A link that names no item fails, as the writer fails on it.
struct FileLines
{
    QList<SaveOrderEntry> order;
    QList<const QList<Command>*> commandSources;
};

FileLines fileLines(const MenuDocument& document)
{
    const MenuItemArray& items = document.items;
    FileLines lines;
    lines.order = saveOrder(document);

    // A link names the first item that bears its key; filling from the end lets the first one win.
    QHash<QString, qint32> indexOfKey;
    indexOfKey.reserve(items.size());
    for (qint32 i = qint32(items.size()) - 1; i >= 0; --i) {
        indexOfKey.insert(items.at(i).key, i);
    }
    lines.commandSources.resize(lines.order.size());
    for (qsizetype k = 0; k < lines.order.size(); ++k) {
        const MenuItem& item = items.at(lines.order.at(k).index);
        qint32 source = lines.order.at(k).index;
        if (item.copiesCommands) {
            source = indexOfKey.value(item.copyKey, -1);
            if (source < 0) {
                throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("writeMenuFile"));
            }
        }
        lines.commandSources[k] = &items.at(source).commands;
    }
    return lines;
}

qint64 sizeOf(const MenuDocument& document, const FileLines& lines)
{
    qint64 size = menuFileFixedSize();
    for (qsizetype k = 0; k < lines.order.size(); ++k) {
        const SaveOrderEntry& entry = lines.order.at(k);
        size += menuFileItemLineSize(entry.depth, document.items.at(entry.index).caption);
        const QList<Command>& commands = *lines.commandSources.at(k);
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            size += menuFileCommandLineSize(qint32(k + 1), commands.at(slot));
        }
    }
    return size;
}

/// Fills a buffer that was sized beforehand: a menu of 32,767 items is several megabytes, and
/// growing it piece by piece would cost more than the writing itself.
class BufferFiller
{
public:
    explicit BufferFiller(char* start)
        : m_cursor(start)
    {
    }

    void text(QLatin1String ascii)
    {
        std::memcpy(m_cursor, ascii.data(), std::size_t(ascii.size()));
        m_cursor += ascii.size();
    }
    void text(QStringView unicode) { m_cursor = Windows1252Codec::encodeInto(unicode, m_cursor); }
    void character(char byte) { *m_cursor++ = byte; }
    void repeated(char byte, qsizetype count)
    {
        std::memset(m_cursor, byte, std::size_t(count));
        m_cursor += count;
    }
    /// The item number of a command line: at least four digits, zero-padded.
    void itemNumber(qint32 number)
    {
        const int digits = itemNumberLength(number);
        for (int position = digits - 1; position >= 0; --position) {
            m_cursor[position] = char('0' + number % 10);
            number /= 10;
        }
        m_cursor += digits;
    }
    void lineEnd()
    {
        *m_cursor++ = '\r';
        *m_cursor++ = '\n';
    }

    const char* cursor() const { return m_cursor; }

private:
    char* m_cursor;
};

/// A failure of the file itself: the fixed text of the error, then the system's reason ("Path/File
/// access error: No space left on device"), so that the user learns what to do about it.
RunTimeError fileError(int number, const QString& reason)
{
    QString description = errorDescription(number);
    if (!reason.isEmpty() && reason.compare(description, Qt::CaseInsensitive) != 0) {
        description += QStringLiteral(": ") + reason;
    }
    return RunTimeError(number, QStringLiteral("writeMenuFile"), description);
}

#ifndef Q_OS_UNIX
/// Why an operation on `file` failed, as the system tells it. For a failed rename Qt keeps no reason
/// of its own; the system's, taken right after the failing call, then stands in.
QString failureReason(const QFileDevice& file, const QString& systemReason)
{
    const QString reason = file.errorString();
    return reason == QLatin1String("Unknown error") && !systemReason.isEmpty() ? systemReason : reason;
}
#endif

/// Why the existing `target` cannot be replaced, as the system says it: opening it for writing,
/// without changing it, gives the reason ("Permission denied", "Is a directory"). A pipe or a device
/// is never opened: a pipe would wait for a reader.
QString whyNotWritable(const QFileInfo& target)
{
    if (!target.isFile() && !target.isDir()) {
        return QStringLiteral("not a regular file (a device, a pipe or a socket)");
    }
    QFile probe(target.filePath());
    if (probe.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return QStringLiteral("the file is write-protected");
    }
    return probe.errorString();
}

#ifdef Q_OS_UNIX
/// The system's text for the error number `code` ("No space left on device").
QString systemText(int code)
{
    return qt_error_string(code);
}

/// The file a save replaces: for a symbolic link the file it leads to, so that the link stays.
QString resolvedTarget(const QString& path)
{
    QFileInfo info(path);
    for (int hops = 0; info.isSymLink() && hops < 40; ++hops) {
        info.setFile(info.symLinkTarget());
    }
    return info.absoluteFilePath();
}

/// Why a file cannot be made in the folder of `target`: the folder itself refuses it (its
/// permissions, or a read-only disk). Names both, since the file alone would leave the user
/// wondering what is wrong with it.
RunTimeError folderNotWritable(const QString& target, bool replacing, int code)
{
    const QFileInfo info(target);
    QString reason = QStringLiteral("the folder %1 cannot be written, so %2 cannot be %3")
                         .arg(QDir::toNativeSeparators(info.absolutePath()), QDir::toNativeSeparators(target),
                              replacing ? QStringLiteral("replaced") : QStringLiteral("created"));
    if (code != EACCES) {
        reason += QStringLiteral(" (") + systemText(code) + QLatin1Char(')');
    }
    return fileError(ErrorNumber::PermissionDenied, reason);
}

/// The new file beside the one it is to replace. Whatever goes wrong before it has replaced it, it
/// is closed and removed again, so a failed save leaves nothing behind.
class TemporaryFile final
{
public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
        if (!m_path.isEmpty()) {
            ::unlink(m_path.constData());
        }
    }

    /// Makes a file of a name no other file has beside `target`, open for writing, with `mode`
    /// (the system's umask applies). False with errno set when the folder refuses it.
    bool create(const QByteArray& target, mode_t mode)
    {
        static const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
        for (int attempt = 0; attempt < 100; ++attempt) {
            QByteArray candidate = target + '.';
            for (int i = 0; i < 6; ++i) {
                candidate += letters[QRandomGenerator::global()->bounded(int(sizeof(letters)) - 1)];
            }
            const int descriptor = ::open(candidate.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (descriptor >= 0) {
                m_descriptor = descriptor;
                m_path = candidate;
                return true;
            }
            if (errno != EEXIST) {
                return false;
            }
        }
        return false;
    }

    int descriptor() const { return m_descriptor; }
    const QByteArray& path() const { return m_path; }

    /// Closes the file; false with errno set when the system reports a failure only now.
    bool close()
    {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return ::close(descriptor) == 0;
    }

    /// The file has taken the target's place: there is nothing left to remove.
    void keep() { m_path.clear(); }

private:
    int m_descriptor = -1;
    QByteArray m_path;
};

/// Writes all of `bytes` to `descriptor`. A full disk or a size limit first shows as a short write,
/// which is no error yet; writing on brings the system's reason.
void writeAll(int descriptor, const QByteArray& bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const std::size_t chunk = std::size_t(std::min<qint64>(bytes.size() - written, qint64(1) << 30));
        const ssize_t count = ::write(descriptor, bytes.constData() + written, chunk);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw fileError(ErrorNumber::PathFileAccessError, systemText(errno));
        }
        if (count == 0) {
            throw fileError(ErrorNumber::PathFileAccessError,
                            QStringLiteral("only %1 of %2 bytes were written").arg(written).arg(bytes.size()));
        }
        written += count;
    }
}

/// Gives the new file the owner, group and permission bits of the file it replaces. The owner and the
/// group are given as far as the process may: as administrator both, else the group when the user
/// belongs to it. The permission bits must be kept, or the save fails.
void keepOwnerAndPermissions(int descriptor, const struct stat& old)
{
    struct stat fresh;
    if (::fstat(descriptor, &fresh) == 0 && (fresh.st_uid != old.st_uid || fresh.st_gid != old.st_gid)) {
        if (::fchown(descriptor, old.st_uid, old.st_gid) != 0 && fresh.st_gid != old.st_gid) {
            if (::fchown(descriptor, uid_t(-1), old.st_gid) != 0) {
                // Neither is the process's to give: the file becomes the user's, as any new one would.
            }
        }
    }
    // After the owner: giving a file away clears its set-user-ID and set-group-ID bits.
    if (::fchmod(descriptor, old.st_mode & 07777) != 0) {
        throw fileError(ErrorNumber::PathFileAccessError,
                        QStringLiteral("the permissions of the file cannot be kept: ") + systemText(errno));
    }
}

/// Makes the renaming of the new file over the old one last through a power cut. Not every file
/// system can flush a folder; the file itself is on the disk already, so a failure here is no failed
/// save.
void flushFolder(const QString& target)
{
    const int folder
        = ::open(QFile::encodeName(QFileInfo(target).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        if (::fsync(folder) != 0) {
            // See above: the new file is complete and in place.
        }
        ::close(folder);
    }
}

/// Replaces the file `path` with `bytes`: a new file beside it, written completely, given the old
/// one's owner and permissions, flushed to the disk and renamed over the old one. Until that rename
/// the old file is untouched; any failure before it leaves it as it was and removes the new file.
/// The identity of the new file goes to `identity` when asked for.
void replaceFile(const QString& path, const QByteArray& bytes, FileIdentity* identity)
{
    const QString target = resolvedTarget(path);
    const QByteArray targetName = QFile::encodeName(target);
    struct stat old;
    const bool replacing = ::stat(targetName.constData(), &old) == 0;

    TemporaryFile file;
    // Written unreadable to others until it has the old file's permissions.
    if (!file.create(targetName, replacing ? 0600 : 0666)) {
        const int code = errno;
        if (code == EACCES || code == EPERM || code == EROFS) {
            throw folderNotWritable(target, replacing, code);
        }
        throw fileError(ErrorNumber::PathFileAccessError, systemText(code));
    }
    writeAll(file.descriptor(), bytes);
    if (replacing) {
        keepOwnerAndPermissions(file.descriptor(), old);
    }
    // A file whose bytes did not reach the disk is no saved file, and the old one must stay.
    if (::fsync(file.descriptor()) != 0) {
        throw fileError(ErrorNumber::PathFileAccessError,
                        QStringLiteral("the file could not be flushed to the disk (%1), so it was not saved")
                            .arg(systemText(errno)));
    }
    if (identity != nullptr) {
        *identity = FileIdentity::ofDescriptor(file.descriptor(), bytes);
    }
    if (!file.close()) {
        throw fileError(ErrorNumber::PathFileAccessError, systemText(errno));
    }
    if (::rename(file.path().constData(), targetName.constData()) != 0) {
        const int code = errno;
        if (code == EACCES || code == EPERM || code == EROFS) {
            throw folderNotWritable(target, replacing, code);
        }
        throw fileError(ErrorNumber::PathFileAccessError, systemText(code));
    }
    file.keep();
    flushFolder(target);
}
#else
/// Replaces the file `path` with `bytes` through QSaveFile: a new file that takes the old one's place
/// only once complete.
void replaceFile(const QString& path, const QByteArray& bytes, FileIdentity* identity)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        const QString systemReason = qt_error_string();
        throw fileError(file.error() == QFileDevice::PermissionsError ? ErrorNumber::PermissionDenied
                                                                      : ErrorNumber::PathFileAccessError,
                        failureReason(file, systemReason));
    }
    // A full disk or a size limit first shows as a short write, which is no error yet; writing on
    // brings the system's reason.
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 count = file.write(bytes.constData() + written, bytes.size() - written);
        if (count <= 0) {
            const QString systemReason = qt_error_string();
            const QString reason = file.error() != QFileDevice::NoError
                ? failureReason(file, systemReason)
                : QStringLiteral("only %1 of %2 bytes were written").arg(written).arg(bytes.size());
            file.cancelWriting();
            throw fileError(ErrorNumber::PathFileAccessError, reason);
        }
        written += count;
    }
    // The bytes may reach the disk only here: a full disk shows up now.
    if (!file.commit()) {
        const QString systemReason = qt_error_string();
        throw fileError(ErrorNumber::PathFileAccessError, failureReason(file, systemReason));
    }
    if (identity != nullptr) {
        *identity = FileIdentity::ofOpenFile(QFile(path), bytes);
    }
}
#endif

} // namespace

qint64 menuFileFixedSize()
{
    return header.size() + middle.size() + footer.size();
}

qint64 menuFileItemLineSize(qint32 depth, const QString& caption)
{
    // Every character is one byte in Windows-1252 (one that it cannot hold becomes "?").
    return markerCount(depth, caption) + caption.size() + 2;
}

qint64 menuFileCommandLineSize(qint32 number, const Command& command)
{
    return itemNumberLength(number) + 1 + command.extension.size() + 1 + command.command.size() + 2;
}

qint64 menuFileSize(const MenuDocument& document)
{
    return sizeOf(document, fileLines(document));
}

QByteArray menuFileBytes(const MenuDocument& document)
{
    const FileLines lines = fileLines(document);
    // The last item number must fit the 16-bit numbers the reader takes.
    Int16::checked(lines.order.size(), "writeMenuFile");
    QByteArray out(sizeOf(document, lines), Qt::Uninitialized);
    BufferFiller filler(out.data());
    filler.text(header);
    for (const SaveOrderEntry& entry : lines.order) {
        const MenuItem& item = document.items.at(entry.index);
        filler.repeated(char(0xB7), markerCount(entry.depth, item.caption));
        filler.text(QStringView(item.caption));
        filler.lineEnd();
    }
    filler.text(middle);
    for (qsizetype k = 0; k < lines.order.size(); ++k) {
        const QList<Command>& commands = *lines.commandSources.at(k);
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            filler.itemNumber(qint32(k + 1));
            filler.character(':');
            filler.text(QStringView(commands.at(slot).extension));
            filler.character('=');
            filler.text(QStringView(commands.at(slot).command));
            filler.lineEnd();
        }
    }
    filler.text(footer);
    Q_ASSERT(filler.cursor() == out.constData() + out.size());
    return out;
}

void writeMenuFile(const MenuDocument& document, const QString& path, FileIdentity* identity)
{
    QByteArray bytes;
    try {
        bytes = menuFileBytes(document);
    } catch (const std::bad_alloc&) {
        throw RunTimeError(ErrorNumber::OutOfMemory, QStringLiteral("writeMenuFile"));
    }
    writeMenuFileBytes(bytes, path, identity);
}

void writeMenuFileBytes(const QByteArray& bytes, const QString& path, FileIdentity* identity)
{
    const QFileInfo target(path);
    if (!target.absoluteDir().exists()) {
        throw RunTimeError(ErrorNumber::PathNotFound, QStringLiteral("writeMenuFile"));
    }
    // Replacing a write-protected file through a new file would succeed on some systems; the user
    // protected it, so it is refused like any other access error.
    if (target.exists() && (!target.isFile() || !target.isWritable())) {
        throw fileError(ErrorNumber::PathFileAccessError, whyNotWritable(target));
    }

    replaceFile(path, bytes, identity);
}

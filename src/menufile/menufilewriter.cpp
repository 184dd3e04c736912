#include "menufilewriter.h"

#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>

#include <algorithm>
#include <new>

namespace {

constexpr char crlf[] = "\r\n";
constexpr char levelMarkers[] = "\xB7\xB7\xB7";

/// The item number of a command line: at least four digits, zero-padded.
void appendItemNumber(QByteArray& out, qint32 number)
{
    char digits[12];
    int length = 0;
    do {
        digits[length++] = char('0' + number % 10);
        number /= 10;
    } while (number > 0);
    for (int padding = length; padding < 4; ++padding) {
        out.append('0');
    }
    while (length > 0) {
        out.append(digits[--length]);
    }
}

} // namespace

QByteArray menuFileBytes(const MenuDocument& document)
{
    const QList<MenuItem>& items = document.items;
    const QList<SaveOrderEntry> order = saveOrder(document);

    // A link names the first item that bears its key; filling from the end lets the first one win.
    QHash<QString, qint32> indexOfKey;
    indexOfKey.reserve(items.size());
    for (qint32 i = qint32(items.size()) - 1; i >= 0; --i) {
        indexOfKey.insert(items.at(i).key, i);
    }

    QByteArray out;
    out.reserve(256 + items.size() * 64);
    out.append("KELV - Menu").append(crlf).append(crlf);
    out.append("[Menu]").append(crlf).append(crlf);
    for (const SaveOrderEntry& entry : order) {
        for (qint16 level = 0; level < entry.depth; ++level) {
            out.append(levelMarkers);
        }
        Windows1252Codec::encodeAppend(items.at(entry.index).caption, out);
        out.append(crlf);
    }
    out.append(crlf).append("[/Menu]").append(crlf).append(crlf);
    out.append("[Commands]").append(crlf).append(crlf);

    for (qsizetype k = 0; k < order.size(); ++k) {
        const qint16 number = Int16::checked(k + 1, "writeMenuFile");
        const MenuItem& item = items.at(order.at(k).index);
        qint32 source = order.at(k).index;
        if (item.copiesCommands) {
            source = indexOfKey.value(item.copyKey, -1);
            if (source < 0) {
                throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("writeMenuFile"));
            }
        }
        const QList<Command>& commands = items.at(source).commands;
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            appendItemNumber(out, number);
            out.append(':');
            Windows1252Codec::encodeAppend(commands.at(slot).extension, out);
            out.append('=');
            Windows1252Codec::encodeAppend(commands.at(slot).command, out);
            out.append(crlf);
        }
    }
    out.append(crlf).append("[/Commands]").append(crlf);
    return out;
}

void writeMenuFile(const MenuDocument& document, const QString& path)
{
    const QString source = QStringLiteral("writeMenuFile");
    QByteArray bytes;
    try {
        bytes = menuFileBytes(document);
    } catch (const std::bad_alloc&) {
        throw RunTimeError(ErrorNumber::OutOfMemory, source);
    }

    const QFileInfo target(path);
    if (!target.absoluteDir().exists()) {
        throw RunTimeError(ErrorNumber::PathNotFound, source);
    }
    // Replacing a write-protected file through a new file would succeed on some systems; the user
    // protected it, so it is refused like any other access error.
    if (target.exists() && (!target.isFile() || !target.isWritable())) {
        throw RunTimeError(ErrorNumber::PathFileAccessError, source);
    }

    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        throw RunTimeError(file.error() == QFileDevice::PermissionsError ? ErrorNumber::PermissionDenied
                                                                         : ErrorNumber::PathFileAccessError,
                           source);
    }
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        throw RunTimeError(ErrorNumber::DiskFull, source);
    }
    if (!file.commit()) {
        throw RunTimeError(ErrorNumber::PathFileAccessError, source);
    }
}

#include "menufilewriter.h"

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

/// One entry of the save order: an item and its depth in the tree walk.
struct SaveEntry
{
    qint32 index;
    qint16 depth;
};

/// Puts `bucket` in the order the tree walk visits it: for ord = 1 .. limit, every item with that
/// siblingOrder, in array order among items that share one. Other items are dropped.
void orderSiblings(QList<qint32>& bucket, const QList<MenuItem>& items, qint32 limit)
{
    bucket.removeIf([&items, limit](qint32 index) {
        const qint16 order = items.at(index).siblingOrder;
        return order < 1 || order > limit;
    });
    std::stable_sort(bucket.begin(), bucket.end(), [&items](qint32 left, qint32 right) {
        return items.at(left).siblingOrder < items.at(right).siblingOrder;
    });
}

/// The pre-order walk of the tree by parent and siblingOrder. An item whose parent chain does not
/// reach a top-level item is not reached. Iterative, so a very deep menu cannot exhaust the stack.
QList<SaveEntry> buildSaveOrder(const MenuDocument& document)
{
    const QList<MenuItem>& items = document.items;
    QList<QList<qint32>> children(items.size());
    QList<qint32> topLevel;
    for (qint32 i = 0; i < items.size(); ++i) {
        const qint16 parent = items.at(i).parent;
        if (parent == -1) {
            topLevel.append(i);
        } else if (parent >= 0 && parent < items.size()) {
            children[parent].append(i);
        }
    }
    // The top level is walked up to its highest order rather than only up to the number of
    // top-level items, so that an item after a gap in the top-level numbering (orders 1, 2, 4) is
    // still saved: the file keeps every top-level item even where the tree view stops at the gap.
    qint32 highestTopOrder = 0;
    for (const qint32 index : std::as_const(topLevel)) {
        highestTopOrder = std::max<qint32>(highestTopOrder, items.at(index).siblingOrder);
    }
    orderSiblings(topLevel, items, highestTopOrder);

    QList<SaveEntry> order;
    order.reserve(items.size());
    QList<SaveEntry> pending;
    for (auto it = topLevel.crbegin(); it != topLevel.crend(); ++it) {
        pending.append({ *it, 0 });
    }
    while (!pending.isEmpty()) {
        const SaveEntry entry = pending.takeLast();
        order.append(entry);
        const MenuItem& item = items.at(entry.index);
        if (item.childCount < 1) {
            continue;
        }
        QList<qint32>& bucket = children[entry.index];
        orderSiblings(bucket, items, item.childCount);
        const qint16 childDepth = Int16::incremented(entry.depth, "writeMenuFile");
        for (auto it = bucket.crbegin(); it != bucket.crend(); ++it) {
            pending.append({ *it, childDepth });
        }
    }
    return order;
}

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
    const QList<SaveEntry> order = buildSaveOrder(document);

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
    for (const SaveEntry& entry : order) {
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

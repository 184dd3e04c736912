#pragma once

#include "menufile/windows1252codec.h"
#include "model/menudocument.h"

#include <QByteArray>
#include <QStringList>

/// Builds the bytes of a menu file from its lines: Windows-1252, each line ended by `lineEnd`.
inline QByteArray menuFileFromLines(const QStringList& lines, const char* lineEnd = "\r\n")
{
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += Windows1252Codec::encode(line);
        bytes += lineEnd;
    }
    return bytes;
}

/// Three middle-dot markers per level.
inline QString markers(int count)
{
    return QString(count, QChar(0xB7));
}

/// The lines of a small menu in the canonical layout: Archive (Pack, Unpack: two commands each)
/// and Delete (one command).
inline QStringList exampleMenuLines()
{
    const QString dots = markers(3);
    return { QStringLiteral("KELV - Menu"),
             QString(),
             QStringLiteral("[Menu]"),
             QString(),
             QStringLiteral("Archive"),
             dots + QStringLiteral("Pack"),
             dots + QStringLiteral("Unpack"),
             QStringLiteral("Delete"),
             QString(),
             QStringLiteral("[/Menu]"),
             QString(),
             QStringLiteral("[Commands]"),
             QString(),
             QStringLiteral("0002:zip=pack.exe a $fs-001$"),
             QStringLiteral("0002:rar=pack.exe r $fs-001$"),
             QStringLiteral("0003:zip=pack.exe a $fs-001$"),
             QStringLiteral("0003:rar=pack.exe r $fs-001$"),
             QStringLiteral("0004:=del $fs-001$"),
             QString(),
             QStringLiteral("[/Commands]") };
}

/// An item keyed "E" + `index`, with its caption and tree numbers and no command.
inline MenuItem makeItem(const QString& caption, int index, qint16 parent, qint16 siblingOrder, qint16 childCount = 0)
{
    MenuItem item;
    item.caption = caption;
    item.key = QStringLiteral("E%1").arg(index);
    item.parent = parent;
    item.siblingOrder = siblingOrder;
    item.childCount = childCount;
    return item;
}

/// `count` top-level items "Item 1" .. "Item count", keyed E0 .. E(count - 1), as a file of them reads:
/// the largest menus the limits of a menu file are tried on.
inline MenuDocument flatMenu(int count)
{
    MenuDocument document;
    document.items.reserve(count);
    for (int i = 0; i < count; ++i) {
        document.items.append(makeItem(QStringLiteral("Item %1").arg(i + 1), i, -1, qint16(i + 1)));
    }
    document.lastIndex = qint16(count - 1);
    return document;
}

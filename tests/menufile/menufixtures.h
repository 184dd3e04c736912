#pragma once

#include "menufile/windows1252codec.h"
#include "model/menudocument.h"

#include <QByteArray>
#include <QRandomGenerator>
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

/// A text of the kinds that try the length of a menu file: empty, plain, Windows-1252 beyond ASCII,
/// characters it cannot hold (a surrogate pair included, which the file writes as two "?"), markers,
/// and now and then a long one.
inline QString roughText(QRandomGenerator& random)
{
    static const QString pieces[] = { QString(),
                                      QStringLiteral("Pack"),
                                      QStringLiteral("Caf\u00E9 \u20AC"),
                                      QStringLiteral("\u2713\u0416"),
                                      QString::fromUtf8("\xF0\x9F\x98\x80"),
                                      QString(3, QChar(0xB7)),
                                      QStringLiteral("a=b:c||d"),
                                      QStringLiteral("line\r\nbreak") };
    QString text;
    for (int count = random.bounded(4); count > 0; --count) {
        text += pieces[random.bounded(int(std::size(pieces)))];
    }
    if (random.bounded(20) == 0) {
        text += QString(random.bounded(70000), QLatin1Char('x'));
    }
    return text;
}

/// Gives captions, extensions and command texts of `document` rough texts here and there.
inline void roughenTexts(QRandomGenerator& random, MenuDocument& document)
{
    for (MenuItem& item : document.items) {
        if (random.bounded(3) == 0) {
            item.caption = roughText(random);
        }
        for (qsizetype slot = 1; slot < item.commands.size(); ++slot) {
            if (random.bounded(3) == 0) {
                item.commands[slot].extension = roughText(random);
                item.commands[slot].command = roughText(random);
            }
        }
    }
}

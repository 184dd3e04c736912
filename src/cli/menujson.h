#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

class TextOutput;
struct MenuDocument;

/// The document as one JSON object in UTF-8, for scripts: lastIndex, then every item in array
/// order with its fields in a fixed order (key, caption, level, parent, childCount, siblingOrder,
/// copyKey, copiesCommands, commands). Commands leave out the placeholder slot 0.
QByteArray menuDocumentJson(const MenuDocument& document);

/// The same JSON written to `output` as it is made, item by item and long texts piece by piece, so
/// that printing a menu takes little memory beyond the menu itself.
void writeMenuDocumentJson(const MenuDocument& document, TextOutput& output);

/// `text` as a JSON string literal, quotes included.
QString jsonStringLiteral(QStringView text);

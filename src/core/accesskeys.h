#pragma once

#include <QString>

/// Captions of menu entries whose text comes from the user's files (recent files, open windows,
/// the captions of dropped-on items): they show exactly as written and still get an access key.
namespace AccessKeys {

/// `text` as a menu caption that shows it unchanged: every "&" doubled, and the access key on the
/// first letter or digit at or after position `from` (no access key when there is none).
QString onFirstLetter(const QString& text, qsizetype from = 0);

/// A file path as a menu caption that shows it unchanged, with the access key on the first letter
/// or digit of the file's name: all paths start alike, their names tell them apart.
QString onFileName(const QString& path);

} // namespace AccessKeys

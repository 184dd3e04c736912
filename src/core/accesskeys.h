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

/// The access key of a menu caption in lower case; a null character when it has none.
QChar keyOf(const QString& caption);

/// `text` as a menu caption that shows it unchanged, with the access key on the first letter or
/// digit at or after `from` whose key (letter case aside) is not in `taken`, else on the first such
/// one before `from`; no access key when all are taken. The key chosen joins `taken`, so that the
/// entries of one menu never share one.
QString onFreeLetter(const QString& text, QString& taken, qsizetype from = 0);

/// onFreeLetter for a file path, looking first in the file's name.
QString onFreeFileNameLetter(const QString& path, QString& taken);

} // namespace AccessKeys

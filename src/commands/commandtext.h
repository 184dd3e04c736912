#pragma once

#include <QString>

/// The two forms of a command text. In a menu (and in the file) the lines of one command are joined
/// by "||"; the command editor shows each "||" as an empty line between two lines.
namespace CommandText {

/// The text the command editor shows for a stored command: every "||" becomes two line breaks.
QString toDisplayed(const QString& stored);

/// The stored form of what the command editor shows: two line breaks in a row become "||" first,
/// then every line break left does, so that an empty line and a single line break both become one
/// "||".
QString toStored(const QString& displayed);

/// A line break as the command editor counts it: two characters.
inline QString lineBreak()
{
    return QStringLiteral("\r\n");
}

} // namespace CommandText

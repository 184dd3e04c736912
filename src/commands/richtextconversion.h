#pragma once

#include <QString>

/// Turns a small RTF document, as the variable catalogue holds one, into HTML that a Qt text box
/// shows: paragraphs (\par), text colours from the colour table (\cfN), bold (\b, \b0), italics (\i,
/// \i0) and underline (\ul, \ulnone), characters written as \'hh (Windows-1252) and the escaped
/// \\, \{ and \}. Font tables, font sizes and other control words are skipped, so the text takes the
/// font of the box that shows it.
QString rtfToHtml(const QString& rtf);

#pragma once

#include <QString>

/// `text` as a tooltip shows it, character for character: a tooltip that happens to start like
/// markup (a caption "<b>Bold</b>") is otherwise drawn as rich text.
QString plainToolTip(const QString& text);

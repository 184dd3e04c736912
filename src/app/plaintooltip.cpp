#include "plaintooltip.h"

#include <QTextDocument>

QString plainToolTip(const QString& text)
{
    if (!Qt::mightBeRichText(text)) {
        return text;
    }
    // Kept as written: no markup, line breaks where the text has them, no wrapping of its own.
    return QStringLiteral("<p style=\"white-space:pre\">") + text.toHtmlEscaped() + QStringLiteral("</p>");
}

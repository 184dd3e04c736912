#include "commandkeys.h"

#include "commandtext.h"

#include <algorithm>

namespace CommandKeys {

namespace {

bool lineBreakEndsAt(const QString& text, int position)
{
    return position >= 2 && QStringView(text).mid(position - 2, 2) == CommandText::lineBreak();
}

bool lineBreakStartsAt(const QString& text, int position)
{
    return position + 2 <= text.size() && QStringView(text).mid(position, 2) == CommandText::lineBreak();
}

} // namespace

bool enterInsertsLineBreak(const QString& text, int caret)
{
    if (text.isEmpty()) {
        return false;
    }
    if (lineBreakEndsAt(text, caret) && lineBreakStartsAt(text, caret)) {
        return false;
    }
    return !lineBreakStartsAt(text, caret);
}

int backspaceGroupLength(const QString& text, int caret)
{
    if (text.size() <= 1 || !lineBreakEndsAt(text, caret)) {
        return 0;
    }
    return std::min(caret, 4);
}

} // namespace CommandKeys

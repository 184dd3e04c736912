#include "menufilelines.h"

#include "menufile/menulinecursor.h"

#include <QByteArrayView>

namespace {

constexpr char marker = char(0xB7);

/// Whether the line, compared without regard to ASCII letter case, is `tag` (lower-case).
bool isTag(QByteArrayView line, QByteArrayView tag)
{
    if (line.size() != tag.size()) {
        return false;
    }
    for (qsizetype i = 0; i < line.size(); ++i) {
        char character = line[i];
        if (character >= 'A' && character <= 'Z') {
            character = char(character - 'A' + 'a');
        }
        if (character != tag[i]) {
            return false;
        }
    }
    return true;
}

/// The item index a command line names (its number minus one); -1 when it names none.
int itemIndexOf(QByteArrayView line, int itemCount)
{
    const qsizetype colon = line.indexOf(':');
    if (colon < 0) {
        return -1;
    }
    const QByteArrayView number = line.first(colon).trimmed();
    qsizetype position = 0;
    bool negative = false;
    if (position < number.size() && (number[position] == '+' || number[position] == '-')) {
        negative = number[position] == '-';
        ++position;
    }
    if (position == number.size()) {
        return -1;
    }
    qint64 value = 0;
    for (; position < number.size(); ++position) {
        if (number[position] < '0' || number[position] > '9') {
            return -1;
        }
        value = value * 10 + (number[position] - '0');
        if (value > itemCount) {
            return -1;
        }
    }
    if (negative || value < 1) {
        return -1;
    }
    return int(value - 1);
}

} // namespace

MenuFileLines MenuFileLines::scan(const QByteArray& bytes)
{
    MenuFileLines found;
    MenuLineCursor lines(bytes);
    QByteArrayView line;
    if (!lines.next(line)) {
        return found;
    }
    // The magic line is the first one tested for the tag.
    while (!isTag(line, "[menu]")) {
        if (!lines.next(line)) {
            return found;
        }
    }
    while (lines.next(line) && !isTag(line, "[/menu]")) {
        if (line.isEmpty()) {
            continue;
        }
        qsizetype markers = 0;
        while (markers < line.size() && line[markers] == marker) {
            ++markers;
        }
        found.itemLines.append(lines.lineNumber());
        found.itemMarkers.append(int(markers));
    }
    found.commandLines.resize(found.itemLines.size());
    // The [/Menu] line is the first one tested for the tag.
    while (!isTag(line, "[commands]")) {
        if (!lines.next(line)) {
            return found;
        }
    }
    while (lines.next(line) && !isTag(line, "[/commands]")) {
        if (line.isEmpty()) {
            continue;
        }
        const int index = itemIndexOf(line, int(found.itemLines.size()));
        if (index >= 0) {
            found.commandLines[index].append(lines.lineNumber());
        }
    }
    return found;
}

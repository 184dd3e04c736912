#pragma once

#include <QByteArray>
#include <QList>

/// Where the items and commands of a menu file stand in it, for telling the line of a problem. The
/// lines are found as the reader finds them (section tags in any letter case, blank lines skipped,
/// CR LF, LF or CR line ends), so item i and command slot s here are item i and slot s of the
/// document the reader makes of the same bytes. Meant for files the reader accepts; for others the
/// lists stop where the file stops making sense.
struct MenuFileLines
{
    /// The line (from 1) of each item line, in file order.
    QList<int> itemLines;
    /// The number of markers each item line starts with, as they stand in the file.
    QList<int> itemMarkers;
    /// For each item, the lines of its command lines in file order (command slot 1 first).
    QList<QList<int>> commandLines;

    static MenuFileLines scan(const QByteArray& bytes);
};

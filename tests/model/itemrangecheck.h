#pragma once

#include "model/menuitemarray.h"

#include <QList>
#include <QString>

#include <algorithm>

/// Empty when `ranges` are sorted, disjoint, not adjacent and within both arrays' larger size, and
/// every index outside them holds equal items in both; otherwise what is wrong.
inline QString rangeProblem(const MenuItemArray& left, const MenuItemArray& right, const QList<ItemRange>& ranges)
{
    const qsizetype largest = std::max(left.size(), right.size());
    const qsizetype smallest = std::min(left.size(), right.size());
    qsizetype previousEnd = -1;
    for (const ItemRange& range : ranges) {
        if (range.begin <= previousEnd || range.begin >= range.end || range.begin < 0 || range.end > largest) {
            return QStringLiteral("range %1..%2 out of order or place").arg(range.begin).arg(range.end);
        }
        previousEnd = range.end;
    }
    qsizetype next = 0;
    for (qsizetype i = 0; i < largest; ++i) {
        while (next < ranges.size() && ranges.at(next).end <= i) {
            ++next;
        }
        const bool reported = next < ranges.size() && ranges.at(next).contains(i);
        if (reported) {
            continue;
        }
        if (i >= smallest) {
            return QStringLiteral("index %1 lies in one array only but is not reported").arg(i);
        }
        if (left.at(i) != right.at(i)) {
            return QStringLiteral("item %1 differs but is not reported").arg(i);
        }
    }
    return QString();
}

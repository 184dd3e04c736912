#pragma once

#include <QtGlobal>

/// A run of item indices, from `begin` up to but not including `end`.
struct ItemRange
{
    qsizetype begin = 0;
    qsizetype end = 0;

    qsizetype count() const { return end - begin; }
    bool contains(qsizetype index) const { return index >= begin && index < end; }

    friend bool operator==(const ItemRange& left, const ItemRange& right)
    {
        return left.begin == right.begin && left.end == right.end;
    }
    friend bool operator!=(const ItemRange& left, const ItemRange& right) { return !(left == right); }
};

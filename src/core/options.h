#pragma once

#include <QtGlobal>

/// The five user options, as the main window holds them after loading. The numeric ones are check
/// box values (0 off, 1 on); any value other than 0 counts as on.
struct Options
{
    qint16 checkCopyCommand = 0;
    qint16 hideItemsWithoutCommand = 0;
    qint16 hideItemsCopyCommand = 0;
    bool copyCommandDup = false;
    qint16 dragNDrop = 0;

    /// The hide mode every opened menu starts with: 1 copy links hidden, 2 items without command
    /// hidden, 3 both, 0 none.
    int startingHideMode() const;

    friend bool operator==(const Options& left, const Options& right)
    {
        return left.checkCopyCommand == right.checkCopyCommand
            && left.hideItemsWithoutCommand == right.hideItemsWithoutCommand
            && left.hideItemsCopyCommand == right.hideItemsCopyCommand && left.copyCommandDup == right.copyCommandDup
            && left.dragNDrop == right.dragNDrop;
    }
    friend bool operator!=(const Options& left, const Options& right) { return !(left == right); }
};

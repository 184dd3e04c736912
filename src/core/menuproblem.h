#pragma once

#include <QString>
#include <QStringList>

/// One thing in a menu that the shell extension would get wrong or that is likely a slip of the
/// hand: where it is (the item, its command, the line of the file) and what it is.
struct MenuProblem
{
    enum class Kind {
        /// An item line two or more levels deeper than the item line before it: the reader makes it
        /// a top-level item, or the child of an earlier item, not the child of the line before.
        LevelJump,
        /// One or two markers before a caption that make no whole level; the reader drops them.
        StrayMarkers,
        /// A caption that is empty or holds blanks only.
        EmptyCaption,
        /// An item with the same caption as an earlier item of the same parent.
        DuplicateCaption,
        /// A "$...$" variable that is neither in the variable catalogue nor a variation it allows.
        UnknownVariable,
        /// A command with an odd number of "$": one variable is not closed.
        OddDollarCount,
        /// A script parameter number that is not one of 001 to 030.
        ParameterNumberOutOfRange,
        /// A script parameter number given twice in one call of the script runner.
        RepeatedParameterNumber,
        /// A command whose text holds nothing to run.
        EmptyCommand,
        /// A call of the script runner that names no .tvs or .tvp script.
        NoScriptFile,
        /// A value that a menu file cannot hold, so saving would change or lose it.
        UnsavableValue,
    };

    /// How many captions the path of an item shows at most. A problem deep down a menu of 200 levels
    /// would otherwise name its item by 200 captions; its number and its line tell which item it is.
    static constexpr int PathCaptions = 3;
    /// What stands for the captions left out at the top of a longer path.
    static QString pathOmission();

    Kind kind = Kind::EmptyCaption;
    /// The item's path as shown: its captions from the top level down to the item or, for an item
    /// deeper than PathCaptions levels, pathOmission() and its last PathCaptions captions; empty when
    /// the problem concerns no item.
    QStringList itemPath;
    /// The item's position among the item lines of the file (as the [Commands] section numbers
    /// them), from 1; 0 when the problem concerns no item or the item is not written.
    int itemNumber = 0;
    /// The item's key in the document ("E12"), to find and select it; empty when there is none.
    QString itemKey;
    /// The command of the item, from 1; 0 for a problem of the item itself.
    int commandNumber = 0;
    /// The line of the file, from 1, when a file was checked; 0 otherwise.
    int line = 0;
    /// What is wrong, without the item: `unknown variable "$fs-01$"`.
    QString message;

    /// The item and command the problem concerns: `item 4 "Archive > Pack", command 2`, or
    /// `item 4 "… > Tools > Archive > Pack"` deep down a menu; empty when it concerns no item.
    QString placeText() const;
    /// placeText(), ": " and the message; the message alone when there is no place.
    QString text() const;

    friend bool operator==(const MenuProblem& left, const MenuProblem& right);
    friend bool operator!=(const MenuProblem& left, const MenuProblem& right) { return !(left == right); }
};

#pragma once

/// What kelvmenu returns to the shell. Scripts test these numbers, so they never change meaning.
namespace ExitCode {
constexpr int Success = 0;
/// `check` found at least one file that the editor would refuse to open, or, with --strict, any
/// problem in a file it can open.
constexpr int InvalidFile = 1;
/// Unknown subcommand or option, missing or surplus file name.
constexpr int UsageError = 2;
/// The file does not start with the magic line of a menu file.
constexpr int NotAMenuFile = 3;
/// Any other failure to read: the file cannot be opened or its sections are broken.
constexpr int ReadError = 4;
/// The menu file could not be written, or the menu holds values a menu file cannot hold; nothing
/// was written and the old file is left as it was.
constexpr int WriteError = 5;
/// `edit` stopped at an operation the editor refuses, a key that names no item, or a failure of an
/// operation; nothing was written.
constexpr int Refused = 6;
} // namespace ExitCode

#pragma once

#include <QString>

/// The folder of the program, where Recent.ini, Config.ini, the languages folder, the Help folder
/// and the autosave files of open menus live. When the program is installed in a folder the user
/// cannot write to, the files the program writes go to a per-user folder instead.
class ProgramFolder final
{
public:
    /// The folder of the executable, or the override.
    static QString path();
    /// path() when files can be created there, else the per-user data folder (created on demand).
    static QString writablePath();
    /// A file the program reads: the per-user copy when path() is not writable and that copy
    /// exists, else path()/fileName.
    static QString readableFilePath(const QString& fileName);
    /// writablePath()/fileName.
    static QString writableFilePath(const QString& fileName);
    /// Points the program's folder somewhere else (tests use a temporary folder); empty clears.
    static void setOverride(const QString& folder);

    /// Whether a file can be created in `folder`. Found out by creating one, because permission
    /// bits do not tell the whole story (administrators, access control lists, read-only media).
    static bool isWritableFolder(const QString& folder);
    /// The per-user data folder used when the program's folder cannot be written to.
    static QString userDataPath();
};

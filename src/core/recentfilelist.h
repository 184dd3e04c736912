#pragma once

#include <QString>

#include <array>

/// The recently opened menu files of the File menu: ten entries (only the first five are ever
/// filled, entry 0 being the newest), the separator after them, and the file Recent.ini that keeps
/// them between runs. A file already listed keeps its place when it is opened again.
class RecentFileList
{
public:
    static constexpr int EntryCount = 10;
    static constexpr int FilledCount = 5;

    /// What one File menu entry shows.
    struct Entry
    {
        QString caption;
        bool visible = false;
    };

    /// `folder` is where Recent.ini lives: the program's folder, or the per-user folder when the
    /// program's folder cannot be written to (pass ProgramFolder::writablePath()).
    explicit RecentFileList(QString folder);

    /// Fills the entries from Recent.ini, found without regard to the letter case of its name;
    /// only its first five lines are used. Without the file nothing is shown.
    void loadRecentList();
    /// Puts `path` at the top, unless it is listed already (exact comparison), and rewrites
    /// Recent.ini. A file that cannot be written is not reported; the entries stay changed.
    void addRecentFile(const QString& path);

    /// Entry `index` (0..9); an index outside the entries reads as a hidden, empty entry.
    Entry entry(int index) const;
    bool separatorVisible() const;

    /// The folder given at construction.
    QString folder() const { return m_folder; }
    /// The name of an existing recent list in the folder (any letter case), or empty.
    QString existingFileName() const;

private:
    QString m_folder;
    std::array<Entry, EntryCount> m_entries;
    bool m_separatorVisible = false;
};

#pragma once

#include "app/saveoverwritecheck.h"

#include <QList>
#include <QString>
#include <QtGlobal>

class ApplicationState;
class EditorArea;
class MenuFilesHost;
class MessageBoxes;
class QUrl;
class RecentFilesMenu;
class RecoveryStore;
struct RecoveryCopy;

/// The file commands of the main window: New, Open (by the dialog, the command line, a recent
/// entry or a dropped file), Save, Save as, and the save questions of closing an editor window and
/// of quitting. A menu that its file could not hold is never written: the user is told why.
class MenuFiles final
{
public:
    MenuFiles(ApplicationState& state, MessageBoxes& messages, EditorArea& editors, RecentFilesMenu& recent,
              MenuFilesHost& host);

    MenuFiles(const MenuFiles&) = delete;
    MenuFiles& operator=(const MenuFiles&) = delete;

    /// A new menu with one item, in a new editor window.
    void mnuNew_Click();
    /// Asks for a menu file and opens it.
    void mnuOpen_Click();
    /// Opens the menu file at `path` in a new editor window captioned `fileTitle`. On failure the
    /// user is told why and nothing is left behind: no window, no document slot. Returns the new
    /// document index, 0 on failure.
    qint16 openMenu(const QString& path, const QString& fileTitle);
    /// Opens the menu file named on the command line, if it names one ("$exepath$" stands for
    /// `programFolder`; anything not ending in "ini" is ignored).
    void openCommandLineMenu(const QString& commandLine, const QString& programFolder);
    /// Opens the recovery copy `copy` of `store` in a new editor window, as the unsaved menu it holds:
    /// captioned with its file's name (or "New menu N" for a menu that never had a file), saved to that
    /// file by Save after the check that nobody else changed it since. On failure the user is told why
    /// and nothing is left behind. Returns the new document index, 0 on failure.
    qint16 openRecoveredMenu(RecoveryStore& store, const RecoveryCopy& copy);
    /// Opens the ".ini" files among `urls` (files dropped on the main window).
    void openDroppedFiles(const QList<QUrl>& urls);
    /// Writes the active document to its file.
    void mnuSave_Click();
    /// Asks for a file name and writes the active document to it.
    void mnuSaveAs_Click();

    /// The save question of an editor window that is about to close. False keeps it open.
    bool confirmCloseEditor(qint16 index);
    /// The quit question and the saving it asks for. False when quitting stops.
    bool confirmQuit();

    /// The caption of the editor window of document `index`.
    QString captionOf(qint16 index) const;

    /// The folder a file dialog for document `index` starts in: the folder of its file, or for a
    /// menu without one (or none at all) the folder used last.
    QString dialogFolder(qint16 index) const;
    /// `filePath` was chosen in a dialog, opened or written: its folder is the one used last.
    void noteFolderUsed(const QString& filePath);

    /// The message shown when a menu file cannot be read for another reason than not being a menu
    /// file.
    static QString openErrorMessage();
    /// The message shown when there is no file at `path` to open.
    static QString missingFileMessage(const QString& path);

private:
    /// Writes document `index` to `path`; a failure, or values the file cannot hold, are shown and
    /// leave the document unsaved and the file as it was. Over the menu's own file changed by someone
    /// else since, only when the user says so.
    bool writeDocument(qint16 index, const QString& path);
    /// When document `index` holds values its file cannot hold, shows them and returns true.
    bool refuseUnsavable(qint16 index);
    /// Saves document `index` for closing: to its file, else to a name asked for. False when the
    /// write failed or was refused, true also when the user gave no name.
    bool saveForClosing(qint16 index);

    ApplicationState& m_state;
    MessageBoxes& m_messages;
    EditorArea& m_editors;
    RecentFilesMenu& m_recent;
    MenuFilesHost& m_host;
    SaveOverwriteCheck m_overwriteCheck;
    /// The folder of the menu file chosen, opened or written last.
    QString m_lastFolder;
};

#include "menufiles.h"

#include "app/editorarea.h"
#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/menufileshost.h"
#include "app/messageboxes.h"
#include "app/recentfilesmenu.h"
#include "core/aboutinfo.h"
#include "core/applicationstate.h"
#include "core/commandlinemenu.h"
#include "core/documentfile.h"
#include "core/newmenudocument.h"
#include "core/recoverystore.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

namespace {

QString fileDialogTitle()
{
    return QStringLiteral("Select a menu file ...");
}

QString fileDialogFilter()
{
    return QStringLiteral("Menu File (*.ini)");
}

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

} // namespace

MenuFiles::MenuFiles(ApplicationState& state, MessageBoxes& messages, EditorArea& editors, RecentFilesMenu& recent,
                     MenuFilesHost& host)
    : m_state(state)
    , m_messages(messages)
    , m_editors(editors)
    , m_recent(recent)
    , m_host(host)
    , m_overwriteCheck(state, messages)
{
}

QString MenuFiles::missingFileMessage(const QString& path)
{
    return QStringLiteral("An error occured while opening the file !") + lineEnd() + lineEnd()
        + QStringLiteral("This file does not exist :") + lineEnd() + QStringLiteral("    ") + path;
}

QString MenuFiles::openErrorMessage()
{
    const QStringList lines = { QStringLiteral("An error occured while opening the file !"),
                                QString(),
                                QStringLiteral("This is not a valid KELV Menu file"),
                                QString(),
                                QStringLiteral("Contact the developer for further information :"),
                                contactLines() };
    return lines.join(lineEnd());
}

QString MenuFiles::captionOf(qint16 index) const
{
    const EditorWindow* editor = m_editors.editor(index);
    return editor != nullptr ? editor->caption() : QString();
}

void MenuFiles::openCommandLineMenu(const QString& commandLine, const QString& programFolder)
{
    const QString path = menuPathFromCommandLine(commandLine, programFolder);
    if (!path.isEmpty()) {
        openMenu(path, QFileInfo(path).fileName());
    }
}

void MenuFiles::mnuNew_Click()
{
    const qint16 index = m_state.appendDocumentSlot();
    m_state.document(index) = newMenuDocument(index);
    const QString caption = QStringLiteral("New menu ") + QString::number(m_state.editorsCreated() + 1);
    m_editors.createEditor(index);
    m_state.noteEditorCreated();
    try {
        m_host.regenerateTree(index);
    } catch (const RunTimeError& error) {
        m_messages.showRunTimeError(error);
    }
    m_editors.setEditorCaption(index, caption);
    m_host.documentShown(index);
}

void MenuFiles::mnuOpen_Click()
{
    const QString path = m_messages.prompts().askOpenFileName(fileDialogTitle(), fileDialogFilter(),
                                                              dialogFolder(m_state.activeDocumentIndex()));
    if (!path.isEmpty()) {
        noteFolderUsed(path);
        openMenu(path, QFileInfo(path).fileName());
    }
}

qint16 MenuFiles::openMenu(const QString& path, const QString& fileTitle)
{
    QMdiSubWindow* previousFrame = m_editors.activeFrame();
    const qint16 previousIndex = m_state.activeDocumentIndex();

    const qint16 index = m_state.appendDocumentSlot();
    EditorWindow* editor = m_editors.createEditor(index);
    editor->showBusyNotice(QStringLiteral("Loading..."));
    editor->tree()->setUpdatesEnabled(false);

    MenuReadResult result;
    FileIdentity identity;
    try {
        result = openMenuDocument(path, m_state.options(), index, m_state.document(index), &identity);
    } catch (const RunTimeError& error) {
        result.code = MenuReadResult::Failed;
        result.errorNumber = error.number();
    }
    if (!result.ok()) {
        // The message keeps its fixed text; the precise reason is there for whoever asks for it.
        QString text = openErrorMessage();
        if (result.code == MenuReadResult::NotAMenuFile) {
            text = notMenuFileMessage();
        } else if (result.fileMissing()) {
            text = missingFileMessage(path);
        }
        // Nothing of the failed menu is left while the user reads why: no window, no entry, no slot.
        m_editors.discardNewestEditor(index, previousFrame);
        m_state.setActiveDocumentIndex(m_state.editor(previousIndex) ? previousIndex : 0);
        m_host.editorActivated(m_state.activeDocumentIndex());
        m_messages.showCritical(text, readFailureText(path, result));
        return 0;
    }

    m_state.setFileIdentity(index, identity);
    editor->tree()->setUpdatesEnabled(true);
    editor->hideBusyNotice();
    m_state.noteEditorCreated();
    m_editors.activateEditor(index);
    try {
        m_host.regenerateTree(index);
    } catch (const RunTimeError& error) {
        m_messages.showRunTimeError(error);
    }
    m_editors.setEditorCaption(index, fileTitle);
    noteFolderUsed(path);
    m_recent.addRecentFile(path);
    m_host.documentShown(index);
    return index;
}

qint16 MenuFiles::openRecoveredMenu(RecoveryStore& store, const RecoveryCopy& copy)
{
    QMdiSubWindow* previousFrame = m_editors.activeFrame();
    const qint16 previousIndex = m_state.activeDocumentIndex();
    const qint16 index = m_state.appendDocumentSlot();
    m_editors.createEditor(index);
    MenuReadResult result;
    try {
        result = store.recoverCopy(copy, index, m_state.document(index));
    } catch (const RunTimeError& error) {
        result.code = MenuReadResult::Failed;
        result.errorNumber = error.number();
    }
    if (!result.ok()) {
        m_messages.showCritical(
            openErrorMessage(),
            readFailureText(QDir(store.folder()).filePath(copy.id + QStringLiteral(".ini")), result));
        m_editors.discardNewestEditor(index, previousFrame);
        m_state.setActiveDocumentIndex(m_state.editor(previousIndex) ? previousIndex : 0);
        m_host.editorActivated(m_state.activeDocumentIndex());
        return 0;
    }
    // Save checks the file against what it was when the crashed editor last read or wrote it.
    m_state.setFileIdentity(index, copy.fileIdentity);
    const QString path = m_state.document(index).filePath;
    const QString caption = path.isEmpty() ? QStringLiteral("New menu ") + QString::number(m_state.editorsCreated() + 1)
                                           : QFileInfo(path).fileName();
    m_state.noteEditorCreated();
    m_editors.activateEditor(index);
    try {
        m_host.regenerateTree(index);
    } catch (const RunTimeError& error) {
        m_messages.showRunTimeError(error);
    }
    m_editors.setEditorCaption(index, caption);
    m_host.documentShown(index);
    m_host.savedStateChanged();
    return index;
}

void MenuFiles::openDroppedFiles(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) {
            continue;
        }
        const QString path = url.toLocalFile();
        const QFileInfo file(path);
        if (file.exists() && path.right(4).toLower() == QLatin1String(".ini")) {
            openMenu(path, file.fileName());
        }
    }
}

bool MenuFiles::writeDocument(qint16 index, const QString& path)
{
    if (!m_overwriteCheck.mayWrite(index, path)) {
        return false;
    }
    QList<SaveProblem> problems;
    FileIdentity identity;
    try {
        problems = saveMenuDocument(m_state.document(index), path, &identity);
    } catch (const RunTimeError& error) {
        // The writer leaves the old file as it was; the document stays unsaved, so nothing is lost.
        m_messages.showRunTimeError(error);
        return false;
    }
    if (!problems.isEmpty()) {
        m_messages.showRefusal(saveRefusalMessage(problems));
        return false;
    }
    m_state.setFileIdentity(index, identity);
    m_host.savedStateChanged();
    return true;
}

bool MenuFiles::refuseUnsavable(qint16 index)
{
    const QList<SaveProblem> problems = documentSaveProblems(m_state.document(index));
    if (problems.isEmpty()) {
        return false;
    }
    m_messages.showRefusal(saveRefusalMessage(problems));
    return true;
}

void MenuFiles::mnuSave_Click()
{
    const qint16 index = m_state.activeDocumentIndex();
    if (!m_state.editor(index)) {
        return;
    }
    const QString path = m_state.document(index).filePath;
    if (!path.isEmpty()) {
        writeDocument(index, path);
    }
}

void MenuFiles::mnuSaveAs_Click()
{
    const qint16 index = m_state.activeDocumentIndex();
    if (!m_state.editor(index)) {
        return;
    }
    // A menu that cannot be saved is refused before the user picks a name for it.
    if (refuseUnsavable(index)) {
        return;
    }
    const QString path
        = m_messages.prompts().askSaveFileName(fileDialogTitle(), fileDialogFilter(), dialogFolder(index));
    if (path.isEmpty()) {
        return;
    }
    noteFolderUsed(path);
    if (writeDocument(index, path)) {
        m_editors.setEditorCaption(index, QFileInfo(path).fileName());
    }
}

QString MenuFiles::dialogFolder(qint16 index) const
{
    // The folder of the menu the dialog is for, where it has a file; else the one used last.
    if (m_state.editor(index) && !m_state.document(index).filePath.isEmpty()) {
        return QFileInfo(m_state.document(index).filePath).absolutePath();
    }
    return m_lastFolder;
}

void MenuFiles::noteFolderUsed(const QString& filePath)
{
    m_lastFolder = QFileInfo(filePath).absolutePath();
}

bool MenuFiles::saveForClosing(qint16 index)
{
    QString path = m_state.document(index).filePath;
    if (path.isEmpty()) {
        if (refuseUnsavable(index)) {
            return false;
        }
        path = m_messages.prompts().askSaveFileName(fileDialogTitle(), fileDialogFilter(), dialogFolder(index));
        if (path.isEmpty()) {
            return true; // no name given: nothing is written
        }
        noteFolderUsed(path);
    }
    return writeDocument(index, path);
}

bool MenuFiles::confirmCloseEditor(qint16 index)
{
    if (m_state.isQuitting() || !m_state.documents().isDocumentIndex(index) || m_state.document(index).saved) {
        return true;
    }
    switch (m_messages.askYesNoCancel(QStringLiteral("Do you want to save changes ?"))) {
    case UserPrompts::Answer::Yes:
        // A failed write keeps the window open, so the changes are not lost.
        return saveForClosing(index);
    case UserPrompts::Answer::No:
        return true;
    case UserPrompts::Answer::Cancel:
    case UserPrompts::Answer::Ok:
        break;
    }
    return false;
}

bool MenuFiles::confirmQuit()
{
    QList<qint16> unsaved;
    for (const qint16 index : m_state.openDocumentIndexes()) {
        if (!m_state.document(index).saved) {
            unsaved.append(index);
        }
    }
    if (!unsaved.isEmpty()) {
        QString text = QStringLiteral("Do you want to save changes on file : ");
        for (const qint16 index : unsaved) {
            text += lineEnd() + QStringLiteral("    ") + captionOf(index);
        }
        const UserPrompts::Answer answer = m_messages.askYesNoCancel(text);
        if (answer != UserPrompts::Answer::Yes && answer != UserPrompts::Answer::No) {
            return false;
        }
        if (answer == UserPrompts::Answer::Yes) {
            // All or none: a menu that cannot be saved stops quitting before anything is written.
            QList<UnsavableDocument> unsavable;
            for (const qint16 index : unsaved) {
                const QList<SaveProblem> problems = documentSaveProblems(m_state.document(index));
                if (!problems.isEmpty()) {
                    unsavable.append(UnsavableDocument { captionOf(index), problems });
                }
            }
            if (!unsavable.isEmpty()) {
                m_messages.showRefusal(saveRefusalMessage(unsavable));
                return false;
            }
            for (const qint16 index : unsaved) {
                // A document that cannot be written stops quitting rather than being lost.
                if (!saveForClosing(index)) {
                    return false;
                }
            }
        }
    }
    m_state.setQuitting(true);
    return true;
}

#include "saveoverwritecheck.h"

#include "app/messageboxes.h"
#include "core/applicationstate.h"
#include "menufile/fileidentity.h"
#include "model/menudocument.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

/// Whether `path` names the file `own` names, however each is written.
bool sameFile(const QString& path, const QString& own)
{
    if (own.isEmpty()) {
        return false;
    }
    const QFileInfo chosen(path);
    const QFileInfo kept(own);
    // A file that is gone has no canonical path: its absolute one must do.
    if (chosen.exists() && kept.exists()) {
        return chosen.canonicalFilePath() == kept.canonicalFilePath();
    }
    return chosen.absoluteFilePath() == kept.absoluteFilePath();
}

} // namespace

SaveOverwriteCheck::SaveOverwriteCheck(ApplicationState& state, MessageBoxes& messages)
    : m_state(state)
    , m_messages(messages)
{
}

QString SaveOverwriteCheck::changedQuestion(const QString& path)
{
    return QStringLiteral("This file has been changed on disk since the editor last opened or saved it :") + lineEnd()
        + QStringLiteral("    ") + QDir::toNativeSeparators(path) + lineEnd() + lineEnd()
        + QStringLiteral("Do you want to overwrite it with this menu and lose the other changes ?");
}

QString SaveOverwriteCheck::missingQuestion(const QString& path)
{
    return QStringLiteral("This file has been deleted or moved since the editor last opened or saved it :") + lineEnd()
        + QStringLiteral("    ") + QDir::toNativeSeparators(path) + lineEnd() + lineEnd()
        + QStringLiteral("Do you want to save this menu there again ?");
}

bool SaveOverwriteCheck::mayWrite(qint16 index, const QString& path)
{
    if (!sameFile(path, m_state.document(index).filePath)) {
        // Another file: the save dialog has asked about writing over it.
        return true;
    }
    FileIdentity current;
    switch (m_state.fileIdentity(index).changeAt(path, &current)) {
    case FileIdentity::Change::Unchanged:
        return true;
    case FileIdentity::Change::Touched:
        m_state.setFileIdentity(index, current);
        return true;
    case FileIdentity::Change::Changed:
        return m_messages.askYesNo(changedQuestion(path)) == UserPrompts::Answer::Yes;
    case FileIdentity::Change::Missing:
        return m_messages.askYesNo(missingQuestion(path)) == UserPrompts::Answer::Yes;
    }
    return false;
}

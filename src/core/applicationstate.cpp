#include "applicationstate.h"

#include "core/editorview.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QObject>

ApplicationState::ApplicationState()
{
    // The placeholder slot that lines the editor list up with the document list.
    m_editors.append(EditorSlot {});
}

qint16 ApplicationState::appendDocumentSlot()
{
    const qint16 index = m_documents.append();
    m_histories.appendSlot();
    m_editors.append(EditorSlot {});
    return index;
}

void ApplicationState::removeLastDocumentSlot()
{
    if (m_documents.lastSlot() < 1) {
        return;
    }
    m_documents.removeLast();
    m_histories.removeLastSlot();
    m_editors.removeLast();
}

FileIdentity ApplicationState::fileIdentity(int index) const
{
    if (index < 1 || index >= m_editors.size()) {
        return FileIdentity();
    }
    return m_editors.at(index).fileIdentity;
}

void ApplicationState::setFileIdentity(int index, const FileIdentity& identity)
{
    if (index < 1 || index >= m_editors.size()) {
        return;
    }
    m_editors[index].fileIdentity = identity;
}

EditorView* ApplicationState::editor(int index) const
{
    if (index < 1 || index >= m_editors.size()) {
        return nullptr;
    }
    const EditorSlot& slot = m_editors.at(index);
    return slot.lifetime.isNull() ? nullptr : slot.view;
}

void ApplicationState::setEditor(int index, EditorView* editor)
{
    if (index < 1 || index >= m_editors.size()) {
        return;
    }
    EditorSlot& slot = m_editors[index];
    slot.view = editor;
    slot.lifetime = editor ? editor->viewObject() : nullptr;
}

QList<qint16> ApplicationState::openDocumentIndexes() const
{
    QList<qint16> indexes;
    for (int index = 1; index < m_editors.size(); ++index) {
        if (editor(index)) {
            indexes.append(qint16(index));
        }
    }
    return indexes;
}

void ApplicationState::setOptions(const Options& options)
{
    m_options = options;
    m_editing.copyCommandDup = options.copyCommandDup;
}

WindowEditingState& ApplicationState::window(int index)
{
    if (index < 1 || index >= m_editors.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("ApplicationState"));
    }
    return m_editors[index].state;
}

const WindowEditingState& ApplicationState::window(int index) const
{
    if (index < 1 || index >= m_editors.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("ApplicationState"));
    }
    return m_editors.at(index).state;
}

bool ApplicationState::anyLinkTargetChoice() const
{
    for (int index = 1; index < m_editors.size(); ++index) {
        if (editor(index) && m_editors.at(index).state.linkTargetChoice) {
            return true;
        }
    }
    return false;
}

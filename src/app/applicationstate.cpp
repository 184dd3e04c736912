#include "applicationstate.h"

#include "app/editorwindow.h"

ApplicationState::ApplicationState()
{
    // The placeholder slot that lines the editor list up with the document list.
    m_editors.append(QPointer<EditorWindow>());
}

qint16 ApplicationState::appendDocumentSlot()
{
    const qint16 index = m_documents.append();
    m_histories.appendSlot();
    m_editors.append(QPointer<EditorWindow>());
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

EditorWindow* ApplicationState::editor(int index) const
{
    if (index < 1 || index >= m_editors.size()) {
        return nullptr;
    }
    return m_editors.at(index).data();
}

void ApplicationState::setEditor(int index, EditorWindow* editor)
{
    if (index < 1 || index >= m_editors.size()) {
        return;
    }
    m_editors[index] = editor;
}

QList<qint16> ApplicationState::openDocumentIndexes() const
{
    QList<qint16> indexes;
    for (int index = 1; index < m_editors.size(); ++index) {
        if (!m_editors.at(index).isNull()) {
            indexes.append(qint16(index));
        }
    }
    return indexes;
}

#include "documenthistory.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/runtimeerror.h"

#include <utility>

namespace {

template <typename Stack> const MenuDocument& stateAt(const Stack& stack, int slot, const char* source)
{
    if (slot < 0 || slot >= int(stack.size())) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return stack[std::size_t(slot)];
}

template <typename Stack> void push(Stack& stack, qint16& count, const MenuDocument& state, const char* source)
{
    if (count != DocumentHistory::MaxStates) {
        stack[std::size_t(count)] = state;
        count = Int16::incremented(count, source);
        return;
    }
    // Full: the oldest state goes, the others move down one slot in ascending order.
    for (std::size_t slot = 1; slot < std::size_t(DocumentHistory::MaxStates); ++slot) {
        stack[slot - 1] = std::move(stack[slot]);
    }
    stack[std::size_t(DocumentHistory::MaxStates - 1)] = state;
}

template <typename Stack> MenuDocument take(Stack& stack, qint16& count, const char* source)
{
    if (count < 1) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    const qint16 top = Int16::decremented(count, source);
    // Moving the state out releases the slot, so a taken state is not kept alive twice.
    MenuDocument state = std::exchange(stack[std::size_t(top)], MenuDocument {});
    count = top;
    return state;
}

} // namespace

const MenuDocument& DocumentHistory::undoState(int slot) const
{
    return stateAt(m_undoStack, slot, "DocumentHistory::undoState");
}

const MenuDocument& DocumentHistory::redoState(int slot) const
{
    return stateAt(m_redoStack, slot, "DocumentHistory::redoState");
}

void DocumentHistory::pushUndoState(const MenuDocument& state)
{
    push(m_undoStack, m_undoCount, state, "DocumentHistory::pushUndoState");
}

void DocumentHistory::pushRedoState(const MenuDocument& state)
{
    push(m_redoStack, m_redoCount, state, "DocumentHistory::pushRedoState");
}

MenuDocument DocumentHistory::takeUndoState()
{
    return take(m_undoStack, m_undoCount, "DocumentHistory::takeUndoState");
}

MenuDocument DocumentHistory::takeRedoState()
{
    return take(m_redoStack, m_redoCount, "DocumentHistory::takeRedoState");
}

void DocumentHistory::clearRedo()
{
    for (qint16 slot = 0; slot < m_redoCount; ++slot) {
        m_redoStack[std::size_t(slot)] = MenuDocument {};
    }
    m_redoCount = 0;
}

#pragma once

#include "model/menudocument.h"

#include <QtGlobal>

#include <array>

/// The undo and redo states of one document: two stacks of whole-document states, oldest at slot 0.
/// A state is a MenuDocument held by value; implicit sharing makes a state share every item and text
/// that the edits after it left untouched, so fifteen states of a large menu cost far less than
/// fifteen copies.
class DocumentHistory final
{
public:
    /// Slots of each stack; only the first MaxStates are ever filled.
    static constexpr int StackSlots = 16;
    /// Number of states kept per stack; the next one drops the oldest.
    static constexpr qint16 MaxStates = 15;

    /// Number of filled slots of UndoStack, 0 to 15.
    qint16 undoCount() const { return m_undoCount; }
    /// Number of filled slots of RedoStack, 0 to 15.
    qint16 redoCount() const { return m_redoCount; }

    /// Slot `slot` (0 to 15) of UndoStack; throws RunTimeError 9 for any other slot.
    const MenuDocument& undoState(int slot) const;
    /// Slot `slot` (0 to 15) of RedoStack; throws RunTimeError 9 for any other slot.
    const MenuDocument& redoState(int slot) const;

    /// Puts `state` on top of UndoStack. When the stack is full, every state moves down one slot
    /// (slot 1 to 0 first, up to 14 to 13), which drops the oldest, and `state` goes into slot 14.
    void pushUndoState(const MenuDocument& state);
    /// The same on RedoStack.
    void pushRedoState(const MenuDocument& state);

    /// Takes the newest undo state off the stack; throws RunTimeError 9 when there is none.
    MenuDocument takeUndoState();
    /// Takes the newest redo state off the stack; throws RunTimeError 9 when there is none.
    MenuDocument takeRedoState();

    /// Discards every redo state: a new edit cuts the redo chain.
    void clearRedo();

private:
    using Stack = std::array<MenuDocument, StackSlots>;

    Stack m_undoStack;
    Stack m_redoStack;
    qint16 m_undoCount = 0;
    qint16 m_redoCount = 0;
};

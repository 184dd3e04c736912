#pragma once

#include "history/historymenu.h"

#include <QStringList>

/// The Undo and Redo entries without a window: their state and every change made to them.
class RecordingHistoryMenu final : public HistoryMenu
{
public:
    void setUndoEnabled(bool enabled) override
    {
        undoEnabled = enabled;
        changes.append(enabled ? QStringLiteral("undo on") : QStringLiteral("undo off"));
    }
    void setRedoEnabled(bool enabled) override
    {
        redoEnabled = enabled;
        changes.append(enabled ? QStringLiteral("redo on") : QStringLiteral("redo off"));
    }

    // Both start enabled so that a test sees every entry the history really switches off.
    bool undoEnabled = true;
    bool redoEnabled = true;
    QStringList changes;
};

#pragma once

#include "core/recoverycopy.h"

#include <QList>

/// The question at start-up about the recovery copies that editors which ended without a normal quit
/// left behind: what to do with each. The editor shows a dialog (RecoveryDialog); tests answer it.
class RecoveryPrompt
{
public:
    enum class Decision {
        /// Opens the copy as an unsaved menu in a new editor window.
        Recover,
        /// Deletes the copy.
        Discard,
        /// Keeps the copy, to be offered again at the next start.
        DecideLater,
    };

    virtual ~RecoveryPrompt() = default;

    /// One decision for each of `copies`, in the same order.
    virtual QList<Decision> decide(const QList<RecoveryCopy>& copies) = 0;
};

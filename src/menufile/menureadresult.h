#pragma once

#include "model/errortable.h"

#include <QString>
#include <QtGlobal>

/// What reading a menu file gave. `code` is what the editor acts on: 1 read, -1 not a menu file,
/// 0 any other error. `line` and `reason` say precisely where and why reading stopped, for
/// `kelvmenu check`; the editor shows only its one message.
struct MenuReadResult
{
    static constexpr qint16 Read = 1;
    static constexpr qint16 NotAMenuFile = -1;
    static constexpr qint16 Failed = 0;

    qint16 code = Failed;
    /// 1-based line of the file where reading failed; 0 when the failure is not tied to one line
    /// (the file ends early, cannot be opened, holds no item).
    int line = 0;
    /// Why reading failed, e.g. `command line has no "="`; empty on success.
    QString reason;
    /// The run-time error number behind a failure (62 for an early end, 9 for an item number that
    /// names no item, ...); 0 on success and for "not a menu file".
    int errorNumber = 0;

    bool ok() const { return code == Read; }
    /// The file was not read because there is no file at the path.
    bool fileMissing() const { return code == Failed && errorNumber == ErrorNumber::FileNotFound; }
};

#pragma once

#include "menufile/fileidentity.h"

#include <QDateTime>
#include <QString>
#include <QtGlobal>

/// A recovery copy left by an editor that no longer runs, as the start-up dialog lists it.
struct RecoveryCopy
{
    /// The copy's name in the recovery folder; what RecoveryStore needs to read, discard or keep it.
    QString id;
    /// The menu file the copy belongs to; empty for a menu that was never saved.
    QString menuPath;
    /// The caption of the menu's editor window ("archive.ini", "New menu 2").
    QString caption;
    /// When the change it holds was made.
    QDateTime time;
    int itemCount = 0;
    /// The process of the editor that wrote it.
    qint64 processId = 0;
    /// The identity the menu's file had when that editor last opened or saved it (null for a new menu):
    /// a Save of the recovered menu checks the file against it.
    FileIdentity fileIdentity;
};

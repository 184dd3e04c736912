#pragma once

#include <QString>
#include <QtGlobal>

class ApplicationState;
class MessageBoxes;

/// The question before a Save writes over a menu's own file that someone else has changed since the
/// editor last read or wrote it: another window of the same file, another editor, `kelvmenu edit` or
/// any other program. Without it the Save would silently throw their change away.
class SaveOverwriteCheck final
{
public:
    SaveOverwriteCheck(ApplicationState& state, MessageBoxes& messages);

    SaveOverwriteCheck(const SaveOverwriteCheck&) = delete;
    SaveOverwriteCheck& operator=(const SaveOverwriteCheck&) = delete;

    /// Whether document `index` may be written to `path`. Asks first when `path` is the document's own
    /// file and that file changed or disappeared since it was last read or written; false when the user
    /// answers No. A file written again with the same bytes is no change: its new identity is kept.
    bool mayWrite(qint16 index, const QString& path);

    /// The question for a file that holds something else now.
    static QString changedQuestion(const QString& path);
    /// The question for a file that is no longer there.
    static QString missingQuestion(const QString& path);

private:
    ApplicationState& m_state;
    MessageBoxes& m_messages;
};

#pragma once

#include <QObject>
#include <QString>

class QMenu;
class UserPrompts;

/// The Help menu's entries: Help (F1) opens the help file with the viewer the desktop has, or the
/// HTML guide in a browser; About tells the program's version; About Qt shows the toolkit's box.
class HelpMenu final : public QObject
{
    Q_OBJECT

public:
    /// Adds the entries to `menu`; the help files are found through the program's `programFolder`.
    HelpMenu(QMenu* menu, UserPrompts& prompts, const QString& programFolder, QObject* parent = nullptr);

private:
    void showHelp();
    void showAbout();

    UserPrompts& m_prompts;
    QString m_programFolder;
};

#pragma once

#include "fakeprompts.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class MainWindow;
class OptionsStore;
class QAction;

/// Everything a window test touches, kept in one temporary folder: the program's folder (Recent.ini,
/// Config.ini, Help/), a folder of menu files, the recovery copies, and the options store as an INI
/// file. The main window
/// is created on first use, so that a test can prepare options and files first. Nothing is written
/// beside the built program or into the user's real settings.
class GuiSandbox
{
public:
    GuiSandbox();
    ~GuiSandbox();
    GuiSandbox(const GuiSandbox&) = delete;
    GuiSandbox& operator=(const GuiSandbox&) = delete;

    bool isValid() const { return m_root.isValid(); }
    QString programFolder() const;
    QString menuFolder() const;
    /// Where the main window keeps its recovery copies: "recovery" in the sandbox unless set.
    QString recoveryFolder() const;
    /// Points the next main window's recovery copies to `folder` (another editor's, in a crash test).
    void setRecoveryFolder(const QString& folder) { m_recoveryFolder = folder; }
    /// A path in the menu folder.
    QString menuPath(const QString& fileName) const;

    /// Copies a bundled example menu into the menu folder (under `fileName`, default its own name)
    /// and returns the copy's path.
    QString copyExample(const QString& exampleName, const QString& fileName = QString()) const;
    /// Writes `bytes` to `path` and returns the path; empty when writing failed.
    static QString writeFile(const QString& path, const QByteArray& bytes);
    static QByteArray readFile(const QString& path);
    /// A menu file in the editor's layout: `itemLines` as they stand in the [Menu] section (depth
    /// marked by "···"), `commandLines` as in the [Commands] section ("0002:zip=pack.exe a").
    static QByteArray menuBytes(const QStringList& itemLines, const QStringList& commandLines);

    OptionsStore& optionsStore() { return *m_optionsStore; }
    FakePrompts& prompts() { return m_prompts; }
    MainWindow& window();
    /// Destroys the main window without a question, as if its process had ended; window() makes a
    /// new one on the same folders.
    void dropWindow();

    /// The main window's menu entry named `name`; null when there is none.
    QAction* action(const QString& name);
    /// Triggers the main window's menu entry `name`, as a click on it would.
    void trigger(const QString& name);

    /// Writes a menu file of `itemLines` and `commandLines` (see menuBytes) under `fileName` in the
    /// menu folder and opens it in the main window. Returns its document index (0 on failure).
    qint16 openMenu(const QString& fileName, const QStringList& itemLines, const QStringList& commandLines = {});
    /// Shows the main window and waits until it is the active window, so that focus and keys work.
    bool showWindow();

private:
    QTemporaryDir m_root;
    std::unique_ptr<OptionsStore> m_optionsStore;
    FakePrompts m_prompts;
    QString m_recoveryFolder;
    std::unique_ptr<MainWindow> m_window;
};

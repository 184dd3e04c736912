#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class UserPrompts;

/// Shows a compiled help file (.chm) in the system's viewer for such files: hh.exe on Windows,
/// elsewhere the desktop's default application for help files or one of the known viewers. When
/// the file or a viewer is missing the user is told so, with the path of the help file, instead of
/// nothing happening.
class HelpLauncher
{
public:
    /// A program that shows .chm files; the help file's path is added after `arguments`.
    struct Viewer
    {
        QString program;
        QStringList arguments;
    };

    explicit HelpLauncher(UserPrompts& prompts);
    virtual ~HelpLauncher();
    HelpLauncher(const HelpLauncher&) = delete;
    HelpLauncher& operator=(const HelpLauncher&) = delete;

    /// Opens `helpFilePath` at its default topic. False when it could not be shown; the user has
    /// then been told why.
    bool showHelp(const QString& helpFilePath);

    static QString missingFileText(const QString& helpFilePath);
    static QString noViewerText(const QString& helpFilePath);
    static QString startFailedText(const QString& program, const QString& helpFilePath);

    /// Programs known to show .chm files, looked for in PATH when the desktop names no default.
    static QStringList knownViewers();

protected:
    /// The viewer installed on this system, or nothing.
    virtual std::optional<Viewer> findViewer() const;
    /// Starts `program` detached from the editor; false when it could not be started.
    virtual bool startViewer(const QString& program, const QStringList& arguments);

private:
    UserPrompts& m_prompts;
};

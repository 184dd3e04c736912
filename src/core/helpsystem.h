#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the desktop offers for showing the user guide: a viewer of compiled help files (.chm) and
/// the web browser for its HTML pages. The editor asks the real system; tests answer with fakes.
class HelpSystem
{
public:
    /// A program that shows .chm files; the help file's path is added after `arguments`.
    struct Viewer
    {
        QString program;
        QStringList arguments;
    };

    virtual ~HelpSystem() = default;

    /// The viewer installed on this system, or nothing.
    virtual std::optional<Viewer> findChmViewer() const = 0;
    /// Starts `viewer` on `chmFilePath`, detached from the editor; false when it could not start.
    virtual bool startChmViewer(const Viewer& viewer, const QString& chmFilePath) = 0;
    /// Opens the HTML page in the user's web browser; false when nothing could open it.
    virtual bool openInBrowser(const QString& htmlFilePath) = 0;
};

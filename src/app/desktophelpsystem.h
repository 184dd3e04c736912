#pragma once

#include "core/helpsystem.h"

/// The real system's ways of showing the guide: hh.exe on Windows; elsewhere the desktop's default
/// application for .chm files or one of the known viewers in PATH; the web browser through the
/// desktop's URL handler.
class DesktopHelpSystem final : public HelpSystem
{
public:
    std::optional<Viewer> findChmViewer() const override;
    bool startChmViewer(const Viewer& viewer, const QString& chmFilePath) override;
    bool openInBrowser(const QString& htmlFilePath) override;

    /// Programs known to show .chm files, looked for in PATH when the desktop names no default.
    static QStringList knownViewers();
    /// Web browsers looked for in PATH when the desktop names none for web pages.
    static QStringList knownBrowsers();
    /// Whether a web browser can show a page: the desktop names one for web pages (xdg-mime), the
    /// BROWSER variable names one, or a known browser is in PATH. Without one the desktop's URL
    /// handler would start and fail unseen.
    static bool hasWebBrowser();
};

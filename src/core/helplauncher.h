#pragma once

#include <QString>
#include <QStringList>

class HelpSystem;
class UserPrompts;

/// Help > Help: shows the user guide. The compiled help file (.chm) opens in a viewer for such
/// files, as the guide always has; where no viewer is installed (most desktops other than Windows)
/// the same guide's HTML pages open in the web browser. When neither can be shown the user is told
/// why, with the path of the guide and, when only a viewer is missing, the packages that provide
/// one.
class HelpLauncher final
{
public:
    HelpLauncher(HelpSystem& system, UserPrompts& prompts);

    /// Shows `chmFilePath`, or else `htmlGuidePath` (the first page of the same guide). False when
    /// nothing could be shown; the user has then been told why.
    bool showHelp(const QString& chmFilePath, const QString& htmlGuidePath);

    static QString missingFileText(const QString& chmFilePath);
    static QString noViewerText(const QString& chmFilePath);
    static QString startFailedText(const QString& program, const QString& chmFilePath);
    static QString browserFailedText(const QString& htmlGuidePath);

    /// Packages of the common Linux distributions that install a viewer for .chm files.
    static QStringList viewerPackages();

private:
    void tellUser(const QString& text);

    HelpSystem& m_system;
    UserPrompts& m_prompts;
};

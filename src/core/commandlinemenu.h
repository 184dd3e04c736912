#pragma once

#include <QString>

/// The menu file named on the editor's command line, or an empty text when there is none to open.
/// "$exepath$" (any letter case) stands for `programFolder`; an argument whose last three
/// characters are not "ini" (any letter case) names no menu file and is ignored.
///
/// The rest of the path is kept exactly as given: on a file system that tells letter cases apart,
/// lower-casing the whole path would name a different file.
QString menuPathFromCommandLine(const QString& commandLine, const QString& programFolder);

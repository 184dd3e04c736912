#pragma once

#include <QString>

/// The text of the About box: "KELV Menu Editor v" and the version (major.minor.revision), then the
/// author line, the web address and the licence the program is distributed under, each on its own
/// line.
QString aboutText();

/// The maker's contact e-mail and forum address, each on its own line indented by four blanks,
/// joined by CR LF. Messages that ask the user to contact the maker end with these lines.
QString contactLines();

/// The version as major.minor.revision ("1.0.0").
QString programVersion();

/// The name of the licence the program is distributed under ("MIT License").
QString licenceName();

/// What `--version` prints for one of the two programs (KELVEditor, kelvmenu): the program, the
/// product and the version on the first line, as GNU tools do, then the copyright and the licence
/// and, after an empty line, the author. Lines end in "\n": this goes to a terminal.
QString versionText(const QString& programName);

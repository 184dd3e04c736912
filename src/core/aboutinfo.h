#pragma once

#include <QString>

/// The text of the About box: "KELV Menu Editor v" and the version (major.minor.revision), then the
/// author line and the web address, each on its own line.
QString aboutText();

/// The maker's contact e-mail and forum address, each on its own line indented by four blanks,
/// joined by CR LF. Messages that ask the user to contact the maker end with these lines.
QString contactLines();

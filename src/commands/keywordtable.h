#pragma once

#include "textformat.h"

#include <QString>

#include <array>

/// The words the command editor colours besides variables: the script runner's call, the parameter
/// numbers 001= to 030= of a script call, and a few shell commands. Matched case-sensitively with
/// their trailing blank, so "del" at the end of a line, or "DEL ", stays black.
struct Keyword
{
    QString text;
    TextColour colour;
};

/// The 36 entries in their order: the runner's call, 001= .. 030=, "del ", "rename ", "copy ",
/// "regsvr32 ", "regsvr32.exe ". Later entries are coloured after earlier ones.
const std::array<Keyword, 36>& keywordTable();

/// The call of the script runner that starts every script call: "$exepath$\Tolvexer\Tolvexer.exe".
QString scriptRunnerPath();

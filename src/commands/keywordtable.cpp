#include "keywordtable.h"

QString scriptRunnerPath()
{
    return QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe");
}

const std::array<Keyword, 36>& keywordTable()
{
    static const std::array<Keyword, 36> table = [] {
        std::array<Keyword, 36> entries;
        entries[0] = { scriptRunnerPath() + QLatin1Char(' '), TextColour::Green };
        for (int number = 1; number <= 30; ++number) {
            entries[std::size_t(number)]
                = { QStringLiteral("%1=").arg(number, 3, 10, QLatin1Char('0')), TextColour::Navy };
        }
        entries[31] = { QStringLiteral("del "), TextColour::Green };
        entries[32] = { QStringLiteral("rename "), TextColour::Green };
        entries[33] = { QStringLiteral("copy "), TextColour::Green };
        entries[34] = { QStringLiteral("regsvr32 "), TextColour::Green };
        entries[35] = { QStringLiteral("regsvr32.exe "), TextColour::Green };
        return entries;
    }();
    return table;
}

#include "fuzzfailure.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

[[noreturn]] void failFuzzCase(const QString& what)
{
    std::fprintf(stderr, "KELV fuzz failure: %s\n", what.toUtf8().constData());
    std::fflush(stderr);
    std::abort();
}

QString firstByteDifference(const QByteArray& expected, const QByteArray& actual)
{
    const qsizetype common = std::min(expected.size(), actual.size());
    qsizetype offset = 0;
    while (offset < common && expected.at(offset) == actual.at(offset)) {
        ++offset;
    }
    constexpr qsizetype shown = 24;
    return QStringLiteral("sizes %1 and %2, first difference at byte %3: %4 against %5")
        .arg(QString::number(expected.size()), QString::number(actual.size()), QString::number(offset),
             QString::fromLatin1(expected.mid(offset, shown).toHex(' ')),
             QString::fromLatin1(actual.mid(offset, shown).toHex(' ')));
}

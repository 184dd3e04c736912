#pragma once

#include <QByteArray>
#include <QString>

/// Ends the fuzz run on a broken promise of the editor: says what broke on standard error and
/// aborts, so that libFuzzer keeps the input that did it.
[[noreturn]] void failFuzzCase(const QString& what);

/// Where two byte strings first differ, with a few bytes of each from there, for a failure message.
QString firstByteDifference(const QByteArray& expected, const QByteArray& actual);

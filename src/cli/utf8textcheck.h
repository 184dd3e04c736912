#pragma once

#include <QByteArrayView>
#include <QString>

/// When `bytes` hold characters beyond ASCII and are valid UTF-8 throughout, the file was most
/// likely saved as UTF-8, and the reader, which takes every byte as one Windows-1252 character,
/// shows its text garbled. Then this returns a warning that shows it on the first such character:
/// `the file looks like UTF-8 text, but menu files are Windows-1252: "é" reads as "Ã©"`. Empty for
/// ASCII text and for anything that is not valid UTF-8.
QString utf8TextWarning(QByteArrayView bytes);

#include "scriptcall.h"

#include "keywordtable.h"

#include "menufile/windows1252codec.h"

#include <QDir>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

#ifdef Q_OS_WIN
/// The system's short (8.3) form of `path`: a buffer of 1024 characters, and once more with the
/// size the system asks for when that is too small.
QString shortPathName(const QString& path)
{
    const std::wstring longPath = QDir::toNativeSeparators(path).toStdWString();
    std::wstring buffer(1024, L'\0');
    DWORD length = GetShortPathNameW(longPath.c_str(), buffer.data(), DWORD(buffer.size()));
    if (length > buffer.size()) {
        buffer.assign(length, L'\0');
        length = GetShortPathNameW(longPath.c_str(), buffer.data(), DWORD(buffer.size()));
    }
    if (length == 0 || length > buffer.size()) {
        return QDir::toNativeSeparators(path);
    }
    return QString::fromWCharArray(buffer.data(), int(length));
}
#else
/// Systems without short names keep the path as it is.
QString shortPathName(const QString& path)
{
    return QDir::toNativeSeparators(path);
}
#endif

} // namespace

namespace ScriptCall {

QString scriptPath(const QString& path, const QString& programFolder)
{
    const QString script = shortPathName(path).toUpper();
    QString folder = shortPathName(programFolder).toUpper();
    const QString separator = QDir::toNativeSeparators(QStringLiteral("/"));
    if (!folder.endsWith(separator)) {
        folder += separator;
    }
    if (!programFolder.isEmpty() && script.startsWith(folder)) {
        // The shell extension runs the call on Windows, where $exepath$ is a Windows folder: the
        // rest of the path takes backslashes whatever system the menu was edited on.
        QString rest = script.mid(folder.size());
        rest.replace(QLatin1Char('/'), QLatin1Char('\\'));
        return QStringLiteral("$exepath$\\") + rest;
    }
    return script;
}

QStringList scriptLines(const QByteArray& bytes)
{
    QStringList lines;
    const QString text = Windows1252Codec::decode(bytes);
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\r') && c != QLatin1Char('\n')) {
            continue;
        }
        lines.append(text.mid(start, i - start));
        if (c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n')) {
            ++i;
        }
        start = i + 1;
    }
    if (start < text.size()) {
        lines.append(text.mid(start));
    }
    return lines;
}

Result append(const QString& commandText, const QString& path, const QString& programFolder, const QStringList& lines,
              const AskValue& ask)
{
    Result result;
    result.text
        = commandText.isEmpty() ? scriptRunnerPath() : commandText + QStringLiteral("\r\n\r\n") + scriptRunnerPath();
    result.text += QLatin1Char(' ') + scriptPath(path, programFolder);

    // Everything before the block is skipped; a file that ends first is incomplete.
    qsizetype next = 0;
    while (next < lines.size() && lines.at(next).toLower() != QLatin1String("[var]")) {
        ++next;
    }
    if (next >= lines.size()) {
        return result;
    }
    ++next;
    const QString fileName = QFileInfo(path).fileName();
    int number = 1;
    for (;; ++next) {
        if (next >= lines.size()) {
            return result; // the block has no "[/var]"
        }
        const QString& line = lines.at(next);
        if (line.toLower() == QLatin1String("[/var]")) {
            break;
        }
        if (line.isEmpty() || line.startsWith(QLatin1Char('.'))) {
            continue;
        }
        const QString value = ask(QStringLiteral("Enter ") + line + QStringLiteral(" value :"),
                                  line + QStringLiteral(" - ") + fileName);
        result.text
            += QLatin1Char(' ') + QStringLiteral("%1").arg(number, 3, 10, QLatin1Char('0')) + QLatin1Char('=') + value;
        ++number;
    }
    result.complete = true;
    return result;
}

} // namespace ScriptCall

#pragma once

#include "textoutput.h"

#include <optional>

#include <QString>
#include <QStringList>

class QCommandLineParser;
class QIODevice;
struct MenuDocument;
struct MenuProblem;
struct MenuReadResult;

/// The kelvmenu program without its process: runs one command line against menu files and says
/// what to exit with. Results go to `out`, messages and usage errors to `err`, both as UTF-8; `in`
/// is read when a script comes from standard input.
class KelvMenuTool final
{
public:
    KelvMenuTool(QIODevice& in, QIODevice& out, QIODevice& err);

    /// `arguments` is the command line without the program name. Returns an ExitCode. Everything
    /// printed has reached the system when it returns; when it could not, the exit code is
    /// ExitCode::WriteError, with a message on `err`.
    int run(const QStringList& arguments);

private:
    int runCommand(const QStringList& arguments);
    int runDump(const QStringList& arguments);
    int runFormat(const QStringList& arguments);
    int runCheck(const QStringList& arguments);
    int runTree(const QStringList& arguments);
    int runEdit(const QStringList& arguments);

    /// Reads `path` as the editor opens it; on failure reports it on `err` and returns the exit code
    /// for it, on success returns ExitCode::Success.
    int readOrReport(const QString& path, bool detectLinks, MenuDocument& document);
    /// Writes `document` to `outputPath`, unless the file could not hold it. Problems and write
    /// failures are reported on `err`; returns the exit code.
    int writeOrReport(const MenuDocument& document, const QString& outputPath);
    /// `FILE:LINE: warning: problem` or `FILE: warning: problem` for a problem of a readable file.
    static QString warningText(const QString& path, const MenuProblem& problem);

    /// Adds --help to `parser` and parses `arguments` of `command`. Returns the exit code when that
    /// already ends the command (a usage error, or the usage printed for --help).
    std::optional<int> parseArguments(QCommandLineParser& parser, const QString& command, const QStringList& arguments,
                                      const QString& usage);
    /// A usage error unless `files` holds exactly one file name.
    std::optional<int> requireOneFile(const QString& command, const QStringList& files);

    int usageError(const QString& command, const QString& message);
    void print(const QString& text);
    void printError(const QString& text);

    QIODevice& m_in;
    TextOutput m_output;
    QIODevice& m_err;
};

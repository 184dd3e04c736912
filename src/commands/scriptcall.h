#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class RunTimeError;

/// The call of a script of the script runner that Load Tolvexer Script appends to a command: the
/// runner, the script's path and one numbered value for each parameter of the script's "[var]"
/// block, asked of the user one by one.
namespace ScriptCall {

/// Asks the user for the value of one parameter: `prompt` ("Enter " + name + " value :") and
/// `description` (name + " - " + the script's file name). An empty text when the prompt was cancelled.
using AskValue = std::function<QString(const QString& prompt, const QString& description)>;

/// The script's path as a call names it: its short form (where the system has one) in upper case,
/// the program's folder written "$exepath$" and what follows it with backslashes
/// ("$exepath$\MYSCRIPT.TVP").
QString scriptPath(const QString& path, const QString& programFolder);

/// The lines of a script file: Windows-1252 text, lines ending in CR LF, LF or CR.
QStringList scriptLines(const QByteArray& bytes);

/// What appending a call gave: the command text, and whether the script's parameter block was
/// complete ("[var]" and "[/var]" both found). When it was not, the text keeps what was appended
/// before the file ran out.
struct Result
{
    QString text;
    bool complete = false;
};

/// Appends to `commandText` the call of the script at `path` whose lines are `lines`: after an empty
/// line when the text is not empty, the runner, the script's path, then for each parameter line of
/// the block (empty lines and lines starting with "." are skipped) its number in three digits, "="
/// and the value `ask` gives.
Result append(const QString& commandText, const QString& path, const QString& programFolder, const QStringList& lines,
              const AskValue& ask);

} // namespace ScriptCall

#include "commandtextcheck.h"

#include "commands/keywordtable.h"
#include "knownvariables.h"

#include <QSet>
#include <QVarLengthArray>

#include <algorithm>

namespace {

const QLatin1String lineSeparator("||");
constexpr int firstParameter = 1;
constexpr int lastParameter = 30;
constexpr int parameterDigits = 3;

MenuProblem problem(MenuProblem::Kind kind, const QString& message)
{
    MenuProblem found;
    found.kind = kind;
    found.message = message;
    return found;
}

bool isBlank(QChar character)
{
    return character == QLatin1Char(' ') || character == QLatin1Char('\t');
}

/// Whether the command holds nothing but blanks and line separators.
bool isEmptyCommand(const QString& command)
{
    for (qsizetype i = 0; i < command.size(); ++i) {
        if (command.at(i).isSpace()) {
            continue;
        }
        if (QStringView(command).mid(i).startsWith(lineSeparator)) {
            ++i;
            continue;
        }
        return false;
    }
    return true;
}

/// Where the "$" signs of a command stand, and where each call of the script runner ends its runner
/// path, found in one pass: the runner path starts with "$" too.
struct CommandScan
{
    QVarLengthArray<qsizetype, 16> dollars;
    QVarLengthArray<qsizetype, 2> callStarts;

    explicit CommandScan(const QString& command)
    {
        const QString& runner = runnerPath();
        const qsizetype size = command.size();
        const QChar* data = command.constData();
        for (qsizetype i = 0; i < size; ++i) {
            if (data[i] != QLatin1Char('$')) {
                continue;
            }
            dollars.append(i);
            // Windows finds the runner whatever the letter case of its path.
            if (size - i >= runner.size() && data[i + 1].toLower() == runner.at(1)
                && QStringView(data + i, runner.size()).compare(runner, Qt::CaseInsensitive) == 0) {
                callStarts.append(i);
            }
        }
    }

    static const QString& runnerPath()
    {
        static const QString path = scriptRunnerPath();
        return path;
    }
};

QString unknownVariableMessage(QStringView variable)
{
    QString message = QStringLiteral("unknown variable \"");
    message += variable;
    message += QLatin1Char('"');
    return message;
}

/// Variables run from one "$" to the next, as the command editor colours them; a last "$" without
/// a partner opens a variable that never closes.
void checkVariables(const QString& command, const CommandScan& scan, QList<MenuProblem>& problems)
{
    const auto& dollars = scan.dollars;
    QVarLengthArray<QStringView, 4> told;
    const KnownVariables& known = KnownVariables::catalogue();
    for (qsizetype pair = 0; pair + 1 < dollars.size(); pair += 2) {
        const QStringView variable = QStringView(command).mid(dollars[pair], dollars[pair + 1] - dollars[pair] + 1);
        if (known.isKnown(variable) || std::find(told.cbegin(), told.cend(), variable) != told.cend()) {
            continue;
        }
        told.append(variable);
        problems.append(problem(MenuProblem::Kind::UnknownVariable, unknownVariableMessage(variable)));
    }
    if (dollars.size() % 2 != 0) {
        problems.append(
            problem(MenuProblem::Kind::OddDollarCount,
                    QStringLiteral("odd number of \"$\" (%1): the last one opens a variable that is never closed")
                        .arg(dollars.size())));
    }
}

/// The blank-separated words of a script call; a quoted part keeps its blanks.
QList<QStringView> callWords(QStringView call)
{
    QList<QStringView> words;
    qsizetype i = 0;
    while (i < call.size()) {
        while (i < call.size() && isBlank(call.at(i))) {
            ++i;
        }
        if (i == call.size()) {
            break;
        }
        const qsizetype start = i;
        bool quoted = false;
        while (i < call.size() && (quoted || !isBlank(call.at(i)))) {
            if (call.at(i) == QLatin1Char('"')) {
                quoted = !quoted;
            }
            ++i;
        }
        words.append(call.mid(start, i - start));
    }
    return words;
}

QString withoutQuotes(QStringView word)
{
    QString text = word.toString();
    text.remove(QLatin1Char('"'));
    return text;
}

/// The digits before "=" of a parameter word ("001" of "001=$fs-001$"); empty when the word is no
/// parameter.
QStringView parameterNumber(QStringView word)
{
    qsizetype digits = 0;
    while (digits < word.size() && word.at(digits) >= QLatin1Char('0') && word.at(digits) <= QLatin1Char('9')) {
        ++digits;
    }
    if (digits == 0 || digits == word.size() || word.at(digits) != QLatin1Char('=')) {
        return QStringView();
    }
    return word.first(digits);
}

/// One call of the script runner: the script it is given, then its numbered parameters.
void checkScriptCall(QStringView call, QList<MenuProblem>& problems)
{
    const QList<QStringView> words = callWords(call);
    if (words.isEmpty()) {
        problems.append(
            problem(MenuProblem::Kind::NoScriptFile, QStringLiteral("the script runner is called without a script")));
        return;
    }
    const QString script = withoutQuotes(words.first());
    if (!script.endsWith(QLatin1String(".tvs"), Qt::CaseInsensitive)
        && !script.endsWith(QLatin1String(".tvp"), Qt::CaseInsensitive)) {
        problems.append(problem(
            MenuProblem::Kind::NoScriptFile,
            QStringLiteral("the script runner is called with \"%1\", which is no .tvs or .tvp script").arg(script)));
    }

    QSet<int> given;
    QSet<int> toldRepeated;
    for (qsizetype w = 1; w < words.size(); ++w) {
        const QStringView number = parameterNumber(words.at(w));
        if (number.isEmpty()) {
            continue; // part of a value that holds blanks
        }
        bool converted = false;
        const int value = number.toInt(&converted);
        if (number.size() != parameterDigits || !converted || value < firstParameter || value > lastParameter) {
            problems.append(
                problem(MenuProblem::Kind::ParameterNumberOutOfRange,
                        QStringLiteral("script parameter number %1 is not one of 001 to 030").arg(number.toString())));
            continue;
        }
        if (given.contains(value)) {
            if (!toldRepeated.contains(value)) {
                toldRepeated.insert(value);
                problems.append(problem(
                    MenuProblem::Kind::RepeatedParameterNumber,
                    QStringLiteral("script parameter %1 is given more than once in one call of the script runner")
                        .arg(number.toString())));
            }
            continue;
        }
        given.insert(value);
    }
}

/// Every call of the script runner; a call runs to the end of its line or to the next call.
void checkScriptCalls(const QString& command, const CommandScan& scan, QList<MenuProblem>& problems)
{
    const qsizetype runnerLength = CommandScan::runnerPath().size();
    for (qsizetype call = 0; call < scan.callStarts.size(); ++call) {
        qsizetype start = scan.callStarts[call] + runnerLength;
        const qsizetype next = call + 1 < scan.callStarts.size() ? scan.callStarts[call + 1] : command.size();
        // A runner path in quotes: its closing quote belongs to it.
        if (start < command.size() && command.at(start) == QLatin1Char('"')) {
            ++start;
        }
        const bool endsHere = start == command.size() || isBlank(command.at(start))
            || QStringView(command).mid(start).startsWith(lineSeparator);
        if (!endsHere) {
            continue; // another program whose name starts like the runner's
        }
        qsizetype end = command.indexOf(lineSeparator, start);
        if (end < 0 || end > next) {
            end = next;
        }
        checkScriptCall(QStringView(command).mid(start, end - start), problems);
    }
}

} // namespace

namespace CommandTextCheck {

QList<MenuProblem> check(const QString& command)
{
    QList<MenuProblem> problems;
    appendProblems(command, problems);
    return problems;
}

void appendProblems(const QString& command, QList<MenuProblem>& problems)
{
    if (isEmptyCommand(command)) {
        problems.append(problem(MenuProblem::Kind::EmptyCommand,
                                command.isEmpty() ? QStringLiteral("the command is empty")
                                                  : QStringLiteral("the command holds nothing to run")));
        return;
    }
    const CommandScan scan(command);
    checkVariables(command, scan, problems);
    checkScriptCalls(command, scan, problems);
}

QList<UnknownVariable> unknownVariables(const QString& text)
{
    QList<UnknownVariable> found;
    const KnownVariables& known = KnownVariables::catalogue();
    qsizetype open = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('$')) {
            continue;
        }
        if (open < 0) {
            open = i;
            continue;
        }
        const QStringView variable = QStringView(text).mid(open, i - open + 1);
        if (!known.isKnown(variable)) {
            found.append(UnknownVariable { open, i - open + 1, unknownVariableMessage(variable) });
        }
        open = -1;
    }
    return found;
}

} // namespace CommandTextCheck

#include "knownvariables.h"

#include "commands/variablecatalogue.h"

#include <QVarLengthArray>

namespace {

const QLatin1String catalogueNumber("001");
const QLatin1String catalogueExtension("avi");

/// The comments line of a catalogue entry's help, without its "Comments : " lead.
QString helpComments(int index)
{
    const QString lead = QStringLiteral("Comments : ");
    const QStringList lines = VariableCatalogue::help(index).split(QStringLiteral("\r\n"));
    for (const QString& line : lines) {
        if (line.startsWith(lead)) {
            return line.mid(lead.size());
        }
    }
    return QString();
}

/// Whether the help of the entry lets the user write another number: "You can change the number
/// ...", or a comment that tells what each number stands for ("001 = selected item's caption, 002 =
/// ...").
bool numberMayChange(int index)
{
    const QString comments = helpComments(index);
    return comments.startsWith(QLatin1String("You can change the number"))
        || comments.startsWith(catalogueNumber + QLatin1String(" = "));
}

bool isVariable(const QString& name)
{
    return name.size() >= 2 && name.startsWith(QLatin1Char('$')) && name.endsWith(QLatin1Char('$'))
        && name.count(QLatin1Char('$')) == 2;
}

/// The rule of one catalogue variable: its parts between "-" signs, the number and the extension
/// turned into places.
KnownVariables::Rule ruleOf(const QString& name, bool numberPlace)
{
    using Piece = KnownVariables::Piece;
    KnownVariables::Rule rule;
    const QStringList parts = name.mid(1, name.size() - 2).split(QLatin1Char('-'));
    for (const QString& part : parts) {
        if (part == catalogueExtension) {
            rule.append(Piece { Piece::Kind::Extension, part });
        } else if (numberPlace && part == catalogueNumber) {
            rule.append(Piece { Piece::Kind::Number, part });
        } else {
            rule.append(Piece { Piece::Kind::Text, part });
        }
    }
    return rule;
}

bool isNumber(QStringView part, qsizetype width)
{
    if (part.size() != width) {
        return false;
    }
    bool zero = true;
    for (const QChar digit : part) {
        if (digit < QLatin1Char('0') || digit > QLatin1Char('9')) {
            return false;
        }
        zero = zero && digit == QLatin1Char('0');
    }
    return !zero;
}

bool matches(const KnownVariables::Rule& rule, const QVarLengthArray<QStringView, 8>& parts)
{
    using Kind = KnownVariables::Piece::Kind;
    if (rule.size() != parts.size()) {
        return false;
    }
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const KnownVariables::Piece& piece = rule.at(i);
        const QStringView part = parts[i];
        switch (piece.kind) {
        case Kind::Text:
            if (part != piece.text) {
                return false;
            }
            break;
        case Kind::Number:
            if (!isNumber(part, piece.text.size())) {
                return false;
            }
            break;
        case Kind::Extension:
            if (part.isEmpty()) {
                return false;
            }
            break;
        }
    }
    return true;
}

} // namespace

KnownVariables::KnownVariables()
{
    for (int index = 0; index < VariableCatalogue::Count; ++index) {
        const QString name = VariableCatalogue::name(index);
        // "#pop#" and its kin are values of script parameters, not variables between "$" signs.
        if (!isVariable(name)) {
            continue;
        }
        m_rules.append(ruleOf(name, !VariableCatalogue::hasRichHelp(index) && numberMayChange(index)));
    }
}

const KnownVariables& KnownVariables::catalogue()
{
    static const KnownVariables variables;
    return variables;
}

bool KnownVariables::isKnown(QStringView variable) const
{
    if (variable.size() < 2 || variable.front() != QLatin1Char('$') || variable.back() != QLatin1Char('$')) {
        return false;
    }
    // Menus hold many variables: they are cut into parts in place, without copies.
    QVarLengthArray<QStringView, 8> parts;
    const QStringView inner = variable.sliced(1, variable.size() - 2);
    qsizetype start = 0;
    for (qsizetype i = 0; i <= inner.size(); ++i) {
        if (i == inner.size() || inner.at(i) == QLatin1Char('-')) {
            parts.append(inner.sliced(start, i - start));
            start = i + 1;
        }
    }
    for (const Rule& rule : m_rules) {
        if (matches(rule, parts)) {
            return true;
        }
    }
    return false;
}

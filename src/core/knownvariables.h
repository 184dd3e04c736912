#pragma once

#include <QList>
#include <QString>
#include <QStringView>

/// The "$...$" variables the shell extension fills in, as rules read off the variable catalogue: each
/// "$" variable of the catalogue is a rule made of the parts its name has between "-" signs, in which
/// the number "001" is a place for any other number where its help says the number can be changed
/// (or, as for "$itemcaption-001$", says what the other numbers mean), and "avi" is a place for any
/// extension, since the command editor itself puts the chosen extension there when it inserts a
/// variable.
class KnownVariables final
{
public:
    /// A part of a rule: text that must stand as it is, or a place for a number or an extension.
    struct Piece
    {
        enum class Kind { Text, Number, Extension };
        Kind kind = Kind::Text;
        /// The text of a Text part; the catalogue's own number or extension for the other two.
        QString text;

        friend bool operator==(const Piece& left, const Piece& right)
        {
            return left.kind == right.kind && left.text == right.text;
        }
    };
    /// The parts of a name between its "$" signs, in order: "$fs-avi-001$" is the text "fs", an
    /// extension place and a number place.
    using Rule = QList<Piece>;

    /// The rules of the variable catalogue, built once.
    static const KnownVariables& catalogue();

    /// Whether `variable`, "$" signs included ("$fs-002$"), is a variable of the catalogue or a
    /// variation it allows: it has as many parts between "-" signs as a rule, and each part matches.
    /// A number place takes as many digits as the catalogue's number and not zero ("002", not "2" or
    /// "000"); an extension place takes any part that is not empty ("mkv", "MKV", "tar.gz"). Text is
    /// compared case-sensitively.
    bool isKnown(QStringView variable) const;

    /// One rule per "$" variable of the catalogue, in the catalogue's order.
    const QList<Rule>& rules() const { return m_rules; }

private:
    KnownVariables();

    QList<Rule> m_rules;
};

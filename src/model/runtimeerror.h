#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

/// A failure inside an operation on the document: a 16-bit overflow, an index that names no item,
/// a file that cannot be written. It carries what the error report shows the user: number,
/// description and source.
class RunTimeError : public std::exception
{
public:
    /// The description is taken from the error table when none is given.
    RunTimeError(int number, QString source, QString description = QString());

    /// Number 0 with empty description and source: what the error report shows when it is run
    /// while no error is pending.
    static RunTimeError noError();

    int number() const { return m_number; }
    QString description() const { return m_description; }
    QString source() const { return m_source; }

    /// "Error " + number + " : " + description + " (" + source + ")"
    QString report() const;

    const char* what() const noexcept override;

private:
    int m_number;
    QString m_description;
    QString m_source;
    QByteArray m_what;
};

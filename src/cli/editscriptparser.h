#pragma once

#include "scriptoperation.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// Reads the OPS of `kelvmenu edit`: a JSON array of operation objects. Every object names its
/// operation in "op" and carries exactly the fields that operation takes, each of its type; a
/// missing, unknown or mistyped field, an unknown operation or text that is not such an array makes
/// the whole script malformed, so that nothing of it runs.
class EditScriptParser final
{
public:
    /// The operations of `json`; on failure an empty list and `error` says what is wrong, naming
    /// the operation by its 1-based number.
    static QList<ScriptOperation> parse(const QByteArray& json, QString& error);

    /// The names of the operations a script may use, in the order the help lists them.
    static QStringList operationNames();
};

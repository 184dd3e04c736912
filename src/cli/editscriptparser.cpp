#include "editscriptparser.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>
#include <QStringList>

#include <array>

namespace {

enum class FieldType { Text, Boolean, Number };

struct FieldSpec
{
    const char* name;
    FieldType type;
    bool required;
};

struct OperationSpec
{
    const char* name;
    std::array<FieldSpec, 4> fields;
    int fieldCount;
};

constexpr FieldSpec keyField { "key", FieldType::Text, true };

// The operations and their fields, as the contract of `kelvmenu edit` lists them.
constexpr std::array<OperationSpec, 23> operationSpecs { {
    { "new-item", { { keyField, { "caption", FieldType::Text, false } } }, 2 },
    { "new-sub-item", { { keyField, { "caption", FieldType::Text, false } } }, 2 },
    { "rename", { { keyField, { "caption", FieldType::Text, true } } }, 2 },
    { "delete", { { keyField } }, 1 },
    { "copy", { { keyField } }, 1 },
    { "cut", { { keyField } }, 1 },
    { "paste", { { keyField } }, 1 },
    { "duplicate", { { keyField } }, 1 },
    { "move-up", { { keyField } }, 1 },
    { "move-down", { { keyField } }, 1 },
    { "indent", { { keyField } }, 1 },
    { "outdent", { { keyField } }, 1 },
    { "drop",
      { { keyField,
          { "target", FieldType::Text, true },
          { "place", FieldType::Text, true },
          { "copy", FieldType::Boolean, true } } },
      4 },
    { "link", { { keyField, { "target", FieldType::Text, true } } }, 2 },
    { "link-on", { { keyField } }, 1 },
    { "link-off", { { keyField } }, 1 },
    { "replace",
      { { { "find", FieldType::Text, true },
          { "replacement", FieldType::Text, true },
          { "branch", FieldType::Text, false } } },
      3 },
    { "add-command",
      { { keyField, { "extension", FieldType::Text, true }, { "command", FieldType::Text, true } } },
      3 },
    { "edit-command",
      { { keyField,
          { "slot", FieldType::Number, true },
          { "extension", FieldType::Text, true },
          { "command", FieldType::Text, true } } },
      4 },
    { "remove-command", { { keyField, { "slot", FieldType::Number, true } } }, 2 },
    { "clear-commands", { { keyField } }, 1 },
    { "look-for-links", {}, 0 },
    { "uncheck-links", {}, 0 },
} };

const OperationSpec* findSpec(const QString& name)
{
    for (const OperationSpec& spec : operationSpecs) {
        if (name == QLatin1String(spec.name)) {
            return &spec;
        }
    }
    return nullptr;
}

bool hasType(const QJsonValue& value, FieldType type)
{
    switch (type) {
    case FieldType::Text:
        return value.isString();
    case FieldType::Boolean:
        return value.isBool();
    case FieldType::Number:
        return value.isDouble();
    }
    return false;
}

QString typeName(FieldType type)
{
    switch (type) {
    case FieldType::Text:
        return QStringLiteral("a string");
    case FieldType::Boolean:
        return QStringLiteral("true or false");
    case FieldType::Number:
        return QStringLiteral("a number");
    }
    return QString();
}

QString operationLabel(int number, const QString& op)
{
    return op.isEmpty() ? QStringLiteral("operation %1").arg(number)
                        : QStringLiteral("operation %1 (%2)").arg(QString::number(number), op);
}

} // namespace

QList<ScriptOperation> EditScriptParser::parse(const QByteArray& json, QString& error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("OPS is not JSON: %1 at offset %2")
                    .arg(parseError.errorString(), QString::number(parseError.offset));
        return {};
    }
    if (!document.isArray()) {
        error = QStringLiteral("OPS must be a JSON array of operations");
        return {};
    }

    QList<ScriptOperation> operations;
    const QJsonArray array = document.array();
    for (qsizetype i = 0; i < array.size(); ++i) {
        const int number = int(i + 1);
        if (!array.at(i).isObject()) {
            error = QStringLiteral("%1: not a JSON object").arg(operationLabel(number, QString()));
            return {};
        }
        const QJsonObject object = array.at(i).toObject();
        if (!object.value(QLatin1String("op")).isString()) {
            error = QStringLiteral("%1: \"op\" must name the operation").arg(operationLabel(number, QString()));
            return {};
        }
        ScriptOperation operation;
        operation.op = object.value(QLatin1String("op")).toString();
        const OperationSpec* spec = findSpec(operation.op);
        if (spec == nullptr) {
            error = QStringLiteral("%1: unknown operation \"%2\"").arg(operationLabel(number, QString()), operation.op);
            return {};
        }
        const QString label = operationLabel(number, operation.op);
        const QStringList names = object.keys();
        for (const QString& name : names) {
            bool known = name == QLatin1String("op");
            for (int f = 0; f < spec->fieldCount && !known; ++f) {
                known = name == QLatin1String(spec->fields[std::size_t(f)].name);
            }
            if (!known) {
                error = QStringLiteral("%1: unknown field \"%2\"").arg(label, name);
                return {};
            }
        }
        for (int f = 0; f < spec->fieldCount; ++f) {
            const FieldSpec& field = spec->fields[std::size_t(f)];
            const QString name = QLatin1String(field.name);
            if (!object.contains(name)) {
                if (field.required) {
                    error = QStringLiteral("%1: missing field \"%2\"").arg(label, name);
                    return {};
                }
                continue;
            }
            const QJsonValue value = object.value(name);
            if (!hasType(value, field.type)) {
                error = QStringLiteral("%1: field \"%2\" must be %3").arg(label, name, typeName(field.type));
                return {};
            }
            if (name == QLatin1String("key")) {
                operation.key = value.toString();
            } else if (name == QLatin1String("caption")) {
                operation.caption = value.toString();
                operation.hasCaption = true;
            } else if (name == QLatin1String("target")) {
                operation.target = value.toString();
            } else if (name == QLatin1String("place")) {
                operation.place = value.toString();
                if (operation.place != QLatin1String("child") && operation.place != QLatin1String("next")) {
                    error = QStringLiteral("%1: field \"place\" must be \"child\" or \"next\"").arg(label);
                    return {};
                }
            } else if (name == QLatin1String("copy")) {
                operation.copy = value.toBool();
            } else if (name == QLatin1String("find")) {
                operation.find = value.toString();
            } else if (name == QLatin1String("replacement")) {
                operation.replacement = value.toString();
            } else if (name == QLatin1String("extension")) {
                operation.extension = value.toString();
            } else if (name == QLatin1String("command")) {
                operation.command = value.toString();
            } else if (name == QLatin1String("slot")) {
                const double slot = value.toDouble();
                if (slot < 1 || slot > 32767 || slot != double(int(slot))) {
                    error = QStringLiteral("%1: field \"slot\" must be a whole number from 1 to 32767").arg(label);
                    return {};
                }
                operation.slot = int(slot);
            } else if (name == QLatin1String("branch")) {
                // The branch is the selected node's: Replace works there unless told to work on all.
                operation.key = value.toString();
            }
        }
        operations.append(operation);
    }
    return operations;
}

QStringList EditScriptParser::operationNames()
{
    QStringList names;
    for (const OperationSpec& spec : operationSpecs) {
        names.append(QLatin1String(spec.name));
    }
    return names;
}

#include "errortable.h"

#include <array>

namespace {

struct ErrorEntry
{
    int number;
    const char* description;
};

constexpr std::array<ErrorEntry, 14> errorEntries { {
    { ErrorNumber::InvalidProcedureCall, "Invalid procedure call or argument" },
    { ErrorNumber::Overflow, "Overflow" },
    { ErrorNumber::OutOfMemory, "Out of memory" },
    { ErrorNumber::SubscriptOutOfRange, "Subscript out of range" },
    { ErrorNumber::TypeMismatch, "Type mismatch" },
    { ErrorNumber::OutOfStackSpace, "Out of stack space" },
    { ErrorNumber::BadFileNameOrNumber, "Bad file name or number" },
    { ErrorNumber::FileNotFound, "File not found" },
    { ErrorNumber::DiskFull, "Disk full" },
    { ErrorNumber::InputPastEndOfFile, "Input past end of file" },
    { ErrorNumber::PermissionDenied, "Permission denied" },
    { ErrorNumber::PathFileAccessError, "Path/File access error" },
    { ErrorNumber::PathNotFound, "Path not found" },
    { ErrorNumber::ObjectVariableNotSet, "Object variable or With block variable not set" },
} };

} // namespace

QString errorDescription(int number)
{
    for (const ErrorEntry& entry : errorEntries) {
        if (entry.number == number) {
            return QString::fromLatin1(entry.description);
        }
    }
    return QStringLiteral("Application-defined or object-defined error");
}

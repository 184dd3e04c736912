#pragma once

#include <QString>

/// Numbers of the run-time errors that editing operations report ("Error " + number + " : " +
/// description + " (" + source + ")"). One table, so the same failure always reads the same.
namespace ErrorNumber {
constexpr int InvalidProcedureCall = 5;
constexpr int Overflow = 6;
constexpr int OutOfMemory = 7;
constexpr int SubscriptOutOfRange = 9;
constexpr int TypeMismatch = 13;
constexpr int OutOfStackSpace = 28;
constexpr int BadFileNameOrNumber = 52;
constexpr int FileNotFound = 53;
constexpr int DiskFull = 61;
constexpr int InputPastEndOfFile = 62;
constexpr int PermissionDenied = 70;
constexpr int PathFileAccessError = 75;
constexpr int PathNotFound = 76;
constexpr int ObjectVariableNotSet = 91;
} // namespace ErrorNumber

/// The description of an error number; "Application-defined or object-defined error" for a number
/// the table does not hold.
QString errorDescription(int number);

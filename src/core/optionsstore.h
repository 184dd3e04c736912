#pragma once

#include "options.h"

#include <QString>

#include <memory>

class QSettings;

/// The per-user settings store that keeps the options. On Windows this is the registry key
/// HKEY_CURRENT_USER\SOFTWARE\KELVEditor\; elsewhere a per-user settings file. Values are texts,
/// as the options have always been stored; a number stored as a DWORD still reads as text.
/// Failures are never reported: a value that cannot be read is "Not Found".
class OptionsStore final
{
public:
    static constexpr int StringValue = 1; // REG_SZ
    static constexpr int DwordValue = 4; // REG_DWORD

    /// The real per-user store.
    OptionsStore();
    /// An INI file instead of the per-user store (tests, portable set-ups).
    explicit OptionsStore(const QString& iniFilePath);
    ~OptionsStore();
    OptionsStore(const OptionsStore&) = delete;
    OptionsStore& operator=(const OptionsStore&) = delete;

    /// The text of a value of the program's key (or one of its subkeys); "Not Found" when it is
    /// missing. A DWORD value reads as its number with at least three digits ("007").
    QString readValue(const QString& keyPath, const QString& valueName) const;
    /// Creates the key when needed and writes the value: a text for StringValue, the number that
    /// `value` holds for DwordValue. Key paths outside the program's key are ignored.
    void writeValue(const QString& keyPath, const QString& valueName, int type, const QString& value);

    /// The five options; a value that is missing or not a number (or, for CopyCommandDup, not a
    /// truth value) reads as 0 / false.
    Options loadOptions() const;
    /// Writes all five options at once, in their fixed order: the check box values as "0"/"1",
    /// CopyCommandDup as "True"/"False".
    void saveOptions(const Options& options);

    /// "SOFTWARE\KELVEditor\", the program's key below HKEY_CURRENT_USER.
    static QString keyPath();

    /// The value names, in the order they are saved.
    static QString checkCopyCommandName() { return QStringLiteral("CheckCopyCommand"); }
    static QString hideItemsWithoutCommandName() { return QStringLiteral("HideItemsWithoutCommand"); }
    static QString hideItemsCopyCommandName() { return QStringLiteral("HideItemsCopyCommand"); }
    static QString copyCommandDupName() { return QStringLiteral("CopyCommandDup"); }
    static QString dragNDropName() { return QStringLiteral("DragNDrop"); }

private:
    std::unique_ptr<QSettings> m_settings;
    /// Whether m_settings is the Windows registry (DWORD values are then real REG_DWORD values).
    bool m_registry = false;
};

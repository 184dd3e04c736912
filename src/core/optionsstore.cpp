#include "optionsstore.h"

#include <QSettings>
#include <QtEndian>

#include <cmath>
#include <optional>

namespace {

QString notFound()
{
    return QStringLiteral("Not Found");
}

/// The settings group of `keyPath` relative to the program's key: "" for the key itself,
/// "Sub/Key" for a subkey, nothing for a key path outside the program's key. Registry key names
/// ignore letter case, and both "\" and "/" separate them.
std::optional<QString> groupOf(const QString& keyPath)
{
    const auto parts = [](const QString& path) {
        QString normalized = path;
        normalized.replace(u'\\', u'/');
        return normalized.split(u'/', Qt::SkipEmptyParts);
    };
    const QStringList own = parts(OptionsStore::keyPath());
    const QStringList asked = parts(keyPath);
    if (asked.size() < own.size()) {
        return std::nullopt;
    }
    for (qsizetype i = 0; i < own.size(); ++i) {
        if (asked.at(i).compare(own.at(i), Qt::CaseInsensitive) != 0) {
            return std::nullopt;
        }
    }
    return asked.mid(own.size()).join(u'/');
}

QString settingsKey(const QString& group, const QString& valueName)
{
    return group.isEmpty() ? valueName : group + u'/' + valueName;
}

QString dwordText(quint32 number)
{
    return QStringLiteral("%1").arg(number, 3, 10, QLatin1Char('0'));
}

/// A number as it was typed into a check box value: surrounding blanks allowed, a fraction rounds
/// to the nearest even whole number; anything else, or a number outside 16 bits, is not one.
std::optional<qint16> toInt16(const QString& text)
{
    const QString trimmed = text.trimmed();
    bool ok = false;
    const int whole = trimmed.toInt(&ok);
    if (ok) {
        if (whole < -32768 || whole > 32767) {
            return std::nullopt;
        }
        return static_cast<qint16>(whole);
    }
    const double number = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(number)) {
        return std::nullopt;
    }
    const double rounded = std::nearbyint(number);
    if (rounded < -32768.0 || rounded > 32767.0) {
        return std::nullopt;
    }
    return static_cast<qint16>(rounded);
}

/// "True"/"False" in any letter case, or a number (non-zero is true).
std::optional<bool> toBoolean(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) {
        return true;
    }
    if (trimmed.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) {
        return false;
    }
    bool ok = false;
    const double number = trimmed.toDouble(&ok);
    if (!ok) {
        return std::nullopt;
    }
    return number != 0.0;
}

QString checkValueText(qint16 value)
{
    return value != 0 ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

OptionsStore::OptionsStore()
{
#ifdef Q_OS_WIN
    m_settings = std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\SOFTWARE\\KELVEditor"),
                                             QSettings::NativeFormat);
    m_registry = true;
#else
    m_settings = std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("KELVEditor"),
                                             QStringLiteral("KELVEditor"));
#endif
}

OptionsStore::OptionsStore(const QString& iniFilePath)
    : m_settings(std::make_unique<QSettings>(iniFilePath, QSettings::IniFormat))
{
}

OptionsStore::~OptionsStore() = default;

QString OptionsStore::readValue(const QString& keyPath, const QString& valueName) const
{
    const std::optional<QString> group = groupOf(keyPath);
    if (!group || valueName.isEmpty()) {
        return notFound();
    }
    const QVariant value = m_settings->value(settingsKey(*group, valueName));
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QStringList:
        // A hand-edited INI value with a comma reads as a list; the stored text had the comma.
        return value.toStringList().join(QLatin1String(", "));
    case QMetaType::QByteArray: {
        // How a DWORD is kept in a settings file: its four bytes, least significant first.
        const QByteArray bytes = value.toByteArray();
        if (bytes.size() == 4) {
            return dwordText(qFromLittleEndian<quint32>(bytes.constData()));
        }
        return notFound();
    }
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        // The registry hands a REG_DWORD back as a number.
        return dwordText(static_cast<quint32>(value.toLongLong()));
    default:
        return notFound();
    }
}

void OptionsStore::writeValue(const QString& keyPath, const QString& valueName, int type, const QString& value)
{
    const std::optional<QString> group = groupOf(keyPath);
    if (!group || valueName.isEmpty()) {
        return;
    }
    const QString key = settingsKey(*group, valueName);
    if (type == DwordValue) {
        const quint32 number = static_cast<quint32>(value.trimmed().toLongLong());
        if (m_registry) {
            m_settings->setValue(key, number);
        } else {
            QByteArray bytes(4, '\0');
            qToLittleEndian(number, bytes.data());
            m_settings->setValue(key, bytes);
        }
    } else {
        m_settings->setValue(key, value);
    }
    m_settings->sync();
}

Options OptionsStore::loadOptions() const
{
    const auto number = [this](const QString& name) { return toInt16(readValue(keyPath(), name)).value_or(qint16(0)); };
    Options options;
    options.checkCopyCommand = number(checkCopyCommandName());
    options.hideItemsWithoutCommand = number(hideItemsWithoutCommandName());
    options.hideItemsCopyCommand = number(hideItemsCopyCommandName());
    options.copyCommandDup = toBoolean(readValue(keyPath(), copyCommandDupName())).value_or(false);
    options.dragNDrop = number(dragNDropName());
    return options;
}

void OptionsStore::saveOptions(const Options& options)
{
    const QString key = keyPath();
    writeValue(key, checkCopyCommandName(), StringValue, checkValueText(options.checkCopyCommand));
    writeValue(key, hideItemsWithoutCommandName(), StringValue, checkValueText(options.hideItemsWithoutCommand));
    writeValue(key, hideItemsCopyCommandName(), StringValue, checkValueText(options.hideItemsCopyCommand));
    writeValue(key, copyCommandDupName(), StringValue,
               options.copyCommandDup ? QStringLiteral("True") : QStringLiteral("False"));
    writeValue(key, dragNDropName(), StringValue, checkValueText(options.dragNDrop));
}

QString OptionsStore::keyPath()
{
    return QStringLiteral("SOFTWARE\\KELVEditor\\");
}

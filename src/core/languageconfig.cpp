#include "languageconfig.h"

#include "ansitextfile.h"

#include <QDir>
#include <QFileInfo>

#include <optional>
#include <utility>

namespace {

/// The whole number a text begins with, as a hand-written configuration line gives it: leading
/// blanks and a sign allowed, anything after the digits ignored; no digits, or a number that does
/// not fit 16 bits, is nothing.
std::optional<qint16> leadingNumber(QStringView text)
{
    qsizetype position = 0;
    while (position < text.size() && (text.at(position) == u' ' || text.at(position) == u'\t')) {
        ++position;
    }
    bool negative = false;
    if (position < text.size() && (text.at(position) == u'-' || text.at(position) == u'+')) {
        negative = text.at(position) == u'-';
        ++position;
    }
    qint64 value = 0;
    bool anyDigit = false;
    while (position < text.size() && text.at(position) >= u'0' && text.at(position) <= u'9') {
        value = value * 10 + (text.at(position).unicode() - u'0');
        anyDigit = true;
        if (value > 32768) {
            return std::nullopt;
        }
        ++position;
    }
    if (!anyDigit) {
        return std::nullopt;
    }
    value = negative ? -value : value;
    if (value < -32768 || value > 32767) {
        return std::nullopt;
    }
    return static_cast<qint16>(value);
}

QString extensionTag()
{
    return QStringLiteral("@extension=");
}

} // namespace

LanguageConfig::LanguageConfig(QString folder)
    : m_folder(std::move(folder))
{
}

QList<LanguageRecord> LanguageConfig::readLanguageTable() const
{
    QList<LanguageRecord> table;
    const QDir languages(QDir(m_folder).filePath(QStringLiteral("languages")));
    const QFileInfoList files = languages.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    const qsizetype tagLength = extensionTag().size();
    for (const QFileInfo& file : files) {
        // The language number is the first two characters of the file name ("01English.lng").
        const std::optional<qint16> number = leadingNumber(QStringView(file.fileName()).left(2));
        if (!number) {
            continue;
        }
        const std::optional<QStringList> lines = AnsiTextFile::readLines(file.filePath());
        if (!lines) {
            continue;
        }
        for (const QString& line : *lines) {
            if (line.left(tagLength).toLower() == extensionTag()) {
                table.append(LanguageRecord { *number, line.mid(tagLength) });
            }
        }
    }
    return table;
}

qint16 LanguageConfig::readConfiguredLanguage() const
{
    const QDir folder(m_folder);
    // The name must match exactly, even on file systems that ignore letter case.
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    if (!names.contains(QStringLiteral("Config.ini"), Qt::CaseSensitive)) {
        return 0;
    }
    const std::optional<QStringList> lines = AnsiTextFile::readLines(folder.filePath(QStringLiteral("Config.ini")));
    if (!lines) {
        return 0;
    }
    const QLatin1String tag("LANGU=");
    for (const QString& line : *lines) {
        if (line.startsWith(tag, Qt::CaseSensitive)) {
            return leadingNumber(QStringView(line).mid(tag.size())).value_or(qint16(0));
        }
    }
    return 0;
}

QString LanguageConfig::currentLanguageCode() const
{
    const qint16 configured = readConfiguredLanguage();
    const QList<LanguageRecord> table = readLanguageTable();
    for (const LanguageRecord& record : table) {
        if (record.number == configured) {
            return record.code;
        }
    }
    return {};
}

QString LanguageConfig::helpFilePath() const
{
    const QDir help(QDir(m_folder).filePath(QStringLiteral("Help")));
    QString code = currentLanguageCode();
    if (code.isEmpty() || !QFileInfo(help.filePath(code + QStringLiteral(".chm"))).isFile()) {
        code = QStringLiteral("en");
    }
    return help.filePath(code + QStringLiteral(".chm"));
}

QString LanguageConfig::htmlGuidePath() const
{
    const QDir help(QDir(m_folder).filePath(QStringLiteral("Help")));
    const QString page = QStringLiteral("/index.html");
    QString code = currentLanguageCode();
    if (code.isEmpty() || !QFileInfo(help.filePath(code + page)).isFile()) {
        code = QStringLiteral("en");
    }
    return help.filePath(code + page);
}

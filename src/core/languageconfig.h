#pragma once

#include <QList>
#include <QString>

/// One language a language file declares: the number its file name begins with and the code that
/// names its help file ("en" for Help/en.chm).
struct LanguageRecord
{
    qint16 number = 0;
    QString code;

    friend bool operator==(const LanguageRecord& left, const LanguageRecord& right)
    {
        return left.number == right.number && left.code == right.code;
    }
};

/// The language set-up beside the program: the language number in Config.ini, the language files
/// of the languages folder and the help file that follows from them. Everything is read afresh on
/// each call, so a change to the files takes effect the next time help is asked for.
class LanguageConfig
{
public:
    /// `folder` is the program's folder, holding Config.ini, languages/ and Help/.
    explicit LanguageConfig(QString folder);

    /// Every "@extension=" line (any letter case) of every file in the languages folder, files in
    /// name order, lines in file order. Files whose names do not begin with a number are skipped.
    QList<LanguageRecord> readLanguageTable() const;
    /// The number after "LANGU=" on the first line that begins with it (exact case); 0 without a
    /// file named exactly "Config.ini" or without such a line.
    qint16 readConfiguredLanguage() const;
    /// The code of the first language record with the configured number; empty when none has it.
    QString currentLanguageCode() const;
    /// <folder>/Help/<code>.chm, or <folder>/Help/en.chm when that file does not exist.
    QString helpFilePath() const;
    /// The first page of the same guide as HTML pages, for a system without a .chm viewer:
    /// <folder>/Help/<code>/index.html, or <folder>/Help/en/index.html when that file does not exist.
    QString htmlGuidePath() const;

private:
    QString m_folder;
};

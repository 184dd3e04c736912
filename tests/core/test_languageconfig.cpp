#include "core/languageconfig.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestLanguageConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("languages")));
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help")));
    }

    void withoutConfigAndLanguageZeroHelpIsEnglish()
    {
        QVERIFY(writeFile(QStringLiteral("languages/01English.lng"), "@extension=en\r\n"));
        QVERIFY(writeFile(QStringLiteral("languages/02Francais.lng"), "@extension=fr\r\n"));
        QVERIFY(writeFile(QStringLiteral("Help/fr.chm"), "ITSF"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.readConfiguredLanguage(), qint16(0));
        QCOMPARE(config.currentLanguageCode(), QString());
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

    void languTwoSelectsTheFileNumberedTwo()
    {
        QVERIFY(writeFile(QStringLiteral("languages/01English.lng"), "@extension=en\r\n"));
        QVERIFY(writeFile(QStringLiteral("languages/02Francais.lng"),
                          "Fran\xe7"
                          "ais\r\n@Extension=fr\r\n"));
        QVERIFY(writeFile(QStringLiteral("Help/fr.chm"), "ITSF"));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "[Options]\r\nLANGU=02\r\n"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.readConfiguredLanguage(), qint16(2));
        QCOMPARE(config.currentLanguageCode(), QStringLiteral("fr"));
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/fr.chm")));
    }

    void lowerCaseLanguLineIsNotRecognised()
    {
        QVERIFY(writeFile(QStringLiteral("languages/01English.lng"), "@extension=en\r\n"));
        QVERIFY(writeFile(QStringLiteral("languages/02Francais.lng"), "@extension=fr\r\n"));
        QVERIFY(writeFile(QStringLiteral("Help/fr.chm"), "ITSF"));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "langu=02\r\n"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.readConfiguredLanguage(), qint16(0));
        QCOMPARE(config.currentLanguageCode(), QString());
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

    void firstLanguLineCounts()
    {
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "x LANGU=05\nLANGU=03\nLANGU=04\n"));
        QCOMPARE(LanguageConfig(m_folder->path()).readConfiguredLanguage(), qint16(3));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=\r\n"));
        QCOMPARE(LanguageConfig(m_folder->path()).readConfiguredLanguage(), qint16(0));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=7 (Deutsch)\r"));
        QCOMPARE(LanguageConfig(m_folder->path()).readConfiguredLanguage(), qint16(7));
    }

    void configNameMustMatchExactly()
    {
        QVERIFY(writeFile(QStringLiteral("config.ini"), "LANGU=02\r\n"));
        QCOMPARE(LanguageConfig(m_folder->path()).readConfiguredLanguage(), qint16(0));
    }

    void languageNumberZeroIsUsedWithoutConfig()
    {
        QVERIFY(writeFile(QStringLiteral("languages/00Deutsch.lng"), "@extension=de\r\n"));
        QVERIFY(writeFile(QStringLiteral("Help/de.chm"), "ITSF"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.currentLanguageCode(), QStringLiteral("de"));
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/de.chm")));
    }

    void missingHelpFileOfTheLanguageFallsBackToEnglish()
    {
        QVERIFY(writeFile(QStringLiteral("languages/02Francais.lng"), "@extension=fr\r\n"));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=02\r\n"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.currentLanguageCode(), QStringLiteral("fr"));
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

    void htmlGuideFollowsTheLanguageLikeTheHelpFile()
    {
        QVERIFY(writeFile(QStringLiteral("languages/01English.lng"), "@extension=en\r\n"));
        QVERIFY(writeFile(QStringLiteral("languages/02Francais.lng"), "@extension=fr\r\n"));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=02\r\n"));
        const LanguageConfig config(m_folder->path());
        // Without the French pages the English ones are shown.
        QCOMPARE(config.htmlGuidePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en/index.html")));
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help/fr")));
        QVERIFY(writeFile(QStringLiteral("Help/fr/index.html"), "<html></html>"));
        QCOMPARE(config.htmlGuidePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/fr/index.html")));
        // The pages do not depend on the compiled file, nor the compiled file on the pages.
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

    void htmlGuideOfAnUnknownLanguageIsEnglish()
    {
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=07\r\n"));
        QCOMPARE(LanguageConfig(m_folder->path()).htmlGuidePath(),
                 QDir(m_folder->path()).filePath(QStringLiteral("Help/en/index.html")));
    }

    void tableHoldsEveryExtensionLineInOrder()
    {
        QVERIFY(writeFile(QStringLiteral("languages/02Multi.lng"),
                          "@language=Multi\r\n@EXTENSION=pt\r\nnot @extension=xx\r\n@extension=br\r\n"));
        QVERIFY(writeFile(QStringLiteral("languages/01English.lng"), "@extension=en"));
        QVERIFY(writeFile(QStringLiteral("languages/readme.txt"), "@extension=zz\r\n"));
        // Folders inside the languages folder are not language files.
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("languages/03Folder.lng")));
        const QList<LanguageRecord> expected {
            LanguageRecord { 1, QStringLiteral("en") },
            LanguageRecord { 2, QStringLiteral("pt") },
            LanguageRecord { 2, QStringLiteral("br") },
        };
        QCOMPARE(LanguageConfig(m_folder->path()).readLanguageTable(), expected);
    }

    void firstRecordWithTheNumberWins()
    {
        QVERIFY(writeFile(QStringLiteral("languages/02Multi.lng"), "@extension=pt\r\n@extension=br\r\n"));
        QVERIFY(writeFile(QStringLiteral("Config.ini"), "LANGU=2\r\n"));
        QCOMPARE(LanguageConfig(m_folder->path()).currentLanguageCode(), QStringLiteral("pt"));
    }

    void withoutLanguagesFolderTheTableIsEmpty()
    {
        QVERIFY(QDir(QDir(m_folder->path()).filePath(QStringLiteral("languages"))).removeRecursively());
        const LanguageConfig config(m_folder->path());
        QVERIFY(config.readLanguageTable().isEmpty());
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

    void shippedFilesSelectEnglish()
    {
        // Config.ini and the languages folder as they are installed beside the program.
        const QDir shipped(QStringLiteral(KELV_RUNTIME_FILES_DIR));
        QVERIFY(QFile::copy(shipped.filePath(QStringLiteral("Config.ini")),
                            QDir(m_folder->path()).filePath(QStringLiteral("Config.ini"))));
        const QStringList languageFiles
            = QDir(shipped.filePath(QStringLiteral("languages"))).entryList(QDir::Files, QDir::Name);
        QVERIFY(!languageFiles.isEmpty());
        for (const QString& name : languageFiles) {
            QVERIFY(QFile::copy(shipped.filePath(QStringLiteral("languages/") + name),
                                QDir(m_folder->path()).filePath(QStringLiteral("languages/") + name)));
        }
        QVERIFY(writeFile(QStringLiteral("Help/en.chm"), "ITSF"));
        const LanguageConfig config(m_folder->path());
        QCOMPARE(config.readConfiguredLanguage(), qint16(1));
        QCOMPARE(config.readLanguageTable(), (QList<LanguageRecord> { LanguageRecord { 1, QStringLiteral("en") } }));
        QCOMPARE(config.currentLanguageCode(), QStringLiteral("en"));
        QCOMPARE(config.helpFilePath(), QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm")));
    }

private:
    bool writeFile(const QString& relativePath, const QByteArray& bytes)
    {
        return writeBytes(QDir(m_folder->path()).filePath(relativePath), bytes);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestLanguageConfig)
#include "test_languageconfig.moc"

#include "core/programfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestProgramFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Keeps the per-user folder away from the real one of whoever runs the tests.
        QStandardPaths::setTestModeEnabled(true);
    }

    void cleanup() { ProgramFolder::setOverride(QString()); }

    void withoutOverrideItIsTheExecutablesFolder()
    {
        QCOMPARE(ProgramFolder::path(), QCoreApplication::applicationDirPath());
    }

    void writableFolderIsUsedForEverything()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        ProgramFolder::setOverride(folder.path());
        QCOMPARE(ProgramFolder::path(), folder.path());
        QVERIFY(ProgramFolder::isWritableFolder(folder.path()));
        QCOMPARE(ProgramFolder::writablePath(), folder.path());
        QCOMPARE(ProgramFolder::writableFilePath(QStringLiteral("Recent.ini")),
                 QDir(folder.path()).filePath(QStringLiteral("Recent.ini")));
        QCOMPARE(ProgramFolder::readableFilePath(QStringLiteral("Config.ini")),
                 QDir(folder.path()).filePath(QStringLiteral("Config.ini")));
        // Finding out leaves nothing behind.
        QVERIFY(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
    }

    void emptyOverrideGoesBackToTheExecutablesFolder()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        ProgramFolder::setOverride(folder.path());
        ProgramFolder::setOverride(QString());
        QCOMPARE(ProgramFolder::path(), QCoreApplication::applicationDirPath());
    }

    void missingFolderIsNotWritable()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(!ProgramFolder::isWritableFolder(QDir(folder.path()).filePath(QStringLiteral("missing"))));
        QVERIFY(!ProgramFolder::isWritableFolder(QString()));
    }

    void readOnlyFolderFallsBackToThePerUserFolder()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString programFolder = QDir(folder.path()).filePath(QStringLiteral("program"));
        QVERIFY(QDir().mkpath(programFolder));
        QVERIFY(writeBytes(QDir(programFolder).filePath(QStringLiteral("Recent.ini")), "shipped.ini\r\n"));
        QVERIFY(writeBytes(QDir(programFolder).filePath(QStringLiteral("Config.ini")), "LANGU=01\r\n"));
        QVERIFY(QFile::setPermissions(programFolder,
                                      QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup
                                          | QFile::ReadOther | QFile::ExeOther));
        const auto restore = qScopeGuard([programFolder] {
            QFile::setPermissions(programFolder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        });

        // An administrator writes anywhere; then there is nothing to fall back from.
        QFile probe(QDir(programFolder).filePath(QStringLiteral("probe")));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.close();
            probe.remove();
            QSKIP("This user can write to a read-only folder (administrator); the fallback cannot be seen.");
        }

        ProgramFolder::setOverride(programFolder);
        QVERIFY(!ProgramFolder::isWritableFolder(programFolder));
        const QString userFolder = ProgramFolder::userDataPath();
        QVERIFY(!userFolder.isEmpty());
        QDir(userFolder).removeRecursively();
        QCOMPARE(ProgramFolder::writablePath(), userFolder);
        QVERIFY(QFileInfo(userFolder).isDir());
        QCOMPARE(ProgramFolder::writableFilePath(QStringLiteral("Recent.ini")),
                 QDir(userFolder).filePath(QStringLiteral("Recent.ini")));

        // Until the program has written its own copy, the shipped file is the one read.
        QCOMPARE(ProgramFolder::readableFilePath(QStringLiteral("Recent.ini")),
                 QDir(programFolder).filePath(QStringLiteral("Recent.ini")));
        QVERIFY(writeBytes(QDir(userFolder).filePath(QStringLiteral("Recent.ini")), "mine.ini\r\n"));
        QCOMPARE(ProgramFolder::readableFilePath(QStringLiteral("Recent.ini")),
                 QDir(userFolder).filePath(QStringLiteral("Recent.ini")));
        QCOMPARE(ProgramFolder::readableFilePath(QStringLiteral("Config.ini")),
                 QDir(programFolder).filePath(QStringLiteral("Config.ini")));
        QDir(userFolder).removeRecursively();
    }
};

QTEST_GUILESS_MAIN(TestProgramFolder)
#include "test_programfolder.moc"

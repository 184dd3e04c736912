#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

struct RunResult
{
    bool finished = false;
    int exitCode = -1;
    QByteArray err;
};

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<cannot open>");
}

#ifdef Q_OS_UNIX
struct stat statusOf(const QString& path)
{
    struct stat status
    {
    };
    ::stat(QFile::encodeName(path).constData(), &status);
    return status;
}
#endif

} // namespace

/// How `kelvmenu format` and `kelvmenu edit` replace a menu file: completely or not at all, keeping
/// the file's permissions and owner, and telling the truth when the disk fails them.
class TestKelvMenuSaving : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString& name) const { return m_dir->filePath(name); }

    /// Runs kelvmenu in the test's folder; with `failingFlush`, every flush of a file to the disk
    /// fails with an input/output error (the preloaded library of failingfsync.cpp).
    RunResult run(const QStringList& arguments, bool failingFlush = false, const QByteArray& input = QByteArray()) const
    {
        QProcess process;
        process.setWorkingDirectory(m_dir->path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
#ifdef KELV_FAILING_FSYNC_PATH
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(KELV_FAILING_FSYNC_PATH));
        // A sanitizer build would refuse a library loaded before its own.
        const QString asan = environment.value(QStringLiteral("ASAN_OPTIONS"));
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           asan + (asan.isEmpty() ? QString() : QStringLiteral(":"))
                               + QStringLiteral("verify_asan_link_order=0"));
#endif
        if (failingFlush) {
            environment.insert(QStringLiteral("KELV_TEST_FAIL_FSYNC"), QStringLiteral("1"));
        }
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(KELVMENU_PATH), arguments);
        process.write(input);
        process.closeWriteChannel();
        RunResult result;
        result.finished = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
        result.err = process.readAllStandardError();
        return result;
    }

    RunResult format(bool failingFlush = false) const
    {
        return run({ QStringLiteral("format"), QStringLiteral("messy.ini") }, failingFlush);
    }

    /// The files of the test's folder: whatever a save leaves behind shows here.
    QStringList files() const
    {
        return QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    static void skipWithoutThePreload()
    {
#ifndef KELV_FAILING_FSYNC_PATH
        QSKIP("a failing flush is injected through LD_PRELOAD, which this system does not have");
#endif
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(QFile::exists(QStringLiteral(KELVMENU_PATH)), KELVMENU_PATH);
    }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        // messy.ini: a menu file that format rewrites; archive.ini: one that edit changes.
        for (const QString& name : { QStringLiteral("messy.ini"), QStringLiteral("archive.ini") }) {
            QVERIFY(QFile::copy(QStringLiteral(KELV_TEST_DATA_DIR "/cli/") + name, path(name)));
            QFile::setPermissions(path(name), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        }
    }

    void cleanup()
    {
        m_dir.reset();
    }

    void aFailedFlushToTheDiskIsAFailedFormat()
    {
        skipWithoutThePreload();
        const QByteArray before = fileBytes(path(QStringLiteral("messy.ini")));
        const QStringList filesBefore = files();
        const RunResult failed = format(true);
        QVERIFY(failed.finished);
        QCOMPARE(failed.exitCode, 5);
        QCOMPARE(failed.err,
                 QByteArray("messy.ini: cannot write the menu file: Path/File access error: the file could "
                            "not be flushed to the disk (Input/output error), so it was not saved\n"));
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), before);
        QCOMPARE(files(), filesBefore);

        // The same run with the disk working writes the file: the failure came from the flush.
        const RunResult written = format();
        QCOMPARE(written.exitCode, 0);
        QVERIFY(fileBytes(path(QStringLiteral("messy.ini"))) != before);
        QCOMPARE(files(), filesBefore);
    }

    void aFailedFlushToTheDiskIsAFailedEdit()
    {
        skipWithoutThePreload();
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const QStringList filesBefore = files();
        const QByteArray ops = R"([{"op": "rename", "key": "E0", "caption": "Renamed"}])";
        const RunResult inPlace
            = run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("-") }, true, ops);
        QCOMPARE(inPlace.exitCode, 5);
        QVERIFY2(inPlace.err.contains("could not be flushed to the disk (Input/output error)"), inPlace.err);
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);
        QCOMPARE(files(), filesBefore);

        const RunResult toOther = run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("-"),
                                        QStringLiteral("-o"), QStringLiteral("out.ini") },
                                      true, ops);
        QCOMPARE(toOther.exitCode, 5);
        QCOMPARE(files(), filesBefore);
    }

    void formatAndEditKeepThePermissionBits_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("0640") << 0640;
        QTest::newRow("0600") << 0600;
        QTest::newRow("0660") << 0660;
    }

    void formatAndEditKeepThePermissionBits()
    {
#ifdef Q_OS_UNIX
        QFETCH(int, mode);
        QCOMPARE(::chmod(QFile::encodeName(path(QStringLiteral("messy.ini"))).constData(), mode_t(mode)), 0);
        QCOMPARE(format().exitCode, 0);
        QCOMPARE(int(statusOf(path(QStringLiteral("messy.ini"))).st_mode & 07777), mode);

        QCOMPARE(::chmod(QFile::encodeName(path(QStringLiteral("archive.ini"))).constData(), mode_t(mode)), 0);
        const RunResult edited = run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("-") },
                                     false, R"([{"op": "rename", "key": "E0", "caption": "Renamed"}])");
        QCOMPARE(edited.exitCode, 0);
        QCOMPARE(int(statusOf(path(QStringLiteral("archive.ini"))).st_mode & 07777), mode);
#else
        QSKIP("permission bits are a Unix thing");
#endif
    }

    void formatKeepsTheOwnerAndGroup()
    {
#ifdef Q_OS_UNIX
        if (::geteuid() != 0) {
            QSKIP("giving a file to another user takes an administrator; run the tests as root to check that "
                  "kelvmenu keeps the owner and group of the file it replaces");
        }
        const QByteArray name = QFile::encodeName(path(QStringLiteral("messy.ini")));
        QCOMPARE(::chown(name.constData(), 4242, 4343), 0);
        QCOMPARE(::chmod(name.constData(), 0640), 0);
        QCOMPARE(format().exitCode, 0);
        const struct stat status = statusOf(path(QStringLiteral("messy.ini")));
        QCOMPARE(status.st_uid, uid_t(4242));
        QCOMPARE(status.st_gid, gid_t(4343));
        QCOMPARE(int(status.st_mode & 07777), 0640);
#else
        QSKIP("file owners are a Unix thing");
#endif
    }

    void aFolderThatCannotBeWrittenIsNamed()
    {
#ifdef Q_OS_UNIX
        const QByteArray before = fileBytes(path(QStringLiteral("messy.ini")));
        const QByteArray folder = QFile::encodeName(m_dir->path());
        QCOMPARE(::chmod(folder.constData(), 0555), 0);
        const RunResult result = format();
        ::chmod(folder.constData(), 0700);
        if (::geteuid() == 0) {
            QSKIP("an administrator writes into any folder: the message for a folder that cannot be written "
                  "cannot be seen as root");
        }
        QCOMPARE(result.exitCode, 5);
        const QString expected = QStringLiteral("messy.ini: cannot write the menu file: Permission denied: the folder "
                                                "%1 cannot be written, so %2 cannot be replaced\n")
                                     .arg(m_dir->path(), path(QStringLiteral("messy.ini")));
        QCOMPARE(QString::fromUtf8(result.err), expected);
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), before);
#else
        QSKIP("folder permissions are a Unix thing here");
#endif
    }
};

QTEST_GUILESS_MAIN(TestKelvMenuSaving)
#include "test_kelvmenusaving.moc"

#include "core/programfolder.h"
#include "core/recoverystore.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "menufile/menufixtures.h"
#include "model/menudocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <map>
#include <memory>
#include <thread>

namespace {

/// A menu of `count` items whose first caption is `caption`, changed since it was opened.
MenuDocument changedMenu(int count, const QString& caption, const QString& path = QString())
{
    MenuDocument document = flatMenu(count);
    document.items[0].caption = caption;
    document.filePath = path;
    document.saved = false;
    return document;
}

/// The first caption of a copy as it reads back; empty when it does not read.
QString firstCaptionOf(const RecoveryStore& store, const RecoveryCopy& copy)
{
    MenuDocument document;
    return store.readCopy(copy, document).ok() ? document.items.constFirst().caption : QString();
}

constexpr int aDay = 24 * 3600 * 1000;

/// The documents of an editor and its recovery store, as the editor holds them.
struct Editor
{
    /// With the default delay of a day, changes wait for waitForWrites(): no write comes on its own.
    explicit Editor(const QString& folder, int writeDelay = aDay)
        : store(folder, [this](qint16 index) -> const MenuDocument* {
            const auto found = documents.find(index);
            return found != documents.end() ? &found->second : nullptr;
        })
    {
        store.setWriteDelay(writeDelay);
    }

    /// Document `index` becomes `document`, and the change is noted.
    void change(qint16 index, const MenuDocument& document, const QString& caption,
                const FileIdentity& identity = FileIdentity())
    {
        documents[index] = document;
        store.noteChanged(index, caption, identity);
    }

    std::map<qint16, MenuDocument> documents;
    RecoveryStore store;
};

/// A child editor process (recoverychild.cpp) that has noted its changes and has them on disk.
class ChildEditor
{
public:
    ChildEditor(const QString& folder, const QString& mode, const QString& label)
    {
        m_process.start(QStringLiteral(KELV_RECOVERY_CHILD_PATH), { folder, mode, label });
    }

    ~ChildEditor()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(30000);
        }
    }

    ChildEditor(const ChildEditor&) = delete;
    ChildEditor& operator=(const ChildEditor&) = delete;

    /// Waits for "ready": the child's copies are written.
    bool waitUntilReady()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(30000)) {
                return false;
            }
        }
        return m_process.readLine() == "ready\n";
    }

    /// Ends the child as a crash does: SIGKILL, no chance to clean up.
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(30000);
    }

    bool waitForNormalEnd()
    {
        return m_process.waitForFinished(30000) && m_process.exitStatus() == QProcess::NormalExit;
    }
    int exitCode() const { return m_process.exitCode(); }
    qint64 processId() const { return m_pid; }
    void notePid() { m_pid = m_process.processId(); }

private:
    QProcess m_process;
    qint64 m_pid = 0;
};

} // namespace

class TestRecoveryStore : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QString folder() const { return m_dir->filePath(QStringLiteral("recovery")); }

    QStringList files() const
    {
        return QDir(folder()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    QStringList filesEndingWith(const QString& suffix) const
    {
        QStringList found;
        for (const QString& file : files()) {
            if (file.endsWith(suffix)) {
                found.append(file);
            }
        }
        return found;
    }

    std::unique_ptr<Editor> editor() const { return std::make_unique<Editor>(folder()); }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(QStringLiteral(KELV_RECOVERY_CHILD_PATH)), KELV_RECOVERY_CHILD_PATH); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void cleanup() { m_dir.reset(); }

    // Writing and removing this editor's copies.

    void aChangeIsWrittenWithItsNotesAndReadsBack()
    {
        const QDateTime noted(QDate(2031, 5, 6), QTime(7, 8, 9, 10), Qt::UTC);
        QTemporaryDir menus;
        const QString menuPath = menus.filePath(QStringLiteral("tools.ini"));
        FileIdentity identity;
        writeMenuFile(flatMenu(4), menuPath, &identity);
        MenuDocument document = changedMenu(4, QStringLiteral("Caf\u00E9"), menuPath);
        document.items[1].commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") });
        {
            auto current = editor();
            QVERIFY(current->store.isActive());
            current->store.setClock([noted] { return noted; });
            QSignalSpy written(&current->store, &RecoveryStore::copyWritten);
            current->change(2, document, QStringLiteral("tools.ini"), identity);
            QVERIFY(current->store.waitForWrites());
            QTRY_COMPARE(written.size(), 1);
            QCOMPARE(written.constFirst().constFirst().value<qint16>(), qint16(2));
            QCOMPARE(filesEndingWith(QStringLiteral("-2.ini")).size(), 1);
            QCOMPARE(filesEndingWith(QStringLiteral("-2.json")).size(), 1);
            QCOMPARE(filesEndingWith(QStringLiteral(".lock")).size(), 1);
            QCOMPARE(files().size(), 3);
            // Its own copies are never offered, nor to another store of the same running process.
            QVERIFY(current->store.claimLeftCopies().isEmpty());
            QVERIFY(editor()->store.claimLeftCopies().isEmpty());
        } // ends as an editor that did not remove the copy: it stays, and its lock goes

        QCOMPARE(filesEndingWith(QStringLiteral(".lock")).size(), 0);
        auto next = editor();
        const QList<RecoveryCopy> copies = next->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        const RecoveryCopy& copy = copies.constFirst();
        QCOMPARE(copy.menuPath, menuPath);
        QCOMPARE(copy.caption, QStringLiteral("tools.ini"));
        QCOMPARE(copy.time, noted);
        QCOMPARE(copy.itemCount, 4);
        QCOMPARE(copy.processId, QCoreApplication::applicationPid());
        QCOMPARE(copy.fileIdentity, identity);
        QCOMPARE(copy.fileIdentity.changeAt(menuPath), FileIdentity::Change::Unchanged);

        MenuDocument read;
        QVERIFY(next->store.readCopy(copy, read).ok());
        QCOMPARE(menuFileBytes(read), menuFileBytes(document));
        QCOMPARE(read.filePath, menuPath);
        QVERIFY(!read.saved);
    }

    void changesWithinTheDelayAreWrittenOnce()
    {
        auto current = editor();
        QSignalSpy written(&current->store, &RecoveryStore::copyWritten);
        for (int edit = 1; edit <= 5; ++edit) {
            current->change(1, changedMenu(3, QStringLiteral("edit %1").arg(edit)), QStringLiteral("New menu 1"));
        }
        QVERIFY(current->store.waitForWrites());
        QTRY_COMPARE(written.size(), 1);
        current.reset();
        auto next = editor();
        const QList<RecoveryCopy> copies = next->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        QCOMPARE(firstCaptionOf(next->store, copies.constFirst()), QStringLiteral("edit 5"));
    }

    void theDelayWritesTheLatestChangeWithoutBeingAsked()
    {
        Editor editor(folder(), 10);
        QSignalSpy written(&editor.store, &RecoveryStore::copyWritten);
        editor.change(1, changedMenu(3, QStringLiteral("first")), QStringLiteral("New menu 1"));
        editor.change(1, changedMenu(3, QStringLiteral("second")), QStringLiteral("New menu 1"));
        QTRY_COMPARE(written.size(), 1);
        MenuDocument onDisk;
        QVERIFY(
            readMenuFile(QDir(folder()).filePath(filesEndingWith(QStringLiteral("-1.ini")).constFirst()), onDisk).ok());
        QCOMPARE(onDisk.items.constFirst().caption, QStringLiteral("second"));
    }

    void aSavedDocumentHasNoCopy()
    {
        auto current = editor();
        MenuDocument document = changedMenu(3, QStringLiteral("changed"));
        current->change(1, document, QStringLiteral("a.ini"));
        QVERIFY(current->store.waitForWrites());
        QCOMPARE(filesEndingWith(QStringLiteral("-1.ini")).size(), 1);
        // Saved, or undone back to the state of the file.
        document.saved = true;
        current->change(1, document, QStringLiteral("a.ini"));
        QVERIFY(current->store.waitForWrites());
        QCOMPARE(files(), filesEndingWith(QStringLiteral(".lock")));
    }

    void aRemovalComesAfterTheWriteOfTheSameDocument()
    {
        // Written on the other thread while the removal is asked for: the copy must not come back.
        auto current = editor();
        const MenuDocument large = changedMenu(20000, QStringLiteral("large"));
        for (int round = 0; round < 20; ++round) {
            current->change(1, round % 2 == 0 ? large : changedMenu(3, QStringLiteral("small")),
                            QStringLiteral("New menu 1"));
            current->store.waitForWrites(0);
            current->store.remove(1);
            QVERIFY(current->store.waitForWrites());
            QCOMPARE(files(), filesEndingWith(QStringLiteral(".lock")));
        }
    }

    void removeAllRemovesEveryCopyAndANormalEndLeavesNothing()
    {
        auto current = editor();
        for (qint16 index = 1; index <= 3; ++index) {
            current->change(index, changedMenu(3, QStringLiteral("menu %1").arg(index)), QStringLiteral("x"));
        }
        QVERIFY(current->store.waitForWrites());
        QCOMPARE(files().size(), 7);
        // One more change still waiting is dropped too.
        current->change(4, changedMenu(3, QStringLiteral("menu 4")), QStringLiteral("x"));
        current->store.removeAll();
        QVERIFY(current->store.waitForWrites());
        QCOMPARE(files(), filesEndingWith(QStringLiteral(".lock")));
        current.reset();
        QCOMPARE(files(), QStringList());
    }

    void aCopyIsNeverSeenHalfWritten()
    {
        auto current = editor();
        const MenuDocument small = changedMenu(10, QStringLiteral("small"));
        const MenuDocument large = changedMenu(5000, QStringLiteral("large"));
        current->change(1, small, QStringLiteral("New menu 1"));
        QVERIFY(current->store.waitForWrites());
        const QString copyPath = QDir(folder()).filePath(filesEndingWith(QStringLiteral("-1.ini")).constFirst());

        std::atomic<bool> done { false };
        std::atomic<int> reads { 0 };
        std::atomic<int> torn { 0 };
        std::thread reader([&] {
            while (!done) {
                MenuDocument document;
                const MenuReadResult result = readMenuFile(copyPath, document);
                if (!result.ok() || (document.items.size() != 10 && document.items.size() != 5000)) {
                    ++torn;
                }
                ++reads;
            }
        });
        for (int round = 0; round < 40; ++round) {
            current->change(1, round % 2 == 0 ? large : small, QStringLiteral("New menu 1"));
            QVERIFY(current->store.waitForWrites());
        }
        done = true;
        reader.join();
        QVERIFY(reads > 0);
        QCOMPARE(torn.load(), 0);
    }

    void aCopyWhoseLinkNamesNoItemIsStillWritten()
    {
        auto current = editor();
        QSignalSpy failed(&current->store, &RecoveryStore::copyFailed);
        MenuDocument document = changedMenu(3, QStringLiteral("pasted"));
        // A pasted record keeps a link to an item deleted since: the menu cannot be saved as it is.
        document.items[2].copiesCommands = true;
        document.items[2].copyKey = QStringLiteral("E99");
        document.items[2].commands.append(Command { QString(), QStringLiteral("own command") });
        current->change(1, document, QStringLiteral("New menu 1"));
        QVERIFY(current->store.waitForWrites());
        QCoreApplication::processEvents();
        QCOMPARE(failed.size(), 0);
        current.reset();
        auto next = editor();
        const QList<RecoveryCopy> copies = next->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        MenuDocument read;
        QVERIFY(next->store.readCopy(copies.constFirst(), read).ok());
        QCOMPARE(read.items.at(2).commands.at(1).command, QStringLiteral("own command"));
    }

    void aCopyThatCannotBeWrittenIsReportedWithItsPath()
    {
        auto current = editor();
        QSignalSpy failed(&current->store, &RecoveryStore::copyFailed);
        current->change(1, changedMenu(3, QStringLiteral("x")), QStringLiteral("New menu 1"));
        QVERIFY(current->store.waitForWrites());
        // A folder where the copy should go.
        const QString copyPath = QDir(folder()).filePath(filesEndingWith(QStringLiteral("-1.ini")).constFirst());
        QVERIFY(QFile::remove(copyPath));
        QVERIFY(QDir(folder()).mkdir(QFileInfo(copyPath).fileName()));
        current->change(1, changedMenu(3, QStringLiteral("y")), QStringLiteral("New menu 1"));
        QVERIFY(current->store.waitForWrites());
        QTRY_COMPARE(failed.size(), 1);
        QCOMPARE(failed.constFirst().at(0).value<qint16>(), qint16(1));
        QVERIFY2(
            failed.constFirst().at(1).toString().startsWith(
                QStringLiteral("The recovery copy %1 cannot be written: ").arg(QDir::toNativeSeparators(copyPath))),
            qPrintable(failed.constFirst().at(1).toString()));
        QVERIFY(QDir(folder()).rmdir(QFileInfo(copyPath).fileName()));
    }

    void aFolderThatCannotBeMadeLeavesTheStoreHarmless()
    {
        const QString file = m_dir->filePath(QStringLiteral("a-file"));
        QFile plain(file);
        QVERIFY(plain.open(QIODevice::WriteOnly));
        plain.close();
        Editor harmless(QDir(file).filePath(QStringLiteral("recovery")));
        QVERIFY(!harmless.store.isActive());
        harmless.change(1, changedMenu(3, QStringLiteral("x")), QStringLiteral("New menu 1"));
        QVERIFY(harmless.store.waitForWrites());
        QVERIFY(harmless.store.claimLeftCopies().isEmpty());
    }

    void theCopiesLiveInThePerUserDataFolderNeverInTheProgramsFolder()
    {
        QStandardPaths::setTestModeEnabled(true);
        QTemporaryDir programFolder;
        ProgramFolder::setOverride(programFolder.path());
        QVERIFY(ProgramFolder::isWritableFolder(programFolder.path()));
        const QString expected = QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
                                     .filePath(QStringLiteral("recovery"));
        QCOMPARE(RecoveryStore::defaultFolder(), expected);
        QVERIFY(!RecoveryStore::defaultFolder().startsWith(programFolder.path()));
        ProgramFolder::setOverride(QString());
        QStandardPaths::setTestModeEnabled(false);
    }

    // Copies left by editors that no longer run.

    void aClaimedCopyIsOfferedToNoOtherEditorUntilLeftForTheNextStart()
    {
        editor()->change(1, changedMenu(3, QStringLiteral("left")), QStringLiteral("New menu 1"));
        auto first = editor();
        const QList<RecoveryCopy> copies = first->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        // An editor started at the same time finds it claimed.
        auto second = editor();
        QVERIFY(second->store.claimLeftCopies().isEmpty());
        first->store.leaveForNextStart(copies.constFirst());
        const QList<RecoveryCopy> again = second->store.claimLeftCopies();
        QCOMPARE(again.size(), 1);
        QCOMPARE(firstCaptionOf(second->store, again.constFirst()), QStringLiteral("left"));
    }

    void aDiscardedCopyIsGoneWithItsEditorsLock()
    {
        editor()->change(1, changedMenu(3, QStringLiteral("gone")), QStringLiteral("New menu 1"));
        auto current = editor();
        const QList<RecoveryCopy> copies = current->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        current->store.discardCopy(copies.constFirst());
        QCOMPARE(files(), filesEndingWith(QStringLiteral(".lock")));
        QCOMPARE(files().size(), 1); // this store's own lock only
        QVERIFY(editor()->store.claimLeftCopies().isEmpty());
    }

    void aRecoveredCopyBecomesTheCopyOfTheNewDocumentAtOnce()
    {
        QTemporaryDir menus;
        const QString menuPath = menus.filePath(QStringLiteral("a.ini"));
        editor()->change(1, changedMenu(3, QStringLiteral("recovered"), menuPath), QStringLiteral("a.ini"));
        auto current = editor();
        const QList<RecoveryCopy> copies = current->store.claimLeftCopies();
        QCOMPARE(copies.size(), 1);
        MenuDocument document;
        QVERIFY(current->store.recoverCopy(copies.constFirst(), 7, document).ok());
        QCOMPARE(document.items.constFirst().caption, QStringLiteral("recovered"));
        QCOMPARE(document.filePath, menuPath);
        QCOMPARE(document.windowIndex, qint16(7));
        QVERIFY(!document.saved);
        // It is this running editor's copy now: offered to nobody else, kept by it.
        QCOMPARE(filesEndingWith(QStringLiteral("-7.ini")).size(), 1);
        QCOMPARE(filesEndingWith(QStringLiteral(".ini")).size(), 1);
        QVERIFY(editor()->store.claimLeftCopies().isEmpty());
        // Saved as an editor saves it: the copy goes.
        current->store.remove(7);
        QVERIFY(current->store.waitForWrites());
        QCOMPARE(filesEndingWith(QStringLiteral(".ini")).size(), 0);
    }

    void filesADeadEditorWasWritingAreRemoved()
    {
        editor()->change(1, changedMenu(3, QStringLiteral("x")), QStringLiteral("New menu 1"));
        const QString copy = filesEndingWith(QStringLiteral("-1.ini")).constFirst();
        QFile half(QDir(folder()).filePath(copy + QStringLiteral(".Ab12Cd")));
        QVERIFY(half.open(QIODevice::WriteOnly));
        half.write("KELV - Me");
        half.close();
        QCOMPARE(editor()->store.claimLeftCopies().size(), 1);
        QVERIFY(!half.exists());
    }

    // Other processes.

    void aKilledEditorsCopiesAreOfferedWithTheirLatestChange()
    {
        ChildEditor child(folder(), QStringLiteral("crash"), QStringLiteral("one"));
        QVERIFY(child.waitUntilReady());
        child.notePid();
        child.kill();

        auto current = editor();
        const QList<RecoveryCopy> copies = current->store.claimLeftCopies();
        QCOMPARE(copies.size(), 2);
        QStringList captions;
        for (const RecoveryCopy& copy : copies) {
            QCOMPARE(copy.processId, child.processId());
            captions.append(copy.caption);
            MenuDocument document;
            QVERIFY(current->store.readCopy(copy, document).ok());
            if (copy.caption == QLatin1String("New menu 1")) {
                QVERIFY(copy.menuPath.isEmpty());
                QCOMPARE(copy.itemCount, 3);
                QCOMPARE(document.items.constFirst().caption, QStringLiteral("one edit 3"));
            } else {
                QCOMPARE(copy.menuPath, QStringLiteral("/menus/one.ini"));
                QCOMPARE(copy.itemCount, 5);
                QCOMPARE(document.items.at(4).caption, QStringLiteral("one changed"));
                QCOMPARE(document.filePath, QStringLiteral("/menus/one.ini"));
            }
        }
        captions.sort();
        QCOMPARE(captions, QStringList({ QStringLiteral("New menu 1"), QStringLiteral("one.ini") }));
    }

    void aRunningEditorsCopiesAreNotOfferedAndTwoEditorsKeepTheirOwn()
    {
        ChildEditor first(folder(), QStringLiteral("crash"), QStringLiteral("first"));
        ChildEditor second(folder(), QStringLiteral("crash"), QStringLiteral("second"));
        QVERIFY(first.waitUntilReady());
        QVERIFY(second.waitUntilReady());
        // Both wrote a copy of their document 1 and 2, each its own.
        QCOMPARE(filesEndingWith(QStringLiteral("-1.ini")).size(), 2);
        QCOMPARE(filesEndingWith(QStringLiteral("-2.ini")).size(), 2);
        auto current = editor();
        QVERIFY(current->store.claimLeftCopies().isEmpty());

        second.kill();
        QList<RecoveryCopy> copies = current->store.claimLeftCopies();
        QCOMPARE(copies.size(), 2);
        for (const RecoveryCopy& copy : std::as_const(copies)) {
            const QString caption = firstCaptionOf(current->store, copy);
            QVERIFY2(caption == QLatin1String("second edit 3") || caption == QLatin1String("Item 1"),
                     qPrintable(caption));
        }
        first.kill();
        copies = current->store.claimLeftCopies();
        QCOMPARE(copies.size(), 2);
        for (const RecoveryCopy& copy : std::as_const(copies)) {
            const QString caption = firstCaptionOf(current->store, copy);
            QVERIFY2(caption == QLatin1String("first edit 3") || caption == QLatin1String("Item 1"),
                     qPrintable(caption));
        }
    }

    void aNormalQuitLeavesNothingBehind()
    {
        ChildEditor child(folder(), QStringLiteral("quit"), QStringLiteral("quit"));
        QVERIFY(child.waitUntilReady());
        QVERIFY(child.waitForNormalEnd());
        QCOMPARE(child.exitCode(), 0);
        QCOMPARE(files(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestRecoveryStore)
#include "test_recoverystore.moc"

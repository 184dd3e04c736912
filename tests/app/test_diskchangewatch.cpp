#include "guisandbox.h"
#include "treehelpers.h"
#include "windowedits.h"

#include "app/diskchangewatch.h"
#include "app/editorwindow.h"
#include "app/filechangebar.h"
#include "app/mainwindow.h"
#include "app/menufiles.h"
#include "app/saveoverwritecheck.h"
#include "core/documentfile.h"
#include "core/options.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTest>

namespace {

using Answer = UserPrompts::Answer;

FileChangeBar* barOf(MainWindow& window, qint16 index)
{
    return window.editor(index)->findChild<FileChangeBar*>(QStringLiteral("fraFileChanged"));
}

bool barShown(MainWindow& window, qint16 index)
{
    FileChangeBar* bar = barOf(window, index);
    return bar != nullptr && !bar->isHidden();
}

QString barText(MainWindow& window, qint16 index)
{
    return barOf(window, index)->findChild<QLabel*>(QStringLiteral("lblFileChanged"))->text();
}

QPushButton* barButton(MainWindow& window, qint16 index, const char* name)
{
    return barOf(window, index)->findChild<QPushButton*>(QString::fromLatin1(name));
}

QStringList captionsOf(const MenuDocument& document)
{
    QStringList captions;
    for (const MenuItem& item : document.items) {
        captions.append(item.caption);
    }
    return captions;
}

QStringList captionsInFile(const QString& path)
{
    MenuDocument document;
    return readMenuFile(path, document).ok() ? captionsOf(document) : QStringList();
}

/// Replaces the file at `path` as a careful writer does: a new file renamed over the old one.
void replaceFile(const QString& path, const QByteArray& bytes)
{
    const QString temporary = path + QStringLiteral(".new");
    QVERIFY(!GuiSandbox::writeFile(temporary, bytes).isEmpty());
    QVERIFY(::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) == 0);
}

MessageRequest overwriteQuestion(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNo;
    return request;
}

} // namespace

class TestDiskChangeWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBarSaysWhatHappenedToTheFile()
    {
        QCOMPARE(FileChangeBar::text(FileChangeBar::Kind::Changed, QStringLiteral("/menus/a.ini")),
                 QStringLiteral("a.ini has been changed on disk by another window or program."));
        QCOMPARE(FileChangeBar::text(FileChangeBar::Kind::Missing, QStringLiteral("/menus/a.ini")),
                 QStringLiteral("a.ini has been deleted or moved on disk."));
        FileChangeBar bar;
        QVERIFY(bar.isHidden());
        QCOMPARE(bar.findChild<QPushButton*>(QStringLiteral("cmdReload"))->text(), QStringLiteral("&Reload"));
        QCOMPARE(bar.findChild<QPushButton*>(QStringLiteral("cmdKeepMine"))->text(), QStringLiteral("&Keep mine"));
    }

    void anUnchangedFileShowsNoBarAndItsOwnSaveNoneEither()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QCOMPARE(window.activeDocumentIndex(), index);
        QVERIFY(barOf(window, index) != nullptr);
        QVERIFY(!barShown(window, index));
        const QStringList watched = window.diskChangeWatch().watchedPaths();
        QVERIFY(watched.contains(QFileInfo(path).absoluteFilePath()));
        QVERIFY(watched.contains(QFileInfo(path).absolutePath()));

        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        sandbox.trigger(QStringLiteral("mnuSave"));
        // The watcher sees the editor's own save: no change of anyone else.
        QTest::qWait(300);
        QVERIFY(!barShown(window, index));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        // A new menu has no file to watch.
        window.mnuNew_Click();
        QVERIFY(window.diskChangeWatch().watchedPaths().isEmpty());
        QVERIFY(!barShown(window, window.activeDocumentIndex()));
    }

    void theOtherWindowOfTheSameFileShowsTheBarWhenItBecomesActive()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 first
            = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One"), QStringLiteral("Two") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        const qint16 second = window.openMenu(path, QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, second, QStringLiteral("E1"), QStringLiteral("Second's")));
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(first));
        QVERIFY(WindowEdits::renameItem(window, first, QStringLiteral("E0"), QStringLiteral("First's")));
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(!barShown(window, first));

        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(second));
        QVERIFY(barShown(window, second));
        QCOMPARE(barText(window, second), FileChangeBar::text(FileChangeBar::Kind::Changed, path));
        QVERIFY(!barButton(window, second, "cmdReload")->isHidden());

        // Keep mine: the bar goes and stays away for this change, but Save still asks.
        barButton(window, second, "cmdKeepMine")->click();
        QVERIFY(!barShown(window, second));
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(first));
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(second));
        QVERIFY(!barShown(window, second));
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)) }));
        QVERIFY(window.state().document(second).saved);
        QCOMPARE(captionsInFile(path), QStringList({ QStringLiteral("One"), QStringLiteral("Second's") }));

        // Now the first window's file has changed under it.
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(first));
        QVERIFY(barShown(window, first));
    }

    void anotherProgramsChangeShowsTheBarWhileTheWindowIsActive()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index
            = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One"), QStringLiteral("Two") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E1"), QStringLiteral("Mine")));

        QProcess kelvmenu;
        kelvmenu.start(QStringLiteral(KELVMENU_PATH), { QStringLiteral("edit"), path, QStringLiteral("-") });
        QVERIFY(kelvmenu.waitForStarted(30000));
        kelvmenu.write(R"([{"op": "rename", "key": "E0", "caption": "Scripted"}])");
        kelvmenu.closeWriteChannel();
        QVERIFY(kelvmenu.waitForFinished(30000));
        QCOMPARE(kelvmenu.exitCode(), 0);
        QCOMPARE(captionsInFile(path), QStringList({ QStringLiteral("Scripted"), QStringLiteral("Two") }));

        QTRY_VERIFY(barShown(window, index));
        QCOMPARE(barText(window, index), FileChangeBar::text(FileChangeBar::Kind::Changed, path));
        sandbox.prompts().answers = { Answer::No };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)) }));
        QCOMPARE(captionsInFile(path), QStringList({ QStringLiteral("Scripted"), QStringLiteral("Two") }));
        QVERIFY(barShown(window, index));
    }

    void aWriteInPlaceRightAfterASaveShowsTheBarButAFileWrittenBesideDoesNot()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(captionsInFile(path), QStringList({ QStringLiteral("Mine") }));

        // Another file in the menu's folder, as the autosave file of every edit may be: no change.
        QVERIFY(!GuiSandbox::writeFile(QFileInfo(path).absoluteDir().filePath(QStringLiteral("beside.ini")),
                                       QByteArray("x"))
                     .isEmpty());
        QTest::qWait(300);
        QVERIFY(!barShown(window, index));

        // The same length written into the file itself, within the tick of the save's time.
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray bytes = file.readAll();
        const qsizetype at = bytes.indexOf("Mine");
        QVERIFY(at >= 0);
        QVERIFY(file.seek(at));
        QCOMPARE(file.write("Yours", 4), qint64(4));
        file.close();
        QCOMPARE(captionsInFile(path), QStringList({ QStringLiteral("Your") }));
        QTRY_VERIFY(barShown(window, index));
        QCOMPARE(barText(window, index), FileChangeBar::text(FileChangeBar::Kind::Changed, path));
    }

    void aDeletedFileShowsTheBarWithoutReload()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(QFile::remove(path));
        QTRY_VERIFY(barShown(window, index));
        QCOMPARE(barText(window, index), FileChangeBar::text(FileChangeBar::Kind::Missing, path));
        QVERIFY(barButton(window, index, "cmdReload")->isHidden());

        // Written again by Save (after its question): the bar goes, and the new file is watched.
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::missingQuestion(path)) }));
        QVERIFY(!barShown(window, index));
        QTRY_VERIFY(window.diskChangeWatch().watchedPaths().contains(QFileInfo(path).absoluteFilePath()));
    }

    void reloadReadsTheFileAsOneStepThatUndoTakesBack()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index
            = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One"), QStringLiteral("Two") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        const MenuDocument mine = window.state().document(index);
        const int steps = window.state().histories().history(index).undoCount();

        replaceFile(path,
                    GuiSandbox::menuBytes(
                        { QStringLiteral("Theirs"), QStringLiteral("···Child"), QStringLiteral("Third") }, {}));
        QTRY_VERIFY(barShown(window, index));
        barButton(window, index, "cmdReload")->click();

        MenuDocument file;
        FileIdentity identity;
        QVERIFY(openMenuDocument(path, window.state().options(), index, file, &identity).ok());
        const MenuDocument& reloaded = window.state().document(index);
        QVERIFY(reloaded.items == file.items);
        QVERIFY(reloaded.saved);
        QVERIFY(!window.editor(index)->isWindowModified());
        QVERIFY(!sandbox.action(QStringLiteral("mnuSave"))->isEnabled());
        QCOMPARE(window.state().fileIdentity(index), identity);
        QVERIFY(!barShown(window, index));
        QCOMPARE(window.state().histories().history(index).undoCount(), steps + 1);
        const QStringList outline = TreeHelpers::nodeOutline(*window.editor(index)->tree());
        QCOMPARE(outline.mid(1),
                 QStringList({ QStringLiteral("  Theirs"), QStringLiteral("    Child"), QStringLiteral("  Third") }));
        QVERIFY(sandbox.prompts().messages.isEmpty());

        // Replaced once more: the watcher follows the new file.
        replaceFile(path, GuiSandbox::menuBytes({ QStringLiteral("Theirs again") }, {}));
        QTRY_VERIFY(barShown(window, index));
        barButton(window, index, "cmdReload")->click();
        QCOMPARE(captionsOf(window.state().document(index)), QStringList({ QStringLiteral("Theirs again") }));

        // Undo brings back the user's version, unsaved; Save writes it without a question, as the
        // file is the one just read.
        window.mnuUndo_Click();
        window.mnuUndo_Click();
        QCOMPARE(captionsOf(window.state().document(index)), captionsOf(mine));
        QVERIFY(!window.state().document(index).saved);
        QVERIFY(window.editor(index)->isWindowModified());
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        QCOMPARE(captionsInFile(path), captionsOf(mine));
    }

    void aWindowThatTakesTheIndexOfOneThatFailedToOpenHasABarThatWorks()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const QString broken
            = GuiSandbox::writeFile(sandbox.menuPath(QStringLiteral("broken.ini")), QByteArrayLiteral("no menu\r\n"));
        QCOMPARE(window.openMenu(broken, QStringLiteral("broken.ini")), qint16(0));
        sandbox.prompts().clearLog();

        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        QCOMPARE(index, qint16(1));
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        replaceFile(path, GuiSandbox::menuBytes({ QStringLiteral("Theirs") }, {}));
        QTRY_VERIFY(barShown(window, index));
        barButton(window, index, "cmdReload")->click();
        QCOMPARE(captionsOf(window.state().document(index)), QStringList({ QStringLiteral("Theirs") }));
        QVERIFY(!barShown(window, index));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void aFileThatIsNoLongerAMenuIsNotReloaded()
    {
        GuiSandbox sandbox;
        QVERIFY(sandbox.showWindow());
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        replaceFile(path, QByteArrayLiteral("no menu at all\r\n"));
        QTRY_VERIFY(barShown(window, index));
        barButton(window, index, "cmdReload")->click();
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(sandbox.prompts().messages.first().text, notMenuFileMessage());
        QCOMPARE(captionsOf(window.state().document(index)), QStringList({ QStringLiteral("One") }));
        QCOMPARE(window.state().histories().history(index).undoCount(), 0);
        QVERIFY(barShown(window, index));
    }
};

QTEST_MAIN(TestDiskChangeWatch)
#include "test_diskchangewatch.moc"

#include "guisandbox.h"
#include "windowedits.h"

#include "app/editorwindow.h"
#include "app/mainwindow.h"
#include "app/saveoverwritecheck.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

using Answer = UserPrompts::Answer;

MessageRequest overwriteQuestion(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNo;
    return request;
}

QString firstCaptionInFile(const QString& path)
{
    MenuDocument document;
    if (!readMenuFile(path, document).ok() || document.items.isEmpty()) {
        return QString();
    }
    return document.items.at(0).caption;
}

/// The bytes of a menu of one item named `caption`, as another program would write it.
QByteArray otherMenu(const QString& caption)
{
    return GuiSandbox::menuBytes({ caption, QStringLiteral("Other second") }, {});
}

} // namespace

class TestSaveOverwriteCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theQuestionsNameTheFile()
    {
        const QString path = QStringLiteral("/menus/a.ini");
        const QString shown = QDir::toNativeSeparators(path);
        QCOMPARE(
            SaveOverwriteCheck::changedQuestion(path),
            QStringLiteral("This file has been changed on disk since the editor last opened or saved it :\r\n"
                           "    ")
                + shown
                + QStringLiteral("\r\n\r\nDo you want to overwrite it with this menu and lose the other changes ?"));
        QCOMPARE(SaveOverwriteCheck::missingQuestion(path),
                 QStringLiteral("This file has been deleted or moved since the editor last opened or saved it :\r\n"
                                "    ")
                     + shown + QStringLiteral("\r\n\r\nDo you want to save this menu there again ?"));
    }

    void saveOverAnUnchangedOrTouchedFileAsksNothing()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(window.state().document(index).saved);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Mine"));

        // Written again with the same bytes (a copy back, a touch): no change.
        const QByteArray bytes = GuiSandbox::readFile(path);
        QVERIFY(QFile::remove(path));
        QVERIFY(!GuiSandbox::writeFile(path, bytes).isEmpty());
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine again")));
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(window.state().document(index).saved);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Mine again"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void theSameFileInTwoWindowsAsksTheSecondBeforeItOverwritesTheFirst()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 first
            = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One"), QStringLiteral("Two") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        const qint16 second = window.openMenu(path, QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, first, QStringLiteral("E0"), QStringLiteral("First's")));
        QVERIFY(WindowEdits::renameItem(window, second, QStringLiteral("E1"), QStringLiteral("Second's")));
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(first));
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        const QByteArray firstsFile = GuiSandbox::readFile(path);

        // No: nothing is written, the menu stays unsaved.
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(second));
        sandbox.prompts().answers = { Answer::No };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)) }));
        QCOMPARE(GuiSandbox::readFile(path), firstsFile);
        QVERIFY(!window.state().document(second).saved);
        QVERIFY(sandbox.action(QStringLiteral("mnuSave"))->isEnabled());

        // Yes: written over the first window's save; the first window's menu now differs from its file.
        sandbox.prompts().clearLog();
        sandbox.prompts().answers = { Answer::Yes };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QVERIFY(window.state().document(second).saved);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("One"));

        // Save as over the same file asks the same; over another file it does not.
        sandbox.prompts().clearLog();
        QVERIFY(WindowEdits::renameItem(window, first, QStringLiteral("E0"), QStringLiteral("First's again")));
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(first));
        sandbox.prompts().fileNames = { path };
        sandbox.prompts().answers = { Answer::No };
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)) }));
        QVERIFY(!window.state().document(first).saved);
        const QString other = sandbox.menuPath(QStringLiteral("b.ini"));
        sandbox.prompts().clearLog();
        sandbox.prompts().fileNames = { other };
        sandbox.trigger(QStringLiteral("mnuSaveAs"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
        QCOMPARE(firstCaptionInFile(other), QStringLiteral("First's again"));
        QCOMPARE(window.editor(first)->caption(), QStringLiteral("b.ini"));
    }

    void aChangeByAnotherProgramIsAskedAboutAtTheCloseQuestion()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        QVERIFY(!GuiSandbox::writeFile(path, otherMenu(QStringLiteral("Theirs"))).isEmpty());

        // Yes to saving, No to overwriting: the window stays open and the file as it is.
        sandbox.prompts().answers = { Answer::Yes, Answer::No };
        QVERIFY(!window.editor(index)->closeWindow());
        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QCOMPARE(sandbox.prompts().messages.at(1), overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)));
        QVERIFY(window.editor(index) != nullptr);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Theirs"));

        sandbox.prompts().clearLog();
        sandbox.prompts().answers = { Answer::Yes, Answer::Yes };
        QVERIFY(window.editor(index)->closeWindow());
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Mine"));
    }

    void aChangeByAnotherProgramIsAskedAboutAtTheQuitQuestion()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.show();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        QVERIFY(!GuiSandbox::writeFile(path, otherMenu(QStringLiteral("Theirs"))).isEmpty());

        sandbox.prompts().answers = { Answer::Yes, Answer::No };
        sandbox.trigger(QStringLiteral("mnuQuit"));
        QCOMPARE(sandbox.prompts().messages.size(), 2);
        QCOMPARE(sandbox.prompts().messages.at(1), overwriteQuestion(SaveOverwriteCheck::changedQuestion(path)));
        QVERIFY(!window.state().isQuitting());
        QVERIFY(window.isVisible());
        QVERIFY(window.editor(index) != nullptr);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Theirs"));
    }

    void aDeletedFileIsAskedAboutAndWrittenAgainOnYes()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("a.ini"), { QStringLiteral("One") });
        const QString path = sandbox.menuPath(QStringLiteral("a.ini"));
        QVERIFY(WindowEdits::renameItem(window, index, QStringLiteral("E0"), QStringLiteral("Mine")));
        QVERIFY(QFile::remove(path));

        sandbox.prompts().answers = { Answer::No };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QCOMPARE(sandbox.prompts().messages,
                 QList<MessageRequest>({ overwriteQuestion(SaveOverwriteCheck::missingQuestion(path)) }));
        QVERIFY(!QFile::exists(path));
        QVERIFY(!window.state().document(index).saved);

        sandbox.prompts().answers = { Answer::Yes };
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY(window.state().document(index).saved);
        QCOMPARE(firstCaptionInFile(path), QStringLiteral("Mine"));
    }
};

QTEST_MAIN(TestSaveOverwriteCheck)
#include "test_saveoverwritecheck.moc"

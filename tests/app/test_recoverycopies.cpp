#include "guisandbox.h"
#include "windowedits.h"

#include "app/editorwindow.h"
#include "app/mainwindow.h"
#include "app/recoverycopies.h"
#include "app/recoverydialog.h"
#include "core/editingsession.h"
#include "core/recoverystore.h"
#include "editing/itemcreation.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <memory>

namespace {

using Answer = UserPrompts::Answer;
using Decision = RecoveryPrompt::Decision;

/// Answers the recovery question with decisions set in advance and keeps the copies it was shown.
class FakeRecoveryPrompt final : public RecoveryPrompt
{
public:
    QList<Decision> decide(const QList<RecoveryCopy>& copies) override
    {
        ++asked;
        shown = copies;
        QList<Decision> decisions;
        for (int i = 0; i < copies.size(); ++i) {
            decisions.append(answers.value(i, all));
        }
        return decisions;
    }

    /// The decision for every copy not given one in `answers`.
    Decision all = Decision::DecideLater;
    QList<Decision> answers;
    int asked = 0;
    QList<RecoveryCopy> shown;
};

/// Names item `key` of document `index` as a label edit in its tree does.
void rename(MainWindow& window, qint16 index, const QString& key, const QString& text)
{
    QVERIFY(WindowEdits::renameItem(window, index, key, text));
}

QStringList recoveryFiles(const QString& folder, const QString& pattern = QStringLiteral("*"))
{
    return QDir(folder).entryList({ pattern }, QDir::Files | QDir::Hidden, QDir::Name);
}

/// The captions of the items of the recovery copy of document `index` of the only editor writing to
/// `folder`; empty when it has none.
QStringList copyCaptions(const QString& folder, qint16 index)
{
    const QStringList copies = recoveryFiles(folder, QStringLiteral("*-%1.ini").arg(index));
    if (copies.size() != 1) {
        return {};
    }
    MenuDocument document;
    if (!readMenuFile(QDir(folder).filePath(copies.first()), document).ok()) {
        return {};
    }
    QStringList captions;
    for (const MenuItem& item : document.items) {
        captions.append(item.caption);
    }
    return captions;
}

QStringList captionsOf(const MenuDocument& document)
{
    QStringList captions;
    for (const MenuItem& item : document.items) {
        captions.append(item.caption);
    }
    return captions;
}

/// Writes the three menus the editor in a process of its own opens.
void writeChildMenus(const GuiSandbox& sandbox)
{
    const QStringList names = { QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("gamma") };
    for (const QString& name : names) {
        QVERIFY(!GuiSandbox::writeFile(
                     sandbox.menuPath(name + QStringLiteral(".ini")),
                     GuiSandbox::menuBytes({ name + QStringLiteral(" first"), name + QStringLiteral(" second") }, {}))
                     .isEmpty());
    }
}

/// An editor in a process of its own on the folders of `sandbox` (recoveryeditorchild.cpp), once it
/// has made its edits and its copies are on disk.
std::unique_ptr<QProcess> startChildEditor(const GuiSandbox& sandbox, const QString& mode, const QString& label)
{
    auto child = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child->setProcessEnvironment(environment);
    child->start(QStringLiteral(KELV_RECOVERY_EDITOR_PATH),
                 { sandbox.programFolder(), sandbox.menuFolder(), sandbox.recoveryFolder(),
                   sandbox.programFolder() + QStringLiteral("/../child-options.ini"), mode, label });
    if (!child->waitForStarted(30000)) {
        return nullptr;
    }
    QByteArray said;
    while (!said.contains("ready\n") && child->state() == QProcess::Running) {
        child->waitForReadyRead(1000);
        said += child->readAllStandardOutput();
    }
    if (!said.contains("ready\n")) {
        qWarning("%s", child->readAllStandardError().constData());
        return nullptr;
    }
    return child;
}

void killChild(QProcess& child)
{
    child.kill(); // SIGKILL: no normal exit, no destructor
    QVERIFY(child.waitForFinished(30000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
}

} // namespace

class TestRecoveryCopies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyChangeOfAnUnsavedMenuReachesItsCopyAndASaveRemovesIt()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index
            = sandbox.openMenu(QStringLiteral("menu.ini"), { QStringLiteral("One"), QStringLiteral("Two") });
        RecoveryStore& store = window.recoveryCopies().store();
        QVERIFY(store.isActive());
        QCOMPARE(store.folder(), sandbox.recoveryFolder());
        // An opened menu has nothing to recover.
        QVERIFY(store.waitForWrites(10000));
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).isEmpty());

        rename(window, index, QStringLiteral("E0"), QStringLiteral("Renamed"));
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index),
                 QStringList({ QStringLiteral("Renamed"), QStringLiteral("Two") }));

        QVERIFY(window.session().run(index, EditOperations::newItem));
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index).size(), 3);

        // Undo and Redo are changes too.
        window.mnuUndo_Click();
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index),
                 QStringList({ QStringLiteral("Renamed"), QStringLiteral("Two") }));
        window.mnuRedo_Click();
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index).size(), 3);

        // An Undo back to the saved menu leaves nothing to recover.
        window.mnuUndo_Click();
        window.mnuUndo_Click();
        QVERIFY(window.state().document(index).saved);
        QVERIFY(store.waitForWrites(10000));
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).isEmpty());

        rename(window, index, QStringLiteral("E1"), QStringLiteral("Changed again"));
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index),
                 QStringList({ QStringLiteral("One"), QStringLiteral("Changed again") }));
        window.mnuSave_Click();
        QVERIFY(window.state().document(index).saved);
        QVERIFY(store.waitForWrites(10000));
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).isEmpty());
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.json")).isEmpty());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void aNewMenuHasACopyOnlyOnceItChanges()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        RecoveryStore& store = window.recoveryCopies().store();
        QVERIFY(store.waitForWrites(10000));
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).isEmpty());
        rename(window, index, QStringLiteral("E0"), QStringLiteral("Fresh"));
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(copyCaptions(sandbox.recoveryFolder(), index), QStringList({ QStringLiteral("Fresh") }));
    }

    void closingWithoutSavingAndQuittingLeaveNothingBehind()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 first = sandbox.openMenu(QStringLiteral("first.ini"), { QStringLiteral("One") });
        rename(window, first, QStringLiteral("E0"), QStringLiteral("First changed"));
        const qint16 second = sandbox.openMenu(QStringLiteral("second.ini"), { QStringLiteral("Two") });
        rename(window, second, QStringLiteral("E0"), QStringLiteral("Second changed"));
        window.mnuNew_Click();
        const qint16 third = window.activeDocumentIndex();
        rename(window, third, QStringLiteral("E0"), QStringLiteral("Third changed"));
        RecoveryStore& store = window.recoveryCopies().store();
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 3);

        // "No" at the close question: the changes are given up, and so is their copy.
        sandbox.prompts().answers = { Answer::No };
        QVERIFY(window.editor(third)->closeWindow());
        QVERIFY(store.waitForWrites(10000));
        QVERIFY(copyCaptions(sandbox.recoveryFolder(), third).isEmpty());
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 2);

        // "Yes" at the close question saves the menu: its copy goes.
        sandbox.prompts().answers = { Answer::Yes };
        QVERIFY(window.editor(second)->closeWindow());
        QVERIFY(store.waitForWrites(10000));
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 1);

        // "No" at the quit question: nothing at all is left, not even the editor's lock.
        sandbox.prompts().answers = { Answer::No };
        sandbox.action(QStringLiteral("mnuQuit"))->trigger();
        QVERIFY(window.state().isQuitting());
        sandbox.dropWindow();
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder()), QStringList());
        QVERIFY(sandbox.prompts().unansweredQuestions == 0);
    }

    void aCopyThatCannotBeWrittenIsToldOncePlainlyAndTheEditStays()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = sandbox.openMenu(QStringLiteral("menu.ini"), { QStringLiteral("One") });
        RecoveryStore& store = window.recoveryCopies().store();
        const QStringList locks = recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.lock"));
        QCOMPARE(locks.size(), 1);
        // A folder where the copy should go: it cannot be replaced by a file, not even by root.
        const QString session = locks.first().chopped(5);
        const QString blocked = QDir(sandbox.recoveryFolder()).filePath(session + QStringLiteral("-%1.ini").arg(index));
        QVERIFY(QDir().mkpath(blocked + QStringLiteral("/inside")));

        rename(window, index, QStringLiteral("E0"), QStringLiteral("First"));
        QVERIFY(store.waitForWrites(10000));
        QTRY_COMPARE(sandbox.prompts().messages.size(), 1);
        const MessageRequest told = sandbox.prompts().messages.first();
        QCOMPARE(told.icon, MessageRequest::Icon::None);
        QCOMPARE(told.buttons, MessageRequest::Buttons::Ok);
        QVERIFY2(told.text.startsWith(QStringLiteral("The recovery copy ") + QDir::toNativeSeparators(blocked)
                                      + QStringLiteral(" cannot be written")),
                 qPrintable(told.text));
        QVERIFY2(told.text.endsWith(QStringLiteral("The changes to menu.ini are kept while the editor runs, but they "
                                                   "cannot be recovered if it ends without quitting. Save the menu "
                                                   "to keep them safe.")),
                 qPrintable(told.text));
        // The edit went through, and nothing was undone.
        QCOMPARE(window.state().document(index).items.at(0).caption, QStringLiteral("First"));
        QCOMPARE(window.state().histories().history(index).undoCount(), 1);

        rename(window, index, QStringLiteral("E0"), QStringLiteral("Second"));
        QVERIFY(store.waitForWrites(10000));
        QTest::qWait(50);
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QCOMPARE(window.state().document(index).items.at(0).caption, QStringLiteral("Second"));
    }

    void nothingIsOfferedWhenNoEditorLeftCopies()
    {
        GuiSandbox sandbox;
        FakeRecoveryPrompt prompt;
        sandbox.window().offerRecovery(prompt);
        QCOMPARE(prompt.asked, 0);
        QVERIFY(sandbox.window().state().openDocumentIndexes().isEmpty());
    }

    void aKilledEditorsMenusAreOfferedWithTheirLatestEditAndRecovered()
    {
        GuiSandbox sandbox;
        writeChildMenus(sandbox);
        const std::unique_ptr<QProcess> child = startChildEditor(sandbox, QStringLiteral("crash"), QStringLiteral("K"));
        QVERIFY(child);

        // While it runs, its copies are its own: this editor offers none of them, and its own copy
        // lives beside them.
        {
            FakeRecoveryPrompt prompt;
            MainWindow& window = sandbox.window();
            window.offerRecovery(prompt);
            QCOMPARE(prompt.asked, 0);
            const qint16 own = sandbox.openMenu(QStringLiteral("own.ini"), { QStringLiteral("Own") });
            rename(window, own, QStringLiteral("E0"), QStringLiteral("Own changed"));
            QVERIFY(window.recoveryCopies().store().waitForWrites(10000));
            QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 3);
            sandbox.prompts().answers = { Answer::No };
            sandbox.action(QStringLiteral("mnuQuit"))->trigger();
            sandbox.dropWindow();
            sandbox.prompts().clearLog();
        }
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 2);

        killChild(*child);

        FakeRecoveryPrompt prompt;
        prompt.all = Decision::Recover;
        MainWindow& window = sandbox.window();
        window.offerRecovery(prompt);
        QCOMPARE(prompt.asked, 1);
        // Exactly the two menus with unsaved changes: not the one saved, not the one closed with "No".
        QCOMPARE(prompt.shown.size(), 2);
        QMap<QString, RecoveryCopy> byCaption;
        for (const RecoveryCopy& copy : std::as_const(prompt.shown)) {
            byCaption.insert(copy.caption, copy);
        }
        QCOMPARE(byCaption.keys(), QStringList({ QStringLiteral("New menu 2"), QStringLiteral("alpha.ini") }));
        const RecoveryCopy alpha = byCaption.value(QStringLiteral("alpha.ini"));
        QCOMPARE(QFileInfo(alpha.menuPath), QFileInfo(sandbox.menuPath(QStringLiteral("alpha.ini"))));
        QCOMPARE(alpha.itemCount, 2);
        QVERIFY(alpha.time.isValid());
        QVERIFY(qAbs(alpha.time.secsTo(QDateTime::currentDateTimeUtc())) < 600);
        QVERIFY(!alpha.fileIdentity.isNull());
        const RecoveryCopy fresh = byCaption.value(QStringLiteral("New menu 2"));
        QVERIFY(fresh.menuPath.isEmpty());
        QCOMPARE(fresh.itemCount, 2);

        // Recovered: each in a window of its own, unsaved, with the latest edit.
        const QList<qint16> open = window.state().openDocumentIndexes();
        QCOMPARE(open.size(), 2);
        QStringList captions;
        qint16 alphaIndex = 0;
        for (const qint16 index : open) {
            const EditorWindow* editor = window.editor(index);
            captions.append(editor->caption());
            QVERIFY(!window.state().document(index).saved);
            QVERIFY(editor->isWindowModified());
            if (editor->caption() == QLatin1String("alpha.ini")) {
                alphaIndex = index;
            }
        }
        captions.sort();
        QCOMPARE(captions, QStringList({ QStringLiteral("New menu 1"), QStringLiteral("alpha.ini") }));
        QVERIFY(alphaIndex != 0);
        const MenuDocument& recovered = window.state().document(alphaIndex);
        QCOMPARE(QFileInfo(recovered.filePath), QFileInfo(sandbox.menuPath(QStringLiteral("alpha.ini"))));
        QCOMPARE(captionsOf(recovered), QStringList({ QStringLiteral("K alpha 2"), QStringLiteral("alpha second") }));
        const qint16 freshIndex = open.first() == alphaIndex ? open.last() : open.first();
        QVERIFY(window.state().document(freshIndex).filePath.isEmpty());
        QCOMPARE(captionsOf(window.state().document(freshIndex)).first(), QStringLiteral("K fresh"));
        QCOMPARE(window.state().fileIdentity(alphaIndex), alpha.fileIdentity);

        // Saved over its file, which nobody changed since: no question, and the copy goes.
        sandbox.trigger(QStringLiteral("mnuWindowName%1").arg(alphaIndex));
        QCOMPARE(window.activeDocumentIndex(), alphaIndex);
        sandbox.trigger(QStringLiteral("mnuSave"));
        QVERIFY2(sandbox.prompts().messages.isEmpty(),
                 qPrintable(sandbox.prompts().messageTexts().join(QLatin1Char('|'))));
        QVERIFY(window.state().document(alphaIndex).saved);
        MenuDocument onDisk;
        QVERIFY(readMenuFile(sandbox.menuPath(QStringLiteral("alpha.ini")), onDisk).ok());
        QCOMPARE(captionsOf(onDisk), captionsOf(recovered));
        QVERIFY(window.recoveryCopies().store().waitForWrites(10000));
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).size(), 1);

        // Nothing is offered twice.
        sandbox.prompts().answers = { Answer::No };
        sandbox.action(QStringLiteral("mnuQuit"))->trigger();
        sandbox.dropWindow();
        FakeRecoveryPrompt again;
        sandbox.window().offerRecovery(again);
        QCOMPARE(again.asked, 0);
    }

    void discardDeletesACopyAndDecideLaterKeepsItForTheNextStart()
    {
        GuiSandbox sandbox;
        writeChildMenus(sandbox);
        const std::unique_ptr<QProcess> child = startChildEditor(sandbox, QStringLiteral("crash"), QStringLiteral("D"));
        QVERIFY(child);
        killChild(*child);

        FakeRecoveryPrompt prompt;
        prompt.answers = { Decision::Discard, Decision::DecideLater };
        sandbox.window().offerRecovery(prompt);
        QCOMPARE(prompt.shown.size(), 2);
        QVERIFY(sandbox.window().state().openDocumentIndexes().isEmpty());
        const RecoveryCopy kept = prompt.shown.at(1);
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")),
                 QStringList({ kept.id + QStringLiteral(".ini") }));
        sandbox.dropWindow();

        FakeRecoveryPrompt next;
        next.all = Decision::DecideLater;
        sandbox.window().offerRecovery(next);
        QCOMPARE(next.shown.size(), 1);
        QCOMPARE(next.shown.first().id, kept.id);
        QCOMPARE(next.shown.first().caption, kept.caption);
        sandbox.dropWindow();

        FakeRecoveryPrompt last;
        last.all = Decision::Discard;
        sandbox.window().offerRecovery(last);
        QCOMPARE(last.shown.size(), 1);
        QVERIFY(recoveryFiles(sandbox.recoveryFolder(), QStringLiteral("*.ini")).isEmpty());
    }

    void anEditorThatQuitsNormallyLeavesNothingBehind()
    {
        GuiSandbox sandbox;
        writeChildMenus(sandbox);
        const std::unique_ptr<QProcess> child = startChildEditor(sandbox, QStringLiteral("quit"), QStringLiteral("Q"));
        QVERIFY(child);
        QVERIFY(child->waitForFinished(30000));
        QCOMPARE(child->exitStatus(), QProcess::NormalExit);
        QCOMPARE(child->exitCode(), 0);
        QCOMPARE(recoveryFiles(sandbox.recoveryFolder()), QStringList());
        FakeRecoveryPrompt prompt;
        sandbox.window().offerRecovery(prompt);
        QCOMPARE(prompt.asked, 0);
    }
};

QTEST_MAIN(TestRecoveryCopies)
#include "test_recoverycopies.moc"

#include "core/documentfile.h"
#include "core/options.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

MenuDocument oneItemMenu(const QString& caption)
{
    MenuDocument document;
    MenuItem item;
    item.caption = caption;
    item.key = QStringLiteral("E0");
    item.parent = -1;
    item.siblingOrder = 1;
    item.commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") });
    document.items = { item };
    return document;
}

QString heading()
{
    return QStringLiteral("This menu cannot be saved: a menu file cannot hold the values below, so nothing was "
                          "written.\r\nChange them and save again.\r\n\r\n");
}

} // namespace

class TestDocumentFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSavableMenuIsWrittenAndCountsAsSaved()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        MenuDocument document = oneItemMenu(QStringLiteral("Edit"));
        QVERIFY(saveMenuDocument(document, path).isEmpty());
        QVERIFY(document.saved);
        QCOMPARE(document.filePath, path);
        MenuDocument reread;
        QVERIFY(readMenuFile(path, reread).ok());
        QCOMPARE(reread.items.constFirst().caption, QStringLiteral("Edit"));
    }

    void openingAndSavingGiveTheIdentityOfTheFile()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        MenuDocument document = oneItemMenu(QStringLiteral("Edit"));
        FileIdentity saved;
        QVERIFY(saveMenuDocument(document, path, &saved).isEmpty());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QCOMPARE(saved.hash(), FileIdentity::hashOf(bytes));
        QCOMPARE(saved.changeAt(path), FileIdentity::Change::Unchanged);

        MenuDocument opened;
        FileIdentity read;
        QVERIFY(openMenuDocument(path, Options(), 1, opened, &read).ok());
        QCOMPARE(read, saved);

        // A menu refused by the save check, and a file that cannot be opened, give none.
        FileIdentity refused;
        MenuDocument unsavable = oneItemMenu(QStringLiteral("[/Menu]"));
        QCOMPARE(saveMenuDocument(unsavable, path, &refused).size(), 1);
        QVERIFY(refused.isNull());
        FileIdentity unread;
        QVERIFY(!openMenuDocument(folder.filePath(QStringLiteral("absent.ini")), Options(), 1, opened, &unread).ok());
        QVERIFY(unread.isNull());
    }

    void anUnsavableMenuWritesNothingAndStaysAsItWas()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        MenuDocument document = oneItemMenu(QStringLiteral("[/Menu]"));
        document.filePath = QStringLiteral("old.ini");
        const MenuDocument before = document;
        const QList<SaveProblem> problems = saveMenuDocument(document, path);
        QCOMPARE(problems.size(), 1);
        QCOMPARE(problems, documentSaveProblems(before));
        QCOMPARE(document, before);
        QVERIFY(!QFile::exists(path));
    }

    void theRefusalListsEveryProblem()
    {
        const QList<SaveProblem> problems { SaveProblem { QStringLiteral("\"a\""), QStringLiteral("one") },
                                            SaveProblem { QStringLiteral("\"a\" > \"b\""), QStringLiteral("two") } };
        QCOMPARE(saveRefusalMessage(problems), heading() + QStringLiteral("    \"a\": one\r\n    \"a\" > \"b\": two"));
    }

    void aLongListIsCutAndCounted()
    {
        QList<SaveProblem> problems;
        for (int i = 1; i <= 40; ++i) {
            problems.append(SaveProblem { QStringLiteral("\"%1\"").arg(i), QStringLiteral("wrong") });
        }
        const QStringList lines = saveRefusalMessage(problems).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 3 + 25 + 1);
        QCOMPARE(lines.at(3), QStringLiteral("    \"1\": wrong"));
        QCOMPARE(lines.at(27), QStringLiteral("    \"25\": wrong"));
        QCOMPARE(lines.last(), QStringLiteral("    ... and 15 more"));
    }

    void severalMenusAreListedUnderTheirCaptions()
    {
        const QList<UnsavableDocument> documents {
            UnsavableDocument { QStringLiteral("New menu 1"),
                                { SaveProblem { QStringLiteral("\"a\""), QStringLiteral("one") } } },
            UnsavableDocument { QStringLiteral("tools.ini"),
                                { SaveProblem { QStringLiteral("\"b\""), QStringLiteral("two") } } },
        };
        QCOMPARE(saveRefusalMessage(documents),
                 QStringLiteral("These menus cannot be saved: a menu file cannot hold the values below, so nothing "
                                "was written.\r\nChange them and save again.\r\n\r\n"
                                "    New menu 1:\r\n        \"a\": one\r\n    tools.ini:\r\n        \"b\": two"));
    }
};

QTEST_GUILESS_MAIN(TestDocumentFile)
#include "test_documentfile.moc"

#include "editing/randommenu.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "menufile/menufixtures.h"
#include "menufile/saveproblemcheck.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

/// Archive (Pack with two commands) and Delete with one command, all of it savable.
MenuDocument cleanDocument()
{
    MenuDocument document;
    MenuItem archive = makeItem(QStringLiteral("Archive"), 0, -1, 1, 1);
    MenuItem pack = makeItem(QStringLiteral("Pack"), 1, 0, 1);
    pack.commands.append(Command { QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$") });
    pack.commands.append(Command { QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$||echo done") });
    MenuItem del = makeItem(QStringLiteral("Delete"), 2, -1, 2);
    del.commands.append(Command { QString(), QStringLiteral("del $fs-001$") });
    document.items = { archive, pack, del };
    document.lastIndex = 2;
    return document;
}

QList<SaveProblem> problemsWithPackCaption(const QString& caption)
{
    MenuDocument document = cleanDocument();
    document.items[1].caption = caption;
    return findSaveProblems(document);
}

QList<SaveProblem> problemsWithTopCaption(const QString& caption)
{
    MenuDocument document = cleanDocument();
    document.items[2].caption = caption;
    return findSaveProblems(document);
}

SaveProblem pack(const QString& description)
{
    return SaveProblem { QStringLiteral("\"Archive\" > \"Pack\""), description };
}

/// A problem of the item below Archive that now has the caption `caption`.
SaveProblem below(const QString& caption, const QString& description)
{
    return SaveProblem { QStringLiteral("\"Archive\" > \"") + caption + QLatin1Char('"'), description };
}

/// The problem of a menu whose file would be `size` bytes, over `limit`.
SaveProblem tooLarge(qint64 size, const QString& sizeInMebibytes, qint64 limit, const QString& limitInMebibytes)
{
    return SaveProblem { QString(),
                         QStringLiteral("the menu file would be %1 bytes (%2), more than the %3 bytes (%4) a menu file "
                                        "may have to be opened again; shorten long captions or commands, or delete "
                                        "items")
                             .arg(QString::number(size), sizeInMebibytes, QString::number(limit), limitInMebibytes) };
}

bool holdsSizeProblem(const QList<SaveProblem>& problems)
{
    return std::any_of(problems.cbegin(), problems.cend(), [](const SaveProblem& problem) {
        return problem.itemPath.isEmpty() && problem.description.startsWith(QStringLiteral("the menu file would be "));
    });
}

} // namespace

namespace QTest {
template <> char* toString(const SaveProblem& problem)
{
    return qstrdup(qPrintable(problem.itemPath + QStringLiteral(": ") + problem.description));
}
} // namespace QTest

class TestSaveProblemCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSavableMenuHasNoProblem() { QVERIFY(findSaveProblems(cleanDocument()).isEmpty()); }

    void textsThatAFileHoldsAreNoProblem_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::newRow("empty") << QString();
        QTest::newRow("marker at the end") << QStringLiteral("Pack\u00B7");
        QTest::newRow("marker inside") << QStringLiteral("a\u00B7\u00B7\u00B7b");
        QTest::newRow("Windows-1252 beyond ASCII") << QStringLiteral("Caf\u00E9 \u20AC \u201Cq\u201D \u2122");
        QTest::newRow("undefined byte of Windows-1252") << QStringLiteral("a\u0081b");
        QTest::newRow("section tags") << QStringLiteral("[/Commands]");
        QTest::newRow("blanks") << QStringLiteral("  ");
        QTest::newRow("pipes and equals") << QStringLiteral("a||b=c:d");
    }

    void textsThatAFileHoldsAreNoProblem()
    {
        QFETCH(QString, caption);
        QVERIFY(problemsWithPackCaption(caption).isEmpty());
        QVERIFY(problemsWithTopCaption(caption).isEmpty());
    }

    void captionBeginningWithTheMarker()
    {
        const QString description
            = QStringLiteral("caption begins with \"\u00B7\", which the file would read as a tree level");
        QCOMPARE(problemsWithPackCaption(QStringLiteral("\u00B7Pack")),
                 QList<SaveProblem>({ below(QStringLiteral("\u00B7Pack"), description) }));
        QCOMPARE(problemsWithTopCaption(QStringLiteral("\u00B7\u00B7")),
                 QList<SaveProblem>({ SaveProblem { QStringLiteral("\"\u00B7\u00B7\""), description } }));
    }

    void endTagAsTopLevelCaptionInAnyCase()
    {
        QCOMPARE(problemsWithTopCaption(QStringLiteral("[/mEnU]")),
                 QList<SaveProblem>({ SaveProblem {
                     QStringLiteral("\"[/mEnU]\""),
                     QStringLiteral("top-level caption \"[/mEnU]\" would end the list of items in the file") } }));
        QVERIFY(problemsWithTopCaption(QStringLiteral("[/menu]")).size() == 1);
        // Below the top level its markers come first, and blanks make a line no tag.
        QVERIFY(problemsWithPackCaption(QStringLiteral("[/Menu]")).isEmpty());
        QVERIFY(problemsWithTopCaption(QStringLiteral("[/Menu] ")).isEmpty());
    }

    void lineBreakInACaption()
    {
        const QList<SaveProblem> expected { SaveProblem { QStringLiteral("\"Archive\" > \"a\\r\\nb\""),
                                                          QStringLiteral("caption holds a line break") } };
        QCOMPARE(problemsWithPackCaption(QStringLiteral("a\r\nb")), expected);
        QCOMPARE(problemsWithPackCaption(QStringLiteral("a\nb")).size(), 1);
        QCOMPARE(problemsWithPackCaption(QStringLiteral("a\rb")).size(), 1);
    }

    void charactersOutsideWindows1252AreNamed()
    {
        QCOMPARE(
            problemsWithPackCaption(QStringLiteral("ok \u2713 and \u2713")),
            QList<SaveProblem>({ below(
                QStringLiteral("ok \u2713 and \u2713"),
                QStringLiteral("caption holds characters that Windows-1252 cannot encode: \"\u2713\" (U+2713)")) }));
        // A character beyond 16 bits is one character; one that cannot be shown goes by its number only.
        QCOMPARE(problemsWithPackCaption(QStringLiteral("\U0001F600\u0085")),
                 QList<SaveProblem>({ below(QStringLiteral("\U0001F600\u0085"),
                                            QStringLiteral("caption holds characters that Windows-1252 cannot "
                                                           "encode: \"\U0001F600\" (U+1F600), U+0085")) }));
        QCOMPARE(problemsWithPackCaption(QStringLiteral("\u0416\u0417\u0418\u0419\u041A")),
                 QList<SaveProblem>({ below(QStringLiteral("\u0416\u0417\u0418\u0419\u041A"),
                                            QStringLiteral("caption holds characters that Windows-1252 cannot "
                                                           "encode: \"\u0416\" (U+0416), \"\u0417\" (U+0417), "
                                                           "\"\u0418\" (U+0418), ...")) }));
        QCOMPARE(problemsWithPackCaption(QString(QChar(0xD800))),
                 QList<SaveProblem>(
                     { below(QString(QChar(0xD800)),
                             QStringLiteral("caption holds characters that Windows-1252 cannot encode: U+D800")) }));
    }

    void commandTextsAreChecked()
    {
        MenuDocument document = cleanDocument();
        document.items[1].commands[1] = Command { QStringLiteral("zip=7z"), QStringLiteral("pack\r\nmore") };
        document.items[1].commands[2] = Command { QStringLiteral("r\nar"), QStringLiteral("\u2713") };
        document.items[2].commands[1] = Command { QStringLiteral("\u0416"), QStringLiteral("del") };
        QCOMPARE(
            findSaveProblems(document),
            QList<SaveProblem>({
                pack(QStringLiteral("extension of command 1 holds \"=\", where the file ends the extension")),
                pack(QStringLiteral("command 1 holds a line break (the lines of a command are joined by \"||\")")),
                pack(QStringLiteral("extension of command 2 holds a line break")),
                pack(QStringLiteral("command 2 holds characters that Windows-1252 cannot encode: \"\u2713\" (U+2713)")),
                SaveProblem { QStringLiteral("\"Delete\""),
                              QStringLiteral("extension of command 1 holds characters that Windows-1252 cannot "
                                             "encode: \"\u0416\" (U+0416)") },
            }));
    }

    void aLinkIsCheckedWithTheCommandsWrittenInItsPlace()
    {
        MenuDocument document = cleanDocument();
        // Delete copies Pack's commands: its own are not written, Pack's are, twice.
        document.items[2].copiesCommands = true;
        document.items[2].copyKey = QStringLiteral("E1");
        document.items[2].commands[1].command = QStringLiteral("not\nwritten");
        QVERIFY(findSaveProblems(document).isEmpty());

        document.items[1].commands[2].extension = QStringLiteral("a=b");
        QCOMPARE(findSaveProblems(document),
                 QList<SaveProblem>(
                     { pack(QStringLiteral("extension of command 2 holds \"=\", where the file ends the extension")),
                       SaveProblem { QStringLiteral("\"Delete\""),
                                     QStringLiteral("extension of command 2 (copied from \"Pack\") holds \"=\", "
                                                    "where the file ends the extension") } }));

        // A link that names no item (a pasted record keeps a link to an item deleted since): the
        // writer would fail on it, so the check names it.
        document.items[2].copyKey = QStringLiteral("E99");
        QCOMPARE(findSaveProblems(document),
                 QList<SaveProblem>(
                     { pack(QStringLiteral("extension of command 2 holds \"=\", where the file ends the extension")),
                       SaveProblem { QStringLiteral("\"Delete\""),
                                     QStringLiteral("takes its commands from item E99, which no longer exists") } }));
    }

    void aMenuWhoseFileWouldHoldNoItem()
    {
        // Every item gone, or the only item its own parent (as a paste can leave it): the file would
        // list no item, and a file without items does not open.
        MenuDocument document;
        const SaveProblem noItem { QString(),
                                   QStringLiteral("the file would hold no item, and a menu file without items "
                                                  "does not open") };
        QCOMPARE(findSaveProblems(document), QList<SaveProblem>({ noItem }));
        QCOMPARE(noItem.text(), noItem.description);
        document.items = { makeItem(QStringLiteral("Alone"), 0, 0, 1) };
        QCOMPARE(findSaveProblems(document), QList<SaveProblem>({ noItem }));
        MenuDocument reread;
        QVERIFY(!readMenuBytes(menuFileBytes(document), reread).ok());
    }

    void itemsTheFileDoesNotListAreNotChecked()
    {
        MenuDocument document = cleanDocument();
        MenuItem orphan = makeItem(QStringLiteral("\u00B7orphan\n"), 3, 9, 1);
        orphan.commands.append(Command { QStringLiteral("="), QStringLiteral("\u2713") });
        document.items.append(orphan);
        QVERIFY(findSaveProblems(document).isEmpty());
    }

    void everyProblemOfAnItemIsListed()
    {
        QCOMPARE(problemsWithTopCaption(QStringLiteral("\u00B7a\n\u2713")).size(), 3);
    }

    void longCaptionsAndDeepPathsAreShortened()
    {
        MenuDocument document;
        for (int depth = 0; depth < 8; ++depth) {
            document.items.append(makeItem(QStringLiteral("L%1").arg(depth), depth, qint16(depth - 1), 1,
                                           depth < 7 ? qint16(1) : qint16(0)));
        }
        document.items[7].caption = QString(100'000, QLatin1Char('x')) + QChar(0x2713);
        const QList<SaveProblem> problems = findSaveProblems(document);
        QCOMPARE(problems.size(), 1);
        QCOMPARE(problems.constFirst().itemPath,
                 QStringLiteral("\"L0\" > \"L1\" > \u2026 > \"L5\" > \"L6\" > \"") + QString(40, QLatin1Char('x'))
                     + QStringLiteral("\u2026\""));
    }

    void aMenuOfMoreItemsThanAFileHoldsIsRefused()
    {
        QVERIFY(findSaveProblems(flatMenu(32767)).isEmpty());
        MenuDocument tooMany = flatMenu(32768);
        const QList<SaveProblem> expected { SaveProblem {
            QString(),
            QStringLiteral("the menu holds 32768 items, more than the 32767 a menu file can hold; delete "
                           "some") } };
        QCOMPARE(findSaveProblems(tooMany), expected);
        // Whatever else is wrong comes after it.
        tooMany.items[3].caption = QStringLiteral("a\nb");
        const QList<SaveProblem> problems = findSaveProblems(tooMany);
        QCOMPARE(problems.size(), 2);
        QCOMPARE(problems.constFirst(), expected.constFirst());
        QCOMPARE(problems.constLast().description, QStringLiteral("caption holds a line break"));
    }

    void theSizeLimitIsTheExactLengthOfTheFileOnRandomMenus()
    {
        int measured = 0;
        for (quint32 seed = 1; seed <= 300; ++seed) {
            QRandomGenerator random(seed);
            MenuDocument document = RandomMenu::generate(random, 1 + random.bounded(60));
            roughenTexts(random, document);
            qint64 size = 0;
            try {
                size = menuFileBytes(document).size();
            } catch (const RunTimeError&) {
                continue; // a link that names no item: the check names that instead
            }
            ++measured;
            const QString context = QStringLiteral("seed %1, %2 bytes").arg(seed).arg(size);
            QVERIFY2(!holdsSizeProblem(findSaveProblems(document, size)), qPrintable(context));
            const QList<SaveProblem> problems = findSaveProblems(document, size - 1);
            QVERIFY2(holdsSizeProblem(problems), qPrintable(context));
            QVERIFY2(problems.constFirst().description.startsWith(
                         QStringLiteral("the menu file would be %1 bytes").arg(size)),
                     qPrintable(context));
        }
        QVERIFY(measured > 200);
    }

    void aMenuWhoseFileTheReaderWouldRefuseIsRefusedWithoutBuildingIt()
    {
        // 256 items of one shared 1 MiB line each, and the fixed lines: just over the reader's limit,
        // while the captions take a few megabytes of memory.
        const qint64 mebibyte = 1024 * 1024;
        const QString caption(mebibyte - 2, QLatin1Char('x'));
        MenuDocument document = flatMenu(256);
        for (MenuItem& item : document.items) {
            item.caption = caption;
        }
        const qint64 fixed = menuFileSize(flatMenu(0));
        QCOMPARE(menuFileSize(document), maximumMenuFileSize + fixed);
        QCOMPARE(findSaveProblems(document),
                 QList<SaveProblem>({ tooLarge(maximumMenuFileSize + fixed, QStringLiteral("256.0 MiB"),
                                               maximumMenuFileSize, QStringLiteral("256.0 MiB")) }));

        // Exactly as large as the reader takes: saved.
        document.items.last().caption.chop(fixed);
        QCOMPARE(menuFileSize(document), maximumMenuFileSize);
        QVERIFY(findSaveProblems(document).isEmpty());
        // One byte more, in a command: refused.
        document.items.first().commands.append(Command { QString(), QString() });
        document.items.last().caption.chop(menuFileSize(document) - maximumMenuFileSize - 1);
        QCOMPARE(menuFileSize(document), maximumMenuFileSize + 1);
        QCOMPARE(findSaveProblems(document).size(), 1);
    }

    void whatTheCheckAcceptsReadsBackAndWhatItRefusesDoesNot_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("topLevel");
        QTest::newRow("leading marker") << QStringLiteral("\u00B7x") << false;
        QTest::newRow("top-level leading marker") << QStringLiteral("\u00B7") << true;
        QTest::newRow("end tag") << QStringLiteral("[/MENU]") << true;
        QTest::newRow("line feed") << QStringLiteral("a\nb") << false;
        QTest::newRow("carriage return") << QStringLiteral("a\rb") << true;
        QTest::newRow("outside Windows-1252") << QStringLiteral("\u0416") << false;
        QTest::newRow("empty top level") << QString() << true;
        QTest::newRow("trailing marker") << QStringLiteral("x\u00B7") << true;
        QTest::newRow("nested end tag") << QStringLiteral("[/menu]") << false;
    }

    void whatTheCheckAcceptsReadsBackAndWhatItRefusesDoesNot()
    {
        QFETCH(QString, caption);
        QFETCH(bool, topLevel);
        MenuDocument document = cleanDocument();
        document.items[topLevel ? 2 : 1].caption = caption;
        MenuDocument reread;
        const bool readsBack = readMenuBytes(menuFileBytes(document), reread).ok()
            && reread.items.size() == document.items.size() && reread.items.at(topLevel ? 2 : 1).caption == caption
            && reread.items.at(2).commands == document.items.at(2).commands;
        QCOMPARE(findSaveProblems(document).isEmpty(), readsBack);
    }
};

QTEST_GUILESS_MAIN(TestSaveProblemCheck)
#include "test_saveproblemcheck.moc"

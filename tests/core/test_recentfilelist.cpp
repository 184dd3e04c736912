#include "core/recentfilelist.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QStringList visibleCaptions(const RecentFileList& list)
{
    QStringList captions;
    for (int n = 0; n < RecentFileList::EntryCount; ++n) {
        if (list.entry(n).visible) {
            captions.append(list.entry(n).caption);
        }
    }
    return captions;
}

} // namespace

class TestRecentFileList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutRecentFileNothingIsShown()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        RecentFileList list(folder.path());
        list.loadRecentList();
        QVERIFY(!list.separatorVisible());
        for (int n = 0; n < RecentFileList::EntryCount; ++n) {
            QVERIFY(!list.entry(n).visible);
        }
    }

    void sixOpensKeepTheLastFiveNewestFirst()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        RecentFileList list(folder.path());
        list.loadRecentList();
        for (int n = 1; n <= 6; ++n) {
            list.addRecentFile(QStringLiteral("C:\\Menus\\menu%1.ini").arg(n));
        }
        const QStringList expected {
            QStringLiteral("C:\\Menus\\menu6.ini"), QStringLiteral("C:\\Menus\\menu5.ini"),
            QStringLiteral("C:\\Menus\\menu4.ini"), QStringLiteral("C:\\Menus\\menu3.ini"),
            QStringLiteral("C:\\Menus\\menu2.ini"),
        };
        QCOMPARE(visibleCaptions(list), expected);
        for (int n = 0; n < RecentFileList::FilledCount; ++n) {
            QCOMPARE(list.entry(n).caption, expected.at(n));
        }
        QVERIFY(list.separatorVisible());
        QCOMPARE(readBytes(QDir(folder.path()).filePath(QStringLiteral("Recent.ini"))),
                 QByteArray("C:\\Menus\\menu6.ini\r\nC:\\Menus\\menu5.ini\r\nC:\\Menus\\menu4.ini\r\n"
                            "C:\\Menus\\menu3.ini\r\nC:\\Menus\\menu2.ini\r\n"));

        // The next start shows the same list.
        RecentFileList reloaded(folder.path());
        reloaded.loadRecentList();
        QCOMPARE(visibleCaptions(reloaded), expected);
    }

    void reopeningAListedFileDoesNotMoveIt()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        RecentFileList list(folder.path());
        list.addRecentFile(QStringLiteral("/menus/a.ini"));
        list.addRecentFile(QStringLiteral("/menus/b.ini"));
        list.addRecentFile(QStringLiteral("/menus/c.ini"));
        const QString recentPath = QDir(folder.path()).filePath(QStringLiteral("Recent.ini"));
        const QByteArray before = readBytes(recentPath);
        // Remove the file: a listed path must not even rewrite it.
        QVERIFY(QFile::remove(recentPath));

        list.addRecentFile(QStringLiteral("/menus/a.ini"));
        QCOMPARE(visibleCaptions(list),
                 (QStringList { QStringLiteral("/menus/c.ini"), QStringLiteral("/menus/b.ini"),
                                QStringLiteral("/menus/a.ini") }));
        QVERIFY(!QFile::exists(recentPath));
        QCOMPARE(before, QByteArray("/menus/c.ini\r\n/menus/b.ini\r\n/menus/a.ini\r\n"));
    }

    void comparisonIsCaseSensitive()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        RecentFileList list(folder.path());
        list.addRecentFile(QStringLiteral("C:\\Menus\\Tools.ini"));
        list.addRecentFile(QStringLiteral("c:\\menus\\tools.ini"));
        QCOMPARE(visibleCaptions(list),
                 (QStringList { QStringLiteral("c:\\menus\\tools.ini"), QStringLiteral("C:\\Menus\\Tools.ini") }));
    }

    void longRecentFileShowsFirstFiveAndIsCutAtNextRewrite()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString recentPath = QDir(folder.path()).filePath(QStringLiteral("Recent.ini"));
        QVERIFY(writeBytes(recentPath,
                           "one.ini\r\ntwo.ini\r\nthree.ini\r\nfour.ini\r\nfive.ini\r\nsix.ini\r\n"
                           "seven.ini\r\n"));
        RecentFileList list(folder.path());
        list.loadRecentList();
        QCOMPARE(visibleCaptions(list),
                 (QStringList { QStringLiteral("one.ini"), QStringLiteral("two.ini"), QStringLiteral("three.ini"),
                                QStringLiteral("four.ini"), QStringLiteral("five.ini") }));
        for (int n = RecentFileList::FilledCount; n < RecentFileList::EntryCount; ++n) {
            QVERIFY(!list.entry(n).visible);
        }

        list.addRecentFile(QStringLiteral("new.ini"));
        QCOMPARE(readBytes(recentPath), QByteArray("new.ini\r\none.ini\r\ntwo.ini\r\nthree.ini\r\nfour.ini\r\n"));
        for (int n = RecentFileList::FilledCount; n < RecentFileList::EntryCount; ++n) {
            QVERIFY(!list.entry(n).visible);
        }
    }

    void recentFileIsFoundWhateverTheCaseOfItsName()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(writeBytes(QDir(folder.path()).filePath(QStringLiteral("RECENT.INI")), "first.ini\nsecond.ini"));
        RecentFileList list(folder.path());
        list.loadRecentList();
        QVERIFY(list.separatorVisible());
        QCOMPARE(visibleCaptions(list), (QStringList { QStringLiteral("first.ini"), QStringLiteral("second.ini") }));

        // The rewrite replaces that file instead of adding a second one beside it.
        list.addRecentFile(QStringLiteral("third.ini"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList { QStringLiteral("RECENT.INI") });
        QCOMPARE(readBytes(QDir(folder.path()).filePath(QStringLiteral("RECENT.INI"))),
                 QByteArray("third.ini\r\nfirst.ini\r\nsecond.ini\r\n"));
    }

    void emptyRecentFileShowsOnlyTheSeparator()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(writeBytes(QDir(folder.path()).filePath(QStringLiteral("Recent.ini")), QByteArray()));
        RecentFileList list(folder.path());
        list.loadRecentList();
        QVERIFY(list.separatorVisible());
        QVERIFY(visibleCaptions(list).isEmpty());
    }

    void pathsAreWindows1252Text()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = QStringLiteral("C:\\Menus\\R\u00e9sum\u00e9 \u20ac.ini");
        RecentFileList list(folder.path());
        list.addRecentFile(path);
        QCOMPARE(readBytes(QDir(folder.path()).filePath(QStringLiteral("Recent.ini"))),
                 QByteArray("C:\\Menus\\R\xe9sum\xe9 \x80.ini\r\n"));
        RecentFileList reloaded(folder.path());
        reloaded.loadRecentList();
        QCOMPARE(reloaded.entry(0).caption, path);
    }

    void unwritableFolderKeepsTheMenuChanged()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        // A folder that does not exist cannot be written to, whoever runs the test.
        RecentFileList list(QDir(folder.path()).filePath(QStringLiteral("missing")));
        list.addRecentFile(QStringLiteral("a.ini"));
        QCOMPARE(list.entry(0).caption, QStringLiteral("a.ini"));
        QVERIFY(list.entry(0).visible);
        QVERIFY(list.separatorVisible());
        QVERIFY(!QFile::exists(QDir(folder.path()).filePath(QStringLiteral("missing/Recent.ini"))));
    }

    void entriesOutsideTheListAreHidden()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        RecentFileList list(folder.path());
        list.addRecentFile(QStringLiteral("a.ini"));
        QVERIFY(!list.entry(-1).visible);
        QVERIFY(!list.entry(RecentFileList::EntryCount).visible);
    }
};

QTEST_GUILESS_MAIN(TestRecentFileList)
#include "test_recentfilelist.moc"

#include "documentsavability.h"
#include "menucomparison.h"

#include "editing/menuopening.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"

#include "menufile/menufixtures.h"
#include <QFile>

#include <QTest>

namespace {

const QChar marker(0x00B7);

/// Top (one command) with the child Child (one command), and Other (one command).
MenuDocument smallDocument()
{
    MenuDocument document;
    MenuItem top = makeItem(QStringLiteral("Top"), 0, -1, 1, 1);
    top.commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") });
    MenuItem child = makeItem(QStringLiteral("Child"), 1, 0, 1);
    child.commands.append(Command { QString(), QStringLiteral("del $fs-001$") });
    MenuItem other = makeItem(QStringLiteral("Other"), 2, -1, 2);
    other.commands.append(Command { QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$") });
    document.items = { top, child, other };
    document.lastIndex = 2;
    return document;
}

enum Place { TopCaption, ChildCaption, Extension, CommandText };

MenuDocument withText(Place place, const QString& text)
{
    MenuDocument document = smallDocument();
    switch (place) {
    case TopCaption:
        document.items[0].caption = text;
        break;
    case ChildCaption:
        document.items[1].caption = text;
        break;
    case Extension:
        document.items[2].commands[1].extension = text;
        break;
    case CommandText:
        document.items[2].commands[1].command = text;
        break;
    }
    return document;
}

/// Whether writing `document` and reading the file back gives the tree that was written.
bool fileKeepsWhole(const MenuDocument& document)
{
    MenuDocument reread;
    return readMenuBytes(menuFileBytes(document), reread).ok()
        && menuDifference(document, reread, ComparedDetail::WrittenTree).isEmpty();
}

} // namespace

class TestDocumentSavability : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleMenusAreSavable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("archive-tools") << QStringLiteral("archive-tools.ini");
        QTest::newRow("media-tools") << QStringLiteral("media-tools.ini");
    }

    void exampleMenusAreSavable()
    {
        QFETCH(QString, name);
        QFile file(QStringLiteral(KELV_EXAMPLES_DIR "/") + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        for (const bool detectLinks : { false, true }) {
            MenuDocument document;
            QVERIFY(openMenuBytes(bytes, detectLinks, document).ok());
            QVERIFY(documentIsSavable(document));
        }
    }

    void texts_data()
    {
        QTest::addColumn<int>("place");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("savable");

        QTest::newRow("plain caption") << int(TopCaption) << QStringLiteral("Archive") << true;
        // Written as a single marker, which reads back as a top-level item with an empty caption.
        QTest::newRow("empty top-level caption") << int(TopCaption) << QString() << true;
        QTest::newRow("empty child caption") << int(ChildCaption) << QString() << true;
        QTest::newRow("top-level caption starting with a marker")
            << int(TopCaption) << QString(marker) + QStringLiteral("x") << false;
        QTest::newRow("child caption starting with a marker")
            << int(ChildCaption) << QString(marker) + QStringLiteral("x") << false;
        QTest::newRow("caption ending with a marker")
            << int(TopCaption) << QStringLiteral("x") + QString(marker) << true;
        QTest::newRow("top-level [/Menu]") << int(TopCaption) << QStringLiteral("[/Menu]") << false;
        QTest::newRow("top-level [/mEnU]") << int(TopCaption) << QStringLiteral("[/mEnU]") << false;
        QTest::newRow("top-level [/Menu] with a blank") << int(TopCaption) << QStringLiteral("[/Menu] ") << true;
        QTest::newRow("child [/Menu]") << int(ChildCaption) << QStringLiteral("[/Menu]") << true;
        QTest::newRow("top-level [/Commands]") << int(TopCaption) << QStringLiteral("[/Commands]") << true;
        QTest::newRow("CR in a caption") << int(ChildCaption) << QStringLiteral("a\rb") << false;
        QTest::newRow("LF in a caption") << int(TopCaption) << QStringLiteral("a\nb") << false;
        QTest::newRow("euro sign in a caption") << int(TopCaption) << QStringLiteral("5 \u20AC") << true;
        QTest::newRow("A macron in a caption") << int(ChildCaption) << QStringLiteral("\u0100") << false;
        QTest::newRow("emoji in a caption") << int(TopCaption) << QStringLiteral("\U0001F600") << false;
        QTest::newRow("undefined byte 0x81 in a caption") << int(TopCaption) << QStringLiteral("\u0081") << true;
        QTest::newRow("question mark in a caption") << int(TopCaption) << QStringLiteral("why?") << true;
        QTest::newRow("equals sign in an extension") << int(Extension) << QStringLiteral("a=b") << false;
        QTest::newRow("colon in an extension") << int(Extension) << QStringLiteral("a:b") << true;
        QTest::newRow("CR in an extension") << int(Extension) << QStringLiteral("\r") << false;
        QTest::newRow("A macron in an extension") << int(Extension) << QStringLiteral("\u0100") << false;
        QTest::newRow("equals sign in a command") << int(CommandText) << QStringLiteral("a=b") << true;
        QTest::newRow("joined lines in a command") << int(CommandText) << QStringLiteral("a||b") << true;
        QTest::newRow("LF in a command") << int(CommandText) << QStringLiteral("a\nb") << false;
        QTest::newRow("CR LF in a command") << int(CommandText) << QStringLiteral("a\r\nb") << false;
        QTest::newRow("A macron in a command") << int(CommandText) << QStringLiteral("\u0100") << false;
    }

    void texts()
    {
        QFETCH(int, place);
        QFETCH(QString, text);
        QFETCH(bool, savable);
        const MenuDocument document = withText(Place(place), text);
        QCOMPARE(documentIsSavable(document), savable);
        // The check refuses exactly what the file would not keep.
        QCOMPARE(fileKeepsWhole(document), savable);
    }

    void menuWithoutAnItemTheWriterReaches()
    {
        // Child alone, its parent index now naming itself, as after pasting a record copied under an
        // item deleted since: the walk reaches nothing and the file would hold no item.
        MenuDocument document = smallDocument();
        document.items.removeFirst();
        document.items.removeLast();
        document.items[0].key = QStringLiteral("E0");
        QVERIFY(!documentIsSavable(document));
        QVERIFY(!fileKeepsWhole(document));

        MenuDocument reread;
        QCOMPARE(readMenuBytes(menuFileBytes(document), reread).reason, QStringLiteral("holds no item"));
    }

    void onlyTheCommandsWrittenCount()
    {
        // Other links to Top: its own commands are not written, whatever they hold.
        MenuDocument document = smallDocument();
        document.items[2].copiesCommands = true;
        document.items[2].copyKey = QStringLiteral("E0");
        document.items[2].commands[1].command = QStringLiteral("a\nb");
        QVERIFY(documentIsSavable(document));
        QVERIFY(fileKeepsWhole(document));

        // The target's commands are written for both.
        document.items[0].commands[1].extension = QStringLiteral("a=b");
        QVERIFY(!documentIsSavable(document));
        QVERIFY(!fileKeepsWhole(document));
    }
};

QTEST_GUILESS_MAIN(TestDocumentSavability)
#include "test_documentsavability.moc"

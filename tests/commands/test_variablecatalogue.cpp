#include "commands/variablecatalogue.h"

#include <QTest>

#include <climits>

namespace {

/// One row of the catalogue: the variable, its menu mode, description and comments. The comments
/// hold "-" for none, "DEST" and "DEST-N" for the two destination comments.
struct Row
{
    const char* name;
    const char* mode;
    const char* description;
    const char* comments;
};

const char* const changeNumber = "You can change the number";
const char* const changeAvi = "You can change the extension AVI by anything else";

// Row 8's comment ends with the name of a video product of the implementer's choosing: only its
// beginning is fixed, and row 32's help is a rich-text document, checked on its own.
const Row rows[VariableCatalogue::Count] = {
    { "$fs-001$", "FILE", "Path of the first selected file", changeNumber },
    { "$fs-001-ne$", "FILE", "Path of the first selected file without its extension", changeNumber },
    { "$fs-all$", "ALL", "Path of the current selected file", "-" },
    { "$fs-all-ne$", "ALL", "Path of the current selected file without its extension", "-" },
    { "$fs-avi-001$", "FILE", "Path of the first AVI file selected", changeAvi },
    { "$fs-avi-001-ne$", "FILE", "Path of the first AVI file selected without its extension", changeAvi },
    { "$fs-avi-all$", "ALL", "Path of the current selected file, only if it is a AVI file", changeAvi },
    { "$fs-avi-all-ne$", "ALL", "Path of the current selected file without its extension, only if it is a AVI file",
      changeAvi },
    { "$ass-001$", "-", "Audio stream selected by the first $audiostream$ item", nullptr },
    { "$sss-001$", "-", "Subtitle stream selected by the first $subtitlestream$ item",
      "You can change the number if you have multiple $subtitlestream$ items" },
    { "$itemcaption$", "-", "Selected item caption", "-" },
    { "$itemcaption-001$", "-", "Last level selected item's caption",
      "001 = selected item's caption, 002 = selected item's parent's caption ..." },
    { "$fs-dest-001$", "FILE", "Destination path of the first selected file", "DEST-N" },
    { "$fs-dest-001-ne$", "FILE", "Destination path of the first selected file without its extension", "DEST-N" },
    { "$fs-dest-all$", "ALL", "Destination path of the current selected file", "DEST" },
    { "$fs-dest-all-ne$", "ALL", "Destination path of the current selected file without its extension", "DEST" },
    { "$fs-dest-avi-001$", "FILE", "Destination path of the first selected file, only if it is a AVI file", "DEST-N" },
    { "$fs-dest-avi-001-ne$", "FILE",
      "Destination path of the first selected file without its extension, only if it is a AVI file", "DEST-N" },
    { "$fs-dest-avi-all$", "ALL", "Destination path of the current selected file, only if it is a AVI file", "DEST" },
    { "$fs-dest-avi-all-ne$", "ALL",
      "Destination path of the current selected file without its extension, only if it is a AVI file", "DEST" },
    { "$fs-wp-001$", "FILE", "Name of the first selected file", changeNumber },
    { "$fs-wp-001-ne$", "FILE", "Name of the first selected file without its extension", changeNumber },
    { "$fs-wp-all$", "ALL", "Name of the current selected file", "-" },
    { "$fs-wp-all-ne$", "ALL", "Name of the current selected file without its extension", "-" },
    { "$fs-wp-avi-001$", "FILE", "Name of the first AVI file selected", changeAvi },
    { "$fs-wp-avi-001-ne$", "FILE", "Name of the first AVI file selected without its extension", changeAvi },
    { "$fs-wp-avi-all$", "ALL", "Name of the current selected file, only if it is a AVI file", changeAvi },
    { "$fs-wp-avi-all-ne$", "ALL", "Name of the current selected file without its extension, only if it is a AVI file",
      changeAvi },
    { "$fs-ext$", "ALL", "Current selected file extension", "-" },
    { "$datetime$", "-", "DDMMAAAHHMMSS current date and time",
      "Useful to differentiate the differents KELV executions" },
    { "#pop#", "-", "Tolvexer parameter that ask the user for a value",
      "Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp 001=#pop#" },
    { "#ask#", "-", "Tolvexer parameter that display the script parameters form",
      "Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp 001=#ask#" },
    { "#pop:$datetime$#", nullptr, nullptr, nullptr },
    { "$exepath$", "-", "KELV installation path (KELV.dll path)", "-" },
};

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const QString destination = QStringLiteral(
    "Destination is the same directory if you use the left click, but if you use KELV with a drag and drop with "
    "the right click, the destination directory will be the drop directory");

QString commentOf(const Row& row)
{
    const QString comments = latin1(row.comments);
    if (comments == QLatin1String("DEST")) {
        return destination;
    }
    if (comments == QLatin1String("DEST-N")) {
        return QStringLiteral("You can change the number. ") + destination;
    }
    return comments;
}

/// The three lines of a plain help text, joined by CR LF.
QString helpOf(const QString& mode, const QString& description, const QString& comments)
{
    return QStringLiteral("Menu mode required : ") + mode + QStringLiteral("\r\n") + QStringLiteral("Description : ")
        + description + QStringLiteral("\r\n") + QStringLiteral("Comments : ") + comments;
}

QString richHelp()
{
    const QString header = QStringLiteral(
        "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1036{\\fonttbl{\\f0\\fswiss\\fprq2\\fcharset0 MS Sans Serif;}}"
        "{\\colortbl ;\\red0\\green0\\blue0;\\red255\\green0\\blue0;\\red0\\green128\\blue0;}"
        "{\\*\\generator Msftedit 5.41.15.1507;}\\viewkind4\\uc1\\pard\\f0\\fs16 Menu mode required : -\\par");
    const QString description = QStringLiteral(
        "Description : Tolvexer parameter that ask the user for a value once per $datetime$ (KELV execution)\\par");
    const QString comments = QStringLiteral(
        "Comments : Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp 001=#pop:$datetime$#. "
        "Useful to let the user enter a value once even if Tolvexer is executed a lot of times. \\cf2 ATTENTION : "
        "If you want to use this parameter more than once, add a number inside : #pop:$datetime$\\cf3\\ul\\b "
        "here\\cf2\\ulnone\\b0 # otherwise the second one wont pop and will take the first entered value\\cf1 "
        ".\\cf0\\par}");
    return header + QStringLiteral("\r\n") + description + QStringLiteral("\r\n") + comments;
}

} // namespace

class TestVariableCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theCatalogueHoldsThirtyFourVariables()
    {
        QCOMPARE(VariableCatalogue::Count, 34);
        QCOMPARE(int(std::size(rows)), VariableCatalogue::Count);
        for (int i = 0; i < VariableCatalogue::Count; ++i) {
            QVERIFY2(!VariableCatalogue::name(i).isEmpty(), qPrintable(QString::number(i)));
            QVERIFY2(!VariableCatalogue::help(i).isEmpty(), qPrintable(QString::number(i)));
        }
        QVERIFY(VariableCatalogue::name(VariableCatalogue::Count).isEmpty());
    }

    void theNamesAreTheTablesInItsOrder()
    {
        for (int i = 0; i < VariableCatalogue::Count; ++i) {
            QCOMPARE(VariableCatalogue::name(i), latin1(rows[i].name));
        }
        QCOMPARE(VariableCatalogue::name(0), QStringLiteral("$fs-001$"));
        QCOMPARE(VariableCatalogue::name(33), QStringLiteral("$exepath$"));
    }

    void thePlainHelpTextsAreModeDescriptionAndComments()
    {
        for (int i = 0; i < VariableCatalogue::Count; ++i) {
            if (rows[i].mode == nullptr || rows[i].comments == nullptr) {
                continue;
            }
            QCOMPARE(VariableCatalogue::help(i),
                     helpOf(latin1(rows[i].mode), latin1(rows[i].description), commentOf(rows[i])));
        }
    }

    void theHelpTextsSpellTheDestinationCommentsInFull()
    {
        QCOMPARE(VariableCatalogue::help(12).section(QStringLiteral("\r\n"), 2),
                 QStringLiteral("Comments : You can change the number. Destination is the same directory if you use "
                                "the left click, but if you use KELV with a drag and drop with the right click, the "
                                "destination directory will be the drop directory"));
        QCOMPARE(VariableCatalogue::help(14).section(QStringLiteral("\r\n"), 2),
                 QStringLiteral("Comments : Destination is the same directory if you use the left click, but if you "
                                "use KELV with a drag and drop with the right click, the destination directory will "
                                "be the drop directory"));
        QCOMPARE(VariableCatalogue::help(2).section(QStringLiteral("\r\n"), 2), QStringLiteral("Comments : -"));
    }

    void everyPlainHelpTextHasItsThreeLines()
    {
        for (int i = 0; i < VariableCatalogue::Count; ++i) {
            if (VariableCatalogue::hasRichHelp(i)) {
                continue;
            }
            const QStringList lines = VariableCatalogue::help(i).split(QStringLiteral("\r\n"));
            QCOMPARE(lines.size(), 3);
            QVERIFY(lines.at(0) == QLatin1String("Menu mode required : FILE")
                    || lines.at(0) == QLatin1String("Menu mode required : ALL")
                    || lines.at(0) == QLatin1String("Menu mode required : -"));
            QVERIFY(lines.at(1).startsWith(QLatin1String("Description : ")));
            QVERIFY(lines.at(2).startsWith(QLatin1String("Comments : ")));
            // The two line breaks are CR LF pairs and the only ones.
            QCOMPARE(VariableCatalogue::help(i).count(QLatin1Char('\r')), 2);
            QCOMPARE(VariableCatalogue::help(i).count(QLatin1Char('\n')), 2);
        }
    }

    void theAudioStreamsCommentEndsWithAProductName()
    {
        const QString expectedStart
            = helpOf(QStringLiteral("-"), QStringLiteral("Audio stream selected by the first $audiostream$ item"),
                     QStringLiteral("You can change the number if you have multiple $audiostream$ items, useful for "));
        const QString help = VariableCatalogue::help(8);
        QVERIFY2(help.startsWith(expectedStart), qPrintable(help));
        const QString product = help.mid(expectedStart.size());
        QVERIFY2(!product.trimmed().isEmpty(), qPrintable(help));
        QVERIFY(!product.contains(QLatin1Char('\r')));
        QVERIFY(!product.contains(QLatin1Char('\n')));
    }

    void theRichHelpIsTheRtfDocument()
    {
        QVERIFY(VariableCatalogue::hasRichHelp(32));
        QCOMPARE(VariableCatalogue::RichHelpEntry, 32);
        QCOMPARE(VariableCatalogue::name(32), QStringLiteral("#pop:$datetime$#"));
        QCOMPARE(VariableCatalogue::help(32), richHelp());
        for (int i = 0; i < VariableCatalogue::Count; ++i) {
            QCOMPARE(VariableCatalogue::hasRichHelp(i), i == 32);
            QCOMPARE(VariableCatalogue::help(i).startsWith(QLatin1String("{\\rtf1")), i == 32);
        }
    }

    void indicesOutsideTheTableGiveNothing()
    {
        for (const int index : { -1, 34, 35, 100, INT_MIN, INT_MAX }) {
            QVERIFY2(VariableCatalogue::name(index).isEmpty(), qPrintable(QString::number(index)));
            QVERIFY2(VariableCatalogue::help(index).isEmpty(), qPrintable(QString::number(index)));
            QVERIFY(!VariableCatalogue::hasRichHelp(index));
        }
    }
};

QTEST_GUILESS_MAIN(TestVariableCatalogue)
#include "test_variablecatalogue.moc"

#include "core/knownvariables.h"

#include "commands/variablecatalogue.h"

#include <QTest>

namespace {

using Piece = KnownVariables::Piece;

Piece text(const char* value)
{
    return Piece { Piece::Kind::Text, QString::fromLatin1(value) };
}

Piece number()
{
    return Piece { Piece::Kind::Number, QStringLiteral("001") };
}

Piece extension()
{
    return Piece { Piece::Kind::Extension, QStringLiteral("avi") };
}

} // namespace

Q_DECLARE_METATYPE(KnownVariables::Rule)

class TestKnownVariables : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyDollarVariableOfTheCatalogueIsKnownAsItStands()
    {
        const KnownVariables& known = KnownVariables::catalogue();
        int dollarVariables = 0;
        for (int index = 0; index < VariableCatalogue::Count; ++index) {
            const QString name = VariableCatalogue::name(index);
            if (!name.startsWith(QLatin1Char('$'))) {
                continue;
            }
            ++dollarVariables;
            QVERIFY2(known.isKnown(name), qPrintable(name));
        }
        QCOMPARE(dollarVariables, 31);
        // "#pop#", "#ask#" and "#pop:$datetime$#" are parameter values, not "$" variables.
        QCOMPARE(known.rules().size(), 31);
    }

    void rulesAreCutAtTheNumberAndExtensionTheHelpAllowsToChange_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<KnownVariables::Rule>("rule");
        QTest::newRow("number") << QStringLiteral("$fs-001$") << KnownVariables::Rule { text("fs"), number() };
        QTest::newRow("number and ne") << QStringLiteral("$fs-001-ne$")
                                       << KnownVariables::Rule { text("fs"), number(), text("ne") };
        QTest::newRow("nothing to change")
            << QStringLiteral("$fs-all$") << KnownVariables::Rule { text("fs"), text("all") };
        QTest::newRow("extension and number")
            << QStringLiteral("$fs-dest-avi-001$")
            << KnownVariables::Rule { text("fs"), text("dest"), extension(), number() };
        // Its help allows another extension, and says nothing of the number.
        QTest::newRow("extension, number as it stands")
            << QStringLiteral("$fs-avi-001$") << KnownVariables::Rule { text("fs"), extension(), text("001") };
        QTest::newRow("extension only") << QStringLiteral("$fs-wp-avi-all-ne$")
                                        << KnownVariables::Rule { text("fs"), text("wp"), extension(), text("all"),
                                                                  text("ne") };
        QTest::newRow("destination with number")
            << QStringLiteral("$fs-dest-avi-001-ne$")
            << KnownVariables::Rule { text("fs"), text("dest"), extension(), number(), text("ne") };
        QTest::newRow("audio stream") << QStringLiteral("$ass-001$") << KnownVariables::Rule { text("ass"), number() };
        QTest::newRow("caption levels") << QStringLiteral("$itemcaption-001$")
                                        << KnownVariables::Rule { text("itemcaption"), number() };
        QTest::newRow("date and time") << QStringLiteral("$datetime$") << KnownVariables::Rule { text("datetime") };
    }

    void rulesAreCutAtTheNumberAndExtensionTheHelpAllowsToChange()
    {
        QFETCH(QString, variable);
        QFETCH(KnownVariables::Rule, rule);
        const QList<KnownVariables::Rule>& rules = KnownVariables::catalogue().rules();
        int position = -1;
        for (int index = 0, dollarIndex = 0; index < VariableCatalogue::Count; ++index) {
            if (VariableCatalogue::name(index) == variable) {
                position = dollarIndex;
            }
            dollarIndex += VariableCatalogue::name(index).startsWith(QLatin1Char('$')) ? 1 : 0;
        }
        QVERIFY(position >= 0);
        QCOMPARE(rules.at(position), rule);
    }

    void allowedVariationsAreKnown_data()
    {
        QTest::addColumn<QString>("variable");
        const char* const variations[] = {
            "$fs-002$",
            "$fs-030$",
            "$fs-999$",
            "$fs-123-ne$",
            "$fs-mkv-001$",
            "$fs-MKV-001$",
            "$fs-mkv-001-ne$",
            "$fs-mkv-all$",
            "$fs-tar.gz-all-ne$",
            "$ass-002$",
            "$sss-010$",
            "$itemcaption-002$",
            "$itemcaption-015$",
            "$fs-dest-002$",
            "$fs-dest-004-ne$",
            "$fs-dest-mp3-all$",
            "$fs-dest-ogg-002$",
            "$fs-dest-ogg-all-ne$",
            "$fs-dest-mkv-005-ne$",
            "$fs-wp-002$",
            "$fs-wp-002-ne$",
            "$fs-wp-jpg-001$",
            "$fs-wp-jpg-all-ne$",
            "$fs-wp-pdf-001-ne$",
        };
        for (const char* variation : variations) {
            QTest::newRow(variation) << QString::fromLatin1(variation);
        }
    }

    void allowedVariationsAreKnown()
    {
        QFETCH(QString, variable);
        QVERIFY(KnownVariables::catalogue().isKnown(variable));
    }

    void otherVariablesAreUnknown_data()
    {
        QTest::addColumn<QString>("variable");
        const char* const unknown[] = {
            "$fs-01$", // the number keeps its three digits
            "$fs-0001$",
            "$fs-1$",
            "$fs-000$", // there is no file number zero
            "$fs-abc$",
            "$fs--all$", // no extension at all
            "$fs-mkv$",
            "$FS-001$", // letter case counts outside the extension
            "$fs-001-NE$",
            "$fs-all-ne-002$",
            "$datetime-001$", // its help allows no number
            "$exepath-002$",
            "$fs-ext2$",
            "$fs-wp$",
            "$itemcaption-01$",
            "$itemcaptions$",
            "$fn-001$",
            "$dest$",
            "$$",
            "$ $",
            "$fs-001 $",
            "$fs-001-$",
            "fs-001",
            "$fs-001",
            "fs-001$",
            "$",
            "$fs-dest-avi$",
            "$ass$",
            // The help of these allows another extension, not another number.
            "$fs-mkv-002$",
            "$fs-avi-002-ne$",
            "$fs-wp-jpg-002$",
            "$fs-wp-avi-010-ne$",
        };
        for (const char* variable : unknown) {
            QTest::newRow(variable) << QString::fromLatin1(variable);
        }
    }

    void otherVariablesAreUnknown()
    {
        QFETCH(QString, variable);
        QVERIFY(!KnownVariables::catalogue().isKnown(variable));
    }
};

QTEST_GUILESS_MAIN(TestKnownVariables)
#include "test_knownvariables.moc"

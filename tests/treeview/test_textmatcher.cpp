#include "treeview/textmatcher.h"

#include <QRandomGenerator>
#include <QStringMatcher>
#include <QTest>

namespace {

/// Pieces the random texts are made of: ASCII in both cases, characters whose case folding leads
/// elsewhere (the Kelvin sign folds to "k", the long s to "s", final sigma to sigma), characters
/// without a simple folding (dotted and dotless i), a pair of surrogates whose character folds to
/// another pair, and lone surrogates.
const QStringList& pieces()
{
    static const QStringList all {
        QStringLiteral("a"),
        QStringLiteral("A"),
        QStringLiteral("k"),
        QStringLiteral("K"),
        QStringLiteral("s"),
        QStringLiteral("S"),
        QStringLiteral("$"),
        QStringLiteral(" "),
        QStringLiteral("1"),
        QStringLiteral("\u212A"),
        QStringLiteral("\u017F"),
        QStringLiteral("\u00DF"),
        QStringLiteral("\u1E9E"),
        QStringLiteral("\u03A3"),
        QStringLiteral("\u03C3"),
        QStringLiteral("\u03C2"),
        QStringLiteral("\u0130"),
        QStringLiteral("\u0131"),
        QStringLiteral("\u00C4"),
        QStringLiteral("\u00E4"),
        QString::fromUcs4(U"\U00010400"),
        QString::fromUcs4(U"\U00010428"),
        QString(QChar(0xD801)),
        QString(QChar(0xDC00)),
        QString(QChar(0xDC28)),
    };
    return all;
}

QString randomText(QRandomGenerator& random, int maxPieces)
{
    QString text;
    const int count = random.bounded(maxPieces + 1);
    for (int i = 0; i < count; ++i) {
        text += pieces().at(random.bounded(int(pieces().size())));
    }
    return text;
}

} // namespace

/// The find bar's text search against QStringMatcher, whose results it must give.
class TestTextMatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFirstOccurrence()
    {
        const TextMatcher matcher(QStringLiteral("ab"), Qt::CaseSensitive);
        QCOMPARE(matcher.indexIn(u"xxabab"), 2);
        QCOMPARE(matcher.indexIn(u"xxaBab"), 4);
        QCOMPARE(matcher.indexIn(u"a"), -1);
        QVERIFY(!matcher.isIn(u"ba"));
        QCOMPARE(TextMatcher(QStringLiteral("AB"), Qt::CaseInsensitive).indexIn(u"xxaBab"), 2);
    }

    void anEmptyPatternIsAtTheStart()
    {
        QCOMPARE(TextMatcher(QString(), Qt::CaseSensitive).indexIn(u"abc"), 0);
        QCOMPARE(TextMatcher(QString(), Qt::CaseInsensitive).indexIn(QStringView()), 0);
    }

    void caseIsIgnoredAsUnicodeFoldsIt()
    {
        const TextMatcher kelvin(QStringLiteral("\u212A"), Qt::CaseInsensitive);
        QCOMPARE(kelvin.indexIn(u"xk"), 1);
        QCOMPARE(TextMatcher(QStringLiteral("ask"), Qt::CaseInsensitive).indexIn(u"A\u017F\u212A"), 0);
        QCOMPARE(TextMatcher(QStringLiteral("\u03C3"), Qt::CaseInsensitive).indexIn(u"\u03C2"), 0);
        // A character beyond the 16-bit range folds as a whole.
        const QString deseret = QString::fromUcs4(U"x\U00010400");
        QCOMPARE(TextMatcher(QString::fromUcs4(U"\U00010428"), Qt::CaseInsensitive).indexIn(deseret), 1);
        QCOMPARE(TextMatcher(QString::fromUcs4(U"\U00010428"), Qt::CaseSensitive).indexIn(deseret), -1);
    }

    void onlyTheKelvinSignAndTheLongSFoldIntoAscii()
    {
        // A pattern of plain ASCII is compared with these two only; any other character must fold
        // to something beyond ASCII.
        for (char32_t character = 0x80; character <= 0x10FFFF; ++character) {
            const char32_t folded = QChar::toCaseFolded(character);
            if (folded < 0x80) {
                QVERIFY2(character == 0x212A || character == 0x017F, qPrintable(QString::number(character, 16)));
            }
        }
        QCOMPARE(TextMatcher(QStringLiteral("SK"), Qt::CaseInsensitive).indexIn(u"x\u017F\u212A"), 1);
        QCOMPARE(TextMatcher(QStringLiteral("k"), Qt::CaseInsensitive).indexIn(u"\u00E4\u212A"), 1);
    }

    void aPatternLongerThanTheShiftTable()
    {
        const QString pattern = QString(300, QLatin1Char('a')) + QStringLiteral("b");
        const QString text = QString(400, QLatin1Char('a')) + QStringLiteral("b");
        QCOMPARE(TextMatcher(pattern, Qt::CaseSensitive).indexIn(text), 100);
        QCOMPARE(TextMatcher(pattern.toUpper(), Qt::CaseInsensitive).indexIn(text), 100);
    }

    void givesWhatQStringMatcherGivesOnRandomTexts()
    {
        QRandomGenerator random(19);
        for (int round = 0; round < 20000; ++round) {
            const QString pattern = randomText(random, round % 7 == 0 ? 1 : 4);
            const QString text = randomText(random, 24);
            for (const Qt::CaseSensitivity sensitivity : { Qt::CaseSensitive, Qt::CaseInsensitive }) {
                const qsizetype expected = QStringMatcher(pattern, sensitivity).indexIn(text);
                const qsizetype found = TextMatcher(pattern, sensitivity).indexIn(text);
                if (found != expected) {
                    QFAIL(qPrintable(QStringLiteral("\"%1\" in \"%2\", case %3: %4, not %5")
                                         .arg(pattern, text)
                                         .arg(int(sensitivity))
                                         .arg(found)
                                         .arg(expected)));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestTextMatcher)
#include "test_textmatcher.moc"

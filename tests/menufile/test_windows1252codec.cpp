#include "menufile/windows1252codec.h"

#include <QTest>

class TestWindows1252Codec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesTheCharactersOfTheHighRange()
    {
        QCOMPARE(Windows1252Codec::decode("\x80"), QString(QChar(0x20AC)));
        QCOMPARE(Windows1252Codec::decode("\x93\x94"), QString::fromUtf16(u"\u201C\u201D"));
        QCOMPARE(Windows1252Codec::decode("\xE9\xB7"), QString::fromUtf16(u"\u00E9\u00B7"));
        QCOMPARE(Windows1252Codec::decode("abc"), QStringLiteral("abc"));
    }

    void everyByteSurvivesARoundTrip()
    {
        QByteArray all;
        for (int value = 0; value < 256; ++value) {
            all.append(char(value));
        }
        const QString text = Windows1252Codec::decode(all);
        QCOMPARE(text.size(), qsizetype(256));
        QCOMPARE(Windows1252Codec::encode(text), all);
    }

    void charactersOutsideTheCodePageBecomeQuestionMarks()
    {
        QCOMPARE(Windows1252Codec::encode(QString::fromUtf16(u"a\u0416b")), QByteArray("a?b"));
        QCOMPARE(Windows1252Codec::encode(QString::fromUtf16(u"\u20AC\u00E9")), QByteArray("\x80\xE9"));
    }

    void canEncodeExactlyTheCharactersThatComeBack()
    {
        // Every one of the 65,536 UTF-16 units: held exactly when encoding and decoding give it back.
        for (int code = 0; code <= 0xFFFF; ++code) {
            const QChar character { char16_t(code) };
            const bool comesBack
                = Windows1252Codec::decode(Windows1252Codec::encode(QStringView(&character, 1))) == QString(character);
            QVERIFY2(Windows1252Codec::canEncode(character) == comesBack, qPrintable(QString::number(code, 16)));
        }
        QVERIFY(Windows1252Codec::canEncode(QLatin1Char('?')));
        QVERIFY(Windows1252Codec::canEncode(QChar(0x0081)));
        QVERIFY(!Windows1252Codec::canEncode(QChar(0x0085)));
        QVERIFY(!Windows1252Codec::canEncode(QChar(0xD83D)));
    }

    void encodeAppendKeepsWhatIsThere()
    {
        QByteArray out("x");
        Windows1252Codec::encodeAppend(QString::fromUtf16(u"\u2122"), out);
        QCOMPARE(out, QByteArray("x\x99"));
    }
};

QTEST_GUILESS_MAIN(TestWindows1252Codec)
#include "test_windows1252codec.moc"

#include "cli/utf8textcheck.h"

#include <QTest>

class TestUtf8TextCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void validUtf8BeyondAsciiIsWarnedAbout_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("garbled");
        QTest::newRow("two bytes") << QByteArray("Caf\xC3\xA9") << QStringLiteral("\u00E9")
                                   << QStringLiteral("\u00C3\u00A9");
        QTest::newRow("three bytes") << QByteArray("a \xE2\x82\xAC b \xC3\xA9") << QStringLiteral("\u20AC")
                                     << QStringLiteral("\u00E2\u201A\u00AC");
        QTest::newRow("four bytes") << QByteArray("\xF0\x9F\x98\x80") << QStringLiteral("\U0001F600")
                                    << QStringLiteral("\u00F0\u0178\u02DC\u20AC");
    }

    void validUtf8BeyondAsciiIsWarnedAbout()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, shown);
        QFETCH(QString, garbled);
        QCOMPARE(utf8TextWarning(bytes),
                 QStringLiteral("the file looks like UTF-8 text, but menu files are Windows-1252: \"%1\" reads as "
                                "\"%2\"")
                     .arg(shown, garbled));
    }

    void asciiAndWhatIsNoUtf8GiveNoWarning_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("ASCII") << QByteArray("KELV - Menu\r\n");
        QTest::newRow("Windows-1252 accent") << QByteArray("Caf\xE9\r\n");
        QTest::newRow("UTF-8, then one Windows-1252 byte") << QByteArray("\xC3\xA9 and \xE9");
        QTest::newRow("stray continuation byte") << QByteArray("a\x80");
        QTest::newRow("cut at the end") << QByteArray("a\xE2\x82");
        QTest::newRow("overlong form") << QByteArray("\xC0\xAF");
        QTest::newRow("overlong three bytes") << QByteArray("\xE0\x80\xAF");
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80");
        QTest::newRow("beyond U+10FFFF") << QByteArray("\xF4\x90\x80\x80");
        QTest::newRow("middle dots of a menu") << QByteArray("\xB7\xB7\xB7Pack");
    }

    void asciiAndWhatIsNoUtf8GiveNoWarning()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(utf8TextWarning(bytes), QString());
    }
};

QTEST_GUILESS_MAIN(TestUtf8TextCheck)
#include "test_utf8textcheck.moc"

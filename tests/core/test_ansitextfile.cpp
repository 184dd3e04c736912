#include "core/ansitextfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestAnsiTextFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineEndIsAccepted_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("empty") << QByteArray() << QStringList();
        QTest::newRow("CR LF") << QByteArray("a\r\nb\r\n") << QStringList { QStringLiteral("a"), QStringLiteral("b") };
        QTest::newRow("LF") << QByteArray("a\nb\n") << QStringList { QStringLiteral("a"), QStringLiteral("b") };
        QTest::newRow("CR") << QByteArray("a\rb\r") << QStringList { QStringLiteral("a"), QStringLiteral("b") };
        QTest::newRow("no end on last line")
            << QByteArray("a\r\nb") << QStringList { QStringLiteral("a"), QStringLiteral("b") };
        QTest::newRow("empty lines kept")
            << QByteArray("\r\n\r\nc\n\n") << QStringList { QString(), QString(), QStringLiteral("c"), QString() };
        QTest::newRow("LF CR is two ends")
            << QByteArray("a\n\rb") << QStringList { QStringLiteral("a"), QString(), QStringLiteral("b") };
        QTest::newRow("Windows-1252") << QByteArray("\x80 \xe9\r\n") << QStringList { QStringLiteral("\u20ac \u00e9") };
    }

    void everyLineEndIsAccepted()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, lines);
        QCOMPARE(AnsiTextFile::splitLines(bytes), lines);
    }

    void writeEndsEveryLineWithCrLf()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = QDir(folder.path()).filePath(QStringLiteral("out.txt"));
        QVERIFY(AnsiTextFile::writeLines(path, { QStringLiteral("\u20ac1"), QString(), QStringLiteral("z") }));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(),
                 QByteArray("\x80"
                            "1\r\n\r\nz\r\n"));
        QCOMPARE(AnsiTextFile::readLines(path).value_or(QStringList()),
                 (QStringList { QStringLiteral("\u20ac1"), QString(), QStringLiteral("z") }));
    }

    void missingFileReadsAsNothing()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(!AnsiTextFile::readLines(QDir(folder.path()).filePath(QStringLiteral("none.txt"))).has_value());
        QVERIFY(!AnsiTextFile::writeLines(QDir(folder.path()).filePath(QStringLiteral("no/such/out.txt")), {}));
    }
};

QTEST_GUILESS_MAIN(TestAnsiTextFile)
#include "test_ansitextfile.moc"

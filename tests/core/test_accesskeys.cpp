#include "core/accesskeys.h"

#include <QTest>

class TestAccessKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstLetterOrDigitTakesTheKey()
    {
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("archive.ini")), QStringLiteral("&archive.ini"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("New menu 2")), QStringLiteral("&New menu 2"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("$audio")), QStringLiteral("$&audio"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("... 2 items")), QStringLiteral("... &2 items"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("Été")), QStringLiteral("&Été"));
    }

    void ampersandsShowAsWritten()
    {
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("&& Co")), QStringLiteral("&&&& &Co"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("Tom & Jerry")), QStringLiteral("&Tom && Jerry"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("&")), QStringLiteral("&&"));
    }

    void textWithoutLettersGetsNoKey()
    {
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("-- ?")), QStringLiteral("-- ?"));
        QCOMPARE(AccessKeys::onFirstLetter(QString()), QString());
    }

    void searchStartsWhereItIsTold()
    {
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("ab cd"), 2), QStringLiteral("ab &cd"));
        QCOMPARE(AccessKeys::onFirstLetter(QStringLiteral("ab"), 5), QStringLiteral("ab"));
    }

    void filePathsHaveTheKeyOnTheFileName()
    {
        QCOMPARE(AccessKeys::onFileName(QStringLiteral("/home/ann/menus/tools.ini")),
                 QStringLiteral("/home/ann/menus/&tools.ini"));
        QCOMPARE(AccessKeys::onFileName(QStringLiteral("C:\\Menus\\_old&new.ini")),
                 QStringLiteral("C:\\Menus\\_&old&&new.ini"));
        QCOMPARE(AccessKeys::onFileName(QStringLiteral("plain.ini")), QStringLiteral("&plain.ini"));
        QCOMPARE(AccessKeys::onFileName(QStringLiteral("/menus/_.ini")), QStringLiteral("/menus/_.&ini"));
        // A name without a letter leaves the path without a key rather than marking a folder.
        QCOMPARE(AccessKeys::onFileName(QStringLiteral("/menus/__")), QStringLiteral("/menus/__"));
    }
};

QTEST_GUILESS_MAIN(TestAccessKeys)
#include "test_accesskeys.moc"

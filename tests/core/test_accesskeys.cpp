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

    void theKeyOfACaptionIsTheLetterAfterASingleAmpersand()
    {
        QCOMPARE(AccessKeys::keyOf(QStringLiteral("Save &as ...")), QLatin1Char('a'));
        QCOMPARE(AccessKeys::keyOf(QStringLiteral("&Quit")), QLatin1Char('q'));
        QCOMPARE(AccessKeys::keyOf(QStringLiteral("Tom && &Jerry")), QLatin1Char('j'));
        QVERIFY(AccessKeys::keyOf(QStringLiteral("Tom && Jerry")).isNull());
        QVERIFY(AccessKeys::keyOf(QStringLiteral("end&")).isNull());
    }

    void aFreeLetterIsTakenAndNoted()
    {
        QString taken = QStringLiteral("ans");
        QCOMPARE(AccessKeys::onFreeLetter(QStringLiteral("Archive & Co"), taken), QStringLiteral("A&rchive && Co"));
        QCOMPARE(taken, QStringLiteral("ansr"));
        QCOMPARE(AccessKeys::onFreeLetter(QStringLiteral("Archive"), taken), QStringLiteral("Ar&chive"));
        // Letter case aside: "R" is taken by "r".
        QCOMPARE(AccessKeys::onFreeLetter(QStringLiteral("RAN"), taken), QStringLiteral("RAN"));
        QCOMPARE(taken, QStringLiteral("ansrc"));
        // Before the start when nothing after it is free.
        QCOMPARE(AccessKeys::onFreeLetter(QStringLiteral("xy ca"), taken, 3), QStringLiteral("&xy ca"));
    }

    void aFilePathTakesAFreeLetterOfItsNameFirst()
    {
        QString taken = QStringLiteral("a");
        QCOMPARE(AccessKeys::onFreeFileNameLetter(QStringLiteral("/menus/archive.ini"), taken),
                 QStringLiteral("/menus/a&rchive.ini"));
        QString all = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789");
        QCOMPARE(AccessKeys::onFreeFileNameLetter(QStringLiteral("/m/ab.ini"), all), QStringLiteral("/m/ab.ini"));
    }
};

QTEST_GUILESS_MAIN(TestAccessKeys)
#include "test_accesskeys.moc"

#include "core/aboutinfo.h"

#include <QRegularExpression>
#include <QTest>

class TestAboutInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aboutTextNamesProgramVersionAuthorWebAddressAndLicence()
    {
        const QStringList lines = aboutText().split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines.at(0), QStringLiteral("KELV Menu Editor v") + QStringLiteral(KELV_EXPECTED_VERSION));
        QCOMPARE(lines.at(1), QString::fromUtf8(KELV_EXPECTED_AUTHOR));
        QCOMPARE(lines.at(2), QString::fromUtf8(KELV_EXPECTED_WEB_URL));
        QCOMPARE(lines.at(3), QStringLiteral("Distributed under the ") + QStringLiteral(KELV_EXPECTED_LICENSE_NAME));
    }

    void contactLinesAreIndentedByFourBlanks()
    {
        const QString expected = QStringLiteral("    ") + QString::fromUtf8(KELV_EXPECTED_CONTACT_EMAIL)
            + QStringLiteral("\r\n    ") + QString::fromUtf8(KELV_EXPECTED_FORUM_URL);
        QCOMPARE(contactLines(), expected);
    }

    void versionIsThreeNumbers()
    {
        QCOMPARE(programVersion(), QStringLiteral(KELV_EXPECTED_VERSION));
        QVERIFY(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$")).match(programVersion()).hasMatch());
    }

    void versionTextStartsWithProgramProductAndVersion()
    {
        const QStringList lines = versionText(QStringLiteral("kelvmenu")).split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 6);
        QCOMPARE(lines.at(0), QStringLiteral("kelvmenu (KELV Menu Editor) ") + QStringLiteral(KELV_EXPECTED_VERSION));
        QVERIFY(lines.at(1).startsWith(QStringLiteral("Copyright (C) 2")));
        QVERIFY(lines.at(1).endsWith(QString::fromUtf8(KELV_EXPECTED_AUTHOR) + QLatin1Char('.')));
        QVERIFY(lines.at(2).contains(QStringLiteral(KELV_EXPECTED_LICENSE_NAME)));
        QVERIFY(lines.at(3).isEmpty());
        QCOMPARE(lines.at(4),
                 QStringLiteral("Written by ") + QString::fromUtf8(KELV_EXPECTED_AUTHOR) + QLatin1Char('.'));
        QVERIFY(lines.at(5).isEmpty()); // the text ends in a line break
        QVERIFY(!versionText(QStringLiteral("KELVEditor")).contains(QLatin1Char('\r')));
    }
};

QTEST_GUILESS_MAIN(TestAboutInfo)
#include "test_aboutinfo.moc"

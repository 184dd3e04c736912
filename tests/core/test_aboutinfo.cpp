#include "core/aboutinfo.h"

#include <QTest>

class TestAboutInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aboutTextNamesProgramVersionAuthorAndWebAddress()
    {
        const QStringList lines = aboutText().split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.at(0), QStringLiteral("KELV Menu Editor v") + QStringLiteral(KELV_EXPECTED_VERSION));
        QCOMPARE(lines.at(1), QString::fromUtf8(KELV_EXPECTED_AUTHOR));
        QCOMPARE(lines.at(2), QString::fromUtf8(KELV_EXPECTED_WEB_URL));
    }

    void contactLinesAreIndentedByFourBlanks()
    {
        const QString expected = QStringLiteral("    ") + QString::fromUtf8(KELV_EXPECTED_CONTACT_EMAIL)
            + QStringLiteral("\r\n    ") + QString::fromUtf8(KELV_EXPECTED_FORUM_URL);
        QCOMPARE(contactLines(), expected);
    }
};

QTEST_GUILESS_MAIN(TestAboutInfo)
#include "test_aboutinfo.moc"

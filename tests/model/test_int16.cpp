#include "model/errortable.h"
#include "model/int16.h"
#include "model/runtimeerror.h"

#include <QTest>

class TestInt16 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesInRangePassThrough()
    {
        QCOMPARE(Int16::checked(32767, "test"), qint16(32767));
        QCOMPARE(Int16::checked(-32768, "test"), qint16(-32768));
        QCOMPARE(Int16::incremented(41, "test"), qint16(42));
        QCOMPARE(Int16::decremented(-32767, "test"), qint16(-32768));
    }

    void overflowIsRunTimeErrorSix()
    {
        try {
            Int16::incremented(32767, "readMenuFile");
            QFAIL("no overflow reported");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 6);
            QCOMPARE(error.description(), QStringLiteral("Overflow"));
            QCOMPARE(error.source(), QStringLiteral("readMenuFile"));
            QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (readMenuFile)"));
        }
        QVERIFY_THROWS_EXCEPTION(RunTimeError, Int16::checked(-32769, "test"));
    }

    void errorTableHoldsTheKnownDescriptions()
    {
        QCOMPARE(errorDescription(9), QStringLiteral("Subscript out of range"));
        QCOMPARE(errorDescription(13), QStringLiteral("Type mismatch"));
        QCOMPARE(errorDescription(62), QStringLiteral("Input past end of file"));
        QCOMPARE(errorDescription(12345), QStringLiteral("Application-defined or object-defined error"));
    }

    void noErrorHasNumberZeroAndEmptyTexts()
    {
        const RunTimeError error = RunTimeError::noError();
        QCOMPARE(error.report(), QStringLiteral("Error 0 :  ()"));
    }
};

QTEST_GUILESS_MAIN(TestInt16)
#include "test_int16.moc"

#include "app/applicationicon.h"

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QTest>

class TestApplicationIcon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySizeComesFromItsOwnBitmap()
    {
        const QIcon icon = applicationIcon();
        QVERIFY(!icon.isNull());
        const QList<QSize> sizes = icon.availableSizes();
        for (const int size : { 16, 24, 32, 48, 64, 128, 256 }) {
            QVERIFY2(sizes.contains(QSize(size, size)), qPrintable(QString::number(size)));
            const QImage image = icon.pixmap(QSize(size, size)).toImage();
            QCOMPARE(image.size(), QSize(size, size));
        }
    }

    void theTileIsBlueWithTransparentCorners()
    {
        const QImage image = applicationIcon().pixmap(QSize(64, 64)).toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        const QColor edge = image.pixelColor(6, 32); // left edge of the tile, beside the menu
        QVERIFY2(edge.blue() > edge.red() + 60, qPrintable(edge.name()));
    }
};

QTEST_MAIN(TestApplicationIcon)
#include "test_applicationicon.moc"

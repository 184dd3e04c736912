#include "app/pathlabel.h"

#include <QImage>
#include <QLabel>
#include <QRandomGenerator>
#include <QTest>

namespace {

/// A node's path as the label shows it: captions of Windows-1252 text, joined by backslashes.
QString randomPath(QRandomGenerator& random, int levels)
{
    static const QString alphabet
        = QStringLiteral("abcdefghijklmnopqrstuvwxyz fjyWTAV.,;:-_()[]0123456789 &<>\u00e9\u00e0\u00df"
                         "\u00a0\u2026\u20ac\u00c6");
    QString path = QStringLiteral("KELV");
    for (int level = 0; level < levels; ++level) {
        path += QLatin1Char('\\');
        const int length = random.bounded(0, level % 7 == 6 ? 60 : 14);
        for (int i = 0; i < length; ++i) {
            path += alphabet.at(random.bounded(int(alphabet.size())));
        }
        if (random.bounded(5) == 0) {
            path += QStringLiteral("  ");
        }
    }
    return path;
}

/// A word-wrapped plain-text QLabel, as the path label was before.
void setUpLikeThePathLabel(QLabel& label)
{
    label.setWordWrap(true);
    label.setTextFormat(Qt::PlainText);
}

} // namespace

/// The path label sizes and shows its text exactly as a word-wrapped label does, margins, italics and
/// text cut at its foot included.
class TestPathLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizesAreThoseOfAWrappingLabel()
    {
        QRandomGenerator random(21);
        for (int round = 0; round < 400; ++round) {
            const QString path
                = round == 0 ? QString() : randomPath(random, random.bounded(0, round % 10 == 0 ? 150 : 12));
            QLabel plain;
            setUpLikeThePathLabel(plain);
            PathLabel label;
            if (round % 4 == 1) {
                plain.setMargin(3);
                label.setMargin(3);
            }
            // Italic glyphs reach past their advance more often than upright ones.
            if (round % 3 == 2) {
                QFont font = label.font();
                font.setItalic(true);
                font.setPointSize(font.pointSize() + round % 5);
                plain.setFont(font);
                label.setFont(font);
            }
            plain.setText(path);
            label.setText(path);
            const QString context = QStringLiteral("round %1: %2").arg(round).arg(path);
            QVERIFY2(label.sizeHint() == plain.sizeHint(), qPrintable(context));
            QVERIFY2(label.minimumSizeHint() == plain.minimumSizeHint(), qPrintable(context));
            for (int width = 0; width <= 700; width += 1 + random.bounded(40)) {
                QVERIFY2(label.heightForWidth(width) == plain.heightForWidth(width),
                         qPrintable(QStringLiteral("width %1, %2").arg(width).arg(context)));
            }
        }
    }

    void otherSetupsAndTextsLookAsInALabel_data()
    {
        QTest::addColumn<int>("setup");
        QTest::addColumn<QString>("path");
        const QString path = QStringLiteral("KELV\\Archive tools (all)\\Pack every file of the folder\\Into one");
        QTest::newRow("disabled") << 1 << path;
        QTest::newRow("right to left") << 2 << path;
        QTest::newRow("aligned right") << 3 << path;
        QTest::newRow("framed") << 4 << path;
        QTest::newRow("indented") << 5 << path;
        QTest::newRow("selectable") << 6 << path;
        QTest::newRow("tab") << 0 << QStringLiteral("KELV\\Pack\tall\\of it and more of it");
        QTest::newRow("soft hyphen") << 0 << QStringLiteral("KELV\\Com\u00adpress\u00adevery\u00adfile\\of it");
        QTest::newRow("control") << 0 << QStringLiteral("KELV\\Pack\u001fall\\of it and more of it");
    }

    void otherSetupsAndTextsLookAsInALabel()
    {
        QFETCH(int, setup);
        QFETCH(QString, path);
        QLabel plain;
        setUpLikeThePathLabel(plain);
        PathLabel label;
        for (QLabel* shown : { static_cast<QLabel*>(&plain), static_cast<QLabel*>(&label) }) {
            switch (setup) {
            case 1:
                shown->setEnabled(false);
                break;
            case 2:
                shown->setLayoutDirection(Qt::RightToLeft);
                break;
            case 3:
                shown->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
                break;
            case 4:
                shown->setFrameStyle(QFrame::Box | QFrame::Plain);
                break;
            case 5:
                shown->setIndent(12);
                break;
            case 6:
                shown->setTextInteractionFlags(Qt::TextSelectableByMouse);
                break;
            default:
                break;
            }
            shown->setText(path);
            shown->resize(120, 90);
        }
        QCOMPARE(label.sizeHint(), plain.sizeHint());
        QCOMPARE(label.minimumSizeHint(), plain.minimumSizeHint());
        for (int width = 0; width <= 300; width += 7) {
            QCOMPARE(label.heightForWidth(width), plain.heightForWidth(width));
        }
        QCOMPARE(label.grab().toImage(), plain.grab().toImage());
    }

    void aNewTextOrFontIsMeasuredAnew()
    {
        PathLabel label;
        QLabel plain;
        setUpLikeThePathLabel(plain);
        label.setText(QStringLiteral("KELV\\Archive\\Pack"));
        const int before = label.heightForWidth(40);
        const QString longer = QStringLiteral("KELV\\Archive\\Pack and compress every file of the folder");
        label.setText(longer);
        plain.setText(longer);
        QCOMPARE(label.heightForWidth(40), plain.heightForWidth(40));
        QVERIFY(label.heightForWidth(40) > before);
        QFont larger = label.font();
        larger.setPointSize(larger.pointSize() * 2);
        label.setFont(larger);
        plain.setFont(larger);
        QCOMPARE(label.heightForWidth(200), plain.heightForWidth(200));
        QCOMPARE(label.sizeHint(), plain.sizeHint());
    }

    void itPaintsWhatAWrappingLabelPaints()
    {
        QRandomGenerator random(8);
        for (int round = 0; round < 80; ++round) {
            const QString path = randomPath(random, random.bounded(1, round % 5 == 0 ? 80 : 10));
            const QSize size(60 + random.bounded(400), 20 + random.bounded(300));
            QLabel plain;
            setUpLikeThePathLabel(plain);
            PathLabel label;
            if (round % 3 == 2) {
                QFont font = label.font();
                font.setItalic(true);
                plain.setFont(font);
                label.setFont(font);
            }
            plain.setText(path);
            label.setText(path);
            plain.resize(size);
            label.resize(size);
            const QImage expected = plain.grab().toImage();
            QVERIFY2(
                label.grab().toImage() == expected,
                qPrintable(
                    QStringLiteral("round %1, %2x%3: %4").arg(round).arg(size.width()).arg(size.height()).arg(path)));
        }
    }
};

QTEST_MAIN(TestPathLabel)
#include "test_pathlabel.moc"

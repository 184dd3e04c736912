#include "app/recoverydialog.h"
#include "app/widgetrecoveryprompt.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimeZone>
#include <QTimer>

namespace {

using Decision = RecoveryPrompt::Decision;

QList<RecoveryCopy> twoCopies()
{
    RecoveryCopy opened;
    opened.id = QStringLiteral("editor-a-1");
    opened.menuPath = QStringLiteral("/home/user/menus/archive.ini");
    opened.caption = QStringLiteral("archive.ini");
    opened.time = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC);
    opened.itemCount = 12;
    RecoveryCopy fresh;
    fresh.id = QStringLiteral("editor-a-2");
    fresh.caption = QStringLiteral("New menu 2");
    fresh.time = QDateTime(QDate(2026, 3, 4), QTime(5, 1, 0), Qt::UTC);
    fresh.itemCount = 1;
    return { opened, fresh };
}

QPushButton* button(const QDialog& dialog, const char* name)
{
    return dialog.findChild<QPushButton*>(QString::fromLatin1(name));
}

QComboBox* choice(const QDialog& dialog, int row)
{
    return dialog.findChild<QComboBox*>(QStringLiteral("cmbRecovery%1").arg(row));
}

} // namespace

class TestRecoveryDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsEveryCopyWithItsNamePathTimeAndItemCount()
    {
        RecoveryDialog dialog(twoCopies());
        QCOMPARE(dialog.objectName(), QStringLiteral("frmRecovery"));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Recover unsaved menus"));
        const auto* list = dialog.findChild<QTableWidget*>(QStringLiteral("lstRecovery"));
        QVERIFY(list);
        QCOMPARE(list->rowCount(), 2);
        QStringList header;
        for (int column = 0; column < list->columnCount(); ++column) {
            header.append(list->horizontalHeaderItem(column)->text());
        }
        QCOMPARE(header,
                 QStringList({ QStringLiteral("Menu"), QStringLiteral("File"), QStringLiteral("Last change"),
                               QStringLiteral("Items"), QStringLiteral("What to do") }));
        QCOMPARE(list->item(0, 0)->text(), QStringLiteral("archive.ini"));
        QCOMPARE(list->item(0, 1)->text(), QDir::toNativeSeparators(QStringLiteral("/home/user/menus/archive.ini")));
        QCOMPARE(list->item(0, 2)->text(),
                 QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC)
                     .toLocalTime()
                     .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        QCOMPARE(list->item(0, 3)->text(), QStringLiteral("12"));
        QCOMPARE(list->item(1, 0)->text(), QStringLiteral("New menu 2"));
        QCOMPARE(list->item(1, 1)->text(), QStringLiteral("(never saved)"));
        QCOMPARE(list->item(1, 3)->text(), QStringLiteral("1"));
        for (int row = 0; row < 2; ++row) {
            QComboBox* box = choice(dialog, row);
            QVERIFY(box);
            QCOMPARE(list->cellWidget(row, 4), box);
            QStringList items;
            for (int i = 0; i < box->count(); ++i) {
                items.append(box->itemText(i));
            }
            QCOMPARE(
                items,
                QStringList({ QStringLiteral("Recover"), QStringLiteral("Discard"), QStringLiteral("Decide later") }));
            QCOMPARE(box->currentText(), QStringLiteral("Recover"));
        }
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("lblRecovery")));
        QCOMPARE(button(dialog, "cmdRecoverAll")->text(), QStringLiteral("Recover all"));
        QCOMPARE(button(dialog, "cmdDiscardAll")->text(), QStringLiteral("Discard all"));
        QCOMPARE(button(dialog, "cmdDecideLater")->text(), QStringLiteral("Decide later"));
        QVERIFY(button(dialog, "cmdRecoveryOk")->isDefault());
    }

    void okTakesTheChoiceOfEachRow()
    {
        RecoveryDialog dialog(twoCopies());
        dialog.show();
        choice(dialog, 0)->setCurrentIndex(2);
        choice(dialog, 1)->setCurrentIndex(1);
        QTest::mouseClick(button(dialog, "cmdRecoveryOk"), Qt::LeftButton);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.decisions(), QList<Decision>({ Decision::DecideLater, Decision::Discard }));
    }

    void theButtonsForAllDecideEveryRow_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("decision");
        QTest::newRow("recover") << QStringLiteral("cmdRecoverAll") << int(Decision::Recover);
        QTest::newRow("discard") << QStringLiteral("cmdDiscardAll") << int(Decision::Discard);
        QTest::newRow("later") << QStringLiteral("cmdDecideLater") << int(Decision::DecideLater);
    }

    void theButtonsForAllDecideEveryRow()
    {
        QFETCH(QString, name);
        QFETCH(int, decision);
        RecoveryDialog dialog(twoCopies());
        dialog.show();
        choice(dialog, 1)->setCurrentIndex(1);
        QTest::mouseClick(button(dialog, name.toLatin1().constData()), Qt::LeftButton);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.decisions(), QList<Decision>({ Decision(decision), Decision(decision) }));
    }

    void closingTheDialogKeepsEveryCopyForLater()
    {
        WidgetRecoveryPrompt prompt;
        QTimer::singleShot(0, this, [] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            choice(*dialog, 0)->setCurrentIndex(1);
            QTest::keyClick(dialog, Qt::Key_Escape);
        });
        QCOMPARE(prompt.decide(twoCopies()), QList<Decision>({ Decision::DecideLater, Decision::DecideLater }));
    }

    void thePromptShowsTheDialogAndReturnsItsChoices()
    {
        WidgetRecoveryPrompt prompt;
        QTimer::singleShot(0, this, [] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            QCOMPARE(dialog->objectName(), QStringLiteral("frmRecovery"));
            choice(*dialog, 1)->setCurrentIndex(1);
            button(*dialog, "cmdRecoveryOk")->click();
        });
        QCOMPARE(prompt.decide(twoCopies()), QList<Decision>({ Decision::Recover, Decision::Discard }));
    }
};

QTEST_MAIN(TestRecoveryDialog)
#include "test_recoverydialog.moc"

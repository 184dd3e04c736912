#include "app/optionsdialog.h"
#include "core/optionsstore.h"

#include <QCheckBox>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

template <typename T> T* child(const QWidget& parent, const char* name)
{
    return parent.findChild<T*>(QString::fromLatin1(name));
}

} // namespace

class TestOptionsDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_folder.isValid());
        m_iniPath = QDir(m_folder.path()).filePath(QStringLiteral("options-%1.ini").arg(++m_count));
    }

    void checkBoxesShowTheCurrentOptions()
    {
        OptionsStore store(m_iniPath);
        Options current;
        current.checkCopyCommand = 1;
        current.hideItemsCopyCommand = 1;
        OptionsDialog dialog(store, current);
        QCOMPARE(dialog.objectName(), QStringLiteral("frmOptions"));
        QVERIFY(dialog.isModal());
        QVERIFY(child<QCheckBox>(dialog, "chkCheckCopyCommand")->isChecked());
        QVERIFY(!child<QCheckBox>(dialog, "chkHideItemsWithoutCommand")->isChecked());
        QVERIFY(child<QCheckBox>(dialog, "chkHideItemsCopyCommand")->isChecked());
        QVERIFY(!child<QCheckBox>(dialog, "chkDragNDrop")->isChecked());
        for (const char* name :
             { "chkCheckCopyCommand", "chkHideItemsWithoutCommand", "chkHideItemsCopyCommand", "chkDragNDrop" }) {
            QVERIFY2(!child<QCheckBox>(dialog, name)->text().isEmpty(), name);
        }
    }

    void saveWritesAllFiveOptionsAndCloses()
    {
        OptionsStore store(m_iniPath);
        Options current;
        current.copyCommandDup = true; // the check mark of the Edit menu
        current.hideItemsCopyCommand = 1;
        OptionsDialog dialog(store, current);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));

        QTest::mouseClick(child<QCheckBox>(dialog, "chkCheckCopyCommand"), Qt::LeftButton);
        QTest::mouseClick(child<QCheckBox>(dialog, "chkHideItemsWithoutCommand"), Qt::LeftButton);
        QTest::mouseClick(child<QCheckBox>(dialog, "chkHideItemsCopyCommand"), Qt::LeftButton);
        QTest::mouseClick(child<QCheckBox>(dialog, "chkDragNDrop"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(dialog, "cmdSave"), Qt::LeftButton);

        QTRY_VERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        Options expected;
        expected.checkCopyCommand = 1;
        expected.hideItemsWithoutCommand = 1;
        expected.hideItemsCopyCommand = 0;
        expected.copyCommandDup = true;
        expected.dragNDrop = 1;
        QCOMPARE(dialog.options(), expected);

        const OptionsStore reopened(m_iniPath);
        QCOMPARE(reopened.loadOptions(), expected);
        QCOMPARE(reopened.readValue(OptionsStore::keyPath(), QStringLiteral("CopyCommandDup")), QStringLiteral("True"));
        QCOMPARE(reopened.readValue(OptionsStore::keyPath(), QStringLiteral("HideItemsCopyCommand")),
                 QStringLiteral("0"));
    }

    void cancelClosesWithoutSaving()
    {
        OptionsStore store(m_iniPath);
        Options saved;
        saved.dragNDrop = 1;
        store.saveOptions(saved);

        OptionsDialog dialog(store, saved);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QTest::mouseClick(child<QCheckBox>(dialog, "chkDragNDrop"), Qt::LeftButton);
        QTest::mouseClick(child<QCheckBox>(dialog, "chkCheckCopyCommand"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);

        QTRY_VERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(dialog.options(), saved);
        QCOMPARE(OptionsStore(m_iniPath).loadOptions(), saved);
    }

    void cancelOnAFirstStartLeavesTheStoreEmpty()
    {
        OptionsStore store(m_iniPath);
        OptionsDialog dialog(store, Options());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QTest::mouseClick(child<QCheckBox>(dialog, "chkDragNDrop"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
        QTRY_VERIFY(!dialog.isVisible());
        QCOMPARE(OptionsStore(m_iniPath).readValue(OptionsStore::keyPath(), QStringLiteral("DragNDrop")),
                 QStringLiteral("Not Found"));
    }

    void modalDialogIsAnsweredWithSave()
    {
        OptionsStore store(m_iniPath);
        OptionsDialog dialog(store, Options());
        QDialog* const shown = &dialog;
        QTimer::singleShot(0, shown, [shown] {
            QTest::mouseClick(shown->findChild<QCheckBox*>(QStringLiteral("chkDragNDrop")), Qt::LeftButton);
            QTest::mouseClick(shown->findChild<QPushButton*>(QStringLiteral("cmdSave")), Qt::LeftButton);
        });
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        QCOMPARE(OptionsStore(m_iniPath).loadOptions().dragNDrop, qint16(1));
    }

private:
    QTemporaryDir m_folder;
    QString m_iniPath;
    int m_count = 0;
};

QTEST_MAIN(TestOptionsDialog)
#include "test_optionsdialog.moc"

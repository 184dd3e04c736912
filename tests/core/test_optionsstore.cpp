#include "core/optionsstore.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeText(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestOptionsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_folder.isValid());
        m_iniPath = QDir(m_folder.path()).filePath(QStringLiteral("options-%1.ini").arg(++m_count));
    }

    void firstStartHasEveryOptionOff()
    {
        const OptionsStore store(m_iniPath);
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CheckCopyCommand")),
                 QStringLiteral("Not Found"));
        const Options options = store.loadOptions();
        QCOMPARE(options, Options());
        QCOMPARE(options.checkCopyCommand, qint16(0));
        QCOMPARE(options.hideItemsWithoutCommand, qint16(0));
        QCOMPARE(options.hideItemsCopyCommand, qint16(0));
        QCOMPARE(options.copyCommandDup, false);
        QCOMPARE(options.dragNDrop, qint16(0));
        QCOMPARE(options.startingHideMode(), 0);
    }

    void valueEditedToTextReadsAsZero()
    {
        // Values as a user would leave them after editing the store by hand.
        QVERIFY(writeText(m_iniPath,
                          "[General]\nCheckCopyCommand=abc\nHideItemsWithoutCommand=1\n"
                          "HideItemsCopyCommand=abc\nCopyCommandDup=abc\nDragNDrop=1\n"));
        const OptionsStore store(m_iniPath);
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CheckCopyCommand")), QStringLiteral("abc"));
        const Options options = store.loadOptions();
        QCOMPARE(options.checkCopyCommand, qint16(0));
        QCOMPARE(options.hideItemsWithoutCommand, qint16(1));
        QCOMPARE(options.hideItemsCopyCommand, qint16(0));
        QCOMPARE(options.copyCommandDup, false);
        QCOMPARE(options.dragNDrop, qint16(1));
    }

    void saveWritesTextsInTheirFixedForm()
    {
        Options options;
        options.checkCopyCommand = 1;
        options.hideItemsWithoutCommand = 0;
        options.hideItemsCopyCommand = 1;
        options.copyCommandDup = true;
        options.dragNDrop = 0;
        {
            OptionsStore store(m_iniPath);
            store.saveOptions(options);
            QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CheckCopyCommand")), QStringLiteral("1"));
            QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("HideItemsWithoutCommand")),
                     QStringLiteral("0"));
            QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("HideItemsCopyCommand")),
                     QStringLiteral("1"));
            QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CopyCommandDup")),
                     QStringLiteral("True"));
            QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("DragNDrop")), QStringLiteral("0"));
        }
        // Stored as texts, not as numbers or booleans of the settings format.
        const QSettings raw(m_iniPath, QSettings::IniFormat);
        QCOMPARE(raw.value(QStringLiteral("CopyCommandDup")).typeId(), int(QMetaType::QString));
        QCOMPARE(raw.value(QStringLiteral("CheckCopyCommand")).toString(), QStringLiteral("1"));

        const OptionsStore reopened(m_iniPath);
        QCOMPARE(reopened.loadOptions(), options);
        QCOMPARE(reopened.loadOptions().startingHideMode(), 1);

        options = Options();
        options.hideItemsWithoutCommand = 1;
        options.dragNDrop = 1;
        OptionsStore store(m_iniPath);
        store.saveOptions(options);
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CopyCommandDup")), QStringLiteral("False"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CheckCopyCommand")), QStringLiteral("0"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("DragNDrop")), QStringLiteral("1"));
        QCOMPARE(store.loadOptions(), options);
    }

    void anyNonZeroCheckValueIsSavedAsOne()
    {
        Options options;
        options.checkCopyCommand = -1;
        OptionsStore store(m_iniPath);
        store.saveOptions(options);
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("CheckCopyCommand")), QStringLiteral("1"));
    }

    void dwordValueReadsWithThreeDigits()
    {
        OptionsStore store(m_iniPath);
        store.writeValue(OptionsStore::keyPath(), QStringLiteral("Zero"), OptionsStore::DwordValue,
                         QStringLiteral("0"));
        store.writeValue(OptionsStore::keyPath(), QStringLiteral("Seven"), OptionsStore::DwordValue,
                         QStringLiteral("7"));
        store.writeValue(OptionsStore::keyPath(), QStringLiteral("Large"), OptionsStore::DwordValue,
                         QStringLiteral("70000"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Zero")), QStringLiteral("000"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Seven")), QStringLiteral("007"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Large")), QStringLiteral("70000"));

        // A check box value stored as a DWORD still loads as its number.
        store.writeValue(OptionsStore::keyPath(), QStringLiteral("DragNDrop"), OptionsStore::DwordValue,
                         QStringLiteral("1"));
        QCOMPARE(store.loadOptions().dragNDrop, qint16(1));

        const OptionsStore reopened(m_iniPath);
        QCOMPARE(reopened.readValue(OptionsStore::keyPath(), QStringLiteral("Seven")), QStringLiteral("007"));
    }

    void stringValueReadsAsWritten()
    {
        OptionsStore store(m_iniPath);
        store.writeValue(OptionsStore::keyPath(), QStringLiteral("Text"), OptionsStore::StringValue,
                         QStringLiteral("007 text"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Text")), QStringLiteral("007 text"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Missing")), QStringLiteral("Not Found"));
    }

    void subkeysAreSeparateAndOtherKeysAreOutOfReach()
    {
        OptionsStore store(m_iniPath);
        const QString subkey = OptionsStore::keyPath() + QStringLiteral("Windows\\");
        store.writeValue(subkey, QStringLiteral("Value"), OptionsStore::StringValue, QStringLiteral("sub"));
        QCOMPARE(store.readValue(subkey, QStringLiteral("Value")), QStringLiteral("sub"));
        QCOMPARE(store.readValue(OptionsStore::keyPath(), QStringLiteral("Value")), QStringLiteral("Not Found"));
        // The program's own key is found whatever the letter case, as in the registry.
        QCOMPARE(store.readValue(QStringLiteral("software\\kelveditor\\Windows"), QStringLiteral("Value")),
                 QStringLiteral("sub"));

        const QString otherKey = QStringLiteral("SOFTWARE\\Other\\");
        store.writeValue(otherKey, QStringLiteral("Value"), OptionsStore::StringValue, QStringLiteral("x"));
        QCOMPARE(store.readValue(otherKey, QStringLiteral("Value")), QStringLiteral("Not Found"));
    }

    void numbersAndTruthValuesAsTypedByHand()
    {
        QVERIFY(writeText(m_iniPath,
                          "[General]\nCheckCopyCommand=\" 1 \"\nHideItemsWithoutCommand=99999\n"
                          "HideItemsCopyCommand=1.5\nCopyCommandDup=true\nDragNDrop=-1\n"));
        const Options options = OptionsStore(m_iniPath).loadOptions();
        QCOMPARE(options.checkCopyCommand, qint16(1));
        // Out of the 16-bit range: not a usable value.
        QCOMPARE(options.hideItemsWithoutCommand, qint16(0));
        // Rounds half to even.
        QCOMPARE(options.hideItemsCopyCommand, qint16(2));
        QCOMPARE(options.copyCommandDup, true);
        QCOMPARE(options.dragNDrop, qint16(-1));

        // A file of its own for each: settings files rewritten within a second at the same size
        // are taken from the settings cache.
        const QString zeroPath = m_iniPath + QStringLiteral(".zero");
        QVERIFY(writeText(zeroPath, "[General]\nCopyCommandDup=0\n"));
        QCOMPARE(OptionsStore(zeroPath).loadOptions().copyCommandDup, false);
        const QString onePath = m_iniPath + QStringLiteral(".one");
        QVERIFY(writeText(onePath, "[General]\nCopyCommandDup=1\n"));
        QCOMPARE(OptionsStore(onePath).loadOptions().copyCommandDup, true);
    }

    void startingHideModeFollowsTheTwoHideOptions()
    {
        Options options;
        options.hideItemsCopyCommand = 1;
        QCOMPARE(options.startingHideMode(), 1);
        options.hideItemsWithoutCommand = 1;
        QCOMPARE(options.startingHideMode(), 3);
        options.hideItemsCopyCommand = 0;
        QCOMPARE(options.startingHideMode(), 2);
        options.hideItemsWithoutCommand = -1;
        QCOMPARE(options.startingHideMode(), 2);
    }

private:
    QTemporaryDir m_folder;
    QString m_iniPath;
    int m_count = 0;
};

QTEST_GUILESS_MAIN(TestOptionsStore)
#include "test_optionsstore.moc"

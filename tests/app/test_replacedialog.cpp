#include "guisandbox.h"
#include "menutexts.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "model/menudocument.h"

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::colourOf;
using TreeHelpers::nodeOutline;
using TreeHelpers::texts;

/// The Replace dialog driven as a user drives it: opened from the Edit menu, typed into, its buttons
/// pressed, and the message and the rebuilt tree read back.
class TestReplaceDialog : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    const MenuDocument& document(qint16 index) { return window().state().document(index); }
    ItemTree& tree(qint16 index) { return *window().editor(index)->tree(); }
    int undoCount(qint16 index) { return window().state().histories().history(index).undoCount(); }

    QDialog* dialog() { return window().findChild<QDialog*>(QStringLiteral("frmReplace")); }
    template <typename Widget> Widget* control(const char* name)
    {
        return dialog()->findChild<Widget*>(QString::fromLatin1(name));
    }

    /// Opens the dialog, types `find` and `replacement`, sets the check box and presses Replace All.
    void replace(const QString& find, const QString& replacement, bool allItems)
    {
        sandbox().trigger(QStringLiteral("mnuReplace"));
        QVERIFY(dialog()->isVisible());
        auto* txtFind = control<QLineEdit>("txtFind");
        auto* txtReplace = control<QLineEdit>("txtReplace");
        txtFind->clear();
        QTest::keyClicks(txtFind, find);
        txtReplace->clear();
        QTest::keyClicks(txtReplace, replacement);
        control<QCheckBox>("chkRootNode")->setChecked(allItems);
        QTest::mouseClick(control<QPushButton>("cmdReplaceAll"), Qt::LeftButton);
    }

    MessageRequest plain(const QString& text)
    {
        MessageRequest request;
        request.text = text;
        return request;
    }

private Q_SLOTS:
    void init()
    {
        m_sandbox = std::make_unique<GuiSandbox>();
        QVERIFY(sandbox().showWindow());
    }
    void cleanup() { m_sandbox.reset(); }

    void theDialogHasItsControlsAndDoesNotBlockTheEditor()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        QAction* entry = sandbox().action(QStringLiteral("mnuReplace"));
        QCOMPARE(MenuTexts::visible(entry->text()), QStringLiteral("Replace"));
        QVERIFY(entry->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_H)));
        entry->trigger();
        QCOMPARE(dialog()->windowTitle(), QStringLiteral("Replace - In selected branch"));
        QVERIFY(!dialog()->isModal());
        QCOMPARE(control<QLabel>("lblFindWhat")->text(), QStringLiteral("Find What :"));
        QCOMPARE(control<QLabel>("lblReplaceWith")->text(), QStringLiteral("Replace With :"));
        QCOMPARE(control<QCheckBox>("chkRootNode")->text(), QStringLiteral("Replace on all items"));
        QVERIFY(!control<QCheckBox>("chkRootNode")->isChecked());
        QCOMPARE(control<QPushButton>("cmdReplaceAll")->text(), QStringLiteral("Replace All"));
        QCOMPARE(control<QPushButton>("cmdCancel")->text(), QStringLiteral("Close"));
        // The editor stays usable while it is up.
        QVERIFY(window().isEnabled());
        QVERIFY(sandbox().action(QStringLiteral("mnuNewItem"))->isEnabled());
    }

    void theDialogKeepsItsValuesWhenClosedAndOpenedAgain()
    {
        sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        sandbox().trigger(QStringLiteral("mnuReplace"));
        QDialog* first = dialog();
        QTest::keyClicks(control<QLineEdit>("txtFind"), QStringLiteral("old"));
        QTest::keyClicks(control<QLineEdit>("txtReplace"), QStringLiteral("new"));
        control<QCheckBox>("chkRootNode")->setChecked(true);
        QTest::mouseClick(control<QPushButton>("cmdCancel"), Qt::LeftButton);
        QVERIFY(!first->isVisible());
        sandbox().trigger(QStringLiteral("mnuReplace"));
        // Closing by the frame only hides it as well.
        first->close();
        QVERIFY(!first->isVisible());
        sandbox().trigger(QStringLiteral("mnuReplace"));
        QCOMPARE(dialog(), first);
        QCOMPARE(window().findChildren<QDialog*>(QStringLiteral("frmReplace")).size(), 1);
        QCOMPARE(control<QLineEdit>("txtFind")->text(), QStringLiteral("old"));
        QCOMPARE(control<QLineEdit>("txtReplace")->text(), QStringLiteral("new"));
        QVERIFY(control<QCheckBox>("chkRootNode")->isChecked());
    }

    void anEmptyFindTextIsRefusedAndRecordsNothing()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "A" }));
        replace(QString(), QStringLiteral("x"), true);
        MessageRequest refusal;
        refusal.text = QStringLiteral("You must enter something to find !");
        refusal.icon = MessageRequest::Icon::Exclamation;
        QCOMPARE(sandbox().prompts().messages, QList<MessageRequest>({ refusal }));
        QCOMPARE(undoCount(index), 0);
        QVERIFY(dialog()->isVisible());
    }

    void replaceOnAllItemsCountsCaptionsAndOwnCommandsAndRebuildsTheTree()
    {
        // Five "a" in the captions, two in the own command texts; the link's command and every
        // extension are left alone.
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "aa", "···a", "bab", "la" }),
                                                texts({ "0002:a=a b", "0003:txt=ca", "0004:txt=ca" }));
        sandbox().trigger(QStringLiteral("mnuLFCopyCommand"));
        QVERIFY(document(index).items[3].copiesCommands);
        const int recorded = undoCount(index);
        clickNode(tree(index), QStringLiteral("E1"));
        replace(QStringLiteral("a"), QStringLiteral("Z"), true);

        QCOMPARE(sandbox().prompts().messages,
                 QList<MessageRequest>({ plain(QStringLiteral("7 replacement were made.")) }));
        QCOMPARE(document(index).items[0].caption, QStringLiteral("ZZ"));
        QCOMPARE(document(index).items[1].commands[1].extension, QStringLiteral("a"));
        QCOMPARE(document(index).items[1].commands[1].command, QStringLiteral("Z b"));
        // A link's caption is replaced, its commands are not.
        QCOMPARE(document(index).items[3].caption, QStringLiteral("lZ"));
        QCOMPARE(document(index).items[3].commands[1].command, QStringLiteral("ca"));
        // The tree is rebuilt: the first item is selected again, the colours are right.
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  ZZ", "    Z", "  bZb", "  lZ" }));
        QCOMPARE(tree(index).currentIndex(), tree(index).node(2));
        QCOMPARE(colourOf(tree(index), QStringLiteral("E1")), QColor(128, 0, 0));
        QVERIFY(dialog()->isVisible());
        QCOMPARE(undoCount(index), recorded + 1);

        // Case matters, and nothing found still rebuilds.
        replace(QStringLiteral("zz"), QStringLiteral("y"), true);
        QCOMPARE(sandbox().prompts().messages.last(), plain(QStringLiteral("0 replacement were made.")));

        // One Undo brings back every caption and command of the first replacement.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(index).items[0].caption, QStringLiteral("aa"));
        QCOMPARE(document(index).items[1].commands[1].command, QStringLiteral("a b"));
        QCOMPARE(nodeOutline(tree(index)), texts({ "KELV", "  aa", "    a", "  bab", "  la" }));
    }

    void inTheSelectedBranchItemsBelowAreReplacedTwiceOver()
    {
        const qint16 index = sandbox().openMenu(QStringLiteral("menu.ini"), texts({ "Top", "···x", "other x" }));
        clickNode(tree(index), QStringLiteral("E0"));
        replace(QStringLiteral("x"), QStringLiteral("xx"), false);
        QCOMPARE(sandbox().prompts().messages.last(), plain(QStringLiteral("3 replacement were made.")));
        QCOMPARE(document(index).items[1].caption, QStringLiteral("xxxx"));
        QCOMPARE(document(index).items[2].caption, QStringLiteral("other x"));

        // With the root selected the branch is the whole menu.
        clickNode(tree(index), QStringLiteral("Root"));
        tree(index).setCurrentIndex(tree(index).node(1));
        replace(QStringLiteral("other"), QStringLiteral("another"), false);
        QCOMPARE(sandbox().prompts().messages.last(), plain(QStringLiteral("1 replacement were made.")));
        QCOMPARE(document(index).items[2].caption, QStringLiteral("another x"));
    }

    void replaceAllActsOnTheWindowActiveWhenPressed()
    {
        const qint16 first = sandbox().openMenu(QStringLiteral("first.ini"), texts({ "one" }));
        sandbox().trigger(QStringLiteral("mnuReplace"));
        const qint16 second = sandbox().openMenu(QStringLiteral("second.ini"), texts({ "one" }));
        QCOMPARE(window().activeDocumentIndex(), second);
        replace(QStringLiteral("one"), QStringLiteral("two"), true);
        QCOMPARE(document(second).items[0].caption, QStringLiteral("two"));
        QCOMPARE(document(first).items[0].caption, QStringLiteral("one"));
        sandbox().trigger(QStringLiteral("mnuWindowName%1").arg(first));
        QTest::mouseClick(control<QPushButton>("cmdReplaceAll"), Qt::LeftButton);
        QCOMPARE(document(first).items[0].caption, QStringLiteral("two"));
    }
};

QTEST_MAIN(TestReplaceDialog)
#include "test_replacedialog.moc"

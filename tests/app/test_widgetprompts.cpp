#include "app/widgetprompts.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

/// Runs `answer` on the message box once it is shown (it runs its own event loop).
template <typename Function> void whenBoxShows(QObject* context, Function answer)
{
    QTimer::singleShot(0, context, [answer]() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box) {
            answer(box);
        }
    });
}

} // namespace

class TestWidgetPrompts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBoxWithoutTitleShowsTheApplicationsTitleAndPlainLines()
    {
        WidgetPrompts prompts;
        QString seenTitle;
        QString seenText;
        QMessageBox::Icon seenIcon = QMessageBox::NoIcon;
        whenBoxShows(this, [&seenTitle, &seenText, &seenIcon](QMessageBox* box) {
            seenTitle = box->windowTitle();
            seenText = box->text();
            seenIcon = box->icon();
            box->button(QMessageBox::Ok)->click();
        });
        MessageRequest request;
        request.text = QStringLiteral("first line\r\n\r\n    second line");
        request.icon = MessageRequest::Icon::Critical;
        QCOMPARE(prompts.showMessage(request), UserPrompts::Answer::Ok);
        QCOMPARE(seenTitle, QStringLiteral("KELV Menu Editor"));
        QCOMPARE(seenText, QStringLiteral("first line\n\n    second line"));
        QCOMPARE(seenIcon, QMessageBox::Critical);
    }

    void detailsAreOfferedAsTheDetailedText()
    {
        WidgetPrompts prompts;
        QString seenDetails = QStringLiteral("not shown");
        whenBoxShows(this, [&seenDetails](QMessageBox* box) {
            seenDetails = box->detailedText();
            box->button(QMessageBox::Ok)->click();
        });
        MessageRequest request;
        request.text = QStringLiteral("This is not a valid KELV Menu file !");
        request.icon = MessageRequest::Icon::Critical;
        request.details = QStringLiteral("/menus/a.ini:14: command line has no \"=\"");
        prompts.showMessage(request);
        QCOMPARE(seenDetails, request.details);

        whenBoxShows(this, [&seenDetails](QMessageBox* box) {
            seenDetails = box->detailedText();
            box->button(QMessageBox::Ok)->click();
        });
        request.details.clear();
        prompts.showMessage(request);
        QCOMPARE(seenDetails, QString());
    }

    void saveQuestionsAnswerYesNoOrCancel_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("answer");
        QTest::newRow("yes") << int(QMessageBox::Yes) << int(UserPrompts::Answer::Yes);
        QTest::newRow("no") << int(QMessageBox::No) << int(UserPrompts::Answer::No);
        QTest::newRow("cancel") << int(QMessageBox::Cancel) << int(UserPrompts::Answer::Cancel);
    }

    void saveQuestionsAnswerYesNoOrCancel()
    {
        QFETCH(int, button);
        QFETCH(int, answer);
        WidgetPrompts prompts;
        QString seenTitle;
        QMessageBox::Icon seenIcon = QMessageBox::NoIcon;
        whenBoxShows(this, [button, &seenTitle, &seenIcon](QMessageBox* box) {
            seenTitle = box->windowTitle();
            seenIcon = box->icon();
            box->button(QMessageBox::StandardButton(button))->click();
        });
        MessageRequest request;
        request.text = QStringLiteral("Do you want to save changes ?");
        request.title = QStringLiteral("Own title");
        request.icon = MessageRequest::Icon::Question;
        request.buttons = MessageRequest::Buttons::YesNoCancel;
        QCOMPARE(int(prompts.showMessage(request)), answer);
        QCOMPARE(seenTitle, QStringLiteral("Own title"));
        QCOMPARE(seenIcon, QMessageBox::Question);
    }

    void closingASaveQuestionCancels()
    {
        WidgetPrompts prompts;
        whenBoxShows(this, [](QMessageBox* box) { QTest::keyClick(box, Qt::Key_Escape); });
        MessageRequest request;
        request.text = QStringLiteral("Do you want to save changes ?");
        request.buttons = MessageRequest::Buttons::YesNoCancel;
        QCOMPARE(prompts.showMessage(request), UserPrompts::Answer::Cancel);
    }

    void overwriteQuestionsHaveYesAndNoAndEscapeSaysNo()
    {
        WidgetPrompts prompts;
        QList<QAbstractButton*> buttons;
        QAbstractButton* defaultButton = nullptr;
        whenBoxShows(this, [&buttons, &defaultButton](QMessageBox* box) {
            buttons = box->buttons();
            defaultButton = box->defaultButton();
            QVERIFY(box->button(QMessageBox::Yes) != nullptr);
            QVERIFY(box->button(QMessageBox::No) != nullptr);
            defaultButton = defaultButton == box->button(QMessageBox::No) ? defaultButton : nullptr;
            QTest::keyClick(box, Qt::Key_Escape);
        });
        MessageRequest request;
        request.text = QStringLiteral("Overwrite it ?");
        request.icon = MessageRequest::Icon::Question;
        request.buttons = MessageRequest::Buttons::YesNo;
        QCOMPARE(prompts.showMessage(request), UserPrompts::Answer::No);
        QCOMPARE(buttons.size(), 2);
        QVERIFY(defaultButton != nullptr);

        whenBoxShows(this, [](QMessageBox* box) { box->button(QMessageBox::Yes)->click(); });
        QCOMPARE(prompts.showMessage(request), UserPrompts::Answer::Yes);
    }
};

QTEST_MAIN(TestWidgetPrompts)
#include "test_widgetprompts.moc"

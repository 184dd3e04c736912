#include "widgetprompts.h"

#include <QFileDialog>
#include <QMessageBox>

namespace {

QMessageBox::Icon boxIcon(MessageRequest::Icon icon)
{
    switch (icon) {
    case MessageRequest::Icon::Critical:
        return QMessageBox::Critical;
    case MessageRequest::Icon::Question:
        return QMessageBox::Question;
    case MessageRequest::Icon::Exclamation:
        return QMessageBox::Warning;
    case MessageRequest::Icon::Information:
        return QMessageBox::Information;
    case MessageRequest::Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

} // namespace

WidgetPrompts::WidgetPrompts(QWidget* parent)
    : m_parent(parent)
{
}

QString WidgetPrompts::applicationTitle()
{
    return QStringLiteral("KELV Menu Editor");
}

UserPrompts::Answer WidgetPrompts::showMessage(const MessageRequest& request)
{
    QMessageBox box(m_parent.data());
    box.setIcon(boxIcon(request.icon));
    box.setWindowTitle(request.title.isEmpty() ? applicationTitle() : request.title);
    // The program's texts break their lines with CR LF; a label wants plain line feeds.
    QString text = request.text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    box.setText(text);
    box.setTextFormat(Qt::PlainText);
    if (!request.details.isEmpty()) {
        box.setDetailedText(request.details);
    }
    if (request.buttons == MessageRequest::Buttons::YesNoCancel) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        box.setDefaultButton(QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::Cancel);
    } else if (request.buttons == MessageRequest::Buttons::YesNo) {
        // Every Yes/No question of the editor would write over something: No is the safe answer.
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
    } else {
        box.setStandardButtons(QMessageBox::Ok);
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        break;
    }
    // A question closed some other way keeps everything as it is.
    switch (request.buttons) {
    case MessageRequest::Buttons::YesNoCancel:
        return Answer::Cancel;
    case MessageRequest::Buttons::YesNo:
        return Answer::No;
    case MessageRequest::Buttons::Ok:
        break;
    }
    return Answer::Ok;
}

QString WidgetPrompts::askOpenFileName(const QString& title, const QString& filter, const QString& startFolder)
{
    return QFileDialog::getOpenFileName(m_parent.data(), title, startFolder, filter);
}

QString WidgetPrompts::askSaveFileName(const QString& title, const QString& filter, const QString& startFolder)
{
    QFileDialog dialog(m_parent.data(), title, startFolder, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // Menu files are found by their extension; a name typed without one still gets it.
    dialog.setDefaultSuffix(QStringLiteral("ini"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

// Times the colouring of the command editor's text box on a 1,000-line command of about 60 KB, with
// the box applying the formats and painting what changed: the full pass after a key release, the
// recolouring after a mouse click, and opening the command editor on the command (the dialog made,
// the text shown and coloured, the window painted). Also the colouring model alone, without a box.
// Run by hand on a release build (QT_QPA_PLATFORM=offscreen works): kelvbench_commands [runs]

#include "benchtiming.h"
#include "silentprompts.h"

#include "app/commandeditordialog.h"
#include "app/commandtextbox.h"
#include "app/mainwindow.h"
#include "commands/colouredtext.h"
#include "commands/commandtext.h"
#include "core/optionsstore.h"
#include "core/userprompts.h"
#include "model/command.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextStream>

#include <cstdio>

namespace {

/// 1,000 lines of about 60 characters each, with variables, parameter numbers, keywords and the
/// script runner's call, as a long command would hold them.
QStringList commandLines()
{
    const QStringList patterns = {
        QStringLiteral("copy \"$fs-001$\" \"$fs-dest-avi-all-ne$.bak\" /y && del $fs-all$"),
        QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe $exepath$\\S.TVP 001=$fs-001$ 002=#pop#"),
        QStringLiteral("rename \"$fs-wp-001$\" \"$datetime$ $fs-wp-001-ne$.txt\" 1>nul"),
        QStringLiteral("regsvr32.exe /s \"$fs-001$\" && echo done with $itemcaption$ here"),
    };
    QStringList lines;
    for (int line = 0; line < 1000; ++line) {
        lines.append(patterns.at(line % patterns.size()));
    }
    return lines;
}

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 2).rightJustified(9);
}

void sendKey(QWidget* widget, QEvent::Type type, Qt::Key key, const QString& text)
{
    QKeyEvent event(type, key, Qt::NoModifier, text);
    QApplication::sendEvent(widget, &event);
}

void sendMouse(QWidget* widget, QEvent::Type type, const QPoint& at)
{
    QMouseEvent event(type, at, widget->mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 21;
    QTextStream out(stdout);

    const QStringList lines = commandLines();
    const QString displayed = lines.join(CommandText::lineBreak());
    out << "Command of " << lines.size() << " lines, " << displayed.size() << " characters; median of " << runs
        << " runs, milliseconds\n";

    // The model alone.
    ColouredText model(displayed);
    model.setSelection(int(displayed.size() / 2), 0);
    out << "model: key release pass     "
        << cell(medianMilliseconds(
               runs, [] {}, [&model] { model.recolour(ColouredText::Occasion::KeyReleased); }))
        << "\n";
    out << "model: mouse release        "
        << cell(medianMilliseconds(
               runs, [] {}, [&model] { model.recolour(ColouredText::Occasion::MouseReleased); }))
        << "\n";

    // The text box, shown, applying the formats and painting.
    CommandTextBox box;
    box.resize(900, 600);
    box.show();
    box.setCommandText(displayed);
    box.recolour(ColouredText::Occasion::EditorOpened);
    box.setFocus();
    box.setSelection(int(displayed.size() / 2), 0);
    QApplication::processEvents();

    out << "box: key release (full pass)"
        << cell(medianMilliseconds(
               runs, [&box] { sendKey(&box, QEvent::KeyPress, Qt::Key_X, QStringLiteral("x")); },
               [&box] {
                   sendKey(&box, QEvent::KeyRelease, Qt::Key_X, QStringLiteral("x"));
                   box.viewport()->repaint();
               }))
        << "\n";

    const QPoint onALine = box.cursorRect().center();
    out << "box: mouse click            "
        << cell(medianMilliseconds(
               runs, [] {},
               [&box, onALine] {
                   sendMouse(box.viewport(), QEvent::MouseButtonPress, onALine);
                   sendMouse(box.viewport(), QEvent::MouseButtonRelease, onALine);
                   box.viewport()->repaint();
               }))
        << "\n";

    // The command editor opened on the command, as Edit opens it.
    QTemporaryDir folder;
    OptionsStore options(folder.filePath(QStringLiteral("options.ini")));
    SilentPrompts prompts;
    MainWindow window(prompts, options, folder.path(), folder.filePath(QStringLiteral("recovery")));
    const Command command { QStringLiteral("avi"), lines.join(QStringLiteral("||")) };
    out << "editor opened on it         "
        << cell(medianMilliseconds(
               runs, [] {},
               [&] {
                   CommandEditorDialog dialog(window.session(), prompts, folder.path(), &window);
                   dialog.openForEditing(1, command);
                   dialog.show();
                   dialog.repaint();
               }))
        << "\n";
    std::fflush(stdout);
    return 0;
}

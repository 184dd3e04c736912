#include "commandeditordialog.h"

#include "app/commandtextbox.h"
#include "app/inputform.h"
#include "app/variablehelppopup.h"
#include "commands/commandediting.h"
#include "commands/commandtext.h"
#include "commands/richtextconversion.h"
#include "commands/variablecatalogue.h"
#include "core/editingsession.h"
#include "core/userprompts.h"
#include "history/editingoperation.h"
#include "model/command.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTextBrowser>
#include <QToolButton>

namespace {

const QStringList& extensionPresets()
{
    static const QStringList presets
        = { QStringLiteral("mp3"), QStringLiteral("avi"), QStringLiteral("ogg"), QStringLiteral("asf"),
            QStringLiteral("ogm"), QStringLiteral("mkv"), QStringLiteral("vob"), QStringLiteral("lst"),
            QStringLiteral("ifo"), QStringLiteral("idx"), QStringLiteral("wav"), QStringLiteral("wma"),
            QStringLiteral("txt"), QStringLiteral("mp2"), QStringLiteral("ac3"), QStringLiteral("exe"),
            QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("gif") };
    return presets;
}

} // namespace

CommandEditorDialog::CommandEditorDialog(EditingSession& session, UserPrompts& prompts, const QString& programFolder,
                                         QWidget* parent)
    : QDialog(parent)
    , m_session(session)
    , m_prompts(prompts)
    , m_programFolder(programFolder)
{
    setObjectName(QStringLiteral("frmAddCommand"));
    setWindowTitle(QStringLiteral("KELV Menu Editor"));
    setModal(true);

    m_label1 = new QLabel(QStringLiteral("KELV Menu Editor"), this);
    m_label1->setObjectName(QStringLiteral("Label1"));
    QFont titleFont = m_label1->font();
    titleFont.setBold(true);
    m_label1->setFont(titleFont);

    m_lblExtension = new QLabel(QStringLiteral("Extension :"), this);
    m_lblExtension->setObjectName(QStringLiteral("lblExtension"));
    m_cmbExtension = new QComboBox(this);
    m_cmbExtension->setObjectName(QStringLiteral("cmbExtension"));
    m_cmbExtension->setEditable(true);
    m_cmbExtension->setInsertPolicy(QComboBox::NoInsert);
    m_cmbExtension->addItems(extensionPresets());
    m_cmbExtension->setCurrentIndex(-1);
    m_cmbExtension->setEditText(QString());
    m_lblExtension->setBuddy(m_cmbExtension);

    m_lblCommand = new QLabel(QStringLiteral("Command :"), this);
    m_lblCommand->setObjectName(QStringLiteral("lblCommand"));
    m_txtCommand = new CommandTextBox(this);
    m_lblCommand->setBuddy(m_txtCommand);

    m_lblHelp = new QTextBrowser(this);
    m_lblHelp->setObjectName(QStringLiteral("lblHelp"));
    m_lblHelp->setFocusPolicy(Qt::NoFocus);
    m_lblHelp->setMaximumHeight(m_lblHelp->fontMetrics().lineSpacing() * 6);

    m_cmdAddVariant = new QToolButton(this);
    m_cmdAddVariant->setObjectName(QStringLiteral("cmdAddVariant"));
    m_cmdAddVariant->setText(QStringLiteral("$"));
    m_cmdAddVariant->setToolTip(tr("Insert a variable"));
    m_cmdLoadScript = new QPushButton(QStringLiteral("Load Tolvexer Script"), this);
    m_cmdLoadScript->setObjectName(QStringLiteral("cmdLoadScript"));
    m_cmdLoadScript->setAutoDefault(false);
    m_cmdAdd = new QPushButton(QStringLiteral("&Add"), this);
    m_cmdAdd->setObjectName(QStringLiteral("cmdAdd"));
    // Enter belongs to the text box; the dialog has no default button.
    m_cmdAdd->setAutoDefault(false);
    m_cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cmdCancel->setAutoDefault(false);

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_label1, 0, 0, 1, 3);
    layout->addWidget(m_lblExtension, 1, 0);
    layout->addWidget(m_cmbExtension, 1, 1);
    layout->addWidget(m_lblCommand, 2, 0, 1, 3);
    layout->addWidget(m_txtCommand, 3, 0, 1, 3);
    layout->addWidget(m_lblHelp, 4, 0, 1, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdAddVariant);
    buttons->addWidget(m_cmdLoadScript);
    buttons->addStretch(1);
    buttons->addWidget(m_cmdAdd);
    buttons->addWidget(m_cmdCancel);
    layout->addLayout(buttons, 5, 0, 1, 3);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(3, 1);
    const int charWidth = fontMetrics().horizontalAdvance(QLatin1Char('x'));
    resize(charWidth * 90, fontMetrics().lineSpacing() * 30);

    buildVariablesMenu();
    m_askValue = [this](const QString& prompt, const QString& description) {
        return InputForm::askParameterValue(prompt, description, m_cmbExtension->currentText(), this);
    };
    m_menuPopup = [](QMenu* menu, const QPoint& globalPos) { menu->exec(globalPos); };

    connect(m_cmdAdd, &QPushButton::clicked, this, &CommandEditorDialog::cmdAdd_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_cmdAddVariant, &QToolButton::clicked, this, &CommandEditorDialog::cmdAddVariant_Click);
    connect(m_cmdLoadScript, &QPushButton::clicked, this, &CommandEditorDialog::loadScript);
    m_txtCommand->setFocus();
}

CommandEditorDialog::~CommandEditorDialog() = default;

void CommandEditorDialog::buildVariablesMenu()
{
    m_mnuVariants = new QMenu(this);
    m_mnuVariants->setObjectName(QStringLiteral("mnuVariants"));
    m_helpPopup = new VariableHelpPopup(this);
    connect(m_mnuVariants, &QMenu::aboutToHide, m_helpPopup, &QWidget::hide);
    for (int index = 0; index < VariableCatalogue::Count; ++index) {
        QAction* entry = m_mnuVariants->addAction(VariableCatalogue::name(index));
        entry->setObjectName(QStringLiteral("mnuVar") + QString::number(index));
        entry->setData(VariableCatalogue::help(index));
        // The pointer or the keyboard on an entry shows its help, beside the menu and in the help pane;
        // choosing it too.
        connect(entry, &QAction::hovered, this, [this, index, entry] {
            showVariableHelp(index);
            const QString help = VariableCatalogue::help(index);
            const bool rich = VariableCatalogue::hasRichHelp(index);
            m_helpPopup->showBeside(m_mnuVariants, entry, rich ? rtfToHtml(help) : QString(), rich ? QString() : help);
        });
        connect(entry, &QAction::triggered, this, [this, index] {
            showVariableHelp(index);
            insertVariable(index);
        });
    }
}

void CommandEditorDialog::openForEditing(int slot, const Command& command)
{
    m_tag = QString::number(slot);
    m_cmbExtension->setEditText(command.extension);
    m_txtCommand->setCommandText(CommandText::toDisplayed(command.command));
    m_cmdAdd->setText(QStringLiteral("Edit"));
    m_txtCommand->recolour(ColouredText::Occasion::EditorOpened);
}

void CommandEditorDialog::cmdAdd_Click()
{
    EditArguments arguments;
    arguments.extension = m_cmbExtension->currentText();
    arguments.text = CommandText::toStored(m_txtCommand->commandText());
    arguments.slot = m_tag.isEmpty() ? 0 : m_tag.toInt();
    if (m_session.run(EditOperations::storeCommand, arguments)) {
        accept();
    }
}

void CommandEditorDialog::cmdAddVariant_Click()
{
    const QPoint corner(m_cmdAddVariant->width(), m_cmdAddVariant->height());
    m_menuPopup(m_mnuVariants, m_cmdAddVariant->mapToGlobal(corner));
}

void CommandEditorDialog::showVariableHelp(int entry)
{
    const QString help = VariableCatalogue::help(entry);
    if (VariableCatalogue::hasRichHelp(entry)) {
        m_lblHelp->setHtml(rtfToHtml(help));
    } else {
        m_lblHelp->setPlainText(help);
    }
}

void CommandEditorDialog::insertVariable(int entry)
{
    const QString caption = VariableCatalogue::name(entry);
    QString variable = caption;
    variable.replace(QStringLiteral("avi"), m_cmbExtension->currentText());
    const int caret = m_txtCommand->selectionStart();
    // The caret goes after as many characters as the catalogue's name has, whatever the extension
    // made of it, as it always has.
    m_txtCommand->replaceSelection(variable, caret + int(caption.size()));
    m_txtCommand->setFocus();
    m_txtCommand->recolour(ColouredText::Occasion::VariableChosen);
}

void CommandEditorDialog::loadScript()
{
    // Scripts usually sit beside the program, where a call names them through "$exepath$".
    const QString path
        = m_prompts.askOpenFileName(QStringLiteral("Select a Tolvexer script ..."),
                                    QStringLiteral("Script Files (TVS ; TVP) (*.tvs *.tvp)"), m_programFolder);
    if (path.isEmpty()) {
        return;
    }
    runCatchingErrors(
        [this, &path] {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                throw RunTimeError(ErrorNumber::FileNotFound, QStringLiteral("loadScript"));
            }
            const QStringList lines = ScriptCall::scriptLines(file.readAll());
            const QString before = m_txtCommand->commandText();
            const ScriptCall::Result call = ScriptCall::append(before, path, m_programFolder, lines, m_askValue);
            m_txtCommand->appendText(call.text.mid(before.size()));
            if (!call.complete) {
                // The parameter block ran past the end of the file; what was appended stays.
                throw RunTimeError(ErrorNumber::InputPastEndOfFile, QStringLiteral("loadScript"));
            }
            m_txtCommand->recolour(ColouredText::Occasion::ScriptLoaded);
        },
        [this](const RunTimeError& error) { gestErrCommandForm(error); });
}

void CommandEditorDialog::gestErrCommandForm(const RunTimeError& error)
{
    MessageRequest request;
    request.text = error.report();
    request.icon = MessageRequest::Icon::Critical;
    m_prompts.showMessage(request);
}

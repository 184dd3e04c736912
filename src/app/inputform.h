#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

/// The value prompt of a script parameter (inputForm): the prompt line, a box for the value, OK,
/// Cancel, and a button whose menu (mnuVarName) puts a variable of the catalogue into the box, with
/// "avi" replaced by the command's extension as the command editor's own variables menu does.
class InputForm final : public QDialog
{
    Q_OBJECT

public:
    /// `prompt` goes above the box; `description` names the parameter and the script in the title.
    InputForm(const QString& prompt, const QString& description, const QString& extension, QWidget* parent);

    QString value() const;
    QMenu* variablesMenu() const { return m_mnuVarName; }

    /// Shows the prompt modally; the value when it is accepted, an empty text when it is cancelled.
    static QString askParameterValue(const QString& prompt, const QString& description, const QString& extension,
                                     QWidget* parent);

private:
    void insertVariable(const QString& name);

    QString m_extension;
    QLabel* m_descriptionCaption = nullptr;
    QLineEdit* m_valueBox = nullptr;
    QPushButton* m_cmdOK = nullptr;
    QPushButton* m_cmdCancel = nullptr;
    QPushButton* m_command3 = nullptr;
    QMenu* m_mnuVarName = nullptr;
};

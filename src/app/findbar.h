#pragma once

#include "treeview/itemfinder.h"

#include <QStringList>
#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QToolButton;
struct MenuDocument;

/// The find bar above an editor window's tree: what is typed is looked for at once in the captions
/// (and, when asked, in the commands) of the items the tree shows, the number of matches is shown,
/// and Enter or F3 and Shift+F3 step through them, each shown as a click on its node shows it.
/// Escape closes the bar. It reads the document only.
class FindBar final : public QWidget
{
    Q_OBJECT

public:
    /// `document` gives the menu to search and its hide mode whenever the bar searches.
    FindBar(std::function<const MenuDocument&()> document, QWidget* parent);

    /// Shows the bar with its text selected, ready for typing.
    void open();
    /// Searches again.
    void search();
    /// The menu or what the tree shows of it changed: the next search looks at every node again (the
    /// finder keeps what it learnt of the menu where that still holds).
    void menuChanged();
    /// The menu has changed: the matches follow it, and an open bar searches again.
    void followMenu();
    /// Shows the next match (wrapping at the end), or the previous one.
    void findNext();
    void findPrevious();

    QStringList matches() const { return m_finder.keys(); }
    /// The match shown last, -1 when none was.
    int current() const { return m_current; }

Q_SIGNALS:
    /// The node of `key` is to be shown as a click would show it.
    void matchChosen(const QString& key);
    /// The bar was closed from the keyboard or its button; the tree takes the focus back.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showMatch(int index);
    void showCount();
    void close();

    std::function<const MenuDocument&()> m_document;
    QLineEdit* m_txtFind = nullptr;
    QCheckBox* m_chkInCommands = nullptr;
    QCheckBox* m_chkMatchCase = nullptr;
    QLabel* m_lblMatches = nullptr;
    QToolButton* m_cmdPrevious = nullptr;
    QToolButton* m_cmdNext = nullptr;
    QToolButton* m_cmdClose = nullptr;
    /// The matches of the last search; it keeps what it learnt of the menu while the menu does not
    /// change.
    ItemFinder m_finder;
    int m_current = -1;
};

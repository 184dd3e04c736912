#pragma once

#include "app/itemtree.h"

#include <QLineEdit>
#include <QString>
#include <QStringList>
#include <QTest>

#include <functional>
#include <initializer_list>

/// Helpers for tests that drive an item tree as a user would.
namespace TreeHelpers {

/// Texts written as plain literals in a test.
inline QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list) {
        result.append(QString::fromUtf8(text));
    }
    return result;
}

/// The texts of the tree's nodes, parents before children, each indented two blanks per level.
inline QStringList nodeOutline(const ItemTree& tree)
{
    QStringList lines;
    const QAbstractItemModel* model = tree.model();
    std::function<void(const QModelIndex&, int)> walk
        = [&lines, &walk, &tree, model](const QModelIndex& node, int depth) {
              lines.append(QString(depth * 2, QLatin1Char(' ')) + tree.textOf(node));
              for (int c = 0; c < model->rowCount(node); ++c) {
                  walk(model->index(c, 0, node), depth + 1);
              }
          };
    for (int t = 0; t < model->rowCount(); ++t) {
        walk(model->index(t, 0), 0);
    }
    return lines;
}

/// The keys of the tree's nodes in the order they were added (node 1 first).
inline QStringList nodeKeys(const ItemTree& tree)
{
    QStringList keys;
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        keys.append(tree.keyOf(tree.node(n)));
    }
    return keys;
}

/// A mouse click on the node `key`, as the user makes it.
inline void clickNode(ItemTree& tree, const QString& key)
{
    const QModelIndex node = tree.nodeByKey(key);
    QVERIFY2(node.isValid(), qPrintable(key));
    tree.scrollTo(node);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::NoModifier, tree.visualRect(node).center());
}

/// The open label editor of the tree; null when no label is being edited.
inline QLineEdit* labelEditor(const ItemTree& tree)
{
    const QList<QLineEdit*> editors = tree.viewport()->findChildren<QLineEdit*>();
    for (QLineEdit* editor : editors) {
        if (editor->isVisible()) {
            return editor;
        }
    }
    return nullptr;
}

inline QColor colourOf(const ItemTree& tree, const QString& key)
{
    return tree.nodeByKey(key).data(Qt::ForegroundRole).value<QBrush>().color();
}

inline bool isBold(const ItemTree& tree, const QString& key)
{
    return tree.nodeByKey(key).data(Qt::FontRole).value<QFont>().bold();
}

/// Types `text` into the open label editor of `tree` over what it holds and confirms it with Enter.
inline void typeLabel(ItemTree& tree, const QString& text)
{
    QLineEdit* editor = labelEditor(tree);
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!tree.isEditingLabel());
}

} // namespace TreeHelpers

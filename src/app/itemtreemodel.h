#pragma once

#include "treeview/nodetree.h"
#include "treeview/nodetreeobserver.h"

#include <QAbstractItemModel>
#include <QBrush>
#include <QFont>

#include <functional>
#include <utility>
#include <vector>

struct MenuDocument;

/// The item model behind an editor window's tree `lstMenu`: one column, the root node "KELV" as its
/// only top-level row and every shown item below it. It shows the nodes of a NodeTree and reads
/// what they show from the document as it stands, so no caption is copied per node; every change
/// of the node tree reaches the view as the row change it is, but rows that leave: they leave as a
/// change of layout that names the indexes it changes (see nodesAboutToBeRemoved).
///
/// Model indexes carry a scrambled form of the node's address: item views keep their expanded
/// nodes in hashes keyed by the index, and addresses handed out one after another would crowd a
/// few buckets of them.
class ItemTreeModel final : public QAbstractItemModel, private NodeTreeObserver
{
    Q_OBJECT

public:
    explicit ItemTreeModel(QObject* parent = nullptr);
    ~ItemTreeModel() override;

    /// Where the document shown comes from; asked whenever a node's text or item is needed, since
    /// undoing replaces the document.
    void setDocumentSource(std::function<const MenuDocument&()> source) { m_documentSource = std::move(source); }
    const MenuDocument& document() const;

    NodeTree& nodes() { return m_tree; }
    const NodeTree& nodes() const { return m_tree; }

    /// The index of `node`; invalid for null.
    QModelIndex indexOf(const TreeNode* node) const;
    /// The node of `index`; null for an invalid index.
    TreeNode* nodeOf(const QModelIndex& index) const;

    /// The font of bold nodes follows the view's font.
    void setBoldFont(const QFont& font) { m_boldFont = font; }
    /// The node shown with the drop highlight (empty key: none).
    void setHighlightedKey(const QString& key);
    QString highlightedKey() const { return m_highlightedKey; }
    void setHighlightBrush(const QBrush& brush) { m_highlightBrush = brush; }

    /// Heard just before rows are inserted (`rowsMove` false), or moved (true), so that
    /// the view can set its expanded state aside only when a change is costly with it in place. An
    /// empty function (the default) hears nothing.
    void setBeforeShapeChange(std::function<void(bool rowsMove)> hook) { m_beforeShapeChange = std::move(hook); }
    /// Heard just before children `first` .. `last` of `parent` go with their branches, while the
    /// view can still be told to forget what it remembers of them.
    void setBeforeRemoval(std::function<void(const TreeNode* parent, int first, int last)> hook)
    {
        m_beforeRemoval = std::move(hook);
    }
    /// Heard once the nodes announced to the removal hook went and the persistent indexes follow,
    /// just before the view is told that the layout changed, so that it can take their rows out first.
    void setAfterRemoval(std::function<void()> hook) { m_afterRemoval = std::move(hook); }

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    // NodeTreeObserver
    void nodesAboutToBeInserted(const TreeNode* parent, int first, int last) override;
    void nodesInserted() override;
    void nodesAboutToBeRemoved(const TreeNode* parent, int first, int last) override;
    void nodesRemoved() override;
    void nodeAboutToBeMoved(const TreeNode* parent, int row, const TreeNode* newParent, int newRow) override;
    void nodeMoved() override;
    void nodesChanged(const TreeNode* parent, int first, int last) override;
    void treeAboutToBeReset() override;
    void treeReset() override;

    /// Notes, before children `first` .. `last` of `parent` go, the nodes whose indexes that changes
    /// and their indexes now, unless there are many.
    void noteIndexesTheRemovalChanges(const TreeNode* parent, int first, int last);

    NodeTree m_tree;
    std::function<const MenuDocument&()> m_documentSource;
    QFont m_boldFont;
    QString m_highlightedKey;
    QBrush m_highlightBrush;
    std::function<void(bool)> m_beforeShapeChange;
    std::function<void(const TreeNode*, int, int)> m_beforeRemoval;
    std::function<void()> m_afterRemoval;
    /// What noteIndexesTheRemovalChanges found for the removal under way.
    std::vector<std::pair<const TreeNode*, QModelIndex>> m_changedByRemoval;
    bool m_removalChangesMany = false;
};

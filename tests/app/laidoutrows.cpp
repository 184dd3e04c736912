#include "laidoutrows.h"

#include "app/itemtree.h"

#include <QScrollBar>
#include <QTreeView>
#include <QtWidgets/private/qtreeview_p.h>

#include <algorithm>
#include <utility>

namespace LaidOutRows {

QStringList of(const QTreeView& view)
{
    const auto* d = static_cast<const QTreeViewPrivate*>(QObjectPrivate::get(&view));
    QStringList lines;
    for (const QTreeViewItem& row : d->viewItems) {
        lines.append(QStringLiteral("%1 '%2' row %3 parent %4 level %5 %6%7%8%9 total %10 height %11")
                         .arg(row.index.internalId())
                         .arg(row.index.data().toString())
                         .arg(row.index.row())
                         .arg(row.parentItem)
                         .arg(row.level)
                         .arg(row.expanded ? QStringLiteral("open ") : QStringLiteral("shut "))
                         .arg(row.hasChildren ? QStringLiteral("children ") : QString())
                         .arg(row.hasMoreSiblings ? QStringLiteral("more ") : QString())
                         .arg(row.spanning ? QStringLiteral("spanning ") : QString())
                         .arg(row.total)
                         .arg(row.height));
    }
    lines.append(QStringLiteral("row height %1, scroll range %2")
                     .arg(d->defaultItemHeight)
                     .arg(view.verticalScrollBar()->maximum()));
    QStringList expanded;
    for (const QPersistentModelIndex& index : d->expandedIndexes) {
        expanded.append(index.isValid() ? QString::number(index.internalId()) : QStringLiteral("gone"));
    }
    std::sort(expanded.begin(), expanded.end());
    lines.append(QStringLiteral("expanded: ") + expanded.join(QLatin1Char(' ')));
    return lines;
}

QString disagreement(ItemTree& tree)
{
    (void)tree.indexBelow(tree.node(1)); // runs a layout that is due
    const QStringList standing = of(tree);
    tree.doItemsLayout();
    const QStringList quick = of(tree);
    tree.QTreeView::doItemsLayout();
    const QStringList own = of(tree);
    if (own.last().contains(QLatin1String("gone"))) {
        return QStringLiteral("the view remembers expanded nodes that went: ") + own.last();
    }
    for (const auto& [name, rows] : { std::pair { "standing", standing }, std::pair { "quick", quick } }) {
        if (rows != own) {
            qsizetype line = 0;
            while (line < rows.size() && line < own.size() && rows.at(line) == own.at(line)) {
                ++line;
            }
            return QStringLiteral("the %1 rows differ from the view's own at line %2: %3 / %4")
                .arg(QLatin1String(name))
                .arg(line)
                .arg(rows.value(line), own.value(line));
        }
    }
    return QString();
}

bool isLayoutDue(const QTreeView& view)
{
    return static_cast<const QTreeViewPrivate*>(QObjectPrivate::get(&view))->delayedPendingLayout;
}

bool isAnimating(const QTreeView& view)
{
#if QT_CONFIG(animation)
    const auto* d = static_cast<const QTreeViewPrivate*>(QObjectPrivate::get(&view));
    return d->animatedOperation.state() == QAbstractAnimation::Running;
#else
    Q_UNUSED(view);
    return false;
#endif
}

} // namespace LaidOutRows

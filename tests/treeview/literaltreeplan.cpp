#include "literaltreeplan.h"

#include "model/menudocument.h"
#include "treeview/hidemode.h"

#include <QSet>

namespace {

struct LiteralBuild
{
    const MenuDocument& document;
    int hideMode;
    QList<PlannedNode> plan;
    QSet<QString> addedKeys;

    void build(int i, const QString& shownAncestorKey)
    {
        const MenuItem& item = document.items.at(i);
        QString parentKey = item.parent == -1 ? QStringLiteral("Root") : document.items.at(item.parent).key;
        if (parentKey != QStringLiteral("Root") && !addedKeys.contains(parentKey)) {
            parentKey = shownAncestorKey; // the parent is hidden: the tree has no node for it
        }
        QString childAncestorKey = shownAncestorKey;
        if (HideMode::isVisible(item, hideMode)) {
            plan.append(PlannedNode { item.key, parentKey, item.caption, qint16(i) });
            addedKeys.insert(item.key);
            childAncestorKey = item.key;
        }
        for (int ord = 1; ord <= item.childCount; ++ord) {
            for (int j = 0; j < document.items.size(); ++j) {
                if (document.items.at(j).parent == i && document.items.at(j).siblingOrder == ord) {
                    build(j, childAncestorKey);
                }
            }
        }
    }
};

} // namespace

QList<PlannedNode> literalPlanTree(const MenuDocument& document, int hideMode)
{
    LiteralBuild run { document, hideMode, {}, {} };
    for (int ord = 1;; ++ord) {
        int found = -1;
        for (int j = 0; j < document.items.size(); ++j) {
            if (document.items.at(j).parent == -1 && document.items.at(j).siblingOrder == ord) {
                found = j;
                break;
            }
        }
        if (found < 0) {
            break;
        }
        run.build(found, QStringLiteral("Root"));
    }
    return run.plan;
}

#include "statuspanels.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"

QString StatusPanels::positionOf(const MenuItem& item)
{
    return QStringLiteral("(") + QString::number(item.siblingOrder) + QStringLiteral(" ; ")
        + QString::number(item.childCount) + QStringLiteral(")");
}

StatusPanels StatusPanels::of(const MenuDocument& document, const QString& selectedKey)
{
    StatusPanels panels;
    panels.itemCount = QString::number(document.items.size());
    const int index = selectedKey.isEmpty() ? -1 : findItemByKey(document, selectedKey);
    if (index >= 0) {
        panels.itemIndex = QString::number(index);
        panels.position = positionOf(document.items.at(index));
    }
    return panels;
}

#include "itemlookup.h"

#include "errortable.h"
#include "int16.h"
#include "menudocument.h"
#include "runtimeerror.h"

qint16 findItemByKey(const MenuDocument& document, const QString& key)
{
    const auto& items = document.items;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (items.at(i).key == key) {
            return Int16::checked(i, "findItemByKey");
        }
    }
    return -1;
}

qint16 findParent(const MenuDocument& document, int index)
{
    if (index < 0) {
        return -1;
    }
    const auto& items = document.items;
    // An index past the last item names no item: the same run-time error as any such index.
    if (index >= items.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("findParent"));
    }
    const int parentLevel = int(items.at(index).level) - 1;
    for (int j = index; j >= 0; --j) {
        if (items.at(j).level == parentLevel) {
            return Int16::checked(j, "findParent");
        }
    }
    return -1;
}

qint16 countTopLevel(const MenuDocument& document)
{
    qint64 count = 0;
    for (const MenuItem& item : document.items) {
        if (item.parent == -1) {
            ++count;
        }
    }
    return Int16::checked(count, "countTopLevel");
}

qint16 requireItemByKey(const MenuDocument& document, const QString& key, const char* source)
{
    const qint16 index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return index;
}

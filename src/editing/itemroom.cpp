#include "itemroom.h"

#include "model/errortable.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

void ensureRoomForNewItems(const MenuDocument& document, qint64 added, const char* source)
{
    const bool tooManyItems = qint64(document.items.size()) + added > MenuDocument::maximumItemCount;
    // A deleted item's key is never given out again, so the key counter may run out first.
    const bool keysExhausted = qint64(document.lastIndex) + added > MenuDocument::maximumItemCount;
    if (tooManyItems || keysExhausted) {
        throw RunTimeError(ErrorNumber::Overflow, QString::fromLatin1(source));
    }
}

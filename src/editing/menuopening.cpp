#include "menuopening.h"

#include "copylinks.h"

#include "menufile/menufilereader.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

MenuReadResult detectLinks(MenuReadResult result, bool detectCopies, MenuDocument& document)
{
    if (!result.ok() || !detectCopies) {
        return result;
    }
    try {
        normalizeCopyLinks(document);
    } catch (const RunTimeError& error) {
        result.code = MenuReadResult::Failed;
        result.errorNumber = error.number();
        result.reason = error.description();
    }
    return result;
}

} // namespace

MenuReadResult openMenuFile(const QString& path, bool detectCopies, MenuDocument& document)
{
    return detectLinks(readMenuFile(path, document), detectCopies, document);
}

MenuReadResult openMenuBytes(const QByteArray& bytes, bool detectCopies, MenuDocument& document)
{
    return detectLinks(readMenuBytes(bytes, document), detectCopies, document);
}

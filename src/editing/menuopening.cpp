#include "menuopening.h"

#include "copylinks.h"

#include "menufile/fileidentity.h"
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

MenuReadResult openMenuFile(const QString& path, bool detectCopies, MenuDocument& document, FileIdentity* identity)
{
    FileIdentity read;
    const MenuReadResult result
        = detectLinks(readMenuFile(path, document, identity != nullptr ? &read : nullptr), detectCopies, document);
    if (result.ok() && identity != nullptr) {
        *identity = read;
    }
    return result;
}

MenuReadResult openMenuBytes(const QByteArray& bytes, bool detectCopies, MenuDocument& document)
{
    return detectLinks(readMenuBytes(bytes, document), detectCopies, document);
}

#include "documentfile.h"

#include "core/options.h"
#include "editing/menuopening.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"

MenuReadResult openMenuDocument(const QString& path, const Options& options, qint16 index, MenuDocument& document)
{
    const MenuReadResult result = openMenuFile(path, options.checkCopyCommand != 0, document);
    if (result.ok()) {
        document.windowIndex = index;
        document.filePath = path;
        document.saved = true;
        document.hideMode = HideMode::applyModeChange(document.hideMode, options.startingHideMode());
    }
    return result;
}

void saveMenuDocument(MenuDocument& document, const QString& path)
{
    writeMenuFile(document, path);
    document.filePath = path;
    document.saved = true;
}

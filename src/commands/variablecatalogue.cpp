#include "variablecatalogue.h"

namespace {

struct Entry
{
    const char* name;
    const char* mode;
    const char* description;
    const char* comments;
};

const char* const number = "You can change the number";
const char* const avi = "You can change the extension AVI by anything else";
const char* const destinationN
    = "You can change the number. Destination is the same directory if you use the left click, but if you use KELV "
      "with a drag and drop with the right click, the destination directory will be the drop directory";
const char* const destination
    = "Destination is the same directory if you use the left click, but if you use KELV with a drag and drop with the "
      "right click, the destination directory will be the drop directory";

// The help texts are shown to users as they stand, their wording included.
const std::array<Entry, VariableCatalogue::Count> entries { {
    { "$fs-001$", "FILE", "Path of the first selected file", number },
    { "$fs-001-ne$", "FILE", "Path of the first selected file without its extension", number },
    { "$fs-all$", "ALL", "Path of the current selected file", "-" },
    { "$fs-all-ne$", "ALL", "Path of the current selected file without its extension", "-" },
    { "$fs-avi-001$", "FILE", "Path of the first AVI file selected", avi },
    { "$fs-avi-001-ne$", "FILE", "Path of the first AVI file selected without its extension", avi },
    { "$fs-avi-all$", "ALL", "Path of the current selected file, only if it is a AVI file", avi },
    { "$fs-avi-all-ne$", "ALL", "Path of the current selected file without its extension, only if it is a AVI file",
      avi },
    { "$ass-001$", "-", "Audio stream selected by the first $audiostream$ item",
      "You can change the number if you have multiple $audiostream$ items, useful for videos with two audio tracks" },
    { "$sss-001$", "-", "Subtitle stream selected by the first $subtitlestream$ item",
      "You can change the number if you have multiple $subtitlestream$ items" },
    { "$itemcaption$", "-", "Selected item caption", "-" },
    { "$itemcaption-001$", "-", "Last level selected item's caption",
      "001 = selected item's caption, 002 = selected item's parent's caption ..." },
    { "$fs-dest-001$", "FILE", "Destination path of the first selected file", destinationN },
    { "$fs-dest-001-ne$", "FILE", "Destination path of the first selected file without its extension", destinationN },
    { "$fs-dest-all$", "ALL", "Destination path of the current selected file", destination },
    { "$fs-dest-all-ne$", "ALL", "Destination path of the current selected file without its extension", destination },
    { "$fs-dest-avi-001$", "FILE", "Destination path of the first selected file, only if it is a AVI file",
      destinationN },
    { "$fs-dest-avi-001-ne$", "FILE",
      "Destination path of the first selected file without its extension, only if it is a AVI file", destinationN },
    { "$fs-dest-avi-all$", "ALL", "Destination path of the current selected file, only if it is a AVI file",
      destination },
    { "$fs-dest-avi-all-ne$", "ALL",
      "Destination path of the current selected file without its extension, only if it is a AVI file", destination },
    { "$fs-wp-001$", "FILE", "Name of the first selected file", number },
    { "$fs-wp-001-ne$", "FILE", "Name of the first selected file without its extension", number },
    { "$fs-wp-all$", "ALL", "Name of the current selected file", "-" },
    { "$fs-wp-all-ne$", "ALL", "Name of the current selected file without its extension", "-" },
    { "$fs-wp-avi-001$", "FILE", "Name of the first AVI file selected", avi },
    { "$fs-wp-avi-001-ne$", "FILE", "Name of the first AVI file selected without its extension", avi },
    { "$fs-wp-avi-all$", "ALL", "Name of the current selected file, only if it is a AVI file", avi },
    { "$fs-wp-avi-all-ne$", "ALL", "Name of the current selected file without its extension, only if it is a AVI file",
      avi },
    { "$fs-ext$", "ALL", "Current selected file extension", "-" },
    { "$datetime$", "-", "DDMMAAAHHMMSS current date and time",
      "Useful to differentiate the differents KELV executions" },
    { "#pop#", "-", "Tolvexer parameter that ask the user for a value",
      "Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp 001=#pop#" },
    { "#ask#", "-", "Tolvexer parameter that display the script parameters form",
      "Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp 001=#ask#" },
    { "#pop:$datetime$#", nullptr, nullptr, nullptr },
    { "$exepath$", "-", "KELV installation path (KELV.dll path)", "-" },
} };

QString richHelp()
{
    return QStringLiteral(
               "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1036{\\fonttbl{\\f0\\fswiss\\fprq2\\fcharset0 MS Sans "
               "Serif;}}{\\colortbl ;\\red0\\green0\\blue0;\\red255\\green0\\blue0;\\red0\\green128\\blue0;}{\\*"
               "\\generator Msftedit 5.41.15.1507;}\\viewkind4\\uc1\\pard\\f0\\fs16 Menu mode required : -\\par")
        + QStringLiteral("\r\n")
        + QStringLiteral("Description : Tolvexer parameter that ask the user for a value once per $datetime$ (KELV "
                         "execution)\\par")
        + QStringLiteral("\r\n")
        + QStringLiteral(
               "Comments : Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp "
               "001=#pop:$datetime$#. "
               "Useful to let the user enter a value once even if Tolvexer is executed a lot of times. \\cf2 ATTENTION "
               ": "
               "If you want to use this parameter more than once, add a number inside : #pop:$datetime$\\cf3\\ul\\b "
               "here\\cf2\\ulnone\\b0 # otherwise the second one wont pop and will take the first entered "
               "value\\cf1 .\\cf0\\par}");
}

} // namespace

QString VariableCatalogue::name(int index)
{
    if (index < 0 || index >= Count) {
        return QString();
    }
    return QString::fromLatin1(entries[std::size_t(index)].name);
}

QString VariableCatalogue::help(int index)
{
    if (index < 0 || index >= Count) {
        return QString();
    }
    if (hasRichHelp(index)) {
        return richHelp();
    }
    const Entry& entry = entries[std::size_t(index)];
    return QStringLiteral("Menu mode required : ") + QString::fromLatin1(entry.mode) + QStringLiteral("\r\n")
        + QStringLiteral("Description : ") + QString::fromLatin1(entry.description) + QStringLiteral("\r\n")
        + QStringLiteral("Comments : ") + QString::fromLatin1(entry.comments);
}

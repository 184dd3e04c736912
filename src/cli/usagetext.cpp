#include "usagetext.h"

namespace {

QString exitCodes()
{
    return QStringLiteral("Exit codes:\n"
                          "  0  success\n"
                          "  1  check found an invalid file, or with --strict a problem\n"
                          "  2  usage error: unknown command or option, missing or surplus file name\n"
                          "  3  the file is not a menu file (its first line is not \"KELV - Menu\")\n"
                          "  4  any other read error, including a file that cannot be opened\n"
                          "  5  nothing written: the menu file or standard output could not be written, or the\n"
                          "     menu holds values a menu file cannot hold (an existing file is left untouched)\n"
                          "  6  edit stopped at an operation the editor refuses or that fails; nothing written\n");
}

} // namespace

namespace UsageText {

QString general()
{
    return QStringLiteral(
               "Usage: kelvmenu COMMAND [OPTIONS] FILE...\n"
               "\n"
               "Reads, checks and rewrites the .ini menu files of the KELV context menu exactly as the\n"
               "KELV Menu Editor does.\n"
               "\n"
               "Commands:\n"
               "  dump [--detect-links] FILE             print the items as one JSON object (UTF-8)\n"
               "  format [--detect-links] FILE [-o OUT]  rewrite FILE in the editor's layout, in place or to OUT\n"
               "  check [--strict] FILE...               tell for each file whether the editor can open it and\n"
               "                                         warn of what the context menu would get wrong\n"
               "  tree FILE                              print the item tree with keys, command counts and links\n"
               "  edit [OPTIONS] FILE OPS                apply editing operations to FILE, as the editor does\n"
               "\n"
               "Run \"kelvmenu COMMAND --help\" for the details of one command.\n"
               "\n"
               "Options:\n"
               "  -h, --help  show this help\n"
               "  --version   show the version of kelvmenu\n"
               "\n")
        + exitCodes();
}

QString dump()
{
    return QStringLiteral(
               "Usage: kelvmenu dump [--detect-links] FILE\n"
               "\n"
               "Reads the menu file FILE and prints its items as one JSON object in UTF-8:\n"
               "  {\"lastIndex\": N, \"items\": [{\"key\": \"E0\", \"caption\": \"...\", \"level\": 0, \"parent\": "
               "-1,\n"
               "    \"childCount\": 2, \"siblingOrder\": 1, \"copyKey\": \"-1\", \"copiesCommands\": false,\n"
               "    \"commands\": [{\"extension\": \"zip\", \"command\": \"...\"}]}, ...]}\n"
               "Items come in the order of the file's item lines, one per line, their fields always in this\n"
               "order; item i has the key \"E\" followed by i, and parent is an index into the items array\n"
               "(-1 for a top-level item).\n"
               "\n"
               "Options:\n"
               "  --detect-links  turn every item whose commands equal those of an earlier item into a\n"
               "                  copy-command link to it (copiesCommands true, copyKey its key), as the\n"
               "                  editor does when its CheckCopyCommand option is on\n"
               "  -h, --help      show this help\n"
               "\n"
               "Example:\n"
               "  kelvmenu dump --detect-links menu.ini > menu.json\n"
               "\n")
        + exitCodes();
}

QString format()
{
    return QStringLiteral(
               "Usage: kelvmenu format [--detect-links] FILE [-o OUT]\n"
               "\n"
               "Reads the menu file FILE and writes it back in the one layout the editor saves:\n"
               "Windows-1252 text, CR LF line ends, fixed blank lines, the tags [Menu], [/Menu], [Commands]\n"
               "and [/Commands] as written here, three middle dots per level and item numbers of at least\n"
               "four digits. Without -o, FILE is replaced; the new file takes the place of the old one only\n"
               "once it is complete.\n"
               "\n"
               "Options:\n"
               "  -o, --output OUT  write to OUT instead of replacing FILE\n"
               "  --detect-links    run the editor's copy-command link detection before writing; links\n"
               "                    are written as their target's commands, so the file reads the same\n"
               "  -h, --help        show this help\n"
               "\n"
               "Examples:\n"
               "  kelvmenu format menu.ini\n"
               "  kelvmenu format menu.ini -o clean.ini\n"
               "\n")
        + exitCodes();
}

QString check()
{
    return QStringLiteral("Usage: kelvmenu check [--strict] FILE...\n"
                          "\n"
                          "Reads every FILE as the editor does and reports on each, going on after a failure.\n"
                          "A valid file gives a line on standard output:\n"
                          "  FILE: ok (N items, M commands)\n"
                          "where M counts the command lines stored in the file. An invalid file gives a line on\n"
                          "standard error, with the line of the file where reading stopped when there is one:\n"
                          "  FILE:LINE: reason     e.g. menu.ini:14: command line has no \"=\"\n"
                          "  FILE: reason          e.g. menu.ini: ends before [/Commands]\n"
                          "A file that is not a menu file is reported as\n"
                          "  FILE:1: This is not a valid KELV Menu file !\n"
                          "A valid file whose text looks like UTF-8 (menu files are Windows-1252, so the editor\n"
                          "would show it garbled) also gives a warning on standard error, which changes no exit\n"
                          "code:\n"
                          "  FILE: warning: the file looks like UTF-8 text, but menu files are Windows-1252: ...\n"
                          "\n"
                          "A valid file is then checked for what the context menu would get wrong or what looks\n"
                          "like a slip, each problem a warning on standard error with its line, its item (number\n"
                          "in the [Commands] section and captions from the top; of a deeper item its last three\n"
                          "captions after \"\u2026\") and, for a command, its number:\n"
                          "  FILE:LINE: warning: item N \"CAPTION > CAPTION\", command C: problem\n"
                          "e.g. menu.ini:18: warning: item 4 \"Delete\", command 1: unknown variable \"$fs-01$\"\n"
                          "The problems looked for:\n"
                          "  - an item line two or more levels deeper than the item line before it (it is read as\n"
                          "    a top-level item, or as the child of an earlier item), one or two stray markers\n"
                          "    before a caption, an empty caption, two items of one parent with the same caption;\n"
                          "  - in commands: an empty command, a variable between \"$\" signs that is neither one\n"
                          "    of the command editor's variables nor a variation their help allows (another\n"
                          "    number in place of 001 where the help says the number can be changed, another\n"
                          "    extension in place of avi), an odd number of \"$\", a call of the script runner\n"
                          "    $exepath$\\Tolvexer\\Tolvexer.exe that names no .tvs or .tvp script, or whose\n"
                          "    parameter numbers are not 001 to 030 or repeat.\n"
                          "\n"
                          "Options:\n"
                          "  --strict    exit with 1 when any warning was printed\n"
                          "  -h, --help  show this help\n"
                          "\n"
                          "Example:\n"
                          "  kelvmenu check --strict menus/*.ini\n"
                          "\n"
                          "Exit codes: 0 when every file is valid (warnings or not), 1 when any file is invalid or\n"
                          "cannot be read, or with --strict when any warning was printed; 2 for a usage error.\n");
}

QString tree()
{
    return QStringLiteral(
               "Usage: kelvmenu tree FILE\n"
               "\n"
               "Reads the menu file FILE with copy-command link detection on (as the editor does when its\n"
               "CheckCopyCommand option is on) and prints the item tree, one item a line in the order of\n"
               "the file, indented by two spaces per level:\n"
               "  CAPTION  [KEY]  N commands\n"
               "  CAPTION  [KEY]  N commands -> TARGET\n"
               "N is the number of commands the item runs; \"-> TARGET\" marks a copy-command link and names\n"
               "the key of the item whose commands it reuses. For example:\n"
               "  Archive  [E0]  0 commands\n"
               "    Pack  [E1]  2 commands\n"
               "    Unpack  [E2]  2 commands -> E1\n"
               "  Delete  [E3]  1 command\n"
               "\n"
               "Options:\n"
               "  -h, --help  show this help\n"
               "\n")
        + exitCodes();
}

QString edit()
{
    return QStringLiteral(
               "Usage: kelvmenu edit [--detect-links] [--copy-command-dup] [--dump] [-o OUT] FILE OPS\n"
               "\n"
               "Reads the menu file FILE as the editor opens it and applies the operations of OPS in order,\n"
               "each exactly as the editor's own command does it when the node of the item with the given\n"
               "key is the selected node of a tree freshly built from the menu with nothing hidden. The\n"
               "result is written in the editor's layout over FILE (or to OUT), the new file taking the\n"
               "place of the old one only once it is complete; with --dump it is printed instead, as\n"
               "\"kelvmenu dump\" prints a menu.\n"
               "\n"
               "OPS is a JSON file (\"-\" for standard input) holding an array of operations, each an object\n"
               "with \"op\" and the fields of that operation, and no others:\n"
               "  {\"op\": \"new-item\", \"key\": K, \"caption\": TEXT}  a new item after the siblings of K,\n"
               "                                                named TEXT (without caption it keeps\n"
               "                                                \"New Item N\")\n"
               "  {\"op\": \"new-sub-item\", \"key\": K,              a new item after the children of K (K may\n"
               "   \"caption\": TEXT}                             be \"Root\": a new top-level item), named as\n"
               "                                                by new-item\n"
               "  {\"op\": \"rename\", \"key\": K, \"caption\": TEXT}    rename item K\n"
               "  {\"op\": \"delete\", \"key\": K}                     delete item K with its branch\n"
               "  {\"op\": \"copy\", \"key\": K}                       copy the record of item K (not its branch)\n"
               "  {\"op\": \"cut\", \"key\": K}                        copy it, then delete item K with its branch\n"
               "  {\"op\": \"paste\", \"key\": K}                      item K takes over the copied record, keeping\n"
               "                                                its key and place\n"
               "  {\"op\": \"duplicate\", \"key\": K}                  copy item K with its branch after its siblings\n"
               "  {\"op\": \"move-up\", \"key\": K}                    move item K one place up among its siblings,\n"
               "  {\"op\": \"move-down\", \"key\": K}                  or down\n"
               "  {\"op\": \"indent\", \"key\": K}                     move item K with its branch into the item\n"
               "                                                above it, as its last child (nothing\n"
               "                                                happens for the first of its siblings)\n"
               "  {\"op\": \"outdent\", \"key\": K}                    move item K with its branch out of its\n"
               "                                                parent, right after it (nothing happens on\n"
               "                                                the top level)\n"
               "  {\"op\": \"drop\", \"key\": K, \"target\": T,        drag item K onto node T (an item key, or "
               "\"Root\"\n"
               "   \"place\": \"child\"|\"next\", \"copy\": B}         for place child) and copy or move it there: as\n"
               "                                                a child of T or next to T\n"
               "  {\"op\": \"link\", \"key\": K, \"target\": T}        item K takes the commands of item T\n"
               "  {\"op\": \"link-on\", \"key\": K}                    switch the link of K on (the copy-command\n"
               "  {\"op\": \"link-off\", \"key\": K}                   check box), or off; its target is kept\n"
               "  {\"op\": \"replace\", \"find\": F, \"replacement\": R}  replace F by R (case-sensitive) in every "
               "caption\n"
               "   optional \"branch\": K                         and command text of the menu (not in extensions\n"
               "                                                nor linked items' commands), or in the branch\n"
               "                                                of K; the count goes to standard error\n"
               "  {\"op\": \"add-command\", \"key\": K,              add a command after the commands of item K:\n"
               "   \"extension\": E, \"command\": TEXT}              extension filter E (\"\" for every file) and\n"
               "                                                TEXT, its lines joined by \"||\"\n"
               "  {\"op\": \"edit-command\", \"key\": K, \"slot\": N,   command N (from 1) of item K becomes E\n"
               "   \"extension\": E, \"command\": TEXT}              and TEXT\n"
               "  {\"op\": \"remove-command\", \"key\": K, \"slot\": N} remove command N of item K; the later\n"
               "                                                ones move up\n"
               "  {\"op\": \"clear-commands\", \"key\": K}           remove every command of item K\n"
               "  {\"op\": \"look-for-links\"}                       link every item to the first one with the\n"
               "                                                same commands (Look for CopyCommand)\n"
               "  {\"op\": \"uncheck-links\"}                        switch every link off (Uncheck all\n"
               "                                                CopyCommand)\n"
               "Keys are the items' keys as \"kelvmenu dump\" prints them (\"E0\", \"E1\", ...); an item created\n"
               "by new-item or new-sub-item takes the next free key, and a deleted item's key is never given\n"
               "out again.\n"
               "\n"
               "Copy and cut keep their record for the operations that follow in the same run. An operation\n"
               "the editor refuses (it would show an exclamation message), a key that names no item, paste\n"
               "with nothing copied, or a failing operation stops the run: standard error tells\n"
               "  FILE: operation N (OP): MESSAGE\n"
               "and nothing is written or printed (exit code 6). A malformed OPS (not JSON, an unknown\n"
               "operation, a missing, unknown or mistyped field) is a usage error: nothing runs (exit code 2).\n"
               "Messages the editor shows on success go to standard error as \"FILE: operation N: TEXT\".\n"
               "\n"
               "A result that a menu file cannot hold (a line break in a caption, extension or command, an\n"
               "\"=\" in an extension, a caption that begins with a middle dot, a top-level caption\n"
               "\"[/Menu]\", characters outside Windows-1252) is not written: standard error lists every\n"
               "such value as \"FILE: ITEM PATH: PROBLEM\" (exit code 5).\n"
               "\n"
               "Options:\n"
               "  --detect-links      read FILE with the editor's \"check copy commands\" option on\n"
               "  --copy-command-dup  the \"CopyCommand at Duplication\" check mark is on (duplicate, drop\n"
               "                      copies)\n"
               "  --dump              print the resulting menu as JSON instead of writing it\n"
               "  -o, --output OUT    write to OUT instead of replacing FILE\n"
               "  -h, --help          show this help\n"
               "\n"
               "Example:\n"
               "  echo '[{\"op\": \"rename\", \"key\": \"E3\", \"caption\": \"Delete for good\"}]' |\n"
               "      kelvmenu edit menu.ini -\n"
               "\n")
        + exitCodes();
}

} // namespace UsageText

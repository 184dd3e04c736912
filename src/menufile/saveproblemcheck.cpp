#include "saveproblemcheck.h"

#include "menufile/menufilewriter.h"
#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
#include "model/menudocument.h"

#include <QHash>
#include <QStringList>

namespace {

constexpr char16_t marker = 0xB7;
/// A caption can be megabytes long; a path only has to lead to the item.
constexpr qsizetype shownCaptionLength = 40;
/// A path deeper than these levels together shows its first and its last levels only.
constexpr qsizetype shownLeadingLevels = 2;
constexpr qsizetype shownTrailingLevels = 3;
/// How many distinct characters a problem names before it says that there are more.
constexpr int namedCharacters = 3;

QString ellipsis()
{
    return QString(QChar(0x2026));
}

/// The caption in quotes, line breaks shown as \r and \n so that a path stays on one line.
QString shownCaption(const QString& caption)
{
    QStringView cut = QStringView(caption).left(shownCaptionLength);
    if (cut.size() < caption.size() && cut.back().isHighSurrogate()) {
        cut.chop(1);
    }
    QString shown = QStringLiteral("\"");
    for (const QChar character : cut) {
        if (character == QLatin1Char('\r')) {
            shown += QStringLiteral("\\r");
        } else if (character == QLatin1Char('\n')) {
            shown += QStringLiteral("\\n");
        } else {
            shown += character;
        }
    }
    if (cut.size() < caption.size()) {
        shown += ellipsis();
    }
    return shown + QLatin1Char('"');
}

/// The captions of `chain` (item indexes from the top level down), in quotes, joined by " > ".
QString itemPath(const MenuItemArray& items, const QList<qint32>& chain)
{
    QStringList parts;
    const qsizetype depth = chain.size();
    const bool shortened = depth > shownLeadingLevels + shownTrailingLevels + 1;
    for (qsizetype level = 0; level < depth; ++level) {
        if (shortened && level == shownLeadingLevels) {
            parts.append(ellipsis());
            level = depth - shownTrailingLevels - 1;
            continue;
        }
        parts.append(shownCaption(items.at(chain.at(level)).caption));
    }
    return parts.join(QStringLiteral(" > "));
}

bool holdsLineBreak(const QString& text)
{
    return text.contains(QLatin1Char('\r')) || text.contains(QLatin1Char('\n'));
}

/// The first few distinct characters of `text` that Windows-1252 cannot encode, as `"✓" (U+2713)`;
/// empty when there is none.
QString unencodableCharacters(const QString& text)
{
    QStringList named;
    bool more = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (Windows1252Codec::canEncode(character)) {
            continue;
        }
        char32_t code = character.unicode();
        qsizetype length = 1;
        if (character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            code = QChar::surrogateToUcs4(character, text.at(i + 1));
            length = 2;
        }
        QString name = QStringLiteral("U+%1").arg(QString::number(code, 16).toUpper(), 4, QLatin1Char('0'));
        if (QChar::isPrint(code)) {
            name = QLatin1Char('"') + text.mid(i, length) + QStringLiteral("\" (") + name + QLatin1Char(')');
        }
        i += length - 1;
        if (named.contains(name)) {
            continue;
        }
        if (named.size() == namedCharacters) {
            more = true;
            break;
        }
        named.append(name);
    }
    return named.join(QStringLiteral(", ")) + (more ? QStringLiteral(", ...") : QString());
}

QString cannotEncode(const QString& characters)
{
    return QStringLiteral(" holds characters that Windows-1252 cannot encode: ") + characters;
}

void checkCaption(const QString& caption, bool topLevel, QStringList& descriptions)
{
    if (caption.startsWith(QChar(marker))) {
        descriptions.append(
            QStringLiteral("caption begins with \"%1\", which the file would read as a tree level").arg(QChar(marker)));
    }
    if (topLevel && caption.compare(QLatin1String("[/Menu]"), Qt::CaseInsensitive) == 0) {
        descriptions.append(
            QStringLiteral("top-level caption \"%1\" would end the list of items in the file").arg(caption));
    }
    if (holdsLineBreak(caption)) {
        descriptions.append(QStringLiteral("caption holds a line break"));
    }
    const QString characters = unencodableCharacters(caption);
    if (!characters.isEmpty()) {
        descriptions.append(QStringLiteral("caption") + cannotEncode(characters));
    }
}

/// `name` is how the command is called in a description: "command 2", or for a link "command 2
/// (copied from "Pack")".
/// Printable ASCII alone: nothing a file could not hold, bar the "=" an extension must not hold.
/// Nearly every text is such, and telling so is far cheaper than the full check.
bool isPlainText(const QString& text)
{
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (code < 0x20 || code >= 0x7F) {
            return false;
        }
    }
    return true;
}

bool needsCheck(const Command& command)
{
    return !isPlainText(command.command) || !isPlainText(command.extension)
        || command.extension.contains(QLatin1Char('='));
}

void checkCommand(const Command& command, const QString& name, QStringList& descriptions)
{
    const QString extension = QStringLiteral("extension of ") + name;
    if (holdsLineBreak(command.extension)) {
        descriptions.append(extension + QStringLiteral(" holds a line break"));
    }
    if (command.extension.contains(QLatin1Char('='))) {
        descriptions.append(extension + QStringLiteral(" holds \"=\", where the file ends the extension"));
    }
    QString characters = unencodableCharacters(command.extension);
    if (!characters.isEmpty()) {
        descriptions.append(extension + cannotEncode(characters));
    }
    if (holdsLineBreak(command.command)) {
        descriptions.append(name + QStringLiteral(" holds a line break (the lines of a command are joined by \"||\")"));
    }
    characters = unencodableCharacters(command.command);
    if (!characters.isEmpty()) {
        descriptions.append(name + cannotEncode(characters));
    }
}

/// A number of bytes as the user reads it best: in MiB, one decimal.
QString inMebibytes(qint64 bytes)
{
    return QString::number(double(bytes) / (1024.0 * 1024.0), 'f', 1) + QStringLiteral(" MiB");
}

} // namespace

QList<SaveProblem> findSaveProblems(const MenuDocument& document, qint64 sizeLimit)
{
    const MenuItemArray& items = document.items;
    // A link names the first item that bears its key, as the writer finds it.
    QHash<QString, qint32> indexOfKey;
    for (qint32 i = qint32(items.size()) - 1; i >= 0; --i) {
        indexOfKey.insert(items.at(i).key, i);
    }

    QList<SaveProblem> problems;
    if (items.size() > MenuDocument::maximumItemCount) {
        problems.append(SaveProblem { QString(),
                                      QStringLiteral("the menu holds %1 items, more than the %2 a menu file can "
                                                     "hold; delete some")
                                          .arg(items.size())
                                          .arg(MenuDocument::maximumItemCount) });
    }
    const QList<SaveOrderEntry> order = saveOrder(document);
    if (order.isEmpty()) {
        // Every item gone, or none reached from the top level (a pasted record keeps the parent it
        // was copied under, which may be gone or be the item itself).
        problems.append(SaveProblem { QString(),
                                      QStringLiteral("the file would hold no item, and a menu file without "
                                                     "items does not open") });
    }
    // The items from the top level down to the current one: the walk is in pre-order.
    QList<qint32> chain;
    QStringList descriptions;
    // The length of the file, counted line by line as the writer would write it.
    qint64 fileSize = menuFileFixedSize();
    QList<SaveProblem> itemProblems;
    for (qsizetype k = 0; k < order.size(); ++k) {
        const SaveOrderEntry& entry = order.at(k);
        chain.resize(entry.depth);
        chain.append(entry.index);
        const MenuItem& item = items.at(entry.index);
        fileSize += menuFileItemLineSize(entry.depth, item.caption);

        descriptions.clear();
        checkCaption(item.caption, entry.depth == 0, descriptions);
        const MenuItem* source = &item;
        if (item.copiesCommands) {
            // A link naming no item writes nothing: the writer fails on it with its own error.
            const qint32 target = indexOfKey.value(item.copyKey, -1);
            source = target >= 0 ? &items.at(target) : nullptr;
            if (source == nullptr) {
                // A pasted record may keep a link to an item deleted since.
                descriptions.append(
                    QStringLiteral("takes its commands from item %1, which no longer exists").arg(item.copyKey));
            }
        }
        if (source != nullptr) {
            for (qsizetype slot = 1; slot < source->commands.size(); ++slot) {
                fileSize += menuFileCommandLineSize(qint32(k + 1), source->commands.at(slot));
                if (!needsCheck(source->commands.at(slot))) {
                    continue;
                }
                QString name = QStringLiteral("command %1").arg(slot);
                if (source != &item) {
                    name += QStringLiteral(" (copied from %1)").arg(shownCaption(source->caption));
                }
                checkCommand(source->commands.at(slot), name, descriptions);
            }
        }
        if (descriptions.isEmpty()) {
            continue;
        }
        const QString path = itemPath(items, chain);
        for (const QString& description : std::as_const(descriptions)) {
            itemProblems.append(SaveProblem { path, description, item.key });
        }
    }
    if (fileSize > sizeLimit) {
        // The reader refuses such a file before reading it, so the menu would be saved for nothing.
        problems.append(
            SaveProblem { QString(),
                          QStringLiteral("the menu file would be %1 bytes (%2), more than the %3 bytes (%4) a menu "
                                         "file may have to be opened again; shorten long captions or commands, or "
                                         "delete items")
                              .arg(QString::number(fileSize), inMebibytes(fileSize), QString::number(sizeLimit),
                                   inMebibytes(sizeLimit)) });
    }
    return problems + itemProblems;
}

#include "menufilereader.h"

#include "menufile/contenthash.h"
#include "menufile/fileidentity.h"
#include "menufile/menulinecursor.h"
#include "menufile/windows1252codec.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QVarLengthArray>

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace {

constexpr char marker = char(0xB7);
constexpr int markersPerLevel = 3;

/// A reading failure: where, why, and the run-time error behind it.
struct ReadFailure
{
    int line;
    int errorNumber;
    QString reason;
};

/// Whether the line, lower-cased, equals `tag` (lower-case ASCII). Tags are ASCII and no
/// Windows-1252 letter outside ASCII lower-cases to an ASCII letter, so comparing the bytes
/// ASCII-case-insensitively decides exactly what lower-casing the decoded line would.
bool isTag(QByteArrayView line, QLatin1String tag)
{
    if (line.size() != tag.size()) {
        return false;
    }
    for (qsizetype i = 0; i < line.size(); ++i) {
        char character = line[i];
        if (character >= 'A' && character <= 'Z') {
            character = char(character - 'A' + 'a');
        }
        if (character != tag[i]) {
            return false;
        }
    }
    return true;
}

/// An item number as a reason shows it: whole up to twenty characters, a longer one cut with its
/// length, so that a line of thousands of digits does not come back in the message whole.
QString shownItemNumber(QByteArrayView text)
{
    constexpr qsizetype shownLength = 20;
    if (text.size() <= shownLength) {
        return Windows1252Codec::decode(text);
    }
    return Windows1252Codec::decode(text.first(shownLength)) + QStringLiteral("...");
}

/// " (N characters)" after a shortened item number; nothing after one shown whole.
QString lengthNote(QByteArrayView text)
{
    return shownItemNumber(text).size() == text.size() ? QString()
                                                       : QStringLiteral(" (%1 characters)").arg(text.size());
}

QString notANumber(QByteArrayView text)
{
    return QStringLiteral("item number \"%1\"%2 is not a number").arg(shownItemNumber(text), lengthNote(text));
}

/// The text before the ":" of a command line as a number: optional blanks, an optional sign and
/// decimal digits. Anything else is not a number (13), a value beyond 16 bits overflows (6).
qint16 parseItemNumber(QByteArrayView text, int lineNumber)
{
    const QByteArrayView trimmed = text.trimmed();
    qsizetype position = 0;
    bool negative = false;
    if (position < trimmed.size() && (trimmed[position] == '+' || trimmed[position] == '-')) {
        negative = trimmed[position] == '-';
        ++position;
    }
    if (position == trimmed.size()) {
        throw ReadFailure { lineNumber, ErrorNumber::TypeMismatch, notANumber(text) };
    }
    qint64 value = 0;
    for (; position < trimmed.size(); ++position) {
        const char digit = trimmed[position];
        if (digit < '0' || digit > '9') {
            throw ReadFailure { lineNumber, ErrorNumber::TypeMismatch, notANumber(text) };
        }
        if (value <= 32768) {
            value = value * 10 + (digit - '0');
        }
    }
    if (negative) {
        value = -value;
    }
    if (value < -32768 || value > 32767) {
        throw ReadFailure { lineNumber, ErrorNumber::Overflow,
                            QStringLiteral("item number %1%2 is too large")
                                .arg(shownItemNumber(text.trimmed()), lengthNote(text.trimmed())) };
    }
    return static_cast<qint16>(value);
}

/// Reads the item lines of the [Menu] section. The tree numbers come out exactly as the
/// definitions give them (parent: the nearest earlier item one level up; siblingOrder: the count
/// of items so far with the same parent), but in linear time.
class ItemSectionReader
{
public:
    explicit ItemSectionReader(MenuDocument& document)
        : m_document(document)
    {
    }

    void addItemLine(QByteArrayView line, int lineNumber)
    {
        // The item counter is a 16-bit number: item 32,768 cannot be numbered.
        if (m_counter == 32767) {
            throw ReadFailure { lineNumber, ErrorNumber::Overflow, QStringLiteral("holds more than 32767 items") };
        }
        qsizetype markers = 0;
        while (markers < line.size() && line[markers] == marker) {
            ++markers;
        }
        // A line made of markers only counts one more than its length: its caption is empty.
        const qint64 markerCount = markers == line.size() ? line.size() + 1 : markers;
        const qint64 level = markerCount / markersPerLevel;
        if (level > 32767) {
            throw ReadFailure { lineNumber, ErrorNumber::Overflow, QStringLiteral("item is nested too deeply") };
        }

        MenuItem item;
        item.caption = Windows1252Codec::decode(line.sliced(std::min<qsizetype>(markerCount, line.size())));
        item.level = static_cast<qint16>(level);
        item.parent = parentFor(item.level);
        item.childCount = 0;
        item.copyKey = QStringLiteral("-1");
        item.copiesCommands = false;

        const qint16 index = m_counter;
        if (item.parent >= 0) {
            MenuItem& parent = m_document.items[item.parent];
            parent.childCount = Int16::incremented(parent.childCount, "readMenuFile");
        }
        m_siblingCounts.push_back(0); // the count of item `index`'s children, when it gets some
        qint16& siblings = m_siblingCounts[std::size_t(item.parent + 1)];
        siblings = Int16::incremented(siblings, "readMenuFile");
        item.siblingOrder = siblings;
        m_document.items.append(std::move(item));
        if (std::size_t(level) >= m_lastIndexAtLevel.size()) {
            m_lastIndexAtLevel.resize(std::size_t(level) + 1, -1);
        }
        m_lastIndexAtLevel[std::size_t(level)] = index;

        if (m_counter == 32767) {
            throw ReadFailure { lineNumber, ErrorNumber::Overflow, QStringLiteral("holds more than 32767 items") };
        }
        ++m_counter;
    }

private:
    qint16 parentFor(qint16 level) const
    {
        const std::size_t parentLevel = std::size_t(level) - 1;
        return level >= 1 && parentLevel < m_lastIndexAtLevel.size() ? m_lastIndexAtLevel[parentLevel] : qint16(-1);
    }

    MenuDocument& m_document;
    qint16 m_counter = 0;
    /// The newest item at each level: the parent of the next item one level deeper.
    std::vector<qint16> m_lastIndexAtLevel;
    /// Items so far per parent: slot 0 for the top level, slot p + 1 for the children of item p.
    std::vector<qint16> m_siblingCounts { 0 };
};

/// Reads the command lines of the [Commands] section. Large menus repeat the same few extensions
/// over and over; each distinct one is decoded once and then shared.
class CommandSectionReader
{
public:
    explicit CommandSectionReader(MenuDocument& document)
        : m_document(document)
    {
    }

    void addCommandLine(QByteArrayView line, int lineNumber)
    {
        const qsizetype colon = line.indexOf(':');
        const qsizetype equals = line.indexOf('=');
        if (colon < 0) {
            throw ReadFailure { lineNumber, ErrorNumber::InvalidProcedureCall,
                                QStringLiteral("command line has no \":\"") };
        }
        if (equals < 0) {
            throw ReadFailure { lineNumber, ErrorNumber::InvalidProcedureCall,
                                QStringLiteral("command line has no \"=\"") };
        }
        if (equals < colon) {
            throw ReadFailure { lineNumber, ErrorNumber::InvalidProcedureCall,
                                QStringLiteral("command line has \"=\" before \":\"") };
        }
        const QByteArrayView numberText = line.first(colon);
        const qint32 index = qint32(parseItemNumber(numberText, lineNumber)) - 1;
        if (index < 0 || index >= m_document.items.size()) {
            throw ReadFailure { lineNumber, ErrorNumber::SubscriptOutOfRange,
                                QStringLiteral("item number %1%2 names no item")
                                    .arg(shownItemNumber(numberText), lengthNote(numberText)) };
        }
        Command command;
        command.extension = sharedExtension(line.sliced(colon + 1, equals - colon - 1));
        command.command = Windows1252Codec::decode(line.sliced(equals + 1));
        QList<Command>& commands = m_document.items[index].commands;
        if (commands.size() == 1) {
            // Items mostly hold a few commands; growing the list one by one would reallocate it
            // with every command.
            commands.reserve(4);
        }
        commands.append(std::move(command));
    }

private:
    /// The decoded extension, shared with every earlier occurrence of the same bytes. A key keeps a copy
    /// of its bytes: the lines are gone once the next piece of the file is read.
    QString sharedExtension(QByteArrayView bytes)
    {
        auto found = m_extensions.constFind(QByteArray::fromRawData(bytes.data(), bytes.size()));
        if (found == m_extensions.constEnd()) {
            found = m_extensions.insert(bytes.toByteArray(), Windows1252Codec::decode(bytes));
        }
        return found.value();
    }

    MenuDocument& m_document;
    QHash<QByteArray, QString> m_extensions;
};

/// Advances to the next line or fails: the file ended before `expectedTag`.
void nextLineOrFail(MenuLineCursor& cursor, QByteArrayView& line, const char* expectedTag)
{
    if (!cursor.next(line)) {
        throw ReadFailure { 0, ErrorNumber::InputPastEndOfFile,
                            QStringLiteral("ends before %1").arg(QLatin1String(expectedTag)) };
    }
}

/// Runs the handling of one line; a run-time error inside it is reported at that line.
template <typename LineHandler> void withLineNumber(int lineNumber, LineHandler handleLine)
{
    try {
        handleLine();
    } catch (const RunTimeError& error) {
        throw ReadFailure { lineNumber, error.number(), error.description() };
    }
}

void readSections(MenuLineCursor& cursor, QByteArrayView line, MenuDocument& document)
{
    // Text before [Menu] is ignored; the magic line is the first one tested.
    while (!isTag(line, QLatin1String("[menu]"))) {
        nextLineOrFail(cursor, line, "[Menu]");
    }

    // Every line may be an item, up to the most a menu can hold; reserving spares the regrowth.
    document.items.reserve(std::min<qsizetype>(cursor.lineBound(), 32768));
    ItemSectionReader itemReader(document);
    while (!isTag(line, QLatin1String("[/menu]"))) {
        nextLineOrFail(cursor, line, "[/Menu]");
        if (line.isEmpty() || isTag(line, QLatin1String("[/menu]"))) {
            continue;
        }
        withLineNumber(cursor.lineNumber(), [&] { itemReader.addItemLine(line, cursor.lineNumber()); });
    }

    CommandSectionReader commandReader(document);
    // Text between the sections is ignored; the [/Menu] line is the first one tested.
    while (!isTag(line, QLatin1String("[commands]"))) {
        nextLineOrFail(cursor, line, "[Commands]");
    }

    while (!isTag(line, QLatin1String("[/commands]"))) {
        nextLineOrFail(cursor, line, "[/Commands]");
        if (line.isEmpty() || isTag(line, QLatin1String("[/commands]"))) {
            continue;
        }
        withLineNumber(cursor.lineNumber(), [&] { commandReader.addCommandLine(line, cursor.lineNumber()); });
    }

    if (document.items.isEmpty()) {
        throw ReadFailure { 0, ErrorNumber::SubscriptOutOfRange, QStringLiteral("holds no item") };
    }
}

MenuReadResult failure(const ReadFailure& reason)
{
    MenuReadResult result;
    result.code = MenuReadResult::Failed;
    result.line = reason.line;
    result.reason = reason.reason;
    result.errorNumber = reason.errorNumber;
    return result;
}

/// Why a file that starts with a byte-order mark is no menu file: an editor saved it as Unicode
/// text. Empty for any other file.
QString byteOrderMarkHint(QByteArrayView bytes)
{
    QString encoding;
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        encoding = QStringLiteral("UTF-8");
    } else if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        encoding = QStringLiteral("UTF-16");
    } else {
        return QString();
    }
    return QStringLiteral(" It starts with a %1 byte-order mark, but menu files are Windows-1252 text: save it as "
                          "Windows-1252 (ANSI), without the mark.")
        .arg(encoding);
}

/// Reads the menu from the lines of `cursor` into `document`.
MenuReadResult readMenuLines(MenuLineCursor& cursor, MenuDocument& document)
{
    document.items.clear();
    document.lastIndex = 0;

    try {
        QByteArrayView line;
        // An empty file has no magic line either: it is not a menu file. The first line starts at the
        // file's first byte and holds any byte-order mark whole, as a mark holds no line end.
        if (!cursor.next(line) || line != QByteArrayView("KELV - Menu")) {
            MenuReadResult result;
            result.code = MenuReadResult::NotAMenuFile;
            result.line = 1;
            result.reason = notMenuFileMessage() + byteOrderMarkHint(line);
            return result;
        }
        readSections(cursor, line, document);
        for (qsizetype i = 0; i < document.items.size(); ++i) {
            document.items[i].key = QLatin1Char('E') + QString::number(i);
        }
        document.lastIndex = Int16::checked(document.items.size() - 1, "readMenuFile");
    } catch (const ReadFailure& reason) {
        return failure(reason);
    } catch (const RunTimeError& error) {
        return failure(ReadFailure { 0, error.number(), error.description() });
    } catch (const std::bad_alloc&) {
        return failure(ReadFailure { 0, ErrorNumber::OutOfMemory, errorDescription(ErrorNumber::OutOfMemory) });
    }

    MenuReadResult result;
    result.code = MenuReadResult::Read;
    return result;
}

MenuReadResult tooLarge(qint64 size)
{
    return failure(ReadFailure { 0, ErrorNumber::PathFileAccessError,
                                 QStringLiteral("is larger than any menu file can be (%1 bytes, at most %2)")
                                     .arg(QString::number(size), QString::number(maximumMenuFileSize)) });
}

MenuReadResult unreadable(const QFile& file)
{
    return failure(ReadFailure { 0, ErrorNumber::PathFileAccessError,
                                 QStringLiteral("cannot be read: %1").arg(file.errorString()) });
}

/// Opens `file` for reading, or says why not. Refuses a path with no file, a folder, anything that is
/// not a regular file and a file larger than any menu file can be, all before opening it: opening a
/// pipe for reading waits until something writes to it. The file is closed when `file` goes, so no
/// handle stays open whatever happens next.
std::optional<MenuReadResult> openForReading(QFile& file)
{
    const QFileInfo info(file.fileName());
    if (!info.exists()) {
        return failure(ReadFailure { 0, ErrorNumber::FileNotFound, QStringLiteral("does not exist") });
    }
    if (info.isDir()) {
        return failure(ReadFailure { 0, ErrorNumber::PathFileAccessError, QStringLiteral("is a folder, not a file") });
    }
    if (!info.isFile()) {
        return failure(ReadFailure { 0, ErrorNumber::PathFileAccessError,
                                     QStringLiteral("is not a regular file (a device, a pipe or a socket)") });
    }
    if (info.size() > maximumMenuFileSize) {
        return tooLarge(info.size());
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return failure(ReadFailure { 0, ErrorNumber::PathFileAccessError,
                                     QStringLiteral("cannot be opened: %1").arg(file.errorString()) });
    }
    return std::nullopt;
}

} // namespace

QString notMenuFileMessage()
{
    return QStringLiteral("This is not a valid KELV Menu file !");
}

QString readFailureText(const QString& path, const MenuReadResult& result)
{
    const QString reason = result.reason.isEmpty() ? errorDescription(result.errorNumber) : result.reason;
    if (result.line > 0) {
        return QStringLiteral("%1:%2: %3").arg(path, QString::number(result.line), reason);
    }
    return QStringLiteral("%1: %2").arg(path, reason);
}

MenuReadResult readMenuBytes(const QByteArray& bytes, MenuDocument& document)
{
    MenuLineCursor cursor(bytes);
    return readMenuLines(cursor, document);
}

MenuReadResult readMenuFileBytes(const QString& path, QByteArray& bytes, FileIdentity* identity)
{
    bytes.clear();
    QFile file(path);
    if (const std::optional<MenuReadResult> refusal = openForReading(file)) {
        return *refusal;
    }
    try {
        // One byte more than the bound shows a file that has grown beyond it since it was looked at.
        bytes = file.read(std::min(file.size(), maximumMenuFileSize) + 1);
    } catch (const std::bad_alloc&) {
        return failure(ReadFailure { 0, ErrorNumber::OutOfMemory, QStringLiteral("is too large to read") });
    }
    if (file.error() != QFileDevice::NoError) {
        return unreadable(file);
    }
    if (bytes.size() > maximumMenuFileSize) {
        const qint64 size = file.size();
        bytes.clear();
        return tooLarge(size);
    }
    if (identity != nullptr) {
        *identity = FileIdentity::ofOpenFile(file, bytes);
    }
    MenuReadResult loaded;
    loaded.code = MenuReadResult::Read;
    return loaded;
}

MenuReadResult readMenuFile(const QString& path, MenuDocument& document, FileIdentity* identity)
{
    QFile file(path);
    if (const std::optional<MenuReadResult> refusal = openForReading(file)) {
        return *refusal;
    }
    ContentHash hash;
    MenuLineCursor cursor(file, maximumMenuFileSize, identity != nullptr ? &hash : nullptr);
    const MenuReadResult result = readMenuLines(cursor, document);
    // The whole file is read whatever its lines held, as when it was read at once: a file that cannot be
    // read to its end or has grown too large says so before anything its lines say.
    try {
        cursor.readToEnd();
    } catch (const std::bad_alloc&) {
        return failure(ReadFailure { 0, ErrorNumber::OutOfMemory, errorDescription(ErrorNumber::OutOfMemory) });
    }
    if (cursor.failure() == MenuLineCursor::Failure::Unreadable) {
        return unreadable(file);
    }
    if (cursor.failure() == MenuLineCursor::Failure::TooLarge) {
        return tooLarge(file.size());
    }
    if (result.ok() && identity != nullptr) {
        *identity = FileIdentity::ofReadFile(file, cursor.bytesRead(), hash.result());
    }
    return result;
}

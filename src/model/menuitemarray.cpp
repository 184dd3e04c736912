#include "menuitemarray.h"

#include <algorithm>
#include <utility>

MenuItemArray::MenuItemArray() = default;

MenuItemArray::MenuItemArray(std::initializer_list<MenuItem> items)
{
    reserve(qsizetype(items.size()));
    for (const MenuItem& item : items) {
        append(item);
    }
}

MenuItemArray::MenuItemArray(const QList<MenuItem>& items)
{
    reserve(items.size());
    for (const MenuItem& item : items) {
        append(item);
    }
}

MenuItemArray::MenuItemArray(const MenuItemArray& other) = default;
MenuItemArray::MenuItemArray(MenuItemArray&& other) noexcept = default;
MenuItemArray& MenuItemArray::operator=(const MenuItemArray& other) = default;
MenuItemArray& MenuItemArray::operator=(MenuItemArray&& other) noexcept = default;
MenuItemArray::~MenuItemArray() = default;

MenuItemArray::Table& MenuItemArray::ownTable()
{
    if (!m_table) {
        m_table.reset(new Table);
    } else if (m_table->ref.loadAcquire() != 1) {
        // Copying the table shares every chunk with the array it came from.
        m_table.reset(new Table(*m_table));
    }
    return *m_table;
}

MenuItemArray::Chunk& MenuItemArray::ownChunk(Table& table, qsizetype chunk)
{
    ChunkPointer& pointer = table.chunks[std::size_t(chunk)];
    // Acquire: when the other holder (say, the autosave writer) has just let go, its reads of the
    // chunk are finished before this array writes to it in place.
    if (pointer->ref.loadAcquire() != 1) {
        auto* copy = new Chunk;
        const std::vector<MenuItem>& items = pointer->items;
        // Only the last chunk is not full; it keeps room for the items appended after it.
        copy->items.reserve(std::size_t(ChunkSize));
        copy->items.assign(items.begin(), items.end());
        pointer.reset(copy);
    }
    return *pointer;
}

MenuItem& MenuItemArray::writableItem(qsizetype index)
{
    return ownChunk(ownTable(), index >> ChunkBits).items[std::size_t(index & ChunkMask)];
}

void MenuItemArray::append(MenuItem item)
{
    Table& table = ownTable();
    if ((table.size & ChunkMask) == 0) {
        ChunkPointer chunk(new Chunk);
        chunk->items.reserve(std::size_t(ChunkSize));
        chunk->items.push_back(std::move(item));
        table.chunks.push_back(std::move(chunk));
    } else {
        ownChunk(table, qsizetype(table.chunks.size()) - 1).items.push_back(std::move(item));
    }
    ++table.size;
}

void MenuItemArray::removeLast()
{
    Q_ASSERT(!isEmpty());
    Table& table = ownTable();
    const qsizetype last = qsizetype(table.chunks.size()) - 1;
    if (table.chunks.back()->items.size() == 1) {
        table.chunks.pop_back();
    } else {
        ownChunk(table, last).items.pop_back();
    }
    --table.size;
}

void MenuItemArray::removeAt(qsizetype index)
{
    Q_ASSERT(index >= 0 && index < size());
    for (qsizetype i = index; i + 1 < size(); ++i) {
        (*this)[i] = std::move((*this)[i + 1]);
    }
    removeLast();
}

void MenuItemArray::resize(qsizetype newSize)
{
    if (newSize <= 0) {
        clear();
        return;
    }
    while (size() > newSize) {
        removeLast();
    }
    if (size() < newSize) {
        reserve(newSize);
        while (size() < newSize) {
            append(MenuItem());
        }
    }
}

void MenuItemArray::reserve(qsizetype capacity)
{
    ownTable().chunks.reserve(std::size_t((capacity + ChunkMask) >> ChunkBits));
}

void MenuItemArray::clear()
{
    m_table.reset();
}

void MenuItemArray::detach()
{
    if (!m_table) {
        return;
    }
    Table& table = ownTable();
    for (qsizetype chunk = 0; chunk < qsizetype(table.chunks.size()); ++chunk) {
        ownChunk(table, chunk);
    }
}

QList<ItemRange> MenuItemArray::rangesDifferentFrom(const MenuItemArray& other) const
{
    QList<ItemRange> ranges;
    if (isSharedWith(other)) {
        return ranges;
    }
    const qsizetype largest = std::max(size(), other.size());
    const auto add = [&ranges](qsizetype begin, qsizetype end) {
        if (!ranges.isEmpty() && ranges.last().end == begin) {
            ranges.last().end = end;
        } else {
            ranges.append(ItemRange { begin, end });
        }
    };
    // A chunk that both tables point to holds the same records for both arrays, and only the last
    // chunk of an array is not full, so a shared chunk covers the same indices in both.
    const std::size_t mine = m_table ? m_table->chunks.size() : 0;
    const std::size_t theirs = other.m_table ? other.m_table->chunks.size() : 0;
    const std::size_t common = std::min(mine, theirs);
    for (std::size_t chunk = 0; chunk < common; ++chunk) {
        if (m_table->chunks[chunk] != other.m_table->chunks[chunk]) {
            const qsizetype begin = qsizetype(chunk) << ChunkBits;
            add(begin, std::min(begin + ChunkSize, largest));
        }
    }
    const qsizetype rest = qsizetype(common) << ChunkBits;
    if (rest < largest) {
        add(rest, largest);
    }
    return ranges;
}

QList<MenuItem> MenuItemArray::toList() const
{
    QList<MenuItem> list;
    list.reserve(size());
    for (const MenuItem& item : *this) {
        list.append(item);
    }
    return list;
}

MenuItemArray::const_iterator MenuItemArray::begin() const
{
    return const_iterator(m_table.data(), 0);
}

MenuItemArray::const_iterator MenuItemArray::end() const
{
    return const_iterator(m_table.data(), size());
}

MenuItemArray::iterator MenuItemArray::begin()
{
    detach();
    return iterator(m_table.data(), 0);
}

MenuItemArray::iterator MenuItemArray::end()
{
    detach();
    return iterator(m_table.data(), size());
}

bool operator==(const MenuItemArray& left, const MenuItemArray& right)
{
    if (left.size() != right.size()) {
        return false;
    }
    if (left.isSharedWith(right) || left.isEmpty()) {
        return true;
    }
    const auto& mine = left.m_table->chunks;
    const auto& theirs = right.m_table->chunks;
    for (std::size_t chunk = 0; chunk < mine.size(); ++chunk) {
        if (mine[chunk] != theirs[chunk] && mine[chunk]->items != theirs[chunk]->items) {
            return false;
        }
    }
    return true;
}

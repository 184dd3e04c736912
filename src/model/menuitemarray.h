#pragma once

#include "itemrange.h"
#include "menuitem.h"

#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QSharedData>
#include <QtGlobal>

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <type_traits>
#include <vector>

/// The items of a menu: an index-addressed array of MenuItem that copies in constant time and, once
/// written to, copies only the part that changed. The items are kept in chunks of ChunkSize records
/// behind a small table; a copy of the array shares the table, and a write makes its own table and
/// its own copy of the one chunk it writes to. So an undo state of a 32,767-item menu that differs
/// from the document by a rename costs one chunk, not the whole array.
///
/// The reference counts are atomic: a copy may be read on another thread (the autosave writer) while
/// the original is edited, as long as that thread only reads its copy.
///
/// Reading goes through the const functions (at, the const operator[], const iteration); the
/// non-const ones make the touched chunk the array's own first, so a read through them on an array
/// shared with an undo state copies a chunk for nothing.
class MenuItemArray final
{
    struct Chunk;
    struct Table;

public:
    /// Items per chunk: small enough that a chunk copy is cheap beside an edit, large enough that the
    /// table of a full menu stays about a kilobyte.
    static constexpr int ChunkBits = 8;
    static constexpr qsizetype ChunkSize = qsizetype(1) << ChunkBits;

    template <bool IsConst> class Iterator;
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;
    using value_type = MenuItem;
    using size_type = qsizetype;
    using difference_type = qsizetype;
    using reference = MenuItem&;
    using const_reference = const MenuItem&;

    MenuItemArray();
    MenuItemArray(std::initializer_list<MenuItem> items);
    explicit MenuItemArray(const QList<MenuItem>& items);
    MenuItemArray(const MenuItemArray& other);
    MenuItemArray(MenuItemArray&& other) noexcept;
    MenuItemArray& operator=(const MenuItemArray& other);
    MenuItemArray& operator=(MenuItemArray&& other) noexcept;
    ~MenuItemArray();

    qsizetype size() const { return m_table ? m_table->size : 0; }
    qsizetype count() const { return size(); }
    bool isEmpty() const { return size() == 0; }

    /// Item `index` (0 <= index < size()), read without copying anything.
    const MenuItem& at(qsizetype index) const
    {
        Q_ASSERT(index >= 0 && index < size());
        return m_table->chunks[std::size_t(index >> ChunkBits)]->items[std::size_t(index & ChunkMask)];
    }
    const MenuItem& operator[](qsizetype index) const { return at(index); }
    /// Item `index` for writing: its chunk becomes this array's own first.
    MenuItem& operator[](qsizetype index)
    {
        Q_ASSERT(index >= 0 && index < size());
        // Most writes land in a chunk that is already this array's own.
        Table* table = m_table.data();
        if (table->ref.loadAcquire() == 1) {
            Chunk* chunk = table->chunks[std::size_t(index >> ChunkBits)].data();
            if (chunk->ref.loadAcquire() == 1) {
                return chunk->items[std::size_t(index & ChunkMask)];
            }
        }
        return writableItem(index);
    }

    const MenuItem& constFirst() const { return at(0); }
    const MenuItem& constLast() const { return at(size() - 1); }
    const MenuItem& first() const { return at(0); }
    const MenuItem& last() const { return at(size() - 1); }
    MenuItem& first() { return (*this)[0]; }
    MenuItem& last() { return (*this)[size() - 1]; }

    void append(MenuItem item);
    void removeLast();
    /// Removes item `index`; the items after it move down one slot (every chunk from there on is
    /// written).
    void removeAt(qsizetype index);
    void removeFirst() { removeAt(0); }
    /// Grows with default items or shrinks from the end.
    void resize(qsizetype newSize);
    /// Makes room in the table for `capacity` items; the chunks are made as the items come.
    void reserve(qsizetype capacity);
    void clear();

    /// Makes every chunk this array's own, so that nothing is shared with another array.
    void detach();
    /// Whether the two arrays share their table, so that neither was written to since one was copied
    /// from the other.
    bool isSharedWith(const MenuItemArray& other) const { return m_table == other.m_table; }

    /// The index ranges where this array and `other` may hold different items: every index below
    /// the larger size that lies in a chunk the two arrays do not share. Outside these ranges both
    /// arrays hold the very same item records, so they are equal there. The ranges are sorted,
    /// disjoint and not adjacent. Two arrays that share their history (an undo state and the
    /// document it was recorded from) differ in few ranges; two unrelated arrays in one range that
    /// covers everything.
    QList<ItemRange> rangesDifferentFrom(const MenuItemArray& other) const;

    QList<MenuItem> toList() const;

    const_iterator begin() const;
    const_iterator end() const;
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    /// Writable iteration makes every chunk this array's own first, as a write could reach any item.
    iterator begin();
    iterator end();
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    reverse_iterator rbegin() { return reverse_iterator(end()); }
    reverse_iterator rend() { return reverse_iterator(begin()); }

    friend bool operator==(const MenuItemArray& left, const MenuItemArray& right);
    friend bool operator!=(const MenuItemArray& left, const MenuItemArray& right) { return !(left == right); }

private:
    static constexpr qsizetype ChunkMask = ChunkSize - 1;
    using ChunkPointer = QExplicitlySharedDataPointer<Chunk>;

    struct Chunk : QSharedData
    {
        std::vector<MenuItem> items;
    };
    struct Table : QSharedData
    {
        std::vector<ChunkPointer> chunks;
        qsizetype size = 0;
    };

    /// Item `index` once its table and chunk are made this array's own.
    MenuItem& writableItem(qsizetype index);
    /// The table, made this array's own (and made at all when the array has none yet).
    Table& ownTable();
    /// Chunk `chunk` of an own table, made this array's own.
    static Chunk& ownChunk(Table& table, qsizetype chunk);

    QExplicitlySharedDataPointer<Table> m_table;

public:
    /// Random access over the items, for range-for and the standard algorithms. A writable iterator
    /// comes from a fully detached array and writes in place.
    template <bool IsConst> class Iterator
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = MenuItem;
        using difference_type = qsizetype;
        using pointer = std::conditional_t<IsConst, const MenuItem*, MenuItem*>;
        using reference = std::conditional_t<IsConst, const MenuItem&, MenuItem&>;

        Iterator() = default;

        reference operator*() const
        {
            return m_table->chunks[std::size_t(m_index >> ChunkBits)]->items[std::size_t(m_index & ChunkMask)];
        }
        pointer operator->() const { return &**this; }
        reference operator[](difference_type offset) const { return *(*this + offset); }

        Iterator& operator++()
        {
            ++m_index;
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator before = *this;
            ++m_index;
            return before;
        }
        Iterator& operator--()
        {
            --m_index;
            return *this;
        }
        Iterator operator--(int)
        {
            Iterator before = *this;
            --m_index;
            return before;
        }
        Iterator& operator+=(difference_type offset)
        {
            m_index += offset;
            return *this;
        }
        Iterator& operator-=(difference_type offset)
        {
            m_index -= offset;
            return *this;
        }
        friend Iterator operator+(Iterator at, difference_type offset) { return at += offset; }
        friend Iterator operator+(difference_type offset, Iterator at) { return at += offset; }
        friend Iterator operator-(Iterator at, difference_type offset) { return at -= offset; }
        friend difference_type operator-(const Iterator& left, const Iterator& right)
        {
            return left.m_index - right.m_index;
        }
        friend bool operator==(const Iterator& left, const Iterator& right) { return left.m_index == right.m_index; }
        friend bool operator!=(const Iterator& left, const Iterator& right) { return left.m_index != right.m_index; }
        friend bool operator<(const Iterator& left, const Iterator& right) { return left.m_index < right.m_index; }
        friend bool operator>(const Iterator& left, const Iterator& right) { return left.m_index > right.m_index; }
        friend bool operator<=(const Iterator& left, const Iterator& right) { return left.m_index <= right.m_index; }
        friend bool operator>=(const Iterator& left, const Iterator& right) { return left.m_index >= right.m_index; }

    private:
        friend class MenuItemArray;
        using TablePointer = std::conditional_t<IsConst, const Table*, Table*>;

        Iterator(TablePointer table, qsizetype index)
            : m_table(table)
            , m_index(index)
        {
        }

        TablePointer m_table = nullptr;
        qsizetype m_index = 0;
    };
};

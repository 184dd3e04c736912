#pragma once

#include <QHash>
#include <QString>

#include <vector>

/// A map from item keys to values that finds the keys a document gives out ("E" followed by its key
/// counter: E0, E1, ... E32767) by their number in an array, and any other text in a hash. Keys are
/// looked up for every node of a tree of 32,767 items, where hashing each text would cost more than
/// the rest of the work.
template <typename Value> class KeyMap final
{
public:
    /// The number of a key the editor gives out ("E" followed by a decimal number without a leading
    /// zero, below one million); -1 for any other text.
    static int numberOf(const QString& key)
    {
        const qsizetype size = key.size();
        if (size < 2 || size > 7 || key.at(0) != QLatin1Char('E')) {
            return -1;
        }
        if (key.at(1) == QLatin1Char('0') && size > 2) {
            return -1; // "E01" is a key of its own, not E1
        }
        int number = 0;
        for (qsizetype i = 1; i < size; ++i) {
            const char16_t digit = key.at(i).unicode();
            if (digit < u'0' || digit > u'9') {
                return -1;
            }
            number = number * 10 + int(digit - u'0');
        }
        return number;
    }

    /// The value of `key`; `missing` when it has none.
    Value value(const QString& key, Value missing) const
    {
        const int number = numberOf(key);
        if (number >= 0) {
            return size_t(number) < m_byNumber.size() && m_present[size_t(number)] ? m_byNumber[size_t(number)]
                                                                                   : missing;
        }
        return m_others.value(key, missing);
    }

    bool contains(const QString& key) const
    {
        const int number = numberOf(key);
        if (number >= 0) {
            return size_t(number) < m_present.size() && m_present[size_t(number)];
        }
        return m_others.contains(key);
    }

    /// Sets the value of `key`, replacing the one it had.
    void insert(const QString& key, Value value)
    {
        const int number = numberOf(key);
        if (number < 0) {
            m_others.insert(key, value);
            return;
        }
        if (size_t(number) >= m_byNumber.size()) {
            m_byNumber.resize(size_t(number) + 1);
            m_present.resize(size_t(number) + 1, false);
        }
        m_byNumber[size_t(number)] = value;
        m_present[size_t(number)] = true;
    }

    void remove(const QString& key)
    {
        const int number = numberOf(key);
        if (number < 0) {
            m_others.remove(key);
        } else if (size_t(number) < m_present.size()) {
            m_present[size_t(number)] = false;
        }
    }

    void clear()
    {
        m_byNumber.clear();
        m_present.clear();
        m_others.clear();
    }

    /// Makes room for keys up to E`count - 1` at once.
    void reserve(int count)
    {
        if (count > 0 && size_t(count) > m_byNumber.size()) {
            m_byNumber.resize(size_t(count));
            m_present.resize(size_t(count), false);
        }
    }

private:
    std::vector<Value> m_byNumber;
    std::vector<bool> m_present;
    QHash<QString, Value> m_others;
};

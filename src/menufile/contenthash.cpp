#include "contenthash.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

constexpr quint64 prime1 = 0x9E3779B185EBCA87u;
constexpr quint64 prime2 = 0xC2B2AE3D27D4EB4Fu;
constexpr quint64 prime3 = 0x165667B19E3779F9u;
constexpr quint64 prime4 = 0x85EBCA77C2B2AE63u;
constexpr quint64 prime5 = 0x27D4EB2F165667C5u;

constexpr quint64 rotateLeft(quint64 value, int bits)
{
    return (value << bits) | (value >> (64 - bits));
}

quint64 word(const char* at)
{
    quint64 value = 0;
    std::memcpy(&value, at, sizeof(value));
    return qFromLittleEndian(value);
}

quint64 take(quint64 lane, quint64 input)
{
    return rotateLeft(lane + input * prime2, 31) * prime1;
}

quint64 merge(quint64 hash, quint64 lane)
{
    return (hash ^ take(0, lane)) * prime1 + prime4;
}

quint64 avalanche(quint64 hash)
{
    hash ^= hash >> 33;
    hash *= prime2;
    hash ^= hash >> 29;
    hash *= prime3;
    hash ^= hash >> 32;
    return hash;
}

} // namespace

QByteArray ContentHash::of(QByteArrayView bytes)
{
    ContentHash hash;
    hash.addData(bytes);
    return hash.result();
}

ContentHash::ContentHash()
    : m_lanes { prime1 + prime2, prime2, 0, quint64(0) - prime1 }
{
}

void ContentHash::addData(QByteArrayView bytes)
{
    if (bytes.isEmpty()) {
        return;
    }
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    m_size += quint64(bytes.size());
    const auto takeStripe = [this](const char* stripe) {
        for (int lane = 0; lane < 4; ++lane) {
            m_lanes[lane] = take(m_lanes[lane], word(stripe + 8 * lane));
        }
    };
    if (m_pendingSize > 0) {
        const int taken = int(std::min<qsizetype>(32 - m_pendingSize, end - at));
        std::memcpy(m_pending + m_pendingSize, at, size_t(taken));
        m_pendingSize += taken;
        at += taken;
        if (m_pendingSize < 32) {
            return;
        }
        takeStripe(m_pending);
        m_pendingSize = 0;
    }
    // Whole stripes of 32 bytes, one word to each lane.
    while (end - at >= 32) {
        takeStripe(at);
        at += 32;
    }
    m_pendingSize = int(end - at);
    std::memcpy(m_pending, at, size_t(m_pendingSize));
}

QByteArray ContentHash::result() const
{
    const auto& lanes = m_lanes;
    const quint64 size = m_size;
    const char* at = m_pending;
    const char* const end = m_pending + m_pendingSize;
    quint64 first
        = rotateLeft(lanes[0], 1) + rotateLeft(lanes[1], 7) + rotateLeft(lanes[2], 12) + rotateLeft(lanes[3], 18);
    quint64 second
        = rotateLeft(lanes[0], 41) ^ rotateLeft(lanes[1], 29) ^ rotateLeft(lanes[2], 53) ^ rotateLeft(lanes[3], 3);
    for (const quint64 lane : lanes) {
        first = merge(first, lane);
        second = merge(second * prime3, rotateLeft(lane, 17));
    }
    first += size;
    second ^= size * prime5;
    // The last 31 bytes at most: words, then single bytes.
    while (end - at >= 8) {
        const quint64 input = word(at);
        first = rotateLeft(first ^ take(0, input), 27) * prime1 + prime4;
        second = rotateLeft(second ^ take(prime5, input), 31) * prime2 + prime3;
        at += 8;
    }
    while (at < end) {
        const quint64 input = quint64(quint8(*at));
        first = rotateLeft(first ^ (input * prime5), 11) * prime1;
        second = rotateLeft(second ^ (input * prime1), 13) * prime5;
        ++at;
    }
    const quint64 halves[2] = { qToLittleEndian(avalanche(first)), qToLittleEndian(avalanche(second ^ (first >> 7))) };
    return QByteArray(reinterpret_cast<const char*>(halves), sizeof(halves));
}

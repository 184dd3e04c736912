#pragma once

#include <QByteArray>
#include <QByteArrayView>

/// The 128-bit hash by which a file's identity tells its bytes apart: of fixed definition, so that
/// the same bytes hash the same in every editor process and on every run (an identity kept beside a
/// recovery copy is checked by the editor that recovers it), and fast enough to hash every menu as
/// it is read or written (a 32,767-item menu can be 16 MB; a cryptographic hash took 30 ms of its
/// opening). It guards against accidental changes, not against someone forging a file.
///
/// Four 64-bit lanes take the bytes eight at a time in turn, each by multiply and rotate; the lanes
/// then fold into two 64-bit halves by two different mixes, each followed by an avalanche.
///
/// The bytes may also come in pieces, as a file is read: the hash of the pieces taken in order by
/// addData is the hash of their concatenation.
class ContentHash final
{
public:
    /// The 16 bytes of the hash of `bytes`: the two halves, each least significant byte first.
    static QByteArray of(QByteArrayView bytes);

    /// A hash that has taken no bytes yet.
    ContentHash();

    /// Takes `bytes` after all the bytes taken so far.
    void addData(QByteArrayView bytes);
    /// The hash of every byte taken so far, as of() gives it for them.
    QByteArray result() const;

private:
    quint64 m_lanes[4];
    quint64 m_size = 0;
    // The bytes of a stripe not yet whole.
    char m_pending[32] = {};
    int m_pendingSize = 0;
};

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
class ContentHash final
{
public:
    /// The 16 bytes of the hash of `bytes`: the two halves, each least significant byte first.
    static QByteArray of(QByteArrayView bytes);
};

// The SDO client at work on one entry of a node.
// SPDX-License-Identifier: MIT
#pragma once

#include "SdoTranscript.h"
#include "cop/cop_sdo.h"

namespace sdoClient
{

inline constexpr BYTE node = 5;
inline constexpr WORD entryIndex = 0x2100;
inline constexpr BYTE entrySub = 3;
inline const CSdoTranscript entry(entryIndex, entrySub);

// A buffer, followed by guard bytes.
struct tRead {
    explicit tRead(int size) : m_size(size) { bytes.fill('\xEE', size + 16); }
    int32_t operator()(WORD object = entryIndex, BYTE sub = entrySub)
    {
        return sdo_read(node, object, sub, &length, reinterpret_cast<BYTE*>(bytes.data()), static_cast<short>(m_size));
    }
    QByteArray data() const { return bytes.left(length); }
    bool guarded() const { return bytes.mid(m_size) == QByteArray(16, '\xEE'); }

    QByteArray bytes;
    short length = -1;

private:
    int m_size;
};

/// Writes the entry.
inline int32_t write(const QByteArray& data)
{
    return sdo_write(node, entryIndex, entrySub, static_cast<short>(data.size()),
                     reinterpret_cast<const BYTE*>(data.constData()));
}

/// Bytes that differ from their neighbours.
inline QByteArray pattern(int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(i % 251 + 1);
    return bytes;
}

} // namespace sdoClient

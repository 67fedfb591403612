// The layout of SDO frames (CiA 301), for the server and its faults. Not shared with the program: see AbortCodes.h.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/AbortCodes.h"
#include "dic/ValueTypes.h"

#include <QByteArray>

constexpr qsizetype sdoFrameSize = 8;
constexpr qsizetype sdoMultiplexorAt = 1; // bytes 1 to 3
constexpr qsizetype sdoMultiplexorSize = 3;
constexpr qsizetype sdoDataAt = 4; // of an initiate
constexpr qsizetype sdoExpeditedSize = 4;
constexpr qsizetype sdoSegmentAt = 1; // the data of a segment
constexpr qsizetype sdoSegmentSize = 7;

/// The specifier is in the three high bits of byte 0.
constexpr unsigned sdoSpecifierMask = 0xE0;

/// Client command specifiers, as they stand in byte 0.
constexpr unsigned ccsDownloadSegment = 0x00;
constexpr unsigned ccsInitiateDownload = 0x20;
constexpr unsigned ccsInitiateUpload = 0x40;
constexpr unsigned ccsUploadSegment = 0x60;
constexpr unsigned ccsAbort = 0x80;

/// Server command specifiers, as they stand in byte 0.
constexpr unsigned scsUploadSegment = 0x00;
constexpr unsigned scsDownloadSegment = 0x20;
constexpr unsigned scsInitiateUpload = 0x40;
constexpr unsigned scsInitiateDownload = 0x60;
constexpr unsigned scsAbort = 0x80;

/// Byte 0 of an initiate.
constexpr unsigned sdoExpedited = 0x02; // the frame itself has the data
constexpr unsigned sdoSizeGiven = 0x01;
constexpr unsigned sdoExpeditedUnusedShift = 2;
constexpr unsigned sdoExpeditedUnusedMask = 0x0C; // bytes without data, of 4

/// Byte 0 of a segment.
constexpr unsigned sdoToggle = 0x10;
constexpr unsigned sdoSegmentUnusedShift = 1;
constexpr unsigned sdoSegmentUnusedMask = 0x0E; // bytes without data, of 7
constexpr unsigned sdoLastSegment = 0x01;       // no more segments

/// One byte of a frame, which must be that long.
inline unsigned byteAt(const QByteArray& frame, qsizetype place)
{
    return static_cast<unsigned char>(frame.at(place));
}

/// The command specifier, as it stands in byte 0.
inline unsigned specifierOf(const QByteArray& frame)
{
    return byteAt(frame, 0) & sdoSpecifierMask;
}

/// The index and the sub-index in bytes 1 to 3.
inline unsigned indexIn(const QByteArray& frame)
{
    return byteAt(frame, sdoMultiplexorAt) | byteAt(frame, sdoMultiplexorAt + 1) << 8;
}
inline unsigned subIndexIn(const QByteArray& frame)
{
    return byteAt(frame, sdoMultiplexorAt + 2);
}

/// The first byte of a frame.
inline QByteArray oneByte(unsigned byte)
{
    return QByteArray(1, static_cast<char>(byte));
}

/// The abort of a transfer by the server.
inline QByteArray abortFrame(const QByteArray& multiplexor, tAbortCode code)
{
    return oneByte(scsAbort) + multiplexor + littleEndian(code, sdoFrameSize - sdoDataAt);
}

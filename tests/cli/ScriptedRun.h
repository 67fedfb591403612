// Runs of velmora-cli against a scripted gateway.
// SPDX-License-Identifier: MIT
#pragma once

#include "CliRun.h"
#include "FakeGateway.h"

#include <QByteArray>
#include <QTest>

/// The scripted gateway as -i takes it.
inline QString interfaceOf(const CFakeGateway& gateway)
{
    return "127.0.0.1:" + QString::number(gateway.port());
}

/// The answer to a read: its number and the value.
inline std::string value(const QByteArray& bytes)
{
    return "[#] " + bytes.toBase64().toStdString() + "\r\n";
}

/// The request to read a parameter of node 5.
inline std::string readOf(const char* index, const char* subIndex)
{
    return std::string("[#] 5 read ") + index + ' ' + subIndex + " d\r\n";
}

/// Waits for the first request.
inline bool awaitRequest(const CFakeGateway& gateway)
{
    return QTest::qWaitFor([&gateway] { return !gateway.received().empty(); }, patience);
}

/// Nothing when the script was played exactly, otherwise what differed.
inline QByteArray difference(const CFakeGateway& gateway)
{
    return gateway.finished() ? QByteArray() : QByteArray::fromStdString(gateway.problem());
}

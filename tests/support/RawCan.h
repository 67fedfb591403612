// A raw CAN socket of the test's own: sends frames and sees all that others send.
// SPDX-License-Identifier: MIT
#pragma once

#include "CanFrameText.h"
#include "Patience.h"

#include <QByteArray>
#include <QStringList>

#include <linux/can.h>

/// Open from construction on, so that nothing is missed:
///
///     CRawCan bus;
///     nmt_start_remote_node(5);
///     QCOMPARE(bus.receive(), "000#0105");
class CRawCan
{
public:
    /// Why there is no test on this interface; empty when it is there. What a test shows when it cannot run.
    static QByteArray trouble(const char* interface = "vcan0");

    explicit CRawCan(const char* interface = "vcan0");
    ~CRawCan();
    CRawCan(const CRawCan&) = delete;
    CRawCan& operator=(const CRawCan&) = delete;

    bool isOpen() const { return m_open; }
    /// From now on, only data and remote frames with identifiers that are `id` in the bits of `mask` come.
    void hearOnly(canid_t id, canid_t mask) const;
    /// Sends a frame; at the return, all others have it.
    bool send(const can_frame& frame) const;
    bool send(const QString& frame) const;

    /// The next frame; empty when none comes in the time.
    QString receive(int milliseconds = patience) const;
    /// All frames that were sent before the call, by whomever.
    QStringList receiveAll() const;
    /// As many frames as that, or fewer when no more come.
    QStringList receiveCount(qsizetype count) const;
    /// Waits until the frame comes; what comes before is dropped. False when it does not come.
    bool waitFor(const QString& frame) const;
    void forget() const { receiveAll(); }

private:
    /// The kind of an error message that no device sends, another one for each object. Whoever asks for all error
    /// messages gets it, too, as any that means nothing.
    static canid_t nextMarker();
    /// A socket that hears data and remote frames; -1 when there is none to be had.
    static int open(const char* interface);
    /// Waits until there is something to read; a signal may come meanwhile.
    static bool isReadable(int socket, int milliseconds);
    /// Waits until all that was sent so far has reached the sockets of all: until a marker comes back that takes the same
    /// way after it.
    bool settle() const;

    const canid_t m_marker = nextMarker();
    int m_socket;
    int m_echo; // of the markers
    bool m_open = false;
};

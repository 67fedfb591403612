// A raw CAN socket of the test: sends frames and receives all that others send.
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
    /// Why no test can run on this interface; empty if one can.
    static QByteArray problem(const char* interface = "vcan0");

    explicit CRawCan(const char* interface = "vcan0");
    ~CRawCan();
    CRawCan(const CRawCan&) = delete;
    CRawCan& operator=(const CRawCan&) = delete;

    bool isOpen() const { return m_open; }
    /// From now on, receives only data and remote frames whose identifier equals `id` in the bits of `mask`.
    void receiveOnly(canid_t id, canid_t mask) const;
    /// Sends a frame; on return, all other sockets have received it.
    bool send(const can_frame& frame) const;
    bool send(const QString& frame) const;

    /// The next frame; empty if none comes in the time.
    QString receive(int milliseconds = patience) const;
    /// All frames that others sent before the call.
    QStringList receiveAll() const;
    /// The next `count` frames, or fewer if no more come.
    QStringList receiveCount(qsizetype count) const;
    /// Waits until the frame comes; drops others. False if it does not come.
    bool waitFor(const QString& frame) const;
    void forget() const { receiveAll(); }

private:
    /// The class of an error frame that no device sends, a different one for each object. A socket that receives all
    /// error frames receives it, too; it has no meaning there.
    static canid_t nextMarker();
    /// A socket that receives data and remote frames; -1 if it cannot be opened.
    static int open(const char* interface);
    /// Waits until there is something to read, in spite of signals.
    static bool isReadable(int socket, int milliseconds);
    /// Waits until all frames sent so far have reached every socket: until a marker sent after them comes back.
    bool settle() const;

    const canid_t m_marker = nextMarker();
    int m_socket;
    int m_echo; // sends and receives the markers
    bool m_open = false;
};

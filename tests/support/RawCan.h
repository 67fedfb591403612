// A raw CAN socket of the test's own: sends frames and sees all that others send.
// SPDX-License-Identifier: MIT
#pragma once

#include "CanFrameText.h"
#include "Patience.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QStringList>

#include <cerrno>
#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

/// Open from construction on, so that nothing is missed:
///
///     CRawCan bus;
///     nmt_start_remote_node(5);
///     QCOMPARE(bus.receive(), "000#0105");
class CRawCan
{
public:
    /// Why there is no test on this interface; empty when it is there. What a test shows when it cannot run.
    static QByteArray trouble(const char* interface = "vcan0")
    {
        if (if_nametoindex(interface) != 0 && CRawCan(interface).isOpen())
            return QByteArray();
        return QByteArray("There is no CAN interface ") + interface +
               " here, or no right to buffer its frames. Run this test as scripts/vcan/with-vcan COMMAND.";
    }

    explicit CRawCan(const char* interface = "vcan0") : m_socket(open(interface)), m_echo(open(interface))
    {
        const int room = 4 << 20; // bytes: far more than comes between two calls
        setsockopt(m_socket, SOL_SOCKET, SO_RCVBUFFORCE, &room, sizeof room);
        int granted = 0;
        socklen_t size = sizeof granted;
        getsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &granted, &size);
        m_open = m_socket >= 0 && m_echo >= 0 && granted >= room;
        const int yes = 1;
        const can_err_mask_t markers = m_marker;
        setsockopt(m_echo, SOL_CAN_RAW, CAN_RAW_FILTER, nullptr, 0);
        setsockopt(m_echo, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, &markers, sizeof markers);
        setsockopt(m_echo, SOL_CAN_RAW, CAN_RAW_RECV_OWN_MSGS, &yes, sizeof yes);
    }
    ~CRawCan()
    {
        close(m_socket);
        close(m_echo);
    }
    CRawCan(const CRawCan&) = delete;
    CRawCan& operator=(const CRawCan&) = delete;

    bool isOpen() const { return m_open; }
    /// From now on, only data and remote frames with identifiers that are `id` in the bits of `mask` come.
    void hearOnly(canid_t id, canid_t mask) const
    {
        const can_filter filter = { id, mask | CAN_EFF_FLAG };
        setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_FILTER, &filter, sizeof filter);
    }
    /// Sends a frame; at the return, all others have it.
    bool send(const can_frame& frame) const
    {
        return write(m_socket, &frame, sizeof frame) == sizeof frame && settle();
    }
    bool send(const QString& frame) const { return send(frameFromText(frame)); }

    /// The next frame; empty when none comes in the time.
    QString receive(int milliseconds = patience) const
    {
        can_frame frame = {};
        if (!isReadable(m_socket, milliseconds) || read(m_socket, &frame, sizeof frame) != sizeof frame)
            return QString();
        return frameText(frame);
    }
    /// All frames that were sent before the call, by whomever.
    QStringList receiveAll() const
    {
        settle();
        QStringList frames;
        for (QString frame = receive(0); !frame.isEmpty(); frame = receive(0))
            frames += frame;
        return frames;
    }
    /// As many frames as that, or fewer when no more come.
    QStringList receiveCount(qsizetype count) const
    {
        QStringList frames;
        for (QString frame; frames.size() < count && !(frame = receive()).isEmpty();)
            frames += frame;
        return frames;
    }
    /// Waits until the frame comes; what comes before is dropped. False when it does not come.
    bool waitFor(const QString& frame) const
    {
        const QDeadlineTimer deadline(patience);
        while (!deadline.hasExpired())
            if (receive(static_cast<int>(deadline.remainingTime())) == frame)
                return true;
        return false;
    }
    void forget() const { receiveAll(); }

private:
    /// The kind of an error message that no device sends, another one for each object. Whoever asks for all error
    /// messages gets it, too, as any that means nothing.
    static canid_t nextMarker()
    {
        static unsigned count = 0;
        return CAN_ERR_CNT << (1 + count++ % 19);
    }
    /// A socket that hears data and remote frames; -1 when there is none to be had.
    static int open(const char* interface)
    {
        const int opened = socket(PF_CAN, SOCK_RAW | SOCK_CLOEXEC, CAN_RAW);
        sockaddr_can address = {};
        address.can_family = AF_CAN;
        address.can_ifindex = static_cast<int>(if_nametoindex(interface));
        if (bind(opened, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return opened;
        close(opened);
        return -1;
    }
    /// Waits until there is something to read; a signal may come meanwhile.
    static bool isReadable(int socket, int milliseconds)
    {
        const QDeadlineTimer deadline(milliseconds);
        pollfd waiting = { socket, POLLIN, 0 };
        int ready = 0;
        do
            ready = poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
        while (ready < 0 && errno == EINTR);
        return ready > 0;
    }
    /// Waits until all that was sent so far has reached the sockets of all: until a marker comes back that takes the same
    /// way after it.
    bool settle() const
    {
        int error = 0; // forgets that the interface was down
        socklen_t size = sizeof error;
        getsockopt(m_echo, SOL_SOCKET, SO_ERROR, &error, &size);
        can_frame sent = {}, received = {};
        sent.can_id = CAN_ERR_FLAG | m_marker;
        sent.len = CAN_ERR_DLC;
        if (write(m_echo, &sent, sizeof sent) != sizeof sent)
            return false;
        while (received.can_id != sent.can_id) // from before there was a filter, there may be others
            if (!isReadable(m_echo, patience) || read(m_echo, &received, sizeof received) != sizeof received)
                return false;
        return true;
    }

    const canid_t m_marker = nextMarker();
    int m_socket;
    int m_echo; // of the markers
    bool m_open = false;
};

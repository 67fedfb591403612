// A raw CAN socket of the test's own: sends frames and sees all that others send.
// SPDX-License-Identifier: MIT
#pragma once

#include "CanFrameText.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QStringList>

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
    static constexpr int soon = 2000; ///< milliseconds in which what is on its way has come
    static constexpr int quiet = 20;  ///< milliseconds of silence after which nothing is on its way any more

    /// Why there is no test on this interface; empty when it is there. What a test shows when it cannot run.
    static QByteArray trouble(const char* interface = "vcan0")
    {
        if (if_nametoindex(interface) != 0 && CRawCan(interface).isOpen())
            return QByteArray();
        return QByteArray("There is no CAN interface ") + interface +
               " here, or no right to buffer its frames. Run this test as tests/with-vcan COMMAND.";
    }

    explicit CRawCan(const char* interface = "vcan0") : m_socket(socket(PF_CAN, SOCK_RAW | SOCK_CLOEXEC, CAN_RAW))
    {
        const int room = 4 << 20; // bytes: far more than comes between two calls
        setsockopt(m_socket, SOL_SOCKET, SO_RCVBUFFORCE, &room, sizeof room);
        int granted = 0;
        socklen_t size = sizeof granted;
        getsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &granted, &size);
        sockaddr_can address = {};
        address.can_family = AF_CAN;
        address.can_ifindex = static_cast<int>(if_nametoindex(interface));
        m_open = bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 && granted >= room;
    }
    ~CRawCan() { close(m_socket); }
    CRawCan(const CRawCan&) = delete;
    CRawCan& operator=(const CRawCan&) = delete;

    bool isOpen() const { return m_open; }
    /// From now on, only data and remote frames with identifiers that are `id` in the bits of `mask` come.
    void hearOnly(canid_t id, canid_t mask) const
    {
        const can_filter filter = { id, mask | CAN_EFF_FLAG };
        setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_FILTER, &filter, sizeof filter);
    }
    bool send(const can_frame& frame) const { return write(m_socket, &frame, sizeof frame) == sizeof frame; }
    bool send(const QString& frame) const { return send(frameFromText(frame)); }

    /// The next frame; empty when none comes in the time.
    QString receive(int milliseconds = soon) const
    {
        pollfd waiting = { m_socket, POLLIN, 0 };
        can_frame frame = {};
        if (poll(&waiting, 1, milliseconds) <= 0 || read(m_socket, &frame, sizeof frame) != sizeof frame)
            return QString();
        return frameText(frame);
    }
    /// All frames until the bus is quiet.
    QStringList receiveAll() const
    {
        QStringList frames;
        for (QString frame = receive(quiet); !frame.isEmpty(); frame = receive(quiet))
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
    /// Waits until the frame comes; what comes before is dropped. False after 5 s.
    bool waitFor(const QString& frame) const
    {
        const QDeadlineTimer deadline(5000);
        while (!deadline.hasExpired())
            if (receive(static_cast<int>(deadline.remainingTime())) == frame)
                return true;
        return false;
    }
    void forget() const { receiveAll(); }

private:
    int m_socket;
    bool m_open = false;
};

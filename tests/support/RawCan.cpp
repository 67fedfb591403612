// A raw CAN socket of the test: sends frames and receives all that others send.
// SPDX-License-Identifier: MIT
#include "RawCan.h"

#include <QDeadlineTimer>

#include <cerrno>

#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

QByteArray CRawCan::problem(const char* interface)
{
    if (if_nametoindex(interface) != 0 && CRawCan(interface).isOpen())
        return QByteArray();
    return QByteArray("There is no CAN interface ") + interface +
           " here, or no right to buffer its frames. Run this test as scripts/vcan/with-vcan COMMAND.";
}

CRawCan::CRawCan(const char* interface) : m_socket(open(interface)), m_echo(open(interface))
{
    const int room = 4 << 20; // bytes: far more than is received between two calls
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
    receiveAll(); // on a busy machine, a frame sent before may arrive only now
}

CRawCan::~CRawCan()
{
    close(m_socket);
    close(m_echo);
}

void CRawCan::receiveOnly(canid_t id, canid_t mask) const
{
    const can_filter filter = { id, mask | CAN_EFF_FLAG };
    setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_FILTER, &filter, sizeof filter);
}

bool CRawCan::send(const can_frame& frame) const
{
    return write(m_socket, &frame, sizeof frame) == sizeof frame && settle();
}

bool CRawCan::send(const QString& frame) const
{
    return send(frameFromText(frame));
}

QString CRawCan::receive(int milliseconds) const
{
    can_frame frame = {};
    if (!isReadable(m_socket, milliseconds) || read(m_socket, &frame, sizeof frame) != sizeof frame)
        return QString();
    return frameText(frame);
}

QStringList CRawCan::receiveAll() const
{
    settle();
    QStringList frames;
    for (QString frame = receive(0); !frame.isEmpty(); frame = receive(0))
        frames += frame;
    return frames;
}

QStringList CRawCan::receiveCount(qsizetype count) const
{
    QStringList frames;
    for (QString frame; frames.size() < count && !(frame = receive()).isEmpty();)
        frames += frame;
    return frames;
}

bool CRawCan::waitFor(const QString& frame) const
{
    const QDeadlineTimer deadline(patience);
    while (!deadline.hasExpired())
        if (receive(static_cast<int>(deadline.remainingTime())) == frame)
            return true;
    return false;
}

canid_t CRawCan::nextMarker()
{
    static unsigned count = 0;
    return CAN_ERR_CNT << (1 + count++ % 19);
}

int CRawCan::open(const char* interface)
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

bool CRawCan::isReadable(int socket, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    pollfd waiting = { socket, POLLIN, 0 };
    int ready = 0;
    do
        ready = poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool CRawCan::settle() const
{
    int error = 0; // clears the error of an interface that was down
    socklen_t size = sizeof error;
    getsockopt(m_echo, SOL_SOCKET, SO_ERROR, &error, &size);
    can_frame sent = {}, received = {};
    sent.can_id = CAN_ERR_FLAG | m_marker;
    sent.len = CAN_ERR_DLC;
    if (write(m_echo, &sent, sizeof sent) != sizeof sent)
        return false;
    while (received.can_id != sent.can_id) // frames from before the filter may come first
        if (!isReadable(m_echo, patience) || read(m_echo, &received, sizeof received) != sizeof received)
            return false;
    return true;
}

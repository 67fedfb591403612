// A fake gateway with the client connected to it, and the commands of the client as rows.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeGateway.h"

#include "tcp/tcp_open.h"

#include <QByteArray>

// Results of the client.
inline constexpr int32_t notConnected = -20000;
inline constexpr int32_t notSent = -793;

/// The client is connected while an object exists.
class CGatewaySession : public CFakeGateway
{
public:
    CGatewaySession() { m_result = top_init(address, port(), nullptr, 0); }
    ~CGatewaySession() { top_exit(); }
    CGatewaySession(const CGatewaySession&) = delete;
    CGatewaySession& operator=(const CGatewaySession&) = delete;

    bool connected() const { return m_result == 0; }
    /// All bytes that the client has sent; disconnects it.
    QByteArray allReceived()
    {
        top_exit();
        return awaitClosed() ? QByteArray::fromStdString(received()) : QByteArray("(still connected)");
    }

private:
    int32_t m_result;
};

/// The kind of answer that a command expects.
enum tAwaited { awaitsOK, awaitsWritten, awaitsNumber, awaitsDomain, awaitsText, awaitsMessage, awaitsNothing };

struct tCommand {
    const char* line;
    tAwaited awaited;
    int32_t (*run)(); // with node 5 and object 0x1017, sub-index 0x1A
};

template <typename Value>
int32_t runRead(int32_t (*read)(BYTE, WORD, BYTE, Value*))
{
    Value value = 0;
    return read(5, 0x1017, 0x1A, &value);
}

inline int32_t runText(int32_t (*text)(char*, short))
{
    char buffer[100];
    return text(buffer, sizeof buffer);
}

inline int32_t runReceive()
{
    WORD id = 0;
    short length = 0;
    BYTE data[8];
    return top_queue_read(&id, &length, data);
}

inline int32_t runReadDomain()
{
    short length = 0;
    BYTE data[100];
    return top_read(5, 0x1017, 0x1A, &length, data, sizeof data);
}

inline int32_t runTransmit()
{
    const BYTE data[] = { 0x11, 0x22 };
    return top_transmit(0x181, 2, data);
}

inline const tCommand commands[] = {
    { "[#] init 6\r\n", awaitsNothing, [] { return top_reset(6); } },
    { "[#] 5 write 0x1017 0x1A d QUJD\r\n", awaitsWritten,
      [] { return top_write(5, 0x1017, 0x1A, 3, reinterpret_cast<const BYTE*>("ABC")); } },
    { "[#] 5 read 0x1017 0x1A d\r\n", awaitsDomain, &runReadDomain },
    { "[#] set sdo_timeout 500\r\n", awaitsOK, [] { return top_timeout(500, nullptr); } },
    { "[#] 5 write 0x1017 0x1A u8 0x7F\r\n", awaitsWritten, [] { return top_write_8bit(5, 0x1017, 0x1A, 0x7F); } },
    { "[#] 5 read 0x1017 0x1A u8\r\n", awaitsNumber, [] { return runRead(&top_read_8bit); } },
    { "[#] 5 write 0x1017 0x1A u16 0xABC\r\n", awaitsWritten, [] { return top_write_16bit(5, 0x1017, 0x1A, 0xABC); } },
    { "[#] 5 read 0x1017 0x1A u16\r\n", awaitsNumber, [] { return runRead(&top_read_16bit); } },
    { "[#] 5 write 0x1017 0x1A u32 0xABCDE\r\n", awaitsWritten,
      [] { return top_write_32bit(5, 0x1017, 0x1A, 0xABCDE); } },
    { "[#] 5 read 0x1017 0x1A u32\r\n", awaitsNumber, [] { return runRead(&top_read_32bit); } },
    { "[#] 5 start\r\n", awaitsOK, [] { return top_start_remote_node(5); } },
    { "[#] 5 stop\r\n", awaitsOK, [] { return top_stop_remote_node(5); } },
    { "[#] 5 preoperational\r\n", awaitsOK, [] { return top_enter_preoperational(5); } },
    { "[#] 5 reset node\r\n", awaitsOK, [] { return top_reset_node(5); } },
    { "[#] 5 reset communication\r\n", awaitsOK, [] { return top_reset_communication(5); } },
    { "[#] send 0x181 2\r\n 0x11 0x22\r\n", awaitsOK, &runTransmit },
    { "[#] receive\r\n", awaitsMessage, &runReceive },
    { "[#] info hardware\r\n", awaitsText, [] { return runText(&top_hardware); } },
    { "[#] info software\r\n", awaitsText, [] { return runText(&top_software); } },
    { "[#] info copyright\r\n", awaitsText, [] { return runText(&top_copyright); } },
};

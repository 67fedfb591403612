// Transfers through a gateway, compared with bare exchanges of the same lines. The server of both answers at once.
// SPDX-License-Identifier: MIT
#include "LineServer.h"
#include "Pair.h"
#include "base/CANopenErrors.h"
#include "tcp/tcp_open.h"

#include <QByteArray>

#include <stdexcept>
#include <string>

#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

namespace
{

constexpr BYTE node = 5;
constexpr uint32_t number = 0x12345678;
constexpr short domainSize = 500;
constexpr int exchanges = 100; // in one run

// A byte more than the data, which base64 reads.
const QByteArray& domain()
{
    static const QByteArray bytes = [] {
        QByteArray made(domainSize + 1, '\0');
        for (int n = 0; n < domainSize; ++n)
            made[n] = static_cast<char>(n * 7);
        return made;
    }();
    return bytes;
}

std::string domainText()
{
    return domain().left(domainSize).toBase64().toStdString();
}

// Sends the line and receives one like the gateway client does: byte by byte, with the time looked at for each.
bool exchangeBare(int client, const std::string& line)
{
    if (send(client, line.data(), line.size(), 0) != static_cast<ssize_t>(line.size()))
        return false;
    char answer[1024];
    size_t count = 0;
    timespec now = {};
    timeval rest = { 66, 0 };
    clock_gettime(CLOCK_MONOTONIC, &now);
    const time_t end = now.tv_sec + rest.tv_sec;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(client, &readable);
    while (count < sizeof answer && now.tv_sec <= end && select(client + 1, &readable, nullptr, nullptr, &rest) > 0 &&
           recv(client, answer + count, 1, 0) == 1) {
        if (answer[count++] == '\n')
            return true;
        clock_gettime(CLOCK_MONOTONIC, &now);
    }
    return false;
}

struct tTransfer {
    const char* name;
    std::string answer;
    bool (*transfer)(); // false when the answer was wrong
    std::string sent;   // the end of its line
};

bool readNumber()
{
    uint32_t value = 0;
    return top_read_32bit(node, 0x2000, 1, &value) == 0 && value == number;
}

bool readDomain()
{
    BYTE data[domainSize + 1] = {};
    short length = 0;
    return top_read(node, 0x2001, 1, &length, data, sizeof data) == 0 && length == domainSize &&
           std::equal(data, data + domainSize, reinterpret_cast<const BYTE*>(domain().constData()));
}

bool writeDomain()
{
    return top_write(node, 0x2001, 1, domainSize, reinterpret_cast<const BYTE*>(domain().constData())) == 0;
}

class CGatewayPair : public CPair
{
public:
    explicit CGatewayPair(const tTransfer& transfer) : m_transfer(transfer.transfer), m_server(transfer.answer)
    {
        if (ours() < 0 || !m_server.lastLine().ends_with(transfer.sent))
            throw std::runtime_error("the gateway client does not work");
    }

    double ours() override
    {
        if (top_init(INADDR_LOOPBACK, m_server.port(), nullptr, 0) != 0)
            return -1;
        const double seconds = repeat(m_transfer);
        top_exit();
        return seconds;
    }
    // Sends the last line of ours again and again, so that its number is as long.
    double bare() override
    {
        const CDescriptor client = connectToLoopback(m_server.port());
        const std::string line = m_server.lastLine();
        return repeat([&] { return exchangeBare(client.get(), line); });
    }

private:
    template <typename Exchange>
    static double repeat(Exchange exchange)
    {
        return secondsOf([&] {
            for (int n = 0; n < exchanges; ++n)
                if (!exchange())
                    return false;
            return true;
        });
    }

    const COneProcessor m_processor;
    bool (*const m_transfer)();
    CLineServer m_server;
};

[[maybe_unused]] const bool added = [] {
    static const tTransfer transfers[] = {
        { "gateway/read", "0x12345678", readNumber, "] 5 read 0x2000 0x1 u32\r\n" },
        { "gateway/domain-read", domainText(), readDomain, "] 5 read 0x2001 0x1 d\r\n" },
        { "gateway/domain-write", "OK", writeDomain, "] 5 write 0x2001 0x1 d " + domainText() + "\r\n" },
    };
    for (const tTransfer& transfer : transfers)
        addPair({ transfer.name, exchanges, 5, [&transfer] { return std::make_unique<CGatewayPair>(transfer); } });
    return true;
}();

} // namespace

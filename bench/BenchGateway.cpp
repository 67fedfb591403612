// Exchanges with the simulator's gateway, compared with bare exchanges of lines of the same length over TCP.
// SPDX-License-Identifier: MIT
#include "SheetMaker.h"
#include "gateway/GatewayThread.h"
#include "tcp/tcp_open.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <thread>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

constexpr BYTE node = 5;
constexpr char request[] = "[100] 5 read 0x2000 0x1 u32\r\n";
constexpr char answer[] = "[100] 0x00000001\r\n";

void readThroughGateway(benchmark::State& state)
{
    const CSheet sheet(10);
    CGatewayThread gateway;
    const QString error = gateway.addNode(node, sheet.fileName()) + gateway.start();
    if (!error.isEmpty() || top_init(INADDR_LOOPBACK, gateway.port(), nullptr, 0) != 0)
        return state.SkipWithError("no gateway");
    for (auto _ : state) {
        uint32_t value = 0;
        if (top_read_32bit(node, 0x2000, 1, &value) != 0 || value != 1)
            state.SkipWithError("the read failed");
    }
    state.SetItemsProcessed(state.iterations());
    top_exit();
}
BENCHMARK(readThroughGateway)->Unit(benchmark::kMicrosecond)->UseRealTime();

// A client, and a server thread that sends `answer` for each message whatever it holds.
class CPingPong
{
public:
    CPingPong()
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* any = reinterpret_cast<sockaddr*>(&address);
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        bind(listener, any, size);
        listen(listener, 1);
        getsockname(listener, any, &size);
        connect(m_client, any, size);
        m_server = std::thread([listener] {
            const int peer = accept(listener, nullptr, nullptr);
            char line[sizeof request];
            while (recv(peer, line, sizeof line, 0) > 0)
                send(peer, answer, std::strlen(answer), MSG_NOSIGNAL);
            close(peer);
            close(listener);
        });
    }
    ~CPingPong()
    {
        close(m_client);
        m_server.join();
    }
    CPingPong(const CPingPong&) = delete;
    CPingPong& operator=(const CPingPong&) = delete;

    bool exchange() const
    {
        char line[sizeof answer];
        return send(m_client, request, std::strlen(request), 0) > 0 && recv(m_client, line, sizeof line, 0) > 0;
    }

private:
    const int m_client = socket(AF_INET, SOCK_STREAM, 0);
    std::thread m_server;
};

void barePingPong(benchmark::State& state)
{
    const CPingPong peers;
    for (auto _ : state)
        if (!peers.exchange())
            state.SkipWithError("the exchange failed");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(barePingPong)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

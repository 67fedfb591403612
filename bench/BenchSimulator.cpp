// Requests to the simulator's gateway, compared with a TCP server in the same kind of event loop that answers each line
// with a line as long. The client of both is the same, too.
// SPDX-License-Identifier: MIT
#include "Loopback.h"
#include "Pair.h"
#include "SheetMaker.h"
#include "gateway/GatewayThread.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <stdexcept>
#include <string_view>
#include <vector>

#include <sys/epoll.h>
#include <sys/socket.h>

namespace
{

constexpr unsigned node = 5;
constexpr std::string_view request = "[100] 5 read 0x2000 0x1 u32\r\n";
constexpr std::string_view answer = "[100] 0x00000001\r\n";

// Answers each line, whatever it holds, in a thread and an event loop of its own.
class CBareServer
{
public:
    CBareServer()
    {
        m_context.moveToThread(&m_thread);
        m_thread.start();
        QMetaObject::invokeMethod(
            &m_context, [this] { listen(); }, Qt::BlockingQueuedConnection);
    }
    ~CBareServer()
    {
        QMetaObject::invokeMethod(
            &m_context, [this] { m_server.reset(); }, Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }
    Q_DISABLE_COPY_MOVE(CBareServer)

    quint16 port() const { return m_port; }

private:
    void listen()
    {
        m_server = std::make_unique<QTcpServer>();
        QObject::connect(m_server.get(), &QTcpServer::newConnection, m_server.get(), [this] {
            while (QTcpSocket* socket = m_server->nextPendingConnection())
                serve(socket);
        });
        m_server->listen(QHostAddress::LocalHost);
        m_port = m_server->serverPort();
    }
    static void serve(QTcpSocket* socket)
    {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            while (socket->canReadLine()) {
                socket->readLine();
                socket->write(answer.data(), answer.size());
            }
        });
    }

    QThread m_thread;
    QObject m_context; // lives in the thread: what must run there is invoked on it
    std::unique_ptr<QTcpServer> m_server;
    quint16 m_port = 0;
};

// Connections to one server.
class CClients
{
public:
    CClients(quint16 port, int count)
    {
        for (int n = 0; n < count; ++n) {
            m_clients.push_back({ connectToLoopback(port), 0, {} });
            epoll_event event = {};
            event.events = EPOLLIN;
            event.data.u32 = static_cast<uint32_t>(n);
            if (epoll_ctl(m_poll.get(), EPOLL_CTL_ADD, m_clients.back().socket.get(), &event) != 0)
                throw std::runtime_error("the clients cannot be polled");
        }
    }

    /// Each client sends so many requests, the next one when it has the answer. @return false when an answer was wrong
    bool exchange(int requests)
    {
        size_t missing = m_clients.size();
        for (tClient& client : m_clients) {
            client.requests = requests;
            if (!sendAll(client.socket.get(), request.data(), request.size()))
                return false;
        }
        while (missing > 0) {
            epoll_event events[64];
            const int count = epoll_wait(m_poll.get(), events, std::size(events), 10000);
            if (count <= 0)
                return false;
            for (int n = 0; n < count; ++n) {
                tClient& client = m_clients[events[n].data.u32];
                if (!receive(client))
                    return false;
                if (client.requests == 0)
                    --missing;
            }
        }
        return true;
    }

private:
    struct tClient {
        CDescriptor socket;
        int requests; // still without an answer
        std::string received;
    };

    // Takes what has come. After a whole answer, the next request follows.
    static bool receive(tClient& client)
    {
        char bytes[256];
        const ssize_t count = recv(client.socket.get(), bytes, sizeof bytes, 0);
        if (count <= 0)
            return false;
        client.received.append(bytes, static_cast<size_t>(count));
        if (client.received.size() < answer.size())
            return true;
        if (client.received != answer)
            return false;
        client.received.clear();
        return --client.requests == 0 || sendAll(client.socket.get(), request.data(), request.size());
    }

    const CDescriptor m_poll = CDescriptor(epoll_create1(0));
    std::vector<tClient> m_clients;
};

class CSimulatorPair : public CPair
{
public:
    CSimulatorPair(int clients, int requests)
        : m_requests(requests), m_processor(clients == 1 ? std::make_unique<COneProcessor>() : nullptr)
    {
        const CSheet sheet(10);
        const QString error = m_gateway.addNode(node, sheet.fileName()) + m_gateway.start();
        if (!error.isEmpty())
            throw std::runtime_error(error.toStdString());
        m_clients = std::make_unique<CClients>(m_gateway.port(), clients);
        m_bareClients = std::make_unique<CClients>(m_bareServer.port(), clients);
    }

    double ours() override
    {
        return secondsOf([this] { return m_clients->exchange(m_requests); });
    }
    double bare() override
    {
        return secondsOf([this] { return m_bareClients->exchange(m_requests); });
    }

private:
    const int m_requests;                             // of each client in one run
    const std::unique_ptr<COneProcessor> m_processor; // of one client; many keep both sides busy
    CGatewayThread m_gateway;
    CBareServer m_bareServer;
    std::unique_ptr<CClients> m_clients;
    std::unique_ptr<CClients> m_bareClients;
};

[[maybe_unused]] const bool added =
    addPair({ "simulator/one", 500, 5, [] { return std::make_unique<CSimulatorPair>(1, 500); } }) &&
    addPair({ "simulator/hundred", 2000, 5, [] { return std::make_unique<CSimulatorPair>(100, 20); } });

} // namespace

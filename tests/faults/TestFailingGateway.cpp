// Every system call of the gateway client fails, one after the other, in each of its commands.
// SPDX-License-Identifier: MIT
#include "FailingClient.h"
#include "GatewaySession.h"

#include <QDir>
#include <QTest>

namespace
{

using tFault = CFailingClient::tFault;

qsizetype descriptorsOfProcess()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

tGatewayAnswer answerTo(const std::string& line)
{
    const auto has = [&line](const char* text) { return line.find(text) != std::string::npos; };
    if (has(" read 0x"))
        return has(" d\r\n") ? "[#] QUJD\r\n" : "[#] 0x15\r\n";
    if (has("] receive"))
        return "[#] 0x181 2 0x11 0x22\r\n";
    if (has("] info "))
        return "[#] \"text\"\r\n";
    return line.starts_with('[') ? "[#] OK\r\n" : "";
}

// The codes that tcp_open.h states for the commands; this gateway answers no error and no abort.
bool isStated(int32_t result)
{
    return QList<int32_t>({ 0, ERR_FORMAT, ERR_RECEIVER_EMPTY, notSent }).contains(result);
}

int32_t readByte(uint8_t* value)
{
    return top_read_8bit(5, 0x1017, 0, value);
}

struct tKind {
    CFailingClient::tCall call;
    const char* name;
    QList<int> errors;
};

const QList<tKind> kinds = {
    { CFailingClient::Send, "send", { EINTR, EAGAIN, ECONNRESET, EPIPE, ENOBUFS, ENETDOWN, 0 } },
    { CFailingClient::Select, "select", { EINTR, ENOMEM } },
    { CFailingClient::Recv, "recv", { EINTR, ECONNRESET, ETIMEDOUT } },
};

} // namespace

class TestFailingGateway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { top_exit(); }
    void cleanupTestCase() { qInfo("%d calls of the gateway client were failed", failedCalls); }

    void connectingFails_data();
    void connectingFails();
    void closingFails_data();
    void closingFails();
    void everyCallOfACommandFails_data();
    void everyCallOfACommandFails();

private:
    static inline int failedCalls = 0;
};

void TestFailingGateway::connectingFails_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    for (const int error : { EACCES, EAFNOSUPPORT, EMFILE, ENFILE, ENOBUFS, ENOMEM })
        QTest::addRow("socket: %s", strerrorname_np(error)) << int(CFailingClient::Socket) << error;
    for (const int error : { EADDRNOTAVAIL, EAGAIN, ECONNREFUSED, EHOSTUNREACH, EINTR, ENETUNREACH, EPERM, ETIMEDOUT })
        QTest::addRow("connect: %s", strerrorname_np(error)) << int(CFailingClient::Connect) << error;
}

void TestFailingGateway::connectingFails()
{
    QFETCH(const int, call);
    QFETCH(const int, error);
    CFakeGateway gateway;
    gateway.answerWith(answerTo);
    const auto descriptors = descriptorsOfProcess();
    CFailingClient client;
    client.arm({ CFailingClient::tCall(call), 1, error });
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), notConnected);
    QVERIFY(client.hasFired());
    QCOMPARE(descriptorsOfProcess(), descriptors);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    ++failedCalls;

    client.heal();
    uint8_t value = 0;
    QCOMPARE(readByte(&value), notSent);
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(readByte(&value), 0);
    QCOMPARE(value, 0x15);
}

void TestFailingGateway::closingFails_data()
{
    QTest::addColumn<int>("error");
    for (const int error : { EINTR, EIO, ENOSPC })
        QTest::newRow(strerrorname_np(error)) << error;
}

void TestFailingGateway::closingFails()
{
    QFETCH(const int, error);
    const auto descriptors = descriptorsOfProcess();
    {
        CGatewaySession gateway;
        gateway.answerWith(answerTo);
        CFailingClient client;
        client.arm({ CFailingClient::Close, 1, error });
        QCOMPARE(top_exit(), 0);
        QVERIFY(client.hasFired());
        QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
        ++failedCalls;
        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
        uint8_t value = 0;
        QCOMPARE(readByte(&value), 0);
    }
    QCOMPARE(descriptorsOfProcess(), descriptors);
}

void TestFailingGateway::everyCallOfACommandFails_data()
{
    QTest::addColumn<const tCommand*>("command");
    for (const tCommand& command : commands)
        QTest::newRow(QByteArray(command.line).simplified().constData()) << &command;
}

// Each call of the exchange fails once, and all from it on. Afterwards the same connection serves the next command,
// but for one that has got only a part of a command: it takes a new connection.
void TestFailingGateway::everyCallOfACommandFails()
{
    QFETCH(const tCommand*, command);
    CGatewaySession gateway;
    QVERIFY(gateway.connected());
    gateway.answerWith(answerTo);
    const auto settledDescriptors = [&gateway] { // when those that came and left are known
        static_cast<void>(gateway.received());
        return descriptorsOfProcess();
    };
    const auto descriptors = settledDescriptors();
    CFailingClient client;
    for (const tKind& kind : kinds) {
        client.heal();
        QCOMPARE(command->run(), 0);
        const int count = client.count(kind.call);
        QVERIFY(count > 0);
        for (const int error : kind.errors)
            for (const bool forEver : { false, true })
                for (int nth = 1; nth <= count; ++nth) {
                    const auto place = [&](int32_t result) {
                        return QByteArray(kind.name) + ' ' + QByteArray::number(nth) + " fails with " +
                               QByteArray::number(error) + ", result " + QByteArray::number(result);
                    };
                    client.arm({ kind.call, nth, error, forEver });
                    int32_t result = command->run();
                    QVERIFY2(client.hasFired() && isStated(result), place(result));
                    QVERIFY2(kind.call != CFailingClient::Send || error == 0 || result == notSent, place(result));
                    ++failedCalls;

                    client.heal();
                    if (error == 0) {
                        QCOMPARE(top_exit(), 0);
                        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
                    }
                    uint8_t value = 0;
                    result = readByte(&value);
                    QVERIFY2(result == 0 && value == 0x15, place(result));
                }
    }
    QCOMPARE(settledDescriptors(), descriptors);
}

QTEST_GUILESS_MAIN(TestFailingGateway)
#include "TestFailingGateway.moc"

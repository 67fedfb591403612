// What the gateway client remembers: its sequence numbers, which never wrap, and settings, which no command carries.
// No test can send thousands of millions of commands: this one includes the source, in order to set and see its state.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_open.cpp"

#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

#include <climits>

class TestTcpState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void nothingHasHappenedAtFirst(); // has to run first
    void numbersNeverWrap_data();
    void numbersNeverWrap();
    void answersAreFoundByLargeNumbers_data();
    void answersAreFoundByLargeNumbers();
    void onlyCommandsUseUpANumber_data();
    void onlyCommandsUseUpANumber();
    void connectingUsesUpNoNumber();
    void settingsAreStoredUntilTheExit();
    void settingsOfAFailedConnectionAreNotStored();
};

void TestTcpState::cleanup()
{
    top_exit();
    top_sequence = 1;
}

void TestTcpState::nothingHasHappenedAtFirst()
{
    QCOMPARE(top_sequence, 1L);
    QCOMPARE(top_client, -1);
    QCOMPARE(top_last_answer(), int(top_answer_none));
    QVERIFY(!top_last_error(nullptr));
    QCOMPARE(top_line_timeout(66000), 66000);
}

void TestTcpState::numbersNeverWrap_data()
{
    QTest::addColumn<long>("number");
    for (const long number :
         { 9L, 99L, 255L, 999L, 9999L, 32767L, 65535L, 99999L, 0x7FFFFFFFL, 0xFFFFFFFFL, 9999999999L, LONG_MAX - 1 })
        QTest::addRow("%ld", number) << number;
}

void TestTcpState::numbersNeverWrap()
{
    QFETCH(long, number);
    CSystemCalls calls;
    QByteArray sent;
    calls.send = [&](int, const void* data, size_t length, int) {
        sent += QByteArray(static_cast<const char*>(data), qsizetype(length));
        return ssize_t(-1);
    };
    top_sequence = number;
    top_start_remote_node(5);
    top_start_remote_node(5);
    QCOMPARE(sent, "[" + QByteArray::number(qint64(number)) + "] 5 start\r\n[" +
                       QByteArray::number(qint64(number + 1)) + "] 5 start\r\n");
}

void TestTcpState::answersAreFoundByLargeNumbers_data()
{
    QTest::addColumn<long>("number");
    for (const long number : { 65535L, 0x7FFFFFFFL, 0x80000000L, 0xFFFFFFFFL })
        QTest::addRow("%ld", number) << number;
}

void TestTcpState::answersAreFoundByLargeNumbers()
{
    QFETCH(long, number);
    CGatewaySession gateway;
    gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", "[#-1] 30\r\n[#] 31\r\n");
    top_sequence = number;
    uint8_t value = 0;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(31));
    QCOMPARE(gateway.lastNumber(), number);
}

void TestTcpState::onlyCommandsUseUpANumber_data()
{
    QTest::addColumn<int>("used");
    QTest::addColumn<std::function<void()>>("call");
    const auto row = [](const char* name, int used, const std::function<void()>& call) {
        QTest::newRow(name) << used << call;
    };
    row("top_init in vain", 0, [] { top_init(0x7F000001, 1, nullptr, 0); });
    row("top_exit", 0, [] { top_exit(); });
    row("top_write without data", 0, [] { top_write(5, 0x1017, 0, 1, nullptr); });
    row("top_transmit without data", 0, [] { top_transmit(0x181, 1, nullptr); });
    row("top_transmit of a negative length without data", 0, [] { top_transmit(0x181, -1, nullptr); });
    row("top_request", 0, [] {
        short length = 1;
        BYTE data[8];
        top_request(0x181, &length, data);
    });
    row("top_queue_clear", 0, [] { top_queue_clear(); });
    row("top_status", 0, [] { top_status(nullptr, nullptr); });
    row("top_queue_status", 0, [] { top_queue_status(nullptr, nullptr); });
    row("top_last_answer", 0, [] { top_last_answer(); });
    row("top_last_error", 0, [] { top_last_error(nullptr); });
    row("top_line_timeout", 0, [] { top_line_timeout(66000); });
    row("top_version", 0, [] { top_version(); });
    row("top_write of a negative length", 1, [] { top_write(5, 0x1017, 0, -1, nullptr); });
    row("top_write of nothing", 1, [] { top_write(5, 0x1017, 0, 0, nullptr); });
    row("top_transmit of nothing", 1, [] { top_transmit(0x181, 0, nullptr); });
    row("top_read without room", 1, [] { top_read(5, 0x1017, 0, nullptr, nullptr, 0); });
    for (const tCommand& command : commands)
        row(command.line, 1, [&command] { command.run(); });
}

void TestTcpState::onlyCommandsUseUpANumber()
{
    QFETCH(int, used);
    QFETCH(std::function<void()>, call);
    for (const bool connected : { false, true }) {
        CFakeGateway gateway;
        gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
        if (connected)
            QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
        const long before = top_sequence;
        call();
        QCOMPARE(top_sequence, before + used);
        top_exit();
    }
}

void TestTcpState::connectingUsesUpNoNumber()
{
    CFakeGateway gateway;
    _top_settings settings = { 1, 2, 3 };
    top_sequence = 77;
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), &settings, 0), 0);
    QCOMPARE(top_sequence, 77L);
}

void TestTcpState::settingsAreStoredUntilTheExit()
{
    const auto stored = [] { return QList<int>{ top_settings.net, top_settings.node, top_settings.master }; };
    CFakeGateway gateway;
    _top_settings settings = { 2, 3, 4 };
    QCOMPARE(stored(), (QList<int>{ 1, 1, 255 }));
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), &settings, 0), 0);
    QCOMPARE(stored(), (QList<int>{ 2, 3, 4 }));
    const int first = top_client;
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(stored(), (QList<int>{ 2, 3, 4 }));
    QCOMPARE(top_exit(), 0);
    QCOMPARE(stored(), (QList<int>{ 1, 1, 255 }));
    __real_close(first);
}

void TestTcpState::settingsOfAFailedConnectionAreNotStored()
{
    CSystemCalls calls;
    calls.connect = [](auto...) { return -1; };
    _top_settings settings = { 2, 3, 4 };
    QCOMPARE(top_init(0x7F000001, 1, &settings, 0), top_connect_failed);
    QCOMPARE(top_settings.net, BYTE(1));
    QCOMPARE(top_settings.node, BYTE(1));
    QCOMPARE(top_settings.master, BYTE(255));
}

QTEST_GUILESS_MAIN(TestTcpState)
#include "TestTcpState.moc"

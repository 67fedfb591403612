// The sequence number after the start of a process; in a program of its own, since the number is never reset.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"

#include <QtTest>

class TestTcpFirstCommand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstCommandCarriesNumberOneAndEachLaterTheNext();
};

void TestTcpFirstCommand::firstCommandCarriesNumberOneAndEachLaterTheNext()
{
    for (const int first : { 1, 3 }) { // goes on over a new connection
        CGatewaySession gateway;
        gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
        QCOMPARE(top_start_remote_node(5), 0);
        QCOMPARE(top_stop_remote_node(5), 0);
        const QByteArray lines = "[%1] 5 start\r\n[%2] 5 stop\r\n";
        QCOMPARE(
            gateway.allReceived(),
            QByteArray(lines).replace("%1", QByteArray::number(first)).replace("%2", QByteArray::number(first + 1)));
    }
    // Failures neither lose nor repeat a number: not connected, refused arguments; the same beyond 9.
    QCOMPARE(top_start_remote_node(5), -793); // 5
    QCOMPARE(top_transmit(0x181, 1, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_queue_clear(), int32_t(ERR_NOT_SUPPORTED));
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
    QByteArray expected;
    for (int number = 6; number < 120; ++number) {
        QCOMPARE(top_start_remote_node(7), 0);
        expected += "[" + QByteArray::number(number) + "] 7 start\r\n";
    }
    QCOMPARE(gateway.allReceived(), expected);
}

QTEST_GUILESS_MAIN(TestTcpFirstCommand)
#include "TestTcpFirstCommand.moc"

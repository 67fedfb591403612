// What the facade tells about the answer to the last operation.
// SPDX-License-Identifier: MIT
#include "CANopenAccess.h"
#include "FakeBus.h"
#include "FakeGateway.h"

#include <QtTest>

class TestCANopenAccessAnswer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutALibraryThereIsNone();
    void gatewayThatHangsUpHasNotAnswered();
    void masterTellsATimeOut();
    void refusalOfANodeIsToldWithAllItsBits_data();
    void refusalOfANodeIsToldWithAllItsBits();
    void refusalOfAGatewayIsTold();
    void transferOfTheMasterEndsWhenAsked();
    void transferOfAGatewayDoesNot();
    void lineTimeoutIsThatOfTheGatewayClient();
};

void TestCANopenAccessAnswer::withoutALibraryThereIsNone()
{
    CCANopenAccess access;
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerNone);
    QCOMPARE(access.lastRefusal(), std::nullopt);
    QVERIFY(!access.setLineTimeout(1000, nullptr));
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
}

void TestCANopenAccessAnswer::gatewayThatHangsUpHasNotAnswered()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 read 0x1017 0x0 u16\r\n", "[#] 1000\r\n");
    gateway.expect("[#] 5 read 0x1017 0x0 u16\r\n", { "", tGatewayAnswer::hangUp });
    CCANopenAccess access;
    _top_param parameter = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    QVERIFY(access.initialize(libraryGateway, 0, &parameter, 0));
    std::uint16_t value = 0;
    QVERIFY(access.readUnsigned16(5, 0x1017, 0, &value));
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerWhole);
    QVERIFY(access.readUnsigned16(5, 0x1017, 0, &value));
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerClosed);
}

void TestCANopenAccessAnswer::masterTellsATimeOut()
{
    CFakeBus bus;
    CCANopenAccess access;
    _can_param parameter = { "can0", 29, 3, 1 };
    QVERIFY(access.initialize(librarySocketCAN, -1, &parameter, 3));
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerWhole);
    std::uint16_t value = 0;
    QVERIFY(!access.readUnsigned16(5, 0x1017, 0, &value)); // nobody is there
    QCOMPARE(access.getLastError(), ERR_TIMEOUT);
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerNone);
    QVERIFY(!access.setLineTimeout(1000, nullptr));
    QCOMPARE(access.getLastError(), ERR_NOT_SUPPORTED);
    QVERIFY(!access.readUnsigned16(128, 0x1017, 0, &value)); // no other failure is silence
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerWhole);
    bus.expect(0x605, "40 17 10 00 00 00 00 00").answer(0x585, "4F 17 10 00 05 00 00 00");
    QVERIFY(!access.readUnsigned16(5, 0x1017, 0, &value));
    QCOMPARE(access.getLastError(), ERR_LENGTH);
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerWhole);
}

void TestCANopenAccessAnswer::refusalOfANodeIsToldWithAllItsBits_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<std::uint32_t>("code");
    QTest::newRow("usual") << QByteArray("00 00 02 06") << 0x06020000U;
    QTest::newRow("reads as success") << QByteArray("00 00 00 00") << 0U;
    QTest::newRow("reads as a time-out") << QByteArray("CE FF FF FF") << 0xFFFFFFCEU;
}

void TestCANopenAccessAnswer::refusalOfANodeIsToldWithAllItsBits()
{
    QFETCH(QByteArray, bytes);
    QFETCH(std::uint32_t, code);
    CFakeBus bus;
    CCANopenAccess access;
    QVERIFY(access.initialize(librarySocketCAN, -1, &bus.param, 3));
    bus.expect(0x605, "2F 00 20 01 07 00 00 00").answer(0x585, "80 00 20 01 " + bytes);
    access.writeUnsigned8(5, 0x2000, 1, 7);
    QCOMPARE(access.lastRefusal(), std::optional(code));
    bus.expect(0x605, "2F 00 20 01 07 00 00 00").answer(0x585, "60 00 20 01 00 00 00 00");
    QVERIFY(access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(access.lastRefusal(), std::nullopt);
}

void TestCANopenAccessAnswer::refusalOfAGatewayIsTold()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", "[#] Error: -600\r\n");
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    CCANopenAccess access;
    _top_param parameter = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    QVERIFY(access.initialize(libraryGateway, 0, &parameter, 0));
    QVERIFY(access.startRemoteNode(5)); // as the result has it
    QCOMPARE(access.lastRefusal(), std::optional(0xFFFFFDA8U));
    QVERIFY(access.startRemoteNode(5));
    QCOMPARE(access.lastRefusal(), std::nullopt);
}

void TestCANopenAccessAnswer::transferOfTheMasterEndsWhenAsked()
{
    CCANopenAccess access;
    QVERIFY(!access.endTransfersWhen(nullptr));
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
    CFakeBus bus;
    QVERIFY(access.initialize(librarySocketCAN, -1, &bus.param, 3));
    QVERIFY(access.endTransfersWhen([] { return true; }));
    QVERIFY(!access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(access.lastAnswer(), CCANopenAccess::answerNone);
    QVERIFY(bus.milliseconds() < 500);
    QVERIFY(access.endTransfersWhen(nullptr));
}

void TestCANopenAccessAnswer::transferOfAGatewayDoesNot()
{
    CFakeGateway gateway;
    CCANopenAccess access;
    _top_param parameter = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    QVERIFY(access.initialize(libraryGateway, 0, &parameter, 0));
    QVERIFY(!access.endTransfersWhen(nullptr));
    QCOMPARE(access.getLastError(), ERR_NOT_SUPPORTED);
}

void TestCANopenAccessAnswer::lineTimeoutIsThatOfTheGatewayClient()
{
    CFakeGateway gateway;
    CCANopenAccess access;
    _top_param parameter = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    QVERIFY(access.initialize(libraryGateway, 0, &parameter, 0));
    std::int32_t previous = 0;
    QVERIFY(access.setLineTimeout(2000, &previous));
    QCOMPARE(previous, 66000);
    QCOMPARE(top_line_timeout(66000), 2000);
    QVERIFY(access.setLineTimeout(66000, nullptr));
}

QTEST_APPLESS_MAIN(TestCANopenAccessAnswer)
#include "TestCANopenAccessAnswer.moc"

// velmora-cli nmt: the exact commands, and how they are answered.
// SPDX-License-Identifier: MIT
#include "ScriptedRun.h"

#include <QTest>

class TestCliNmt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachWordIsACommand_data();
    void eachWordIsACommand();
    void commandThatIsNotAnsweredFails_data();
    void commandThatIsNotAnsweredFails();
    void interruptTellsWhetherItWasSent();
    void wrongUsageSendsNothing_data();
    void wrongUsageSendsNothing();
};

void TestCliNmt::eachWordIsACommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("command");
    const auto row = [](const char* word, const char* node, const char* command) {
        QTest::addRow("%s %s", word, node) << QStringList{ word, node } << QByteArray(command);
    };
    row("start", "5", "5 start");
    row("stop", "127", "127 stop");
    row("preop", "1", "1 preoperational");
    row("reset", "5", "5 reset node");
    row("reset-comm", "5", "5 reset communication");
    row("start", "all", "0 start");
    row("stop", "all", "0 stop");
    row("preop", "all", "0 preoperational");
    row("reset", "all", "0 reset node");
    row("reset-comm", "all", "0 reset communication");
}

void TestCliNmt::eachWordIsACommand()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, command);
    CFakeGateway gateway;
    gateway.expect("[#] " + command.toStdString() + "\r\n", "[#] OK\r\n");
    QCOMPARE(shownBy(QStringList{ "nmt", "-i", interfaceOf(gateway) } + arguments), shown(0, "", ""));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliNmt::commandThatIsNotAnsweredFails_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("hangsUp");
    QTest::addColumn<QString>("error");
    QTest::newRow("hang-up") << QByteArray() << true << "the gateway has closed the connection";
    QTest::newRow("silence") << QByteArray() << false << "the gateway does not answer";
    QTest::newRow("another number") << QByteArray("[#+1] OK\r\n") << false << "the gateway does not answer";
    QTest::newRow("error") << QByteArray("[#] ERROR: 107\r\n") << false
                           << "the gateway answers error 107 (no such node)";
    QTest::newRow("error that reads as success")
        << QByteArray("[#] ERROR: -600\r\n") << false << "the gateway answers error -600";
    QTest::newRow("value") << QByteArray("[#] 5\r\n") << false << "Format error. (error -70)";
}

void TestCliNmt::commandThatIsNotAnsweredFails()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, hangsUp);
    QFETCH(QString, error);
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n",
                   { answer.toStdString(), hangsUp ? tGatewayAnswer::hangUp : tGatewayAnswer::together });
    QCOMPARE(shownBy({ "nmt", "-i", interfaceOf(gateway), "--gateway-timeout", "200", "start", "5" }),
             shown(3, "", "velmora-cli: " + error + "\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliNmt::interruptTellsWhetherItWasSent()
{
    CFakeGateway gateway;
    gateway.expect("[#] set sdo_timeout 100\r\n", "");
    CCliRun before({ "nmt", "-i", interfaceOf(gateway), "--timeout", "100", "start", "5" });
    QVERIFY(awaitRequest(gateway));
    before.interrupt();
    QCOMPARE(shown(before), shown(130, "", "velmora-cli: interrupted: nothing was sent to a device\n"));
    QCOMPARE(difference(gateway), QByteArray());
    CFakeGateway other;
    other.expect("[#] 5 start\r\n", "");
    CCliRun after({ "nmt", "-i", interfaceOf(other), "start", "5" });
    QVERIFY(awaitRequest(other));
    after.interrupt();
    QCOMPARE(shown(after), shown(130, "", "velmora-cli: interrupted: the command was sent, but not answered\n"));
}

void TestCliNmt::wrongUsageSendsNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("node 0") << QStringList{ "start", "0" } << "node: expected a number from 1 to 127, not 0";
    QTest::newRow("node 128") << QStringList{ "start", "128" } << "node: expected a number from 1 to 127, not 128";
    QTest::newRow("hexadecimal") << QStringList{ "start", "0x5" } << "node: expected a number from 1 to 127, not 0x5";
    QTest::newRow("no number") << QStringList{ "start", "x" } << "node: expected a number from 1 to 127, not x";
    QTest::newRow("no node") << QStringList{ "start" } << "node is required";
    QTest::newRow("no such word") << QStringList{ "run", "5" }
                                  << "command: run not in {start,stop,preop,reset,reset-comm}";
}

void TestCliNmt::wrongUsageSendsNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    CFakeGateway gateway;
    QCOMPARE(shownBy(QStringList{ "nmt", "-i", interfaceOf(gateway) } + arguments),
             shown(2, "", "velmora-cli: " + message + "\nvelmora-cli: try 'velmora-cli nmt --help'\n"));
    QCOMPARE(gateway.received(), "");
}

QTEST_GUILESS_MAIN(TestCliNmt)
#include "TestCliNmt.moc"

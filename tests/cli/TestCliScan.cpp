// velmora-cli scan through gateways.
// SPDX-License-Identifier: MIT
#include "ScriptedRun.h"
#include "SimulatorProcess.h"

#include <QTest>

namespace
{

const QString none = "velmora-cli: no node answers\n";

std::string readOfNode(unsigned node)
{
    return "[#] " + std::to_string(node) + " read 0x1000 0x0 d\r\n";
}

} // namespace

class TestCliScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nodesOfTheSimulator_data();
    void nodesOfTheSimulator();
    void whatAGatewaySaysOfMissingNodes();
    void withoutANodeTheStatusIs3_data();
    void withoutANodeTheStatusIs3();
    void gatewayThatFailsIsNotAnEmptyNetwork_data();
    void gatewayThatFailsIsNotAnEmptyNetwork();
    void interruptPrintsWhatWasFound();
    void helpTellsTheStatus();
};

void TestCliScan::nodesOfTheSimulator_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("output");
    QTest::newRow("table")
        << "table"
        << QString("Node  Device type  Vendor      Product     Revision    Serial number  Name\n"
                   "5     0x000F0191   0x0000F0B5  0x00000401  0x00020005  0x01352901     Velmora Demo I/O\n"
                   "127   0x000F0191   0x0000F0B5  0x00000401  0x00020005  0x01352901     Velmora Demo I/O\n");
    QTest::newRow("csv") << "csv"
                         << QString("node,devicetype,vendor,product,revision,serial,name\n"
                                    "5,0x000F0191,0x0000F0B5,0x00000401,0x00020005,0x01352901,Velmora Demo I/O\n"
                                    "127,0x000F0191,0x0000F0B5,0x00000401,0x00020005,0x01352901,Velmora Demo I/O\n");
}

void TestCliScan::nodesOfTheSimulator()
{
    QFETCH(QString, format);
    QFETCH(QString, output);
    const CSimulatorProcess simulator({ "--node", "127=" VELMORA_SHARE "/velmora-demo.eds" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    QCOMPARE(shownBy({ "scan", "-i", simulator.interface(), "--timeout", "1", "--format", format }),
             shown(0, output, ""));
}

// Two errors, and an abort in place of them; node 7 aborts for a reason of its own, and is there.
void TestCliScan::whatAGatewaySaysOfMissingNodes()
{
    CFakeGateway gateway;
    gateway.answerWith([](const std::string& line) -> tGatewayAnswer {
        if (line.find(" 7 read ") != std::string::npos)
            return "[" + std::to_string(gatewayText::numberOf(line)) + "] ERROR: 0x08000021\r\n";
        const long number = gatewayText::numberOf(line);
        const char* const answers[] = { "ERROR: 103", "Error: 107", "ERROR: 0x05040000" };
        return "[" + std::to_string(number) + "] " + answers[number % 3] + "\r\n";
    });
    QCOMPARE(shownBy({ "scan", "-i", interfaceOf(gateway), "--format", "csv" }),
             shown(0, "node,devicetype,vendor,product,revision,serial,name\n7,,,,,,\n", ""));
}

void TestCliScan::withoutANodeTheStatusIs3_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("table") << "";
    QTest::newRow("csv") << "node,devicetype,vendor,product,revision,serial,name\n";
    QTest::newRow("json") << "[\n]\n";
}

void TestCliScan::withoutANodeTheStatusIs3()
{
    QFETCH(QString, output);
    CFakeGateway gateway;
    for (unsigned node = 1; node <= 127; ++node)
        gateway.expect(readOfNode(node), "[#] ERROR: 103\r\n");
    QCOMPARE(shownBy({ "scan", "-i", interfaceOf(gateway), "--format", QTest::currentDataTag() }),
             shown(3, output, none));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliScan::gatewayThatFailsIsNotAnEmptyNetwork_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("hangsUp");
    QTest::addColumn<QString>("error");
    QTest::newRow("silent") << QByteArray() << false << "the gateway does not answer";
    QTest::newRow("closes") << QByteArray() << true << "the gateway has closed the connection";
    QTest::newRow("another number") << QByteArray("[#-1] AQ==\r\n") << false << "the gateway does not answer";
    QTest::newRow("does not know the command") << QByteArray("[#] ERROR: 100\r\n") << false
                                               << "the gateway answers error 100 (it does not support the command)";
    QTest::newRow("nonsense") << QByteArray("[#] OK\r\n") << false << "the gateway answers something that is no value";
}

void TestCliScan::gatewayThatFailsIsNotAnEmptyNetwork()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, hangsUp);
    QFETCH(QString, error);
    CFakeGateway gateway;
    gateway.expect(readOfNode(1), "[#] ERROR: 103\r\n");
    gateway.expect(readOfNode(2),
                   { answer.toStdString(), hangsUp ? tGatewayAnswer::hangUp : tGatewayAnswer::together });
    QCOMPARE(shownBy({ "scan", "-i", interfaceOf(gateway), "--gateway-timeout", "200", "--format", "json" }),
             shown(3, "[\n]\n", "velmora-cli: node 2: " + error + "; nodes 1 to 1 were asked\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliScan::interruptPrintsWhatWasFound()
{
    CFakeGateway gateway;
    gateway.answerWith([](const std::string& line) -> tGatewayAnswer {
        const std::string number = "[" + std::to_string(gatewayText::numberOf(line)) + "] ";
        if (line.find(" 1 read 0x1000 ") != std::string::npos)
            return number + "kQEPAA==\r\n";
        if (line.find(" 1 read ") != std::string::npos)
            return number + "ERROR: 0x06020000\r\n";
        return "";
    });
    CCliRun run({ "scan", "-i", interfaceOf(gateway), "--format", "csv" });
    QVERIFY(QTest::qWaitFor([&] { return gateway.received().find(" 2 read ") != std::string::npos; }, patience));
    run.interrupt();
    QCOMPARE(shown(run), shown(130, "node,devicetype,vendor,product,revision,serial,name\n1,0x000F0191,,,,,\n",
                               "velmora-cli: interrupted: nodes 1 to 1 were asked\n"));
}

void TestCliScan::helpTellsTheStatus()
{
    CCliRun run({ "scan", "--help" });
    QCOMPARE(run.status(), 0);
    const QString help = run.output();
    QVERIFY(help.contains("The exit status is 3 when no node answers."));
    QVERIFY(help.contains("velmora-cli scan -i can0"));
}

QTEST_GUILESS_MAIN(TestCliScan)
#include "TestCliScan.moc"

// velmora-cli read: values, and everything that is none, by output and exit status.
// SPDX-License-Identifier: MIT
#include "ScriptedRun.h"
#include "SheetFile.h"
#include "SimulatorProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

QString noObject(const char* parameter)
{
    return QString("velmora-cli: %1: aborted by the device: 0x06020000 (Object does not exist in the object "
                   "dictionary.)\n")
        .arg(parameter);
}

} // namespace

class TestCliRead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreLines_data();
    void valuesAreLines();
    void jsonIsAnArrayWhateverHappens();
    void jsonHoldsEveryCharacter();
    void whatIsNoValueIsAnError_data();
    void whatIsNoValueIsAnError();
    void abortOfAnyCodeIsAnAbort_data();
    void abortOfAnyCodeIsAnAbort();
    void silenceEndsTheCommand();
    void sizeOtherThanThatOfTheSheetIsTold();
    void wrongUsageEndsWithStatus2_data();
    void wrongUsageEndsWithStatus2();
    void withoutAnInterfaceTheStatusIs3();
    void whatIsNoInterfaceIsWrongUsage_data();
    void whatIsNoInterfaceIsWrongUsage();
    void sdoTimeoutIsToldToTheGateway();
    void controlCharactersDoNotReachTheTerminal();
    void nobodyReadingIsNoError();
    void nobodyReadingLeavesTheStatus();
    void zerosBeforeANodeIdChangeNothing();
    void fullDiskEndsWithStatus2();
};

void TestCliRead::valuesAreLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("result");
    const auto row = [](const char* name, const QStringList& arguments, int status, const char* output,
                        const QString& error = {}) {
        QTest::newRow(name) << arguments << shown(status, output, error);
    };
    row("number", { "1017" }, 0, "0x03E8\n");
    row("decimal", { "--mode", "dec", "1017" }, 0, "1000\n");
    row("octal", { "--mode", "oct", "1017" }, 0, "001750\n");
    row("several", { "1018:1", "0x1018sub2", "Manufacturer device name" }, 0,
        "0x0000F0B5\n0x00000401\nVelmora Demo I/O\n");
    row("type in place of that of the sheet", { "--type", "os", "1017" }, 0, "0xE8 0x03\n");
    row("wide", { "--mode", "dec", "200F", "200E", "2007", "2010" }, 0, "81985529216486895\n-1\n1.5\n2.5\n");
    row("date", { "--mode", "dec", "200A", "200B" }, 0, "2026-02-28 12:30:15.250\n2026-11-21 06:00:00.000\n");
    row("bytes", { "2009" }, 0, "0x01 0x23 0x45 0x67 0x89 0xAB 0xCD 0xEF\n");
    row("empty", { "2017" }, 0, "\n");
    row("one abort among several", { "1018:1", "5FFF:1", "1018:2" }, 4, "0x0000F0B5\n0x00000401\n", noObject("5FFF:1"));
    row("write-only", { "2011" }, 4, "",
        "velmora-cli: 2011: aborted by the device: 0x06010001 (Attempt to read a write only object.)\n");
    row("no such node", { "-n", "6", "--timeout", "1", "1000", "1018:1" }, 3, "",
        "velmora-cli: 1000: the gateway answers error 103 (no answer of the device in time)\n");
}

void TestCliRead::valuesAreLines()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, result);
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    QStringList all{ "read", "-i", simulator.interface(), "-s", sheet };
    if (!arguments.contains("-n"))
        all += { "-n", "5" };
    QCOMPARE(shownBy(all + arguments), result);
}

void TestCliRead::jsonIsAnArrayWhateverHappens()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    const QStringList arguments{ "read", "-i", simulator.interface(), "-n", "5", "-s", sheet, "--format", "json" };
    CCliRun run(arguments + QStringList{ "100A", "5FFF", "1018:1" });
    QCOMPARE(run.status(), 4);
    const QJsonArray array = QJsonDocument::fromJson(run.output().toUtf8()).array();
    QCOMPARE(run.error(), noObject("5FFF"));
    const QJsonObject version{
        { "index", "0x100A" },        { "subindex", 0 },      { "name", "Manufacturer software version" },
        { "type", "Visible String" }, { "value", "SW 2.05" }, { "bytes", "53 57 20 32 2E 30 35" }
    };
    const QJsonObject vendor{ { "index", "0x1018" },    { "subindex", 1 },         { "name", "Vendor-ID" },
                              { "type", "Unsigned32" }, { "value", "0x0000F0B5" }, { "bytes", "B5 F0 00 00" } };
    QCOMPARE(array, (QJsonArray{ version, vendor }));
    QCOMPARE(shownBy(arguments + QStringList{ "5FFF" }), shown(4, "[\n]\n", noObject("5FFF")));
}

void TestCliRead::jsonHoldsEveryCharacter()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x1008", "0x0"), value(QByteArray("\x1B[2J\x9B\0z", 7)));
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "vs", "--format", "json", "1008" });
    QCOMPARE(run.status(), 0);
    const QString output = run.output();
    QVERIFY(output.contains("\"\\u001b[2J\\u009b\\u0000z\""));
    QCOMPARE(run.error(), "");
}

void TestCliRead::whatIsNoValueIsAnError_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("hangsUp");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QByteArray& answer, const char* error, bool hangsUp = false) {
        QTest::newRow(name) << answer << hangsUp << QString("velmora-cli: 1018:1: %1\n").arg(error);
    };
    row("hang-up", "", "the gateway has closed the connection", true);
    row("answer of another number, then hang-up", "[#-1] tfAAAA==\r\n[#+1] tfAAAA==\r\n",
        "the gateway has closed the connection", true);
    row("half an answer, then hang-up", "[#] tfAA", "the answer of the gateway is cut", true);
    row("longer than a line", "[#] " + QByteArray(1200, 'A') + "\r\n", "the answer of the gateway is cut");
    row("garbage", "[#] ?%&*~\r\n", "the gateway answers something that is no value");
    row("acknowledgement", "[#] OK\r\n", "the gateway answers something that is no value");
    row("number", "[#] 0x0000F0B5\r\n", "the gateway answers something that is no value");
    row("value and more", "[#] tfAAAA== x\r\n", "the gateway answers something that is no value");
    row("error", "[#] ERROR: 101\r\n", "the gateway answers error 101 (it does not understand the command)");
    row("error of its own", "[#] Error: 900\r\n", "the gateway answers error 900");
    row("error 0", "[#] Error: 0\r\n", "the gateway answers error 0");
    row("error in short", "[#] e:5\r\n", "the gateway answers error 5");
}

void TestCliRead::whatIsNoValueIsAnError()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, hangsUp);
    QFETCH(QString, error);
    CFakeGateway gateway;
    gateway.expect(readOf("0x1018", "0x1"),
                   { answer.toStdString(), hangsUp ? tGatewayAnswer::hangUp : tGatewayAnswer::together });
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "u32", "1018:1", "1018:2" }),
             shown(3, "", error));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::abortOfAnyCodeIsAnAbort_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("0x06070010") << "0x06070010 (Data type does not match, length of service parameter does not match)";
    for (const char* code : { "0x80000000", "0xFFFFFFFF", "0xFFFFFDA8", "0xFFFFFDA4" })
        QTest::newRow(code) << QString("%1 (Unknown SDO abort code.)").arg(code);
}

void TestCliRead::abortOfAnyCodeIsAnAbort()
{
    QFETCH(QString, text);
    CFakeGateway gateway;
    const std::string answer = std::string("[#] ERROR: ") + QTest::currentDataTag() + "\r\n";
    gateway.expect(readOf("0x1017", "0x0"), answer);
    gateway.expect("[#] 5 write 0x1017 0x0 u16 0x1\r\n", answer);
    const QString error = "velmora-cli: 1017: aborted by the device: " + text + '\n';
    const QStringList arguments{ "-i", interfaceOf(gateway), "-n", "5", "--type", "u16", "1017" };
    QCOMPARE(shownBy(QStringList{ "read" } + arguments), shown(4, "", error));
    QCOMPARE(shownBy(QStringList{ "write" } + arguments + QStringList{ "1" }),
             shown(4, "", error + "velmora-cli: 0 of 1 values were written, not 1017\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::silenceEndsTheCommand()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x1018", "0x1"), value("\1\2\3\4"));
    gateway.expect(readOf("0x1018", "0x2"), "");
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "--gateway-timeout", "200", "--type", "u32",
                       "1018:1", "1018:2", "1018:3" }),
             shown(3, "0x04030201\n", "velmora-cli: 1018:2: the gateway does not answer\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::sizeOtherThanThatOfTheSheetIsTold()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x1017", "0x0"), value(QByteArray("\xE8\3\0", 3)));
    gateway.expect(readOf("0x1018", "0x1"), value("\1\2\3\4"));
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "-s", sheet, "1017", "1018:1" }),
             shown(1, "0xE8 0x03 0x00\n0x04030201\n",
                   "velmora-cli: 1017: warning: the device has 3 bytes, which is no Unsigned16\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::wrongUsageEndsWithStatus2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("node-id 0") << QStringList{ "-n", "0", "1000" } << "--node: expected a number from 1 to 127, not 0";
    QTest::newRow("node-id 128") << QStringList{ "-n", "128", "1000" }
                                 << "--node: expected a number from 1 to 127, not 128";
    QTest::newRow("hexadecimal node-id") << QStringList{ "-n", "0x5", "1000" }
                                         << "--node: expected a number from 1 to 127, not 0x5";
    QTest::newRow("negative number of readings") << QStringList{ "-n", "5", "--repeat", "-1", "1000" }
                                                 << "--repeat: expected a number from 0 to 2147483647, not -1";
    QTest::newRow("no node-id") << QStringList{ "1000" } << "--node is required";
    QTest::newRow("no parameter") << QStringList{ "-n", "5" } << "parameters is required";
    QTest::newRow("unknown type") << QStringList{ "-n", "5", "--type", "u7", "1000" } << "--type: no data type: u7";
    QTest::newRow("unknown name") << QStringList{ "-n", "5", "Speed" }
                                  << "\"Speed\" is no parameter such as 1018:1 or 0x1018sub1; names need a data sheet "
                                     "(-s)";
    QTest::newRow("no such sheet") << QStringList{ "-n", "5", "-s", "/no/such.eds", "1000" }
                                   << "no such file: /no/such.eds";
    QTest::newRow("time without a unit") << QStringList{ "-n", "5", "--every", "100", "1000" }
                                         << "--every: expected a time such as 100ms, 2s or 1min, not 100";
    QTest::newRow("series as JSON") << QStringList{ "-n", "5", "--repeat", "2", "--format", "json", "1000" }
                                    << "--format excludes --repeat";
}

// Nothing reaches the gateway, not even a connection.
void TestCliRead::wrongUsageEndsWithStatus2()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    CFakeGateway gateway;
    CCliRun run(QStringList{ "read", "-i", interfaceOf(gateway) } + arguments);
    QCOMPARE(run.status(), 2);
    QCOMPARE(run.output(), "");
    QCOMPARE(run.error().section('\n', 0, 0), "velmora-cli: " + message);
    QCOMPARE(gateway.received(), "");
}

void TestCliRead::withoutAnInterfaceTheStatusIs3()
{
    const CRefusingPort port;
    const QString gateway = "127.0.0.1:" + QString::number(port.port());
    QCOMPARE(shownBy({ "read", "-i", gateway, "-n", "5", "1000" }),
             shown(3, "", "velmora-cli: " + gateway + ": no gateway answers there\n"));
    QCOMPARE(shownBy({ "read", "-i", "nocan0", "-n", "5", "1000" }),
             shown(3, "", "velmora-cli: nocan0: there is no such CAN interface, or it cannot be used\n"));
}

void TestCliRead::whatIsNoInterfaceIsWrongUsage_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : { "", "localhost:abc", "gateway.local:60000", "localhost:70000", "127.0.0.1" })
        QTest::newRow(text) << QString(text);
}

void TestCliRead::whatIsNoInterfaceIsWrongUsage()
{
    QFETCH(QString, text);
    QCOMPARE(
        shownBy({ "read", "-i", text, "-n", "5", "1000" }),
        shown(2, "",
              "velmora-cli: \"" + text +
                  "\" is no interface: a CAN interface is a name such as can0; a gateway is localhost:60000, or an "
                  "address and a port such as 192.168.1.10:5000\n"));
}

void TestCliRead::sdoTimeoutIsToldToTheGateway()
{
    CFakeGateway gateway;
    gateway.expect("[#] set sdo_timeout 250\r\n", "[#] OK\r\n");
    gateway.expect(readOf("0x1000", "0x0"), value("\1"));
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "--timeout", "250", "1000" }),
             shown(0, "0x01\n", ""));
    gateway.expect("[#] set sdo_timeout 250\r\n", "[#] ERROR: 100\r\n");
    gateway.expect(readOf("0x1000", "0x0"), value("\1"));
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "--timeout", "250", "1000" }),
             shown(0, "0x01\n",
                   "velmora-cli: warning: the SDO time-out is not set: the gateway answers error 100 (it does not "
                   "support the command)\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::controlCharactersDoNotReachTheTerminal()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x1008", "0x0"), value(QByteArray("a\x1B]0;x\x07\x9B"
                                                             "1m\nb\0c",
                                                             13)));
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "vs", "1008" }),
             shown(0, "a\\x1B]0;x\\x07\\x9B1m\\x0Ab\n", ""));
}

void TestCliRead::nobodyReadingIsNoError()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x1000", "0x0"), { value("\1"), tGatewayAnswer::together, std::chrono::milliseconds(300) });
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "1000" });
    QVERIFY(awaitRequest(gateway));
    run.closeOutput();
    QCOMPARE(run.status(), 0);
    QCOMPARE(run.error(), "");
}

// 4 for the device that aborts, as with a reader.
void TestCliRead::nobodyReadingLeavesTheStatus()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    const tCliRun run =
        runCliInShell("{ \"$0\" read -i \"$1\" -n 5 1017 FFFF 1000; echo $? >&2; } | true", { simulator.interface() });
    QVERIFY(run.error.endsWith("\n4\n"));
}

void TestCliRead::zerosBeforeANodeIdChangeNothing()
{
    CFakeGateway gateway;
    gateway.expect("[#] 10 read 0x1000 0x0 d\r\n", value("\1\2\3\4"));
    QCOMPARE(shownBy({ "read", "-i", interfaceOf(gateway), "-n", "010", "1000" }),
             shown(0, "0x01 0x02 0x03 0x04\n", ""));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliRead::fullDiskEndsWithStatus2()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    for (const char* parameters : { "1017", "1017 5FFF 1018:1" }) { // with a message in between, and without
        QProcess shell;
        shell.start(
            "sh",
            { "-c", QString("%1 read -i %2 -n 5 %3 > /dev/full").arg(VELMORA_CLI, simulator.interface(), parameters) });
        QVERIFY(shell.waitForFinished(patience));
        QCOMPARE(shell.exitCode(), 2);
        QVERIFY(
            shell.readAllStandardError().endsWith("velmora-cli: cannot write the output: No space left on device\n"));
    }
}

QTEST_GUILESS_MAIN(TestCliRead)
#include "TestCliRead.moc"

// The program itself: its options, messages, exit statuses and log.
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "SheetFile.h"
#include "SimulatorProcess.h"
#include "gateway/LineClient.h"

#include <QDateTime>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>

#include <csignal>

namespace
{

QString demoNode()
{
    return QStringLiteral("5=") + demoSheet();
}

// Runs to the end; the exit status, -1 when it does not end.
int run(QProcess& process, const QStringList& arguments)
{
    process.start(QStringLiteral(VELMORA_SIM), arguments);
    return process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace

class TestSimulatorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badOptionsEndWithStatus2_data();
    void badOptionsEndWithStatus2();
    void refusedSheetIsExplainedWithoutAHint_data();
    void refusedSheetIsExplainedWithoutAHint();
    void sheetWithoutFolderIsFoundWhereItIsInstalled();
    void occupiedPortEndsWithStatus1();
    void missingInterfaceEndsWithStatus1();
    void helpAndVersionEndWithStatus0();
    void servesUntilASignalComes_data();
    void servesUntilASignalComes();
    void logFollowsTheCommands();
    void withoutLogOnlyTheStartIsPrinted();
    void timeStampsBeginTheLinesOnRequest();
    void configurationFileStartsWithItsValues();
    void faultOptionMisbehaves();
    void heartbeatTimeWithoutCanIsAValueLikeOthers();
};

void TestSimulatorProgram::badOptionsEndWithStatus2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* arguments, const QString& message) {
        QStringList list = QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts);
        list.replaceInStrings(QStringLiteral("DEMO"), demoNode());
        list.replaceInStrings(QStringLiteral("SHEET"), demoSheet());
        QTest::newRow(name) << list << message;
    };
    row("none", "", QStringLiteral("--gateway [ADDRESS:]PORT or --can INTERFACE is missing"));
    row("neither gateway nor CAN", "--node DEMO",
        QStringLiteral("--gateway [ADDRESS:]PORT or --can INTERFACE is missing"));
    row("no node on CAN", "--can vcan0", QStringLiteral("--node ID=FILE is missing"));
    row("empty interface", "--can= --node DEMO", QStringLiteral("--can: the interface is missing"));
    row("fault of the gateway alone", "--can vcan0 --node DEMO --fault drop",
        QStringLiteral("fault \"drop\": not without --gateway"));
    row("fault of CAN alone", "--gateway 0 --node DEMO --fault toggle@1008",
        QStringLiteral("fault \"toggle\": not without --can"));
    row("no node", "--gateway 0", QStringLiteral("--node ID=FILE is missing"));
    row("unknown option", "--gateway 0 --node DEMO --fast", QStringLiteral("Unknown option 'fast'."));
    row("no value", "--gateway", QStringLiteral("Missing value after '--gateway'."));
    row("argument", "--gateway 0 --node DEMO now", QStringLiteral("unexpected argument: now"));
    row("port", "--gateway 65536 --node DEMO", QStringLiteral("--gateway 65536: the port is not in 0 to 65535"));
    row("no port", "--gateway x --node DEMO", QStringLiteral("--gateway x: the port is not in 0 to 65535"));
    row("address", "--gateway nowhere:0 --node DEMO", QStringLiteral("--gateway nowhere:0: no such address"));
    row("node without file", "--gateway 0 --node 5", QStringLiteral("--node 5: expected ID=FILE"));
    row("node with empty file", "--gateway 0 --node 5=", QStringLiteral("--node 5=: expected ID=FILE"));
    row("node 0", "--gateway 0 --node 0=x", QStringLiteral("--node 0=x: the node-id is not in 1 to 127"));
    row("node 128", "--gateway 0 --node 128=x", QStringLiteral("--node 128=x: the node-id is not in 1 to 127"));
    row("node twice", "--gateway 0 --node DEMO --node DEMO", QStringLiteral("node-id 5 is given twice"));
    row("missing file", "--gateway 0 --node 5=/no/such.eds", QStringLiteral("no such file: /no/such.eds"));
    row("folder", "--gateway 0 --node 5=/tmp", QStringLiteral("not a file: /tmp"));
    row("control characters", "--gateway 0 --node 5=/no/\x1B[31m.eds",
        QStringLiteral("no such file: /no/\\x1B[31m.eds"));
    row("this folder", "--gateway 0 --node 5=.", QStringLiteral("not a file: ."));
    row("fault", "--gateway 0 --node DEMO --fault noise", QStringLiteral("fault \"noise\": unknown kind"));
}

void TestSimulatorProgram::badOptionsEndWithStatus2()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QProcess process;
    QCOMPARE(run(process, arguments), 2);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(QString::fromLocal8Bit(process.readAllStandardError()),
             QStringLiteral("velmora-sim: %1\nTry 'velmora-sim --help'.\n").arg(message));
}

void TestSimulatorProgram::refusedSheetIsExplainedWithoutAHint_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    QTest::newRow("syntax") << QByteArray("[a]\n# k=1\n")
                            << QString(
                                   "not a valid data sheet: FILE, line 2: \"# k=1\" (a key is NAME=VALUE, the name of "
                                   "letters, digits and \"_\" only; a comment begins with \";\")");
    QTest::newRow("no objects") << QByteArray("[Comments]\nLines=1\n") << QString("no objects in FILE");
}

void TestSimulatorProgram::refusedSheetIsExplainedWithoutAHint()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    const CSheetFile file(text);
    QProcess process;
    QCOMPARE(run(process, { "--gateway", "0", "--node", demoNode(), "--node", "6=" + file.name() }), 2);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(QString::fromLocal8Bit(process.readAllStandardError()),
             "velmora-sim: " + message.replace("FILE", file.name()) + '\n');
}

// As `cmake --install` and the package put them: the program in bin, the sheets in share/velmora.
void TestSimulatorProgram::sheetWithoutFolderIsFoundWhereItIsInstalled()
{
    const QTemporaryDir prefix;
    QVERIFY(QDir(prefix.path()).mkpath("bin") && QDir(prefix.path()).mkpath("share/velmora"));
    const QString program = prefix.filePath("bin/velmora-sim");
    const QString sheet = prefix.filePath("share/velmora/demo.eds");
    QVERIFY(QFile::copy(VELMORA_SIM, program) && QFile::copy(demoSheet(), sheet));
    const auto firstLine = [&](const QString& name) {
        QProcess process;
        process.setWorkingDirectory(prefix.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, { "--gateway", "0", "--node", "5=" + name });
        while (!process.canReadLine() && process.waitForReadyRead(patience)) {
        }
        const QByteArray line = process.readLine();
        process.terminate();
        process.waitForFinished(patience);
        return QString::fromLocal8Bit(line);
    };
    QVERIFY2(firstLine("demo.eds").startsWith("node 5: " + sheet + " ("), qPrintable(firstLine("demo.eds")));
    QCOMPARE(firstLine("./demo.eds"), QString("velmora-sim: no such file: ./demo.eds\n"));
    QCOMPARE(firstLine("other.eds"), QString("velmora-sim: no such file: other.eds\n"));
    QVERIFY(QDir(prefix.path()).mkpath("share/velmora/folder.eds"));
    QCOMPARE(firstLine("folder.eds"), QString("velmora-sim: no such file: folder.eds\n"));
    QVERIFY(QDir(prefix.path()).mkdir("demo.eds")); // it has been named, so nothing else is taken in its place
    QCOMPARE(firstLine("demo.eds"), QString("velmora-sim: not a file: demo.eds\n"));
    QVERIFY(QDir(prefix.path()).rmdir("demo.eds"));
    QVERIFY(QFile::copy(sheet, prefix.filePath("demo.eds"))); // one in the working folder comes first
    QVERIFY(firstLine("demo.eds").startsWith("node 5: demo.eds ("));
}

void TestSimulatorProgram::occupiedPortEndsWithStatus1()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString port = QString::number(server.serverPort());
    QProcess process;
    QCOMPARE(run(process, { QStringLiteral("--gateway"), port, QStringLiteral("--node"), demoNode() }), 1);
    const QByteArray message = process.readAllStandardError();
    QCOMPARE(message, "velmora-sim: cannot serve port " + port.toLatin1() + ": The bound address is already in use\n");
}

void TestSimulatorProgram::missingInterfaceEndsWithStatus1()
{
    QProcess process;
    QCOMPARE(run(process, { "--gateway", "0", "--can", "velmora-none", "--node", demoNode() }), 1);
    QCOMPARE(process.readAllStandardError(), QByteArray("velmora-sim: cannot use velmora-none: No such device\n"));
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
}

void TestSimulatorProgram::helpAndVersionEndWithStatus0()
{
    QProcess help;
    QCOMPARE(run(help, { QStringLiteral("--help") }), 0);
    const QByteArray text = help.readAllStandardOutput();
    for (const char* word :
         { "--gateway", "--node",   "--fault", "silence", "delay",  "drop",  "garbage", "sequence", "double",
           "bytewise",  "overlong", "error",   "abort",   "--can",  "stall", "toggle",  "command",  "short",
           "foreign",   "flood",    "segment", "last",    "filler", "empty", "surplus", "endless" })
        QVERIFY2(text.contains(word), word);
    QProcess version;
    QCOMPARE(run(version, { QStringLiteral("--version") }), 0);
    QVERIFY(version.readAllStandardOutput().startsWith("velmora-sim "));
}

void TestSimulatorProgram::servesUntilASignalComes_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestSimulatorProgram::servesUntilASignalComes()
{
    QFETCH(int, signal);
    CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 read 0x1001 0x0 u8"), QByteArray("[1] 0x00"));
    QCOMPARE(simulator.end(signal), 0);
}

void TestSimulatorProgram::logFollowsTheCommands()
{
    CSimulatorProcess simulator({ "--gateway", "127.0.0.1:0" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    QVERIFY(simulator.log().startsWith("node 5: " + demoSheet().toUtf8() + " ("));
    QVERIFY(simulator.hasLogged(QString("\nvelmora-sim: gateway on 127.0.0.1 port %1\n").arg(simulator.port())));
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 write 0x2005 0x0 u16 0x1234"), QByteArray("[1] OK"));
    QCOMPARE(client.ask("[2] 5 read 0x2005 0x0 u16"), QByteArray("[2] 0x1234"));
    QVERIFY(simulator.hasLogged("\nnode 5 write 0x2005 0x00 u16 0x1234 = OK\n"));
    QVERIFY(simulator.hasLogged("\nnode 5 read 0x2005 0x00 u16 = 0x1234\n"));
}

void TestSimulatorProgram::withoutLogOnlyTheStartIsPrinted()
{
    CSimulatorProcess simulator({}, CSimulatorProcess::silent);
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 read 0x1001 0x0 u8"), QByteArray("[1] 0x00"));
    QCOMPARE(simulator.end(SIGTERM), 0);
    QCOMPARE(simulator.log().count('\n'), 2);
}

void TestSimulatorProgram::timeStampsBeginTheLinesOnRequest()
{
    const QDateTime before = QDateTime::currentDateTime();
    CSimulatorProcess simulator({ "--time-stamps" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 read 0x1001 0x0 u8"), QByteArray("[1] 0x00"));
    QVERIFY(simulator.hasLogged("node 5 read 0x1001 0x00 u8 = 0x00\n"));
    QCOMPARE(simulator.end(SIGTERM), 0);
    static const QRegularExpression stamped(R"(^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}) \S.*$)");
    const QStringList lines = QString(simulator.log()).split('\n', Qt::SkipEmptyParts);
    QVERIFY2(lines.size() >= 3, simulator.log());
    for (const QString& line : lines) {
        const auto match = stamped.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        const QDateTime time = QDateTime::fromString(match.captured(1), "yyyy-MM-dd hh:mm:ss.zzz");
        QVERIFY2(before <= time && time <= QDateTime::currentDateTime(), qPrintable(line));
    }
}

void TestSimulatorProgram::configurationFileStartsWithItsValues()
{
    const CSheetFile file(sheetOf(0x2000, 5, "rw", "Value", "DefaultValue=5\nParameterValue=$NODEID+1\n"),
                          "device.dcf");
    CSimulatorProcess simulator({ "--node", "6=" + file.name() });
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 6 read 0x2000 0x0 u8"), QByteArray("[1] 0x07"));
}

void TestSimulatorProgram::faultOptionMisbehaves()
{
    const CSimulatorProcess simulator({ "--fault", "abort=0x08000021@2005", "--fault", "error=105@2004" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 read 0x2005 0x0 u16"), QByteArray("[1] ERROR: 0x08000021"));
    QCOMPARE(client.ask("[2] 5 read 0x2004 0x0 u8"), QByteArray("[2] ERROR: 105"));
}

void TestSimulatorProgram::heartbeatTimeWithoutCanIsAValueLikeOthers()
{
    CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    CLineClient client(simulator.port());
    QCOMPARE(client.ask("[1] 5 write 0x1017 0x0 u16 1"), QByteArray("[1] OK"));
    QCOMPARE(client.ask("[2] 6 read 0x1017 0x0 u16"), QByteArray("[2] ERROR: 103")); // no such node: half a second
    QCOMPARE(client.ask("[3] 5 read 0x1017 0x0 u16"), QByteArray("[3] 0x0001"));
    QCOMPARE(simulator.end(SIGTERM), 0);
}

QTEST_GUILESS_MAIN(TestSimulatorProgram)
#include "TestSimulatorProgram.moc"

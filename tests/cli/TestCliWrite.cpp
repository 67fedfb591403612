// velmora-cli write: what is sent to the byte, what is refused before anything is sent, and the exit statuses.
// SPDX-License-Identifier: MIT
#include "ScriptedRun.h"
#include "SimulatorProcess.h"

#include <QTest>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

} // namespace

class TestCliWrite : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreSentAndShown_data();
    void valuesAreSentAndShown();
    void writtenValuesAreReadAgain_data();
    void writtenValuesAreReadAgain();
    void whatIsRefusedSendsNothing_data();
    void whatIsRefusedSendsNothing();
    void longestValueFitsIntoALine();
    void abortEndsItAndTellsTheRest();
    void silenceTellsThatItMayBeWritten();
    void hangUpTellsThatItMayBeWritten();
    void readOnlyEntryIsLeftToTheDevice();
    void jsonHasWhatWasWritten();
    void nobodyReadingStopsNoWrite();
};

void TestCliWrite::valuesAreSentAndShown_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("output");
    const auto row = [](const QStringList& arguments, const QByteArray& command, const QString& output) {
        QTest::newRow(arguments.join(' ').toUtf8().constData()) << arguments << "[#] 5 write " + command + "\r\n"
                                                                << output;
    };
    row({ "--type", "u16", "1017", "1000" }, "0x1017 0x0 u16 0x3E8", "0x03E8\n");
    row({ "--type", "i16", "2002", "-5" }, "0x2002 0x0 u16 0xFFFB", "0xFFFB\n");
    row({ "--type", "i16", "--mode", "dec", "2002", "-5" }, "0x2002 0x0 u16 0xFFFB", "-5\n");
    row({ "--type", "bool", "2000:1", "1" }, "0x2000 0x1 u8 0x1", "0x01\n");
    row({ "--type", "i8", "2001", "-128" }, "0x2001 0x0 u8 0x80", "0x80\n");
    row({ "--type", "u32", "2006", "0xFFFFFFFF" }, "0x2006 0x0 u32 0xFFFFFFFF", "0xFFFFFFFF\n");
    row({ "--type", "u24", "2006", "1" }, "0x2006 0x0 d AQAA", "0x000001\n");
    row({ "--type", "i64", "2006", "-2" }, "0x2006 0x0 d /v////////8=", "0xFFFFFFFFFFFFFFFE\n");
    row({ "--type", "r32", "2007", "1.5" }, "0x2007 0x0 d AADAPw==", "1.5\n");
    row({ "--type", "r32", "2007", "-1.5" }, "0x2007 0x0 d AADAvw==", "-1.5\n");
    row({ "--type", "vs", "2008", "Hall 3" }, "0x2008 0x0 d SGFsbCAz", "Hall 3\n");
    row({ "--type", "vs", "2008", "" }, "0x2008 0x0 d ", "\n");
    row({ "--type", "vs", "--", "2008", "-abc" }, "0x2008 0x0 d LWFiYw==", "-abc\n");
    row({ "--type", "d", "2009", "01 2A FF" }, "0x2009 0x0 d ASr/", "0x01 0x2A 0xFF\n");
    row({ "-s", sheet, "Offset", "-5" }, "0x2002 0x0 u16 0xFFFB", "0xFFFB\n");
    row({ "-s", sheet, "Channel 1/Label", "Boiler" }, "0x2101 0x4 d Qm9pbGVy", "Boiler\n");
}

void TestCliWrite::valuesAreSentAndShown()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, command);
    QFETCH(QString, output);
    CFakeGateway gateway;
    gateway.expect(command.toStdString(), "[#] OK\r\n");
    QCOMPARE(shownBy(QStringList{ "write", "-i", interfaceOf(gateway), "-n", "5" } + arguments), shown(0, output, ""));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliWrite::writtenValuesAreReadAgain_data()
{
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* parameter, const char* text) { QTest::newRow(parameter) << parameter << text; };
    row("2000", "1");
    row("2001", "-7");
    row("2002", "-5");
    row("2003", "+100");
    row("2007", "2.25");
    row("2008", "Hall 4, left");
    row("200A", "2026-03-01 12:30:59.750");
    row("200B", "2026-07-21 06:00:59.000");
    row("200D", "0x01 0x02 0x03");
    row("200E", "-1000000000000");
    row("2102:1", "-8388608");
    row("2102:2", "-2");
    row("2102:4", "+36028797018963967");
    row("2017", "");
}

void TestCliWrite::writtenValuesAreReadAgain()
{
    QFETCH(QString, parameter);
    QFETCH(QString, text);
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    const QStringList options{ "-i", simulator.interface(), "-n", "5", "-s", sheet, "--mode", "dec", parameter };
    QCOMPARE(shownBy(QStringList{ "write" } + options + QStringList{ text }), shown(0, text + "\n", ""));
    QCOMPARE(shownBy(QStringList{ "read" } + options), shown(0, text + "\n", ""));
}

void TestCliWrite::whatIsRefusedSendsNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const QStringList& arguments, const char* message) {
        QTest::newRow(name) << arguments << QString("velmora-cli: %1\n").arg(message);
    };
    row("out of range", { "--type", "u8", "2000", "256" }, "2000: \"256\" is no value of Unsigned8; nothing was sent");
    row("the second out of range", { "-s", sheet, "1017", "5", "2001", "128" },
        "2001: \"128\" is no value of Integer8; nothing was sent");
    row("negative", { "--type", "u16", "2000", "-1" }, "2000: \"-1\" is no value of Unsigned16; nothing was sent");
    row("boolean", { "--type", "bool", "2000", "2" }, "2000: \"2\" is no value of Boolean; nothing was sent");
    row("character", { "--type", "vs", "2008", "\u20AC" },
        "2008: \"\u20AC\" is no value of Visible String; nothing was sent");
    row("no digit", { "--type", "u16", "1017", "0x" }, "1017: \"0x\" is no value of Unsigned16; nothing was sent");
    row("half a byte", { "--type", "d", "2009", "012" }, "2009: \"012\" is no value of Domain; nothing was sent");
    row("unknown type", { "2000", "1" }, "2000: its type is not known; --type or a data sheet (-s) tells it");
    row("not in the sheet", { "-s", sheet, "5FFF", "1" }, "5FFF: it is not in the sheet; --type tells its type");
    row("value missing", { "--type", "u8", "2000", "1", "2001" }, "the value of 2001 is missing");
    row("longer than a line", { "--type", "vs", "2007", "x", "2008", QString(730, 'x') },
        "2008: more than 729 bytes cannot be sent; nothing was sent");
}

void TestCliWrite::whatIsRefusedSendsNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    CFakeGateway gateway;
    QCOMPARE(shownBy(QStringList{ "write", "-i", interfaceOf(gateway), "-n", "5" } + arguments), shown(2, "", message));
    QCOMPARE(gateway.received(), "");
}

void TestCliWrite::longestValueFitsIntoALine()
{
    CFakeGateway gateway;
    const QByteArray text(729, 'x');
    gateway.expect("[#] 127 write 0xFFFF 0xFF d " + text.toBase64().toStdString() + "\r\n", "[#] OK\r\n");
    QCOMPARE(shownBy({ "write", "-i", interfaceOf(gateway), "-n", "127", "--type", "vs", "FFFF:FF", text }),
             shown(0, text + "\n", ""));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliWrite::abortEndsItAndTellsTheRest()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 write 0x2001 0x0 u8 0x2\r\n", "[#] ERROR: 0x06090030\r\n");
    QCOMPARE(shownBy({ "write", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "2000", "1", "2001", "2", "2002",
                       "3" }),
             shown(4, "0x01\n",
                   "velmora-cli: 2001: aborted by the device: 0x06090030 (Value range of parameter exceeded (only for "
                   "write access).)\nvelmora-cli: 1 of 3 values were written, not 2001, 2002\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliWrite::silenceTellsThatItMayBeWritten()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "");
    QCOMPARE(shownBy({ "write", "-i", interfaceOf(gateway), "-n", "5", "--gateway-timeout", "200", "--type", "u8",
                       "2000", "1" }),
             shown(3, "",
                   "velmora-cli: 2000: the gateway does not answer\nvelmora-cli: 0 of 1 values were written, not 2000; "
                   "the first of these "
                   "may have been\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliWrite::hangUpTellsThatItMayBeWritten()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 write 0x2001 0x0 u8 0x1\r\n", { "[#-1] OK\r\n", tGatewayAnswer::hangUp });
    QCOMPARE(shownBy({ "write", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "2000", "1", "2001", "1" }),
             shown(3, "0x01\n",
                   "velmora-cli: 2001: the gateway has closed the connection\nvelmora-cli: 1 of 2 values were written, "
                   "not 2001; the first of these "
                   "may have been\n"));
}

void TestCliWrite::readOnlyEntryIsLeftToTheDevice()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    QCOMPARE(shownBy({ "write", "-i", simulator.interface(), "-n", "5", "-s", sheet, "1000", "5" }),
             shown(4, "",
                   "velmora-cli: 1000: aborted by the device: 0x06010002 (Attempt to write a read only object.)\n"
                   "velmora-cli: 0 of 1 values were written, not 1000\n"));
}

void TestCliWrite::jsonHasWhatWasWritten()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "[#] ERROR: 0x08000000\r\n");
    CCliRun run({ "write", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "--format", "json", "2000", "1" });
    QCOMPARE(run.status(), 4);
    QCOMPARE(run.output(), "[\n]\n");
}

// More output than a pipe and the program's own buffer hold back: all values arrive all the same.
void TestCliWrite::nobodyReadingStopsNoWrite()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    QStringList arguments{ simulator.interface() };
    for (int n = 0; n < 200; ++n)
        arguments += { "2008", QString("a text of some length %1").arg(n) };
    const tCliRun run =
        runCliInShell("{ i=$1; shift; \"$0\" write -i $i -n 5 --type vs \"$@\"; echo $? >&2; } | true", arguments);
    QCOMPARE(run.error, QByteArray("0\n"));
    QCOMPARE(shownBy({ "read", "-i", simulator.interface(), "-n", "5", "--type", "vs", "2008" }),
             shown(0, "a text of some length 199\n", ""));
}

QTEST_GUILESS_MAIN(TestCliWrite)
#include "TestCliWrite.moc"

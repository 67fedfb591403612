// Faults on the command line: which front-end knows which kind, and what the help says about them.
// SPDX-License-Identifier: MIT
#include "Options.h"
#include "can/CanFaults.h"
#include "gateway/GatewayFaults.h"

#include <QTest>

class TestSimulatorFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindsNeedAFrontEndThatKnowsThem_data();
    void kindsNeedAFrontEndThatKnowsThem();
    void faultKnownToBothFrontEndsActsOnBoth();
    void helpGroupsTheKindsByFrontEnd();
};

void TestSimulatorFaults::kindsNeedAFrontEndThatKnowsThem_data()
{
    QTest::addColumn<bool>("onGateway");
    QTest::addColumn<bool>("onCan");
    for (const char* text : { "silence", "delay", "double", "abort=1" })
        QTest::newRow(text) << true << true;
    for (const char* text : { "drop", "garbage", "sequence", "bytewise", "overlong", "error=1" })
        QTest::newRow(text) << true << false;
    for (const char* text : { "stall", "toggle", "command", "short", "foreign", "flood", "segment", "last", "filler",
                              "empty", "surplus", "endless" })
        QTest::newRow(text) << false << true;
}

void TestSimulatorFaults::kindsNeedAFrontEndThatKnowsThem()
{
    QFETCH(bool, onGateway);
    QFETCH(bool, onCan);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    const QStringList arguments{ "velmora-sim", "--node", "5=sheet.eds", "--fault", text };
    const QString missing = QStringLiteral("fault \"%1\": not without --%2").arg(text.section(u'=', 0, 0));
    const QStringList gateway{ "--gateway", "0" };
    const QStringList can{ "--can", "vcan0" };
    QCOMPARE(readOptions(arguments + gateway).error, onGateway ? QString() : missing.arg("can"));
    QCOMPARE(readOptions(arguments + can).error, onCan ? QString() : missing.arg("gateway"));
    const tOptions options = readOptions(arguments + gateway + can);
    QCOMPARE(options.error, QString());
    QCOMPARE(options.faults.size(), 1);
    QCOMPARE(contains(gatewayFaultKinds(), options.faults.first().kind), onGateway);
    QCOMPARE(contains(canFaultKinds(), options.faults.first().kind), onCan);
}

void TestSimulatorFaults::faultKnownToBothFrontEndsActsOnBoth()
{
    const tOptions options = readOptions({ "velmora-sim", "--gateway", "0", "--can", "vcan0", "--node", "5=sheet.eds",
                                           "--fault", "abort=0x06060000", "--fault", "delay=20" });
    QCOMPARE(options.error, QString());
    QCOMPARE(options.faults.size(), 2);
    QCOMPARE(faultAnswer(&options.faults[0]), QByteArray("ERROR: 0x06060000"));
    QCOMPARE(sdoDefects(&options.faults[0]).abortCode, 0x06060000U);
    QCOMPARE(lineDelay(&options.faults[1]), 20);
    QCOMPARE(frameDelay(&options.faults[1]), 20);
}

void TestSimulatorFaults::helpGroupsTheKindsByFrontEnd()
{
    const QString help = readOptions({ "velmora-sim", "--help" }).output;
    QCOMPARE(help.mid(help.indexOf("\nFaults")), QStringLiteral(R"(
Faults (KIND or KIND=NUMBER)
 on the gateway and on CAN:
  silence   no answer
  delay     the answer comes NUMBER milliseconds late (1500)
  double    two lines at once, the first with another number; on CAN each answer twice
  abort     SDO abort code NUMBER
 on the gateway:
  drop      the connection is closed
  garbage   bytes that are no answer, after the right number
  sequence  the answer with the number of the command before
  bytewise  the answer, one byte at a time
  overlong  the answer in a line of more than 2000 characters
  error     gateway error NUMBER
 on CAN:
  stall     no answer from answer NUMBER of a transfer on (2); 1 answers the initiate
  toggle    the wrong toggle bit in the answer to segment NUMBER (1)
  command   an unknown command specifier in answer NUMBER (1)
  short     only 7 bytes in answer NUMBER (1)
  foreign   before the answer to the initiate the same for another index
  flood     NUMBER frames with other COB-IDs before each answer (1000)
  segment   abort 0x08000000 in place of the answer to segment NUMBER (1)
  last      abort 0x08000000 in place of the last confirmation; after the last segment of an upload
  filler    the unused bytes of answers are NUMBER (0xFF)
  empty     NUMBER segments without data before an upload (3)
  surplus   an upload has NUMBER bytes more than it announces (1000)
  endless   an upload does not end; abort 0x08000000 after NUMBER segments (10000)
)"));
}

QTEST_GUILESS_MAIN(TestSimulatorFaults)
#include "TestSimulatorFaults.moc"

// The simulated devices by their node-ids: what can be added, and that each device is one of its own.
// SPDX-License-Identifier: MIT
#include "SheetFile.h"
#include "device/SimulatedNetwork.h"

#include <QTest>

namespace
{

const char sheet[] = R"([ManufacturerObjects]
1=0x2000
2=0x2001
[2000]
ParameterName=Number
ObjectType=0x7
DataType=0x0005
AccessType=rw
DefaultValue=5
[2001]
ParameterName=COB-ID
ObjectType=0x7
DataType=0x0005
AccessType=ro
DefaultValue=$NODEID+0x80
)";

// A device configuration: values of entries besides their defaults.
const char configuredSheet[] = R"([OptionalObjects]
1=0x1011
[ManufacturerObjects]
1=0x2000
2=0x2001
3=0x2002
4=0x2003
[1011]
ParameterName=Restore
ObjectType=0x8
[1011sub1]
DataType=0x0007
AccessType=rw
[2000]
ObjectType=0x7
DataType=0x0005
AccessType=rw
DefaultValue=5
ParameterValue=9
[2001]
ObjectType=0x7
DataType=0x0005
AccessType=ro
DefaultValue=1
ParameterValue=$NodeId + 0x10
[2002]
ObjectType=0x7
DataType=0x0005
AccessType=ro
DefaultValue=3
ParameterValue=
[2003]
ObjectType=0x7
DataType=0x0005
AccessType=ro
DefaultValue=4
ParameterValue=four
)";

} // namespace

class TestSimulatedNetwork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void devicesAreFoundByTheirNodeId();
    void devicesOfOneSheetKeepTheirOwnValues();
    void configuredDeviceStartsWithItsValues();
    void electronicDataSheetStartsWithDefaults();
    void configurationIsRestoredAsAStoredOne();
    void commandToAllReachesEachDevice();
    void sheetsThatCannotBeServedAreRefused_data();
    void sheetsThatCannotBeServedAreRefused();
    void firstAndLastNodeIdAreTaken();

private:
    const CSheetFile m_sheet{ sheet };
};

void TestSimulatedNetwork::devicesAreFoundByTheirNodeId()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, m_sheet.name()), QString());
    QVERIFY(network.node(5) != nullptr);
    QVERIFY(network.node(6) == nullptr);
    QCOMPARE(network.add(2, m_sheet.name()), QString());
    QCOMPARE(network.nodeIds(), (QList<unsigned>{ 2, 5 }));
}

void TestSimulatedNetwork::devicesOfOneSheetKeepTheirOwnValues()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, m_sheet.name()), QString());
    QCOMPARE(network.add(7, m_sheet.name()), QString());
    QCOMPARE(network.node(5)->write(0x2000, 0, "\x01"), abortNone);
    QCOMPARE(network.node(7)->read(0x2000, 0).data, QByteArray("\x05"));
    QCOMPARE(network.node(7)->read(0x2001, 0).data, QByteArray("\x87"));
}

void TestSimulatedNetwork::configuredDeviceStartsWithItsValues()
{
    const CSheetFile file(configuredSheet, QStringLiteral("device.dcf"));
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, file.name()), QString());
    QCOMPARE(network.add(7, file.name()), QString());
    QCOMPARE(network.node(5)->read(0x2000, 0).data, QByteArray("\x09"));
    QCOMPARE(network.node(5)->read(0x2001, 0).data, QByteArray("\x15"));
    QCOMPARE(network.node(7)->read(0x2001, 0).data, QByteArray("\x17"));
    QCOMPARE(network.node(5)->read(0x2002, 0).data, QByteArray("\x03"));  // has no value
    QCOMPARE(network.node(5)->read(0x2003, 0).data, QByteArray(1, '\0')); // has one that is no number
}

void TestSimulatedNetwork::electronicDataSheetStartsWithDefaults()
{
    const CSheetFile file(configuredSheet);
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, file.name()), QString());
    QCOMPARE(network.node(5)->read(0x2000, 0).data, QByteArray("\x05"));
    QCOMPARE(network.node(5)->read(0x2003, 0).data, QByteArray("\x04"));
}

void TestSimulatedNetwork::configurationIsRestoredAsAStoredOne()
{
    const CSheetFile file(configuredSheet, QStringLiteral("device.dcf"));
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, file.name()), QString());
    CSimulatedNode& node = *network.node(5);
    QCOMPARE(node.write(0x2000, 0, "\x01"), abortNone);
    node.command(nmtResetNode);
    QCOMPARE(node.read(0x2000, 0).data, QByteArray("\x09"));
    QCOMPARE(node.write(0x1011, 1, "load"), abortNone);
    node.command(nmtResetNode);
    QCOMPARE(node.read(0x2000, 0).data, QByteArray("\x05"));
}

void TestSimulatedNetwork::commandToAllReachesEachDevice()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, m_sheet.name()), QString());
    QCOMPARE(network.add(7, m_sheet.name()), QString());
    network.command(0, nmtStart);
    QCOMPARE(network.node(5)->state(), stateOperational);
    QCOMPARE(network.node(7)->state(), stateOperational);
    network.command(7, nmtStop);
    QCOMPARE(network.node(5)->state(), stateOperational);
    QCOMPARE(network.node(7)->state(), stateStopped);
    network.command(6, nmtStop); // no such device: nothing happens
    QCOMPARE(network.node(5)->state(), stateOperational);
}

void TestSimulatedNetwork::sheetsThatCannotBeServedAreRefused_data()
{
    QTest::addColumn<unsigned>("nodeId");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    QTest::newRow("node 0") << 0U << QByteArray(sheet) << QString("node-id 0 is not in 1 to 127");
    QTest::newRow("node 128") << 128U << QByteArray(sheet) << QString("node-id 128 is not in 1 to 127");
    QTest::newRow("node taken") << 5U << QByteArray(sheet) << QString("node-id 5 is given twice");
    QTest::newRow("syntax error") << 6U << QByteArray("[a]\nk\n")
                                  << QString("not a valid data sheet: %1, line 2: \"k\" (a key is NAME=VALUE, the name "
                                             "of letters, digits and \"_\" only; a comment begins with \";\")");
    QTest::newRow("empty") << 6U << QByteArray() << QString("no objects in %1");
}

void TestSimulatedNetwork::sheetsThatCannotBeServedAreRefused()
{
    QFETCH(unsigned, nodeId);
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, m_sheet.name()), QString());
    const CSheetFile file(text);
    QCOMPARE(network.add(nodeId, file.name()), message.replace("%1", file.name()));
}

void TestSimulatedNetwork::firstAndLastNodeIdAreTaken()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(1, m_sheet.name()), QString());
    QCOMPARE(network.add(127, m_sheet.name()), QString());
}

QTEST_GUILESS_MAIN(TestSimulatedNetwork)
#include "TestSimulatedNetwork.moc"

// Interfaces of this machine that cannot be opened. Frames are tested where there is a CAN interface (tests/vcan).
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "can/CanDevice.h"

#include <QTest>

class TestCanDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingInterfaceIsNoSuchDevice_data();
    void missingInterfaceIsNoSuchDevice();
    void interfaceOfAnotherKindIsRefused();
    void devicesGoOnWithoutAnInterface();
};

void TestCanDevice::missingInterfaceIsNoSuchDevice_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << "velmora-none";
    QTest::newRow("empty") << "";
    QTest::newRow("more characters than a name has") << "velmora-none-of-this-length";
    QTest::newRow("not ASCII") << QString::fromUtf8("vcan\u00B2");
}

void TestCanDevice::missingInterfaceIsNoSuchDevice()
{
    QFETCH(QString, name);
    CSimulatedNetwork network;
    CCanDevice device(network);
    QCOMPARE(device.open(name), QStringLiteral("No such device"));
}

// The text depends on whether the kernel supports CAN.
void TestCanDevice::interfaceOfAnotherKindIsRefused()
{
    CSimulatedNetwork network;
    CCanDevice device(network);
    QVERIFY(!device.open(QStringLiteral("lo")).isEmpty());
}

void TestCanDevice::devicesGoOnWithoutAnInterface()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, demoSheet()), QString());
    QByteArrayList log;
    CCanDevice device(network);
    device.setLog([&log](const QByteArray& line) { log += line; });
    QVERIFY(!device.open(QStringLiteral("velmora-none")).isEmpty());
    network.command(0, nmtResetNode);
    QCOMPARE(network.node(5)->state(), statePreOperational);
    QCOMPARE(log, QByteArrayList());
}

QTEST_GUILESS_MAIN(TestCanDevice)
#include "TestCanDevice.moc"

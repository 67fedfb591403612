// The baud-rate index that the CANopen master keeps. Includes the module itself instead of linking it.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

#include "cop/cop_api.cpp"

class TestCopApiState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void indexIs7AtFirst() // has to run first
    {
        CFakeBus bus;
        QCOMPARE(int(cop_baudrate), 7);
        QCOMPARE(cop_init(-1, &bus.param, 1), -91);
        bus.param.ifname = "can1";
        QCOMPARE(cop_init(-1, &bus.param, 2), -10000);
        QCOMPARE(cop_reset(2), -95);
        QCOMPARE(int(cop_baudrate), 7);
    }

    void successKeepsTheIndex()
    {
        CFakeBus bus;
        QCOMPARE(cop_init(-1, &bus.param, 4), 0);
        QCOMPARE(int(cop_baudrate), 4);
        QCOMPARE(cop_reset(6), 0);
        QCOMPARE(int(cop_baudrate), 6);
        QCOMPARE(cop_reset(1), -91);
        QCOMPARE(cop_exit(), 0);
        QCOMPARE(int(cop_baudrate), 6);
    }

    void requestWaitsByEachIndex_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("milliseconds");
        const int times[] = { 20, 20, 20, 20, 20, 20, 50, 100, 200 };
        for (int index = 0; index <= 8; ++index)
            QTest::addRow("%d", index) << index << times[index];
    }
    void requestWaitsByEachIndex()
    {
        QFETCH(int, index);
        QFETCH(int, milliseconds);
        CStartedBus bus;
        bus.step = 1;
        cop_baudrate = BYTE(index);
        short length = 1;
        BYTE data[8] = {};
        const qint64 before = bus.milliseconds();
        QCOMPARE(cop_request(0x705, &length, data), -50);
        QCOMPARE(bus.milliseconds() - before, milliseconds);
    }

    void bufferHoldsOneFrame() { QCOMPARE(int(sizeof cop_buffer), 8); }
};

QTEST_GUILESS_MAIN(TestCopApiState)
#include "TestCopApiState.moc"

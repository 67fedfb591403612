// The message objects of the CAN controller: configuring them and sending with them.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

#include <cerrno>

static const BYTE bytes[9] = { 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99 };

class TestCanCtrlObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationChecks_data();
    void configurationChecks();
    void configurationTakesWhatWaitsBeforeTheObjectGetsItsIdentifier();
    void refusedConfigurationLeavesTheObjectAndTheSocketAlone();
    void configurationForgetsWhatTheObjectHasReceived();
    void deletedObjectIsFree();
    void deletingNeedsNoOpenController();
    void transmitWritesOneFrame_data();
    void transmitWritesOneFrame();
    void transmitUsesTheWholeIdentifier_data();
    void transmitUsesTheWholeIdentifier();
    void nullSendsTheObjectsOwnBytes();
    void transmitStoresNoData();
    void transmitAndUpdateCheckInThisOrder();
    void updateChangesNothing();
    void incompleteWriteIsBusyUntilOneSucceeds_data();
    void incompleteWriteIsBusyUntilOneSucceeds();
    void pendingSendsStayAtTheirHighestNumber();
    void theLastTransmitObjectIsBusyAsWell();
    void busyIsZeroWithoutATransmitObject();
    void failedWriteLeavesAPendingSendThatIsNoData();
};

void TestCanCtrlObjects::configurationChecks_data()
{
    QTest::addColumn<int>("object");
    QTest::addColumn<uint>("id");
    QTest::addColumn<uint>("control");
    QTest::addColumn<int>("result");
    struct {
        int object;
        uint id;
        uint control;
        int result;
    } const rows[] = {
        { 0, 0, 0x0001, 0 },
        { 13, 2047, 0x0802, 0 },
        { 14, 2047, 0x0803, 0 },
        { 14, 0, 0x0004, 0 },
        { 7, 5, 0x0104, 0 },
        { 0, 5, 0x0803, 0 },
        { -1, 5, 0x0803, -93 },
        { 15, 5, 0x0803, -93 },
        { -32768, 5, 0x0803, -93 },
        { 32767, 5, 0x0803, -93 },
        { 0, 2048, 0x0803, -93 },
        { 0, 0xFFFFFFFF, 0x0803, -93 },
        { 0, 5, 0x0800, -93 },
        { 0, 0x80000005, 0x0801, -93 },
        { 0, 5, 0x0805, -93 },
        { 0, 5, 0x08FF, -93 },
        { 0, 5, 0x0903, -93 },
        { 0, 5, 0x0901, -93 },
        { 0, 5, 0x1003, -93 },
        { 0, 5, 0x1801, -93 },
        { 0, 5, 0xFF03, -93 },
        { 14, 5, 0x0001, -93 },
        { 14, 5, 0x0802, -93 },
        { 0, 5, 0x0006, -93 },
        { 0, 0x40000005, 0x0801, -93 },
    };
    for (const auto& row : rows)
        QTest::addRow("%d, %X, %04X", row.object, row.id, row.control)
            << row.object << row.id << row.control << row.result;
}

void TestCanCtrlObjects::configurationChecks()
{
    QFETCH(int, object);
    QFETCH(uint, id);
    QFETCH(uint, control);
    QFETCH(int, result);
    CFakeBus bus;
    QCOMPARE(can_config(short(object), id, WORD(control)), -95);
    QCOMPARE(can_init(-1, &bus.param), 0); // also while stopped
    QCOMPARE(can_config(short(object), id, WORD(control)), result);
    QCOMPARE(bus.written(), QStringList());
}

void TestCanCtrlObjects::configurationTakesWhatWaitsBeforeTheObjectGetsItsIdentifier()
{
    CStartedBus bus;
    QCOMPARE(can_config(2, 0x111, 0x0803), 0);
    bus.inject(0x111, "01");
    bus.inject(0x222, "02");
    QCOMPARE(can_config(2, 0x222, 0x0803), 0);
    QCOMPARE(bus.waiting(), 0);
    QCOMPARE(received(2), "-30");
    QCOMPARE(queued(), "222 0: 02");
    QCOMPARE(queued(), "-30"); // 111 went to the object with its old identifier
}

void TestCanCtrlObjects::refusedConfigurationLeavesTheObjectAndTheSocketAlone()
{
    CStartedBus bus;
    QCOMPARE(can_config(2, 0x111, 0x0803), 0);
    bus.inject(0x111, "01 02");
    QCOMPARE(can_config(2, 0x222, 0x0903), -93);
    QCOMPARE(can_config(2, 0x222, 0x0800), -93);
    QCOMPARE(bus.waiting(), 1);
    QCOMPARE(received(2), "0: 01 02");
}

void TestCanCtrlObjects::configurationForgetsWhatTheObjectHasReceived()
{
    CStartedBus bus;
    QCOMPARE(can_config(2, 0x111, 0x0803), 0);
    bus.inject(0x111, "01 02 03 04 05 06 07 08");
    QCOMPARE(can_data(2), 1);
    QCOMPARE(can_config(2, 0x111, 0x0803), 0);
    QCOMPARE(received(2), "-30");
    bus.inject(0x111, "01 02 03 04 05 06 07 08");
    QCOMPARE(can_data(2), 1);
    QCOMPARE(can_config(2, 0x222, 0x0801), 0);
    QCOMPARE(can_busy(2), 0);
    QCOMPARE(can_transmit(2, 8, nullptr), 0);
    QCOMPARE(bus.written(), QStringList{ "222: 00 00 00 00 00 00 00 00" });
}

void TestCanCtrlObjects::deletedObjectIsFree()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x111, 0x0801), 0);
    QCOMPARE(can_config(14, 0x111, 0x0803), 0);
    QCOMPARE(can_delete(0), 0);
    QCOMPARE(can_transmit(0, 1, bytes), -93);
    QCOMPARE(can_delete(0), 0);
    QCOMPARE(can_delete(14), 0);
    for (const int object : { -32768, -1, 15, 16, 32767 })
        QCOMPARE(can_delete(short(object)), -93);
}

void TestCanCtrlObjects::deletingNeedsNoOpenController()
{
    CFakeBus bus;
    for (int initialised = 0; initialised < 2; ++initialised) {
        for (short object = 0; object < 15; ++object)
            QCOMPARE(can_delete(object), 0);
        for (const int object : { -32768, -1, 15, 16, 32767 })
            QCOMPARE(can_delete(short(object)), -93);
        QCOMPARE(can_init(-1, &bus.param), initialised == 0 ? 0 : -96);
    }
}

void TestCanCtrlObjects::transmitWritesOneFrame_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("frame");
    for (int length = 0; length <= 8; ++length)
        QTest::addRow("%d", length) << length << "555:" + QString(" 11 22 33 44 55 66 77 88").left(3 * length);
}

void TestCanCtrlObjects::transmitWritesOneFrame()
{
    QFETCH(int, length);
    QFETCH(QString, frame);
    for (const int mode : { 1, 2 }) {
        CStartedBus bus;
        QCOMPARE(can_config(13, 0x555, WORD(0x0300 + mode)), 0); // the configured length does not matter
        QCOMPARE(can_transmit(13, 8, bytes), 0);                 // no byte of longer data is sent again
        QCOMPARE(can_transmit(13, short(length), bytes), 0);
        QCOMPARE(bus.written().last(), frame);
        QCOMPARE(bus.written().size(), 2);
        QCOMPARE(can_busy(13), 0);
        QCOMPARE(can_state.b.transmitter_busy, 0);
    }
}

void TestCanCtrlObjects::transmitUsesTheWholeIdentifier_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<QString>("frame");
    QTest::newRow("0") << 0u << "000: 11";
    QTest::newRow("1") << 1u << "001: 11";
    QTest::newRow("7FF") << 0x7FFu << "7FF: 11";
}

void TestCanCtrlObjects::transmitUsesTheWholeIdentifier()
{
    QFETCH(uint, id);
    QFETCH(QString, frame);
    CStartedBus bus;
    QCOMPARE(can_config(0, id, 0x0001), 0);
    QCOMPARE(can_transmit(0, 1, bytes), 0);
    QCOMPARE(bus.written(), QStringList{ frame });
}

void TestCanCtrlObjects::nullSendsTheObjectsOwnBytes()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_transmit(0, 3, nullptr), 0);
    QCOMPARE(can_transmit(0, 0, nullptr), 0);
    QCOMPARE(bus.written(), (QStringList{ "123: 00 00 00", "123:" }));
}

void TestCanCtrlObjects::transmitStoresNoData()
{
    CStartedBus bus;
    for (const WORD control : { WORD(0x0001), WORD(0x0802) }) {
        QCOMPARE(can_config(0, 0x123, control), 0);
        const BYTE data[8] = { 1, 2, 3, 4, 5, 6, 7, 8 };
        QCOMPARE(can_transmit(0, 8, data), 0);
        QCOMPARE(can_transmit(0, 8, nullptr), 0);
        QCOMPARE(bus.written().last(), QString("123: 00 00 00 00 00 00 00 00"));
    }
}

void TestCanCtrlObjects::transmitAndUpdateCheckInThisOrder()
{
    CFakeBus bus;
    QCOMPARE(can_transmit(99, 99, nullptr), -95);
    QCOMPARE(can_update(99, 99, nullptr), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_transmit(99, 99, nullptr), -9);
    QCOMPARE(can_update(99, 99, nullptr), -9);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_config(1, 0x124, 0x0002), 0);
    QCOMPARE(can_config(2, 0x125, 0x0803), 0);
    QCOMPARE(can_config(3, 0x126, 0x0804), 0);
    QCOMPARE(can_config(14, 0x127, 0x0803), 0);
    struct {
        int object;
        int length;
        int update;
    } const rows[] = { { -1, 1, -93 },    { 14, 1, -93 }, { 15, 1, -93 }, { 32767, 1, -93 }, { 0, -1, -93 },
                       { 0, 9, -93 },     { 2, 1, -93 },  { 3, 1, -93 },  { 4, 1, -93 },     { 0, -32768, -93 },
                       { 0, 32767, -93 }, { 0, 0, -98 },  { 0, 8, -98 },  { 1, 8, -98 } };
    for (const auto& row : rows) {
        QCOMPARE(can_update(short(row.object), short(row.length), bytes), row.update);
        if (row.update == -93)
            QCOMPARE(can_transmit(short(row.object), short(row.length), bytes), -93);
    }
    QCOMPARE(can_update(0, 1, nullptr), -98);
    QCOMPARE(bus.written(), QStringList());
    QCOMPARE(bus.count(CFakeBus::Write), 0);
}

void TestCanCtrlObjects::updateChangesNothing()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_update(0, 8, bytes), -98);
    QCOMPARE(can_busy(0), 0);
    QCOMPARE(can_transmit(0, 4, nullptr), 0);
    QCOMPARE(bus.written(), QStringList{ "123: 00 00 00 00" });
}

void TestCanCtrlObjects::incompleteWriteIsBusyUntilOneSucceeds_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("written");
    struct {
        const char* name;
        int error;
        int written;
    } const rows[] = { { "interface down", ENETDOWN, -1 }, { "no buffer space", ENOBUFS, -1 },
                       { "interface removed", ENXIO, -1 }, { "would block", EAGAIN, -1 },
                       { "interrupted", EINTR, -1 },       { "nothing written", 0, 0 },
                       { "half written", 0, 8 },           { "all but one byte", 0, 15 } };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.error << row.written;
}

void TestCanCtrlObjects::incompleteWriteIsBusyUntilOneSucceeds()
{
    QFETCH(int, error);
    QFETCH(int, written);
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    for (short pending = 1; pending <= 3; ++pending) {
        if (written < 0)
            bus.fail(CFakeBus::Write, error);
        else
            bus.shortWrite(written);
        QCOMPARE(can_transmit(0, 2, bytes), -20);
        QCOMPARE(can_state.byte, 0x08);
        QCOMPARE(can_busy(0), pending);
    }
    QCOMPARE(can_transmit(0, 2, bytes), 0);
    QCOMPARE(can_state.byte, 0x00);
    QCOMPARE(can_busy(0), 0);
    QCOMPARE(bus.written(), QStringList{ "123: 11 22" });
    QCOMPARE(bus.count(CFakeBus::Write), 4); // one write per call
}

void TestCanCtrlObjects::pendingSendsStayAtTheirHighestNumber()
{
    constexpr int tries = 32769;
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    bus.fail(CFakeBus::Write, ENOBUFS, 1, tries);
    for (int n = 0; n < tries; ++n)
        can_transmit(0, 2, bytes);
    QCOMPARE(can_busy(0), 32767);
}

void TestCanCtrlObjects::theLastTransmitObjectIsBusyAsWell()
{
    CStartedBus bus;
    QCOMPARE(can_config(13, 0x123, 0x0001), 0);
    bus.fail(CFakeBus::Write, ENOBUFS);
    QCOMPARE(can_transmit(13, 2, bytes), -20);
    QCOMPARE(can_busy(13), 1);
}

void TestCanCtrlObjects::busyIsZeroWithoutATransmitObject()
{
    CStartedBus bus;
    bus.fail(CFakeBus::Write, ENOBUFS, 1, 2);
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_config(1, 0x124, 0x0002), 0);
    QCOMPARE(can_config(2, 0x125, 0x0803), 0);
    QCOMPARE(can_transmit(0, 2, bytes), -20);
    QCOMPARE(can_transmit(1, 2, bytes), -20);
    bus.inject(0x125, "01");
    QCOMPARE(can_data(2), 1);
    for (const int object : { 1, 2, 3, 14, 15, -1, 32767, -32768 })
        QCOMPARE(can_busy(short(object)), 0);
    QCOMPARE(can_busy(0), 1);
    can_reset();
    QCOMPARE(can_busy(0), 0);
    can_start(0);
    QCOMPARE(can_busy(0), 1);
    can_delete(0);
    QCOMPARE(can_busy(0), 0);
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_busy(0), 0);
    can_exit();
    QCOMPARE(can_busy(0), 0);
}

void TestCanCtrlObjects::failedWriteLeavesAPendingSendThatIsNoData()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    bus.fail(CFakeBus::Write, ENOBUFS);
    QCOMPARE(can_transmit(0, 1, bytes), -20);
    QCOMPARE(can_data(0), 0);
}

QTEST_GUILESS_MAIN(TestCanCtrlObjects)
#include "TestCanCtrlObjects.moc"

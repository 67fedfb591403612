// The facade's operations over the SocketCAN master on a fake bus: what they send, and their results.
// SPDX-License-Identifier: MIT
#include "EveryWidth.h"
#include "MasterExchanges.h"

#include <QByteArray>
#include <QtTest>

#include <cerrno>
#include <cstring>
#include <functional>

class TestCANopenAccessMaster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void operationSendsItsFrame_data() { addExchanges(); }
    void operationSendsItsFrame();
    void operationThatCannotBeSentFails_data() { addExchanges(); }
    void operationThatCannotBeSentFails();
    void abortOfATransferIsErrorFour_data() { addExchanges(true); }
    void abortOfATransferIsErrorFour();
    void timeoutKeepsTheLastAbortAndSuccessClearsIt();
    void oddAbortCodesAreResultsAsTheyAre();
    void valuesArriveInEveryWidth();
    void nullPointersAreFatal();
    void otherNumbersOfBytesAreRefused();
    void sdoTimeoutIsSetAndThePreviousOneTold();
    void sdoTimeoutOfZeroEndsAtOnce();
    void queueWritesThirtyTwoBitsOnSuccessOnly();
    void queueIsCleared();
    void messageIsRequested();
    void nodesOfTheNetworkCommandsAreChecked();
};

void TestCANopenAccessMaster::operationSendsItsFrame()
{
    const tFrames& frames = fetchedFrames();
    const tOperation& operation = operationNamed(frames.name);
    tBoundMaster on;
    on.abortOnce();
    CFakeBusRequest& request = on.bus.expect(frames.id, frames.request);
    if (frames.answer != nullptr)
        request.answer(0x585, frames.answer);
    QVERIFY(operation.run(on.access));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(on.access.getLastAbort(), operation.ending == transfer ? 0L : readOnly);
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::operationThatCannotBeSentFails()
{
    const tFrames& frames = fetchedFrames();
    const tOperation& operation = operationNamed(frames.name);
    tBoundMaster on;
    on.abortOnce();
    on.bus.fail(CFakeBus::Write, ENETDOWN);
    QVERIFY(!operation.run(on.access));
    QCOMPARE(on.access.getLastError(), -20);
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QVERIFY(!on.access.isSDOAborted());
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::abortOfATransferIsErrorFour()
{
    const tFrames& frames = fetchedFrames();
    tBoundMaster on;
    on.bus.expect(frames.id, frames.request).answer(0x585, "80 00 20 01 11 00 09 06");
    QVERIFY(!operationNamed(frames.name).run(on.access));
    QCOMPARE(on.access.getLastError(), 4);
    QCOMPARE(on.access.getLastAbort(), 0x06090011L);
    QVERIFY(on.access.isSDOAborted());
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Transfer aborted."));
    QCOMPARE(QByteArray(on.access.getAbortText(0)), QByteArray("Sub-index does not exist."));
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::timeoutKeepsTheLastAbortAndSuccessClearsIt()
{
    tBoundMaster on;
    on.abortOnce();
    QCOMPARE(on.access.getLastError(), 4);
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QCOMPARE(QByteArray(on.access.getAbortText(0)), QByteArray("Attempt to write a read only object."));
    on.bus.expect(0x605, "40 00 20 01 00 00 00 00");
    on.bus.expect(0x605, "80 00 20 01 00 00 04 05");
    QVERIFY(!readDomain(on.access));
    QCOMPARE(on.access.getLastError(), -50);
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Time-out error."));
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QVERIFY(!on.access.isSDOAborted());
    on.bus.expect(0x605, "40 00 20 01 00 00 00 00").answer(0x585, "43 00 20 01 01 02 03 04");
    QVERIFY(readDomain(on.access));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(on.access.getLastAbort(), 0L);
    QVERIFY(on.bus.finished());
}

// An abort code of 0 reads as success, one with the highest bit set as an error code.
void TestCANopenAccessMaster::oddAbortCodesAreResultsAsTheyAre()
{
    tBoundMaster on;
    on.abortOnce();
    on.bus.expect(0x605, "2F 00 20 01 07 00 00 00").answer(0x585, "80 00 20 01 00 00 00 80");
    QVERIFY(!on.access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(on.access.getLastError(), int(INT32_MIN));
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QVERIFY(!on.access.isSDOAborted());
    on.bus.expect(0x605, "2F 00 20 01 07 00 00 00").answer(0x585, "80 00 20 01 00 00 00 00");
    QVERIFY(on.access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(on.access.getLastAbort(), 0L);
    for (const auto& [bytes, code] : { std::pair("01 00 00 00", 1L), std::pair("FF FF FF 7F", 0x7FFFFFFFL) }) {
        on.bus.expect(0x605, "2F 00 20 01 07 00 00 00").answer(0x585, (QByteArray("80 00 20 01 ") + bytes).constData());
        QVERIFY(!on.access.writeUnsigned8(5, 0x2000, 1, 7));
        QCOMPARE(on.access.getLastError(), 4);
        QCOMPARE(on.access.getLastAbort(), code);
    }
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::valuesArriveInEveryWidth()
{
    tBoundMaster on;
    for (int turn = 0; turn < 2; ++turn)
        for (const char* answer : { "4F 00 20 01 FE 00 00 00", "4B 00 20 01 DC FE 00 00", "43 00 20 01 98 BA DC FE" })
            on.bus.expect(0x605, "40 00 20 01 00 00 00 00").answer(0x585, answer);
    checkEveryWidth(on.access);
    QVERIFY(on.bus.finished());
}

// Nothing is sent, and the last abort stays.
void TestCANopenAccessMaster::nullPointersAreFatal()
{
    using tOperationOf = std::function<bool(CCANopenAccess&)>;
    short length = 77;
    BYTE data[8] = {};
    const tOperationOf refused[] = {
        [](auto& access) { return access.write(5, 0x2000, 1, 3, nullptr); },
        [](auto& access) { return access.write(5, 0x2000, 1, 0, nullptr); },
        [&](auto& access) { return access.read(5, 0x2000, 1, nullptr, data, 8); },
        [&](auto& access) { return access.read(5, 0x2000, 1, &length, nullptr, 8); },
        [](auto& access) { return access.read(5, 0x2000, 1, nullptr, nullptr, 0); },
        [](auto& access) { return access.readUnsigned8(5, 0x2000, 1, nullptr); },
        [](auto& access) { return access.readUnsigned16(5, 0x2000, 1, nullptr); },
        [](auto& access) { return access.readUnsigned32(5, 0x2000, 1, nullptr); },
        [](auto& access) { return access.readInteger8(5, 0x2000, 1, nullptr); },
        [](auto& access) { return access.readInteger16(5, 0x2000, 1, nullptr); },
        [](auto& access) { return access.readInteger32(5, 0x2000, 1, nullptr); },
    };
    for (const tOperationOf& run : refused) {
        tBoundMaster on;
        on.abortOnce();
        const QByteArray place = QByteArray::number(int(&run - refused));
        QVERIFY2(!run(on.access), place.constData());
        QVERIFY2(on.access.getLastError() == -99, place.constData());
        QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Fatal error!"));
        QCOMPARE(on.access.getLastAbort(), readOnly);
        QVERIFY(!on.access.isSDOAborted());
        QVERIFY2(on.bus.finished(), place.constData());
    }
}

void TestCANopenAccessMaster::otherNumbersOfBytesAreRefused()
{
    tBoundMaster on;
    on.abortOnce();
    uint16_t value = 0xA5A5;
    int16_t integer = 0x5A5A;
    for (const char* answer : { "4F 00 20 01 01 02 03 04", "43 00 20 01 01 02 03 04" }) {
        on.bus.expect(0x605, "40 00 20 01 00 00 00 00").answer(0x585, answer);
        QVERIFY(!on.access.readUnsigned16(5, 0x2000, 1, &value));
        QCOMPARE(on.access.getLastError(), -60);
        on.bus.expect(0x605, "40 00 20 01 00 00 00 00").answer(0x585, answer);
        QVERIFY(!on.access.readInteger16(5, 0x2000, 1, &integer));
        QCOMPARE(on.access.getLastError(), -60);
    }
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QCOMPARE(value, uint16_t(0xA5A5));
    QCOMPARE(integer, int16_t(0x5A5A));
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::sdoTimeoutIsSetAndThePreviousOneTold()
{
    tBoundMaster on;
    on.abortOnce(); // sets an error, which stays
    WORD previous = 1;
    QVERIFY(on.access.setSDOTimeout(70, &previous));
    QCOMPARE(previous, WORD(500));
    QCOMPARE(on.access.getLastError(), 4);
    const qint64 start = on.bus.milliseconds();
    on.bus.expect(0x605, "40 00 20 01 00 00 00 00");
    on.bus.expect(0x605, "80 00 20 01 00 00 04 05");
    QVERIFY(!readDomain(on.access));
    QCOMPARE(on.bus.milliseconds() - start, 70);
    QVERIFY(on.access.setSDOTimeout(300, nullptr));
    QCOMPARE(on.access.getLastError(), -50);
    for (const auto& [next, last] : { std::pair(0, 300), std::pair(65535, 0), std::pair(500, 65535) }) {
        QVERIFY(on.access.setSDOTimeout(WORD(next), &previous));
        QCOMPARE(int(previous), last);
    }
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::sdoTimeoutOfZeroEndsAtOnce()
{
    tBoundMaster on;
    QVERIFY(on.access.setSDOTimeout(0, nullptr));
    const qint64 start = on.bus.milliseconds();
    on.bus.expect(0x605, "40 00 20 01 00 00 00 00");
    on.bus.expect(0x605, "80 00 20 01 00 00 04 05");
    QVERIFY(!readDomain(on.access));
    QCOMPARE(on.access.getLastError(), -50);
    QCOMPARE(on.bus.milliseconds() - start, 0);
    QVERIFY(on.access.setSDOTimeout(500, nullptr));
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::queueWritesThirtyTwoBitsOnSuccessOnly()
{
    tBoundMaster on;
    alignas(4) BYTE memory[16];
    std::memset(memory, 0xA5, sizeof memory);
    WORD* id = reinterpret_cast<WORD*>(static_cast<void*>(memory + 2)); // aligned for 16 bits
    short length = 77;
    BYTE data[8] = {};
    QVERIFY(!on.access.readQueue(id, &length, data));
    QCOMPARE(on.access.getLastError(), -30);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(memory), 16), QByteArray(16, char(0xA5)));
    on.bus.inject(0x723, "11 22");
    QVERIFY(on.access.readQueue(id, &length, data));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(memory), 8).toHex(' '), QByteArray("a5 a5 23 07 00 00 a5 a5"));
    QCOMPARE(length, short(2));
    QCOMPARE(data[1], BYTE(0x22));
    on.bus.inject(0x723, "11 22");
    QVERIFY(!on.access.readQueue(nullptr, &length, data));
    QCOMPARE(on.access.getLastError(), -94);
    QVERIFY(!on.access.readQueue(id, nullptr, data));
    QCOMPARE(on.access.getLastError(), -94);
    QVERIFY(!on.access.readQueue(id, &length, nullptr));
    QCOMPARE(on.access.getLastError(), -94);
    QVERIFY(on.access.readQueue(id, &length, data)); // the message is still in the queue
}

void TestCANopenAccessMaster::queueIsCleared()
{
    tBoundMaster on;
    QVERIFY(!on.access.clearQueue());
    QCOMPARE(on.access.getLastError(), -30);
    on.bus.inject(0x723, "11 22");
    can_read_queue(0);
    QVERIFY(on.access.clearQueue());
    QCOMPARE(on.access.getLastError(), 0);
    QVERIFY(!on.access.clearQueue());
}

void TestCANopenAccessMaster::messageIsRequested()
{
    tBoundMaster on;
    short length = 2;
    BYTE data[8] = {};
    on.bus.injectAfter(5, 0x705, "11 22 33");
    QVERIFY(on.access.requestMessage(0x705, &length, data));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(length, short(3));
    QCOMPARE(data[2], BYTE(0x33));
    QVERIFY(!on.access.requestMessage(0x705, &length, data));
    QCOMPARE(on.access.getLastError(), -50);
    QVERIFY(!on.access.requestMessage(0x705, nullptr, data));
    QCOMPARE(on.access.getLastError(), -94);
    QVERIFY(!on.access.requestMessage(0x800, &length, data));
    QCOMPARE(on.access.getLastError(), -93);
    QVERIFY(!on.access.transmitMessage(0xFFFF, 0, data));
    QCOMPARE(on.access.getLastError(), -93);
    QVERIFY(!on.access.transmitMessage(0x181, 9, data));
    QCOMPARE(on.access.getLastError(), -93);
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessMaster::nodesOfTheNetworkCommandsAreChecked()
{
    tBoundMaster on;
    bool (CCANopenAccess::*const commands[])(BYTE) = {
        &CCANopenAccess::startRemoteNode, &CCANopenAccess::stopRemoteNode, &CCANopenAccess::enterPreOperationalState,
        &CCANopenAccess::resetNode, &CCANopenAccess::resetCommunication
    };
    for (const auto command : commands) {
        QVERIFY(!(on.access.*command)(128));
        QCOMPARE(on.access.getLastError(), -90);
    }
    QCOMPARE(on.bus.written(), QStringList());
    on.bus.expect(0x000, "81 00");
    QVERIFY(on.access.resetNode(0));
    on.bus.expect(0x000, "01 7F");
    QVERIFY(on.access.startRemoteNode(127));
    QVERIFY(on.bus.finished());
}

QTEST_GUILESS_MAIN(TestCANopenAccessMaster)
#include "TestCANopenAccessMaster.moc"

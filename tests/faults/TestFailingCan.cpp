// Every system call of the CAN controller fails, one after the other, in a session with all functions of the master.
// SPDX-License-Identifier: MIT
#include "NodeOnBus.h"

#include "cop/cop_api.h"
#include "cop/cop_nms.h"
#include "cop/cop_sdo.h"

#include <QTest>

#include <cerrno>
#include <functional>

namespace
{

constexpr int endless = 1'000'000;
constexpr short segmented = 20; // bytes of a value in segments

// A step: its result, and whether its outcome is what a result of 0 promises.
struct tStep {
    const char* name;
    std::function<int32_t(CNodeOnBus& bus, bool& kept)> run;
    QList<int32_t> failures; // the codes that its header states for a system that fails
};

QByteArray sampleOf(short size)
{
    QByteArray sample;
    for (short at = 1; at <= size; ++at)
        sample += char(at);
    return sample;
}

const BYTE* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const BYTE*>(bytes.constData());
}

int32_t init(CNodeOnBus& bus, bool& kept)
{
    const int32_t result = cop_init(-1, &bus.param, 0);
    kept = bus.descriptors() == (result == 0 ? 1 : 0);
    return result;
}

int32_t readSegments(CNodeOnBus& bus, bool& kept)
{
    BYTE data[segmented + 4] = {};
    short length = -1;
    const QByteArray value = bus.values[0x200801] = sampleOf(segmented);
    const int32_t result = sdo_read(5, 0x2008, 1, &length, data, sizeof data);
    kept = result == 0 ? QByteArray(reinterpret_cast<char*>(data), length) == value : length == 0;
    return result;
}

int32_t writeSegments(CNodeOnBus& bus, bool& kept)
{
    const QByteArray old = bus.values[0x200802] = "before";
    const int32_t result = sdo_write(5, 0x2008, 2, segmented, bytesOf(sampleOf(segmented)));
    const QByteArray value = bus.values[0x200802];
    kept = value == sampleOf(segmented) || (result != 0 && value == old);
    return result;
}

int32_t readNumber(CNodeOnBus& bus, bool& kept)
{
    uint32_t value = 0;
    bus.values[0x101801] = QByteArray::fromHex("78563412");
    const int32_t result = sdo_read_32bit(5, 0x1018, 1, &value);
    kept = value == (result == 0 ? 0x12345678U : 0);
    return result;
}

int32_t writeNumber(CNodeOnBus& bus, bool& kept)
{
    bus.values[0x101700] = "before";
    const int32_t result = sdo_write_16bit(5, 0x1017, 0, 1000);
    kept = result != 0 || bus.values[0x101700] == QByteArray::fromHex("E803");
    return result;
}

int32_t transmit(CNodeOnBus& bus, bool& kept)
{
    const auto before = bus.written().size();
    const int32_t result = cop_transmit(0x181, 2, bytesOf("\x11\x22"));
    kept = bus.written().mid(before) == (result == 0 ? QStringList("181: 11 22") : QStringList());
    return result;
}

int32_t readQueue(CNodeOnBus& bus, bool& kept)
{
    uint32_t id = 0;
    short length = 0;
    BYTE data[8] = {};
    bus.inject(0x123, "01 02 03");
    int32_t result = 0;
    do
        result = cop_queue_read(&id, &length, data);
    while (result == 0 && id != 0x123); // before it what came too late for a transfer or a request
    kept = result != 0 || (id == 0x123 && length == 3 && data[2] == 3);
    cop_queue_clear();
    return result;
}

int32_t request(CNodeOnBus& bus, bool& kept)
{
    short length = 1;
    BYTE data[8] = {};
    bus.injectAfter(8, 0x705, "7F");
    const int32_t result = cop_request(0x705, &length, data);
    kept = result != 0 || (length == 1 && data[0] == 0x7F);
    bus.advance(10);
    return result;
}

// ERR_NOT_INITIALIZED, as after an opening that failed, is stated for all.
const QList<tStep> session = {
    { "cop_init", init, { -10000 } },
    { "nmt_start", [](CNodeOnBus&, bool&) { return nmt_start_remote_node(5); }, { ERR_TRANSMITTER_BUSY } },
    { "sdo_write_16bit", writeNumber, { ERR_TRANSMITTER_BUSY, ERR_TIMEOUT } },
    { "sdo_write", writeSegments, { ERR_TRANSMITTER_BUSY, ERR_TIMEOUT } },
    { "sdo_read", readSegments, { ERR_TRANSMITTER_BUSY, ERR_TIMEOUT } },
    { "sdo_read_32bit", readNumber, { ERR_TRANSMITTER_BUSY, ERR_TIMEOUT } },
    { "cop_transmit", transmit, { ERR_TRANSMITTER_BUSY } },
    { "cop_queue_read", readQueue, { ERR_RECEIVER_EMPTY } },
    { "cop_request", request, { ERR_TIMEOUT } },
    { "cop_reset", [](CNodeOnBus&, bool&) { return cop_reset(0); }, {} },
    { "sdo_write_16bit again", writeNumber, { ERR_TRANSMITTER_BUSY, ERR_TIMEOUT } },
    { "cop_exit", [](CNodeOnBus&, bool&) { return cop_exit(); }, {} },
};

// Runs the session. @return what was not as stated; `failed`: how many steps failed
QString runSession(CNodeOnBus& bus, int& failed)
{
    QStringList problems;
    bool open = false;
    for (const tStep& step : session) {
        bool kept = true;
        const int32_t result = step.run(bus, kept);
        open = open || (&step == &session.front() && result == 0);
        const bool stated = result == 0 || step.failures.contains(result) || (!open && result == ERR_NOT_INITIALIZED);
        if (!stated || !kept)
            problems += QString("%1 gives %2%3").arg(step.name).arg(result).arg(kept ? "" : " and another value");
        failed += result != 0 ? 1 : 0;
    }
    if (bus.descriptors() != 0)
        problems += QString("%1 sockets are open").arg(bus.descriptors());
    return problems.join(", ");
}

// How often a session without faults makes the call; 0 when it does not succeed.
int countOf(CFakeBus::ECall call)
{
    CNodeOnBus bus;
    int failed = 0;
    return runSession(bus, failed).isEmpty() && failed == 0 ? bus.count(call) : 0;
}

struct tCall {
    CFakeBus::ECall call;
    const char* name;
    bool isFelt; // some step has to fail with it
    QList<int> errors;
};

const QList<tCall> calls = {
    { CFakeBus::Socket, "socket", true, { EACCES, EAFNOSUPPORT, EMFILE, ENFILE, ENOBUFS, ENOMEM, EPERM } },
    { CFakeBus::Fcntl, "fcntl", true, { EINVAL, EPERM } },
    { CFakeBus::Ioctl, "ioctl", true, { ENODEV, EPERM, ENOTTY } },
    { CFakeBus::Bind, "bind", true, { EADDRINUSE, ENODEV, ENETDOWN, EINVAL } },
    { CFakeBus::Write, "write", true, { EINTR, EAGAIN, ENOBUFS, ENETDOWN, ENXIO, EIO } },
    { CFakeBus::Read, "read", false, { EINTR, EAGAIN, ENETDOWN, ENODEV, EIO } },
    { CFakeBus::Select, "select", false, { EINTR, EBADF, ENOMEM } },
    { CFakeBus::Close, "close", false, { EINTR, EIO } },
    { CFakeBus::Gettimeofday, "gettimeofday", true, { EFAULT } },
    { CFakeBus::Usleep, "usleep", false, { EINTR } },
};

} // namespace

class TestFailingCan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallFails_data();
    void everyCallFails();
    void cleanupTestCase() { qInfo("%d calls of the CAN controller were failed", failedCalls); }

private:
    static inline int failedCalls = 0;
};

void TestFailingCan::everyCallFails_data()
{
    QTest::addColumn<tCall>("call");
    QTest::addColumn<int>("error"); // 0: a short one
    QTest::addColumn<int>("times");
    for (const tCall& call : calls) {
        for (const int error : call.errors) {
            QTest::addRow("%s: %s", call.name, strerrorname_np(error)) << call << error << 1;
            if (call.call != CFakeBus::Gettimeofday) // a clock that never comes back ends no wait
                QTest::addRow("%s: %s from then on", call.name, strerrorname_np(error)) << call << error << endless;
        }
        if (call.call == CFakeBus::Write || call.call == CFakeBus::Read)
            QTest::addRow("%s: short", call.name) << call << 0 << 1;
    }
}

// The session is run as often as it has such calls. After each run nothing is open, and a session without faults works.
void TestFailingCan::everyCallFails()
{
    QFETCH(const tCall, call);
    QFETCH(const int, error);
    QFETCH(const int, times);
    const int descriptors = CFakeBus::descriptorsOfProcess();
    int failed = 0;
    const int count = countOf(call.call);
    QVERIFY(count > 0);

    for (int nth = 1; nth <= count; ++nth) {
        CNodeOnBus bus;
        if (error != 0)
            bus.fail(call.call, error, nth, times);
        else
            bus.shorten(call.call, 15, nth);
        QString problem = runSession(bus, failed);
        QVERIFY2(problem.isEmpty(), qPrintable(QString("call %1: %2").arg(nth).arg(problem)));
        ++failedCalls;

        bus.heal();
        int failedNow = 0;
        problem = runSession(bus, failedNow);
        QVERIFY2(problem.isEmpty() && failedNow == 0, qPrintable(QString("after call %1: %2").arg(nth).arg(problem)));
        QCOMPARE(CFakeBus::descriptorsOfProcess(), descriptors);
    }
    QVERIFY2(!call.isFelt || failed > 0, "no step has noticed a fault");
}

QTEST_GUILESS_MAIN(TestFailingCan)
#include "TestFailingCan.moc"

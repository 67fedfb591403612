// The scan on a fake CAN bus: what goes out when, and what becomes of the answers.
// SPDX-License-Identifier: MIT
#include "network/Scan.h"

#include "EndOf.h"
#include "FakeBus.h"

#include <QTest>

#include <cerrno>

using std::chrono::milliseconds;

namespace
{

constexpr char request[] = "40 00 10 00 00 00 00 00";
constexpr char deviceType[] = "43 00 10 00 91 01 0F 00";

// A bus, and a scan on it whose waits move the clock of the bus.
class CScanOnBus
{
public:
    /// The nodes that answer, with how many milliseconds after their request.
    void expectAll(const std::map<unsigned, int>& delays, const char* answer = deviceType)
    {
        for (unsigned node = 1; node <= 127; ++node) {
            CFakeBusRequest& step = bus.expect(0x600 + node, request);
            if (const auto delay = delays.find(node); delay != delays.end())
                step.after(delay->second).answer(0x580 + node, answer);
        }
    }
    /// The questions to one node; its name comes after so many milliseconds.
    void expectDetails(unsigned node, int delay = 0)
    {
        ask(node, request, deviceType);
        ask(node, "40 18 10 01 00 00 00 00", "43 18 10 01 B5 F0 00 00");
        ask(node, "40 18 10 02 00 00 00 00", "80 18 10 02 11 00 09 06");
        ask(node, "40 18 10 03 00 00 00 00", "43 18 10 03 05 00 02 00");
        ask(node, "40 18 10 04 00 00 00 00", "43 18 10 04 51 2C 35 01");
        bus.expect(0x600 + node, "40 08 10 00 00 00 00 00")
            .after(delay)
            .answer(0x580 + node, "43 08 10 00 50 75 6D 70");
    }
    void ask(unsigned node, const char* frame, const char* answer)
    {
        bus.expect(0x600 + node, frame).answer(0x580 + node, answer);
    }

    /// Runs the scan. @return the exit status; 2000 plus it when it ended early, with `end`
    int run(const tNetworkOptions& options = { QStringLiteral("can0"), {}, {} })
    {
        CConsole console(std::tmpfile(), m_error);
        int status = -1;
        {
            CNetwork network(options, console);
            CScan scan(network, options, console, [this](milliseconds time) {
                bus.advance(static_cast<int>(time.count()));
                if (during)
                    during();
            });
            end = endOf([&] { return status = scan.run(); });
            progress = scan.progressText();
            nodes = scan.nodes();
        }
        return status;
    }
    QByteArray error() const
    {
        std::fflush(m_error);
        std::rewind(m_error);
        QByteArray text(4096, '\0');
        text.resize(static_cast<qsizetype>(std::fread(text.data(), 1, 4096, m_error)));
        return text;
    }
    QList<unsigned> found() const
    {
        QList<unsigned> ids;
        for (const tFoundNode& node : nodes)
            ids += node.node;
        return ids;
    }

    CFakeBus bus;
    std::function<void()> during; // called at each wait
    std::vector<tFoundNode> nodes;
    QString end;
    QString progress;

private:
    FILE* const m_error = std::tmpfile();
};

} // namespace

class TestScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsGoOutOneByOne();
    void afterTheLastTheTimeoutPassesOnce_data();
    void afterTheLastTheTimeoutPassesOnce();
    void answersAreSorted();
    void detailsAreRead();
    void abortIsAnAnswer();
    void otherMessagesAreNone();
    void lateAnswerIsNoOtherClient();
    void lateNodeIsAskedInAnotherRound();
    void busyInterfaceIsTriedAgain();
    void interfaceThatStaysBusyEndsIt();
    void interfaceThatIsGoneEndsIt();
    void nodeThatFallsSilentIsTold();
    void twoNodesOfOneIdAreTold();
    void otherClientIsTold_data();
    void otherClientIsTold();
    void textsOfTheNodes();
};

void TestScan::requestsGoOutOneByOne()
{
    CScanOnBus scan;
    scan.expectAll({});
    QList<qint64> times;
    scan.bus.before = [&](CFakeBus::ECall call) {
        if (call == CFakeBus::Write)
            times += scan.bus.milliseconds();
    };
    QCOMPARE(scan.run(), 0);
    QVERIFY(scan.bus.finished());
    QCOMPARE(times.size(), 127);
    for (qsizetype place = 1; place < times.size(); ++place)
        QVERIFY2(times[place] - times[place - 1] >= 2, qPrintable(QString::number(place)));
    QVERIFY(times.last() - times.first() < 1000);
    QCOMPARE(scan.found(), QList<unsigned>());
    QCOMPARE(scan.error(), QByteArray());
}

void TestScan::afterTheLastTheTimeoutPassesOnce_data()
{
    QTest::addColumn<int>("timeout");
    QTest::newRow("usual") << 500;
    QTest::newRow("given") << 50;
    QTest::newRow("long") << 3000;
}

void TestScan::afterTheLastTheTimeoutPassesOnce()
{
    QFETCH(int, timeout);
    CScanOnBus scan;
    scan.expectAll({ { 127, timeout - 10 } });
    scan.expectDetails(127);
    const std::optional<int> given = timeout == 500 ? std::nullopt : std::optional(timeout);
    QCOMPARE(scan.run({ QStringLiteral("can0"), given, {} }), 0);
    QVERIFY(scan.bus.finished());
    QCOMPARE(scan.found(), QList<unsigned>({ 127 }));
    QVERIFY(scan.bus.milliseconds() >= timeout + 126 * 2);
    QVERIFY(scan.bus.milliseconds() < timeout + 1000);
}

void TestScan::answersAreSorted()
{
    CScanOnBus scan;
    scan.expectAll({ { 3, 450 }, { 5, 1 }, { 99, 100 }, { 127, 0 } });
    for (const unsigned node : { 3U, 5U, 99U, 127U })
        scan.expectDetails(node);
    QCOMPARE(scan.run(), 0);
    QVERIFY(scan.bus.finished());
    QCOMPARE(scan.found(), QList<unsigned>({ 3, 5, 99, 127 }));
    QCOMPARE(scan.progress, "all nodes were asked, 4 of those found for everything");
    QCOMPARE(scan.error(), QByteArray());
}

void TestScan::detailsAreRead()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 } });
    scan.expectDetails(5);
    QCOMPARE(scan.run(), 0);
    const auto& values = scan.nodes.at(0).values;
    QCOMPARE(values[scanDeviceType], QByteArray("\x91\1\x0F\0", 4));
    QCOMPARE(values[scanVendor], QByteArray("\xB5\xF0\0\0", 4));
    QVERIFY(!values[scanProduct]); // aborted
    QCOMPARE(values[scanRevision], QByteArray("\5\0\2\0", 4));
    QCOMPARE(values[scanSerial], QByteArray("\x51\x2C\x35\1", 4));
    QCOMPARE(values[scanName], QByteArray("Pump"));
    QCOMPARE(scan.error(), QByteArray());
}

void TestScan::abortIsAnAnswer()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 } }, "80 00 10 00 00 00 02 06");
    scan.expectDetails(5);
    QCOMPARE(scan.run(), 0);
    QCOMPARE(scan.found(), QList<unsigned>({ 5 }));
}

// Heartbeats, PDOs, answers that are too short, of another index, or of nobody.
void TestScan::otherMessagesAreNone()
{
    CScanOnBus scan;
    scan.expectAll({});
    bool sent = false;
    scan.during = [&] {
        if (std::exchange(sent, true))
            return;
        scan.bus.inject(0x705, "05");
        scan.bus.inject(0x185, deviceType);
        scan.bus.inject(0x580, deviceType);
        scan.bus.inject(0x80000581, deviceType);
        scan.bus.inject(0x581, "43 00 10 00");
        scan.bus.inject(0x581, "60 00 10 00 00 00 00 00");
        scan.bus.inject(0x581, "43 01 10 00 00 00 00 00");
    };
    QCOMPARE(scan.run(), 0);
    QVERIFY(sent);
    QCOMPARE(scan.found(), QList<unsigned>());
}

void TestScan::lateAnswerIsNoOtherClient()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 }, { 9, 800 } });
    scan.expectDetails(5);
    scan.during = [&] { scan.bus.inject(0x581, "43 01 10 00 00 00 00 00"); }; // asked, and not answered yet
    QCOMPARE(scan.run(), 0);
    QCOMPARE(scan.error(), QByteArray());
}

void TestScan::lateNodeIsAskedInAnotherRound()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 }, { 3, 800 } });
    scan.expectDetails(5, 300);
    scan.expectDetails(3);
    QCOMPARE(scan.run(), 0);
    QVERIFY(scan.bus.finished());
    QCOMPARE(scan.found(), QList<unsigned>({ 3, 5 }));
}

void TestScan::busyInterfaceIsTriedAgain()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 } });
    scan.expectDetails(5);
    scan.bus.fail(CFakeBus::Write, ENOBUFS, 11, 500);
    QCOMPARE(scan.run(), 0);
    QVERIFY(scan.bus.finished());
    QCOMPARE(scan.found(), QList<unsigned>({ 5 }));
}

void TestScan::interfaceThatStaysBusyEndsIt()
{
    CScanOnBus scan;
    for (unsigned node = 1; node <= 10; ++node)
        scan.bus.expect(0x600 + node, request);
    scan.bus.fail(CFakeBus::Write, ENOBUFS, 11, 1000000);
    QCOMPARE(scan.run(), -1);
    QVERIFY(scan.bus.finished());
    QVERIFY2(scan.end.startsWith("3: the interface sends nothing: ") && scan.end.endsWith("; nodes 1 to 10 were asked"),
             qPrintable(scan.end));
    QVERIFY(scan.bus.milliseconds() >= 2000);
    QVERIFY(scan.bus.milliseconds() < 10000);
}

void TestScan::interfaceThatIsGoneEndsIt()
{
    CScanOnBus scan;
    scan.bus.fail(CFakeBus::Write, ENETDOWN, 1, 1000000);
    QCOMPARE(scan.run(), -1);
    QVERIFY2(scan.end.startsWith("3: the interface sends nothing: ") && scan.end.endsWith("; no node was asked"),
             qPrintable(scan.end));
}

void TestScan::nodeThatFallsSilentIsTold()
{
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 }, { 6, 1 } });
    scan.ask(5, request, deviceType);
    scan.bus.expect(0x605, "40 18 10 01 00 00 00 00");
    scan.bus.expect(0x605, "80 18 10 01 00 00 04 05");
    scan.expectDetails(6);
    QCOMPARE(scan.run(), 3);
    QVERIFY(scan.bus.finished());
    QCOMPARE(scan.found(), QList<unsigned>({ 5, 6 }));
    QCOMPARE(scan.error(), "velmora-cli: node 5, 1018:1: no answer of node 5 within 500 ms\n");
}

void TestScan::twoNodesOfOneIdAreTold()
{
    CScanOnBus scan;
    for (unsigned node = 1; node <= 127; ++node) {
        CFakeBusRequest& step = scan.bus.expect(0x600 + node, request);
        if (node == 5)
            step.answer(0x585, deviceType).answer(0x585, "43 00 10 00 92 01 02 00");
    }
    scan.expectDetails(5);
    QCOMPARE(scan.run(), 0);
    QCOMPARE(scan.error(), "velmora-cli: warning: node 5 answers twice: two devices may have this node-id\n");
}

void TestScan::otherClientIsTold_data()
{
    QTest::addColumn<unsigned>("identifier");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("its request") << 0x605U << QByteArray("40 08 10 00 00 00 00 00");
    QTest::newRow("an answer to it") << 0x585U << QByteArray("43 08 10 00 00 00 00 00");
}

void TestScan::otherClientIsTold()
{
    QFETCH(unsigned, identifier);
    QFETCH(QByteArray, frame);
    CScanOnBus scan;
    scan.expectAll({ { 5, 1 } });
    scan.expectDetails(5);
    scan.bus.injectAfter(400, identifier, frame.constData());
    QCOMPARE(scan.run(), 0);
    QCOMPARE(scan.found(), QList<unsigned>({ 5 }));
    QCOMPARE(
        scan.error(),
        "velmora-cli: warning: another SDO client is at work on this bus: it talks to node 5, and answers to it may "
        "be taken for answers to this program\n");
}

void TestScan::textsOfTheNodes()
{
    tFoundNode whole{ 5, {} };
    for (auto& value : whole.values)
        value = QByteArray("\1\2\3\4");
    whole.values[scanName] = "Pump, \x1B[1m";
    tFoundNode bare{ 127, {} };
    bare.values[scanDeviceType] = QByteArray("\1\2");
    QCOMPARE(scanText({ whole, bare }, scanTable),
             "Node  Device type  Vendor      Product     Revision    Serial number  Name\n"
             "5     0x04030201   0x04030201  0x04030201  0x04030201  0x04030201     Pump, \\x1B[1m\n"
             "127   0x01 0x02\n");
    QCOMPARE(scanText({ whole, bare }, scanCsv),
             "node,devicetype,vendor,product,revision,serial,name\n"
             "5,0x04030201,0x04030201,0x04030201,0x04030201,0x04030201,\"Pump, \\x1B[1m\"\n"
             "127,0x01 0x02,,,,,\n");
    QCOMPARE(scanText({ bare }, scanJson),
             "[\n    {\n        \"devicetype\": \"0x01 0x02\",\n        \"name\": null,\n        \"node\": 127,\n"
             "        \"product\": null,\n        \"revision\": null,\n        \"serial\": null,\n"
             "        \"vendor\": null\n    }\n]\n");
    QVERIFY(scanText({ whole }, scanJson).contains("\"name\": \"Pump, \\u001b[1m\""));
    QCOMPARE(scanText({}, scanTable), "");
    QCOMPARE(scanText({}, scanCsv), "node,devicetype,vendor,product,revision,serial,name\n");
    QCOMPARE(scanText({}, scanJson), "[\n]\n");
}

QTEST_APPLESS_MAIN(TestScan)
#include "TestScan.moc"

// What the program makes of a gateway that misbehaves, and that it stays usable. Time-outs take no time.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DocumentDriver.h"
#include "FrameDriver.h"
#include "LoopbackServer.h"
#include "SimulatorProcess.h"
#include "SystemCalls.h"
#include "TempSettings.h"

#include <QTest>

#include <map>
#include <optional>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

// The entry with the faults, and one without; values are decimal.
const char entry[] = "1017: Producer heartbeat time";
const char other[] = "1000: Device type";
const QString otherValue = "983441";

const QString notRead = "Parameter could not be read.\n\n";
const QString notSent = "Parameter could not be sent.\n\n";

/// Makes the client's time-out of 66 s expire at once, after so many lines from the gateway, for commands that name a
/// certain object. For all other commands the client waits as usual.
class CEarlyTimeouts
{
public:
    static constexpr int noTimeout = -1;

    /// By the object as commands name it: "0x1017".
    explicit CEarlyTimeouts(const std::map<QByteArray, int>& linesOfObjects)
    {
        m_calls.send = [this, linesOfObjects](int socket, const void* data, size_t length, int flags) {
            const QByteArray command(static_cast<const char*>(data), static_cast<qsizetype>(length));
            m_lines = noTimeout;
            for (const auto& [object, lines] : linesOfObjects)
                if (command.contains(' ' + object + ' '))
                    m_lines = lines;
            return __real_send(socket, data, length, flags);
        };
        m_calls.recv = [this](int socket, void* data, size_t length, int flags) {
            const ssize_t received = __real_recv(socket, data, length, flags);
            if (received > 0 && *static_cast<const char*>(data) == '\n' && m_lines != noTimeout)
                --m_lines;
            return received;
        };
        m_calls.select = [this](auto... arguments) { return m_lines == 0 ? 0 : __real_select(arguments...); };
    }

private:
    CSystemCalls m_calls;
    int m_lines = noTimeout; // until the time-out
};

} // namespace

class TestProgramFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aReadSurvivesTheFault_data();
    void aReadSurvivesTheFault();
    void aSendSurvivesTheFault_data();
    void aSendSurvivesTheFault();
    void droppedConnectionNeedsInitialisingAgain();
    void everyFaultAtOnceLeavesTheProgramUsable();
    void simulatorThatEndsIsAnErrorAndNoCrash();
    void waitCursorIsShownWhileTheGatewayIsAwaited();
    void waitCursorIsShownWhileConnecting();

private:
    std::optional<CTempSettings> m_store;
};

void TestProgramFaults::init()
{
    m_store.emplace();
    m_store->setValue("Settings/Display", 1);
}

void TestProgramFaults::aReadSurvivesTheFault_data()
{
    QTest::addColumn<int>("lines"); // until the time-out
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("error"); // in the box; none: the value is shown
    const auto row = [](const char* fault, int lines, const char* value, const char* error = "") {
        QTest::newRow(fault) << lines << QString(value) << QString(error);
    };
    row("double", CEarlyTimeouts::noTimeout, "1000");
    row("bytewise", CEarlyTimeouts::noTimeout, "1000");
    row("overlong", CEarlyTimeouts::noTimeout, "1000");
    row("delay=50", CEarlyTimeouts::noTimeout, "1000");
    // Without an answer in time the command itself is taken for it, and its node-id for the value,
    row("silence", 0, "5");
    row("delay=600", 0, "5");
    // or the line that was skipped last.
    row("sequence", 1, "1000");
    row("garbage", 1, "", "Error code -70");
    row("error=103", CEarlyTimeouts::noTimeout, "", "Error code -703");
    row("abort=0x06060000", CEarlyTimeouts::noTimeout, "", "SDO transfer aborted: 0x6060000");
    row("abort=0x08000022", CEarlyTimeouts::noTimeout, "", "SDO transfer aborted: 0x8000022");
}

void TestProgramFaults::aReadSurvivesTheFault()
{
    QFETCH(const int, lines);
    QFETCH(const QString, value);
    QFETCH(const QString, error);
    const CEarlyTimeouts timeouts({ { "0x1017", lines } });
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", QString(QTest::currentDataTag()) + "@1017" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.reach(entry);
    if (error.isEmpty()) {
        QCOMPARE(catcher.count(), 0);
        QCOMPARE(document.value(), value);
    } else {
        QCOMPARE(catcher.only().title, QString("Velmora - Read parameter"));
        QCOMPARE(catcher.only().text, notRead + error);
        QVERIFY(!catcher.only().waitCursor);
    }
    const qsizetype boxes = catcher.count();
    document.reach(other); // a late answer does no harm
    QCOMPARE(document.value(), otherValue);
    QCOMPARE(catcher.count(), boxes);
}

void TestProgramFaults::aSendSurvivesTheFault_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* fault, int lines, const char* error = "") {
        QTest::newRow(fault) << lines << QString(error);
    };
    row("double", CEarlyTimeouts::noTimeout);
    row("bytewise", CEarlyTimeouts::noTimeout);
    row("overlong", CEarlyTimeouts::noTimeout);
    row("sequence", 1); // the line that was skipped is taken for the answer
    row("silence", 0, "Error code -70");
    row("garbage", 1, "Error code -70");
    row("error=103", CEarlyTimeouts::noTimeout, "Error code -703");
    row("abort=0x06010000", CEarlyTimeouts::noTimeout, "SDO transfer aborted: 0x6010000");
}

void TestProgramFaults::aSendSurvivesTheFault()
{
    QFETCH(const int, lines);
    QFETCH(const QString, error);
    const CEarlyTimeouts timeouts({ { "0x1017", lines } });
    CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", QString(QTest::currentDataTag()) + "@1017" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.reach(entry);
    const QString before = document.value();
    catcher.clear();
    document.send("77");
    if (error.isEmpty()) {
        QCOMPARE(catcher.count(), 0);
        QCOMPARE(document.value(), QString("77"));
    } else {
        QCOMPARE(catcher.only().title, QString("Velmora - Send parameter"));
        QCOMPARE(catcher.only().text, notSent + error);
        QCOMPARE(document.value(), before);
    }
    const qsizetype boxes = catcher.count();
    document.reach(other);
    QCOMPARE(document.value(), otherValue);
    QCOMPARE(catcher.count(), boxes);
}

void TestProgramFaults::droppedConnectionNeedsInitialisingAgain()
{
    CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", "drop@1017" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.reach(entry);
    QCOMPARE(document.value(), QString("5")); // the command itself is taken for the answer
    document.reach(other);
    document.read();
    document.read(); // by now sending fails
    QVERIFY(catcher.count() > 0);
    QCOMPARE(catcher.boxes().last().text, notRead + "Error code -793");
    catcher.clear();
    driver.initialize(simulator.interface());
    QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    document.read();
    QCOMPARE(document.value(), otherValue);
    QCOMPARE(catcher.count(), 0);
}

void TestProgramFaults::everyFaultAtOnceLeavesTheProgramUsable()
{
    const CEarlyTimeouts timeouts({ { "0x1001", 1 }, { "0x1006", 0 } }); // garbage, silence
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", "garbage@1001", "--fault", "error=1@1002", "--fault", "double@1005",
                                        "--fault", "silence@1006", "--fault", "overlong@1008", "--fault",
                                        "bytewise@100A", "--fault", "drop@100C" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    for (const char* item : { "1001: Error register", "1002: Manufacturer status register", "1005: COB-ID SYNC message",
                              "1006: Communication cycle period", "1008: Manufacturer device name",
                              "100a: Manufacturer software version", "100c: Guard time" })
        document.reach(item);
    QCOMPARE(catcher.count(), 2);
    driver.initialize(simulator.interface());
    document.reach(other);
    QCOMPARE(document.value(), otherValue);
    QCOMPARE(catcher.count(), 2);
}

void TestProgramFaults::simulatorThatEndsIsAnErrorAndNoCrash()
{
    CBoxCatcher catcher;
    CFrameDriver driver;
    QString interface;
    {
        const CSimulatorProcess simulator;
        interface = simulator.interface();
        driver.initialize(interface);
        driver.open(sheet, 5);
    }
    const CRefusingPort refusing(interface.section(':', 1).toUShort()); // no other process may get it
    QVERIFY(refusing.port() != 0);
    const CDocumentDriver document(driver.document(0));
    document.reach(other);
    // The first command goes out nevertheless; what follows fails as soon as the connection is known to be reset.
    QVERIFY(QTest::qWaitFor(
        [&] {
            document.read();
            return !catcher.boxes().isEmpty();
        },
        patience));
    QCOMPARE(catcher.boxes().last().text, notRead + "Error code -793");
    catcher.clear();
    driver.initialize(interface);
    QCOMPARE(catcher.only().text, "Error -20000: Interface '" + interface +
                                      "' could not be initialized!\n\n\t"
                                      "Resistance is futile, prepare to assimilate!");
    catcher.clear();
    document.read();
    QCOMPARE(catcher.only().text,
             QString("Data access is not possible in off-line mode!\n\nClose the document and connect to a device."));
    const CSimulatorProcess next;
    driver.initialize(next.interface());
    driver.open(sheet, 5);
    const CDocumentDriver opened(driver.document(1));
    opened.reach(other);
    QCOMPARE(opened.value(), otherValue);
}

void TestProgramFaults::waitCursorIsShownWhileTheGatewayIsAwaited()
{
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator;
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    CSystemCalls calls;
    QList<int> shapes;
    calls.select = [&](auto... arguments) {
        shapes << (QGuiApplication::overrideCursor() != nullptr ? QGuiApplication::overrideCursor()->shape() : -1);
        return __real_select(arguments...);
    };
    CDocumentDriver(driver.document(0)).reach(entry);
    CDocumentDriver(driver.document(0)).send("1");
    QCOMPARE(catcher.count(), 0);
    QVERIFY(!shapes.isEmpty());
    for (const int shape : shapes)
        QCOMPARE(shape, int(Qt::WaitCursor));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void TestProgramFaults::waitCursorIsShownWhileConnecting()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    CSystemCalls calls;
    QList<int> shapes;
    calls.connect = [&](auto...) {
        shapes << (QGuiApplication::overrideCursor() != nullptr ? QGuiApplication::overrideCursor()->shape() : -1);
        return -1;
    };
    driver.initialize("127.0.0.1:60000");
    QCOMPARE(shapes, QList<int>{ int(Qt::WaitCursor) });
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QVERIFY(!catcher.only().waitCursor);
}

QTEST_MAIN(TestProgramFaults)
#include "TestProgramFaults.moc"

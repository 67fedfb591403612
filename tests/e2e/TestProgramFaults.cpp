// What the program makes of a gateway that misbehaves, and that it stays usable. Awaiting a line ends after a moment.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DocumentDriver.h"
#include "FrameDriver.h"
#include "SimulatorProcess.h"
#include "SystemCalls.h"
#include "TempSettings.h"

#include <QTest>

#include <optional>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

// Decimal, for the entry with the faults and for one without.
const char entry[] = "1017: Producer heartbeat time";
const char other[] = "1000: Device type";
const QString otherValue = "983441";

const QString notRead = "Parameter could not be read.\n\n";
const QString notSent = "Parameter could not be sent.\n\n";

/// Waits for less than half a second, where the client would wait for its 66 s.
int awaitBriefly(int count, fd_set* read, fd_set* write, fd_set* except, timeval*)
{
    timeval moment = { 0, 400'000 };
    return __real_select(count, read, write, except, &moment);
}

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
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("trouble"); // of the box; none: the value is shown
    QTest::newRow("double") << "1000" << QString();
    QTest::newRow("bytewise") << "1000" << QString();
    QTest::newRow("overlong") << "1000" << QString();
    QTest::newRow("delay=50") << "1000" << QString();
    // Without an answer in time the command itself is taken for it, and its node-id for the value,
    QTest::newRow("silence") << "5" << QString();
    QTest::newRow("delay=600") << "5" << QString();
    // or the line that was skipped last.
    QTest::newRow("sequence") << "1000" << QString();
    QTest::newRow("garbage") << QString() << "Error code -70";
    QTest::newRow("error=103") << QString() << "Error code -703";
    QTest::newRow("abort=0x06060000") << QString() << "SDO transfer aborted: 0x6060000";
    QTest::newRow("abort=0x08000022") << QString() << "SDO transfer aborted: 0x8000022";
}

void TestProgramFaults::aReadSurvivesTheFault()
{
    QFETCH(const QString, value);
    QFETCH(const QString, trouble);
    CSystemCalls calls;
    calls.select = awaitBriefly;
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", QString(QTest::currentDataTag()) + "@1017" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.select(entry);
    if (trouble.isEmpty()) {
        QCOMPARE(catcher.count(), 0);
        QCOMPARE(document.value(), value);
    } else {
        QCOMPARE(catcher.only().title, QString("Velmora - Read parameter"));
        QCOMPARE(catcher.only().text, notRead + trouble);
        QVERIFY(!catcher.only().waitCursor);
    }
    const qsizetype boxes = catcher.count();
    document.select(other); // a late answer does no harm
    QCOMPARE(document.value(), otherValue);
    QCOMPARE(catcher.count(), boxes);
}

void TestProgramFaults::aSendSurvivesTheFault_data()
{
    QTest::addColumn<QString>("trouble");
    QTest::newRow("double") << QString();
    QTest::newRow("bytewise") << QString();
    QTest::newRow("overlong") << QString();
    QTest::newRow("sequence") << QString(); // the line that was skipped is taken for the answer
    QTest::newRow("silence") << "Error code -70";
    QTest::newRow("garbage") << "Error code -70";
    QTest::newRow("error=103") << "Error code -703";
    QTest::newRow("abort=0x06010000") << "SDO transfer aborted: 0x6010000";
}

void TestProgramFaults::aSendSurvivesTheFault()
{
    QFETCH(const QString, trouble);
    CSystemCalls calls;
    calls.select = awaitBriefly;
    CBoxCatcher catcher;
    const CSimulatorProcess simulator({ "--fault", QString(QTest::currentDataTag()) + "@1017" });
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.select(entry);
    const QString before = document.value();
    catcher.clear();
    document.send("77");
    if (trouble.isEmpty()) {
        QCOMPARE(catcher.count(), 0);
        QCOMPARE(document.value(), QString("77"));
    } else {
        QCOMPARE(catcher.only().title, QString("Velmora - Send parameter"));
        QCOMPARE(catcher.only().text, notSent + trouble);
        QCOMPARE(document.value(), before);
    }
    const qsizetype boxes = catcher.count();
    document.select(other);
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
    document.select(entry);
    QCOMPARE(document.value(), QString("5")); // the command itself is taken for the answer
    document.select(other);
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
    CSystemCalls calls;
    calls.select = awaitBriefly;
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
        document.select(item);
    QCOMPARE(catcher.count(), 2);
    driver.initialize(simulator.interface());
    document.select(other);
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
    const CDocumentDriver document(driver.document(0));
    document.select(other);
    document.read();
    document.read();
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
    opened.select(other);
    QCOMPARE(opened.value(), otherValue);
}

void TestProgramFaults::waitCursorIsShownWhileTheGatewayIsAwaited()
{
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
    CDocumentDriver(driver.document(0)).select(entry);
    CDocumentDriver(driver.document(0)).send("1");
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

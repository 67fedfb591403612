// A walk through the whole program on vcan0 with the simulated device; each test continues where the one before ended.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DemoEntries.h"
#include "DocumentDriver.h"
#include "FrameDriver.h"
#include "ProgramRun.h"
#include "RawCan.h"
#include "SimulatorProcess.h"
#include "TempSettings.h"
#include "VcanInterface.h"
#include "base/Product.h"
#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

namespace
{

const QString initializeTitle = "Velmora - Initialize Interface";
const QString readTitle = "Velmora - Read parameter";
const QString initialized = "CAN interface successfully initialized";
const QString fallback = "Resistance is futile, prepare to assimilate!"; // text of codes that have none of their own

QString failureOf(const QString& interface)
{
    return "Error -10000: Interface '" + interface + "' could not be initialized!\n\n\t" + fallback;
}

} // namespace

class TestProgramOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void whatIsNoCanInterfaceShowsItsBox_data();
    void whatIsNoCanInterfaceShowsItsBox();
    void initialisesVcan0();
    void showsThePropertiesOfVcan0();
    void opensTheSampleSheetConnectedToNode5();
    void selectingAnEntryReadsItInTheseFrames();
    void readsInThreeDisplayModes();
    void sendsInTheseFramesAndReadsBack();
    void browsesTheWholeDictionary();
    void showsTheAbortOfTheDevice_data();
    void showsTheAbortOfTheDevice();
    void silentNodeShowsItsBox();
    void readsOnTheGatewayAndBackOnVcan0();
    void interfaceThatGoesDownShowsItsBox();
    void failedInterfaceLeavesTheDocumentOffline();
    void endsWithTheInterfaceClosed();
    void realProgramStartsOnVcan0();

    void cleanupTestCase();

private:
    CDocumentDriver document() const { return CDocumentDriver(m_driver->document(0)); }
    QStringList frames() const;

    // The program's own SDO time-out in milliseconds; the simulator on a busy machine may be slower.
    static constexpr WORD usual = 500;
    const QString m_sheet = VELMORA_SHARE "/velmora-demo.eds";
    std::optional<CTempSettings> m_store;
    std::optional<CRawCan> m_bus;
    std::optional<CSimulatorProcess> m_simulator;
    std::optional<CBoxCatcher> m_catcher;
    std::optional<CFrameDriver> m_driver;
};

void TestProgramOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
    m_store.emplace();
    m_bus.emplace();
    m_simulator.emplace(QStringList{ "--can", "vcan0" });
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    m_catcher.emplace();
    m_driver.emplace();
    QCOMPARE(sdo_timeout(sdoPatience), usual);
}

void TestProgramOnVcan::init()
{
    m_catcher->clear();
    m_bus->forget();
}

// The frames on the bus since the last call, without heartbeats.
QStringList TestProgramOnVcan::frames() const
{
    QStringList frames = m_bus->receiveAll();
    frames.removeIf([](const QString& frame) { return frame.startsWith("705#"); });
    return frames;
}

void TestProgramOnVcan::whatIsNoCanInterfaceShowsItsBox_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name :
         { "nocan0", "lo", "vcan", "VCAN0", "vcan0 ", "10.0.0.1", "15characters-ab", "16characters-abc",
           "17characters-abcd", "a name of more characters than an interface of this system can have" })
        QTest::newRow(name) << QString(name);
}

void TestProgramOnVcan::whatIsNoCanInterfaceShowsItsBox()
{
    QFETCH(const QString, name);
    m_driver->initialize(name);
    QCOMPARE(m_catcher->only().title, initializeTitle);
    QCOMPARE(m_catcher->only().text, failureOf(name));
    QCOMPARE(m_catcher->only().icon, QMessageBox::Critical);
    QVERIFY(!m_catcher->only().waitCursor);
    QVERIFY(!m_store->contains("Used Interfaces/Interface1"));
    m_catcher->clear();
    m_driver->choose("&Interface", "&Properties...");
    QCOMPARE(m_catcher->only().text, QString("Interface not initialized.\n\nProbably no board present."));
}

void TestProgramOnVcan::initialisesVcan0()
{
    m_driver->initialize("vcan0");
    QCOMPARE(m_catcher->count(), 0);
    QCOMPARE(m_driver->statusText(), initialized);
    QCOMPARE(m_driver->statusTime(), 2000);
    QCOMPARE(m_store->value("Used Interfaces/Interface1"), QString("vcan0"));
    QCOMPARE(frames(), QStringList());
}

void TestProgramOnVcan::showsThePropertiesOfVcan0()
{
    m_driver->choose("&Interface", "&Properties...");
    QCOMPARE(m_catcher->only().title, QString("Velmora - Interface Properties"));
    QCOMPARE(m_catcher->only().icon, QMessageBox::Information);
    QCOMPARE(m_catcher->only().text,
             QString("Hardware: interface=\"vcan0\", family=29, type=3, protocol=1\nFirmware: %1\n"
                     "Software: %2\nCopyright %3\n")
                 .arg(cop_software(), cop_version(), product::copyright));
}

void TestProgramOnVcan::opensTheSampleSheetConnectedToNode5()
{
    m_driver->open(m_sheet, 5);
    QCOMPARE(m_driver->statusText(), "File " + m_sheet + " loaded and connected to node #5");
    QCOMPARE(document().root()->text(0), QString("CANopen: Node #5"));
    QCOMPARE(frames(), QStringList());
}

void TestProgramOnVcan::selectingAnEntryReadsItInTheseFrames()
{
    document().reach("1000: Device type");
    QCOMPARE(document().value(), QString("0x000F0191"));
    QCOMPARE(m_driver->statusText(), QString("Parameter 'Device type' successfully read from node #5"));
    QCOMPARE(frames(), QStringList({ "605#4000100000000000", "585#4300100091010F00" }));

    document().reach("1009: Manufacturer hardware version");
    QCOMPARE(document().value(), QString("HW 1.2"));
    QCOMPARE(frames(), QStringList({ "605#4009100000000000", "585#4109100006000000", "605#6000000000000000",
                                     "585#03485720312E3200" }));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::readsInThreeDisplayModes()
{
    document().reach("1017: Producer heartbeat time");
    QCOMPARE(document().value(), QString("0x03E8"));
    for (const auto& [mode, text] :
         { std::pair("oct", "001750"), std::pair("hex", "0x03E8"), std::pair("dec", "1000") }) {
        document().choose(mode);
        document().read();
        QCOMPARE(document().value(), QString(text));
        QCOMPARE(frames().last(), QString("585#4B171000E8030000"));
    }
}

void TestProgramOnVcan::sendsInTheseFramesAndReadsBack()
{
    document().send("0x1F4");
    QCOMPARE(document().value(), QString("500"));
    QCOMPARE(m_driver->statusText(), QString("Parameter 'Producer heartbeat time' successfully sent to node #5"));
    document().read();
    QCOMPARE(document().value(), QString("500"));
    QCOMPARE(frames(), QStringList({ "605#2B171000F4010000", "585#6017100000000000", "605#4017100000000000",
                                     "585#4B171000F4010000" }));

    document().reach("2008: Location");
    m_bus->forget();
    document().send("Hall 4, \"north\"");
    QVERIFY(document().value().isEmpty());
    QCOMPARE(frames(), QStringList({ "605#210820000F000000", "585#6008200000000000", "605#0048616C6C20342C",
                                     "585#2000000000000000", "605#1020226E6F727468", "585#3000000000000000",
                                     "605#0D22000000000000", "585#2000000000000000" }));
    document().read();
    QCOMPARE(document().value(), QString("Hall 4, \"north\""));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::browsesTheWholeDictionary()
{
    int leaves = 0;
    for (QTreeWidgetItemIterator item(document().tree()); *item != nullptr; ++item) {
        document().reach(*item);
        leaves += (*item)->childCount() == 0 ? 1 : 0;
    }
    qsizetype readable = 0;
    for (const tDemoEntry& entry : CDemoEntries::all())
        readable += entry.readable() ? 1 : 0;
    QVERIFY2(leaves >= readable, qPrintable(QString::number(leaves)));
    QCOMPARE(frames().filter("605#40").size(), readable);
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::showsTheAbortOfTheDevice_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("abort");
    QTest::newRow("1017: Producer heartbeat time") << "30001"
                                                   << "6090031"; // above its limit
    QTest::newRow("2005: Sample period") << "9"
                                         << "6090032"; // below its limit
    QTest::newRow("1000: Device type") << "1"
                                       << "6010002"; // read-only
}

void TestProgramOnVcan::showsTheAbortOfTheDevice()
{
    QFETCH(const QString, value);
    QFETCH(const QString, abort);
    document().reach(QTest::currentDataTag());
    const QString before = document().value();
    document().send(value);
    QCOMPARE(m_catcher->only().title, QString("Velmora - Send parameter"));
    QCOMPARE(m_catcher->only().text, "Parameter could not be sent.\n\nSDO transfer aborted: 0x" + abort);
    QCOMPARE(document().value(), before);
    m_catcher->clear();
    document().read();
    QCOMPARE(document().value(), before);
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::silentNodeShowsItsBox()
{
    m_driver->open(m_sheet, 99);
    const CDocumentDriver absent(m_driver->document(1));
    sdo_timeout(usual);
    QElapsedTimer timer;
    timer.start();
    absent.reach("1000: Device type");
    QVERIFY(timer.elapsed() >= usual - 1 && timer.elapsed() < sdoPatience);
    sdo_timeout(sdoPatience);
    QCOMPARE(m_catcher->only().title, readTitle);
    QCOMPARE(m_catcher->only().text, QString("Parameter could not be read.\n\nError code -50"));
    QVERIFY(!m_catcher->only().waitCursor);
    QCOMPARE(absent.value(), m_catcher->only().text);
    QCOMPARE(m_driver->statusText(), QString("Parameter 'Device type' could not be read from node #99"));
    QCOMPARE(frames(), QStringList({ "663#4000100000000000", "663#8000100000000405" }));
    m_driver->press(Qt::Key_W);
    QCOMPARE(m_driver->documentCount(), 1);
    document().reach("1018: Identity object");
    document().reach(" 1: Vendor-ID");
    QCOMPARE(document().value(), QString("61621"));
}

void TestProgramOnVcan::readsOnTheGatewayAndBackOnVcan0()
{
    m_driver->initialize(m_simulator->interface());
    QCOMPARE(m_driver->statusText(), initialized);
    QVERIFY(m_simulator->hasLogged("connected"));
    document().reach("2006: Operating hours alarm");
    QCOMPARE(document().value(), QString("4294967295"));
    QVERIFY(m_simulator->hasLogged("5 read 0x2006 0x0 u32"));
    document().send("1");
    QCOMPARE(frames(), QStringList()); // the gateway is used
    m_driver->choose("&Interface", "&Properties...");
    QVERIFY(m_catcher->only().text.startsWith("Hardware: Simulated CANopen gateway\n"));

    m_driver->initialize("vcan0");
    QCOMPARE(m_driver->statusText(), initialized);
    QVERIFY(m_simulator->hasLogged("disconnected"));
    document().read();
    QCOMPARE(document().value(), QString("1")); // of the same node
    QCOMPARE(frames(), QStringList({ "605#4006200000000000", "585#4306200001000000" }));
    QCOMPARE(m_store->value("Used Interfaces/Interface1"), QString("vcan0"));
    QCOMPARE(m_store->value("Used Interfaces/Interface2"), m_simulator->interface());
}

void TestProgramOnVcan::interfaceThatGoesDownShowsItsBox()
{
    const CVcanInterface interface;
    QVERIFY2(interface.exists(), CVcanInterface::problem());
    m_driver->initialize(interface.name());
    QCOMPARE(m_driver->statusText(), initialized);
    QVERIFY(interface.down());
    document().read();
    QCOMPARE(m_catcher->only().text, QString("Parameter could not be read.\n\nError code -20"));
    m_catcher->clear();
    QVERIFY(interface.up());
    sdo_timeout(usual);
    document().read(); // no such node on this bus
    sdo_timeout(sdoPatience);
    QCOMPARE(m_catcher->only().text, QString("Parameter could not be read.\n\nError code -50"));
    m_catcher->clear();
    QVERIFY(interface.remove());
    document().send("2");
    QCOMPARE(m_catcher->only().text, QString("Parameter could not be sent.\n\nError code -20"));
    m_catcher->clear();
    m_driver->initialize("vcan0");
    document().read();
    QCOMPARE(document().value(), QString("1"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::failedInterfaceLeavesTheDocumentOffline()
{
    m_driver->initialize("nocan0");
    QCOMPARE(m_catcher->only().text, failureOf("nocan0"));
    m_catcher->clear();
    m_driver->initialize("vcan0");
    QCOMPARE(m_driver->statusText(), initialized);
    document().read();
    QVERIFY(m_catcher->only().text.startsWith("Data access is not possible in off-line mode!"));
    QCOMPARE(frames(), QStringList());
    m_catcher->clear();
    m_driver->press(Qt::Key_W);
    m_driver->open(m_sheet, 5);
    document().reach("1000: Device type");
    QCOMPARE(document().value(), QString("983441"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramOnVcan::endsWithTheInterfaceClosed()
{
    m_driver->press(Qt::Key_Q);
    QVERIFY(!m_driver->frame.isVisible());
    QCOMPARE(cop_transmit(0x123, 0, nullptr), -95);
    QCOMPARE(m_catcher->count(), 0);
}

// The real program.
void TestProgramOnVcan::realProgramStartsOnVcan0()
{
    const QString dialog = "Initialize CAN Interface", first = "CANopen Object Browser - Version 0.2 Build 61";
    const CProgramRun run({ { dialog, "\"vcan0\"" },
                            { dialog, "Return" },
                            { first, "Ctrl+O" },
                            { "Open", '"' + m_sheet + '"' },
                            { "Open", "Return" },
                            { "Connect a Node", "Alt+C" },
                            { "CANopen Object Browser", "Ctrl+Q" } });
    QCOMPARE(run.windows,
             QStringList({ dialog, dialog, first, "Open", "Open", "Connect a Node", "CANopen Object Browser" }));
    QVERIFY2(run.status == 0, run.output);
    QVERIFY(run.settings().contains("Used%20Interfaces\\Interface1=vcan0"));
}

void TestProgramOnVcan::cleanupTestCase()
{
    m_driver.reset();
    m_catcher.reset();
    m_simulator.reset();
}

QTEST_MAIN(TestProgramOnVcan)
#include "TestProgramOnVcan.moc"

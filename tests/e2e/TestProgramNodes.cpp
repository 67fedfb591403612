// Several documents on several simulated nodes, and every data type of the sample sheet.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DocumentDriver.h"
#include "FrameDriver.h"
#include "SimulatorProcess.h"
#include "TempSettings.h"

#include <QTest>

#include <optional>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

} // namespace

class TestProgramNodes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void everyNodeHasItsValues();
    void twoDocumentsShareANode();
    void offlineDocumentBesideAConnectedOne();
    void documentKeepsItsDisplayMode();
    void nodeThatIsNotThereIsAnError();
    void initialisingAgainKeepsTheDocuments();
    void values_data();
    void values();

private:
    std::optional<CTempSettings> m_store;
};

void TestProgramNodes::everyNodeHasItsValues()
{
    const CBoxCatcher catcher;
    CSimulatorProcess simulator({ "--node", "7=" + sheet });
    m_store->setValue("Settings/Display", 1);
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    driver.open(sheet, 7);
    const CDocumentDriver five(driver.document(0)), seven(driver.document(1));
    seven.reach("1017: Producer heartbeat time");
    seven.send("77");
    QVERIFY(simulator.hasLogged("7 write 0x1017 0x0 u16 0x4D"));
    driver.workspace()->setActiveSubWindow(driver.subWindow(0));
    five.reach("1017: Producer heartbeat time");
    QCOMPARE(five.value(), QString("1000"));
    five.send("55");
    seven.read();
    QCOMPARE(seven.value(), QString("77"));
    five.read();
    QCOMPARE(five.value(), QString("55"));
    // Values that depend on the node-id.
    five.reach("1014: COB-ID EMCY");
    seven.reach("1014: COB-ID EMCY");
    QCOMPARE(five.value(), QString::number(0x85));
    QCOMPARE(seven.value(), QString::number(0x87));
    QCOMPARE(catcher.count(), 0);
}

void TestProgramNodes::twoDocumentsShareANode()
{
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator;
    m_store->setValue("Settings/Display", 1);
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    driver.open(sheet, 5);
    const CDocumentDriver first(driver.document(0)), second(driver.document(1));
    first.reach("1017: Producer heartbeat time");
    second.reach("1017: Producer heartbeat time");
    second.send("123");
    QCOMPARE(first.value(), QString("1000"));
    first.read();
    QCOMPARE(first.value(), QString("123"));
    QCOMPARE(catcher.count(), 0);
}

void TestProgramNodes::offlineDocumentBesideAConnectedOne()
{
    CBoxCatcher catcher;
    const CSimulatorProcess simulator;
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 0);
    driver.open(sheet, 5);
    QCOMPARE(driver.documentCount(), 2);
    const CDocumentDriver offline(driver.document(0)), connected(driver.document(1));
    offline.reach("1000: Device type");
    QVERIFY(offline.value().isEmpty());
    QCOMPARE(offline.box("data access"), QString("Data access: N/A"));
    offline.read();
    QCOMPARE(catcher.only().text,
             QString("Data access is not possible in off-line mode!\n\nClose the document and connect to a device."));
    connected.reach("1000: Device type");
    QCOMPARE(connected.value(), QString("0x000F0191"));
    QCOMPARE(catcher.count(), 1);
}

void TestProgramNodes::documentKeepsItsDisplayMode()
{
    const CSimulatorProcess simulator;
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    CDocumentDriver(driver.document(0)).choose("oct");
    driver.open(sheet, 5);
    const CDocumentDriver first(driver.document(0)), second(driver.document(1));
    second.choose("dec");
    first.reach("1000: Device type");
    second.reach("1000: Device type");
    QCOMPARE(first.value(), QString("00003600621"));
    QCOMPARE(second.value(), QString("983441"));
}

void TestProgramNodes::nodeThatIsNotThereIsAnError()
{
    CBoxCatcher catcher;
    const CSimulatorProcess simulator;
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 99);
    driver.open(sheet, 5);
    const CDocumentDriver absent(driver.document(0)), present(driver.document(1));
    absent.reach("1000: Device type");
    QCOMPARE(catcher.only().title, QString("Velmora - Read parameter"));
    QVERIFY(catcher.only().text.startsWith("Parameter could not be read.\n\n"));
    QCOMPARE(absent.value(), catcher.only().text);
    QCOMPARE(driver.statusText(), QString("Parameter 'Device type' could not be read from node #99"));
    present.reach("1000: Device type");
    QCOMPARE(present.value(), QString("0x000F0191"));
    QCOMPARE(catcher.count(), 1);
}

void TestProgramNodes::initialisingAgainKeepsTheDocuments()
{
    const CBoxCatcher catcher;
    const CSimulatorProcess first, second;
    m_store->setValue("Settings/Display", 1);
    CFrameDriver driver;
    driver.initialize(first.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.reach("1017: Producer heartbeat time");
    document.send("1");
    driver.initialize(second.interface());
    document.read();
    QCOMPARE(document.value(), QString("1000"));
    driver.initialize(first.interface());
    document.read();
    QCOMPARE(document.value(), QString("1"));
    QCOMPARE(catcher.count(), 0);
}

void TestProgramNodes::values_data()
{
    QTest::addColumn<QStringList>("texts"); // hexadecimal, decimal, octal
    struct tRow {
        const char* item;
        const char* hexadecimal;
        const char* decimal;
        const char* octal;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "2000: Test mode", "0x00 ", "0 ", "000 " },
             { "2001: Temperature alarm", "0x46", "+70", "106" },
             { "2003: Position", "0x0000000000A", "+10", "000012" },
             { "2004: Brightness", "0x32", "50", "062" },
             { "2005: Sample period", "0x01F4", "500", "000764" },
             { "2006: Operating hours alarm", "0xFFFFFFFF", "4294967295", "37777777777" },
             { "2007: Gain", "0x00 0x00 0xC0 0x3F ", "0 0 192 63 ", "000 000 300 077 " },
             { "2008: Location", "Machine hall 3", "Machine hall 3", "Machine hall 3" },
             { "2009: Key", "0x01 0x23 0x45 0x67 0x89 0xAB 0xCD 0xEF ", "1 35 69 103 137 171 205 239 ",
               "001 043 105 147 211 253 315 357 " },
             { "2011: Service password", "", "", "" }, // write-only
             { "2012: Build number", "0x0000003D", "61", "00000000075" },
             { "1008: Manufacturer device name", "Velmora Demo I/O", "Velmora Demo I/O", "Velmora Demo I/O" },
         })
        QTest::newRow(row.item) << QStringList{ row.hexadecimal, row.decimal, row.octal };
}

void TestProgramNodes::values()
{
    QFETCH(const QStringList, texts);
    const CBoxCatcher catcher;
    const CSimulatorProcess simulator;
    CFrameDriver driver;
    driver.initialize(simulator.interface());
    driver.open(sheet, 5);
    const CDocumentDriver document(driver.document(0));
    document.reach(QTest::currentDataTag());
    QStringList shown = { document.value() };
    for (const char* mode : { "dec", "oct" }) {
        document.choose(mode);
        document.read();
        shown << document.value();
    }
    QCOMPARE(shown, texts);
    QCOMPARE(catcher.count(), 0);
}

QTEST_MAIN(TestProgramNodes)
#include "TestProgramNodes.moc"

// A walk through the whole program with the simulated device, one step a test: each continues where the last one ended.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DeviceInfoDialog.h"
#include "DocumentDriver.h"
#include "FrameDriver.h"
#include "SimulatorProcess.h"
#include "TempSettings.h"

#include <QTabWidget>
#include <QTest>

#include <optional>

class TestProgramWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_catcher->clear(); }

    void initialisesTheInterface();
    void opensTheSampleSheetConnectedToNode5();
    void selectingAnEntryReadsIt();
    void readsInThreeDisplayModes();
    void sendsAValueAndReadsItBack();
    void sendsByReturn();
    void sendsATextAndReadsItBack();
    void refusesAWrongValue();
    void showsTheAbortOfTheDevice_data();
    void showsTheAbortOfTheDevice();
    void goesOnAfterTheFailures();
    void showsTheDeviceInfo();
    void showsTheProperties();
    void closesTheDocumentAndDisconnects();
    void keepsFileInterfaceAndDisplayMode();
    void cleanupTestCase();

private:
    CDocumentDriver document() const { return CDocumentDriver(m_driver->document(0)); }

    const QString m_sheet = VELMORA_SHARE "/velmora-demo.eds";
    std::optional<CTempSettings> m_store;
    std::optional<CSimulatorProcess> m_simulator;
    std::optional<CBoxCatcher> m_catcher;
    std::optional<CFrameDriver> m_driver;
};

void TestProgramWalk::initTestCase()
{
    m_store.emplace();
    m_simulator.emplace();
    QVERIFY2(m_simulator->port() != 0, m_simulator->log());
    m_catcher.emplace();
    m_driver.emplace();
}

void TestProgramWalk::initialisesTheInterface()
{
    m_driver->initialize("localhost:" + QString::number(m_simulator->port()));
    QCOMPARE(m_driver->statusText(), QString("CAN interface successfully initialized"));
    QVERIFY(m_simulator->hasLogged("connected"));
}

void TestProgramWalk::opensTheSampleSheetConnectedToNode5()
{
    m_driver->open(m_sheet, 5);
    QCOMPARE(m_driver->statusText(), "File " + m_sheet + " loaded and connected to node #5");
    QCOMPARE(m_driver->frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(document().root()->text(0), QString("CANopen: Node #5"));
}

void TestProgramWalk::selectingAnEntryReadsIt()
{
    document().reach("1000: Device type");
    QCOMPARE(document().value(), QString("0x000F0191"));
    QCOMPARE(document().box("object description"), QString("Object: Index 1000h"));
    QCOMPARE(document().box("entry description"), QString("Entry: Subndex  0h"));
    QCOMPARE(document().box("data access"), QString("Data access: #5"));
    QCOMPARE(m_driver->statusText(), QString("Parameter 'Device type' successfully read from node #5"));
    QVERIFY(m_simulator->hasLogged("5 read 0x1000 0x0 u32"));

    auto* identity = document().item("1018: Identity object");
    document().hit(identity, Qt::Key_Return);
    QVERIFY(identity->isExpanded());
    document().reach(" 1: Vendor-ID");
    QCOMPARE(document().value(), QString("0x0000F0B5"));
    QVERIFY(m_simulator->hasLogged("5 read 0x1018 0x1 u32"));
}

void TestProgramWalk::readsInThreeDisplayModes()
{
    document().reach("1017: Producer heartbeat time");
    QCOMPARE(document().value(), QString("0x03E8"));
    const std::pair<const char*, const char*> modes[] = {
        { "dec", "1000" }, { "oct", "001750" }, { "hex", "0x03E8" }, { "dec", "1000" }
    };
    for (const auto& [mode, text] : modes) {
        const QString before = document().value();
        document().choose(mode);
        QCOMPARE(document().value(), before); // the mode counts from the next read on
        document().read();
        QCOMPARE(document().value(), QString(text));
    }
}

void TestProgramWalk::sendsAValueAndReadsItBack()
{
    document().send("0x1F4");
    QCOMPARE(document().value(), QString("500"));
    QCOMPARE(m_driver->statusText(), QString("Parameter 'Producer heartbeat time' successfully sent to node #5"));
    QVERIFY(m_simulator->hasLogged("5 write 0x1017 0x0 u16 0x1F4"));
    document().reach("1000: Device type");
    QCOMPARE(document().value(), QString("983441"));
    document().reach("1017: Producer heartbeat time");
    QCOMPARE(document().value(), QString("500"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramWalk::sendsByReturn()
{
    document().type("250");
    QTest::keyClick(document().newValue(), Qt::Key_Return);
    QCOMPARE(document().value(), QString("250"));
    document().read();
    QCOMPARE(document().value(), QString("250"));
}

void TestProgramWalk::sendsATextAndReadsItBack()
{
    document().reach("2008: Location");
    QCOMPARE(document().value(), QString("Machine hall 3"));
    document().send("Boiler \"south\", 2nd floor");
    QVERIFY(document().value().isEmpty());
    document().read();
    QCOMPARE(document().value(), QString("Boiler \"south\", 2nd floor"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramWalk::refusesAWrongValue()
{
    document().reach("1017: Producer heartbeat time");
    for (const char* wrong : { "abc", "65536", "-1", "0x10000" }) {
        m_catcher->clear();
        document().send(wrong);
        QCOMPARE(m_catcher->only().title, QString("Velmora - Send parameter"));
        QCOMPARE(m_catcher->only().text, QString("Invalid data entered.\n\nPlease, try again!"));
        QCOMPARE(document().value(), QString("250"));
    }
    document().reach("1005: COB-ID SYNC message");
    QVERIFY(m_simulator->hasLogged("5 read 0x1005 0x0 u32")); // and so all that came before
    QVERIFY(!m_simulator->log().contains("abc"));
}

void TestProgramWalk::showsTheAbortOfTheDevice_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("abort");
    QTest::newRow("1017: Producer heartbeat time") << "30001"
                                                   << "6090031"; // above its limit
    QTest::newRow("2005: Sample period") << "9"
                                         << "6090032"; // below its limit
    QTest::newRow("1000: Device type") << "1"
                                       << "6010002"; // read-only
    QTest::newRow("2012: Build number") << "1"
                                        << "6010002"; // constant
}

void TestProgramWalk::showsTheAbortOfTheDevice()
{
    document().reach(QTest::currentDataTag());
    const QString before = document().value();
    QVERIFY(!before.isEmpty());
    QFETCH(const QString, value);
    QFETCH(const QString, abort);
    document().send(value);
    QCOMPARE(m_catcher->only().title, QString("Velmora - Send parameter"));
    QCOMPARE(m_catcher->only().text, "Parameter could not be sent.\n\nSDO transfer aborted: 0x" + abort);
    QVERIFY(!m_catcher->only().waitCursor);
    QCOMPARE(document().value(), before);
    const QString name = QString(QTest::currentDataTag()).section(": ", 1);
    QCOMPARE(m_driver->statusText(), "Parameter '" + name + "' could not be sent to node #5");
}

void TestProgramWalk::goesOnAfterTheFailures()
{
    document().reach("1017: Producer heartbeat time");
    QCOMPARE(document().value(), QString("250"));
    document().send("30000");
    document().read();
    QCOMPARE(document().value(), QString("30000"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramWalk::showsTheDeviceInfo()
{
    QString title;
    QStringList texts;
    const CWhenShown<CDeviceInfoDialog> dialog([&](CDeviceInfoDialog* shown) {
        title = shown->windowTitle();
        for (const auto* edit : shown->findChild<QTabWidget*>()->widget(0)->findChildren<QLineEdit*>())
            texts << edit->text();
        inDialog::clickButton(shown, "&OK");
        shown->close();
    });
    m_driver->choose("&Device", "Device &Info");
    QCOMPARE(dialog.count(), 1);
    QCOMPARE(title, m_sheet);
    QCOMPARE(texts, QStringList({ "Brask Works", "61621", "Velmora Demo I/O", "1025", "2.5", "BW-DEMO-16",
                                  "CANopen I/O device for demonstrations" }));
}

void TestProgramWalk::showsTheProperties()
{
    m_driver->choose("&Interface", "&Properties...");
    QCOMPARE(m_catcher->only().title, QString("Velmora - Interface Properties"));
    QCOMPARE(m_catcher->only().icon, QMessageBox::Information);
    QVERIFY2(m_catcher->only().text.startsWith("Hardware: Simulated CANopen gateway\nFirmware: velmora-sim"),
             qPrintable(m_catcher->only().text));
}

void TestProgramWalk::closesTheDocumentAndDisconnects()
{
    m_driver->press(Qt::Key_W);
    QCOMPARE(m_driver->documentCount(), 0);
    m_driver->press(Qt::Key_Q);
    QVERIFY(!m_driver->frame.isVisible());
    QVERIFY(m_simulator->hasLogged("disconnected"));
    QCOMPARE(m_catcher->count(), 0);
}

void TestProgramWalk::keepsFileInterfaceAndDisplayMode()
{
    QCOMPARE(m_store->value("Recent File List/File1"), m_sheet);
    QCOMPARE(m_store->value("Used Interfaces/Interface1"), "localhost:" + QString::number(m_simulator->port()));
    QCOMPARE(m_store->value("Settings/Display"), QString("1"));
}

void TestProgramWalk::cleanupTestCase()
{
    m_driver.reset();
    m_catcher.reset();
    m_simulator.reset();
}

QTEST_MAIN(TestProgramWalk)
#include "TestProgramWalk.moc"

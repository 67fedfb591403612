// Initialising the interface from the main frame, and what that means for its documents.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "SystemCalls.h"
#include "TempSettings.h"

#include <QTest>
#include <QTreeWidget>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1001\n"
                             "[1001]\nParameterName=Error Register\nObjectType=0x7\nDataType=0x0005\nAccessType=ro\n";

const QString boxTitle = "Velmora - Initialize Interface";
const QString notInitialized = "Interface not initialized.\n\nProbably no board present.";
const QString fallback = "Resistance is futile, prepare to assimilate!"; // codes without a text
const QString offline = "Data access is not possible in off-line mode!\n\nClose the document and connect to a device.";

QString failureOf(int error, const QString& interface, const QString& text)
{
    return "Error " + QString::number(error) + ": Interface '" + interface + "' could not be initialized!\n\n\t" + text;
}

} // namespace

class TestMainFrameInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void successShowsAStatusText();
    void localhostReachesTheGateway();
    void successEntersTheHistory();
    void failureLeavesTheHistory();
    void failureShowsABoxWithItsReason_data();
    void failureShowsABoxWithItsReason();
    void withoutInterfaceTextTheFacadeRefuses();
    void failureDeletesTheFacade();
    void failureShowsItsBoxBeforeItDeletesTheFacade();
    void frameMayBeDeletedWhileTheBoxOfAFailureIsOpen_data();
    void frameMayBeDeletedWhileTheBoxOfAFailureIsOpen();
    void failureTakesTheFacadeFromTheDocuments();
    void afterAFailureInitialisingWorksAgain();
    void documentsStayOfflineAfterALaterSuccess();
    void initialisingAgainReusesTheFacade();
    void cancelLeavesTheFacade();
    void cancelAtTheStartLeavesNone();
    void dialogIsAChildOfTheFrame();
    void withoutInterfaceNoNodeIsAskedFor();
    void keyboardAloneInitialises();
    void waitCursorIsShownWhileTheGatewayIsAsked();

private:
    QString history(int slot) const { return m_store->value("Used Interfaces/Interface" + QString::number(slot)); }
    static QString loopback(const CFakeGateway& gateway) { return "127.0.0.1:" + QString::number(gateway.port()); }
    static void read(CFrameDriver& driver, int position);

    const CRefusingPort m_refusing;
    std::optional<CTempSettings> m_store;
};

// Presses the Read button of a document.
void TestMainFrameInterface::read(CFrameDriver& driver, int position)
{
    QTest::mouseClick(driver.document(position)->findChild<QPushButton*>("read push button"), Qt::LeftButton);
}

void TestMainFrameInterface::successShowsAStatusText()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    QCOMPARE(driver.statusTime(), 2000);
    QCOMPARE(catcher.count(), 0);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void TestMainFrameInterface::localhostReachesTheGateway()
{
    CFakeGateway gateway;
    {
        CFrameDriver driver;
        driver.initialize("localhost:" + QString::number(gateway.port()));
        QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    }
    QVERIFY(gateway.awaitClosed());
}

void TestMainFrameInterface::successEntersTheHistory()
{
    CFakeGateway gateway;
    m_store->setValue("Used Interfaces/Interface1", "can0");
    m_store->setValue("Used Interfaces/Interface2", loopback(gateway));
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    QCOMPARE(history(1), loopback(gateway));
    QCOMPARE(history(2), QString("can0"));
    QCOMPARE(history(3), QString());
}

void TestMainFrameInterface::failureLeavesTheHistory()
{
    const CBoxCatcher catcher;
    m_store->setValue("Used Interfaces/Interface1", "10.1.2.3:60000");
    CFrameDriver driver;
    driver.initialize("no such interface");
    QCOMPARE(catcher.count(), 1);
    QCOMPARE(history(1), QString("10.1.2.3:60000"));
    QCOMPARE(history(2), QString());
}

void TestMainFrameInterface::failureShowsABoxWithItsReason_data()
{
    const QString refused = "127.0.0.1:" + QString::number(m_refusing.port());
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text");
    QTest::newRow(qPrintable(refused)) << -20000 << fallback;
    QTest::newRow(qPrintable(refused + " <i>behind</i> %1")) << -20000 << fallback;
    // no such network interfaces, with or without CAN in the kernel; the last have 16 characters and more
    for (const char* name : { "nocan0", "10.0.0.1", "can<b>0</b>", "%1%2%3 %n", "a&b", "K\xC3\xB6ln0",
                              "sixteen letters!", "seventeen letters" })
        QTest::newRow(name) << -10000 << fallback;
}

void TestMainFrameInterface::failureShowsABoxWithItsReason()
{
    QFETCH(const int, error);
    QFETCH(const QString, text);
    const QString interface = QString::fromUtf8(QTest::currentDataTag());
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.initialize(interface);
    QCOMPARE(catcher.only().title, boxTitle);
    QCOMPARE(catcher.only().text, failureOf(error, interface, text));
    QCOMPARE(catcher.only().icon, QMessageBox::Critical);
    QCOMPARE(catcher.only().format, Qt::PlainText);
    QVERIFY(!catcher.only().waitCursor);
}

void TestMainFrameInterface::withoutInterfaceTextTheFacadeRefuses()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    const CWhenShown<CInitInterfaceDialog> dialog([](CInitInterfaceDialog* shown) { shown->accept(); });
    driver.choose("&Interface", "&Initialize...");
    QCOMPARE(catcher.only().title, boxTitle);
    QCOMPARE(catcher.only().text, failureOf(-98, "", "Function not supported!"));
    QCOMPARE(history(1), QString());
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.boxes().last().text, notInitialized);
}

void TestMainFrameInterface::failureDeletesTheFacade()
{
    CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.initialize("nocan0");
    QVERIFY(gateway.awaitClosed());
    QCOMPARE(catcher.only().text, failureOf(-10000, "nocan0", fallback));
    catcher.clear();
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().text, notInitialized);
}

void TestMainFrameInterface::failureShowsItsBoxBeforeItDeletesTheFacade()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    const CWhenShown<QMessageBox> whileOpen([&](QMessageBox* box) {
        if (box->windowTitle() == boxTitle)
            driver.frame.interfaceProperties(); // as long as there is a facade, it is asked
    });
    driver.initialize("nocan0");
    QCOMPARE(catcher.count(), 2);
    QCOMPARE(catcher.boxes()[0].text, failureOf(-10000, "nocan0", fallback));
    QCOMPARE(catcher.boxes()[1].text, QString("Error ?: Properties could not be retrieved!"));
    driver.frame.interfaceProperties();
    QCOMPARE(catcher.boxes().last().text, notInitialized);
}

void TestMainFrameInterface::frameMayBeDeletedWhileTheBoxOfAFailureIsOpen_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::newRow("closed") << false;
    QTest::newRow("deleted") << true;
}

void TestMainFrameInterface::frameMayBeDeletedWhileTheBoxOfAFailureIsOpen()
{
    QFETCH(const bool, deleted);
    const CSheetFile sheet(sheetText);
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    auto driver = std::make_unique<CFrameDriver>();
    driver->initialize(loopback(gateway));
    driver->open(sheet.name(), 5);
    const QPointer<CMainFrame> frame = &driver->frame;
    const CWhenShown<CInitInterfaceDialog> dialog(
        [](CInitInterfaceDialog* shown) { inDialog::enterInterface(shown, "nocan0"); });
    const CWhenShown<QMessageBox> whileOpen([&](QMessageBox*) {
        QVERIFY(frame->close());
        if (deleted)
            driver.reset();
    });
    frame->interfaceInitialize();
    QCOMPARE(catcher.only().text, failureOf(-10000, "nocan0", fallback));
    QCOMPARE(frame.isNull(), deleted);
    QVERIFY(deleted || !frame->isVisible());
    QVERIFY(gateway.awaitClosed());
}

void TestMainFrameInterface::failureTakesTheFacadeFromTheDocuments()
{
    const CSheetFile sheet(sheetText);
    CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] 5 read 0x1001 0x0 u8\r\n", "[#] 7\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(sheet.name(), 5);
    driver.open(sheet.name(), 6);
    driver.document(0)->mouseLeftPressed(
        driver.document(0)->findChild<QTreeWidget*>()->topLevelItem(0)->child(0)->child(0));
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
    driver.initialize("nocan0");
    catcher.clear();
    for (const int position : { 0, 1 }) {
        read(driver, position);
        QCOMPARE(catcher.only().text, offline);
        QCOMPARE(catcher.only().title, QString("Velmora - Read parameter"));
        catcher.clear();
    }
    QTest::mouseClick(driver.document(0)->findChild<QPushButton*>("send push button"), Qt::LeftButton);
    QCOMPARE(catcher.only().text, offline);
    QVERIFY(gateway.finished());
}

void TestMainFrameInterface::afterAFailureInitialisingWorksAgain()
{
    const CSheetFile sheet(sheetText);
    CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    for (int round = 0; round < 2; ++round) {
        driver.initialize("nocan0");
        driver.initialize(loopback(gateway));
        QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    }
    catcher.clear();
    driver.open(sheet.name(), 5);
    QCOMPARE(driver.statusText(), "File " + sheet.name() + " loaded and connected to node #5");
}

void TestMainFrameInterface::documentsStayOfflineAfterALaterSuccess()
{
    const CSheetFile sheet(sheetText);
    CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(sheet.name(), 5);
    driver.initialize("nocan0");
    driver.initialize(loopback(gateway));
    catcher.clear();
    read(driver, 0);
    QCOMPARE(catcher.only().text, offline);
}

void TestMainFrameInterface::initialisingAgainReusesTheFacade()
{
    const CSheetFile sheet(sheetText);
    const CBoxCatcher catcher;
    CFakeGateway first, second;
    second.expect("[#] 5 read 0x1001 0x0 u8\r\n", "[#] 7\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(first));
    driver.open(sheet.name(), 5);
    driver.initialize(loopback(second));
    QVERIFY(first.awaitClosed());
    driver.document(0)->mouseLeftPressed(
        driver.document(0)->findChild<QTreeWidget*>()->topLevelItem(0)->child(0)->child(0));
    QVERIFY2(second.finished(), second.problem().c_str());
    QCOMPARE(catcher.count(), 0);
    QCOMPARE(history(1), loopback(second));
    QCOMPARE(history(2), loopback(first));
}

void TestMainFrameInterface::cancelLeavesTheFacade()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] info hardware\r\n", "[#] H\r\n");
    gateway.expect("[#] info software\r\n", "[#] F\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.frame.statusBar()->clearMessage();
    const CWhenShown<CInitInterfaceDialog> dialog(&inDialog::cancel);
    driver.choose("&Interface", "&Initialize...");
    QCOMPARE(dialog.count(), 1);
    QCOMPARE(catcher.count(), 0);
    QVERIFY(driver.statusText().isEmpty());
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().icon, QMessageBox::Information);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestMainFrameInterface::cancelAtTheStartLeavesNone()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    const CWhenShown<CInitInterfaceDialog> dialog(&inDialog::cancel);
    driver.frame.initializeInterface();
    QCOMPARE(dialog.count(), 1);
    QCOMPARE(driver.statusText(), QString("Ready"));
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().text, notInitialized);
}

void TestMainFrameInterface::dialogIsAChildOfTheFrame()
{
    CFrameDriver driver;
    QObject* parent = nullptr;
    bool modal = false;
    const CWhenShown<CInitInterfaceDialog> dialog([&](CInitInterfaceDialog* shown) {
        parent = shown->parent();
        modal = shown->isModal();
        inDialog::cancel(shown);
    });
    driver.frame.interfaceInitialize();
    QCOMPARE(parent, &driver.frame);
    QVERIFY(modal);
}

void TestMainFrameInterface::withoutInterfaceNoNodeIsAskedFor()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    const CWhenShown<CConnectNodeDialog> node(&inDialog::cancel);
    const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, sheet.name()); });
    driver.press(Qt::Key_O);
    QCOMPARE(files.count(), 1);
    QCOMPARE(node.count(), 0);
    QCOMPARE(driver.statusText(), "File " + sheet.name() + " loaded in off-line mode");
    QCOMPARE(driver.statusTime(), 2000);
}

void TestMainFrameInterface::keyboardAloneInitialises()
{
    CFakeGateway gateway;
    CFrameDriver driver;
    const CWhenShown<CInitInterfaceDialog> dialog([&](CInitInterfaceDialog* shown) {
        QTest::keyClicks(shown->focusWidget(), loopback(gateway));
        QTest::keyClick(shown->focusWidget(), Qt::Key_Return);
        if (shown->isVisible())
            shown->reject();
    });
    driver.press(Qt::Key_I, Qt::AltModifier);
    QTest::keyClick(driver.menu("&Interface"), Qt::Key_I);
    QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    QCOMPARE(history(1), loopback(gateway));
}

void TestMainFrameInterface::waitCursorIsShownWhileTheGatewayIsAsked()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.answerWith([](auto&) { return "[#] text\r\n"; });
    CFrameDriver driver;
    QList<bool> shown; // when connecting, and for each command of the properties
    const auto note = [&] { shown << (QGuiApplication::overrideCursor() != nullptr); };
    CSystemCalls calls;
    calls.connect = [&](auto... arguments) {
        note();
        return __real_connect(arguments...);
    };
    calls.send = [&](auto... arguments) {
        note();
        return __real_send(arguments...);
    };
    driver.initialize(loopback(gateway));
    driver.frame.interfaceProperties();
    QCOMPARE(shown, QList<bool>({ true, true, true }));
    QVERIFY(!catcher.only().waitCursor);
}

QTEST_MAIN(TestMainFrameInterface)
#include "TestMainFrameInterface.moc"

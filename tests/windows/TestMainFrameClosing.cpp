// The end of the main frame: closing with documents and an open interface, by the user and from code.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include "tcp/tcp_open.h"

#include <QCloseEvent>
#include <QTest>

#include <optional>

namespace
{

/// A document that refuses to close.
class CRefusingDocument : public CMDIWindow
{
public:
    using CMDIWindow::CMDIWindow;
    void closeEvent(QCloseEvent* event) override
    {
        ++asked;
        event->ignore();
    }

    int asked = 0;
};

CRefusingDocument* addRefusingDocument(CFrameDriver& driver)
{
    auto* document = new CRefusingDocument;
    auto* window = new QMdiSubWindow(driver.workspace());
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWidget(document);
    driver.workspace()->addSubWindow(window);
    window->show();
    return document;
}

} // namespace

class TestMainFrameClosing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void closingClosesTheDocuments();
    void closedDocumentDeletesItselfAndItsSubWindow_data();
    void closedDocumentDeletesItselfAndItsSubWindow();
    void closingDisconnectsTheGateway();
    void closingWithoutInterfaceAsksNothing();
    void refusingDocumentKeepsTheFrameOpen();
    void refusingDocumentKeepsTheInterface();
    void closeAllPassesOverARefusingDocument();
    void deletedFrameDisconnectsTheGateway();
    void closingFromCodeDuringTheFirstDialog();
    void closingFromCodeDuringTheConnectDialog();
    void closingADocumentDuringItsConnectDialog();
    void closingFromCodeDuringTheFileDialog();
    void interfaceThatIsAcceptedAfterClosingLeavesNothingOpen();

private:
    static QString loopback(const CFakeGateway& gateway) { return "127.0.0.1:" + QString::number(gateway.port()); }

    std::optional<CTempSettings> m_store;
};

void TestMainFrameClosing::closingClosesTheDocuments()
{
    CFrameDriver driver;
    const QPointer<CMDIWindow> first = driver.frame.newDocument(), second = driver.frame.newDocument();
    QVERIFY(driver.frame.close());
    QCOMPARE(driver.documentCount(), 0);
    AWAIT_VERIFY(first.isNull() && second.isNull());
}

void TestMainFrameClosing::closedDocumentDeletesItselfAndItsSubWindow_data()
{
    QTest::addColumn<bool>("subWindowFirst");
    QTest::newRow("the document itself") << false;
    QTest::newRow("its sub-window") << true;
}

void TestMainFrameClosing::closedDocumentDeletesItselfAndItsSubWindow()
{
    QFETCH(const bool, subWindowFirst);
    CFrameDriver driver;
    const QPointer<CMDIWindow> document = driver.frame.newDocument();
    const QPointer<QMdiSubWindow> subWindow = driver.subWindow(0);
    QVERIFY(subWindowFirst ? subWindow->close() : document->close());
    AWAIT_VERIFY(document.isNull() && subWindow.isNull());
    QCOMPARE(driver.documentCount(), 0);
}

void TestMainFrameClosing::closingDisconnectsTheGateway()
{
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.press(Qt::Key_Q);
    QVERIFY(gateway.awaitClosed()); // while the frame still exists
    QVERIFY(gateway.received().empty());
}

void TestMainFrameClosing::closingWithoutInterfaceAsksNothing()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.frame.newDocument();
    QVERIFY(driver.frame.close());
    QCOMPARE(catcher.count(), 0);
    QVERIFY(!driver.frame.isVisible());
}

void TestMainFrameClosing::refusingDocumentKeepsTheFrameOpen()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    const CRefusingDocument* refusing = addRefusingDocument(driver);
    QMdiSubWindow* middle = driver.subWindow(1);
    driver.frame.newDocument();
    QMdiSubWindow* last = driver.subWindow(2);

    QVERIFY(!driver.frame.close());
    QVERIFY(driver.frame.isVisible());
    QCOMPARE(refusing->asked, 1);
    QCOMPARE(driver.workspace()->subWindowList(), QList<QMdiSubWindow*>({ middle, last }));
    QVERIFY(last->isVisible());
}

void TestMainFrameClosing::refusingDocumentKeepsTheInterface()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] info hardware\r\n", "[#] H\r\n");
    gateway.expect("[#] info software\r\n", "[#] F\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    addRefusingDocument(driver);
    QVERIFY(!driver.frame.close());
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().icon, QMessageBox::Information);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestMainFrameClosing::closeAllPassesOverARefusingDocument()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    const CRefusingDocument* refusing = addRefusingDocument(driver);
    QMdiSubWindow* middle = driver.subWindow(1);
    driver.frame.newDocument();
    driver.choose("&File", "C&lose All");
    QCOMPARE(refusing->asked, 1);
    QCOMPARE(driver.workspace()->subWindowList(), QList<QMdiSubWindow*>{ middle });
}

void TestMainFrameClosing::deletedFrameDisconnectsTheGateway()
{
    const CSheetFile sheet("[FileInfo]\n");
    CFakeGateway gateway;
    {
        CFrameDriver driver;
        driver.initialize(loopback(gateway));
        driver.open(sheet.name(), 5);
    }
    QVERIFY(gateway.awaitClosed());
}

void TestMainFrameClosing::closingFromCodeDuringTheFirstDialog()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    bool closed = false;
    const CWhenShown<CInitInterfaceDialog> dialog([&](CInitInterfaceDialog* shown) {
        closed = driver.frame.close();
        QTimer::singleShot(0, shown, &QDialog::reject); // in case the dialog is still open
    });
    driver.frame.initializeInterface();
    QVERIFY(closed);
    QVERIFY(!driver.frame.isVisible());
    QCOMPARE(catcher.count(), 0);
}

void TestMainFrameClosing::closingFromCodeDuringTheConnectDialog()
{
    const CSheetFile sheet("[FileInfo]\n");
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, sheet.name()); });
    const CWhenShown<CConnectNodeDialog> node([&](auto*) { driver.frame.close(); });
    driver.press(Qt::Key_O);
    QCOMPARE(node.count(), 1);
    QVERIFY(!driver.frame.isVisible());
    QVERIFY(gateway.awaitClosed());
    QCOMPARE(catcher.count(), 0);
}

void TestMainFrameClosing::closingADocumentDuringItsConnectDialog()
{
    const CSheetFile sheet("[FileInfo]\n");
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, sheet.name()); });
    const CWhenShown<CConnectNodeDialog> node([&](auto*) { driver.frame.fileCloseAll(); });
    driver.press(Qt::Key_O);
    QCOMPARE(node.count(), 1);
    AWAIT_COMPARE(driver.frame.findChildren<CMDIWindow*>().size(), 0);
    QCOMPARE(driver.documentCount(), 0);
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(catcher.count(), 0);
    driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
}

void TestMainFrameClosing::closingFromCodeDuringTheFileDialog()
{
    CFrameDriver driver;
    const CWhenShown<QFileDialog> files([&](QFileDialog* shown) {
        driver.frame.close();
        QTimer::singleShot(0, shown, &QDialog::reject);
    });
    driver.press(Qt::Key_O);
    QCOMPARE(files.count(), 1);
    QVERIFY(!driver.frame.isVisible());
    QCOMPARE(driver.documentCount(), 0);
}

void TestMainFrameClosing::interfaceThatIsAcceptedAfterClosingLeavesNothingOpen()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    {
        CFrameDriver driver;
        const CWhenShown<CInitInterfaceDialog> dialog([&](CInitInterfaceDialog* shown) {
            driver.frame.close();
            if (shown->isVisible())
                inDialog::enterInterface(shown, loopback(gateway));
        });
        driver.frame.initializeInterface();
        QVERIFY(!driver.frame.isVisible());
    }
    QCOMPARE(top_exit(), -95); // nothing is connected
    QCOMPARE(catcher.count(), 0);
}

QTEST_MAIN(TestMainFrameClosing)
#include "TestMainFrameClosing.moc"

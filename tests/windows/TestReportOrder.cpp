// In which order the windows do what belongs to one request: load, ask, report, box, status, lists.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "OnlineDocument.h"
#include "TempSettings.h"

#include <QTest>

#include <optional>

namespace
{

const QString startCaption = "CANopen Object Browser - Version 0.2 Build 61";

} // namespace

class TestReportOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void loadFailureIsInTheStatusBarBeforeItsBox();
    void transferFailureIsInTheStatusBarAfterItsBox_data();
    void transferFailureIsInTheStatusBarAfterItsBox();
    void failedReadIsInItsFieldBeforeItsBox();
    void returnKeySelectsBeforeItToggles();
    void captionAndRecentFilesWaitForTheDocument();
    void treeIsThereBeforeTheStatus();
    void closeAllClosesInTheOrderOfTheList();

private:
    std::optional<CTempSettings> m_store;
};

void TestReportOrder::loadFailureIsInTheStatusBarBeforeItsBox()
{
    const CBoxCatcher catcher;
    const CSheetFile sheet("bad");
    CNewDocument document;
    QStringList whileOpen;
    const CWhenShown<QMessageBox> boxes([&](auto*) { whileOpen = document.statuses(); });
    QVERIFY(!document.openFile(sheet.name()));
    QCOMPARE(whileOpen, QStringList{ "File " + sheet.name() + " could not be loaded" });
    QCOMPARE(document.statuses(), whileOpen);
}

void TestReportOrder::transferFailureIsInTheStatusBarAfterItsBox_data()
{
    QTest::addColumn<bool>("read");
    QTest::newRow("read") << true;
    QTest::newRow("send") << false;
}

void TestReportOrder::transferFailureIsInTheStatusBarAfterItsBox()
{
    QFETCH(const bool, read);
    const CBoxCatcher catcher;
    COnlineDocument document(sheetOf(0x2000, CCANopenObjectEntry::typeUnsigned8, read ? "ro" : "wo"));
    document.gateway.answerWith([](auto&) { return "[#] ERROR: 1\r\n"; });
    QList<QStringList> whileOpen;
    const CWhenShown<QMessageBox> boxes([&](auto*) { whileOpen << document.statuses(); });
    document.press("2000: Value"); // reads what can be read
    if (!read)
        document.send("5");
    QCOMPARE(whileOpen, QList<QStringList>{ {} });
    QCOMPARE(document.statuses().size(), 1);
}

void TestReportOrder::failedReadIsInItsFieldBeforeItsBox()
{
    const CBoxCatcher catcher;
    COnlineDocument document(sheetOf(0x2000, CCANopenObjectEntry::typeUnsigned8));
    document.gateway.answerWith([](auto&) { return "[#] ERROR: 1\r\n"; });
    QString whileOpen;
    const CWhenShown<QMessageBox> boxes([&](auto*) { whileOpen = document.value(); });
    document.press("2000: Value");
    QCOMPARE(whileOpen, QString("Parameter could not be read.\n\nError code -601"));
}

// The message of a selected group tells when it is selected.
void TestReportOrder::returnKeySelectsBeforeItToggles()
{
    CNewDocument document;
    QVERIFY(document.open(sheetOf(0x2000, 5)));
    QList<bool> expanded;
    connect(document.window, &CMDIWindow::message, this, [&] { expanded << document.root()->isExpanded(); });
    document.hit(document.root(), Qt::Key_Return);
    QCOMPARE(expanded, QList<bool>{ true });
    QVERIFY(!document.root()->isExpanded());
}

void TestReportOrder::captionAndRecentFilesWaitForTheDocument()
{
    const CSheetFile sheet("[FileInfo]\n");
    CFakeGateway gateway;
    CFrameDriver driver;
    driver.initializeGateway(gateway.port());
    QStringList captions, recent;
    const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, sheet.name()); });
    const CWhenShown<CConnectNodeDialog> node([&](auto* shown) {
        captions << driver.frame.windowTitle();
        recent << m_store->value("Recent File List/File1");
        shown->acceptOffline();
    });
    driver.press(Qt::Key_O);
    QCOMPARE(captions, QStringList{ startCaption });
    QCOMPARE(recent, QStringList{ "" });
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(m_store->value("Recent File List/File1"), sheet.name());
}

void TestReportOrder::treeIsThereBeforeTheStatus()
{
    CNewDocument document;
    QStringList seen;
    connect(document.window, &CMDIWindow::message, this,
            [&] { seen << document.window->windowTitle() << document.root()->text(0); });
    QVERIFY(document.open(sheetOf(0x2000, 5)));
    QCOMPARE(seen, QStringList({ document.fileName(), "CANopen: Object dictionary" }));
}

void TestReportOrder::closeAllClosesInTheOrderOfTheList()
{
    CFrameDriver driver;
    QStringList closed;
    for (const char* name : { "first", "second", "third" }) {
        const CMDIWindow* document = driver.frame.newDocument();
        connect(document, &QObject::destroyed, this, [&closed, name] { closed << name; });
    }
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.frame.fileCloseAll();
    AWAIT_COMPARE(closed.size(), 3);
    QCOMPARE(closed, QStringList({ "first", "second", "third" }));
}

QTEST_MAIN(TestReportOrder)
#include "TestReportOrder.moc"

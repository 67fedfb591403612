// When a document may read and send at all, and how it outlives gateways, facades and itself.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"

#include "BoxCatcher.h"
#include "ConnectNodeDialog.h"
#include "SystemCalls.h"
#include "TempSettings.h"
#include "WhenShown.h"

#include <QPointer>

using TEntry = CCANopenObjectEntry;

namespace
{

const QString offlineText =
    "Data access is not possible in off-line mode!\n\nClose the document and connect to a device.";
const QString nothingSelected = "No parameter is selected!\n\nSelect one and try again.";
const QString readTitle = "Velmora - Read parameter";
const QString sendTitle = "Velmora - Send parameter";
const QString readFine = "Parameter 'Value' successfully read from node #5";
const QString readFailed = "Parameter 'Value' could not be read from node #5";
const QString sendFailed = "Parameter 'Value' could not be sent to node #5";

} // namespace

class TestMDIWindowAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void offlineBothButtonsWarn_data();
    void offlineBothButtonsWarn();
    void offlineByChoiceBothButtonsWarn();
    void withoutAParameterBothButtonsWarn_data();
    void withoutAParameterBothButtonsWarn();
    void theWaitCursorIsShownDuringTransfersOnly();
    void aSilentGatewayLeavesTheCommandAsItsAnswer_data();
    void aSilentGatewayLeavesTheCommandAsItsAnswer();
    void sendingToASilentGatewayFails();
    void aGatewayThatCannotBeReachedFailsEveryTransfer();
    void aGatewayThatHangsUpDuringAReadLeavesTheDocumentUsable_data();
    void aGatewayThatHangsUpDuringAReadLeavesTheDocumentUsable();
    void anOlderAbortDoesNotShowThrough();
    void aDocumentWhoseAccessWasTakenIsOfflineForGood();
    void anOfflineDocumentHasNoAccessToRelease();
    void aDocumentMayDisappearWhileItsBoxIsShown_data();
    void aDocumentMayDisappearWhileItsBoxIsShown();

private:
    /// The only box since the last check.
    void checkWarning(const QString& title, const QString& text)
    {
        const auto box = m_boxes.only();
        m_boxes.clear();
        QCOMPARE(box.title, title);
        QCOMPARE(box.text, text);
        QCOMPARE(box.icon, QMessageBox::Warning);
        QCOMPARE(box.format, Qt::PlainText);
        QVERIFY(!box.waitCursor);
    }

    CBoxCatcher m_boxes;
    std::unique_ptr<CTempSettings> m_settings;
};

void TestMDIWindowAccess::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_boxes.clear();
}

void TestMDIWindowAccess::offlineBothButtonsWarn_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("no file") << "";
    QTest::newRow("nothing selected") << "Manufacturer specific";
    QTest::newRow("a variable selected") << "2000: Value";
}

void TestMDIWindowAccess::offlineBothButtonsWarn()
{
    QFETCH(const QString, selected);
    CNewDocument document;
    if (!selected.isEmpty()) {
        QVERIFY(document.open(sheetOf(0x2000, TEntry::typeUnsigned8)));
        document.press(selected);
    }
    document.forgetStatuses();
    document.read();
    checkWarning(readTitle, offlineText);
    document.send("5");
    checkWarning(sendTitle, offlineText);
    QTest::keyClick(document.newValue(), Qt::Key_Return);
    checkWarning(sendTitle, offlineText);
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(document.newValue()->text(), QString("5"));
    QCOMPARE(document.value(), QString());
}

void TestMDIWindowAccess::offlineByChoiceBothButtonsWarn()
{
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(document.open(sheetOf(0x2000, TEntry::typeUnsigned8), &link.access, CNewDocument::offline));
    document.press("2000: Value");
    document.read();
    checkWarning(readTitle, offlineText);
    document.send("5");
    checkWarning(sendTitle, offlineText);
    QCOMPARE(link.gateway.received(), std::string());
}

void TestMDIWindowAccess::withoutAParameterBothButtonsWarn_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("nothing pressed yet") << "";
    for (const char* text : { "CANopen: Node #5", "Manufacturer specific", "2000: Record" })
        QTest::newRow(text) << text;
}

void TestMDIWindowAccess::withoutAParameterBothButtonsWarn()
{
    QFETCH(const QString, selected);
    COnlineDocument document("[ManufacturerObjects]\n1=0x2000\n[2000]\nParameterName=Record\nObjectType=9\n"
                             "[2000sub1]\nParameterName=Value\nDataType=5\n");
    if (!selected.isEmpty())
        document.press(selected);
    document.forgetStatuses();
    document.read();
    checkWarning(readTitle, nothingSelected);
    document.send("5");
    checkWarning(sendTitle, nothingSelected);
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(document.gateway.received(), std::string());
}

void TestMDIWindowAccess::theWaitCursorIsShownDuringTransfersOnly()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x8\r\n", "[#] ERROR: 1\r\n");
    QList<Qt::CursorShape> shapes;
    CSystemCalls calls;
    calls.send = [&shapes](int socket, const void* data, size_t length, int flags) {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        shapes << (cursor != nullptr ? cursor->shape() : Qt::ArrowCursor);
        return __real_send(socket, data, length, flags);
    };
    document.press("2000: Value");
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    document.send("8");
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QCOMPARE(shapes, QList({ Qt::WaitCursor, Qt::WaitCursor }));
    QVERIFY(!m_boxes.only().waitCursor);
    document.send("abc");
    document.window->releaseAccess();
    document.read();
    QCOMPARE(m_boxes.count(), 3);
    for (const auto& box : m_boxes.boxes())
        QVERIFY2(!box.waitCursor, qPrintable(box.text));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void TestMDIWindowAccess::aSilentGatewayLeavesTheCommandAsItsAnswer_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("value");
    // Of its own command, the node-id is what a read evaluates then: 5, which is base64 for 0xE4.
    QTest::newRow("Unsigned8") << int(TEntry::typeUnsigned8) << "5";
    QTest::newRow("Integer32") << int(TEntry::typeInteger32) << "+5";
    QTest::newRow("Domain") << int(TEntry::typeDomain) << "228 ";
    QTest::newRow("Visible String") << int(TEntry::typeVisibleString) << "ä";
}

void TestMDIWindowAccess::aSilentGatewayLeavesTheCommandAsItsAnswer()
{
    QFETCH(const int, type);
    COnlineDocument document(sheetOf(0x2000, type));
    document.choose("dec");
    {
        CSystemCalls calls;
        calls.select = [](auto...) { return 0; }; // the time-out, at once
        document.press("2000: Value");
    }
    QTEST(document.value(), "value");
    QCOMPARE(document.statuses(), QStringList{ readFine });
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowAccess::sendingToASilentGatewayFails()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x5\r\n", ""); // nothing
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x6\r\n", "[#-1] OK\r\n[#] OK\r\n");
    document.press("2000: Value");
    {
        CSystemCalls calls;
        calls.select = [](auto...) { return 0; };
        document.send("5");
    }
    checkWarning(sendTitle, "Parameter could not be sent.\n\nError code -70");
    QCOMPARE(document.statuses(), QStringList{ sendFailed });
    document.send("6"); // the late answer is skipped
    QCOMPARE(document.value(), QString("0x06"));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowAccess::aGatewayThatCannotBeReachedFailsEveryTransfer()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    CSystemCalls calls;
    calls.send = [](auto...) { return ssize_t(-1); };
    document.press("2000: Value");
    checkWarning(readTitle, "Parameter could not be read.\n\nError code -793");
    document.send("5");
    checkWarning(sendTitle, "Parameter could not be sent.\n\nError code -793");
    QCOMPARE(document.statuses(), QStringList({ readFailed, sendFailed }));
    QCOMPARE(document.value(), QString("Parameter could not be read.\n\nError code -793"));
}

void TestMDIWindowAccess::aGatewayThatHangsUpDuringAReadLeavesTheDocumentUsable_data()
{
    QTest::addColumn<std::string>("start");
    QTest::newRow("[#]") << std::string("[#]");
    QTest::newRow("[") << std::string("[");
    QTest::newRow("[# ERR") << std::string("[#] ERR");
}

void TestMDIWindowAccess::aGatewayThatHangsUpDuringAReadLeavesTheDocumentUsable()
{
    QFETCH(const std::string, start);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", { start, tGatewayAnswer::hangUp });
    document.press("2000: Value");
    checkWarning(readTitle, "Parameter could not be read.\n\nError code -70");
    QCOMPARE(document.statuses(), QStringList{ readFailed });
    QVERIFY(document.window->isVisible());
    document.press("Manufacturer specific");
    QCOMPARE(document.value(), QString());

    // The interface is initialised again with the same facade: the document can read again.
    CFakeGateway other;
    other.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 9\r\n");
    QVERIFY(document.access.terminate());
    document.press("2000: Value");
    checkWarning(readTitle, "Parameter could not be read.\n\nError code -95");
    _top_param address = { CFakeGateway::address, other.port(), { 1, 1, 255 } };
    QVERIFY(document.access.initialize(700, -1, &address, 0));
    document.read();
    QCOMPARE(document.value(), QString("0x09"));
    QVERIFY(other.finished());
    QVERIFY(document.access.terminate());
}

void TestMDIWindowAccess::anOlderAbortDoesNotShowThrough()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] ERROR: 0x06020000\r\n");
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] ERROR: 5\r\n");
    document.press("2000: Value");
    m_boxes.clear();
    document.read();
    checkWarning(readTitle, "Parameter could not be read.\n\nError code -605");
}

void TestMDIWindowAccess::aDocumentWhoseAccessWasTakenIsOfflineForGood()
{
    COnlineDocument document("[ManufacturerObjects]\n1=0x2000\n2=0x2001\n[2000]\nParameterName=Value\nObjectType=7\n"
                             "DataType=5\nAccessType=rw\n[2001]\nParameterName=Other\nObjectType=7\nAccessType=wo\n");
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.press("2000: Value");
    document.forgetStatuses();
    document.window->releaseAccess();
    QCOMPARE(document.value(), QString("0x07"));
    QCOMPARE(document.root()->text(0), QString("CANopen: Node #5"));
    QCOMPARE(document.box("data access"), QString("Data access: #5"));
    QCOMPARE(document.window->windowTitle(), document.fileName());
    document.read();
    checkWarning(readTitle, offlineText);
    document.send("5");
    checkWarning(sendTitle, offlineText);
    document.press("2000: Value");
    checkWarning(readTitle, offlineText);
    document.press("2001: Other");
    checkWarning(readTitle, offlineText);
    QCOMPARE(document.field("object name"), QString("Other"));
    QCOMPARE(document.box("data access"), QString("Data access: #5"));
    document.press("Manufacturer specific");
    QCOMPARE(m_boxes.count(), 0);
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
    QCOMPARE(document.statuses(), QStringList{ "No object attributes loaded" });
}

void TestMDIWindowAccess::anOfflineDocumentHasNoAccessToRelease()
{
    CNewDocument document;
    QVERIFY(document.open(sheetOf(0x2000, TEntry::typeUnsigned8)));
    document.window->releaseAccess();
    document.press("2000: Value");
    QCOMPARE(document.box("data access"), QString("Data access: N/A"));
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowAccess::aDocumentMayDisappearWhileItsBoxIsShown_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<QString>("act");
    QTest::newRow("off-line, read") << false << "read";
    QTest::newRow("off-line, send") << false << "send";
    QTest::newRow("read failed") << true << "read";
    QTest::newRow("send failed") << true << "send";
    QTest::newRow("read by a press failed") << true << "press";
    QTest::newRow("read by the Return key failed") << true << "Return in the tree";
}

void TestMDIWindowAccess::aDocumentMayDisappearWhileItsBoxIsShown()
{
    QFETCH(const bool, online);
    QFETCH(const QString, act);
    CGatewayLink link;
    link.gateway.answerWith([](auto&) { return "[#] ERROR: 1\r\n"; });
    const CSheetFile sheet(sheetOf(0x2000, TEntry::typeUnsigned8));
    QPointer<CMDIWindow> window = new CMDIWindow;
    window->show();
    const CWhenShown<CConnectNodeDialog> connecting([](CConnectNodeDialog* dialog) { dialog->acceptConnect(); });
    QVERIFY(window->openDocument(sheet.name(), online ? &link.access : nullptr));
    auto* tree = window->findChild<QTreeWidget*>();
    auto* item = tree->findItems("2000: Value", Qt::MatchExactly | Qt::MatchRecursive).first();
    tree->expandAll();
    tree->setCurrentItem(item);
    window->mouseLeftPressed(item);
    QCOMPARE(m_boxes.count(), online ? 1 : 0);
    m_boxes.clear();

    QSignalSpy messages(window, &CMDIWindow::message);
    const CWhenShown<QMessageBox> failing([&](QMessageBox*) { delete window; });
    window->findChild<QLineEdit*>("new value line edit")->setText("5");
    if (act == "press")
        QTest::mousePress(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(item).center());
    else if (act == "Return in the tree")
        QTest::keyPress(tree, Qt::Key_Return);
    else
        CNewDocument::click(window->findChild<QPushButton*>(act + " push button"));
    QVERIFY(window.isNull());
    QCOMPARE(m_boxes.count(), 1);
    QCOMPARE(messages.count(), 0);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

QTEST_MAIN(TestMDIWindowAccess)
#include "TestMDIWindowAccess.moc"

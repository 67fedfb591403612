// Opening a document: loading, connecting to a node, the tree that comes of it, and the device information.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"

#include "BoxCatcher.h"
#include "ConnectNodeDialog.h"
#include "DeviceInfoDialog.h"
#include "TempSettings.h"
#include "WhenShown.h"

#include <QPointer>
#include <QWindow>

#include <algorithm>
#include <ctime>

namespace
{

constexpr char groups[] = R"(
[MandatoryObjects]
1=0x1018
2=0x1000
[OptionalObjects]
1=0xA000
2=0x6001
3=0x6000
4=0x0005
[ManufacturerObjects]
1=0x2000
[1000]
ParameterName=Device Type
ObjectType=7
[1018]
ParameterName=Identity Object
ObjectType=9
[1018sub1]
ParameterName=Vendor Id
[1018sub0]
ParameterName=Number of entries
)";

// An index of 0 in an object list makes the next section create its object, which then has no profile.
constexpr char withoutProfiles[] = R"(
[OptionalObjects]
1=0
[2000]
ParameterName=One
ObjectType=7
[OptionalObjects]
1=0
[1000]
ParameterName=Two
ObjectType=7
)";

// Objects of six entries each.
QByteArray sheetOfRecords(int count)
{
    QByteArray lists = "[ManufacturerObjects]\n";
    QByteArray sections;
    for (int number = 0; number < count; ++number) {
        const QByteArray index = QByteArray::number(0x2000 + number, 16);
        lists += QByteArray::number(number + 1) + "=0x" + index + '\n';
        sections += '[' + index + "]\nParameterName=Object " + index + "\nObjectType=9\nDataType=0x23\n";
        for (int entry = 0; entry < 6; ++entry)
            sections += '[' + index + "sub" + QByteArray::number(entry) +
                        "]\nParameterName=Entry\nObjectType=7\nDataType=7\nAccessType=rw\nPDOMapping=0\n";
    }
    return lists + sections;
}

// Processor time in ticks; -1 if the sheet cannot be opened.
std::clock_t timeToOpen(const QByteArray& sheet)
{
    CNewDocument document;
    const std::clock_t start = std::clock();
    const bool opened = document.open(sheet);
    const std::clock_t ticks = std::clock() - start;
    return opened ? ticks : -1;
}

} // namespace

class TestMDIWindowOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_boxes.clear(); }

    void withoutAnAccessADocumentIsOffline();
    void connectingToANode_data();
    void connectingToANode();
    void workingOfflineByChoice();
    void cancellingTheConnectDialogOpensNothingAlthoughTheFileLoaded();
    void aSyntaxErrorIsReported_data();
    void aSyntaxErrorIsReported();
    void whatCannotBeReadOpensAsAnEmptyDocument_data();
    void whatCannotBeReadOpensAsAnEmptyDocument();
    void foreignFileNames_data();
    void foreignFileNames();
    void aModificationMarkInAFileNameIsShown_data();
    void aModificationMarkInAFileNameIsShown();
    void theTreeIsGroupedAndSorted();
    void objectsWithoutAProfileAreOtherObjects();
    void tenThousandObjectsOpenQuickly();
    void tenThousandObjectsAreAllThere();
    void deviceInformationIsShown();
    void missingDeviceInformationIsReportedBeforeTheDialogShows();
    void aDocumentMayDisappearWhileItIsConnected();
    void aDocumentMayDisappearWhileALoadFailureIsShown();
    void aDocumentMayDisappearWhileItsDeviceInformationIsShown();

private:
    const CTempSettings m_settings;
    CBoxCatcher m_boxes;
};

void TestMDIWindowOpening::withoutAnAccessADocumentIsOffline()
{
    CNewDocument document;
    QVERIFY(document.open(groups));
    QCOMPARE(document.connectDialogs, 0);
    QCOMPARE(document.statuses(), QStringList{ "File " + document.fileName() + " loaded in off-line mode" });
    QCOMPARE(document.window->windowTitle(), document.fileName());
    QCOMPARE(document.root()->text(0), QString("CANopen: Object dictionary"));
    QCOMPARE(document.box("data access"), QString("Data access"));
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowOpening::connectingToANode_data()
{
    QTest::addColumn<int>("node");
    for (const int node : { 1, 5, 99, 127 })
        QTest::addRow("%d", node) << node;
}

void TestMDIWindowOpening::connectingToANode()
{
    QFETCH(const int, node);
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(document.open(groups, &link.access, node));
    QCOMPARE(document.connectDialogs, 1);
    QCOMPARE(document.statuses(),
             QStringList{ QString("File %1 loaded and connected to node #%2").arg(document.fileName()).arg(node) });
    QCOMPARE(document.window->windowTitle(), document.fileName());
    QCOMPARE(document.root()->text(0), QString("CANopen: Node #%1").arg(node));
    document.press(document.root());
    QCOMPARE(document.box("data access"), QString("Data access: #%1").arg(node));
    QCOMPARE(link.gateway.received(), std::string()); // opening needs no transfer
}

void TestMDIWindowOpening::workingOfflineByChoice()
{
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(document.open(groups, &link.access, CNewDocument::offline));
    QCOMPARE(document.connectDialogs, 1);
    QCOMPARE(document.statuses(), QStringList{ "File " + document.fileName() + " loaded in off-line mode" });
    QCOMPARE(document.root()->text(0), QString("CANopen: Object dictionary"));
    document.press("1000: Device Type");
    QCOMPARE(document.box("data access"), QString("Data access: N/A"));
    QCOMPARE(m_boxes.count(), 0);
    QCOMPARE(link.gateway.received(), std::string());
}

void TestMDIWindowOpening::cancellingTheConnectDialogOpensNothingAlthoughTheFileLoaded()
{
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(!document.open(groups, &link.access, CNewDocument::cancels));
    QCOMPARE(document.connectDialogs, 1);
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(document.tree()->topLevelItemCount(), 0);
    QCOMPARE(document.window->windowTitle(), QString());
    QVERIFY(document.window->isVisible());
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowOpening::aSyntaxErrorIsReported_data()
{
    QTest::addColumn<QByteArray>("sheet");
    QTest::newRow("no section") << QByteArray("Key=1\n");
    QTest::newRow("blank before the equals sign") << QByteArray(groups) + "Key =1\n";
    QTest::newRow("no closing bracket") << QByteArray("[1000\n");
    QTest::newRow("no text") << QByteArray(1000, '\0');
}

void TestMDIWindowOpening::aSyntaxErrorIsReported()
{
    QFETCH(const QByteArray, sheet);
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(!document.open(sheet, &link.access, 5));
    const QString text = "File " + document.fileName() + " could not be loaded";
    QCOMPARE(document.statuses(), QStringList{ text });
    QCOMPARE(m_boxes.only().title, QString("Velmora - Load document"));
    QCOMPARE(m_boxes.only().text, text);
    QCOMPARE(m_boxes.only().icon, QMessageBox::Critical);
    QCOMPARE(m_boxes.only().format, Qt::PlainText);
    QVERIFY(!m_boxes.only().waitCursor);
    QCOMPARE(document.connectDialogs, 0);
    QCOMPARE(document.tree()->topLevelItemCount(), 0);
    QCOMPARE(document.window->windowTitle(), QString());
    QVERIFY(document.window->isVisible());
}

void TestMDIWindowOpening::whatCannotBeReadOpensAsAnEmptyDocument_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing file") << "missing.eds";
    QTest::newRow("missing folder") << "none/missing.eds";
    QTest::newRow("directory") << "";
    QTest::newRow("empty file") << "empty.eds";
}

void TestMDIWindowOpening::whatCannotBeReadOpensAsAnEmptyDocument()
{
    QFETCH(const QString, name);
    QTemporaryDir folder;
    if (name == "empty.eds")
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    const QString path = folder.filePath(name);
    CNewDocument document;
    QVERIFY(document.openFile(path));
    QCOMPARE(document.statuses(), QStringList{ "File " + path + " loaded in off-line mode" });
    QCOMPARE(document.window->windowTitle(), path);
    QCOMPARE(document.root()->text(0), QString("CANopen: Object dictionary"));
    QCOMPARE(document.root()->childCount(), 0);
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowOpening::foreignFileNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "100%1%2.eds", "<b>bold.eds", "Gerät Nr. 5 – ü.eds", "a&b.eds", "two\nlines.eds" })
        QTest::newRow(name) << name;
}

void TestMDIWindowOpening::foreignFileNames()
{
    QFETCH(const QString, name);
    const CSheetFile good(groups, name);
    CGatewayLink link;
    CNewDocument document;
    QVERIFY(document.openFile(good.name(), &link.access, 7));
    QCOMPARE(document.statuses(), QStringList{ "File " + good.name() + " loaded and connected to node #7" });
    QCOMPARE(document.window->windowTitle(), good.name());
    document.item("1000: Device Type");

    const CSheetFile bad("bad", name);
    CNewDocument other;
    QVERIFY(!other.openFile(bad.name()));
    QCOMPARE(m_boxes.only().text, "File " + bad.name() + " could not be loaded");
    QCOMPARE(m_boxes.only().format, Qt::PlainText);
}

void TestMDIWindowOpening::aModificationMarkInAFileNameIsShown_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "a[*].eds", "[*][*].eds", "[*] and [*].eds", "%1[*]" })
        QTest::newRow(name) << name;
}

void TestMDIWindowOpening::aModificationMarkInAFileNameIsShown()
{
    QFETCH(const QString, name);
    const CSheetFile sheet(groups, name);
    CNewDocument document;
    QVERIFY(document.openFile(sheet.name()));
    const QString shown = document.window->windowHandle()->title();
    QVERIFY2(shown.startsWith(sheet.name()), qPrintable(shown));
}

void TestMDIWindowOpening::theTreeIsGroupedAndSorted()
{
    CNewDocument document;
    QVERIFY(document.open(groups));
    const QStringList awaited = {
        "(reserved)",
        "CiA DS-301 +",
        "Device profile",
        "Manufacturer specific",
    };
    QCOMPARE(CDocumentDriver::children(document.root()), awaited);
    QVERIFY(document.root()->isExpanded());
    QCOMPARE(CDocumentDriver::children(document.item("CiA DS-301")),
             QStringList({ "1000: Device Type", "1018: Identity Object", "5: " }));
    QCOMPARE(CDocumentDriver::children(document.item("1018: Identity Object")),
             QStringList({ " 0: Number of entries", " 1: Vendor Id" }));
    QCOMPARE(CDocumentDriver::children(document.item("Device profile")), QStringList({ "6000: ", "6001: " }));
    QCOMPARE(CDocumentDriver::children(document.item("(reserved)")), QStringList{ "a000: " });
    QCOMPARE(CDocumentDriver::children(document.item("Manufacturer specific")), QStringList{ "2000: " });
}

void TestMDIWindowOpening::objectsWithoutAProfileAreOtherObjects()
{
    CNewDocument document;
    QVERIFY(document.open(withoutProfiles));
    QCOMPARE(CDocumentDriver::children(document.root()), QStringList{ "Other objects" });
    QCOMPARE(CDocumentDriver::children(document.item("Other objects")), QStringList({ "1000: Two", "2000: One" }));
}

// Ten times the objects take about ten times the processor time, far from a hundred times. Other processes can only
// make it longer: the shortest time counts, and one round is normally enough.
void TestMDIWindowOpening::tenThousandObjectsOpenQuickly()
{
    const QByteArray small = sheetOfRecords(1000), large = sheetOfRecords(10000);
    std::clock_t smallTime = timeToOpen(small), largeTime = timeToOpen(large);
    for (int round = 0; round < 20 && largeTime >= 30 * smallTime; ++round) {
        smallTime = std::min(smallTime, timeToOpen(small));
        largeTime = std::min(largeTime, timeToOpen(large));
    }
    const QString times = QString("%1 and %2 ticks").arg(smallTime).arg(largeTime);
    QVERIFY2(smallTime > 0 && largeTime > 0 && largeTime < 30 * smallTime, qPrintable(times));
    QVERIFY2(largeTime < 100 * CLOCKS_PER_SEC, qPrintable(times)); // about 100 times the usual time
}

void TestMDIWindowOpening::tenThousandObjectsAreAllThere()
{
    CNewDocument document;
    QVERIFY(document.open(sheetOfRecords(10000)));
    int entries = 0;
    for (int group = 0; group < document.root()->childCount(); ++group)
        for (int object = 0; object < document.root()->child(group)->childCount(); ++object)
            entries += document.root()->child(group)->child(object)->childCount();
    QCOMPARE(entries, 60000);
    document.press("470f: Object 470f", " 5: Entry");
    QCOMPARE(document.box("entry description"), QString("Entry: Subndex  5h"));
    QCOMPARE(document.box("object description"), QString("Object: Index 470fh"));
}

void TestMDIWindowOpening::deviceInformationIsShown()
{
    CNewDocument document;
    QVERIFY(document.open("[DeviceInfo]\nVendorName=Brask\n"));
    document.forgetStatuses();
    QString title;
    const CWhenShown<CDeviceInfoDialog> showing([&](CDeviceInfoDialog* dialog) {
        title = dialog->windowTitle();
        QVERIFY(dialog->isModal());
        QCOMPARE(dialog->parentWidget(), document.window);
        dialog->close();
    });
    document.window->showDeviceInfo();
    QCOMPARE(showing.count(), 1);
    QCOMPARE(title, document.fileName());
    QCOMPARE(document.statuses(), QStringList());
}

void TestMDIWindowOpening::missingDeviceInformationIsReportedBeforeTheDialogShows()
{
    CNewDocument document;
    QVERIFY(document.open(groups));
    document.forgetStatuses();
    QStringList statuses;
    const CWhenShown<CDeviceInfoDialog> showing([&](CDeviceInfoDialog* dialog) {
        statuses = document.statuses();
        dialog->close();
    });
    document.window->showDeviceInfo();
    QCOMPARE(showing.count(), 1);
    QCOMPARE(statuses, QStringList{ "No device info present" });
    QCOMPARE(document.statuses(), statuses);
}

void TestMDIWindowOpening::aDocumentMayDisappearWhileItIsConnected()
{
    CGatewayLink link;
    const CSheetFile sheet(groups);
    QPointer<CMDIWindow> window = new CMDIWindow;
    const CWhenShown<CConnectNodeDialog> connecting([&](CConnectNodeDialog*) { delete window; });
    QVERIFY(!window->openDocument(sheet.name(), &link.access));
    QVERIFY(window.isNull());
    QCOMPARE(connecting.count(), 1);
}

void TestMDIWindowOpening::aDocumentMayDisappearWhileALoadFailureIsShown()
{
    const CSheetFile sheet("bad");
    QPointer<CMDIWindow> window = new CMDIWindow;
    const CWhenShown<QMessageBox> failing([&](QMessageBox*) { delete window; });
    QVERIFY(!window->openDocument(sheet.name(), nullptr));
    QVERIFY(window.isNull());
    QCOMPARE(failing.count(), 1);
}

void TestMDIWindowOpening::aDocumentMayDisappearWhileItsDeviceInformationIsShown()
{
    QPointer<CMDIWindow> window = new CMDIWindow;
    const CWhenShown<CDeviceInfoDialog> showing([&](CDeviceInfoDialog*) { delete window; });
    window->showDeviceInfo();
    QVERIFY(window.isNull());
    QCOMPARE(showing.count(), 1);
}

QTEST_MAIN(TestMDIWindowOpening)
#include "TestMDIWindowOpening.moc"

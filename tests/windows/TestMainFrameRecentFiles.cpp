// The list of recently used files: its slots in the settings, its menu, and what opening a file does to it.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <optional>

namespace
{

const QByteArray goodSheet = "[FileInfo]\nCreatedBy=me\n";
const QByteArray brokenSheet = "[FileInfo]\nCreatedBy =me\n"; // no blank is allowed before the '='

} // namespace

class TestMainFrameRecentFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void emptyListShowsOneDisabledItem();
    void menuListsTheUsedSlotsInOrder();
    void menuIsFilledAnewEachTime();
    void namesStandInTheMenuAsTheyAre();
    void setRecentFile_data();
    void setRecentFile();
    void deleteFileName_data();
    void deleteFileName();
    void removedNameLeavesTheLastOneTwiceInTheMenu();
    void openedFileEntersTheListAtTheTop();
    void openingAListedFileMovesItToTheTop();
    void menuItemOpensItsFile_data();
    void menuItemOpensItsFile();
    void menuItemOfAPositionThatDoesNotExistAborts();
    void menuItemWithoutFilesOpensNothing();
    void missingFileOpensAsAnEmptyDocumentAndEntersTheList();
    void failedLoadLeavesTheListAndTheWindowStays();
    void failedLoadRemovesAListedFile();
    void cancelledConnectRemovesTheFileAndTheWindowStays();
    void foreignValuesAreNoNames();
    void unwritableSettingsDoNoHarm();

private:
    void store(const QStringList& names);
    QStringList stored() const; // up to the last slot in use

    std::optional<CTempSettings> m_store;
};

void TestMainFrameRecentFiles::store(const QStringList& names)
{
    for (int slot = 1; slot <= names.size(); ++slot)
        m_store->setValue("Recent File List/File" + QString::number(slot), names[slot - 1]);
}

QStringList TestMainFrameRecentFiles::stored() const
{
    QStringList names;
    for (int slot = 1; slot <= 12; ++slot)
        names << m_store->value("Recent File List/File" + QString::number(slot));
    while (!names.isEmpty() && names.last().isEmpty())
        names.removeLast();
    return names;
}

void TestMainFrameRecentFiles::emptyListShowsOneDisabledItem()
{
    CFrameDriver driver;
    const QMenu* menu = driver.seeRecentMenu();
    QCOMPARE(CFrameDriver::textsOf(menu), QStringList{ "<recently used files>" });
    QVERIFY(!menu->actions().first()->isEnabled());
}

void TestMainFrameRecentFiles::menuListsTheUsedSlotsInOrder()
{
    store({ "c", "", "a", "", "", "", "", "", "b", "z", "eleventh" });
    CFrameDriver driver;
    const QMenu* menu = driver.seeRecentMenu();
    QCOMPARE(CFrameDriver::textsOf(menu), QStringList({ "c", "a", "b", "z" }));
    for (const QAction* item : menu->actions())
        QVERIFY(item->isEnabled());
}

void TestMainFrameRecentFiles::menuIsFilledAnewEachTime()
{
    CFrameDriver driver;
    driver.seeRecentMenu();
    store({ "a", "b" });
    QCOMPARE(CFrameDriver::textsOf(driver.seeRecentMenu()), QStringList({ "a", "b" }));
    store({ "", "" });
    QCOMPARE(CFrameDriver::textsOf(driver.seeRecentMenu()), QStringList{ "<recently used files>" });
}

void TestMainFrameRecentFiles::namesStandInTheMenuAsTheyAre()
{
    const QStringList names = { "R&D.eds",   "a\tb.eds", "-",     "<recently used files>",
                                "C:\\x.eds", "&&",       "%1 %2", QString::fromUtf8("K\u00F6ln/\u0394.eds") };
    store(names);
    CFrameDriver driver;
    const QMenu* menu = driver.seeRecentMenu();
    QCOMPARE(CFrameDriver::textsOf(menu), names);
    for (const QAction* item : menu->actions())
        QVERIFY(item->isEnabled());
}

void TestMainFrameRecentFiles::setRecentFile_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("after");
    const QStringList ten = { "a", "b", "c", "d", "e", "f", "g", "h", "i", "j" };
    QTest::newRow("first name") << QStringList{} << "a" << QStringList{ "a" };
    QTest::newRow("new name goes to the top") << QStringList{ "a", "b" } << "c" << QStringList{ "c", "a", "b" };
    QTest::newRow("listed name moves to the top")
        << QStringList{ "a", "b", "c" } << "c" << QStringList{ "c", "a", "b" };
    QTest::newRow("top name stays") << QStringList{ "a", "b" } << "a" << QStringList{ "a", "b" };
    QTest::newRow("case counts") << QStringList{ "a", "b" } << "B" << QStringList{ "B", "a", "b" };
    QTest::newRow("eleventh name pushes the oldest out")
        << ten << "k" << QStringList{ "k", "a", "b", "c", "d", "e", "f", "g", "h", "i" };
    QTest::newRow("last of ten moves up")
        << ten << "j" << QStringList{ "j", "a", "b", "c", "d", "e", "f", "g", "h", "i" };
    QTest::newRow("unused slots close up, the tail stays")
        << QStringList{ "", "a", "", "b" } << "c" << QStringList{ "c", "a", "b", "b" };
    QTest::newRow("doubles of the name vanish, the tail stays")
        << QStringList{ "a", "c", "b", "c" } << "c" << QStringList{ "c", "a", "b", "c" };
    QTest::newRow("doubles of other names stay")
        << QStringList{ "a", "b", "b" } << "c" << QStringList{ "c", "a", "b", "b" };
}

void TestMainFrameRecentFiles::setRecentFile()
{
    QFETCH(const QStringList, before);
    QFETCH(const QString, name);
    store(before);
    CMainFrame frame;
    frame.setRecentFile(name);
    QTEST(stored(), "after");
}

void TestMainFrameRecentFiles::deleteFileName_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("nothing to remove") << QStringList{} << "a" << QStringList{};
    QTest::newRow("one of three leaves the third twice")
        << QStringList{ "a", "b", "c" } << "a" << QStringList{ "b", "c", "c" };
    QTest::newRow("the middle one likewise") << QStringList{ "a", "b", "c" } << "b" << QStringList{ "a", "c", "c" };
    QTest::newRow("the last one stays in its slot")
        << QStringList{ "a", "b", "c" } << "c" << QStringList{ "a", "b", "c" };
    QTest::newRow("the only one stays in its slot") << QStringList{ "a" } << "a" << QStringList{ "a" };
    QTest::newRow("an unknown one") << QStringList{ "a", "b" } << "x" << QStringList{ "a", "b" };
    QTest::newRow("case counts") << QStringList{ "a", "b" } << "A" << QStringList{ "a", "b" };
    QTest::newRow("doubles") << QStringList{ "a", "b", "a", "c" } << "a" << QStringList{ "b", "c", "a", "c" };
    QTest::newRow("unused slots close up") << QStringList{ "", "a", "b" } << "a" << QStringList{ "b", "a", "b" };
    QTest::newRow("one of ten") << QStringList{ "a", "b", "c", "d", "e", "f", "g", "h", "i", "j" } << "e"
                                << QStringList{ "a", "b", "c", "d", "f", "g", "h", "i", "j", "j" };
}

void TestMainFrameRecentFiles::deleteFileName()
{
    QFETCH(const QStringList, before);
    QFETCH(const QString, name);
    store(before);
    CMainFrame frame;
    frame.deleteFileName(name);
    QTEST(stored(), "after");
}

void TestMainFrameRecentFiles::removedNameLeavesTheLastOneTwiceInTheMenu()
{
    store({ "a", "b", "c" });
    CFrameDriver driver;
    driver.frame.deleteFileName("a");
    QCOMPARE(CFrameDriver::textsOf(driver.seeRecentMenu()), QStringList({ "b", "c", "c" }));
    driver.frame.setRecentFile("d"); // duplicates stay until they are overwritten
    QCOMPARE(CFrameDriver::textsOf(driver.seeRecentMenu()), QStringList({ "d", "b", "c", "c" }));
}

void TestMainFrameRecentFiles::openedFileEntersTheListAtTheTop()
{
    const CSheetFile sheet(goodSheet);
    store({ "a", "b" });
    CFrameDriver driver;
    driver.open(sheet.name());
    QCOMPARE(stored(), QStringList({ sheet.name(), "a", "b" }));
}

void TestMainFrameRecentFiles::openingAListedFileMovesItToTheTop()
{
    const CSheetFile sheet(goodSheet);
    store({ "a", sheet.name(), "b" });
    CFrameDriver driver;
    CFrameDriver::clickItem(driver.openRecentMenu(), 1);
    QCOMPARE(driver.document(0)->windowTitle(), sheet.name());
    QCOMPARE(stored(), QStringList({ sheet.name(), "a", "b" }));
}

void TestMainFrameRecentFiles::menuItemOpensItsFile_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name :
         { "device.eds", "R&D.eds", "two\twords.eds", " blank.eds", "<b>markup</b>", "%1.eds", "K\xC3\xB6ln.eds" })
        QTest::newRow(name) << QString::fromUtf8(name).replace('/', '|');
}

void TestMainFrameRecentFiles::menuItemOpensItsFile()
{
    QFETCH(const QString, name);
    const CSheetFile sheet(goodSheet, name);
    store({ "other", sheet.name() });
    CFrameDriver driver;
    CFrameDriver::clickItem(driver.openRecentMenu(), 1);
    QCOMPARE(driver.document(0)->windowTitle(), sheet.name());
    QCOMPARE(driver.statusText(), "File " + sheet.name() + " loaded in off-line mode");
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(stored(), QStringList({ sheet.name(), "other" }));
}

void TestMainFrameRecentFiles::menuItemOfAPositionThatDoesNotExistAborts()
{
    store({ "a" });
    CFrameDriver driver;
    driver.seeRecentMenu();
    for (const int position : { -1, 1, 99 }) {
        driver.frame.statusBar()->clearMessage();
        driver.frame.fileListMenuActivated(position);
        QCOMPARE(driver.statusText(), QString("Operation aborted"));
        QCOMPARE(driver.statusTime(), 2000);
    }
    QCOMPARE(driver.documentCount(), 0);
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser - Version 0.2 Build 61"));
}

void TestMainFrameRecentFiles::menuItemWithoutFilesOpensNothing()
{
    CFrameDriver driver;
    CFrameDriver::clickItem(driver.openRecentMenu(), 0);
    QCOMPARE(driver.documentCount(), 0);
    QVERIFY(stored().isEmpty());
    driver.menu("&File")->close();
}

void TestMainFrameRecentFiles::missingFileOpensAsAnEmptyDocumentAndEntersTheList()
{
    const CBoxCatcher catcher;
    store({ "a", "/no/such/folder/device.eds" });
    CFrameDriver driver;
    CFrameDriver::clickItem(driver.openRecentMenu(), 1);
    QCOMPARE(catcher.count(), 0);
    QCOMPARE(driver.document(0)->windowTitle(), QString("/no/such/folder/device.eds"));
    QCOMPARE(stored(), QStringList({ "/no/such/folder/device.eds", "a" }));
}

void TestMainFrameRecentFiles::failedLoadLeavesTheListAndTheWindowStays()
{
    const CBoxCatcher catcher;
    const CSheetFile sheet(brokenSheet);
    store({ "a", "b" });
    CFrameDriver driver;
    driver.open(sheet.name());
    QCOMPARE(catcher.only().title, QString("Velmora - Load document"));
    QCOMPARE(catcher.only().text, "File " + sheet.name() + " could not be loaded");
    QCOMPARE(driver.documentCount(), 1);
    QCOMPARE(driver.document(0)->windowTitle(), QString("unnamed document"));
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(stored(), QStringList({ "a", "b" }));
}

void TestMainFrameRecentFiles::failedLoadRemovesAListedFile()
{
    const CBoxCatcher catcher;
    const CSheetFile sheet(brokenSheet);
    store({ sheet.name(), "a", "b" });
    CFrameDriver driver;
    CFrameDriver::clickItem(driver.openRecentMenu(), 0);
    QCOMPARE(catcher.count(), 1);
    QCOMPARE(driver.documentCount(), 1);
    QCOMPARE(stored(), QStringList({ "a", "b", "b" }));
}

void TestMainFrameRecentFiles::cancelledConnectRemovesTheFileAndTheWindowStays()
{
    const CSheetFile sheet(goodSheet);
    CFakeGateway gateway;
    store({ sheet.name(), "a", "b" });
    CFrameDriver driver;
    driver.initialize("127.0.0.1:" + QString::number(gateway.port()));
    const CWhenShown<CConnectNodeDialog> node(&inDialog::cancel);
    CFrameDriver::clickItem(driver.openRecentMenu(), 0);
    QCOMPARE(node.count(), 1);
    QCOMPARE(driver.documentCount(), 1);
    QCOMPARE(driver.document(0)->windowTitle(), QString("unnamed document"));
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser"));
    QCOMPARE(stored(), QStringList({ "a", "b", "b" }));
}

void TestMainFrameRecentFiles::foreignValuesAreNoNames()
{
    m_store->setValue("Recent File List/File1", QStringList({ "a", "b" }));
    m_store->setValue("Recent File List/File2", QByteArray());
    m_store->setValue("Recent File List/File3", 5);
    CFrameDriver driver;
    QCOMPARE(CFrameDriver::textsOf(driver.seeRecentMenu()), QStringList{ "5" });
}

void TestMainFrameRecentFiles::unwritableSettingsDoNoHarm()
{
    const CSheetFile sheet(goodSheet);
    QVERIFY(QDir().mkpath(m_store->fileName())); // a folder in place of the file
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.open(sheet.name());
    QCOMPARE(driver.document(0)->windowTitle(), sheet.name());
    driver.seeRecentMenu();
    QCOMPARE(catcher.count(), 0);
}

QTEST_MAIN(TestMainFrameRecentFiles)
#include "TestMainFrameRecentFiles.moc"

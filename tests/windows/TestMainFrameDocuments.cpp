// The document windows in the main frame: how they open, the caption, the Windows menu, cascade and tile.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include <QTest>
#include <QTreeWidget>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1000\n2=0x1001\n"
                             "[1000]\nParameterName=Device Type\nObjectType=0x7\nDataType=0x0007\nAccessType=ro\n"
                             "[1001]\nParameterName=Error Register\nObjectType=0x7\nDataType=0x0005\nAccessType=ro\n";

const QString plainCaption = "CANopen Object Browser";
const QString startCaption = "CANopen Object Browser - Version 0.2 Build 61";
const QString separator = QString::fromUtf8("—");

} // namespace

class TestMainFrameDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void firstDocumentIsMaximisedAndLaterOnesNormal();
    void firstDocumentAfterAllWereClosedIsMaximisedAgain();
    void openedFilesShowLikeNewDocuments();
    void documentsOpenInTheirSize();
    void newDocumentIsUnnamed();
    void aDocumentOfAHiddenFrameHasItsSize();
    void documentShowsItsImage();
    void newDocumentIsActive();
    void messagesOfADocumentGoToTheStatusBar();
    void captionStaysExactWhileADocumentIsMaximised();
    void captionStaysExactWithAnyFileName_data();
    void captionStaysExactWithAnyFileName();
    void captionLosesTheVersionAfterAFile_data();
    void captionLosesTheVersionAfterAFile();
    void captionStaysWhenTheDocumentOpensNoFile();
    void windowsMenuWithoutWindows();
    void windowsMenuListsTheDocuments();
    void windowsMenuShowsNamesAsTheyAre_data();
    void windowsMenuShowsNamesAsTheyAre();
    void windowsMenuChecksTheActiveDocument();
    void windowsMenuActivatesTheDocumentInNormalSize();
    void activatedDocumentGetsTheKeys();
    void windowsMenuPositionsThatDoNotExistDoNothing();
    void windowsMenuForgetsClosedDocuments();
    void cascadeOverlapsTheDocuments();
    void tileKeepsTheDocumentsApart();
    void tileLeavesMinimisedDocumentsMinimised();

private:
    static QTreeWidget* treeOf(CMDIWindow* document) { return document->findChild<QTreeWidget*>(); }

    std::optional<CTempSettings> m_store;
};

void TestMainFrameDocuments::firstDocumentIsMaximisedAndLaterOnesNormal()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
    for (const int position : { 1, 2 }) {
        QVERIFY(!driver.subWindow(position)->isMaximized());
        QVERIFY(!driver.subWindow(position)->isMinimized());
        QVERIFY(driver.subWindow(position)->isVisible());
    }
}

void TestMainFrameDocuments::firstDocumentAfterAllWereClosedIsMaximisedAgain()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.frame.newDocument();
    driver.choose("&File", "C&lose All");
    driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
    driver.frame.newDocument();
    QVERIFY(!driver.subWindow(1)->isMaximized());
}

void TestMainFrameDocuments::openedFilesShowLikeNewDocuments()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    QVERIFY(driver.subWindow(0)->isMaximized());
    driver.open(sheet.name());
    QVERIFY(driver.subWindow(0)->isMaximized());
    QVERIFY(!driver.subWindow(1)->isMaximized());
}

void TestMainFrameDocuments::documentsOpenInTheirSize()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.frame.newDocument();
    for (const int position : { 1, 0 }) {
        driver.subWindow(position)->showNormal();
        const QSize awaited = QSize(720, 400).expandedTo(driver.document(position)->minimumSizeHint());
        AWAIT_COMPARE(driver.document(position)->size(), awaited);
    }
}

// The workspace has no size yet that could bound it.
void TestMainFrameDocuments::aDocumentOfAHiddenFrameHasItsSize()
{
    CMainFrame frame;
    const QSize wanted = CMDIWindow(nullptr, "client window").size();
    CMDIWindow* document = frame.newDocument();
    QCOMPARE(document->size(), wanted);
}

void TestMainFrameDocuments::newDocumentIsUnnamed()
{
    CFrameDriver driver;
    CMDIWindow* document = driver.frame.newDocument();
    QCOMPARE(document, driver.document(0));
    QCOMPARE(document->windowTitle(), QString("unnamed document"));
    QCOMPARE(driver.subWindow(0)->windowTitle(), QString("unnamed document"));
    QVERIFY(document->objectName().isEmpty());
}

void TestMainFrameDocuments::documentShowsItsImage()
{
    CFrameDriver driver;
    const CMDIWindow* document = driver.frame.newDocument();
    const QPixmap image(":/images/document.png");
    QVERIFY(!image.isNull());
    QCOMPARE(document->windowIcon().pixmap(image.size()).toImage(), image.toImage());
    QCOMPARE(driver.subWindow(0)->windowIcon().pixmap(image.size()).toImage(), image.toImage());
}

void TestMainFrameDocuments::newDocumentIsActive()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number) {
        driver.frame.newDocument();
        QCOMPARE(driver.workspace()->activeSubWindow(), driver.subWindow(number));
    }
}

void TestMainFrameDocuments::messagesOfADocumentGoToTheStatusBar()
{
    CFrameDriver driver;
    CMDIWindow* document = driver.frame.newDocument();
    Q_EMIT document->message("a text", 2000);
    QCOMPARE(driver.statusText(), QString("a text"));
    QCOMPARE(driver.statusTime(), 2000);
}

void TestMainFrameDocuments::captionStaysExactWhileADocumentIsMaximised()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
    QCOMPARE(driver.frame.windowTitle(), startCaption);
    driver.open(sheet.name());
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.subWindow(1)->showMaximized();
    QTest::qWait(0);
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.document(1)->setWindowTitle("another name");
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.press(Qt::Key_W);
    QCOMPARE(driver.documentCount(), 1);
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.subWindow(0)->showNormal();
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
}

void TestMainFrameDocuments::captionStaysExactWithAnyFileName_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "a[*].eds", "[*]", "%1.eds", "a - [b].eds", "]", "R&D.eds", "<b>.eds" })
        QTest::newRow(name) << QString(name);
}

void TestMainFrameDocuments::captionStaysExactWithAnyFileName()
{
    QFETCH(const QString, name);
    const CSheetFile sheet(sheetText, name);
    CFrameDriver driver;
    driver.open(sheet.name());
    QVERIFY(driver.subWindow(0)->isMaximized());
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.subWindow(0)->showNormal();
    driver.subWindow(0)->showMaximized();
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
    driver.press(Qt::Key_W);
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
}

void TestMainFrameDocuments::captionLosesTheVersionAfterAFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("good sheet") << sheetText;
    QTest::newRow("broken sheet") << QByteArray("[FileInfo]\nno key\n");
}

void TestMainFrameDocuments::captionLosesTheVersionAfterAFile()
{
    QFETCH(const QByteArray, text);
    const CSheetFile sheet(text);
    const CBoxCatcher catcher;
    CFrameDriver driver;
    QCOMPARE(driver.frame.windowTitle(), startCaption);
    driver.open(sheet.name());
    QCOMPARE(driver.frame.windowTitle(), plainCaption);
}

void TestMainFrameDocuments::captionStaysWhenTheDocumentOpensNoFile()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.press(Qt::Key_W);
    QCOMPARE(driver.frame.windowTitle(), startCaption);
}

void TestMainFrameDocuments::windowsMenuWithoutWindows()
{
    CFrameDriver driver;
    const QMenu* menu = driver.seeMenu("&Windows");
    QCOMPARE(CFrameDriver::textsOf(menu), QStringList({ "&Cascade", "&Tile" }));
    for (const QAction* item : menu->actions())
        QVERIFY(!item->isEnabled());
}

void TestMainFrameDocuments::windowsMenuListsTheDocuments()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.open(sheet.name());
    driver.workspace()->setActiveSubWindow(driver.subWindow(0));
    const QMenu* menu = driver.seeMenu("&Windows");
    QCOMPARE(CFrameDriver::textsOf(menu),
             QStringList({ "&Cascade", "&Tile", separator, "unnamed document", sheet.name() }));
    for (const QAction* item : menu->actions())
        QVERIFY(item->isEnabled() || item->isSeparator());
}

void TestMainFrameDocuments::windowsMenuShowsNamesAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "R&D\tsheet.eds", "a[*].eds", "[*][*].eds" })
        QTest::newRow(name) << QString(name);
}

void TestMainFrameDocuments::windowsMenuShowsNamesAsTheyAre()
{
    QFETCH(const QString, name);
    const CSheetFile sheet(sheetText, name);
    CFrameDriver driver;
    driver.open(sheet.name());
    QCOMPARE(CFrameDriver::textsOf(driver.seeMenu("&Windows")).value(3), sheet.name());
}

void TestMainFrameDocuments::windowsMenuChecksTheActiveDocument()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    for (const int active : { 1, 0, 2 }) {
        driver.workspace()->setActiveSubWindow(driver.subWindow(active));
        const QMenu* menu = driver.seeMenu("&Windows");
        for (int position = 0; position < 3; ++position) {
            const QAction* item = menu->actions().at(3 + position);
            QVERIFY(item->isCheckable());
            QCOMPARE(item->isChecked(), position == active);
        }
    }
}

void TestMainFrameDocuments::windowsMenuActivatesTheDocumentInNormalSize()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
    for (const int position : { 0, 2, 1 }) {
        CFrameDriver::clickItem(driver.openMenu("&Windows"), 3 + position);
        QCOMPARE(driver.workspace()->activeSubWindow(), driver.subWindow(position));
        QVERIFY(!driver.subWindow(position)->isMaximized());
        QVERIFY(driver.document(position)->isAncestorOf(QApplication::focusWidget()));
    }
    driver.subWindow(2)->showMinimized();
    CFrameDriver::clickItem(driver.openMenu("&Windows"), 3 + 2);
    QVERIFY(!driver.subWindow(2)->isMinimized());
    QCOMPARE(driver.workspace()->activeSubWindow(), driver.subWindow(2));
}

void TestMainFrameDocuments::activatedDocumentGetsTheKeys()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    driver.open(sheet.name());
    QTreeWidget* tree = treeOf(driver.document(0));
    driver.workspace()->setActiveSubWindow(driver.subWindow(0));
    tree->setFocus();
    tree->setCurrentItem(tree->topLevelItem(0));
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    QVERIFY(driver.document(1)->isAncestorOf(QApplication::focusWidget()));

    CFrameDriver::clickItem(driver.openMenu("&Windows"), 3);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QCOMPARE(tree->currentItem(), tree->topLevelItem(0)->child(0));
}

void TestMainFrameDocuments::windowsMenuPositionsThatDoNotExistDoNothing()
{
    CFrameDriver driver;
    driver.frame.windowsMenuActivated(0);
    driver.frame.newDocument();
    for (const int position : { -1, 1, 99 })
        driver.frame.windowsMenuActivated(position);
    QVERIFY(driver.subWindow(0)->isMaximized());
}

void TestMainFrameDocuments::windowsMenuForgetsClosedDocuments()
{
    CFrameDriver driver;
    driver.frame.newDocument()->setWindowTitle("first");
    driver.frame.newDocument()->setWindowTitle("second");
    driver.frame.newDocument()->setWindowTitle("third");
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.press(Qt::Key_W);
    QCOMPARE(CFrameDriver::textsOf(driver.seeMenu("&Windows")).mid(3), QStringList({ "first", "third" }));
    CFrameDriver::clickItem(driver.openMenu("&Windows"), 4);
    QCOMPARE(driver.workspace()->activeSubWindow()->windowTitle(), QString("third"));
}

void TestMainFrameDocuments::cascadeOverlapsTheDocuments()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    const auto order = driver.workspace()->activationOrder();
    driver.choose("&Windows", "&Cascade");
    QCOMPARE(driver.workspace()->activationOrder(), order);
    QList<QPoint> corners;
    for (int position = 0; position < 3; ++position) {
        QVERIFY(!driver.subWindow(position)->isMaximized());
        QVERIFY(!corners.contains(driver.subWindow(position)->pos()));
        corners << driver.subWindow(position)->pos();
    }
    QVERIFY(driver.subWindow(0)->geometry().intersects(driver.subWindow(1)->geometry()));
}

void TestMainFrameDocuments::tileKeepsTheDocumentsApart()
{
    CFrameDriver driver;
    driver.frame.resize(2400, 1600);
    for (int number = 0; number < 2; ++number)
        driver.frame.newDocument();
    driver.choose("&Windows", "&Tile");
    QVERIFY(!driver.subWindow(0)->isMaximized());
    QVERIFY(!driver.subWindow(0)->geometry().intersects(driver.subWindow(1)->geometry()));
}

void TestMainFrameDocuments::tileLeavesMinimisedDocumentsMinimised()
{
    CFrameDriver driver;
    for (int number = 0; number < 2; ++number)
        driver.frame.newDocument();
    driver.subWindow(0)->showMinimized();
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.choose("&Windows", "&Tile");
    QVERIFY(driver.subWindow(0)->isMinimized());
    QVERIFY(!driver.subWindow(1)->isMinimized());
}

QTEST_MAIN(TestMainFrameDocuments)
#include "TestMainFrameDocuments.moc"

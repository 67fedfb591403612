// The actions of the main frame and their texts, and what the menus and the tool bar hold.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "TempSettings.h"

#include <QIcon>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <optional>
#include <utility>

namespace
{

struct tActionRow {
    const char* name;
    const char* text;
    const char* menuText;
    const char* shortcut;
    const char* image;
    const char* statusTip;
    const char* whatsThis;
};

const tActionRow actionRows[] = {
    { "file open", "Open", "&Open...", "Ctrl+O", "fileopen.png",
      "Open an object dictionary from an existing EDS-file and optionally connect it to a CANopen node",
      "Use the <i>Open</i> command from the <i>File</i> menu or press <i>Ctrl+O</i> to open an object dictionary of a "
      "CANopen device from an <u>EDS-file</u>. For data accesses the EDS-file can be connected to a CANopen node in "
      "the present CANopen network." },
    { "file print", "Print", "&Print...", "Ctrl+P", "fileprint.png", "Print the active object dictionary",
      "Use the <i>Print</i> command from the <i>File</i> menu or press <i>Ctrl+P</i> to print the active object "
      "dictionary." },
    { "file close", "Close", "&Close", "Ctrl+W", "fileclose.png", "Close the active object dictionary",
      "Use the <i>Close</i> command from the <i>File</i> menu or press <i>Ctrl+W</i> to close the active object "
      "dictionary." },
    { "file close all", "Close All", "C&lose All", "", "", "Close all object dictionaries",
      "Use the <i>Close All</i> command from the <i>File</i> menu to close all object dictionaries" },
    { "file exit", "Exit", "E&xit", "Ctrl+Q", "exit.png", "Exit the application",
      "Use the <i>Exit</i> command from the <i>File</i> menu or press <i>Ctrl+Q</i> to exit the application." },
    { "device info", "Device Info", "Device &Info", "", "deviceinfo.png",
      "Show the DeviceInfo section from the active object dictionary",
      "Use the <i>Device Info</i> command from the <i>Device</i> menu to show the DeviceInfo section from the active "
      "object dictionary." },
    { "interface initialize", "Initialize", "&Initialize...", "", "", "Initialize the CAN interface",
      "Use the <i>Initialize</i> command from the <i>Interface</i> menu to initialize the CAN interface." },
    { "interface properties", "Properties", "&Properties...", "", "", "Show properties of the CAN interface",
      "Use the <i>Properties</i> command from the <i>Interface</i> menu to show properties of the CAN interface." },
    { "file cascade", "Cascade", "&Cascade", "", "", "Arrange all windows so they overlap",
      "Use the <i>Cascade</i> command from the <i>Windows</i> menu to arrange all windows so they overlap" },
    { "file tile", "Tile", "&Tile", "", "", "Arrange all windows as non-overlapping tiles",
      "Use the <i>Tile</i> command from the <i>Windows</i> menu to arrange all windows as non-overlapping tiles." },
    { "help topic", "Velmora Handbook", "Velmora &Handbook", "F1", "contents.png", "Open the online help file",
      "Use the <i>Contents</i> command from the <i>Help</i> menu or press <i>F1</i> key to open the online help "
      "file." },
    { "help context", "What's This", "What's &This", "Shift+F1", "contexthelp.png", "Show context-sensitive help",
      "Use the <i>What's This</i> command from the <i>Help</i> menu or press <i>Shift+F1</i> to show "
      "context-sensitive help for clicked on buttons, menus and windows." },
    { "help about", "About Velmora", "&About Velmora", "", "program.png", "Show the application's About box",
      "Use the <i>About</i> command from the <i>Help</i> menu to show program information, version number and "
      "copyright." },
    { "help about qt", "About Qt", "About &Qt", "", "", "Show the Qt library's About box",
      "Use the <i>About Qt</i> command from the <i>Help</i> menu to show Qt library information, version number and "
      "copyright." },
};

const QString separator = QString::fromUtf8("—");

QImage pixelsOf(const QIcon& icon)
{
    return icon.pixmap(64).toImage();
}

// The image of that file name; nothing for "".
QImage imageOf(const QString& name)
{
    if (!name.isEmpty() && !QFile::exists(":/images/" + name))
        qFatal("no image \"%s\"", qPrintable(name));
    return pixelsOf(QIcon(":/images/" + name));
}

/// While it lives, a frame gets another tool bar at its top before it builds its own.
class CEarlyToolBar : public QObject
{
public:
    CEarlyToolBar() { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* frame = qobject_cast<QMainWindow*>(watched);
        const bool building = frame != nullptr && !frame->objectName().isEmpty() && event->type() == QEvent::ChildAdded;
        if (building && !std::exchange(m_done, true))
            frame->addToolBar("early");
        return QObject::eventFilter(watched, event);
    }

private:
    bool m_done = false;
};

} // namespace

class TestMainFrameActions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void actionsHaveTheirTextsAndHelp_data();
    void actionsHaveTheirTextsAndHelp();
    void actionsShowTheirImages_data() { actionsHaveTheirTextsAndHelp_data(); }
    void actionsShowTheirImages();
    void thereAreFourteenActions();
    void menusAreNamedForAssistivePrograms();
    void menuBarEndsWithASeparatorAndHelp();
    void menusHoldTheirItemsInOrder_data();
    void menusHoldTheirItemsInOrder();
    void toolBarHoldsFileOperations();
    void toolBarStartsALineOfItsOwn();
    void toolButtonsShowTheActions();
    void frameIsBuiltFromItsStatusBarToItsWorkspace();
    void frameIsNamedMainWindow();
    void nameOfTheCallerIsKept();
    void frameHasTheIconOfTheProgram();
    void workspaceLiesInASunkenPanelWithScrollBars();
    void readyIsShownForTwoSeconds();
    void highlightedItemShowsItsStatusTip();
    void deviceInfoStartsDisabledAlsoInTheToolBar();
    void closeCloseAllAndPrintStartEnabled();
    void withoutWindowsMenusDisableTheirItems();
    void withAWindowMenusEnableTheirItems();
    void enablingWaitsForTheMenuToOpen();
    void interfaceActionsAreAlwaysEnabled();

private:
    std::optional<CTempSettings> m_store;
};

void TestMainFrameActions::actionsHaveTheirTextsAndHelp_data()
{
    QTest::addColumn<const tActionRow*>("row");
    for (const tActionRow& row : actionRows)
        QTest::newRow(row.name) << &row;
}

void TestMainFrameActions::actionsHaveTheirTextsAndHelp()
{
    QFETCH(const tActionRow*, row);
    const CMainFrame frame;
    const auto* action = frame.findChild<QAction*>(row->name);
    QVERIFY(action != nullptr);
    QCOMPARE(action->parent(), &frame);
    QCOMPARE(action->iconText(), QString(row->text));
    QCOMPARE(action->text(), QString(row->menuText));
    QCOMPARE(action->shortcut().toString(QKeySequence::PortableText), QString(row->shortcut));
    QCOMPARE(action->statusTip(), QString(row->statusTip));
    QCOMPARE(action->whatsThis(), QString(row->whatsThis));
}

void TestMainFrameActions::actionsShowTheirImages()
{
    QFETCH(const tActionRow*, row);
    const CMainFrame frame;
    const QIcon icon = frame.findChild<QAction*>(row->name)->icon();
    QCOMPARE(icon.isNull(), *row->image == '\0');
    QCOMPARE(pixelsOf(icon), imageOf(row->image));
}

void TestMainFrameActions::thereAreFourteenActions()
{
    const CMainFrame frame;
    QStringList names, awaited;
    for (const QAction* action : frame.findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly))
        if (!action->isSeparator() && action->menu() == nullptr)
            names << action->objectName();
    for (const tActionRow& row : actionRows)
        awaited << row.name;
    QCOMPARE(names, awaited);
}

void TestMainFrameActions::menusAreNamedForAssistivePrograms()
{
    const CMainFrame frame;
    QStringList names;
    for (const QMenu* menu : frame.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        names << menu->accessibleName();
    QCOMPARE(names, QStringList({ "Recently used", "File", "Device", "Interface", "Windows", "Help" }));
}

void TestMainFrameActions::menuBarEndsWithASeparatorAndHelp()
{
    const CFrameDriver driver;
    QCOMPARE(CFrameDriver::textsOf(driver.frame.menuBar()),
             QStringList({ "&File", "&Device", "&Interface", "&Windows", separator, "&Help" }));
}

void TestMainFrameActions::menusHoldTheirItemsInOrder_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::newRow("&File") << QStringList{ "&Open...", "&Recently used", separator, "&Print...", separator,
                                           "&Close",   "C&lose All",     separator, "E&xit" };
    QTest::newRow("&Device") << QStringList{ "Device &Info" };
    QTest::newRow("&Interface") << QStringList{ "&Initialize...", separator, "&Properties..." };
    QTest::newRow("&Windows") << QStringList{ "&Cascade", "&Tile" };
    QTest::newRow("&Help") << QStringList{ "Velmora &Handbook", "What's &This", separator, "&About Velmora",
                                           "About &Qt" };
}

void TestMainFrameActions::menusHoldTheirItemsInOrder()
{
    CFrameDriver driver;
    QTEST(CFrameDriver::textsOf(driver.seeMenu(QTest::currentDataTag())), "items");
    // Opening again adds nothing.
    QTEST(CFrameDriver::textsOf(driver.seeMenu(QTest::currentDataTag())), "items");
}

void TestMainFrameActions::toolBarHoldsFileOperations()
{
    const CFrameDriver driver;
    const QList<QToolBar*> bars = driver.frame.findChildren<QToolBar*>();
    QCOMPARE(bars.size(), 1);
    QCOMPARE(bars.first()->windowTitle(), QString("File Operations"));
    QCOMPARE(driver.frame.toolBarArea(bars.first()), Qt::TopToolBarArea);
    QCOMPARE(CFrameDriver::textsOf(bars.first()),
             QStringList({ "&Open...", separator, "Device &Info", separator, "What's &This", "&About Velmora" }));
}

void TestMainFrameActions::toolBarStartsALineOfItsOwn()
{
    const CEarlyToolBar early;
    const CMainFrame frame;
    const QList<QToolBar*> bars = frame.findChildren<QToolBar*>();
    QCOMPARE(bars.size(), 2);
    QCOMPARE(bars[1]->windowTitle(), QString("File Operations"));
    QVERIFY(frame.toolBarBreak(bars[1]));
}

void TestMainFrameActions::toolButtonsShowTheActions()
{
    const CFrameDriver driver;
    const auto* bar = driver.frame.findChild<QToolBar*>();
    for (const char* name : { "file open", "device info", "help context", "help about" }) {
        QAction* action = driver.action(name);
        QVERIFY(bar->actions().contains(action));
        QVERIFY(bar->widgetForAction(action)->isVisible());
        QCOMPARE(bar->widgetForAction(action)->toolTip(), action->toolTip());
        QCOMPARE(pixelsOf(qobject_cast<QToolButton*>(bar->widgetForAction(action))->icon()), pixelsOf(action->icon()));
    }
}

void TestMainFrameActions::frameIsBuiltFromItsStatusBarToItsWorkspace()
{
    const CMainFrame frame;
    QStringList parts; // the kinds of its children, in the order in which they were created
    for (const QObject* child : frame.children())
        for (const char* kind : { "QStatusBar", "QAction", "QMenu", "QMenuBar", "QToolBar", "QFrame" })
            if (child->metaObject()->className() == QByteArray(kind) && !parts.contains(kind))
                parts << kind;
    QCOMPARE(parts, QStringList({ "QStatusBar", "QAction", "QMenu", "QMenuBar", "QToolBar", "QFrame" }));
}

void TestMainFrameActions::frameIsNamedMainWindow()
{
    const CMainFrame frame;
    QCOMPARE(frame.objectName(), QString("main window"));
    QVERIFY(frame.isWindow());
}

void TestMainFrameActions::nameOfTheCallerIsKept()
{
    const CMainFrame frame(nullptr, "another name");
    QCOMPARE(frame.objectName(), QString("another name"));
}

void TestMainFrameActions::frameHasTheIconOfTheProgram()
{
    const CMainFrame frame;
    QCOMPARE(pixelsOf(frame.windowIcon()), imageOf("program.png"));
}

void TestMainFrameActions::workspaceLiesInASunkenPanelWithScrollBars()
{
    const CFrameDriver driver;
    const auto* panel = qobject_cast<QFrame*>(driver.frame.centralWidget());
    QVERIFY(panel != nullptr);
    QCOMPARE(panel->frameShape(), QFrame::StyledPanel);
    QCOMPARE(panel->frameShadow(), QFrame::Sunken);
    QCOMPARE(driver.workspace()->parentWidget(), panel);
    QCOMPARE(driver.workspace()->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(driver.workspace()->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
}

void TestMainFrameActions::readyIsShownForTwoSeconds()
{
    const CFrameDriver driver;
    QCOMPARE(driver.statusText(), QString("Ready"));
    QCOMPARE(driver.statusTime(), 2000);
}

void TestMainFrameActions::highlightedItemShowsItsStatusTip()
{
    CFrameDriver driver;
    QMenu* menu = driver.openMenu("&File");
    QTest::keyClick(menu, Qt::Key_Down);
    QCOMPARE(driver.statusText(), driver.action("file open")->statusTip());
    QTest::keyClick(menu, Qt::Key_Escape);
}

void TestMainFrameActions::deviceInfoStartsDisabledAlsoInTheToolBar()
{
    CFrameDriver driver;
    const auto* bar = driver.frame.findChild<QToolBar*>();
    const QWidget* button = bar->widgetForAction(driver.action("device info"));
    QVERIFY(!driver.action("device info")->isEnabled());
    QVERIFY(!button->isEnabled());

    driver.frame.newDocument();
    QVERIFY(!button->isEnabled());
    driver.seeMenu("&File");
    QVERIFY(!button->isEnabled());
    driver.seeMenu("&Device");
    QVERIFY(button->isEnabled());
}

void TestMainFrameActions::closeCloseAllAndPrintStartEnabled()
{
    const CFrameDriver driver;
    for (const char* name : { "file close", "file close all", "file print" })
        QVERIFY(driver.action(name)->isEnabled());
}

void TestMainFrameActions::withoutWindowsMenusDisableTheirItems()
{
    CFrameDriver driver;
    for (const char* menu : { "&File", "&Device", "&Windows" })
        driver.seeMenu(menu);
    for (const char* name :
         { "file close", "file close all", "file print", "device info", "file cascade", "file tile" })
        QVERIFY2(!driver.action(name)->isEnabled(), name);
    for (const char* name : { "file open", "file exit" })
        QVERIFY2(driver.action(name)->isEnabled(), name);
}

void TestMainFrameActions::withAWindowMenusEnableTheirItems()
{
    CFrameDriver driver;
    for (const char* menu : { "&File", "&Device", "&Windows" })
        driver.seeMenu(menu);
    driver.frame.newDocument();
    for (const char* menu : { "&File", "&Device", "&Windows" })
        driver.seeMenu(menu);
    for (const char* name :
         { "file close", "file close all", "file print", "device info", "file cascade", "file tile" })
        QVERIFY2(driver.action(name)->isEnabled(), name);
}

void TestMainFrameActions::enablingWaitsForTheMenuToOpen()
{
    CFrameDriver driver;
    driver.seeMenu("&File");
    driver.frame.newDocument();
    QVERIFY(!driver.action("file close")->isEnabled());
    driver.press(Qt::Key_W); // the key of a disabled action does nothing
    QCOMPARE(driver.documentCount(), 1);
    driver.seeMenu("&File");
    QVERIFY(driver.action("file close")->isEnabled());
    driver.press(Qt::Key_W);
    QCOMPARE(driver.documentCount(), 0);
    QVERIFY(driver.action("file close")->isEnabled());
    driver.seeMenu("&File");
    QVERIFY(!driver.action("file close")->isEnabled());
}

void TestMainFrameActions::interfaceActionsAreAlwaysEnabled()
{
    CFrameDriver driver;
    for (int round = 0; round < 2; ++round) {
        driver.seeMenu("&Interface");
        QVERIFY(driver.action("interface initialize")->isEnabled());
        QVERIFY(driver.action("interface properties")->isEnabled());
        driver.frame.newDocument();
    }
}

QTEST_MAIN(TestMainFrameActions)
#include "TestMainFrameActions.moc"

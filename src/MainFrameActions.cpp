// The fourteen actions of the main frame as one table, and the menus and the tool bar as lists of their names.
// SPDX-License-Identifier: MIT
#include "MainFrame.h"

#include "widgets/ImageIcon.h"
#include "widgets/NameMenuStyle.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QWhatsThis>

namespace
{

constexpr char separator[] = "-"; // stands for a separator; no action has this name

QAction* createSeparator(QObject* parent)
{
    auto* action = new QAction(parent);
    action->setSeparator(true);
    return action;
}

} // namespace

struct CMainFrame::tAction {
    const char* name;
    const char* text;
    const char* menuText;
    const char* shortcut; // "" for none
    const char* icon;     // "" for none
    const char* statusTip;
    const char* whatsThis;
    QAction* CMainFrame::*member; // where the frame stores the action; null when it needs it only here
    void (*handler)(CMainFrame& frame);
};

struct CMainFrame::tMenu {
    const char* name;
    const char* title;
    QMenu* CMainFrame::*member;        // where the frame stores the menu; null when it needs it only here
    void (CMainFrame::*aboutToShow)(); // null when the menu needs no update; otherwise `member` is set
    const char* const* items; // names of actions and submenus, ends with null; null for a separator of the menu bar
};

const CMainFrame::tAction CMainFrame::actions[] = {
    { "file open", "Open", "&Open...", "Ctrl+O", "fileopen.png",
      "Open an object dictionary from an existing EDS-file and optionally connect it to a CANopen node",
      "Use the <i>Open</i> command from the <i>File</i> menu or press <i>Ctrl+O</i> to open an object dictionary of a "
      "CANopen device from an <u>EDS-file</u>. For data accesses the EDS-file can be connected to a CANopen node in "
      "the present CANopen network.",
      nullptr, [](CMainFrame& frame) { frame.fileOpen(); } },
    { "file print", "Print", "&Print...", "Ctrl+P", "fileprint.png", "Print the active object dictionary",
      "Use the <i>Print</i> command from the <i>File</i> menu or press <i>Ctrl+P</i> to print the active object "
      "dictionary.",
      &CMainFrame::m_filePrintAction, [](CMainFrame& frame) { frame.filePrint(); } },
    { "file close", "Close", "&Close", "Ctrl+W", "fileclose.png", "Close the active object dictionary",
      "Use the <i>Close</i> command from the <i>File</i> menu or press <i>Ctrl+W</i> to close the active object "
      "dictionary.",
      &CMainFrame::m_fileCloseAction, [](CMainFrame& frame) { frame.fileClose(); } },
    { "file close all", "Close All", "C&lose All", "", "", "Close all object dictionaries",
      "Use the <i>Close All</i> command from the <i>File</i> menu to close all object dictionaries", // sic
      &CMainFrame::m_fileCloseAllAction, [](CMainFrame& frame) { frame.fileCloseAll(); } },
    { "file exit", "Exit", "E&xit", "Ctrl+Q", "exit.png", "Exit the application",
      "Use the <i>Exit</i> command from the <i>File</i> menu or press <i>Ctrl+Q</i> to exit the application.", nullptr,
      [](CMainFrame&) { QApplication::closeAllWindows(); } },
    { "device info", "Device Info", "Device &Info", "", "deviceinfo.png",
      "Show the DeviceInfo section from the active object dictionary",
      "Use the <i>Device Info</i> command from the <i>Device</i> menu to show the DeviceInfo section from the active "
      "object dictionary.",
      &CMainFrame::m_deviceInfoAction, [](CMainFrame& frame) { frame.deviceInfo(); } },
    { "interface initialize", "Initialize", "&Initialize...", "", "", "Initialize the CAN interface",
      "Use the <i>Initialize</i> command from the <i>Interface</i> menu to initialize the CAN interface.",
      &CMainFrame::m_interfaceInitializeAction, [](CMainFrame& frame) { frame.interfaceInitialize(); } },
    { "interface properties", "Properties", "&Properties...", "", "", "Show properties of the CAN interface",
      "Use the <i>Properties</i> command from the <i>Interface</i> menu to show properties of the CAN interface.",
      &CMainFrame::m_interfacePropertiesAction, [](CMainFrame& frame) { frame.interfaceProperties(); } },
    { "file cascade", "Cascade", "&Cascade", "", "", "Arrange all windows so they overlap",
      "Use the <i>Cascade</i> command from the <i>Windows</i> menu to arrange all windows so they overlap", // sic
      &CMainFrame::m_windowsCascadeAction, [](CMainFrame& frame) { frame.cascade(); } },
    { "file tile", "Tile", "&Tile", "", "", "Arrange all windows as non-overlapping tiles",
      "Use the <i>Tile</i> command from the <i>Windows</i> menu to arrange all windows as non-overlapping tiles.",
      &CMainFrame::m_windowsTileAction, [](CMainFrame& frame) { frame.tile(); } },
    { "help topic", "Velmora Handbook", "Velmora &Handbook", "F1", "contents.png", "Open the online help file",
      "Use the <i>Contents</i> command from the <i>Help</i> menu or press <i>F1</i> key to open the online help "
      "file.", // sic
      nullptr, [](CMainFrame& frame) { frame.helpTopic(); } },
    { "help context", "What's This", "What's &This", "Shift+F1", "contexthelp.png", "Show context-sensitive help",
      "Use the <i>What's This</i> command from the <i>Help</i> menu or press <i>Shift+F1</i> to show context-sensitive "
      "help for clicked on buttons, menus and windows.",
      nullptr, [](CMainFrame& frame) { frame.contextHelp(); } },
    { "help about", "About Velmora", "&About Velmora", "", "program.png", "Show the application's About box",
      "Use the <i>About</i> command from the <i>Help</i> menu to show program information, version number and "
      "copyright.",
      nullptr, [](CMainFrame& frame) { frame.helpAbout(); } },
    { "help about qt", "About Qt", "About &Qt", "", "", "Show the Qt library's About box",
      "Use the <i>About Qt</i> command from the <i>Help</i> menu to show Qt library information, version number and "
      "copyright.",
      nullptr, [](CMainFrame& frame) { frame.helpAboutQt(); } },
};

namespace
{

constexpr const char* fileItems[] = { "file open",  "file list menu", separator, "file print", separator,
                                      "file close", "file close all", separator, "file exit",  nullptr };
constexpr const char* deviceItems[] = { "device info", nullptr };
constexpr const char* interfaceItems[] = { "interface initialize", separator, "interface properties", nullptr };
constexpr const char* helpItems[] = { "help topic", "help context", separator, "help about", "help about qt", nullptr };
constexpr const char* toolBarItems[] = { "file open",    separator,    "device info", separator,
                                         "help context", "help about", nullptr };
constexpr const char* noItems[] = { nullptr }; // filled each time it is about to show

} // namespace

// In the order of the menu bar; a submenu stands before the menu that contains it.
const CMainFrame::tMenu CMainFrame::menus[] = {
    { "file list menu", "&Recently used", &CMainFrame::m_fileListMenu, &CMainFrame::fileListMenuAboutToShow, noItems },
    { "file menu", "&File", &CMainFrame::m_fileMenu, &CMainFrame::fileMenuAboutToShow, fileItems },
    { "device menu", "&Device", &CMainFrame::m_deviceMenu, &CMainFrame::deviceMenuAboutToShow, deviceItems },
    { "interface menu", "&Interface", &CMainFrame::m_interfaceMenu, &CMainFrame::interfaceMenuAboutToShow,
      interfaceItems },
    { "windows menu", "&Windows", &CMainFrame::m_windowsMenu, &CMainFrame::windowsMenuAboutToShow, noItems },
    { separator, "", nullptr, nullptr, nullptr },
    { "help menu", "&Help", nullptr, nullptr, helpItems },
};

void CMainFrame::createActions()
{
    for (const tAction& row : actions) {
        auto* action = new QAction(this);
        action->setObjectName(QLatin1String(row.name));
        action->setText(QLatin1String(row.menuText));
        action->setIconText(QLatin1String(row.text));
        action->setStatusTip(QLatin1String(row.statusTip));
        action->setWhatsThis(QLatin1String(row.whatsThis));
        if (*row.shortcut != '\0')
            action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
        if (*row.icon != '\0')
            action->setIcon(imageIcon(QLatin1String(row.icon)));
        if (row.member != nullptr)
            this->*row.member = action;
    }
    // Kept: enabled when the Device menu opens, and not before; this holds for the tool button, too.
    m_deviceInfoAction->setEnabled(false);
}

void CMainFrame::createMenus()
{
    for (const tMenu& row : menus) {
        if (row.items == nullptr) {
            menuBar()->addSeparator();
            continue;
        }
        auto* menu = new QMenu(QLatin1String(row.title), this);
        menu->setObjectName(QLatin1String(row.name));
        menu->setAccessibleName(menu->title().remove(QLatin1Char('&')));
        addItems(menu, row.items);
        if (row.member != nullptr)
            this->*row.member = menu;
        if (row.member != &CMainFrame::m_fileListMenu)
            menuBar()->addMenu(menu);
    }
    menuBar()->setAccessibleName(QStringLiteral("Menus"));

    auto* style = new CNameMenuStyle;
    style->setParent(this);
    for (QMenu* menu : { m_fileListMenu, m_windowsMenu })
        menu->setStyle(style);
}

void CMainFrame::createToolBar()
{
    addToolBarBreak(Qt::TopToolBarArea);
    QToolBar* toolBar = addToolBar(QStringLiteral("File Operations"));
    toolBar->setObjectName(QStringLiteral("file operations tool bar"));
    toolBar->setAccessibleName(toolBar->windowTitle()); // since 6.8 the toolkit shows it to screen readers
    addItems(toolBar, toolBarItems);
    for (QAction* action : toolBar->actions()) // their tool tips repeat their texts
        toolBar->widgetForAction(action)->setAccessibleDescription(action->statusTip());
}

void CMainFrame::connectActionsAndMenus()
{
    for (const tAction& row : actions)
        connect(findChild<QAction*>(QLatin1String(row.name)), &QAction::triggered, this,
                [this, handler = row.handler] { handler(*this); });
    for (const tMenu& row : menus)
        if (row.aboutToShow != nullptr)
            connect(this->*row.member, &QMenu::aboutToShow, this, row.aboutToShow);
}

void CMainFrame::addItems(QWidget* bar, const char* const* items)
{
    for (; *items != nullptr; ++items) {
        if (const auto* submenu = findChild<QMenu*>(QLatin1String(*items)))
            bar->addAction(submenu->menuAction());
        else if (auto* action = findChild<QAction*>(QLatin1String(*items)))
            bar->addAction(action);
        else
            bar->addAction(createSeparator(bar));
    }
}

void CMainFrame::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_F10 || event->modifiers() != Qt::NoModifier)
        return QMainWindow::keyPressEvent(event);
    menuBar()->setActiveAction(m_fileMenu->menuAction());
    m_fileMenu->setActiveAction(m_fileMenu->actions().first());
}

// In the mode a click shows the help of what it hits. The key, pressed again, shows that of what has the focus.
void CMainFrame::contextHelp()
{
    if (!QWhatsThis::inWhatsThisMode())
        return QWhatsThis::enterWhatsThisMode();
    QWhatsThis::leaveWhatsThisMode();
    QWidget* focus = focusWidget();
    if (focus != nullptr && !focus->whatsThis().isEmpty())
        QWhatsThis::showText(focus->mapToGlobal(focus->rect().center()), focus->whatsThis(), focus);
}

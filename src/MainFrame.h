// The main frame: menus, tool bar, status bar, the workspace with the document windows, and the one access facade.
// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

class CCANopenAccess;
class CMDIWindow;
class QMdiArea;
class QMdiSubWindow;
struct tInterface;

class CMainFrame : public QMainWindow
{
    Q_OBJECT

public:
    explicit CMainFrame(QWidget* parent = nullptr, const char* name = nullptr, Qt::WindowFlags flags = {});
    ~CMainFrame() override;

    /// Asks for an interface and initialises it.
    void initializeInterface();

    /// Moves a file to the top of the recently used ones.
    void setRecentFile(const QString& name);
    /// Removes a file from the recently used ones.
    void deleteFileName(const QString& name);

    static const char* version();

    /// Closes the documents and the interface. The frame stays when a document refuses to close.
    void closeEvent(QCloseEvent* event) override;
    /// F10 opens the first menu.
    void keyPressEvent(QKeyEvent* event) override;

public Q_SLOTS:
    /// Opens an empty document: the first in the workspace maximised, later ones on top in normal size.
    /// @return the document, which deletes itself when it is closed
    CMDIWindow* newDocument();
    void fileOpen();
    void filePrint();
    void fileClose();
    void fileCloseAll();
    void deviceInfo();
    void interfaceInitialize();
    void interfaceProperties();
    void helpTopic();
    void helpAbout();
    void helpAboutQt();
    void fileMenuAboutToShow();
    void fileListMenuAboutToShow();
    void deviceMenuAboutToShow();
    void interfaceMenuAboutToShow();
    void windowsMenuAboutToShow();
    /// Opens the recently used file at that position of its menu, counted from 0.
    void fileListMenuActivated(int position);
    /// Shows the window at that position of the workspace's window list, counted from 0, and gives it the focus.
    void windowsMenuActivated(int position);

private:
    struct tAction;
    struct tMenu;
    static const tAction actions[];
    static const tMenu menus[];

    void createActions();
    void createMenus();
    void addItems(QWidget* bar, const char* const* items);
    void createToolBar();
    void createWorkspace();
    void connectActionsAndMenus();
    void arrange(void (QMdiArea::*arrangement)());
    void cascade();
    void tile();
    void contextHelp();
    void keepCaption(const QString& title);

    void openFile(const QString& fileName);
    void status(const QString& text);
    bool hasWindow() const;
    QMdiSubWindow* activeSubWindow() const;
    bool openInterface(tInterface& interface, unsigned char baudrate);
    void deleteAccess();

    QMdiArea* m_workspace = nullptr;
    QMenu* m_fileMenu = nullptr;
    QMenu* m_fileListMenu = nullptr;
    QMenu* m_deviceMenu = nullptr;
    QMenu* m_interfaceMenu = nullptr;
    QMenu* m_windowsMenu = nullptr;
    QAction* m_fileCloseAction = nullptr;
    QAction* m_fileCloseAllAction = nullptr;
    QAction* m_filePrintAction = nullptr;
    QAction* m_deviceInfoAction = nullptr;
    QAction* m_interfaceInitializeAction = nullptr;
    QAction* m_interfacePropertiesAction = nullptr;
    QAction* m_windowsCascadeAction = nullptr;
    QAction* m_windowsTileAction = nullptr;
    CCANopenAccess* m_CANopen = nullptr; // owned; null until an interface has been initialised
};

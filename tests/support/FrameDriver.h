// Drives a main frame as a user does: by keys, menus, clicks and what is entered in its dialogs.
// SPDX-License-Identifier: MIT
#pragma once

#include "InDialog.h"
#include "MDIWindow.h"
#include "MainFrame.h"
#include "Patience.h"
#include "WhenShown.h"

#include <QAction>
#include <QCursor>
#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

/// A main frame on the screen, with the caption that the program starts with.
class CFrameDriver
{
public:
    CFrameDriver();
    /// Makes the frame the active window, as the window manager does when a dialog ends.
    void activate();
    /// Puts the pointer beside the frame, where it causes no status tips. A menu stores where the pointer was when it
    /// opened. In Qt 6.8, a press at that place closes the menu without choosing an item; so does a press at any place
    /// until the pointer has been set.
    void putPointerAside() const;

    QAction* action(const char* name) const { return frame.findChild<QAction*>(name); }
    QMdiArea* workspace() const { return frame.findChild<QMdiArea*>(); }
    QMdiSubWindow* subWindow(int position) const;
    CMDIWindow* document(int position) const { return qobject_cast<CMDIWindow*>(subWindow(position)->widget()); }
    qsizetype documentCount() const { return workspace()->subWindowList().size(); }

    QString statusText() const { return frame.statusBar()->currentMessage(); }
    /// For how long the status text is shown, in milliseconds; 0: until the next one.
    int statusTime() const { return m_statusTime; }

    /// The menu of that title, in the menu bar.
    QMenu* menu(const QString& title) const;
    /// Opens it by a click.
    QMenu* openMenu(const QString& title);
    void closeMenu() { QTest::keyClick(&frame, Qt::Key_Escape); }
    /// Opens it and closes it again: its items are then up to date.
    QMenu* seeMenu(const QString& title);
    /// Opens the File menu and in it the one of the recently used files, by keys.
    QMenu* openRecentMenu();
    QMenu* seeRecentMenu();
    /// Chooses the item at that position of an open menu by a click.
    static void clickItem(QMenu* opened, int position);
    /// Chooses the item with that text from a menu of the menu bar.
    void choose(const QString& title, const QString& text);
    /// The texts of a menu's or tool bar's items; a separator is "—".
    static QStringList textsOf(const QWidget* bar);

    /// Initialises the interface by the menu and the dialog.
    void initialize(const QString& text);
    void initializeGateway(unsigned port) { initialize("127.0.0.1:" + QString::number(port)); }
    /// Opens a file by Ctrl+O and the file dialog; connects it when there is an interface.
    void open(const QString& name, int nodeId = 0);
    /// Presses a key, with Ctrl unless told otherwise, in the widget of the frame that has the focus.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier);

    CMainFrame frame;

private:
    /// Notes the time of the status text and stops it.
    void keepStatus();

    int m_statusTime = 0;
};

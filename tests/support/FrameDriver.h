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
    CFrameDriver()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        // A text would go by itself after its time, which a busy machine may need to look at it.
        QObject::connect(frame.statusBar(), &QStatusBar::messageChanged, &frame, [this] { keepStatus(); });
        keepStatus();
        frame.setWindowTitle("CANopen Object Browser - Version 0.2 Build 61");
        frame.show();
        activate();
        putPointerAside();
    }
    /// Makes the frame the active window, as the window manager does when a dialog ends.
    void activate()
    {
        frame.activateWindow();
        if (!QTest::qWaitFor([&] { return QApplication::activeWindow() == &frame; }, patience))
            qFatal("the frame does not become active");
    }
    /// Puts the pointer beside the frame, where it causes no status tips. A menu remembers where the pointer was when it
    /// opened, and Qt 6.8 closes it, choosing nothing, when it is pressed in that place; before the pointer has been
    /// anywhere, every place counts as that.
    void putPointerAside() const
    {
        QCursor::setPos(frame.frameGeometry().topLeft() - QPoint(100, 100));
        QCoreApplication::processEvents();
    }

    QAction* action(const char* name) const { return frame.findChild<QAction*>(name); }
    QMdiArea* workspace() const { return frame.findChild<QMdiArea*>(); }
    QMdiSubWindow* subWindow(int position) const
    {
        if (position >= documentCount())
            qFatal("no document at position %d", position);
        return workspace()->subWindowList().at(position);
    }
    CMDIWindow* document(int position) const { return qobject_cast<CMDIWindow*>(subWindow(position)->widget()); }
    qsizetype documentCount() const { return workspace()->subWindowList().size(); }

    QString statusText() const { return frame.statusBar()->currentMessage(); }
    /// How long the status text would be shown in all, in milliseconds; 0 when for good.
    int statusTime() const { return m_statusTime; }

    /// The menu of that title, in the menu bar.
    QMenu* menu(const QString& title) const
    {
        for (const QAction* item : frame.menuBar()->actions())
            if (item->text() == title)
                return item->menu();
        qFatal("no menu \"%s\"", qPrintable(title));
    }
    /// Opens it by a click.
    QMenu* openMenu(const QString& title)
    {
        QMenu* opened = menu(title);
        QTest::mouseClick(frame.menuBar(), Qt::LeftButton, {},
                          frame.menuBar()->actionGeometry(opened->menuAction()).center());
        return opened;
    }
    void closeMenu() { QTest::keyClick(&frame, Qt::Key_Escape); }
    /// Opens it and closes it again: its items are then up to date.
    QMenu* seeMenu(const QString& title)
    {
        QMenu* seen = openMenu(title);
        seen->close();
        return seen;
    }
    /// Opens the File menu and in it the one of the recently used files, by keys.
    QMenu* openRecentMenu()
    {
        QMenu* fileMenu = openMenu("&File");
        QMenu* recentMenu = fileMenu->actions().at(1)->menu();
        QTest::keyClick(fileMenu, Qt::Key_Down);
        QTest::keyClick(fileMenu, Qt::Key_Down);
        QTest::keyClick(fileMenu, Qt::Key_Right);
        return recentMenu;
    }
    QMenu* seeRecentMenu()
    {
        QMenu* seen = openRecentMenu();
        seen->close();
        menu("&File")->close();
        return seen;
    }
    /// Chooses the item at that position of an open menu by a click.
    static void clickItem(QMenu* opened, int position)
    {
        QTest::mouseClick(opened, Qt::LeftButton, {}, opened->actionGeometry(opened->actions().at(position)).center());
    }
    /// Chooses the item with that text from a menu of the menu bar.
    void choose(const QString& title, const QString& text)
    {
        QMenu* opened = openMenu(title);
        clickItem(opened, static_cast<int>(textsOf(opened).indexOf(text)));
    }
    /// The texts of a menu's or tool bar's items; a separator is "—".
    static QStringList textsOf(const QWidget* bar)
    {
        QStringList texts;
        for (const QAction* item : bar->actions())
            texts << (item->isSeparator() ? QString::fromUtf8("—") : item->text());
        return texts;
    }

    /// Initialises the interface by the menu and the dialog.
    void initialize(const QString& text)
    {
        const CWhenShown<CInitInterfaceDialog> dialog([&](auto* shown) { inDialog::enterInterface(shown, text); });
        choose("&Interface", "&Initialize...");
        activate();
    }
    void initializeGateway(unsigned port) { initialize("127.0.0.1:" + QString::number(port)); }
    /// Opens a file by Ctrl+O and the file dialog; connects it when there is an interface.
    void open(const QString& name, int nodeId = 0)
    {
        const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, name); });
        const CWhenShown<CConnectNodeDialog> node([&](auto* shown) { inDialog::chooseNode(shown, nodeId); });
        press(Qt::Key_O);
        activate();
    }
    /// Presses a key, with Ctrl unless told otherwise, in the widget of the frame that has the focus.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        activate();
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &frame, key, modifiers);
    }

    CMainFrame frame;

private:
    /// Notes the time of the status text and stops it.
    void keepStatus()
    {
        m_statusTime = 0;
        for (auto* timer : frame.statusBar()->findChildren<QTimer*>())
            if (timer->isActive()) {
                m_statusTime = timer->interval();
                timer->stop();
            }
    }

    int m_statusTime = 0;
};

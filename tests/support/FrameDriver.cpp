// Drives a main frame as a user does: by keys, menus, clicks and what is entered in its dialogs.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"

CFrameDriver::CFrameDriver()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    // A status text must not vanish after its time before a test on a busy machine has checked it.
    QObject::connect(frame.statusBar(), &QStatusBar::messageChanged, &frame, [this] { keepStatus(); });
    keepStatus();
    frame.setWindowTitle("CANopen Object Browser - Version 0.2 Build 61");
    frame.show();
    activate();
    putPointerAside();
}

void CFrameDriver::activate()
{
    frame.activateWindow();
    if (!QTest::qWaitFor([&] { return QApplication::activeWindow() == &frame; }, patience))
        qFatal("the frame does not become active");
}

void CFrameDriver::putPointerAside() const
{
    QCursor::setPos(frame.frameGeometry().topLeft() - QPoint(100, 100));
    QCoreApplication::processEvents();
}

QMdiSubWindow* CFrameDriver::subWindow(int position) const
{
    if (position >= documentCount())
        qFatal("no document at position %d", position);
    return workspace()->subWindowList().at(position);
}

QMenu* CFrameDriver::menu(const QString& title) const
{
    for (const QAction* item : frame.menuBar()->actions())
        if (item->text() == title)
            return item->menu();
    qFatal("no menu \"%s\"", qPrintable(title));
}

QMenu* CFrameDriver::openMenu(const QString& title)
{
    QMenu* opened = menu(title);
    QTest::mouseClick(frame.menuBar(), Qt::LeftButton, {},
                      frame.menuBar()->actionGeometry(opened->menuAction()).center());
    return opened;
}

QMenu* CFrameDriver::seeMenu(const QString& title)
{
    QMenu* seen = openMenu(title);
    seen->close();
    return seen;
}

QMenu* CFrameDriver::openRecentMenu()
{
    QMenu* fileMenu = openMenu("&File");
    QMenu* recentMenu = fileMenu->actions().at(1)->menu();
    QTest::keyClick(fileMenu, Qt::Key_Down);
    QTest::keyClick(fileMenu, Qt::Key_Down);
    QTest::keyClick(fileMenu, Qt::Key_Right);
    return recentMenu;
}

QMenu* CFrameDriver::seeRecentMenu()
{
    QMenu* seen = openRecentMenu();
    seen->close();
    menu("&File")->close();
    return seen;
}

void CFrameDriver::clickItem(QMenu* opened, int position)
{
    QTest::mouseClick(opened, Qt::LeftButton, {}, opened->actionGeometry(opened->actions().at(position)).center());
}

void CFrameDriver::choose(const QString& title, const QString& text)
{
    QMenu* opened = openMenu(title);
    clickItem(opened, static_cast<int>(textsOf(opened).indexOf(text)));
}

QStringList CFrameDriver::textsOf(const QWidget* bar)
{
    QStringList texts;
    for (const QAction* item : bar->actions())
        texts << (item->isSeparator() ? QString::fromUtf8("—") : item->text());
    return texts;
}

void CFrameDriver::initialize(const QString& text)
{
    const CWhenShown<CInitInterfaceDialog> dialog([&](auto* shown) { inDialog::enterInterface(shown, text); });
    choose("&Interface", "&Initialize...");
    activate();
}

void CFrameDriver::open(const QString& name, int nodeId)
{
    const CWhenShown<QFileDialog> files([&](auto* shown) { inDialog::chooseFile(shown, name); });
    const CWhenShown<CConnectNodeDialog> node([&](auto* shown) { inDialog::chooseNode(shown, nodeId); });
    press(Qt::Key_O);
    activate();
}

void CFrameDriver::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    activate();
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &frame, key, modifiers);
}

void CFrameDriver::keepStatus()
{
    m_statusTime = 0;
    for (auto* timer : frame.statusBar()->findChildren<QTimer*>())
        if (timer->isActive()) {
            m_statusTime = timer->interval();
            timer->stop();
        }
}

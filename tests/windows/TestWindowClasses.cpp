// What the window classes show to those who use them by their names: signals and slots in order, and versions.
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"
#include "DeviceInfoDialog.h"
#include "InitInterfaceDialog.h"
#include "MDIWindow.h"
#include "MainFrame.h"

#include <QMetaMethod>
#include <QTest>

namespace
{

struct tClass {
    const QMetaObject* meta;
    const char* (*version)();
    const char* file;
    QStringList signalsAndSlots; // the signals first
};

const tClass classes[] = {
    { &CMainFrame::staticMetaObject,
      &CMainFrame::version,
      "MainFrame.cpp",
      { "newDocument()", "fileOpen()", "filePrint()", "fileClose()", "fileCloseAll()", "deviceInfo()",
        "interfaceInitialize()", "interfaceProperties()", "helpTopic()", "helpAbout()", "helpAboutQt()",
        "fileMenuAboutToShow()", "fileListMenuAboutToShow()", "deviceMenuAboutToShow()", "interfaceMenuAboutToShow()",
        "windowsMenuAboutToShow()", "fileListMenuActivated(int)", "windowsMenuActivated(int)" } },
    { &CMDIWindow::staticMetaObject,
      &CMDIWindow::version,
      "MDIWindow.cpp",
      { "signal message(QString,int)", "mouseLeftPressed(QTreeWidgetItem*)", "returnKeyPressed(QTreeWidgetItem*)",
        "mouseRightClicked(QTreeWidgetItem*,QPoint)", "buttonSendClicked()", "buttonReadClicked()",
        "buttonHexClicked()", "buttonDecClicked()", "buttonOctClicked()" } },
    { &CInitInterfaceDialog::staticMetaObject,
      &CInitInterfaceDialog::version,
      "InitInterfaceDialog.cpp",
      { "acceptInitialize()" } },
    { &CConnectNodeDialog::staticMetaObject,
      &CConnectNodeDialog::version,
      "ConnectNodeDialog.cpp",
      { "doubleClicked(QListWidgetItem*)", "acceptConnect()", "acceptOffline()", "searchNode()" } },
    { &CDeviceInfoDialog::staticMetaObject, &CDeviceInfoDialog::version, "DeviceInfoDialog.cpp", {} },
};

} // namespace

class TestWindowClasses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signalsAndSlotsKeepTheirOrder_data();
    void signalsAndSlotsKeepTheirOrder();
    void versionNamesFileRevisionAndDate_data() { signalsAndSlotsKeepTheirOrder_data(); }
    void versionNamesFileRevisionAndDate();
};

void TestWindowClasses::signalsAndSlotsKeepTheirOrder_data()
{
    QTest::addColumn<const tClass*>("row");
    for (const tClass& row : classes)
        QTest::newRow(row.meta->className()) << &row;
}

void TestWindowClasses::signalsAndSlotsKeepTheirOrder()
{
    QFETCH(const tClass*, row);
    QStringList found;
    for (int number = row->meta->methodOffset(); number < row->meta->methodCount(); ++number) {
        const QMetaMethod method = row->meta->method(number);
        found << (method.methodType() == QMetaMethod::Signal ? "signal " : "") + method.methodSignature();
    }
    QCOMPARE(found, row->signalsAndSlots);
}

void TestWindowClasses::versionNamesFileRevisionAndDate()
{
    QFETCH(const tClass*, row);
    QCOMPARE(QString(row->version()), QString("$Id: %1 61 2009-11-09 $").arg(row->file));
}

QTEST_MAIN(TestWindowClasses)
#include "TestWindowClasses.moc"

// The names of the objects of each window, by which those who drive a window find its parts.
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"
#include "DeviceInfoDialog.h"
#include "InitInterfaceDialog.h"
#include "MDIWindow.h"
#include "MainFrame.h"

#include <QTest>

namespace
{

const QStringList namesInMainFrame = {
    "device info",     "device menu",
    "file cascade",    "file close",
    "file close all",  "file exit",
    "file list menu",  "file menu",
    "file open",       "file operations tool bar",
    "file print",      "file tile",
    "help about",      "help about qt",
    "help context",    "help menu",
    "help topic",      "interface initialize",
    "interface menu",  "interface properties",
    "windows menu",    "workspace",
    "workspace frame",
};

const QStringList namesInMDIWindow = {
    "access type line edit",
    "access type text label",
    "actual value line edit",
    "actual value text label",
    "client central widget",
    "client splitter window",
    "client window layout",
    "compound object check box",
    "compound object text label",
    "data access group box",
    "dec radio button",
    "default value line edit",
    "default value text label",
    "display mode buttons layout",
    "entry description group box",
    "hex radio button",
    "mandatory entry check box",
    "mandatory entry text label",
    "mandatory object check box",
    "mandatory object text label",
    "mapped entry check box",
    "mapped entry text label",
    "new value line edit",
    "new value text label",
    "object attributes form widget",
    "object attributes widget",
    "object code line edit",
    "object code text label",
    "object data type line edit",
    "object data type text label",
    "object description group box",
    "object dictionary list view",
    "object name line edit",
    "object name text label",
    "oct radio button",
    "parameter data type line edit",
    "parameter data type text label",
    "parameter name line edit",
    "parameter name text label",
    "read push button",
    "send push button",
    "value range line edit",
    "value range text label",
};

const QStringList namesInInitInterfaceDialog = {
    "baud rate combo box",       "baud rate text label", "baud rate unit text label", "cancel push button",
    "interface combo box",       "interface text label", "master id spin box",        "master id text label",
    "master id unit text label", "ok push button",
};

const QStringList namesInConnectNodeDialog = {
    "connect push button", "node-id list box",    "node-id range text label", "node-id spin box",
    "node-id text label",  "offline push button", "search push button",
};

const QStringList namesInDeviceInfoDialog = {
    "EDS version line edit",
    "EDS version text label",
    "author line edit",
    "author text label",
    "baud rate 10 line edit",
    "baud rate 1000 line edit",
    "baud rate 125 line edit",
    "baud rate 20 line edit",
    "baud rate 250 line edit",
    "baud rate 50 line edit",
    "baud rate 500 line edit",
    "baud rate 800 line edit",
    "baud rate text label",
    "boot-up master line edit",
    "boot-up master text label",
    "boot-up slave line edit",
    "boot-up slave text label",
    "company line edit",
    "company text label",
    "date line edit",
    "date text label",
    "description line edit",
    "description text label",
    "device info page 1",
    "device info page 2",
    "device info page 3",
    "device info tab widget",
    "dynamic channels line edit",
    "dynamic channels text label",
    "file description line edit",
    "file description text label",
    "file info page",
    "file name line edit",
    "file name text label",
    "file version line edit",
    "file version text label",
    "granularity line edit",
    "granularity text label",
    "group messaging line edit",
    "group messaging text label",
    "layer settings line edit",
    "layer settings text label",
    "number of PDOs line edit",
    "number of PDOs text label",
    "ok push button",
    "order code line edit",
    "order code text label",
    "product name line edit",
    "product name text label",
    "product number line edit",
    "product number text label",
    "revision number line edit",
    "revision number text label",
    "vendor name line edit",
    "vendor name text label",
    "vendor number line edit",
    "vendor number text label",
};

// Those that no part of the window has.
QStringList missing(const QWidget& window, const QStringList& names)
{
    QStringList missing;
    for (const QString& name : names)
        if (window.findChild<QObject*>(name) == nullptr)
            missing << name;
    return missing;
}

} // namespace

class TestObjectNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachPartHasItsName();
};

void TestObjectNames::eachPartHasItsName()
{
    QCOMPARE(missing(CMainFrame(), namesInMainFrame), QStringList());
    QCOMPARE(missing(CMDIWindow(nullptr, "client window"), namesInMDIWindow), QStringList());
    QCOMPARE(missing(CInitInterfaceDialog(), namesInInitInterfaceDialog), QStringList());
    QCOMPARE(missing(CConnectNodeDialog(), namesInConnectNodeDialog), QStringList());
    QCOMPARE(missing(CDeviceInfoDialog(), namesInDeviceInfoDialog), QStringList());
}

QTEST_MAIN(TestObjectNames)
#include "TestObjectNames.moc"

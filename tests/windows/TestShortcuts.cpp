// The shortcuts of the dialogs on a desktop that has none from texts such as "&OK".
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"
#include "InitInterfaceDialog.h"

#include <QPushButton>
#include <QTest>

extern Q_GUI_EXPORT void qt_set_sequence_auto_mnemonic(bool on);

class TestShortcuts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { qt_set_sequence_auto_mnemonic(true); }

    void buttonsKeepTheirShortcuts();

private:
    static QString shortcut(const QWidget& dialog, const char* button)
    {
        return dialog.findChild<QPushButton*>(button)->shortcut().toString();
    }
};

void TestShortcuts::initTestCase()
{
    qt_set_sequence_auto_mnemonic(false);
    QVERIFY(QPushButton("&OK").shortcut().isEmpty());
}

void TestShortcuts::buttonsKeepTheirShortcuts()
{
    const CInitInterfaceDialog initializing;
    QCOMPARE(shortcut(initializing, "ok push button"), QString("Alt+O"));
    QCOMPARE(shortcut(initializing, "cancel push button"), QString("Alt+C"));
    const CConnectNodeDialog connecting;
    QCOMPARE(shortcut(connecting, "connect push button"), QString("Alt+C"));
    QCOMPARE(shortcut(connecting, "offline push button"), QString("Alt+O"));
    QCOMPARE(shortcut(connecting, "search push button"), QString("Alt+S"));
}

QTEST_MAIN(TestShortcuts)
#include "TestShortcuts.moc"

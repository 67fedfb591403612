// What becomes of the Initialize dialog: its bit rate goes to the master, on a fake bus, and the dialog stays.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeBus.h"
#include "FrameDriver.h"
#include "TempSettings.h"

#include "cop/can_internal.h"

#include <QTest>

#include <optional>

class TestMainFrameInitializing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void bitRateOfTheDialogReachesTheMaster_data();
    void bitRateOfTheDialogReachesTheMaster();
    void bitRateIs250UnlessItIsChanged();
    void bitRateThatTheMasterRefusesIsAFailure_data();
    void bitRateThatTheMasterRefusesIsAFailure();
    void dialogLivesOnAsAHiddenChild_data();
    void dialogLivesOnAsAHiddenChild();
    void everyInitialisingMakesADialogOfItsOwn();
    void dialogsEndWithTheFrame();

private:
    static void initializeWith(CFrameDriver& driver, int position);

    std::optional<CTempSettings> m_store;
};

// Initialises "can0" with the bit rate at that position of the dialog's box, which only code can change.
void TestMainFrameInitializing::initializeWith(CFrameDriver& driver, int position)
{
    const CWhenShown<CInitInterfaceDialog> dialog([&](CInitInterfaceDialog* shown) {
        shown->findChild<QComboBox*>("baud rate combo box")->setCurrentIndex(position);
        inDialog::enterInterface(shown, "can0");
    });
    driver.choose("&Interface", "&Initialize...");
}

void TestMainFrameInitializing::bitRateOfTheDialogReachesTheMaster_data()
{
    QTest::addColumn<int>("index");
    for (const int index : { 0, 2, 3, 4, 5, 6, 7, 8 })
        QTest::addRow("%d", index) << index;
}

void TestMainFrameInitializing::bitRateOfTheDialogReachesTheMaster()
{
    QFETCH(const int, index);
    const CBoxCatcher catcher;
    CFakeBus bus;
    CFrameDriver driver;
    initializeWith(driver, index);
    QCOMPARE(catcher.count(), 0);
    QCOMPARE(int{ can_baudrate }, index);
}

void TestMainFrameInitializing::bitRateIs250UnlessItIsChanged()
{
    CFakeBus bus;
    CFrameDriver driver;
    driver.initialize("can0");
    QCOMPARE(int{ can_baudrate }, 3);
}

void TestMainFrameInitializing::bitRateThatTheMasterRefusesIsAFailure_data()
{
    QTest::addColumn<int>("position");
    QTest::newRow("800") << 1;
    QTest::newRow("none, whose position is cut to 255") << -1;
}

void TestMainFrameInitializing::bitRateThatTheMasterRefusesIsAFailure()
{
    QFETCH(const int, position);
    const CBoxCatcher catcher;
    CFakeBus bus;
    CFrameDriver driver;
    initializeWith(driver, position);
    QCOMPARE(catcher.only().title, QString("Velmora - Initialize Interface"));
    QVERIFY(catcher.only().text.startsWith("Error " + QString::number(ERR_BAUDRATE) + ": Interface 'can0'"));
}

void TestMainFrameInitializing::dialogLivesOnAsAHiddenChild_data()
{
    QTest::addColumn<QString>("interface");
    QTest::newRow("accepted") << "can0";
    QTest::newRow("accepted, but refused by the master") << "nocan0";
    QTest::newRow("cancelled") << "";
}

void TestMainFrameInitializing::dialogLivesOnAsAHiddenChild()
{
    QFETCH(const QString, interface);
    const CBoxCatcher catcher;
    CFakeBus bus;
    CFrameDriver driver;
    QPointer<CInitInterfaceDialog> dialog;
    const CWhenShown<CInitInterfaceDialog> whenShown([&](CInitInterfaceDialog* shown) {
        dialog = shown;
        if (interface.isEmpty())
            inDialog::cancel(shown);
        else
            inDialog::enterInterface(shown, interface);
    });
    driver.choose("&Interface", "&Initialize...");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!dialog.isNull());
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->parent(), &driver.frame);
}

void TestMainFrameInitializing::everyInitialisingMakesADialogOfItsOwn()
{
    CFrameDriver driver;
    const CWhenShown<CInitInterfaceDialog> whenShown(&inDialog::cancel);
    for (int round = 1; round <= 3; ++round) {
        driver.frame.interfaceInitialize();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(driver.frame.findChildren<CInitInterfaceDialog*>().size(), round);
    }
}

void TestMainFrameInitializing::dialogsEndWithTheFrame()
{
    QPointer<CInitInterfaceDialog> dialog;
    {
        CFrameDriver driver;
        const CWhenShown<CInitInterfaceDialog> whenShown([&](CInitInterfaceDialog* shown) {
            dialog = shown;
            inDialog::cancel(shown);
        });
        driver.frame.interfaceInitialize();
        QVERIFY(!dialog.isNull());
    }
    QVERIFY(dialog.isNull());
}

QTEST_MAIN(TestMainFrameInitializing)
#include "TestMainFrameInitializing.moc"

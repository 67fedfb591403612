// The dialog that names the interface to initialise, and its history.
// SPDX-License-Identifier: MIT
#include "InitInterfaceDialog.h"

#include "BoxCatcher.h"
#include "Patience.h"
#include "TempSettings.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

namespace
{

/// Counts the events of its parent that it sees.
class CWatchedDialog : public CInitInterfaceDialog
{
public:
    using CInitInterfaceDialog::CInitInterfaceDialog;
    int seen = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        seen += watched == parent() ? 1 : 0;
        return CInitInterfaceDialog::eventFilter(watched, event);
    }
};

} // namespace

class TestInitInterfaceDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void itHasItsTitle();
    void labelsNameTheFields_data();
    void labelsNameTheFields();
    void onlyTheInterfaceCanBeChosen();
    void theMasterIdRunsFrom0To127();
    void theBaudRateBoxShows250WhenTheDialogOpens();
    void widgetsCarryTheirHelpTexts_data();
    void widgetsCarryTheirHelpTexts();
    void labelsCarryTheWhatsThisTextsOfTheirFields();
    void buttonsHaveTheirShortcuts();
    void withNothingStoredTheBoxIsEmptyAndOkWarns();
    void okAcceptsAGivenInterface_data();
    void okAcceptsAGivenInterface();
    void returnAcceptsAGivenInterface();
    void cancelRejects();
    void theHistoryIsLoadedInOrderWithDuplicates();
    void choosingTheThirdEntryMovesItToTheTop();
    void onlyTheFirstEqualEntryIsTakenAway();
    void aTypedInterfaceEntersAtTheTop();
    void spellingIsKeptAsTyped();
    void onlyTheFirstTenEntriesAreWritten();
    void olderEntriesAfterTheListStay();
    void nothingIsStoredWithoutSaving();
    void itFollowsItsFrameUntilItIsActive();
    void itWatchesItsFrameOnlyWhileItIsShown();

private:
    static QComboBox* interfaceBox(const QDialog& dialog)
    {
        return dialog.findChild<QComboBox*>("interface combo box");
    }
    static QPushButton* button(const QDialog& dialog, const char* which)
    {
        return dialog.findChild<QPushButton*>(QString(which) + " push button");
    }
    static QStringList items(const QDialog& dialog)
    {
        QStringList texts;
        for (int row = 0; row < interfaceBox(dialog)->count(); ++row)
            texts << interfaceBox(dialog)->itemText(row);
        return texts;
    }
    void storeHistory(const QStringList& list)
    {
        for (int n = 0; n < list.size(); ++n)
            m_store->setValue(QString("Used Interfaces/Interface%1").arg(n + 1), list[n]);
    }
    QStringList storedHistory() const
    {
        QStringList list;
        for (int n = 1; m_store->contains(QString("Used Interfaces/Interface%1").arg(n)); ++n)
            list << m_store->value(QString("Used Interfaces/Interface%1").arg(n));
        return list;
    }

    std::optional<CTempSettings> m_store;
};

void TestInitInterfaceDialog::itHasItsTitle()
{
    CInitInterfaceDialog dialog;
    QCOMPARE(dialog.windowTitle(), QString("Initialize CAN Interface"));
}

void TestInitInterfaceDialog::labelsNameTheFields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("buddy");
    for (const auto& [text, buddy] :
         { std::pair("&Interface:", "interface combo box"), std::pair("&Baud rate:", "baud rate combo box"),
           std::pair("Kbps (CiA Bit-timing)", ""), std::pair("&Node-Id.:", "master id spin box"),
           std::pair("for CANopen Master", "") })
        QTest::newRow(text) << QString(text) << QString(buddy);
}

void TestInitInterfaceDialog::labelsNameTheFields()
{
    CInitInterfaceDialog dialog;
    QFETCH(const QString, text);
    QFETCH(const QString, buddy);
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (label->text() == text) {
            QCOMPARE(label->buddy() != nullptr ? label->buddy()->objectName() : QString(), buddy);
            return;
        }
    QFAIL("no such label");
}

void TestInitInterfaceDialog::onlyTheInterfaceCanBeChosen()
{
    CInitInterfaceDialog dialog;
    QVERIFY(interfaceBox(dialog)->isEnabled());
    QVERIFY(!dialog.findChild<QComboBox*>("baud rate combo box")->isEnabled());
    QVERIFY(!dialog.findChild<QSpinBox*>("master id spin box")->isEnabled());
    QVERIFY(button(dialog, "ok")->isEnabled() && button(dialog, "cancel")->isEnabled());
    QStringList disabled;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (!label->isEnabled())
            disabled << label->text();
    disabled.sort();
    QCOMPARE(disabled, QStringList({ "&Baud rate:", "&Node-Id.:", "Kbps (CiA Bit-timing)" }));
}

void TestInitInterfaceDialog::theMasterIdRunsFrom0To127()
{
    CInitInterfaceDialog dialog;
    const auto* spinBox = dialog.findChild<QSpinBox*>("master id spin box");
    QCOMPARE(spinBox->minimum(), 0);
    QCOMPARE(spinBox->maximum(), 127);
    QCOMPARE(spinBox->value(), 0);
}

void TestInitInterfaceDialog::theBaudRateBoxShows250WhenTheDialogOpens()
{
    CInitInterfaceDialog dialog;
    const auto* box = dialog.findChild<QComboBox*>("baud rate combo box");
    QStringList rates;
    for (int row = 0; row < box->count(); ++row)
        rates << box->itemText(row);
    QCOMPARE(rates, QStringList({ "1000", "800", "500", "250", "125", "100", "50", "20", "10" }));
    QCOMPARE(box->currentText(), QString("250"));
    QCOMPARE(dialog.getBaudrate(), 3);
}

void TestInitInterfaceDialog::widgetsCarryTheirHelpTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QString>("whatsThis");
    QTest::newRow("interface") << "interface combo box"
                               << "Interface to initialize"
                               << "Enter a interface name or select one fron the list";
    QTest::newRow("baud rate") << "baud rate combo box"
                               << "Baud rate for CAN communication"
                               << "Select a baud rate for CAN communication.";
    QTest::newRow("node-id") << "master id spin box"
                             << "Node-Id. of the CANopen Master"
                             << "Enter the Node-Id. for the CANopen Master.";
    QTest::newRow("OK") << "ok push button"
                        << "Accept decisions"
                        << "Accept selection and initialize the selected interface.";
    QTest::newRow("Cancel") << "cancel push button"
                            << "Resistance is futile!"
                            << "Leave without any action.";
}

void TestInitInterfaceDialog::widgetsCarryTheirHelpTexts()
{
    CInitInterfaceDialog dialog;
    QFETCH(const QString, name);
    const auto* widget = dialog.findChild<QWidget*>(name);
    QVERIFY(widget != nullptr);
    QTEST(widget->toolTip(), "toolTip");
    QTEST(widget->whatsThis(), "whatsThis");
}

void TestInitInterfaceDialog::labelsCarryTheWhatsThisTextsOfTheirFields()
{
    CInitInterfaceDialog dialog;
    const QHash<QString, QString> fields = { { "&Interface:", "interface combo box" },
                                             { "&Baud rate:", "baud rate combo box" },
                                             { "Kbps (CiA Bit-timing)", "baud rate combo box" },
                                             { "&Node-Id.:", "master id spin box" },
                                             { "for CANopen Master", "master id spin box" } };
    const QList<QLabel*> labels = dialog.findChildren<QLabel*>();
    QCOMPARE(labels.size(), fields.size());
    for (const QLabel* label : labels)
        QCOMPARE(label->whatsThis(), dialog.findChild<QWidget*>(fields[label->text()])->whatsThis());
}

void TestInitInterfaceDialog::buttonsHaveTheirShortcuts()
{
    CInitInterfaceDialog dialog;
    QCOMPARE(button(dialog, "ok")->text(), QString("&OK"));
    QCOMPARE(button(dialog, "ok")->shortcut(), QKeySequence("Alt+O"));
    QCOMPARE(button(dialog, "cancel")->text(), QString("&Cancel"));
    QCOMPARE(button(dialog, "cancel")->shortcut(), QKeySequence("Alt+C"));
}

void TestInitInterfaceDialog::withNothingStoredTheBoxIsEmptyAndOkWarns()
{
    CInitInterfaceDialog dialog;
    CBoxCatcher boxes;
    dialog.show();
    QCOMPARE(interfaceBox(dialog)->count(), 0);
    QCOMPARE(interfaceBox(dialog)->currentText(), QString());
    QTest::mouseClick(button(dialog, "ok"), Qt::LeftButton);
    QCOMPARE(boxes.only().title, QString("Velmora - Initialize Interface"));
    QCOMPARE(boxes.only().text, QString("No interface given!\n\nPlease retry."));
    QCOMPARE(boxes.only().icon, QMessageBox::Warning);
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.getInterface(), static_cast<const char*>(nullptr));
}

void TestInitInterfaceDialog::okAcceptsAGivenInterface_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : { "can0", " ", " can0 " }) // blanks count
        QTest::newRow(text) << QByteArray(text);
}

void TestInitInterfaceDialog::okAcceptsAGivenInterface()
{
    CInitInterfaceDialog dialog;
    QFETCH(const QByteArray, text);
    const CBoxCatcher boxes;
    dialog.show();
    QTest::keyClicks(interfaceBox(dialog)->lineEdit(), text);
    QTest::mouseClick(button(dialog, "ok"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(QByteArray(dialog.getInterface()), text);
}

void TestInitInterfaceDialog::returnAcceptsAGivenInterface()
{
    CInitInterfaceDialog dialog;
    dialog.show();
    QTest::keyClicks(interfaceBox(dialog)->lineEdit(), "can0");
    QTest::keyClick(interfaceBox(dialog)->lineEdit(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(interfaceBox(dialog)->currentText(), QString("can0"));
}

void TestInitInterfaceDialog::cancelRejects()
{
    CInitInterfaceDialog dialog;
    dialog.show();
    dialog.setResult(QDialog::Accepted);
    QTest::mouseClick(button(dialog, "cancel"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());
}

void TestInitInterfaceDialog::theHistoryIsLoadedInOrderWithDuplicates()
{
    storeHistory({ "a", "", "b", "a" });
    CInitInterfaceDialog dialog;
    QCOMPARE(items(dialog), QStringList({ "a", "b", "a" }));
    QCOMPARE(interfaceBox(dialog)->currentText(), QString("a"));
}

void TestInitInterfaceDialog::choosingTheThirdEntryMovesItToTheTop()
{
    storeHistory({ "a", "b", "c", "d" });
    CInitInterfaceDialog dialog;
    interfaceBox(dialog)->setCurrentIndex(2);
    QCOMPARE(dialog.getInterface(), "c");
    QCOMPARE(items(dialog), QStringList({ "c", "a", "b", "d" }));
    QCOMPARE(interfaceBox(dialog)->currentText(), QString("c"));
    QCOMPARE(dialog.getInterface(), "c"); // stays at the top, as is stored
    dialog.saveSettings();
    QCOMPARE(storedHistory(), QStringList({ "c", "a", "b", "d" }));
}

void TestInitInterfaceDialog::onlyTheFirstEqualEntryIsTakenAway()
{
    storeHistory({ "a", "b", "c", "b" });
    CInitInterfaceDialog dialog;
    interfaceBox(dialog)->setEditText("b");
    QCOMPARE(dialog.getInterface(), "b");
    QCOMPARE(items(dialog), QStringList({ "b", "a", "c", "b" }));
}

void TestInitInterfaceDialog::aTypedInterfaceEntersAtTheTop()
{
    storeHistory({ "a" });
    CInitInterfaceDialog dialog;
    interfaceBox(dialog)->setEditText("localhost:60000");
    QCOMPARE(dialog.getInterface(), "localhost:60000");
    QCOMPARE(items(dialog), QStringList({ "localhost:60000", "a" }));
}

void TestInitInterfaceDialog::spellingIsKeptAsTyped()
{
    storeHistory({ "can1" });
    CInitInterfaceDialog dialog;
    dialog.show();
    interfaceBox(dialog)->lineEdit()->selectAll();
    QTest::keyClicks(interfaceBox(dialog)->lineEdit(), "CAN1");
    QTest::mouseClick(button(dialog, "ok"), Qt::LeftButton);
    QCOMPARE(dialog.getInterface(), "CAN1");
    QCOMPARE(items(dialog), QStringList({ "CAN1", "can1" }));
}

void TestInitInterfaceDialog::onlyTheFirstTenEntriesAreWritten()
{
    QStringList ten;
    for (int n = 1; n <= 10; ++n)
        ten << QString("can%1").arg(n);
    storeHistory(ten);
    CInitInterfaceDialog dialog;
    for (const char* text : { "new1", "new2" }) {
        interfaceBox(dialog)->setEditText(text);
        QCOMPARE(dialog.getInterface(), text);
    }
    QCOMPARE(interfaceBox(dialog)->count(), 12);
    dialog.saveSettings();
    QCOMPARE(storedHistory(), QStringList({ "new2", "new1" }) + ten.first(8));
    QVERIFY(!m_store->contains("Used Interfaces/Interface11"));
}

void TestInitInterfaceDialog::olderEntriesAfterTheListStay()
{
    storeHistory({ "a", "b" });
    CInitInterfaceDialog dialog;
    m_store->setValue("Used Interfaces/Interface5", "e");
    dialog.saveSettings();
    QCOMPARE(m_store->value("Used Interfaces/Interface5"), QString("e"));
}

void TestInitInterfaceDialog::nothingIsStoredWithoutSaving()
{
    CInitInterfaceDialog dialog;
    interfaceBox(dialog)->setEditText("can0");
    QCOMPARE(dialog.getInterface(), "can0");
    QCOMPARE(storedHistory(), QStringList());
}

void TestInitInterfaceDialog::itFollowsItsFrameUntilItIsActive()
{
    QWidget frame;
    frame.setGeometry(50, 50, 400, 300);
    frame.show();
    CInitInterfaceDialog dialog(&frame);
    const auto distance = [&] { return (dialog.geometry().center() - frame.geometry().center()).manhattanLength(); };
    dialog.show();
    frame.activateWindow();
    AWAIT_VERIFY(!dialog.isActiveWindow());
    frame.move(300, 200);
    AWAIT_VERIFY(distance() < 40);
    dialog.activateWindow();
    AWAIT_VERIFY(dialog.isActiveWindow());
    const QPoint place = dialog.pos();
    frame.move(100, 100); // its user sees it: it does not move away
    QCoreApplication::processEvents();
    QCOMPARE(dialog.pos(), place);
}

void TestInitInterfaceDialog::itWatchesItsFrameOnlyWhileItIsShown()
{
    QWidget frame;
    frame.show();
    CWatchedDialog dialog(&frame);
    for (int round = 0; round < 2; ++round) {
        dialog.seen = 0;
        frame.move(100 + round, 100);
        QCoreApplication::processEvents();
        QCOMPARE(dialog.seen, 0);
        dialog.show();
        frame.move(200 + round, 200);
        AWAIT_VERIFY(dialog.seen > 0);
        dialog.reject();
    }
}

QTEST_MAIN(TestInitInterfaceDialog)
#include "TestInitInterfaceDialog.moc"

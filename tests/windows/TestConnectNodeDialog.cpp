// The dialog that connects a document to a node or leaves it off-line.
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"

#include "BoxCatcher.h"
#include "Patience.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

class TestConnectNodeDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itHasItsTitle();
    void theListNamesAllNodes();
    void theNodeIdRunsFrom1To127();
    void labelsStandAroundTheSpinBox();
    void labelsCarryTheWhatsThisTextOfTheSpinBox();
    void buttonsHaveTheirTextsAndShortcuts_data();
    void buttonsHaveTheirTextsAndShortcuts();
    void widgetsCarryTheirHelpTexts_data();
    void widgetsCarryTheirHelpTexts();
    void connectTakesTheNodeOfTheSpinBox();
    void selectingANodeLeavesTheSpinBoxAlone();
    void keyboardAloneConnects();
    void doubleClickOnANodeConnectsAtOnce();
    void aForeignItemDoesNotConnect();
    void aNodeIdOutOfRangeIsRefused_data();
    void aNodeIdOutOfRangeIsRefused();
    void offlineIsAcceptedWithoutConnecting();
    void offlineAfterAConnectTakesTheFlagBack();
    void closingTheWindowRejects();
    void searchingIsNotAvailable();

private:
    static QListWidget* list(const QDialog& dialog) { return dialog.findChild<QListWidget*>("node-id list box"); }
    static QSpinBox* spinBox(const QDialog& dialog) { return dialog.findChild<QSpinBox*>("node-id spin box"); }
    static QPushButton* button(const QDialog& dialog, const QString& which)
    {
        return dialog.findChild<QPushButton*>(which + " push button");
    }
};

void TestConnectNodeDialog::itHasItsTitle()
{
    CConnectNodeDialog dialog;
    QCOMPARE(dialog.windowTitle(), QString("Connect a Node"));
}

void TestConnectNodeDialog::theListNamesAllNodes()
{
    CConnectNodeDialog dialog;
    QCOMPARE(list(dialog)->count(), 127);
    for (int node = 1; node <= 127; ++node)
        QCOMPARE(list(dialog)->item(node - 1)->text(), QString("Node %1").arg(node));
}

void TestConnectNodeDialog::theNodeIdRunsFrom1To127()
{
    CConnectNodeDialog dialog;
    QCOMPARE(spinBox(dialog)->minimum(), 1);
    QCOMPARE(spinBox(dialog)->maximum(), 127);
    QCOMPARE(spinBox(dialog)->value(), 1);
    QCOMPARE(dialog.getNodeId(), 1);
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::labelsStandAroundTheSpinBox()
{
    CConnectNodeDialog dialog;
    QStringList texts;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
        texts << label->text();
        if (label->text() == "&Node-Id.:")
            QCOMPARE(label->buddy(), spinBox(dialog));
    }
    QVERIFY(texts.contains("&Node-Id.:"));
    QVERIFY(texts.contains("(1,..,127)"));
}

void TestConnectNodeDialog::labelsCarryTheWhatsThisTextOfTheSpinBox()
{
    CConnectNodeDialog dialog;
    const QList<QLabel*> labels = dialog.findChildren<QLabel*>();
    QCOMPARE(labels.size(), 2);
    for (const QLabel* label : labels)
        QCOMPARE(label->whatsThis(), spinBox(dialog)->whatsThis());
}

void TestConnectNodeDialog::buttonsHaveTheirTextsAndShortcuts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shortcut");
    QTest::newRow("connect") << "connect"
                             << "&Connect"
                             << "Alt+C";
    QTest::newRow("offline") << "offline"
                             << "&Offline"
                             << "Alt+O";
    QTest::newRow("search") << "search"
                            << "&Search node"
                            << "Alt+S";
}

void TestConnectNodeDialog::buttonsHaveTheirTextsAndShortcuts()
{
    CConnectNodeDialog dialog;
    QFETCH(const QString, name);
    QTEST(button(dialog, name)->text(), "text");
    QTEST(button(dialog, name)->shortcut().toString(), "shortcut");
}

void TestConnectNodeDialog::widgetsCarryTheirHelpTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QString>("whatsThis");
    QTest::newRow("list") << "node-id list box"
                          << "Select a node-id."
                          << "Select the node-id. for the device to connect.";
    QTest::newRow("spin box") << "node-id spin box"
                              << "Enter a node-id."
                              << "Enter the node-id. for the device to connect.";
    QTest::newRow("Connect") << "connect push button"
                             << "On-line mode "
                             << "Connect the object dictionary to a CANopen device.";
    QTest::newRow("Offline") << "offline push button"
                             << "Off-line mode"
                             << "Operate on the object dictionary in off-line mode.";
    QTest::newRow("Search") << "search push button"
                            << "Search a node"
                            << "Try to find a CANopen Node to connect the object dictionary to.";
}

void TestConnectNodeDialog::widgetsCarryTheirHelpTexts()
{
    CConnectNodeDialog dialog;
    QFETCH(const QString, name);
    const auto* widget = dialog.findChild<QWidget*>(name);
    QVERIFY(widget != nullptr);
    QTEST(widget->toolTip(), "toolTip");
    QTEST(widget->whatsThis(), "whatsThis");
}

void TestConnectNodeDialog::connectTakesTheNodeOfTheSpinBox()
{
    CConnectNodeDialog dialog;
    dialog.show();
    spinBox(dialog)->selectAll();
    QTest::keyClicks(spinBox(dialog), "42");
    QTest::mouseClick(button(dialog, "connect"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getNodeId(), 42);
    QCOMPARE(dialog.getConnectFlag(), true);
}

void TestConnectNodeDialog::selectingANodeLeavesTheSpinBoxAlone()
{
    CConnectNodeDialog dialog;
    dialog.show();
    spinBox(dialog)->setValue(42);
    const QPoint place = list(dialog)->visualItemRect(list(dialog)->item(4)).center();
    QTest::mouseClick(list(dialog)->viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(list(dialog)->currentRow(), 4);
    QCOMPARE(spinBox(dialog)->value(), 42);
    QTest::keyClick(list(dialog), Qt::Key_Down);
    QCOMPARE(list(dialog)->currentRow(), 5);
    QTest::mouseClick(button(dialog, "connect"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getNodeId(), 42);
}

void TestConnectNodeDialog::keyboardAloneConnects()
{
    CConnectNodeDialog dialog;
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog, patience));
    QTest::keyClick(dialog.focusWidget(), 'A', Qt::ControlModifier);
    QTest::keyClicks(dialog.focusWidget(), "42");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getNodeId(), 42);
    QCOMPARE(dialog.getConnectFlag(), true);
}

void TestConnectNodeDialog::doubleClickOnANodeConnectsAtOnce()
{
    CConnectNodeDialog dialog;
    dialog.show();
    const QPoint place = list(dialog)->visualItemRect(list(dialog)->item(4)).center();
    QTest::mouseClick(list(dialog)->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list(dialog)->viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getNodeId(), 5);
    QCOMPARE(dialog.getConnectFlag(), true);
}

void TestConnectNodeDialog::aForeignItemDoesNotConnect()
{
    CConnectNodeDialog dialog;
    QListWidget other;
    other.addItem("Node 1");
    dialog.show();
    dialog.doubleClicked(nullptr);
    dialog.doubleClicked(other.item(0));
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::aNodeIdOutOfRangeIsRefused_data()
{
    QTest::addColumn<int>("node");
    QTest::newRow("0") << 0;
    QTest::newRow("128") << 128;
}

void TestConnectNodeDialog::aNodeIdOutOfRangeIsRefused()
{
    CConnectNodeDialog dialog;
    CBoxCatcher boxes;
    QFETCH(const int, node);
    spinBox(dialog)->setRange(0, 255); // the spin box would refuse the number
    spinBox(dialog)->setValue(node);
    dialog.show();
    QTest::mouseClick(button(dialog, "connect"), Qt::LeftButton);
    QCOMPARE(boxes.only().title, QString("Velmora - Connect a Node"));
    QCOMPARE(boxes.only().text, QString("Invalid node-id. given!\n\nPlease retry."));
    QCOMPARE(boxes.only().icon, QMessageBox::Warning);
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::offlineIsAcceptedWithoutConnecting()
{
    CConnectNodeDialog dialog;
    dialog.show();
    QTest::mouseClick(button(dialog, "offline"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::offlineAfterAConnectTakesTheFlagBack()
{
    CConnectNodeDialog dialog;
    dialog.acceptConnect();
    QCOMPARE(dialog.getConnectFlag(), true);
    dialog.acceptOffline();
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::closingTheWindowRejects()
{
    CConnectNodeDialog dialog;
    dialog.setResult(QDialog::Accepted);
    dialog.show();
    dialog.close();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(dialog.getConnectFlag(), false);
}

void TestConnectNodeDialog::searchingIsNotAvailable()
{
    CConnectNodeDialog dialog;
    CBoxCatcher boxes;
    dialog.show();
    QTest::mouseClick(button(dialog, "search"), Qt::LeftButton);
    QCOMPARE(boxes.only().title, QString("Velmora - Search node"));
    QCOMPARE(boxes.only().text, QString("Sorry, not realized yet!"));
    QCOMPARE(boxes.only().icon, QMessageBox::Critical);
    QVERIFY(dialog.isVisible());
}

QTEST_MAIN(TestConnectNodeDialog)
#include "TestConnectNodeDialog.moc"

// What a user without a mouse reaches: the order of the Tab key, the menu bar, help by keys.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "NewDocument.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"

#include <QWhatsThis>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=Device Type\nObjectType=0x7\n"
                             "DataType=0x0007\nAccessType=ro\n";

// All that can have the focus in a document, but for the modes that are not chosen, in the order of the Tab key, which
// goes on with the tree.
const QStringList order = { "object name line edit",
                            "object code line edit",
                            "object data type line edit",
                            "compound object check box",
                            "mandatory object check box",
                            "parameter name line edit",
                            "parameter data type line edit",
                            "access type line edit",
                            "value range line edit",
                            "default value line edit",
                            "mandatory entry check box",
                            "mapped entry check box",
                            "new value line edit",
                            "send push button",
                            "actual value line edit",
                            "read push button",
                            "hex radio button",
                            "object dictionary list view" };
const QStringList otherModes = { "dec radio button", "oct radio button" };

} // namespace

class TestKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void theTabKeyGoesThroughTheDocumentInReadingOrder();
    void f10OpensTheFirstMenu();
    void f10WithAnotherKeyIsNotThatOfTheMenu_data();
    void f10WithAnotherKeyIsNotThatOfTheMenu();
    void ctrlF4ClosesTheActiveDocument();
    void theReturnKeyTakesTheInterfaceAsItWasTyped();
    void theTableOfTheFieldsIsComplete();
    void helpInTheFrameIsAModeFirst_data();
    void helpInTheFrameIsAModeFirst();
    void helpOfTheFocusedControlIsShown_data();
    void helpOfTheFocusedControlIsShown();

private:
    static QImage takeHelp();
    static bool helpIsShown(const QString& text);

    std::optional<CTempSettings> m_store;
};

void TestKeyboard::theTabKeyGoesThroughTheDocumentInReadingOrder()
{
    CNewDocument document;
    QVERIFY(document.open(sheetText));
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    document.tree()->setFocus();
    QStringList reached;
    for (qsizetype number = 0; number < order.size(); ++number) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached << QApplication::focusWidget()->objectName();
    }
    QCOMPARE(reached, order);
    for (qsizetype number = order.size() - 2; number >= 0; --number) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget()->objectName(), order[number]);
    }
}

void TestKeyboard::f10OpensTheFirstMenu()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    for (const bool withDocument : { false, true }) {
        if (withDocument)
            driver.open(sheet.name());
        driver.press(Qt::Key_F10, Qt::NoModifier);
        AWAIT_VERIFY(driver.menu("&File")->isVisible());
        QCOMPARE(driver.menu("&File")->activeAction(), driver.action("file open"));
        QTest::keyClick(driver.menu("&File"), Qt::Key_Right);
        AWAIT_VERIFY(driver.menu("&Device")->isVisible());
        QTest::keyClick(driver.menu("&Device"), Qt::Key_Escape);
        QTest::keyClick(&driver.frame, Qt::Key_Escape);
        AWAIT_VERIFY(QApplication::activePopupWidget() == nullptr);
    }
}

void TestKeyboard::f10WithAnotherKeyIsNotThatOfTheMenu_data()
{
    QTest::addColumn<Qt::KeyboardModifier>("modifier");
    QTest::newRow("Shift") << Qt::ShiftModifier;
    QTest::newRow("Ctrl") << Qt::ControlModifier;
    QTest::newRow("Alt") << Qt::AltModifier;
}

void TestKeyboard::f10WithAnotherKeyIsNotThatOfTheMenu()
{
    QFETCH(const Qt::KeyboardModifier, modifier);
    CFrameDriver driver;
    driver.press(Qt::Key_F10, modifier);
    QCoreApplication::processEvents();
    QVERIFY(!driver.menu("&File")->isVisible());
}

void TestKeyboard::ctrlF4ClosesTheActiveDocument()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.open(sheet.name());
    QMdiSubWindow* const first = driver.subWindow(0);
    QMdiSubWindow* const last = driver.subWindow(2);
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.press(Qt::Key_F4);
    QCOMPARE(driver.workspace()->subWindowList(), QList<QMdiSubWindow*>({ first, last }));
}

/// What the help window looks like, which is then closed.
QImage TestKeyboard::takeHelp()
{
    QImage image;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->inherits("QWhatsThat") && window->isVisible()) {
            image = window->grab().toImage();
            window->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    return image;
}

/// True when this text is shown as help, which is then closed.
bool TestKeyboard::helpIsShown(const QString& text)
{
    const QImage shown = takeHelp();
    QWhatsThis::showText({}, text, QApplication::activeWindow());
    return !shown.isNull() && shown == takeHelp();
}

// Not as it stands in the list of those used before, in other letters.
void TestKeyboard::theReturnKeyTakesTheInterfaceAsItWasTyped()
{
    m_store->setValue("Used Interfaces/Interface1", "can1");
    CInitInterfaceDialog dialog;
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog, patience));
    QTest::keyClick(dialog.focusWidget(), 'A', Qt::ControlModifier);
    QTest::keyClicks(dialog.focusWidget(), "CAN1");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.getInterface(), "CAN1");
}

void TestKeyboard::theTableOfTheFieldsIsComplete()
{
    const CNewDocument document;
    QStringList reached;
    for (const auto* widget : document.window->findChildren<QWidget*>())
        if (widget->isVisibleTo(document.window) && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            widget->focusProxy() == nullptr)
            reached << widget->objectName();
    reached.sort();
    QStringList expected = order + otherModes;
    expected.sort();
    QCOMPARE(reached, expected);
}

void TestKeyboard::helpInTheFrameIsAModeFirst_data()
{
    QTest::addColumn<QString>("field");
    for (const QString& field : order + otherModes)
        QTest::newRow(qPrintable(field)) << field;
}

void TestKeyboard::helpInTheFrameIsAModeFirst()
{
    QFETCH(const QString, field);
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    auto* widget = driver.document(0)->findChild<QWidget*>(field);
    QVERIFY(!widget->whatsThis().isEmpty());
    widget->setFocus();
    driver.press(Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(QWhatsThis::inWhatsThisMode());
    QVERIFY(takeHelp().isNull());
    driver.press(Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(!QWhatsThis::inWhatsThisMode());
    QVERIFY(helpIsShown(widget->whatsThis()));
}

void TestKeyboard::helpOfTheFocusedControlIsShown_data()
{
    QTest::addColumn<std::function<QDialog*()>>("create");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("help");
    const std::function<QDialog*()> init([] { return new CInitInterfaceDialog; });
    const std::function<QDialog*()> connecting([] { return new CConnectNodeDialog; });
    const std::function<QDialog*()> info([] { return new CDeviceInfoDialog; });
    QTest::newRow("interface") << init << "interface combo box"
                               << "Enter a interface name or select one fron the list";
    QTest::newRow("ok") << init << "ok push button"
                        << "Accept selection and initialize the selected interface.";
    QTest::newRow("node list") << connecting << "node-id list box"
                               << "Select the node-id. for the device to connect.";
    QTest::newRow("node-id") << connecting << "node-id spin box"
                             << "Enter the node-id. for the device to connect.";
    QTest::newRow("vendor") << info << "vendor name line edit"
                            << "Name of the vendor.";
}

void TestKeyboard::helpOfTheFocusedControlIsShown()
{
    QFETCH(const std::function<QDialog*()>, create);
    QFETCH(const QString, control);
    QFETCH(const QString, help);
    const std::unique_ptr<QDialog> dialog(create());
    dialog->show();
    dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get(), patience));
    dialog->findChild<QWidget*>(control)->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(helpIsShown(help));
}

QTEST_MAIN(TestKeyboard)
#include "TestKeyboard.moc"

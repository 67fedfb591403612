// The commands of the main frame by their keys and menus: windows to close, help and boxes.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include "base/Product.h"

#include <QTest>
#include <QWhatsThis>

#include <optional>

class TestMainFrameCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void keysWorkFromInsideADocument();
    void closeKeyClosesTheActiveDocument();
    void closeWithoutDocumentDoesNothing();
    void closeMenuItemClosesTheActiveDocument();
    void closeAllClosesEveryDocument();
    void exitKeyClosesTheFrame();
    void exitMenuItemClosesTheFrame();
    void exitClosesAllWindows_data();
    void exitClosesAllWindows();
    void notRealizedCommands_data();
    void notRealizedCommands();
    void notRealizedMenuItems();
    void aboutBoxNamesTheProduct();
    void aboutBoxShowsTheImageOfTheProgram();
    void aboutQtBoxHasTheProgramsTitle();
    void aboutQtBoxIsThatOfTheToolkit();
    void contextHelpKeyStartsWhatsThisMode();
    void menusOpenByTheirMnemonics();
    void keyboardAloneChoosesAnItem();
    void deviceInfoWithoutDocumentDoesNothing();
    void deviceInfoShowsTheActiveDocument();
    void hiddenFrameClosesItsCurrentDocument();
    void hiddenFrameShowsTheDeviceInfoOfItsCurrentDocument();

private:
    std::optional<CTempSettings> m_store;
};

void TestMainFrameCommands::keysWorkFromInsideADocument()
{
    const CSheetFile sheet("[FileInfo]\n");
    CFrameDriver driver;
    driver.open(sheet.name());
    driver.open(sheet.name());
    QCOMPARE(driver.documentCount(), 2);
    for (auto* edit : driver.document(1)->findChildren<QLineEdit*>())
        edit->setFocus();
    QVERIFY(driver.document(1)->isAncestorOf(QApplication::focusWidget()));
    driver.open(sheet.name());
    QCOMPARE(driver.documentCount(), 3);
}

void TestMainFrameCommands::closeKeyClosesTheActiveDocument()
{
    CFrameDriver driver;
    QPointer<CMDIWindow> first = driver.frame.newDocument();
    QPointer<CMDIWindow> second = driver.frame.newDocument();
    QPointer<CMDIWindow> third = driver.frame.newDocument();
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.press(Qt::Key_W);
    QCOMPARE(driver.documentCount(), 2);
    AWAIT_VERIFY(second.isNull()); // a document deletes itself
    QVERIFY(!first.isNull() && !third.isNull());
    driver.press(Qt::Key_W);
    driver.press(Qt::Key_W);
    QCOMPARE(driver.documentCount(), 0);
    AWAIT_VERIFY(first.isNull() && third.isNull());
    QVERIFY(driver.frame.isVisible());
}

void TestMainFrameCommands::closeWithoutDocumentDoesNothing()
{
    CFrameDriver driver;
    driver.press(Qt::Key_W);
    driver.frame.fileCloseAll();
    QVERIFY(driver.frame.isVisible());
}

void TestMainFrameCommands::closeMenuItemClosesTheActiveDocument()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.frame.newDocument();
    QMdiSubWindow* last = driver.subWindow(1);
    driver.workspace()->setActiveSubWindow(driver.subWindow(0));
    driver.choose("&File", "&Close");
    QCOMPARE(driver.workspace()->subWindowList(), QList<QMdiSubWindow*>{ last });
}

void TestMainFrameCommands::closeAllClosesEveryDocument()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    driver.choose("&File", "C&lose All");
    QCOMPARE(driver.documentCount(), 0);
    AWAIT_VERIFY(driver.frame.findChildren<CMDIWindow*>().isEmpty());
    QVERIFY(driver.frame.isVisible());
}

void TestMainFrameCommands::exitKeyClosesTheFrame()
{
    CFrameDriver driver;
    driver.frame.newDocument();
    driver.press(Qt::Key_Q);
    QVERIFY(!driver.frame.isVisible());
    QCOMPARE(driver.documentCount(), 0);
}

void TestMainFrameCommands::exitMenuItemClosesTheFrame()
{
    CFrameDriver driver;
    driver.choose("&File", "E&xit");
    QVERIFY(!driver.frame.isVisible());
}

void TestMainFrameCommands::exitClosesAllWindows_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("key") << true;
    QTest::newRow("menu item") << false;
}

void TestMainFrameCommands::exitClosesAllWindows()
{
    QFETCH(const bool, byKey);
    CFrameDriver driver;
    QWidget other;
    other.show();
    if (byKey)
        driver.press(Qt::Key_Q);
    else
        driver.choose("&File", "E&xit");
    QVERIFY(!driver.frame.isVisible());
    QVERIFY(!other.isVisible());
}

void TestMainFrameCommands::notRealizedCommands_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("title");
    QTest::newRow("print") << int(Qt::Key_P) << Qt::KeyboardModifiers(Qt::ControlModifier) << "Velmora - Print";
    QTest::newRow("handbook") << int(Qt::Key_F1) << Qt::KeyboardModifiers() << "Velmora - Help Topic";
}

void TestMainFrameCommands::notRealizedCommands()
{
    QFETCH(const int, key);
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.press(Qt::Key(key), modifiers);
    QTEST(catcher.only().title, "title");
    QCOMPARE(catcher.only().text, QString("Sorry, not realized yet!"));
    QCOMPARE(catcher.only().icon, QMessageBox::Critical);
    QCOMPARE(catcher.only().format, Qt::PlainText);
}

void TestMainFrameCommands::notRealizedMenuItems()
{
    CBoxCatcher catcher;
    CFrameDriver driver;
    driver.choose("&Help", "Velmora &Handbook");
    QCOMPARE(catcher.only().title, QString("Velmora - Help Topic"));
    catcher.clear();
    driver.choose("&File", "&Print..."); // disabled while there is no document
    QCOMPARE(catcher.count(), 0);
    driver.closeMenu();
    driver.menu("&File")->close();
    driver.frame.newDocument();
    driver.choose("&File", "&Print...");
    QCOMPARE(catcher.only().title, QString("Velmora - Print"));
}

void TestMainFrameCommands::aboutBoxNamesTheProduct()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.choose("&Help", "&About Velmora");
    QCOMPARE(catcher.only().title, QString("CANopen Object Browser"));
    QCOMPARE(catcher.only().text, QString("Velmora - CANopen Object Browser for Linux\n\n"
                                          "Version 0.2 of Nov  9 2009 (Build 61)\n\n"
                                          "   Released under the MIT License\n\n"
                                          "Copyright ") +
                                      product::copyright +
                                      "\n\n"
                                      "Internet URL: https://velmora.example\n\n");
    QVERIFY(QString(product::copyright).contains("Brask Works"));
    QCOMPARE(catcher.only().format, Qt::PlainText);
}

void TestMainFrameCommands::aboutBoxShowsTheImageOfTheProgram()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    QPixmap shown;
    const CWhenShown<QMessageBox> boxes([&](QMessageBox* box) { shown = box->iconPixmap(); });
    driver.choose("&Help", "&About Velmora");
    QCOMPARE(catcher.only().icon, QMessageBox::NoIcon);
    QVERIFY(!shown.isNull());
    QCOMPARE(shown.toImage(), QIcon(":/images/program.png").pixmap(shown.size()).toImage());
}

void TestMainFrameCommands::aboutQtBoxHasTheProgramsTitle()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.choose("&Help", "About &Qt");
    QCOMPARE(catcher.only().title, QString("CANopen Object Browser"));
    QVERIFY(catcher.only().text.contains("About Qt"));
}

void TestMainFrameCommands::aboutQtBoxIsThatOfTheToolkit()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    QStringList texts;
    const CWhenShown<QMessageBox> boxes([&](QMessageBox* box) { texts << box->text() + box->informativeText(); });
    driver.choose("&Help", "About &Qt");
    QMessageBox::aboutQt(&driver.frame);
    QCOMPARE(texts.size(), 2);
    QCOMPARE(texts[0], texts[1]);
}

void TestMainFrameCommands::contextHelpKeyStartsWhatsThisMode()
{
    CFrameDriver driver;
    driver.press(Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(QWhatsThis::inWhatsThisMode());
    QWhatsThis::leaveWhatsThisMode();
    driver.choose("&Help", "What's &This");
    QVERIFY(QWhatsThis::inWhatsThisMode());
    QWhatsThis::leaveWhatsThisMode();
}

void TestMainFrameCommands::menusOpenByTheirMnemonics()
{
    CFrameDriver driver;
    const std::pair<Qt::Key, const char*> rows[] = { { Qt::Key_F, "&File" },
                                                     { Qt::Key_D, "&Device" },
                                                     { Qt::Key_I, "&Interface" },
                                                     { Qt::Key_W, "&Windows" },
                                                     { Qt::Key_H, "&Help" } };
    for (const auto& [key, title] : rows) {
        driver.press(key, Qt::AltModifier);
        QVERIFY2(driver.menu(title)->isVisible(), title);
        driver.menu(title)->close();
    }
}

void TestMainFrameCommands::keyboardAloneChoosesAnItem()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.press(Qt::Key_H, Qt::AltModifier);
    QTest::keyClick(driver.menu("&Help"), Qt::Key_A);
    QCOMPARE(catcher.only().title, QString("CANopen Object Browser"));
}

void TestMainFrameCommands::deviceInfoWithoutDocumentDoesNothing()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    const CWhenShown<QDialog> dialogs(&inDialog::cancel);
    driver.frame.deviceInfo();
    QCOMPARE(dialogs.count(), 0);
    QVERIFY(driver.frame.isVisible());
}

void TestMainFrameCommands::deviceInfoShowsTheActiveDocument()
{
    const CSheetFile sheets[] = { CSheetFile("[FileInfo]\n"), CSheetFile("[FileInfo]\n"), CSheetFile("[FileInfo]\n") };
    CFrameDriver driver;
    for (const CSheetFile& sheet : sheets)
        driver.open(sheet.name());
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    QStringList titles;
    const CWhenShown<QDialog> dialogs([&](QDialog* dialog) {
        titles << dialog->windowTitle();
        inDialog::cancel(dialog);
    });
    driver.choose("&Device", "Device &Info");
    QCOMPARE(titles, QStringList{ sheets[1].name() });
}

// While the frame is hidden or minimised, the workspace has no active window.
void TestMainFrameCommands::hiddenFrameClosesItsCurrentDocument()
{
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    QMdiSubWindow* const first = driver.subWindow(0);
    QMdiSubWindow* const last = driver.subWindow(2);
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.frame.hide();
    AWAIT_VERIFY(driver.workspace()->activeSubWindow() == nullptr);
    driver.frame.fileClose();
    QCOMPARE(driver.workspace()->subWindowList(), QList<QMdiSubWindow*>({ first, last }));
}

void TestMainFrameCommands::hiddenFrameShowsTheDeviceInfoOfItsCurrentDocument()
{
    const CSheetFile sheets[] = { CSheetFile("[FileInfo]\n"), CSheetFile("[FileInfo]\n"), CSheetFile("[FileInfo]\n") };
    CFrameDriver driver;
    for (const CSheetFile& sheet : sheets)
        driver.open(sheet.name());
    driver.workspace()->setActiveSubWindow(driver.subWindow(1));
    driver.frame.hide();
    AWAIT_VERIFY(driver.workspace()->activeSubWindow() == nullptr);
    QStringList titles;
    const CWhenShown<QDialog> dialogs([&](QDialog* dialog) {
        titles << dialog->windowTitle();
        inDialog::cancel(dialog);
    });
    driver.frame.deviceInfo();
    QCOMPARE(titles, QStringList{ sheets[1].name() });
}

QTEST_MAIN(TestMainFrameCommands)
#include "TestMainFrameCommands.moc"

// What a screen reader finds: every control has a name and, where it has a tool tip, a description that adds to it.
// SPDX-License-Identifier: MIT
#include "AccessibleWalk.h"
#include "FrameDriver.h"
#include "NewDocument.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"
#include "widgets/MessageBoxes.h"

#include <QContextMenuEvent>
#include <QTabWidget>
#include <QTemporaryDir>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=Device Type\nObjectType=0x7\n"
                             "DataType=0x0007\nAccessType=ro\n";

/// Of the menu that the widget shows for the menu key.
tWalk contextMenuOf(QWidget* widget)
{
    tWalk walk;
    const CWhenShown<QMenu> watch([&](QMenu* menu) {
        walk = tWalk::ofEntries(menu);
        menu->close();
    });
    const QPoint place = widget->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, place, widget->mapToGlobal(place));
    QCoreApplication::sendEvent(widget, &event);
    (void)QTest::qWaitFor([&] { return walk.count > 0; }, patience);
    return walk;
}

QString nameOf(QWidget* widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void everyControlOfTheFrameHasAName();
    void partsOfTheFrameHaveTheseNames();
    void everyControlOfADialogHasAName_data();
    void everyControlOfADialogHasAName();
    void everyControlOfABoxHasAName_data();
    void everyControlOfABoxHasAName();
    void everyControlOfTheFileDialogHasAName();
    void everyControlOfAboutQtHasAName();
    void everyItemOfAComboBoxHasAName();
    void everyEntryOfAContextMenuHasAName_data();
    void everyEntryOfAContextMenuHasAName();
    void everyEntryOfADialogsContextMenuHasAName();
    void everyEntryOfASystemMenuHasAName();
    void comboBoxesAreCalledByTheirLabels();
    void aComboBoxOpensByItsAction();
    void aDisabledComboBoxDoesNotOpen();
    void theTreeSaysHowItIsUsed();
    void comboBoxesSayWhetherTheyCanBeEdited();
    void checkMarksDoNotChange_data();
    void checkMarksDoNotChange();
    void aClickOnACheckMarkLeavesTheFocus();

private:
    std::optional<CTempSettings> m_store;
};

void TestAccessibility::everyControlOfTheFrameHasAName()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    for (const int documents : { 0, 1, 2 }) {
        if (documents > 0)
            driver.open(sheet.name());
        const tWalk walk = tWalk::of(&driver.frame);
        QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
        QVERIFY2(walk.count > 10 + 20 * documents, qPrintable(QString::number(walk.count)));
    }
    for (const char* title : { "&File", "&Device", "&Interface", "&Windows", "&Help" }) {
        const tWalk walk = tWalk::of(driver.openMenu(title));
        QVERIFY2(walk.missing.isEmpty() && walk.count > 1, qPrintable(walk.missing.join("\n")));
        driver.closeMenu();
    }
}

void TestAccessibility::partsOfTheFrameHaveTheseNames()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    const QStringList names = tWalk::of(&driver.frame).names;
    for (const char* name : { "Menus", "File Operations", "Workspace", "Documents", "Document", "Tree and attributes",
                              "Objects and entries", "Width of the tree", "Size of the window" })
        QVERIFY2(names.contains(name), name);
}

void TestAccessibility::everyControlOfADialogHasAName_data()
{
    QTest::addColumn<std::function<QDialog*()>>("create");
    QTest::addColumn<int>("count");
    QTest::newRow("interface") << std::function<QDialog*()>([] { return new CInitInterfaceDialog; }) << 5;
    QTest::newRow("connect") << std::function<QDialog*()>([] { return new CConnectNodeDialog; }) << 20;
    QTest::newRow("device info") << std::function<QDialog*()>([] { return new CDeviceInfoDialog; }) << 36;
}

void TestAccessibility::everyControlOfADialogHasAName()
{
    QFETCH(const std::function<QDialog*()>, create);
    QFETCH(const int, count);
    const std::unique_ptr<QDialog> dialog(create());
    if (dialog->windowTitle().isEmpty())
        dialog->setWindowTitle("a file"); // as soon as it is filled
    dialog->show();
    tWalk walk = tWalk::of(dialog.get());
    if (auto* tabs = dialog->findChild<QTabWidget*>())
        for (int page = 1; page < tabs->count(); ++page) {
            tabs->setCurrentIndex(page);
            walk.visit(QAccessible::queryAccessibleInterface(tabs->widget(page)));
        }
    QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
    QVERIFY2(walk.count >= count, qPrintable(QString::number(walk.count)));
}

void TestAccessibility::everyControlOfABoxHasAName_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("short") << "A text";
    QTest::newRow("long") << QString("line\n").repeated(1000);
}

void TestAccessibility::everyControlOfABoxHasAName()
{
    QFETCH(const QString, text);
    tWalk walk;
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        walk.visit(QAccessible::queryAccessibleInterface(box));
        box->accept();
    });
    QWidget parent;
    messageBox::warning(&parent, "Title", text);
    QVERIFY2(walk.missing.isEmpty() && walk.count > 1, qPrintable(walk.missing.join("\n")));
}

void TestAccessibility::everyControlOfTheFileDialogHasAName()
{
    // A folder of one file: the size of a folder in it would be an empty cell.
    const QTemporaryDir folder;
    QFile file(folder.filePath("sheet.eds"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    CFrameDriver driver;
    tWalk walk;
    const CWhenShown<QFileDialog> watch([&](QFileDialog* dialog) {
        dialog->setDirectory(folder.path());
        (void)QTest::qWaitFor( // what the cells hold is read in the background
            [&] {
                walk = tWalk::of(dialog);
                return walk.names.contains("sheet.eds") && walk.missing.isEmpty();
            },
            patience);
        for (auto* box : dialog->findChildren<QComboBox*>()) {
            box->showPopup();
            walk.visit(QAccessible::queryAccessibleInterface(box->view()));
            box->hidePopup();
        }
        dialog->reject();
    });
    driver.press(Qt::Key_O);
    QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
    for (const char* name : { "sheet.eds", "Places and files", "Width of the places", "Choices", "Size of the window" })
        QVERIFY2(walk.names.contains(name), name);
    QVERIFY2(walk.count > 20, qPrintable(QString::number(walk.count)));
}

void TestAccessibility::everyControlOfAboutQtHasAName()
{
    tWalk walk;
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        walk = tWalk::of(box);
        box->accept();
    });
    QWidget parent;
    messageBox::aboutQt(&parent, "Title");
    QVERIFY2(walk.missing.isEmpty() && walk.count > 1, qPrintable(walk.missing.join("\n")));
}

void TestAccessibility::everyItemOfAComboBoxHasAName()
{
    m_store->setValue("Used Interfaces/Interface1", "can7");
    m_store->setValue("Used Interfaces/Interface2", "can8");
    CInitInterfaceDialog dialog;
    dialog.show();
    auto* box = dialog.findChild<QComboBox*>("interface combo box");
    box->showPopup();
    const tWalk walk = tWalk::of(box->view()->window());
    QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
    for (const char* name : { "can7", "can8" })
        QVERIFY2(walk.names.contains(name), name);
}

void TestAccessibility::everyEntryOfAContextMenuHasAName_data()
{
    QTest::addColumn<QString>("owner");
    QTest::addColumn<int>("count");
    QTest::newRow("input") << "new value line edit" << 7;
    QTest::newRow("field for reading") << "actual value line edit" << 2;
    QTest::newRow("tool bar") << "file operations tool bar" << 1;
}

void TestAccessibility::everyEntryOfAContextMenuHasAName()
{
    QFETCH(const QString, owner);
    QFETCH(const int, count);
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    auto* widget = driver.frame.findChild<QWidget*>(owner);
    const tWalk walk = contextMenuOf(widget);
    QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
    QVERIFY2(walk.count >= count, qPrintable(QString::number(walk.count)));
}

void TestAccessibility::everyEntryOfADialogsContextMenuHasAName()
{
    CInitInterfaceDialog interfaceDialog;
    CConnectNodeDialog connectDialog;
    for (QWidget* field : { static_cast<QWidget*>(interfaceDialog.findChild<QLineEdit*>()),
                            static_cast<QWidget*>(connectDialog.findChild<QSpinBox*>()) }) {
        field->window()->show();
        const tWalk walk = contextMenuOf(field);
        QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
        QVERIFY2(walk.count >= 7, qPrintable(QString::number(walk.count)));
    }
}

void TestAccessibility::everyEntryOfASystemMenuHasAName()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    driver.subWindow(0)->showNormal();
    driver.subWindow(0)->showSystemMenu();
    const tWalk walk = tWalk::ofEntries(driver.subWindow(0)->systemMenu());
    driver.subWindow(0)->systemMenu()->close();
    QVERIFY2(walk.missing.isEmpty(), qPrintable(walk.missing.join("\n")));
    QVERIFY2(walk.count >= 7, qPrintable(QString::number(walk.count)));
}

void TestAccessibility::comboBoxesAreCalledByTheirLabels()
{
    m_store->setValue("Used Interfaces/Interface1", "can7");
    CInitInterfaceDialog dialog;
    dialog.show();
    const struct {
        const char* box;
        QString name, value;
    } boxes[] = { { "interface combo box", "Interface:", "can7" }, { "baud rate combo box", "Baud rate:", "250" } };
    for (const auto& [box, name, value] : boxes) {
        QAccessibleInterface* item = QAccessible::queryAccessibleInterface(dialog.findChild<QComboBox*>(box));
        QCOMPARE(item->text(QAccessible::Name), name);
        QCOMPARE(item->text(QAccessible::Value), value);
        QCOMPARE(item->role(), QAccessible::ComboBox);
    }
    QCOMPARE(nameOf(dialog.findChild<QComboBox*>("interface combo box")->lineEdit()), QString("Interface"));
}

void TestAccessibility::aComboBoxOpensByItsAction()
{
    m_store->setValue("Used Interfaces/Interface1", "can7");
    CInitInterfaceDialog dialog;
    dialog.show();
    auto* box = dialog.findChild<QComboBox*>("interface combo box");
    QAccessibleInterface* item = QAccessible::queryAccessibleInterface(box);
    QVERIFY(!item->state().expanded);
    for (const bool open : { true, false }) {
        item->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        AWAIT_COMPARE(bool(item->state().expanded), open);
    }
}

void TestAccessibility::aDisabledComboBoxDoesNotOpen()
{
    CInitInterfaceDialog dialog;
    dialog.show();
    auto* box = dialog.findChild<QComboBox*>("baud rate combo box");
    QVERIFY(!box->isEnabled());
    QAccessibleInterface* item = QAccessible::queryAccessibleInterface(box);
    item->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    QVERIFY(!item->state().expanded);
}

void TestAccessibility::theTreeSaysHowItIsUsed()
{
    const CNewDocument document;
    QCOMPARE(
        QAccessible::queryAccessibleInterface(document.tree())->text(QAccessible::Description),
        QString("By category. The cursor keys move, Return shows an object or entry and opens or closes its item."));
}

void TestAccessibility::comboBoxesSayWhetherTheyCanBeEdited()
{
    CInitInterfaceDialog dialog;
    for (auto* box : dialog.findChildren<QComboBox*>()) {
        const QAccessible::State state = QAccessible::queryAccessibleInterface(box)->state();
        QCOMPARE(bool(state.editable), box->objectName() == "interface combo box");
        QVERIFY(state.expandable && state.hasPopup);
    }
}

void TestAccessibility::checkMarksDoNotChange_data()
{
    QTest::addColumn<bool>("on");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void TestAccessibility::checkMarksDoNotChange()
{
    QFETCH(const bool, on);
    const CNewDocument document;
    for (const char* name : { "compound object", "mandatory object", "mandatory entry", "mapped entry" }) {
        auto* mark = document.find<QCheckBox>(QString(name) + " check box");
        mark->setChecked(on);
        mark->setFocus();
        QTest::keyClick(mark, Qt::Key_Space);
        QCOMPARE(mark->isChecked(), on);
        QTest::keyPress(mark, Qt::Key_Space);
        QVERIFY(!mark->isDown());
        QTest::keyRelease(mark, Qt::Key_Space);
        QTest::mouseClick(mark, Qt::LeftButton);
        QCOMPARE(mark->isChecked(), on);
        const QAccessible::State state = QAccessible::queryAccessibleInterface(mark)->state();
        QVERIFY(state.checkable && state.readOnly);
        QCOMPARE(bool(state.checked), on);
        QAccessibleActionInterface* actions = QAccessible::queryAccessibleInterface(mark)->actionInterface();
        for (const QString& action : actions->actionNames())
            actions->doAction(action);
        QCOMPARE(mark->isChecked(), on);
    }
}

void TestAccessibility::aClickOnACheckMarkLeavesTheFocus()
{
    const CNewDocument document;
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    document.newValue()->setFocus();
    QTest::mouseClick(document.find<QCheckBox>("mandatory object check box"), Qt::LeftButton);
    QVERIFY(document.newValue()->hasFocus());
}

QTEST_MAIN(TestAccessibility)
#include "TestAccessibility.moc"

// What a screen reader and a user without a mouse find: names, descriptions, the order of the Tab key, help by keys.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "NewDocument.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"
#include "widgets/MessageBoxes.h"

#include <QAccessible>
#include <QSplitter>
#include <QTabWidget>
#include <QWhatsThis>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=Device Type\nObjectType=0x7\n"
                             "DataType=0x0007\nAccessType=ro\n";

// What is there to be used or read. Panes, layouts and lines are not.
const QSet<int> controls = { QAccessible::Button,       QAccessible::PushButton,  QAccessible::ButtonMenu,
                             QAccessible::CheckBox,     QAccessible::RadioButton, QAccessible::ComboBox,
                             QAccessible::EditableText, QAccessible::SpinBox,     QAccessible::Tree,
                             QAccessible::List,         QAccessible::Table,       QAccessible::PageTab,
                             QAccessible::PageTabList,  QAccessible::Splitter,    QAccessible::Grip,
                             QAccessible::Grouping,     QAccessible::MenuBar,     QAccessible::MenuItem,
                             QAccessible::PopupMenu,    QAccessible::ToolBar,     QAccessible::StatusBar,
                             QAccessible::Window,       QAccessible::Dialog,      QAccessible::AlertMessage,
                             QAccessible::TreeItem,     QAccessible::ListItem };

// A text without what does not count when it is compared with another.
QString core(QString text)
{
    static const QRegularExpression rest("[^a-z0-9]");
    return text.toLower().remove(rest);
}

struct tWalk {
    QStringList missing;
    QStringList names; ///< with the role's number
    int count = 0;

    void visit(QAccessibleInterface* item, const QString& path = {})
    {
        if (item == nullptr || !item->isValid() || item->state().invisible)
            return;
        const auto* widget = qobject_cast<const QWidget*>(item->object());
        const QString name = item->text(QAccessible::Name);
        const QString here =
            path + "/" + QString::number(item->role()) + " " +
            (item->object() != nullptr ? item->object()->objectName() + " " + item->object()->metaObject()->className()
                                       : QString()) +
            " \"" + name + "\"";
        const bool buttonBox = widget != nullptr && widget->inherits("QDialogButtonBox"); // only a layout
        if (controls.contains(item->role()) && !buttonBox) {
            ++count;
            if (name.trimmed().isEmpty())
                missing << "no name: " + here;
        }
        if (widget != nullptr && !widget->toolTip().isEmpty()) {
            const QString description = item->text(QAccessible::Description);
            if (description.isEmpty() || core(description) == core(name) || description == widget->toolTip())
                missing << "no description of its own: " + here + " \"" + description + "\"";
        }
        names << name;
        for (int child = 0; child < item->childCount(); ++child)
            visit(item->child(child), here);
    }
    static tWalk of(QWidget* window)
    {
        tWalk walk;
        walk.visit(QAccessible::queryAccessibleInterface(window));
        return walk;
    }
};

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
    void everyControlOfADialogHasAName_data();
    void everyControlOfADialogHasAName();
    void everyControlOfABoxHasAName_data();
    void everyControlOfABoxHasAName();
    void comboBoxesAreCalledByTheirLabels();
    void aComboBoxOpensByItsAction();
    void theTabKeyGoesThroughTheDocumentInReadingOrder();
    void checkMarksDoNotChange_data();
    void checkMarksDoNotChange();
    void f10OpensTheFirstMenu();
    void helpInTheFrameIsAModeFirst();
    void helpOfTheFocusedControlIsShown_data();
    void helpOfTheFocusedControlIsShown();

private:
    static QImage takeHelp();
    static bool helpIsShown(const QString& text);

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

void TestAccessibility::theTabKeyGoesThroughTheDocumentInReadingOrder()
{
    CNewDocument document;
    QVERIFY(document.open(sheetText));
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    document.tree()->setFocus();
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
        QAccessibleActionInterface* actions = QAccessible::queryAccessibleInterface(mark)->actionInterface();
        for (const QString& action : actions->actionNames())
            actions->doAction(action);
        QCOMPARE(mark->isChecked(), on);
    }
}

void TestAccessibility::f10OpensTheFirstMenu()
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

/// What the help window looks like, which is then closed.
QImage TestAccessibility::takeHelp()
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
bool TestAccessibility::helpIsShown(const QString& text)
{
    const QImage shown = takeHelp();
    QWhatsThis::showText({}, text, QApplication::activeWindow());
    return !shown.isNull() && shown == takeHelp();
}

void TestAccessibility::helpInTheFrameIsAModeFirst()
{
    const CSheetFile sheet(sheetText);
    CFrameDriver driver;
    driver.open(sheet.name());
    const CDocumentDriver document(driver.document(0));
    document.newValue()->setFocus();
    driver.press(Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(QWhatsThis::inWhatsThisMode());
    driver.press(Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(!QWhatsThis::inWhatsThisMode());
    QVERIFY(helpIsShown("Input field to enter a new parameter value."));
}

void TestAccessibility::helpOfTheFocusedControlIsShown_data()
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

void TestAccessibility::helpOfTheFocusedControlIsShown()
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

QTEST_MAIN(TestAccessibility)
#include "TestAccessibility.moc"

// What the document window consists of: names, labels, help texts and the state in which it starts.
// SPDX-License-Identifier: MIT
#include "NewDocument.h"
#include "Patience.h"

#include "TempSettings.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>

class TestMDIWindowWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_document.reset(); }

    void theTreeStandsLeftOfTheForm();
    void theTreeHasOneHiddenHeader();
    void fieldsStandInTheirBox_data();
    void fieldsStandInTheirBox();
    void labelledFields_data();
    void labelledFields();
    void theLabelOfTheNewValueLeadsToItsField();
    void buttons_data();
    void buttons();
    void theDisplayModesStandInOneLayout();
    void theWindowStartsAtItsSize();
    void theFormIsNotClippedAtTheStartingSize();
    void theWindowTakesItsName();
    void anEmptyWindowShowsNothing();
    void aDocumentNeverRefusesToClose();
    void mnemonicsWork_data();
    void mnemonicsWork();

private:
    std::unique_ptr<CTempSettings> m_settings;
    std::unique_ptr<CNewDocument> m_document;
};

void TestMDIWindowWidgets::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_document = std::make_unique<CNewDocument>();
}

void TestMDIWindowWidgets::theTreeStandsLeftOfTheForm()
{
    const auto* central = m_document->window->centralWidget();
    QCOMPARE(central->objectName(), QString("client central widget"));
    const auto* layout = qobject_cast<QVBoxLayout*>(central->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->objectName(), QString("client window layout"));
    QCOMPARE(layout->contentsMargins(), QMargins(11, 11, 11, 11));
    QCOMPARE(layout->spacing(), 6);
    const auto* splitter = m_document->find<QSplitter>("client splitter window");
    QCOMPARE(splitter->orientation(), Qt::Horizontal);
    QCOMPARE(splitter->count(), 2);
    QVERIFY(!splitter->childrenCollapsible());
    QCOMPARE(splitter->widget(0), m_document->tree());
    QCOMPARE(splitter->widget(1)->objectName(), QString("object attributes form widget"));
}

void TestMDIWindowWidgets::theTreeHasOneHiddenHeader()
{
    const auto* tree = m_document->tree();
    QCOMPARE(tree->columnCount(), 1);
    QCOMPARE(tree->headerItem()->text(0), QString("CANopen: Object dictionary       ")); // seven blanks
    QVERIFY(tree->isHeaderHidden());
    QCOMPARE(tree->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(tree->toolTip(), QString("Object Dictionary"));
    QCOMPARE(tree->whatsThis(),
             QString("The Object Dictionary window displays the CANopen object dictionary of a CANopen device taken "
                     "either from an EDS-File or from a XML-File. On the left side of the window all objects are "
                     "listed in a tree view order by categories. To navigate through the object tree use either "
                     "the cursor-up/-down keys or click with the mouse on an item. On the right side all "
                     "attributes and attribute values of the highlighted object are shown."));
}

void TestMDIWindowWidgets::fieldsStandInTheirBox_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("object") << "object description"
                            << "Object description"
                            << QStringList{ "object name line edit", "object code line edit",
                                            "object data type line edit", "compound object check box",
                                            "mandatory object check box" };
    QTest::newRow("entry") << "entry description"
                           << "Entry description"
                           << QStringList{ "parameter name line edit", "parameter data type line edit",
                                           "access type line edit",    "value range line edit",
                                           "default value line edit",  "mandatory entry check box",
                                           "mapped entry check box" };
    QTest::newRow("access") << "data access"
                            << "Data access"
                            << QStringList{ "new value line edit", "actual value line edit", "send push button",
                                            "read push button",    "hex radio button",       "dec radio button",
                                            "oct radio button" };
}

void TestMDIWindowWidgets::fieldsStandInTheirBox()
{
    QFETCH(const QString, box);
    QFETCH(const QStringList, fields);
    const auto* group = m_document->find<QGroupBox>(box + " group box");
    QTEST(group->title(), "title");
    QVERIFY(m_document->find<QWidget>("object attributes form widget")->isAncestorOf(group));
    for (const QString& field : fields)
        QVERIFY2(group->isAncestorOf(m_document->find<QWidget>(field)), qPrintable(field));
}

void TestMDIWindowWidgets::labelledFields_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("help");
    const auto row = [](const char* name, const char* kind, const char* label, const char* tip, const char* help) {
        QTest::newRow(name) << kind << label << tip << help;
    };
    row("object name", "line edit", "Object name:", "Object name", "Name of the object.");
    row("object code", "line edit", "Object code:", "Object code", "Object code: VAR, ARRAY, RECORD, ....");
    row("object data type", "line edit", "Data type:", "Data type", "Data type of the object.");
    row("compound object", "check box", "Compound object", "If it is an ARRAY or a RECORD",
        "The check mark is set in case of an ARRAY or a RECORD.");
    row("mandatory object", "check box", "Mandatory object", "If it is a mandatory object",
        "The check mark is set if the object is a mandatory object.");
    row("parameter name", "line edit", "Parameter name:", "Parameter name", "Name of the parameter.");
    row("parameter data type", "line edit", "Data type:", "Data type", "Data type of the parameter.");
    row("access type", "line edit", "Access type:", "Access type", "Access type of the parameter.");
    row("value range", "line edit", "Value range:", "Value range", "Value range of the parameter if given.");
    row("default value", "line edit", "Default value:", "Default value", "Default value of the parameter if given.");
    row("mandatory entry", "check box", "Mandatory entry", "If it is a mandatory entry",
        "The check mark is set if the entry is a mandatory parameter.");
    row("mapped entry", "check box", "PDO Mapping", "If it is mapped into a PDO",
        "The check mark is set if the entry is mapped into a PDO.");
    row("new value", "line edit", "Enter new &value:", "New parameter value",
        "Input field to enter a new parameter value.");
    row("actual value", "line edit", "Parameter value:", "Actual parameter value",
        "Actual parameter value read from the device.");
}

void TestMDIWindowWidgets::labelledFields()
{
    QFETCH(const QString, kind);
    const QString name = QTest::currentDataTag();
    const auto* field = m_document->find<QWidget>(name + " " + kind);
    const auto* label = m_document->find<QLabel>(name + " text label");
    QTEST(label->text(), "label");
    QTEST(field->toolTip(), "tip");
    QTEST(field->whatsThis(), "help");
    QTEST(label->whatsThis(), "help");
    if (kind == "check box")
        QCOMPARE(m_document->find<QCheckBox>(name + " check box")->text(), QString()); // the label has it
    else
        QCOMPARE(m_document->field(name), QString());
}

void TestMDIWindowWidgets::theLabelOfTheNewValueLeadsToItsField()
{
    QCOMPARE(m_document->find<QLabel>("new value text label")->buddy(), m_document->newValue());
}

void TestMDIWindowWidgets::buttons_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("help");
    QTest::newRow("send push button") << "&Send"
                                      << "Send the entered parameter value"
                                      << "Push button to send the entered parameter value to the device.";
    QTest::newRow("read push button") << "&Read"
                                      << "Read the parameter value"
                                      << "Push button to read the parameter value from the device.";
    QTest::newRow("hex radio button") << "&hexadecimal"
                                      << "Display actual value in hexadecimal format"
                                      << "Radio button to display the actual parameter value in hexadecimal format.";
    QTest::newRow("dec radio button") << "&decimal"
                                      << "Display actual value in decimal format"
                                      << "Radio button to display the actual parameter value in decimal format.";
    QTest::newRow("oct radio button") << "&octal"
                                      << "Display actual value in octal format"
                                      << "Radio button to display the actual parameter value in octal format.";
}

void TestMDIWindowWidgets::buttons()
{
    const auto* button = m_document->find<QAbstractButton>(QTest::currentDataTag());
    QTEST(button->text(), "text");
    QTEST(button->toolTip(), "tip");
    QTEST(button->whatsThis(), "help");
}

void TestMDIWindowWidgets::theDisplayModesStandInOneLayout()
{
    const auto* layout = m_document->window->findChild<QLayout*>("display mode buttons layout");
    QVERIFY(layout != nullptr);
    for (const char* which : { "hex", "dec", "oct" })
        QVERIFY2(layout->indexOf(m_document->mode(which)) >= 0, which);
}

void TestMDIWindowWidgets::theWindowStartsAtItsSize()
{
    const CMDIWindow window;
    QCOMPARE(window.size(), QSize(720, 400).expandedTo(window.minimumSizeHint()));
}

void TestMDIWindowWidgets::theFormIsNotClippedAtTheStartingSize()
{
    QVERIFY(QTest::qWaitForWindowExposed(m_document->window, patience));
    m_document->window->resize(720, 400);
    const auto* form = m_document->find<QScrollArea>("object attributes form widget");
    QCOMPARE(form->widget()->font().pointSize(), 9);
    AWAIT_COMPARE(form->horizontalScrollBar()->maximum(), 0);
    QCOMPARE(form->verticalScrollBar()->maximum(), 0);
}

void TestMDIWindowWidgets::theWindowTakesItsName()
{
    QCOMPARE(CMDIWindow(nullptr, "client window").objectName(), QString("client window"));
    QVERIFY(CMDIWindow::version() != nullptr && *CMDIWindow::version() != '\0');
}

void TestMDIWindowWidgets::anEmptyWindowShowsNothing()
{
    QCOMPARE(m_document->tree()->topLevelItemCount(), 0);
    QCOMPARE(m_document->objectPart(), QStringList({ "Object description", "", "", "", "-", "-" }));
    QCOMPARE(m_document->entryPart(), QStringList({ "Entry description", "", "", "", "", "", "-", "-" }));
    QCOMPARE(m_document->box("data access"), QString("Data access"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowWidgets::aDocumentNeverRefusesToClose()
{
    QVERIFY(m_document->window->close());
    QVERIFY(!m_document->window->isVisible());
}

void TestMDIWindowWidgets::mnemonicsWork_data()
{
    QTest::addColumn<char>("key");
    QTest::addColumn<QString>("modes");
    QTest::newRow("hexadecimal") << 'H' << "hex";
    QTest::newRow("decimal") << 'D' << "dec";
    QTest::newRow("octal") << 'O' << "oct";
}

void TestMDIWindowWidgets::mnemonicsWork()
{
    QFETCH(const char, key);
    QFETCH(const QString, modes);
    m_document->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_document->window, patience));
    m_document->choose(key == 'H' ? "dec" : "hex");
    QTest::keyClick(m_document->window, key, Qt::AltModifier);
    AWAIT_COMPARE(m_document->modes(), modes); // the button is shown as pressed for a moment
    QTest::keyClick(m_document->window, 'V', Qt::AltModifier);
    QVERIFY(m_document->newValue()->hasFocus());
}

QTEST_MAIN(TestMDIWindowWidgets)
#include "TestMDIWindowWidgets.moc"

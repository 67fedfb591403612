// The widgets of the document window: their names, texts and places.
// SPDX-License-Identifier: MIT
#include "MDIWindow.h"

#include "widgets/CheckMark.h"
#include "widgets/DictionaryListView.h"
#include "widgets/DocumentSplitter.h"
#include "widgets/FieldRow.h"
#include "widgets/FormArea.h"
#include "widgets/TextField.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>

namespace
{

using tObject = CMDIWindow::tObjectDescription;
using tEntry = CMDIWindow::tEntryDescription;
using tAccess = CMDIWindow::tDataAccess;

// A group box is a grid of four columns: label, field, label, field.
constexpr int columns = 4;

/// A widget of a group box: its place in the record, its words and the cell where it (or its label) starts. A field is
/// wide enough for its sample text.
template <typename Record, typename Widget>
struct tRow {
    Widget* Record::*member;
    tFieldText texts;
    int row;
    int column;
    int span;
    const char* sample = "";
};

constexpr char sampleType[] = "Unsigned32";
constexpr char sampleRange[] = "0x00000000,..,0xFFFFFFFF";
constexpr char sampleValue[] = "0x000F0191";

constexpr tFieldText listViewText = {
    "object dictionary list view",
    "CANopen: Object dictionary       ", // sic
    "Object Dictionary",
    "The Object Dictionary window displays the CANopen object dictionary of a CANopen device taken either from an "
    "EDS-File or from a XML-File. On the left side of the window all objects are listed in a tree view order by "
    "categories. To navigate through the object tree use either the cursor-up/-down keys or click with the mouse on an "
    "item. On the right side all attributes and attribute values of the highlighted object are shown.",
    "Objects and entries",
};

// clang-format off
constexpr tRow<tObject, QLineEdit> objectFields[] = {
    { &tObject::m_nameLineEdit,
      { "object name line edit", "Object name:", "Object name", "Name of the object." }, 0, 0, 4 },
    { &tObject::m_codeLineEdit,
      { "object code line edit", "Object code:", "Object code", "Object code: VAR, ARRAY, RECORD, ...." }, 1, 0, 2 },
    { &tObject::m_typeLineEdit,
      { "object data type line edit", "Data type:", "Data type", "Data type of the object." }, 1, 2, 2,
      sampleType },
};
constexpr tRow<tObject, QCheckBox> objectMarks[] = {
    { &tObject::m_compoundCheckBox,
      { "compound object check box", "Compound object", "If it is an ARRAY or a RECORD",
        "The check mark is set in case of an ARRAY or a RECORD." }, 2, 0, 2 },
    { &tObject::m_mandatoryCheckBox,
      { "mandatory object check box", "Mandatory object", "If it is a mandatory object",
        "The check mark is set if the object is a mandatory object." }, 2, 2, 2 },
};

constexpr tRow<tEntry, QLineEdit> entryFields[] = {
    { &tEntry::m_nameLineEdit,
      { "parameter name line edit", "Parameter name:", "Parameter name", "Name of the parameter." }, 0, 0, 4 },
    { &tEntry::m_typeLineEdit,
      { "parameter data type line edit", "Data type:", "Data type", "Data type of the parameter." }, 1, 0, 2,
      sampleType },
    { &tEntry::m_accessLineEdit,
      { "access type line edit", "Access type:", "Access type", "Access type of the parameter." }, 1, 2, 2 },
    { &tEntry::m_rangeLineEdit,
      { "value range line edit", "Value range:", "Value range", "Value range of the parameter if given." }, 2, 0, 2,
      sampleRange },
    { &tEntry::m_defaultLineEdit,
      { "default value line edit", "Default value:", "Default value", "Default value of the parameter if given." },
      2, 2, 2, sampleValue },
};
constexpr tRow<tEntry, QCheckBox> entryMarks[] = {
    { &tEntry::m_mandatoryCheckBox,
      { "mandatory entry check box", "Mandatory entry", "If it is a mandatory entry",
        "The check mark is set if the entry is a mandatory parameter." }, 3, 0, 2 },
    { &tEntry::m_mappingCheckBox,
      { "mapped entry check box", "PDO Mapping", "If it is mapped into a PDO",
        "The check mark is set if the entry is mapped into a PDO." }, 3, 2, 2 },
};

constexpr tRow<tAccess, QLineEdit> accessFields[] = {
    { &tAccess::m_inputLineEdit,
      { "new value line edit", "Enter new &value:", "New parameter value",
        "Input field to enter a new parameter value." }, 0, 0, 3, sampleValue },
    { &tAccess::m_outputLineEdit,
      { "actual value line edit", "Parameter value:", "Actual parameter value",
        "Actual parameter value read from the device." }, 1, 0, 3, sampleValue },
};
constexpr tRow<tAccess, QPushButton> accessButtons[] = {
    { &tAccess::m_sendPushButton,
      { "send push button", "&Send", "Send the entered parameter value",
        "Push button to send the entered parameter value to the device." }, 0, 3, 1 },
    { &tAccess::m_readPushButton,
      { "read push button", "&Read", "Read the parameter value",
        "Push button to read the parameter value from the device." }, 1, 3, 1 },
};
constexpr tRow<tAccess, QRadioButton> displayModes[] = {
    { &tAccess::m_hexRadioButton,
      { "hex radio button", "&hexadecimal", "Display actual value in hexadecimal format",
        "Radio button to display the actual parameter value in hexadecimal format." }, 2, 0, 1 },
    { &tAccess::m_decRadioButton,
      { "dec radio button", "&decimal", "Display actual value in decimal format",
        "Radio button to display the actual parameter value in decimal format." }, 2, 1, 1 },
    { &tAccess::m_octRadioButton,
      { "oct radio button", "&octal", "Display actual value in octal format",
        "Radio button to display the actual parameter value in octal format." }, 2, 2, 1 },
};
// clang-format on

QGroupBox* createGroupBox(QWidget* parent, const char* name, const char* title)
{
    auto* box = new QGroupBox(QLatin1String(title), parent);
    box->setObjectName(QLatin1String(name));
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(6, 5, 6, 6);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    parent->layout()->addWidget(box);
    return box;
}

QGridLayout* gridOf(const QGroupBox* box)
{
    return static_cast<QGridLayout*>(box->layout());
}

template <typename Record, std::size_t N>
void addFields(QGroupBox* box, Record& record, const tRow<Record, QLineEdit> (&table)[N])
{
    for (const auto& row : table) {
        auto* field = new CTextField(box, row.sample);
        fieldRow::describe(field, row.texts);
        field->setReadOnly(true);
        field->setMaxLength(fieldRow::longestText);
        record.*row.member = field;
        gridOf(box)->addWidget(fieldRow::createLabel(field, row.texts), row.row, row.column);
        gridOf(box)->addWidget(field, row.row, row.column + 1, 1, row.span - 1);
    }
}

template <typename Record, std::size_t N>
void addMarks(QGroupBox* box, Record& record, const tRow<Record, QCheckBox> (&table)[N])
{
    for (const auto& row : table) {
        auto* mark = new CCheckMark(box);
        fieldRow::describe(mark, row.texts);
        record.*row.member = mark;
        auto* pair = new QHBoxLayout;
        pair->setSpacing(4);
        pair->addWidget(mark);
        pair->addWidget(fieldRow::createLabel(mark, row.texts), 1);
        gridOf(box)->addLayout(pair, row.row, row.column, 1, row.span);
    }
}

template <typename Button>
Button* createButton(QGroupBox* box, tAccess& record, const tRow<tAccess, Button>& row)
{
    auto* button = new Button(QLatin1String(row.texts.label), box);
    fieldRow::describe(button, row.texts);
    record.*row.member = button;
    return button;
}

/// Gives the labels of a column one width in all boxes, so that their fields stand in line.
void alignLabels(const QList<QGroupBox*>& boxes, int column)
{
    int width = 0;
    for (const QGroupBox* box : boxes)
        for (int row = 0; row < gridOf(box)->rowCount(); ++row)
            if (const QLayoutItem* item = gridOf(box)->itemAtPosition(row, column))
                if (const auto* label = qobject_cast<QLabel*>(item->widget()))
                    width = std::max(width, label->sizeHint().width());
    for (const QGroupBox* box : boxes)
        gridOf(box)->setColumnMinimumWidth(column, width);
}

} // namespace

void CMDIWindow::createWidgets()
{
    auto* client = new QWidget(this);
    client->setObjectName(QStringLiteral("client central widget"));
    auto* layout = new QVBoxLayout(client);
    layout->setObjectName(QStringLiteral("client window layout"));
    layout->setContentsMargins(11, 11, 11, 11);
    layout->setSpacing(6);
    m_splitter = new CDocumentSplitter(client);
    m_splitter->setObjectName(QStringLiteral("client splitter window"));
    layout->addWidget(m_splitter);

    createDictionaryListView();
    createAttributesForm();
    m_splitter->setHalves(m_dictionaryListView, m_formArea);
    setCentralWidget(client);
    connectWidgets();
    m_dictionaryListView->setFocus(); // key presses go to the tree first
}

void CMDIWindow::createDictionaryListView()
{
    m_dictionaryListView = new CDictionaryListView(m_splitter);
    fieldRow::describe(m_dictionaryListView, listViewText);
    m_dictionaryListView->setAccessibleDescription(QStringLiteral(
        "By category. The cursor keys move, Return shows an object or entry and opens or closes its item."));
    m_dictionaryListView->setHeaderLabel(QLatin1String(listViewText.label));
    m_dictionaryListView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_dictionaryListView->setIndentation(15);
    m_dictionaryListView->setUniformRowHeights(true);

    // The column is as wide as the texts on screen, so that long names scroll instead of being cut.
    QHeaderView* header = m_dictionaryListView->header();
    header->hide();
    header->setStretchLastSection(false);
    header->setResizeContentsPrecision(0);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void CMDIWindow::createAttributesForm()
{
    m_formArea = new CFormArea(m_splitter);
    m_formArea->setObjectName(QStringLiteral("object attributes form widget"));
    auto* form = new QWidget(m_formArea);
    form->setObjectName(QStringLiteral("object attributes widget"));
    auto* layout = new QVBoxLayout(form);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);

    m_objectGroupBox = createGroupBox(form, "object description group box", "Object description");
    addFields(m_objectGroupBox, m_objectDescription, objectFields);
    addMarks(m_objectGroupBox, m_objectDescription, objectMarks);

    m_entryGroupBox = createGroupBox(form, "entry description group box", "Entry description");
    addFields(m_entryGroupBox, m_entryDescription, entryFields);
    addMarks(m_entryGroupBox, m_entryDescription, entryMarks);

    m_accessGroupBox = createGroupBox(form, "data access group box", "Data access");
    createDataAccess();

    layout->addStretch(1);
    alignLabels({ m_objectGroupBox, m_entryGroupBox, m_accessGroupBox }, 0);
    alignLabels({ m_objectGroupBox, m_entryGroupBox }, 2);
    m_formArea->setWidget(form);
}

void CMDIWindow::createDataAccess()
{
    addFields(m_accessGroupBox, m_dataAccess, accessFields);
    m_dataAccess.m_inputLineEdit->setReadOnly(false);

    QGridLayout* grid = gridOf(m_accessGroupBox);
    grid->setColumnStretch(3, 0);
    for (const auto& row : accessButtons)
        grid->addWidget(createButton(m_accessGroupBox, m_dataAccess, row), row.row, row.column, 1, row.span);

    auto* modes = new QHBoxLayout;
    modes->setObjectName(QStringLiteral("display mode buttons layout"));
    modes->setSpacing(12);
    for (const auto& row : displayModes)
        modes->addWidget(createButton(m_accessGroupBox, m_dataAccess, row));
    modes->addStretch(1);
    grid->addLayout(modes, displayModes[0].row, 0, 1, columns);

    // Row by row, as it is read. All other widgets have been created in this order.
    setTabOrder(m_dataAccess.m_inputLineEdit, m_dataAccess.m_sendPushButton);
}

void CMDIWindow::connectWidgets()
{
    connect(m_dictionaryListView, &CDictionaryListView::pressed, this, &CMDIWindow::mouseLeftPressed);
    connect(m_dictionaryListView, &CDictionaryListView::returnPressed, this, &CMDIWindow::returnKeyPressed);
    connect(m_dataAccess.m_inputLineEdit, &QLineEdit::returnPressed, this, &CMDIWindow::buttonSendClicked);
    connect(m_dataAccess.m_sendPushButton, &QPushButton::clicked, this, &CMDIWindow::buttonSendClicked);
    connect(m_dataAccess.m_readPushButton, &QPushButton::clicked, this, &CMDIWindow::buttonReadClicked);
    connect(m_dataAccess.m_hexRadioButton, &QRadioButton::clicked, this, &CMDIWindow::buttonHexClicked);
    connect(m_dataAccess.m_decRadioButton, &QRadioButton::clicked, this, &CMDIWindow::buttonDecClicked);
    connect(m_dataAccess.m_octRadioButton, &QRadioButton::clicked, this, &CMDIWindow::buttonOctClicked);
}

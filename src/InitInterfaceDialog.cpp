// The dialog that names the CAN interface to initialise.
// SPDX-License-Identifier: MIT
#include "InitInterfaceDialog.h"

#include "base/NodeId.h"
#include "dic/CANopenDeviceInfo.h"
#include "widgets/FieldRow.h"
#include "widgets/MessageBoxes.h"
#include "widgets/NamedComboBox.h"
#include "widgets/Settings.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace
{

constexpr char identity[] = "$Id: InitInterfaceDialog.cpp 61 2009-11-09 $";

constexpr QSize smallestSize(330, 170);
constexpr int shownCharacters = 21; // "255.255.255.255:65535"
constexpr int initialBaudrate = 3;  // 250 kbit/s

constexpr tFieldText interfaceText = {
    "interface combo box", "&Interface:", "Interface to initialize",
    "Enter a interface name or select one fron the list" // sic
};
constexpr tFieldText baudrateText = { "baud rate combo box", "&Baud rate:", "Baud rate for CAN communication",
                                      "Select a baud rate for CAN communication." };
constexpr tFieldText masterIdText = { "master id spin box", "&Node-Id.:", "Node-Id. of the CANopen Master",
                                      "Enter the Node-Id. for the CANopen Master." };
constexpr tFieldText okText = { "ok push button", "&OK", "Accept decisions",
                                "Accept selection and initialize the selected interface." };
constexpr tFieldText cancelText = { "cancel push button", "&Cancel", "Resistance is futile!",
                                    "Leave without any action." };

// Places label, field and the unit after the field as one row of the grid. Returns the two labels.
struct tRowLabels {
    QLabel* label;
    QLabel* unit;
};

tRowLabels addRow(QGridLayout* grid, QWidget* field, const tFieldText& texts, const char* unit)
{
    fieldRow::describe(field, texts);
    auto* label = fieldRow::createLabel(field, texts);
    auto* unitLabel = new QLabel(QLatin1String(unit), field->parentWidget());
    unitLabel->setObjectName(label->objectName().replace(QStringLiteral(" text "), QStringLiteral(" unit text ")));
    unitLabel->setWhatsThis(QLatin1String(texts.whatsThis));

    const int row = grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
    grid->addWidget(unitLabel, row, 2);
    return { label, unitLabel };
}

} // namespace

CInitInterfaceDialog::CInitInterfaceDialog(QWidget* parent, const char* name) : QDialog(parent)
{
    setObjectName(QString::fromUtf8(name));
    setWindowTitle(QStringLiteral("Initialize CAN Interface"));

    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    layout->addLayout(grid);
    layout->addStretch();
    createFields(grid);
    createButtons();

    fillBaudrates();
    m_masterIdSpinBox->setValue(0);
    m_baudrateComboBox->setCurrentIndex(initialBaudrate);
    loadSettings();

    setMinimumSize(smallestSize.expandedTo(minimumSizeHint()));
    resize(minimumSize());
    m_interfaceComboBox->setFocus();
}

// Its frame keeps the dialog when it has been closed, and with the next one there are two.
void CInitInterfaceDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (parentWidget() != nullptr)
        parentWidget()->installEventFilter(this); // once only, however often it is shown
}

void CInitInterfaceDialog::hideEvent(QHideEvent* event)
{
    if (parentWidget() != nullptr)
        parentWidget()->removeEventFilter(this);
    QDialog::hideEvent(event);
}

// At the start of the program the window manager places the frame only after the dialog was centred on it.
bool CInitInterfaceDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Move && isVisible() && !isActiveWindow())
        adjustPosition(parentWidget());
    return QDialog::eventFilter(watched, event);
}

void CInitInterfaceDialog::createFields(QGridLayout* grid)
{
    // Without a completer: it would turn "CAN1" into the "can1" of the history.
    m_interfaceComboBox = new CNamedComboBox(this);
    m_interfaceComboBox->setEditable(true);
    m_interfaceComboBox->setCompleter(nullptr);
    m_interfaceComboBox->lineEdit()->setAccessibleName(QStringLiteral("Interface"));
    m_interfaceComboBox->setDuplicatesEnabled(false);
    m_interfaceComboBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon); // whatever it holds
    m_interfaceComboBox->setMinimumContentsLength(shownCharacters);
    fieldRow::describe(m_interfaceComboBox, interfaceText);
    grid->addWidget(fieldRow::createLabel(m_interfaceComboBox, interfaceText), 0, 0);
    grid->addWidget(m_interfaceComboBox, 0, 1, 1, 2);

    m_baudrateComboBox = new CNamedComboBox(this);
    m_masterIdSpinBox = new QSpinBox(this);
    m_masterIdSpinBox->setRange(0, highestNodeId);
    const tRowLabels baudrate = addRow(grid, m_baudrateComboBox, baudrateText, "Kbps (CiA Bit-timing)");
    const tRowLabels masterId = addRow(grid, m_masterIdSpinBox, masterIdText, "for CANopen Master");
    grid->setColumnStretch(1, 1);

    // Only the interface can be chosen: the bit rate is set outside the program, and its master has no node-id. The
    // remark after the node-id stays readable.
    for (QWidget* widget : std::initializer_list<QWidget*>{ m_baudrateComboBox, baudrate.label, baudrate.unit,
                                                            m_masterIdSpinBox, masterId.label })
        widget->setEnabled(false);
}

void CInitInterfaceDialog::createButtons()
{
    m_okPushButton = new QPushButton(QLatin1String(okText.label), this);
    m_okPushButton->setShortcut(QKeySequence(Qt::ALT | Qt::Key_O));
    m_okPushButton->setDefault(true);
    fieldRow::describe(m_okPushButton, okText);
    connect(m_okPushButton, &QPushButton::clicked, this, &CInitInterfaceDialog::acceptInitialize);

    m_cancelPushButton = new QPushButton(QLatin1String(cancelText.label), this);
    m_cancelPushButton->setShortcut(QKeySequence(Qt::ALT | Qt::Key_C));
    fieldRow::describe(m_cancelPushButton, cancelText);
    connect(m_cancelPushButton, &QPushButton::clicked, this, &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_okPushButton);
    buttons->addWidget(m_cancelPushButton);
    static_cast<QVBoxLayout*>(layout())->addLayout(buttons);
}

void CInitInterfaceDialog::fillBaudrates()
{
    for (int index = CCANopenDeviceInfo::baudrate1000; index <= CCANopenDeviceInfo::baudrate10; ++index)
        m_baudrateComboBox->addItem(
            CCANopenDeviceInfo::getBaudrateByIndex(static_cast<CCANopenDeviceInfo::TBaudrateIndex>(index)));
}

void CInitInterfaceDialog::acceptInitialize()
{
    if (m_interfaceComboBox->currentText().isEmpty())
        return messageBox::warning(this, messageBox::titleOf("Initialize Interface"),
                                   QStringLiteral("No interface given!\n\nPlease retry."));
    accept();
}

const char* CInitInterfaceDialog::getInterface()
{
    const QString text = m_interfaceComboBox->currentText();
    m_interface = text.toUtf8();
    if (text.isEmpty())
        return nullptr;

    const int position = m_interfaceComboBox->findText(text);
    if (position >= 0)
        m_interfaceComboBox->removeItem(position);
    m_interfaceComboBox->insertItem(0, text);
    m_interfaceComboBox->setCurrentIndex(0);
    return m_interface.constData();
}

int CInitInterfaceDialog::getBaudrate() const
{
    return m_baudrateComboBox->currentIndex();
}

void CInitInterfaceDialog::loadSettings()
{
    m_interfaceComboBox->addItems(settings::usedInterfaces());
}

void CInitInterfaceDialog::saveSettings() const
{
    QStringList interfaces;
    for (int position = 0; position < m_interfaceComboBox->count() && position < settings::listSlots; ++position)
        interfaces.append(m_interfaceComboBox->itemText(position));
    settings::setUsedInterfaces(interfaces);
}

const char* CInitInterfaceDialog::version()
{
    return identity;
}

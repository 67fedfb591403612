// The dialog that shows the device and file information: one table a page, one row a field.
// SPDX-License-Identifier: MIT
#include "DeviceInfoDialog.h"

#include "base/Assertion.h"
#include "dic/CANopen.h"
#include "widgets/FieldRow.h"
#include "widgets/MessageBoxes.h"
#include "widgets/ScreenRoom.h"
#include "widgets/TextField.h"
#include "widgets/WindowTitle.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace
{

constexpr char identity[] = "$Id: DeviceInfoDialog.cpp 61 2009-11-09 $";

using tInfo = CCANopenDeviceInfo;
using tPage1 = CDeviceInfoDialog::tPage1;
using tPage2 = CDeviceInfoDialog::tPage2;
using tPage3 = CDeviceInfoDialog::tPage3;
using tPage4 = CDeviceInfoDialog::tPage4;

// One field: its words, where the page keeps it and the text that it shows of `Source`.
template <typename Page, typename Source>
struct tRow {
    tFieldText texts;
    QLineEdit* Page::*field;
    QString (*shown)(const Source& source);
};

QString decimal(unsigned long number)
{
    return QString::number(number);
}

QString supported(bool flag, const char* pattern = "%1 supported")
{
    return QLatin1String(pattern).arg(flag ? QStringLiteral("is") : QStringLiteral("is not"));
}

QString revisionText(const tInfo& info)
{
    const quint32 revision = info.getRevisionNumber();
    return QStringLiteral("%1.%2").arg(decimal(revision >> 16), decimal(revision & 0xFFFFU));
}

QString numberOfPDOsText(const tInfo& info)
{
    return QStringLiteral("%1 RxPDO(s) and %2 TxPDO(s) supported")
        .arg(decimal(info.getNumberOfRxPDO()), decimal(info.getNumberOfTxPDO()));
}

QString granularityText(const tInfo& info)
{
    const int granularity = info.getPDOGranularity();
    return QStringLiteral("%1 - %2").arg(QString::number(granularity), granularity != 0
                                                                           ? QStringLiteral("dynamic mapping supported")
                                                                           : QStringLiteral("mapping not modifiable"));
}

constexpr tRow<tPage1, tInfo> page1[] = {
    { { "vendor name line edit", "Vendor name:", "Vendor name", "Name of the vendor." },
      &tPage1::m_vendorNameLineEdit,
      [](const tInfo& info) { return info.getVendorName(); } },
    { { "vendor number line edit", "Vendor number:", "Vendor number", "VendorId from CiA." },
      &tPage1::m_vendorNumberLineEdit,
      [](const tInfo& info) { return decimal(info.getVendorNumber()); } },
    { { "product name line edit", "Product name:", "Product name", "Name of the product." },
      &tPage1::m_productNameLineEdit,
      [](const tInfo& info) { return info.getProductName(); } },
    { { "product number line edit", "Product number:", "Product number", "Identification of the product." },
      &tPage1::m_productNumberLineEdit,
      [](const tInfo& info) { return decimal(info.getProductNumber()); } },
    { { "revision number line edit", "Revision number:", "Revision number", "Revision of the device." },
      &tPage1::m_revisionNumberLineEdit,
      revisionText },
    { { "order code line edit", "Order code:", "Oder code", "Oder code of the device." }, // sic
      &tPage1::m_orderCodeLineEdit,
      [](const tInfo& info) { return info.getOrderCode(); } },
    { { "description line edit", "Description:", "Brief description", "Description of the device." },
      &tPage1::m_descriptionLineEdit,
      [](const tInfo& info) { return info.getDescription(); } },
};

// Kept: 100 kbit/s, index 5, has no row: compatible behaviour.
constexpr char baudrateHelp[] = "Shows if the given baud rate is supported.";
constexpr tRow<tPage2, tInfo> page2[] = {
    { { "baud rate 1000 line edit", "", "Baud rate index 0", baudrateHelp, "Baud rate 1000 kbit/s" },
      &tPage2::m_baudrate1000LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate1000), "1.0 MBit/s  %1 supported"); } },
    { { "baud rate 800 line edit", "", "Baud rate index 1", baudrateHelp, "Baud rate 800 kbit/s" },
      &tPage2::m_baudrate800LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate800), "800 kBit/s  %1 supported"); } },
    { { "baud rate 500 line edit", "", "Baud rate index 2", baudrateHelp, "Baud rate 500 kbit/s" },
      &tPage2::m_baudrate500LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate500), "500 kBit/s  %1 supported"); } },
    { { "baud rate 250 line edit", "", "Baud rate index 3", baudrateHelp, "Baud rate 250 kbit/s" },
      &tPage2::m_baudrate250LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate250), "250 kBit/s  %1 supported"); } },
    { { "baud rate 125 line edit", "", "Baud rate index 4", baudrateHelp, "Baud rate 125 kbit/s" },
      &tPage2::m_baudrate125LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate125), "125 kBit/s  %1 supported"); } },
    { { "baud rate 50 line edit", "", "Baud rate index 6", baudrateHelp, "Baud rate 50 kbit/s" },
      &tPage2::m_baudrate50LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate50), "50 kBit/s  %1 supported"); } },
    { { "baud rate 20 line edit", "", "Baud rate index 7", baudrateHelp, "Baud rate 20 kbit/s" },
      &tPage2::m_baudrate20LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate20), "20 kBit/s  %1 supported"); } },
    { { "baud rate 10 line edit", "", "Baud rate index 8", baudrateHelp, "Baud rate 10 kbit/s" },
      &tPage2::m_baudrate10LineEdit,
      [](const tInfo& info) { return supported(info.getBaudrate(tInfo::baudrate10), "10 kBit/s  %1 supported"); } },
};

constexpr char bootUpHelp[] = "Shows if the simple boot-up master function is supported."; // sic, of both fields
constexpr tRow<tPage3, tInfo> page3[] = {
    { { "boot-up master line edit", "Simple boot-up master:", "Simple boot-up master", bootUpHelp },
      &tPage3::m_bootupMasterLineEdit,
      [](const tInfo& info) { return supported(info.getSimpleBootUpMaster()); } },
    { { "boot-up slave line edit", "Simple boot-up slave:", "Simple boot-up slave", bootUpHelp },
      &tPage3::m_bootupSlaveLineEdit,
      [](const tInfo& info) { return supported(info.getSimpleBootUpSlave()); } },
    { { "number of PDOs line edit", "Number of PDOs:", "Number of PDOs",
        "Shows the number of Receive PDOs and transmit PDOs." },
      &tPage3::m_numberOfPDOsLineEdit,
      numberOfPDOsText },
    { { "granularity line edit", "Granularity:", "PDO granularity", "Shows the PDO mapping granularity." },
      &tPage3::m_granularityLineEdit,
      granularityText },
    { { "dynamic channels line edit", "Dynamic channels:", "Dynamic channels",
        "Shows if dynamic channels are supported." },
      &tPage3::m_dynamicChannelsLineEdit,
      [](const tInfo& info) { return supported(info.getDynamicChannels()); } },
    { { "group messaging line edit", "Group messaging:", "Group Messaging", "Shows if Group Messaging is supported." },
      &tPage3::m_groupMessagingLineEdit,
      [](const tInfo& info) { return supported(info.getGroupMessaging()); } },
    { { "layer settings line edit", "Layer settings (LSS):", "Layer Services and Settings",
        "Shows if Layer Services and Settings is supported." },
      &tPage3::m_layerSettingsLineEdit,
      [](const tInfo& info) { return supported(info.getLayerSettings()); } },
};

constexpr tRow<tPage4, CCANopen> page4[] = {
    { { "file name line edit", "File name:", "File name", "File name of the object dictionary." },
      &tPage4::m_fileNameLineEdit,
      [](const CCANopen& dictionary) { return dictionary.getFileName(); } },
    { { "file version line edit", "File version:", "File version", "File version of the object dictionary." },
      &tPage4::m_fileVersionLineEdit,
      [](const CCANopen& dictionary) { return dictionary.getRevision(); } },
    { { "EDS version line edit", "EDS version:", "EDS version", "EDS version of the object dictionary." },
      &tPage4::m_EDSVersionLineEdit,
      [](const CCANopen& dictionary) {
          // Kept: "3.0" without device information, although such a sheet states no version.
          return dictionary.m_deviceInfo != nullptr ? dictionary.m_deviceInfo->getEDSVersion() : QStringLiteral("3.0");
      } },
    { { "author line edit", "Author:", "Author", "Author of the object dictionary." },
      &tPage4::m_authorLineEdit,
      [](const CCANopen& dictionary) { return dictionary.getAuthor(); } },
    { { "company line edit", "Company:", "Company", "TBD" }, // sic
      &tPage4::m_companyLineEdit,
      [](const CCANopen& dictionary) { return dictionary.getCompany(); } },
    { { "date line edit", "Date:", "Date & time", "Shows date and time of the object dictionary." },
      &tPage4::m_dateLineEdit,
      [](const CCANopen& dictionary) { return dictionary.getDate() + QLatin1Char(' ') + dictionary.getTime(); } },
    { { "file description line edit", "Description:", "Brief description", "Description of the device." },
      &tPage4::m_descriptionLineEdit,
      [](const CCANopen& dictionary) {
          return dictionary.m_deviceInfo != nullptr ? dictionary.m_deviceInfo->getDescription() : QString();
      } },
};

// Creates the fields of a table from top to bottom, each after its label when it has one.
template <typename Page, typename Source, std::size_t N>
void createFields(QGridLayout* grid, Page& page, const tRow<Page, Source> (&table)[N])
{
    for (const tRow<Page, Source>& row : table) {
        auto* field = new CTextField(grid->parentWidget());
        field->setReadOnly(true);
        field->setMaxLength(fieldRow::longestText);
        fieldRow::describe(field, row.texts);
        page.*row.field = field;

        const int line = grid->rowCount();
        const bool labelled = *row.texts.label != '\0';
        if (labelled)
            grid->addWidget(fieldRow::createLabel(field, row.texts), line, 0);
        grid->addWidget(field, line, labelled ? 1 : 0, 1, labelled ? 1 : 2);
    }
    grid->setRowStretch(grid->rowCount(), 1);
}

// Shows what `source` says in each field of a table; without a source the fields are empty.
template <typename Page, typename Source, std::size_t N>
void fillFields(const Page& page, const tRow<Page, Source> (&table)[N], const Source* source)
{
    for (const tRow<Page, Source>& row : table) {
        (page.*row.field)->setText(source != nullptr ? row.shown(*source) : QString());
        (page.*row.field)->setCursorPosition(0); // a long text shows its beginning
    }
}

} // namespace

CDeviceInfoDialog::CDeviceInfoDialog(QWidget* parent, const char* name) : QDialog(parent)
{
    setObjectName(QString::fromUtf8(name));

    m_tabWidget = new QTabWidget(this);
    m_tabWidget->setObjectName(QStringLiteral("device info tab widget"));
    m_tabWidget->tabBar()->setAccessibleName(QStringLiteral("Pages"));
    createFields(createPage("device info page 1", "Device Info (1)"), m_page1, page1);
    QGridLayout* baudrates = createPage("device info page 2", "DeviceInfo (2)"); // sic
    auto* baudrateLabel = new QLabel(QStringLiteral("Baud rate:"), baudrates->parentWidget());
    baudrateLabel->setObjectName(QStringLiteral("baud rate text label"));
    baudrateLabel->setWhatsThis(QLatin1String(baudrateHelp));
    baudrates->addWidget(baudrateLabel, 0, 0, 1, 2);
    createFields(baudrates, m_page2, page2);
    createFields(createPage("device info page 3", "DeviceInfo (3)"), m_page3, page3); // sic
    createFields(createPage("file info page", "File Info"), m_page4, page4);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("ok push button"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabWidget);
    layout->addWidget(buttons);
    messageBox::removeButtonIcons(this);
    m_tabWidget->setFocus(); // the arrow keys turn the pages
    resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 72, 0)).boundedTo(screenRoom::largest(this)));
}

QGridLayout* CDeviceInfoDialog::createPage(const char* name, const char* label)
{
    auto* page = new QWidget(m_tabWidget);
    page->setObjectName(QLatin1String(name));
    m_tabWidget->addTab(page, QLatin1String(label));
    auto* grid = new QGridLayout(page);
    grid->setColumnStretch(1, 1);
    return grid;
}

bool CDeviceInfoDialog::populate(const CCANopen* dictionary)
{
    assertion(dictionary != nullptr, "dictionary", "DeviceInfoDialog", __LINE__);
    const tInfo* info = dictionary != nullptr ? dictionary->m_deviceInfo : nullptr;
    fillFields(m_page1, page1, info);
    fillFields(m_page2, page2, info);
    fillFields(m_page3, page3, info);
    fillFields(m_page4, page4, dictionary);
    setWindowTitle(dictionary != nullptr ? windowTitle::titleOf(dictionary->getFileName()) : QString());
    return info != nullptr;
}

const char* CDeviceInfoDialog::version()
{
    return identity;
}

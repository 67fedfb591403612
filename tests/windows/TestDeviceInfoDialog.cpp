// The dialog that shows the device and file information of a dictionary.
// SPDX-License-Identifier: MIT
#include "DeviceInfoDialog.h"

#include "AssertionLog.h"
#include "Patience.h"
#include "SheetFile.h"
#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QWindow>

namespace
{

struct tField {
    int page;
    const char* label;
    const char* toolTip;
    const char* whatsThis;
};

// The fields in their order, page by page. The baud rates have no labels of their own.
const tField fields[] = {
    { 0, "Vendor name:", "Vendor name", "Name of the vendor." },
    { 0, "Vendor number:", "Vendor number", "VendorId from CiA." },
    { 0, "Product name:", "Product name", "Name of the product." },
    { 0, "Product number:", "Product number", "Identification of the product." },
    { 0, "Revision number:", "Revision number", "Revision of the device." },
    { 0, "Order code:", "Oder code", "Oder code of the device." },
    { 0, "Description:", "Brief description", "Description of the device." },
    { 1, "", "Baud rate index 0", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 1", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 2", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 3", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 4", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 6", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 7", "Shows if the given baud rate is supported." },
    { 1, "", "Baud rate index 8", "Shows if the given baud rate is supported." },
    { 2, "Simple boot-up master:", "Simple boot-up master",
      "Shows if the simple boot-up master function is supported." },
    { 2, "Simple boot-up slave:", "Simple boot-up slave", "Shows if the simple boot-up master function is supported." },
    { 2, "Number of PDOs:", "Number of PDOs", "Shows the number of Receive PDOs and transmit PDOs." },
    { 2, "Granularity:", "PDO granularity", "Shows the PDO mapping granularity." },
    { 2, "Dynamic channels:", "Dynamic channels", "Shows if dynamic channels are supported." },
    { 2, "Group messaging:", "Group Messaging", "Shows if Group Messaging is supported." },
    { 2, "Layer settings (LSS):", "Layer Services and Settings", "Shows if Layer Services and Settings is supported." },
    { 3, "File name:", "File name", "File name of the object dictionary." },
    { 3, "File version:", "File version", "File version of the object dictionary." },
    { 3, "EDS version:", "EDS version", "EDS version of the object dictionary." },
    { 3, "Author:", "Author", "Author of the object dictionary." },
    { 3, "Company:", "Company", "TBD" },
    { 3, "Date:", "Date & time", "Shows date and time of the object dictionary." },
    { 3, "Description:", "Brief description", "Description of the device." },
};

// A page's line edits from top to bottom.
QList<QLineEdit*> editsOf(const CDeviceInfoDialog& dialog, int page)
{
    const auto* tabs = dialog.findChild<QTabWidget*>();
    QList<QLineEdit*> edits = tabs->widget(page)->findChildren<QLineEdit*>();
    return edits;
}

// The label that leads to a field; null when there is none.
const QLabel* labelOf(const CDeviceInfoDialog& dialog, const QLineEdit* edit)
{
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (label->buddy() == edit)
            return label;
    return nullptr;
}

QStringList textsOf(const CDeviceInfoDialog& dialog, int page)
{
    QStringList texts;
    for (const QLineEdit* edit : editsOf(dialog, page))
        texts << edit->text();
    return texts;
}

// The dictionary of a data sheet with this text.
std::unique_ptr<CCANopen> dictionaryOf(const QByteArray& text)
{
    const CSheetFile sheet(text);
    auto dictionary = std::make_unique<CCANopen>();
    CCANopenReader reader(dictionary.get(), CCANopen::typeEDS);
    if (reader.load(QFile::encodeName(sheet.name()).constData()) != 1)
        qFatal("the sheet did not load");
    dictionary->m_fileName = "sheet.eds";
    return dictionary;
}

constexpr char fullSheet[] =
    "[FileInfo]\nFileVersion=7\nEDSVersion=4.2\nDescription=A %1 test\nCreationTime=10:00AM\n"
    "CreationDate=01-02-2026\nCreatedBy=me %2\n"
    "[DeviceInfo]\nVendorName=ACME %1\nProductName=Box\nVendorNumber=0xFFFFFFFF\nProductNumber=42\n"
    "RevisionNumber=0x00010002\nOrderCode=A-1\nBaudRate_1000=1\nBaudRate_125=1\nBaudRate_100=1\n"
    "BaudRate_10=1\nSimpleBootUpMaster=1\nGranularity=8\nNrOfRXPDO=4\nNrOfTXPDO=500\n"
    "GroupMessaging=1\nLSS_Supported=1\n";

} // namespace

class TestDeviceInfoDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePagesHaveTheirTitles();
    void eachFieldHasItsLabelAndHelp_data();
    void eachFieldHasItsLabelAndHelp();
    void oneLabelStandsAboveTheBaudRates();
    void baudRatesAreNamedForAssistivePrograms();
    void theLastPageEndsWithTheDescription();
    void aFullDictionaryFillsAllPages();
    void everyFlagShowsInItsOwnField_data();
    void everyFlagShowsInItsOwnField();
    void baudRate100ShowsNowhere();
    void granularity0IsNotModifiable();
    void aRevisionShowsBothHalves_data();
    void aRevisionShowsBothHalves();
    void withoutDeviceInfoOnlyTheFilePageIsFilled();
    void aNullDictionaryIsReported();
    void aLongTextIsWholeAndShowsItsBeginning();
    void aModificationMarkInTheTitleIsShown();
    void arrowKeysTurnThePages();
    void okClosesIt();
};

void TestDeviceInfoDialog::thePagesHaveTheirTitles()
{
    CDeviceInfoDialog dialog;
    const auto* tabs = dialog.findChild<QTabWidget*>();
    QStringList titles;
    for (int page = 0; page < tabs->count(); ++page)
        titles << tabs->tabText(page);
    QCOMPARE(titles, QStringList({ "Device Info (1)", "DeviceInfo (2)", "DeviceInfo (3)", "File Info" }));
}

void TestDeviceInfoDialog::eachFieldHasItsLabelAndHelp_data()
{
    QTest::addColumn<int>("number");
    for (int n = 0; n < int(std::size(fields)); ++n)
        QTest::addRow("page %d: %s", fields[n].page + 1, fields[n].toolTip) << n;
}

void TestDeviceInfoDialog::eachFieldHasItsLabelAndHelp()
{
    CDeviceInfoDialog dialog;
    QFETCH(const int, number);
    const tField& field = fields[number];
    int place = 0;
    for (int before = 0; before < number; ++before)
        place += fields[before].page == field.page ? 1 : 0;
    const QLineEdit* edit = editsOf(dialog, field.page).value(place);
    QVERIFY(edit != nullptr);
    QCOMPARE(edit->toolTip(), QString(field.toolTip));
    QCOMPARE(edit->whatsThis(), QString(field.whatsThis));
    QVERIFY(edit->isReadOnly());
    const QLabel* label = labelOf(dialog, edit);
    QCOMPARE(label != nullptr ? label->text() : QString(), QString(field.label));
    if (label != nullptr)
        QCOMPARE(label->whatsThis(), QString(field.whatsThis));
}

void TestDeviceInfoDialog::oneLabelStandsAboveTheBaudRates()
{
    CDeviceInfoDialog dialog;
    const QList<QLabel*> labels = dialog.findChild<QTabWidget*>()->widget(1)->findChildren<QLabel*>();
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels[0]->text(), QString("Baud rate:"));
    QCOMPARE(labels[0]->whatsThis(), QString("Shows if the given baud rate is supported."));
    dialog.findChild<QTabWidget*>()->setCurrentIndex(1);
    dialog.show();
    QVERIFY(labels[0]->y() < editsOf(dialog, 1).first()->y());
}

void TestDeviceInfoDialog::baudRatesAreNamedForAssistivePrograms()
{
    CDeviceInfoDialog dialog;
    QStringList names;
    for (const QLineEdit* edit : editsOf(dialog, 1))
        names << edit->accessibleName();
    QCOMPARE(names, QStringList({ "Baud rate 1000 kbit/s", "Baud rate 800 kbit/s", "Baud rate 500 kbit/s",
                                  "Baud rate 250 kbit/s", "Baud rate 125 kbit/s", "Baud rate 50 kbit/s",
                                  "Baud rate 20 kbit/s", "Baud rate 10 kbit/s" }));
}

void TestDeviceInfoDialog::theLastPageEndsWithTheDescription()
{
    CDeviceInfoDialog dialog;
    QCOMPARE(editsOf(dialog, 0).size(), 7);
    QCOMPARE(editsOf(dialog, 1).size(), 8);
    QCOMPARE(editsOf(dialog, 2).size(), 7);
    QCOMPARE(editsOf(dialog, 3).size(), 7);
}

void TestDeviceInfoDialog::aFullDictionaryFillsAllPages()
{
    CDeviceInfoDialog dialog;
    QCOMPARE(dialog.populate(dictionaryOf(fullSheet).get()), true);
    QCOMPARE(dialog.windowTitle(), QString("sheet.eds"));
    QCOMPARE(textsOf(dialog, 0), QStringList({ "ACME %1", "4294967295", "Box", "42", "1.2", "A-1", "A %1 test" }));
    QCOMPARE(textsOf(dialog, 1),
             QStringList({ "1.0 MBit/s  is supported", "800 kBit/s  is not supported", "500 kBit/s  is not supported",
                           "250 kBit/s  is not supported", "125 kBit/s  is supported", "50 kBit/s  is not supported",
                           "20 kBit/s  is not supported", "10 kBit/s  is supported" }));
    QCOMPARE(textsOf(dialog, 2),
             QStringList({ "is supported", "is not supported", "4 RxPDO(s) and 500 TxPDO(s) supported",
                           "8 - dynamic mapping supported", "is not supported", "is supported", "is supported" }));
    QCOMPARE(textsOf(dialog, 3),
             QStringList({ "sheet.eds", "7", "4.2", "me %2", "", "01-02-2026 10:00AM", "A %1 test" }));
}

void TestDeviceInfoDialog::everyFlagShowsInItsOwnField_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("place");
    int place = 0;
    for (const char* rate : { "1000", "800", "500", "250", "125", "50", "20", "10" })
        QTest::addRow("BaudRate_%s", rate) << 1 << place++;
    QTest::newRow("SimpleBootUpMaster") << 2 << 0;
    QTest::newRow("SimpleBootUpSlave") << 2 << 1;
    QTest::newRow("DynamicChannelsSupported") << 2 << 4;
    QTest::newRow("GroupMessaging") << 2 << 5;
    QTest::newRow("LSS_Supported") << 2 << 6;
}

void TestDeviceInfoDialog::everyFlagShowsInItsOwnField()
{
    CDeviceInfoDialog dialog, without;
    QFETCH(const int, page);
    QFETCH(const int, place);
    QVERIFY(without.populate(dictionaryOf("[DeviceInfo]\nVendorName=x\n").get()));
    QVERIFY(dialog.populate(dictionaryOf("[DeviceInfo]\n" + QByteArray(QTest::currentDataTag()) + "=1\n").get()));
    QStringList expected = textsOf(without, page);
    QVERIFY(expected[place].endsWith("is not supported"));
    expected[place].replace("is not", "is");
    QCOMPARE(textsOf(dialog, page), expected);
    QCOMPARE(textsOf(dialog, 3 - page), textsOf(without, 3 - page)); // the other page of flags
}

void TestDeviceInfoDialog::baudRate100ShowsNowhere()
{
    CDeviceInfoDialog dialog, without;
    QVERIFY(without.populate(dictionaryOf("[DeviceInfo]\nVendorName=x\n").get()));
    QVERIFY(dialog.populate(dictionaryOf("[DeviceInfo]\nVendorName=x\nBaudRate_100=1\n").get()));
    for (int page = 0; page < 4; ++page)
        QCOMPARE(textsOf(dialog, page), textsOf(without, page));
}

void TestDeviceInfoDialog::granularity0IsNotModifiable()
{
    CDeviceInfoDialog dialog;
    QVERIFY(dialog.populate(dictionaryOf("[DeviceInfo]\nVendorName=x\n").get()));
    QCOMPARE(textsOf(dialog, 2).value(3), QString("0 - mapping not modifiable"));
}

void TestDeviceInfoDialog::aRevisionShowsBothHalves_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("0x00010002") << QByteArray("0x00010002") << "1.2";
    QTest::newRow("0xFFFF8000") << QByteArray("0xFFFF8000") << "65535.32768";
    QTest::newRow("0") << QByteArray("0") << "0.0";
}

void TestDeviceInfoDialog::aRevisionShowsBothHalves()
{
    CDeviceInfoDialog dialog;
    QFETCH(const QByteArray, number);
    QVERIFY(dialog.populate(dictionaryOf("[DeviceInfo]\nRevisionNumber=" + number + "\n").get()));
    QTEST(textsOf(dialog, 0).value(4), "text");
}

void TestDeviceInfoDialog::withoutDeviceInfoOnlyTheFilePageIsFilled()
{
    CDeviceInfoDialog dialog;
    QCOMPARE(dialog.populate(dictionaryOf("[FileInfo]\nCreatedBy=me\nDescription=lost\n").get()), false);
    for (int page = 0; page < 3; ++page)
        QCOMPARE(textsOf(dialog, page).join(""), QString());
    QCOMPARE(textsOf(dialog, 3), QStringList({ "sheet.eds", "1.0", "3.0", "me", "", " ", "" }));
    QCOMPARE(dialog.windowTitle(), QString("sheet.eds"));
}

void TestDeviceInfoDialog::aNullDictionaryIsReported()
{
    CDeviceInfoDialog dialog;
    const CAssertionLog log;
    QCOMPARE(dialog.populate(nullptr), false);
    QCOMPARE(log.texts(), QStringList("ASSERT: \"dictionary\" in DeviceInfoDialog"));
    QVERIFY(log.lines().value(0) > 0);
}

void TestDeviceInfoDialog::aLongTextIsWholeAndShowsItsBeginning()
{
    CDeviceInfoDialog dialog;
    const QByteArray text(60000, 'x');
    QVERIFY(dialog.populate(dictionaryOf("[DeviceInfo]\nVendorName=" + text + "\n").get()));
    QLineEdit* edit = editsOf(dialog, 0).first();
    QCOMPARE(edit->text(), QString(text));
    QCOMPARE(edit->cursorPosition(), 0);
}

void TestDeviceInfoDialog::aModificationMarkInTheTitleIsShown()
{
    CDeviceInfoDialog dialog;
    const std::unique_ptr<CCANopen> dictionary = dictionaryOf("[DeviceInfo]\nVendorName=x\n");
    dictionary->m_fileName = "a[*].eds";
    QVERIFY(dialog.populate(dictionary.get()));
    dialog.show();
    QVERIFY(dialog.windowHandle()->title().startsWith("a[*].eds"));
}

void TestDeviceInfoDialog::arrowKeysTurnThePages()
{
    CDeviceInfoDialog dialog;
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog, patience));
    const auto* tabs = dialog.findChild<QTabWidget*>();
    for (const int page : { 1, 2, 3 }) {
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Right);
        QCOMPARE(tabs->currentIndex(), page);
    }
}

void TestDeviceInfoDialog::okClosesIt()
{
    CDeviceInfoDialog dialog;
    dialog.show();
    QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons.first()->text().remove('&'), QString("OK"));
    QTest::mouseClick(buttons.first(), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

QTEST_MAIN(TestDeviceInfoDialog)
#include "TestDeviceInfoDialog.moc"

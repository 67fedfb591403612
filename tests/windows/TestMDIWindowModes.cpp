// The display modes of a document: their buttons, what is stored, and what windows share.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"
#include "Patience.h"

#include "BoxCatcher.h"
#include "TempSettings.h"

#include <QTemporaryFile>

using TEntry = CCANopenObjectEntry;

class TestMDIWindowModes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_settings = std::make_unique<CTempSettings>(); }

    void theStoredModeIsSwitchedOn_data();
    void theStoredModeIsSwitchedOn();
    void choosingAModeStoresIt_data();
    void choosingAModeStoresIt();
    void everySlotSwitchesItsButtonOn();
    void arrowKeysChangeTheMode();
    void choosingAModeReformatsNothing();
    void everyWindowKeepsItsOwnMode();
    void settingsThatCannotBeWrittenAreNoObstacle();

private:
    std::unique_ptr<CTempSettings> m_settings;
};

void TestMDIWindowModes::theStoredModeIsSwitchedOn_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("modes");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nothing") << QVariant() << "hex"
                             << "0x0A";
    QTest::newRow("0") << QVariant(0) << "hex"
                       << "0x0A";
    QTest::newRow("1") << QVariant(1) << "dec"
                       << "10";
    QTest::newRow("2") << QVariant(2) << "oct"
                       << "012";
    QTest::newRow("\"2\"") << QVariant("2") << "oct"
                           << "012";
    for (const int foreign : { 3, 7, -1, 256, 257, 2147483647 })
        QTest::addRow("%d", foreign) << QVariant(foreign) << ""
                                     << "0x0A";
    for (const char* foreign : { "decimal", "", "1.5" })
        QTest::addRow("\"%s\"", foreign) << QVariant(foreign) << "hex"
                                         << "0x0A";
    QTest::newRow("list") << QVariant(QStringList{ "1", "2" }) << "hex"
                          << "0x0A";
}

void TestMDIWindowModes::theStoredModeIsSwitchedOn()
{
    QFETCH(const QVariant, stored);
    if (stored.isValid())
        m_settings->setValue("Settings/Display", stored);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    QTEST(document.modes(), "modes");
    document.gateway.answerWith([](auto&) { return "[#] 10\r\n"; });
    document.press("2000: Value");
    QTEST(document.value(), "shown");
    QTEST(document.modes(), "modes");
    QCOMPARE(m_settings->value("Settings/Display"), stored.toString()); // only choosing a mode stores one
}

void TestMDIWindowModes::choosingAModeStoresIt_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("stored");
    for (const int before : { 0, 1, 2, 7 }) {
        QTest::addRow("hex after %d", before) << QVariant(before) << "hex"
                                              << "0";
        QTest::addRow("dec after %d", before) << QVariant(before) << "dec"
                                              << "1";
        QTest::addRow("oct after %d", before) << QVariant(before) << "oct"
                                              << "2";
    }
}

void TestMDIWindowModes::choosingAModeStoresIt()
{
    QFETCH(const QVariant, before);
    QFETCH(const QString, mode);
    m_settings->setValue("Settings/Display", before);
    CNewDocument document;
    document.choose(mode);
    QCOMPARE(document.modes(), mode);
    QTEST(m_settings->value("Settings/Display"), "stored");
    document.choose(mode); // choosing it again changes nothing
    QCOMPARE(document.modes(), mode);
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(CNewDocument().modes(), mode);
}

void TestMDIWindowModes::everySlotSwitchesItsButtonOn()
{
    const CNewDocument document;
    const std::pair<void (CMDIWindow::*)(), const char*> rows[] = { { &CMDIWindow::buttonOctClicked, "oct" },
                                                                    { &CMDIWindow::buttonDecClicked, "dec" },
                                                                    { &CMDIWindow::buttonHexClicked, "hex" } };
    for (const auto& [slot, mode] : rows) {
        (document.window->*slot)();
        QCOMPARE(document.modes(), QString(mode));
    }
}

void TestMDIWindowModes::arrowKeysChangeTheMode()
{
    CNewDocument document;
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    document.mode("hex")->setFocus();
    QTest::keyClick(document.mode("hex"), Qt::Key_Right);
    QCOMPARE(document.modes(), QString("dec"));
    QCOMPARE(m_settings->value("Settings/Display"), QString("1"));
    QTest::keyClick(document.mode("dec"), Qt::Key_Right);
    QCOMPARE(document.modes(), QString("oct"));
    QCOMPARE(m_settings->value("Settings/Display"), QString("2"));
}

void TestMDIWindowModes::choosingAModeReformatsNothing()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 10\r\n");
    document.press("2000: Value");
    document.type("0x11");
    for (const char* mode : { "dec", "oct", "hex" }) {
        document.choose(mode);
        QCOMPARE(document.value(), QString("0x0A"));
        QCOMPARE(document.newValue()->text(), QString("0x11"));
    }
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowModes::everyWindowKeepsItsOwnMode()
{
    COnlineDocument first(sheetOf(0x2000, TEntry::typeUnsigned8));
    first.choose("dec");
    CNewDocument second; // takes over what was stored last
    QVERIFY(second.open(sheetOf(0x2000, TEntry::typeUnsigned8), &first.access, 6));
    QCOMPARE(second.modes(), QString("dec"));
    second.choose("oct");
    QCOMPARE(first.modes(), QString("dec"));
    first.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 10\r\n");
    first.gateway.expect("[#] 6 read 0x2000 0x0 u8\r\n", "[#] 10\r\n");
    first.press("2000: Value");
    second.press("2000: Value");
    QCOMPARE(first.value(), QString("10"));
    QCOMPARE(second.value(), QString("012"));
    QCOMPARE(m_settings->value("Settings/Display"), QString("2"));
    first.choose("dec"); // its own mode, but not the one that is stored
    QCOMPARE(m_settings->value("Settings/Display"), QString("1"));
    QCOMPARE(second.modes(), QString("oct"));
    QVERIFY2(first.gateway.finished(), qPrintable(first.difference()));
}

void TestMDIWindowModes::settingsThatCannotBeWrittenAreNoObstacle()
{
    QTemporaryFile obstacle; // a file in place of the settings' folder
    QVERIFY(obstacle.open());
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(obstacle.fileName()));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, obstacle.fileName());
    const CBoxCatcher boxes;
    CNewDocument document;
    document.choose("dec");
    QCOMPARE(document.modes(), QString("dec"));
    QCOMPARE(boxes.count(), 0);
}

QTEST_MAIN(TestMDIWindowModes)
#include "TestMDIWindowModes.moc"

// What the main frame shows as the properties of the interface.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeBus.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "TempSettings.h"

#include "CANopenAccess.h"
#include "base/Product.h"
#include "cop/cop_api.h"

#include <QTest>

#include <optional>

namespace
{

const QString propertiesTitle = "Velmora - Interface Properties";

} // namespace

class TestMainFrameProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void propertiesWithoutInterface();
    void propertiesShowTheTextsOfTheGateway_data();
    void propertiesShowTheTextsOfTheGateway();
    void propertiesShowTheInterfaceOfTheMaster_data();
    void propertiesShowTheInterfaceOfTheMaster();
    void propertiesThatFail_data();
    void propertiesThatFail();

private:
    static QString loopback(const CFakeGateway& gateway) { return "127.0.0.1:" + QString::number(gateway.port()); }

    std::optional<CTempSettings> m_store;
};

void TestMainFrameProperties::propertiesWithoutInterface()
{
    const CBoxCatcher catcher;
    CFrameDriver driver;
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().title, propertiesTitle);
    QCOMPARE(catcher.only().text, QString("Interface not initialized.\n\nProbably no board present."));
    QCOMPARE(catcher.only().icon, QMessageBox::Warning);
}

void TestMainFrameProperties::propertiesShowTheTextsOfTheGateway_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");
    const QByteArray hundred(100, 'x');
    QTest::newRow("a word") << QByteArray("Gateway/1.0") << "Gateway/1.0";
    QTest::newRow("only the first word") << QByteArray("Gateway 1") << "Gateway";
    QTest::newRow("quoted") << QByteArray("\"Gateway \"\"A\"\" 1\"") << "Gateway \"A\" 1";
    QTest::newRow("nothing") << QByteArray() << "";
    QTest::newRow("empty") << QByteArray("\"\"") << "";
    QTest::newRow("markup") << QByteArray("\"<b>1</b>&amp;\"") << "<b>1</b>&amp;";
    QTest::newRow("place holders") << QByteArray("\"%1 %2 %4 %n\"") << "%1 %2 %4 %n";
    QTest::newRow("99 characters") << hundred.first(99) << QString(99, 'x');
    QTest::newRow("100 characters") << hundred << QString(99, 'x');
    QTest::newRow("500 characters") << '"' + hundred.repeated(5) + '"' << QString(99, 'x');
}

void TestMainFrameProperties::propertiesShowTheTextsOfTheGateway()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QString, text);
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] info hardware\r\n", "[#] " + answer.toStdString() + "\r\n");
    gateway.expect("[#] info software\r\n", "[#] " + answer.toStdString() + "\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.choose("&Interface", "&Properties...");
    QVERIFY2(gateway.finished(), gateway.problem().c_str());

    char copyright[101] = {};
    QVERIFY(CCANopenAccess().getCopyright(copyright, 100));
    QCOMPARE(catcher.only().title, propertiesTitle);
    QCOMPARE(catcher.only().text, "Hardware: " + text + "\nFirmware: " + text + "\nSoftware: " + top_version() +
                                      "\nCopyright " + copyright + "\n");
    QCOMPARE(catcher.only().icon, QMessageBox::Information);
    QCOMPARE(catcher.only().format, Qt::PlainText);
}

void TestMainFrameProperties::propertiesShowTheInterfaceOfTheMaster_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "can0", "K\xC3\xB6ln0", "\xE2\x82\xAC-\xC3\x9F" })
        QTest::newRow(name) << QString::fromUtf8(name);
}

void TestMainFrameProperties::propertiesShowTheInterfaceOfTheMaster()
{
    QFETCH(const QString, name);
    const CBoxCatcher catcher;
    CFakeBus bus;
    bus.interfaces = { { name.toStdString(), 7 } };
    CFrameDriver driver;
    driver.initialize(name);
    driver.choose("&Interface", "&Properties...");
    QCOMPARE(catcher.only().title, propertiesTitle);
    QCOMPARE(catcher.only().text,
             QString("Hardware: interface=\"%1\", family=29, type=3, protocol=1\nFirmware: %2\nSoftware: %3\n"
                     "Copyright %4\n")
                 .arg(name, cop_software(), cop_version(), product::copyright));
    QCOMPARE(catcher.only().icon, QMessageBox::Information);
    QCOMPARE(catcher.only().format, Qt::PlainText);
    QVERIFY(!catcher.only().waitCursor);
    QCOMPARE(bus.written(), QStringList());
    QVERIFY(bus.finished());
}

void TestMainFrameProperties::propertiesThatFail_data()
{
    QTest::addColumn<QList<QByteArray>>("answers"); // to the hardware and to the software
    QTest::newRow("hardware") << QList<QByteArray>{ "ERROR: 103" };
    QTest::newRow("software") << QList<QByteArray>{ "Gateway", "ERROR: 103" };
    QTest::newRow("abort") << QList<QByteArray>{ "Error: 0x06020000" };
}

void TestMainFrameProperties::propertiesThatFail()
{
    QFETCH(const QList<QByteArray>, answers);
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    const char* commands[] = { "[#] info hardware\r\n", "[#] info software\r\n" };
    for (int number = 0; number < answers.size(); ++number)
        gateway.expect(commands[number], "[#]" + (" " + answers[number]).toStdString() + "\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.choose("&Interface", "&Properties...");
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
    QCOMPARE(catcher.only().title, propertiesTitle);
    QCOMPARE(catcher.only().text, QString("Error ?: Properties could not be retrieved!"));
    QCOMPARE(catcher.only().icon, QMessageBox::Critical);
}

QTEST_MAIN(TestMainFrameProperties)
#include "TestMainFrameProperties.moc"

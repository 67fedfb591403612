// Which texts name an interface on the command line.
// SPDX-License-Identifier: MIT
#include "network/InterfaceName.h"

#include "access/InterfaceText.h"

#include <QTest>

class TestInterfaceName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void interfacesAreThoseOfTheWindow_data();
    void interfacesAreThoseOfTheWindow();
    void otherTextsAreNone_data();
    void otherTextsAreNone();
};

void TestInterfaceName::interfacesAreThoseOfTheWindow_data()
{
    QTest::addColumn<int>("library");
    QTest::addColumn<int>("port");
    for (const char* text : { "can0", "vcan0", "slcan-test", "can0.1", "exactly-15-char" })
        QTest::newRow(text) << int(librarySocketCAN) << 60000;
    QTest::newRow("localhost:1") << int(libraryGateway) << 1;
    QTest::newRow("localhost:65535") << int(libraryGateway) << 65535;
    QTest::newRow("192.168.1.10:5000") << int(libraryGateway) << 5000;
    QTest::newRow("0.0.0.0:5000") << int(libraryGateway) << 5000;
    QTest::newRow("255.255.255.255:0x10") << int(libraryGateway) << 16;
    QTest::newRow("127.0.0.01:010") << int(libraryGateway) << 8;
}

void TestInterfaceName::interfacesAreThoseOfTheWindow()
{
    const char* text = QTest::currentDataTag();
    QVERIFY(isInterfaceName(text));
    const tInterface interface = classifyInterface(text);
    QTEST(int{ interface.library }, "library");
    QTEST(int{ interface.top.port }, "port");
}

void TestInterfaceName::otherTextsAreNone_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : { "",
                              " ",
                              "can 0",
                              "can/0",
                              "can0\n",
                              "more-than-15-char",
                              "localhost",
                              "127.0.0.1",
                              "localhost:",
                              ":60000",
                              "localhost:abc",
                              "localhost:60000x",
                              "localhost:0",
                              "localhost:65536",
                              "localhost:-1",
                              "localhost:08",
                              "localhost:1:2",
                              "gateway.local:60000",
                              "Localhost:60000",
                              "can0:1",
                              "127.0.0:60000",
                              "127.0.0.256:60000",
                              "1.2.3.4.5:60000",
                              "127.0.0.-1:60000",
                              "127..0.1:60000",
                              "127.0.0 .1:60000",
                              "127.0.0.1 :60000",
                              " 127.0.0.1:60000",
                              "localhost:60000 ",
                              "localhost:+082",
                              "localhost:+60000",
                              "127.0.-0.1:60000",
                              "[::1]:60000" })
        QTest::addRow("\"%s\"", text) << QString(text);
}

void TestInterfaceName::otherTextsAreNone()
{
    QFETCH(QString, text);
    QVERIFY(!isInterfaceName(text));
}

QTEST_APPLESS_MAIN(TestInterfaceName)
#include "TestInterfaceName.moc"

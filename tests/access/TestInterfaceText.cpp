// Which library an interface text selects, and with which parameters.
// SPDX-License-Identifier: MIT
#include "access/InterfaceText.h"

#include <QTest>

class TestInterfaceText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gatewayTexts_data();
    void gatewayTexts();
    void socketCANTexts_data();
    void socketCANTexts();
    void nullLeavesTheDefaults();
    void recordIsThatOfTheLibrary();
};

void TestInterfaceText::gatewayTexts_data()
{
    QTest::addColumn<unsigned long>("address");
    QTest::addColumn<int>("port");

    struct tRow {
        const char* text;
        unsigned long address;
        int port;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "192.168.1.10:5000", 0xC0A8010A, 5000 },
             { "127.0.0.1:60000", 0x7F000001, 60000 },
             { "0.0.0.0:0", 0, 0 },
             { "255.255.255.255:65535", 0xFFFFFFFF, 65535 },
             { "localhost:4000", 0x7F000001, 4000 },
             { "localhost:0", 0x7F000001, 0 },
             // Ports are cut to 16 bits.
             { "1.2.3.4:65536", 0x01020304, 0 },
             { "1.2.3.4:70000", 0x01020304, 4464 },
             { "1.2.3.4:-1", 0x01020304, 65535 },
             { "localhost:65537", 0x7F000001, 1 },
             { "localhost:-2", 0x7F000001, 65534 },
             { "localhost:131071", 0x7F000001, 65535 },
             // Parts above 255 carry into the part before; the address is cut to 32 bits.
             { "256.0.0.1:1", 0x00000001, 1 },
             { "1.2.3.400:80", 0x01020490, 80 },
             { "1.2.300.4:80", 0x01032C04, 80 },
             { "0.256.0.0:80", 0x01000000, 80 },
             { "0.0.0.4294967297:80", 0x00000001, 80 },
             { "-1.0.0.0:1", 0xFF000000, 1 },
             { "0.0.0.-1:1", 0xFFFFFFFF, 1 },
             { "1.-1.0.0:1", 0x00FF0000, 1 },
             // Hexadecimal, octal, signs.
             { "0x7F.0x0.0X0.0x1:0xEA60", 0x7F000001, 60000 },
             { "010.0.0.017:0100", 0x0800000F, 64 },
             { "+10.+0.+0.+1:+80", 0x0A000001, 80 },
             { "localhost:0x1F40", 0x7F000001, 8000 },
             { "localhost:017", 0x7F000001, 15 },
             { "localhost:08", 0x7F000001, 0 }, // an octal 0, followed by an 8
             // Anything may follow the port.
             { "1.2.3.4:5000abc", 0x01020304, 5000 },
             { "1.2.3.4:5000 ", 0x01020304, 5000 },
             { "1.2.3.4:5:6", 0x01020304, 5 },
             { "localhost:4000/path", 0x7F000001, 4000 },
             { "localhost:4000.5", 0x7F000001, 4000 },
             // Blanks may stand before a number.
             { " 1.2.3.4:80", 0x01020304, 80 },
             { "1. 2. 3. 4: 80", 0x01020304, 80 },
             { "\t1.2.3.4:\t80", 0x01020304, 80 },
             { "localhost: 80", 0x7F000001, 80 },
             // Numbers beyond 64 bits are limited to the range of long.
             { "1.2.3.4:99999999999999999999", 0x01020304, 65535 },
             { "1.2.3.4:-99999999999999999999", 0x01020304, 0 },
             { "0.0.0.99999999999999999999:1", 0xFFFFFFFF, 1 },
             { "99999999999999999999.0.0.0:1", 0xFF000000, 1 },
             { "-99999999999999999999.0.0.0:1", 0, 1 },
             { "localhost:99999999999999999999", 0x7F000001, 65535 },
         })
        QTest::newRow(row.text) << row.address << row.port;
}

void TestInterfaceText::gatewayTexts()
{
    const tInterface interface = classifyInterface(QTest::currentDataTag());
    QCOMPARE(interface.library, short(700));
    QFETCH(const unsigned long, address);
    QCOMPARE(static_cast<unsigned long>(interface.top.addr), address);
    QTEST(int(interface.top.port), "port");
    QCOMPARE(interface.top.settings.net, BYTE(1));
    QCOMPARE(interface.top.settings.node, BYTE(1));
    QCOMPARE(interface.top.settings.master, BYTE(255));
}

void TestInterfaceText::socketCANTexts_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : { "can0",
                              "vcan1",
                              "nul",
                              "10.0.0.1",
                              "10.0.0.1:",
                              "10.0.0.1:x",
                              "10.0.0:5000",
                              "10.0.0.1.5000",
                              "10.0.0.1 :5000",
                              "10 .0.0.1:5000",
                              "a.b.c.d:5000",
                              ".0.0.1:5000",
                              "10..0.1:5000",
                              "::1",
                              "localhost",
                              "localhost:",
                              "localhost:x",
                              "localhost :5000",
                              " localhost:5000",
                              "Localhost:5000",
                              "LOCALHOST:5000",
                              "local:5000",
                              "my-localhost:5000",
                              "gateway:5000",
                              "5000",
                              "",
                              " ",
                              "can<b>0</b>",
                              "%1 %s %n",
                              "k\xC3\xB6ln0",
                              "a network interface whose name is longer than any system would have it" })
        QTest::newRow(*text != '\0' ? text : "(empty)") << QByteArray(text);
}

void TestInterfaceText::socketCANTexts()
{
    QFETCH(const QByteArray, text);
    const tInterface interface = classifyInterface(text.constData());
    QCOMPARE(interface.library, short(0));
    QCOMPARE(QByteArray(interface.can.ifname), text);
    QCOMPARE(interface.can.family, 29);
    QCOMPARE(interface.can.type, 3);
    QCOMPARE(interface.can.protocol, 1);
}

void TestInterfaceText::nullLeavesTheDefaults()
{
    const tInterface interface = classifyInterface(nullptr);
    QCOMPARE(interface.library, short(-1));
    QCOMPARE(QByteArray(interface.can.ifname), QByteArray("nul"));
    QCOMPARE(interface.can.family, 29);
    QCOMPARE(interface.can.type, 3);
    QCOMPARE(interface.can.protocol, 1);
    QCOMPARE(static_cast<unsigned long>(interface.top.addr), 0x7F000001UL);
    QCOMPARE(int(interface.top.port), 60000);
}

void TestInterfaceText::recordIsThatOfTheLibrary()
{
    tInterface gateway = classifyInterface("localhost:4000");
    QCOMPARE(gateway.record(), static_cast<void*>(&gateway.top));
    tInterface can = classifyInterface("can0");
    QCOMPARE(can.record(), static_cast<void*>(&can.can));
    tInterface none = classifyInterface(nullptr);
    QCOMPARE(none.record(), static_cast<void*>(&none.can));
}

QTEST_GUILESS_MAIN(TestInterfaceText)
#include "TestInterfaceText.moc"

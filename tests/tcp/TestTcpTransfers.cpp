// Tests of the numbers and data that commands carry, and of the values that their answers bring.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"

#include <QtTest>

namespace
{

const BYTE* bytes(const QByteArray& data)
{
    return reinterpret_cast<const BYTE*>(data.constData());
}

/// `length` bytes of all values, without a zero among the first.
QByteArray sampleData(int length)
{
    QByteArray data;
    for (int place = 0; place < length; ++place)
        data += static_cast<char>(place * 7 + 201);
    return data;
}

const struct tNumberedCommand {
    const char* line;
    int32_t (*run)();
} numberedCommands[] = {
    { "[#] 0 write 0x0 0x0 u8 0x0\r\n", [] { return top_write_8bit(0, 0, 0, 0); } },
    { "[#] 255 write 0xFFFF 0xFF u8 0xFF\r\n", [] { return top_write_8bit(255, 0xFFFF, 255, 255); } },
    { "[#] 127 write 0xABC 0xA u8 0xA\r\n", [] { return top_write_8bit(127, 0xABC, 10, 10); } },
    { "[#] 1 write 0x2000 0x1 u16 0x0\r\n", [] { return top_write_16bit(1, 0x2000, 1, 0); } },
    { "[#] 1 write 0x2000 0x1 u16 0xFFFF\r\n", [] { return top_write_16bit(1, 0x2000, 1, 0xFFFF); } },
    { "[#] 1 write 0x2000 0x1 u32 0x0\r\n", [] { return top_write_32bit(1, 0x2000, 1, 0); } },
    { "[#] 1 write 0x2000 0x1 u32 0xFFFFFFFF\r\n", [] { return top_write_32bit(1, 0x2000, 1, 0xFFFFFFFF); } },
    { "[#] 1 write 0x2000 0x1 u32 0x80000000\r\n", [] { return top_write_32bit(1, 0x2000, 1, 0x80000000); } },
    { "[#] 255 start\r\n", [] { return top_start_remote_node(255); } },
    { "[#] 0 stop\r\n", [] { return top_stop_remote_node(0); } },
    { "[#] 127 preoperational\r\n", [] { return top_enter_preoperational(127); } },
    { "[#] 128 reset node\r\n", [] { return top_reset_node(128); } },
    { "[#] 1 reset communication\r\n", [] { return top_reset_communication(1); } },
};

} // namespace

class TestTcpTransfers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersInTheLine_data();
    void numbersInTheLine();
    void typedValuesAreRead_data();
    void typedValuesAreRead();
    void domainWriteOfNoBytesEndsWithABlank();
    void domainWriteOfFourBytesIsPadded();
    void domainWriteOfEveryLengthIsCutAtTheLine();
    void domainWriteOfAllThatALengthCanSay();
    void domainWriteLooksAtTheByteBehindAGroupOfTwo();
    void domainWriteWithoutDataIsRefused();
    void domainReadFillsTheBuffer();
    void infoFillsTheBuffer();
    void receivesAMessage();
    void transmitPutsTheDataOnALineOfTheirOwn_data();
    void transmitPutsTheDataOnALineOfTheirOwn();
    void transmitOfTooManyBytesStaysInTheLine();
    void transmitWithoutDataIsRefusedBeforeANumberIsTaken();
};

void TestTcpTransfers::numbersInTheLine_data()
{
    QTest::addColumn<int>("place");
    for (const tNumberedCommand& command : numberedCommands)
        QTest::newRow(command.line) << static_cast<int>(&command - numberedCommands);
}

void TestTcpTransfers::numbersInTheLine()
{
    QFETCH(int, place);
    CGatewaySession gateway;
    gateway.expect(QTest::currentDataTag(), "[#] OK\r\n");
    QCOMPARE(numberedCommands[place].run(), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::typedValuesAreRead_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<uint>("value");
    QTest::addColumn<int>("result");
    const struct {
        const char* answer;
        int width;
        uint value;
        int result;
    } rows[] = {
        { "0x1F", 8, 31, 0 },
        { "255", 8, 255, 0 },
        { "256", 8, 0, -70 },
        { "0377", 8, 255, 0 },
        { "-1", 8, 77, -70 },
        { "0xFFFF", 16, 65535, 0 },
        { "65536", 16, 0, -70 },
        { "0xFFFFFFFF", 32, 0xFFFFFFFF, 0 },
        { "4294967295", 32, 0xFFFFFFFF, 0 },
        { "4294967296", 32, 0, -70 },
    };
    for (const auto& row : rows)
        QTest::newRow(row.answer) << row.width << row.value << row.result;
}

void TestTcpTransfers::typedValuesAreRead()
{
    QFETCH(int, width);
    QFETCH(uint, value);
    QFETCH(int, result);
    CGatewaySession gateway;
    gateway.expect("[#] 5 read 0x6000 0x1 u" + std::to_string(width) + "\r\n",
                   std::string("[#] ") + QTest::currentDataTag() + "\r\n");
    uint8_t byte = 77;
    uint16_t word = 77;
    uint32_t longWord = 77;
    if (width == 8)
        QCOMPARE(top_read_8bit(5, 0x6000, 1, &byte), result);
    else if (width == 16)
        QCOMPARE(top_read_16bit(5, 0x6000, 1, &word), result);
    else
        QCOMPARE(top_read_32bit(5, 0x6000, 1, &longWord), result);
    QCOMPARE(width == 8 ? byte : width == 16 ? word : longWord, value);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteOfNoBytesEndsWithABlank()
{
    CGatewaySession gateway;
    const BYTE none[] = { 0xFF, 0xFF };
    for (const short length : { short(0), short(-1), short(-32768) }) {
        gateway.expect("[#] 5 write 0x1017 0x0 d \r\n", "[#] OK\r\n");
        QCOMPARE(top_write(5, 0x1017, 0, length, none), 0);
    }
    gateway.expect("[#] 5 write 0x1017 0x0 d \r\n", "[#] OK\r\n");
    QCOMPARE(top_write(5, 0x1017, 0, 0, nullptr), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteOfFourBytesIsPadded()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 write 0x1017 0x0 d QUJDRA==\r\n", "[#] OK\r\n");
    QCOMPARE(top_write(5, 0x1017, 0, 4, bytes("ABCD")), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteOfEveryLengthIsCutAtTheLine()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
    long number = gateway.lastNumber();
    for (int length = 0; length <= 800; ++length) {
        const QByteArray data = sampleData(length);
        // Object numbers of different widths: the line ends at each place within a group.
        const auto index = static_cast<WORD>(0xF << (length % 4 * 4));
        const QByteArray start = "[" + QByteArray::number(static_cast<qlonglong>(++number)) + "] 5 write 0x" +
                                 QByteArray::number(index, 16).toUpper() + " 0x0 d ";
        const QByteArray line = (start + data.toBase64() + "\r\n").left(1023);
        gateway.expect(line.toStdString(), "[#] OK\r\n");
        const int32_t result = top_write(5, index, 0, static_cast<short>(length), bytes(data + '\0'));
        QVERIFY2(result == 0, gateway.problem().c_str());
    }
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteOfAllThatALengthCanSay()
{
    CGatewaySession gateway;
    const QByteArray data = sampleData(32767);
    const std::string start = "[#] 5 write 0x1017 0x0 d ";
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
    QCOMPARE(top_start_remote_node(5), 0);
    const std::string filled = gatewayText::numbered(start, gateway.lastNumber() + 1);
    gateway.answerWith(nullptr);
    gateway.expect((filled + data.toBase64().toStdString()).substr(0, 1023), "[#] OK\r\n");
    QCOMPARE(top_write(5, 0x1017, 0, 32767, bytes(data + '\0')), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteLooksAtTheByteBehindAGroupOfTwo()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 write 0x1017 0x0 d QUI=\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 write 0x1017 0x0 d QUL=\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 write 0x1017 0x0 d QUJDRA==\r\n", "[#] OK\r\n");
    QCOMPARE(top_write(5, 0x1017, 0, 2, bytes(QByteArray("AB\0", 3))), 0);
    QCOMPARE(top_write(5, 0x1017, 0, 2, bytes("AB\xFF")), 0);
    QCOMPARE(top_write(5, 0x1017, 0, 4, bytes("ABCD\xFF")), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::domainWriteWithoutDataIsRefused()
{
    CGatewaySession gateway;
    QCOMPARE(top_write(5, 0x1017, 0, 1, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(gateway.allReceived(), QByteArray());
}

void TestTcpTransfers::domainReadFillsTheBuffer()
{
    CGatewaySession gateway;
    for (const int size : { 0, 1, 2, 3, 4, 7, 8, 9, 100 }) {
        gateway.expect("[#] 5 read 0x1017 0x0 d\r\n", "[#] QUJDREVGR0g=\r\n");
        QByteArray buffer(100 + 1, '~');
        short length = 77;
        auto* data = reinterpret_cast<BYTE*>(buffer.data());
        QCOMPARE(top_read(5, 0x1017, 0, &length, data, static_cast<short>(size)), 0);
        const QByteArray kept = QByteArray("ABCDEFGH").left(size);
        QCOMPARE(length, static_cast<short>(kept.size()));
        QCOMPARE(buffer.left(kept.size()), kept);
        QCOMPARE(buffer.mid(size), QByteArray(101 - size, '~'));
    }
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::infoFillsTheBuffer()
{
    CGatewaySession gateway;
    for (auto* query : { &top_hardware, &top_software, &top_copyright })
        for (const auto& [size, text] :
             std::initializer_list<std::pair<short, QByteArray>>{ { 20, "Rev. \"2\"" }, { 5, "Rev." }, { 1, "" } }) {
            gateway.answerWith([](const std::string&) { return "[#] \"Rev. \"\"2\"\"\"\r\n"; });
            QByteArray buffer(20 + 1, '~');
            QCOMPARE(query(buffer.data(), size), 0);
            QCOMPARE(buffer, text + '\0' + QByteArray(20 - text.size(), '~'));
        }
}

void TestTcpTransfers::receivesAMessage()
{
    CGatewaySession gateway;
    gateway.expect("[#] receive\r\n", "[#] 0x181 2 0x11 0x22\r\n");
    gateway.expect("[#] receive\r\n", "[#] OK\r\n");
    WORD id = 0;
    short length = 0;
    BYTE data[8] = {};
    QCOMPARE(top_queue_read(&id, &length, data), 0);
    QCOMPARE(id, WORD(0x181));
    QCOMPARE(length, short(2));
    QCOMPARE(data[0], BYTE(0x11));
    QCOMPARE(data[1], BYTE(0x22));
    QCOMPARE(top_queue_read(&id, &length, data), int32_t(ERR_RECEIVER_EMPTY));
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::transmitPutsTheDataOnALineOfTheirOwn_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("data");
    const struct {
        const char* line;
        int id;
        QByteArray data;
    } rows[] = {
        { "[#] send 0x181 2\r\n 0x11 0x22\r\n", 0x181, "\x11\x22" },
        { "[#] send 0x181 0\r\n\r\n", 0x181, "" },
        { "[#] send 0x000 1\r\n 0x0\r\n", 0, QByteArray(1, '\0') },
        { "[#] send 0x00F 1\r\n 0xFF\r\n", 15, "\xFF" },
        { "[#] send 0x7FF 8\r\n 0x1 0x2 0x3 0x4 0x5 0x6 0x7 0x8\r\n", 0x7FF, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "[#] send 0x1ABCDEF0 3\r\n 0xA 0x80 0xFE\r\n", 0x1ABCDEF0, "\x0A\x80\xFE" },
        { "[#] send 0x7FFFFFFF 9\r\n 0x1 0x1 0x1 0x1 0x1 0x1 0x1 0x1 0x1\r\n", 0x7FFFFFFF, QByteArray(9, '\x01') },
        { "[#] send 0xFFFFFFFF 0\r\n\r\n", -1, "" },
    };
    for (const auto& row : rows)
        QTest::newRow(row.line) << row.id << row.data;
}

void TestTcpTransfers::transmitPutsTheDataOnALineOfTheirOwn()
{
    QFETCH(int, id);
    QFETCH(QByteArray, data);
    CGatewaySession gateway;
    gateway.expect(QTest::currentDataTag(), "[#] OK\r\n");
    QCOMPARE(top_transmit(id, static_cast<short>(data.size()), data.isEmpty() ? nullptr : bytes(data)), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpTransfers::transmitOfTooManyBytesStaysInTheLine()
{
    CGatewaySession gateway;
    gateway.answerWith([](const std::string& line) { return line[0] == '[' ? "[#] OK\r\n" : ""; });
    QCOMPARE(top_transmit(0x181, 32767, bytes(QByteArray(32767, '\x7F'))), 0);
    const std::string start = gatewayText::numbered("[#] send 0x181 32767\r\n", gateway.lastNumber());
    const QByteArray line = QByteArray::fromStdString(start) + QByteArray(" 0x7F").repeated(32767);
    const QByteArray sent = gateway.allReceived();
    QVERIFY(sent.size() > 1000);
    QVERIFY(sent.size() <= 1023);
    QVERIFY(line.startsWith(sent) || (sent.endsWith("\r\n") && line.startsWith(sent.chopped(2))));
}

void TestTcpTransfers::transmitWithoutDataIsRefusedBeforeANumberIsTaken()
{
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
    QCOMPARE(top_start_remote_node(5), 0);
    const long before = gateway.lastNumber();
    for (const short length : { short(1), short(8), short(-1) })
        QCOMPARE(top_transmit(0x181, length, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(gateway.lastNumber(), before + 1);
    QCOMPARE(gateway.allReceived().count('\n'), 2);
}

QTEST_GUILESS_MAIN(TestTcpTransfers)
#include "TestTcpTransfers.moc"

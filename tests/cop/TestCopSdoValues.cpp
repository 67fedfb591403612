// The SDO client's reads of values: their byte order, and the number of bytes that each must have.
// SPDX-License-Identifier: MIT
#include "SdoBus.h"

#include <QtTest>

class TestCopSdoValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreLeastSignificantByteFirst_data();
    void valuesAreLeastSignificantByteFirst();
    void otherNumbersOfBytesAreRefused_data();
    void otherNumbersOfBytesAreRefused();
    void failuresAreThoseOfTheTransfer_data();
    void failuresAreThoseOfTheTransfer();
    void failureAfterTheData_data() { failuresAreThoseOfTheTransfer_data(); }
    void failureAfterTheData();
    void nullPointersAndNodes();
    void refusalIsLeftAsTheLastResult();

private:
    // "0: 00000005" with the value; a failure is its result, and the value if that has changed: "-60: 05".
    template <typename Value>
    static QString text(int32_t (*read)(BYTE, WORD, BYTE, Value*))
    {
        constexpr auto untouched = Value(0xA5A5A5A5);
        struct {
            BYTE before[4] = { 0xA5, 0xA5, 0xA5, 0xA5 };
            Value value = untouched;
            BYTE after[8] = { 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5 };
        } memory;
        const QString end = ended(read(5, 0x2008, 1, &memory.value));
        for (const BYTE byte : memory.before)
            if (byte != 0xA5)
                return end + ", bytes before changed";
        for (const BYTE byte : memory.after)
            if (byte != 0xA5)
                return end + ", bytes after it changed";
        if (end != "0" && memory.value == untouched)
            return end;
        return end + QString::asprintf(": %0*X", int(sizeof memory.value) * 2, unsigned(memory.value));
    }
    static QString readValue(int bits)
    {
        return bits == 8 ? text(sdo_read_8bit) : bits == 16 ? text(sdo_read_16bit) : text(sdo_read_32bit);
    }
};

void TestCopSdoValues::valuesAreLeastSignificantByteFirst_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("result");
    QTest::newRow("8 bits") << 8 << QByteArray("4F 08 20 01 81 EE EE EE") << QString("0: 81");
    QTest::newRow("16 bits") << 16 << QByteArray("4B 08 20 01 82 F1 EE EE") << QString("0: F182");
    QTest::newRow("32 bits") << 32 << QByteArray("43 08 20 01 83 82 81 F0") << QString("0: F0818283");
    QTest::newRow("32 bits, size not told") << 32 << QByteArray("42 08 20 01 83 82 81 F0") << QString("0: F0818283");
    QTest::newRow("32 bits, unused bits set") << 32 << QByteArray("4E 08 20 01 83 82 81 F0") << QString("0: F0818283");
    QTest::newRow("8 bits in a segment") << 8 << QByteArray("0D 81 EE EE EE EE EE EE") << QString("0: 81");
    QTest::newRow("16 bits in a segment") << 16 << QByteArray("0B 82 F1 EE EE EE EE EE") << QString("0: F182");
    QTest::newRow("32 bits in a segment") << 32 << QByteArray("07 83 82 81 F0 EE EE EE") << QString("0: F0818283");
}

void TestCopSdoValues::valuesAreLeastSignificantByteFirst()
{
    QFETCH(int, bits);
    QFETCH(QByteArray, answer);
    QFETCH(QString, result);
    CSdoBus bus;
    const bool segmented = answer.startsWith('0');
    bus.talk("40 08 20 01 00 00 00 00", segmented ? "41 08 20 01 00 00 00 00" : answer);
    if (segmented)
        bus.talk("60 00 00 00 00 00 00 00", answer);
    QCOMPARE(readValue(bits), result);
    QVERIFY(bus.finished());
}

void TestCopSdoValues::otherNumbersOfBytesAreRefused_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<QByteArray>("answer");
    const char* const expedited[] = { nullptr, "4F 08 20 01 11 22 33 44", "4B 08 20 01 11 22 33 44",
                                      "47 08 20 01 11 22 33 44", "43 08 20 01 11 22 33 44" };
    const char* const segment[] = { "0F 11 22 33 44 55 66 77", "0D 11 22 33 44 55 66 77", "0B 11 22 33 44 55 66 77",
                                    "09 11 22 33 44 55 66 77", "07 11 22 33 44 55 66 77", "05 11 22 33 44 55 66 77" };
    for (const int bits : { 8, 16, 32 }) {
        for (int count = 1; count <= 4; ++count)
            if (count * 8 != bits)
                QTest::addRow("%d bits, %d bytes", bits, count) << bits << QByteArray(expedited[count]);
        for (int count = 0; count <= 5; ++count)
            if (count * 8 != bits)
                QTest::addRow("%d bits, %d bytes in a segment", bits, count) << bits << QByteArray(segment[count]);
        if (bits != 32)
            QTest::addRow("%d bits, size not told", bits) << bits << QByteArray("42 08 20 01 11 00 00 00");
    }
}

// All bytes received are counted. No abort is sent, since the transfer itself succeeded. A value of 8 bits has been
// overwritten by then, with the zero byte when there were no data; wider ones are unchanged.
void TestCopSdoValues::otherNumbersOfBytesAreRefused()
{
    QFETCH(int, bits);
    QFETCH(QByteArray, answer);
    CSdoBus bus;
    const bool segmented = answer.startsWith('0');
    bus.talk("40 08 20 01 00 00 00 00", segmented ? "41 08 20 01 00 00 00 00" : answer);
    if (segmented)
        bus.talk("60 00 00 00 00 00 00 00", answer);
    QCOMPARE(readValue(bits), QString(bits > 8 ? "-60" : answer.startsWith("0F") ? "-60: 00" : "-60: 11"));
    QVERIFY(bus.finished());
}

void TestCopSdoValues::failuresAreThoseOfTheTransfer_data()
{
    QTest::addColumn<int>("bits");
    for (const int bits : { 8, 16, 32 })
        QTest::addRow("%d bits", bits) << bits;
}

void TestCopSdoValues::failuresAreThoseOfTheTransfer()
{
    QFETCH(int, bits);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "80 08 20 01 01 00 01 06");
    QCOMPARE(readValue(bits), QString("06010001"));
    bus.talk("40 08 20 01 00 00 00 00", "60 08 20 01 00 00 00 00");
    bus.talk("80 08 20 01 01 00 04 05");
    QCOMPARE(readValue(bits), QString("-70"));
    bus.talk("40 08 20 01 00 00 00 00");
    bus.talk("80 08 20 01 00 00 04 05");
    QCOMPARE(readValue(bits), QString("-50"));
    bus.talk("40 08 20 01 00 00 00 00", "4F 08 20");
    bus.talk("80 08 20 01 00 00 00 08");
    QCOMPARE(readValue(bits), QString("-60"));
    QVERIFY(bus.finished());
    cop_exit();
    QCOMPARE(readValue(bits), QString("-95"));
}

// All data have arrived, but the transfer fails before its end. A value of 8 bits has been overwritten by then.
void TestCopSdoValues::failureAfterTheData()
{
    QFETCH(int, bits);
    CSdoBus bus;
    const char* segment = bits == 8    ? "0C 11 EE EE EE EE EE EE"
                          : bits == 16 ? "0A 11 22 EE EE EE EE EE"
                                       : "06 11 22 33 44 EE EE EE";
    const auto talkData = [&] {
        bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 04 00 00 00");
        bus.talk("60 00 00 00 00 00 00 00", segment);
    };
    const QString value = bits == 8 ? ": 11" : "";
    talkData();
    bus.talk("70 00 00 00 00 00 00 00", "80 08 20 01 00 00 00 08");
    QCOMPARE(readValue(bits), "08000000" + value);
    talkData();
    bus.talk("70 00 00 00 00 00 00 00");
    bus.talk("80 08 20 01 00 00 04 05");
    QCOMPARE(readValue(bits), "-50" + value);
    QVERIFY(bus.finished());
}

// 16 and 32 bits check the pointer first, 8 bits the node.
void TestCopSdoValues::nullPointersAndNodes()
{
    CSdoBus bus;
    uint8_t byte = 0;
    uint16_t word = 0;
    uint32_t value = 0;
    for (const BYTE node : { BYTE(0), BYTE(128), BYTE(255) }) {
        QCOMPARE(ended(sdo_read_8bit(node, 0x2008, 1, &byte)), QString("-90"));
        QCOMPARE(ended(sdo_read_16bit(node, 0x2008, 1, &word)), QString("-90"));
        QCOMPARE(ended(sdo_read_32bit(node, 0x2008, 1, &value)), QString("-90"));
        QCOMPARE(ended(sdo_read_8bit(node, 0x2008, 1, nullptr)), QString("-90"));
        QCOMPARE(ended(sdo_read_16bit(node, 0x2008, 1, nullptr)), QString("-99"));
        QCOMPARE(ended(sdo_read_32bit(node, 0x2008, 1, nullptr)), QString("-99"));
    }
    QCOMPARE(ended(sdo_read_8bit(5, 0x2008, 1, nullptr)), QString("-99"));
    QCOMPARE(ended(sdo_read_16bit(5, 0x2008, 1, nullptr)), QString("-99"));
    QCOMPARE(ended(sdo_read_32bit(5, 0x2008, 1, nullptr)), QString("-99"));
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoValues::refusalIsLeftAsTheLastResult()
{
    CSdoBus bus;
    const std::pair<int32_t (*)(), int32_t> refusals[] = {
        { [] { return sdo_read_8bit(5, 0x2008, 1, nullptr); }, -99 },
        { [] { return sdo_read_16bit(5, 0x2008, 1, nullptr); }, -99 },
        { [] { return sdo_read_32bit(5, 0x2008, 1, nullptr); }, -99 },
        { [] { return sdo_write(5, 0x2008, 1, 1, nullptr); }, -99 },
        { [] { return sdo_read(5, 0x2008, 1, nullptr, nullptr, 1); }, -99 },
        { [] { return sdo_write_8bit(0, 0x2008, 1, 1); }, -90 },
        { [] { return sdo_write_16bit(128, 0x2008, 1, 1); }, -90 },
        { [] { return sdo_read(255, 0x2008, 1, nullptr, nullptr, 1); }, -90 },
    };
    for (const auto& [refusal, result] : refusals) {
        cop_error = 77;
        QCOMPARE(refusal(), result);
        QCOMPARE(cop_error, result);
    }
}

QTEST_GUILESS_MAIN(TestCopSdoValues)
#include "TestCopSdoValues.moc"

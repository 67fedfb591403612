// Tests of the SDO client's downloads: the frames of every length, the nodes they go to, and what is refused.
// SPDX-License-Identifier: MIT
#include "SdoBus.h"

#include <QtTest>

#include <climits>

class TestCopSdoDownload : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fewBytesGoInOneFrame_data();
    void fewBytesGoInOneFrame();
    void segmentsCarrySevenBytesEach_data();
    void segmentsCarrySevenBytesEach();
    void everyLengthArrives_data();
    void everyLengthArrives();
    void indexAndNodeAreThoseOfTheCall_data();
    void indexAndNodeAreThoseOfTheCall();
    void valuesAreSentLeastSignificantByteFirst();
    void segmentAnswersMayCarryAnything();
    void nodeIsCheckedBeforeTheData_data();
    void nodeIsCheckedBeforeTheData();
    void nullDataIsRefused_data();
    void nullDataIsRefused();
    void controllerHasToBeStarted();
    void negativeLengthsDoNoHarm();
    void versionIsPinned();
};

void TestCopSdoDownload::fewBytesGoInOneFrame_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("nothing") << 0 << QByteArray("33 08 20 01 00 00 00 00");
    QTest::newRow("1 byte") << 1 << QByteArray("2F 08 20 01 01 00 00 00");
    QTest::newRow("2 bytes") << 2 << QByteArray("2B 08 20 01 01 02 00 00");
    QTest::newRow("3 bytes") << 3 << QByteArray("27 08 20 01 01 02 03 00");
    QTest::newRow("4 bytes") << 4 << QByteArray("23 08 20 01 01 02 03 04");
}

void TestCopSdoDownload::fewBytesGoInOneFrame()
{
    QFETCH(int, count);
    QFETCH(QByteArray, frame);
    CSdoBus bus;
    for (int turn = 0; turn < 2; ++turn) { // no byte of the answer, which is in the same buffer, is sent
        bus.talk(frame, "60 08 20 01 EE EE EE EE");
        QCOMPARE(written(count), QString("0"));
    }
    QVERIFY(bus.finished());
}

void TestCopSdoDownload::segmentsCarrySevenBytesEach_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QList<QByteArray>>("segments");
    QTest::newRow("5") << 5 << QByteArray("05 00") << QList<QByteArray>{ "05 01 02 03 04 05 00 00" };
    QTest::newRow("6") << 6 << QByteArray("06 00") << QList<QByteArray>{ "03 01 02 03 04 05 06 00" };
    QTest::newRow("7") << 7 << QByteArray("07 00") << QList<QByteArray>{ "01 01 02 03 04 05 06 07" };
    QTest::newRow("8") << 8 << QByteArray("08 00")
                       << QList<QByteArray>{ "00 01 02 03 04 05 06 07", "1D 08 00 00 00 00 00 00" };
    QTest::newRow("10") << 10 << QByteArray("0A 00")
                        << QList<QByteArray>{ "00 01 02 03 04 05 06 07", "19 08 09 0A 00 00 00 00" };
    QTest::newRow("14") << 14 << QByteArray("0E 00")
                        << QList<QByteArray>{ "00 01 02 03 04 05 06 07", "11 08 09 0A 0B 0C 0D 0E" };
    QTest::newRow("21") << 21 << QByteArray("15 00")
                        << QList<QByteArray>{ "00 01 02 03 04 05 06 07", "10 08 09 0A 0B 0C 0D 0E",
                                              "01 0F 10 11 12 13 14 15" };
}

void TestCopSdoDownload::segmentsCarrySevenBytesEach()
{
    QFETCH(int, count);
    QFETCH(QByteArray, size);
    QFETCH(QList<QByteArray>, segments);
    CSdoBus bus;
    for (int turn = 0; turn < 2; ++turn) {
        bus.talk("21 08 20 01 " + size + " 00 00", "60 08 20 01 EE EE EE EE");
        for (qsizetype at = 0; at < segments.size(); ++at)
            bus.talk(segments[at], at % 2 == 0 ? "20 EE EE EE EE EE EE EE" : "30 EE EE EE EE EE EE EE");
        QCOMPARE(written(count), QString("0"));
    }
    QVERIFY(bus.finished());
}

void TestCopSdoDownload::everyLengthArrives_data()
{
    QTest::addColumn<int>("count");
    for (int count = 5; count <= 64; ++count)
        QTest::addRow("%d", count) << count;
    for (const int count : { 255, 256, 257, 889, 890, 4095, 10000, 32760, 32766, 32767 })
        QTest::addRow("%d", count) << count;
}

void TestCopSdoDownload::everyLengthArrives()
{
    QFETCH(int, count);
    CSdoBus bus;
    const QByteArray size = QByteArray(1, char(count)) + QByteArray(1, char(count >> 8));
    bus.talk("21 08 20 01 " + size.toHex() + " 00 00", "60 08 20 01 00 00 00 00");
    bus.talkDownloadSegments(sampleBytes(count));
    QCOMPARE(written(count), QString("0"));
    QVERIFY(bus.finished());
    QCOMPARE(bus.written().size(), 1 + (count + 6) / 7);
}

void TestCopSdoDownload::indexAndNodeAreThoseOfTheCall_data()
{
    addPlaces();
}

void TestCopSdoDownload::indexAndNodeAreThoseOfTheCall()
{
    QFETCH(int, node);
    QFETCH(int, index);
    QFETCH(int, subindex);
    QFETCH(QByteArray, multiplexor);
    CSdoBus bus;
    const auto request = uint32_t(0x600 + node);
    const auto answer = uint32_t(0x580 + node);
    const BYTE data[] = { 1, 2, 3, 4, 5 };
    bus.expect(request, "2B " + multiplexor + " 01 02 00 00").answer(answer, "60 " + multiplexor + " 00 00 00 00");
    QCOMPARE(ended(sdo_write(BYTE(node), WORD(index), BYTE(subindex), 2, data)), QString("0"));
    bus.expect(request, "21 " + multiplexor + " 05 00 00 00").answer(answer, "60 " + multiplexor + " 00 00 00 00");
    bus.expect(request, "05 01 02 03 04 05 00 00").answer(answer, "00 00 00 00 00 00 00 00");
    bus.expect(request, "80 " + multiplexor + " 01 00 04 05");
    QCOMPARE(ended(sdo_write(BYTE(node), WORD(index), BYTE(subindex), 5, data)), QString("-70"));
    QVERIFY(bus.finished());
}

void TestCopSdoDownload::valuesAreSentLeastSignificantByteFirst()
{
    CSdoBus bus;
    bus.talk("2F 08 20 01 FE 00 00 00", "60 08 20 01 00 00 00 00");
    bus.talk("2B 08 20 01 34 12 00 00", "60 08 20 01 00 00 00 00");
    bus.talk("23 08 20 01 78 56 34 92", "60 08 20 01 00 00 00 00");
    QCOMPARE(ended(sdo_write_8bit(5, 0x2008, 1, 0xFE)), QString("0"));
    QCOMPARE(ended(sdo_write_16bit(5, 0x2008, 1, 0x1234)), QString("0"));
    QCOMPARE(ended(sdo_write_32bit(5, 0x2008, 1, 0x92345678)), QString("0"));
    QVERIFY(bus.finished());
    QCOMPARE(ended(sdo_write_8bit(0, 0x2008, 1, 1)), QString("-90"));
    QCOMPARE(ended(sdo_write_16bit(128, 0x2008, 1, 1)), QString("-90"));
    QCOMPARE(ended(sdo_write_32bit(255, 0x2008, 1, 1)), QString("-90"));
    bus.talk("2F 08 20 01 00 00 00 00", "80 08 20 01 30 00 09 06");
    bus.talk("2B 08 20 01 00 00 00 00", "80 08 20 01 31 00 09 06");
    bus.talk("23 08 20 01 00 00 00 00", "80 08 20 01 32 00 09 06");
    QCOMPARE(ended(sdo_write_8bit(5, 0x2008, 1, 0)), QString("06090030"));
    QCOMPARE(ended(sdo_write_16bit(5, 0x2008, 1, 0)), QString("06090031"));
    QCOMPARE(ended(sdo_write_32bit(5, 0x2008, 1, 0)), QString("06090032"));
    QVERIFY(bus.finished());
}

void TestCopSdoDownload::segmentAnswersMayCarryAnything()
{
    CSdoBus bus;
    bus.talk("21 08 20 01 0F 00 00 00", "60 08 20 01 FF FF FF FF");
    bus.talk("00 01 02 03 04 05 06 07", "2F FF FF FF FF FF FF FF"); // the lower four bits and the rest are ignored
    bus.talk("10 08 09 0A 0B 0C 0D 0E", "31 09 20 01 00 00 00 00");
    bus.talk("0D 0F 00 00 00 00 00 00", "28 08 20 02 80 00 00 00");
    QCOMPARE(written(15), QString("0"));
    QVERIFY(bus.finished());
}

void TestCopSdoDownload::nodeIsCheckedBeforeTheData_data()
{
    QTest::addColumn<int>("node");
    for (const int node : { 0, 128, 129, 200, 255 })
        QTest::addRow("%d", node) << node;
}

void TestCopSdoDownload::nodeIsCheckedBeforeTheData()
{
    QFETCH(int, node);
    CSdoBus bus;
    const BYTE data[8] = {};
    QCOMPARE(ended(sdo_write(BYTE(node), 0x2008, 1, 4, data)), QString("-90"));
    QCOMPARE(ended(sdo_write(BYTE(node), 0x2008, 1, 8, data)), QString("-90"));
    QCOMPARE(ended(sdo_write(BYTE(node), 0x2008, 1, 4, nullptr)), QString("-90"));
    cop_exit();
    QCOMPARE(ended(sdo_write(BYTE(node), 0x2008, 1, 4, data)), QString("-90"));
    QVERIFY(bus.finished());
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoDownload::nullDataIsRefused_data()
{
    QTest::addColumn<int>("count");
    for (const int count : { 0, 1, 4, 5, 32767 })
        QTest::addRow("%d", count) << count;
}

void TestCopSdoDownload::nullDataIsRefused()
{
    QFETCH(int, count);
    CSdoBus bus;
    QCOMPARE(ended(sdo_write(5, 0x2008, 1, short(count), nullptr)), QString("-99"));
    cop_exit();
    QCOMPARE(ended(sdo_write(5, 0x2008, 1, short(count), nullptr)), QString("-99"));
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoDownload::controllerHasToBeStarted()
{
    CSdoBus bus;
    for (const int count : { 4, 8 }) {
        QCOMPARE(cop_init(-1, &bus.param, 0), 0);
        QCOMPARE(can_reset(), 0);
        QCOMPARE(written(count), QString("-9"));
        QCOMPARE(can_start(0), 0);
        cop_error = -9;
        QCOMPARE(ended(-9), QString("-9")); // the objects are free
        QCOMPARE(cop_exit(), 0);
        QCOMPARE(written(count), QString("-95"));
    }
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoDownload::negativeLengthsDoNoHarm()
{
    for (const int count : { -1, -2, -5, -255, -256, -32767, -32768 }) {
        CSdoBus bus;
        sdo_timeout(1);
        const BYTE data[8] = { 1, 2, 3, 4, 5, 6, 7, 8 };
        const QString end = ended(sdo_write(5, 0x2008, 1, short(count), data));
        QVERIFY2(!end.contains(','), qPrintable(end));
        QVERIFY(bus.milliseconds() < 5);
    }
}

void TestCopSdoDownload::versionIsPinned()
{
    QCOMPARE(QByteArray(sdo_version()), QByteArray("Velmora CANopen master, cop_sdo, 2026-11-21"));
}

QTEST_GUILESS_MAIN(TestCopSdoDownload)
#include "TestCopSdoDownload.moc"

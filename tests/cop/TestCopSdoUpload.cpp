// The SDO client's uploads: expedited and segmented answers of every form, into buffers of every size.
// SPDX-License-Identifier: MIT
#include "SdoBus.h"

#include <QtTest>

class TestCopSdoUpload : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void expeditedAnswerTellsHowManyBytes_data();
    void expeditedAnswerTellsHowManyBytes();
    void expeditedDataAreCutToTheRoom_data();
    void expeditedDataAreCutToTheRoom();
    void segmentsAreJoined_data();
    void segmentsAreJoined();
    void everySegmentedAnswerStartsTheSegments();
    void segmentTellsHowManyBytes_data();
    void segmentTellsHowManyBytes();
    void shortSegmentsMayComeAnywhere();
    void segmentedDataAreCutToTheRoom_data();
    void segmentedDataAreCutToTheRoom();
    void everyLengthArrives_data();
    void everyLengthArrives();
    void indexAndNodeAreThoseOfTheCall_data();
    void indexAndNodeAreThoseOfTheCall();
    void nodeIsCheckedBeforeThePointers_data();
    void nodeIsCheckedBeforeThePointers();
    void nullPointersAreRefused();
    void controllerHasToBeStarted();
    void negativeRoomIsNotWrittenTo();
};

void TestCopSdoUpload::expeditedAnswerTellsHowManyBytes_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QString>("result");
    const char* const four = "0: 11 22 33 44";
    const char* const bySize[] = { four, "0: 11 22 33", "0: 11 22", "0: 11" };
    for (int byte = 0x40; byte <= 0x5F; ++byte)
        if ((byte & 2) != 0)
            QTest::addRow("%02X", unsigned(byte)) << byte << QString((byte & 1) != 0 ? bySize[byte >> 2 & 3] : four);
}

void TestCopSdoUpload::expeditedAnswerTellsHowManyBytes()
{
    QFETCH(int, byte);
    QFETCH(QString, result);
    CSdoBus bus;
    const QByteArray first(1, char(byte));
    bus.talk("40 08 20 01 00 00 00 00", first.toHex() + "08 20 01 11 22 33 44");
    QCOMPARE(readInto(10), result); // no zero byte after the data
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::expeditedDataAreCutToTheRoom_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("result");
    QTest::newRow("no room") << 0 << QString("0:");
    QTest::newRow("1 byte") << 1 << QString("0: 11");
    QTest::newRow("2 bytes") << 2 << QString("0: 11 22");
    QTest::newRow("all bytes") << 3 << QString("0: 11 22 33");
    QTest::newRow("one more") << 4 << QString("0: 11 22 33");
    QTest::newRow("the largest room") << 32767 << QString("0: 11 22 33");
}

void TestCopSdoUpload::expeditedDataAreCutToTheRoom()
{
    QFETCH(int, size);
    QFETCH(QString, result);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "47 08 20 01 11 22 33 44");
    QCOMPARE(readInto(size), result);
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::segmentsAreJoined_data()
{
    QTest::addColumn<QList<QByteArray>>("answers");
    QTest::addColumn<QString>("result");
    QTest::newRow("3 bytes") << QList<QByteArray>{ "09 41 42 43 00 00 00 00" } << "0: 41 42 43 | 00";
    QTest::newRow("7 bytes") << QList<QByteArray>{ "01 41 42 43 44 45 46 47" } << "0: 41 42 43 44 45 46 47 | 00";
    QTest::newRow("8 bytes") << QList<QByteArray>{ "00 41 42 43 44 45 46 47", "1D 48 EE EE EE EE EE EE" }
                             << "0: 41 42 43 44 45 46 47 48 | 00";
    QTest::newRow("10 bytes") << QList<QByteArray>{ "00 41 42 43 44 45 46 47", "19 48 49 4A EE EE EE EE" }
                              << "0: 41 42 43 44 45 46 47 48 49 4A | 00";
    QTest::newRow("14 bytes") << QList<QByteArray>{ "00 41 42 43 44 45 46 47", "11 48 49 4A 4B 4C 4D 4E" }
                              << "0: 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E | 00";
    QTest::newRow("nothing") << QList<QByteArray>{ "0F EE EE EE EE EE EE EE" } << "0: | 00";
    QTest::newRow("7 bytes and nothing") << QList<QByteArray>{ "00 41 42 43 44 45 46 47", "1F EE EE EE EE EE EE EE" }
                                         << "0: 41 42 43 44 45 46 47 | 00";
    QTest::newRow("data like an abort") << QList<QByteArray>{ "00 80 08 20 01 00 00 04", "11 05 80 80 80 80 80 80" }
                                        << "0: 80 08 20 01 00 00 04 05 80 80 80 80 80 80 | 00";
}

void TestCopSdoUpload::segmentsAreJoined()
{
    QFETCH(QList<QByteArray>, answers);
    QFETCH(QString, result);
    CSdoBus bus;
    for (int turn = 0; turn < 2; ++turn) {
        bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 0A 00 00 00");
        for (qsizetype at = 0; at < answers.size(); ++at)
            bus.talk(at % 2 == 0 ? "60 00 00 00 00 00 00 00" : "70 00 00 00 00 00 00 00", answers[at]);
        QCOMPARE(readInto(20), result);
    }
    QVERIFY(bus.finished());
}

// With any size in the answer.
void TestCopSdoUpload::everySegmentedAnswerStartsTheSegments()
{
    for (int byte = 0x40; byte <= 0x5F; ++byte) {
        if ((byte & 2) != 0)
            continue;
        for (const char* size : { "00 00 00 00", "01 00 00 00", "03 00 00 00", "FF FF FF FF", "00 00 00 80" }) {
            CSdoBus bus;
            const QByteArray first(1, char(byte));
            bus.talk("40 08 20 01 00 00 00 00", first.toHex() + " 08 20 01 " + size);
            bus.talk("60 00 00 00 00 00 00 00", "09 41 42 43 00 00 00 00");
            QCOMPARE(readInto(10), QString("0: 41 42 43 | 00"));
            QVERIFY(bus.finished());
        }
    }
}

void TestCopSdoUpload::segmentTellsHowManyBytes_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QString>("result");
    const char* const bytes[] = { "0: 11 22 33 44 55 66 77 | 00",
                                  "0: 11 22 33 44 55 66 | 00",
                                  "0: 11 22 33 44 55 | 00",
                                  "0: 11 22 33 44 | 00",
                                  "0: 11 22 33 | 00",
                                  "0: 11 22 | 00",
                                  "0: 11 | 00",
                                  "0: | 00" };
    for (int unused = 0; unused < 8; ++unused)
        QTest::addRow("%d unused", unused) << (unused << 1 | 1) << QString(bytes[unused]);
}

void TestCopSdoUpload::segmentTellsHowManyBytes()
{
    QFETCH(int, byte);
    QFETCH(QString, result);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "40 08 20 01 00 00 00 00");
    bus.talk("60 00 00 00 00 00 00 00", QByteArray(1, char(byte)).toHex() + "11 22 33 44 55 66 77");
    QCOMPARE(readInto(10), result);
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::shortSegmentsMayComeAnywhere()
{
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 06 00 00 00");
    bus.talk("60 00 00 00 00 00 00 00", "0C 11 EE EE EE EE EE EE");
    bus.talk("70 00 00 00 00 00 00 00", "1E EE EE EE EE EE EE EE");
    bus.talk("60 00 00 00 00 00 00 00", "0A 22 33 EE EE EE EE EE");
    bus.talk("70 00 00 00 00 00 00 00", "19 44 55 66 EE EE EE EE");
    QCOMPARE(readInto(10), QString("0: 11 22 33 44 55 66 | 00"));
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::segmentedDataAreCutToTheRoom_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("result");
    const QByteArray all = sampleBytes(17);
    for (int size = 0; size <= 17; ++size) // a full buffer: no zero byte
        QTest::addRow("%d bytes", size) << size << (size > 0 ? "0: " + hexText(all.first(size)) : QString("0:"));
    QTest::newRow("18 bytes") << 18 << "0: " + hexText(all) + " | 00";
}

void TestCopSdoUpload::segmentedDataAreCutToTheRoom()
{
    QFETCH(int, size);
    QFETCH(QString, result);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 11 00 00 00");
    bus.talkUploadSegments(sampleBytes(17)); // all of them are asked for
    QCOMPARE(readInto(size), result);
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::everyLengthArrives_data()
{
    QTest::addColumn<int>("count");
    for (const int count : { 0, 1, 6, 7, 8, 13, 14, 15, 889, 890, 10000, 32760, 32766, 32767 })
        QTest::addRow("%d", count) << count;
}

void TestCopSdoUpload::everyLengthArrives()
{
    QFETCH(int, count);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 00 00 00 00");
    bus.talkUploadSegments(sampleBytes(count));
    const QString bytes = count > 0 ? " " + hexText(sampleBytes(count)) : QString();
    QCOMPARE(readInto(32767), "0:" + bytes + (count < 32767 ? " | 00" : ""));
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::indexAndNodeAreThoseOfTheCall_data()
{
    addPlaces();
}

void TestCopSdoUpload::indexAndNodeAreThoseOfTheCall()
{
    QFETCH(int, node);
    QFETCH(int, index);
    QFETCH(int, subindex);
    QFETCH(QByteArray, multiplexor);
    CSdoBus bus;
    const auto request = uint32_t(0x600 + node);
    const auto answer = uint32_t(0x580 + node);
    bus.expect(request, "40 " + multiplexor + " 00 00 00 00").answer(answer, "41 " + multiplexor + " 00 00 00 00");
    bus.expect(request, "60 00 00 00 00 00 00 00").answer(answer, "20 00 00 00 00 00 00 00");
    bus.expect(request, "80 " + multiplexor + " 01 00 04 05");
    short length = 77;
    BYTE data[8];
    QCOMPARE(ended(sdo_read(BYTE(node), WORD(index), BYTE(subindex), &length, data, 8)), QString("-70"));
    QCOMPARE(length, short(0));
    QVERIFY(bus.finished());
}

void TestCopSdoUpload::nodeIsCheckedBeforeThePointers_data()
{
    QTest::addColumn<int>("node");
    for (const int node : { 0, 128, 129, 200, 255 })
        QTest::addRow("%d", node) << node;
}

void TestCopSdoUpload::nodeIsCheckedBeforeThePointers()
{
    QFETCH(int, node);
    CSdoBus bus;
    short length = 77;
    BYTE data[8] = {};
    QCOMPARE(ended(sdo_read(BYTE(node), 0x2008, 1, &length, data, 8)), QString("-90"));
    QCOMPARE(length, short(0));
    QCOMPARE(ended(sdo_read(BYTE(node), 0x2008, 1, nullptr, nullptr, 8)), QString("-90"));
    cop_exit();
    QCOMPARE(ended(sdo_read(BYTE(node), 0x2008, 1, &length, data, 8)), QString("-90"));
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoUpload::nullPointersAreRefused()
{
    CSdoBus bus;
    BYTE data[8] = {};
    for (int turn = 0; turn < 2; ++turn) {
        short length = 77;
        QCOMPARE(ended(sdo_read(5, 0x2008, 1, nullptr, data, 8)), QString("-99"));
        QCOMPARE(ended(sdo_read(5, 0x2008, 1, &length, nullptr, 8)), QString("-99"));
        QCOMPARE(length, short(0));
        QCOMPARE(ended(sdo_read(5, 0x2008, 1, nullptr, nullptr, 0)), QString("-99"));
        cop_exit();
    }
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoUpload::controllerHasToBeStarted()
{
    CSdoBus bus;
    QCOMPARE(can_reset(), 0);
    QCOMPARE(readInto(8), QString("-9"));
    QCOMPARE(can_start(0), 0);
    cop_error = -9;
    QCOMPARE(ended(-9), QString("-9")); // the objects are free
    QCOMPARE(cop_exit(), 0);
    QCOMPARE(readInto(8), QString("-95"));
    QCOMPARE(bus.written(), QStringList());
}

void TestCopSdoUpload::negativeRoomIsNotWrittenTo()
{
    for (const int size : { -1, -7, -256, -32768 }) {
        CSdoBus bus;
        bus.talk("40 08 20 01 00 00 00 00", "43 08 20 01 11 22 33 44");
        QCOMPARE(readInto(size), QString("0:"));
        bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 08 00 00 00");
        bus.talkUploadSegments(sampleBytes(8));
        QCOMPARE(readInto(size), QString("0:"));
        QVERIFY(bus.finished());
    }
}

QTEST_GUILESS_MAIN(TestCopSdoUpload)
#include "TestCopSdoUpload.moc"

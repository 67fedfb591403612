// Faults on CAN: which transfers they hit, and what arrives in place of the right answers.
// SPDX-License-Identifier: MIT
#include "CanBusProbe.h"

#include <QElapsedTimer>
#include <QTest>

class TestCanFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultsAreReadWithTheirNumbers_data();
    void faultsAreReadWithTheirNumbers();
    void clientGetsWhatTheFaultsMake_data();
    void clientGetsWhatTheFaultsMake();
    void delayAnswersLate();
    void delayedAnswersAreBounded();
    void delayedAnswersMakeRoomForOthers();
    void floodComesBeforeTheAnswer();
    void surplusIsMoreThanAnnounced();
    void endlessUploadEndsAfterItsSegments();
    void refusedLastSegmentKeepsTheValue();
};

void TestCanFaults::faultsAreReadWithTheirNumbers_data()
{
    QTest::addColumn<int>("argument"); // -1: refused
    for (const auto& [text, argument] :
         std::initializer_list<std::pair<const char*, int>>{ { "stall", 2 },         { "stall=1", 1 },
                                                             { "toggle", 1 },        { "toggle=2", 2 },
                                                             { "command", 1 },       { "short", 1 },
                                                             { "foreign", 0 },       { "foreign=1", -1 },
                                                             { "flood", 1000 },      { "flood=100000", 100000 },
                                                             { "flood=100001", -1 }, { "segment", 1 },
                                                             { "segment=3", 3 },     { "last", 0 },
                                                             { "last=1", -1 },       { "filler", 255 },
                                                             { "filler=0x55", 85 },  { "filler=256", -1 },
                                                             { "empty", 3 },         { "surplus", 1000 },
                                                             { "surplus=-1", -1 },   { "endless", 10000 },
                                                             { "endless=x", -1 } })
        QTest::newRow(text) << argument;
}

void TestCanFaults::faultsAreReadWithTheirNumbers()
{
    QFETCH(int, argument);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QString message;
    const auto fault = readFault(text, canFaultKinds(), &message);
    QCOMPARE(fault.has_value(), argument >= 0);
    if (!fault) {
        QCOMPARE(message, QStringLiteral("fault \"%1\": wrong number after '='").arg(text));
        return;
    }
    QCOMPARE(static_cast<int>(fault->argument), argument);
}

void TestCanFaults::clientGetsWhatTheFaultsMake_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<QByteArrayList>("frames"); // request and answers in turn, the answers apart by " | "
    struct tRow {
        const char* name;
        QStringList faults;
        QByteArrayList frames;
    };
    const QByteArray readBrightness("605 40 04 20 00 00 00 00 00");
    const QByteArray brightness("585 4F 04 20 00 32 00 00 00");
    const QByteArray readName("605 40 08 10 00 00 00 00 00");
    const QByteArray nameStart("585 41 08 10 00 10 00 00 00");
    const QByteArray segment0("605 60 00 00 00 00 00 00 00");
    const QByteArray segment1("605 70 00 00 00 00 00 00 00");
    const QByteArray name0("585 00 56 65 6C 6D 6F 72 61");
    const QByteArray name1("585 10 20 44 65 6D 6F 20 49");
    const QByteArray name2("585 0B 2F 4F 00 00 00 00 00");
    const QByteArray writeText("605 21 08 20 00 0A 00 00 00");
    const QByteArray writeStart("585 60 08 20 00 00 00 00 00");
    const QByteArray text0("605 00 30 31 32 33 34 35 36");
    const QByteArray text1("605 19 37 38 39 00 00 00 00");
    const QByteArray confirmed0("585 20 00 00 00 00 00 00 00");
    const QByteArray confirmed1("585 30 00 00 00 00 00 00 00");
    for (const tRow& row : std::initializer_list<tRow>{
             { "no fault", {}, { readName, nameStart, segment0, name0, segment1, name1, segment0, name2 } },
             { "only the entry that is named",
               { "silence@1008" },
               { readName, "", readBrightness, brightness, "605 40 09 10 00 00 00 00 00",
                 "585 41 09 10 00 06 00 00 00" } },
             { "only the sub-index that is named",
               { "silence@2101:2" },
               { "605 40 01 21 02 00 00 00 00", "", "605 40 01 21 07 00 00 00 00", "585 4F 01 21 07 03 00 00 00" } },
             { "the first that hits counts, those of the gateway are skipped",
               { "drop", "abort=0x06060000@2004", "silence" },
               { readBrightness, "585 80 04 20 00 00 00 06 06", readName, "" } },
             { "the fault ends with its transfer",
               { "double@2004" },
               { readBrightness, brightness + " | " + brightness, segment0, "585 80 04 20 00 01 00 04 05" } },
             { "stall", { "stall" }, { readName, nameStart, segment0, "", segment1, "" } },
             { "stall=3", { "stall=3" }, { readName, nameStart, segment0, name0, segment1, "" } },
             { "stall in a download", { "stall" }, { writeText, writeStart, text0, "", text1, "" } },
             { "toggle in an upload",
               { "toggle" },
               { readName, nameStart, segment0, "585 10 56 65 6C 6D 6F 72 61", segment1, name1 } },
             { "toggle=2 in an upload",
               { "toggle=2" },
               { readName, nameStart, segment0, name0, segment1, "585 00 20 44 65 6D 6F 20 49" } },
             { "toggle in a download",
               { "toggle" },
               { writeText, writeStart, text0, "585 30 00 00 00 00 00 00 00", text1, confirmed1 } },
             { "toggle leaves initiates and aborts alone",
               { "toggle=0" },
               { readName, nameStart, segment1, "585 80 08 10 00 00 00 03 05" } },
             { "command", { "command" }, { readBrightness, "585 EF 04 20 00 32 00 00 00" } },
             { "command in a download", { "command" }, { writeText, "585 E0 08 20 00 00 00 00 00" } },
             { "command=2", { "command=2" }, { readName, nameStart, segment0, "585 E0 56 65 6C 6D 6F 72 61" } },
             { "command=3 in a download",
               { "command=3" },
               { writeText, writeStart, text0, confirmed0, text1, "585 F0 00 00 00 00 00 00 00" } },
             { "short", { "short" }, { readBrightness, "585 4F 04 20 00 32 00 00" } },
             { "short=2", { "short=2" }, { readName, nameStart, segment0, "585 00 56 65 6C 6D 6F 72" } },
             { "foreign",
               { "foreign" },
               { readBrightness, "585 4F 05 20 00 CD 00 00 00 | " + brightness, readName,
                 "585 41 09 10 00 EF 00 00 00 | " + nameStart, segment0, name0 } },
             { "foreign before an abort",
               { "foreign" },
               { "605 40 FF 5F 00 00 00 00 00", "585 80 FE 5F 00 FF 00 02 06 | 585 80 FF 5F 00 00 00 02 06" } },
             { "few frames before the answer",
               { "flood=2" },
               { readBrightness, "181 00 00 00 00 00 00 00 00 | 182 01 00 00 00 00 00 00 00 | " + brightness } },
             { "segment", { "segment" }, { readName, nameStart, segment0, "585 80 08 10 00 00 00 00 08" } },
             { "segment=3",
               { "segment=3" },
               { readName, nameStart, segment0, name0, segment1, name1, segment0, "585 80 08 10 00 00 00 00 08" } },
             { "segment in a download",
               { "segment" },
               { writeText, writeStart, text0, "585 80 08 20 00 00 00 00 08" } },
             { "last in an upload",
               { "last" },
               { readName, nameStart, segment0, name0, segment1, name1, segment0,
                 name2 + " | 585 80 08 10 00 00 00 00 08" } },
             { "last in a download",
               { "last" },
               { writeText, writeStart, text0, confirmed0, text1, "585 80 08 20 00 00 00 00 08" } },
             { "last leaves expedited transfers alone", { "last" }, { readBrightness, brightness } },
             { "filler",
               { "filler" },
               { readBrightness, "585 4F 04 20 00 32 FF FF FF", readName, nameStart, segment0, name0, segment1, name1,
                 segment0, "585 0B 2F 4F FF FF FF FF FF", writeText, "585 60 08 20 00 FF FF FF FF", text0,
                 "585 20 FF FF FF FF FF FF FF" } },
             { "filler leaves aborts alone",
               { "filler" },
               { "605 40 FF 5F 00 00 00 00 00", "585 80 FF 5F 00 00 00 02 06" } },
             { "filler=0x55", { "filler=0x55" }, { readBrightness, "585 4F 04 20 00 32 55 55 55" } },
             { "double", { "double" }, { readName, nameStart + " | " + nameStart, segment0, name0 + " | " + name0 } },
             { "empty=2",
               { "empty=2" },
               { readName, nameStart, segment0, "585 0E 00 00 00 00 00 00 00", segment1, "585 1E 00 00 00 00 00 00 00",
                 segment0, name0, segment1, name1, segment0, name2 } },
             { "empty before a short value",
               { "empty=1" },
               { readBrightness, "585 41 04 20 00 01 00 00 00", segment0, "585 0E 00 00 00 00 00 00 00", segment1,
                 "585 1D 32 00 00 00 00 00 00" } },
             { "surplus=7 after a short value",
               { "surplus=7" },
               { readBrightness, "585 41 04 20 00 01 00 00 00", segment0, "585 00 32 55 55 55 55 55 55", segment1,
                 "585 1D 55 00 00 00 00 00 00" } },
             { "abort in a download",
               { "abort=0x08000021" },
               { "605 2F 04 20 00 0A 00 00 00", "585 80 04 20 00 21 00 00 08", writeText,
                 "585 80 08 20 00 21 00 00 08" } },
         })
        QTest::newRow(row.name) << row.faults << row.frames;
}

void TestCanFaults::clientGetsWhatTheFaultsMake()
{
    QFETCH(QStringList, faults);
    QFETCH(QByteArrayList, frames);
    CCanBusProbe probe(faults);
    QCOMPARE(probe.error(), QString());
    QCOMPARE(frames.size() % 2, 0);
    for (qsizetype i = 0; i < frames.size(); i += 2)
        QCOMPARE(frames[i] + " -> " + probe.ask(frames[i]), frames[i] + " -> " + frames[i + 1]);
}

void TestCanFaults::delayAnswersLate()
{
    CCanBusProbe probe({ "delay=150@2004" });
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(probe.ask("605 40 04 20 00 00 00 00 00"), QByteArray());
    QCOMPARE(probe.ask("605 40 05 20 00 00 00 00 00"), QByteArray("585 4B 05 20 00 F4 01 00 00"));
    QVERIFY(probe.await(1));
    QVERIFY(timer.elapsed() >= 149);
    QCOMPARE(probe.take(), QByteArrayList{ "585 4F 04 20 00 32 00 00 00" });
}

void TestCanFaults::delayedAnswersAreBounded()
{
    CCanBusProbe probe({ "delay=200" });
    for (int i = 0; i < CCanNode::delayedLimit + 10; ++i)
        probe.put("605 40 04 20 00 00 00 00 00");
    QVERIFY(probe.await(CCanNode::delayedLimit));
    QCOMPARE(probe.take().size(), CCanNode::delayedLimit);
    probe.put("605 40 05 20 00 00 00 00 00");
    QVERIFY(probe.await(1)); // an answer beyond the limit would have come before
    QCOMPARE(probe.take(), QByteArrayList{ "585 4B 05 20 00 F4 01 00 00" });
}

void TestCanFaults::delayedAnswersMakeRoomForOthers()
{
    CCanBusProbe probe({ "delay=20" });
    const auto askOften = [&probe] {
        for (int i = 0; i < CCanNode::delayedLimit; ++i)
            probe.put("605 40 04 20 00 00 00 00 00");
    };
    askOften();
    QVERIFY(probe.await(CCanNode::delayedLimit));
    probe.take();
    askOften();
    QVERIFY(probe.await(CCanNode::delayedLimit));
    askOften();
    probe.put("000 82 05"); // the delayed answers are dropped
    probe.stopHeartbeat(5);
    probe.take();
    askOften();
    QVERIFY(probe.await(CCanNode::delayedLimit));
}

void TestCanFaults::floodComesBeforeTheAnswer()
{
    CCanBusProbe probe({ "flood@2004" });
    probe.put("605 40 04 20 00 00 00 00 00");
    QVERIFY(probe.await(1001));
    const QByteArrayList frames = probe.take();
    QCOMPARE(frames.size(), 1001);
    QCOMPARE(frames.last(), QByteArray("585 4F 04 20 00 32 00 00 00"));
    for (qsizetype i = 0; i < 1000; ++i) {
        const unsigned cobId = frames[i].left(3).toUInt(nullptr, 16);
        QVERIFY2(cobId > 0x180 && cobId < 0x580, frames[i]);
    }
}

void TestCanFaults::surplusIsMoreThanAnnounced()
{
    CCanBusProbe probe({ "surplus" });
    QCOMPARE(probe.ask("605 40 08 10 00 00 00 00 00"), QByteArray("585 41 08 10 00 10 00 00 00"));
    int segments = 0;
    QByteArray answer;
    do
        answer = probe.ask(++segments % 2 == 1 ? "605 60 00 00 00 00 00 00 00" : "605 70 00 00 00 00 00 00 00");
    while (answer.mid(5, 1) == "0" && segments < 1000);
    QCOMPARE(segments, (16 + 1000 + 6) / 7);
    QCOMPARE(answer, QByteArray("585 1D 55 00 00 00 00 00 00"));
}

void TestCanFaults::endlessUploadEndsAfterItsSegments()
{
    for (const char* read : { "605 40 08 10 00 00 00 00 00", "605 40 17 20 00 00 00 00 00" }) { // the last has no data
        CCanBusProbe probe({ "endless=9" });
        probe.ask(read);
        for (int segment = 1; segment <= 9; ++segment) {
            const QByteArray toggle = segment % 2 == 1 ? "0" : "1";
            const QByteArray answer =
                probe.ask("605 " + QByteArray(segment % 2 == 1 ? "6" : "7") + "0" + " 00 00 00 00 00 00 00");
            QVERIFY2(answer.startsWith("585 " + toggle + "0 "), answer);
        }
        QVERIFY(probe.ask("605 70 00 00 00 00 00 00 00").endsWith(" 00 00 00 08"));
        QVERIFY(probe.ask("605 60 00 00 00 00 00 00 00").endsWith(" 01 00 04 05"));
    }
}

void TestCanFaults::refusedLastSegmentKeepsTheValue()
{
    for (const char* fault : { "last", "segment=1", "abort=0x08000021" }) {
        CCanBusProbe probe({ fault });
        probe.ask("605 21 08 20 00 02 00 00 00");
        probe.ask("605 0B 48 69 00 00 00 00 00");
        QCOMPARE(probe.network().node(5)->read(0x2008, 0).data, QByteArray("Machine hall 3"));
    }
}

QTEST_GUILESS_MAIN(TestCanFaults)
#include "TestCanFaults.moc"

// The SDO server frame by frame, as transcripts.
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "SdoFrame.h"
#include "can/SdoServer.h"
#include "device/SimulatedNetwork.h"

#include <QTest>

#include <memory>

namespace
{

constexpr unsigned nodeId = 5;
constexpr qsizetype longestDomain = 65536;

// Bytes of which no seven in a row are like the seven before.
QByteArray pattern(qsizetype size)
{
    QByteArray data;
    for (qsizetype i = 0; i < size; ++i)
        data += static_cast<char>((i * 131 + i / 251) & 0xFF);
    return data;
}

} // namespace

class TestSdoServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void transcripts_data();
    void transcripts();
    void framesOfAnotherLengthAreIgnored_data();
    void framesOfAnotherLengthAreIgnored();
    void domainsGoBothWays_data();
    void domainsGoBothWays();
    void oneByteMoreThanFitsIsRefused();
    void endlessDownloadEndsAtTheLimit();
    void refusedDownloadKeepsTheValue();
    void replacedDownloadKeepsTheValue();
    void finishedTransfersAreReported_data();
    void finishedTransfersAreReported();
    void resetForgetsTheTransfer();

private:
    QByteArray ask(const QByteArray& request) { return hex(m_server->answer(bytes(request))); }
    QByteArray upload(const QByteArray& multiplexor);
    QByteArray download(const QByteArray& multiplexor, const QByteArray& data, bool sizeGiven);

    std::unique_ptr<CSimulatedNetwork> m_network;
    std::unique_ptr<CSdoServer> m_server;
    QByteArrayList m_log;
};

void TestSdoServer::init()
{
    m_log.clear();
    m_network = std::make_unique<CSimulatedNetwork>();
    QCOMPARE(m_network->add(nodeId, demoSheet()), QString());
    CSimulatedNode& node = *m_network->node(nodeId);
    m_server = std::make_unique<CSdoServer>(node);
    m_server->setReport([&](const tSdoTransfer& transfer) { m_log += describeTransfer(nodeId, node, transfer); });
}

// The bytes of a segmented upload; a text that begins with '?' when an answer is wrong.
QByteArray TestSdoServer::upload(const QByteArray& multiplexor)
{
    const QByteArray start = m_server->answer(bytes("40") + multiplexor + bytes("00 00 00 00"));
    if (!start.startsWith(bytes("41") + multiplexor))
        return "?" + hex(start);
    QByteArray data;
    for (unsigned toggle = 0;; toggle ^= 0x10) {
        const QByteArray answer =
            m_server->answer(QByteArray(1, static_cast<char>(0x60 | toggle)) + bytes("00 00 00 00 00 00 00"));
        const unsigned command = static_cast<unsigned char>(answer.at(0));
        if ((command & 0xF0) != toggle)
            return "?" + hex(answer);
        data += answer.mid(1, 7 - (command >> 1 & 7));
        if ((command & 1) != 0)
            return littleEndian(static_cast<quint64>(data.size()), 4) == start.mid(4) ? data : "?" + hex(start);
    }
}

// The first answer to a segmented download that is no confirmation, otherwise the last one.
QByteArray TestSdoServer::download(const QByteArray& multiplexor, const QByteArray& data, bool sizeGiven)
{
    const QByteArray size = littleEndian(sizeGiven ? static_cast<quint64>(data.size()) : 0, 4);
    QByteArray answer = hex(m_server->answer(bytes(sizeGiven ? "21" : "20") + multiplexor + size));
    if (!answer.startsWith("60"))
        return answer;
    unsigned toggle = 0;
    for (qsizetype at = 0; at < data.size() && (at == 0 || answer.at(0) != '8'); at += 7, toggle ^= 0x10) {
        const QByteArray part = data.mid(at, 7);
        const bool last = at + 7 >= data.size();
        const unsigned command = toggle | static_cast<unsigned>(7 - part.size()) << 1 | (last ? 1 : 0);
        answer = hex(m_server->answer(QByteArray(1, static_cast<char>(command)) + part.leftJustified(7, '\0')));
    }
    return answer;
}

void TestSdoServer::transcripts_data()
{
    QTest::addColumn<QByteArrayList>("frames"); // request and answer in turn; no answer is empty
    struct tRow {
        const char* name;
        QByteArrayList frames;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "expedited upload of 4 bytes", { "40 00 10 00 00 00 00 00", "43 00 10 00 91 01 0F 00" } },
             { "expedited upload of 3 bytes", { "40 02 21 05 00 00 00 00", "47 02 21 05 03 02 01 00" } },
             { "expedited upload of 2 bytes", { "40 17 10 00 00 00 00 00", "4B 17 10 00 E8 03 00 00" } },
             { "expedited upload of 1 byte", { "40 04 20 00 00 00 00 00", "4F 04 20 00 32 00 00 00" } },
             { "segmented upload of 6 bytes",
               { "40 09 10 00 00 00 00 00", "41 09 10 00 06 00 00 00", "60 00 00 00 00 00 00 00",
                 "03 48 57 20 31 2E 32 00" } },
             { "segmented upload of 7 bytes",
               { "40 02 21 08 00 00 00 00", "41 02 21 08 07 00 00 00", "60 00 00 00 00 00 00 00",
                 "01 07 06 05 04 03 02 01" } },
             { "segmented upload of 16 bytes",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "60 00 00 00 00 00 00 00",
                 "00 56 65 6C 6D 6F 72 61", "70 00 00 00 00 00 00 00", "10 20 44 65 6D 6F 20 49",
                 "60 00 00 00 00 00 00 00", "0B 2F 4F 00 00 00 00 00" } },
             { "upload of no bytes",
               { "40 17 20 00 00 00 00 00", "41 17 20 00 00 00 00 00", "60 00 00 00 00 00 00 00",
                 "0F 00 00 00 00 00 00 00" } },
             { "upload of an unknown index", { "40 FF 5F 00 00 00 00 00", "80 FF 5F 00 00 00 02 06" } },
             { "upload of an unknown sub-index", { "40 18 10 05 00 00 00 00", "80 18 10 05 11 00 09 06" } },
             { "upload of a write-only entry", { "40 11 20 00 00 00 00 00", "80 11 20 00 01 00 01 06" } },
             { "expedited download of 2 bytes",
               { "2B 05 20 00 34 12 00 00", "60 05 20 00 00 00 00 00", "40 05 20 00 00 00 00 00",
                 "4B 05 20 00 34 12 00 00" } },
             { "expedited download of 4 bytes",
               { "23 03 20 00 40 E2 00 00", "60 03 20 00 00 00 00 00", "40 03 20 00 00 00 00 00",
                 "43 03 20 00 40 E2 00 00" } },
             { "expedited download without size has that of the type",
               { "22 04 20 00 0A BB CC DD", "60 04 20 00 00 00 00 00", "40 04 20 00 00 00 00 00",
                 "4F 04 20 00 0A 00 00 00" } },
             { "expedited download without size has 4 bytes where the type has any",
               { "22 17 20 00 41 42 43 44", "60 17 20 00 00 00 00 00", "40 17 20 00 00 00 00 00",
                 "43 17 20 00 41 42 43 44" } },
             { "expedited download of too many bytes", { "23 04 20 00 0A 00 00 00", "80 04 20 00 12 00 07 06" } },
             { "expedited download of too few bytes", { "2F 05 20 00 14 00 00 00", "80 05 20 00 13 00 07 06" } },
             { "expedited download of a read-only entry", { "23 00 10 00 01 00 00 00", "80 00 10 00 02 00 01 06" } },
             { "expedited download above the limit", { "2F 04 20 00 65 00 00 00", "80 04 20 00 31 00 09 06" } },
             { "segmented download with size",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "00 30 31 32 33 34 35 36",
                 "20 00 00 00 00 00 00 00", "19 37 38 39 00 00 00 00", "30 00 00 00 00 00 00 00",
                 "40 08 20 00 00 00 00 00", "41 08 20 00 0A 00 00 00", "60 00 00 00 00 00 00 00",
                 "00 30 31 32 33 34 35 36", "70 00 00 00 00 00 00 00", "19 37 38 39 00 00 00 00" } },
             { "segmented download without size",
               { "20 05 20 00 00 00 00 00", "60 05 20 00 00 00 00 00", "0B 21 01 00 00 00 00 00",
                 "20 00 00 00 00 00 00 00", "40 05 20 00 00 00 00 00", "4B 05 20 00 21 01 00 00" } },
             { "segmented download of no bytes",
               { "21 08 20 00 00 00 00 00", "60 08 20 00 00 00 00 00", "0F 00 00 00 00 00 00 00",
                 "20 00 00 00 00 00 00 00", "40 08 20 00 00 00 00 00", "41 08 20 00 00 00 00 00" } },
             { "segments of other lengths than 7",
               { "21 08 20 00 03 00 00 00", "60 08 20 00 00 00 00 00", "0C 41 00 00 00 00 00 00",
                 "20 00 00 00 00 00 00 00", "1E 00 00 00 00 00 00 00", "30 00 00 00 00 00 00 00",
                 "0B 42 43 00 00 00 00 00", "20 00 00 00 00 00 00 00", "40 08 20 00 00 00 00 00",
                 "47 08 20 00 41 42 43 00" } },
             { "segmented download of an unknown index", { "21 FF 5F 00 0A 00 00 00", "80 FF 5F 00 00 00 02 06" } },
             { "segmented download of an unknown sub-index", { "20 18 10 05 00 00 00 00", "80 18 10 05 11 00 09 06" } },
             { "segmented download of a constant entry", { "21 08 10 00 0A 00 00 00", "80 08 10 00 02 00 01 06" } },
             { "segmented download of a wrong length", { "21 05 20 00 0A 00 00 00", "80 05 20 00 12 00 07 06" } },
             { "size of a download above the limit", { "21 01 21 09 01 00 01 00", "80 01 21 09 05 00 04 05" } },
             { "huge size of a download", { "21 01 21 09 FF FF FF FF", "80 01 21 09 05 00 04 05" } },
             { "fewer bytes than announced",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "01 30 31 32 33 34 35 36",
                 "80 08 20 00 10 00 07 06" } },
             { "more bytes than announced",
               { "21 08 20 00 05 00 00 00", "60 08 20 00 00 00 00 00", "00 30 31 32 33 34 35 36",
                 "80 08 20 00 10 00 07 06" } },
             { "limit missed by segments",
               { "20 04 20 00 00 00 00 00", "60 04 20 00 00 00 00 00", "0D 65 00 00 00 00 00 00",
                 "80 04 20 00 31 00 09 06" } },
             { "wrong toggle bit in the first segment of a download",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "10 30 31 32 33 34 35 36",
                 "80 08 20 00 00 00 03 05", "00 30 31 32 33 34 35 36", "80 08 20 00 01 00 04 05" } },
             { "wrong toggle bit in the second segment of a download",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "00 30 31 32 33 34 35 36",
                 "20 00 00 00 00 00 00 00", "09 37 38 39 00 00 00 00", "80 08 20 00 00 00 03 05" } },
             { "wrong toggle bit in an upload",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "70 00 00 00 00 00 00 00",
                 "80 08 10 00 00 00 03 05" } },
             { "upload segment in a download",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "60 00 00 00 00 00 00 00",
                 "80 08 20 00 01 00 04 05" } },
             { "download segment in an upload",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "00 30 31 32 33 34 35 36",
                 "80 08 10 00 01 00 04 05" } },
             { "segments outside of a transfer",
               { "60 01 02 03 04 05 06 07", "80 00 00 00 01 00 04 05", "00 01 02 03 04 05 06 07",
                 "80 00 00 00 01 00 04 05" } },
             { "segment after the last one",
               { "40 09 10 00 00 00 00 00", "41 09 10 00 06 00 00 00", "60 00 00 00 00 00 00 00",
                 "03 48 57 20 31 2E 32 00", "70 00 00 00 00 00 00 00", "80 09 10 00 01 00 04 05" } },
             { "segment after an expedited upload",
               { "40 00 10 00 00 00 00 00", "43 00 10 00 91 01 0F 00", "60 00 00 00 00 00 00 00",
                 "80 00 10 00 01 00 04 05" } },
             { "block upload", { "A0 08 10 00 7F 00 00 00", "80 08 10 00 01 00 04 05" } },
             { "block download", { "C2 08 20 00 0A 00 00 00", "80 08 20 00 01 00 04 05" } },
             { "command 7", { "E0 08 20 00 00 00 00 00", "80 08 20 00 01 00 04 05" } },
             { "unknown command in a transfer",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "E0 01 02 03 00 00 00 00",
                 "80 08 10 00 01 00 04 05", "60 00 00 00 00 00 00 00", "80 08 10 00 01 00 04 05" } },
             { "abort by the client in an upload",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "80 08 10 00 00 00 04 05", "",
                 "60 00 00 00 00 00 00 00", "80 08 10 00 01 00 04 05" } },
             { "abort by the client in a download",
               { "21 08 20 00 0A 00 00 00", "60 08 20 00 00 00 00 00", "80 08 20 00 00 00 04 05", "",
                 "00 30 31 32 33 34 35 36", "80 08 20 00 01 00 04 05" } },
             { "abort by the client outside of a transfer", { "80 08 10 00 00 00 04 05", "" } },
             { "new upload during an upload",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "60 00 00 00 00 00 00 00",
                 "00 56 65 6C 6D 6F 72 61", "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00",
                 "60 00 00 00 00 00 00 00", "00 56 65 6C 6D 6F 72 61" } },
             { "new download during an upload",
               { "40 08 10 00 00 00 00 00", "41 08 10 00 10 00 00 00", "2F 04 20 00 0A 00 00 00",
                 "60 04 20 00 00 00 00 00", "60 00 00 00 00 00 00 00", "80 04 20 00 01 00 04 05" } },
         })
        QTest::newRow(row.name) << row.frames;
}

void TestSdoServer::transcripts()
{
    QFETCH(QByteArrayList, frames);
    QCOMPARE(frames.size() % 2, 0);
    for (qsizetype i = 0; i < frames.size(); i += 2)
        QCOMPARE(frames[i] + " -> " + ask(frames[i]), frames[i] + " -> " + frames[i + 1]);
}

void TestSdoServer::framesOfAnotherLengthAreIgnored_data()
{
    QTest::addColumn<QByteArray>("frame");
    for (const char* frame : { "", "40", "40 08 10 00", "40 08 10 00 00 00 00", "80 00 00 00 00 00 00",
                               "60 00 00 00 00 00 00 00 00" }) // the last is more than a classic frame holds
        QTest::newRow(frame) << QByteArray(frame);
}

void TestSdoServer::framesOfAnotherLengthAreIgnored()
{
    QCOMPARE(ask("40 09 10 00 00 00 00 00"), QByteArray("41 09 10 00 06 00 00 00"));
    QFETCH(QByteArray, frame);
    QCOMPARE(ask(frame), QByteArray());
    QCOMPARE(ask("60 00 00 00 00 00 00 00"), QByteArray("03 48 57 20 31 2E 32 00"));
}

void TestSdoServer::domainsGoBothWays_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("sizeGiven");
    for (const int size : { 5, 6, 7, 8, 13, 14, 15, 889, 32767, 32768, 65535, 65536 })
        for (const bool sizeGiven : { true, false })
            QTest::addRow("%d bytes%s", size, sizeGiven ? ", size given" : "") << size << sizeGiven;
}

void TestSdoServer::domainsGoBothWays()
{
    QFETCH(int, size);
    QFETCH(bool, sizeGiven);
    const QByteArray multiplexor = bytes("01 21 09");
    const QByteArray data = pattern(size);
    QCOMPARE(download(multiplexor, data, sizeGiven).left(1), QByteArray(size % 14 > 7 || size % 14 == 0 ? "3" : "2"));
    QVERIFY(!m_server->busy());
    QCOMPARE(m_network->node(nodeId)->read(0x2101, 9).data, data);
    QCOMPARE(upload(multiplexor), data);
}

void TestSdoServer::oneByteMoreThanFitsIsRefused()
{
    const QByteArray multiplexor = bytes("01 21 09");
    QCOMPARE(download(multiplexor, pattern(longestDomain + 1), true), QByteArray("80 01 21 09 05 00 04 05"));
    QCOMPARE(download(multiplexor, pattern(longestDomain + 1), false), QByteArray("80 01 21 09 05 00 04 05"));
    QCOMPARE(m_network->node(nodeId)->read(0x2101, 9).data, QByteArray());
}

void TestSdoServer::endlessDownloadEndsAtTheLimit()
{
    QCOMPARE(ask("20 01 21 09 00 00 00 00"), QByteArray("60 01 21 09 00 00 00 00"));
    int segments = 0;
    QByteArray answer;
    do {
        answer = ask(segments % 2 == 0 ? "00 01 02 03 04 05 06 07" : "10 01 02 03 04 05 06 07");
        ++segments;
    } while (!answer.startsWith("80") && segments <= longestDomain);
    QCOMPARE(answer, QByteArray("80 01 21 09 05 00 04 05"));
    QCOMPARE(segments, static_cast<int>(longestDomain / 7 + 1));
}

void TestSdoServer::refusedDownloadKeepsTheValue()
{
    ask("2F 04 20 00 65 00 00 00");
    QCOMPARE(ask("40 04 20 00 00 00 00 00"), QByteArray("4F 04 20 00 32 00 00 00"));
    ask("21 08 20 00 03 00 00 00");
    ask("01 30 31 32 33 34 35 36");
    QCOMPARE(upload(bytes("08 20 00")), QByteArray("Machine hall 3"));
}

void TestSdoServer::replacedDownloadKeepsTheValue()
{
    ask("21 08 20 00 0A 00 00 00");
    ask("00 30 31 32 33 34 35 36");
    QCOMPARE(upload(bytes("08 20 00")), QByteArray("Machine hall 3"));
}

void TestSdoServer::finishedTransfersAreReported_data()
{
    QTest::addColumn<QByteArrayList>("requests");
    QTest::addColumn<QByteArrayList>("lines");
    struct tRow {
        const char* name;
        QByteArrayList requests;
        QByteArrayList lines;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "u16", { "40 17 10 00 00 00 00 00" }, { "node 5 read 0x1017 0x00 u16 = 0x03E8" } },
             { "i16", { "40 02 20 00 00 00 00 00" }, { "node 5 read 0x2002 0x00 i16 = -25" } },
             { "b", { "2F 00 20 00 01 00 00 00" }, { "node 5 write 0x2000 0x00 b 1 = OK" } },
             { "r32", { "40 07 20 00 00 00 00 00" }, { "node 5 read 0x2007 0x00 r32 = 1.5" } },
             { "read-only",
               { "23 00 10 00 01 00 00 00" },
               { "node 5 write 0x1000 0x00 u32 0x00000001 = ERROR: 0x06010002" } },
             { "unknown index", { "40 FF 5F 00 00 00 00 00" }, { "node 5 read 0x5FFF 0x00 d = ERROR: 0x06020000" } },
             { "bytes that are no value of the type",
               { "2F 05 20 00 14 00 00 00" },
               { "node 5 write 0x2005 0x00 d 14 = ERROR: 0x06070013" } },
             { "segmented upload, once and at its end",
               { "40 09 10 00 00 00 00 00", "60 00 00 00 00 00 00 00" },
               { "node 5 read 0x1009 0x00 d = \"HW 1.2\"" } },
             { "upload that has not ended", { "40 09 10 00 00 00 00 00" }, {} },
             { "segmented download",
               { "21 08 20 00 02 00 00 00", "0B 48 69 00 00 00 00 00" },
               { "node 5 write 0x2008 0x00 d \"Hi\" = OK" } },
             { "no bytes",
               { "40 17 20 00 00 00 00 00", "60 00 00 00 00 00 00 00" },
               { "node 5 read 0x2017 0x00 d = \"\"" } },
             { "segmented download of a constant entry",
               { "21 08 10 00 02 00 00 00" },
               { "node 5 write 0x1008 0x00 d = ERROR: 0x06010002" } },
             { "aborted by the client",
               { "40 09 10 00 00 00 00 00", "80 09 10 00 00 00 04 05" },
               { "node 5 read 0x1009 0x00 d = ERROR: 0x05040000" } },
             { "aborted by the client without a code",
               { "40 09 10 00 00 00 00 00", "80 09 10 00 00 00 00 00" },
               { "node 5 read 0x1009 0x00 d = ERROR: 0x08000000" } },
             { "abort, segment and unknown command outside of a transfer",
               { "80 09 10 00 00 00 04 05", "60 00 00 00 00 00 00 00", "E0 00 00 00 00 00 00 00" },
               {} },
             { "replaced transfers are not",
               { "40 09 10 00 00 00 00 00", "40 04 20 00 00 00 00 00" },
               { "node 5 read 0x2004 0x00 u8 = 0x32" } },
         })
        QTest::newRow(row.name) << row.requests << row.lines;
}

void TestSdoServer::finishedTransfersAreReported()
{
    QFETCH(QByteArrayList, requests);
    QFETCH(QByteArrayList, lines);
    for (const QByteArray& request : requests)
        ask(request);
    QCOMPARE(m_log, lines);
}

void TestSdoServer::resetForgetsTheTransfer()
{
    ask("40 09 10 00 00 00 00 00");
    QVERIFY(m_server->busy());
    m_server->reset();
    QVERIFY(!m_server->busy());
    QCOMPARE(ask("60 00 00 00 00 00 00 00"), QByteArray("80 09 10 00 01 00 04 05"));
    QCOMPARE(m_log, QByteArrayList());
}

QTEST_GUILESS_MAIN(TestSdoServer)
#include "TestSdoServer.moc"

// The facade's operations over a scripted gateway: what they send, and their results.
// SPDX-License-Identifier: MIT
#include "AccessOperations.h"
#include "EveryWidth.h"

#include <QByteArray>
#include <QtTest>

#include <cstring>

class TestCANopenAccessOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationSucceeds_data() { addOperations(); }
    void everyOperationSucceeds();
    void errorNumberIsTheLastError_data() { addOperations(); }
    void errorNumberIsTheLastError();
    void abortOfATransferIsErrorFour_data() { addOperations(); }
    void abortOfATransferIsErrorFour();
    void writeAnsweredByAnAbortKeepsItsCode();
    void otherFailuresKeepTheLastAbort();
    void onlyTransfersClearTheLastAbort_data() { addOperations(); }
    void onlyTransfersClearTheLastAbort();
    void valuesArriveInEveryWidth();
    void negativeIntegersAreSentAsTheirComplement_data();
    void negativeIntegersAreSentAsTheirComplement();
    void domainArrivesInTheBuffer();
    void queueIsReadOrEmpty();
    void operationsWithoutALineFail();
    void sdoTimeoutClearsThePreviousOne();
    void versionsArriveInTheBuffer();
    void nullBuffersOfVersionsAreRefused();
};

void TestCANopenAccessOperations::everyOperationSucceeds()
{
    const tOperation& operation = fetched();
    CGatewayLink on;
    QVERIFY(!on.access.clearQueue()); // sets an error, which success replaces
    on.gateway.expect(operation.line, operation.answer);
    QVERIFY(operation.run(on.access));
    QCOMPARE(on.access.getLastError(), 0);
    QVERIFY2(on.gateway.finished(), on.gateway.problem().c_str());
}

void TestCANopenAccessOperations::errorNumberIsTheLastError()
{
    const tOperation& operation = fetched();
    CGatewayLink on;
    on.gateway.expect(operation.line, "[#] Error: 103\r\n");
    const bool reset = QByteArray(operation.name) == "reset"; // any answer is success
    QCOMPARE(operation.run(on.access), reset);
    QCOMPARE(on.access.getLastError(), reset ? 0 : -703);
    QCOMPARE(on.access.getLastAbort(), 0L);
    QVERIFY(!on.access.isSDOAborted());
}

void TestCANopenAccessOperations::abortOfATransferIsErrorFour()
{
    const tOperation& operation = fetched();
    CGatewayLink on;
    on.gateway.expect(operation.line, "[#] Error: 0x06010002\r\n");
    const bool reset = QByteArray(operation.name) == "reset";
    const bool version = QByteArray(operation.name).endsWith("Version");
    QCOMPARE(operation.run(on.access), reset);
    if (operation.ending == transfer) {
        QCOMPARE(on.access.getLastError(), ERR_SDO_ABORTED);
        QCOMPARE(on.access.getLastAbort(), readOnly);
        QVERIFY(on.access.isSDOAborted());
    } else { // for the others the result is stored as it is
        QCOMPARE(on.access.getLastError(), reset ? 0 : version ? int(readOnly) : int(-600 - readOnly));
        QCOMPARE(on.access.getLastAbort(), 0L);
        QVERIFY(!on.access.isSDOAborted());
    }
}

void TestCANopenAccessOperations::writeAnsweredByAnAbortKeepsItsCode()
{
    CGatewayLink on;
    on.gateway.expect("[#] 5 write 0x2000 0x1 u8 0x7\r\n", "[#] ERROR: 0x06010002\r\n");
    QVERIFY(!on.access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(on.access.getLastError(), 4);
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Transfer aborted."));
    QCOMPARE(QByteArray(on.access.getAbortText(0)), QByteArray("Attempt to write a read only object."));
}

void TestCANopenAccessOperations::otherFailuresKeepTheLastAbort()
{
    CGatewayLink on;
    on.gateway.expect("[#] 5 read 0x2000 0x1 d\r\n", "[#] Error: 0x06010002\r\n");
    on.gateway.expect("[#] 5 read 0x2000 0x1 u8\r\n", "[#] word\r\n");
    on.gateway.expect("[#] 5 write 0x2000 0x1 u8 0x7\r\n", { "", tGatewayAnswer::hangUp });
    QVERIFY(!readDomain(on.access));
    uint8_t value = 0;
    QVERIFY(!on.access.readUnsigned8(5, 0x2000, 1, &value));
    QCOMPARE(on.access.getLastError(), ERR_FORMAT);
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QVERIFY(!on.access.writeUnsigned8(5, 0x2000, 1, 7));
    QCOMPARE(on.access.getLastError(), ERR_FORMAT);
    QCOMPARE(on.access.getLastAbort(), readOnly);
    QVERIFY(!on.access.isSDOAborted());
    QVERIFY(on.access.terminate());
    QVERIFY(!on.access.readUnsigned8(5, 0x2000, 1, &value));
    QCOMPARE(on.access.getLastError(), ERR_NOT_INITIALIZED);
    QCOMPARE(on.access.getLastAbort(), readOnly);
}

void TestCANopenAccessOperations::onlyTransfersClearTheLastAbort()
{
    const tOperation& operation = fetched();
    CGatewayLink on;
    on.gateway.expect("[#] 5 read 0x2000 0x1 d\r\n", "[#] Error: 0x06010002\r\n");
    on.gateway.expect(operation.line, operation.answer);
    QVERIFY(!readDomain(on.access));
    QVERIFY(operation.run(on.access));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(on.access.getLastAbort(), operation.ending == transfer ? 0L : readOnly); // the others do not change it
}

void TestCANopenAccessOperations::valuesArriveInEveryWidth()
{
    CGatewayLink on;
    on.gateway.answerWith([](const std::string& line) {
        return line.find("u8") != std::string::npos    ? "[#] 0xFE\r\n"
               : line.find("u16") != std::string::npos ? "[#] 0xFEDC\r\n"
                                                       : "[#] 0xFEDCBA98\r\n";
    });
    checkEveryWidth(on.access);
    int8_t integer8 = 0;
    on.gateway.answerWith(
        [](const std::string&) { return "[#] -2\r\n"; }); // refused: signed values are read as unsigned
    QVERIFY(!on.access.readInteger8(5, 0x2000, 1, &integer8));
    QCOMPARE(on.access.getLastError(), ERR_FORMAT);
}

void TestCANopenAccessOperations::negativeIntegersAreSentAsTheirComplement_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("value");
    const struct {
        const char* line;
        int width, value;
    } rows[] = {
        { "[#] 5 write 0x2000 0x1 u8 0xFF\r\n", 8, -1 },
        { "[#] 5 write 0x2000 0x1 u8 0x80\r\n", 8, -128 },
        { "[#] 5 write 0x2000 0x1 u8 0x7F\r\n", 8, 127 },
        { "[#] 5 write 0x2000 0x1 u16 0xFFFF\r\n", 16, -1 },
        { "[#] 5 write 0x2000 0x1 u16 0x8000\r\n", 16, -32768 },
        { "[#] 5 write 0x2000 0x1 u32 0xFFFFFFFF\r\n", 32, -1 },
        { "[#] 5 write 0x2000 0x1 u32 0x7FFFFFFF\r\n", 32, 2147483647 },
    };
    for (const auto& row : rows)
        QTest::newRow(row.line) << row.width << row.value;
}

void TestCANopenAccessOperations::negativeIntegersAreSentAsTheirComplement()
{
    QFETCH(int, width);
    QFETCH(int, value);
    CGatewayLink on;
    on.gateway.expect(QTest::currentDataTag(), "[#] OK\r\n");
    QVERIFY(width == 8    ? on.access.writeInteger8(5, 0x2000, 1, static_cast<int8_t>(value))
            : width == 16 ? on.access.writeInteger16(5, 0x2000, 1, static_cast<int16_t>(value))
                          : on.access.writeInteger32(5, 0x2000, 1, value));
    QVERIFY2(on.gateway.finished(), on.gateway.problem().c_str());
}

void TestCANopenAccessOperations::domainArrivesInTheBuffer()
{
    CGatewayLink on;
    on.gateway.expect("[#] 127 read 0x1008 0x0 d\r\n", "[#] QUJDREU=\r\n");
    on.gateway.expect("[#] 127 read 0x1008 0x0 d\r\n", "[#] QUJDREU=\r\n");
    QByteArray buffer(8, '~');
    auto* data = reinterpret_cast<BYTE*>(buffer.data());
    short length = 0;
    QVERIFY(on.access.read(127, 0x1008, 0, &length, data, 8));
    QCOMPARE(length, short(5));
    QCOMPARE(buffer.left(5), QByteArray("ABCDE")); // a zero byte of the last group may follow
    QCOMPARE(buffer.right(2), QByteArray("~~"));
    buffer.fill('~');
    QVERIFY(on.access.read(127, 0x1008, 0, &length, data, 2));
    QCOMPARE(length, short(2));
    QCOMPARE(buffer, QByteArray("AB~~~~~~"));
}

void TestCANopenAccessOperations::queueIsReadOrEmpty()
{
    CGatewayLink on;
    on.gateway.expect("[#] receive\r\n", "[#] 0x181 2 0x11 0x22\r\n");
    on.gateway.expect("[#] receive\r\n", "[#] OK\r\n");
    WORD id[2] = { 0, 0xABCD };
    short length = 0;
    BYTE data[8] = {};
    QVERIFY(on.access.readQueue(id, &length, data));
    QCOMPARE(id[0], WORD(0x181));
    QCOMPARE(id[1], WORD(0xABCD));
    QCOMPARE(length, short(2));
    QCOMPARE(data[1], BYTE(0x22));
    QVERIFY(!on.access.readQueue(id, &length, data));
    QCOMPARE(on.access.getLastError(), ERR_RECEIVER_EMPTY);
}

void TestCANopenAccessOperations::operationsWithoutALineFail()
{
    CGatewayLink on;
    short length = 0;
    BYTE data[8] = {};
    QVERIFY(!on.access.clearQueue());
    QCOMPARE(on.access.getLastError(), ERR_NOT_SUPPORTED);
    QVERIFY(!on.access.requestMessage(0x181, &length, data));
    QCOMPARE(on.access.getLastError(), ERR_NULL_POINTER);
    QVERIFY(!on.access.transmitMessage(0x181, 1, nullptr));
    QCOMPARE(on.access.getLastError(), ERR_NULL_POINTER);
    QVERIFY(on.access.terminate());
    QVERIFY(on.gateway.awaitClosed());
    QVERIFY(on.gateway.received().empty());
}

void TestCANopenAccessOperations::sdoTimeoutClearsThePreviousOne()
{
    CGatewayLink on;
    on.gateway.expect("[#] set sdo_timeout 500\r\n", "[#] OK\r\n");
    WORD previous = 1234;
    QVERIFY(on.access.setSDOTimeout(500, &previous));
    QCOMPARE(previous, WORD(0));
    QCOMPARE(on.access.getLastError(), 0);
}

void TestCANopenAccessOperations::versionsArriveInTheBuffer()
{
    CGatewayLink on;
    on.gateway.expect("[#] info hardware\r\n", "[#] \"Board 3\"\r\n");
    on.gateway.expect("[#] info software\r\n", "[#] \"Release 2.10\"\r\n");
    char text[100] = {};
    QVERIFY(on.access.getHardwareVersion(text, sizeof text));
    QCOMPARE(QByteArray(text), QByteArray("Board 3"));
    QVERIFY(on.access.getFirmwareVersion(text, 8));
    QCOMPARE(QByteArray(text), QByteArray("Release"));
    QCOMPARE(QByteArray(on.access.getAPIVersion()), QByteArray(top_version()));
    QVERIFY2(on.gateway.finished(), on.gateway.problem().c_str());
}

void TestCANopenAccessOperations::nullBuffersOfVersionsAreRefused()
{
    CGatewayLink on;
    on.gateway.answerWith([](const std::string&) { return "[#] text\r\n"; });
    QVERIFY(!on.access.getHardwareVersion(nullptr, 100));
    QCOMPARE(on.access.getLastError(), ERR_NULL_POINTER);
    QVERIFY(!on.access.getFirmwareVersion(nullptr, 100));
    QCOMPARE(on.access.getLastError(), ERR_NULL_POINTER);
}

QTEST_GUILESS_MAIN(TestCANopenAccessOperations)
#include "TestCANopenAccessOperations.moc"

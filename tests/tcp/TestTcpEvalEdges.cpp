// Edges of the evaluators: bytes of 128 and above, which belong to no item (255 reads as the end of the line), and
// missing pointers.
// SPDX-License-Identifier: MIT
#include "Evaluators.h"

#include <QtTest>

class TestTcpEvalEdges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void byteInTheHeadIsAFormatError_data() { addBytes(); }
    void byteInTheHeadIsAFormatError();
    void byteAfterTheHeadIsAnEmptyTextOrAFormatError_data() { addBytes(); }
    void byteAfterTheHeadIsAnEmptyTextOrAFormatError();
    void byteInAnErrorIsAFormatError_data() { addBytes(); }
    void byteInAnErrorIsAFormatError();
    void byteEndsANumber_data() { addBytes(); }
    void byteEndsANumber();
    void refusedValueLeavesTheAbortCode();

private:
    static void addBytes()
    {
        QTest::addColumn<char>("byte");
        for (int byte = 0x80; byte <= 0xFF; ++byte)
            QTest::addRow("%02X", static_cast<unsigned>(byte)) << static_cast<char>(byte);
    }

    // Runs each evaluator on the line; texts may have another result.
    static void expect(const QByteArray& line, int32_t result, int32_t ofTexts)
    {
        for (const tEvaluator& evaluator : evaluators) {
            uint32_t abort = 77;
            const int32_t expected = evaluator.kind == answersText ? ofTexts : result;
            const int32_t actual = evaluator.run(line.constData(), &abort, false);
            QVERIFY2(actual == expected, qPrintable(QString("%1: %2").arg(evaluator.name).arg(actual)));
        }
    }
};

void TestTcpEvalEdges::byteInTheHeadIsAFormatError()
{
    QFETCH(char, byte);
    for (const QByteArray& line :
         { QByteArray(1, byte) + "[12] OK", QByteArray("[") + byte + "12] OK", QByteArray("[12") + byte + "] OK",
           QByteArray("[12 ") + byte, QByteArray("[12") + byte, QByteArray(1, byte) })
        expect(line, ERR_FORMAT, ERR_FORMAT);
}

void TestTcpEvalEdges::byteAfterTheHeadIsAnEmptyTextOrAFormatError()
{
    QFETCH(char, byte);
    const int32_t ofTexts = byte == '\xFF' ? ERR_FORMAT : ERR_NO_ERROR;
    for (const char* head : { "[12]", "[12] ", "[12]\t " })
        for (const char* rest : { "", "OK", " OK\r\n", "Error: 5" })
            expect(QByteArray(head) + byte + rest, ERR_FORMAT, ofTexts);
}

void TestTcpEvalEdges::byteInAnErrorIsAFormatError()
{
    QFETCH(char, byte);
    expect(QByteArray("[12] Error:") + byte, ERR_FORMAT, ERR_FORMAT);
    expect(QByteArray("[12] Error: ") + byte + "5", ERR_FORMAT, ERR_FORMAT);
    expect(QByteArray("[12] Error") + byte + ": 5", ERR_FORMAT, ERR_NO_ERROR); // not the word of an error for a text
}

void TestTcpEvalEdges::byteEndsANumber()
{
    QFETCH(char, byte);
    uint16_t value = 0;
    QCOMPARE(tcp_eval_sdo_unsigned16((QByteArray("[12] 42") + byte + "7").constData(), &value, nullptr), 0);
    QCOMPARE(value, uint16_t(42));
    QCOMPARE(tcp_eval_response((QByteArray("[12] Error: 5") + byte).constData()), -605);
    QCOMPARE(tcp_eval_response((QByteArray("[12] OK") + byte).constData()), 0);
}

void TestTcpEvalEdges::refusedValueLeavesTheAbortCode()
{
    for (const tEvaluator& evaluator : evaluators) {
        if (!evaluator.knowsAborts || evaluator.kind == answersOK)
            continue;
        uint32_t abort = 77;
        QCOMPARE(evaluator.run("[12] 5", &abort, true), int32_t(ERR_NULL_POINTER));
        QCOMPARE(abort, 77U);
        QCOMPARE(evaluator.run("[12] 5", &abort, false), 0);
        QCOMPARE(abort, 0U);
    }
}

QTEST_APPLESS_MAIN(TestTcpEvalEdges)
#include "TestTcpEvalEdges.moc"

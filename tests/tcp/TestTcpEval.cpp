// Tests of what all evaluators share: the head of a line, the expected word, error numbers and abort codes.
// SPDX-License-Identifier: MIT
#include "Evaluators.h"

#include <QtTest>

namespace
{

constexpr uint32_t untouched = 0xDEADBEEF;

const char* const malformedHeads[] = {
    nullptr,
    "",
    " ",
    "\r\n",
    "12] OK",
    "[",
    "[ ",
    "[]",
    "[] OK",
    "[x] OK",
    "[-1] OK",
    "[+1] OK",
    "[1",
    "[12 ",
    "[12 OK",
    "[12) OK",
    "[08] OK",
    "[4294967296] OK",
    "[0x100000000] OK",
    "[040000000000] OK",
    "[12\t",
    "x[12] OK",
    "\n[12] OK",
    "\xFF[12] OK",
    "[\xFF] OK",
    "[12\xFF] OK",
    "OK",
    "5",
    "ERROR: 5",
};
const char* const goodHeads[] = {
    "[12]",
    " [12]",
    "\t[12] ",
    "[ 12 ]",
    "[\t12\t]\t",
    "[0]",
    "[0x1F]",
    "[017]",
    "[0x]",
    "[4294967295]",
    "[0xFFFFFFFF]",
    "[00000000000000000001]",
    "[0x0000000000000000001]",
};

} // namespace

class TestTcpEval : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void malformedHeadIsAFormatError();
    void headMayHoldBlanksAndAnyNumber();
    void lineThatEndsBehindTheHeadIsAFormatError();
    void theWordOkIsSuccess_data();
    void theWordOkIsSuccess();
    void anAnswerOfAnotherKindIsAFormatError_data();
    void anAnswerOfAnotherKindIsAFormatError();
    void everyOtherKeywordIsAFormatError_data();
    void everyOtherKeywordIsAFormatError();
    void anErrorNumberIsSubtracted_data();
    void anErrorNumberIsSubtracted();
    void errorWithoutNumberIsAFormatError_data();
    void errorWithoutNumberIsAFormatError();
    void shortFormsOfErrorAreKnownWhereNoTextIsAwaited_data();
    void shortFormsOfErrorAreKnownWhereNoTextIsAwaited();
    void anAbortCodeIsDelivered_data();
    void anAbortCodeIsDelivered();
    void nullPointersAreRefusedWhenAValueArrives();
    void nullPointersDoNotMatterWithoutAValue();
    void valueClearsTheAbortCode();
    void versionIsPinned() { QCOMPARE(tcp_eval_version(), "Velmora gateway client, tcp_eval, 2026-11-21"); }

private:
    static int32_t run(const tEvaluator& evaluator, const QByteArray& line, bool nowhere = false)
    {
        return evaluator.run(line.constData(), nullptr, nowhere);
    }
};

void TestTcpEval::malformedHeadIsAFormatError()
{
    for (const tEvaluator& evaluator : evaluators)
        for (const char* head : malformedHeads)
            QVERIFY2(evaluator.run(head, nullptr, false) == ERR_FORMAT, evaluator.name);
}

void TestTcpEval::headMayHoldBlanksAndAnyNumber()
{
    for (const char* head : goodHeads) {
        QCOMPARE(tcp_eval_response((QByteArray(head) + "OK").constData()), 0);
        for (const tEvaluator& evaluator : evaluators)
            QVERIFY2(run(evaluator, QByteArray(head) + " error: 103\r\n") == -703, head);
    }
}

void TestTcpEval::lineThatEndsBehindTheHeadIsAFormatError()
{
    for (const tEvaluator& evaluator : evaluators)
        for (const char* end : { "[12]", "[12] ", "[12]\t \t" })
            QVERIFY2(run(evaluator, end) == ERR_FORMAT, evaluator.name);
}

void TestTcpEval::theWordOkIsSuccess_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("result");
    QTest::newRow("commands and writes: success") << int(answersOK) << 0;
    QTest::newRow("unsigned reads: refused") << int(answersNumber) << int(ERR_FORMAT);
    QTest::newRow("signed reads: refused") << int(answersSigned) << int(ERR_FORMAT);
    QTest::newRow("texts: a text like any other") << int(answersText) << 0;
    QTest::newRow("receive: no message") << int(answersMessage) << int(ERR_RECEIVER_EMPTY);
    QTest::newRow("remote frame: refused") << int(answersRemote) << int(ERR_FORMAT);
}

void TestTcpEval::theWordOkIsSuccess()
{
    QFETCH(int, kind);
    QFETCH(int, result);
    for (const tEvaluator& evaluator : evaluators)
        for (const char* line : { "[12] OK\r\n", "[12] ok", "[12] Okay", "[12]oK", "[12]\tOK 5", "[12] OK: 5\r\n" })
            if (evaluator.kind == kind)
                QVERIFY2(run(evaluator, line) == result, line);
}

void TestTcpEval::anAnswerOfAnotherKindIsAFormatError_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QList<int>>("results"); // by kind

    constexpr int bad = ERR_FORMAT;
    const struct {
        const char* line;
        QList<int> results;
    } rows[] = {
        // OK, unsigned, signed, text, message, remote
        { "[1] 5", { bad, 0, 0, 0, bad, bad } },           { "[1] -5", { bad, bad, 0, 0, bad, bad } },
        { "[1] +5", { bad, bad, 0, 0, bad, bad } },        { "[1] 1 9", { bad, 0, 0, 0, bad, 0 } },
        { "[1] 5 1 9", { bad, 0, 0, 0, 0, bad } },         { "[1] abc", { bad, bad, bad, 0, bad, bad } },
        { "[1] \"abc\"", { bad, bad, bad, 0, bad, bad } }, { "[1] \r\n", { bad, bad, bad, 0, bad, bad } },
        { "[1] ]", { bad, bad, bad, 0, bad, bad } },       { "[1] -", { bad, bad, bad, 0, bad, bad } },
        { "[1] +x", { bad, bad, bad, 0, bad, bad } },      { "[1] \xE9", { bad, bad, bad, 0, bad, bad } },
    };
    for (const auto& row : rows)
        QTest::newRow(row.line) << QByteArray(row.line) << row.results;
}

void TestTcpEval::anAnswerOfAnotherKindIsAFormatError()
{
    QFETCH(QByteArray, line);
    QFETCH(QList<int>, results);
    for (const tEvaluator& evaluator : evaluators)
        QVERIFY2(run(evaluator, line) == results.at(evaluator.kind), evaluator.name);
}

void TestTcpEval::everyOtherKeywordIsAFormatError_data()
{
    QTest::addColumn<QByteArray>("keyword");
    for (const char* keyword : { "b",
                                 "communication",
                                 "comm",
                                 "copyright",
                                 "disable",
                                 "d",
                                 "emcy",
                                 "enable",
                                 "event",
                                 "execute",
                                 "exec",
                                 "exit",
                                 "firmware",
                                 "guarding",
                                 "hardware",
                                 "heartbeat",
                                 "i8",
                                 "i16",
                                 "i24",
                                 "i32",
                                 "i40",
                                 "i48",
                                 "i56",
                                 "i64",
                                 "id",
                                 "info",
                                 "init",
                                 "network",
                                 "node",
                                 "os",
                                 "pdo",
                                 "preoperational",
                                 "preop",
                                 "p",
                                 "r32",
                                 "r64",
                                 "read",
                                 "receive",
                                 "recv",
                                 "restore",
                                 "reset",
                                 "rpdo",
                                 "rtr",
                                 "r",
                                 "sdo_timeout",
                                 "set",
                                 "send",
                                 "software",
                                 "start",
                                 "stop",
                                 "store",
                                 "sync",
                                 "td",
                                 "tpdo",
                                 "t",
                                 "u8",
                                 "u16",
                                 "u24",
                                 "u32",
                                 "u40",
                                 "u48",
                                 "u56",
                                 "u64",
                                 "user",
                                 "us",
                                 "version",
                                 "vs",
                                 "wait",
                                 "write",
                                 "w",
                                 "errors",
                                 "err",
                                 "exe",
                                 "o",
                                 "x" })
        QTest::newRow(keyword) << QByteArray(keyword);
}

void TestTcpEval::everyOtherKeywordIsAFormatError()
{
    QFETCH(QByteArray, keyword);
    for (const tEvaluator& evaluator : evaluators) {
        if (evaluator.kind == answersText)
            continue;
        QVERIFY2(run(evaluator, "[12] " + keyword + "\r\n") == ERR_FORMAT, evaluator.name);
        QVERIFY2(run(evaluator, "[12] " + keyword + ": 5\r\n") == ERR_FORMAT, evaluator.name);
        QVERIFY2(run(evaluator, "[12] " + keyword.toUpper() + ": 5\r\n") == ERR_FORMAT, evaluator.name);
    }
}

void TestTcpEval::anErrorNumberIsSubtracted_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("result");
    const struct {
        const char* text;
        int result;
    } rows[] = {
        { "ERROR: 103", -703 },
        { "error:103", -703 },
        { "Error: 103 and why", -703 },
        { "eRrOr:\t 103", -703 },
        { "Error: 0x67", -703 },
        { "Error: 0147", -703 },
        { "Error: +103", -703 },
        { "Error: 0", -600 },
        { "Error: -5", -595 },
        { "Error: -600", 0 },
        { "Error: 0x04FFFFFF", -83886679 },
        { "Error: 83886079", -83886679 },
        { "Error: 0xFFFFFFFF", -599 },
        { "Error: 0x80000000", 2147483048 },
        { "Error: -2147483648", 2147483048 },
    };
    for (const auto& row : rows)
        QTest::newRow(row.text) << QByteArray(row.text) << row.result;
}

void TestTcpEval::anErrorNumberIsSubtracted()
{
    QFETCH(QByteArray, text);
    for (const tEvaluator& evaluator : evaluators) {
        uint32_t abort = untouched;
        QTEST(evaluator.run(("[12] " + text + "\r\n").constData(), &abort, false), "result");
        QCOMPARE(abort, untouched);
    }
}

void TestTcpEval::errorWithoutNumberIsAFormatError_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : { "Error:", "Error: ", "Error:\r\n", "Error: x", "Error: -", "Error: - 5", "Error: +",
                              "Error: +-5", "Error: :5", "Error:: 5", "Error: 2147483648", "Error: -2147483649",
                              "Error: 4294967295", "Error: 0x100000000", "Error: 040000000000", "Error: \xE9" })
        QTest::newRow(text) << QByteArray(text);
}

void TestTcpEval::errorWithoutNumberIsAFormatError()
{
    QFETCH(QByteArray, text);
    for (const tEvaluator& evaluator : evaluators)
        QVERIFY2(run(evaluator, "[12] " + text) == ERR_FORMAT, evaluator.name);
}

void TestTcpEval::shortFormsOfErrorAreKnownWhereNoTextIsAwaited_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("result");
    for (auto [text, result] : std::initializer_list<std::pair<const char*, int>>{ { "e:5", -605 },
                                                                                   { "E: 5", -605 },
                                                                                   { "e : 5", -605 },
                                                                                   { "ERROR : 5", -605 },
                                                                                   { "error\t:\t5", -605 },
                                                                                   { "ERR: 5", -70 },
                                                                                   { "errors: 5", -70 },
                                                                                   { "ERROR 5", -70 },
                                                                                   { "ERROR", -70 },
                                                                                   { "e", -70 } })
        QTest::newRow(text) << QByteArray(text) << result;
}

void TestTcpEval::shortFormsOfErrorAreKnownWhereNoTextIsAwaited()
{
    QFETCH(QByteArray, text);
    QFETCH(int, result);
    for (const tEvaluator& evaluator : evaluators)
        QVERIFY2(run(evaluator, "[12] " + text) == (evaluator.kind == answersText ? 0 : result), evaluator.name);
}

void TestTcpEval::anAbortCodeIsDelivered_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<uint>("code");
    for (auto [text, code] : std::initializer_list<std::pair<const char*, uint>>{ { "ERROR: 0x06020000", 0x06020000 },
                                                                                  { "error:0x6090011", 0x06090011 },
                                                                                  { "Error: 0x05000000", 0x05000000 },
                                                                                  { "Error: 83886080", 0x05000000 },
                                                                                  { "Error: 0500000000", 0x05000000 },
                                                                                  { "Error: +100859904", 0x06030000 },
                                                                                  { "Error: 0x7FFFFFFF", 0x7FFFFFFF } })
        QTest::newRow(text) << QByteArray(text) << code;
}

void TestTcpEval::anAbortCodeIsDelivered()
{
    QFETCH(QByteArray, text);
    QFETCH(uint, code);
    const QByteArray line = "[12] " + text + "\r\n";
    const auto asError = static_cast<int32_t>(0u - 600u - code);
    for (const tEvaluator& evaluator : evaluators) {
        uint32_t abort = untouched;
        QCOMPARE(evaluator.run(line.constData(), &abort, false), evaluator.knowsAborts ? 4 : asError);
        QCOMPARE(abort, evaluator.knowsAborts ? code : untouched);
        QCOMPARE(run(evaluator, line), evaluator.knowsAborts ? 4 : asError);
    }
}

void TestTcpEval::nullPointersAreRefusedWhenAValueArrives()
{
    for (const tEvaluator& evaluator : evaluators)
        if (evaluator.kind != answersOK)
            for (const char* line : { "[12] 5", "[12] 999999999999", "[12] 1 x", "[12] 0x" })
                QVERIFY2(run(evaluator, line, true) == ERR_NULL_POINTER, evaluator.name);
}

void TestTcpEval::nullPointersDoNotMatterWithoutAValue()
{
    for (const tEvaluator& evaluator : evaluators) {
        QCOMPARE(run(evaluator, "[12] Error: 5", true), -605);
        QCOMPARE(run(evaluator, "[12]", true), int32_t(ERR_FORMAT));
        QCOMPARE(run(evaluator, "[x] 5", true), int32_t(ERR_FORMAT));
    }
    QCOMPARE(tcp_eval_can_message("[12] OK", nullptr, nullptr, nullptr), int32_t(ERR_RECEIVER_EMPTY));
}

void TestTcpEval::valueClearsTheAbortCode()
{
    for (const tEvaluator& evaluator : evaluators) {
        if (evaluator.kind != answersNumber && evaluator.kind != answersSigned && evaluator.kind != answersText)
            continue;
        uint32_t abort = untouched;
        QCOMPARE(evaluator.run("[12] 5", &abort, false), 0);
        QCOMPARE(abort, 0u);
    }
}

QTEST_APPLESS_MAIN(TestTcpEval)
#include "TestTcpEval.moc"

// Tests of the texts, domains and messages in response lines, and of what fits into the caller's buffers.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_eval.h"

#include <QByteArray>
#include <QtTest>

namespace
{

constexpr char canary = '~';
constexpr int spare = 8; // bytes after each buffer, which must stay unchanged

struct tResult {
    int32_t status;
    short length;
    QByteArray buffer; // with the spare bytes
};

tResult evalDomain(const QByteArray& line, short size)
{
    tResult result = { -1, 77, QByteArray(std::max<int>(size, 0) + spare, canary) };
    auto* buffer = reinterpret_cast<BYTE*>(result.buffer.data());
    result.status = tcp_eval_sdo_domain(line.constData(), &result.length, buffer, size, nullptr);
    return result;
}

tResult evalString(const QByteArray& line, short size)
{
    tResult result = { -1, 77, QByteArray(std::max<int>(size, 0) + spare, canary) };
    result.status = tcp_eval_sdo_string(line.constData(), &result.length, result.buffer.data(), size, nullptr);
    return result;
}

QByteArray filledUp(const QByteArray& data, short size)
{
    return data + QByteArray(std::max<int>(size, 0) + spare - data.size(), canary);
}

} // namespace

class TestTcpEvalData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void domainIsDecoded_data();
    void domainIsDecoded();
    void domainOfEveryLengthAndBufferSize();
    void domainNeedsLengthAndBuffer();
    void stringIsTakenPlainOrQuoted_data();
    void stringIsTakenPlainOrQuoted();
    void stringIsCutToTheBuffer_data();
    void stringIsCutToTheBuffer();
    void stringNeedsLengthAndBuffer();
    void onlyErrorWithColonIsAnErrorForTexts();
    void canMessageIsRead_data();
    void canMessageIsRead();
    void canMessageNeedsAllPointers();
    void canMessageReadsAtMostEightBytes();
    void rtrMessageIsRead_data();
    void rtrMessageIsRead();
    void rtrMessageNeedsDataUnlessTheLengthIsZero();
    void rtrMessageReadsAtMostEightBytes();
};

void TestTcpEvalData::domainIsDecoded_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("data");
    const std::pair<const char*, QByteArray> rows[] = {
        { "QUJD", "ABC" },
        { "QUJD\r\n", "ABC" },
        { "\tQUJD QUJD", "ABC" },
        { "QUJDRA==", "ABCD" },
        { "QUJDREU=", "ABCDE" },
        { "QUJDREVG", "ABCDEF" },
        { "QUJDRA", "ABCD" },
        { "QUJDREU", "ABCDE" },
        { "QQ==", "A" },
        { "QQ==QUJD", "A" },
        { "QUJDRA==\r\n", "ABCD" },
        { "AAAA", QByteArray(3, '\0') },
        { "AAA=", QByteArray(2, '\0') },
        { "AA==", QByteArray(1, '\0') },
        { "+/+/", "\xFB\xFF\xBF" },
        { "QUJDR", "ABC\x44" },
        { "Q", "\x40" },
        { "5", "\xE4" },
        { "12", "\xD7\x60" },
        { "127", "\xD7\x6E\xC0" },
        { "OK", "\x38\xA0" },
        { "e:5", "\x78" },
        { "ERROR 5", "\x11\x14\x4E\x44" },
        { "\r\n", "" },
        { "=", "" },
        { "====", "" },
        { "\"QUJD\"", "" },
        { "-QUJD", "" },
        { "QUJD-QUJD", "ABC" },
        { "QUJD\xE9QUJD", "ABC" },
        { "\xE9", "" },
    };
    for (const auto& [text, data] : rows)
        QTest::newRow(text) << QByteArray(text) << data;
}

void TestTcpEvalData::domainIsDecoded()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, data);
    const tResult result = evalDomain("[3] " + text, 64);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.length, static_cast<short>(data.size()));
    QCOMPARE(result.buffer.left(data.size()), data);
}

void TestTcpEvalData::domainOfEveryLengthAndBufferSize()
{
    QByteArray data;
    for (int length = 0; length < 40; ++length) {
        for (const auto option : { QByteArray::KeepTrailingEquals, QByteArray::OmitTrailingEquals })
            for (short size = -1; size < 45; ++size) {
                const tResult result = evalDomain("[3] " + data.toBase64(option) + "\r\n", size);
                const QByteArray kept = data.left(std::max<int>(size, 0));
                QCOMPARE(result.status, 0);
                QCOMPARE(result.length, static_cast<short>(kept.size()));
                QCOMPARE(result.buffer.left(kept.size()), kept);
                QCOMPARE(result.buffer.right(spare), QByteArray(spare, canary));
            }
        data += static_cast<char>(length * 37 + 200);
    }
}

void TestTcpEvalData::domainNeedsLengthAndBuffer()
{
    short length = 0;
    BYTE buffer[8];
    QCOMPARE(tcp_eval_sdo_domain("[3] QUJD", nullptr, buffer, 8, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(tcp_eval_sdo_domain("[3] QUJD", &length, nullptr, 8, nullptr), int32_t(ERR_NULL_POINTER));
}

void TestTcpEvalData::stringIsTakenPlainOrQuoted_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("value");
    for (auto [text, value] : std::initializer_list<std::pair<const char*, const char*>>{
             { "abc", "abc" },
             { "abc def", "abc" },
             { "abc\tdef", "abc" },
             { "abc\r\n", "abc" },
             { " \t abc", "abc" },
             { "5", "5" },
             { "OK", "OK" },
             { "!#$%&'()*+,-./:;<=>?@[]^_`{|}~\x7F", "!#$%&'()*+,-./:;<=>?@[]^_`{|}~\x7F" },
             { "a\"b\"c", "a\"b\"c" },
             { "abc\xE9xyz", "abc" },
             { "\xE9xyz", "" },
             { "\r\n", "" },
             { "\x01", "" },
             { "\"abc def\"", "abc def" },
             { "\"abc\" def", "abc" },
             { "\"a \"\"b\"\" c\"\r\n", "a \"b\" c" },
             { "\"\"", "" },
             { "\"\"abc", "" },
             { "\"\"\"\"", "\"" },
             { "\"\"\"", "\"" },
             { "\"\"\"abc\"\"\"", "\"abc\"" },
             { "\"\"\"\"\"\"", "\"\"" },
             { "\" abc \"", " abc " },
             { "\"abc", "abc" },
             { "\"abc\r\n", "abc" },
             { "\"abc\tdef\"", "abc" },
             { "\"abc\xE9xyz\"", "abc" },
             { "\"ab\x1F"
               "c\"",
               "ab" },
             { "\"\x1F\"", "" },
             { "\" \"", " " },
             { "\"", "" },
             { "error", "error" },
             { "\"Error: 5\"", "Error: 5" },
         })
        QTest::newRow(text) << QByteArray(text) << QByteArray(value);
}

void TestTcpEvalData::stringIsTakenPlainOrQuoted()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, value);
    const tResult result = evalString("[3] " + text, 64);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.length, static_cast<short>(value.size()));
    QCOMPARE(result.buffer, filledUp(value + '\0', 64));
}

void TestTcpEvalData::stringIsCutToTheBuffer_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("length");
    for (const char* text : { "abcdef", "\"abcdef\"" }) {
        QTest::addRow("%s, 8", text) << QByteArray(text) << 8 << QByteArray("abcdef\0", 7) << 6;
        QTest::addRow("%s, 7", text) << QByteArray(text) << 7 << QByteArray("abcdef\0", 7) << 6;
        QTest::addRow("%s, 6", text) << QByteArray(text) << 6 << QByteArray("abcde\0", 6) << 5;
        QTest::addRow("%s, 2", text) << QByteArray(text) << 2 << QByteArray("a\0", 2) << 1;
        QTest::addRow("%s, 1", text) << QByteArray(text) << 1 << QByteArray(1, '\0') << 0;
        QTest::addRow("%s, 0", text) << QByteArray(text) << 0 << QByteArray() << 0;
        QTest::addRow("%s, -1", text) << QByteArray(text) << -1 << QByteArray() << 0;
    }
    QTest::addRow("doubled quotes, 4") << QByteArray("\"\"\"\"\"\"\"\"\"\"") << 4 << QByteArray("\"\"\"\0", 4) << 3;
    QTest::addRow("empty, 1") << QByteArray("\"\"") << 1 << QByteArray(1, '\0') << 0;
    QTest::addRow("empty, 0") << QByteArray("\"\"") << 0 << QByteArray() << 0;
}

void TestTcpEvalData::stringIsCutToTheBuffer()
{
    QFETCH(QByteArray, text);
    QFETCH(int, size);
    QFETCH(QByteArray, stored);
    const tResult result = evalString("[3] " + text, static_cast<short>(size));
    QCOMPARE(result.status, 0);
    QTEST(static_cast<int>(result.length), "length");
    QCOMPARE(result.buffer, filledUp(stored, static_cast<short>(size)));
}

void TestTcpEvalData::stringNeedsLengthAndBuffer()
{
    short length = 0;
    char buffer[8];
    QCOMPARE(tcp_eval_sdo_string("[3] abc", nullptr, buffer, 8, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(tcp_eval_sdo_string("[3] abc", &length, nullptr, 8, nullptr), int32_t(ERR_NULL_POINTER));
}

void TestTcpEvalData::onlyErrorWithColonIsAnErrorForTexts()
{
    QCOMPARE(evalString("[3] error: 5", 64).status, -605);
    QCOMPARE(evalDomain("[3]  ERROR: 5", 64).status, -605);
    QCOMPARE(evalString("[3] Error:", 64).status, int32_t(ERR_FORMAT));
    for (const char* line : { "[3] error : 5", "[3] error 5", "[3] e: 5", "[3] errors: 5" }) {
        QCOMPARE(evalString(line, 64).status, 0);
        QCOMPARE(evalDomain(line, 64).status, 0);
    }
}

void TestTcpEvalData::canMessageIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("data");
    const struct {
        const char* text;
        int status, id, length;
        QByteArray data;
    } rows[] = {
        { "0x181 2 0x11 0x22", 0, 0x181, 2, "\x11\x22" },
        { "0x181 2 0x11 0x22\r\n", 0, 0x181, 2, "\x11\x22" },
        { "385\t2\t17\t042", 0, 0x181, 2, "\x11\x22" },
        { "0x181 2 0x11 0x22 0x33 0x44", 0, 0x181, 2, "\x11\x22" },
        { "0 0", 0, 0, 0, "" },
        { "0xFFFF 1 255", 0, 0xFFFF, 1, "\xFF" },
        { "0x181 8 1 2 3 4 5 6 7 8", 0, 0x181, 8, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "0x181 9 1 2 3 4 5 6 7 8 9", 0, 0x181, 9, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "0x181 32767 1 2 3 4 5 6 7 8", 0, 0x181, 32767, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "0x181 -1 1 2", 0, 0x181, -1, "" },
        { "0x181 +1 5", 0, 0x181, 1, "\x05" },
        { "OK", ERR_RECEIVER_EMPTY, -1, -1, "" },
        { "error: 5", -605, -1, -1, "" },
        { "ERROR: 0x06020000", -600 - 0x06020000, -1, -1, "" },
        { "0x181", ERR_FORMAT, 0x181, 0, "" },
        { "0x181 x", ERR_FORMAT, 0x181, 0, "" },
        { "0x181 2", ERR_FORMAT, 0x181, 2, "" },
        { "0x181 2 0x11", ERR_FORMAT, 0x181, 2, "\x11" },
        { "0x181 2 0x11 0x100", ERR_FORMAT, 0x181, 2, "\x11" },
        { "0x181 2 0x11 -1", ERR_FORMAT, 0x181, 2, "\x11" },
        { "0x181 8 1 2 3 4 5 6 7", ERR_FORMAT, 0x181, 8, "\x01\x02\x03\x04\x05\x06\x07" },
        { "0x181 32768", ERR_FORMAT, 0x181, -32768, "" },
        { "0x10000 0", ERR_FORMAT, -1, -1, "" },
        { "-1 0", ERR_FORMAT, -1, -1, "" },
        { "rtr", ERR_FORMAT, -1, -1, "" },
    };
    for (const auto& row : rows)
        QTest::newRow(row.text) << QByteArray(row.text) << row.status << row.id << row.length << row.data;
}

void TestTcpEvalData::canMessageIsRead()
{
    QFETCH(QByteArray, text);
    QFETCH(int, id); // -1: not compared
    QFETCH(int, length);
    QFETCH(QByteArray, data);
    uint16_t readId = 77;
    short readLength = 77;
    QByteArray buffer(8 + spare, canary);
    auto* bytes = reinterpret_cast<BYTE*>(buffer.data());
    QTEST(tcp_eval_can_message(("[3] " + text).constData(), &readId, &readLength, bytes), "status");
    if (id >= 0) {
        QCOMPARE(static_cast<int>(readId), id);
        QCOMPARE(static_cast<int>(readLength), length);
    }
    QCOMPARE(buffer.left(data.size()), data);
    QCOMPARE(buffer.right(spare), QByteArray(spare, canary));
}

void TestTcpEvalData::canMessageNeedsAllPointers()
{
    uint16_t id = 0;
    short length = 0;
    BYTE data[8];
    const char* line = "[3] 0x181 1 5";
    QCOMPARE(tcp_eval_can_message(line, nullptr, &length, data), int32_t(ERR_NULL_POINTER));
    QCOMPARE(tcp_eval_can_message(line, &id, nullptr, data), int32_t(ERR_NULL_POINTER));
    QCOMPARE(tcp_eval_can_message(line, &id, &length, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(tcp_eval_can_message(line, &id, &length, data), 0);
}

void TestTcpEvalData::canMessageReadsAtMostEightBytes()
{
    uint16_t id = 0;
    short length = 0;
    BYTE data[9] = { 0, 0, 0, 0, 0, 0, 0, 0, 77 };
    QCOMPARE(tcp_eval_can_message("[3] 1 9 1 2 3 4 5 6 7 8 x", &id, &length, data), 0);
    QCOMPARE(length, short(9));
    QCOMPARE(data[7], BYTE(8));
    QCOMPARE(data[8], BYTE(77));
}

void TestTcpEvalData::rtrMessageIsRead_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("data");
    const struct {
        const char* text;
        int status, length;
        QByteArray data;
    } rows[] = {
        { "2 0x11 0x22\r\n", 0, 2, "\x11\x22" },
        { "0", 0, 0, "" },
        { "8 1 2 3 4 5 6 7 8", 0, 8, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "9 1 2 3 4 5 6 7 8 9", 0, 9, "\x01\x02\x03\x04\x05\x06\x07\x08" },
        { "2 0x11", ERR_FORMAT, 2, "\x11" },
        { "2 0x11 256", ERR_FORMAT, 2, "\x11" },
        { "2 x", ERR_FORMAT, 2, "" },
        { "32768", ERR_FORMAT, -32768, "" },
        { "OK", ERR_FORMAT, 77, "" },
        { "-1", ERR_FORMAT, 77, "" },
        { "+1 5", ERR_FORMAT, 77, "" },
        { "Error: 5", -605, 77, "" },
        { "Error: 0x06020000", -600 - 0x06020000, 77, "" },
    };
    for (const auto& row : rows)
        QTest::newRow(row.text) << row.status << row.length << row.data;
}

void TestTcpEvalData::rtrMessageIsRead()
{
    QFETCH(QByteArray, data);
    short length = 77;
    QByteArray buffer(8 + spare, canary);
    const QByteArray line = QByteArray("[3] ") + QTest::currentDataTag();
    QTEST(tcp_eval_rtr_message(line.constData(), &length, reinterpret_cast<BYTE*>(buffer.data())), "status");
    QTEST(static_cast<int>(length), "length");
    QCOMPARE(buffer.left(data.size()), data);
    QCOMPARE(buffer.right(spare), QByteArray(spare, canary));
}

void TestTcpEvalData::rtrMessageNeedsDataUnlessTheLengthIsZero()
{
    BYTE data[8];
    QCOMPARE(tcp_eval_rtr_message("[3] 0", nullptr, data), int32_t(ERR_NULL_POINTER));
    short length = 2;
    QCOMPARE(tcp_eval_rtr_message("[3] 0", &length, nullptr), int32_t(ERR_NULL_POINTER));
    length = 0;
    QCOMPARE(tcp_eval_rtr_message("[3] 0", &length, nullptr), 0);
    length = 0;
    QCOMPARE(tcp_eval_rtr_message("[3] 1 5", &length, data), 0);
    QCOMPARE(length, short(1));
    length = 0; // more bytes than the length allows are not stored
    QVERIFY(tcp_eval_rtr_message("[3] 2 1 2", &length, nullptr) <= 0);
}

void TestTcpEvalData::rtrMessageReadsAtMostEightBytes()
{
    short length = 0;
    BYTE data[9] = { 0, 0, 0, 0, 0, 0, 0, 0, 77 };
    QCOMPARE(tcp_eval_rtr_message("[3] 100 1 2 3 4 5 6 7 8 x", &length, data), 0);
    QCOMPARE(length, short(100));
    QCOMPARE(data[7], BYTE(8));
    QCOMPARE(data[8], BYTE(77));
}

QTEST_APPLESS_MAIN(TestTcpEvalData)
#include "TestTcpEvalData.moc"

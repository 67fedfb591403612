// Tests of the scanner of response lines: the keywords, row by row, and the characters between them.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_scan.h"

#include <QByteArray>
#include <QtTest>

namespace
{

const struct {
    const char* text;
    int number;
} keywords[] = {
    { "b", 0 },
    { "communication", 1 },
    { "comm", 1 },
    { "copyright", 2 },
    { "disable", 3 },
    { "d", 4 },
    { "emcy", 5 },
    { "enable", 6 },
    { "error", 7 },
    { "event", 8 },
    { "execute", 9 },
    { "exec", 9 },
    { "exit", 10 },
    { "e", 7 },
    { "firmware", 11 },
    { "guarding", 12 },
    { "hardware", 13 },
    { "heartbeat", 14 },
    { "i8", 18 },
    { "i16", 19 },
    { "i24", 20 },
    { "i32", 21 },
    { "i40", 22 },
    { "i48", 23 },
    { "i56", 24 },
    { "i64", 25 },
    { "id", 15 },
    { "info", 16 },
    { "init", 17 },
    { "network", 26 },
    { "node", 27 },
    { "ok", 29 },
    { "os", 28 },
    { "pdo", 30 },
    { "preoperational", 31 },
    { "preop", 31 },
    { "p", 30 },
    { "r32", 33 },
    { "r64", 34 },
    { "read", 32 },
    { "receive", 35 },
    { "recv", 35 },
    { "restore", 37 },
    { "reset", 36 },
    { "rpdo", 38 },
    { "rtr", 39 },
    { "r", 32 },
    { "sdo_timeout", 40 },
    { "set", 42 },
    { "send", 41 },
    { "software", 43 },
    { "start", 44 },
    { "stop", 45 },
    { "store", 46 },
    { "sync", 47 },
    { "td", 49 },
    { "tpdo", 50 },
    { "t", 48 },
    { "u8", 52 },
    { "u16", 53 },
    { "u24", 54 },
    { "u32", 55 },
    { "u40", 56 },
    { "u48", 57 },
    { "u56", 58 },
    { "u64", 59 },
    { "user", 60 },
    { "us", 51 },
    { "version", 61 },
    { "vs", 62 },
    { "wait", 63 },
    { "write", 64 },
    { "w", 64 },
};

} // namespace

class TestTcpScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeywordHasItsNumber_data();
    void everyKeywordHasItsNumber();
    void keywordsHaveNoWordBoundary_data();
    void keywordsHaveNoWordBoundary();
    void lookaheadSkipsBlanksAndTabsOnly();
    void characterSkipsNothing();
    void endOfTextIsMinusOne();
    void nullPointersAreTheEnd();
    void domainIsTakenWithItsPadding_data();
    void domainIsTakenWithItsPadding();
    void stringIsTakenWithItsQuotes_data();
    void stringIsTakenWithItsQuotes();
    void bytesOf128AndAboveAreNegative();
    void minusIsTakenOnlyBeforeADigit();
    void compareIgnoresCase_data();
    void compareIgnoresCase();
};

void TestTcpScan::everyKeywordHasItsNumber_data()
{
    QTest::addColumn<int>("number");
    for (const auto& keyword : keywords)
        QTest::newRow(keyword.text) << keyword.number;
}

void TestTcpScan::everyKeywordHasItsNumber()
{
    QFETCH(int, number);
    const QByteArray lower = QTest::currentDataTag();
    QByteArray mixed = lower;
    mixed[0] = lower.left(1).toUpper().at(0);
    for (const QByteArray& word :
         { lower, lower.toUpper(), mixed, lower + ":", lower + " x", "\t " + lower + "\r\n" }) {
        std::uint32_t cursor = 0;
        QCOMPARE(token(word.constData(), &cursor), number);
        QCOMPARE(static_cast<qsizetype>(cursor), word.toLower().indexOf(lower) + lower.size());
    }
}

void TestTcpScan::keywordsHaveNoWordBoundary_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("taken");
    const struct {
        const char* text;
        int number, taken;
    } rows[] = {
        { "okay", 29, 2 },      { "ok5", 29, 2 },     { "errors", 7, 5 },   { "err", 7, 1 },
        { "exe", 7, 1 },        { "executor", 9, 4 }, { "eve", 7, 1 },      { "before", 0, 1 },
        { "done", 4, 1 },       { "disabled", 3, 7 }, { "preo", 30, 1 },    { "preopera", 31, 5 },
        { "resetting", 36, 5 }, { "restart", 32, 1 }, { "tpd", 48, 1 },     { "writing", 64, 1 },
        { "stores", 46, 5 },    { "users", 60, 4 },   { "commands", 1, 4 }, { "communicate", 1, 4 },
        { "receiving", 32, 1 }, { "o", -1, 0 },       { "i", -1, 0 },       { "i9", -1, 0 },
        { "u", -1, 0 },         { "com", -1, 0 },     { "s", -1, 0 },       { "sta", -1, 0 },
        { "xyz", -1, 0 },       { "0x1F", -1, 0 },    { "[", -1, 0 },       { "\xE9", -1, 0 },
    };
    for (const auto& row : rows)
        QTest::newRow(row.text) << row.number << row.taken;
}

void TestTcpScan::keywordsHaveNoWordBoundary()
{
    QFETCH(int, taken);
    std::uint32_t cursor = 0;
    QTEST(token(QTest::currentDataTag(), &cursor), "number");
    QCOMPARE(static_cast<int>(cursor), taken);
}

void TestTcpScan::lookaheadSkipsBlanksAndTabsOnly()
{
    std::uint32_t cursor = 0;
    QCOMPARE(lookahead(" \t \tx", &cursor), static_cast<int>('x'));
    QCOMPARE(cursor, 4u);
    QCOMPARE(lookahead(" \t \tx", &cursor), static_cast<int>('x'));
    QCOMPARE(cursor, 4u);
    for (const char* other : { "\rx", "\nx", "\vx", "\fx" }) {
        cursor = 0;
        QCOMPARE(lookahead(other, &cursor), static_cast<int>(*other));
        QCOMPARE(cursor, 0u);
    }
}

void TestTcpScan::characterSkipsNothing()
{
    std::uint32_t cursor = 0;
    QCOMPARE(character(" x", &cursor), static_cast<int>(' '));
    QCOMPARE(character(" x", &cursor), static_cast<int>('x'));
    QCOMPARE(cursor, 2u);
}

void TestTcpScan::endOfTextIsMinusOne()
{
    std::uint32_t cursor = 0;
    QCOMPARE(lookahead("", &cursor), -1);
    QCOMPARE(character("", &cursor), -1);
    QCOMPARE(token("", &cursor), -1);
    QCOMPARE(cursor, 0u);
    QCOMPARE(lookahead(" \t", &cursor), -1);
    QCOMPARE(character(" \t", &cursor), -1);
    QCOMPARE(token(" \t", &cursor), -1);
    QCOMPARE(cursor, 2u);
}

void TestTcpScan::nullPointersAreTheEnd()
{
    std::uint32_t cursor = 0;
    QCOMPARE(lookahead(nullptr, &cursor), -1);
    QCOMPARE(lookahead("x", nullptr), -1);
    QCOMPARE(character(nullptr, &cursor), -1);
    QCOMPARE(character("x", nullptr), -1);
    QCOMPARE(token(nullptr, &cursor), -1);
    QCOMPARE(token("ok", nullptr), -1);
    QCOMPARE(cursor, 0u);
    QCOMPARE(compare(nullptr, "ok"), 0);
    QCOMPARE(compare("ok", nullptr), 0);
    std::uint8_t number = 9;
    QCOMPARE(ascii2unsigned8(nullptr, &cursor, &number), 0);
    QCOMPARE(number, std::uint8_t(0));
    QCOMPARE(ascii2unsigned8("1", nullptr, nullptr), 0);
    QCOMPARE(ascii2unsigned8("31", &cursor, nullptr), 1);
    QCOMPARE(cursor, 2u);

    cursor = 0;
    short length = 0;
    BYTE data[4];
    char text[4];
    QCOMPARE(ascii2domain(nullptr, &cursor, data, &length, 4), 0);
    QCOMPARE(ascii2domain("QUJD", nullptr, data, &length, 4), 0);
    QCOMPARE(ascii2domain("QUJD", &cursor, nullptr, &length, 4), 0);
    QCOMPARE(ascii2domain("QUJD", &cursor, data, nullptr, 4), 0);
    QCOMPARE(ascii2string(nullptr, &cursor, text, &length, 4), 0);
    QCOMPARE(ascii2string("abc", nullptr, text, &length, 4), 0);
    QCOMPARE(ascii2string("abc", &cursor, nullptr, &length, 4), 0);
    QCOMPARE(ascii2string("abc", &cursor, text, nullptr, 4), 0);
}

void TestTcpScan::domainIsTakenWithItsPadding_data()
{
    QTest::addColumn<int>("taken");
    for (auto [text, taken] : std::initializer_list<std::pair<const char*, int>>{ { "QUJD", 4 },
                                                                                  { "QUJDx", 5 },
                                                                                  { "QUJD-x", 4 },
                                                                                  { "QQ==-", 4 },
                                                                                  { "QQ==QUJD", 4 },
                                                                                  { "QQ= =", 3 },
                                                                                  { "QQ=====;", 7 },
                                                                                  { " \tQUI=\r\n", 6 },
                                                                                  { "====x", 4 },
                                                                                  { " ", 1 },
                                                                                  { "", 0 } })
        QTest::addRow("\"%s\"", text) << taken;
}

void TestTcpScan::domainIsTakenWithItsPadding()
{
    const QByteArray text = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    std::uint32_t cursor = 0;
    short length = 0;
    BYTE data[8];
    QCOMPARE(ascii2domain(text.constData(), &cursor, data, &length, 8), 1);
    QTEST(static_cast<int>(cursor), "taken");
}

void TestTcpScan::stringIsTakenWithItsQuotes_data()
{
    QTest::addColumn<int>("taken");
    for (auto [text, taken] : std::initializer_list<std::pair<const char*, int>>{ { "abc", 3 },
                                                                                  { "abc def", 3 },
                                                                                  { " \tabc\r\n", 5 },
                                                                                  { "'a b'", 2 },
                                                                                  { "\"a b\"c", 5 },
                                                                                  { "\"a\"\"b\"\"", 7 },
                                                                                  { "\"a b", 4 },
                                                                                  { "\"a\x1F\"", 2 },
                                                                                  { "\"\"x", 2 },
                                                                                  { " ", 1 },
                                                                                  { "", 0 } })
        QTest::addRow("<%s>", text) << taken;
}

void TestTcpScan::stringIsTakenWithItsQuotes()
{
    const QByteArray text = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    for (const short size : { short(8), short(0) }) {
        std::uint32_t cursor = 0;
        short length = 0;
        char stored[8];
        QCOMPARE(ascii2string(text.constData(), &cursor, stored, &length, size), 1);
        QTEST(static_cast<int>(cursor), "taken");
    }
}

// That of 255 reads as the end of the text, though it is taken.
void TestTcpScan::bytesOf128AndAboveAreNegative()
{
    for (auto [text, code] : std::initializer_list<std::pair<const char*, int>>{
             { "\x7F", 127 }, { "\x80", -128 }, { "\xFE", -2 }, { "\xFF", -1 } }) {
        std::uint32_t cursor = 0;
        QCOMPARE(lookahead(text, &cursor), code);
        QCOMPARE(cursor, 0u);
        QCOMPARE(character(text, &cursor), code);
        QCOMPARE(cursor, 1u);
    }
}

void TestTcpScan::minusIsTakenOnlyBeforeADigit()
{
    for (auto [text, taken] : std::initializer_list<std::pair<const char*, std::uint32_t>>{
             { "-", 0 }, { "-x", 0 }, { "-5", 2 }, { "-a", 0 }, { "--5", 0 }, { "+x", 1 } }) {
        std::uint32_t cursor = 0;
        std::int8_t number = 77;
        ascii2integer8(text, &cursor, &number);
        QCOMPARE(cursor, taken);
    }
}

void TestTcpScan::compareIgnoresCase_data()
{
    QTest::addColumn<QByteArray>("keyword");
    QTest::addColumn<int>("result");
    QTest::newRow("Error: 5") << QByteArray("Error:") << 1;
    QTest::newRow("eRROR:") << QByteArray("Error:") << 1;
    QTest::newRow("AbcXyZ") << QByteArray("aBCxYz") << 1;
    QTest::newRow("[@]") << QByteArray("{`}") << 0;
    QTest::newRow("ERROR 5") << QByteArray("Error:") << 0;
    QTest::newRow("Error") << QByteArray("Error:") << 0;
    QTest::newRow(" error:") << QByteArray("Error:") << 0;
    QTest::newRow("anything") << QByteArray("") << 1;
}

void TestTcpScan::compareIgnoresCase()
{
    QFETCH(QByteArray, keyword);
    QTEST(compare(QTest::currentDataTag(), keyword.constData()), "result");
}

QTEST_APPLESS_MAIN(TestTcpScan)
#include "TestTcpScan.moc"

// Tests of the base64 codec, group by group, also against Qt's own encoder.
// SPDX-License-Identifier: MIT
#include "tcp/base64.h"

#include <QByteArray>
#include <QtTest>

#include <cstring>
#include <memory>

namespace
{

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char canary = '~';

const unsigned char* bytes(const QByteArray& data)
{
    return reinterpret_cast<const unsigned char*>(data.constData());
}

/// Six characters after encoding `length` bytes of `data`; what was not written is '~'.
QByteArray encoded(const QByteArray& data, int length, int room, int* result = nullptr)
{
    QByteArray output(6, canary);
    const int count = base64_encode(bytes(data), length, output.data(), room);
    if (result != nullptr)
        *result = count;
    return output;
}

/// Five bytes after decoding `length` characters of `text`; what was not written is '~'.
QByteArray decoded(const QByteArray& text, int length, int room, int* result = nullptr)
{
    QByteArray output(5, canary);
    const int count = base64_decode(text.constData(), length, reinterpret_cast<unsigned char*>(output.data()), room);
    if (result != nullptr)
        *result = count;
    return output;
}

} // namespace

class TestBase64 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodesOneGroup_data();
    void encodesOneGroup();
    void encodesLikeQt();
    void encodesEverySingleByte();
    void byteBehindAGroupOfTwoEntersTheThirdCharacter();
    void decodesOneGroup_data();
    void decodesOneGroup();
    void decodesEveryTripleThatQtEncodes();
    void everyCharacterOfTheAlphabetHasItsPlaceAsValue();
    void onlyTheAlphabetCounts();
    void charactersOutsideTheAlphabetDecodeByTheirRange_data();
    void charactersOutsideTheAlphabetDecodeByTheirRange();
    void singleCharacterYieldsItsSixBitsShiftedLeft();
    void bytesOfBrokenPaddingCount_data();
    void bytesOfBrokenPaddingCount();
    void charactersBehindTheGroupAreLookedAt_data();
    void charactersBehindTheGroupAreLookedAt();
    void charactersBehindATerminatingZeroAreLookedAt();
    void noMoreCharactersAreLookedAtThanThereIsRoom();
    void versionIsPinned()
    {
        QCOMPARE(QByteArray(base64_version()), QByteArray("Velmora gateway client, base64, 2026-11-21"));
    }
};

void TestBase64::encodesOneGroup_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("result");

    const struct {
        const char* data;
        int length, room;
        const char* text;
        int result;
    } rows[] = {
        { "ABC", 3, 4, "QUJD~~", 4 },   { "ABC", 3, 3, "QUJ~~~", 3 }, { "ABC", 3, 2, "QU~~~~", 2 },
        { "ABC", 3, 1, "Q~~~~~", 1 },   { "ABC", 3, 0, "~~~~~~", 0 }, { "ABC", 3, 5, "QUJD~~", 5 },
        { "ABC", 3, 99, "QUJD~~", 99 }, { "AB", 2, 4, "QUI=~~", 3 },  { "AB", 2, 3, "QUI~~~", 3 },
        { "AB", 2, 2, "QU~~~~", 2 },    { "AB", 2, 1, "Q~~~~~", 1 },  { "AB", 2, 0, "~~~~~~", 0 },
        { "AB", 2, 9, "QUI=~~", 3 },    { "A", 1, 4, "QQ==~~", 2 },   { "A", 1, 3, "QQ=~~~", 2 },
        { "A", 1, 2, "QQ~~~~", 2 },     { "A", 1, 1, "Q~~~~~", 1 },   { "A", 1, 0, "~~~~~~", 0 },
        { "", 0, 4, "====~~", 0 },      { "", 0, 3, "===~~~", 0 },    { "", 0, 2, "==~~~~", 0 },
        { "", 0, 1, "=~~~~~", 0 },      { "", 0, 0, "~~~~~~", 0 },    { "ABC", 3, -1, "~~~~~~", -1 },
    };
    for (const auto& row : rows)
        QTest::addRow("%d bytes, room %d", row.length, row.room)
            << QByteArray(row.data) << row.length << row.room << QByteArray(row.text) << row.result;
}

void TestBase64::encodesOneGroup()
{
    QFETCH(QByteArray, data);
    QFETCH(int, length);
    QFETCH(int, room);
    int result = 0;
    const QByteArray padded = data + QByteArray(3, '\0');
    QTEST(encoded(padded, length, room, &result), "text");
    QTEST(result, "result");
}

void TestBase64::encodesLikeQt()
{
    for (unsigned int seed = 0; seed < 20000; ++seed) {
        const unsigned int mixed = seed * 2654435761u;
        QByteArray data;
        for (int byte = 0; byte < static_cast<int>(1 + seed % 3); ++byte)
            data += static_cast<char>(mixed >> (8 * byte));
        const QByteArray text = encoded(data + '\0', static_cast<int>(data.size()), 4).left(4);
        QCOMPARE(text, data.toBase64());
    }
}

void TestBase64::encodesEverySingleByte()
{
    for (int value = 0; value < 256; ++value) {
        const QByteArray data(1, static_cast<char>(value));
        int result = 0;
        QCOMPARE(encoded(data + QByteArray("\xFF\xFF"), 1, 4, &result).left(4), data.toBase64());
        QCOMPARE(result, 2);
        QCOMPARE(decoded(data.toBase64(), 2, 3, &result).left(1), data);
        QCOMPARE(result, 1);
    }
}

void TestBase64::byteBehindAGroupOfTwoEntersTheThirdCharacter()
{
    QCOMPARE(encoded(QByteArray("AB\x00", 3), 2, 4).left(4), QByteArray("QUI="));
    QCOMPARE(encoded("AB\x3F", 2, 4).left(4), QByteArray("QUI="));
    QCOMPARE(encoded("AB\x40", 2, 4).left(4), QByteArray("QUJ="));
    QCOMPARE(encoded("AB\x80", 2, 4).left(4), QByteArray("QUK="));
    QCOMPARE(encoded("AB\xFF", 2, 4).left(4), QByteArray("QUL="));
    QCOMPARE(encoded("AB\xFF", 2, 3).left(4), QByteArray("QUL~"));
}

void TestBase64::decodesOneGroup_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("result");

    const struct {
        const char* text;
        int length, room;
        const char* data;
        int result;
    } rows[] = {
        { "QUJD", 4, 3, "ABC~~", 3 }, { "QUJD", 4, 2, "AB~~~", 2 },    { "QUJD", 4, 1, "A~~~~", 1 },
        { "QUJD", 4, 0, "~~~~~", 0 }, { "QUJD", 4, 9, "ABC~~", 3 },    { "QUI=", 3, 2, "AB~~~", 2 },
        { "QUI=", 3, 1, "A~~~~", 1 }, { "QUI=", 3, 0, "~~~~~", 0 },    { "QQ==", 2, 1, "A~~~~", 1 },
        { "QQ==", 2, 0, "~~~~~", 0 }, { "Q===", 1, 1, "\x40~~~~", 1 }, { "Q===", 1, 0, "~~~~~", 0 },
    };
    for (const auto& row : rows)
        QTest::addRow("%s, %d characters, room %d", row.text, row.length, row.room)
            << QByteArray(row.text) << row.length << row.room << QByteArray(row.data) << row.result;

    // Bytes that are not counted are written, too.
    QTest::newRow("QUI=, 3 characters, room 3") << QByteArray("QUI=") << 3 << 3 << QByteArray("AB\0~~", 5) << 2;
    QTest::newRow("QQ==, 2 characters, room 2") << QByteArray("QQ==") << 2 << 2 << QByteArray("A\0~~~", 5) << 1;
    QTest::newRow("QQ==, 2 characters, room 3") << QByteArray("QQ==") << 2 << 3 << QByteArray("A\0\0~~", 5) << 1;
}

void TestBase64::decodesOneGroup()
{
    QFETCH(QByteArray, text);
    QFETCH(int, length);
    QFETCH(int, room);
    int result = -1;
    QTEST(decoded(text, length, room, &result), "data");
    QTEST(result, "result");
}

void TestBase64::decodesEveryTripleThatQtEncodes()
{
    for (unsigned int seed = 0; seed < 20000; ++seed) {
        const unsigned int mixed = seed * 2654435761u;
        QByteArray data;
        for (int byte = 0; byte < 3; ++byte)
            data += static_cast<char>(mixed >> (8 * byte));
        int result = 0;
        QCOMPARE(decoded(data.toBase64(), 4, 3, &result).left(3), data);
        QCOMPARE(result, 3);
    }
}

void TestBase64::everyCharacterOfTheAlphabetHasItsPlaceAsValue()
{
    for (int value = 0; value < 64; ++value) {
        const QByteArray one(1, alphabet[value]);
        QCOMPARE(decoded(one + "AAA", 4, 3).left(3),
                 QByteArray(1, static_cast<char>(value << 2)) + QByteArray(2, '\0'));
        int result = 0;
        QCOMPARE(decoded("AAA" + one, 4, 3, &result).left(3), QByteArray(2, '\0') + static_cast<char>(value));
        QCOMPARE(result, 3);
    }
}

void TestBase64::onlyTheAlphabetCounts()
{
    for (int value = 0; value < 256; ++value) {
        const char character = static_cast<char>(value);
        const bool member = value != 0 && std::strchr(alphabet, character) != nullptr;
        const QByteArray one(1, character);
        int result = -1;
        for (int place = 0; place < 3; ++place) {
            decoded(QByteArray("////").replace(place, 1, one), 4, 3, &result);
            QVERIFY2(result == (member ? 3 : 2), qPrintable(QStringLiteral("%1 at %2").arg(value).arg(place)));
        }
        decoded("///" + one, 4, 3, &result); // the last character of a group is not checked
        QCOMPARE(result, 3);
        decoded(one + "===", 1, 1, &result);
        QCOMPARE(result, member ? 1 : 0);
    }
}

void TestBase64::charactersOutsideTheAlphabetDecodeByTheirRange_data()
{
    QTest::addColumn<char>("character");
    QTest::addColumn<int>("value");
    for (auto [character, value] : std::initializer_list<std::pair<const char*, int>>{ { " ", 0 },
                                                                                       { "!", 0 },
                                                                                       { "*", 0 },
                                                                                       { ",", 0 },
                                                                                       { "-", 0 },
                                                                                       { ".", 0 },
                                                                                       { ":", 62 },
                                                                                       { ";", 63 },
                                                                                       { "[", 26 },
                                                                                       { "]", 28 },
                                                                                       { "_", 30 },
                                                                                       { "`", 31 },
                                                                                       { "{", 52 },
                                                                                       { "~", 55 },
                                                                                       { "\x7F", 56 },
                                                                                       { "\x80", 57 },
                                                                                       { "\x86", 63 },
                                                                                       { "\r", 0 },
                                                                                       { "\n", 0 } })
        QTest::addRow("code %d", static_cast<unsigned char>(*character)) << *character << value;
}

void TestBase64::charactersOutsideTheAlphabetDecodeByTheirRange()
{
    QFETCH(char, character);
    QFETCH(int, value);
    const QByteArray one(1, character);
    int result = 0;
    QCOMPARE(decoded(one + "AAA", 4, 3, &result).at(0), static_cast<char>(value << 2));
    QCOMPARE(result, 2);
    QCOMPARE(decoded("A" + one + "AA", 4, 3).left(2),
             QByteArray(1, static_cast<char>(value >> 4)) + static_cast<char>(value << 4));
    QCOMPARE(decoded("AA" + one + "A", 4, 3).mid(1, 2),
             QByteArray(1, static_cast<char>(value >> 2)) + static_cast<char>(value << 6));
    QCOMPARE(decoded("AAA" + one, 4, 3).at(2), static_cast<char>(value));
}

void TestBase64::singleCharacterYieldsItsSixBitsShiftedLeft()
{
    for (int value = 0; value < 64; ++value) {
        int result = 0;
        QCOMPARE(decoded(QByteArray(1, alphabet[value]) + "===", 1, 1, &result).at(0), static_cast<char>(value << 2));
        QCOMPARE(result, 1);
    }
}

void TestBase64::bytesOfBrokenPaddingCount_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("QR==") << 2 << QByteArray("A\x10");
    QTest::newRow("QP==") << 2 << QByteArray("@\xF0");
    QTest::newRow("QUJ=") << 3 << QByteArray("AB\x40");
    QTest::newRow("QUL=") << 3 << QByteArray("AB\xC0");
    QTest::newRow("QUH=") << 3 << QByteArray("AA\xC0");
}

void TestBase64::bytesOfBrokenPaddingCount()
{
    QFETCH(int, length);
    QFETCH(QByteArray, data);
    int result = 0;
    const QByteArray output = decoded(QTest::currentDataTag(), length, 3, &result);
    QCOMPARE(result, static_cast<int>(data.size()));
    QCOMPARE(output.left(data.size()), data);
}

void TestBase64::charactersBehindTheGroupAreLookedAt_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("result");
    QTest::newRow("Q===") << 1 << QByteArray("@\0\0", 3) << 1;
    QTest::newRow("QA==") << 1 << QByteArray("@\0\0", 3) << 2;
    QTest::newRow("Q=A=") << 1 << QByteArray("@\0\0", 3) << 2;
    QTest::newRow("QAA=") << 1 << QByteArray("@\0\0", 3) << 3;
    QTest::newRow("QQA=") << 2 << QByteArray("A\0\0", 3) << 2;
    QTest::newRow("QQ=A") << 2 << QByteArray("A\0\0", 3) << 1;
    QTest::newRow("QUIA") << 3 << QByteArray("AB\0", 3) << 2;
}

void TestBase64::charactersBehindTheGroupAreLookedAt()
{
    QFETCH(int, length);
    QFETCH(QByteArray, data);
    int result = -1;
    QCOMPARE(decoded(QTest::currentDataTag(), length, 3, &result).left(3), data);
    QTEST(result, "result");
}

void TestBase64::charactersBehindATerminatingZeroAreLookedAt()
{
    int result = -1;
    decoded(QByteArray("Q\0A", 3), 1, 3, &result);
    QCOMPARE(result, 2); // the third character counts, the zero before it does not
    decoded(QByteArray("Q\0=", 3), 1, 3, &result);
    QCOMPARE(result, 1);
    decoded(QByteArray("\0AA", 3), 0, 3, &result);
    QCOMPARE(result, 2);
}

void TestBase64::noMoreCharactersAreLookedAtThanThereIsRoom()
{
    for (int room = 0; room <= 3; ++room) {
        // Of the exact size, so that the address sanitizer finds overruns.
        const std::unique_ptr<char[]> text(new char[static_cast<std::size_t>(room)]);
        std::fill_n(text.get(), room, 'Q');
        unsigned char data[3] = {};
        QCOMPARE(base64_decode(text.get(), std::min(room, 1), data, room), room);
    }
}

QTEST_APPLESS_MAIN(TestBase64)
#include "TestBase64.moc"

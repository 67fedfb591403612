// The characters of which the grammar of a data sheet's lines is made.
// SPDX-License-Identifier: MIT
#include "dic/IniGrammar.h"

#include <QTest>

using namespace iniGrammar;

class TestIniGrammar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void charactersAreThoseOfUtf8_data();
    void charactersAreThoseOfUtf8();
    void bytesThatAreNoUtf8AreReplacedOneByOne_data();
    void bytesThatAreNoUtf8AreReplacedOneByOne();
    void visibleAsciiIsNeitherBlankNorDelete();
};

void TestIniGrammar::charactersAreThoseOfUtf8_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::addColumn<char32_t>("code");
    for (const char32_t code : { U'\x01', U'a', U'\x7F', U'\x80', U'\x7FF', U'\x800', U'\u20AC', U'\xFFFF', U'\x10000',
                                 U'\U0001F600', U'\x10FFFF' })
        QTest::addRow("U+%04X", unsigned{ code }) << QString::fromUcs4(&code, 1).toStdString() << code;
}

void TestIniGrammar::charactersAreThoseOfUtf8()
{
    QFETCH(const std::string, bytes);
    const tCharacter character = characterAt(bytes + "more");
    QTEST(character.code, "code");
    QCOMPARE(character.size, bytes.size());
    QTEST(characterAt(bytes).code, "code");
}

void TestIniGrammar::bytesThatAreNoUtf8AreReplacedOneByOne_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::newRow("continuation") << std::string("\x80");
    QTest::newRow("overlong") << std::string("\xC1\x81");
    QTest::newRow("cut after one of two bytes") << std::string("\xC3");
    QTest::newRow("cut after two of three bytes") << std::string("\xE2\x82");
    QTest::newRow("cut after three of four bytes") << std::string("\xF0\x9F\x98");
}

void TestIniGrammar::bytesThatAreNoUtf8AreReplacedOneByOne()
{
    QFETCH(const std::string, bytes);
    const tCharacter character = characterAt(bytes);
    QCOMPARE(character.code, U'\xFFFD');
    QCOMPARE(character.size, 1U);
}

void TestIniGrammar::visibleAsciiIsNeitherBlankNorDelete()
{
    QByteArray visible;
    for (int byte = 0; byte < 0x100; ++byte)
        if (isVisibleAscii(static_cast<char>(byte)))
            visible += static_cast<char>(byte);
    QCOMPARE(visible.size(), '~' - ' ');
    QCOMPARE(visible.front(), '!');
    QCOMPARE(visible.back(), '~');
}

QTEST_APPLESS_MAIN(TestIniGrammar)
#include "TestIniGrammar.moc"

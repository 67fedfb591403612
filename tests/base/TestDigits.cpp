// The digits of numbers in texts.
// SPDX-License-Identifier: MIT
#include "base/Digits.h"

#include <QByteArray>
#include <QTest>

class TestDigits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digitsOfBothCasesHaveTheirValues();
    void everyOtherCharacterGives16();
};

constexpr char lowerDigits[] = "0123456789abcdef";
constexpr char upperDigits[] = "0123456789ABCDEF";

void TestDigits::digitsOfBothCasesHaveTheirValues()
{
    for (std::uint32_t value = 0; value < 16; ++value) {
        QCOMPARE(digitOf(lowerDigits[value]), value);
        QCOMPARE(digitOf(upperDigits[value]), value);
    }
}

void TestDigits::everyOtherCharacterGives16()
{
    const QByteArray digits = QByteArray(lowerDigits) + upperDigits;
    for (int code = 0; code < 0x100; ++code) {
        const auto character = static_cast<char>(code);
        if (!digits.contains(character))
            QCOMPARE(digitOf(character), 16U);
    }
}

QTEST_APPLESS_MAIN(TestDigits)
#include "TestDigits.moc"

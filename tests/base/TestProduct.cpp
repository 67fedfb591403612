// Tests of the product's identity and of its build number.
// SPDX-License-Identifier: MIT
#include "base/Product.h"

#include <QByteArray>
#include <QtTest>

class TestProduct : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buildNumberIsThatOfTheRevision();
    void buildNumberIsReadFromAKeyword_data();
    void buildNumberIsReadFromAKeyword();
    void namesAreFixed();
};

void TestProduct::buildNumberIsThatOfTheRevision()
{
    QCOMPARE(QByteArray(product::revision), QByteArray("$Rev: 61 $"));
    QCOMPARE(product::buildNumber(), 61);
}

void TestProduct::buildNumberIsReadFromAKeyword_data()
{
    QTest::addColumn<int>("number");
    for (auto [keyword, number] : std::initializer_list<std::pair<const char*, int>>{ { "$Rev: 61 $", 61 },
                                                                                      { "$Rev: 0 $", 0 },
                                                                                      { "$Rev: 12345 $", 12345 },
                                                                                      { "$Rev:7 $", 7 },
                                                                                      { "$Rev: 0x3D $", 61 },
                                                                                      { "$Rev: 075 $", 61 },
                                                                                      { "$Rev$", 0 },
                                                                                      { "$Rev: $", 0 },
                                                                                      { "$Rev: x $", 0 },
                                                                                      { "$Id: 61 $", 0 },
                                                                                      { " $Rev: 61 $", 0 },
                                                                                      { "61", 0 },
                                                                                      { "", 0 } })
        QTest::newRow(keyword) << number;
}

void TestProduct::buildNumberIsReadFromAKeyword()
{
    QTEST(product::buildNumber(QTest::currentDataTag()), "number");
}

void TestProduct::namesAreFixed()
{
    QCOMPARE(QByteArray(product::name), QByteArray("Velmora"));
    QCOMPARE(QByteArray(product::title), QByteArray("CANopen Object Browser"));
    QCOMPARE(QByteArray(product::version), QByteArray("0.2"));
    QCOMPARE(QByteArray(product::organisation), QByteArray("Brask Works"));
}

QTEST_APPLESS_MAIN(TestProduct)
#include "TestProduct.moc"

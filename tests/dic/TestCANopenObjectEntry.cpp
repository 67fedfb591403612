// Entries: fields, value range, names of the enumerations with the match rule of each table.
// SPDX-License-Identifier: MIT
#include "dic/CANopenObjectEntry.h"

#include "NameRows.h"

#include <QTest>

using T = CCANopenObjectEntry;

static_assert(T::categoryOptional == 0 && T::categoryMandatory == 1 && T::categoryConditional == 2);
static_assert(T::accessCONST == 0 && T::accessRO == 1 && T::accessWO == 2 && T::accessRW == 3);
static_assert(T::accessRWR == 4 && T::accessRWW == 5);
static_assert(T::mappingNo == 0 && T::mappingDefault == 1 && T::mappingOptional == 2);
static_assert(T::storableNo == 0 && T::storableYes == 1 && T::storableAuto == 2);
static_assert(T::statePublic == 0 && T::stateProtected == 1 && T::statePrivate == 2 && T::stateInvalid == -1);
static_assert(T::typeVoid == 0 && T::typeBoolean == 1 && T::typeInteger8 == 2 && T::typeInteger16 == 3);
static_assert(T::typeInteger32 == 4 && T::typeUnsigned8 == 5 && T::typeUnsigned16 == 6 && T::typeUnsigned32 == 7);
static_assert(T::typeReal32 == 8 && T::typeVisibleString == 9 && T::typeOctetString == 10 && T::typeDate == 11);
static_assert(T::typeTimeOfDay == 12 && T::typeTimeDifference == 13 && T::typeDomain == 15 && T::typeInteger24 == 16);
static_assert(T::typeReal64 == 17 && T::typeInteger40 == 18 && T::typeInteger48 == 19 && T::typeInteger56 == 20);
static_assert(T::typeInteger64 == 21 && T::typeUnsigned24 == 22 && T::typeUnsigned40 == 24 && T::typeUnsigned48 == 25);
static_assert(T::typeUnsigned56 == 26 && T::typeUnsigned64 == 27 && T::typePDOParameter == 32);
static_assert(T::typePDOMapping == 33 && T::typeSDOParameter == 34 && T::typeIdentity == 35);

class TestCANopenObjectEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newEntryIsEmptyButForIndexAndSubIndex();
    void entryWithoutNumbersHasZeros();
    void textsAreStoredAsTheyAre();
    void anyNumberIsStoredInEnumerationFields_data() { numberRows({ 0, 1, 5, 14, 0x60, 0xFFFF, 0x12345, -1 }); }
    void anyNumberIsStoredInEnumerationFields();
    void objectFlagsHaveThirtyTwoBits();
    void valueRangeShowsTheLimits_data();
    void valueRangeShowsTheLimits();
    void dataTypeNameReadsAsNumber_data(); // no "void" and no structures here
    void dataTypeNameReadsAsNumber() { compareName(&CCANopenObjectEntry::getDataTypeByName); }
    void categoryNameIsAPrefixInAnyCase_data();
    void categoryNameIsAPrefixInAnyCase() { compareName(&CCANopenObjectEntry::getCategoryByName); }
    void accessNameReadsAsNumber_data();
    void accessNameReadsAsNumber() { compareName(&CCANopenObjectEntry::getAccessByName); }
    void mappingNameIsAPrefixInAnyCaseOrADigit_data();
    void mappingNameIsAPrefixInAnyCaseOrADigit() { compareName(&CCANopenObjectEntry::getMappingByName); }
    void storableNameIsAPrefixInAnyCaseOrADigit_data();
    void storableNameIsAPrefixInAnyCaseOrADigit() { compareName(&CCANopenObjectEntry::getStorableByName); }
    void stateNameReadsAsNumber_data() { nameRows(stateNamesInAnyCase); }
    void stateNameReadsAsNumber() { compareName(&CCANopenObjectEntry::getStateByName); }
    void dataTypeShowsAsName(); // structures show as user-defined here
    void categoryShowsAsName();
    void accessShowsAsName();
    void mappingShowsAsName();
    void storableShowsAsName();
    void stateShowsAsName() { compareTexts(&CCANopenObjectEntry::getStateByIndex, "Invalid", stateTexts); }
    void versionIsARevision() { QCOMPARE(QByteArray(CCANopenObjectEntry::version()), QByteArray("$Rev: 1 $")); }
};

void TestCANopenObjectEntry::newEntryIsEmptyButForIndexAndSubIndex()
{
    const CCANopenObjectEntry entry(0x1018, 0xFE);
    QCOMPARE(int(entry.getIndex()), 0x1018);
    QCOMPARE(int(entry.getSubindex()), 0xFE);
    for (const QString& text : { entry.getName(), entry.getLowLimit(), entry.getHighLimit(), entry.getDefaultValue() })
        QCOMPARE(text, QString(""));
    QCOMPARE(int(entry.getDataType()), 0);
    QCOMPARE(int(entry.getCategory()), 0);
    QCOMPARE(int(entry.getAccess()), 0);
    QCOMPARE(int(entry.getPDOMapping()), 0);
    QCOMPARE(entry.getObjectFlags(), 0U);
}

void TestCANopenObjectEntry::entryWithoutNumbersHasZeros()
{
    const CCANopenObjectEntry entry;
    QCOMPARE(int(entry.getIndex()), 0);
    QCOMPARE(int(entry.getSubindex()), 0);
}

void TestCANopenObjectEntry::textsAreStoredAsTheyAre()
{
    CCANopenObjectEntry entry(0x1400, 1);
    entry.setName("St\xC3\xB6rung");
    entry.setLowLimit(" 0x00 ");
    entry.setHighLimit("-007");
    entry.setDefaultValue("$NODEID+0x200");
    QCOMPARE(entry.getName(), QString::fromUtf8("Störung"));
    QCOMPARE(entry.getLowLimit(), QString(" 0x00 "));
    QCOMPARE(entry.getHighLimit(), QString("-007"));
    QCOMPARE(entry.getDefaultValue(), QString("$NODEID+0x200"));
    entry.setName(nullptr);
    QVERIFY(entry.getName().isNull());
}

void TestCANopenObjectEntry::anyNumberIsStoredInEnumerationFields()
{
    QFETCH(int, number);
    CCANopenObjectEntry entry(1, 2);
    entry.setDataType(number);
    entry.setCategory(number);
    entry.setAccess(number);
    entry.setPDOMapping(number);
    QCOMPARE(int(entry.getDataType()), number);
    QCOMPARE(int(entry.getCategory()), number);
    QCOMPARE(int(entry.getAccess()), number);
    QCOMPARE(int(entry.getPDOMapping()), number);
}

void TestCANopenObjectEntry::objectFlagsHaveThirtyTwoBits()
{
    CCANopenObjectEntry entry(1, 2);
    entry.setObjectFlags(0xFFFFFFFF);
    QCOMPARE(entry.getObjectFlags(), 0xFFFFFFFFU);
}

void TestCANopenObjectEntry::valueRangeShowsTheLimits_data()
{
    QTest::addColumn<QString>("low");
    QTest::addColumn<QString>("high");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("range");
    QTest::newRow("both limits") << "0"
                                 << "127" << 2 << "0,..,127";
    QTest::newRow("both limits, as written") << "0x00"
                                             << "$NODEID+5" << 2 << "0x00,..,$NODEID+5";
    QTest::newRow("low limit only") << "1"
                                    << "" << 7 << "1,...";
    QTest::newRow("high limit only") << ""
                                     << "9" << 7 << "...,"; // the limit is not shown, which is meant
    QTest::newRow("no limits, Unsigned32") << ""
                                           << "" << 7 << "Unsigned32";
    QTest::newRow("no limits, Visible String") << ""
                                               << "" << 9 << "Visible String";
    QTest::newRow("place markers in both") << "%2"
                                           << "%1" << 7 << "%2,..,%1";
    QTest::newRow("a place marker in the low limit") << "%1"
                                                     << "" << 7 << "%1,...";
    QTest::newRow("another place marker in the low limit") << "%2"
                                                           << "" << 7 << "%2,...";
    QTest::newRow("no limits, no type") << ""
                                        << "" << 0 << "User-defined Type";
    QTest::newRow("no limits, Identity") << ""
                                         << "" << 35 << "User-defined Type";
}

void TestCANopenObjectEntry::valueRangeShowsTheLimits()
{
    QFETCH(QString, low);
    QFETCH(QString, high);
    QFETCH(int, type);
    CCANopenObjectEntry entry(0x6000, 1);
    entry.setLowLimit(qPrintable(low));
    entry.setHighLimit(qPrintable(high));
    entry.setDataType(type);
    QTEST(entry.getValueRange(), "range");
}

void TestCANopenObjectEntry::dataTypeNameReadsAsNumber_data()
{
    nameRows(dataTypeNames, { { "void", 0 },
                              { "PDO CommPar", 0 },
                              { "PDO Mapping", 0 },
                              { "SDO Parameter", 0 },
                              { "Identity", 0 },
                              { "unsigned32", 7 },
                              { "VISIBLE STRING", 9 },
                              { "VisibleString", 0 },
                              { "Integer", 0 },
                              { "Integer88", 0 },
                              { " Date", 0 },
                              { "", 0 } });
}

void TestCANopenObjectEntry::categoryNameIsAPrefixInAnyCase_data()
{
    nameRows({ { "Optional", 0 },
               { "Mandatory", 1 },
               { "Conditional", 2 },
               { "mandatory", 1 },
               { "MANDATORYX", 1 },
               { "conditional on 0x1000", 2 },
               { "Mandator", 0 },
               { "Condition", 0 },
               { " Mandatory", 0 },
               { "1", 0 },
               { "", 0 } });
}

void TestCANopenObjectEntry::accessNameReadsAsNumber_data()
{
    nameRows({ { "CONST", 0 },
               { "RO", 1 },
               { "WO", 2 },
               { "RW", 3 },
               { "RWR", 4 },
               { "RWW", 5 },
               { "rw", 3 },
               { "Rwr", 4 },
               { "rww", 5 },
               { "const", 0 },
               { "R W", 0 },
               { "RW ", 0 },
               { "RWX", 0 },
               { "R", 0 },
               { "", 0 } });
}

void TestCANopenObjectEntry::mappingNameIsAPrefixInAnyCaseOrADigit_data()
{
    nameRows({ { "Optional", 2 }, { "Possible", 2 }, { "Default", 1 },   { "Yes", 1 },
               { "No", 0 },       { "0", 0 },        { "1", 1 },         { "Optional mapping", 2 },
               { "POSSIBLE", 2 }, { "possibly", 0 }, { "defaulted", 1 }, { "yesterday", 1 },
               { "Nothing", 0 },  { "nO", 0 },       { "Optiona", 0 },   { "10", 0 },
               { "1 ", 0 },       { "01", 0 },       { "2", 0 },         { " Yes", 0 },
               { "", 0 } });
}

void TestCANopenObjectEntry::storableNameIsAPrefixInAnyCaseOrADigit_data()
{
    nameRows({ { "Yes", 1 },
               { "Auto", 2 },
               { "No", 0 },
               { "0", 0 },
               { "1", 1 },
               { "yes, always", 1 },
               { "AUTOMATIC", 2 },
               { "Nothing", 0 },
               { "Aut", 0 },
               { "Ye", 0 },
               { "11", 0 },
               { "1 ", 0 },
               { "2", 0 },
               { " Auto", 0 },
               { "", 0 } });
}

void TestCANopenObjectEntry::dataTypeShowsAsName()
{
    QMap<int, QString> texts;
    for (auto [name, type] : dataTypeNames)
        texts[type] = name;
    compareTexts(&CCANopenObjectEntry::getDataTypeByIndex, "User-defined Type", texts);
}

void TestCANopenObjectEntry::categoryShowsAsName()
{
    compareTexts(&CCANopenObjectEntry::getCategoryByIndex, "Optional",
                 { { 0, "Optional" }, { 1, "Mandatory" }, { 2, "Conditional" } });
}

void TestCANopenObjectEntry::accessShowsAsName()
{
    compareTexts(&CCANopenObjectEntry::getAccessByIndex, "",
                 { { 0, "CONST" }, { 1, "RO" }, { 2, "WO" }, { 3, "RW" }, { 4, "RWR" }, { 5, "RWW" } });
}

void TestCANopenObjectEntry::mappingShowsAsName()
{
    compareTexts(&CCANopenObjectEntry::getMappingByIndex, "No", { { 1, "Default" }, { 2, "Optional" } });
}

void TestCANopenObjectEntry::storableShowsAsName()
{
    compareTexts(&CCANopenObjectEntry::getStorableByIndex, "No", { { 1, "Yes" }, { 2, "Auto" } });
}

QTEST_APPLESS_MAIN(TestCANopenObjectEntry)
#include "TestCANopenObjectEntry.moc"

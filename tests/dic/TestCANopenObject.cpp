// Objects: fields, kinds of index and data type, look-up of entries, profile text, names of the enumerations.
// SPDX-License-Identifier: MIT
#include "dic/CANopenObject.h"

#include "NameRows.h"
#include "Ranges.h"

#include <QTest>

#include <array>

using T = CCANopenObject;

static_assert(std::array{ T::classNULL, T::classDOMAIN, T::classDEFTYPE, T::classDEFSTRUCT, T::classVAR, T::classARRAY,
                          T::classRECORD } == std::array{ T::TObjectClass(0), T::TObjectClass(2), T::TObjectClass(5),
                                                          T::TObjectClass(6), T::TObjectClass(7), T::TObjectClass(8),
                                                          T::TObjectClass(9) });
static_assert(T::categoryOptional == 0 && T::categoryMandatory == 1 && T::categoryConditional == 2);
static_assert(T::statePublic == 0 && T::stateProtected == 1 && T::statePrivate == 2 && T::stateInvalid == -1);
static_assert(T::typeVoid == 0 && T::typeBoolean == 1 && T::typeInteger8 == 2 && T::typeInteger16 == 3);
static_assert(T::typeInteger32 == 4 && T::typeUnsigned8 == 5 && T::typeUnsigned16 == 6 && T::typeUnsigned32 == 7);
static_assert(T::typeReal32 == 8 && T::typeVisibleString == 9 && T::typeOctetString == 10 && T::typeDate == 11);
static_assert(T::typeTimeOfDay == 12 && T::typeTimeDifference == 13 && T::typeDomain == 15 && T::typeInteger24 == 16);
static_assert(T::typeReal64 == 17 && T::typeInteger40 == 18 && T::typeInteger48 == 19 && T::typeInteger56 == 20);
static_assert(T::typeInteger64 == 21 && T::typeUnsigned24 == 22 && T::typeUnsigned40 == 24 && T::typeUnsigned48 == 25);
static_assert(T::typeUnsigned56 == 26 && T::typeUnsigned64 == 27 && T::typePDOParameter == 32);
static_assert(T::typePDOMapping == 33 && T::typeSDOParameter == 34 && T::typeIdentity == 35);

static void addEntry(CCANopenObject& object, unsigned char subIndex, const char* name)
{
    object.m_objectEntryArray.push_back(std::make_unique<CCANopenObjectEntry>(object.getIndex(), subIndex));
    object.m_objectEntryArray.back()->setName(name);
}

class TestCANopenObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newObjectIsEmptyButForItsIndex();
    void objectWithoutIndexIsEmptyToo() { expectEmpty(CCANopenObject()); }
    void textsAreStoredAsUtf8();
    void anyNumberIsStoredInEnumerationFields_data() { numberRows({ 0, 1, 7, 14, 0x60, 0x7FF, 0xFFFF, 0x12345, -1 }); }
    void anyNumberIsStoredInEnumerationFields();
    void indexTellsThePartOfTheDictionary_data();
    void indexTellsThePartOfTheDictionary();
    void classTellsSingleFromMultipleObjects();
    void standardDataTypesIncludeEverythingFrom60To7FF(); // the wide upper bound is meant
    void complexDataTypesAreStructures();
    void dataType100CountsAsStandardAndAsComplex();
    void findOnAnObjectWithoutEntriesGivesMinusOne();
    void findBySubIndexGivesTheFirstPosition();
    void findByNameGivesTheFirstExactMatch();
    void profileTextJoinsWhatIsKnown_data();
    void profileTextJoinsWhatIsKnown();
    void classNameReadsAsNumber_data();
    void classNameReadsAsNumber() { compareName(&CCANopenObject::getClassByName); }
    void dataTypeNameReadsAsNumber_data();
    void dataTypeNameReadsAsNumber() { compareName(&CCANopenObject::getDataTypeByName); }
    void categoryNameIsAPrefixInExactCase_data();
    void categoryNameIsAPrefixInExactCase() { compareName(&CCANopenObject::getCategoryByName); }
    void stateNameReadsAsNumber_data() { nameRows(stateNamesInAnyCase); }
    void stateNameReadsAsNumber() { compareName(&CCANopenObject::getStateByName); }
    void classShowsAsName();
    void dataTypeShowsAsName(); // 0 included: "void" is read, but not shown
    void categoryShowsAsName();
    void stateShowsAsName() { compareTexts(&CCANopenObject::getStateByIndex, "Invalid", stateTexts); }
    void versionIsARevision() { QCOMPARE(QByteArray(CCANopenObject::version()), QByteArray("$Rev: 1 $")); }

private:
    static void expectEmpty(const CCANopenObject& object)
    {
        QVERIFY(object.getName().isEmpty());
        QCOMPARE(int(object.getClass()), 0);
        QCOMPARE(int(object.getDataType()), 0);
        QCOMPARE(int(object.getCategory()), 0);
        QVERIFY(object.getProfileNumber().isNull());
        QVERIFY(object.getProfileVersion().isNull());
        QVERIFY(object.getProfileChapter().isNull());
        QVERIFY(object.getProfilePage().isNull());
        QVERIFY(object.getProfileLink().isNull());
        QCOMPARE(qsizetype(object.m_objectEntryArray.size()), 0);
    }
};

void TestCANopenObject::newObjectIsEmptyButForItsIndex()
{
    const CCANopenObject object(0x6040);
    QCOMPARE(int(object.getIndex()), 0x6040);
    expectEmpty(object);
}

void TestCANopenObject::textsAreStoredAsUtf8()
{
    CCANopenObject object(1);
    object.setName("Gr\xC3\xB6\xC3\x9F"
                   "e");
    object.setProfileNumber("DS-401");
    object.setProfileVersion("V2.1");
    object.setProfileChapter("7.4.2");
    object.setProfilePage("34");
    object.setProfileLink("https://velmora.example");
    QCOMPARE(object.getName(), QString::fromUtf8("Größe"));
    QCOMPARE(object.getProfileNumber(), QString("DS-401"));
    QCOMPARE(object.getProfileVersion(), QString("V2.1"));
    QCOMPARE(object.getProfileChapter(), QString("7.4.2"));
    QCOMPARE(object.getProfilePage(), QString("34"));
    QCOMPARE(object.getProfileLink(), QString("https://velmora.example"));
}

void TestCANopenObject::anyNumberIsStoredInEnumerationFields()
{
    QFETCH(int, number);
    CCANopenObject object(1);
    object.setClass(number);
    object.setDataType(number);
    object.setCategory(number);
    QCOMPARE(int(object.getClass()), number);
    QCOMPARE(int(object.getDataType()), number);
    QCOMPARE(int(object.getCategory()), number);
}

void TestCANopenObject::indexTellsThePartOfTheDictionary_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("part");
    for (auto [name, index, part] :
         std::initializer_list<std::tuple<const char*, int, const char*>>{ { "0x0000", 0x0000, "none" },
                                                                           { "0x0FFF", 0x0FFF, "none" },
                                                                           { "0x1000", 0x1000, "communication" },
                                                                           { "0x1FFF", 0x1FFF, "communication" },
                                                                           { "0x2000", 0x2000, "manufacturer" },
                                                                           { "0x5FFF", 0x5FFF, "manufacturer" },
                                                                           { "0x6000", 0x6000, "profile" },
                                                                           { "0x9FFF", 0x9FFF, "profile" },
                                                                           { "0xA000", 0xA000, "none" },
                                                                           { "0xFFFF", 0xFFFF, "none" } })
        QTest::newRow(name) << index << QString(part);
}

void TestCANopenObject::indexTellsThePartOfTheDictionary()
{
    QFETCH(int, index);
    QFETCH(QString, part);
    const CCANopenObject object(static_cast<unsigned short>(index));
    QCOMPARE(object.isCommunicationObject(), part == "communication");
    QCOMPARE(object.isManufacturerSpecificObject(), part == "manufacturer");
    QCOMPARE(object.isDeviceProfileObject(), part == "profile");
}

void TestCANopenObject::classTellsSingleFromMultipleObjects()
{
    for (int number = -1; number <= 20; ++number) {
        CCANopenObject object(0x1000);
        object.setClass(number);
        QCOMPARE(object.isSingleObject(), number == 7);
        QCOMPARE(object.isMultipleObject(), number == 8 || number == 9);
    }
}

void TestCANopenObject::standardDataTypesIncludeEverythingFrom60To7FF()
{
    for (int type = -1; type <= 0x1FFFF; ++type) {
        CCANopenObject object(0x1000);
        object.setDataType(type);
        const bool standard = isIn({ { 1, 13 }, { 15, 22 }, { 24, 27 }, { 96, 2047 } }, type);
        if (object.isStandardDataType() != standard)
            QFAIL(qPrintable(QString("data type 0x%1").arg(type, 0, 16)));
    }
}

void TestCANopenObject::complexDataTypesAreStructures()
{
    for (int type = -1; type <= 0x1FFFF; ++type) {
        CCANopenObject object(0x1000);
        object.setDataType(type);
        const bool complex = isIn({ { 32, 35 },
                                    { 64, 95 },
                                    { 128, 159 },
                                    { 192, 223 },
                                    { 256, 287 },
                                    { 320, 351 },
                                    { 384, 415 },
                                    { 448, 479 },
                                    { 512, 543 },
                                    { 576, 607 } },
                                  type);
        if (object.isComplexDataType() != complex)
            QFAIL(qPrintable(QString("data type 0x%1").arg(type, 0, 16)));
    }
}

void TestCANopenObject::dataType100CountsAsStandardAndAsComplex()
{
    CCANopenObject object(0x2000);
    object.setDataType(0x100);
    QVERIFY(object.isStandardDataType());
    QVERIFY(object.isComplexDataType());
}

void TestCANopenObject::findOnAnObjectWithoutEntriesGivesMinusOne()
{
    const CCANopenObject object(0x1000);
    QCOMPARE(object.find(static_cast<unsigned char>(0)), -1);
    QCOMPARE(object.find("Device Type"), -1);
}

void TestCANopenObject::findBySubIndexGivesTheFirstPosition()
{
    CCANopenObject object(0x1018);
    for (int subIndex : { 0, 4, 255, 4 })
        addEntry(object, static_cast<unsigned char>(subIndex), "");
    QCOMPARE(object.find(static_cast<unsigned char>(0)), 0);
    QCOMPARE(object.find(static_cast<unsigned char>(4)), 1);
    QCOMPARE(object.find(static_cast<unsigned char>(255)), 2);
    QCOMPARE(object.find(static_cast<unsigned char>(1)), -1); // positions are no sub-indexes
}

void TestCANopenObject::findByNameGivesTheFirstExactMatch()
{
    CCANopenObject object(0x1018);
    for (const char* name : { "Vendor ID", "vendor id", "Vendor", "Vendor ID", "\xC3\x9C" })
        addEntry(object, 0, name);
    QCOMPARE(object.find("Vendor ID"), 0);
    QCOMPARE(object.find("vendor id"), 1);
    QCOMPARE(object.find("Vendor"), 2);
    QCOMPARE(object.find("\xC3\x9C"), 4);
    QCOMPARE(object.find("VENDOR"), -1);
    QCOMPARE(object.find("Vendor ID "), -1);
    QCOMPARE(object.find(""), -1);
}

void TestCANopenObject::profileTextJoinsWhatIsKnown_data()
{
    QTest::addColumn<QStringList>("parts"); // number, version, chapter, page, link
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("linked");
    const QString anchor = ", <a href=\"http://a\">http://a</a>";
    QTest::newRow("nothing") << QStringList{ "", "", "", "", "" } << ""
                             << "";
    QTest::newRow("no number") << QStringList{ "", "V1", "2", "3", "http://a" } << ""
                               << "";
    QTest::newRow("number") << QStringList{ "DS-401", "", "", "", "" } << "DS-401"
                            << "DS-401";
    QTest::newRow("version") << QStringList{ "DS-401", "V2.1", "", "", "" } << "DS-401, V2.1"
                             << "DS-401, V2.1";
    QTest::newRow("chapter") << QStringList{ "DS-401", "", "7", "", "" } << "DS-401, 7"
                             << "DS-401, 7";
    QTest::newRow("page") << QStringList{ "DS-401", "", "", "9", "" } << "DS-401, Page 9"
                          << "DS-401, Page 9";
    QTest::newRow("link") << QStringList{ "DS-401", "", "", "", "http://a" } << "DS-401"
                          << "DS-401" + anchor;
    QTest::newRow("page before chapter") << QStringList{ "DS-401", "V2.1", "7.4.2", "34", "" }
                                         << "DS-401, V2.1, Page 34, 7.4.2"
                                         << "DS-401, V2.1, Page 34, 7.4.2";
    QTest::newRow("everything") << QStringList{ "DS-401", "V2.1", "7.4.2", "34", "http://a" }
                                << "DS-401, V2.1, Page 34, 7.4.2"
                                << "DS-401, V2.1, Page 34, 7.4.2" + anchor;
    QTest::newRow("place markers") << QStringList{ "%1", "%2", "%3", "%1", "%2%1" } << "%1, %2, Page %1, %3"
                                   << "%1, %2, Page %1, %3, <a href=\"%2%1\">%2%1</a>";
}

void TestCANopenObject::profileTextJoinsWhatIsKnown()
{
    QFETCH(QStringList, parts);
    CCANopenObject object(0x6000);
    object.setProfileNumber(qPrintable(parts[0]));
    object.setProfileVersion(qPrintable(parts[1]));
    object.setProfileChapter(qPrintable(parts[2]));
    object.setProfilePage(qPrintable(parts[3]));
    object.setProfileLink(qPrintable(parts[4]));
    QTEST(object.getProfile(false), "plain");
    QTEST(object.getProfile(true), "linked");
}

void TestCANopenObject::classNameReadsAsNumber_data()
{
    nameRows({ { "NULL", 0 },
               { "DOMAIN", 2 },
               { "DEFTYPE", 5 },
               { "DEFSTRUCT", 6 },
               { "VAR", 7 },
               { "ARRAY", 8 },
               { "RECORD", 9 },
               { "Record", 9 },
               { "var", 7 },
               { "VARIABLE", 0 },
               { "AR", 0 },
               { " VAR", 0 },
               { "7", 0 },
               { "", 0 } });
}

void TestCANopenObject::dataTypeNameReadsAsNumber_data()
{
    nameRows(dataTypeNames, { { "void", 0 },
                              { "PDO CommPar", 32 },
                              { "PDO Mapping", 33 },
                              { "SDO Parameter", 34 },
                              { "Identity", 35 },
                              { "pdo commpar", 32 },
                              { "IDENTITY", 35 },
                              { "UNSIGNED32", 7 },
                              { "time of day", 12 },
                              { "TimeOfDay", 0 },
                              { "Unsigned", 0 },
                              { "Unsigned322", 0 },
                              { "Boolean ", 0 },
                              { "", 0 } });
}

void TestCANopenObject::categoryNameIsAPrefixInExactCase_data()
{
    nameRows({ { "Optional", 0 },
               { "Mandatory", 1 },
               { "Conditional", 2 },
               { "Mandatoryx", 1 },
               { "Conditional, see below", 2 },
               { "mandatory", 0 },
               { "MANDATORY", 0 },
               { "conditional", 0 },
               { "Mandator", 0 },
               { "Condition", 0 },
               { " Mandatory", 0 },
               { "", 0 } });
}

void TestCANopenObject::classShowsAsName()
{
    compareTexts(&CCANopenObject::getClassByIndex, "NULL",
                 { { 0, "NULL" },
                   { 2, "DOMAIN" },
                   { 5, "DEFTYPE" },
                   { 6, "DEFSTRUCT" },
                   { 7, "VAR" },
                   { 8, "ARRAY" },
                   { 9, "RECORD" } });
}

void TestCANopenObject::dataTypeShowsAsName()
{
    QMap<int, QString> texts = {
        { 32, "PDO CommPar" }, { 33, "PDO Mapping" }, { 34, "SDO Parameter" }, { 35, "Identity" }
    };
    for (auto [name, type] : dataTypeNames)
        texts[type] = name;
    compareTexts(&CCANopenObject::getDataTypeByIndex, "User-defined Type", texts);
}

void TestCANopenObject::categoryShowsAsName()
{
    compareTexts(&CCANopenObject::getCategoryByIndex, "Optional",
                 { { 0, "Optional" }, { 1, "Mandatory" }, { 2, "Conditional" } });
}

QTEST_APPLESS_MAIN(TestCANopenObject)
#include "TestCANopenObject.moc"

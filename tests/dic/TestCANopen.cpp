// The dictionary: what a new one holds, looking objects up, names of the states.
// SPDX-License-Identifier: MIT
#include "dic/CANopen.h"

#include "NameRows.h"

#include <QTest>

using T = CCANopen;

static_assert(T::typeEDS == 0 && T::typeDCF == 1 && T::typeXML == 2 && T::typeCOP == 3 && T::typeUnknown == -1);
static_assert(T::statePublic == 0 && T::stateProtected == 1 && T::statePrivate == 2 && T::stateInvalid == -1);

static void addObject(CCANopen& dictionary, unsigned short index, const char* name)
{
    dictionary.m_objectArray.push_back(std::make_unique<CCANopenObject>(index));
    dictionary.m_objectArray.back()->setName(name);
}

class TestCANopen : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newDictionaryHoldsDefaultsOnly();
    void gettersShowTheFileInformation();
    void findInAnEmptyDictionaryGivesMinusOne();
    void findByIndexGivesTheFirstPosition();
    void findByNameGivesTheFirstExactMatch();
    void stateNameReadsAsNumberInAnyCase_data() { nameRows(stateNamesInAnyCase); }
    void stateNameReadsAsNumberInAnyCase() { compareName(&CCANopen::getStateByName); }
    void stateShowsAsName() { compareTexts(&CCANopen::getStateByIndex, "Invalid", stateTexts); }
    void versionIsARevision() { QCOMPARE(QByteArray(CCANopen::version()), QByteArray("$Rev: 1 $")); }
};

void TestCANopen::newDictionaryHoldsDefaultsOnly()
{
    const CCANopen dictionary;
    QCOMPARE(dictionary.getFileName(), QString(""));
    QCOMPARE(int(dictionary.m_fileType), -1);
    QCOMPARE(int(dictionary.getState()), 0);
    QCOMPARE(dictionary.m_fileTitle, QString("CANopen Objektverzeichnis"));
    QCOMPARE(dictionary.m_fileVersion, QString("1.0"));
    QCOMPARE(dictionary.getRevision(), QString("1.0"));
    for (const QString& text : { dictionary.getAuthor(), dictionary.getCompany(), dictionary.getDate(),
                                 dictionary.getTime(), dictionary.getURL(), dictionary.getMail() })
        QCOMPARE(text, QString(""));
    QVERIFY(dictionary.m_info.m_text.isNull());
    QVERIFY(!dictionary.m_deviceInfo);
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 0);
}

void TestCANopen::gettersShowTheFileInformation()
{
    CCANopen dictionary;
    dictionary.m_info = { "author", "company", "revision", "date", "time", "URL", "mail", "text" };
    QCOMPARE(dictionary.getAuthor(), QString("author"));
    QCOMPARE(dictionary.getCompany(), QString("company"));
    QCOMPARE(dictionary.getRevision(), QString("revision"));
    QCOMPARE(dictionary.getDate(), QString("date"));
    QCOMPARE(dictionary.getTime(), QString("time"));
    QCOMPARE(dictionary.getURL(), QString("URL"));
    QCOMPARE(dictionary.getMail(), QString("mail"));
}

void TestCANopen::findInAnEmptyDictionaryGivesMinusOne()
{
    const CCANopen dictionary;
    QCOMPARE(dictionary.find(static_cast<unsigned short>(0x1000)), -1);
    QCOMPARE(dictionary.find("Device Type"), -1);
}

void TestCANopen::findByIndexGivesTheFirstPosition()
{
    CCANopen dictionary;
    for (int index : { 0xFFFF, 0x1000, 0x1018, 0x1000 })
        addObject(dictionary, static_cast<unsigned short>(index), "");
    QCOMPARE(dictionary.find(static_cast<unsigned short>(0xFFFF)), 0);
    QCOMPARE(dictionary.find(static_cast<unsigned short>(0x1000)), 1);
    QCOMPARE(dictionary.find(static_cast<unsigned short>(0x1018)), 2);
    QCOMPARE(dictionary.find(static_cast<unsigned short>(0x1001)), -1);
}

void TestCANopen::findByNameGivesTheFirstExactMatch()
{
    CCANopen dictionary;
    for (const char* name : { "Device Type", "device type", "Device", "Device Type", "\xC3\x9C" })
        addObject(dictionary, 0x1000, name);
    QCOMPARE(dictionary.find("Device Type"), 0);
    QCOMPARE(dictionary.find("device type"), 1);
    QCOMPARE(dictionary.find("Device"), 2);
    QCOMPARE(dictionary.find("\xC3\x9C"), 4);
    QCOMPARE(dictionary.find("DEVICE"), -1);
    QCOMPARE(dictionary.find(" Device"), -1);
    QCOMPARE(dictionary.find(""), -1);
}

QTEST_APPLESS_MAIN(TestCANopen)
#include "TestCANopen.moc"

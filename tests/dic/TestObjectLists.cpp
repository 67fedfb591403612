// Object lists of a data sheet: which objects there are, in which order, of which category and profile.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "Sheet.h"

#include <QTest>

class TestObjectLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectListsGiveOrderAndCategory(); // whatever the order of the sections of the objects
    void manufacturerObjectsAreOptional();
    void countOfAnObjectListIsNotChecked();
    void keysOfAnObjectListMayHaveAnyName();
    void indexListedTwiceGivesTwoObjects();
    void indexesOfAnObjectList_data();
    void indexesOfAnObjectList();
    void listValueThatIsNoIndexClearsTheCurrentObject_data();
    void listValueThatIsNoIndexClearsTheCurrentObject();
    void countOfAnObjectListKeepsTheCurrentObject();
    void profileFollowsFromTheIndex_data();
    void profileFollowsFromTheIndex();

private:
    static QString categories(const CLoadedSheet& sheet)
    {
        QStringList categories;
        for (const auto& object : sheet.dictionary.m_objectArray)
            categories << QString::number(object->getCategory());
        return categories.join(' ');
    }
};

void TestObjectLists::objectListsGiveOrderAndCategory()
{
    const CLoadedSheet sheet("[MandatoryObjects]\nSupportedObjects=3\n1=0x1000\n2=0x1001\n3=0x1018\n"
                             "[OptionalObjects]\nSupportedObjects=1\n1=0x1008\n"
                             "[1008]\nParameterName=h\n[1018]\nParameterName=i\n[1001]\nParameterName=e\n"
                             "[1000]\nParameterName=t\n");
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.outline(), QString("1000[] 1001[] 1018[] 1008[]"));
    QCOMPARE(categories(sheet), QString("1 1 1 0"));
    QCOMPARE(sheet.names(), QString("t e i h"));
}

void TestObjectLists::manufacturerObjectsAreOptional()
{
    const CLoadedSheet sheet("[ManufacturerObjects]\n1=0x2000\n[MandatoryObjects]\n1=0x1000\n");
    QCOMPARE(sheet.outline(), QString("2000[] 1000[]"));
    QCOMPARE(categories(sheet), QString("0 1"));
}

void TestObjectLists::countOfAnObjectListIsNotChecked()
{
    QCOMPARE(CLoadedSheet("[OptionalObjects]\nSupportedObjects=0x2000\n1=0x1000\n2=0x1001\n").outline(),
             QString("1000[] 1001[]"));
}

void TestObjectLists::keysOfAnObjectListMayHaveAnyName()
{
    QCOMPARE(
        CLoadedSheet("[OptionalObjects]\n7=0x1000\nx=0x1001\nsupportedobjects=0x1002\n7=0x1003\nSupported=0x1004\n")
            .outline(),
        QString("1000[] 1001[] 1002[] 1003[] 1004[]"));
}

void TestObjectLists::indexListedTwiceGivesTwoObjects()
{
    const CLoadedSheet sheet("[MandatoryObjects]\n1=0x1000\n2=0x1000\n[OptionalObjects]\n1=0x1000\n");
    QCOMPARE(sheet.outline(), QString("1000[] 1000[] 1000[]"));
    QCOMPARE(categories(sheet), QString("1 1 0"));
}

void TestObjectLists::indexesOfAnObjectList_data()
{
    QTest::addColumn<QString>("objects");
    for (auto [value, objects] : std::initializer_list<std::pair<const char*, const char*>>{ { "0x1000", "1000[]" },
                                                                                             { "4096", "1000[]" },
                                                                                             { "010000", "1000[]" },
                                                                                             { "+4096", "1000[]" },
                                                                                             { "0x1", "1[]" },
                                                                                             { "0xFFFF", "ffff[]" },
                                                                                             { "65535", "ffff[]" },
                                                                                             { "0x10000", "" },
                                                                                             { "65536", "" },
                                                                                             { "abc", "" },
                                                                                             { "1000h", "" },
                                                                                             { "-1", "" },
                                                                                             { "0", "" },
                                                                                             { "0x0000", "" },
                                                                                             { "", "" },
                                                                                             { "0x1000 0x1001", "" } })
        QTest::addRow("\"%s\"", value) << QString(objects);
}

void TestObjectLists::indexesOfAnObjectList()
{
    const QByteArray value = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    const CLoadedSheet sheet("[OptionalObjects]\n1=" + value + '\n');
    QCOMPARE(sheet.result, 1);
    QTEST(sheet.outline(), "objects");
}

void TestObjectLists::listValueThatIsNoIndexClearsTheCurrentObject_data()
{
    QTest::addColumn<QString>("outline");
    // With a current object the undeclared section would apply to it; without one it creates its own.
    QTest::newRow("0") << "1000[] 2000[0]";
    QTest::newRow("abc") << "1000[] 2000[0]";
    QTest::newRow("0x10000") << "1000[] 2000[0]";
    QTest::newRow("0x1001") << "1000[] 1001[0]";
}

void TestObjectLists::listValueThatIsNoIndexClearsTheCurrentObject()
{
    const QByteArray value = QTest::currentDataTag();
    QTEST(CLoadedSheet("[OptionalObjects]\n1=0x1000\n2=" + value + "\n[2000]\nObjectType=7\n").outline(), "outline");
}

void TestObjectLists::countOfAnObjectListKeepsTheCurrentObject()
{
    QCOMPARE(CLoadedSheet("[MandatoryObjects]\n1=0x1000\n[OptionalObjects]\nSupportedObjects=0\n[2000]\nObjectType=7\n")
                 .outline(),
             QString("1000[0]"));
}

void TestObjectLists::profileFollowsFromTheIndex_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("chapter");
    for (const char* index : { "0x0001", "0x0FFF" })
        QTest::newRow(index) << "CiA DS-301"
                             << "Data type entry";
    for (const char* index : { "0x1000", "0x1FFF" })
        QTest::newRow(index) << "CiA DS-301"
                             << "Communication profile";
    for (const char* index : { "0x2000", "0x5FFF" })
        QTest::newRow(index) << "Manufacturer specific"
                             << "";
    for (const char* index : { "0x6000", "0x9FFF" })
        QTest::newRow(index) << "Device profile"
                             << "";
    for (const char* index : { "0xA000", "0xFFFF" })
        QTest::newRow(index) << "(reserved)"
                             << "";
}

void TestObjectLists::profileFollowsFromTheIndex()
{
    for (const char* list : { "[MandatoryObjects]", "[OptionalObjects]", "[ManufacturerObjects]" }) {
        const CLoadedSheet sheet(QByteArray(list) + "\n1=" + QTest::currentDataTag() + '\n');
        QCOMPARE(sheet.count(), 1);
        QTEST(sheet[0]->getProfileNumber(), "number");
        QTEST(sheet[0]->getProfileChapter(), "chapter");
        QVERIFY(sheet[0]->getProfileVersion().isEmpty());
        QVERIFY(sheet[0]->getProfilePage().isEmpty());
        QVERIFY(sheet[0]->getProfileLink().isEmpty());
    }
}

QTEST_APPLESS_MAIN(TestObjectLists)
#include "TestObjectLists.moc"

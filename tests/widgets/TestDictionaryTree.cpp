// The tree of a dictionary: groups, objects and entries, their order, and what an item stands for.
// SPDX-License-Identifier: MIT
#include "widgets/DictionaryTree.h"

#include "AssertionLog.h"
#include "dic/CANopen.h"

#include <QHeaderView>
#include <QTest>
#include <QTreeWidget>

class TestDictionaryTree : public QObject
{
    Q_OBJECT

    enum { var = 7, array = 8, record = 9 };

private Q_SLOTS:
    void init();

    void anEmptyDictionaryShowsItsRootOnly();
    void objectsWithoutAProfileAreOtherObjects();
    void theCommunicationProfileIsOneOpenGroupWithoutChapters();
    void aProfileWithoutAChapterHoldsItsObjectsDirectly();
    void sameProfileAndChapterShareOneItemEach();
    void profilesAreToldApartByTheirWholeText();
    void aProfileThatBeginsLikeTheCommunicationProfileHasChapters();
    void aProfileNamedLikeAGroupSharesIt();
    void aChapterIsNotSearchedAmongOtherProfiles();
    void onlyTheCommunicationProfileAndTheRootAreOpen();
    void objectsShowTheirIndexInLowerCaseWithoutPadding();
    void siblingsStandInTheOrderOfTheirTexts();
    void groupsStandInTheOrderOfTheirNames();
    void groupsThatDifferInCaseStandInTheirOrder();
    void entriesStandInTheOrderOfTheirPaddedSubIndex();
    void orderIsThatInWhichTheViewSorts();
    void whichObjectsHaveChildItems_data();
    void whichObjectsHaveChildItems();
    void twoEntriesOfOneSubIndexAreTwoItems();
    void namesAreShownAsTheyAre();
    void emptySlotsAreReportedAndLeftOut();
    void populatingReplacesWhatIsShown();
    void whatAnItemStandsFor_data();
    void whatAnItemStandsFor();

private:
    CCANopenObject* add(int index, const char* name, const char* profile, const char* chapter = "",
                        int objectClass = var)
    {
        auto& object = m_dictionary->m_objectArray.emplace_back(std::make_unique<CCANopenObject>(ushort(index)));
        object->setName(name);
        object->setClass(objectClass);
        object->setProfileNumber(profile);
        object->setProfileChapter(chapter);
        return object.get();
    }
    static void entry(CCANopenObject* object, int subIndex, const char* name)
    {
        auto added = std::make_unique<CCANopenObjectEntry>(object->getIndex(), uchar(subIndex));
        added->setName(name);
        object->m_objectEntryArray.push_back(std::move(added));
    }
    /// Fills the tree. Each item with one "-" for each level before it; " +" marks expanded ones.
    QString shown()
    {
        dictionaryTree::populate(m_tree.get(), "root", *m_dictionary);
        return outline();
    }
    QString outline() const
    {
        QStringList lines;
        for (int place = 0; place < m_tree->topLevelItemCount(); ++place)
            lines += linesOf(m_tree->topLevelItem(place), "");
        return lines.join('|');
    }
    static QStringList linesOf(const QTreeWidgetItem* item, const QString& depth)
    {
        QStringList lines{ (depth.isEmpty() ? "" : depth + " ") + item->text(0) + (item->isExpanded() ? " +" : "") };
        for (int place = 0; place < item->childCount(); ++place)
            lines += linesOf(item->child(place), depth + "-");
        return lines;
    }

    std::unique_ptr<CCANopen> m_dictionary;
    std::unique_ptr<QTreeWidget> m_tree;
};

void TestDictionaryTree::init()
{
    m_dictionary = std::make_unique<CCANopen>();
    m_tree = std::make_unique<QTreeWidget>();
}

void TestDictionaryTree::anEmptyDictionaryShowsItsRootOnly()
{
    dictionaryTree::populate(m_tree.get(), "CANopen: Node #5", *m_dictionary);
    QCOMPARE(outline(), QString("CANopen: Node #5 +"));
}

void TestDictionaryTree::objectsWithoutAProfileAreOtherObjects()
{
    add(0x2000, "One", "");
    add(0x1000, "Two", "");
    add(0x6000, "Three", "", "Chapter"); // a chapter does not count without a number
    QCOMPARE(shown(), QString("root +|- Other objects|-- 1000: Two|-- 2000: One|-- 6000: Three"));
}

void TestDictionaryTree::theCommunicationProfileIsOneOpenGroupWithoutChapters()
{
    add(0x1018, "Identity", "CiA DS-301", "Communication profile");
    add(0x5, "Unsigned8", "CiA DS-301", "Data type entry");
    QCOMPARE(shown(), QString("root +|- CiA DS-301 +|-- 1018: Identity|-- 5: Unsigned8"));
}

void TestDictionaryTree::aProfileWithoutAChapterHoldsItsObjectsDirectly()
{
    add(0x2000, "One", "Manufacturer specific");
    add(0x2001, "Two", "Manufacturer specific");
    QCOMPARE(shown(), QString("root +|- Manufacturer specific|-- 2000: One|-- 2001: Two"));
}

void TestDictionaryTree::sameProfileAndChapterShareOneItemEach()
{
    add(0x6000, "One", "DS-401", "Digital");
    add(0x6001, "Two", "DS-401", "Digital");
    add(0x6400, "Three", "DS-401", "Analogue");
    add(0x6999, "Four", "DS-401");
    add(0x7000, "Five", "DS-402", "Digital");
    QCOMPARE(shown(), QString("root +|- DS-401|-- 6999: Four|-- Analogue|--- 6400: Three|-- Digital|--- 6000: One"
                              "|--- 6001: Two|- DS-402|-- Digital|--- 7000: Five"));
}

void TestDictionaryTree::profilesAreToldApartByTheirWholeText()
{
    add(0x6000, "One", "DS-401");
    add(0x6001, "Two", "ds-401x");
    add(0x6002, "Three", "DS-4");
    add(0x6003, "Four", "CiA DS-301 "); // not the communication profile
    add(0x6004, "Five", "CiA DS-301", "Communication profile");
    const QStringList lines = shown().split('|');
    for (const char* group : { "- DS-401", "- ds-401x", "- DS-4", "- CiA DS-301 ", "- CiA DS-301 +" })
        QVERIFY2(lines.contains(group), group);
}

void TestDictionaryTree::aProfileThatBeginsLikeTheCommunicationProfileHasChapters()
{
    add(0x1000, "One", "CiA DS-301 V4.02", "General");
    add(0x1001, "Two", "CiA DS-301", "General");
    QCOMPARE(shown(), QString("root +|- CiA DS-301 +|-- 1001: Two|- CiA DS-301 V4.02|-- General|--- 1000: One"));
}

void TestDictionaryTree::aProfileNamedLikeAGroupSharesIt()
{
    add(0x2000, "One", "");
    add(0x2001, "Two", "Other objects");
    QCOMPARE(shown(), QString("root +|- Other objects|-- 2000: One|-- 2001: Two"));
}

void TestDictionaryTree::aChapterIsNotSearchedAmongOtherProfiles()
{
    add(0x6000, "One", "A", "B");
    add(0x6001, "Two", "B");
    QCOMPARE(shown(), QString("root +|- A|-- B|--- 6000: One|- B|-- 6001: Two"));
}

void TestDictionaryTree::onlyTheCommunicationProfileAndTheRootAreOpen()
{
    entry(add(0x1018, "Record", "CiA DS-301", "", record), 0, "Zero");
    entry(add(0x2000, "Record", "Manufacturer specific", "", record), 0, "Zero");
    entry(add(0xA000, "Record", "Z", "C", record), 0, "Zero");
    QCOMPARE(shown(),
             QString("root +|- CiA DS-301 +|-- 1018: Record|---  0: Zero|- Manufacturer specific|-- 2000: Record"
                     "|---  0: Zero|- Z|-- C|--- a000: Record|----  0: Zero"));
}

void TestDictionaryTree::objectsShowTheirIndexInLowerCaseWithoutPadding()
{
    add(0x1A00, "Mapping", "");
    add(0xFFFF, "Last", "");
    add(0xC, "Time", "");
    QCOMPARE(shown(), QString("root +|- Other objects|-- 1a00: Mapping|-- c: Time|-- ffff: Last"));
}

void TestDictionaryTree::siblingsStandInTheOrderOfTheirTexts()
{
    for (const int index : { 0x6000, 0x1018, 0xA, 0x1A00, 0x1000, 0x1800, 0x2 })
        add(index, "x", "");
    QCOMPARE(shown(),
             QString("root +|- Other objects|-- 1000: x|-- 1018: x|-- 1800: x|-- 1a00: x|-- 2: x|-- 6000: x|-- a: x"));
}

void TestDictionaryTree::groupsStandInTheOrderOfTheirNames()
{
    add(0x6000, "x", "Device profile");
    add(0x2000, "x", "");
    add(0x2001, "x", "Manufacturer specific");
    add(0x1000, "x", "CiA DS-301");
    add(0xA000, "x", "(reserved)");
    QCOMPARE(shown(), QString("root +|- (reserved)|-- a000: x|- CiA DS-301 +|-- 1000: x|- Device profile|-- 6000: x"
                              "|- Manufacturer specific|-- 2001: x|- Other objects|-- 2000: x"));
}

void TestDictionaryTree::groupsThatDifferInCaseStandInTheirOrder()
{
    add(0x6000, "x", "a");
    add(0x6001, "x", "B");
    QCOMPARE(shown(), QString("root +|- B|-- 6001: x|- a|-- 6000: x"));
}

void TestDictionaryTree::entriesStandInTheOrderOfTheirPaddedSubIndex()
{
    auto* object = add(0x1600, "Mapping", "", "", record);
    for (const int subIndex : { 0xFF, 0x10, 0x9, 0xA, 0x0, 0x1F })
        entry(object, subIndex, "x");
    QCOMPARE(shown(),
             QString("root +|- Other objects|-- 1600: Mapping|---  0: x|---  9: x|---  a: x|--- 10: x|--- 1f: x"
                     "|--- ff: x"));
}

void TestDictionaryTree::orderIsThatInWhichTheViewSorts()
{
    const char* const profiles[] = { "CiA DS-301", "", "ab", "B", "a", "\u00e4" };
    for (int n = 0; n < 60; ++n) {
        CCANopenObject* object = add(0x1000 + n * 7919 % 61, n % 2 == 0 ? "Name" : "name", profiles[n % 6],
                                     n % 3 == 0   ? ""
                                     : n % 3 == 1 ? "z chapter"
                                                  : "Chapter");
        for (int sub = 0; sub < 5; ++sub)
            entry(object, sub * 7 % 5 * 20, sub % 2 == 0 ? "Entry" : "entry");
    }
    const QString built = shown();
    QCOMPARE(m_tree->header()->sortIndicatorOrder(), Qt::AscendingOrder);
    m_tree->sortItems(0, Qt::AscendingOrder);
    QCOMPARE(outline(), built);
}

void TestDictionaryTree::whichObjectsHaveChildItems_data()
{
    QTest::addColumn<int>("objectClass");
    QTest::addColumn<int>("entries");
    QTest::addColumn<int>("children");
    QTest::newRow("VAR with one entry") << 7 << 1 << 0;
    QTest::newRow("VAR with two entries") << 7 << 2 << 2;
    QTest::newRow("ARRAY with one entry") << 8 << 1 << 1;
    QTest::newRow("RECORD with one entry") << 9 << 1 << 1;
    QTest::newRow("RECORD with three entries") << 9 << 3 << 3;
    QTest::newRow("ARRAY without entries") << 8 << 0 << 0;
    QTest::newRow("VAR without entries") << 7 << 0 << 0;
    QTest::newRow("DOMAIN with one entry") << 2 << 1 << 0;
    QTest::newRow("unknown class with two entries") << 99 << 2 << 2;
}

void TestDictionaryTree::whichObjectsHaveChildItems()
{
    QFETCH(const int, objectClass);
    QFETCH(const int, entries);
    auto* object = add(0x2000, "Object", "", "", objectClass);
    for (int subIndex = 0; subIndex < entries; ++subIndex)
        entry(object, subIndex, "Entry");
    shown();
    QTEST(m_tree->topLevelItem(0)->child(0)->child(0)->childCount(), "children");
}

void TestDictionaryTree::twoEntriesOfOneSubIndexAreTwoItems()
{
    auto* object = add(0x2000, "Object", "", "", array);
    entry(object, 1, "A");
    entry(object, 1, "B");
    QCOMPARE(shown(), QString("root +|- Other objects|-- 2000: Object|---  1: A|---  1: B"));
}

void TestDictionaryTree::namesAreShownAsTheyAre()
{
    add(0x2000, "%1 & %2 <b>Ü</b>", "");
    entry(add(0x2001, "", "", "", record), 1, "");
    QCOMPARE(shown(), QString("root +|- Other objects|-- 2000: %1 & %2 <b>Ü</b>|-- 2001: |---  1: "));
}

void TestDictionaryTree::emptySlotsAreReportedAndLeftOut()
{
    m_dictionary->m_objectArray.emplace_back();
    auto* object = add(0x2000, "Record", "", "", CCANopenObject::classRECORD);
    object->m_objectEntryArray.emplace_back();
    entry(object, 1, "Entry");
    const CAssertionLog log;
    QCOMPARE(shown(), QString("root +|- Other objects|-- 2000: Record|---  1: Entry"));
    QCOMPARE(log.texts(), QStringList({ "ASSERT: \"ptrObject\" in MDIWindow", "ASSERT: \"ptrEntry\" in MDIWindow" }));
    QVERIFY(log.lines().value(0) > 0);
    QVERIFY(log.lines().value(1) > 0);
    QVERIFY(log.lines().value(0) != log.lines().value(1));
}

void TestDictionaryTree::populatingReplacesWhatIsShown()
{
    add(0x2000, "One", "");
    shown();
    QCOMPARE(shown(), QString("root +|- Other objects|-- 2000: One"));
    QCOMPARE(m_tree->topLevelItemCount(), 1);
}

void TestDictionaryTree::whatAnItemStandsFor_data()
{
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasChildren");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("subIndex");
    QTest::newRow("a variable") << "CiA DS-301"
                                << "1000: Device Type" << false << 0x1000 << 0;
    QTest::newRow("an object with children") << "CiA DS-301"
                                             << "1018: Identity Object" << true << 0x1018 << 255;
    QTest::newRow("entry 1") << "1018: Identity Object"
                             << " 1: Vendor Id" << false << 0x1018 << 1;
    QTest::newRow("entry 1f") << "1a00: Mapping"
                              << "1f: Last" << false << 0x1A00 << 0x1F;
    QTest::newRow("entry ff") << "1018: Identity Object"
                              << "ff: Structure" << false << 0x1018 << 255;
    QTest::newRow("a short index") << "CiA DS-301"
                                   << "c: Time of day" << false << 0xC << 0;
    QTest::newRow("the highest index") << "(reserved)"
                                       << "ffff: x" << false << 0xFFFF << 0;
    QTest::newRow("a name that looks like an index") << "Device profile"
                                                     << "6000: 1: x" << false << 0x6000 << 0;
    QTest::newRow("the root") << ""
                              << "CANopen: Object dictionary" << true << 0 << 255;
    QTest::newRow("the root of a node") << ""
                                        << "CANopen: Node #5" << true << 0 << 255;
    QTest::newRow("a group") << "CANopen: Node #5"
                             << "CiA DS-301" << true << 0 << 255;
    QTest::newRow("a group with a hexadecimal head") << "CANopen: Node #5"
                                                     << "Device profile" << true << 0 << 255;
    QTest::newRow("the reserved group") << "CANopen: Node #5"
                                        << "(reserved)" << true << 0 << 255;
    QTest::newRow("an object without a name") << "CiA DS-301"
                                              << "1000: " << false << 0 << 255;
    QTest::newRow("an entry without a name") << "1018: Identity Object"
                                             << " 1: " << false << 0 << 255;
    QTest::newRow("an entry of an object without a name") << "1018: "
                                                          << " 1: Vendor Id" << false << 1 << 0;
    QTest::newRow("an object in a group that reads as one") << "401: Modules"
                                                            << "12: x" << false << 0x401 << 0x12;
}

void TestDictionaryTree::whatAnItemStandsFor()
{
    QFETCH(const QString, parent);
    QFETCH(const QString, text);
    QFETCH(const bool, hasChildren);
    QTreeWidgetItem parentItem(QStringList{ parent });
    auto* item = new QTreeWidgetItem(parent.isEmpty() ? nullptr : &parentItem, QStringList{ text });
    if (hasChildren)
        new QTreeWidgetItem(item, QStringList{ "child" });
    const auto selection = dictionaryTree::selectionOf(item);
    QTEST(int(selection.index), "index");
    QTEST(int(selection.subIndex), "subIndex");
    if (parent.isEmpty())
        delete item;
}

QTEST_MAIN(TestDictionaryTree)
#include "TestDictionaryTree.moc"

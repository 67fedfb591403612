// A document whose dictionary holds what no data sheet gives: conditional objects and entries, optional mapping, or
// less than what is selected.
// SPDX-License-Identifier: MIT
#include "AssertionLog.h"
#include "BoxCatcher.h"
#include "OnlineDocument.h"

#include "TempSettings.h"

#include <QTest>

namespace
{

using TObject = CCANopenObject;
using TEntry = CCANopenObjectEntry;

constexpr char device[] = R"(
[OptionalObjects]
1=0x1010
[1010]
ParameterName=Store
ObjectType=8
[1010sub1]
ParameterName=Save all
DataType=7
)";

// The dictionary of a document is private. An explicit instantiation may name it.
struct tDictionaryOf {
    friend CCANopen CMDIWindow::*memberOf(tDictionaryOf);
};
template <CCANopen CMDIWindow::*Member>
struct tOpen {
    friend CCANopen CMDIWindow::*memberOf(tDictionaryOf) { return Member; }
};
template struct tOpen<&CMDIWindow::m_dictionary>;

} // namespace

class TestMDIWindowDictionary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everyCategoryButOptionalShowsAsMandatory_data();
    void everyCategoryButOptionalShowsAsMandatory();
    void everyMappingButNoShowsAsMapped_data();
    void everyMappingButNoShowsAsMapped();
    void aSelectionThatIsGoneIsReported_data();
    void aSelectionThatIsGoneIsReported();

private:
    static CCANopen& dictionaryOf(const CDocumentDriver& document)
    {
        return document.window->*memberOf(tDictionaryOf());
    }
    TObject& object() const { return *dictionaryOf(*m_document).m_objectArray[0]; }
    TEntry& entry() const { return *object().m_objectEntryArray[0]; }

    const CTempSettings m_settings;
    std::unique_ptr<CNewDocument> m_document;
};

void TestMDIWindowDictionary::init()
{
    m_document = std::make_unique<CNewDocument>();
    QVERIFY(m_document->open(device));
}

void TestMDIWindowDictionary::everyCategoryButOptionalShowsAsMandatory_data()
{
    QTest::addColumn<int>("ofObject");
    QTest::addColumn<int>("ofEntry");
    QTest::newRow("conditional object") << int{ TObject::categoryConditional } << int{ TEntry::categoryOptional };
    QTest::newRow("conditional entry") << int{ TObject::categoryOptional } << int{ TEntry::categoryConditional };
    QTest::newRow("mandatory object") << int{ TObject::categoryMandatory } << int{ TEntry::categoryOptional };
    QTest::newRow("mandatory entry") << int{ TObject::categoryOptional } << int{ TEntry::categoryMandatory };
}

void TestMDIWindowDictionary::everyCategoryButOptionalShowsAsMandatory()
{
    QFETCH(const int, ofObject);
    QFETCH(const int, ofEntry);
    object().setCategory(ofObject);
    entry().setCategory(ofEntry);
    m_document->press("1010: Store", " 1: Save all");
    QCOMPARE(m_document->checked("mandatory object"), ofObject != TObject::categoryOptional);
    QCOMPARE(m_document->checked("mandatory entry"), ofEntry != TEntry::categoryOptional);
}

void TestMDIWindowDictionary::everyMappingButNoShowsAsMapped_data()
{
    QTest::addColumn<int>("mapping");
    QTest::newRow("no") << int{ TEntry::mappingNo };
    QTest::newRow("default") << int{ TEntry::mappingDefault };
    QTest::newRow("optional") << int{ TEntry::mappingOptional };
}

void TestMDIWindowDictionary::everyMappingButNoShowsAsMapped()
{
    QFETCH(const int, mapping);
    entry().setPDOMapping(mapping);
    m_document->press("1010: Store", " 1: Save all");
    QCOMPARE(m_document->checked("mapped entry"), mapping != TEntry::mappingNo);
}

void TestMDIWindowDictionary::aSelectionThatIsGoneIsReported_data()
{
    QTest::addColumn<bool>("objectIsGone");
    QTest::addColumn<QString>("condition");
    QTest::newRow("object") << true << "(0 <= o ) && (o < (int)m_dictionary.m_objectArray.count())";
    QTest::newRow("entry") << false << "(0 <= e ) && (e < (int)ptrObject->m_objectEntryArray.count())";
}

void TestMDIWindowDictionary::aSelectionThatIsGoneIsReported()
{
    QFETCH(const bool, objectIsGone);
    QFETCH(const QString, condition);
    const CBoxCatcher boxes;
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.press("2000: Value");
    if (objectIsGone)
        dictionaryOf(document).m_objectArray.clear();
    else
        dictionaryOf(document).m_objectArray[0]->m_objectEntryArray.clear();
    document.forgetStatuses();
    const CAssertionLog log;
    document.read();
    document.send("5");
    const QString warning = "ASSERT: \"" + condition + "\" in MDIWindow";
    QCOMPARE(log.texts(), QStringList({ warning, warning }));
    QVERIFY(log.lines().value(0) > 0);
    QCOMPARE(log.lines().value(1), log.lines().value(0));
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(document.gateway.received(), std::string());
}

QTEST_MAIN(TestMDIWindowDictionary)
#include "TestMDIWindowDictionary.moc"

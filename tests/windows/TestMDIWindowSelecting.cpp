// What selects in the tree of a document: mouse buttons and the Return key do, cursor keys do not.
// SPDX-License-Identifier: MIT
#include "NewDocument.h"

#include "TempSettings.h"

namespace
{

constexpr char device[] = R"(
[MandatoryObjects]
1=0x1000
2=0x1018
[1000]
ParameterName=Device Type
ObjectType=7
[1018]
ParameterName=Identity Object
ObjectType=9
[1018sub1]
ParameterName=Vendor Id
)";

const QString nothingLoaded = "No object attributes loaded";

} // namespace

class TestMDIWindowSelecting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_document.reset(); }

    void everyMouseButtonSelects_data();
    void everyMouseButtonSelects();
    void aSelectionChangesEachFieldOnce();
    void aPressBesideTheItemsSelectsNothing();
    void returnAndEnterSelectAndToggle_data();
    void returnAndEnterSelectAndToggle();
    void returnWithoutAHighlightDoesNothing();
    void cursorKeysOnlyMoveTheHighlight();
    void aDoubleClickTogglesOnce();
    void rightClickingDoesNothing();
    void noItemIsIgnored();

private:
    std::unique_ptr<CTempSettings> m_settings;
    std::unique_ptr<CNewDocument> m_document;
};

void TestMDIWindowSelecting::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_document = std::make_unique<CNewDocument>();
    QVERIFY(m_document->open(device));
    m_document->forgetStatuses();
}

void TestMDIWindowSelecting::everyMouseButtonSelects_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void TestMDIWindowSelecting::everyMouseButtonSelects()
{
    QFETCH(const Qt::MouseButton, button);
    m_document->press(m_document->item("1000: Device Type"), button);
    QCOMPARE(m_document->field("object name"), QString("Device Type"));
}

// A field that is cleared before it is filled is painted twice.
void TestMDIWindowSelecting::aSelectionChangesEachFieldOnce()
{
    m_document->press("1000: Device Type");
    QStringList texts;
    connect(m_document->find<QLineEdit>("parameter name line edit"), &QLineEdit::textChanged, this,
            [&texts](const QString& text) { texts << text; });
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    QCOMPARE(texts, QStringList{ "Vendor Id" });
}

void TestMDIWindowSelecting::aPressBesideTheItemsSelectsNothing()
{
    m_document->press("1000: Device Type");
    m_document->root()->setExpanded(false);
    const QRect area = m_document->tree()->viewport()->rect();
    QTest::mouseClick(m_document->tree()->viewport(), Qt::LeftButton, {}, area.bottomLeft() + QPoint(30, -3));
    QCOMPARE(m_document->field("object name"), QString("Device Type"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowSelecting::returnAndEnterSelectAndToggle_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void TestMDIWindowSelecting::returnAndEnterSelectAndToggle()
{
    QFETCH(const Qt::Key, key);
    auto* object = m_document->item("1018: Identity Object");
    m_document->hit(object, key);
    QCOMPARE(m_document->field("object name"), QString("Identity Object"));
    QVERIFY(object->isExpanded());
    m_document->hit(object, key);
    QVERIFY(!object->isExpanded());
    auto* simple = m_document->item("1000: Device Type");
    m_document->hit(simple, key);
    QCOMPARE(m_document->field("object name"), QString("Device Type"));
    QVERIFY(!simple->isExpanded());
    QCOMPARE(m_document->statuses(), QStringList());
    m_document->hit(m_document->root(), key);
    QCOMPARE(m_document->field("object name"), QString());
    QVERIFY(!m_document->root()->isExpanded());
    QCOMPARE(m_document->statuses(), QStringList{ nothingLoaded });
}

void TestMDIWindowSelecting::returnWithoutAHighlightDoesNothing()
{
    m_document->hit(nullptr, Qt::Key_Return);
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowSelecting::cursorKeysOnlyMoveTheHighlight()
{
    m_document->press("1000: Device Type");
    for (const auto key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Left, Qt::Key_End, Qt::Key_Home })
        QTest::keyClick(m_document->tree(), key);
    QCOMPARE(m_document->tree()->currentItem(), m_document->root());
    QCOMPARE(m_document->field("object name"), QString("Device Type"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowSelecting::aDoubleClickTogglesOnce()
{
    auto* object = m_document->item("1018: Identity Object");
    m_document->doubleClick(object);
    QVERIFY(object->isExpanded());
    QCOMPARE(m_document->field("object name"), QString("Identity Object"));
    m_document->doubleClick(m_document->root());
    QVERIFY(!m_document->root()->isExpanded());
    QCOMPARE(m_document->statuses(), QStringList{ nothingLoaded });
}

void TestMDIWindowSelecting::rightClickingDoesNothing()
{
    m_document->window->mouseRightClicked(m_document->item("1000: Device Type"), QPoint());
    QCOMPARE(m_document->field("object name"), QString());
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowSelecting::noItemIsIgnored()
{
    m_document->press("1000: Device Type");
    m_document->window->mouseLeftPressed(nullptr);
    m_document->window->returnKeyPressed(nullptr);
    QCOMPARE(m_document->field("object name"), QString("Device Type"));
    QCOMPARE(m_document->statuses(), QStringList());
}

QTEST_MAIN(TestMDIWindowSelecting)
#include "TestMDIWindowSelecting.moc"

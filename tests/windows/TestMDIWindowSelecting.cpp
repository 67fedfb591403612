// What selects in the tree of a document: mouse buttons and the Return key do, cursor keys do not.
// SPDX-License-Identifier: MIT
#include "DocumentUser.h"

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
    void init()
    {
        m_settings = std::make_unique<CTempSettings>();
        m_user = std::make_unique<CDocumentUser>();
        QVERIFY(m_user->open(device));
        m_user->forgetStatuses();
    }
    void cleanup() { m_user.reset(); }

    void everyMouseButtonSelects_data()
    {
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::newRow("left") << Qt::LeftButton;
        QTest::newRow("right") << Qt::RightButton;
        QTest::newRow("middle") << Qt::MiddleButton;
    }
    void everyMouseButtonSelects()
    {
        QFETCH(const Qt::MouseButton, button);
        m_user->press(m_user->item("1000: Device Type"), button);
        QCOMPARE(m_user->field("object name"), QString("Device Type"));
    }

    void aPressBesideTheItemsSelectsNothing()
    {
        m_user->press("1000: Device Type");
        m_user->root()->setExpanded(false);
        const QRect area = m_user->tree()->viewport()->rect();
        QTest::mouseClick(m_user->tree()->viewport(), Qt::LeftButton, {}, area.bottomLeft() + QPoint(30, -3));
        QCOMPARE(m_user->field("object name"), QString("Device Type"));
        QCOMPARE(m_user->statuses(), QStringList());
    }

    void returnAndEnterSelectAndToggle_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Return") << Qt::Key_Return;
        QTest::newRow("Enter") << Qt::Key_Enter;
    }
    void returnAndEnterSelectAndToggle()
    {
        QFETCH(const Qt::Key, key);
        auto* object = m_user->item("1018: Identity Object");
        m_user->hit(object, key);
        QCOMPARE(m_user->field("object name"), QString("Identity Object"));
        QVERIFY(object->isExpanded());
        m_user->hit(object, key);
        QVERIFY(!object->isExpanded());
        auto* simple = m_user->item("1000: Device Type");
        m_user->hit(simple, key);
        QCOMPARE(m_user->field("object name"), QString("Device Type"));
        QVERIFY(!simple->isExpanded());
        QCOMPARE(m_user->statuses(), QStringList());
        m_user->hit(m_user->root(), key);
        QCOMPARE(m_user->field("object name"), QString());
        QVERIFY(!m_user->root()->isExpanded());
        QCOMPARE(m_user->statuses(), QStringList{ nothingLoaded });
    }

    void returnWithoutAHighlightDoesNothing()
    {
        m_user->hit(nullptr, Qt::Key_Return);
        QCOMPARE(m_user->statuses(), QStringList());
    }

    void cursorKeysOnlyMoveTheHighlight()
    {
        m_user->press("1000: Device Type");
        for (const auto key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Left, Qt::Key_End, Qt::Key_Home })
            QTest::keyClick(m_user->tree(), key);
        QCOMPARE(m_user->tree()->currentItem(), m_user->root());
        QCOMPARE(m_user->field("object name"), QString("Device Type"));
        QCOMPARE(m_user->statuses(), QStringList());
    }

    void aDoubleClickTogglesOnce()
    {
        auto* object = m_user->item("1018: Identity Object");
        m_user->doubleClick(object);
        QVERIFY(object->isExpanded());
        QCOMPARE(m_user->field("object name"), QString("Identity Object"));
        m_user->doubleClick(m_user->root());
        QVERIFY(!m_user->root()->isExpanded());
        QCOMPARE(m_user->statuses(), QStringList{ nothingLoaded });
    }

    void rightClickingDoesNothing()
    {
        m_user->window->mouseRightClicked(m_user->item("1000: Device Type"), QPoint());
        QCOMPARE(m_user->field("object name"), QString());
        QCOMPARE(m_user->statuses(), QStringList());
    }

    void noItemIsIgnored()
    {
        m_user->press("1000: Device Type");
        m_user->window->mouseLeftPressed(nullptr);
        m_user->window->returnKeyPressed(nullptr);
        QCOMPARE(m_user->field("object name"), QString("Device Type"));
        QCOMPARE(m_user->statuses(), QStringList());
    }

private:
    std::unique_ptr<CTempSettings> m_settings;
    std::unique_ptr<CDocumentUser> m_user;
};

QTEST_MAIN(TestMDIWindowSelecting)
#include "TestMDIWindowSelecting.moc"

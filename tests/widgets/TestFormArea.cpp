// The area of a form: without one, and how it follows the focus.
// SPDX-License-Identifier: MIT
#include "widgets/FormArea.h"

#include "Patience.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QWindow>

class TestFormArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAFormItNeedsNoWidth() { QCOMPARE(CFormArea(nullptr).neededWidth(), 0); }
    void withoutAFormItIgnoresTheFocus();
    void aKeyScrollsToTheFocusAndAClickDoesNot_data();
    void aKeyScrollsToTheFocusAndAClickDoesNot();
};

void TestFormArea::withoutAFormItIgnoresTheFocus()
{
    CFormArea area(nullptr);
    QLineEdit field(&area);
    area.show();
    area.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&area, patience));
    field.setFocus(Qt::TabFocusReason);
    QVERIFY(field.hasFocus());
}

void TestFormArea::aKeyScrollsToTheFocusAndAClickDoesNot_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("key") << true;
    QTest::newRow("click") << false;
}

void TestFormArea::aKeyScrollsToTheFocusAndAClickDoesNot()
{
    QFETCH(const bool, byKey);
    CFormArea area(nullptr);
    auto* form = new QWidget;
    form->setMinimumSize(100, 400);
    auto* first = new QLineEdit(form);
    auto* field = new QLineEdit(form);
    area.setWidget(form);
    area.resize(200, 200);
    field->setGeometry(0, 190, 100, 60); // its upper edge is seen
    area.show();
    area.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&area, patience));
    first->setFocus();
    area.verticalScrollBar()->setValue(0);
    if (byKey)
        field->setFocus(Qt::TabFocusReason);
    else
        QTest::mouseClick(area.windowHandle(), Qt::LeftButton, {}, field->mapTo(&area, QPoint(50, 3)));
    QVERIFY(field->hasFocus());
    QCOMPARE(area.verticalScrollBar()->value() > 0, byKey);
}

QTEST_MAIN(TestFormArea)
#include "TestFormArea.moc"

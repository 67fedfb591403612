// The area of a form, as long as it has none.
// SPDX-License-Identifier: MIT
#include "widgets/FormArea.h"

#include "Patience.h"

#include <QLineEdit>

class TestFormArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAFormItNeedsNoWidth() { QCOMPARE(CFormArea(nullptr).neededWidth(), 0); }
    void withoutAFormItIgnoresTheFocus();
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

QTEST_MAIN(TestFormArea)
#include "TestFormArea.moc"

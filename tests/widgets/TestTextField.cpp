// The selection of a field that gets the focus.
// SPDX-License-Identifier: MIT
#include "widgets/TextField.h"

#include "Patience.h"

class TestTextField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKeySelectsAllFromItsEnd_data();
    void aKeySelectsAllFromItsEnd();
    void afterItTheCursorStepsFromTheBeginning();
    void aFieldToWriteInHasItsCursorAtTheEnd();
    void otherReasonsLeaveTheSelection_data();
    void otherReasonsLeaveTheSelection();

private:
    static void focus(CTextField* field, Qt::FocusReason reason)
    {
        QFocusEvent in(QEvent::FocusIn, reason);
        QCoreApplication::sendEvent(field, &in);
    }
};

void TestTextField::aKeySelectsAllFromItsEnd_data()
{
    QTest::addColumn<Qt::FocusReason>("reason");
    QTest::newRow("Tab") << Qt::TabFocusReason;
    QTest::newRow("Shift+Tab") << Qt::BacktabFocusReason;
    QTest::newRow("mnemonic") << Qt::ShortcutFocusReason;
}

void TestTextField::aKeySelectsAllFromItsEnd()
{
    QFETCH(const Qt::FocusReason, reason);
    CTextField field(nullptr);
    field.setReadOnly(true);
    field.setText("0x000F0191");
    field.setSelection(2, 3);
    focus(&field, reason);
    QCOMPARE(field.selectedText(), field.text());
    QCOMPARE(field.cursorPosition(), 0); // shows its beginning
}

void TestTextField::afterItTheCursorStepsFromTheBeginning()
{
    CTextField field(nullptr);
    field.setReadOnly(true);
    field.setText("0x000F0191");
    focus(&field, Qt::TabFocusReason);
    QTest::keyClick(&field, Qt::Key_Right);
    QCOMPARE(field.selectedText(), QString());
    QCOMPARE(field.cursorPosition(), 1);
}

void TestTextField::aFieldToWriteInHasItsCursorAtTheEnd()
{
    CTextField field(nullptr);
    field.setText("0x000F0191");
    focus(&field, Qt::TabFocusReason);
    QCOMPARE(field.selectedText(), field.text());
    QCOMPARE(field.cursorPosition(), 10);
}

void TestTextField::otherReasonsLeaveTheSelection_data()
{
    QTest::addColumn<Qt::FocusReason>("reason");
    QTest::newRow("context menu") << Qt::PopupFocusReason;
    QTest::newRow("window") << Qt::ActiveWindowFocusReason;
    QTest::newRow("menu bar") << Qt::MenuBarFocusReason;
    QTest::newRow("click") << Qt::MouseFocusReason;
    QTest::newRow("other") << Qt::OtherFocusReason;
}

void TestTextField::otherReasonsLeaveTheSelection()
{
    QFETCH(const Qt::FocusReason, reason);
    CTextField field(nullptr);
    field.setReadOnly(true);
    field.setText("0x000F0191");
    field.setSelection(2, 3);
    focus(&field, reason);
    QCOMPARE(field.selectedText(), QString("000"));
    QCOMPARE(field.cursorPosition(), 5);
}

QTEST_MAIN(TestTextField)
#include "TestTextField.moc"

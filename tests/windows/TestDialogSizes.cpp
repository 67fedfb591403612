// How small the dialogs can be made: their stated size, or what their widgets need when this is more.
// SPDX-License-Identifier: MIT
#include "ConnectNodeDialog.h"
#include "InitInterfaceDialog.h"
#include "TempSettings.h"

#include <QApplication>
#include <QTest>

namespace
{

using tMaker = std::unique_ptr<QDialog> (*)();

template <typename Dialog>
std::unique_ptr<QDialog> make()
{
    return std::make_unique<Dialog>();
}

} // namespace

class TestDialogSizes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setFont(m_font); }

    void dialogIsNoSmallerThanStated_data();
    void dialogIsNoSmallerThanStated();
    void dialogIsNoSmallerThanItsWidgetsNeed_data() { dialogIsNoSmallerThanStated_data(); }
    void dialogIsNoSmallerThanItsWidgetsNeed();

private:
    static void usePointSize(int size);

    const CTempSettings m_store;
    const QFont m_font;
};

void TestDialogSizes::usePointSize(int size)
{
    QFont font = QApplication::font();
    font.setPointSize(size);
    QApplication::setFont(font);
}

void TestDialogSizes::dialogIsNoSmallerThanStated_data()
{
    QTest::addColumn<tMaker>("maker");
    QTest::addColumn<QSize>("stated");
    QTest::newRow("initialise interface") << tMaker(&make<CInitInterfaceDialog>) << QSize(330, 170);
    QTest::newRow("connect node") << tMaker(&make<CConnectNodeDialog>) << QSize(500, 310);
}

void TestDialogSizes::dialogIsNoSmallerThanStated()
{
    QFETCH(const tMaker, maker);
    QFETCH(const QSize, stated);
    usePointSize(2); // whose widgets need less
    const std::unique_ptr<QDialog> dialog = maker();
    QCOMPARE(dialog->minimumSizeHint().boundedTo(stated), dialog->minimumSizeHint());
    QCOMPARE(dialog->size(), stated);
    dialog->resize(1, 1);
    QCOMPARE(dialog->size(), stated);
}

void TestDialogSizes::dialogIsNoSmallerThanItsWidgetsNeed()
{
    QFETCH(const tMaker, maker);
    QFETCH(const QSize, stated);
    usePointSize(60);
    const std::unique_ptr<QDialog> dialog = maker();
    const QSize needed = dialog->minimumSizeHint();
    QVERIFY(needed.width() > stated.width() && needed.height() > stated.height());
    QCOMPARE(dialog->size(), needed);
    dialog->resize(1, 1);
    QCOMPARE(dialog->size(), needed);
}

QTEST_MAIN(TestDialogSizes)
#include "TestDialogSizes.moc"

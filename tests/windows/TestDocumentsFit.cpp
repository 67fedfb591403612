// Documents in a small workspace: where they are placed, what of them is in view, and the focus.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "Screens.h"
#include "TempSettings.h"


#include <optional>

namespace
{

constexpr QSize screenSize(1024, 600);

} // namespace

class TestDocumentsFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }
    void cleanup() { QApplication::setFont(m_font); }

    void arrangingKeepsTheActiveDocument_data();
    void arrangingKeepsTheActiveDocument();
    void titleBarsOfCascadedDocumentsAreInView_data();
    void titleBarsOfCascadedDocumentsAreInView();
    void aLaterDocumentOpensInsideTheWorkspace();

private:
    static void useFont(int points)
    {
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
    }

    std::optional<CTempSettings> m_store;
    QFont m_font = QApplication::font();
};

void TestDocumentsFit::arrangingKeepsTheActiveDocument_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("active");
    for (const char* command : { "&Cascade", "&Tile" })
        for (const int active : { 0, 1, 2 })
            QTest::newRow(qPrintable(QString("%1 %2").arg(command).arg(active))) << QString(command) << active;
}

void TestDocumentsFit::arrangingKeepsTheActiveDocument()
{
    QFETCH(const QString, command);
    QFETCH(const int, active);
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    QVERIFY(driver.subWindow(0)->isMaximized());
    driver.workspace()->setActiveSubWindow(driver.subWindow(active));
    driver.choose("&Windows", command);
    for (int position = 0; position < 3; ++position)
        QVERIFY(!driver.subWindow(position)->isMaximized());
    QCOMPARE(driver.workspace()->activeSubWindow(), driver.subWindow(active));
    QVERIFY(driver.document(active)->isAncestorOf(QApplication::focusWidget()));
}

void TestDocumentsFit::titleBarsOfCascadedDocumentsAreInView_data()
{
    QTest::addColumn<int>("active");
    for (const int active : { 0, 1, 2 })
        QTest::newRow(qPrintable(QString::number(active))) << active;
}

void TestDocumentsFit::titleBarsOfCascadedDocumentsAreInView()
{
    QFETCH(const int, active);
    CFrameDriver driver;
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    driver.workspace()->setActiveSubWindow(driver.subWindow(active));
    for (int round = 0; round < 2; ++round) {
        driver.choose("&Windows", "&Cascade");
        for (int position = 0; position < 3; ++position) {
            const QMdiSubWindow* frame = driver.subWindow(position);
            const QRect title(2, 2, frame->width() / 2, 12);
            QVERIFY(frame->visibleRegion().contains(title.bottomLeft()));
            QCOMPARE(QRegion(title).subtracted(frame->visibleRegion()), QRegion());
        }
        const QMdiSubWindow* top = driver.subWindow(active);
        QCOMPARE(top->visibleRegion().boundingRect(), top->rect());
    }
}

void TestDocumentsFit::aLaterDocumentOpensInsideTheWorkspace()
{
    useFont(16);
    CFrameDriver driver;
    driver.frame.resize(700, 500);
    for (int number = 0; number < 3; ++number)
        driver.frame.newDocument();
    const QRect area = driver.workspace()->viewport()->rect();
    QVERIFY(area.width() < 720);
    for (const int position : { 1, 2 }) {
        const QRect place = driver.subWindow(position)->geometry();
        QCOMPARE(place.intersected(area), place);
    }
}

int main(int argc, char* argv[])
{
    const CScreens screens{ screenSize };
    QApplication application(argc, argv);
    TestDocumentsFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestDocumentsFit.moc"

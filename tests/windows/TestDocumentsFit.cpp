// Documents in a small workspace: where they are placed, what of them is in view, and the focus.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "OnlineDocument.h"
#include "Screens.h"
#include "TempSettings.h"

#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>

#include <optional>

namespace
{

constexpr QSize screenSize(1024, 600);
constexpr char sheetText[] = "[MandatoryObjects]\n1=0x1005\n[1005]\nParameterName=COB-ID SYNC message\n"
                             "ObjectType=0x7\nDataType=0x0007\nAccessType=rw\n";

} // namespace

class TestDocumentsFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }
    void cleanup() { QApplication::setFont(m_font); }

    void theFrameIsAsWideAsItWantsToBe() { QCOMPARE(CMainFrame().width(), 960); }
    void arrangingKeepsTheActiveDocument_data();
    void arrangingKeepsTheActiveDocument();
    void titleBarsOfCascadedDocumentsAreInView_data();
    void titleBarsOfCascadedDocumentsAreInView();
    void aLaterDocumentOpensInsideTheWorkspace();
    void aFormStartsAtItsBeginning_data();
    void aFormStartsAtItsBeginning();
    void aValueThatWasReadIsInView();
    void theTabKeyScrollsOnlyAsFarAsNeeded();
    void aFieldThatIsInViewDoesNotScrollWhenThereIsNoRoomForItsLabel();
    void aDocumentInItsFirstSizeShowsItsWholeForm();
    void theTreeShowsNamesWhereTheFormScrollsAnyway();
    void aNameThatIsCutEndsInAnEllipsis();
    void theSelectedRowTellsOfTheFocus_data();
    void theSelectedRowTellsOfTheFocus();

private:
    static void useFont(int points)
    {
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
    }
    static QScrollArea* form(const CDocumentDriver& document)
    {
        return document.find<QScrollArea>("object attributes form widget");
    }
    static QSplitter* splitter(const CDocumentDriver& document)
    {
        return document.find<QSplitter>("client splitter window");
    }
    static void activate(const CDocumentDriver& document)
    {
        document.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
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

void TestDocumentsFit::aFormStartsAtItsBeginning_data()
{
    QTest::addColumn<bool>("recent");
    QTest::newRow("Open") << false;
    QTest::newRow("Recently used") << true;
}

void TestDocumentsFit::aFormStartsAtItsBeginning()
{
    QFETCH(const bool, recent);
    useFont(16);
    const CSheetFile sheet(sheetText);
    if (recent)
        m_store->setValue("Recent File List/File1", sheet.name());
    CFrameDriver driver;
    driver.frame.resize(1016, 560);
    if (recent)
        QTest::keyClick(driver.openRecentMenu(), Qt::Key_Return);
    else
        driver.open(sheet.name());
    AWAIT_COMPARE(driver.documentCount(), 1);
    const CDocumentDriver document(driver.document(0));
    AWAIT_VERIFY(form(document)->horizontalScrollBar()->maximum() > 0);
    AWAIT_COMPARE(QApplication::focusWidget(), document.tree());
    QCOMPARE(form(document)->horizontalScrollBar()->value(), 0);
    QCOMPARE(form(document)->verticalScrollBar()->value(), 0);
}

void TestDocumentsFit::aValueThatWasReadIsInView()
{
    COnlineDocument document(sheetText);
    document.window->resize(700, 250);
    AWAIT_VERIFY(form(document)->verticalScrollBar()->maximum() > 0);
    document.gateway.expect("[#] 5 read 0x1005 0x0 u32\r\n", "[#] 0x80\r\n");
    document.press("1005: COB-ID SYNC message");
    const auto* value = document.find<QLineEdit>("actual value line edit");
    const auto* label = document.find<QLabel>("actual value text label");
    AWAIT_COMPARE(value->visibleRegion().boundingRect().height(), value->height());
    QCOMPARE(value->visibleRegion().boundingRect().left(), 0);
    QCOMPARE(label->visibleRegion().boundingRect(), label->rect());
    QVERIFY(!value->hasFocus());
}

void TestDocumentsFit::theTabKeyScrollsOnlyAsFarAsNeeded()
{
    const CNewDocument document;
    document.window->resize(900, 600);
    activate(document);
    const int narrow = form(document)->widget()->minimumSizeHint().width() - 60;
    splitter(document)->setSizes({ 900 - narrow, narrow });
    AWAIT_VERIFY(form(document)->horizontalScrollBar()->maximum() > 0);
    const auto* bar = form(document)->horizontalScrollBar();
    auto* code = document.find<QLineEdit>("object code line edit");
    auto* type = document.find<QLineEdit>("object data type line edit");
    code->setFocus(Qt::TabFocusReason);
    QCOMPARE(bar->value(), 0);
    QTest::keyClick(code, Qt::Key_Tab);
    QVERIFY(type->hasFocus());
    const int right = type->mapTo(form(document)->widget(), QPoint(type->width(), 0)).x();
    QCOMPARE(bar->value(), right - form(document)->viewport()->width());
    QTest::keyClick(type, Qt::Key_Backtab);
    QVERIFY(code->hasFocus());
    const int left = document.find<QLabel>("object code text label")->mapTo(form(document)->widget(), QPoint()).x();
    QCOMPARE(bar->value(), std::min(left, right - form(document)->viewport()->width()));
}

void TestDocumentsFit::aFieldThatIsInViewDoesNotScrollWhenThereIsNoRoomForItsLabel()
{
    const CNewDocument document;
    document.window->resize(900, 600);
    activate(document);
    auto* type = document.find<QLineEdit>("object data type line edit");
    splitter(document)->setSizes({ 800, 100 }); // the fields have their least widths then
    auto* bar = form(document)->horizontalScrollBar();
    AWAIT_VERIFY(bar->maximum() > 0);
    const int narrow = type->width() + 20;
    splitter(document)->setSizes({ 900 - narrow, narrow });
    QVERIFY(form(document)->viewport()->width() > type->width() + 3);
    bar->setValue(type->mapTo(form(document)->widget(), QPoint()).x() - 3);
    const int before = bar->value();
    QCOMPARE(type->visibleRegion().boundingRect(), type->rect());
    type->setFocus(Qt::TabFocusReason);
    QCOMPARE(bar->value(), before);
}

void TestDocumentsFit::aDocumentInItsFirstSizeShowsItsWholeForm()
{
    useFont(9);
    CNewDocument document;
    QVERIFY(document.open(QByteArray(sheetText).replace("COB-ID", QByteArray(100, 'n'))));
    QCOMPARE(document.window->size(), QSize(720, 400));
    AWAIT_COMPARE(form(document)->horizontalScrollBar()->maximum(), 0);
    QVERIFY(splitter(document)->sizes().first() >= splitter(document)->width() / 4);
}

void TestDocumentsFit::theTreeShowsNamesWhereTheFormScrollsAnyway()
{
    useFont(16);
    CNewDocument document;
    document.window->resize(500, 450);
    QVERIFY(document.open(sheetText));
    const int half = splitter(document)->width() / 2;
    const int text = document.tree()->fontMetrics().horizontalAdvance("1005: COB-ID SYNC message");
    QVERIFY(text > half);
    AWAIT_COMPARE(splitter(document)->sizes().first(), half);
    QVERIFY(form(document)->horizontalScrollBar()->maximum() > 0);
}

void TestDocumentsFit::aNameThatIsCutEndsInAnEllipsis()
{
    CNewDocument document;
    document.window->resize(900, 450);
    QVERIFY(document.open(sheetText));
    QTreeWidget* tree = document.tree();
    splitter(document)->setSizes({ 150, 750 });
    AWAIT_VERIFY(tree->horizontalScrollBar()->maximum() > 30);
    QTreeWidgetItem* item = document.item("1005: COB-ID SYNC message");
    const QRect place = tree->visualItemRect(item).intersected(tree->viewport()->rect());
    const auto pictureOf = [&](const QString& text) {
        item->setText(0, text);
        return tree->viewport()->grab(place).toImage();
    };
    const QString name(60, 'W');
    const QImage cut = pictureOf(name);
    bool found = false;
    for (int count = 1; tree->fontMetrics().horizontalAdvance(QString(count + 1, 'W')) < place.width(); ++count)
        found = found || pictureOf(QString(count, 'W') + QChar(0x2026)) == cut;
    QVERIFY(found);
    (void)pictureOf(name + "end");
    AWAIT_COMPARE(tree->horizontalScrollBar()->maximum(), tree->columnWidth(0) - tree->viewport()->width());
    tree->horizontalScrollBar()->setValue(tree->horizontalScrollBar()->maximum());
    QVERIFY(pictureOf(name + "end") != pictureOf(name + "dne")); // all of the end
}

void TestDocumentsFit::theSelectedRowTellsOfTheFocus_data()
{
    QTest::addColumn<bool>("same");
    QTest::newRow("with a colour for inactive windows") << false;
    QTest::newRow("with the same colours") << true;
}

void TestDocumentsFit::theSelectedRowTellsOfTheFocus()
{
    QFETCH(const bool, same);
    CNewDocument document;
    QVERIFY(document.open(sheetText));
    activate(document);
    QTreeWidget* tree = document.tree();
    QPalette colours = tree->palette();
    colours.setColor(QPalette::Active, QPalette::Highlight, Qt::blue);
    colours.setColor(QPalette::Inactive, QPalette::Highlight, same ? Qt::blue : Qt::green);
    colours.setColor(QPalette::Base, Qt::white);
    tree->setPalette(colours);
    tree->setCurrentItem(document.item("1005: COB-ID SYNC message")); // without the pointer, which changes colours
    QVERIFY(tree->hasFocus());
    const QPoint place = tree->visualItemRect(document.item("1005: COB-ID SYNC message")).bottomLeft(); // no letter
    const auto colour = [&] { return tree->viewport()->grab().toImage().pixelColor(place); };
    QVERIFY(colour().hue() == QColor(Qt::blue).hue() && colour().saturation() > 200);
    document.newValue()->setFocus();
    QCOMPARE(colour().hue(), QColor(same ? Qt::blue : Qt::green).hue());
    QVERIFY(!same || colour().saturation() < 150);
}

int main(int argc, char* argv[])
{
    const CScreens screens{ screenSize };
    QApplication application(argc, argv);
    TestDocumentsFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestDocumentsFit.moc"

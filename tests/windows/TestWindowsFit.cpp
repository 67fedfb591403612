// Windows and dialogs on a small screen: 1366 x 768 at a scale of 1.5.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "NewDocument.h"
#include "Screens.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"
#include "widgets/DictionaryListView.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>

#include <optional>

namespace
{

constexpr QSize screenSize(910, 512);

QByteArray sheetWithName(const QByteArray& name)
{
    QByteArray sheet = "[MandatoryObjects]\n";
    for (int number = 1; number <= 9; ++number)
        sheet += QByteArray::number(number) + "=0x100" + QByteArray::number(number) + "\n";
    for (int number = 1; number <= 9; ++number)
        sheet += "[100" + QByteArray::number(number) + "]\nParameterName=" + (number == 5 ? name : "short") +
                 "\nObjectType=0x7\nDataType=0x0007\nAccessType=ro\nDefaultValue=" + QByteArray(300, '7') + "\n";
    return sheet;
}

QByteArray recordWithEntry(const QByteArray& name)
{
    return "[MandatoryObjects]\n1=0x1018\n[1018]\nParameterName=Identity\nObjectType=0x9\nSubNumber=2\n"
           "[1018sub0]\nParameterName=count\nDataType=0x0005\nAccessType=ro\n"
           "[1018sub1]\nParameterName=" +
           name + "\nDataType=0x0007\nAccessType=ro\n";
}

/// The text with its hexadecimal numbers made of that digit, such as 0xAAAAAAAA.
QString filled(QString text, char digit)
{
    for (const char* number : { "00000000", "FFFFFFFF", "000F0191" })
        text.replace(number, QString(8, digit));
    return text;
}

bool showsBeginning(QLineEdit* field)
{
    (void)field->grab(); // painting scrolls
    return field->cursorPositionAt(QPoint(4, field->height() / 2)) == 0;
}

} // namespace

class TestWindowsFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }
    void cleanup() { QApplication::setFont(m_font); }

    void theFrameFitsOnTheScreen();
    void theTreeIsAsWideAsItsNames();
    void theTreeGivesWayToTheForm();
    void theTreeTakesHalfForLongNames();
    void theTreeGrowsWithTheNamesThatAreOpened();
    void aMovedHandleStays();
    void fieldsHaveRoomForTheirTexts_data();
    void fieldsHaveRoomForTheirTexts();
    void aFormThatIsTooNarrowScrolls();
    void theFormScrollsToTheFocus();
    void theFormScrollsToTheLabelOfTheFocus();
    void aLongTextScrollsWithTheCursor();
    void tiledDocumentsStayInTheWorkspace_data();
    void tiledDocumentsStayInTheWorkspace();
    void theInterfaceDialogKeepsItsWidth();
    void theInterfaceDialogIsCentredOnTheFrame();
    void dialogsFitOnTheScreen_data();
    void dialogsFitOnTheScreen();
    void rowsOfListsAreWhole_data();
    void rowsOfListsAreWhole();
    void aListLowerThanARowShowsWhatItCan();

private:
    static void useFont(int points)
    {
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
    }
    static void resize(const CNewDocument& document, QSize size)
    {
        document.window->resize(size);
        AWAIT_COMPARE(document.window->size(), size);
    }
    static QList<int> halves(const CNewDocument& document)
    {
        return document.find<QSplitter>("client splitter window")->sizes();
    }
    static QScrollArea* form(const CDocumentDriver& document)
    {
        return document.find<QScrollArea>("object attributes form widget");
    }
    /// What a form that has scrolled to the field shows of it: all, or as much from its beginning as there is room.
    static QRect shownPart(const QScrollArea* area, const QWidget* field)
    {
        return { QPoint(), field->size().boundedTo({ area->viewport()->width(), field->height() }) };
    }

    std::optional<CTempSettings> m_store;
    QFont m_font = QApplication::font();
};

void TestWindowsFit::theFrameFitsOnTheScreen()
{
    const CMainFrame frame;
    QCOMPARE(frame.screen()->availableGeometry().size(), screenSize);
    QVERIFY(frame.width() < screenSize.width() && frame.width() > screenSize.width() * 9 / 10);
    QVERIFY(frame.height() < screenSize.height() && frame.height() > screenSize.height() * 8 / 10);
}

void TestWindowsFit::theTreeIsAsWideAsItsNames()
{
    CNewDocument document;
    resize(document, { 1400, 500 });
    QVERIFY(document.open(sheetWithName("a name of thirty-two characters.")));
    AWAIT_COMPARE(document.tree()->horizontalScrollBar()->maximum(), 0);
    const int text = document.tree()->fontMetrics().horizontalAdvance("1005: a name of thirty-two characters.");
    QVERIFY(halves(document).first() > text && halves(document).first() < 2 * text);
    QCOMPARE(form(document)->horizontalScrollBar()->maximum(), 0);
}

void TestWindowsFit::theTreeGivesWayToTheForm()
{
    CNewDocument document;
    QVERIFY(document.open(sheetWithName(QByteArray(200, 'n'))));
    const int needed = form(document)->widget()->minimumSizeHint().width();
    resize(document, { needed + 400, 600 });
    AWAIT_COMPARE(form(document)->horizontalScrollBar()->maximum(), 0);
    QVERIFY(halves(document).first() > 300);
    resize(document, { needed + 100, 600 }); // the form needs more than three quarters
    AWAIT_COMPARE(halves(document).first(), document.find<QSplitter>("client splitter window")->width() / 2);
}

void TestWindowsFit::theTreeTakesHalfForLongNames()
{
    CNewDocument document;
    resize(document, { 2000, 500 });
    QVERIFY(document.open(sheetWithName(QByteArray(200, 'n'))));
    AWAIT_VERIFY(std::abs(halves(document).first() - halves(document).last()) < 10);
}

void TestWindowsFit::theTreeGrowsWithTheNamesThatAreOpened()
{
    CNewDocument document;
    resize(document, { 1400, 500 });
    QVERIFY(document.open(recordWithEntry("an entry with a name of forty characters")));
    QTreeWidgetItem* record = document.item("1018: Identity");
    const int before = halves(document).first();
    record->setExpanded(true);
    AWAIT_VERIFY(halves(document).first() > before + 20);
    AWAIT_COMPARE(document.tree()->horizontalScrollBar()->maximum(), 0);
    const int opened = halves(document).first();
    record->setExpanded(false);
    document.item("CiA DS-301")->setExpanded(false);
    document.item("CiA DS-301")->setExpanded(true);
    QCOMPARE(halves(document).first(), opened); // it does not jump to and fro
}

void TestWindowsFit::aMovedHandleStays()
{
    CNewDocument document;
    resize(document, { 1400, 500 });
    QVERIFY(document.open(recordWithEntry(QByteArray(100, 'n'))));
    const int before = halves(document).first();
    QWidget* handle = document.find<QSplitter>("client splitter window")->handle(1);
    const QPoint middle = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, middle);
    QTest::mouseMove(handle, middle + QPoint(300, 0));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, middle);
    AWAIT_VERIFY(halves(document).first() > before + 200);
    const int moved = halves(document).first();
    resize(document, { 1450, 500 });
    QVERIFY(halves(document).first() >= moved);
    const int resized = halves(document).first();
    document.item("1018: Identity")->setExpanded(true);
    QCoreApplication::processEvents();
    QCOMPARE(halves(document).first(), resized);
}

void TestWindowsFit::fieldsHaveRoomForTheirTexts_data()
{
    QTest::addColumn<QString>("text");
    for (const char* name : { "object data type", "parameter data type" })
        QTest::newRow(name) << "Unsigned32";
    QTest::newRow("value range") << "0x00000000,..,0xFFFFFFFF";
    for (const char* name : { "default value", "new value", "actual value" })
        QTest::newRow(name) << "0x000F0191";
}

void TestWindowsFit::fieldsHaveRoomForTheirTexts()
{
    QFETCH(const QString, text);
    for (const int points : { 9, 16 }) {
        useFont(points);
        const CNewDocument document;
        resize(document, { 300, 300 });
        auto* field = document.find<QLineEdit>(QString(QTest::currentDataTag()) + " line edit");
        field->setText(text);
        field->setCursorPosition(0);
        // All of the text is there, also with other digits: the place after its end is.
        for (const char other : QByteArray("0123456789ABCDEFabcdef")) {
            const int end = field->fontMetrics().horizontalAdvance(filled(text, other));
            QVERIFY2(field->width() > end + 4, qPrintable(QString::number(field->width())));
        }
        QVERIFY(showsBeginning(field));
        field->end(false);
        QVERIFY(showsBeginning(field));
    }
}

void TestWindowsFit::aFormThatIsTooNarrowScrolls()
{
    const CNewDocument document;
    resize(document, { 300, 200 });
    AWAIT_VERIFY(form(document)->horizontalScrollBar()->maximum() > 0);
    QVERIFY(form(document)->verticalScrollBar()->maximum() > 0);
}

void TestWindowsFit::theFormScrollsToTheFocus()
{
    const CNewDocument document;
    resize(document, { 500, 200 });
    AWAIT_VERIFY(form(document)->horizontalScrollBar()->maximum() > 0);
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    QVERIFY(document.newValue()->visibleRegion().isEmpty());
    QTest::keyClick(document.window, 'V', Qt::AltModifier);
    QVERIFY(document.newValue()->hasFocus());
    QCOMPARE(document.newValue()->visibleRegion().boundingRect(), shownPart(form(document), document.newValue()));
}

void TestWindowsFit::theFormScrollsToTheLabelOfTheFocus()
{
    const CNewDocument document;
    resize(document, { 900, 600 });
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    const int narrow = form(document)->widget()->minimumSizeHint().width() - 40;
    document.find<QSplitter>("client splitter window")->setSizes({ 900 - narrow, narrow });
    const auto* label = document.find<QLabel>("new value text label");
    document.find<QPushButton>("send push button")->setFocus(Qt::TabFocusReason);
    AWAIT_VERIFY(label->visibleRegion().boundingRect() != label->rect());
    document.newValue()->setFocus(Qt::BacktabFocusReason);
    AWAIT_COMPARE(label->visibleRegion().boundingRect(), label->rect());
}

void TestWindowsFit::aLongTextScrollsWithTheCursor()
{
    CNewDocument document;
    QVERIFY(document.open(sheetWithName("name")));
    document.press("1005: name");
    auto* field = document.find<QLineEdit>("default value line edit");
    QCOMPARE(field->text().size(), 300);
    QVERIFY(showsBeginning(field));
    QTest::keyClick(field, Qt::Key_End);
    QVERIFY(!showsBeginning(field));
    QTest::keyClick(field, Qt::Key_Home);
    QVERIFY(showsBeginning(field));
}

void TestWindowsFit::tiledDocumentsStayInTheWorkspace_data()
{
    QTest::addColumn<int>("points");
    for (const int points : { 9, 12, 16 })
        QTest::newRow(qPrintable(QString::number(points))) << points;
}

void TestWindowsFit::tiledDocumentsStayInTheWorkspace()
{
    QFETCH(const int, points);
    useFont(points);
    CFrameDriver driver;
    driver.frame.resize(1024, 570);
    driver.frame.newDocument();
    driver.frame.newDocument();
    for (const char* command : { "&Cascade", "&Tile" }) {
        driver.choose("&Windows", command);
        for (const int position : { 0, 1 }) {
            const CDocumentDriver document(driver.document(position));
            const QRect area = driver.workspace()->viewport()->rect();
            const QRect place = driver.subWindow(position)->geometry();
            QCOMPARE(place.intersected(area), place); // all of it lies in the workspace
            auto* range = document.find<QLineEdit>("value range line edit");
            range->setFocus(Qt::TabFocusReason);
            QCOMPARE(range->visibleRegion().boundingRect(), shownPart(form(document), range));
            QVERIFY(document.tree()->width() >= document.window->width() / 4);
        }
    }
}

void TestWindowsFit::theInterfaceDialogKeepsItsWidth()
{
    const int width = CInitInterfaceDialog().width();
    m_store->setValue("Used Interfaces/Interface1", QString(300, 'x'));
    const CInitInterfaceDialog dialog;
    QCOMPARE(dialog.findChild<QComboBox*>("interface combo box")->currentText().size(), 300);
    QCOMPARE(dialog.width(), width);
}

void TestWindowsFit::theInterfaceDialogIsCentredOnTheFrame()
{
    CFrameDriver driver;
    QPoint distance(1000, 1000);
    const CWhenShown<CInitInterfaceDialog> shown([&](CInitInterfaceDialog* dialog) {
        distance = dialog->geometry().center() - driver.frame.geometry().center();
        dialog->reject();
    });
    driver.frame.initializeInterface();
    QVERIFY2(distance.manhattanLength() < 40, qPrintable(QString("%1, %2").arg(distance.x()).arg(distance.y())));
}

void TestWindowsFit::dialogsFitOnTheScreen_data()
{
    QTest::addColumn<int>("points");
    QTest::newRow("9") << 9;
    QTest::newRow("16") << 16;
}

void TestWindowsFit::dialogsFitOnTheScreen()
{
    QFETCH(const int, points);
    useFont(points);
    const CInitInterfaceDialog init;
    const CConnectNodeDialog connecting;
    const CDeviceInfoDialog info;
    for (const QWidget* dialog : std::initializer_list<const QWidget*>{ &init, &connecting, &info })
        QVERIFY2(dialog->width() < screenSize.width() && dialog->height() < screenSize.height() - 20,
                 dialog->metaObject()->className());
}

void TestWindowsFit::rowsOfListsAreWhole_data()
{
    QTest::addColumn<int>("height");
    for (int height = 320; height < 345; height += 3)
        QTest::newRow(qPrintable(QString::number(height))) << height;
}

void TestWindowsFit::rowsOfListsAreWhole()
{
    QFETCH(const int, height);
    CNewDocument document;
    QVERIFY(document.open(sheetWithName("name")));
    resize(document, { 700, height });
    CConnectNodeDialog dialog;
    dialog.resize(600, height);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog, patience));
    const QAbstractItemView* views[] = { document.tree(), dialog.findChild<QListWidget*>() };
    for (const QAbstractItemView* view : views) {
        const int row = view->visualRect(view->model()->index(0, 0)).height();
        QVERIFY(row > 0);
        QCOMPARE(view->viewport()->height() % row, 0);
        QVERIFY(view->height() - view->viewport()->height() < row + 2 * 4 + 20); // frame and scroll bar
    }
}

void TestWindowsFit::aListLowerThanARowShowsWhatItCan()
{
    CDictionaryListView list(nullptr);
    list.setHeaderHidden(true);
    new QTreeWidgetItem(&list, { "row" });
    list.show();
    const int row = list.visualItemRect(list.topLevelItem(0)).height();
    for (const int height : { row - 3, row / 2, row }) {
        list.resize(200, height + 2 * list.frameWidth());
        AWAIT_COMPARE(list.viewport()->height(), height);
    }
}

int main(int argc, char* argv[])
{
    const CScreens screen{ screenSize };
    QApplication application(argc, argv);
    TestWindowsFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestWindowsFit.moc"

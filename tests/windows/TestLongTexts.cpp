// Messages of the status bar and names in menus that are longer than the screen is wide.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "NewDocument.h"
#include "Screens.h"
#include "TempSettings.h"

#include "widgets/StatusBar.h"

#include <QHelpEvent>
#include <QToolTip>

#include <optional>

namespace
{

constexpr QSize screenSize(1024, 600);

QString longName(const QString& end)
{
    return "/" + QString("a-long-folder/").repeated(30) + end;
}

} // namespace

// Notes where the panel of a status bar is painted.
class CPanelStyle : public QProxyStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_PanelStatusBar)
            panel = option->rect;
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

    mutable QRect panel;
};

class TestLongTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void aLongMessageShowsItsBeginningAndItsEnd();
    void aLongMessageIsPaintedAsItIsShown();
    void aLongMessageStandsOnThePanelOfItsBar();
    void aLongMessageHasTheRoomOfAGripThatIsNotShown();
    void aLongMessageHasAToolTip();
    void aShortMessageIsWholeAndHasNoToolTip();
    void menusOfLongNamesStayOnTheScreen();
    void shortNamesInAMenuAreWhole();
    void longTextsOfASheetAreWhole();
    void longNamesInAMenuDifferByTheirBeginningsAndEnds_data();
    void longNamesInAMenuDifferByTheirBeginningsAndEnds();

private:
    static CStatusBar* barOf(const CFrameDriver& driver) { return static_cast<CStatusBar*>(driver.frame.statusBar()); }
    static QString toolTipOf(CStatusBar* bar)
    {
        QHelpEvent help(QEvent::ToolTip, bar->rect().center(), bar->mapToGlobal(bar->rect().center()));
        QCoreApplication::sendEvent(bar, &help);
        return QToolTip::text();
    }

    std::optional<CTempSettings> m_store;
};

void TestLongTexts::aLongMessageShowsItsBeginningAndItsEnd()
{
    const CFrameDriver driver;
    CStatusBar* bar = barOf(driver);
    const QString message = "File " + longName("x.eds") + " loaded in off-line mode";
    bar->showMessage(message);
    QCOMPARE(bar->currentMessage(), message);
    const QString shown = bar->shownText();
    QVERIFY2(shown.startsWith("File /a-long") && shown.endsWith(" loaded in off-line mode"), qPrintable(shown));
    QVERIFY(shown.contains(QChar(0x2026)));
    QVERIFY(bar->fontMetrics().horizontalAdvance(shown) < bar->width());
}

void TestLongTexts::aLongMessageIsPaintedAsItIsShown()
{
    const CFrameDriver driver;
    CStatusBar* bar = barOf(driver);
    bar->showMessage(longName("x.eds"));
    const QImage cut = bar->grab().toImage();
    bar->showMessage(bar->shownText());
    QVERIFY(cut == bar->grab().toImage());
    bar->clearMessage();
    QVERIFY(cut != bar->grab().toImage());
}

void TestLongTexts::aLongMessageStandsOnThePanelOfItsBar()
{
    CPanelStyle style;
    const CFrameDriver driver;
    CStatusBar* bar = barOf(driver);
    bar->setStyle(&style);
    bar->showMessage(longName("x.eds"));
    style.panel = {};
    bar->grab();
    QCOMPARE(style.panel, bar->rect());
}

void TestLongTexts::aLongMessageHasTheRoomOfAGripThatIsNotShown()
{
    const CFrameDriver driver;
    CStatusBar* bar = barOf(driver);
    bar->showMessage(longName("x.eds"));
    const qsizetype shown = bar->shownText().size();
    bar->setSizeGripEnabled(false);
    QVERIFY(bar->shownText().size() > shown);
}

void TestLongTexts::aLongMessageHasAToolTip()
{
    const CFrameDriver driver;
    barOf(driver)->showMessage("<b>" + longName("x.eds"));
    QCOMPARE(toolTipOf(barOf(driver)), "&lt;b&gt;" + longName("x.eds"));
    QToolTip::hideText();
}

void TestLongTexts::aShortMessageIsWholeAndHasNoToolTip()
{
    const CFrameDriver driver;
    barOf(driver)->showMessage("Ready");
    QCOMPARE(barOf(driver)->shownText(), QString("Ready"));
    QCOMPARE(toolTipOf(barOf(driver)), QString());
}

void TestLongTexts::menusOfLongNamesStayOnTheScreen()
{
    m_store->setValue("Recent File List/File1", longName("x.eds"));
    CFrameDriver driver;
    driver.frame.newDocument()->setWindowTitle(longName("y.eds"));
    const QMenu* recent = driver.openRecentMenu();
    QCOMPARE(recent->actions().first()->text(), longName("x.eds"));
    QVERIFY2(screenSize.width() >= recent->width(), qPrintable(QString::number(recent->width())));
    QVERIFY(QRect(QPoint(), screenSize).contains(recent->geometry()));
    QTest::keyClick(driver.menu("&File"), Qt::Key_Escape);
    driver.menu("&File")->close();
    const QMenu* windows = driver.openMenu("&Windows");
    QCOMPARE(windows->actions().last()->text(), longName("y.eds"));
    QVERIFY2(screenSize.width() >= windows->width(), qPrintable(QString::number(windows->width())));
    QVERIFY(QRect(QPoint(), screenSize).contains(windows->geometry()));
    driver.closeMenu();
}

void TestLongTexts::longNamesInAMenuDifferByTheirBeginningsAndEnds_data()
{
    QTest::addColumn<QString>("style");
    QTest::newRow("leaves out the middle itself") << "Fusion";
    QTest::newRow("cuts off the end") << "Windows";
}

void TestLongTexts::longNamesInAMenuDifferByTheirBeginningsAndEnds()
{
    CFrameDriver driver;
    QFETCH(const QString, style);
    for (QMenu* menu : { driver.menu("&Windows"), driver.menu("&File")->actions().at(1)->menu() }) {
        qobject_cast<QProxyStyle*>(menu->style())->setBaseStyle(QStyleFactory::create(style));
        QList<QImage> pictures;
        const QString name = longName("x.eds");
        for (const QString& text : { name, longName("W.eds"), "W" + name.sliced(1), name }) {
            menu->clear();
            menu->addAction(text);
            menu->resize(menu->sizeHint().boundedTo(screenSize)); // as the toolkit does
            QVERIFY(menu->width() > screenSize.width() * 3 / 4);
            pictures << menu->grab().toImage();
        }
        QVERIFY(pictures[0] != pictures[1]);
        QVERIFY(pictures[0] != pictures[2]);
        QVERIFY(pictures[0] == pictures[3]);
    }
}

void TestLongTexts::shortNamesInAMenuAreWhole()
{
    CFrameDriver driver;
    driver.frame.newDocument()->setWindowTitle("R&D.eds");
    QMenu* menu = driver.seeMenu("&Windows");
    const QImage picture = menu->grab().toImage();
    menu->setStyle(nullptr);
    QVERIFY(picture == menu->grab().toImage());
}

void TestLongTexts::longTextsOfASheetAreWhole()
{
    const QByteArray name(60000, 'x'), value(60000, 'y');
    CNewDocument document;
    QVERIFY(document.open(sheetOf(0x2000, 7, "rw", name, "DefaultValue=" + value + "\n")));
    document.window->mouseLeftPressed(document.item("2000: " + name));
    QCOMPARE(document.field("object name"), QString(name));
    QCOMPARE(document.field("parameter name"), QString(name));
    QCOMPARE(document.field("default value"), QString(value));
}

int main(int argc, char* argv[])
{
    const CScreens screens{ screenSize };
    QApplication application(argc, argv);
    TestLongTexts test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestLongTexts.moc"

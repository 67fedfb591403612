// Message boxes stay on their screen, whatever their text, and nothing of it is lost.
// SPDX-License-Identifier: MIT
#include "Patience.h"
#include "Screens.h"
#include "WhenShown.h"

#include "widgets/MessageBoxes.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QScreen>
#include <QScrollBar>
#include <QTextBrowser>

namespace
{

constexpr QSize screenSizes[] = { { 910, 512 }, { 1920, 1080 }, { 1024, 600 }, { 1100, 700 }, { 3840, 2160 } };
constexpr int titleBar = 20; // at least

/// What a box shows its text in: a label, or a view that scrolls.
struct tShown {
    const QLabel* label;
    const QTextEdit* view;
};

tShown shownIn(const QMessageBox* box, const char* label)
{
    const auto* found = box->findChild<QLabel*>(label);
    for (const auto* view : box->findChildren<QTextEdit*>())
        if (view->toPlainText().startsWith(found->text()) || Qt::mightBeRichText(found->text()))
            return { found, view };
    return { found, nullptr };
}

/// Whether the label shows all of its text.
bool isWhole(const QLabel* label)
{
    int longest = 0;
    for (const QString& word : label->text().split(QRegularExpression("\\s")))
        longest = std::max(longest, label->fontMetrics().horizontalAdvance(word));
    return longest <= label->width() && label->heightForWidth(label->width()) <= label->height();
}

QString complaint(const QMessageBox* box)
{
    const QSize room = box->screen()->availableGeometry().size();
    if (box->width() >= room.width() || box->height() >= room.height() - titleBar)
        return QString("%1 x %2 is too large").arg(box->width()).arg(box->height());
    if (!box->screen()->availableGeometry().contains(box->geometry()))
        return "not on the screen";
    if ((box->geometry().center() - box->parentWidget()->geometry().center()).manhattanLength() > 60)
        return "not centred";
    if (!box->rect().contains(box->button(QMessageBox::Ok)->geometry()))
        return "OK is outside";
    const tShown shown = shownIn(box, "qt_msgbox_label");
    if (shown.label->isVisible() == (shown.view != nullptr))
        return "shown twice or not at all";
    if (shown.view == nullptr)
        return isWhole(shown.label) ? "" : "cut";
    if (!box->rect().contains(shown.view->geometry()))
        return "the text goes beyond the box";
    if (shown.view->toPlainText() != box->text())
        return "not the text";
    if (shown.view->horizontalScrollBar()->maximum() > 0)
        return "too wide";
    return box->focusWidget() == box->button(QMessageBox::Ok) ? "" : "OK has not the focus";
}

} // namespace

class TestBoxesFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setFont(m_font); }

    void aBoxStaysOnItsScreen_data();
    void aBoxStaysOnItsScreen();
    void aTextThatFitsIsALabel_data();
    void aTextThatFitsIsALabel();
    void aTextOnlyScrollsWhereItMust();
    void aLinkInATextThatScrollsOpensOutside();
    void aLongWordIsWrapped();
    void theToolkitsBoxStaysOnASmallScreen();
    void theToolkitsBoxIsAsItWasWhereItFits();

private:
    /// A parent on the screen of that size.
    static void putOn(QWidget* parent, QSize size)
    {
        for (const QScreen* screen : QGuiApplication::screens())
            if (screen->size() == size)
                parent->setGeometry(screen->geometry().marginsRemoved(QMargins(20, 20, 20, 20)));
        parent->show();
        QCOMPARE(parent->screen()->size(), size);
    }
    static void useFont(int points)
    {
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
    }

    QFont m_font = QApplication::font();
};

void TestBoxesFit::aBoxStaysOnItsScreen_data()
{
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QString>("part");
    QTest::addColumn<QList<int>>("counts");
    QList<int> steps;
    for (int count = 150; count <= 600; count += 50)
        steps << count;
    QList<int> lines;
    for (int count = 1; count <= 70; count += 3)
        lines << count;
    QList<int> words;
    for (int count = 40; count <= 1200; count += 80)
        words << count;
    for (const QSize size : screenSizes) {
        const QString screen = QString::number(size.width()) + " ";
        QTest::newRow(qPrintable(screen + "one word")) << size << "x" << (steps << 32767);
        QTest::newRow(qPrintable(screen + "lines")) << size << "line\n" << (lines << 200);
        QTest::newRow(qPrintable(screen + "words")) << size << "a word " << (words << 6000);
    }
}

void TestBoxesFit::aBoxStaysOnItsScreen()
{
    QFETCH(const QSize, screen);
    QFETCH(const QString, part);
    QFETCH(const QList<int>, counts);
    QWidget parent;
    putOn(&parent, screen);
    for (const int count : counts) {
        const QString text = part.repeated(count) + ".";
        const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
            const auto accept = qScopeGuard([box] { box->accept(); });
            QCOMPARE(box->screen()->size(), screen);
            QCOMPARE(box->text(), text); // what others read
            QCOMPARE(QString::number(count) + " " + complaint(box), QString::number(count) + " ");
        });
        messageBox::critical(&parent, "Title", text);
        QCOMPARE(watch.count(), 1);
    }
}

void TestBoxesFit::aTextThatFitsIsALabel_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("error") << "Error -8: Interface 'can0' could not be initialized!\n\n\tNo board.";
    QTest::newRow("words") << QString("word ").repeated(60);
    QTest::newRow("lines") << QString("line\n").repeated(12);
}

void TestBoxesFit::aTextThatFitsIsALabel()
{
    QFETCH(const QString, text);
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        const auto accept = qScopeGuard([box] { box->accept(); });
        QCOMPARE(box->findChildren<QTextEdit*>().size(), 0);
        QCOMPARE(complaint(box), QString());
    });
    QWidget parent;
    putOn(&parent, screenSizes[0]);
    messageBox::critical(&parent, "Title", text);
    QCOMPARE(watch.count(), 1);
}

// A few more lines make the box higher, until the label fills the screen; from then on the text scrolls.
void TestBoxesFit::aTextOnlyScrollsWhereItMust()
{
    QWidget parent;
    putOn(&parent, screenSizes[0]);
    int highestLabel = 0;
    bool scrolls = false;
    for (int count = 1; count <= 40; ++count) {
        const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
            const auto accept = qScopeGuard([box] { box->accept(); });
            const bool isLabel = shownIn(box, "qt_msgbox_label").view == nullptr;
            QVERIFY(!(isLabel && scrolls));
            scrolls = !isLabel;
            if (isLabel)
                highestLabel = box->height();
        });
        messageBox::critical(&parent, "Title", QString("line\n").repeated(count));
    }
    QVERIFY(scrolls);
    QVERIFY2(highestLabel > screenSizes[0].height() - 80, qPrintable(QString::number(highestLabel)));
}

void TestBoxesFit::aLinkInATextThatScrollsOpensOutside()
{
    QWidget parent;
    putOn(&parent, screenSizes[0]);
    const CWhenShown<QMessageBox> watch([](QMessageBox* box) {
        const auto accept = qScopeGuard([box] { box->accept(); });
        QVERIFY(box->findChild<QTextBrowser*>("message text edit")->openExternalLinks());
    });
    messageBox::critical(&parent, "Title", QString("line\n").repeated(500));
    QCOMPARE(watch.count(), 1);
}

void TestBoxesFit::aLongWordIsWrapped()
{
    QWidget parent;
    putOn(&parent, screenSizes[0]);
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        const auto accept = qScopeGuard([box] { box->accept(); });
        const auto* view = box->findChild<QTextEdit*>();
        QCOMPARE(view->verticalScrollBar()->maximum(), 0); // a few lines need no scroll bar
        QVERIFY2(view->height() < 10 * view->fontMetrics().height(), qPrintable(QString::number(view->height())));
    });
    messageBox::critical(&parent, "Title", QString(400, 'x'));
    QCOMPARE(watch.count(), 1);
}

void TestBoxesFit::theToolkitsBoxStaysOnASmallScreen()
{
    useFont(16);
    QWidget parent;
    putOn(&parent, { 1024, 600 });
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        const auto accept = qScopeGuard([box] { box->accept(); });
        QVERIFY2(box->height() < 600 - titleBar && box->width() < 1024, qPrintable(QString::number(box->height())));
        QVERIFY(box->screen()->availableGeometry().contains(box->geometry()));
        QVERIFY(box->rect().contains(box->button(QMessageBox::Ok)->geometry()));
        QCOMPARE(box->windowTitle(), QString("Title"));
        QVERIFY(box->text().contains("About Qt"));
        QVERIFY(box->findChild<QLabel*>("qt_msgbox_label")->isVisible());
        QVERIFY(!box->findChild<QLabel*>("qt_msgbox_informativelabel")->isVisible());
        const auto* view = box->findChild<QTextEdit*>();
        QTextDocument whole;
        whole.setHtml(box->informativeText());
        QCOMPARE(view->toPlainText(), whole.toPlainText());
        QVERIFY(view->verticalScrollBar()->maximum() > 0);
        QCOMPARE(view->horizontalScrollBar()->maximum(), 0);
        QCOMPARE(box->focusWidget(), box->button(QMessageBox::Ok));
    });
    messageBox::aboutQt(&parent, "Title");
    QCOMPARE(watch.count(), 1);
}

void TestBoxesFit::theToolkitsBoxIsAsItWasWhereItFits()
{
    QWidget parent;
    putOn(&parent, { 1920, 1080 });
    const CWhenShown<QMessageBox> watch([&](QMessageBox* box) {
        const auto accept = qScopeGuard([box] { box->accept(); });
        QCOMPARE(box->findChildren<QTextEdit*>().size(), 0);
        QVERIFY(box->findChild<QLabel*>("qt_msgbox_informativelabel")->isVisible());
    });
    messageBox::aboutQt(&parent, "Title");
    QCOMPARE(watch.count(), 1);
}

int main(int argc, char* argv[])
{
    const CScreens screens{ screenSizes[0], screenSizes[1], screenSizes[2], screenSizes[3], screenSizes[4] };
    QApplication application(argc, argv);
    TestBoxesFit test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestBoxesFit.moc"

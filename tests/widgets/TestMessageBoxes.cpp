// The message boxes: plain text, whatever a foreign name holds.
// SPDX-License-Identifier: MIT
#include "widgets/MessageBoxes.h"

#include "BoxCatcher.h"
#include "WhenShown.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

using tShow = void (*)(QWidget*, const QString&, const QString&);

class TestMessageBoxes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTitleNamesProductAndAction();
    void everyBoxIsPlainText_data();
    void everyBoxIsPlainText();
    void aBoxIsWideEnoughForItsTitle();
    void aTextThatScrollsIsNamedForAssistivePrograms();
    void anIconThatAButtonGetsLaterStays();
    void aBoxOutlivesItsParentsEnd();
};

void TestMessageBoxes::aTitleNamesProductAndAction()
{
    QCOMPARE(messageBox::titleOf("Read parameter"), QString("Velmora - Read parameter"));
}

void TestMessageBoxes::everyBoxIsPlainText_data()
{
    QTest::addColumn<tShow>("show");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::newRow("information") << &messageBox::information << QMessageBox::Information;
    QTest::newRow("warning") << &messageBox::warning << QMessageBox::Warning;
    QTest::newRow("critical") << &messageBox::critical << QMessageBox::Critical;
    QTest::newRow("about") << &messageBox::about << QMessageBox::NoIcon;
}

void TestMessageBoxes::everyBoxIsPlainText()
{
    QFETCH(const tShow, show);
    QFETCH(const QMessageBox::Icon, icon);
    CBoxCatcher catcher;
    QWidget parent;
    show(&parent, "Title", "can<b>0</b>\n\n\t%1 &amp; tail");
    const CBoxCatcher::tBox box = catcher.only();
    QCOMPARE(box.title, QString("Title"));
    QCOMPARE(box.text, QString("can<b>0</b>\n\n\t%1 &amp; tail"));
    QCOMPARE(box.icon, icon);
    QCOMPARE(box.format, Qt::PlainText);
}

void TestMessageBoxes::aBoxIsWideEnoughForItsTitle()
{
    const QString title(40, 'W');
    int width = 0;
    const CWhenShown<QMessageBox> whenShown([&width](QMessageBox* box) {
        width = box->width();
        box->accept();
    });
    messageBox::warning(nullptr, title, "text");
    QFont font = QApplication::font();
    font.setBold(true);
    QVERIFY2(width > QFontMetrics(font).horizontalAdvance(title), qPrintable(QString::number(width)));
}

void TestMessageBoxes::aTextThatScrollsIsNamedForAssistivePrograms()
{
    QString name;
    const CWhenShown<QMessageBox> whenShown([&name](QMessageBox* box) {
        if (const auto* view = box->findChild<QTextBrowser*>())
            name = view->accessibleName();
        box->accept();
    });
    messageBox::warning(nullptr, "Title", QString("line\n").repeated(1000));
    QCOMPARE(name, QString("Title"));
}

void TestMessageBoxes::anIconThatAButtonGetsLaterStays()
{
    const messageBox::CBoxCare care;
    QDialogButtonBox buttons(QDialogButtonBox::Ok);
    buttons.show();
    QPixmap picture(8, 8);
    picture.fill(Qt::red);
    buttons.button(QDialogButtonBox::Ok)->setIcon(picture);
    buttons.hide();
    QVERIFY(!buttons.button(QDialogButtonBox::Ok)->icon().isNull());
}

void TestMessageBoxes::aBoxOutlivesItsParentsEnd()
{
    QPointer<QWidget> parent = new QWidget;
    QTimer::singleShot(0, parent, [parent] { delete parent; });
    messageBox::warning(parent, "Title", "text");
    QVERIFY(parent.isNull());
}

QTEST_MAIN(TestMessageBoxes)
#include "TestMessageBoxes.moc"

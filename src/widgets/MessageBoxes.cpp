// Message boxes in plain text.
// SPDX-License-Identifier: MIT
#include "widgets/MessageBoxes.h"

#include "base/Product.h"
#include "widgets/ScreenRoom.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QTextBrowser>
#include <QtMath>

#include <algorithm>
#include <memory>

namespace
{

// The title bar of a narrow box would cut its title. An empty row at the bottom keeps the box wide enough for the title
// and the buttons of the title bar.
void widenToTitle(QMessageBox* box)
{
    constexpr int barWidth = 140;
    QFont font = box->font();
    font.setBold(true);
    const int width = QFontMetrics(font).horizontalAdvance(box->windowTitle()) + barWidth;
    if (auto* grid = qobject_cast<QGridLayout*>(box->layout()))
        grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

void layOut(QMessageBox* box)
{
    QEvent request(QEvent::LayoutRequest);
    static_cast<QObject*>(box)->event(&request);
    box->layout()->setGeometry(box->rect());
}

// As wide as `most`, and as high as its text is then, at most.
void resizeToText(QTextBrowser* view, QSize most)
{
    const int borders = 2 * view->frameWidth();
    const std::unique_ptr<QTextDocument> measured(view->document()->clone()); // the view lays out its own as it is now
    measured->setTextWidth(most.width() - borders);
    const int needed = qCeil(measured->size().height()) + borders;
    view->setFixedSize(most.width(), std::min(needed, most.height()));
}

// The text of a label in a view that scrolls. The label, which has the text for everyone who asks the box for it, keeps
// it and is hidden.
void makeScroll(QMessageBox* box, QLabel* label, QSize most)
{
    auto* view = new QTextBrowser(box);
    view->setObjectName(QStringLiteral("message text edit"));
    view->setAccessibleName(box->windowTitle());
    view->setFont(label->font());
    view->setTabChangesFocus(true);
    view->setOpenExternalLinks(true);
    view->viewport()->setAutoFillBackground(false);
    if (label->textFormat() == Qt::PlainText)
        view->setPlainText(label->text());
    else
        view->setText(label->text());

    resizeToText(view, most);
    delete box->layout()->replaceWidget(label, view);
    label->hide();
    view->show(); // at once: the box is laid out and placed next
    layOut(box);
    // A box has a greatest width, beyond which the view would be cut.
    const int beyond = view->geometry().right() + box->layout()->contentsMargins().right() - box->rect().right();
    if (beyond > 0)
        resizeToText(view, { most.width() - beyond, most.height() });
    // Not the text. The toolkit's boxes get their button only now.
    const auto focusButton = [box] {
        if (QAbstractButton* button = box->button(QMessageBox::Ok))
            button->setFocus();
    };
    QMetaObject::invokeMethod(box, focusButton, Qt::QueuedConnection);
}

bool isCut(const QLabel* label)
{
    return label->isVisibleTo(label->parentWidget()) && label->wordWrap() && label->textFormat() == Qt::PlainText &&
           label->minimumSizeHint().width() > label->width();
}

// Called while the box is about to be shown, when it can be laid out.
void keepOnScreen(QMessageBox* box)
{
    auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    auto* more = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
    if (label == nullptr || !label->isVisibleTo(box))
        return; // has been done
    layOut(box);
    // The box comes to the screen of its parent only after this.
    const QSize most = screenRoom::largest(box->parentWidget() != nullptr ? box->parentWidget() : box);
    if (box->width() > most.width() || box->height() > most.height() || isCut(label))
        makeScroll(box, more != nullptr ? more : label, most / 2);
}

// On the heap, since a parent that is deleted while its box runs deletes the box as well.
void show(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text, bool windowIcon = false)
{
    QPointer<QMessageBox> box = new QMessageBox(icon, title, text, QMessageBox::Ok, parent);
    box->setTextFormat(Qt::PlainText);
    if (windowIcon && parent != nullptr) {
        const int size = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
        box->setIconPixmap(parent->windowIcon().pixmap(QSize(size, size), parent->devicePixelRatioF()));
    }
    widenToTitle(box);
    const messageBox::CBoxCare care;
    box->exec();
    delete box;
}

} // namespace

QString messageBox::titleOf(const char* action)
{
    return QLatin1String(product::name) + QStringLiteral(" - ") + QLatin1String(action);
}

void messageBox::information(QWidget* parent, const QString& title, const QString& text)
{
    show(parent, QMessageBox::Information, title, text);
}

void messageBox::warning(QWidget* parent, const QString& title, const QString& text)
{
    show(parent, QMessageBox::Warning, title, text);
}

void messageBox::critical(QWidget* parent, const QString& title, const QString& text)
{
    show(parent, QMessageBox::Critical, title, text);
}

void messageBox::about(QWidget* parent, const QString& title, const QString& text)
{
    show(parent, QMessageBox::NoIcon, title, text, true);
}

void messageBox::aboutQt(QWidget* parent, const QString& title)
{
    const CBoxCare care;
    QMessageBox::aboutQt(parent, title);
}

messageBox::CBoxCare::CBoxCare()
{
    qApp->installEventFilter(this);
}

bool messageBox::CBoxCare::eventFilter(QObject* watched, QEvent* event)
{
    // A box without a button gets one while it is shown.
    if (event->type() == QEvent::ChildPolished)
        if (const auto* buttons = qobject_cast<QDialogButtonBox*>(watched))
            removeButtonIcons(buttons);
    if (event->type() == QEvent::Show)
        if (auto* box = qobject_cast<QMessageBox*>(watched)) {
            removeButtonIcons(box);
            keepOnScreen(box);
        }
    return QObject::eventFilter(watched, event);
}

void messageBox::removeButtonIcons(const QWidget* dialog)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
        button->setIcon(QIcon());
}

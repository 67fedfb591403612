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
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QStyle>

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

// A text that would make the box higher than the screen scrolls. The label, which is the text of the box for everyone
// who asks for it, keeps it and is hidden.
void keepOnScreen(QMessageBox* box)
{
    const QSize most = screenRoom::largest(box);
    const QSize area(most.width() / 2, most.height() / 2);
    const QRect needed = box->fontMetrics().boundingRect(
        QRect(0, 0, area.width(), 0), Qt::TextWordWrap | Qt::TextWrapAnywhere | Qt::TextExpandTabs, box->text());
    auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (needed.height() <= area.height() || label == nullptr)
        return;

    auto* text = new QPlainTextEdit(box->text(), box);
    text->setObjectName(QStringLiteral("message text edit"));
    text->setAccessibleName(box->windowTitle());
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setMinimumSize(area);
    delete box->layout()->replaceWidget(label, text);
    label->hide();
    box->button(QMessageBox::Ok)->setFocus(); // not the text
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
    messageBox::removeButtonIcons(box);
    widenToTitle(box);
    keepOnScreen(box);
    box->exec();
    delete box;
}

// Takes the icons off the boxes that come up while it lives.
class CBoxesWithoutIcons : public QObject
{
public:
    CBoxesWithoutIcons() { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // A box without a button gets one while it is shown.
        if (event->type() == QEvent::ChildPolished)
            if (const auto* buttons = qobject_cast<QDialogButtonBox*>(watched))
                messageBox::removeButtonIcons(buttons);
        return QObject::eventFilter(watched, event);
    }
};

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
    const CBoxesWithoutIcons watch;
    QMessageBox::aboutQt(parent, title);
}

void messageBox::removeButtonIcons(const QWidget* dialog)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
        button->setIcon(QIcon());
}
